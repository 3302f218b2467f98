#ifndef TOV_RULES_TOVTRANSITIONFREEZERULESJSONPARSER_H_
#define TOV_RULES_TOVTRANSITIONFREEZERULESJSONPARSER_H_

#include <string>
#include <vector>

#include "json/json_types.h"
#include "rules/rule_section_parser.h"

class TOVLifecycleBusinessRules;

// Reads the "transitionsFreeze" section of the rules document into the store.
class TOVTransitionFreezeRulesJsonParser : public RuleSectionParser<TOVRuleKind_TransitionFreeze> {
public:
    ~TOVTransitionFreezeRulesJsonParser() override;

    bool readRule(tovjson::Value& ruleObject, std::string& objectType,
                  TOVLifecycleBusinessRules* store) override;

protected:
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

#endif  // TOV_RULES_TOVTRANSITIONFREEZERULESJSONPARSER_H_
