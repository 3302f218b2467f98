#include "api/request_kinds.h"

#include <array>
#include <cstring>

#include "tov/entry_points.h"

namespace tovapi {

namespace {

constexpr std::array<RequestKind, 8> kKinds = {{
    {"rules", &InitializeTOVRules, &InitializeTOVRulesFromFile},
    {"datamodel", &InitializeTOV_DMInfo, &InitializeTOV_DMInfoFromFile},
    {"edit", &EvaluateTOVEditAttempt, &EvaluateTOVEditAttemptFromFile},
    {"edit-before-resolution", &EvaluateTOVEditAttemptBeforeConflictResolution,
     &EvaluateTOVEditAttemptBeforeConflictResolutionFromFile},
    {"save", &EvaluateTOVSaveReprFileAttempt, &EvaluateTOVSaveReprFileAttemptFromFile},
    {"save-before-resolution", &EvaluateTOVSaveReprFileAttemptBeforeConflictResolution,
     &EvaluateTOVSaveReprFileAttemptBeforeConflictResolutionFromFile},
    {"link", &EvaluateTOVManualLinkCreation, &EvaluateTOVManualLinkCreationFromFile},
    {"options", &EvaluateTOVProperConflictResolutionOptions,
     &EvaluateTOVProperConflictResolutionOptionsFromFile},
}};

}  // namespace

const RequestKind* findRequestKind(const char* name) {
    for (const RequestKind& kind : kKinds) {
        if (std::strcmp(name, kind.name) == 0) {
            return &kind;
        }
    }
    return nullptr;
}

std::string requestKindNamesInWords() {
    std::string words;
    for (std::size_t i = 0; i < kKinds.size(); ++i) {
        if (i > 0) {
            words += i + 1 == kKinds.size() ? " or " : ", ";
        }
        words += kKinds[i].name;
    }
    return words;
}

}  // namespace tovapi
