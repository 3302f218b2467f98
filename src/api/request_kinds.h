// The kinds of request the C interface takes, each with the library's entry
// points for a JSON text and for the path of a JSON file.
#ifndef TOV_API_REQUEST_KINDS_H_
#define TOV_API_REQUEST_KINDS_H_

#include <string>

#include "tov/TOVResponse.h"

class TOVCoreDataControllers;

namespace tovapi {

using EntryPoint = TOVResponse (*)(const std::string& input, TOVCoreDataControllers* coreData);

struct RequestKind {
    const char* name;  // the word of `tov eval`, or "rules" and "datamodel"
    EntryPoint fromText;
    EntryPoint fromFile;
};

// Null for a word that is no kind; words are exact.
const RequestKind* findRequestKind(const char* name);

// "rules, datamodel, edit, ... link or options", for the comment on an unknown kind.
std::string requestKindNamesInWords();

}  // namespace tovapi

#endif  // TOV_API_REQUEST_KINDS_H_
