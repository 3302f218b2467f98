#include "tov/TOVInitializerController.h"

#include <utility>

#include "frame/input_labels.h"
#include "frame/request_parsing.h"
#include "rules/TOVInitializationJsonParser.h"
#include "tov/TOVLifecycleBusinessRules.h"

TOVInitializerController::TOVInitializerController(
    const std::map<std::string, std::string>& labeledInput, TOVCoreDataControllers* coreData)
    : TOVInitializerController(std::map<std::string, std::string>(labeledInput), coreData) {}

TOVInitializerController::TOVInitializerController(
    std::map<std::string, std::string>&& labeledInput, TOVCoreDataControllers* coreData)
    : TOVActionController(TOVFunctionality_InitializeRules, std::move(labeledInput), coreData) {
    // Each load replaces everything, so the old rules go before anything else.
    getLifecycleBusinessRules()->clearAllRules();
}

TOVInitializerController::~TOVInitializerController() = default;

std::string TOVInitializerController::getInputDataLabelIdentifierForAllRules() {
    return kLabelAllRules;
}

std::string TOVInitializerController::getInputDataLabelIdentifierForJsonFilepath() {
    return kLabelInputIsFilepath;
}

bool TOVInitializerController::isInputDataSufficient() {
    return hasNonEmptyInputWithThisLabel(getInputDataLabelIdentifierForAllRules());
}

bool TOVInitializerController::parseInputData(TOVResponse& response) {
    try {
        const std::string& input = getInputWithThisLabel(getInputDataLabelIdentifierForAllRules());

        TOVInitializationJsonParser parser(getLifecycleBusinessRules());
        if (parseRequestOrRefuse(parser, input, isInputAJsonFilePath(), response)) {
            return true;
        }
        // Rules read before the fault go too: a load is all or nothing.
        getLifecycleBusinessRules()->clearAllRules();
        return false;
    } catch (...) {
        // An interrupted load (out of memory, most likely) keeps no part of the document.
        getLifecycleBusinessRules()->clearAllRules();
        throw;
    }
}

bool TOVInitializerController::evaluateRequest(TOVResponse& response) {
    try {
        response.setGeneralResultComment("Successfully initialized TOV rules");
        response.setGeneralResult(true);
        getLifecycleBusinessRules()->sortAllRules();
        getLifecycleBusinessRules()->printContentsDBG(getLifecycleLogger());
        return true;
    } catch (...) {
        // Sorting or logging interrupted: the load is not done, so it keeps nothing.
        getLifecycleBusinessRules()->clearAllRules();
        throw;
    }
}
