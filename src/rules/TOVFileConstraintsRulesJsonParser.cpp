#include "rules/TOVFileConstraintsRulesJsonParser.h"

#include "tov/TOVFileConstraint.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/string_helpers.h"

namespace {

const char* const kSectionKeyword = "fileConstraints";
const char* const kAttributeKeyword = "attribute";
const char* const kFromValueKeyword = "fromValue";
const char* const kToValueKeyword = "toValue";
const char* const kUpdateFileKeyword = "updateFile";

}  // namespace

TOVFileConstraintsRulesJsonParser::~TOVFileConstraintsRulesJsonParser() = default;

std::string TOVFileConstraintsRulesJsonParser::getRuleName() {
    return "File Constraint rule";
}

void TOVFileConstraintsRulesJsonParser::getAllNecessaryKeywords(
    std::vector<std::string>& keywords) {
    keywords.push_back(kAttributeKeyword);
    keywords.push_back(kFromValueKeyword);
    keywords.push_back(kToValueKeyword);
    keywords.push_back(kUpdateFileKeyword);
}

bool TOVFileConstraintsRulesJsonParser::parseSection(rapidjson::Value& root,
                                                     TOVLifecycleBusinessRules* store) {
    return parseRulesSection(
        root, kSectionKeyword, [&](rapidjson::Value& ruleObject, std::string& objectType) {
            // The rule is read whole as a map of strings, so a member of another
            // type, even an unknown one, spoils the rule.
            AttributesMap keywords;
            if (!collectKeyValuesPairsFromSection(ruleObject, keywords)) {
                setErrorParsingTheKeysValuesMapOfAttribute(objectType);
                setParsingResult(false);
                return false;
            }
            std::string attribute;
            std::string fromValue;
            std::string toValue;
            std::string updateFile;
            if (!getValueofKeywordFromStringStringMap(kAttributeKeyword, keywords, attribute) ||
                !getValueofKeywordFromStringStringMap(kFromValueKeyword, keywords, fromValue) ||
                !getValueofKeywordFromStringStringMap(kToValueKeyword, keywords, toValue) ||
                !getValueofKeywordFromStringStringMap(kUpdateFileKeyword, keywords, updateFile)) {
                setNotAllNecessaryKeywordsFoundParsingError(objectType);
                setParsingResult(false);
                return false;
            }
            changeAllToAny(objectType);
            store->appendNewFileConstraintRule(
                TOVFileConstraint(objectType, attribute, fromValue, toValue, updateFile));
            return true;
        });
}
