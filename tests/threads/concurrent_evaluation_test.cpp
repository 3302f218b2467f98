// Private core data on many threads at once. Each thread builds its own core
// data, loads the example documents and evaluates every example request, over
// and over; every answer must be the one that a single thread gets. Built in
// the tsan preset, it lets ThreadSanitizer watch for state that the threads
// share without knowing it.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "example_scenario.h"
#include "tov/TOVCoreDataControllers.h"

namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 50;

using Answers = std::vector<std::string>;

// The single strings of every request, evaluated on a fresh private core data
// that has the example documents; empty if the documents do not load.
Answers answersOnAFreshCoreData(const std::vector<tovtest::ExampleRequest>& requests) {
    TOVCoreDataControllers coreData;
    coreData.initializeByMalloc();
    setTOVLoggingFolder("", &coreData);
    if (!tovtest::loadExampleDocuments(&coreData)) {
        return {};
    }
    Answers answers;
    for (const tovtest::ExampleRequest& request : requests) {
        answers.push_back(
            request.evaluate(request.text, &coreData).turnResponseIntoASingleString());
    }
    return answers;
}

TEST(ConcurrentEvaluation, ThreadsWithPrivateCoreDataAnswerAsASingleThreadDoes) {
    const std::vector<tovtest::ExampleRequest> requests = tovtest::readExampleRequests();
    ASSERT_FALSE(requests.empty());
    const Answers expected = answersOnAFreshCoreData(requests);
    ASSERT_EQ(expected.size(), requests.size());

    // One slot per thread, written by that thread alone.
    std::vector<int> differingRounds(kThreads, 0);
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&requests, &expected, &differingRounds, t] {
            for (int round = 0; round < kRounds; ++round) {
                if (answersOnAFreshCoreData(requests) != expected) {
                    ++differingRounds[t];
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(differingRounds, std::vector<int>(kThreads, 0));
}

}  // namespace
