#include "frame/TOVResponseJsonParser.h"

#include "tov/TOVResponse.h"

namespace {
const char* const kResultKeyword = "Result";
const char* const kResultCommentKeyword = "ResultComment";
}  // namespace

TOVResponseJsonParser::TOVResponseJsonParser(TOVResponse* response) : response(response) {}

TOVResponseJsonParser::~TOVResponseJsonParser() = default;

std::string TOVResponseJsonParser::getRuleName() {
    return "TOV Response";
}

void TOVResponseJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    keywords.emplace_back(kResultKeyword);
    keywords.emplace_back(kResultCommentKeyword);
}

bool TOVResponseJsonParser::fill(const char* text) {
    if (!fillJsonDocumentFromJsonString(text == nullptr ? "" : text, document)) {
        return false;
    }
    AttributesMap pairs;
    if (!collectKeyValuesPairsFromSection(document, pairs)) {
        // A member that is no string ends the reading, yet the call counts as a
        // success: the record stays as it was.
        return true;
    }
    if (pairs.count(kResultKeyword) == 0 || pairs.count(kResultCommentKeyword) == 0) {
        return failWith(notAllNecessaryKeywordsFoundParsingError(""));
    }
    response->fillFromStringStringMap(pairs);
    return true;
}
