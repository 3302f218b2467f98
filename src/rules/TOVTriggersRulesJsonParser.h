#ifndef TOV_RULES_TOVTRIGGERSRULESJSONPARSER_H_
#define TOV_RULES_TOVTRIGGERSRULESJSONPARSER_H_

#include <string>
#include <vector>

#include "json/json_types.h"
#include "rules/rule_section_parser.h"

class TOVLifecycleBusinessRules;

// Reads the "triggers" section of the rules document into the store.
class TOVTriggersRulesJsonParser : public RuleSectionParser<TOVRuleKind_Trigger> {
public:
    ~TOVTriggersRulesJsonParser() override;

    bool readRule(tovjson::Value& ruleObject, std::string& objectType,
                  TOVLifecycleBusinessRules* store) override;

protected:
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

#endif  // TOV_RULES_TOVTRIGGERSRULESJSONPARSER_H_
