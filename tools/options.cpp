#include "commands.h"

#include <algorithm>

namespace tovcli {

const char* const kLogHelp =
    "--log: off (the default) keeps the library silent; console prints its log on the "
    "terminal (standard output, but what the loading of the documents logs goes with their "
    "outcome: to standard output in check, to standard error in the other commands); any "
    "other value is a folder, "
    "created if missing, where the log goes to a new file \\TOV_Log_<seconds>.txt (the "
    "library's file name starts with a back-slash). Write ./off or ./console for folders of "
    "those names.";

void addLogOption(CLI::App& command, std::string& log) {
    command.add_option("--log", log, "Where the library logs: off, console or a folder")
        ->type_name("DIR|console|off")
        ->default_str("off");
}

std::string helpText(const std::vector<std::string>& paragraphs) {
    constexpr std::size_t kWidth = 79;
    std::string text;
    for (const std::string& paragraph : paragraphs) {
        const std::size_t indent = paragraph.find_first_not_of(' ');
        if (indent == std::string::npos) {
            text += "\n";
            continue;
        }
        std::string line(indent, ' ');
        std::size_t position = indent;
        bool lineHasWord = false;
        while (position < paragraph.size()) {
            const std::size_t end = std::min(paragraph.find(' ', position), paragraph.size());
            const std::string word = paragraph.substr(position, end - position);
            if (lineHasWord && line.size() + 1 + word.size() > kWidth) {
                text += line + "\n";
                line.assign(indent + 2, ' ');
                lineHasWord = false;
            }
            line += (lineHasWord ? " " : "") + word;
            lineHasWord = true;
            position = end + 1;
        }
        text += line + "\n";
    }
    return text;
}

void addDocumentOptions(CLI::App& command, DocumentPaths& paths, bool dataModelRequired) {
    command.add_option("--rules", paths.rulesPath, "The rules document (JSON)")
        ->type_name("FILE")
        ->required();
    CLI::Option* dm = command
                          .add_option("--dm", paths.dataModelPath,
                                      "The data-model document (JSON), loaded before the rules")
                          ->type_name("FILE");
    if (dataModelRequired) {
        dm->required();
    }
}

}  // namespace tovcli
