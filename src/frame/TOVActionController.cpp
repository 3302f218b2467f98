#include "tov/TOVActionController.h"

#include <utility>

#include "frame/input_labels.h"

#include "tov/TOVCoreDataControllers.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOV_DMStructure.h"

TOVActionController::TOVActionController(TOVFunctionality functionality,
                                         const std::map<std::string, std::string>& labeledInput,
                                         TOVCoreDataControllers* coreData)
    : functionality(functionality), inputData(labeledInput), coreData(coreData) {}

TOVActionController::TOVActionController(TOVFunctionality functionality,
                                         std::map<std::string, std::string>&& labeledInput,
                                         TOVCoreDataControllers* coreData)
    : functionality(functionality), inputData(std::move(labeledInput)), coreData(coreData) {}

TOVActionController::~TOVActionController() = default;

TOVResponse TOVActionController::evaluateAndRespond() {
    TOVResponse response;
    if (!isInputDataSufficientUpdateResponse(response)) {
        return response;
    }
    if (!parseInputData(response)) {
        return response;
    }
    evaluateRequest(response);
    return response;
}

bool TOVActionController::isInputDataSufficientUpdateResponse(TOVResponse& response) {
    if (isInputDataSufficient()) {
        response.setGeneralResult(true);
    } else {
        response.setGeneralResult(false);
        response.setGeneralResultComment(kInsufficientInputData);
    }
    return response.getGeneralResult();
}

bool TOVActionController::getInputStringWithThisLabel(const std::string& label, std::string& out) {
    const auto found = inputData.find(label);
    if (found == inputData.end()) {
        return false;
    }
    out = found->second;
    return true;
}

const std::string& TOVActionController::getInputWithThisLabel(const std::string& label) const {
    static const std::string kNoInput;
    const auto found = inputData.find(label);
    return found == inputData.end() ? kNoInput : found->second;
}

bool TOVActionController::hasNonEmptyInputWithThisLabel(const std::string& label) {
    return !getInputWithThisLabel(label).empty();
}

bool TOVActionController::isInputAJsonFilePath() {
    // Built once: the label is longer than a string holds without the heap.
    static const std::string kFilePathLabel = kLabelInputIsFilepath;
    return inputData.count(kFilePathLabel) != 0;
}

bool TOVActionController::foundUninitializedRulesViolation(TOVResponse& response) {
    if (getLifecycleBusinessRules()->existAnyRules()) {
        return false;
    }
    response.setGeneralResult(false);
    response.appendToGeneralResultComment("Uninitialized TOV rules");
    return true;
}

bool TOVActionController::foundUninitializedDMInfoViolation(TOVResponse& response) {
    if (getLifecycleDMInfo()->existAnyInfo()) {
        return false;
    }
    response.setGeneralResult(false);
    response.appendToGeneralResultComment("Uninitialized Dm Information");
    return true;
}

TOVLifecycleBusinessRules* TOVActionController::getLifecycleBusinessRules() {
    return coreData->getRules();
}

TOV_DMStructure* TOVActionController::getLifecycleDMInfo() {
    return coreData->getDmInfo();
}

TOVLogger* TOVActionController::getLifecycleLogger() {
    return coreData->getLogger();
}
