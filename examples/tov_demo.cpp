// A small host program: loads the example data model and rules the way a host
// does at start-up, shows the rules in words, and shows the forms in which a
// host sends requests and reads answers.
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

int main(int argc, char** argv) {
    const std::string folder = argc > 1 ? std::string(argv[1]) + "/" : "examples/";
    std::cout << "tov " << GetTOVVersion() << "\n\n";

    // A private set of core data: its own rule store, data model and logger.
    TOVCoreDataControllers coreData;
    coreData.initializeByMalloc();
    setTOVLoggingFolder("", &coreData);  // no log file for the demo

    const TOVResponse dmLoaded = InitializeTOV_DMInfoFromFile(folder + "datamodel.json", &coreData);
    show("Loading the data model (datamodel.json):", dmLoaded);
    const TOVResponse rulesLoaded = InitializeTOVRulesFromFile(folder + "rules.json", &coreData);
    show("Loading the rules (rules.json):", rulesLoaded);
    if (!dmLoaded.getGeneralResult() || !rulesLoaded.getGeneralResult()) {
        return 1;
    }

    std::cout << "The rules in words, in the order in which they are judged:\n";
    for (const auto& entry : coreData.getRules()->expressRulesInWords()) {
        std::cout << "  [" << entry.first << "] " << entry.second << "\n";
    }
    std::cout << "\n";

    // A faulty document is refused whole, with every section's first fault.
    const TOVResponse refused = InitializeTOVRules(
        R"({"transitions":{"Part":[{"attribute":"Status","fromValue":"In Work"}]},)"
        R"("manualLinks":{"Assembly":"Released"}})",
        &coreData);
    show("Loading a faulty rules document:", refused);
    std::cout << "  rules left in the store: "
              << (coreData.getRules()->existAnyRules() ? "some" : "none") << "\n\n";

    // An editor wants to release a part: compose the request from its packets.
    const AttributesMap initial = {{"Number", "P-100"}, {"Status", "In Review"}};
    const AttributesMap target = {{"Status", "Released"}};
    std::string request;
    if (composeSimpleTransitionJson("Part", initial, target, request) != 1) {
        std::cerr << "could not compose the request\n";
        return 1;
    }
    std::cout << "An edit request as a host composes it:\n  " << request << "\n\n";

    // A host across a language boundary reads an answer back from its single string.
    TOVResponse received;
    received.fillResponseFromASingleString(
        R"({"Result":"Success","ResultComment":"Edit attempt approved",)"
        R"("TriggerInitialization":"{ReleaseDate:Reset}"})");
    show("An answer read back from its single string:", received);
    AttributesMap toInitialize;
    received.collectAttrsToTriggerInitialization(toInitialize);
    for (const auto& entry : toInitialize) {
        std::cout << "  the host initializes " << entry.first << " with " << entry.second << "\n";
    }
    return 0;
}
