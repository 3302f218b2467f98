#include "tov/TOVLogger.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "foundation/clock.h"
#include "foundation/default_log_folder.h"
#include "tov/string_helpers.h"

TOVLogger::TOVLogger(WhereToLog whereToLog) : whereToLog(whereToLog) {
    setFolderToCreateLoggingFile(defaultLogFolder());
}

bool TOVLogger::printToLog(const char* message) {
    switch (whereToLog) {
        case LogToConsole:
            return printToStdOut(message);
        case LogToFile:
            return printToFile(message);
        default:
            return false;
    }
}

std::string TOVLogger::setTOVLoggingOutput(const std::string& output) {
    if (output.empty()) {
        setWhereToLog(LogNowhere);
    } else if (isThisTheLogToConsoleKeyword(output.c_str())) {
        setWhereToLog(LogToConsole);
    } else {
        setWhereToLog(LogToFile);
        setFolderToCreateLoggingFile(output.c_str());
    }
    return file;
}

void TOVLogger::initializeFilename() {
    setFolderToCreateLoggingFile(defaultLogFolder());
}

void TOVLogger::setFolderToCreateLoggingFile(const char* folder) {
    std::string path = folder;
    appendSlashOrBackSlashIfNecessary(path);
    path += createNameOfLoggingFile();
    setFile(path.c_str());
}

std::string TOVLogger::createNameOfLoggingFile() const {
    // The name tells the second in which the logger took its folder.
    const auto seconds = static_cast<std::int32_t>(currentTimeInSeconds(nullptr));
    return "TOV_Log_" + std::to_string(seconds) + ".txt";
}

std::string TOVLogger::createMessagePrependedWithTimestamp(const char* message) const {
    std::tm local{};
    currentTimeInSeconds(&local);
    std::array<char, 100> stamp{};
    std::strftime(stamp.data(), stamp.size(), "%d/%m/%Y %H:%M:%S", &local);
    std::string line = stamp.data();
    line += " : ";
    if (message != nullptr) {
        line += message;
    }
    return line;
}

bool TOVLogger::printToFile(const char* message) {
    std::FILE* out = std::fopen(file.c_str(), "a");
    if (out == nullptr) {
        return false;
    }
    std::fprintf(out, "%s\n", createMessagePrependedWithTimestamp(message).c_str());
    std::fclose(out);
    return true;
}

bool TOVLogger::printToStdOut(const char* message) {
    if (message == nullptr) {
        return true;
    }
    const std::size_t length = std::strlen(message);
    if (length == 0 || message[length - 1] == '\n') {
        std::printf("%s", message);
    } else {
        std::printf("%s\n", message);
    }
    return true;
}
