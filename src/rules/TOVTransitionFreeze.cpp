#include "tov/TOVTransitionFreeze.h"

#include "foundation/compare.h"
#include "tov/TOVLogger.h"
#include "tov/string_helpers.h"

TOVTransitionFreeze::TOVTransitionFreeze() = default;

TOVTransitionFreeze::TOVTransitionFreeze(const std::string& objectType,
                                         const std::string& attribute,
                                         const std::string& freezeConditionAttribute,
                                         const std::string& freezeConditionValue)
    : objectType(objectType),
      attribute(attribute),
      freezeConditionAttribute(freezeConditionAttribute),
      freezeConditionValue(freezeConditionValue) {}

bool TOVTransitionFreeze::shouldPackageBeFrozen(const std::string& attributeName,
                                                const AttributesMap& packet) const {
    // Names are compared as values here, so "<any>" freezes every attribute.
    if (!areStringsEqualAccountingAlsoAnyValue(attributeName, attribute)) {
        return false;
    }
    std::string conditionValue;
    if (!getValueofKeywordFromStringStringMap(freezeConditionAttribute, packet, conditionValue)) {
        return false;
    }
    return areStringsEqualAccountingAlsoAnyValue(conditionValue, freezeConditionValue);
}

bool TOVTransitionFreeze::concernsAttribute(const std::string& attributeName) const {
    return areStringsEqualAccountingAlsoAnyValue(attributeName, attribute);
}

void TOVTransitionFreeze::expressRuleInWords(std::string& text) const {
    text += "For " + objectType;
    text += ": When " + freezeConditionAttribute;
    text += " equals " + createStringInQuotes(freezeConditionValue.c_str());
    text += ", then " + attribute;
    text += " must remain unchanged.";
}

// `attribute` is left out on purpose: rules that freeze different attributes
// under one condition are equivalent for the sort.
bool TOVTransitionFreeze::operator<(const TOVTransitionFreeze& other) const {
    return compareKeysIgnoringCase({{objectType, other.objectType},
                                    {freezeConditionAttribute, other.freezeConditionAttribute},
                                    {freezeConditionValue, other.freezeConditionValue}}) < 0;
}

void TOVTransitionFreeze::appendSortKey(std::string& key) const {
    appendFoldedSortKeys({&objectType, &freezeConditionAttribute, &freezeConditionValue}, key);
}

void TOVTransitionFreeze::printContentsDBG(TOVLogger* logger) const {
    logger->printToLog("**TOVTransitionsFreeze rule:");
    logger->printToLog(("Object type : " + objectType).c_str());
    logger->printToLog(("Attribute : " + attribute).c_str());
    logger->printToLog(("Freeze Condition Attribute : " + freezeConditionAttribute).c_str());
    logger->printToLog(("Freeze Condition Value : " + freezeConditionValue).c_str());
}
