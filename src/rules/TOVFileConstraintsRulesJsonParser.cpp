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

bool TOVFileConstraintsRulesJsonParser::readRule(tovjson::Value& ruleObject,
                                                 std::string& objectType,
                                                 TOVLifecycleBusinessRules* store) {
    return readStringRule(ruleObject, objectType, {kAttribute, kFromValue, kToValue, kUpdateFile},
                          [store](const std::string& type, const std::vector<std::string>& values) {
                              store->appendNewFileConstraintRule(TOVFileConstraint(
                                  type, values[0], values[1], values[2], values[3]));
                          });
}
