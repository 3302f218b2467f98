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

bool TOVTriggersRulesJsonParser::readRule(tovjson::Value& ruleObject, std::string& objectType,
                                          TOVLifecycleBusinessRules* store) {
    return readStringRule(
        ruleObject, objectType, {kAttribute, kTriggerInitialize, kInitializationValue},
        [store](const std::string& type, const std::vector<std::string>& values) {
            store->appendNewTriggerRule(TOVTrigger(type, values[0], values[1], values[2]));
        });
}
