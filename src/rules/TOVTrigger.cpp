#include "tov/TOVTrigger.h"

#include "foundation/compare.h"
#include "tov/TOVLogger.h"
#include "tov/string_helpers.h"
#include "tov/vocabulary.h"

TOVTrigger::TOVTrigger() = default;

TOVTrigger::TOVTrigger(const std::string& objectType, const std::string& attribute,
                       const std::string& triggerInitialize, const std::string& initializationValue)
    : objectType(objectType),
      attribute(attribute),
      triggerInitialize(triggerInitialize),
      initializationValue(initializationValue) {}

// Exact on purpose: the word in other capitals names an ordinary attribute.
bool TOVTrigger::isAbstractVersioningReinitializationRule() const {
    return triggerInitialize == TOVAttrItemKeyword_ProperVersioningAttribute;
}

std::string expressTriggerInWords(const TOVTriggerDescription& trigger) {
    std::string words =
        "For " + trigger.objectType + ": When " + trigger.attribute + " is edited, ";
    if (trigger.triggerInitialize == TOVAttrItemKeyword_ProperVersioningAttribute) {
        words += "the proper versioning attribute (" + trigger.triggerInitialize + ")";
    } else {
        words += trigger.triggerInitialize;
    }
    words += " must be initialized to " + createStringInQuotes(trigger.initializationValue.c_str());
    return words;
}

void TOVTrigger::expressRuleInWords(std::string& text) const {
    text += expressTriggerInWords({objectType, attribute, triggerInitialize, initializationValue});
}

bool TOVTrigger::operator<(const TOVTrigger& other) const {
    return compareKeysIgnoringCase({{objectType, other.objectType},
                                    {attribute, other.attribute},
                                    {triggerInitialize, other.triggerInitialize}}) < 0;
}

void TOVTrigger::appendSortKey(std::string& key) const {
    appendFoldedSortKeys({&objectType, &attribute, &triggerInitialize}, key);
}

void TOVTrigger::printContentsDBG(TOVLogger* logger) const {
    logger->printToLog("**TOVTrigger rule:");
    logger->printToLog(("Object type : " + objectType).c_str());
    logger->printToLog(("Attribute : " + attribute).c_str());
    logger->printToLog(("Trigger initialize : " + triggerInitialize).c_str());
    logger->printToLog(("Initialization value: " + initializationValue).c_str());
}
