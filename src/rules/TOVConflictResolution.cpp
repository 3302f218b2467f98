#include "tov/TOVConflictResolution.h"

#include "dm/object_type_matching.h"
#include "foundation/compare.h"
#include "rules/rule_words.h"
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

void TOVConflictResolution::setFileUpdated(TOVUpdateFileValues value) {
    fileUpdated = value;
}
void TOVConflictResolution::setFileUpdated(const std::string& word) {
    if (word == TOVAttrItemValue_N_A) {
        fileUpdated = TOVUpdateFile_NotApplicable;
    } else if (word == TOVAttrItemValue_YES) {
        fileUpdated = TOVUpdateFile_Yes;
    } else if (word == TOVAttrItemValue_NO) {
        fileUpdated = TOVUpdateFile_No;
    }
}
void TOVConflictResolution::setConflictResolution(TOVConflictResolutionValues value) {
    conflictResolution = value;
}
void TOVConflictResolution::setConflictResolution(const std::string& word) {
    if (word == TOVAttrItemValue_Overwrite) {
        conflictResolution = TOVConflictResolution_Overwrite;
    } else if (word == TOVAttrItemValue_Spinup) {
        conflictResolution = TOVConflictResolution_Spinup;
    } else {
        conflictResolution = TOVConflictResolution_NoConstraint;
    }
}

bool TOVConflictResolution::shouldTransitionBeForbidden(
    const AttributesMap& initial, const AttributesMap& target,
    const std::vector<std::string>& versioningAttributes) const {
    TOVConflictResolutionValues forced = TOVConflictResolution_NoConstraint;
    if (!doesThisTransitionHaveAConstrainedConflictResolutionNoType(initial, target, forced)) {
        return false;
    }
    // Changing a versioning attribute is what a spin-up does; changing none is
    // an overwrite.
    std::vector<std::string> changed;
    const bool spunUp = getWhichOfKeysHaveDifferentValuesInPackets(versioningAttributes, initial,
                                                                   target, false, changed);
    if (spunUp) {
        return forced == TOVConflictResolution_Overwrite;
    }
    return forced == TOVConflictResolution_Spinup;
}

bool TOVConflictResolution::doesThisTransitionHaveAConstrainedConflictResolution(
    const std::string& askedType, const AttributesMap& initial, const AttributesMap& target,
    const TOV_DMStructure* structure, TOVConflictResolutionValues& value) const {
    if (!objectTypesMatch(structure, objectType, askedType)) {
        return false;
    }
    return doesThisTransitionHaveAConstrainedConflictResolutionNoType(initial, target, value);
}

bool TOVConflictResolution::appliesTo(const AttributesMap& initial,
                                      const AttributesMap& target) const {
    TOVConflictResolutionValues forced = TOVConflictResolution_NoConstraint;
    return doesThisTransitionHaveAConstrainedConflictResolutionNoType(initial, target, forced);
}

bool TOVConflictResolution::doesThisTransitionHaveAConstrainedConflictResolutionNoType(
    const AttributesMap& initial, const AttributesMap& target,
    TOVConflictResolutionValues& value) const {
    if (conflictResolution == TOVConflictResolution_NoConstraint) {
        return false;
    }
    // An object with no past (an empty initial packet) is never bound here.
    std::string initialValue;
    if (!getValueofKeywordFromStringStringMap(attribute, initial, initialValue)) {
        return false;
    }
    if (!areStringsEqualAccountingAlsoAnyValue(initialValue, fromValue)) {
        return false;
    }
    std::string targetValue = initialValue;
    getValueofKeywordFromStringStringMap(attribute, target, targetValue);
    if (!areStringsEqualAccountingAlsoAnyValue(targetValue, toValue)) {
        return false;
    }
    // A packet silent about the upload satisfies every file setting.
    if (compareFileUpdatedVal1AndVal2AccountingAlsoAnyValue(getThisPacketFileUpdatingValue(target),
                                                            fileUpdated) != 0) {
        return false;
    }
    value = conflictResolution;
    return true;
}

int TOVConflictResolution::compareFileUpdatedVal1AndVal2AccountingAlsoAnyValue(
    TOVUpdateFileValues first, TOVUpdateFileValues second) const {
    if (first == TOVUpdateFile_NotApplicable || second == TOVUpdateFile_NotApplicable) {
        return 0;
    }
    return static_cast<int>(first) - static_cast<int>(second);
}

void TOVConflictResolution::expressRuleInWords(std::string& text) const {
    appendTransitionInWords(objectType, attribute, fromValue, toValue, text);
    text += " ";
    if (fileUpdated != TOVUpdateFile_NotApplicable) {
        std::string fileWords;
        expressFileUpdateInWords(fileWords);
        text += "and ";
        text += fileWords;
    }
    std::string resolutionWords;
    expressConflictResolutionValueInWords(resolutionWords);
    text += " then ";
    text += resolutionWords;
}

void TOVConflictResolution::expressConflictResolutionValueInWords(std::string& text) const {
    switch (conflictResolution) {
        case TOVConflictResolution_NoConstraint:
            text = "there is no constraint whether you should spinup or not";
            break;
        case TOVConflictResolution_Overwrite:
            text = "we MUST overwrite";
            break;
        case TOVConflictResolution_Spinup:
            text = "we MUST spinup";
            break;
        default:
            text.clear();
            break;
    }
}

void TOVConflictResolution::expressFileUpdateInWords(std::string& text) const {
    switch (fileUpdated) {
        case TOVUpdateFile_NotApplicable:
            text = "representation file updating is irrelevant";
            break;
        case TOVUpdateFile_Yes:
            text = "representation file is updated";
            break;
        case TOVUpdateFile_No:
            text = "representation file is not updated";
            break;
        default:
            text.clear();
            break;
    }
}

// The forced resolution takes no part: rules that differ only there are equivalent.
bool TOVConflictResolution::operator<(const TOVConflictResolution& other) const {
    const int order = compareKeysIgnoringCase({{objectType, other.objectType},
                                               {attribute, other.attribute},
                                               {fromValue, other.fromValue},
                                               {toValue, other.toValue}});
    if (order != 0) {
        return order < 0;
    }
    return static_cast<int>(fileUpdated) < static_cast<int>(other.fileUpdated);
}

void TOVConflictResolution::appendSortKey(std::string& key) const {
    appendFoldedSortKeys({&objectType, &attribute, &fromValue, &toValue}, key);
    appendIntegerSortKey(static_cast<int>(fileUpdated), key);
}

void TOVConflictResolution::printContentsDBG(TOVLogger* logger) const {
    std::string fileWords;
    expressFileUpdateInWords(fileWords);
    std::string resolutionWords;
    expressConflictResolutionValueInWords(resolutionWords);
    logger->printToLog("**TOVConflictResolution rule:");
    logger->printToLog(("Object type : " + objectType).c_str());
    logger->printToLog(("Attribute : " + attribute).c_str());
    logger->printToLog(("From value : " + fromValue).c_str());
    logger->printToLog(("To value : " + toValue).c_str());
    logger->printToLog(("File: " + fileWords).c_str());
    logger->printToLog(("Spinup constraint: " + resolutionWords).c_str());
}
