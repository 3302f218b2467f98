#include "tov/TOVManualLink.h"

#include "rules/link_rule_logic.h"

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

bool TOVManualLink::foundManualAncestorViolatingRule(const std::vector<AttributesMap>& packets,
                                                     AttributesMap& offending) const {
    return linkrules::findFirstOffendingPacket(
        {objectType, attribute, fromValue, toValue, acceptableManualLinkValues}, packets,
        offending);
}
void TOVManualLink::expressRuleInWords(std::string& text) const {
    linkrules::appendRuleInWords(
        {objectType, attribute, fromValue, toValue, acceptableManualLinkValues},
        " then its manual link ancestors can have ", text);
}
bool TOVManualLink::operator<(const TOVManualLink& other) const {
    return linkrules::precedes(
        {objectType, attribute, fromValue, toValue, acceptableManualLinkValues},
        {other.objectType, other.attribute, other.fromValue, other.toValue,
         other.acceptableManualLinkValues});
}

void TOVManualLink::appendSortKey(std::string& key) const {
    linkrules::appendSortKey(
        {objectType, attribute, fromValue, toValue, acceptableManualLinkValues}, key);
}
bool TOVManualLink::isValueAmongstAcceptables(const std::string& value) const {
    return linkrules::isValueAmongstAcceptables(acceptableManualLinkValues, value);
}
void TOVManualLink::sortAcceptableValues() {
    linkrules::sortAcceptableValues(acceptableManualLinkValues);
}
void TOVManualLink::setAcceptableManualLinkValues(const std::vector<std::string>& values) {
    acceptableManualLinkValues = values;
    sortAcceptableValues();
}
void TOVManualLink::printContentsDBG(TOVLogger* logger) const {
    linkrules::printRule(
        {objectType, attribute, fromValue, toValue, acceptableManualLinkValues},
        "**TOVManualLink rule:", "Acceptable ManualLink Ancestor Values : ", logger);
}
