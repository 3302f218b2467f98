// The decision log: one JSON line per decision, for audits. It is off unless
// asked for, since requests carry business data; it never holds a header, so
// no token reaches it.
#ifndef TOV_TOOLS_SERVE_DECISION_LOG_H_
#define TOV_TOOLS_SERVE_DECISION_LOG_H_

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <string>

namespace tovserve {

struct Decision {
    const char* kind;
    const std::string& request;  // the request text as it came
    const std::string& answer;   // the single-string form
    std::uint64_t generation;
    std::chrono::nanoseconds latency;
};

class DecisionLog {
public:
    DecisionLog() = default;
    ~DecisionLog();
    DecisionLog(const DecisionLog&) = delete;
    DecisionLog& operator=(const DecisionLog&) = delete;

    // Opens `path` for appending. False, with the reason in `error`, when it cannot.
    bool open(const std::string& path, std::string& error);

    // Closes and opens the path again, so that a rotated log goes on in a new
    // file. False, with the reason, when it cannot: the log then stays closed
    // until the next reopen, and decisions go on being answered.
    bool reopen(std::string& error);

    // Appends {"time", "kind", "request", "answer", "generation",
    // "latencySeconds"}: the request as JSON when it is JSON, else as a
    // string, the answer as the object it is.
    void write(const Decision& decision);

private:
    std::mutex mutex;
    std::string path;
    std::FILE* file = nullptr;
};

// "2024-05-17T09:30:00.123456Z": the UTC time of `moment`.
std::string utcTimestamp(std::chrono::system_clock::time_point moment);

}  // namespace tovserve

#endif  // TOV_TOOLS_SERVE_DECISION_LOG_H_
