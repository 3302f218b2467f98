#include "tov/TOVVersioningSelection.h"

#include <algorithm>
#include <cstdint>

#include "foundation/compare.h"
#include "tov/TOVLogger.h"
#include "tov/string_helpers.h"

TOVVersioningSelection::TOVVersioningSelection(const std::string& objectType,
                                               const std::string& conditionAttribute1,
                                               const std::vector<std::string>& values1,
                                               const std::string& conditionAttribute2,
                                               const std::vector<std::string>& values2,
                                               const std::vector<std::string>& versioningOptions)
    : objectType(objectType), versioningOptions(versioningOptions) {
    addConditionAttribute(conditionAttribute1, values1);
    addConditionAttribute(conditionAttribute2, values2);
    createComparisonKey();
}

TOVVersioningSelection::TOVVersioningSelection(const std::string& objectType,
                                               const std::string& conditionAttribute1,
                                               const std::vector<std::string>& values1,
                                               const std::vector<std::string>& versioningOptions)
    : objectType(objectType), versioningOptions(versioningOptions) {
    addConditionAttribute(conditionAttribute1, values1);
    createComparisonKey();
}

TOVVersioningSelection::TOVVersioningSelection(
    const std::string& objectType,
    const std::map<std::string, std::vector<std::string>>& conditions,
    const std::vector<std::string>& versioningOptions)
    : objectType(objectType),
      conditionAttributesAndValues(conditions),
      versioningOptions(versioningOptions) {
    createComparisonKey();
}

bool TOVVersioningSelection::mustSelectVersioningAttributesAccordingToRule(
    const AttributesMap& packet) const {
    for (const auto& condition : conditionAttributesAndValues) {
        if (!isConditionMetByAttributesMap(condition.first, condition.second, packet)) {
            return false;
        }
    }
    return true;
}

// Values are matched exactly, case included: a selection rule names the very
// values it means, and only a listed "<any>" widens it.
bool TOVVersioningSelection::isConditionMetByAttributesMap(const std::string& attributeName,
                                                           const std::vector<std::string>& values,
                                                           const AttributesMap& packet) const {
    const auto found = packet.find(attributeName);
    if (found == packet.end()) {
        return false;
    }
    if (std::find(values.begin(), values.end(), std::string(TOVAttrItemValue_Any)) !=
        values.end()) {
        return true;
    }
    return std::find(values.begin(), values.end(), found->second) != values.end();
}

// A half-given condition is simply not there; a repeated name keeps the later list.
void TOVVersioningSelection::addConditionAttribute(const std::string& attributeName,
                                                   const std::vector<std::string>& values) {
    if (attributeName.empty() || values.empty()) {
        return;
    }
    conditionAttributesAndValues[attributeName] = values;
}

void TOVVersioningSelection::createComparisonKey() {
    conditionsComparisonKey += "{";
    bool first = true;
    for (const auto& condition : conditionAttributesAndValues) {
        if (!first) {
            conditionsComparisonKey += ",";
        }
        conditionsComparisonKey += condition.first;
        conditionsComparisonKey += ":";
        conditionsComparisonKey += createCommaSeparatedListOfStrings(condition.second);
        first = false;
    }
    conditionsComparisonKey += "}";
}

void TOVVersioningSelection::expressRuleInWords(std::string& text) const {
    text += "For ";
    text += objectType;
    text += ": When {";
    for (const auto& condition : conditionAttributesAndValues) {
        const std::vector<std::string>& values = condition.second;
        text += createStringInQuotes(condition.first.c_str());
        if (values.size() < 2) {
            text += " equals ";
            text += createStringInQuotes(values.empty() ? "" : values.front().c_str());
        } else {
            text += " is one of ";
            text += createCommaSeparatedListOfStrings(values);
        }
    }
    text += "} then you should spin up versions using one of the attributes: ";
    text += createCommaSeparatedListOfStrings(versioningOptions);
}

// The rule with more conditions sorts first, so that the more specific rule
// of an object type leads.
bool TOVVersioningSelection::operator<(const TOVVersioningSelection& other) const {
    const int typeOrder = compareStringsIgnoringCase(objectType, other.objectType);
    if (typeOrder != 0) {
        return typeOrder < 0;
    }
    const std::int32_t conditionsDifference =
        static_cast<std::int32_t>(conditionAttributesAndValues.size()) -
        static_cast<std::int32_t>(other.conditionAttributesAndValues.size());
    if (conditionsDifference != 0) {
        return conditionsDifference > 0;
    }
    return conditionsComparisonKey < other.conditionsComparisonKey;
}

void TOVVersioningSelection::appendSortKey(std::string& key) const {
    appendFoldedSortKey(objectType, key);
    // More conditions sort first, so the count goes in negated.
    appendIntegerSortKey(-static_cast<std::int32_t>(conditionAttributesAndValues.size()), key);
    // The last field: what is left of both keys compares as std::string does.
    key += conditionsComparisonKey;
}

void TOVVersioningSelection::printContentsDBG(TOVLogger* logger) const {
    logger->printToLog("**TOVVersioningSelection rule:");
    logger->printToLog(("Object type : " + objectType).c_str());
    logger->printToLog("Condition Attributes and values : ");
    for (const auto& condition : conditionAttributesAndValues) {
        const std::string line =
            " " + condition.first + " - " + createCommaSeparatedListOfStrings(condition.second);
        logger->printToLog(line.c_str());
    }
    logger->printToLog("Versioning options:");
    logger->printToLog(("   " + createCommaSeparatedListOfStrings(versioningOptions)).c_str());
}
