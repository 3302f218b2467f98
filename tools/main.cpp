// tov: check, explain and evaluate lifecycle business rules from the command line.
#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include "commands.h"
#include "session.h"

int main(int argc, char** argv) {
    CLI::App program(
        "tov judges changes to the lifecycle of data-management objects against a rules "
        "document and a data-model document.",
        "tov");
    program.set_version_flag(
        "--version", std::string("tov " TOV_PROGRAM_VERSION ", library ") + GetTOVVersion());
    program.require_subcommand(1);
    program.footer(tovcli::helpText({
        "Exit statuses: 0 success; 1 a document did not load (check, explain), a request "
        "failed (eval) or a line was no request (batch); 2 bad arguments, unreadable files, "
        "or documents that do not load (eval, batch); 3 a failed edit that asks for more "
        "data (eval).",
        "Run 'tov COMMAND --help' for the options of a command.",
    }));

    const std::vector<tovcli::Command> commands = {
        tovcli::addCheckCommand(program),
        tovcli::addExplainCommand(program),
        tovcli::addEvalCommand(program),
        tovcli::addBatchCommand(program),
    };

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
            const int status = command.run();
            // Answers that never reached their reader must not pass for given.
            if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
                std::cerr << "tov: cannot write standard output: " << std::strerror(errno) << "\n";
                return tovcli::kExitUsageOrInput;
            }
            return status;
        }
    }
    return tovcli::kExitUsageOrInput;
}
