#ifndef TOV_RULES_TOVINITIALIZATIONJSONPARSER_H_
#define TOV_RULES_TOVINITIALIZATIONJSONPARSER_H_

#include <string>
#include <utility>
#include <vector>

#include "json/TOVJsonParser.h"
#include "json/json_types.h"

class TOVLifecycleBusinessRules;

// The top parser of the rules document: runs the eight section parsers and
// joins their errors.
class TOVInitializationJsonParser : public TOVJsonParser {
public:
    // Each section's key and what its parser said, for a section that failed.
    using SectionFaults = std::vector<std::pair<std::string, std::string>>;

    explicit TOVInitializationJsonParser(TOVLifecycleBusinessRules* store);
    ~TOVInitializationJsonParser() override;

    // Loads the document from the path of a file or from JSON text.
    bool load(const std::string& input, bool inputIsFilePath);
    // Every section runs, whatever happened to those before, so one response
    // tells the first error of each.
    bool parseAllSections();

    // The comment of each section that failed, in the order of the comment,
    // with the section's key: so that a tool can tell where a fault lies
    // without reading the message.
    const SectionFaults& getSectionFaults() const { return sectionFaults; }

private:
    // Runs the section parsers, which must come in the table's reading order.
    template <typename... SectionParsers>
    bool parseSections();

    TOVLifecycleBusinessRules* store;
    tovjson::Document document;
    SectionFaults sectionFaults;
};

#endif  // TOV_RULES_TOVINITIALIZATIONJSONPARSER_H_
