// How an evaluator refuses a request because of one rule.
#ifndef TOV_EVALUATORS_RULE_REFUSAL_H_
#define TOV_EVALUATORS_RULE_REFUSAL_H_

#include <string>

#include "tov/TOVResponse.h"

// Fails the response and appends `prefix` followed by the rule in words, so
// that the comment tells the host which rule stood in the way.
template <typename Rule>
void refuseForRule(const char* prefix, const Rule& rule, TOVResponse& response) {
    response.setGeneralResult(false);
    std::string comment = prefix;
    rule.expressRuleInWords(comment);
    response.appendToGeneralResultComment(comment.c_str());
}

#endif  // TOV_EVALUATORS_RULE_REFUSAL_H_
