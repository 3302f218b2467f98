#ifndef TOV_FRAME_TOVRESPONSEJSONPARSER_H_
#define TOV_FRAME_TOVRESPONSEJSONPARSER_H_

#include <string>
#include <vector>

#include "json/TOVJsonParser.h"
#include "json/json_types.h"

class TOVResponse;

// Reads a response back from its single JSON string; lives for one call of
// TOVResponse::fillResponseFromASingleString.
class TOVResponseJsonParser : public TOVJsonParser {
public:
    explicit TOVResponseJsonParser(TOVResponse* response);
    ~TOVResponseJsonParser() override;

    bool fill(const char* text);

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;

private:
    TOVResponse* response;
    tovjson::Document document;
};

#endif  // TOV_FRAME_TOVRESPONSEJSONPARSER_H_
