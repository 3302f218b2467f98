#include "tov/TOVHistoryLink.h"

#include "rules/link_rule_logic.h"

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

bool TOVHistoryLink::foundHistoryLinkObjectViolatingRule(const std::vector<AttributesMap>& packets,
                                                         AttributesMap& offending) const {
    return linkrules::findFirstOffendingPacket(
        {objectType, attribute, fromValue, toValue, acceptableHistoryLinkValues}, packets,
        offending);
}
void TOVHistoryLink::expressRuleInWords(std::string& text) const {
    linkrules::appendRuleInWords(
        {objectType, attribute, fromValue, toValue, acceptableHistoryLinkValues},
        " then entries in the same object family can have ", text);
}
bool TOVHistoryLink::operator<(const TOVHistoryLink& other) const {
    return linkrules::precedes(
        {objectType, attribute, fromValue, toValue, acceptableHistoryLinkValues},
        {other.objectType, other.attribute, other.fromValue, other.toValue,
         other.acceptableHistoryLinkValues});
}

void TOVHistoryLink::appendSortKey(std::string& key) const {
    linkrules::appendSortKey(
        {objectType, attribute, fromValue, toValue, acceptableHistoryLinkValues}, key);
}
bool TOVHistoryLink::isValueAmongstAcceptables(const std::string& value) const {
    return linkrules::isValueAmongstAcceptables(acceptableHistoryLinkValues, value);
}
void TOVHistoryLink::sortAcceptableValues() {
    linkrules::sortAcceptableValues(acceptableHistoryLinkValues);
}
void TOVHistoryLink::setAcceptableHistoryLinkValues(const std::vector<std::string>& values) {
    acceptableHistoryLinkValues = values;
    sortAcceptableValues();
}
void TOVHistoryLink::printContentsDBG(TOVLogger* logger) const {
    linkrules::printRule({objectType, attribute, fromValue, toValue, acceptableHistoryLinkValues},
                         "**TOVHistoryLink rule:", "Acceptable HistoryLink Values : ", logger);
}
