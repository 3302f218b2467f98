#include "file_replacement.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <vector>

namespace tovwb {

namespace {

std::string failure(const std::string& what, const std::string& path) {
    return "cannot " + what + " " + path + ": " + std::strerror(errno);
}

bool writeAll(int descriptor, const std::string& text) {
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t wrote = ::write(descriptor, text.data() + written, text.size() - written);
        if (wrote < 0 && errno == EINTR) {
            continue;
        }
        if (wrote <= 0) {
            return false;
        }
        written += static_cast<std::size_t>(wrote);
    }
    return true;
}

// The folder's entry for the renamed file reaches the disk too.
void syncFolder(const std::string& folder) {
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0) {
        ::fsync(descriptor);
        ::close(descriptor);
    }
}

}  // namespace

bool replaceFile(const std::string& path, const std::string& text, std::string& error) {
    struct stat old {};
    if (::stat(path.c_str(), &old) != 0) {
        error = failure("find", path);
        return false;
    }
    if (!S_ISREG(old.st_mode)) {
        error = "cannot save " + path + ": it is no regular file";
        return false;
    }
    std::string folder = std::filesystem::path(path).parent_path().string();
    if (folder.empty()) {
        folder = ".";
    }
    const std::string pattern =
        folder + "/." + std::filesystem::path(path).filename().string() + ".tov-XXXXXX";
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    const int descriptor = ::mkostemp(name.data(), O_CLOEXEC);
    if (descriptor < 0) {
        error = failure("create a new file beside", path);
        return false;
    }
    const std::string temporary(name.data());
    const bool written = writeAll(descriptor, text) &&
                         ::fchmod(descriptor, old.st_mode & 07777) == 0 && ::fsync(descriptor) == 0;
    if (!written) {
        error = failure("write the new text of", path);
    }
    if (::close(descriptor) != 0 && written) {
        error = failure("write the new text of", path);
        ::unlink(temporary.c_str());
        return false;
    }
    if (!written) {
        ::unlink(temporary.c_str());
        return false;
    }
    if (::rename(temporary.c_str(), path.c_str()) != 0) {
        error = failure("rename the new text onto", path);
        ::unlink(temporary.c_str());
        return false;
    }
    syncFolder(folder);
    return true;
}

}  // namespace tovwb
