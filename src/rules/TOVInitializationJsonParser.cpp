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

bool TOVInitializationJsonParser::parseAllSections() {
    if (store == nullptr) {
        return false;
    }
    // The order of the sections is the order of their messages.
    return runSectionParsers<TOVTriggersRulesJsonParser, TOVTransitionRulesJsonParser,
                             TOVTransitionFreezeRulesJsonParser, TOVFileConstraintsRulesJsonParser,
                             TOVConflictResolutionRulesJsonParser,
                             TOVVersioningSelectionRulesJsonParser, TOVHistoryLinkRulesJsonParser,
                             TOVManualLinkRulesJsonParser>(document, store);
}
