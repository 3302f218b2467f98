#include "rules/TOVTransitionFreezeRulesJsonParser.h"

#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVTransitionFreeze.h"

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
    keywords.emplace_back(kAttributeKeyword);
    keywords.emplace_back(kConditionAttributeKeyword);
    keywords.emplace_back(kConditionValueKeyword);
}

bool TOVTransitionFreezeRulesJsonParser::parseSection(tovjson::Value& root,
                                                      TOVLifecycleBusinessRules* store) {
    return parseStringRulesSection(
        root, kSectionKeyword,
        {kAttributeKeyword, kConditionAttributeKeyword, kConditionValueKeyword},
        [store](const std::string& objectType, const std::vector<std::string>& values) {
            store->appendNewTransitionFreezeRule(
                TOVTransitionFreeze(objectType, values[0], values[1], values[2]));
        },
        [store](std::size_t count) { store->reserveRules<TOVTransitionFreeze>(count); });
}
