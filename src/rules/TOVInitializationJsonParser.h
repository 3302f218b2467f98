#ifndef TOV_RULES_TOVINITIALIZATIONJSONPARSER_H_
#define TOV_RULES_TOVINITIALIZATIONJSONPARSER_H_

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "json/TOVJsonParser.h"
#include "rules/TOVConflictResolutionRulesJsonParser.h"
#include "rules/TOVFileConstraintsRulesJsonParser.h"
#include "rules/TOVLinkRulesJsonParsers.h"
#include "rules/TOVTransitionFreezeRulesJsonParser.h"
#include "rules/TOVTransitionRulesJsonParser.h"
#include "rules/TOVTriggersRulesJsonParser.h"
#include "rules/TOVVersioningSelectionRulesJsonParser.h"

class TOVLifecycleBusinessRules;

// The top parser of the rules document: reads it as it streams by, each
// section through its own parser, and joins their errors.
class TOVInitializationJsonParser : public TOVJsonParser {
public:
    // Each section's key and what its parser said, for a section that failed.
    using SectionFaults = std::vector<std::pair<std::string, std::string>>;

    explicit TOVInitializationJsonParser(TOVLifecycleBusinessRules* store);
    ~TOVInitializationJsonParser() override;

    // Reads the document from the path of a file or from JSON text, appending
    // the rules of every section to the store as they come. On false the
    // document was no JSON object and the store holds a part of it, which the
    // caller must drop.
    bool load(const std::string& input, bool inputIsFilePath);
    // Joins what each section said, in the table's reading order whatever the
    // order of the document, so one response tells the first error of each.
    bool parseAllSections();

    // The comment of each section that failed, in the order of the comment,
    // with the section's key: so that a tool can tell where a fault lies
    // without reading the message.
    const SectionFaults& getSectionFaults() const { return sectionFaults; }

private:
    // One parser per section, in the table's reading order.
    using Sections =
        std::tuple<TOVTriggersRulesJsonParser, TOVTransitionRulesJsonParser,
                   TOVTransitionFreezeRulesJsonParser, TOVFileConstraintsRulesJsonParser,
                   TOVConflictResolutionRulesJsonParser, TOVVersioningSelectionRulesJsonParser,
                   TOVHistoryLinkRulesJsonParser, TOVManualLinkRulesJsonParser>;

    TOVLifecycleBusinessRules* store;
    Sections sections;
    SectionFaults sectionFaults;
};

#endif  // TOV_RULES_TOVINITIALIZATIONJSONPARSER_H_
