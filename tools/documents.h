// Reading input files, and loading the rules and data-model documents into a
// core data with their faults told one per line.
#ifndef TOV_TOOLS_DOCUMENTS_H_
#define TOV_TOOLS_DOCUMENTS_H_

#include <cstdio>
#include <ostream>
#include <string>
#include <vector>

#include "session.h"

namespace tovcli {

// True when `path` names standard input: "-" or nothing at all.
bool isStandardInput(const std::string& path);

// Opens a file for reading, or gives standard input for "-" or nothing. Null,
// with the reason in `error` ("cannot read x: Is a directory"), when it cannot.
std::FILE* openInput(const std::string& path, const char* what, std::string& error);

// Reads a whole file, or standard input for "-". False, with the reason in
// `error` ("cannot read x: No such file or directory"), when it cannot.
bool readInput(const std::string& path, const char* what, std::string& text, std::string& error);

// A document named on the command line, as read from disk.
struct Document {
    enum Kind { kRules, kDataModel };
    Kind kind;
    std::string path;
    std::string text;
};

// The documents a command was given: the rules always, the data model when
// `dataModelPath` is not empty.
struct DocumentPaths {
    std::string rulesPath;
    std::string dataModelPath;
};

// Reads the documents; on failure tells each unreadable one on `errors`.
bool readDocuments(const DocumentPaths& paths, std::vector<Document>& documents,
                   std::ostream& errors);

// The start of every command: where the log goes, and the documents' texts.
// False, with the reason told on standard error, for a usage or input error.
bool prepareCommand(const std::string& logOption, const DocumentPaths& paths,
                    std::string& logFolder, std::vector<Document>& documents);

// The outcome of loading one document.
struct LoadOutcome {
    TOVResponse response;
    std::string printed;  // what the library printed on standard output meanwhile
};

// Loads one document into `core` as it is, with no regard to standard output.
TOVResponse initializeFromDocument(const Document& document, PrivateCore& core);

// Loads one document into `core`, taking standard output away meanwhile
// (`mode` says whether what the library prints is kept or dropped).
LoadOutcome loadDocument(const Document& document, PrivateCore& core, StdoutCapture::Mode mode);

// Tells the outcome of one load on `out`: first the console log the load
// printed, then "PATH: comment" on success (when `tellSuccess`), or one line
// "PATH: fault" per fault (the comment split at "|") with a note of where a text
// that is no JSON goes wrong, and last one note per kind of notice the library
// printed about the document.
void reportLoad(const Document& document, const LoadOutcome& outcome, bool tellSuccess,
                std::ostream& out);

// Loads every document in order and reports each on `out`. True when all loaded.
bool loadDocuments(const std::vector<Document>& documents, PrivateCore& core, bool tellSuccess,
                   std::ostream& out);

}  // namespace tovcli

#endif  // TOV_TOOLS_DOCUMENTS_H_
