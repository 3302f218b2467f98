#include "rules/TOVInitializationJsonParser.h"

#include "rules/TOVConflictResolutionRulesJsonParser.h"
#include "rules/TOVFileConstraintsRulesJsonParser.h"
#include "rules/TOVLinkRulesJsonParsers.h"
#include "rules/TOVTransitionFreezeRulesJsonParser.h"
#include "rules/TOVTransitionRulesJsonParser.h"
#include "rules/TOVTriggersRulesJsonParser.h"
#include "rules/TOVVersioningSelectionRulesJsonParser.h"
#include "tov/TOVLifecycleBusinessRules.h"

TOVInitializationJsonParser::TOVInitializationJsonParser(TOVLifecycleBusinessRules* store)
    : store(store) {}

TOVInitializationJsonParser::~TOVInitializationJsonParser() = default;

bool TOVInitializationJsonParser::load(const std::string& input, bool inputIsFilePath) {
    return fillJsonDocumentFromInput(input, inputIsFilePath, document);
}

namespace {

// Runs one section parser on a fresh instance and hands back its outcome.
template <typename SectionParser>
bool runSection(rapidjson::Value& root, TOVLifecycleBusinessRules* store, std::string& comment,
                bool& result) {
    SectionParser parser;
    const bool parsed = parser.parseSection(root, store);
    comment = parser.getParsingErrorComment();
    result = parser.getParsingResult();
    return parsed;
}

}  // namespace

bool TOVInitializationJsonParser::parseAllSections() {
    if (store == nullptr) {
        return false;
    }
    // The order of the sections is the order of their messages.
    using Runner = bool (*)(rapidjson::Value&, TOVLifecycleBusinessRules*, std::string&, bool&);
    const Runner sections[] = {
        runSection<TOVTriggersRulesJsonParser>,
        runSection<TOVTransitionRulesJsonParser>,
        runSection<TOVTransitionFreezeRulesJsonParser>,
        runSection<TOVFileConstraintsRulesJsonParser>,
        runSection<TOVConflictResolutionRulesJsonParser>,
        runSection<TOVVersioningSelectionRulesJsonParser>,
        runSection<TOVHistoryLinkRulesJsonParser>,
        runSection<TOVManualLinkRulesJsonParser>,
    };
    bool allParsed = true;
    for (const Runner run : sections) {
        std::string comment;
        bool result = true;
        allParsed = run(document, store, comment, result) && allParsed;
        appendToParsingErrorComment(comment.c_str());
        updateParsingResult(result);
    }
    return allParsed;
}
