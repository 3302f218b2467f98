// What every command of the tov program shares: its exit statuses, the --log
// setting, and a private core data for each command.
#ifndef TOV_TOOLS_SESSION_H_
#define TOV_TOOLS_SESSION_H_

#include <cstdio>
#include <string>

#include "tov/TOVCoreDataControllers.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOV_DMStructure.h"

namespace tovcli {

// The exit statuses of the program, the same for every command.
enum ExitStatus : int {
    kExitSuccess = 0,            // loaded, approved, answered
    kExitFailure = 1,            // a document did not load (check, explain), a request failed
    kExitUsageOrInput = 2,       // bad arguments, unreadable files, documents that do not load
    kExitNeedsReevaluation = 3,  // a failed edit that asks for more data
};

// A core data of its own (rule store, data model, logger), which a command
// loads once; batch workers borrow it to read.
class PrivateCore {
public:
    explicit PrivateCore(const std::string& libraryLogFolder);
    PrivateCore(const PrivateCore&) = delete;
    PrivateCore& operator=(const PrivateCore&) = delete;

    TOVCoreDataControllers* get() { return &core; }
    const TOVLifecycleBusinessRules& rules() { return *core.getRules(); }
    const TOV_DMStructure& dataModel() { return *core.getDmInfo(); }

private:
    TOVCoreDataControllers core;
};

// The library prints notices about rule keywords it does not support on
// standard output. While a document loads, a capture takes file descriptor 1
// away, so that the program can turn those lines into notes. Only one may live
// at a time, and no other thread may print meanwhile.
class StdoutCapture {
public:
    StdoutCapture();
    ~StdoutCapture();
    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;

    // Gives file descriptor 1 back and returns what was printed (nothing when
    // it could not be taken).
    std::string finish();

private:
    std::FILE* kept;
    int savedStdout;
};

}  // namespace tovcli

#endif  // TOV_TOOLS_SESSION_H_
