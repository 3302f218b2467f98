#include "tov/TOVManualLink.h"

#include "tov/TOVLogger.h"
#include "tov/TOV_DMStructure.h"
#include "tov/string_helpers.h"

TOVManualLink::TOVManualLink() = default;

TOVManualLink::TOVManualLink(const std::string& objectType, const std::string& attribute,
                             const std::string& fromValue, const std::string& toValue,
                             const std::vector<std::string>& acceptableManualLinkValues)
    : objectType(objectType),
      attribute(attribute),
      fromValue(fromValue),
      toValue(toValue),
      acceptableManualLinkValues(acceptableManualLinkValues) {
    sortAcceptableValues();
}

const std::string& TOVManualLink::getObjectType() const {
    return objectType;
}
const std::string& TOVManualLink::getAttribute() const {
    return attribute;
}
const std::string& TOVManualLink::getFromValue() const {
    return fromValue;
}
const std::string& TOVManualLink::getToValue() const {
    return toValue;
}
const std::vector<std::string>& TOVManualLink::getAcceptableManualLinkValues() const {
    return acceptableManualLinkValues;
}
void TOVManualLink::setObjectType(const std::string& value) {
    objectType = value;
}
void TOVManualLink::setAttribute(const std::string& value) {
    attribute = value;
}
void TOVManualLink::setFromValue(const std::string& value) {
    fromValue = value;
}
void TOVManualLink::setToValue(const std::string& value) {
    toValue = value;
}

// ---- Rule logic ----
bool TOVManualLink::foundManualAncestorViolatingRule(const std::vector<AttributesMap>& /*packets*/,
                                                     AttributesMap& /*offending*/) const {
    return false;
}
void TOVManualLink::expressRuleInWords(std::string& /*text*/) const {}
bool TOVManualLink::operator<(const TOVManualLink& /*other*/) const {
    return false;
}
bool TOVManualLink::isValueAmongstAcceptables(const std::string& /*value*/) const {
    return false;
}
void TOVManualLink::sortAcceptableValues() {}
void TOVManualLink::setAcceptableManualLinkValues(const std::vector<std::string>& values) {
    acceptableManualLinkValues = values;
}
void TOVManualLink::printContentsDBG(TOVLogger* /*logger*/) const {}
