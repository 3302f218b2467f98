#include "tov/entry_points.h"

#include "api/TOVVemoFrontdesk.h"
#include "frame/input_labels.h"
#include "tov/TOVCoreDataControllers.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOV_DMStructure.h"
#include "tov/vocabulary.h"

namespace {

// What tells one request function from another on the common road.
struct RequestKind {
    TOVFunctionality functionality;
    const char* label;
    const char* inputTitle;
    const char* resultTitle;
};

void emptyRules(TOVCoreDataControllers* coreData) {
    coreData->getRules()->clearAllRules();
}

void emptyDMInfo(TOVCoreDataControllers* coreData) {
    coreData->getDmInfo()->clearAllInfo();
}

constexpr RequestKind kInitializeRules{
    TOVFunctionality_InitializeRules, kLabelAllRules,
    "\nInitializing TOV Rules input=", "Initializing TOV Rules result="};
constexpr RequestKind kInitializeDMInfo{
    TOVFunctionality_InitializeDMInfo, kLabelAllDMInfo,
    "\nInitializing DM Info attempt input=", "Initializing DM Info attempt result="};
constexpr RequestKind kEditBeforeResolution{
    TOVFunctionality_EditAttemptBeforeConflictResolution, kLabelTransitionData,
    "\nEvaluating Edit attempt before conflict resolution input=",
    "Evaluating Edit attempt before conflict resolution result="};
constexpr RequestKind kEdit{TOVFunctionality_EditAttempt, kLabelTransitionData,
                            "\nEvaluating Edit attempt input=", "Evaluating Edit attempt result="};
constexpr RequestKind kSaveBeforeResolution{
    TOVFunctionality_SaveReprFileAttemptBeforeConflictResolution, kLabelTransitionData,
    "\nEvaluating save repr.file attempt before conflict resolution input=",
    "Evaluating save repr.file attempt before conflict resolution result="};
constexpr RequestKind kSave{
    TOVFunctionality_SaveReprFileAttempt, kLabelTransitionData,
    "\nEvaluating save repr.file attempt input=", "Evaluating save repr.file attempt result="};
constexpr RequestKind kOptions{TOVFunctionality_ProperConflictResolutionOptions,
                               kLabelConflictsResolutionOptionsQuery,
                               "\nRequesting proper conflict resolutions options input=",
                               "Requesting proper conflict resolutions options result="};
constexpr RequestKind kLinkCreation{TOVFunctionality_ManualLinkCreation, kLabelLinkCreationData,
                                    "\nEvaluating Manual Link creation attempt input=",
                                    "Evaluating Manual Link creation attempt result="};

TOVResponse serveAndLogResult(const RequestKind& kind, TOVVemoFrontdesk& frontdesk) {
    frontdesk.serveLabeledInput();
    TOVResponse result = frontdesk.takeResponse();
    frontdesk.printResponseToLog(kind.resultTitle, result);
    return result;
}

// An evaluation logs its input whether it came as text or as a path.
TOVResponse evaluate(const RequestKind& kind, const std::string& input,
                     TOVCoreDataControllers* coreData, bool inputIsFilePath) {
    TOVVemoFrontdesk frontdesk(kind.functionality);
    frontdesk.borrowData(coreData);
    frontdesk.printTitledStringToLog(kind.inputTitle, input);
    frontdesk.getIncomingStringAndLabelItAs(kind.label, input);
    if (inputIsFilePath) {
        frontdesk.getIncomingStringAndLabelItAs(kLabelInputIsFilepath, TOVAttrItemValue_True);
    }
    return serveAndLogResult(kind, frontdesk);
}

// A document handed in as text is never logged, since it can be large; a path is.
// Whatever interrupts a load, even the logging after it, leaves `emptyStore`'s
// store empty: a caller who sees the exception must not be served from part of
// the document, nor from a whole one it was never told had loaded.
TOVResponse initialize(const RequestKind& kind, const std::string& input,
                       TOVCoreDataControllers* coreData, bool inputIsFilePath,
                       void (*emptyStore)(TOVCoreDataControllers*)) {
    try {
        TOVVemoFrontdesk frontdesk(kind.functionality);
        frontdesk.borrowData(coreData);
        frontdesk.getIncomingStringAndLabelItAs(kind.label, input);
        if (inputIsFilePath) {
            frontdesk.printTitledStringToLog(kind.inputTitle, input);
            frontdesk.getIncomingStringAndLabelItAs(kLabelInputIsFilepath, TOVAttrItemValue_True);
        }
        return serveAndLogResult(kind, frontdesk);
    } catch (...) {
        emptyStore(coreData);
        throw;
    }
}

}  // namespace

std::string GetTOVVersion() {
    return "1.1";
}

TOVResponse InitializeTOVRules(const std::string& input, TOVCoreDataControllers* coreData) {
    return initialize(kInitializeRules, input, coreData, false, &emptyRules);
}

TOVResponse InitializeTOVRulesFromFile(const std::string& input, TOVCoreDataControllers* coreData) {
    return initialize(kInitializeRules, input, coreData, true, &emptyRules);
}

TOVResponse InitializeTOV_DMInfo(const std::string& input, TOVCoreDataControllers* coreData) {
    return initialize(kInitializeDMInfo, input, coreData, false, &emptyDMInfo);
}

TOVResponse InitializeTOV_DMInfoFromFile(const std::string& input,
                                         TOVCoreDataControllers* coreData) {
    return initialize(kInitializeDMInfo, input, coreData, true, &emptyDMInfo);
}

TOVResponse EvaluateTOVEditAttempt(const std::string& input, TOVCoreDataControllers* coreData) {
    return evaluate(kEdit, input, coreData, false);
}

TOVResponse EvaluateTOVEditAttemptFromFile(const std::string& input,
                                           TOVCoreDataControllers* coreData) {
    return evaluate(kEdit, input, coreData, true);
}

TOVResponse EvaluateTOVEditAttemptBeforeConflictResolution(const std::string& input,
                                                           TOVCoreDataControllers* coreData) {
    return evaluate(kEditBeforeResolution, input, coreData, false);
}

TOVResponse EvaluateTOVEditAttemptBeforeConflictResolutionFromFile(
    const std::string& input, TOVCoreDataControllers* coreData) {
    return evaluate(kEditBeforeResolution, input, coreData, true);
}

TOVResponse EvaluateTOVSaveReprFileAttempt(const std::string& input,
                                           TOVCoreDataControllers* coreData) {
    return evaluate(kSave, input, coreData, false);
}

TOVResponse EvaluateTOVSaveReprFileAttemptFromFile(const std::string& input,
                                                   TOVCoreDataControllers* coreData) {
    return evaluate(kSave, input, coreData, true);
}

TOVResponse EvaluateTOVSaveReprFileAttemptBeforeConflictResolution(
    const std::string& input, TOVCoreDataControllers* coreData) {
    return evaluate(kSaveBeforeResolution, input, coreData, false);
}

TOVResponse EvaluateTOVSaveReprFileAttemptBeforeConflictResolutionFromFile(
    const std::string& input, TOVCoreDataControllers* coreData) {
    return evaluate(kSaveBeforeResolution, input, coreData, true);
}

TOVResponse EvaluateTOVManualLinkCreation(const std::string& input,
                                          TOVCoreDataControllers* coreData) {
    return evaluate(kLinkCreation, input, coreData, false);
}

TOVResponse EvaluateTOVManualLinkCreationFromFile(const std::string& input,
                                                  TOVCoreDataControllers* coreData) {
    return evaluate(kLinkCreation, input, coreData, true);
}

TOVResponse EvaluateTOVProperConflictResolutionOptions(const std::string& input,
                                                       TOVCoreDataControllers* coreData) {
    return evaluate(kOptions, input, coreData, false);
}

TOVResponse EvaluateTOVProperConflictResolutionOptionsFromFile(const std::string& input,
                                                               TOVCoreDataControllers* coreData) {
    return evaluate(kOptions, input, coreData, true);
}
