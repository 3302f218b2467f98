// The commands of the tov program. Each registers its options on the program
// and hands back what runs it once the command line is parsed.
#ifndef TOV_TOOLS_COMMANDS_H_
#define TOV_TOOLS_COMMANDS_H_

#include <CLI/CLI.hpp>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "documents.h"
#include "json_output.h"

namespace tovcli {

struct Command {
    CLI::App* app;             // the subcommand, to know whether it was chosen
    std::function<int()> run;  // returns the exit status
};

Command addCheckCommand(CLI::App& program);
Command addExplainCommand(CLI::App& program);
Command addEvalCommand(CLI::App& program);
Command addBatchCommand(CLI::App& program);
Command addTestCommand(CLI::App& program);
Command addGraphCommand(CLI::App& program);
Command addServeCommand(CLI::App& program);
#ifdef TOV_WITH_WORKBENCH
Command addWorkbenchCommand(CLI::App& program);
#endif

// What check, explain, eval and batch all take: the documents, --log and --format.
struct DocumentCommandOptions {
    DocumentPaths documents;
    std::string log = "off";
    OutputFormat format = OutputFormat::kText;
};

// Options that several commands share.
void addLogOption(CLI::App& command, std::string& log);
// --rules, --dm and --max-input-size.
void addDocumentOptions(CLI::App& command, DocumentPaths& paths, bool dataModelRequired);
void addMaxInputSizeOption(CLI::App& command, std::uint64_t& maxInputSize);
void addFormatOption(CLI::App& command, OutputFormat& format);

// Paragraphs for the end of a command's --help, each wrapped to fit a terminal.
// A paragraph that starts with blanks keeps them, and its further lines are
// indented two more.
std::string helpText(const std::vector<std::string>& paragraphs);

// The paragraphs of --help that tell what --log and --max-input-size do.
extern const char* const kLogHelp;
extern const char* const kMaxInputSizeHelp;

}  // namespace tovcli

#endif  // TOV_TOOLS_COMMANDS_H_
