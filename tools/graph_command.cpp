// tov graph: the lifecycle of one attribute as a state diagram.
#include <iostream>
#include <map>
#include <memory>

#include "commands.h"
#include "json_files.h"
#include "lifecycle_graph.h"

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
    if (!options.documents.dataModelPath.empty()) {
        if (!describesObjectType(dataModel, options.objectType)) {
            std::cerr << "tov: the data model " << options.documents.dataModelPath
                      << " describes no object type " << options.objectType << "\n";
            return kExitUsageOrInput;
        }
    }
    tovjson::Document rules;
    std::string error;
    if (!parseJsonFile(options.documents.rulesPath, "rules document",
                       options.documents.maxInputSize, rules, error)) {
        std::cerr << "tov: " << error << "\n";
        return kExitUsageOrInput;
    }
    const LifecycleGraph graph =
        buildLifecycleGraph(rules, options.objectType, options.attribute, dataModel);
    if (graph.edges.empty()) {
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
    addDocumentOptions(*command, options->documents, false);
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
        "Output (standard output): the attribute's values as states and the transitions that "
        "the transition rules permit as edges (staying on a value is not drawn), matched to "
        "the object type as evaluations match it: case ignored, rules under ALL for every "
        "type, Library_Item for the RLI types of the data model (--dm). Edges are labelled "
        "with what else holds on them: \"file upload required\" or \"no file upload\" (file "
        "constraints), \"forced overwrite\" or \"forced spin-up\" (conflict resolutions), "
        "\"frozen while X is V\" (freezes of the attribute), \"frozen\" (a freeze on the "
        "attribute's own value). Values with no way out have a double border in DOT and lead "
        "to the end state in Mermaid.",
        "Render DOT with Graphviz: tov graph ... | dot -Tsvg -o lifecycle.svg",
        // NOLINTNEXTLINE(bugprone-suspicious-missing-comma): one paragraph over two lines.
        "Exit status: 0 drawn, 1 no transition rule of the attribute for the type, 2 bad "
        "arguments, a file that cannot be read, a document that does not load, or a type "
        "that the data model does not describe.",
        kLogHelp,
        kMaxInputSizeHelp,
        "Example: tov graph --rules rules.json --dm datamodel.json --type Part --attribute "
        "Status",
    }));
    return {command, [options] { return runGraph(*options); }};
}

}  // namespace tovcli
