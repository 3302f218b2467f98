#include "rules/TOVInitializationJsonParser.h"

#include <cstddef>

#include "rules/TOVConflictResolutionRulesJsonParser.h"
#include "rules/TOVFileConstraintsRulesJsonParser.h"
#include "rules/TOVLinkRulesJsonParsers.h"
#include "rules/TOVTransitionFreezeRulesJsonParser.h"
#include "rules/TOVTransitionRulesJsonParser.h"
#include "rules/TOVTriggersRulesJsonParser.h"
#include "rules/TOVVersioningSelectionRulesJsonParser.h"
#include "rules/rule_kinds.h"
#include "tov/TOVLifecycleBusinessRules.h"

namespace {

// Whether the parsers stand in the table's reading order, one per kind.
template <typename... SectionParsers>
constexpr bool inReadingOrder() {
    std::size_t position = 0;
    return sizeof...(SectionParsers) == TOVRuleKindCount &&
           ((rulekinds::wordsOf(SectionParsers::kKind).readingPosition == position++) && ...);
}

}  // namespace

TOVInitializationJsonParser::TOVInitializationJsonParser(TOVLifecycleBusinessRules* store)
    : store(store) {}

TOVInitializationJsonParser::~TOVInitializationJsonParser() = default;

bool TOVInitializationJsonParser::load(const std::string& input, bool inputIsFilePath) {
    return fillJsonDocumentFromInput(input, inputIsFilePath, document);
}

template <typename... SectionParsers>
bool TOVInitializationJsonParser::parseSections() {
    static_assert(inReadingOrder<SectionParsers...>(),
                  "the section parsers run in the reading order of the table of kinds");
    const auto noteSection = [this](const auto& section) {
        const std::string comment = section.getParsingErrorComment();
        if (!comment.empty()) {
            sectionFaults.emplace_back(section.sectionKeyword(), comment);
        }
    };
    return runSectionParsersNoting<SectionParsers...>(noteSection, document, store);
}

bool TOVInitializationJsonParser::parseAllSections() {
    if (store == nullptr) {
        return false;
    }
    // The order of the sections is the order of their messages.
    return parseSections<TOVTriggersRulesJsonParser, TOVTransitionRulesJsonParser,
                         TOVTransitionFreezeRulesJsonParser, TOVFileConstraintsRulesJsonParser,
                         TOVConflictResolutionRulesJsonParser,
                         TOVVersioningSelectionRulesJsonParser, TOVHistoryLinkRulesJsonParser,
                         TOVManualLinkRulesJsonParser>();
}
