// Judges one edit attempt, or one save attempt that also uploads the object's
// representation file, against the loaded rules.
//
// The request is one JSON object under the label "All_transition_values":
//   "objectType"          string, necessary
//   "initialAttributes"   object of attribute name to string value, necessary
//   "targetAttributes"    object of attribute name to string value, necessary
//   "membersOfFamily"     object of server id to {"attributes": {...}}, optional
//   "manualLinkAncestors" object of server id to {"attributes": {...}}, optional
// Leaving a link section out says nothing about the linked objects; an empty
// object says there are none. When a link rule applies to a section that was
// left out, the response asks for it ("MissingData" under "ObjectFamilyMembers"
// or "ManualLinkAncestors") and the host sends the whole request again.
//
// After parsing, `toValues` holds only the attributes that really change, plus
// "_file_upload_" set to "true" for a save and "false" for an edit.
#ifndef TOV_TOVEDITCONTROLLER_H_
#define TOV_TOVEDITCONTROLLER_H_

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tov/TOVActionController.h"
#include "tov/export.h"
#include "tov/vocabulary.h"

class TOVConflictResolution;
class TOVFileConstraint;
class TOVHistoryLink;
class TOVManualLink;
class TOVTransition;
class TOVTransitionFreeze;

class TOV_API TOVEditController : public TOVActionController {
public:
    // The factory builds four flavours from the two bools: a save attempt
    // (`updatingReprFile`) or a plain edit, judged with or without the
    // conflict resolution rules. All four report functionality 3 to the base.
    TOVEditController(const std::map<std::string, std::string>& labeledInput,
                      TOVCoreDataControllers* coreData, bool updatingReprFile,
                      bool ignoreConflictResolutionErrors);
    // The same, taking the input over, so that the request is held once.
    TOVEditController(std::map<std::string, std::string>&& labeledInput,
                      TOVCoreDataControllers* coreData, bool updatingReprFile,
                      bool ignoreConflictResolutionErrors);
    TOVEditController(const TOVEditController& other) = default;
    TOVEditController& operator=(const TOVEditController& other) = default;
    ~TOVEditController() override;

    // "All_transition_values".
    static std::string getInputDataLabelIdentifierForTransitionData();
    // "Input_is_filepath".
    static std::string getInputDataLabelIdentifierForJsonFilepath();

    // --- The request as parsed ---

    bool amUpdatingReprFile() const { return updatingReprFile; }
    bool shouldIgnoreConflictResolutionErrors() const { return ignoreConflictResolutionErrors; }

    const std::string& getObjectType() const { return objectType; }
    void setObjectType(const std::string& type) { objectType = type; }
    const AttributesMap& getFromValues() const { return fromValues; }
    void setFromValues(const AttributesMap& values) { fromValues = values; }
    void setFromValues(AttributesMap&& values) { fromValues = std::move(values); }
    const AttributesMap& getToValues() const { return toValues; }
    void setToValues(const AttributesMap& values) { toValues = values; }
    void setToValues(AttributesMap&& values) { toValues = std::move(values); }

    // Each family member and each manual link ancestor is a packet with its
    // server id under "ServerId".
    const std::vector<AttributesMap>& getHistoryLinks() const { return historyLinks; }
    void setHistoryLinks(const std::vector<AttributesMap>& links) { historyLinks = links; }
    void setHistoryLinks(std::vector<AttributesMap>&& links) { historyLinks = std::move(links); }
    bool haveHistoryLinksDataBeenProvided() const { return historyLinksDataProvided; }
    void setHistoryLinksDataHaveBeenProvided(bool provided) { historyLinksDataProvided = provided; }
    const std::vector<AttributesMap>& getManualLinkAncestors() const { return manualLinkAncestors; }
    void setManualLinkAncestors(const std::vector<AttributesMap>& ancestors) {
        manualLinkAncestors = ancestors;
    }
    void setManualLinkAncestors(std::vector<AttributesMap>&& ancestors) {
        manualLinkAncestors = std::move(ancestors);
    }
    bool haveManualLinkAncestorsDataBeenProvided() const { return manualLinkAncestorsDataProvided; }
    void setManualLinkAncestorsDataHaveBeenProvided(bool provided) {
        manualLinkAncestorsDataProvided = provided;
    }

    // Copy the value and return true, or return false and leave `value` alone.
    bool getFromValueOfAttribute(const std::string& name, std::string& value) const;
    bool getFromValueOfAttribute(const char* name, std::string& value) const;
    bool getToValueOfAttribute(const std::string& name, std::string& value) const;
    bool getToValueOfAttribute(const char* name, std::string& value) const;

    // --- Values calculated on first use ---

    // The attributes whose values differ, ignoring case, between the raw
    // initial and target packets; an attribute only one packet has is no edit.
    const std::vector<std::string>& getAttributesToEdit();
    // The keys of the initial packet, or of `toValues` for a new object.
    const std::vector<std::string>& getAllAttributeNames();

    bool haveAttributesToEditBeenCalculated() const { return attributesToEditCalculated; }
    void setAttributesToEditCalculated(bool calculated) { attributesToEditCalculated = calculated; }
    bool haveAllAttributeNamesBeenCalculated() const { return allAttributeNamesCalculated; }
    void setAllAttributeNamesBeenCalculated(bool calculated) {
        allAttributeNamesCalculated = calculated;
    }
    bool hasEditsPropertiesForFamilyDetectionBeenCalculated() const {
        return editsPropertiesForFamilyDetectionCalculated;
    }
    void setEditsPropertiesForFamilyDetectionBeenCalculated(bool calculated) {
        editsPropertiesForFamilyDetectionCalculated = calculated;
    }
    // The stored answer only; editsPropertiesUsedForObjectFamilyDetection
    // calculates it.
    bool getEditsPropertiesUsedForFamilyDetection() const {
        return editsPropertiesUsedForFamilyDetection;
    }
    void setEditsPropertiesUsedForFamilyDetection(bool edits) {
        editsPropertiesUsedForFamilyDetection = edits;
    }

protected:
    bool isInputDataSufficient() override;
    bool parseInputData(TOVResponse& response) override;
    // Runs the checks in a fixed order and stops at the first final violation.
    // True when the attempt was approved or only data are missing.
    bool evaluateRequest(TOVResponse& response) override;

    // Whether the edit touches a property that decides which family the object
    // belongs to; such an edit is spared the conflict resolution rules and the
    // transition rules on secondary attributes.
    bool editsPropertiesUsedForObjectFamilyDetection();

private:
    // --- Post-processing of a successful parse ---
    void postProcessTheParsedData();
    void calculateAttributesToEdit();
    void calculateAllAttributeNames();
    void sanitizeToValues();
    void updateToValuesWithTheRepresentationFileUpdate();

    void calculateEditsPropertiesUsedForFamilyDetection();
    bool calculateEditsPropertiesUsedForFamilyDetectionCore(
        const std::vector<std::string>& familyProperties);

    // --- The checks: true means that a rule objected ---
    bool foundTransitionFreezeRuleViolation(TOVResponse& response);
    bool foundTransitionRuleViolation(TOVResponse& response);
    bool foundFileConstraintViolation(TOVResponse& response);
    bool foundConflictResolutionViolation(TOVResponse& response);
    bool foundHistoryLinkViolation(TOVResponse& response);
    bool foundManualLinkViolation(TOVResponse& response);

    // The last edited attribute that a rule freezes decides which rule the
    // refusal names: the first rule, in store order, that freezes it.
    bool getLastTransitionFreezeRuleViolation(TOVTransitionFreeze& violated);
    bool getFirstTransitionRuleViolation(TOVTransition& violated);
    // getFirstTransitionRuleViolation when no decision observer listens.
    bool getFirstTransitionRuleViolationUntold(TOVTransition& violated);
    bool getFirstFileConstraintRuleViolation(TOVFileConstraint& violated);
    bool getFirstConflictResolutionViolation(TOVConflictResolution& violated);
    bool getFirstHistoryLinkRuleViolation(TOVHistoryLink& violated, AttributesMap& offendingEntry,
                                          bool& missingData);
    bool getFirstManualLinkRuleViolation(TOVManualLink& violated, AttributesMap& offendingEntry,
                                         bool& missingData);

    bool shouldIgnoreTransitionRule(const TOVTransition& rule);
    bool shouldCheckForConflictResolutionViolations();

    bool isResponseMarkedWithHistoryLinkMissingData(const TOVResponse& response);
    bool isResponseMarkedWithManualLinkMissingData(const TOVResponse& response);

    // --- Initializations that an approved edit sets off ---
    // True when the response now names attributes to initialize.
    bool checkForTOVTriggeredHandling(TOVResponse& response);
    // Replaces "Proper_Versioning_Attribute" by the versioning attributes that
    // are proper after the edit; false, with `name` unchanged, when none is.
    bool narrowDownVersioningAttributeToTrigger(std::string& name);
    void markResponseWithTriggerInitialization(TOVResponse& response,
                                               const AttributesMap& triggered);

    void updateResponseOnSuccess(TOVResponse& response);

    bool updatingReprFile;
    std::string objectType;
    AttributesMap fromValues;
    AttributesMap toValues;
    std::vector<AttributesMap> historyLinks;
    bool historyLinksDataProvided;
    std::vector<AttributesMap> manualLinkAncestors;
    bool manualLinkAncestorsDataProvided;
    std::vector<std::string> attributesToEdit;
    std::vector<std::string> allAttributeNames;
    bool ignoreConflictResolutionErrors;
    bool attributesToEditCalculated;
    bool editsPropertiesForFamilyDetectionCalculated;
    bool editsPropertiesUsedForFamilyDetection;
    bool allAttributeNamesCalculated;
};

#endif  // TOV_TOVEDITCONTROLLER_H_
