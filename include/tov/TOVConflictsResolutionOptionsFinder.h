// Tells the host which conflict resolutions are proper for a change: to
// overwrite (the overwrite label of the data model) and to spin up along which
// versioning attributes. The options go under "SelectedVersioningAttribute" as
// a bracketed list.
//
// Two stages decide. Conflict resolution rules may force overwrite or spin-up
// for the transition; versioning selection rules may then narrow the
// versioning attributes for the initial attributes. The first stage can settle
// the answer, the second can only narrow it. A contradiction in either stage
// fails the response with the rules in words.
#ifndef TOV_TOVCONFLICTSRESOLUTIONOPTIONSFINDER_H_
#define TOV_TOVCONFLICTSRESOLUTIONOPTIONSFINDER_H_

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tov/TOVActionController.h"
#include "tov/TOVConflictResolution.h"
#include "tov/export.h"
#include "tov/vocabulary.h"

class TOVVersioningSelection;

class TOV_API TOVConflictsResolutionOptionsFinder : public TOVActionController {
public:
    // For a query document under "Conflicts_Resolution_Options_query_data"; the
    // fields stay empty until the query is parsed.
    TOVConflictsResolutionOptionsFinder(const std::map<std::string, std::string>& labeledInput,
                                        TOVCoreDataControllers* coreData);
    // The same, taking the input over, so that the request is held once.
    TOVConflictsResolutionOptionsFinder(std::map<std::string, std::string>&& labeledInput,
                                        TOVCoreDataControllers* coreData);
    // For a change known in code: call evaluateRequest directly.
    TOVConflictsResolutionOptionsFinder(const std::string& objectType,
                                        const AttributesMap& initialAttributes,
                                        const AttributesMap& targetAttributes,
                                        TOVCoreDataControllers* coreData);
    ~TOVConflictsResolutionOptionsFinder() override;

    // "Conflicts_Resolution_Options_query_data".
    static std::string getInputDataLabelIdentifierForConflictsResolutionOptionsQuery();
    // "Input_is_filepath".
    static std::string getInputDataLabelIdentifierForJsonFilepath();

    // Checks that rules and data-model information are loaded, runs the two
    // stages and writes the options or the contradiction into `response`. It
    // returns false whatever happens: read the verdict from the response. The
    // forced marks it uses as working notes never stay in the response.
    bool evaluateRequest(TOVResponse& response) override;

    const std::string& getObjectType() const { return objectType; }
    void setObjectType(const std::string& type) { objectType = type; }
    const AttributesMap& getInitialAttributes() const { return initialAttributes; }
    void setInitialAttributes(const AttributesMap& attributes) { initialAttributes = attributes; }
    void setInitialAttributes(AttributesMap&& attributes) {
        initialAttributes = std::move(attributes);
    }
    bool getValueOfInitialAttribute(const std::string& name, std::string& value) const;
    const AttributesMap& getTargetAttributes() const { return targetAttributes; }
    void setTargetAttributes(const AttributesMap& attributes) { targetAttributes = attributes; }
    void setTargetAttributes(AttributesMap&& attributes) {
        targetAttributes = std::move(attributes);
    }
    bool getValueOfTargetAttribute(const std::string& name, std::string& value) const;
    // Stores the value under the name, replacing what stood there. A null name
    // stores nothing; a null value is stored as the empty text.
    void addTargetAttribute(const char* name, const char* value);

protected:
    bool isInputDataSufficient() override;
    bool parseInputData(TOVResponse& response) override;
    // First stage: marks the response with every resolution that a conflict
    // resolution rule forces; true, with the forcing rules in words, when both
    // overwrite and spin-up are forced.
    virtual bool foundConflictResolutionIsForcedViolation(TOVResponse& response);

private:
    // Second stage: narrows the options by the versioning selection rules that
    // apply to the initial attributes; true when they leave nothing in common.
    bool foundVersioningAttributeSelectionViolation(TOVResponse& response);
    // The versioning attributes of the object type that every rule allows.
    bool getCommonVersioningAttrsFromApplicableRules(
        const std::vector<const TOVVersioningSelection*>& rules, std::set<std::string>& common);

    void markResponseWithForcedVersioningAttribute(
        TOVResponse& response, const TOVConflictResolution::TOVConflictResolutionValues& value);
    void markResponseWithSelectedVersioningAttributes(const std::set<std::string>& attributes,
                                                      TOVResponse& response);
    // Every versioning attribute of the object type in data-model order, and
    // the overwrite label last when `withOverwrite` is true.
    void addAllVersioningOptionsOfType(TOVResponse& response, bool withOverwrite);
    bool isResponseMarkedWithForcedOverwrite(TOVResponse& response);
    bool isResponseMarkedWithForcedSpinup(TOVResponse& response);
    bool isResponseMarkedWithSelectedVersioningAttribute(TOVResponse& response);
    bool foundAnyTOVRulesForConflictResolutionSoFar(TOVResponse& response);

    void composeCommentForContradictingForcedConflictResolution(
        const std::vector<const TOVConflictResolution*>& rules, std::string& comment);
    void composeCommentForContradictingVersioningSelectionRules(
        const std::vector<const TOVVersioningSelection*>& rules, std::string& comment);

    void updateResponseOnSuccess(TOVResponse& response);
    void updateGeneralCommentOnSuccess(TOVResponse& response);
    void updateSelectedVersioningOptionsWhenNoTOVRulesApply(TOVResponse& response);
    void removeUnnecessaryKeywordsFromResponse(TOVResponse& response);

    std::string objectType;
    AttributesMap initialAttributes;
    AttributesMap targetAttributes;
};

#endif  // TOV_TOVCONFLICTSRESOLUTIONOPTIONSFINDER_H_
