#include "documents.h"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <iterator>

namespace tovcli {

namespace {

// The library's comments for text that is no JSON object, and for no text at all.
constexpr const char* kFundamentalParsingError = "Json has fundamental parsing error";
constexpr const char* kInsufficientInputData = "Insufficient input data";

bool readStream(std::FILE* stream, std::string& text) {
    char buffer[65536];
    std::size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, stream)) > 0) {
        text.append(buffer, got);
    }
    return std::ferror(stream) == 0;
}

std::string cannotRead(const std::string& path, const char* what, int errorNumber) {
    const std::string source = isStandardInput(path) ? " from standard input" : " " + path;
    return std::string("cannot read ") + what + source + ": " + std::strerror(errorNumber);
}

std::vector<std::string> splitFaults(const std::string& comment) {
    std::vector<std::string> faults;
    std::string::size_type start = 0;
    while (true) {
        const std::string::size_type bar = comment.find('|', start);
        faults.push_back(comment.substr(start, bar - start));
        if (bar == std::string::npos) {
            return faults;
        }
        start = bar + 1;
    }
}

const char* jsonTypeName(const rapidjson::Value& value) {
    switch (value.GetType()) {
        case rapidjson::kNullType:
            return "null";
        case rapidjson::kFalseType:
        case rapidjson::kTrueType:
            return "boolean";
        case rapidjson::kArrayType:
            return "array";
        case rapidjson::kStringType:
            return "string";
        case rapidjson::kNumberType:
            return "number";
        default:
            return "object";
    }
}

// The library only says that the text is unusable; a rules author wants to
// know where, so the text is parsed again here the same way.
void explainUnusableText(const Document& document, std::ostream& out) {
    if (document.text.empty()) {
        out << document.path << ": note: the file is empty\n";
        return;
    }
    rapidjson::Document json;
    // Iterative like the library's own parse, so deep nesting cannot overflow the stack.
    json.Parse<rapidjson::kParseIterativeFlag>(document.text.c_str());
    if (json.HasParseError()) {
        const std::size_t offset = json.GetErrorOffset();
        std::size_t line = 1;
        std::size_t column = 1;
        for (std::size_t i = 0; i < offset && i < document.text.size(); ++i) {
            if (document.text[i] == '\n') {
                ++line;
                column = 1;
            } else {
                ++column;
            }
        }
        out << document.path << ":" << line << ":" << column
            << ": note: " << rapidjson::GetParseError_En(json.GetParseError()) << "\n";
    } else if (!json.IsObject()) {
        out << document.path << ": note: the document is a JSON " << jsonTypeName(json)
            << ", not an object\n";
    }
}

// The notices the library prints while it reads transition rules; one of them
// has no line end, so they are cut out of the printed text by their words.
const char* const kLibraryNotices[] = {
    "We do not support the allowJumps keyword in the Transition Rule.",
    "We do not support the allowReverse keyword in the Transition Rule.",
};

// Removes the notices from `printed` and counts them in `notices`, in order
// of first appearance; returns the rest (the console log, if any).
std::string takeOutNotices(const std::string& printed,
                           std::vector<std::pair<std::string, int>>& notices) {
    std::string rest;
    std::size_t position = 0;
    while (position < printed.size()) {
        std::size_t nearest = std::string::npos;
        const char* found = nullptr;
        for (const char* notice : kLibraryNotices) {
            const std::size_t at = printed.find(notice, position);
            if (at < nearest) {
                nearest = at;
                found = notice;
            }
        }
        if (found == nullptr) {
            rest.append(printed, position, std::string::npos);
            break;
        }
        rest.append(printed, position, nearest - position);
        position = nearest + std::strlen(found);
        if (position < printed.size() && printed[position] == '\n') {
            ++position;
        }
        auto counted = std::find_if(notices.begin(), notices.end(),
                                    [found](const auto& entry) { return entry.first == found; });
        if (counted == notices.end()) {
            notices.emplace_back(found, 1);
        } else {
            ++counted->second;
        }
    }
    return rest;
}

}  // namespace

bool isStandardInput(const std::string& path) {
    return path.empty() || path == "-";
}

std::FILE* openInput(const std::string& path, const char* what, std::string& error) {
    if (isStandardInput(path)) {
        return stdin;
    }
    // A folder opens, but reading it fails, and a line reader would take that
    // for an empty input.
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) {
        error = cannotRead(path, what, EISDIR);
        return nullptr;
    }
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        error = cannotRead(path, what, errno);
    }
    return file;
}

bool readInput(const std::string& path, const char* what, std::string& text, std::string& error) {
    text.clear();
    std::FILE* input = openInput(path, what, error);
    if (input == nullptr) {
        return false;
    }
    const bool read = readStream(input, text);
    const int readErrno = errno;
    if (input != stdin) {
        std::fclose(input);
    }
    if (!read) {
        error = cannotRead(path, what, readErrno);
        return false;
    }
    return true;
}

bool readDocuments(const DocumentPaths& paths, std::vector<Document>& documents,
                   std::ostream& errors) {
    // The data model loads first, as a host would: the rules refer to it.
    std::vector<Document> wanted;
    if (!paths.dataModelPath.empty()) {
        wanted.push_back({Document::kDataModel, paths.dataModelPath, {}});
    }
    wanted.push_back({Document::kRules, paths.rulesPath, {}});

    bool allRead = true;
    for (Document& document : wanted) {
        const char* what =
            document.kind == Document::kRules ? "rules document" : "data-model document";
        std::string error;
        if (isStandardInput(document.path)) {
            errors << "tov: the " << what << " must be a file, not standard input\n";
            allRead = false;
        } else if (!readInput(document.path, what, document.text, error)) {
            errors << "tov: " << error << "\n";
            allRead = false;
        }
    }
    documents = std::move(wanted);
    return allRead;
}

TOVResponse initializeFromDocument(const Document& document, PrivateCore& core) {
    return document.kind == Document::kRules ? InitializeTOVRules(document.text, core.get())
                                             : InitializeTOV_DMInfo(document.text, core.get());
}

LoadOutcome loadDocument(const Document& document, PrivateCore& core, StdoutCapture::Mode mode) {
    StdoutCapture capture(mode);
    LoadOutcome outcome;
    outcome.response = initializeFromDocument(document, core);
    outcome.printed = capture.finish();
    return outcome;
}

void reportLoad(const Document& document, const LoadOutcome& outcome, bool tellSuccess,
                std::ostream& out) {
    std::vector<std::pair<std::string, int>> notices;
    out << takeOutNotices(outcome.printed, notices);

    const TOVResponse& response = outcome.response;
    const std::string comment = response.getGeneralResultComment();
    if (response.getGeneralResult()) {
        if (tellSuccess) {
            out << document.path << ": " << comment << "\n";
        }
    } else {
        for (const std::string& fault : splitFaults(comment)) {
            out << document.path << ": " << fault << "\n";
            if (fault == kFundamentalParsingError || fault == kInsufficientInputData) {
                explainUnusableText(document, out);
            }
        }
    }
    for (const auto& notice : notices) {
        out << document.path << ": note: " << notice.first;
        if (notice.second > 1) {
            out << " (" << notice.second << " times)";
        }
        out << "\n";
    }
}

bool loadDocuments(const std::vector<Document>& documents, PrivateCore& core, bool tellSuccess,
                   std::ostream& out) {
    bool allLoaded = true;
    for (const Document& document : documents) {
        const LoadOutcome outcome = loadDocument(document, core, StdoutCapture::kKeep);
        reportLoad(document, outcome, tellSuccess, out);
        allLoaded = allLoaded && outcome.response.getGeneralResult();
    }
    return allLoaded;
}

bool prepareCommand(const std::string& logOption, const DocumentPaths& paths,
                    std::string& logFolder, std::vector<Document>& documents) {
    std::string error;
    if (!resolveLogOption(logOption, logFolder, error)) {
        std::cerr << "tov: " << error << "\n";
        return false;
    }
    return readDocuments(paths, documents, std::cerr);
}

}  // namespace tovcli
