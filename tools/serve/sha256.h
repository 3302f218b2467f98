// SHA-256 of a document's text, which /v1/status shows so that an operator
// can tell which version of a file every instance serves.
#ifndef TOV_TOOLS_SERVE_SHA256_H_
#define TOV_TOOLS_SERVE_SHA256_H_

#include <string>
#include <string_view>

namespace tovserve {

// The digest in lower-case hex, 64 characters.
std::string sha256Hex(std::string_view data);

}  // namespace tovserve

#endif  // TOV_TOOLS_SERVE_SHA256_H_
