#ifndef TOV_RULES_TOVLINKRULESJSONPARSERS_H_
#define TOV_RULES_TOVLINKRULESJSONPARSERS_H_

#include <string>
#include <vector>

#include "json/json_types.h"
#include "rules/rule_section_parser.h"

class TOVLifecycleBusinessRules;

// Reads one rule object of either link section; shared by the two parsers.
template <typename Parser>
struct LinkRuleReader;

// Reads the "historyLinks" section of the rules document into the store.
class TOVHistoryLinkRulesJsonParser : public RuleSectionParser<TOVRuleKind_HistoryLink> {
    friend struct LinkRuleReader<TOVHistoryLinkRulesJsonParser>;

public:
    ~TOVHistoryLinkRulesJsonParser() override;

    bool readRule(tovjson::Value& ruleObject, std::string& objectType,
                  TOVLifecycleBusinessRules* store) override;

protected:
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

// Reads the "manualLinks" section of the rules document into the store.
class TOVManualLinkRulesJsonParser : public RuleSectionParser<TOVRuleKind_ManualLink> {
    friend struct LinkRuleReader<TOVManualLinkRulesJsonParser>;

public:
    ~TOVManualLinkRulesJsonParser() override;

    bool readRule(tovjson::Value& ruleObject, std::string& objectType,
                  TOVLifecycleBusinessRules* store) override;

protected:
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

#endif  // TOV_RULES_TOVLINKRULESJSONPARSERS_H_
