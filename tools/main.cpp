// tov: check, explain and evaluate lifecycle business rules from the command line.
#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "answers.h"
#include "commands.h"
#include "json_files.h"
#include "session.h"
#include "tov/entry_points.h"

namespace {

// A first word that names no command is told in one line, with the nearest
// name, instead of the usage of every command.
bool isUnknownCommand(int argc, char** argv, const std::vector<tovcli::Command>& commands) {
    if (argc < 2 || argv[1][0] == '-') {
        return false;
    }
    const std::string word = argv[1];
    std::vector<std::string> names;
    for (const tovcli::Command& command : commands) {
        if (command.app->get_name() == word) {
            return false;
        }
        names.push_back(command.app->get_name());
    }
    const std::string nearest = tovcli::nearestWord(word, names, word.size());
    std::cerr << "tov: unknown command '" << word << "'"
              << (nearest.empty() ? "" : "; did you mean '" + nearest + "'?") << "\n"
              << "Usage: tov COMMAND [OPTIONS]; run 'tov --help' for the commands.\n";
    return true;
}

int runProgram(int argc, char** argv) {
    CLI::App program(
        "tov judges changes to the lifecycle of data-management objects against a rules "
        "document and a data-model document.",
        "tov");
    program.set_version_flag(
        "--version", std::string("tov " TOV_PROGRAM_VERSION ", library ") + GetTOVVersion());
    program.require_subcommand(1);
    program.footer(tovcli::helpText({
        "A rules author's day: write the documents, 'tov check --strict' them, draw an "
        "attribute's lifecycle with 'tov graph', keep cases in a suite for 'tov test', and "
        "read the rules back in words with 'tov explain'. 'tov serve' answers hosts on other "
        "machines over HTTP; 'tov workbench' does all of it in a page of the browser.",
        "Exit statuses: 0 success; 1 a document did not load or --strict found something "
        "(check, explain), a request failed (eval), a line was no request (batch), a case "
        "failed (test) or nothing was drawn (graph); 2 bad arguments, unreadable or too "
        "large input, or documents that do not load (eval, batch, test, graph, serve); 3 a "
        "failed edit that asks for more data (eval). serve and workbench end with 0 once "
        "stopped by SIGTERM or SIGINT.",
        "Run 'tov COMMAND --help' for the options of a command.",
    }));

    const std::vector<tovcli::Command> commands = {
        tovcli::addCheckCommand(program),     tovcli::addExplainCommand(program),
        tovcli::addEvalCommand(program),      tovcli::addBatchCommand(program),
        tovcli::addTestCommand(program),      tovcli::addGraphCommand(program),
        tovcli::addServeCommand(program),
#ifdef TOV_WITH_WORKBENCH
        tovcli::addWorkbenchCommand(program),
#endif
    };
    if (isUnknownCommand(argc, argv, commands)) {
        return tovcli::kExitUsageOrInput;
    }

    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            return program.exit(error);  // --help or --version, on standard output
        }
        // A usage error: the message and the usage of the command that was
        // being parsed, both on standard error, and one status for all of them.
        std::cerr << "tov: " << error.what() << "\n\n" << program.help();
        return tovcli::kExitUsageOrInput;
    }

    for (const tovcli::Command& command : commands) {
        if (command.app->parsed()) {
            tovcli::separateAnswersFromLibraryOutput();
            const int status = command.run();
            // Answers that never reached their reader must not pass for given.
            std::FILE* answers = tovcli::answerStream();
            if (std::fflush(answers) != 0 || std::ferror(answers) != 0) {
                std::cerr << "tov: cannot write standard output: " << std::strerror(errno) << "\n";
                return tovcli::kExitUsageOrInput;
            }
            return status;
        }
    }
    return tovcli::kExitUsageOrInput;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return runProgram(argc, argv);
    } catch (const std::bad_alloc&) {
        // Input within the size limit can still be too much for a small machine.
        std::cerr << "tov: out of memory\n";
        return tovcli::kExitUsageOrInput;
    } catch (const std::exception& error) {
        // Nothing else is expected to throw; if it does, say what and stop cleanly.
        std::cerr << "tov: " << error.what() << "\n";
        return tovcli::kExitUsageOrInput;
    }
}
