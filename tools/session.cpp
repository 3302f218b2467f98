#include "session.h"

#include <unistd.h>

#include <array>
#include <cstdio>

namespace tovcli {

PrivateCore::PrivateCore(const std::string& libraryLogFolder) {
    core.initializeByMalloc();
    setTOVLoggingFolder(libraryLogFolder, &core);
}

StdoutCapture::StdoutCapture() : kept(std::tmpfile()), savedStdout(-1) {
    std::fflush(stdout);
    if (kept == nullptr) {
        return;  // nothing taken: the lines then stay where they were going
    }
    savedStdout = ::dup(STDOUT_FILENO);
    if (savedStdout >= 0 && ::dup2(::fileno(kept), STDOUT_FILENO) < 0) {
        ::close(savedStdout);
        savedStdout = -1;
    }
}

StdoutCapture::~StdoutCapture() {
    finish();
}

std::string StdoutCapture::finish() {
    std::string printed;
    if (savedStdout >= 0) {
        std::fflush(stdout);
        ::dup2(savedStdout, STDOUT_FILENO);
        ::close(savedStdout);
        savedStdout = -1;
    }
    if (kept != nullptr) {
        std::rewind(kept);
        std::array<char, 4096> buffer{};
        std::size_t got = 0;
        while ((got = std::fread(buffer.data(), 1, buffer.size(), kept)) > 0) {
            printed.append(buffer.data(), got);
        }
        std::fclose(kept);
        kept = nullptr;
    }
    return printed;
}

}  // namespace tovcli
