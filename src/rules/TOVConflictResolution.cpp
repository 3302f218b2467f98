#include "tov/TOVConflictResolution.h"

#include "tov/TOVLogger.h"
#include "tov/TOV_DMStructure.h"
#include "tov/string_helpers.h"

TOVConflictResolution::TOVConflictResolution()
    : fileUpdated(TOVUpdateFile_NotApplicable),
      conflictResolution(TOVConflictResolution_NoConstraint),
      hasDifferentPrimaries(false) {}

TOVConflictResolution::TOVConflictResolution(
    const std::string& objectType, const std::string& attribute, const std::string& fromValue,
    const std::string& toValue, const std::string& updatesFile,
    const std::string& conflictResolution, bool hasDifferentPrimaries)
    : objectType(objectType),
      attribute(attribute),
      fromValue(fromValue),
      toValue(toValue),
      fileUpdated(TOVUpdateFile_NotApplicable),
      conflictResolution(TOVConflictResolution_NoConstraint),
      hasDifferentPrimaries(hasDifferentPrimaries) {
    setFileUpdated(updatesFile);
    setConflictResolution(conflictResolution);
}

const std::string& TOVConflictResolution::getObjectType() const {
    return objectType;
}
const std::string& TOVConflictResolution::getAttribute() const {
    return attribute;
}
const std::string& TOVConflictResolution::getFromValue() const {
    return fromValue;
}
const std::string& TOVConflictResolution::getToValue() const {
    return toValue;
}
void TOVConflictResolution::setObjectType(const std::string& value) {
    objectType = value;
}
void TOVConflictResolution::setAttribute(const std::string& value) {
    attribute = value;
}
void TOVConflictResolution::setFromValue(const std::string& value) {
    fromValue = value;
}
void TOVConflictResolution::setToValue(const std::string& value) {
    toValue = value;
}

// ---- Rule logic ----
bool TOVConflictResolution::shouldTransitionBeForbidden(
    const AttributesMap& /*initial*/, const AttributesMap& /*target*/,
    const std::vector<std::string>& /*versioningAttributes*/) const {
    return false;
}
bool TOVConflictResolution::doesThisTransitionHaveAConstrainedConflictResolution(
    const std::string& /*objectType*/, const AttributesMap& /*initial*/,
    const AttributesMap& /*target*/, const TOV_DMStructure* /*structure*/,
    TOVConflictResolutionValues& /*value*/) const {
    return false;
}
bool TOVConflictResolution::doesThisTransitionHaveAConstrainedConflictResolutionNoType(
    const AttributesMap& /*initial*/, const AttributesMap& /*target*/,
    TOVConflictResolutionValues& /*value*/) const {
    return false;
}
int TOVConflictResolution::compareFileUpdatedVal1AndVal2AccountingAlsoAnyValue(
    TOVUpdateFileValues /*first*/, TOVUpdateFileValues /*second*/) const {
    return 0;
}
void TOVConflictResolution::expressRuleInWords(std::string& /*text*/) const {}
void TOVConflictResolution::expressConflictResolutionValueInWords(std::string& /*text*/) const {}
void TOVConflictResolution::expressFileUpdateInWords(std::string& /*text*/) const {}
bool TOVConflictResolution::operator<(const TOVConflictResolution& /*other*/) const {
    return false;
}
TOVUpdateFileValues TOVConflictResolution::isFileUpdated() const {
    return fileUpdated;
}
TOVConflictResolution::TOVConflictResolutionValues TOVConflictResolution::getConflictResolution()
    const {
    return conflictResolution;
}
void TOVConflictResolution::setFileUpdated(TOVUpdateFileValues value) {
    fileUpdated = value;
}
void TOVConflictResolution::setFileUpdated(const std::string& /*word*/) {}
void TOVConflictResolution::setConflictResolution(TOVConflictResolutionValues value) {
    conflictResolution = value;
}
void TOVConflictResolution::setConflictResolution(const std::string& /*word*/) {}
void TOVConflictResolution::printContentsDBG(TOVLogger* /*logger*/) const {}
