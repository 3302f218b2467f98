#include "rules/TOVFileConstraintsRulesJsonParser.h"

#include "tov/TOVFileConstraint.h"
#include "tov/TOVLifecycleBusinessRules.h"

namespace {

using rulekinds::kAttribute;
using rulekinds::kFromValue;
using rulekinds::kToValue;
using rulekinds::kUpdateFile;

}  // namespace

TOVFileConstraintsRulesJsonParser::~TOVFileConstraintsRulesJsonParser() = default;

void TOVFileConstraintsRulesJsonParser::getAllNecessaryKeywords(
    std::vector<std::string>& keywords) {
    keywords.emplace_back(kAttribute);
    keywords.emplace_back(kFromValue);
    keywords.emplace_back(kToValue);
    keywords.emplace_back(kUpdateFile);
}

bool TOVFileConstraintsRulesJsonParser::parseSection(tovjson::Value& root,
                                                     TOVLifecycleBusinessRules* store) {
    return parseStringRulesSection(
        root, sectionKeyword(), {kAttribute, kFromValue, kToValue, kUpdateFile},
        [store](const std::string& objectType, const std::vector<std::string>& values) {
            store->appendNewFileConstraintRule(
                TOVFileConstraint(objectType, values[0], values[1], values[2], values[3]));
        },
        [store](std::size_t count) { store->reserveRules<TOVFileConstraint>(count); });
}
