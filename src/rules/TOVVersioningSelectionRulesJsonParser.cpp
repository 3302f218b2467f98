#include "rules/TOVVersioningSelectionRulesJsonParser.h"

#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVVersioningSelection.h"
#include "tov/string_helpers.h"

namespace {

using rulekinds::kConditionAttribute1;
using rulekinds::kConditionAttribute2;
using rulekinds::kConditionValue1;
using rulekinds::kConditionValue2;
using rulekinds::kVersioningOption;

}  // namespace

TOVVersioningSelectionRulesJsonParser::~TOVVersioningSelectionRulesJsonParser() = default;

void TOVVersioningSelectionRulesJsonParser::getAllNecessaryKeywords(
    std::vector<std::string>& keywords) {
    keywords.emplace_back(kConditionAttribute1);
    keywords.emplace_back(kConditionValue1);
    keywords.emplace_back(kVersioningOption);
}

bool TOVVersioningSelectionRulesJsonParser::readRule(tovjson::Value& ruleObject,
                                                     std::string& objectType,
                                                     TOVLifecycleBusinessRules* store) {
    std::string conditionAttribute1;
    std::vector<std::string> conditionValues1;
    std::string conditionAttribute2;
    std::vector<std::string> conditionValues2;
    std::vector<std::string> versioningOptions;

    for (auto& member : ruleObject.GetObject()) {
        const std::string keyword = getMemberName(member.name);
        std::string* text = nullptr;
        std::vector<std::string>* list = nullptr;
        if (keyword == kConditionAttribute1) {
            text = &conditionAttribute1;
        } else if (keyword == kConditionAttribute2) {
            text = &conditionAttribute2;
        } else if (keyword == kConditionValue1) {
            list = &conditionValues1;
        } else if (keyword == kConditionValue2) {
            list = &conditionValues2;
        } else if (keyword == kVersioningOption) {
            list = &versioningOptions;
        } else {
            // Keywords of no meaning to this rule are passed over.
            continue;
        }
        if (text != nullptr && !collectStringFromValue(member.value, *text)) {
            return failWith(attributeValueStringParsingError(objectType, keyword));
        }
        if (list != nullptr && !collectStringsFromArray(member.value, *list)) {
            return failWith(attributeValuesStringListParsingError(objectType, keyword));
        }
    }

    if (conditionAttribute1.empty() || conditionValues1.empty() || versioningOptions.empty()) {
        return failWith(notAllNecessaryKeywordsFoundParsingError(objectType));
    }

    changeAllToAny(objectType);
    // The second condition goes in even when half-given; the rule leaves it out.
    store->appendNewVersioningAttrSelectionRule(
        TOVVersioningSelection(objectType, conditionAttribute1, conditionValues1,
                               conditionAttribute2, conditionValues2, versioningOptions));
    return true;
}
