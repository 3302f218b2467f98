// Every allocation of a call fails in turn: a first load and a reload of each
// document, and one request of every kind, through the C interface and
// through the C++ entry points, each swept once with operator new throwing
// and once with malloc, calloc and realloc giving NULL. For each failure point
// the call must give its normal answer or the out-of-memory outcome, and
// afterwards every example request must be answered exactly as before the
// call or exactly as with that document not loaded: never from part of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iostream>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "example_scenario.h"
#include "failure_injection.h"
#include "tov/TOVCoreDataControllers.h"
#include "tov/TOVResponse.h"
#include "tov/entry_points.h"
#include "tov/tov_c.h"

namespace {

using tovtest::AllocationKind;

const std::string kExamples = TOV_EXAMPLES_DIR;
const std::string kOutOfMemory =
    R"({"Result":"Failure","ResultComment":"Out of memory: tov could not answer"})";
// What a thrown std::bad_alloc is written down as, for the C++ door, and a
// NULL answer for the C interface.
const std::string kThrewBadAlloc = "threw std::bad_alloc";
const std::string kNoAnswer = "NULL";
// Far more than any one call of the examples allocates: a sweep that does not
// end below this has lost its way.
constexpr std::uint64_t kMostFailurePoints = 200000;

struct Documents {
    std::string rules;
    std::string dataModel;
};

// The example documents, and second versions that answer some requests
// otherwise, so that a reload's "before" and "after" can be told apart.
const Documents& versionA() {
    static const Documents documents{tovtest::exampleText("rules.json"),
                                     tovtest::exampleText("datamodel.json")};
    return documents;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

const Documents& versionB() {
    static const Documents documents{
        replaced(versionA().rules, "\"transitionsFreeze\"", "\"notASection\""),
        replaced(versionA().dataModel, "\"Overwrite\"", "\"Replace\"")};
    return documents;
}

// One door to the library: a fresh private state, loads and evaluations by
// kind, each answered in the single-string form, or kThrewBadAlloc.
class Door {
public:
    virtual ~Door() = default;
    virtual void reset() = 0;
    virtual std::string call(const std::string& kind, const std::string& text) = 0;
};

class CInterfaceDoor : public Door {
public:
    // With `traced`, each call also asks for the decision trace, which must
    // come exactly when the answer is not the out-of-memory one.
    explicit CInterfaceDoor(bool traced = false) : traced(traced) {}
    void reset() override { engine.reset(tov_engine_new()); }
    std::string call(const std::string& kind, const std::string& text) override {
        char* trace = nullptr;
        char* answer = traced
                           ? tov_evaluate_traced(engine.get(), kind.c_str(), text.c_str(), &trace)
                           : tov_evaluate(engine.get(), kind.c_str(), text.c_str());
        // Copied outside the library's call, whose answer it already is.
        const bool wasArmed = tovtest::pauseAllocationFailure();
        std::string copy = answer == nullptr ? kNoAnswer : answer;
        if (traced && (trace == nullptr) != (copy == kOutOfMemory || copy == kNoAnswer)) {
            copy = "a trace without an answer, or an answer without its trace: " + copy;
        }
        tovtest::resumeAllocationFailure(wasArmed);
        tov_string_free(answer);
        tov_string_free(trace);
        return copy;
    }

private:
    bool traced;
    struct Free {
        void operator()(tov_engine* engine) const { tov_engine_free(engine); }
    };
    std::unique_ptr<tov_engine, Free> engine;
};

class CxxDoor : public Door {
public:
    void reset() override {
        core = std::make_unique<TOVCoreDataControllers>();
        core->initializeByMalloc();
        setTOVLoggingFolder("", core.get());
    }
    std::string call(const std::string& kind, const std::string& text) override {
        const tovtest::RequestFunction function = kind == "rules" ? &InitializeTOVRules
                                                  : kind == "datamodel"
                                                      ? &InitializeTOV_DMInfo
                                                      : tovtest::requestFunctionOfKind(kind);
        try {
            const TOVResponse answer = function(text, core.get());
            // Written down outside the library's call, whose answer it already is.
            const bool wasArmed = tovtest::pauseAllocationFailure();
            std::string written = answer.turnResponseIntoASingleString();
            tovtest::resumeAllocationFailure(wasArmed);
            return written;
        } catch (const std::bad_alloc&) {
            return kThrewBadAlloc;
        }
    }

private:
    std::unique_ptr<TOVCoreDataControllers> core;
};

// What the door's state answers to every example request, one line each.
std::string probe(Door& door) {
    static const std::vector<tovtest::ExampleRequest> requests = tovtest::readExampleRequests();
    std::string answers;
    for (const tovtest::ExampleRequest& request : requests) {
        answers += door.call(request.kind, request.text) + "\n";
    }
    return answers;
}

struct Case {
    std::string name;
    std::vector<std::pair<std::string, std::string>> setup;  // loads before the call
    std::string kind;
    std::string text;
    const char* unloadedDocument;  // the kind a load replaces, or null for a request
};

std::vector<Case> cases() {
    const Documents& a = versionA();
    const Documents& b = versionB();
    std::vector<Case> all = {
        {"first load of the rules", {{"datamodel", a.dataModel}}, "rules", a.rules, "rules"},
        {"reload of the rules",
         {{"datamodel", a.dataModel}, {"rules", a.rules}},
         "rules",
         b.rules,
         "rules"},
        {"first load of the data model",
         {{"rules", a.rules}},
         "datamodel",
         a.dataModel,
         "datamodel"},
        {"reload of the data model",
         {{"rules", a.rules}, {"datamodel", a.dataModel}},
         "datamodel",
         b.dataModel,
         "datamodel"},
    };
    // The first request of every kind in the scenario.
    std::vector<std::string> kindsSeen;
    for (const tovtest::ExampleRequest& request : tovtest::readExampleRequests()) {
        if (std::find(kindsSeen.begin(), kindsSeen.end(), request.kind) != kindsSeen.end()) {
            continue;
        }
        kindsSeen.push_back(request.kind);
        all.push_back({request.kind + " request " + request.name,
                       {{"datamodel", a.dataModel}, {"rules", a.rules}},
                       request.kind,
                       request.text,
                       nullptr});
    }
    return all;
}

void setUp(Door& door, const Case& scenario) {
    door.reset();
    for (const auto& [kind, text] : scenario.setup) {
        door.call(kind, text);
    }
}

// The probe of the door's state without the document that `scenario` loads.
std::string probeWithoutTheDocument(Door& door, const Case& scenario) {
    door.reset();
    for (const auto& [kind, text] : scenario.setup) {
        if (kind != scenario.unloadedDocument) {
            door.call(kind, text);
        }
    }
    return probe(door);
}

struct Sweep;
void PrintTo(const Sweep& sweep, std::ostream* out);

struct Sweep {
    const char* testName;
    const char* name;
    std::function<std::unique_ptr<Door>()> makeDoor;
    AllocationKind kind;
    bool persistent;  // every allocation from the nth on fails, not the nth alone
    std::string outOfMemoryAnswer;
};

// Sweeps every failure point of one case; returns how many there were.
std::uint64_t sweep(Door& door, const Case& scenario, const Sweep& parameters) {
    setUp(door, scenario);
    const std::string before = probe(door);
    const std::string normal = door.call(scenario.kind, scenario.text);
    const std::string afterNormal = probe(door);
    const std::string unloaded =
        scenario.unloadedDocument == nullptr ? before : probeWithoutTheDocument(door, scenario);

    std::uint64_t nth = 1;
    for (; nth < kMostFailurePoints; ++nth) {
        setUp(door, scenario);
        tovtest::armAllocationFailure(parameters.kind, nth, parameters.persistent);
        const std::string answer = door.call(scenario.kind, scenario.text);
        if (!tovtest::disarmAllocationFailure()) {
            EXPECT_EQ(answer, normal) << scenario.name << ": no failure, yet another answer";
            break;
        }
        const std::string after = probe(door);
        if (answer == normal) {
            EXPECT_EQ(after, afterNormal)
                << scenario.name << ", allocation " << nth << ": answered, but then";
        } else {
            // With memory gone for good, the C interface may not even have the
            // out-of-memory answer to give: then, and only then, it gives NULL.
            EXPECT_TRUE(answer == parameters.outOfMemoryAnswer ||
                        (parameters.persistent && answer == kNoAnswer))
                << scenario.name << ", allocation " << nth << ": " << answer;
            EXPECT_TRUE(after == before || after == unloaded)
                << scenario.name << ", allocation " << nth << ": afterwards\n"
                << after;
        }
        if (testing::Test::HasFailure()) {
            break;  // one failure point tells enough; the rest would repeat it
        }
    }
    EXPECT_LT(nth, kMostFailurePoints) << scenario.name;
    return nth - 1;
}

void PrintTo(const Sweep& sweep, std::ostream* out) {
    *out << sweep.name;
}

class AllocationFailure : public testing::TestWithParam<Sweep> {};

TEST_P(AllocationFailure, EveryFailurePointGivesTheNormalOrTheOutOfMemoryOutcome) {
    const Sweep& parameters = GetParam();
    const std::unique_ptr<Door> door = parameters.makeDoor();
    std::uint64_t points = 0;
    for (const Case& scenario : cases()) {
        const std::uint64_t covered = sweep(*door, scenario, parameters);
        std::cout << "  " << scenario.name << ": " << covered << " failure points\n";
        points += covered;
        if (HasFailure()) {
            break;
        }
    }
    std::cout << parameters.name << ": " << points << " failure points covered" << std::endl;
    EXPECT_GT(points, 0U);
}

std::vector<Sweep> sweeps() {
    const auto cInterface = [] { return std::make_unique<CInterfaceDoor>(); };
    const auto cxx = [] { return std::make_unique<CxxDoor>(); };
    return {
        {"CInterfaceNew", "C interface, operator new", cInterface, AllocationKind::kCxx, false,
         kOutOfMemory},
        {"CInterfaceMalloc", "C interface, malloc", cInterface, AllocationKind::kC, false,
         kOutOfMemory},
        {"CInterfaceNewForGood", "C interface, operator new for good", cInterface,
         AllocationKind::kCxx, true, kOutOfMemory},
        {"CInterfaceMallocForGood", "C interface, malloc for good", cInterface, AllocationKind::kC,
         true, kOutOfMemory},
        {"CInterfaceTracedNew", "C interface traced, operator new",
         [] { return std::make_unique<CInterfaceDoor>(true); }, AllocationKind::kCxx, false,
         kOutOfMemory},
        {"CxxNew", "C++ entry points, operator new", cxx, AllocationKind::kCxx, false,
         kThrewBadAlloc},
        {"CxxMalloc", "C++ entry points, malloc", cxx, AllocationKind::kC, false, kThrewBadAlloc},
    };
}

std::string sweepName(const testing::TestParamInfo<Sweep>& info) {
    return info.param.testName;
}

INSTANTIATE_TEST_SUITE_P(EachDoor, AllocationFailure, testing::ValuesIn(sweeps()), sweepName);

}  // namespace
