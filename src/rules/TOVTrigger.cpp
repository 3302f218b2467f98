#include "tov/TOVTrigger.h"

#include "foundation/compare.h"
#include "tov/TOVLogger.h"
#include "tov/vocabulary.h"

TOVTrigger::TOVTrigger() = default;

TOVTrigger::TOVTrigger(const std::string& objectType, const std::string& attribute,
                       const std::string& triggerInitialize, const std::string& initializationValue)
    : objectType(objectType),
      attribute(attribute),
      triggerInitialize(triggerInitialize),
      initializationValue(initializationValue) {}

void TOVTrigger::setObjectType(const std::string& value) {
    objectType = value;
}
void TOVTrigger::setAttribute(const std::string& value) {
    attribute = value;
}
void TOVTrigger::setTriggerInitialize(const std::string& value) {
    triggerInitialize = value;
}
void TOVTrigger::setInitializationValue(const std::string& value) {
    initializationValue = value;
}

// Exact on purpose: the word in other capitals names an ordinary attribute.
bool TOVTrigger::isAbstractVersioningReinitializationRule() const {
    return triggerInitialize == TOVAttrItemKeyword_ProperVersioningAttribute;
}
std::string TOVTrigger::getAttribute() const {
    return attribute;
}
std::string TOVTrigger::getTriggerInitialize() const {
    return triggerInitialize;
}
std::string TOVTrigger::getInitializationValue() const {
    return initializationValue;
}
std::string TOVTrigger::getObjectType() const {
    return objectType;
}

bool TOVTrigger::operator<(const TOVTrigger& other) const {
    return compareKeysIgnoringCase({{objectType, other.objectType},
                                    {attribute, other.attribute},
                                    {triggerInitialize, other.triggerInitialize}}) < 0;
}

void TOVTrigger::printContentsDBG(TOVLogger* logger) const {
    logger->printToLog("**TOVTrigger rule:");
    logger->printToLog(("Object type : " + objectType).c_str());
    logger->printToLog(("Attribute : " + attribute).c_str());
    logger->printToLog(("Trigger initialize : " + triggerInitialize).c_str());
    logger->printToLog(("Initialization value: " + initializationValue).c_str());
}
