// The parse step that every request controller shares.
#ifndef TOV_FRAME_REQUEST_PARSING_H_
#define TOV_FRAME_REQUEST_PARSING_H_

#include <string>

#include "tov/TOVResponse.h"

// Loads the request into `parser` and runs all its sections. On any fault the
// response is refused with every message the parser collected, so that one
// answer tells all that is wrong with a request.
template <typename Parser>
bool parseRequestOrRefuse(Parser& parser, const std::string& input, bool inputIsFilePath,
                          TOVResponse& response) {
    if (parser.load(input, inputIsFilePath)) {
        parser.parseAllSections();
    }
    if (parser.getParsingResult()) {
        return true;
    }
    response.setGeneralResult(false);
    response.setGeneralResultComment(parser.getParsingErrorComment().c_str());
    return false;
}

#endif  // TOV_FRAME_REQUEST_PARSING_H_
