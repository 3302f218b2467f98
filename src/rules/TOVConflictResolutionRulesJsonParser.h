#ifndef TOV_RULES_TOVCONFLICTRESOLUTIONRULESJSONPARSER_H_
#define TOV_RULES_TOVCONFLICTRESOLUTIONRULESJSONPARSER_H_

#include <string>
#include <vector>

#include "json/json_types.h"
#include "rules/rule_section_parser.h"

class TOVLifecycleBusinessRules;

// Reads the "conflictResolutions" section of the rules document into the store.
class TOVConflictResolutionRulesJsonParser
    : public RuleSectionParser<TOVRuleKind_ConflictResolution> {
public:
    ~TOVConflictResolutionRulesJsonParser() override;

    bool readRule(tovjson::Value& ruleObject, std::string& objectType,
                  TOVLifecycleBusinessRules* store) override;

protected:
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

#endif  // TOV_RULES_TOVCONFLICTRESOLUTIONRULESJSONPARSER_H_
