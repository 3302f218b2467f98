#include "document_watch.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <set>
#include <utility>

namespace tovserve {

namespace {

// Changes that come within this time of one another make one reload, so that
// a file written in several steps is read once, whole.
constexpr int kSettleMilliseconds = 100;

constexpr std::uint32_t kWatchedEvents = IN_CLOSE_WRITE | IN_MOVED_TO | IN_CREATE;

}  // namespace

DocumentWatch::DocumentWatch(std::function<void()> onChange) : onChange(std::move(onChange)) {}

DocumentWatch::~DocumentWatch() {
    stop();
}

bool DocumentWatch::start(const std::vector<std::string>& paths, std::string& error) {
    inotify = ::inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    wakeUp = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (inotify < 0 || wakeUp < 0) {
        error = std::string("cannot watch the documents: ") + std::strerror(errno);
        return false;
    }
    std::set<std::string> folders;
    for (const std::string& path : paths) {
        const std::filesystem::path file(path);
        names.push_back(file.filename().string());
        folders.insert(file.has_parent_path() ? file.parent_path().string() : ".");
    }
    for (const std::string& folder : folders) {
        if (::inotify_add_watch(inotify, folder.c_str(), kWatchedEvents) < 0) {
            error = "cannot watch the folder " + folder + ": " + std::strerror(errno);
            return false;
        }
    }
    thread = std::thread([this] { watch(); });
    return true;
}

void DocumentWatch::stop() {
    if (thread.joinable()) {
        const std::uint64_t one = 1;
        [[maybe_unused]] const ssize_t written = ::write(wakeUp, &one, sizeof one);
        thread.join();
    }
    for (int* descriptor : {&inotify, &wakeUp}) {
        if (*descriptor >= 0) {
            ::close(*descriptor);
            *descriptor = -1;
        }
    }
}

void DocumentWatch::watch() {
    alignas(inotify_event) std::array<char, 16384> events{};
    bool changed = false;
    while (true) {
        std::array<pollfd, 2> waiting = {{{inotify, POLLIN, 0}, {wakeUp, POLLIN, 0}}};
        // Once something changed, wait only for things to settle.
        const int ready =
            ::poll(waiting.data(), waiting.size(), changed ? kSettleMilliseconds : -1);
        if (ready < 0 && errno != EINTR) {
            return;
        }
        if ((waiting[1].revents & POLLIN) != 0) {
            return;
        }
        if (ready == 0) {
            changed = false;
            onChange();
            continue;
        }
        if ((waiting[0].revents & POLLIN) == 0) {
            continue;
        }
        const ssize_t length = ::read(inotify, events.data(), events.size());
        for (ssize_t at = 0; at < length;) {
            const auto* event = reinterpret_cast<const inotify_event*>(events.data() + at);
            const std::string name = event->len > 0 ? event->name : "";
            if ((event->mask & IN_Q_OVERFLOW) != 0 || name.compare(0, 2, "..") == 0 ||
                std::find(names.begin(), names.end(), name) != names.end()) {
                changed = true;
            }
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
    }
}

}  // namespace tovserve
