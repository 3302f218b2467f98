// Watches the folders of the documents with inotify and calls back when one
// of them may have changed. The folders, not the files, are watched: an
// editor or a deployment that renames a new file into place (Kubernetes
// swaps the symbolic link "..data" of a mounted ConfigMap) replaces the
// inode that a watch on the file would follow.
#ifndef TOV_TOOLS_SERVE_DOCUMENT_WATCH_H_
#define TOV_TOOLS_SERVE_DOCUMENT_WATCH_H_

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace tovserve {

class DocumentWatch {
public:
    // Calls `onChange` on the watch's own thread once things have settled
    // after a change; see start().
    explicit DocumentWatch(std::function<void()> onChange);
    ~DocumentWatch();
    DocumentWatch(const DocumentWatch&) = delete;
    DocumentWatch& operator=(const DocumentWatch&) = delete;

    // Watches the folders of `paths` for files of those names being written
    // and closed, created, or moved in, and for names that start with ".."
    // (the atomic writer of Kubernetes). False, with the reason in `error`,
    // when inotify cannot be had.
    bool start(const std::vector<std::string>& paths, std::string& error);

    // Ends the thread; no call back comes after.
    void stop();

private:
    void watch();

    std::function<void()> onChange;
    std::vector<std::string> names;  // the file names looked for
    int inotify = -1;
    int wakeUp = -1;  // an eventfd that stop() writes to
    std::thread thread;
};

}  // namespace tovserve

#endif  // TOV_TOOLS_SERVE_DOCUMENT_WATCH_H_
