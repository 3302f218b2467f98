// The C interface as a host in another language meets it: texts in, the
// single-string form out, and a clear answer for every misuse.
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "c_api/answers.h"
#include "json/json_types.h"
#include "test_support.h"
#include "tov/TOVResponse.h"
#include "tov/entry_points.h"
#include "tov/tov_c.h"

namespace {

const std::string kExamples = TOV_EXAMPLES_DIR;

// Takes an answer over from the library: copies it and frees it.
std::string take(char* answer) {
    EXPECT_NE(answer, nullptr);
    std::string text = answer == nullptr ? std::string() : std::string(answer);
    tov_string_free(answer);
    return text;
}

std::string failure(const std::string& comment) {
    return R"({"Result":"Failure","ResultComment":")" + comment + "\"}";
}

std::string readFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

struct Step {
    std::string name;
    std::string kind;
    std::string requestPath() const { return kExamples + "/requests/" + name + ".json"; }
    // What `tov eval` prints, without its closing line feed.
    std::string expectedAnswer() const {
        std::string text = readFile(kExamples + "/expected/" + name + ".out");
        if (!text.empty() && text.back() == '\n') {
            text.pop_back();
        }
        return text;
    }
};

std::vector<Step> scenarioSteps() {
    tovjson::Document scenario;
    scenario.Parse<rapidjson::kParseIterativeFlag>(readFile(kExamples + "/scenario.json").c_str());
    std::vector<Step> steps;
    if (scenario.HasParseError() || !scenario.IsObject() || !scenario.HasMember("steps")) {
        ADD_FAILURE() << "examples/scenario.json has no steps";
        return steps;
    }
    for (const auto& step : scenario["steps"].GetArray()) {
        steps.push_back({step["name"].GetString(), step["kind"].GetString()});
    }
    return steps;
}

// An engine that frees itself.
class Engine {
public:
    Engine() : engine(tov_engine_new()) {}
    ~Engine() { tov_engine_free(engine); }
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;
    tov_engine* get() const { return engine; }

    std::string evaluate(const char* kind, const char* text) const {
        return take(tov_evaluate(engine, kind, text));
    }
    std::string evaluateFile(const char* kind, const std::string& path) const {
        return take(tov_evaluate_file(engine, kind, path.c_str()));
    }
    bool loadExamples() const {
        return evaluateFile("datamodel", kExamples + "/datamodel.json") ==
                   R"({"Result":"Success","ResultComment":"Succesfully initialized DM info"})" &&
               evaluateFile("rules", kExamples + "/rules.json") ==
                   R"({"Result":"Success","ResultComment":"Successfully initialized TOV rules"})";
    }

private:
    tov_engine* engine;
};

const char* const kRelease =
    R"({"objectType":"Part","initialAttributes":{"Number":"P-1","Status":"In Review"},)"
    R"("targetAttributes":{"Status":"Released"}})";

TEST(CInterface, VersionIsTheLibrarysAndStaysPut) {
    EXPECT_STREQ(tov_version(), GetTOVVersion().c_str());
    EXPECT_EQ(tov_version(), tov_version());
}

TEST(CInterface, FreeingNullDoesNothing) {
    tov_engine_free(nullptr);
    tov_string_free(nullptr);
}

TEST(CInterface, NullArgumentsGetAFailureThatSaysWhich) {
    const Engine engine;
    ASSERT_NE(engine.get(), nullptr);
    EXPECT_EQ(take(tov_evaluate(nullptr, "edit", kRelease)), failure("No engine given (NULL)"));
    EXPECT_EQ(take(tov_evaluate_file(nullptr, "edit", "request.json")),
              failure("No engine given (NULL)"));
    EXPECT_EQ(take(tov_evaluate(engine.get(), nullptr, kRelease)),
              failure("No request kind given (NULL)"));
    EXPECT_EQ(take(tov_evaluate_file(engine.get(), nullptr, "request.json")),
              failure("No request kind given (NULL)"));
    EXPECT_EQ(take(tov_evaluate(engine.get(), "edit", nullptr)),
              failure("No request text given (NULL)"));
    EXPECT_EQ(take(tov_evaluate_file(engine.get(), "rules", nullptr)),
              failure("No request file path given (NULL)"));
    // The engine comes first: with everything missing, it is the one told.
    EXPECT_EQ(take(tov_evaluate(nullptr, nullptr, nullptr)), failure("No engine given (NULL)"));
}

TEST(CInterface, UnknownKindsGetAFailureThatListsTheKinds) {
    const Engine engine;
    const std::string kinds =
        "expected rules, datamodel, edit, edit-before-resolution, save, "
        "save-before-resolution, link or options";
    EXPECT_EQ(engine.evaluate("Edit", kRelease),
              failure(R"(Unknown request kind \"Edit\": )" + kinds));
    EXPECT_EQ(engine.evaluate("", kRelease), failure(R"(Unknown request kind \"\": )" + kinds));
    EXPECT_EQ(engine.evaluateFile("rule", kExamples + "/rules.json"),
              failure(R"(Unknown request kind \"rule\": )" + kinds));
    EXPECT_EQ(engine.evaluate("a\"b", kRelease),
              failure(R"(Unknown request kind \"a\"b\": )" + kinds));
}

TEST(CInterface, ATracedCallAnswersAsAPlainOneAndTellsTheRulesAsJson) {
    Engine engine;
    ASSERT_TRUE(engine.loadExamples());
    char* trace = nullptr;
    EXPECT_EQ(take(tov_evaluate_traced(engine.get(), "edit", kRelease, &trace)),
              engine.evaluate("edit", kRelease));
    EXPECT_EQ(take(trace),
              R"([{"section":"transitions","number":1,"rule":"For Part: Status can transition )"
              R"(from \"In Work\" to \"In Work\", \"In Review\", \"Cancelled\"",)"
              R"("outcome":"not applicable","decisive":false},)"
              R"({"section":"transitions","number":3,"rule":"For Part: Status can transition )"
              R"(from \"Released\" to \"Released\", \"Obsolete\"",)"
              R"("outcome":"not applicable","decisive":false},)"
              R"({"section":"transitions","number":2,"rule":"For Part: Status can transition )"
              R"(from \"In Review\" to \"In Review\", \"In Work\", \"Released\"",)"
              R"("outcome":"approved","decisive":false},)"
              R"({"section":"transitions","number":5,"rule":"For <any>: Status can transition )"
              R"(from \"Obsolete\" to \"Obsolete\"","outcome":"not applicable",)"
              R"("decisive":false},)"
              R"({"section":"conflictResolutions","number":1,"rule":"For Part: When Status )"
              R"(transitions from \"In Work\" to \"In Review\"  then we MUST overwrite",)"
              R"("outcome":"not applicable","decisive":false},)"
              R"({"section":"historyLinks","number":1,"rule":"For <any>: When Status is )"
              R"(\"Released\" then entries in the same object family can have Status equal to )"
              R"(one of :[Cancelled,Obsolete,Released]","outcome":"asked for missing data",)"
              R"("decisive":true}])");
}

TEST(CInterface, ATracedCallThatJudgesNoRuleTellsAnEmptyTrace) {
    Engine engine;
    char* trace = nullptr;
    EXPECT_EQ(take(tov_evaluate_traced(engine.get(), "edit", kRelease, &trace)),
              failure("Uninitialized TOV rules"));
    EXPECT_EQ(take(trace), "[]");
    EXPECT_EQ(take(tov_evaluate_traced(engine.get(), "Edit", kRelease, &trace))
                  .rfind(R"({"Result":"Failure","ResultComment":"Unknown request kind)", 0),
              0U);
    EXPECT_EQ(take(trace), "[]");
    EXPECT_EQ(take(tov_evaluate_traced(nullptr, "edit", kRelease, &trace)),
              failure("No engine given (NULL)"));
    EXPECT_EQ(take(trace), "[]");
    EXPECT_EQ(take(tov_evaluate_traced(engine.get(), "rules", "{}", &trace)),
              R"({"Result":"Success","ResultComment":"Successfully initialized TOV rules"})");
    EXPECT_EQ(take(trace), "[]");
    // Without a place for the trace it is an ordinary call.
    EXPECT_EQ(take(tov_evaluate_traced(engine.get(), "edit", kRelease, nullptr)),
              failure("Uninitialized TOV rules"));
}

TEST(CInterface, UnreadablePathsAreAnsweredLikeTextThatIsNoJson) {
    const Engine engine;
    const tovtest::TempFolder folder;
    EXPECT_EQ(engine.evaluateFile("rules", folder.path() + "/missing.json"),
              failure("Json has fundamental parsing error"));
    EXPECT_EQ(engine.evaluateFile("datamodel", folder.path()),
              failure("Json has fundamental parsing error"));
    ASSERT_TRUE(engine.loadExamples());
    EXPECT_EQ(engine.evaluateFile("edit", folder.path() + "/missing.json"),
              failure("Json has fundamental parsing error"));
    EXPECT_EQ(engine.evaluateFile("options", ""), failure("Insufficient input data"));
}

TEST(CInterface, ANewEngineHasNothingLoaded) {
    const Engine engine;
    EXPECT_EQ(engine.evaluate("edit", kRelease), failure("Uninitialized TOV rules"));
}

TEST(CInterface, DocumentsLoadAsTextToo) {
    const Engine engine;
    EXPECT_EQ(engine.evaluate("datamodel", readFile(kExamples + "/datamodel.json").c_str()),
              R"({"Result":"Success","ResultComment":"Succesfully initialized DM info"})");
    EXPECT_EQ(engine.evaluate("rules", readFile(kExamples + "/rules.json").c_str()),
              R"({"Result":"Success","ResultComment":"Successfully initialized TOV rules"})");
    // A failed load leaves no rules behind.
    EXPECT_EQ(engine.evaluate("rules", ""), failure("Insufficient input data"));
    EXPECT_EQ(engine.evaluate("edit", kRelease), failure("Uninitialized TOV rules"));
}

TEST(CInterface, EveryExampleRequestGetsTheAnswerOfTovEval) {
    const Engine engine;
    ASSERT_TRUE(engine.loadExamples());
    const std::vector<Step> steps = scenarioSteps();
    ASSERT_FALSE(steps.empty());
    for (const Step& step : steps) {
        SCOPED_TRACE(step.name);
        EXPECT_EQ(engine.evaluateFile(step.kind.c_str(), step.requestPath()),
                  step.expectedAnswer());
        EXPECT_EQ(engine.evaluate(step.kind.c_str(), readFile(step.requestPath()).c_str()),
                  step.expectedAnswer());
    }
}

TEST(CInterface, EnginesShareNothing) {
    const Engine loaded;
    const Engine empty;
    ASSERT_TRUE(loaded.loadExamples());
    EXPECT_EQ(empty.evaluate("edit", kRelease), failure("Uninitialized TOV rules"));
    EXPECT_NE(loaded.evaluate("edit", kRelease), failure("Uninitialized TOV rules"));
}

TEST(CInterface, ManyEnginesRunInParallelEachOnItsOwnThread) {
    const std::vector<Step> steps = scenarioSteps();
    std::vector<std::string> expected;
    std::vector<std::string> requests;
    for (const Step& step : steps) {
        expected.push_back(step.expectedAnswer());
        requests.push_back(readFile(step.requestPath()));
    }
    std::atomic<int> wrongAnswers{0};
    std::atomic<int> answers{0};
    constexpr int kThreads = 8;
    constexpr int kRounds = 5;
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&] {
            const Engine engine;
            if (!engine.loadExamples()) {
                ++wrongAnswers;
                return;
            }
            for (int round = 0; round < kRounds; ++round) {
                for (std::size_t i = 0; i < steps.size(); ++i) {
                    if (engine.evaluate(steps[i].kind.c_str(), requests[i].c_str()) !=
                        expected[i]) {
                        ++wrongAnswers;
                    }
                    ++answers;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrongAnswers.load(), 0);
    EXPECT_EQ(answers.load(), static_cast<int>(steps.size()) * kThreads * kRounds);
}

std::vector<std::filesystem::path> filesIn(const std::string& folder) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        files.push_back(entry.path());
    }
    return files;
}

TEST(CInterface, LogsToAFolderItCreates) {
    const Engine engine;
    const tovtest::TempFolder folder;
    const std::string logs = folder.path() + "/logs/today";
    ASSERT_EQ(tov_set_log(engine.get(), logs.c_str()), TOV_LOG_OK);
    engine.evaluate("edit", kRelease);
    const std::vector<std::filesystem::path> files = filesIn(logs);
    ASSERT_EQ(files.size(), 1U);
    const std::string name = files[0].filename().string();
    EXPECT_EQ(name.rfind("\\TOV_Log_", 0), 0U) << name;
    const std::string log = readFile(files[0].string());
    EXPECT_NE(log.find(std::string("Evaluating Edit attempt input=\"") + kRelease + "\""),
              std::string::npos)
        << log;

    // Silence: the file grows no more.
    ASSERT_EQ(tov_set_log(engine.get(), ""), TOV_LOG_OK);
    engine.evaluate("edit", kRelease);
    ASSERT_EQ(tov_set_log(engine.get(), "OFF"), TOV_LOG_OK);
    engine.evaluate("edit", kRelease);
    EXPECT_EQ(readFile(files[0].string()), log);
}

TEST(CInterface, LogsToTheConsoleInAnyCase) {
    const Engine engine;
    for (const char* word : {"console", "CONSOLE"}) {
        ASSERT_EQ(tov_set_log(engine.get(), word), TOV_LOG_OK);
        testing::internal::CaptureStdout();
        engine.evaluate("edit", kRelease);
        std::fflush(stdout);
        const std::string printed = testing::internal::GetCapturedStdout();
        EXPECT_NE(printed.find("Evaluating Edit attempt result=\"" +
                               failure("Uninitialized TOV rules") + "\""),
                  std::string::npos)
            << word << ": " << printed;
    }
}

TEST(CInterface, UnusableLogSettingsAreRefused) {
    const Engine engine;
    const tovtest::TempFile file("not a folder");
    EXPECT_EQ(tov_set_log(engine.get(), file.path.c_str()), TOV_LOG_UNUSABLE_FOLDER);
    EXPECT_EQ(tov_set_log(engine.get(), (file.path + "/below").c_str()), TOV_LOG_UNUSABLE_FOLDER);
    EXPECT_EQ(tov_set_log(nullptr, ""), TOV_LOG_NULL_ARGUMENT);
    EXPECT_EQ(tov_set_log(engine.get(), nullptr), TOV_LOG_NULL_ARGUMENT);
    // The engine still logs nowhere.
    testing::internal::CaptureStdout();
    engine.evaluate("edit", kRelease);
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(CInterfaceBoundary, ExceptionsBecomeFailureAnswers) {
    EXPECT_EQ(take(tov_c::answerForHost([]() -> char* { throw std::bad_alloc(); })),
              tov_c::kOutOfMemoryAnswer);
    EXPECT_EQ(take(tov_c::answerForHost(
                  []() -> char* { throw std::runtime_error("the disk caught fire"); })),
              failure("tov could not answer: the disk caught fire"));
    EXPECT_EQ(take(tov_c::answerForHost([]() -> char* { throw 42; })),
              failure("tov could not answer: unknown error"));
    EXPECT_EQ(take(tov_c::answerForHost([] { return tov_c::handOverToHost("{}"); })), "{}");
}

TEST(CInterfaceBoundary, TheOutOfMemoryAnswerIsAFailureResponse) {
    EXPECT_EQ(tov_c::kOutOfMemoryAnswer,
              tov_c::failureAnswer("Out of memory: tov could not answer"));
    TOVResponse response;
    EXPECT_TRUE(response.fillResponseFromASingleString(tov_c::kOutOfMemoryAnswer));
    EXPECT_FALSE(response.getGeneralResult());
}

}  // namespace
