#include "rules/TOVTriggersRulesJsonParser.h"

#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVTrigger.h"

namespace {

using rulekinds::kAttribute;
using rulekinds::kInitializationValue;
using rulekinds::kTriggerInitialize;

}  // namespace

TOVTriggersRulesJsonParser::~TOVTriggersRulesJsonParser() = default;

void TOVTriggersRulesJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    keywords.emplace_back(kAttribute);
    keywords.emplace_back(kInitializationValue);
    keywords.emplace_back(kTriggerInitialize);
}

bool TOVTriggersRulesJsonParser::parseSection(tovjson::Value& root,
                                              TOVLifecycleBusinessRules* store) {
    return parseStringRulesSection(
        root, sectionKeyword(), {kAttribute, kTriggerInitialize, kInitializationValue},
        [store](const std::string& objectType, const std::vector<std::string>& values) {
            store->appendNewTriggerRule(TOVTrigger(objectType, values[0], values[1], values[2]));
        },
        [store](std::size_t count) { store->reserveRules<TOVTrigger>(count); });
}
