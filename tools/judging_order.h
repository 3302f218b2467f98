// The order in which the library judges each kind of request, step by step,
// as evaluateRequest of its controllers runs: for help texts, for the README's
// words and for the order of tov explain's groups. A test holds the edit
// chain's order of rule kinds to the library's answers.
#ifndef TOV_TOOLS_JUDGING_ORDER_H_
#define TOV_TOOLS_JUDGING_ORDER_H_

#include <string>
#include <vector>

#include "tov/rule_kinds.h"

namespace tovcli {

// One step: a check that a document is loaded, or the rules of one kind.
struct JudgingStep {
    const char* words;  // "rules loaded", "transition freeze", ...
    bool isRuleKind;
    TOVRuleKind kind;   // when isRuleKind
    const char* aside;  // when the step is left out or what it asks, or ""
};

// An edit or save attempt, in all four flavours.
const std::vector<JudgingStep>& editJudgingSteps();
// A manual link creation request.
const std::vector<JudgingStep>& linkCreationJudgingSteps();
// A conflict resolution options query.
const std::vector<JudgingStep>& optionsJudgingSteps();

// "rules loaded; transition freeze; ...; triggers of an approved attempt",
// each aside in brackets.
std::string stepsInWords(const std::vector<JudgingStep>& steps);

// Every rule kind, in the order in which tov explain groups them: as the edit
// chain judges them, then the kinds that only other requests read.
std::vector<TOVRuleKind> ruleKindsInJudgingOrder();

}  // namespace tovcli

#endif  // TOV_TOOLS_JUDGING_ORDER_H_
