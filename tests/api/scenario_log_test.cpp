// The whole log of the example scenario, on the console, held against a copy
// taken from the library before any of its log work was made conditional: the
// lines that logging on writes must never change when the work behind them
// moves.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "example_scenario.h"
#include "test_support.h"
#include "tov/entry_points.h"

namespace {

const char* const kExpectedLog = TOV_TESTS_DIR "/api/data/example_scenario.log";

std::string readWhole(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

// The paths of the examples depend on where the sources stand.
std::string withoutExamplesFolder(std::string text) {
    const std::string folder = TOV_EXAMPLES_DIR;
    for (auto at = text.find(folder); at != std::string::npos; at = text.find(folder, at)) {
        text.replace(at, folder.size(), "<examples>");
    }
    return text;
}

// Loads both documents from their files, asks every request of the scenario,
// then loads the rules again from text: every kind of log line on the way.
std::string logOfWholeScenario() {
    tovtest::PrivateCore core;
    const std::vector<tovtest::ExampleRequest> requests = tovtest::readExampleRequests();
    const std::string rules = readWhole(TOV_EXAMPLES_DIR "/rules.json");
    return withoutExamplesFolder(tovtest::captureConsole(core.logger(), [&] {
        tovtest::loadExampleDocuments(core.get());
        for (const tovtest::ExampleRequest& request : requests) {
            request.evaluate(request.text, core.get());
        }
        InitializeTOVRules(rules, core.get());
    }));
}

TEST(ScenarioLog, LogOfTheWholeScenarioIsUnchanged) {
    ASSERT_FALSE(tovtest::readExampleRequests().empty());
    const std::string expected = readWhole(kExpectedLog);
    ASSERT_FALSE(expected.empty());
    EXPECT_EQ(logOfWholeScenario(), expected);
}

TEST(ScenarioLog, NothingIsWrittenWithLoggingOff) {
    tovtest::PrivateCore core;
    std::fflush(stdout);
    testing::internal::CaptureStdout();
    ASSERT_TRUE(tovtest::loadExampleDocuments(core.get()));
    for (const tovtest::ExampleRequest& request : tovtest::readExampleRequests()) {
        request.evaluate(request.text, core.get());
    }
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
