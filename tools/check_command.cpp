// tov check: do the documents load, and if not, what is wrong with them?
#include <algorithm>
#include <iostream>
#include <memory>

#include "commands.h"

namespace tovcli {

namespace {

struct CheckOptions {
    DocumentPaths documents;
    std::string log = "off";
};

// A document that loads but holds nothing makes every evaluation fail, which
// its author would rather hear now.
void noteEmptyStores(const DocumentPaths& paths, PrivateCore& core) {
    if (!paths.dataModelPath.empty() && !core.dataModel().existAnyInfo()) {
        std::cout << paths.dataModelPath
                  << ": note: no object types, so evaluations that need them will be "
                     "refused with \"Uninitialized Dm Information\"\n";
    }
    if (!core.rules().existAnyRules()) {
        std::cout << paths.rulesPath
                  << ": note: no rules, so every request will be refused with "
                     "\"Uninitialized TOV rules\"\n";
    }
}

// A rule written for an object type that the data model does not describe is
// most often a misspelt name, and such a rule quietly never applies.
void noteUnknownObjectTypes(const DocumentPaths& paths, PrivateCore& core) {
    if (paths.dataModelPath.empty() || !core.dataModel().existAnyInfo()) {
        return;
    }
    const std::vector<TOV_DMStructureObject>& described = core.dataModel().getAllStructureObjects();
    for (const std::string& objectType : core.rules().collectObjectTypesOfRules()) {
        const bool known = std::any_of(
            described.begin(), described.end(), [&](const TOV_DMStructureObject& object) {
                return core.dataModel().areObjectTypesThatShouldBeConsideredEqual(objectType,
                                                                                  object.getName());
            });
        if (!known) {
            std::cout << paths.rulesPath << ": note: the rules for " << objectType
                      << " concern no object type of the data model " << paths.dataModelPath
                      << "\n";
        }
    }
}

int runCheck(const CheckOptions& options) {
    std::string logFolder;
    std::vector<Document> documents;
    if (!prepareCommand(options.log, options.documents, logFolder, documents)) {
        return kExitUsageOrInput;
    }
    PrivateCore core(logFolder);
    const bool allLoaded = loadDocuments(documents, core, true, std::cout);
    if (allLoaded) {
        noteEmptyStores(options.documents, core);
        noteUnknownObjectTypes(options.documents, core);
    }
    return allLoaded ? kExitSuccess : kExitFailure;
}

}  // namespace

Command addCheckCommand(CLI::App& program) {
    auto options = std::make_shared<CheckOptions>();
    CLI::App* command = program.add_subcommand(
        "check", "Load the documents and tell each fault on a line of its own");
    addDocumentOptions(*command, options->documents, false);
    addLogOption(*command, options->log);
    command->footer(helpText({
        "Output (standard output): for each document, the data model first, one line "
        "\"FILE: comment\" when it loaded, or one line \"FILE: fault\" per fault when it did "
        "not: a document loads whole or not at all. A text that is no JSON gets a note "
        "\"FILE:LINE:COLUMN: note: ...\" telling where; notices of the library about the "
        "document, a document that loads but holds nothing, and rules for an object type "
        "that the data model does not describe (often a misspelt name) get a note too.",
        "Exit status: 0 when every document loaded, 1 when one did not, 2 for bad arguments "
        "or a file that cannot be read.",
        kLogHelp,
        "Example: tov check --rules rules.json --dm datamodel.json",
    }));
    return {command, [options] { return runCheck(*options); }};
}

}  // namespace tovcli
