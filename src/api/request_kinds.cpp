#include "api/request_kinds.h"

#include <cstring>

#include "tov/entry_points.h"

namespace {

constexpr std::array<TOVRequestKind, TOVRequestKindCount> kKinds = {{
    {"rules", true, &InitializeTOVRules, &InitializeTOVRulesFromFile,
     "replace the rules (rules document, all or nothing)"},
    {"datamodel", true, &InitializeTOV_DMInfo, &InitializeTOV_DMInfoFromFile,
     "replace the data-model information (data-model document, all or nothing)"},
    {"edit", false, &EvaluateTOVEditAttempt, &EvaluateTOVEditAttemptFromFile,
     "may this edit be committed? (edit request)"},
    {"edit-before-resolution", false, &EvaluateTOVEditAttemptBeforeConflictResolution,
     &EvaluateTOVEditAttemptBeforeConflictResolutionFromFile,
     "the same, leaving conflict resolution rules out (edit request)"},
    {"save", false, &EvaluateTOVSaveReprFileAttempt, &EvaluateTOVSaveReprFileAttemptFromFile,
     "may this edit that uploads the representation file be saved? (edit request)"},
    {"save-before-resolution", false, &EvaluateTOVSaveReprFileAttemptBeforeConflictResolution,
     &EvaluateTOVSaveReprFileAttemptBeforeConflictResolutionFromFile,
     "the same, leaving conflict resolution rules out (edit request)"},
    {"link", false, &EvaluateTOVManualLinkCreation, &EvaluateTOVManualLinkCreationFromFile,
     "may this manual link be created? (link creation request)"},
    {"options", false, &EvaluateTOVProperConflictResolutionOptions,
     &EvaluateTOVProperConflictResolutionOptionsFromFile,
     "which conflict resolutions are proper for this change? (options query)"},
}};

}  // namespace

const std::array<TOVRequestKind, TOVRequestKindCount>& GetTOVRequestKinds() {
    return kKinds;
}

const TOVRequestKind* FindTOVRequestKind(const std::string& name) {
    return tovapi::findRequestKind(name.c_str());
}

namespace tovapi {

const TOVRequestKind* findRequestKind(const char* name) {
    for (const TOVRequestKind& kind : kKinds) {
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
