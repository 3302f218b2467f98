// One engine shared by many threads while another thread reloads it. Eight
// threads evaluate every example request on the same TOVEngine while a ninth
// loads two rule sets in turn, and the data model again and again; every
// answer must be the one that either rule set gives on its own, never a third
// one from a half-loaded store or a mix of two. Built in the tsan preset, it
// lets ThreadSanitizer watch the engine's publication of its generations.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "example_scenario.h"
#include "tov/TOVEngine.h"

namespace {

constexpr int kEvaluatingThreads = 8;
constexpr int kReloads = 200;
// Enough rounds that evaluations overlap the reloads, bounded for slow builds.
constexpr int kMaxRoundsPerThread = 400;

using Answers = std::vector<std::string>;

// The example rules without their freeze rules: the frozen edit of the
// scenario is approved under these and refused under the full set.
std::string rulesWithoutFreezeRules(const std::string& rules) {
    const std::string section = "\"transitionsFreeze\"";
    std::string changed = rules;
    const std::size_t at = changed.find(section);
    if (at != std::string::npos) {
        changed.replace(at, section.size(), "\"ignoredSection\"");
    }
    return changed;
}

Answers answersOf(TOVEngine& engine, const std::vector<tovtest::ExampleRequest>& requests) {
    Answers answers;
    for (const tovtest::ExampleRequest& request : requests) {
        answers.push_back(
            engine.evaluate(request.kind, request.text).turnResponseIntoASingleString());
    }
    return answers;
}

Answers answersUnder(const std::string& rules, const std::string& dataModel,
                     const std::vector<tovtest::ExampleRequest>& requests) {
    TOVEngine engine;
    engine.evaluate("datamodel", dataModel);
    engine.evaluate("rules", rules);
    return answersOf(engine, requests);
}

TEST(SharedEngine, EveryAnswerComesWhollyFromOneRuleSetWhileAnotherThreadReloads) {
    const std::vector<tovtest::ExampleRequest> requests = tovtest::readExampleRequests();
    ASSERT_FALSE(requests.empty());
    const std::string rulesA = tovtest::exampleText("rules.json");
    const std::string rulesB = rulesWithoutFreezeRules(rulesA);
    const std::string dataModel = tovtest::exampleText("datamodel.json");
    ASSERT_NE(rulesA, rulesB);
    const Answers expectedA = answersUnder(rulesA, dataModel, requests);
    const Answers expectedB = answersUnder(rulesB, dataModel, requests);
    ASSERT_NE(expectedA, expectedB) << "the two rule sets must answer some request differently";

    TOVEngine engine;
    ASSERT_TRUE(engine.evaluate("datamodel", dataModel).getGeneralResult());
    ASSERT_TRUE(engine.evaluate("rules", rulesA).getGeneralResult());

    std::atomic<bool> reloading{true};
    std::atomic<int> failedLoads{0};
    std::atomic<int> evaluatorsStarted{0};
    std::thread reloader([&] {
        // Reloads start once every evaluator runs, so that the two overlap.
        while (evaluatorsStarted < kEvaluatingThreads) {
            std::this_thread::yield();
        }
        for (int i = 0; i < kReloads; ++i) {
            if (!engine.evaluate("rules", i % 2 == 0 ? rulesB : rulesA).getGeneralResult() ||
                !engine.evaluate("datamodel", dataModel).getGeneralResult()) {
                ++failedLoads;
            }
        }
        reloading = false;
    });

    // One slot per thread, written by that thread alone.
    std::vector<int> strangeAnswers(kEvaluatingThreads, 0);
    std::vector<int> answersFromB(kEvaluatingThreads, 0);
    std::vector<std::thread> evaluators;
    evaluators.reserve(kEvaluatingThreads);
    for (int t = 0; t < kEvaluatingThreads; ++t) {
        evaluators.emplace_back([&, t] {
            ++evaluatorsStarted;
            for (int round = 0; round < kMaxRoundsPerThread && reloading; ++round) {
                for (std::size_t i = 0; i < requests.size(); ++i) {
                    const std::string answer = engine.evaluate(requests[i].kind, requests[i].text)
                                                   .turnResponseIntoASingleString();
                    if (answer != expectedA[i] && answer != expectedB[i]) {
                        ++strangeAnswers[t];
                    } else if (answer != expectedA[i]) {
                        ++answersFromB[t];
                    }
                }
            }
        });
    }
    for (std::thread& evaluator : evaluators) {
        evaluator.join();
    }
    reloader.join();

    EXPECT_EQ(failedLoads, 0);
    EXPECT_EQ(strangeAnswers, std::vector<int>(kEvaluatingThreads, 0));
    // The last load was of rule set A, so the engine answers as A does now.
    EXPECT_EQ(answersOf(engine, requests), expectedA);
}

TEST(SharedEngine, AGenerationHeldByACallerKeepsAnsweringFromItsOwnDocuments) {
    const std::vector<tovtest::ExampleRequest> requests = tovtest::readExampleRequests();
    ASSERT_FALSE(requests.empty());
    const std::string rulesA = tovtest::exampleText("rules.json");
    const std::string dataModel = tovtest::exampleText("datamodel.json");
    const Answers expectedA = answersUnder(rulesA, dataModel, requests);

    TOVEngine engine;
    engine.evaluate("datamodel", dataModel);
    engine.evaluate("rules", rulesA);
    const std::shared_ptr<const TOVEngineGeneration> held = engine.current();

    std::thread loader([&] { engine.evaluate("rules", "{}"); });
    loader.join();

    Answers fromHeld;
    for (const tovtest::ExampleRequest& request : requests) {
        fromHeld.push_back(
            held->evaluate(request.kind, request.text).turnResponseIntoASingleString());
    }
    EXPECT_EQ(fromHeld, expectedA);
    EXPECT_EQ(
        engine.evaluate(requests.front().kind, requests.front().text).getGeneralResultComment(),
        "Uninitialized TOV rules");
}

}  // namespace
