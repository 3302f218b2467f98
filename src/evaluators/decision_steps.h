// How the judging tells a decision observer what each rule did. Built once per
// check from the call's core data; with no observer at hand every tell returns
// at once, so that judging costs what it costs without a trace.
#ifndef TOV_EVALUATORS_DECISION_STEPS_H_
#define TOV_EVALUATORS_DECISION_STEPS_H_

#include <cstddef>
#include <string>

#include "rules/rule_kinds.h"
#include "tov/TOVCoreDataControllers.h"
#include "tov/TOVDecisionTrace.h"
#include "tov/TOVLifecycleBusinessRules.h"

class DecisionSteps {
public:
    explicit DecisionSteps(TOVCoreDataControllers* core)
        : observer(core->getDecisionObserver()), store(core->getRules()) {}

    bool observed() const { return observer != nullptr; }

    // `rule` is one the store handed out: its place in the document is found
    // from its place in the store.
    template <typename Rule>
    void tell(const Rule* rule, TOVRuleOutcome outcome, bool decisive = false) const {
        if (observer == nullptr) {
            return;
        }
        constexpr TOVRuleKind kind = rulekinds::kindOf<Rule>();
        const std::size_t index = store->indexOfRule(rule);
        TOVRuleConsultation step{kind, store->documentPositionOfRule(kind, index), std::string(),
                                 outcome, decisive};
        rule->expressRuleInWords(step.words);
        observer->ruleConsulted(step);
    }

private:
    TOVDecisionObserver* observer;
    const TOVLifecycleBusinessRules* store;
};

#endif  // TOV_EVALUATORS_DECISION_STEPS_H_
