#include "rules/TOVFileConstraintsRulesJsonParser.h"

#include "tov/TOVFileConstraint.h"
#include "tov/TOVLifecycleBusinessRules.h"

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
    keywords.emplace_back(kAttributeKeyword);
    keywords.emplace_back(kFromValueKeyword);
    keywords.emplace_back(kToValueKeyword);
    keywords.emplace_back(kUpdateFileKeyword);
}

bool TOVFileConstraintsRulesJsonParser::parseSection(tovjson::Value& root,
                                                     TOVLifecycleBusinessRules* store) {
    return parseStringRulesSection(
        root, kSectionKeyword,
        {kAttributeKeyword, kFromValueKeyword, kToValueKeyword, kUpdateFileKeyword},
        [store](const std::string& objectType, const std::vector<std::string>& values) {
            store->appendNewFileConstraintRule(
                TOVFileConstraint(objectType, values[0], values[1], values[2], values[3]));
        },
        [store](std::size_t count) { store->reserveRules<TOVFileConstraint>(count); });
}
