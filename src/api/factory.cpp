#include "api/factory.h"

#include <cstdint>
#include <string>
#include <utility>

#include "tov/TOVConflictsResolutionOptionsFinder.h"
#include "tov/TOVCoreDataControllers.h"
#include "tov/TOVEditController.h"
#include "tov/TOVInitializerController.h"
#include "tov/TOVLinkController.h"
#include "tov/TOVLogger.h"
#include "tov/TOVTransactionController.h"
#include "tov/TOV_DMInfoInitializerController.h"

TOVActionController* createControllerTakingInput(TOVFunctionality functionality,
                                                 std::map<std::string, std::string>& labeledInput,
                                                 TOVCoreDataControllers* coreData) {
    // Moved only into a controller that is built, so that a functionality
    // without one leaves the input as it was.
    switch (functionality) {
        case TOVFunctionality_InitializeRules:
            return new TOVInitializerController(std::move(labeledInput), coreData);
        case TOVFunctionality_InitializeDMInfo:
            return new TOV_DMInfoInitializerController(std::move(labeledInput), coreData);
        // The four edit flavours differ only in the two bools: a save attempt,
        // and whether conflict resolution rules are left out.
        case TOVFunctionality_EditAttemptBeforeConflictResolution:
            return new TOVEditController(std::move(labeledInput), coreData, false, true);
        case TOVFunctionality_EditAttempt:
            return new TOVEditController(std::move(labeledInput), coreData, false, false);
        case TOVFunctionality_SaveReprFileAttemptBeforeConflictResolution:
            return new TOVEditController(std::move(labeledInput), coreData, true, true);
        case TOVFunctionality_SaveReprFileAttempt:
            return new TOVEditController(std::move(labeledInput), coreData, true, false);
        case TOVFunctionality_ProperConflictResolutionOptions:
            return new TOVConflictsResolutionOptionsFinder(std::move(labeledInput), coreData);
        case TOVFunctionality_ManualLinkCreation:
            return new TOVLinkController(std::move(labeledInput), coreData);
        default: {
            // A functionality without a controller is a programmer's error.
            const std::string message = "ATTENTION!!! YOU FORGOT TO ADD " +
                                        std::to_string(static_cast<std::int32_t>(functionality)) +
                                        " IN THE FACTORY!!";
            coreData->getLogger()->printToLog(message.c_str());
            return nullptr;
        }
    }
}

// The installed declaration takes the input by value: the caller's copy is
// handed on to the controller.
// NOLINTBEGIN(performance-unnecessary-value-param)
TOVActionController* createProperController(TOVFunctionality functionality,
                                            std::map<std::string, std::string> labeledInput,
                                            TOVCoreDataControllers* coreData) {
    // NOLINTEND(performance-unnecessary-value-param)
    return createControllerTakingInput(functionality, labeledInput, coreData);
}
