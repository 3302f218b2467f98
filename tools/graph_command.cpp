// tov graph: the lifecycle of one attribute as a state diagram.
#include <iostream>
#include <map>
#include <memory>

#include "commands.h"
#include "json_files.h"
#include "lifecycle_graph.h"
#include "request_kinds.h"

namespace tovcli {

namespace {

struct GraphOptions {
    DocumentPaths documents;
    std::string objectType;
    std::string attribute;
    GraphFormat format = GraphFormat::kDot;
    std::string log = "off";
};

int runGraph(const GraphOptions& options) {
    // Only a document that loads is drawn, so that the picture shows what the
    // library would judge by.
    bool unreadable = false;
    const std::unique_ptr<PrivateCore> core =
        loadCommandDocuments(options.log, options.documents, unreadable);
    if (core == nullptr) {
        return kExitUsageOrInput;
    }
    const TOV_DMStructure& dataModel = core->dataModel();
    if (!describesObjectType(dataModel, options.objectType)) {
        std::cerr << "tov: the data model " << options.documents.dataModelPath
                  << " describes no object type " << options.objectType << "\n";
        return kExitUsageOrInput;
    }
    tovjson::Document rules;
    std::string error;
    if (!parseJsonFile(options.documents.rulesPath, "rules document",
                       options.documents.maxInputSize, rules, error)) {
        std::cerr << "tov: " << error << "\n";
        return kExitUsageOrInput;
    }
    PrivateCore& documents = *core;
    const LifecycleGraph graph =
        buildLifecycleGraph(rules, options.objectType, options.attribute, dataModel,
                            [&documents](const std::string& kind, const std::string& text) {
                                return findRequestKind(kind)->evaluate(text, documents.get());
                            });
    if (!graph.hasTransitionRules) {
        std::cerr << "tov: " << options.documents.rulesPath << " has no transition rule of "
                  << options.attribute << " for " << options.objectType << "\n";
        return kExitFailure;
    }
    writeGraph(graph, options.format, std::cout);
    return kExitSuccess;
}

}  // namespace

Command addGraphCommand(CLI::App& program) {
    auto options = std::make_shared<GraphOptions>();
    CLI::App* command = program.add_subcommand(
        "graph", "Draw the lifecycle of one attribute as a state diagram (DOT or Mermaid)");
    // The library judges every move, and judges none without a data model.
    addDocumentOptions(*command, options->documents, true);
    command->add_option("--type", options->objectType, "The object type")
        ->type_name("TYPE")
        ->required();
    command->add_option("--attribute", options->attribute, "The attribute whose values move")
        ->type_name("ATTR")
        ->required();
    command->add_option("--format", options->format, "Graphviz DOT or Mermaid")
        ->type_name("dot|mermaid")
        ->transform(CLI::CheckedTransformer(std::map<std::string, GraphFormat>{
            {"dot", GraphFormat::kDot}, {"mermaid", GraphFormat::kMermaid}}))
        ->default_str("dot");
    addLogOption(*command, options->log);
    command->footer(helpText({
        "Output (standard output): as states, every value that a rule of the object type "
        "gives the attribute (\"<any>\" is none; spellings that differ only in case are one "
        "state), rules matched to the type as evaluations match them: case ignored, ALL for "
        "every type, Library_Item for the RLI types of the data model. As edges, exactly the "
        "moves between them that the library approves: each is asked as an edit and as a save "
        "of the attribute alone (no other attribute in either packet, so that rules about "
        "other attributes stay out of the answer), before conflict resolution; staying on a "
        "value is not drawn. Labels: \"file upload required\" (only the save passes) or \"no "
        "file upload\" (only the edit passes); \"forced spin-up\" or \"forced overwrite\" "
        "(the full edit or save refuses the move without or with a spin-up), with \"if the "
        "file is updated\" or \"if the file is not updated\" when it holds for one of them; "
        "\"asks for the family\" and \"asks for the ancestors\" (approved once the linked "
        "objects are sent and hold acceptable values); \"frozen while X is V\" (a freeze of "
        "the attribute conditioned on another one). Values with no way out have a double "
        "border in DOT and lead to the end state in Mermaid. Moves that a rule names but the "
        "library refuses close the output as comments, each naming the move and "
        "giving the library's refusal in its own words.",
        "Render DOT with Graphviz: tov graph ... | dot -Tsvg -o lifecycle.svg",
        // NOLINTNEXTLINE(bugprone-suspicious-missing-comma): one paragraph over two lines.
        "Exit status: 0 drawn, 1 no transition rule of the attribute for the type, 2 bad "
        "arguments (the data model is required: without one the library approves no edit), "
        "a file that cannot be read, a document that does not load, or a type that the data "
        "model does not describe.",
        kLogHelp,
        kMaxInputSizeHelp,
        "Example: tov graph --rules rules.json --dm datamodel.json --type Part --attribute "
        "Status",
    }));
    return {command, [options] { return runGraph(*options); }};
}

}  // namespace tovcli
