#include "tov/TOVTransactionController.h"

#include "api/factory.h"
#include "tov/TOVActionController.h"

TOVTransactionController::TOVTransactionController(TOVFunctionality functionality,
                                                   std::map<std::string, std::string>& labeledInput,
                                                   TOVCoreDataControllers* coreData)
    : actionController(nullptr) {
    initializeProperController(functionality, labeledInput, coreData);
}

TOVTransactionController::TOVTransactionController(
    TOVFunctionality functionality, std::map<std::string, std::string>&& labeledInput,
    TOVCoreDataControllers* coreData)
    : actionController(createControllerTakingInput(functionality, labeledInput, coreData)) {}

TOVTransactionController& TOVTransactionController::operator=(
    const TOVTransactionController& other) = default;

TOVTransactionController::~TOVTransactionController() {
    destroyProperController();
}

TOVResponse TOVTransactionController::executeTransaction() {
    TOVActionController* controller = getActionController();
    if (controller == nullptr) {
        return TOVResponse();
    }
    TOVResponse response = controller->evaluateAndRespond();
    response.printContentsDBG(controller->getLifecycleLogger());
    response.printContentsForJNIDBG(controller->getLifecycleLogger());
    return response;
}

bool TOVTransactionController::hasController() const {
    return actionController != nullptr;
}

void TOVTransactionController::initializeProperController(
    TOVFunctionality functionality, std::map<std::string, std::string>& labeledInput,
    TOVCoreDataControllers* coreData) {
    actionController = createProperController(functionality, labeledInput, coreData);
}

void TOVTransactionController::destroyProperController() {
    delete actionController;
    actionController = nullptr;
}
