// Helpers shared by the test suites.
#ifndef TOV_TESTS_TEST_SUPPORT_H_
#define TOV_TESTS_TEST_SUPPORT_H_

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "tov/TOVCoreDataControllers.h"
#include "tov/TOVLogger.h"
#include "tov/TOVResponse.h"

namespace tovtest {

// A private core data whose logger writes to standard output, so that each
// test can read back exactly what was logged, without timestamps.
class ConsoleLoggedTest : public ::testing::Test {
protected:
    void SetUp() override {
        coreData.initializeByMalloc();
        setTOVLoggingFolder("console", &coreData);
    }

    static void startCapture() {
        std::fflush(stdout);
        testing::internal::CaptureStdout();
    }

    // The logger writes with printf, so its buffer must reach the capture first.
    static std::string stopCapture() {
        std::fflush(stdout);
        return testing::internal::GetCapturedStdout();
    }

    TOVCoreDataControllers coreData;
};

// A private core data (its own store, data model and logger) with logging off.
class PrivateCore {
public:
    PrivateCore() {
        core.initializeByMalloc();
        setTOVLoggingFolder("", &core);
    }
    TOVCoreDataControllers* get() { return &core; }
    TOVLogger* logger() { return core.getLogger(); }
    TOVLifecycleBusinessRules* rules() { return core.getRules(); }
    TOV_DMStructure* dmInfo() { return core.getDmInfo(); }

private:
    TOVCoreDataControllers core;
};

// Runs `action` with `logger` printing to the console and returns what it
// printed; the logger is silenced again afterwards.
inline std::string captureConsole(TOVLogger* logger, const std::function<void()>& action) {
    logger->setTOVLoggingOutput("console");
    std::fflush(stdout);
    testing::internal::CaptureStdout();
    action();
    std::fflush(stdout);
    std::string printed = testing::internal::GetCapturedStdout();
    logger->setTOVLoggingOutput("");
    return printed;
}

// The single-string form of a response, the way tests compare whole answers.
inline std::string asText(const TOVResponse& response) {
    return response.turnResponseIntoASingleString();
}

// Lines as the console logger prints them, each ended by a line feed.
inline std::string asConsoleLines(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

// The names of data-model objects or attributes, in list order.
template <typename Named>
std::vector<std::string> namesOf(const std::vector<Named>& items) {
    std::vector<std::string> names;
    names.reserve(items.size());
    for (const Named& item : items) {
        names.push_back(item.getName());
    }
    return names;
}

// A temporary file with the given contents that removes itself.
class TempFile {
public:
    explicit TempFile(const std::string& contents) {
        std::string name = "/tmp/tov_test_XXXXXX";
        const int fd = mkstemp(name.data());
        if (fd >= 0) {
            close(fd);
        }
        path = name;
        std::ofstream(path) << contents;
    }
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;
    ~TempFile() { std::remove(path.c_str()); }

    std::string path;
};

// A fresh folder of its own under /tmp, removed with everything in it. mkdtemp,
// because tests run in parallel processes; an empty path means it failed.
class TempFolder {
public:
    TempFolder() {
        std::string name = "/tmp/tov_test_XXXXXX";
        if (mkdtemp(name.data()) != nullptr) {
            path_ = name;
        }
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder() {
        if (!path_.empty()) {
            std::error_code ignored;
            std::filesystem::remove_all(path_, ignored);
        }
    }

    const std::string& path() const { return path_; }
    // The folder as a logger should get it so that its files land inside: the
    // logger adds a back-slash, which this platform takes as part of the name.
    std::string asLoggingFolder() const { return path_ + "/"; }

private:
    std::string path_;
};

}  // namespace tovtest

#endif  // TOV_TESTS_TEST_SUPPORT_H_
