// The kinds of call that the engine, the C interface and the program take by
// name: the two documents and the six requests, each with the library's entry
// points for a JSON text and for the path of a JSON file.
#ifndef TOV_API_REQUEST_KINDS_H_
#define TOV_API_REQUEST_KINDS_H_

#include <array>
#include <string>

#include "tov/TOVResponse.h"

class TOVCoreDataControllers;

namespace tovapi {

using EntryPoint = TOVResponse (*)(const std::string& input, TOVCoreDataControllers* coreData);

struct RequestKind {
    const char* name;  // the word of `tov eval`, or "rules" and "datamodel"
    bool isDocument;   // a load, which replaces a document, rather than a question
    EntryPoint fromText;
    EntryPoint fromFile;
};

// The documents first, then the requests in the order of `tov eval --help`.
const std::array<RequestKind, 8>& requestKinds();

// Null for a word that is no kind; words are exact.
const RequestKind* findRequestKind(const char* name);

// "rules, datamodel, edit, ... link or options", for the comment on an unknown kind.
std::string requestKindNamesInWords();

// The Failure answer for a word that is no kind, naming every kind.
TOVResponse unknownKindResponse(const std::string& name);

}  // namespace tovapi

#endif  // TOV_API_REQUEST_KINDS_H_
