#include "rules/TOVConflictResolutionRulesJsonParser.h"

#include "tov/TOVConflictResolution.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/string_helpers.h"

namespace {

using rulekinds::kAttribute;
using rulekinds::kConflictResolution;
using rulekinds::kFromValue;
using rulekinds::kHasDifferentPrimaries;
using rulekinds::kToValue;
using rulekinds::kUpdatesFile;

}  // namespace

TOVConflictResolutionRulesJsonParser::~TOVConflictResolutionRulesJsonParser() = default;

// "hasDifferentPrimaries" is named here for the message, yet a rule without it
// still loads.
void TOVConflictResolutionRulesJsonParser::getAllNecessaryKeywords(
    std::vector<std::string>& keywords) {
    keywords.emplace_back(kAttribute);
    keywords.emplace_back(kFromValue);
    keywords.emplace_back(kToValue);
    keywords.emplace_back(kUpdatesFile);
    keywords.emplace_back(kHasDifferentPrimaries);
    keywords.emplace_back(kConflictResolution);
}

bool TOVConflictResolutionRulesJsonParser::readRule(tovjson::Value& ruleObject,
                                                    std::string& objectType,
                                                    TOVLifecycleBusinessRules* store) {
    std::string attribute;
    std::string fromValue;
    std::string toValue;
    std::string updatesFile;
    std::string conflictResolution;
    bool hasDifferentPrimaries = false;
    for (const auto& member : ruleObject.GetObject()) {
        const std::string keyword = getMemberName(member.name);
        std::string* text = nullptr;
        if (keyword == kAttribute) {
            text = &attribute;
        } else if (keyword == kFromValue) {
            text = &fromValue;
        } else if (keyword == kToValue) {
            text = &toValue;
        } else if (keyword == kUpdatesFile) {
            text = &updatesFile;
        } else if (keyword == kConflictResolution) {
            text = &conflictResolution;
        } else if (keyword == kHasDifferentPrimaries) {
            if (!collectBoolFromValue(member.value, hasDifferentPrimaries)) {
                return failWith(attributeValueBoolParsingError(objectType, keyword));
            }
            continue;
        } else {
            // Unknown keywords are skipped whatever their type.
            continue;
        }
        if (!collectStringFromValue(member.value, *text)) {
            return failWith(attributeValueStringParsingError(objectType, keyword));
        }
    }
    // An empty value counts as a missing keyword.
    if (objectType.empty() || attribute.empty() || fromValue.empty() || toValue.empty() ||
        updatesFile.empty() || conflictResolution.empty()) {
        return failWith(notAllNecessaryKeywordsFoundParsingError(objectType));
    }
    changeAllToAny(objectType);
    store->appendNewConflictResolutionRule(
        TOVConflictResolution(objectType, attribute, fromValue, toValue, updatesFile,
                              conflictResolution, hasDifferentPrimaries));
    return true;
}
