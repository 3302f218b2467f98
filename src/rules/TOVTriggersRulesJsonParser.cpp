#include "rules/TOVTriggersRulesJsonParser.h"

#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVTrigger.h"
#include "tov/string_helpers.h"

namespace {

const char* const kAttribute = "attribute";
const char* const kInitializationValue = "initializationValue";
const char* const kTriggerInitialize = "triggerInitialize";

}  // namespace

TOVTriggersRulesJsonParser::~TOVTriggersRulesJsonParser() = default;

std::string TOVTriggersRulesJsonParser::getRuleName() {
    return "Triggers rule";
}

void TOVTriggersRulesJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    keywords.push_back(kAttribute);
    keywords.push_back(kInitializationValue);
    keywords.push_back(kTriggerInitialize);
}

bool TOVTriggersRulesJsonParser::parseSection(rapidjson::Value& root,
                                              TOVLifecycleBusinessRules* store) {
    return parseRulesSection(
        root, "triggers", [&](rapidjson::Value& ruleObject, std::string& objectType) {
            std::vector<std::string> values;
            if (!collectRuleKeywordsFromMap(ruleObject, objectType,
                                            {kAttribute, kTriggerInitialize, kInitializationValue},
                                            values)) {
                return false;
            }
            changeAllToAny(objectType);
            store->appendNewTriggerRule(TOVTrigger(objectType, values[0], values[1], values[2]));
            return true;
        });
}
