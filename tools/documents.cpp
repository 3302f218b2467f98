#include "documents.h"

#include <rapidjson/error/en.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <iostream>
#include <optional>
#include <utility>

#include "api/log_setting.h"
#include "json/json_types.h"
#include "json_files.h"
#include "rule_load_faults.h"
#include "tov/TOVResponse.h"
#include "tov/document_faults.h"
#include "tov/entry_points.h"
#include "tov/rule_kinds.h"

namespace tovcli {

namespace {

// The library's comments for text that is no JSON object, and for no text at all.
constexpr const char* kFundamentalParsingError = "Json has fundamental parsing error";
constexpr const char* kInsufficientInputData = "Insufficient input data";

const char* documentWhat(Document::Kind kind) {
    return kind == Document::kRules ? "rules document" : "data-model document";
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

// The section of each fault of a load that failed (its comment split at "|"),
// as the library tells them when it reads the document again: the first piece
// of a fault names its section, any further piece (a "|" within a name) none.
std::vector<std::string> sectionsOfFaults(const Document& document, std::size_t faultCount) {
    // A document held as its text is read again from its text.
    const std::string& input = document.text == nullptr ? document.path : *document.text;
    const bool isPath = document.text == nullptr;
    const std::vector<TOVDocumentFault> faults = document.kind == Document::kRules
                                                     ? FindTOVRulesDocumentFaults(input, isPath)
                                                     : FindTOV_DMInfoDocumentFaults(input, isPath);
    std::vector<std::string> sections;
    for (const TOVDocumentFault& fault : faults) {
        sections.push_back(fault.section);
        sections.resize(sections.size() + splitFaults(fault.message).size() - 1);
    }
    sections.resize(faultCount);
    return sections;
}

Finding noteOn(const Document& document, std::string message) {
    return {Finding::kNote, document.path, {}, {}, std::move(message)};
}

// The library only says that the text is unusable; a rules author wants to
// know where, so the text is read and parsed again here the same way.
void explainUnusableText(const Document& document, std::uint64_t maxInputSize,
                         std::vector<Finding>& findings) {
    if (document.size == 0) {
        findings.push_back(noteOn(document, "the file is empty"));
        return;
    }
    std::string read;
    std::string error;
    if (document.text == nullptr &&
        !readInput(document.path, documentWhat(document.kind), maxInputSize, read, error)) {
        findings.push_back(noteOn(document, error));
        return;
    }
    const std::string& text = document.text == nullptr ? read : *document.text;
    tovjson::Document json;
    // Iterative like the library's own parse, so deep nesting cannot overflow the stack.
    json.Parse<rapidjson::kParseIterativeFlag>(text.c_str());
    if (json.HasParseError()) {
        Finding note = noteOn(document, rapidjson::GetParseError_En(json.GetParseError()));
        note.location = textLocation(text, json.GetErrorOffset());
        findings.push_back(std::move(note));
    } else if (!json.IsObject()) {
        findings.push_back(noteOn(document, std::string("the document is a JSON ") +
                                                jsonTypeName(json) + ", not an object"));
    }
}

// The notices the library prints while it reads transition rules; one of them
// has no line end, so they are cut out of the printed text by their words.
const std::array<const char*, 2> kLibraryNotices = {
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

void printFinding(const Finding& finding, bool notesAreFaults, std::ostream& out) {
    out << finding.document;
    if (!finding.location.empty()) {
        out << ":" << finding.location;
    }
    out << ": ";
    if (finding.severity == Finding::kNote || finding.severity == Finding::kWarning) {
        out << (notesAreFaults                          ? "error: "
                : finding.severity == Finding::kWarning ? "warning: "
                                                        : "note: ");
    }
    out << finding.message << "\n";
}

void writeFindingMembers(JsonWriter& writer, const Finding& finding, const std::string& place) {
    writer.Key("section");
    if (finding.section.empty()) {
        writer.Null();
    } else {
        writeString(writer, finding.section);
    }
    writer.Key("message");
    writeString(writer, finding.message);
    const std::size_t colon = place.find(':');
    if (colon != std::string::npos) {
        writer.Key("line");
        writer.Uint64(std::stoull(place.substr(0, colon)));
        writer.Key("column");
        writer.Uint64(std::stoull(place.substr(colon + 1)));
    }
}

bool prepareCommand(const std::string& logOption, const DocumentPaths& paths,
                    std::string& logFolder, std::vector<Document>& documents) {
    std::string error;
    if (!tovapi::libraryLogSetting(logOption, logFolder, error)) {
        std::cerr << "tov: " << error << "\n";
        return false;
    }
    // The data model loads first, as a host would: the rules refer to it.
    documents.clear();
    if (!paths.dataModelPath.empty()) {
        documents.push_back({Document::kDataModel, paths.dataModelPath, 0});
    }
    documents.push_back({Document::kRules, paths.rulesPath, 0});

    bool allReadable = true;
    for (Document& document : documents) {
        const char* what = documentWhat(document.kind);
        if (isStandardInput(document.path)) {
            std::cerr << "tov: the " << what << " must be a file, not standard input\n";
            allReadable = false;
        } else if (!checkRegularFile(document.path, what, paths.maxInputSize, error,
                                     document.size)) {
            std::cerr << "tov: " << error << "\n";
            allReadable = false;
        }
    }
    return allReadable;
}

TOVResponse initializeFromDocument(const Document& document, PrivateCore& core) {
    if (document.text != nullptr) {
        return document.kind == Document::kRules ? InitializeTOVRules(*document.text, core.get())
                                                 : InitializeTOV_DMInfo(*document.text, core.get());
    }
    // An empty file gets the answer of an empty text, which says more than a
    // parse error would.
    const bool empty = document.size == 0;
    if (document.kind == Document::kRules) {
        return empty ? InitializeTOVRules("", core.get())
                     : InitializeTOVRulesFromFile(document.path, core.get());
    }
    return empty ? InitializeTOV_DMInfo("", core.get())
                 : InitializeTOV_DMInfoFromFile(document.path, core.get());
}

bool findingsOfLoad(const Document& document, const TOVResponse& response,
                    const std::string& printed, std::uint64_t maxInputSize,
                    std::vector<Finding>& findings) {
    std::vector<std::pair<std::string, int>> notices;
    std::cerr << takeOutNotices(printed, notices);

    const std::string comment = response.getGeneralResultComment();
    const bool loaded = response.getGeneralResult();
    if (loaded) {
        findings.push_back({Finding::kLoaded, document.path, {}, {}, comment});
    } else {
        std::vector<std::string> faults = splitFaults(comment);
        // Text that is no JSON object, or no text, has no sections to tell.
        const bool unusable = faults.size() == 1 && (faults.front() == kFundamentalParsingError ||
                                                     faults.front() == kInsufficientInputData);
        std::vector<std::string> sections = unusable ? std::vector<std::string>(faults.size())
                                                     : sectionsOfFaults(document, faults.size());
        RuleLoadFaults refused(document, maxInputSize);
        std::string section;  // of the fault being told, whose pieces may follow
        for (std::size_t i = 0; i < faults.size(); ++i) {
            if (!sections[i].empty()) {
                section = sections[i];
            }
            findings.push_back(
                {Finding::kFault, document.path, std::move(sections[i]), {}, std::move(faults[i])});
            if (unusable) {
                explainUnusableText(document, maxInputSize, findings);
            }
            // The library's words stay whole; the note follows a fault's last piece.
            const bool lastPiece = i + 1 == faults.size() || !sections[i + 1].empty();
            if (lastPiece && !section.empty()) {
                if (std::optional<Finding> note = refused.noteFor(section)) {
                    findings.push_back(std::move(*note));
                }
                section.clear();
            }
        }
    }
    for (const auto& notice : notices) {
        std::string message = notice.first;
        if (notice.second > 1) {
            message += " (" + std::to_string(notice.second) + " times)";
        }
        Finding note = noteOn(document, std::move(message));
        note.section = GetTOVRuleKinds()[TOVRuleKind_Transition].section;
        findings.push_back(std::move(note));
    }
    return loaded;
}

bool loadDocuments(const std::vector<Document>& documents, PrivateCore& core,
                   std::uint64_t maxInputSize, std::vector<Finding>& findings) {
    bool allLoaded = true;
    for (const Document& document : documents) {
        StdoutCapture capture;
        const TOVResponse response = initializeFromDocument(document, core);
        const std::string printed = capture.finish();
        // A document that did not load is read again for its faults, and the
        // library prints the same notices again, which were told already.
        StdoutCapture again;
        if (!findingsOfLoad(document, response, printed, maxInputSize, findings)) {
            allLoaded = false;
        }
        again.finish();
    }
    return allLoaded;
}

bool loadDocuments(const std::vector<Document>& documents, PrivateCore& core,
                   std::uint64_t maxInputSize, bool tellSuccess, std::ostream& out) {
    std::vector<Finding> findings;
    const bool allLoaded = loadDocuments(documents, core, maxInputSize, findings);
    for (const Finding& finding : findings) {
        if (tellSuccess || finding.severity != Finding::kLoaded) {
            printFinding(finding, false, out);
        }
    }
    return allLoaded;
}

std::unique_ptr<PrivateCore> loadCommandDocuments(const std::string& logOption,
                                                  const DocumentPaths& paths, bool& unreadable) {
    std::string logFolder;
    std::vector<Document> documents;
    unreadable = !prepareCommand(logOption, paths, logFolder, documents);
    if (unreadable) {
        return nullptr;
    }
    auto core = std::make_unique<PrivateCore>(logFolder);
    if (!loadDocuments(documents, *core, paths.maxInputSize, false, std::cerr)) {
        return nullptr;
    }
    return core;
}

}  // namespace tovcli
