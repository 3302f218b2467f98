#include "session.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <system_error>

namespace tovcli {

bool resolveLogOption(const std::string& option, std::string& libraryFolder, std::string& error) {
    if (option.empty() || areStringsEqualSimple(option, "off")) {
        libraryFolder.clear();  // the library's word for silence
        return true;
    }
    if (isThisTheLogToConsoleKeyword(option.c_str())) {
        libraryFolder = option;
        return true;
    }
    std::error_code failure;
    std::filesystem::create_directories(option, failure);
    if (!std::filesystem::is_directory(option)) {
        error = "cannot use log folder " + option + ": " +
                (failure ? failure.message() : std::string("not a directory"));
        return false;
    }
    // The library puts a back-slash between folder and file name, which on this
    // system is part of the name; a closing slash keeps the file inside the folder.
    libraryFolder = option;
    if (libraryFolder.back() != '/') {
        libraryFolder += '/';
    }
    return true;
}

PrivateCore::PrivateCore(const std::string& libraryLogFolder) {
    core.initializeByMalloc();
    setTOVLoggingFolder(libraryLogFolder, &core);
}

StdoutCapture::StdoutCapture(Mode mode) : kept(nullptr), savedStdout(-1) {
    std::fflush(stdout);
    int replacement = -1;
    if (mode == kKeep) {
        kept = std::tmpfile();
        replacement = kept == nullptr ? -1 : ::fileno(kept);
    } else {
        replacement = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    }
    if (replacement < 0) {
        return;  // nothing taken: the lines then stay on standard output
    }
    savedStdout = ::dup(STDOUT_FILENO);
    if (savedStdout >= 0 && ::dup2(replacement, STDOUT_FILENO) < 0) {
        ::close(savedStdout);
        savedStdout = -1;
    }
    if (mode == kDiscard) {
        ::close(replacement);
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
        char buffer[4096];
        std::size_t got = 0;
        while ((got = std::fread(buffer, 1, sizeof buffer, kept)) > 0) {
            printed.append(buffer, got);
        }
        std::fclose(kept);
        kept = nullptr;
    }
    return printed;
}

}  // namespace tovcli
