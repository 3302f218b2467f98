// Runs one of the benchmark's operations a given number of times and nothing
// else worth counting, for callgrind: instructions counted between the
// toggles of `measured` (valgrind --toggle-collect=tovbench_measured*) and
// divided by the count are a cost per call that the load of a shared machine
// does not move.
//
// Usage: tov_bench_calls edit|load|parse-request|parse-rules COUNT
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "json/json_types.h"
#include "session.h"
#include "tov/entry_points.h"
#include "workload.h"

namespace {

constexpr int kEditRuleCount = 100;
constexpr int kLoadRuleCount = 100000;

// The one function whose instructions are counted; kept out of line so that
// its name stands in callgrind's output.
template <typename Operation>
[[gnu::noinline]] bool tovbench_measured(int count, Operation&& operation) {
    bool allRight = true;
    for (int i = 0; i < count; ++i) {
        allRight = operation() && allRight;
    }
    return allRight;
}

bool parsesToAnObject(const std::string& text) {
    tovjson::Document document;
    document.Parse<rapidjson::kParseIterativeFlag>(text.c_str());
    return !document.HasParseError() && document.IsObject();
}

int run(const std::string& operation, int count) {
    using tovbench::Session;
    if (operation == "edit") {
        Session session;
        std::string error;
        if (!session.loadDataModel(tovbench::dataModelDocument(), error) ||
            !session.loadRules(tovbench::transitionRulesDocument(kEditRuleCount), kEditRuleCount,
                               error)) {
            std::cerr << error << "\n";
            return 1;
        }
        const std::string request = tovbench::editRequest();
        const auto edit = [&] {
            return EvaluateTOVEditAttempt(request, session.coreData()).getGeneralResult();
        };
        return tovbench_measured(count, edit) ? 0 : 1;
    }
    if (operation == "parse-request") {
        const std::string request = tovbench::editRequest();
        return tovbench_measured(count, [&] { return parsesToAnObject(request); }) ? 0 : 1;
    }
    const std::string document = tovbench::transitionRulesDocument(kLoadRuleCount);
    if (operation == "parse-rules") {
        return tovbench_measured(count, [&] { return parsesToAnObject(document); }) ? 0 : 1;
    }
    if (operation == "load") {
        // Each load into a fresh core data made beforehand, and freed after
        // the count: what is counted is the load, not a reload.
        std::vector<std::unique_ptr<Session>> sessions;
        sessions.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            sessions.push_back(std::make_unique<Session>());
        }
        int next = 0;
        const auto load = [&] {
            return InitializeTOVRules(document, sessions[next++]->coreData()).getGeneralResult();
        };
        return tovbench_measured(count, load) ? 0 : 1;
    }
    std::cerr << "unknown operation " << operation << "\n";
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3 || std::atoi(argv[2]) <= 0) {
        std::cerr << "usage: tov_bench_calls edit|load|parse-request|parse-rules COUNT\n";
        return 2;
    }
    return run(argv[1], std::atoi(argv[2]));
}
