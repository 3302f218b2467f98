// The commands of the tov program. Each registers its options on the program
// and hands back what runs it once the command line is parsed.
#ifndef TOV_TOOLS_COMMANDS_H_
#define TOV_TOOLS_COMMANDS_H_

#include <CLI/CLI.hpp>

#include <functional>
#include <string>
#include <vector>

#include "documents.h"

namespace tovcli {

struct Command {
    CLI::App* app;             // the subcommand, to know whether it was chosen
    std::function<int()> run;  // returns the exit status
};

Command addCheckCommand(CLI::App& program);
Command addExplainCommand(CLI::App& program);
Command addEvalCommand(CLI::App& program);
Command addBatchCommand(CLI::App& program);

// Options that several commands share.
void addLogOption(CLI::App& command, std::string& log);
void addDocumentOptions(CLI::App& command, DocumentPaths& paths, bool dataModelRequired);

// Paragraphs for the end of a command's --help, each wrapped to fit a terminal.
// A paragraph that starts with blanks keeps them, and its further lines are
// indented two more.
std::string helpText(const std::vector<std::string>& paragraphs);

// The paragraph of --help that tells what --log does.
extern const char* const kLogHelp;

}  // namespace tovcli

#endif  // TOV_TOOLS_COMMANDS_H_
