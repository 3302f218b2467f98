// tov explain: every loaded rule in words, grouped by kind, in the order in
// which the rules are judged.
#include <algorithm>
#include <cctype>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "commands.h"

namespace tovcli {

namespace {

struct ExplainOptions {
    DocumentPaths documents;
    std::string log = "off";
};

// The kinds as the store keeps them; the store's words carry the same labels.
const char* const kKindsInStoreOrder[] = {
    "transition freeze", "history link",         "manual link",         "transition",
    "trigger",           "versioning selection", "conflict resolution", "file constraint",
};

// A trigger is never reported as a violation, so the library has no sentence
// for it; this one reads like the sentences of the other kinds.
std::string triggerInWords(const TOVTriggerDescription& trigger) {
    std::string words =
        "For " + trigger.objectType + ": When " + trigger.attribute + " is edited, ";
    if (trigger.triggerInitialize == TOVAttrItemKeyword_ProperVersioningAttribute) {
        words += "the proper versioning attribute (" + trigger.triggerInitialize + ")";
    } else {
        words += trigger.triggerInitialize;
    }
    words += " must be initialized to " + createStringInQuotes(trigger.initializationValue.c_str());
    return words;
}

void explainRules(const TOVLifecycleBusinessRules& rules, std::ostream& out) {
    std::map<std::string, std::vector<std::string>> byKind;
    std::vector<std::string> kinds(std::begin(kKindsInStoreOrder), std::end(kKindsInStoreOrder));
    for (const auto& entry : rules.expressRulesInWords()) {
        if (byKind.count(entry.first) == 0 &&
            std::find(kinds.begin(), kinds.end(), entry.first) == kinds.end()) {
            kinds.push_back(entry.first);  // a kind this program does not know yet
        }
        byKind[entry.first].push_back(entry.second);
    }
    for (const TOVTriggerDescription& trigger : rules.describeTriggerRules()) {
        byKind["trigger"].push_back(triggerInWords(trigger));
    }

    bool first = true;
    for (const std::string& kind : kinds) {
        const auto sentences = byKind.find(kind);
        if (sentences == byKind.end()) {
            continue;
        }
        std::string heading = kind + " rules";
        heading[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(heading[0])));
        out << (first ? "" : "\n") << heading << " (" << sentences->second.size() << "):\n";
        first = false;
        int number = 0;
        for (const std::string& sentence : sentences->second) {
            out << "  " << ++number << ". " << sentence << "\n";
        }
    }
    if (first) {
        out << "The rules document holds no rules.\n";
    }
}

// "Library_Item" stands for every RLI type; with a data model at hand, say which.
void explainLibraryItem(const TOVLifecycleBusinessRules& rules, const TOV_DMStructure& dataModel,
                        std::ostream& out) {
    const std::set<std::string> objectTypes = rules.collectObjectTypesOfRules();
    const bool named = std::any_of(objectTypes.begin(), objectTypes.end(), [](const auto& type) {
        return areStringsEqualSimple(type, TOVAttrItemValue_Library_Item);
    });
    if (!named) {
        return;
    }
    std::string types;
    for (const TOV_DMStructureObject& object : dataModel.getAllStructureObjects()) {
        if (object.isThisAnRLI()) {
            types += (types.empty() ? "" : ", ") + object.getName();
        }
    }
    out << "\n"
        << TOVAttrItemValue_Library_Item << " stands for the RLI object types of the data model: "
        << (types.empty() ? "none" : types) << ".\n";
}

int runExplain(const ExplainOptions& options) {
    std::string logFolder;
    std::vector<Document> documents;
    if (!prepareCommand(options.log, options.documents, logFolder, documents)) {
        return kExitUsageOrInput;
    }
    PrivateCore core(logFolder);
    if (!loadDocuments(documents, core, false, std::cerr)) {
        return kExitFailure;
    }
    explainRules(core.rules(), std::cout);
    if (!options.documents.dataModelPath.empty()) {
        explainLibraryItem(core.rules(), core.dataModel(), std::cout);
    }
    return kExitSuccess;
}

}  // namespace

Command addExplainCommand(CLI::App& program) {
    auto options = std::make_shared<ExplainOptions>();
    CLI::App* command =
        program.add_subcommand("explain", "Tell every loaded rule in words, grouped by kind");
    addDocumentOptions(*command, options->documents, false);
    addLogOption(*command, options->log);
    command->footer(helpText({
        "Output (standard output): one group per kind that has rules, in the order in which "
        "the kinds are judged (transition freeze, history link, manual link, transition, "
        "trigger, versioning selection, conflict resolution, file constraint), each rule "
        "numbered in the store's order, which decides which rule a refusal names. \"<any>\" "
        "stands for every object type (\"ALL\" in the document). With --dm the data model "
        "is loaded too, so that its faults are told, and a last line tells which RLI object "
        "types Library_Item stands for, when rules are written for it.",
        "Standard error: the faults of a document that does not load, as check tells them.",
        "Exit status: 0 when the documents loaded, 1 when one did not, 2 for bad arguments "
        "or a file that cannot be read.",
        kLogHelp,
        "Example: tov explain --rules rules.json",
    }));
    return {command, [options] { return runExplain(*options); }};
}

}  // namespace tovcli
