#include "tov/TOV_DMInfoInitializerController.h"

#include <utility>

#include "dm/TOV_DMInfoJsonParsers.h"
#include "frame/input_labels.h"
#include "frame/request_parsing.h"
#include "tov/TOV_DMStructure.h"

TOV_DMInfoInitializerController::TOV_DMInfoInitializerController(
    const std::map<std::string, std::string>& labeledInput, TOVCoreDataControllers* coreData)
    : TOV_DMInfoInitializerController(std::map<std::string, std::string>(labeledInput), coreData) {}

TOV_DMInfoInitializerController::TOV_DMInfoInitializerController(
    std::map<std::string, std::string>&& labeledInput, TOVCoreDataControllers* coreData)
    : TOVActionController(TOVFunctionality_InitializeDMInfo, std::move(labeledInput), coreData) {
    // Each load replaces everything, so the old information goes before anything else.
    getLifecycleDMInfo()->clearAllInfo();
}

TOV_DMInfoInitializerController::~TOV_DMInfoInitializerController() = default;

std::string TOV_DMInfoInitializerController::getInputDataLabelIdentifierForAllDMInfo() {
    return kLabelAllDMInfo;
}

std::string TOV_DMInfoInitializerController::getInputDataLabelIdentifierForJsonFilepath() {
    return kLabelInputIsFilepath;
}

bool TOV_DMInfoInitializerController::isInputDataSufficient() {
    return hasNonEmptyInputWithThisLabel(getInputDataLabelIdentifierForAllDMInfo());
}

bool TOV_DMInfoInitializerController::parseInputData(TOVResponse& response) {
    try {
        const std::string& input = getInputWithThisLabel(getInputDataLabelIdentifierForAllDMInfo());

        TOV_DMInfoJsonParser parser(getLifecycleDMInfo());
        if (parseRequestOrRefuse(parser, input, isInputAJsonFilePath(), response)) {
            return true;
        }
        // Objects read before the error go too: a load is all or nothing.
        getLifecycleDMInfo()->clearAllInfo();
        return false;
    } catch (...) {
        // An interrupted load (out of memory, most likely) keeps no part of the document.
        getLifecycleDMInfo()->clearAllInfo();
        throw;
    }
}

bool TOV_DMInfoInitializerController::evaluateRequest(TOVResponse& response) {
    try {
        response.setGeneralResultComment("Succesfully initialized DM info");
        response.setGeneralResult(true);
        getLifecycleDMInfo()->sortAllDMInfo();
        getLifecycleDMInfo()->printContentsDBG(getLifecycleLogger());
        return true;
    } catch (...) {
        // Sorting or logging interrupted: the load is not done, so it keeps nothing.
        getLifecycleDMInfo()->clearAllInfo();
        throw;
    }
}
