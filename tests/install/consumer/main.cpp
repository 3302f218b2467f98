// Uses the installed library the way a host does: composes an edit request,
// sends it with a private core data, and checks the answer. Exits non-zero on
// any surprise.
#include <iostream>
#include <string>

#include "tov/tov.h"

namespace {

int fail(const std::string& what) {
    std::cerr << "tov_consumer: " << what << "\n";
    return 1;
}

}  // namespace

int main() {
    if (GetTOVVersion() != "1.1") {
        return fail("version is \"" + GetTOVVersion() + "\"");
    }

    TOVCoreDataControllers coreData;
    coreData.initializeByMalloc();
    setTOVLoggingFolder("", &coreData);

    const AttributesMap initial = {{"Status", "In Work"}};
    const AttributesMap target = {{"Status", "Released"}};
    std::string request;
    if (composeSimpleTransitionJson("Part", initial, target, request) != 1 || request.empty()) {
        return fail("could not compose the edit request");
    }

    // No rules are loaded, so the attempt fails: with an empty comment while
    // the library has no edit controller, and for the missing rules once it has.
    const std::string answer =
        EvaluateTOVEditAttempt(request, &coreData).turnResponseIntoASingleString();
    if (answer != R"({"Result":"Failure","ResultComment":""})" &&
        answer != R"({"Result":"Failure","ResultComment":"Uninitialized TOV rules"})") {
        return fail("unexpected answer " + answer);
    }

    std::cout << "tov " << GetTOVVersion() << ": " << answer << "\n";
    return 0;
}
