// What the engine and the C interface need beyond the public table of request
// kinds (tov/request_kinds.h): the kinds in words, and the answer for a word
// that names none.
#ifndef TOV_API_REQUEST_KINDS_H_
#define TOV_API_REQUEST_KINDS_H_

#include <string>

#include "tov/TOVResponse.h"
#include "tov/request_kinds.h"

namespace tovapi {

// Null for a word that is no kind; words are exact.
const TOVRequestKind* findRequestKind(const char* name);

// "rules, datamodel, edit, ... link or options", for the comment on an unknown kind.
std::string requestKindNamesInWords();

// The Failure answer for a word that is no kind, naming every kind.
TOVResponse unknownKindResponse(const std::string& name);

}  // namespace tovapi

#endif  // TOV_API_REQUEST_KINDS_H_
