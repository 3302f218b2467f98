#include "rules/TOVConflictResolutionRulesJsonParser.h"

#include "tov/TOVConflictResolution.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/string_helpers.h"

namespace {

const char* const kSectionKeyword = "conflictResolutions";
const char* const kAttributeKeyword = "attribute";
const char* const kFromValueKeyword = "fromValue";
const char* const kToValueKeyword = "toValue";
const char* const kUpdatesFileKeyword = "updatesFile";
const char* const kHasDifferentPrimariesKeyword = "hasDifferentPrimaries";
const char* const kConflictResolutionKeyword = "conflictResolution";

}  // namespace

TOVConflictResolutionRulesJsonParser::~TOVConflictResolutionRulesJsonParser() = default;

std::string TOVConflictResolutionRulesJsonParser::getRuleName() {
    return "Conflict Resolution rule";
}

// "hasDifferentPrimaries" is named here for the message, yet a rule without it
// still loads.
void TOVConflictResolutionRulesJsonParser::getAllNecessaryKeywords(
    std::vector<std::string>& keywords) {
    keywords.emplace_back(kAttributeKeyword);
    keywords.emplace_back(kFromValueKeyword);
    keywords.emplace_back(kToValueKeyword);
    keywords.emplace_back(kUpdatesFileKeyword);
    keywords.emplace_back(kHasDifferentPrimariesKeyword);
    keywords.emplace_back(kConflictResolutionKeyword);
}

bool TOVConflictResolutionRulesJsonParser::parseSection(tovjson::Value& root,
                                                        TOVLifecycleBusinessRules* store) {
    return parseRulesSection(
        root, kSectionKeyword,
        [&](tovjson::Value& ruleObject, std::string& objectType) {
            std::string attribute;
            std::string fromValue;
            std::string toValue;
            std::string updatesFile;
            std::string conflictResolution;
            bool hasDifferentPrimaries = false;
            for (const auto& member : ruleObject.GetObject()) {
                const std::string keyword = getMemberName(member.name);
                std::string* text = nullptr;
                if (keyword == kAttributeKeyword) {
                    text = &attribute;
                } else if (keyword == kFromValueKeyword) {
                    text = &fromValue;
                } else if (keyword == kToValueKeyword) {
                    text = &toValue;
                } else if (keyword == kUpdatesFileKeyword) {
                    text = &updatesFile;
                } else if (keyword == kConflictResolutionKeyword) {
                    text = &conflictResolution;
                } else if (keyword == kHasDifferentPrimariesKeyword) {
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
        },
        [store](std::size_t count) { store->reserveRules<TOVConflictResolution>(count); });
}
