#include "tov/TOVVersioningSelection.h"

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

const std::vector<std::string>& TOVVersioningSelection::getVersioningOptions() const {
    return versioningOptions;
}

const std::string& TOVVersioningSelection::getObjectType() const {
    return objectType;
}

const std::map<std::string, std::vector<std::string>>&
TOVVersioningSelection::getConditionAttributesAndValues() const {
    return conditionAttributesAndValues;
}

const std::string& TOVVersioningSelection::getConditionsComparisonKey() const {
    return conditionsComparisonKey;
}

void TOVVersioningSelection::setObjectType(const std::string& value) {
    objectType = value;
}

void TOVVersioningSelection::setConditionAttributesAndValues(
    const std::map<std::string, std::vector<std::string>>& conditions) {
    conditionAttributesAndValues = conditions;
}

void TOVVersioningSelection::setVersioningOptions(const std::vector<std::string>& options) {
    versioningOptions = options;
}

// ---- Rule logic ----
bool TOVVersioningSelection::mustSelectVersioningAttributesAccordingToRule(
    const AttributesMap& /*packet*/) const {
    return false;
}
bool TOVVersioningSelection::isConditionMetByAttributesMap(
    const std::string& /*attributeName*/, const std::vector<std::string>& /*values*/,
    const AttributesMap& /*packet*/) const {
    return false;
}
void TOVVersioningSelection::addConditionAttribute(const std::string& /*attributeName*/,
                                                   const std::vector<std::string>& /*values*/) {}
void TOVVersioningSelection::createComparisonKey() {}
void TOVVersioningSelection::expressRuleInWords(std::string& /*text*/) const {}
bool TOVVersioningSelection::operator<(const TOVVersioningSelection& /*other*/) const {
    return false;
}
void TOVVersioningSelection::printContentsDBG(TOVLogger* /*logger*/) const {}
