// What the eight section parsers of the rules document share: their kind,
// which decides the key of the section they read and the name that their
// messages give a rule.
#ifndef TOV_RULES_RULE_SECTION_PARSER_H_
#define TOV_RULES_RULE_SECTION_PARSER_H_

#include <string>

#include "json/TOVJsonParser.h"
#include "rules/rule_kinds.h"

template <TOVRuleKind Kind>
class RuleSectionParser : public TOVJsonParser {
public:
    static constexpr TOVRuleKind kKind = Kind;

    static constexpr const char* sectionKeyword() { return rulekinds::wordsOf(Kind).section; }

protected:
    std::string getRuleName() override { return rulekinds::wordsOf(Kind).ruleName; }
};

#endif  // TOV_RULES_RULE_SECTION_PARSER_H_
