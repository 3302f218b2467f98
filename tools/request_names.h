// The object types and attributes that a request names but the data model
// does not describe. The library judges such a request without a word about
// the names, so a misspelt one in a request or a test case most often passes
// for the wrong reason, which tov test and tov eval warn of.
#ifndef TOV_TOOLS_REQUEST_NAMES_H_
#define TOV_TOOLS_REQUEST_NAMES_H_

#include <string>
#include <vector>

#include "tov/TOV_DMStructure.h"

namespace tovcli {

// One sentence per unknown name, in the order of the request's text, each
// name once: object types matched as evaluations match them (case ignored),
// attributes exactly, with the nearest described name when one is near. The
// pseudo-attributes "ServerId" and "_file_upload_" are no attributes of the
// data model. Nothing for a text that is no JSON object, or a data model that
// describes nothing.
std::vector<std::string> unknownNamesInRequest(const std::string& request,
                                               const TOV_DMStructure& dataModel);

}  // namespace tovcli

#endif  // TOV_TOOLS_REQUEST_NAMES_H_
