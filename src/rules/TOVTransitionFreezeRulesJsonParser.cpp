#include "rules/TOVTransitionFreezeRulesJsonParser.h"

#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVTransitionFreeze.h"
#include "tov/string_helpers.h"

namespace {

const char* const kSectionKeyword = "transitionsFreeze";
const char* const kAttributeKeyword = "attribute";
const char* const kConditionAttributeKeyword = "freezeConditionAttribute";
const char* const kConditionValueKeyword = "freezeConditionValue";

}  // namespace

TOVTransitionFreezeRulesJsonParser::~TOVTransitionFreezeRulesJsonParser() = default;

std::string TOVTransitionFreezeRulesJsonParser::getRuleName() {
    return "Transition Freeze rule";
}

void TOVTransitionFreezeRulesJsonParser::getAllNecessaryKeywords(
    std::vector<std::string>& keywords) {
    keywords.push_back(kAttributeKeyword);
    keywords.push_back(kConditionAttributeKeyword);
    keywords.push_back(kConditionValueKeyword);
}

bool TOVTransitionFreezeRulesJsonParser::parseSection(rapidjson::Value& root,
                                                      TOVLifecycleBusinessRules* store) {
    return parseRulesSection(
        root, kSectionKeyword, [&](rapidjson::Value& ruleObject, std::string& objectType) {
            std::vector<std::string> values;
            if (!collectRuleKeywordsFromMap(
                    ruleObject, objectType,
                    {kAttributeKeyword, kConditionAttributeKeyword, kConditionValueKeyword},
                    values)) {
                return false;
            }
            changeAllToAny(objectType);
            store->appendNewTransitionFreezeRule(
                TOVTransitionFreeze(objectType, values[0], values[1], values[2]));
            return true;
        });
}
