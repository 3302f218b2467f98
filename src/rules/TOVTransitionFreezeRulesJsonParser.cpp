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

bool TOVTransitionFreezeRulesJsonParser::readRule(tovjson::Value& ruleObject,
                                                  std::string& objectType,
                                                  TOVLifecycleBusinessRules* store) {
    return readStringRule(ruleObject, objectType,
                          {kAttribute, kFreezeConditionAttribute, kFreezeConditionValue},
                          [store](const std::string& type, const std::vector<std::string>& values) {
                              store->appendNewTransitionFreezeRule(
                                  TOVTransitionFreeze(type, values[0], values[1], values[2]));
                          });
}
