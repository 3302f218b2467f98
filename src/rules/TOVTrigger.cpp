#include "tov/TOVTrigger.h"

#include "tov/TOVLogger.h"
#include "tov/TOV_DMStructure.h"
#include "tov/string_helpers.h"

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

// ---- Rule logic ----
bool TOVTrigger::isAbstractVersioningReinitializationRule() const {
    return false;
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
bool TOVTrigger::operator<(const TOVTrigger& /*other*/) const {
    return false;
}
void TOVTrigger::printContentsDBG(TOVLogger* /*logger*/) const {}
