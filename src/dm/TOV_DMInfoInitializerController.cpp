#include "tov/TOV_DMInfoInitializerController.h"

#include "dm/TOV_DMInfoJsonParsers.h"
#include "frame/input_labels.h"
#include "tov/TOV_DMStructure.h"

// ---- To be written with the data-model document ----
TOV_DMInfoInitializerController::TOV_DMInfoInitializerController(
    const std::map<std::string, std::string>& labeledInput, TOVCoreDataControllers* coreData)
    : TOVActionController(TOVFunctionality_InitializeDMInfo, labeledInput, coreData) {
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
    return false;
}

bool TOV_DMInfoInitializerController::parseInputData(TOVResponse& /*response*/) {
    return false;
}

bool TOV_DMInfoInitializerController::evaluateRequest(TOVResponse& /*response*/) {
    return true;
}
