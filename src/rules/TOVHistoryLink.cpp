#include "tov/TOVHistoryLink.h"

#include "tov/TOVLogger.h"
#include "tov/TOV_DMStructure.h"
#include "tov/string_helpers.h"

TOVHistoryLink::TOVHistoryLink() = default;

TOVHistoryLink::TOVHistoryLink(const std::string& objectType, const std::string& attribute,
                               const std::string& fromValue, const std::string& toValue,
                               const std::vector<std::string>& acceptableHistoryLinkValues)
    : objectType(objectType),
      attribute(attribute),
      fromValue(fromValue),
      toValue(toValue),
      acceptableHistoryLinkValues(acceptableHistoryLinkValues) {
    sortAcceptableValues();
}

const std::string& TOVHistoryLink::getObjectType() const {
    return objectType;
}
const std::string& TOVHistoryLink::getAttribute() const {
    return attribute;
}
const std::string& TOVHistoryLink::getFromValue() const {
    return fromValue;
}
const std::string& TOVHistoryLink::getToValue() const {
    return toValue;
}
const std::vector<std::string>& TOVHistoryLink::getAcceptableHistoryLinkValues() const {
    return acceptableHistoryLinkValues;
}
void TOVHistoryLink::setObjectType(const std::string& value) {
    objectType = value;
}
void TOVHistoryLink::setAttribute(const std::string& value) {
    attribute = value;
}
void TOVHistoryLink::setFromValue(const std::string& value) {
    fromValue = value;
}
void TOVHistoryLink::setToValue(const std::string& value) {
    toValue = value;
}

// ---- Rule logic ----
bool TOVHistoryLink::foundHistoryLinkObjectViolatingRule(
    const std::vector<AttributesMap>& /*packets*/, AttributesMap& /*offending*/) const {
    return false;
}
void TOVHistoryLink::expressRuleInWords(std::string& /*text*/) const {}
bool TOVHistoryLink::operator<(const TOVHistoryLink& /*other*/) const {
    return false;
}
bool TOVHistoryLink::isValueAmongstAcceptables(const std::string& /*value*/) const {
    return false;
}
void TOVHistoryLink::sortAcceptableValues() {}
void TOVHistoryLink::setAcceptableHistoryLinkValues(const std::vector<std::string>& values) {
    acceptableHistoryLinkValues = values;
}
void TOVHistoryLink::printContentsDBG(TOVLogger* /*logger*/) const {}
