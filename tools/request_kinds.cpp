#include "request_kinds.h"

#include "tov/request_kinds.h"

namespace tovcli {

const std::vector<RequestKind>& requestKinds() {
    // The library's kinds but the two documents, which are no questions.
    static const std::vector<RequestKind> kinds = [] {
        std::vector<RequestKind> questions;
        for (const TOVRequestKind& kind : GetTOVRequestKinds()) {
            if (!kind.isDocument) {
                questions.push_back({kind.name, kind.fromText, kind.description});
            }
        }
        return questions;
    }();
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
