#include "tov/TOVLifecycleBusinessRules.h"

#include <algorithm>

#include "dm/object_type_matching.h"
#include "tov/TOVLogger.h"
#include "tov/TOV_DMStructure.h"
#include "tov/string_helpers.h"

namespace {

// Attribute names are matched exactly: no case folding, no wildcard.
bool listHoldsAttribute(const std::vector<std::string>& attributes, const std::string& name) {
    return std::find(attributes.begin(), attributes.end(), name) != attributes.end();
}

// The value a link rule is judged on: the target's, else the initial one's.
std::string candidateValue(const std::string& attribute, const AttributesMap& fromValues,
                           const AttributesMap& toValues) {
    std::string value;
    if (!getValueofKeywordFromStringStringMap(attribute, toValues, value)) {
        getValueofKeywordFromStringStringMap(attribute, fromValues, value);
    }
    return value;
}

template <typename Rule>
void sortRules(std::vector<Rule>& rules) {
    std::sort(rules.begin(), rules.end());
}

}  // namespace

template <typename Rule>
void TOVLifecycleBusinessRules::printRules(const char* heading, const std::vector<Rule>& rules,
                                           TOVLogger* logger) {
    logger->printToLog(heading);
    for (const Rule& rule : rules) {
        rule.printContentsDBG(logger);
    }
}

// Every lookup walks one list in stored order and keeps each rule whose object
// type matches and that `holds` accepts.
template <typename Rule, typename Holds>
bool TOVLifecycleBusinessRules::selectRules(const std::vector<Rule>& rules,
                                            const std::string& objectType,
                                            const TOV_DMStructure* structure,
                                            std::vector<const Rule*>& related, Holds&& holds) {
    bool found = false;
    for (const Rule& rule : rules) {
        if (objectTypesMatch(structure, rule.getObjectType(), objectType) && holds(rule)) {
            related.push_back(&rule);
            found = true;
        }
    }
    return found;
}

// The plain lookup, shared by every kind that has a single attribute.
template <typename Rule>
bool TOVLifecycleBusinessRules::selectRelatedRules(const std::vector<Rule>& rules,
                                                   const std::string& objectType,
                                                   const std::vector<std::string>& attributes,
                                                   const TOV_DMStructure* structure,
                                                   std::vector<const Rule*>& related) {
    return selectRules(rules, objectType, structure, related, [&attributes](const Rule& rule) {
        return listHoldsAttribute(attributes, rule.getAttribute());
    });
}

template <typename Rule>
bool TOVLifecycleBusinessRules::selectRelatedLinkRules(const std::vector<Rule>& rules,
                                                       const std::string& objectType,
                                                       const std::vector<std::string>& attributes,
                                                       const AttributesMap& fromValues,
                                                       const AttributesMap& toValues,
                                                       const TOV_DMStructure* structure,
                                                       std::vector<const Rule*>& related) {
    return selectRules(rules, objectType, structure, related, [&](const Rule& rule) {
        return listHoldsAttribute(attributes, rule.getAttribute()) &&
               areStringsEqualAccountingAlsoAnyValue(
                   candidateValue(rule.getAttribute(), fromValues, toValues), rule.getToValue());
    });
}

TOVLifecycleBusinessRules::TOVLifecycleBusinessRules() = default;

void TOVLifecycleBusinessRules::setTransitionsFreeze(
    const std::vector<TOVTransitionFreeze>& rules) {
    transitionsFreeze = rules;
}
void TOVLifecycleBusinessRules::setHistoryLinks(const std::vector<TOVHistoryLink>& rules) {
    historyLinks = rules;
}
void TOVLifecycleBusinessRules::setManualLinks(const std::vector<TOVManualLink>& rules) {
    manualLinks = rules;
}
void TOVLifecycleBusinessRules::setTransitions(const std::vector<TOVTransition>& rules) {
    transitions = rules;
}
void TOVLifecycleBusinessRules::setFileConstraints(const std::vector<TOVFileConstraint>& rules) {
    fileConstraints = rules;
}
void TOVLifecycleBusinessRules::setVersioningAttributesSelections(
    const std::vector<TOVVersioningSelection>& rules) {
    versioningSelections = rules;
}
void TOVLifecycleBusinessRules::setConflictsResolutions(
    const std::vector<TOVConflictResolution>& rules) {
    conflictResolutions = rules;
}
void TOVLifecycleBusinessRules::setTriggers(const std::vector<TOVTrigger>& rules) {
    triggers = rules;
}

void TOVLifecycleBusinessRules::appendNewTransitionFreezeRule(const TOVTransitionFreeze& rule) {
    transitionsFreeze.push_back(rule);
}
void TOVLifecycleBusinessRules::appendNewHistoryLinkRule(const TOVHistoryLink& rule) {
    historyLinks.push_back(rule);
}
void TOVLifecycleBusinessRules::appendNewManualLinkRule(const TOVManualLink& rule) {
    manualLinks.push_back(rule);
}
void TOVLifecycleBusinessRules::appendNewTransitionRule(const TOVTransition& rule) {
    transitions.push_back(rule);
}
void TOVLifecycleBusinessRules::appendNewFileConstraintRule(const TOVFileConstraint& rule) {
    fileConstraints.push_back(rule);
}
void TOVLifecycleBusinessRules::appendNewVersioningAttrSelectionRule(
    const TOVVersioningSelection& rule) {
    versioningSelections.push_back(rule);
}
void TOVLifecycleBusinessRules::appendNewConflictResolutionRule(const TOVConflictResolution& rule) {
    conflictResolutions.push_back(rule);
}
void TOVLifecycleBusinessRules::appendNewTriggerRule(const TOVTrigger& rule) {
    triggers.push_back(rule);
}

const std::vector<TOVTransitionFreeze>& TOVLifecycleBusinessRules::getTransitionsFreeze() const {
    return transitionsFreeze;
}
const std::vector<TOVHistoryLink>& TOVLifecycleBusinessRules::getHistoryLinks() const {
    return historyLinks;
}
const std::vector<TOVManualLink>& TOVLifecycleBusinessRules::getManualLinks() const {
    return manualLinks;
}
const std::vector<TOVTransition>& TOVLifecycleBusinessRules::getTransitions() const {
    return transitions;
}
const std::vector<TOVFileConstraint>& TOVLifecycleBusinessRules::getFileConstraints() const {
    return fileConstraints;
}
const std::vector<TOVVersioningSelection>&
TOVLifecycleBusinessRules::getVersioningAttributesSelections() const {
    return versioningSelections;
}
const std::vector<TOVConflictResolution>& TOVLifecycleBusinessRules::getConflictsResolutions()
    const {
    return conflictResolutions;
}
const std::vector<TOVTrigger>& TOVLifecycleBusinessRules::getTriggers() const {
    return triggers;
}

void TOVLifecycleBusinessRules::clearAllRules() {
    transitionsFreeze.clear();
    historyLinks.clear();
    manualLinks.clear();
    transitions.clear();
    fileConstraints.clear();
    versioningSelections.clear();
    conflictResolutions.clear();
    triggers.clear();
}

void TOVLifecycleBusinessRules::sortAllRules() {
    sortRules(transitionsFreeze);
    sortRules(historyLinks);
    sortRules(manualLinks);
    sortRules(transitions);
    sortRules(triggers);
    sortRules(versioningSelections);
    sortRules(conflictResolutions);
    sortRules(fileConstraints);
}

bool TOVLifecycleBusinessRules::existAnyRules() const {
    return !transitionsFreeze.empty() || !historyLinks.empty() || !manualLinks.empty() ||
           !transitions.empty() || !fileConstraints.empty() || !versioningSelections.empty() ||
           !conflictResolutions.empty() || !triggers.empty();
}

bool TOVLifecycleBusinessRules::getRelatedTransitionRules(
    const std::string& objectType, const std::vector<std::string>& attributes,
    const TOV_DMStructure* structure, std::vector<const TOVTransition*>& related) const {
    return selectRelatedRules(transitions, objectType, attributes, structure, related);
}

bool TOVLifecycleBusinessRules::getRelatedTransitionFreezeRules(
    const std::string& objectType, const std::vector<std::string>& attributes,
    const TOV_DMStructure* structure, std::vector<const TOVTransitionFreeze*>& related) const {
    return selectRelatedRules(transitionsFreeze, objectType, attributes, structure, related);
}

bool TOVLifecycleBusinessRules::getRelatedTriggerRules(
    const std::string& objectType, const std::vector<std::string>& attributes,
    const TOV_DMStructure* structure, std::vector<const TOVTrigger*>& related) const {
    return selectRelatedRules(triggers, objectType, attributes, structure, related);
}

bool TOVLifecycleBusinessRules::getRelatedFileConstraintRules(
    const std::string& objectType, const std::vector<std::string>& attributes,
    const TOV_DMStructure* structure, std::vector<const TOVFileConstraint*>& related) const {
    return selectRelatedRules(fileConstraints, objectType, attributes, structure, related);
}

bool TOVLifecycleBusinessRules::getRelatedConflictResolutionRules(
    const std::string& objectType, const std::vector<std::string>& attributes,
    const TOV_DMStructure* structure, std::vector<const TOVConflictResolution*>& related) const {
    return selectRelatedRules(conflictResolutions, objectType, attributes, structure, related);
}

bool TOVLifecycleBusinessRules::getRelatedHistoryLinkRulesExact(
    const std::string& objectType, const std::vector<std::string>& attributes,
    const AttributesMap& fromValues, const AttributesMap& toValues,
    const TOV_DMStructure* structure, std::vector<const TOVHistoryLink*>& related,
    TOVLogger* logger) const {
    const bool found = selectRelatedLinkRules(historyLinks, objectType, attributes, fromValues,
                                              toValues, structure, related);
    printDetailsOfScenarioLookingForRelatedRules("HISTORY RULES LOOKUP", objectType, attributes,
                                                 toValues, static_cast<int>(related.size()),
                                                 logger);
    return found;
}

bool TOVLifecycleBusinessRules::getRelatedManualLinkRulesExact(
    const std::string& objectType, const std::vector<std::string>& attributes,
    const AttributesMap& fromValues, const AttributesMap& toValues,
    const TOV_DMStructure* structure, std::vector<const TOVManualLink*>& related,
    TOVLogger* logger) const {
    const bool found = selectRelatedLinkRules(manualLinks, objectType, attributes, fromValues,
                                              toValues, structure, related);
    printDetailsOfScenarioLookingForRelatedRules("MANUAL RULES LOOKUP", objectType, attributes,
                                                 toValues, static_cast<int>(related.size()),
                                                 logger);
    return found;
}

bool TOVLifecycleBusinessRules::getRelatedVersioningSelectionRulesExact(
    const std::string& objectType, const AttributesMap& packet, const TOV_DMStructure* structure,
    std::vector<const TOVVersioningSelection*>& related) const {
    return selectRules(versioningSelections, objectType, structure, related,
                       [&packet](const TOVVersioningSelection& rule) {
                           return rule.mustSelectVersioningAttributesAccordingToRule(packet);
                       });
}

void TOVLifecycleBusinessRules::printDetailsOfScenarioLookingForRelatedRules(
    const char* heading, const std::string& objectType, const std::vector<std::string>& attributes,
    const AttributesMap& toValues, int count, TOVLogger* logger) const {
    // Without a logger the lookup says nothing, so the text is not built either.
    if (logger == nullptr) {
        return;
    }
    const std::string message =
        std::string("*******") + heading + "********\n" + objectType + " edits " +
        createCommaSeparatedListOfStrings(attributes) +
        ".All target values=" + createCommaSeparatedStringStringMap(toValues) + "..... I found " +
        std::to_string(count) + " related rules.";
    logger->printToLog(message.c_str());
}

void TOVLifecycleBusinessRules::printTransitionsFreezeContentsDBG(TOVLogger* logger) const {
    printRules("----------------TRANSITIONS FREEZE RULES--------------", transitionsFreeze, logger);
}
void TOVLifecycleBusinessRules::printHistoryLinksContentsDBG(TOVLogger* logger) const {
    printRules("---------------HISTORY LINKS RULES ------------------", historyLinks, logger);
}
void TOVLifecycleBusinessRules::printManualLinksContentsDBG(TOVLogger* logger) const {
    printRules("---------------MANUAL LINKS RULES ------------------", manualLinks, logger);
}
void TOVLifecycleBusinessRules::printTransitionContentsDBG(TOVLogger* logger) const {
    printRules("---------------TRANSITION RULES ------------------", transitions, logger);
}
void TOVLifecycleBusinessRules::printTriggerContentsDBG(TOVLogger* logger) const {
    printRules("---------------  TRIGGER RULES ------------------", triggers, logger);
}
void TOVLifecycleBusinessRules::printVersioningAttrSelectionsDBG(TOVLogger* logger) const {
    printRules("--------VERSIONING ATTRIBUTES SELECTION RULES--------", versioningSelections,
               logger);
}
void TOVLifecycleBusinessRules::printConflictResolutionRulesDBG(TOVLogger* logger) const {
    printRules("---------------CONFLICTS RESOLUTIONS RULES---------------", conflictResolutions,
               logger);
}
void TOVLifecycleBusinessRules::printFileConstraintsDBG(TOVLogger* logger) const {
    printRules("----------------------FILE CONSTRAINTS----------------", fileConstraints, logger);
}

void TOVLifecycleBusinessRules::printContentsDBG(TOVLogger* logger) const {
    printTransitionsFreezeContentsDBG(logger);
    printHistoryLinksContentsDBG(logger);
    printManualLinksContentsDBG(logger);
    printTransitionContentsDBG(logger);
    printTriggerContentsDBG(logger);
    printVersioningAttrSelectionsDBG(logger);
    printConflictResolutionRulesDBG(logger);
    printFileConstraintsDBG(logger);
}

namespace {

template <typename Rule>
void appendSentences(const char* kind, const std::vector<Rule>& rules,
                     std::vector<std::pair<std::string, std::string>>& sentences) {
    for (const Rule& rule : rules) {
        std::string sentence;
        rule.expressRuleInWords(sentence);
        sentences.emplace_back(kind, sentence);
    }
}

}  // namespace

std::vector<std::pair<std::string, std::string>> TOVLifecycleBusinessRules::expressRulesInWords()
    const {
    std::vector<std::pair<std::string, std::string>> sentences;
    appendSentences("transition freeze", transitionsFreeze, sentences);
    appendSentences("history link", historyLinks, sentences);
    appendSentences("manual link", manualLinks, sentences);
    appendSentences("transition", transitions, sentences);
    appendSentences("versioning selection", versioningSelections, sentences);
    appendSentences("conflict resolution", conflictResolutions, sentences);
    appendSentences("file constraint", fileConstraints, sentences);
    return sentences;
}

std::vector<TOVTriggerDescription> TOVLifecycleBusinessRules::describeTriggerRules() const {
    std::vector<TOVTriggerDescription> descriptions;
    descriptions.reserve(triggers.size());
    for (const TOVTrigger& rule : triggers) {
        descriptions.push_back({rule.getObjectType(), rule.getAttribute(),
                                rule.getTriggerInitialize(), rule.getInitializationValue()});
    }
    return descriptions;
}

std::set<std::string> TOVLifecycleBusinessRules::collectObjectTypesOfRules() const {
    std::set<std::string> objectTypes;
    // A lambda here shares the store's friendship with the rule classes.
    const auto insertObjectTypes = [&objectTypes](const auto& rules) {
        for (const auto& rule : rules) {
            objectTypes.insert(rule.getObjectType());
        }
    };
    insertObjectTypes(transitionsFreeze);
    insertObjectTypes(historyLinks);
    insertObjectTypes(manualLinks);
    insertObjectTypes(transitions);
    insertObjectTypes(fileConstraints);
    insertObjectTypes(versioningSelections);
    insertObjectTypes(conflictResolutions);
    insertObjectTypes(triggers);
    return objectTypes;
}
