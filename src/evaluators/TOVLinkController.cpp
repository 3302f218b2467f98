#include "tov/TOVLinkController.h"

#include <utility>
#include <vector>

#include "evaluators/TOVLinkCreationParser.h"
#include "evaluators/decision_steps.h"
#include "evaluators/rule_refusal.h"
#include "frame/input_labels.h"
#include "frame/request_parsing.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVManualLink.h"
#include "tov/string_helpers.h"

TOVLinkController::TOVLinkController(const std::map<std::string, std::string>& labeledInput,
                                     TOVCoreDataControllers* coreData)
    : TOVLinkController(std::map<std::string, std::string>(labeledInput), coreData) {}

TOVLinkController::TOVLinkController(std::map<std::string, std::string>&& labeledInput,
                                     TOVCoreDataControllers* coreData)
    : TOVActionController(TOVFunctionality_ManualLinkCreation, std::move(labeledInput), coreData) {}

TOVLinkController::~TOVLinkController() = default;

std::string TOVLinkController::getInputDataLabelIndentifierForLinkCreationData() {
    return kLabelLinkCreationData;
}

std::string TOVLinkController::getInputDataLabelIdentifierForJsonFilepath() {
    return kLabelInputIsFilepath;
}

bool TOVLinkController::isInputDataSufficient() {
    return hasNonEmptyInputWithThisLabel(getInputDataLabelIndentifierForLinkCreationData());
}

bool TOVLinkController::parseInputData(TOVResponse& response) {
    const std::string& input =
        getInputWithThisLabel(getInputDataLabelIndentifierForLinkCreationData());

    TOVLinkCreationParser parser;
    const bool parsed = parseRequestOrRefuse(parser, input, isInputAJsonFilePath(), response);
    // Through the setters, also after a fault, so that the controller holds
    // what the parse read.
    LinkCreationRequest request = parser.takeRequest();
    setTypeOfAncestor(request.ancestorType);
    setAttributesOfAncestor(std::move(request.ancestorAttributes));
    setTypeOfDescendant(request.descendantType);
    setAttributesOfDescendant(std::move(request.descendantAttributes));
    return parsed;
}

bool TOVLinkController::evaluateRequest(TOVResponse& response) {
    if (foundUninitializedRulesViolation(response)) {
        return false;
    }
    if (foundManualLinkRuleViolation(response)) {
        return false;
    }
    updateResponseOnSuccess(response);
    return true;
}

bool TOVLinkController::foundManualLinkRuleViolation(TOVResponse& response) {
    TOVManualLink violated;
    if (!getFirstManualLinkRuleViolation(violated)) {
        return false;
    }
    // Unlike an edit, the refusal has no opening: the rule's words alone.
    refuseForRule("", violated, response);
    return true;
}

bool TOVLinkController::getFirstManualLinkRuleViolation(TOVManualLink& violated) {
    // The descendant's attributes serve as the target values over empty initial
    // values, so that every attribute it has can bring a rule into force.
    const std::vector<std::string> keys = getKeysOfMap(attributesOfDescendant);
    std::vector<const TOVManualLink*> related;
    getLifecycleBusinessRules()->getRelatedManualLinkRulesExact(
        typeOfDescendant, keys, AttributesMap(), attributesOfDescendant, getLifecycleDMInfo(),
        related, getLifecycleLogger());

    const std::vector<AttributesMap> ancestors{attributesOfAncestor};
    const DecisionSteps steps(getCoreData());
    for (const TOVManualLink* rule : related) {
        AttributesMap offending;
        if (rule->foundManualAncestorViolatingRule(ancestors, offending)) {
            steps.tell(rule, TOVRuleOutcome_Objected, true);
            violated = *rule;
            return true;
        }
        steps.tell(rule, TOVRuleOutcome_Approved);
    }
    return false;
}

void TOVLinkController::updateResponseOnSuccess(TOVResponse& response) {
    response.setGeneralResult(true);
    response.setGeneralResultComment("Manual Link creation approved");
}
