#ifndef TOV_RULES_TOVINITIALIZATIONJSONPARSER_H_
#define TOV_RULES_TOVINITIALIZATIONJSONPARSER_H_

#include <string>

#include <rapidjson/document.h>

#include "json/TOVJsonParser.h"

class TOVLifecycleBusinessRules;

// The top parser of the rules document: runs the eight section parsers and
// joins their errors.
class TOVInitializationJsonParser : public TOVJsonParser {
public:
    explicit TOVInitializationJsonParser(TOVLifecycleBusinessRules* store);
    ~TOVInitializationJsonParser() override;

    // Loads the document from a file or from text.
    bool fillFromFile(const std::string& path);
    bool fillFromText(const std::string& text);
    // Every section runs, whatever happened to those before, so one response
    // tells the first error of each.
    bool parseAllSections();

private:
    TOVLifecycleBusinessRules* store;
    rapidjson::Document document;
};

#endif  // TOV_RULES_TOVINITIALIZATIONJSONPARSER_H_
