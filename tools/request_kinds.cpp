#include "request_kinds.h"

namespace tovcli {

const std::vector<RequestKind>& requestKinds() {
    static const std::vector<RequestKind> kinds = {
        {"edit", &EvaluateTOVEditAttempt, "may this edit be committed? (edit request)"},
        {"edit-before-resolution", &EvaluateTOVEditAttemptBeforeConflictResolution,
         "the same, leaving conflict resolution rules out (edit request)"},
        {"save", &EvaluateTOVSaveReprFileAttempt,
         "may this edit that uploads the representation file be saved? (edit request)"},
        {"save-before-resolution", &EvaluateTOVSaveReprFileAttemptBeforeConflictResolution,
         "the same, leaving conflict resolution rules out (edit request)"},
        {"link", &EvaluateTOVManualLinkCreation,
         "may this manual link be created? (link creation request)"},
        {"options", &EvaluateTOVProperConflictResolutionOptions,
         "which conflict resolutions are proper for this change? (options query)"},
    };
    return kinds;
}

const RequestKind* findRequestKind(const std::string& name) {
    for (const RequestKind& kind : requestKinds()) {
        if (name == kind.name) {
            return &kind;
        }
    }
    return nullptr;
}

std::vector<std::string> requestKindNames() {
    std::vector<std::string> names;
    for (const RequestKind& kind : requestKinds()) {
        names.emplace_back(kind.name);
    }
    return names;
}

std::string requestKindNamesInWords() {
    const std::vector<std::string> names = requestKindNames();
    std::string words;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0) {
            words += i + 1 == names.size() ? " or " : ", ";
        }
        words += names[i];
    }
    return words;
}

}  // namespace tovcli
