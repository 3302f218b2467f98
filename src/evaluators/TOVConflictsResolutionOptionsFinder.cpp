#include "tov/TOVConflictsResolutionOptionsFinder.h"

#include <algorithm>
#include <utility>

#include "evaluators/TOVConflictsResolutionOptionsFinderParser.h"
#include "evaluators/decision_steps.h"
#include "frame/input_labels.h"
#include "frame/request_parsing.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVVersioningSelection.h"
#include "tov/TOV_DMStructure.h"
#include "tov/string_helpers.h"

TOVConflictsResolutionOptionsFinder::TOVConflictsResolutionOptionsFinder(
    const std::map<std::string, std::string>& labeledInput, TOVCoreDataControllers* coreData)
    : TOVConflictsResolutionOptionsFinder(std::map<std::string, std::string>(labeledInput),
                                          coreData) {}

TOVConflictsResolutionOptionsFinder::TOVConflictsResolutionOptionsFinder(
    std::map<std::string, std::string>&& labeledInput, TOVCoreDataControllers* coreData)
    : TOVActionController(TOVFunctionality_ProperConflictResolutionOptions, std::move(labeledInput),
                          coreData) {}

TOVConflictsResolutionOptionsFinder::TOVConflictsResolutionOptionsFinder(
    const std::string& objectType, const AttributesMap& initialAttributes,
    const AttributesMap& targetAttributes, TOVCoreDataControllers* coreData)
    : TOVActionController(TOVFunctionality_ProperConflictResolutionOptions,
                          std::map<std::string, std::string>(), coreData),
      objectType(objectType),
      initialAttributes(initialAttributes),
      targetAttributes(targetAttributes) {}

TOVConflictsResolutionOptionsFinder::~TOVConflictsResolutionOptionsFinder() = default;

std::string TOVConflictsResolutionOptionsFinder::
    getInputDataLabelIdentifierForConflictsResolutionOptionsQuery() {
    return kLabelConflictsResolutionOptionsQuery;
}

std::string TOVConflictsResolutionOptionsFinder::getInputDataLabelIdentifierForJsonFilepath() {
    return kLabelInputIsFilepath;
}

bool TOVConflictsResolutionOptionsFinder::getValueOfInitialAttribute(const std::string& name,
                                                                     std::string& value) const {
    return getValueofKeywordFromStringStringMap(name, initialAttributes, value);
}

bool TOVConflictsResolutionOptionsFinder::getValueOfTargetAttribute(const std::string& name,
                                                                    std::string& value) const {
    return getValueofKeywordFromStringStringMap(name, targetAttributes, value);
}

void TOVConflictsResolutionOptionsFinder::addTargetAttribute(const char* name, const char* value) {
    // A string cannot be built from a null pointer: a missing name stores
    // nothing, and a missing value reads as empty, as elsewhere in the library.
    if (name == nullptr) {
        return;
    }
    targetAttributes[name] = value == nullptr ? "" : value;
}

bool TOVConflictsResolutionOptionsFinder::isInputDataSufficient() {
    return hasNonEmptyInputWithThisLabel(
        getInputDataLabelIdentifierForConflictsResolutionOptionsQuery());
}

bool TOVConflictsResolutionOptionsFinder::parseInputData(TOVResponse& response) {
    const std::string& input =
        getInputWithThisLabel(getInputDataLabelIdentifierForConflictsResolutionOptionsQuery());

    TOVConflictsResolutionOptionsFinderParser parser;
    const bool parsed = parseRequestOrRefuse(parser, input, isInputAJsonFilePath(), response);
    // Through the setters, also after a fault, so that the finder holds what
    // the parse read. The upload flag comes last, since it adds to the target
    // attributes that replace the map.
    OptionsQuery query = parser.takeQuery();
    setObjectType(query.objectType);
    setInitialAttributes(std::move(query.initialAttributes));
    setTargetAttributes(std::move(query.targetAttributes));
    if (query.uploadsRepresentationFile) {
        addTargetAttribute(TOVAttrItemName_DoesUploadFile, *query.uploadsRepresentationFile
                                                               ? TOVAttrItemValue_True
                                                               : TOVAttrItemValue_False);
    }
    return parsed;
}

bool TOVConflictsResolutionOptionsFinder::evaluateRequest(TOVResponse& response) {
    if (foundUninitializedRulesViolation(response)) {
        return false;
    }
    if (foundUninitializedDMInfoViolation(response)) {
        return false;
    }
    if (!foundConflictResolutionIsForcedViolation(response) &&
        !foundVersioningAttributeSelectionViolation(response)) {
        updateResponseOnSuccess(response);
    }
    removeUnnecessaryKeywordsFromResponse(response);
    return false;
}

bool TOVConflictsResolutionOptionsFinder::foundConflictResolutionIsForcedViolation(
    TOVResponse& response) {
    std::vector<const TOVConflictResolution*> related;
    getLifecycleBusinessRules()->getRelatedConflictResolutionRules(
        objectType, getKeysOfMap(targetAttributes), getLifecycleDMInfo(), related);

    // Every rule is asked, so that a contradiction tells all the rules that
    // forced anything, not only the two that clash.
    std::vector<const TOVConflictResolution*> forcing;
    for (const TOVConflictResolution* rule : related) {
        TOVConflictResolution::TOVConflictResolutionValues value =
            TOVConflictResolution::TOVConflictResolution_NoConstraint;
        if (rule->doesThisTransitionHaveAConstrainedConflictResolution(
                objectType, initialAttributes, targetAttributes, getLifecycleDMInfo(), value)) {
            forcing.push_back(rule);
            markResponseWithForcedVersioningAttribute(response, value);
        }
    }
    const bool contradiction =
        isResponseMarkedWithForcedOverwrite(response) && isResponseMarkedWithForcedSpinup(response);
    // A contradiction tells every forcing rule in the comment.
    const DecisionSteps steps(getCoreData());
    if (steps.observed()) {
        for (const TOVConflictResolution* rule : related) {
            if (std::find(forcing.begin(), forcing.end(), rule) == forcing.end()) {
                steps.tell(rule, TOVRuleOutcome_NotApplicable);
            } else {
                steps.tell(rule, contradiction ? TOVRuleOutcome_Objected : TOVRuleOutcome_Approved,
                           contradiction);
            }
        }
    }
    if (!contradiction) {
        return false;
    }
    response.setGeneralResult(false);
    std::string comment;
    composeCommentForContradictingForcedConflictResolution(forcing, comment);
    response.appendToGeneralResultComment(comment.c_str());
    return true;
}

bool TOVConflictsResolutionOptionsFinder::foundVersioningAttributeSelectionViolation(
    TOVResponse& response) {
    const std::string overwriteLabel = getLifecycleDMInfo()->getOverwriteLabel();
    // A forced overwrite leaves nothing to select among.
    if (isResponseMarkedWithForcedOverwrite(response)) {
        markResponseWithSelectedVersioningAttributes({overwriteLabel}, response);
        return false;
    }
    std::vector<const TOVVersioningSelection*> related;
    if (!getLifecycleBusinessRules()->getRelatedVersioningSelectionRulesExact(
            objectType, initialAttributes, getLifecycleDMInfo(), related)) {
        return false;
    }
    std::set<std::string> common;
    const bool agree = getCommonVersioningAttrsFromApplicableRules(related, common);
    // Every rule found applies; when they leave nothing in common, the
    // comment tells them all.
    const DecisionSteps steps(getCoreData());
    if (steps.observed()) {
        for (const TOVVersioningSelection* rule : related) {
            steps.tell(rule, agree ? TOVRuleOutcome_Approved : TOVRuleOutcome_Objected, !agree);
        }
    }
    if (agree) {
        // Overwriting stays an option beside the allowed attributes unless
        // spin-up is forced.
        if (!isResponseMarkedWithForcedSpinup(response)) {
            common.insert(overwriteLabel);
        }
        markResponseWithSelectedVersioningAttributes(common, response);
        return false;
    }
    response.setGeneralResult(false);
    std::string comment;
    composeCommentForContradictingVersioningSelectionRules(related, comment);
    response.appendToGeneralResultComment(comment.c_str());
    return true;
}

bool TOVConflictsResolutionOptionsFinder::getCommonVersioningAttrsFromApplicableRules(
    const std::vector<const TOVVersioningSelection*>& rules, std::set<std::string>& common) {
    // A rule can only narrow: an option that is no versioning attribute of the
    // object type is lost.
    getLifecycleDMInfo()->collectVersioningAttributesOfObject(objectType, common);
    for (const TOVVersioningSelection* rule : rules) {
        const std::vector<std::string>& options = rule->getVersioningOptions();
        for (auto attribute = common.begin(); attribute != common.end();) {
            if (std::find(options.begin(), options.end(), *attribute) == options.end()) {
                attribute = common.erase(attribute);
            } else {
                ++attribute;
            }
        }
    }
    return !common.empty();
}

void TOVConflictsResolutionOptionsFinder::markResponseWithForcedVersioningAttribute(
    TOVResponse& response, const TOVConflictResolution::TOVConflictResolutionValues& value) {
    if (value == TOVConflictResolution::TOVConflictResolution_Overwrite) {
        response.setCommentUnderKeyword(TOVResponseKeyword_ForcedOverwrite, TOVAttrItemValue_True);
    } else if (value == TOVConflictResolution::TOVConflictResolution_Spinup) {
        response.setCommentUnderKeyword(TOVResponseKeyword_ForcedSpinup, TOVAttrItemValue_True);
    }
}

void TOVConflictsResolutionOptionsFinder::markResponseWithSelectedVersioningAttributes(
    const std::set<std::string>& attributes, TOVResponse& response) {
    response.setCommentUnderKeyword(TOVResponseKeyword_SelectedVersioningAttribute,
                                    createCommaSeparatedSetOfStrings(attributes));
}

void TOVConflictsResolutionOptionsFinder::addAllVersioningOptionsOfType(TOVResponse& response,
                                                                        bool withOverwrite) {
    std::vector<std::string> options;
    getLifecycleDMInfo()->collectVersioningAttributesOfObject(objectType, options);
    if (withOverwrite) {
        options.push_back(getLifecycleDMInfo()->getOverwriteLabel());
    }
    // An empty list gives an empty comment, not "[]".
    response.setCommentUnderKeyword(TOVResponseKeyword_SelectedVersioningAttribute,
                                    createCommaSeparatedListOfStrings(options));
}

bool TOVConflictsResolutionOptionsFinder::isResponseMarkedWithForcedOverwrite(
    TOVResponse& response) {
    std::string mark;
    return response.getCommentUnderKeyword(TOVResponseKeyword_ForcedOverwrite, mark) &&
           areStringsEqualSimple(mark, TOVAttrItemValue_True);
}

bool TOVConflictsResolutionOptionsFinder::isResponseMarkedWithForcedSpinup(TOVResponse& response) {
    std::string mark;
    return response.getCommentUnderKeyword(TOVResponseKeyword_ForcedSpinup, mark) &&
           areStringsEqualSimple(mark, TOVAttrItemValue_True);
}

bool TOVConflictsResolutionOptionsFinder::isResponseMarkedWithSelectedVersioningAttribute(
    TOVResponse& response) {
    std::string options;
    return response.getCommentUnderKeyword(TOVResponseKeyword_SelectedVersioningAttribute, options);
}

bool TOVConflictsResolutionOptionsFinder::foundAnyTOVRulesForConflictResolutionSoFar(
    TOVResponse& response) {
    return isResponseMarkedWithSelectedVersioningAttribute(response) ||
           isResponseMarkedWithForcedSpinup(response) ||
           isResponseMarkedWithForcedOverwrite(response);
}

namespace {

// The heading, directly followed by each rule in words, ", " between two rules,
// and a closing full stop.
template <typename Rule>
void composeContradictionComment(const char* heading, const std::vector<const Rule*>& rules,
                                 std::string& comment) {
    comment = heading;
    for (std::size_t i = 0; i < rules.size(); ++i) {
        if (i != 0) {
            comment += ", ";
        }
        rules[i]->expressRuleInWords(comment);
    }
    comment += ".";
}

}  // namespace

void TOVConflictsResolutionOptionsFinder::composeCommentForContradictingForcedConflictResolution(
    const std::vector<const TOVConflictResolution*>& rules, std::string& comment) {
    composeContradictionComment("Contradicting conflict resolution detected!!", rules, comment);
}

void TOVConflictsResolutionOptionsFinder::composeCommentForContradictingVersioningSelectionRules(
    const std::vector<const TOVVersioningSelection*>& rules, std::string& comment) {
    composeContradictionComment("Contradicting versioning rules detected!!", rules, comment);
}

void TOVConflictsResolutionOptionsFinder::updateResponseOnSuccess(TOVResponse& response) {
    response.setGeneralResult(true);
    // The comment reads the marks before the fallback options add one.
    updateGeneralCommentOnSuccess(response);
    updateSelectedVersioningOptionsWhenNoTOVRulesApply(response);
}

void TOVConflictsResolutionOptionsFinder::updateGeneralCommentOnSuccess(TOVResponse& response) {
    if (foundAnyTOVRulesForConflictResolutionSoFar(response)) {
        response.setGeneralResultComment(
            "Found TOV rule for specific versioning attribute selection");
    } else {
        response.setGeneralResultComment(
            "Did not find any TOV rule for specific versioning attribute selection");
    }
}

void TOVConflictsResolutionOptionsFinder::updateSelectedVersioningOptionsWhenNoTOVRulesApply(
    TOVResponse& response) {
    if (!foundAnyTOVRulesForConflictResolutionSoFar(response)) {
        addAllVersioningOptionsOfType(response, true);
    } else if (isResponseMarkedWithForcedSpinup(response) &&
               !isResponseMarkedWithSelectedVersioningAttribute(response)) {
        // Spin-up is forced and no rule narrowed it: any versioning attribute,
        // but no overwriting.
        addAllVersioningOptionsOfType(response, false);
    }
}

void TOVConflictsResolutionOptionsFinder::removeUnnecessaryKeywordsFromResponse(
    TOVResponse& response) {
    response.removeKeyword(TOVResponseKeyword_ForcedSpinup);
    response.removeKeyword(TOVResponseKeyword_ForcedOverwrite);
}
