#ifndef TOV_RULES_TOVINITIALIZATIONJSONPARSER_H_
#define TOV_RULES_TOVINITIALIZATIONJSONPARSER_H_

#include <string>

#include "json/TOVJsonParser.h"
#include "json/json_types.h"

class TOVLifecycleBusinessRules;

// The top parser of the rules document: runs the eight section parsers and
// joins their errors.
class TOVInitializationJsonParser : public TOVJsonParser {
public:
    explicit TOVInitializationJsonParser(TOVLifecycleBusinessRules* store);
    ~TOVInitializationJsonParser() override;

    // Loads the document from the path of a file or from JSON text.
    bool load(const std::string& input, bool inputIsFilePath);
    // Every section runs, whatever happened to those before, so one response
    // tells the first error of each.
    bool parseAllSections();

private:
    TOVLifecycleBusinessRules* store;
    tovjson::Document document;
};

#endif  // TOV_RULES_TOVINITIALIZATIONJSONPARSER_H_
