#include "tov/TOVEditController.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "evaluators/TOVTransitionJsonParsers.h"
#include "evaluators/decision_steps.h"
#include "evaluators/rule_refusal.h"
#include "foundation/log_reading.h"
#include "foundation/name_index.h"
#include "frame/input_labels.h"
#include "frame/request_parsing.h"
#include "tov/TOVConflictResolution.h"
#include "tov/TOVFileConstraint.h"
#include "tov/TOVHistoryLink.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVManualLink.h"
#include "tov/TOVTransition.h"
#include "tov/TOVTransitionFreeze.h"
#include "tov/TOV_DMStructure.h"
#include "tov/attribute_packets.h"
#include "tov/string_helpers.h"

TOVEditController::TOVEditController(const std::map<std::string, std::string>& labeledInput,
                                     TOVCoreDataControllers* coreData, bool updatingReprFile,
                                     bool ignoreConflictResolutionErrors)
    : TOVEditController(std::map<std::string, std::string>(labeledInput), coreData,
                        updatingReprFile, ignoreConflictResolutionErrors) {}

TOVEditController::TOVEditController(std::map<std::string, std::string>&& labeledInput,
                                     TOVCoreDataControllers* coreData, bool updatingReprFile,
                                     bool ignoreConflictResolutionErrors)
    // The flavour lives in the two bools; the base always hears "edit attempt".
    : TOVActionController(TOVFunctionality_EditAttempt, std::move(labeledInput), coreData),
      updatingReprFile(updatingReprFile),
      historyLinksDataProvided(false),
      manualLinkAncestorsDataProvided(false),
      ignoreConflictResolutionErrors(ignoreConflictResolutionErrors),
      attributesToEditCalculated(false),
      editsPropertiesForFamilyDetectionCalculated(false),
      editsPropertiesUsedForFamilyDetection(false),
      allAttributeNamesCalculated(false) {}

TOVEditController::~TOVEditController() = default;

std::string TOVEditController::getInputDataLabelIdentifierForTransitionData() {
    return kLabelTransitionData;
}

std::string TOVEditController::getInputDataLabelIdentifierForJsonFilepath() {
    return kLabelInputIsFilepath;
}

namespace {

// The request moves in through the setters, also after a fault, so that the
// controller holds what the parse read.
void takeOver(EditRequest&& request, TOVEditController& controller) {
    controller.setObjectType(request.objectType);
    controller.setFromValues(std::move(request.initialAttributes));
    controller.setToValues(std::move(request.targetAttributes));
    controller.setHistoryLinksDataHaveBeenProvided(request.familyMembers.has_value());
    if (request.familyMembers) {
        controller.setHistoryLinks(std::move(*request.familyMembers));
    }
    controller.setManualLinkAncestorsDataHaveBeenProvided(request.manualLinkAncestors.has_value());
    if (request.manualLinkAncestors) {
        controller.setManualLinkAncestors(std::move(*request.manualLinkAncestors));
    }
}

}  // namespace

// --- Accessors ---

bool TOVEditController::getFromValueOfAttribute(const std::string& name, std::string& value) const {
    return getValueofKeywordFromStringStringMap(name, fromValues, value);
}

bool TOVEditController::getFromValueOfAttribute(const char* name, std::string& value) const {
    return name != nullptr && getFromValueOfAttribute(std::string(name), value);
}

bool TOVEditController::getToValueOfAttribute(const std::string& name, std::string& value) const {
    return getValueofKeywordFromStringStringMap(name, toValues, value);
}

bool TOVEditController::getToValueOfAttribute(const char* name, std::string& value) const {
    return name != nullptr && getToValueOfAttribute(std::string(name), value);
}

const std::vector<std::string>& TOVEditController::getAttributesToEdit() {
    if (!attributesToEditCalculated) {
        calculateAttributesToEdit();
    }
    return attributesToEdit;
}

const std::vector<std::string>& TOVEditController::getAllAttributeNames() {
    if (!allAttributeNamesCalculated) {
        calculateAllAttributeNames();
    }
    return allAttributeNames;
}

// --- Input ---

namespace {

// getInputDataLabelIdentifierForTransitionData, built once: the label is
// longer than a string holds without the heap, and every edit asks twice.
const std::string& transitionDataLabel() {
    static const std::string label =
        TOVEditController::getInputDataLabelIdentifierForTransitionData();
    return label;
}

}  // namespace

bool TOVEditController::isInputDataSufficient() {
    return hasNonEmptyInputWithThisLabel(transitionDataLabel());
}

bool TOVEditController::parseInputData(TOVResponse& response) {
    const std::string& input = getInputWithThisLabel(transitionDataLabel());

    TOVTransitionJsonParser parser;
    const bool parsed = parseRequestOrRefuse(parser, input, isInputAJsonFilePath(), response);
    takeOver(parser.takeRequest(), *this);
    if (!parsed) {
        return false;
    }
    postProcessTheParsedData();
    return true;
}

// The order matters: the edits are taken from the raw packets, before the
// target shrinks to them and gains the file-upload word.
void TOVEditController::postProcessTheParsedData() {
    if (!attributesToEditCalculated) {
        calculateAttributesToEdit();
    }
    sanitizeToValues();
    updateToValuesWithTheRepresentationFileUpdate();
}

void TOVEditController::calculateAttributesToEdit() {
    // "<any>" is an ordinary value here: the host states real values.
    getWhichKeysHaveDifferentValuesInPackets(fromValues, toValues, false, attributesToEdit);
    attributesToEditCalculated = true;
}

void TOVEditController::calculateAllAttributeNames() {
    // A new object has no initial packet; its target names every attribute.
    allAttributeNames = getKeysOfMap(fromValues.empty() ? toValues : fromValues);
    allAttributeNamesCalculated = true;
}

void TOVEditController::sanitizeToValues() {
    // Without an initial packet every target attribute is new, so all stay.
    if (fromValues.empty()) {
        return;
    }
    // The attributes that stay are dropped in place: the changing ones keep
    // their entries rather than being copied into a new packet.
    const std::vector<std::string>& edited = getAttributesToEdit();
    for (auto entry = toValues.begin(); entry != toValues.end();) {
        const bool changes = std::find(edited.begin(), edited.end(), entry->first) != edited.end();
        entry = changes ? std::next(entry) : toValues.erase(entry);
    }
}

void TOVEditController::updateToValuesWithTheRepresentationFileUpdate() {
    // The file constraint and conflict resolution rules read the difference
    // between an edit and a save from this word.
    setThisPacketFileUpdatingValue(toValues, updatingReprFile);
}

// --- Family detection ---

bool TOVEditController::editsPropertiesUsedForObjectFamilyDetection() {
    if (!editsPropertiesForFamilyDetectionCalculated) {
        calculateEditsPropertiesUsedForFamilyDetection();
    }
    return editsPropertiesUsedForFamilyDetection;
}

void TOVEditController::calculateEditsPropertiesUsedForFamilyDetection() {
    std::vector<std::string> familyProperties;
    // An object type the data model does not know leaves the list empty.
    getLifecycleDMInfo()->collectAttrsForObjectFamilyDetection(objectType, familyProperties);
    editsPropertiesUsedForFamilyDetection =
        calculateEditsPropertiesUsedForFamilyDetectionCore(familyProperties);
    editsPropertiesForFamilyDetectionCalculated = true;
}

bool TOVEditController::calculateEditsPropertiesUsedForFamilyDetectionCore(
    const std::vector<std::string>& familyProperties) {
    for (const std::string& name : getAttributesToEdit()) {
        if (std::find(familyProperties.begin(), familyProperties.end(), name) !=
            familyProperties.end()) {
            return true;
        }
    }
    return false;
}

// --- The chain ---

namespace {

// A kind without any rule relates none to an edit: its check needs neither
// the lookup nor what the lookup is given, such as the list of names.
bool holdsNoRules(const TOVLifecycleBusinessRules* store, TOVRuleKind kind) {
    return store->countRules(kind) == 0;
}

}  // namespace

bool TOVEditController::evaluateRequest(TOVResponse& response) {
    if (foundUninitializedRulesViolation(response)) {
        return false;
    }
    if (foundTransitionFreezeRuleViolation(response)) {
        return false;
    }
    if (foundTransitionRuleViolation(response)) {
        return false;
    }
    if (foundFileConstraintViolation(response)) {
        return false;
    }
    // Only here: the rule checks above can judge by object type names alone.
    if (foundUninitializedDMInfoViolation(response)) {
        return false;
    }
    if (foundConflictResolutionViolation(response)) {
        return false;
    }

    // Missing family data do not stop the chain, so that one answer asks for
    // everything a re-evaluation needs.
    bool approvedSoFar = true;
    if (foundHistoryLinkViolation(response)) {
        approvedSoFar = false;
        if (!isResponseMarkedWithHistoryLinkMissingData(response)) {
            return false;
        }
    }
    if (foundManualLinkViolation(response)) {
        return isResponseMarkedWithManualLinkMissingData(response);
    }
    if (!approvedSoFar) {
        return true;
    }

    // Triggers never decide the attempt; they only advise the host.
    checkForTOVTriggeredHandling(response);
    updateResponseOnSuccess(response);
    return true;
}

bool TOVEditController::foundTransitionFreezeRuleViolation(TOVResponse& response) {
    if (holdsNoRules(getLifecycleBusinessRules(), TOVRuleKind_TransitionFreeze)) {
        return false;
    }
    TOVTransitionFreeze violated;
    if (!getLastTransitionFreezeRuleViolation(violated)) {
        return false;
    }
    refuseForRule("Transition freeze violation detected: ", violated, response);
    return true;
}

bool TOVEditController::foundTransitionRuleViolation(TOVResponse& response) {
    if (holdsNoRules(getLifecycleBusinessRules(), TOVRuleKind_Transition)) {
        return false;
    }
    TOVTransition violated;
    if (!getFirstTransitionRuleViolation(violated)) {
        return false;
    }
    refuseForRule("Transition violation detected: ", violated, response);
    return true;
}

bool TOVEditController::foundFileConstraintViolation(TOVResponse& response) {
    if (holdsNoRules(getLifecycleBusinessRules(), TOVRuleKind_FileConstraint)) {
        return false;
    }
    TOVFileConstraint violated;
    if (!getFirstFileConstraintRuleViolation(violated)) {
        return false;
    }
    refuseForRule("File constraint violation detected: ", violated, response);
    return true;
}

bool TOVEditController::foundConflictResolutionViolation(TOVResponse& response) {
    if (holdsNoRules(getLifecycleBusinessRules(), TOVRuleKind_ConflictResolution)) {
        return false;
    }
    if (!shouldCheckForConflictResolutionViolations()) {
        return false;
    }
    TOVConflictResolution violated;
    if (!getFirstConflictResolutionViolation(violated)) {
        return false;
    }
    refuseForRule("Conflict resolution violation detected: ", violated, response);
    return true;
}

bool TOVEditController::getLastTransitionFreezeRuleViolation(TOVTransitionFreeze& violated) {
    const std::vector<std::string>& edited = getAttributesToEdit();
    std::vector<const TOVTransitionFreeze*> related;
    getLifecycleBusinessRules()->getRelatedTransitionFreezeRules(objectType, edited,
                                                                 getLifecycleDMInfo(), related);
    // The walk goes on after a find, so the comment tells the rule of the last
    // frozen attribute; freezing depends on the values before the edit only.
    const DecisionSteps steps(getCoreData());
    std::vector<std::pair<const TOVTransitionFreeze*, bool>> consulted;  // (rule, froze)
    bool found = false;
    for (const std::string& name : edited) {
        for (const TOVTransitionFreeze* rule : related) {
            if (rule->shouldPackageBeFrozen(name, fromValues)) {
                violated = *rule;
                found = true;
                if (steps.observed()) {
                    consulted.emplace_back(rule, true);
                }
                break;
            }
            if (steps.observed() && rule->concernsAttribute(name)) {
                consulted.emplace_back(rule, false);
            }
        }
    }
    // Told once the walk is done, since only then is it known which find
    // stands in the comment: the last.
    std::size_t decisive = consulted.size();
    for (std::size_t i = 0; i < consulted.size(); ++i) {
        decisive = consulted[i].second ? i : decisive;
    }
    for (std::size_t i = 0; i < consulted.size(); ++i) {
        steps.tell(consulted[i].first,
                   consulted[i].second ? TOVRuleOutcome_Objected : TOVRuleOutcome_NotApplicable,
                   i == decisive);
    }
    return found;
}

bool TOVEditController::getFirstTransitionRuleViolation(TOVTransition& violated) {
    const DecisionSteps steps(getCoreData());
    if (!steps.observed()) {
        return getFirstTransitionRuleViolationUntold(violated);
    }
    std::vector<const TOVTransition*> related;
    getLifecycleBusinessRules()->getRelatedTransitionRules(objectType, getAllAttributeNames(),
                                                           getLifecycleDMInfo(), related);
    for (const TOVTransition* rule : related) {
        if (shouldIgnoreTransitionRule(*rule)) {
            steps.tell(rule, TOVRuleOutcome_NotApplicable);
            continue;
        }
        if (rule->shouldTransitionBeForbidden(fromValues, toValues)) {
            steps.tell(rule, TOVRuleOutcome_Objected, true);
            violated = *rule;
            return true;
        }
        if (steps.observed()) {
            steps.tell(rule, rule->appliesTo(fromValues) ? TOVRuleOutcome_Approved
                                                         : TOVRuleOutcome_NotApplicable);
        }
    }
    return false;
}

// The same walk when no observer hears the rules: the rules are taken by
// object type, and each finds its attribute in one hash of the packets. A rule
// whose attribute the initial packet lacks is passed over, as it would be
// either way: the lookup by the object's attribute names leaves it out, or it
// does not bind. So an object without an initial packet meets no rule at all.
bool TOVEditController::getFirstTransitionRuleViolationUntold(TOVTransition& violated) {
    if (fromValues.empty()) {
        return false;
    }
    std::vector<const TOVTransition*> candidates;
    if (!getLifecycleBusinessRules()->getTransitionRulesOfObjectType(
            objectType, getLifecycleDMInfo(), candidates)) {
        return false;
    }
    NameIndex names(fromValues.size());
    // (initial, target) at each place of the index; a usual packet's fit here.
    using Values = std::pair<const std::string*, const std::string*>;
    std::array<Values, 32> valuesInPlace;
    std::vector<Values> valuesOnHeap;
    Values* values = valuesInPlace.data();
    if (fromValues.size() > valuesInPlace.size()) {
        valuesOnHeap.resize(fromValues.size());
        values = valuesOnHeap.data();
    }
    std::size_t added = 0;
    for (const auto& entry : fromValues) {
        names.add(entry.first);
        values[added++] = Values(&entry.second, nullptr);
    }
    for (const auto& entry : toValues) {
        const std::size_t place = names.find(entry.first);
        if (place != NameIndex::npos) {
            values[place].second = &entry.second;
        }
    }
    for (const TOVTransition* rule : candidates) {
        const std::size_t place = names.find(rule->getAttribute());
        if (place == NameIndex::npos) {
            continue;
        }
        // Whether to ignore the rule is asked only of a rule that forbids:
        // both questions are pure, and most rules forbid nothing.
        if (rule->shouldTransitionBeForbiddenFrom(values[place].first, values[place].second) &&
            !shouldIgnoreTransitionRule(*rule)) {
            violated = *rule;
            return true;
        }
    }
    return false;
}

bool TOVEditController::getFirstFileConstraintRuleViolation(TOVFileConstraint& violated) {
    std::vector<const TOVFileConstraint*> related;
    getLifecycleBusinessRules()->getRelatedFileConstraintRules(objectType, getAllAttributeNames(),
                                                               getLifecycleDMInfo(), related);
    const DecisionSteps steps(getCoreData());
    for (const TOVFileConstraint* rule : related) {
        if (rule->shouldTransitionBeForbidden(fromValues, toValues)) {
            steps.tell(rule, TOVRuleOutcome_Objected, true);
            violated = *rule;
            return true;
        }
        if (steps.observed()) {
            steps.tell(rule, rule->appliesTo(fromValues, toValues) ? TOVRuleOutcome_Approved
                                                                   : TOVRuleOutcome_NotApplicable);
        }
    }
    return false;
}

bool TOVEditController::getFirstConflictResolutionViolation(TOVConflictResolution& violated) {
    std::vector<const TOVConflictResolution*> related;
    getLifecycleBusinessRules()->getRelatedConflictResolutionRules(
        objectType, getAllAttributeNames(), getLifecycleDMInfo(), related);
    // An unknown object type has no versioning attributes: every edit then
    // counts as an overwrite.
    std::vector<std::string> versioningAttributes;
    getLifecycleDMInfo()->collectVersioningAttributesOfObject(objectType, versioningAttributes);
    const DecisionSteps steps(getCoreData());
    for (const TOVConflictResolution* rule : related) {
        if (rule->shouldTransitionBeForbidden(fromValues, toValues, versioningAttributes)) {
            steps.tell(rule, TOVRuleOutcome_Objected, true);
            violated = *rule;
            return true;
        }
        if (steps.observed()) {
            steps.tell(rule, rule->appliesTo(fromValues, toValues) ? TOVRuleOutcome_Approved
                                                                   : TOVRuleOutcome_NotApplicable);
        }
    }
    return false;
}

bool TOVEditController::shouldIgnoreTransitionRule(const TOVTransition& rule) {
    // Moving an object to another family is not held to the rules on its
    // secondary attributes.
    return editsPropertiesUsedForObjectFamilyDetection() &&
           rule.constrainsSecondaryAttribute(objectType, getLifecycleDMInfo());
}

bool TOVEditController::shouldCheckForConflictResolutionViolations() {
    if (shouldIgnoreConflictResolutionErrors()) {
        return false;
    }
    return !editsPropertiesUsedForObjectFamilyDetection();
}

// --- Link checks ---

namespace {

// "<heading>No entries provided to check rule:<rule>" when the linked objects
// were left out, else "<heading>Entry with server id "<id>" violates rule:<rule>".
template <typename Rule>
void composeLinkViolationComment(const char* heading, const Rule& rule,
                                 const AttributesMap& offendingEntry, bool missingData,
                                 std::string& comment) {
    comment = heading;
    if (missingData) {
        comment += "No entries provided to check rule:";
    } else {
        comment += "Entry with server id ";
        comment += createStringInQuotes(getTOVServerIdFromAttributesMap(offendingEntry).c_str());
        comment += " violates rule:";
    }
    rule.expressRuleInWords(comment);
}

// What tells the two link checks apart, besides their lookup: the rule
// class, the opening of the refusal and the keyword that asks for the
// linked objects when the request left them out.
struct HistoryLinkCheck {
    using Rule = TOVHistoryLink;
    static constexpr const char* kHeading = "History Link violation detected.";
    static const char* missingDataKeyword() { return TOVResponseKeyword_ObjectFamilyMembers; }
};

struct ManualLinkCheck {
    using Rule = TOVManualLink;
    static constexpr const char* kHeading = "Manual Ancestor Link violation detected.";
    static const char* missingDataKeyword() { return TOVResponseKeyword_ManualAncestors; }
};

// The one body of both link checks. `getFirstViolation(violated,
// offendingEntry, missingData)` is the kind's lookup.
template <typename Check, typename GetFirstViolation>
bool foundLinkViolation(GetFirstViolation&& getFirstViolation, TOVResponse& response) {
    typename Check::Rule violated;
    AttributesMap offendingEntry;
    bool missingData = false;
    if (!getFirstViolation(violated, offendingEntry, missingData)) {
        return false;
    }
    response.setGeneralResult(false);
    std::string comment;
    composeLinkViolationComment(Check::kHeading, violated, offendingEntry, missingData, comment);
    response.appendToGeneralResultComment(comment.c_str());
    if (missingData) {
        response.setThisKeywordToReportMissingData(Check::missingDataKeyword());
    }
    return true;
}

// Without the linked objects the first related rule objects, since none can be
// cleared; with them, the first rule that `violates` one of them.
template <typename Rule, typename Violates>
bool selectFirstLinkViolation(const std::vector<const Rule*>& related, bool linkedObjectsProvided,
                              Violates&& violates, const DecisionSteps& steps, Rule& violated,
                              bool& missingData) {
    if (related.empty()) {
        return false;
    }
    if (!linkedObjectsProvided) {
        steps.tell(related.front(), TOVRuleOutcome_AskedForMissingData, true);
        violated = *related.front();
        missingData = true;
        return true;
    }
    for (const Rule* rule : related) {
        if (violates(*rule)) {
            steps.tell(rule, TOVRuleOutcome_Objected, true);
            violated = *rule;
            return true;
        }
        steps.tell(rule, TOVRuleOutcome_Approved);
    }
    return false;
}

}  // namespace

bool TOVEditController::foundHistoryLinkViolation(TOVResponse& response) {
    return foundLinkViolation<HistoryLinkCheck>(
        [this](TOVHistoryLink& violated, AttributesMap& offendingEntry, bool& missingData) {
            return getFirstHistoryLinkRuleViolation(violated, offendingEntry, missingData);
        },
        response);
}

bool TOVEditController::foundManualLinkViolation(TOVResponse& response) {
    return foundLinkViolation<ManualLinkCheck>(
        [this](TOVManualLink& violated, AttributesMap& offendingEntry, bool& missingData) {
            return getFirstManualLinkRuleViolation(violated, offendingEntry, missingData);
        },
        response);
}

bool TOVEditController::getFirstHistoryLinkRuleViolation(TOVHistoryLink& violated,
                                                         AttributesMap& offendingEntry,
                                                         bool& missingData) {
    // The lookup logs what it looked for, so it is skipped only unheard.
    if (holdsNoRules(getLifecycleBusinessRules(), TOVRuleKind_HistoryLink) &&
        !isLogRead(getLifecycleLogger())) {
        return false;
    }
    // Looked up by every attribute of the object: a family rule holds whenever
    // the object stands on the rule's value, whether or not this edit put it there.
    std::vector<const TOVHistoryLink*> related;
    getLifecycleBusinessRules()->getRelatedHistoryLinkRulesExact(
        objectType, getAllAttributeNames(), fromValues, toValues, getLifecycleDMInfo(), related,
        getLifecycleLogger());
    const auto violates = [this, &offendingEntry](const TOVHistoryLink& rule) {
        return rule.foundHistoryLinkObjectViolatingRule(historyLinks, offendingEntry);
    };
    return selectFirstLinkViolation(related, historyLinksDataProvided, violates,
                                    DecisionSteps(getCoreData()), violated, missingData);
}

bool TOVEditController::getFirstManualLinkRuleViolation(TOVManualLink& violated,
                                                        AttributesMap& offendingEntry,
                                                        bool& missingData) {
    // As for the history links: the lookup logs.
    if (holdsNoRules(getLifecycleBusinessRules(), TOVRuleKind_ManualLink) &&
        !isLogRead(getLifecycleLogger())) {
        return false;
    }
    // Looked up by the edited attributes only: a manual link rule judges the
    // step onto its value, not an object that already stands there.
    std::vector<const TOVManualLink*> related;
    getLifecycleBusinessRules()->getRelatedManualLinkRulesExact(
        objectType, getAttributesToEdit(), fromValues, toValues, getLifecycleDMInfo(), related,
        getLifecycleLogger());
    const auto violates = [this, &offendingEntry](const TOVManualLink& rule) {
        return rule.foundManualAncestorViolatingRule(manualLinkAncestors, offendingEntry);
    };
    return selectFirstLinkViolation(related, manualLinkAncestorsDataProvided, violates,
                                    DecisionSteps(getCoreData()), violated, missingData);
}

bool TOVEditController::isResponseMarkedWithHistoryLinkMissingData(const TOVResponse& response) {
    return response.doesThisKeywordReportMissingData(TOVResponseKeyword_ObjectFamilyMembers);
}

bool TOVEditController::isResponseMarkedWithManualLinkMissingData(const TOVResponse& response) {
    return response.doesThisKeywordReportMissingData(TOVResponseKeyword_ManualAncestors);
}

// --- Approval ---

void TOVEditController::updateResponseOnSuccess(TOVResponse& response) {
    response.setGeneralResult(true);
    response.setGeneralResultComment(updatingReprFile ? "Save attempt approved"
                                                      : "Edit attempt approved");
}
