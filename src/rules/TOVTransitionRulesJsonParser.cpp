#include "rules/TOVTransitionRulesJsonParser.h"

#include <cstdio>

#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVTransition.h"
#include "tov/string_helpers.h"

namespace {

const char* const kSectionKeyword = "transitions";
const char* const kAttributeKeyword = "attribute";
const char* const kFromValueKeyword = "fromValue";
const char* const kToValueKeyword = "toValue";
const char* const kAllowJumpsKeyword = "allowJumps";
const char* const kAllowReverseKeyword = "allowReverse";

}  // namespace

TOVTransitionRulesJsonParser::~TOVTransitionRulesJsonParser() = default;

std::string TOVTransitionRulesJsonParser::getRuleName() {
    return "Transition rule";
}

void TOVTransitionRulesJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    keywords.emplace_back(kAttributeKeyword);
    keywords.emplace_back(kFromValueKeyword);
    keywords.emplace_back(kToValueKeyword);
}

bool TOVTransitionRulesJsonParser::parseSection(tovjson::Value& root,
                                                TOVLifecycleBusinessRules* store) {
    return parseRulesSection(
        root, kSectionKeyword,
        [&](tovjson::Value& ruleObject, std::string& objectType) {
            std::string attribute;
            std::string fromValue;
            std::vector<std::string> toValues;
            for (auto& member : ruleObject.GetObject()) {
                const std::string keyword = getMemberName(member.name);
                bool collected = true;
                if (keyword == kAttributeKeyword) {
                    collected = collectStringFromValue(member.value, attribute);
                } else if (keyword == kFromValueKeyword) {
                    collected = collectStringFromValue(member.value, fromValue);
                } else if (keyword == kToValueKeyword) {
                    // A repeated "toValue" adds to the list instead of replacing it.
                    collected = collectStringsFromArray(member.value, toValues);
                } else if (keyword == kAllowJumpsKeyword) {
                    std::fputs("We do not support the allowJumps keyword in the Transition Rule.\n",
                               stdout);
                } else if (keyword == kAllowReverseKeyword) {
                    std::fputs("We do not support the allowReverse keyword in the Transition Rule.",
                               stdout);
                }
                if (!collected) {
                    // Also a bad "toValue" list is reported as a bad single value.
                    return failWith(attributeValueStringParsingError(objectType, keyword));
                }
            }
            if (objectType.empty() || attribute.empty() || fromValue.empty() || toValues.empty()) {
                return failWith(notAllNecessaryKeywordsFoundParsingError(objectType));
            }
            changeAllToAny(objectType);
            store->appendNewTransitionRule(
                TOVTransition(objectType, attribute, fromValue, toValues));
            return true;
        },
        [store](std::size_t count) { store->reserveRules<TOVTransition>(count); });
}
