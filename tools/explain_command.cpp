// tov explain: every loaded rule in words, grouped by kind in the order in
// which the kinds are judged, each numbered by its place in the document.
#include <cctype>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands.h"
#include "judging_order.h"
#include "rules_in_words.h"
#include "tov/rule_kinds.h"

namespace tovcli {

namespace {

using ExplainOptions = DocumentCommandOptions;

void printText(const RuleGroups& groups, const std::optional<std::vector<std::string>>& libraryItem,
               std::ostream& out) {
    bool first = true;
    for (const auto& group : groups) {
        std::string heading = group.first + " rules";
        heading[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(heading[0])));
        out << (first ? "" : "\n") << heading << " (" << group.second.size() << "):\n";
        first = false;
        for (const RuleInWords& rule : group.second) {
            out << "  " << rule.number << ". " << rule.sentence << "\n";
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
        std::cout << rulesInWordsJson(groups, libraryItem) << "\n";
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
    for (const TOVRuleKind kind : ruleKindsInJudgingOrder()) {
        kindsInWords +=
            (kindsInWords.empty() ? "" : ", ") + std::string(GetTOVRuleKinds()[kind].label);
    }
    command->footer(helpText({
        "Output (standard output): one group per kind that has rules, in the order in which "
        "the kinds are judged (" +
            kindsInWords +
            "; versioning selections serve options queries and the proper versioning "
            "attribute of a trigger). Within a group the rules stand in the order in which "
            "the library asks them, which decides the rule that a refusal names; each is "
            "numbered by its place in its section of the document, from 1, counted across "
            "the section's object types in the order of the document: the number that check "
            "gives as \"(explain N)\" and that the decision trace gives. \"<any>\" stands for "
            "every object type (\"ALL\" in the document). With --dm the data model is loaded "
            "too, so that its faults are told, and a last line tells which RLI object types "
            "Library_Item stands for, when rules are written for it.",
        "The order of judgement. An edit or save attempt: " + stepsInWords(editJudgingSteps()) +
            ". The first step that objects ends the attempt. A manual link creation: " +
            stepsInWords(linkCreationJudgingSteps()) +
            ". A conflict resolution options query: " + stepsInWords(optionsJudgingSteps()) + ".",
        // NOLINTNEXTLINE(bugprone-suspicious-missing-comma): one paragraph over three lines.
        "With --format json: one object, {\"kinds\": [{\"kind\": ..., \"rules\": [sentence, "
        "...], \"numbers\": [number, ...]}, ...]}, and \"libraryItem\" (a list of object "
        "types) when that last line would be told.",
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
