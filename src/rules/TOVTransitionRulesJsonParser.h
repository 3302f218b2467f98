#ifndef TOV_RULES_TOVTRANSITIONRULESJSONPARSER_H_
#define TOV_RULES_TOVTRANSITIONRULESJSONPARSER_H_

#include <string>
#include <vector>

#include "json/json_types.h"
#include "rules/rule_section_parser.h"

class TOVLifecycleBusinessRules;

// Reads the "transitions" section of the rules document into the store.
class TOVTransitionRulesJsonParser : public RuleSectionParser<TOVRuleKind_Transition> {
public:
    ~TOVTransitionRulesJsonParser() override;

    bool readRule(tovjson::Value& ruleObject, std::string& objectType,
                  TOVLifecycleBusinessRules* store) override;

protected:
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

#endif  // TOV_RULES_TOVTRANSITIONRULESJSONPARSER_H_
