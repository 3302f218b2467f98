// The OpenAPI description of tov serve's routes, as committed in schemas/
// and compiled into the program, so that what /openapi.json serves is that
// file byte for byte.
#ifndef TOV_TOOLS_SERVE_OPENAPI_DOCUMENT_H_
#define TOV_TOOLS_SERVE_OPENAPI_DOCUMENT_H_

#include <string_view>

namespace tovserve {

std::string_view openApiDocument();

}  // namespace tovserve

#endif  // TOV_TOOLS_SERVE_OPENAPI_DOCUMENT_H_
