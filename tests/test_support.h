// Helpers shared by the test suites.
#ifndef TOV_TESTS_TEST_SUPPORT_H_
#define TOV_TESTS_TEST_SUPPORT_H_

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <string>

#include "tov/tov.h"

namespace tovtest {

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

}  // namespace tovtest

#endif  // TOV_TESTS_TEST_SUPPORT_H_
