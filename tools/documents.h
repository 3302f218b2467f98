// The rules and data-model documents named on the command line: checked to be
// readable, loaded into a core data, and the outcome told as findings.
#ifndef TOV_TOOLS_DOCUMENTS_H_
#define TOV_TOOLS_DOCUMENTS_H_

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "input_files.h"
#include "json_output.h"
#include "session.h"
#include "tov/TOVResponse.h"

namespace tovcli {

// A document named on the command line, checked to be a regular file within
// the size limit. The library reads it itself, so no copy of its text is held.
// A document that is being edited (in the workbench) is held as its text
// instead: `path` then only names it, and no file is read.
struct Document {
    enum Kind { kRules, kDataModel };
    Kind kind;
    std::string path;
    std::uint64_t size;
    const std::string* text = nullptr;  // not owned; null for a file
};

// The documents a command was given: the rules always, the data model when
// `dataModelPath` is not empty; and the bound on every input's size.
struct DocumentPaths {
    std::string rulesPath;
    std::string dataModelPath;
    std::uint64_t maxInputSize = kDefaultMaxInputSize;
};

// One thing to tell about a document: its outcome, a fault, a note, or a
// warning of a likely mistake in a document that loads.
struct Finding {
    enum Severity { kLoaded, kFault, kNote, kWarning };
    Severity severity;
    std::string document;
    std::string section;   // the document's section it concerns, or empty
    std::string location;  // "LINE:COLUMN" in the text, or empty
    std::string message;
};

// "PATH: message", "PATH: note: message", "PATH:LINE:COLUMN: warning: message"
// and so on; `notesAreFaults` turns "note:" and "warning:" into "error:".
void printFinding(const Finding& finding, bool notesAreFaults, std::ostream& out);

// A finding's members in JSON: "section" (null when it concerns none),
// "message", and "line" and "column" when `place` is "LINE:COLUMN".
void writeFindingMembers(JsonWriter& writer, const Finding& finding, const std::string& place);

// The start of every command that loads documents: where the log goes, and
// whether the documents can be read. False, with the reason told on standard
// error, for a usage or input error.
bool prepareCommand(const std::string& logOption, const DocumentPaths& paths,
                    std::string& logFolder, std::vector<Document>& documents);

// prepareCommand, then loadDocuments into a new core with the faults told on
// standard error. Null when the command cannot go on; `unreadable` then tells
// whether the reason was the input (a usage or input error) rather than a
// document that does not load.
std::unique_ptr<PrivateCore> loadCommandDocuments(const std::string& logOption,
                                                  const DocumentPaths& paths, bool& unreadable);

// Loads one document into `core`, as the library reads a file.
TOVResponse initializeFromDocument(const Document& document, PrivateCore& core);

// Tells the outcome of one document's load as findings: what the library
// printed about it (`printed`, its output during the load), its faults one by
// one (the comment split at "|") with a note of where a text that is no JSON
// goes wrong, and one note per kind of notice the library printed; the rest of
// `printed` (the console log, if any) goes to standard error. True when it
// loaded.
bool findingsOfLoad(const Document& document, const TOVResponse& response,
                    const std::string& printed, std::uint64_t maxInputSize,
                    std::vector<Finding>& findings);

// Loads every document in order (the data model first) and tells each outcome
// as findingsOfLoad does. True when all loaded.
bool loadDocuments(const std::vector<Document>& documents, PrivateCore& core,
                   std::uint64_t maxInputSize, std::vector<Finding>& findings);

// The same, printing the findings on `out` (success lines only when `tellSuccess`).
bool loadDocuments(const std::vector<Document>& documents, PrivateCore& core,
                   std::uint64_t maxInputSize, bool tellSuccess, std::ostream& out);

}  // namespace tovcli

#endif  // TOV_TOOLS_DOCUMENTS_H_
