#include "rules/TOVTransitionFreezeRulesJsonParser.h"

#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVTransitionFreeze.h"

namespace {

using rulekinds::kAttribute;
using rulekinds::kFreezeConditionAttribute;
using rulekinds::kFreezeConditionValue;

}  // namespace

TOVTransitionFreezeRulesJsonParser::~TOVTransitionFreezeRulesJsonParser() = default;

void TOVTransitionFreezeRulesJsonParser::getAllNecessaryKeywords(
    std::vector<std::string>& keywords) {
    keywords.emplace_back(kAttribute);
    keywords.emplace_back(kFreezeConditionAttribute);
    keywords.emplace_back(kFreezeConditionValue);
}

bool TOVTransitionFreezeRulesJsonParser::parseSection(tovjson::Value& root,
                                                      TOVLifecycleBusinessRules* store) {
    return parseStringRulesSection(
        root, sectionKeyword(), {kAttribute, kFreezeConditionAttribute, kFreezeConditionValue},
        [store](const std::string& objectType, const std::vector<std::string>& values) {
            store->appendNewTransitionFreezeRule(
                TOVTransitionFreeze(objectType, values[0], values[1], values[2]));
        },
        [store](std::size_t count) { store->reserveRules<TOVTransitionFreeze>(count); });
}
