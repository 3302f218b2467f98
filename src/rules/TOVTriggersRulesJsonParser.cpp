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
            // The whole rule is a map of texts, so a member of any other type fails it.
            AttributesMap keywords;
            if (!collectKeyValuesPairsFromSection(ruleObject, keywords)) {
                setErrorParsingTheKeysValuesMapOfAttribute(objectType);
                setParsingResult(false);
                return false;
            }
            // The keys must be there; empty values are fine.
            std::string attribute;
            std::string triggerInitialize;
            std::string initializationValue;
            if (!getValueofKeywordFromStringStringMap(kAttribute, keywords, attribute) ||
                !getValueofKeywordFromStringStringMap(kTriggerInitialize, keywords,
                                                      triggerInitialize) ||
                !getValueofKeywordFromStringStringMap(kInitializationValue, keywords,
                                                      initializationValue)) {
                setNotAllNecessaryKeywordsFoundParsingError(objectType);
                setParsingResult(false);
                return false;
            }
            changeAllToAny(objectType);
            store->appendNewTriggerRule(
                TOVTrigger(objectType, attribute, triggerInitialize, initializationValue));
            return true;
        });
}
