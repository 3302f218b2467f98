// The kinds of request the program evaluates, each with its entry point: the
// questions of the library's table of kinds (tov/request_kinds.h).
#ifndef TOV_TOOLS_REQUEST_KINDS_H_
#define TOV_TOOLS_REQUEST_KINDS_H_

#include <string>
#include <vector>

#include "tov/TOVResponse.h"

class TOVCoreDataControllers;

namespace tovcli {

using EntryPoint = TOVResponse (*)(const std::string& input, TOVCoreDataControllers* coreData);

struct RequestKind {
    const char* name;      // as written on the command line and in batch lines
    EntryPoint evaluate;   // the text form of the library's request function
    const char* question;  // what the request asks, for --help
};

// All kinds, in the order in which --help lists them.
const std::vector<RequestKind>& requestKinds();

// Null for a name that is no kind; names are exact.
const RequestKind* findRequestKind(const std::string& name);

std::vector<std::string> requestKindNames();

// "edit, edit-before-resolution, ... or options", for messages.
std::string requestKindNamesInWords();

}  // namespace tovcli

#endif  // TOV_TOOLS_REQUEST_KINDS_H_
