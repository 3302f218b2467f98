#include "tov/rule_kinds.h"

#include "rules/rule_kinds.h"

const std::array<TOVRuleKindWords, TOVRuleKindCount>& GetTOVRuleKinds() {
    return rulekinds::kRuleKinds;
}
