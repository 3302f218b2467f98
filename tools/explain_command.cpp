// tov explain: every loaded rule in words, grouped by kind, in the order in
// which the rules are judged.
#include <algorithm>
#include <cctype>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "commands.h"
#include "tov/TOVTrigger.h"
#include "tov/rule_kinds.h"
#include "tov/string_helpers.h"

namespace tovcli {

namespace {

using ExplainOptions = DocumentCommandOptions;

// The labels of the kinds in the order of the store's lists, which its words
// carry too.
std::vector<std::string> labelsInStoreOrder() {
    std::vector<std::string> labels;
    for (const TOVRuleKindWords& kind : GetTOVRuleKinds()) {
        labels.emplace_back(kind.label);
    }
    return labels;
}

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

using RuleGroups = std::vector<std::pair<std::string, std::vector<std::string>>>;

// The sentences of every rule, grouped by kind in the order in which the
// kinds are judged, each group in store order.
RuleGroups groupRulesInWords(const TOVLifecycleBusinessRules& rules) {
    std::map<std::string, std::vector<std::string>> byKind;
    std::vector<std::string> kinds = labelsInStoreOrder();
    for (const auto& entry : rules.expressRulesInWords()) {
        if (byKind.count(entry.first) == 0 &&
            std::find(kinds.begin(), kinds.end(), entry.first) == kinds.end()) {
            kinds.push_back(entry.first);  // a kind this program does not know yet
        }
        byKind[entry.first].push_back(entry.second);
    }
    for (const TOVTriggerDescription& trigger : rules.describeTriggerRules()) {
        byKind[GetTOVRuleKinds()[TOVRuleKind_Trigger].label].push_back(triggerInWords(trigger));
    }
    RuleGroups groups;
    for (const std::string& kind : kinds) {
        auto sentences = byKind.find(kind);
        if (sentences != byKind.end()) {
            groups.emplace_back(kind, std::move(sentences->second));
        }
    }
    return groups;
}

// "Library_Item" stands for every RLI type: with a data model at hand, and
// rules written for it, the names of those types (perhaps none).
std::optional<std::vector<std::string>> libraryItemTypes(const TOVLifecycleBusinessRules& rules,
                                                         const TOV_DMStructure& dataModel) {
    const std::set<std::string> objectTypes = rules.collectObjectTypesOfRules();
    const bool named = std::any_of(objectTypes.begin(), objectTypes.end(), [](const auto& type) {
        return areStringsEqualSimple(type, TOVAttrItemValue_Library_Item);
    });
    if (!named) {
        return std::nullopt;
    }
    std::vector<std::string> types;
    for (const TOV_DMStructureObject& object : dataModel.getAllStructureObjects()) {
        if (object.isThisAnRLI()) {
            types.push_back(object.getName());
        }
    }
    return types;
}

void printText(const RuleGroups& groups, const std::optional<std::vector<std::string>>& libraryItem,
               std::ostream& out) {
    bool first = true;
    for (const auto& group : groups) {
        std::string heading = group.first + " rules";
        heading[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(heading[0])));
        out << (first ? "" : "\n") << heading << " (" << group.second.size() << "):\n";
        first = false;
        int number = 0;
        for (const std::string& sentence : group.second) {
            out << "  " << ++number << ". " << sentence << "\n";
        }
    }
    if (first) {
        out << "The rules document holds no rules.\n";
    }
    if (libraryItem) {
        std::string types;
        for (const std::string& type : *libraryItem) {
            types += (types.empty() ? "" : ", ") + type;
        }
        out << "\n"
            << TOVAttrItemValue_Library_Item
            << " stands for the RLI object types of the data model: "
            << (types.empty() ? "none" : types) << ".\n";
    }
}

void printJson(const RuleGroups& groups, const std::optional<std::vector<std::string>>& libraryItem,
               std::ostream& out) {
    tovjson::StringBuffer buffer;
    JsonWriter writer(buffer);
    writer.StartObject();
    writer.Key("kinds");
    writer.StartArray();
    for (const auto& group : groups) {
        writer.StartObject();
        writer.Key("kind");
        writeString(writer, group.first);
        writer.Key("rules");
        writer.StartArray();
        for (const std::string& sentence : group.second) {
            writeString(writer, sentence);
        }
        writer.EndArray();
        writer.EndObject();
    }
    writer.EndArray();
    if (libraryItem) {
        writer.Key("libraryItem");
        writer.StartArray();
        for (const std::string& type : *libraryItem) {
            writeString(writer, type);
        }
        writer.EndArray();
    }
    writer.EndObject();
    out << buffer.GetString() << "\n";
}

int runExplain(const ExplainOptions& options) {
    bool unreadable = false;
    const std::unique_ptr<PrivateCore> core =
        loadCommandDocuments(options.log, options.documents, unreadable);
    if (core == nullptr) {
        return unreadable ? kExitUsageOrInput : kExitFailure;
    }
    const RuleGroups groups = groupRulesInWords(core->rules());
    std::optional<std::vector<std::string>> libraryItem;
    if (!options.documents.dataModelPath.empty()) {
        libraryItem = libraryItemTypes(core->rules(), core->dataModel());
    }
    if (options.format == OutputFormat::kJson) {
        printJson(groups, libraryItem, std::cout);
    } else {
        printText(groups, libraryItem, std::cout);
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
    addFormatOption(*command, options->format);
    std::string kindsInWords;
    for (const std::string& label : labelsInStoreOrder()) {
        kindsInWords += (kindsInWords.empty() ? "" : ", ") + label;
    }
    command->footer(helpText({
        "Output (standard output): one group per kind that has rules, in the order in which "
        "the kinds are judged (" +
            kindsInWords +
            "), each rule numbered in the store's order, which decides which rule a refusal "
            "names. \"<any>\" "
            "stands for every object type (\"ALL\" in the document). With --dm the data model "
            "is loaded too, so that its faults are told, and a last line tells which RLI object "
            "types Library_Item stands for, when rules are written for it.",
        // NOLINTNEXTLINE(bugprone-suspicious-missing-comma): one paragraph over three lines.
        "With --format json: one object, {\"kinds\": [{\"kind\": ..., \"rules\": [sentence, "
        "...]}, ...]}, and \"libraryItem\" (a list of object types) when that last line "
        "would be told.",
        "Standard error: the faults of a document that does not load, as check tells them.",
        // One sentence over two lines, not two items.
        // NOLINTNEXTLINE(bugprone-suspicious-missing-comma)
        "Exit status: 0 when the documents loaded, 1 when one did not, 2 for bad arguments "
        "or a file that cannot be read.",
        kLogHelp,
        kMaxInputSizeHelp,
        "Example: tov explain --rules rules.json",
    }));
    return {command, [options] { return runExplain(*options); }};
}

}  // namespace tovcli
