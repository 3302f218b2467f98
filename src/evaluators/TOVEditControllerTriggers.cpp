// The last step of an approved edit: which attributes the host must initialize
// because of what this edit changed. Kept apart from the checks, since nothing
// here can refuse the attempt.
#include <set>
#include <string>
#include <vector>

#include "evaluators/decision_steps.h"
#include "tov/TOVEditController.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVLogger.h"
#include "tov/TOVResponse.h"
#include "tov/TOVSpinupOptionsFinder.h"
#include "tov/TOVTrigger.h"
#include "tov/TOV_DMStructure.h"
#include "tov/string_helpers.h"

bool TOVEditController::checkForTOVTriggeredHandling(TOVResponse& response) {
    // Without trigger rules nothing can be triggered, and nothing is looked up.
    if (getLifecycleBusinessRules()->countRules(TOVRuleKind_Trigger) == 0) {
        return false;
    }
    // A rule is chosen by its watched attribute changing, whatever the new value.
    std::vector<const TOVTrigger*> rules;
    getLifecycleBusinessRules()->getRelatedTriggerRules(objectType, getAttributesToEdit(),
                                                        getLifecycleDMInfo(), rules);
    const DecisionSteps steps(getCoreData());
    AttributesMap triggered;
    bool anyTriggered = false;
    for (const TOVTrigger* rule : rules) {
        std::string name = rule->getTriggerInitialize();
        if (rule->isAbstractVersioningReinitializationRule() &&
            !narrowDownVersioningAttributeToTrigger(name)) {
            // The host still learns that some versioning attribute needs it.
            getLifecycleLogger()->printToLog(
                "Failed to determine abstract versioning attribute to trigger initialization for");
        }
        const std::string value = rule->getInitializationValue();
        std::string editedValue;
        // Exact comparison: a value in another case still needs initializing.
        if (getToValueOfAttribute(name, editedValue) && editedValue == value) {
            steps.tell(rule, TOVRuleOutcome_NotApplicable);
            continue;
        }
        steps.tell(rule, TOVRuleOutcome_Approved);
        triggered[name] = value;  // of two rules on one name, the later wins
        anyTriggered = true;
    }
    if (anyTriggered) {
        markResponseWithTriggerInitialization(response, triggered);
    }
    return anyTriggered;
}

namespace {

// Passes the steps of the options asked on the way to a trigger on, none of
// them decisive: their words never stand in the edit's comment.
class StepsOnTheWay : public TOVDecisionObserver {
public:
    explicit StepsOnTheWay(TOVDecisionObserver* outer) : outer(outer) {}
    void ruleConsulted(const TOVRuleConsultation& step) override {
        TOVRuleConsultation onTheWay = step;
        onTheWay.decisive = false;
        outer->ruleConsulted(onTheWay);
    }

private:
    TOVDecisionObserver* outer;
};

}  // namespace

bool TOVEditController::narrowDownVersioningAttributeToTrigger(std::string& name) {
    // The proper versioning attribute is that of the state after the edit.
    AttributesMap afterEdit = fromValues;
    for (const auto& entry : toValues) {
        afterEdit[entry.first] = entry.second;
    }
    TOVCoreDataControllers core;
    core.borrowData(getCoreData());
    StepsOnTheWay onTheWay(core.getDecisionObserver());
    if (core.getDecisionObserver() != nullptr) {
        core.setDecisionObserver(&onTheWay);
    }
    TOVSpinupOptionsFinder finder(objectType, fromValues, afterEdit, &core);
    TOVResponse options;
    std::set<std::string> proper;
    if (!finder.evaluateRequest(options)) {
        options.collectConflictResolutionOptions(proper);
    }
    if (proper.empty()) {
        return false;
    }
    // Overwriting is a way to resolve a conflict, not an attribute to initialize.
    proper.erase(getLifecycleDMInfo()->getOverwriteLabel());
    if (proper.empty()) {
        return false;
    }
    name = proper.size() == 1 ? *proper.begin() : createCommaSeparatedSetOfStrings(proper);
    return true;
}

void TOVEditController::markResponseWithTriggerInitialization(TOVResponse& response,
                                                              const AttributesMap& triggered) {
    response.setAttrToTriggerInitialization(triggered);
}
