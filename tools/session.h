// What every command of the tov program shares: its exit statuses, the --log
// setting, and a private core data for each command or worker.
#ifndef TOV_TOOLS_SESSION_H_
#define TOV_TOOLS_SESSION_H_

#include <cstdio>
#include <string>

#include "tov/tov.h"

namespace tovcli {

// The exit statuses of the program, the same for every command.
enum ExitStatus : int {
    kExitSuccess = 0,            // loaded, approved, answered
    kExitFailure = 1,            // a document did not load (check, explain), a request failed
    kExitUsageOrInput = 2,       // bad arguments, unreadable files, documents that do not load
    kExitNeedsReevaluation = 3,  // a failed edit that asks for more data
};

// Turns the value of --log (off, console or a folder) into what
// setTOVLoggingFolder expects. A folder is created if missing. False, with the
// reason in `error`, when it cannot be used.
bool resolveLogOption(const std::string& option, std::string& libraryFolder, std::string& error);

// A core data of its own (rule store, data model, logger), so that a command or
// a batch worker shares nothing with any other.
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

// The library prints notices about rule keywords it does not support, and the
// console log, on standard output. While documents load, a capture takes
// standard output away, so that the program decides where those lines go and
// standard output carries only what the command promises. Only one may live at
// a time, and no other thread may print meanwhile.
class StdoutCapture {
public:
    enum Mode { kKeep, kDiscard };
    explicit StdoutCapture(Mode mode);
    ~StdoutCapture();
    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;

    // Gives standard output back and returns what was printed (nothing when
    // discarding, or when standard output could not be taken).
    std::string finish();

private:
    std::FILE* kept;
    int savedStdout;
};

}  // namespace tovcli

#endif  // TOV_TOOLS_SESSION_H_
