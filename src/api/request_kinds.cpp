#include "api/request_kinds.h"

#include <cstring>

#include "tov/entry_points.h"

namespace tovapi {

namespace {

constexpr std::array<RequestKind, 8> kKinds = {{
    {"rules", true, &InitializeTOVRules, &InitializeTOVRulesFromFile},
    {"datamodel", true, &InitializeTOV_DMInfo, &InitializeTOV_DMInfoFromFile},
    {"edit", false, &EvaluateTOVEditAttempt, &EvaluateTOVEditAttemptFromFile},
    {"edit-before-resolution", false, &EvaluateTOVEditAttemptBeforeConflictResolution,
     &EvaluateTOVEditAttemptBeforeConflictResolutionFromFile},
    {"save", false, &EvaluateTOVSaveReprFileAttempt, &EvaluateTOVSaveReprFileAttemptFromFile},
    {"save-before-resolution", false, &EvaluateTOVSaveReprFileAttemptBeforeConflictResolution,
     &EvaluateTOVSaveReprFileAttemptBeforeConflictResolutionFromFile},
    {"link", false, &EvaluateTOVManualLinkCreation, &EvaluateTOVManualLinkCreationFromFile},
    {"options", false, &EvaluateTOVProperConflictResolutionOptions,
     &EvaluateTOVProperConflictResolutionOptionsFromFile},
}};

}  // namespace

const std::array<RequestKind, 8>& requestKinds() {
    return kKinds;
}

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

TOVResponse unknownKindResponse(const std::string& name) {
    TOVResponse response;
    response.setGeneralResult(false);
    const std::string comment =
        "Unknown request kind \"" + name + "\": expected " + requestKindNamesInWords();
    response.setGeneralResultComment(comment.c_str());
    return response;
}

}  // namespace tovapi
