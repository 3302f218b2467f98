#include "commands.h"

#include <algorithm>
#include <map>

namespace tovcli {

const char* const kLogHelp =
    "--log: off (the default) keeps the library silent; console prints its log on standard "
    "error, apart from the answers; any other value is a folder, "
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

const char* const kMaxInputSizeHelp =
    "--max-input-size: the largest document, request or batch line read, in bytes or with "
    "a unit such as 64KiB, 16MiB or 1GiB (default 256MiB); a larger one, a read that "
    "fails, and a path that is no regular file (a folder, a FIFO, a device) end the "
    "command with status 2 before anything is evaluated.";

void addMaxInputSizeOption(CLI::App& command, std::uint64_t& maxInputSize) {
    command
        .add_option("--max-input-size", maxInputSize,
                    "The largest document, request or line read (default 256MiB)")
        ->type_name("SIZE")
        ->transform(CLI::AsSizeValue(false))
        ->check(CLI::PositiveNumber);
}

void addFormatOption(CLI::App& command, OutputFormat& format) {
    command.add_option("--format", format, "How answers are written: text or json")
        ->type_name("text|json")
        ->transform(CLI::CheckedTransformer(std::map<std::string, OutputFormat>{
            {"text", OutputFormat::kText}, {"json", OutputFormat::kJson}}))
        ->default_str("text");
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
    addMaxInputSizeOption(command, paths.maxInputSize);
}

}  // namespace tovcli
