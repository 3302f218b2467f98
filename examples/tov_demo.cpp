// A small host program: composes a request the way an editor would, sends it
// to the library, and shows the answer in the forms a host uses.
#include <iostream>
#include <string>

#include "tov/tov.h"

namespace {

void show(const char* purpose, const TOVResponse& response) {
    std::cout << purpose << "\n"
              << "  single string: " << response.turnResponseIntoASingleString() << "\n"
              << "  info message:  " << response.createVemoInfoMessage() << "\n\n";
}

}  // namespace

int main() {
    std::cout << "tov " << GetTOVVersion() << "\n\n";

    // A private set of core data: its own rule store, data model and logger.
    TOVCoreDataControllers coreData;
    coreData.initializeByMalloc();
    setTOVLoggingFolder("", &coreData);  // no log file for the demo

    // An editor wants to release a part: compose the request from its packets.
    const AttributesMap initial = {{"Status", "In Work"}, {"ServerId", "P-100"}};
    const AttributesMap target = {{"Status", "Released"}};
    std::string request;
    if (composeSimpleTransitionJson("Part", initial, target, request) != 1) {
        std::cerr << "could not compose the request\n";
        return 1;
    }
    std::cout << "Edit request: " << request << "\n\n";

    show("Edit attempt on an empty core data:", EvaluateTOVEditAttempt(request, &coreData));
    show("Loading an empty rules text:", InitializeTOVRules("", &coreData));

    // A host across a language boundary reads the single string back.
    TOVResponse received;
    received.fillResponseFromASingleString(
        R"({"Result":"Success","ResultComment":"Edit attempt approved",)"
        R"("TriggerInitialization":"{Revision:A}"})");
    AttributesMap toInitialize;
    received.collectAttrsToTriggerInitialization(toInitialize);
    show("A response read back from its single string:", received);
    for (const auto& entry : toInitialize) {
        std::cout << "  initialize " << entry.first << " with " << entry.second << "\n";
    }
    return 0;
}
