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
            std::vector<std::string> values;
            if (!collectRuleKeywordsFromMap(
                    ruleObject, objectType,
                    {kAttributeKeyword, kFromValueKeyword, kToValueKeyword, kUpdateFileKeyword},
                    values)) {
                return false;
            }
            changeAllToAny(objectType);
            store->appendNewFileConstraintRule(
                TOVFileConstraint(objectType, values[0], values[1], values[2], values[3]));
            return true;
        });
}
