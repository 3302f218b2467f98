// tov eval: one request, one answer.
#include <iostream>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "commands.h"
#include "request_kinds.h"
#include "request_names.h"
#include "tov/TOVDecisionTrace.h"
#include "tov/rule_kinds.h"

namespace tovcli {

namespace {

struct EvalOptions : DocumentCommandOptions {
    std::string kind;
    std::string requestPath;  // empty or "-": standard input
    bool trace = false;
};

// The trace in words, a line per rule: "  SECTION #NUMBER, OUTCOME: RULE", with
// " (decisive)" behind the outcome of a rule whose words stand in the comment.
void printTraceInWords(const std::vector<TOVRuleConsultation>& steps, std::ostream& out) {
    if (steps.empty()) {
        out << "Trace: no rule was consulted\n";
        return;
    }
    out << "Trace, in judging order:\n";
    for (const TOVRuleConsultation& step : steps) {
        out << "  " << GetTOVRuleKinds()[step.kind].section << " #" << step.documentPosition + 1
            << ", " << GetTOVRuleOutcomeWords(step.outcome) << (step.decisive ? " (decisive)" : "")
            << ": " << step.words << "\n";
    }
}

// The JSON form with the trace as one more member, "trace", last.
std::string withTrace(const std::string& answerObject,
                      const std::vector<TOVRuleConsultation>& steps) {
    // responseAsJson writes one object: its closing brace goes behind the trace.
    return answerObject.substr(0, answerObject.size() - 1) +
           ",\"trace\":" + ComposeTOVDecisionTraceJson(steps) + "}";
}

int exitStatusOf(const TOVResponse& response) {
    if (response.getGeneralResult()) {
        return kExitSuccess;
    }
    TOVMissingDataForEvaluation missing;
    return response.needsReevaluation(missing) ? kExitNeedsReevaluation : kExitFailure;
}

int runEval(const EvalOptions& options) {
    // The command line admits only the names of kinds.
    const RequestKind& kind = *findRequestKind(options.kind);
    std::string logFolder;
    std::vector<Document> documents;
    if (!prepareCommand(options.log, options.documents, logFolder, documents)) {
        return kExitUsageOrInput;
    }
    std::string error;
    std::string request;
    if (!readInput(options.requestPath, "request", options.documents.maxInputSize, request,
                   error)) {
        std::cerr << "tov: " << error << "\n";
        return kExitUsageOrInput;
    }

    PrivateCore core(logFolder);
    // A document that does not load would make every answer a refusal that says
    // nothing about the request, so it is the program's input error instead.
    if (!loadDocuments(documents, core, options.documents.maxInputSize, false, std::cerr)) {
        return kExitUsageOrInput;
    }
    // A misspelt name is judged without a word; the answer stays the library's.
    for (const std::string& warning : unknownNamesInRequest(request, core.dataModel())) {
        std::cerr << "tov: warning: " << warning << "\n";
    }
    TOVDecisionTrace trace;
    core.get()->setDecisionObserver(options.trace ? &trace : nullptr);
    const TOVResponse response = kind.evaluate(request, core.get());
    if (options.format == OutputFormat::kJson) {
        const std::string answer = responseAsJson(response);
        std::cout << (options.trace ? withTrace(answer, trace.steps()) : answer) << std::endl;
    } else {
        std::cout << response.turnResponseIntoASingleString() << std::endl;
        if (options.trace) {
            printTraceInWords(trace.steps(), std::cout);
        }
    }
    std::cerr << response.createVemoInfoMessage() << std::endl;
    return exitStatusOf(response);
}

}  // namespace

Command addEvalCommand(CLI::App& program) {
    auto options = std::make_shared<EvalOptions>();
    CLI::App* command = program.add_subcommand("eval", "Evaluate one request");
    command->add_option("KIND", options->kind, "The kind of request: " + requestKindNamesInWords())
        ->required()
        ->check(CLI::IsMember(requestKindNames()));
    command
        ->add_option("REQUEST", options->requestPath,
                     "The request document (JSON); - or nothing reads standard input")
        ->type_name("FILE");
    addDocumentOptions(*command, options->documents, true);
    command->add_flag("--trace", options->trace,
                      "Tell, after the answer, which rules judged the request and what each did");
    addLogOption(*command, options->log);
    addFormatOption(*command, options->format);

    std::vector<std::string> help = {"Kinds:"};
    for (const RequestKind& kind : requestKinds()) {
        help.push_back("  " + std::string(kind.name) + ": " + kind.question);
    }
    help.insert(
        help.end(),
        {
            // NOLINTNEXTLINE(bugprone-suspicious-missing-comma): one paragraph over two lines.
            "Output: the response's single-string form, one JSON object of strings such as "
            "{\"Result\":\"Success\",\"ResultComment\":\"Edit attempt approved\"}, on "
            "standard output; its info message (\"Success! ...\" or \"Failure! ...\") on "
            "standard error, after a line \"tov: warning: the request's object type \"X\" "
            "is none that the data model describes\" (or attribute) for each name of the "
            "request that the data model does not describe, which the library judges without "
            "a word.",
            // NOLINTNEXTLINE(bugprone-suspicious-missing-comma): one paragraph over four lines.
            "With --format json the answer is one object with real types instead: "
            "\"result\" (true or false), \"comment\", \"keywords\" (every keyword with its "
            "text), and decoded \"options\" (a list), \"initialize\" (attribute to value) and "
            "\"missing\" (the sections to send again: membersOfFamily, manualLinkAncestors).",
            "Exit status: 0 Success; 1 Failure; 3 Failure that asks for more data "
            "(\"ObjectFamilyMembers\" or \"ManualLinkAncestors\" is \"MissingData\": send "
            "the request again with \"membersOfFamily\" or \"manualLinkAncestors\"); 2 bad "
            "arguments, a file that cannot be read, or a document that does not load (its "
            "faults then go to standard error as check tells them, and nothing is evaluated).",
            "With --trace the answer line is followed by the rules that judged the request, in "
            "the order of judging, one per line: \"  SECTION #NUMBER, OUTCOME: RULE\", NUMBER "
            "the rule's place in its section of the rules document (from 1, as explain and "
            "test --coverage number it), OUTCOME \"approved\", \"objected\", \"asked for "
            "missing data\" or \"not applicable\", with \" (decisive)\" for each rule whose "
            "words stand in the comment. With --format json the object gains \"trace\": "
            "[{\"section\", \"number\", \"rule\", \"outcome\", \"decisive\"}].",
            kLogHelp,
            kMaxInputSizeHelp,
            "Example: tov eval edit --rules rules.json --dm datamodel.json request.json",
        });
    command->footer(helpText(help));
    return {command, [options] { return runEval(*options); }};
}

}  // namespace tovcli
