#ifndef TOV_RULES_TOVTRANSITIONRULESJSONPARSER_H_
#define TOV_RULES_TOVTRANSITIONRULESJSONPARSER_H_

#include <cstddef>
#include <string>
#include <vector>

#include "json/json_types.h"
#include "rules/rule_section_parser.h"

class TOVLifecycleBusinessRules;

// Reads the "transitions" section of the rules document into the store. A
// section holds most of a large document's rules, so they are read from the
// document's events as they stream by; a rule object already built is read
// by the same events.
class TOVTransitionRulesJsonParser : public RuleSectionParser<TOVRuleKind_Transition> {
public:
    TOVTransitionRulesJsonParser();
    ~TOVTransitionRulesJsonParser() override;

    bool readRule(tovjson::Value& ruleObject, std::string& objectType,
                  TOVLifecycleBusinessRules* store) override;
    RuleEventReader* ruleEvents() override { return &events; }

protected:
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;

private:
    // One rule object's members in document order: the first that fails
    // decides the rule's fault, and what comes after it is not looked at.
    class RuleEvents : public RuleEventReader {
    public:
        explicit RuleEvents(TOVTransitionRulesJsonParser& parser) : parser(parser) {}

        void open(rapidjson::Type containerType) override;
        void key(const char* name, std::size_t length) override;
        void close() override;
        void scalar(rapidjson::Type type) override;
        void string(const char* text, std::size_t length) override;
        bool finish(std::string& objectType, TOVLifecycleBusinessRules* store) override;

    private:
        // The member whose value comes next, among those the rule reads.
        enum class Member { kOther, kAttribute, kFromValue, kToValue };

        // The value of the member being read is of the wrong type.
        void fail();

        TOVTransitionRulesJsonParser& parser;
        // Containers open, the rule object's own included.
        std::size_t depth = 0;
        Member member = Member::kOther;
        // Inside the list of "toValue", whose elements must be strings.
        bool inToValues = false;
        // The name of the member whose value failed, or null.
        const char* failedMember = nullptr;
        std::string attribute;
        std::string fromValue;
        std::vector<std::string> toValues;
    };

    RuleEvents events;
};

#endif  // TOV_RULES_TOVTRANSITIONRULESJSONPARSER_H_
