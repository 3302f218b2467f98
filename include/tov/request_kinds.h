// The kinds of call that hosts name by a word: the two documents and the six
// requests, each with the library's entry points for JSON text and for the
// path of a JSON file, and what it does in words. The engine, the C interface
// and the tov program all take their kinds from this one table.
#ifndef TOV_REQUEST_KINDS_H_
#define TOV_REQUEST_KINDS_H_

#include <array>
#include <cstddef>
#include <string>

#include "tov/TOVResponse.h"
#include "tov/export.h"

class TOVCoreDataControllers;

// An entry point of entry_points.h.
using TOVEntryPoint = TOVResponse (*)(const std::string& input, TOVCoreDataControllers* coreData);

struct TOVRequestKind {
    const char* name;  // the word of `tov eval`, or "rules" and "datamodel"
    bool isDocument;   // a load, which replaces a document, rather than a question
    TOVEntryPoint fromText;
    TOVEntryPoint fromFile;
    // What the call does or asks, with the request it takes, for help texts:
    // "may this manual link be created? (link creation request)".
    const char* description;
};

constexpr std::size_t TOVRequestKindCount = 8;

// The documents first, then the requests in the order of `tov eval --help`.
TOV_API const std::array<TOVRequestKind, TOVRequestKindCount>& GetTOVRequestKinds();

// Null for a word that is no kind; words are exact.
TOV_API const TOVRequestKind* FindTOVRequestKind(const std::string& name);

#endif  // TOV_REQUEST_KINDS_H_
