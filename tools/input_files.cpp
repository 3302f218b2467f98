#include "input_files.h"

#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace tovcli {

bool isStandardInput(const std::string& path) {
    return path.empty() || path == "-";
}

std::string cannotRead(const std::string& path, const char* what, const std::string& reason) {
    const std::string source = isStandardInput(path) ? " from standard input" : " " + path;
    return std::string("cannot read ") + what + source + ": " + reason;
}

std::string tooLarge(const std::string& path, const char* what, std::uint64_t limit) {
    const std::string source = isStandardInput(path) ? " from standard input" : " " + path;
    return std::string(what) + source + " is larger than the input size limit of " +
           std::to_string(limit) + " bytes (--max-input-size)";
}

bool checkRegularFile(const std::string& path, const char* what, std::uint64_t limit,
                      std::string& error, std::uint64_t& size) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        error = cannotRead(path, what, std::strerror(errno));
        return false;
    }
    if (S_ISDIR(status.st_mode)) {
        error = cannotRead(path, what, std::strerror(EISDIR));
        return false;
    }
    // A FIFO would block the open, and a device may never end.
    if (!S_ISREG(status.st_mode)) {
        error = cannotRead(path, what, "not a regular file");
        return false;
    }
    size = static_cast<std::uint64_t>(status.st_size);
    if (size > limit) {
        error = tooLarge(path, what, limit);
        return false;
    }
    return true;
}

std::FILE* openInput(const std::string& path, const char* what, std::uint64_t limit,
                     std::string& error) {
    if (isStandardInput(path)) {
        return stdin;
    }
    std::uint64_t size = 0;
    if (!checkRegularFile(path, what, limit, error, size)) {
        return nullptr;
    }
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        error = cannotRead(path, what, std::strerror(errno));
    }
    return file;
}

bool readInput(const std::string& path, const char* what, std::uint64_t limit, std::string& text,
               std::string& error) {
    text.clear();
    std::FILE* input = openInput(path, what, limit, error);
    if (input == nullptr) {
        return false;
    }
    std::array<char, 65536> buffer{};
    std::size_t got = 0;
    bool withinLimit = true;
    while ((got = std::fread(buffer.data(), 1, buffer.size(), input)) > 0) {
        // A file may grow after it was measured, and standard input is never measured.
        if (text.size() + got > limit) {
            withinLimit = false;
            break;
        }
        text.append(buffer.data(), got);
    }
    const bool failed = std::ferror(input) != 0;
    const int readErrno = errno;
    if (input != stdin) {
        std::fclose(input);
    }
    if (!withinLimit) {
        error = tooLarge(path, what, limit);
        return false;
    }
    if (failed) {
        error = cannotRead(path, what, std::strerror(readErrno));
        return false;
    }
    return true;
}

}  // namespace tovcli
