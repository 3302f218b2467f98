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
            // The whole rule is read as a key-value map, so any member that is
            // not a string fails it, a keyword or not.
            AttributesMap keywords;
            if (!collectKeyValuesPairsFromSection(ruleObject, keywords)) {
                setErrorParsingTheKeysValuesMapOfAttribute(objectType);
                setParsingResult(false);
                return false;
            }
            // Here the keys must exist, but empty values are accepted.
            std::string attribute;
            std::string conditionAttribute;
            std::string conditionValue;
            if (!getValueofKeywordFromStringStringMap(kAttributeKeyword, keywords, attribute) ||
                !getValueofKeywordFromStringStringMap(kConditionAttributeKeyword, keywords,
                                                      conditionAttribute) ||
                !getValueofKeywordFromStringStringMap(kConditionValueKeyword, keywords,
                                                      conditionValue)) {
                setNotAllNecessaryKeywordsFoundParsingError(objectType);
                setParsingResult(false);
                return false;
            }
            changeAllToAny(objectType);
            store->appendNewTransitionFreezeRule(
                TOVTransitionFreeze(objectType, attribute, conditionAttribute, conditionValue));
            return true;
        });
}
