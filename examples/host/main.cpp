// A small host application: it loads the example data model and rules, then
// asks the library about a few changes the way an editor of objects would,
// fetching family members and manual link ancestors only when asked for them.
// It prints every answer and exits non-zero when one is not what it expects.
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "tov/tov.h"

namespace {

// Linked objects of one object, by server id.
using LinkedObjects = std::map<std::string, AttributesMap>;

// What the data-management server would give the host on request.
struct Server {
    std::map<std::string, LinkedObjects> familyMembers;
    std::map<std::string, LinkedObjects> manualLinkAncestors;
};

Server exampleServer() {
    Server server;
    server.familyMembers["P-100"] = {
        {"srv-P-100-A.1", {{"Number", "P-100"}, {"Iteration", "A.1"}, {"Status", "Obsolete"}}},
        {"srv-P-100-A.2", {{"Number", "P-100"}, {"Iteration", "A.2"}, {"Status", "Cancelled"}}}};
    server.familyMembers["P-700"] = {
        {"srv-P-700-A.1", {{"Number", "P-700"}, {"Iteration", "A.1"}, {"Status", "In Work"}}}};
    return server;
}

// JSON text of a string; the packets themselves are composed by the library.
std::string quoted(const std::string& text) {
    std::string json = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            json += '\\';
        }
        json += c;
    }
    return json + "\"";
}

// Adds a "membersOfFamily" or "manualLinkAncestors" section to a composed
// request. An object with no such links gets an empty section, which tells
// the library that there are none.
void addLinkedObjects(const char* section, const LinkedObjects& objects, std::string& request) {
    std::string text = "," + quoted(section) + ":{";
    const char* separator = "";
    for (const auto& [serverId, attributes] : objects) {
        text += separator + quoted(serverId) +
                ":{\"attributes\":" + turnStringStringMapIntoJsonString(attributes) + "}";
        separator = ",";
    }
    request.insert(request.size() - 1, text + "}");
}

void show(const std::string& what, const TOVResponse& answer) {
    std::cout << what << "\n  " << answer.turnResponseIntoASingleString() << "\n  "
              << answer.createVemoInfoMessage() << "\n";
}

// The two-pass exchange: a first request without linked objects; if the answer
// asks for some, the same request again with them.
TOVResponse evaluateEdit(const std::string& objectType, const AttributesMap& initial,
                         const AttributesMap& target, const Server& server,
                         TOVCoreDataControllers* coreData) {
    std::string request;
    composeSimpleTransitionJson(objectType, initial, target, request);
    TOVResponse answer = EvaluateTOVEditAttempt(request, coreData);

    TOVMissingDataForEvaluation missing;
    if (!answer.needsReevaluation(missing)) {
        return answer;
    }
    show("First pass, the library asks for more data:", answer);
    const std::string number = initial.at("Number");
    if (missing.objectFamilyMembersMissing) {
        const auto found = server.familyMembers.find(number);
        addLinkedObjects("membersOfFamily",
                         found == server.familyMembers.end() ? LinkedObjects() : found->second,
                         request);
    }
    if (missing.manualLinkAncestorsMissing) {
        const auto found = server.manualLinkAncestors.find(number);
        addLinkedObjects(
            "manualLinkAncestors",
            found == server.manualLinkAncestors.end() ? LinkedObjects() : found->second, request);
    }
    return EvaluateTOVEditAttempt(request, coreData);
}

int fail(const std::string& what) {
    std::cerr << "tov_host: " << what << "\n";
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string folder = argc > 1 ? argv[1] : "examples";

    // A private set of core data (rule store, data-model information, logger),
    // freed with the object; calls on it must not overlap.
    TOVCoreDataControllers coreData;
    coreData.initializeByMalloc();
    setTOVLoggingFolder("", &coreData);  // "" silences, "console", or a folder
    std::cout << "tov " << GetTOVVersion() << "\n";

    const TOVResponse dm = InitializeTOV_DMInfoFromFile(folder + "/datamodel.json", &coreData);
    const TOVResponse rules = InitializeTOVRulesFromFile(folder + "/rules.json", &coreData);
    show("Data model:", dm);
    show("Rules:", rules);
    if (!dm.getGeneralResult() || !rules.getGeneralResult()) {
        return fail("the example documents did not load");
    }
    const Server server = exampleServer();

    // Releasing P-100: its family is clean, so the second pass approves and
    // tells which attributes the host must initialize.
    const TOVResponse released =
        evaluateEdit("Part", {{"Number", "P-100"}, {"Iteration", "A.3"}, {"Status", "In Review"}},
                     {{"Status", "Released"}}, server, &coreData);
    show("Release of P-100 with its family:", released);
    AttributesMap toInitialize;
    released.collectAttrsToTriggerInitialization(toInitialize);
    for (const auto& [attribute, value] : toInitialize) {
        std::cout << "  the host initializes " << attribute << " with " << value << "\n";
    }
    if (!released.getGeneralResult() || toInitialize.count("ReleaseDate") == 0) {
        return fail("P-100 was not released as expected");
    }

    // Releasing P-700: an iteration of its family is still in work, so the
    // second answer is a final refusal that asks for nothing more.
    const TOVResponse refused =
        evaluateEdit("Part", {{"Number", "P-700"}, {"Iteration", "A.2"}, {"Status", "In Review"}},
                     {{"Status", "Released"}}, server, &coreData);
    show("Release of P-700 with its family:", refused);
    TOVMissingDataForEvaluation missing;
    if (refused.getGeneralResult() || refused.needsReevaluation(missing)) {
        return fail("P-700 was not refused as expected");
    }

    // Which conflict resolutions may the user choose when P-500 goes to review?
    std::string query;
    composeConflictResolutionsOptionsJson("Part", {{"Number", "P-500"}, {"Status", "In Work"}},
                                          {{"Status", "In Review"}}, false, query);
    const TOVResponse options = EvaluateTOVProperConflictResolutionOptions(query, &coreData);
    show("Conflict resolution options for P-500 going to review:", options);
    std::vector<std::string> choices;
    options.collectConflictResolutionOptions(choices);
    if (choices != std::vector<std::string>{"Overwrite"}) {
        return fail("P-500 may not only be overwritten");
    }

    // May part P-300, still in work, become an ancestor of a released assembly?
    std::string link;
    composeSimpleManualLinkEvaluationJson("Part", {{"Number", "P-300"}, {"Status", "In Work"}},
                                          "Assembly", {{"Number", "A-10"}, {"Status", "Released"}},
                                          link);
    const TOVResponse linked = EvaluateTOVManualLinkCreation(link, &coreData);
    show("Manual link from P-300 to assembly A-10:", linked);
    if (linked.getGeneralResult()) {
        return fail("the link to P-300 was not refused");
    }
    return 0;
}
