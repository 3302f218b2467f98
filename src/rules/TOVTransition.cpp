#include "tov/TOVTransition.h"

#include "tov/TOVLogger.h"
#include "tov/TOV_DMStructure.h"
#include "tov/string_helpers.h"

TOVTransition::TOVTransition() = default;

TOVTransition::TOVTransition(const std::string& objectType, const std::string& attribute,
                             const std::string& fromValue, const std::vector<std::string>& toValues)
    : objectType(objectType), attribute(attribute), fromValue(fromValue), toValues(toValues) {}

const std::string& TOVTransition::getObjectType() const {
    return objectType;
}
const std::string& TOVTransition::getAttribute() const {
    return attribute;
}
const std::string& TOVTransition::getFromValue() const {
    return fromValue;
}
const std::vector<std::string>& TOVTransition::getToValues() const {
    return toValues;
}
void TOVTransition::setObjectType(const std::string& value) {
    objectType = value;
}
void TOVTransition::setAttribute(const std::string& value) {
    attribute = value;
}
void TOVTransition::setFromValue(const std::string& value) {
    fromValue = value;
}
void TOVTransition::setToValues(const std::vector<std::string>& value) {
    toValues = value;
}

// ---- Rule logic ----
bool TOVTransition::shouldTransitionBeForbidden(const AttributesMap& /*initial*/,
                                                const AttributesMap& /*target*/) const {
    return false;
}
bool TOVTransition::constrainsSecondaryAttribute(const std::string& /*editedObjectType*/,
                                                 const TOV_DMStructure* /*structure*/) const {
    return false;
}
void TOVTransition::expressRuleInWords(std::string& /*text*/) const {}
bool TOVTransition::operator<(const TOVTransition& /*other*/) const {
    return false;
}
bool TOVTransition::isPackageFromValueBoundByThisRule(const AttributesMap& /*packet*/,
                                                      std::string& /*value*/) const {
    return false;
}
bool TOVTransition::shouldAttemptedToValueBeForbidden(const std::string& /*attemptedValue*/) const {
    return false;
}
void TOVTransition::printContentsDBG(TOVLogger* /*logger*/) const {}
