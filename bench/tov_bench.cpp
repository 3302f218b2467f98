// What an answer costs, against RapidJSON's parse of the same text as the
// yardstick: an edit and an options query at growing numbers of rules, and
// the load of a large rules document. Every benchmark checks its answer once
// before it times it, and stops with an error when the answer is wrong.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "json/json_types.h"
#include "session.h"
#include "tov/TOVDecisionTrace.h"
#include "tov/TOVEngine.h"
#include "tov/entry_points.h"
#include "workload.h"

namespace {

using tovbench::Session;

// The library parses every document iteratively, so the yardstick does too.
constexpr unsigned kParseFlags = rapidjson::kParseIterativeFlag;
constexpr int kLargeRuleCount = 100000;

const std::string& editRequest() {
    static const std::string request = tovbench::editRequest();
    return request;
}

const std::string& optionsQuery() {
    static const std::string query = tovbench::optionsQuery();
    return query;
}

const std::string& largeRulesDocument() {
    static const std::string document = tovbench::transitionRulesDocument(kLargeRuleCount);
    return document;
}

// Sessions are loaded once per size and kept: Google Benchmark calls a
// function several times while it settles the iteration count, and again for
// every repetition. Null, with the benchmark skipped, when a load fails.
using SessionsBySize = std::map<int, std::unique_ptr<Session>>;
using RulesDocument = std::string (*)(int);

Session* loadedSession(SessionsBySize& sessions, RulesDocument rulesDocument,
                       benchmark::State& state) {
    const auto ruleCount = static_cast<int>(state.range(0));
    auto& session = sessions[ruleCount];
    if (session == nullptr) {
        auto fresh = std::make_unique<Session>();
        std::string error;
        if (!fresh->loadDataModel(tovbench::dataModelDocument(), error) ||
            !fresh->loadRules(rulesDocument(ruleCount), ruleCount, error)) {
            state.SkipWithError(error.c_str());
            return nullptr;
        }
        session = std::move(fresh);
    }
    return session.get();
}

bool answersAsExpected(const TOVResponse& response, const char* expected, benchmark::State& state) {
    const std::string wrong = tovbench::unexpectedAnswer(response, expected);
    if (!wrong.empty()) {
        state.SkipWithError(wrong.c_str());
    }
    return wrong.empty();
}

bool parsesToAnObject(const std::string& text, benchmark::State& state) {
    tovjson::Document document;
    document.Parse<kParseFlags>(text.c_str());
    const bool parsed = !document.HasParseError() && document.IsObject();
    if (!parsed) {
        state.SkipWithError("RapidJSON does not parse the text into an object");
    }
    return parsed;
}

void timeParse(const std::string& text, benchmark::State& state) {
    if (!parsesToAnObject(text, state)) {
        return;
    }
    for (auto _ : state) {
        tovjson::Document document;
        document.Parse<kParseFlags>(text.c_str());
        benchmark::DoNotOptimize(document.IsObject());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

using EntryPoint = TOVResponse (*)(const std::string&, TOVCoreDataControllers*);

// Times a request against a session of state.range(0) rules, once its answer
// is the expected one.
void timeRequest(EntryPoint ask, const std::string& request, const char* expected,
                 SessionsBySize& sessions, RulesDocument rulesDocument, benchmark::State& state) {
    Session* session = loadedSession(sessions, rulesDocument, state);
    if (session == nullptr ||
        !answersAsExpected(ask(request, session->coreData()), expected, state)) {
        return;
    }
    for (auto _ : state) {
        TOVResponse response = ask(request, session->coreData());
        benchmark::DoNotOptimize(response);
    }
}

void BM_ParseRequest(benchmark::State& state) {
    timeParse(editRequest(), state);
}

void BM_Edit(benchmark::State& state) {
    static SessionsBySize sessions;
    timeRequest(EvaluateTOVEditAttempt, editRequest(), tovbench::kApprovedEdit, sessions,
                tovbench::transitionRulesDocument, state);
}

// The same edit through a TOVEngine, which any number of threads may share:
// what judging by a published generation adds to an evaluation.
void BM_EngineEdit(benchmark::State& state) {
    static const std::unique_ptr<TOVEngine> engine = [] {
        auto loaded = std::make_unique<TOVEngine>();
        const int ruleCount = 100;
        const bool ok =
            loaded->evaluate("datamodel", tovbench::dataModelDocument()).getGeneralResult() &&
            loaded->evaluate("rules", tovbench::transitionRulesDocument(ruleCount))
                .getGeneralResult();
        return ok ? std::move(loaded) : nullptr;
    }();
    if (engine == nullptr) {
        state.SkipWithError("the engine did not load the documents");
        return;
    }
    if (!answersAsExpected(engine->evaluate("edit", editRequest()), tovbench::kApprovedEdit,
                           state)) {
        return;
    }
    for (auto _ : state) {
        TOVResponse response = engine->evaluate("edit", editRequest());
        benchmark::DoNotOptimize(response);
    }
}

// The same with a decision trace kept: what a tool that shows why pays.
// BM_EngineEdit is the edit that nobody observes.
void BM_EngineEditTraced(benchmark::State& state) {
    TOVEngine engine;
    if (!engine.evaluate("datamodel", tovbench::dataModelDocument()).getGeneralResult() ||
        !engine.evaluate("rules", tovbench::transitionRulesDocument(100)).getGeneralResult()) {
        state.SkipWithError("the engine did not load the documents");
        return;
    }
    for (auto _ : state) {
        TOVDecisionTrace trace;
        TOVResponse response = engine.evaluate("edit", editRequest(), &trace);
        benchmark::DoNotOptimize(response);
        benchmark::DoNotOptimize(trace);
    }
}

void BM_ParseRules100k(benchmark::State& state) {
    timeParse(largeRulesDocument(), state);
}

// Each load goes into a fresh core data, and the rules of the one before are
// freed outside the timing: what is timed is the load, not a reload.
void BM_LoadRules100k(benchmark::State& state) {
    const std::string& document = largeRulesDocument();
    static const std::string error = [&document] {
        std::string whatWentWrong;
        Session().loadRules(document, kLargeRuleCount, whatWentWrong);
        return whatWentWrong;
    }();
    if (!error.empty()) {
        state.SkipWithError(error.c_str());
        return;
    }
    for (auto _ : state) {
        auto session = std::make_unique<Session>();
        TOVResponse response = InitializeTOVRules(document, session->coreData());
        benchmark::DoNotOptimize(response);
        state.PauseTiming();
        session.reset();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * document.size()));
}

void BM_Options(benchmark::State& state) {
    static SessionsBySize sessions;
    timeRequest(EvaluateTOVProperConflictResolutionOptions, optionsQuery(),
                tovbench::kSpinupOptions, sessions, tovbench::conflictResolutionRulesDocument,
                state);
}

}  // namespace

BENCHMARK(BM_ParseRequest)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Edit)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(kLargeRuleCount)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_EngineEdit)->Unit(benchmark::kMicrosecond);
// Two threads on one engine: each thread's time, to show that they do not wait on each other.
BENCHMARK(BM_EngineEdit)->Threads(2)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_EngineEditTraced)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ParseRules100k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadRules100k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Options)->Arg(100)->Arg(kLargeRuleCount)->Unit(benchmark::kMicrosecond);

namespace {

// The display that --benchmark_format asks for, noting whether a benchmark
// stopped on a wrong answer, so that the program can fail then.
class ErrorNotingReporter : public benchmark::BenchmarkReporter {
public:
    ErrorNotingReporter() : display(benchmark::CreateDefaultDisplayReporter()) {}

    bool ReportContext(const Context& context) override { return display->ReportContext(context); }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            sawError = sawError || run.error_occurred;
        }
        display->ReportRuns(runs);
    }
    void Finalize() override { display->Finalize(); }

    [[nodiscard]] bool anyError() const { return sawError; }

private:
    std::unique_ptr<benchmark::BenchmarkReporter> display;
    bool sawError = false;
};

}  // namespace

// Fails when no benchmark matched the filter or one of them got a wrong answer.
int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    ErrorNotingReporter reporter;
    const std::size_t matched = benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return matched == 0 || reporter.anyError() ? 1 : 0;
}
