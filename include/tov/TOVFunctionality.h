#ifndef TOV_TOVFUNCTIONALITY_H_
#define TOV_TOVFUNCTIONALITY_H_

#include <cstdint>

// Selects the controller that serves a request.
enum TOVFunctionality : std::int32_t {
    TOVFunctionality_InitializeRules = 0,
    TOVFunctionality_InitializeDMInfo = 1,
    TOVFunctionality_EditAttemptBeforeConflictResolution = 2,
    TOVFunctionality_EditAttempt = 3,
    TOVFunctionality_SaveReprFileAttemptBeforeConflictResolution = 4,
    TOVFunctionality_SaveReprFileAttempt = 5,
    TOVFunctionality_ProperConflictResolutionOptions = 6,
    TOVFunctionality_ManualLinkCreation = 7,
};

#endif  // TOV_TOVFUNCTIONALITY_H_
