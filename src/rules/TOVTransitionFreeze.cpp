#include "tov/TOVTransitionFreeze.h"

#include "tov/TOVLogger.h"
#include "tov/TOV_DMStructure.h"
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

const std::string& TOVTransitionFreeze::getObjectType() const {
    return objectType;
}
const std::string& TOVTransitionFreeze::getAttribute() const {
    return attribute;
}
const std::string& TOVTransitionFreeze::getFreezeConditionAttribute() const {
    return freezeConditionAttribute;
}
const std::string& TOVTransitionFreeze::getFreezeConditionValue() const {
    return freezeConditionValue;
}
void TOVTransitionFreeze::setObjectType(const std::string& value) {
    objectType = value;
}
void TOVTransitionFreeze::setAttribute(const std::string& value) {
    attribute = value;
}
void TOVTransitionFreeze::setFreezeConditionAttribute(const std::string& value) {
    freezeConditionAttribute = value;
}
void TOVTransitionFreeze::setFreezeConditionValue(const std::string& value) {
    freezeConditionValue = value;
}

// ---- Rule logic ----
bool TOVTransitionFreeze::shouldPackageBeFrozen(const std::string& /*attributeName*/,
                                                const AttributesMap& /*packet*/) const {
    return false;
}
void TOVTransitionFreeze::expressRuleInWords(std::string& /*text*/) const {}
bool TOVTransitionFreeze::operator<(const TOVTransitionFreeze& /*other*/) const {
    return false;
}
void TOVTransitionFreeze::printContentsDBG(TOVLogger* /*logger*/) const {}
