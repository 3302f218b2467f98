#include "api/log_setting.h"

#include <filesystem>
#include <system_error>

#include "tov/string_helpers.h"

namespace tovapi {

bool libraryLogSetting(const std::string& where, std::string& libraryFolder, std::string& error) {
    if (where.empty() || areStringsEqualSimple(where, "off")) {
        libraryFolder.clear();  // the library's word for silence
        return true;
    }
    if (isThisTheLogToConsoleKeyword(where.c_str())) {
        libraryFolder = where;
        return true;
    }
    std::error_code failure;
    std::filesystem::create_directories(where, failure);
    std::error_code notAsked;
    if (!std::filesystem::is_directory(where, notAsked)) {
        error = "cannot use log folder " + where + ": " +
                (failure ? failure.message() : std::string("not a directory"));
        return false;
    }
    // The library puts a back-slash between folder and file name, which on this
    // system is part of the name; a closing slash keeps the file inside the folder.
    libraryFolder = where;
    if (libraryFolder.back() != '/') {
        libraryFolder += '/';
    }
    return true;
}

}  // namespace tovapi
