// Reloads of the documents, run on a thread of their own, so that a large
// document never holds up a thread that answers requests. Asks that come
// while a reload runs fold into one more reload after it.
#ifndef TOV_TOOLS_SERVE_RELOADER_H_
#define TOV_TOOLS_SERVE_RELOADER_H_

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

#include "decision_service.h"

namespace tovserve {

class Reloader {
public:
    explicit Reloader(DecisionService& service);
    ~Reloader();
    Reloader(const Reloader&) = delete;
    Reloader& operator=(const Reloader&) = delete;

    // Asks for a reload, told as `why` on standard error. `onlyIfChanged`
    // skips documents equal to those that serve (a watched folder changes
    // for other files too); a reload asked for by a signal always loads.
    void request(const std::string& why, bool onlyIfChanged);

    // Ends the thread after the reload that runs, if any.
    void stop();

private:
    void work();
    void reload(const std::string& why, bool onlyIfChanged);
    void reloadOrTell(const std::string& why, bool onlyIfChanged, std::uint64_t before);

    DecisionService& service;
    std::mutex mutex;
    std::condition_variable asked;
    bool pending = false;
    bool pendingOnlyIfChanged = true;
    std::string pendingWhy;
    bool stopping = false;
    std::thread thread;
};

}  // namespace tovserve

#endif  // TOV_TOOLS_SERVE_RELOADER_H_
