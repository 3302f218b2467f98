// The decision trace: which rules judged a request, in judging order, what
// each did, and which of them stand in the comment. Observing changes no
// answer and no log line.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "example_scenario.h"
#include "test_support.h"
#include "tov/TOVCoreDataControllers.h"
#include "tov/TOVDecisionTrace.h"
#include "tov/TOVEngine.h"
#include "tov/entry_points.h"
#include "tov/rule_kinds.h"

namespace {

using tovtest::asText;

const std::string kExamples = TOV_EXAMPLES_DIR;

// One step as "section#number:outcome", with a "*" for a decisive one.
std::string compact(const std::vector<TOVRuleConsultation>& steps) {
    std::string text;
    for (const TOVRuleConsultation& step : steps) {
        if (!text.empty()) {
            text += ", ";
        }
        text += GetTOVRuleKinds()[step.kind].section;
        text += "#" + std::to_string(step.documentPosition + 1) + ":";
        text += GetTOVRuleOutcomeWords(step.outcome);
        text += step.decisive ? "*" : "";
    }
    return text;
}

class DecisionTraceTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(
            engine.evaluateFile("datamodel", kExamples + "/datamodel.json").getGeneralResult());
        ASSERT_TRUE(engine.evaluateFile("rules", kExamples + "/rules.json").getGeneralResult());
    }

    std::vector<TOVRuleConsultation> traceOf(const tovtest::ExampleRequest& request,
                                             TOVResponse* answer = nullptr) {
        TOVDecisionTrace trace;
        TOVResponse response = engine.evaluate(request.kind, request.text, &trace);
        if (answer != nullptr) {
            *answer = response;
        }
        return trace.steps();
    }

    TOVEngine engine;
};

TEST_F(DecisionTraceTest, EveryExampleRequestTellsItsRulesInJudgingOrder) {
    // Transition rules are judged in the store's order (by from value), which
    // their document numbers show; the options asked on the way to the
    // abstract trigger stand before it, never decisive.
    const std::map<std::string, std::string> expected = {
        {"edit-part-release-first-pass",
         "transitions#1:not applicable, transitions#3:not applicable, transitions#2:approved, "
         "transitions#5:not applicable, conflictResolutions#1:not applicable, "
         "historyLinks#1:asked for missing data*"},
        {"edit-part-release-family-clean",
         "transitions#1:not applicable, transitions#3:not applicable, transitions#2:approved, "
         "transitions#5:not applicable, conflictResolutions#1:not applicable, "
         "historyLinks#1:approved, triggers#1:approved"},
        {"edit-part-release-family-offending",
         "transitions#1:not applicable, transitions#3:not applicable, transitions#2:approved, "
         "transitions#5:not applicable, conflictResolutions#1:not applicable, "
         "historyLinks#1:objected*"},
        {"edit-assembly-release-first-pass",
         "transitions#5:not applicable, historyLinks#1:asked for missing data*, "
         "manualLinks#1:asked for missing data*"},
        {"edit-assembly-release-all-clean",
         "transitions#5:not applicable, historyLinks#1:approved, manualLinks#1:approved"},
        {"edit-assembly-release-ancestor-offending",
         "transitions#5:not applicable, historyLinks#1:approved, manualLinks#1:objected*"},
        {"edit-part-material-abstract-trigger",
         "transitions#1:approved, transitions#3:not applicable, transitions#2:not applicable, "
         "transitions#5:not applicable, conflictResolutions#1:not applicable, "
         "versioningSelections#1:approved, triggers#2:approved"},
        {"edit-released-part-description-frozen", "transitionsFreeze#1:objected*"},
        {"edit-part-release-skipping-review", "transitions#1:objected*"},
        {"edit-drawing-to-review-without-new-sheet",
         "transitions#5:not applicable, transitions#4:not applicable, fileConstraints#1:objected*"},
        {"save-drawing-to-review-with-new-sheet",
         "transitions#5:not applicable, transitions#4:not applicable, fileConstraints#1:approved, "
         "fileConstraints#2:not applicable, conflictResolutions#2:not applicable, "
         "conflictResolutions#3:not applicable"},
        {"save-released-drawing-to-obsolete",
         "transitions#5:not applicable, transitions#4:approved, fileConstraints#1:not applicable, "
         "fileConstraints#2:objected*"},
        {"edit-part-to-review-with-new-iteration",
         "transitions#1:approved, transitions#3:not applicable, transitions#2:not applicable, "
         "transitions#5:not applicable, conflictResolutions#1:objected*"},
        {"edit-before-resolution-part-to-review-with-new-iteration",
         "transitions#1:approved, transitions#3:not applicable, transitions#2:not applicable, "
         "transitions#5:not applicable, triggers#1:approved"},
        {"save-drawing-reopen-keeping-revision",
         "transitions#5:not applicable, transitions#4:approved, fileConstraints#1:not applicable, "
         "fileConstraints#2:not applicable, conflictResolutions#2:objected*"},
        {"save-before-resolution-drawing-reopen-keeping-revision",
         "transitions#5:not applicable, transitions#4:approved, fileConstraints#1:not applicable, "
         "fileConstraints#2:not applicable"},
        {"edit-request-with-faults", ""},
        {"link-released-assembly-to-released-part", "manualLinks#1:approved"},
        {"link-released-assembly-to-part-in-work", "manualLinks#1:objected*"},
        {"options-assembly-no-rule", ""},
        {"options-part-in-work-selection", "versioningSelections#1:approved"},
        {"options-part-to-review-forced-overwrite", "conflictResolutions#1:approved"},
        {"options-drawing-reopen-forced-spinup",
         "conflictResolutions#2:approved, conflictResolutions#3:not applicable, "
         "versioningSelections#3:approved"},
        {"options-drawing-reopen-contradicting-resolutions",
         "conflictResolutions#2:objected*, conflictResolutions#3:objected*"},
        {"options-datasheet-contradicting-selections",
         "conflictResolutions#2:not applicable, conflictResolutions#3:not applicable, "
         "versioningSelections#4:objected*, versioningSelections#3:objected*"},
    };
    const std::vector<tovtest::ExampleRequest> requests = tovtest::readExampleRequests();
    ASSERT_EQ(requests.size(), expected.size());
    for (const tovtest::ExampleRequest& request : requests) {
        ASSERT_EQ(expected.count(request.name), 1U) << request.name;
        EXPECT_EQ(compact(traceOf(request)), expected.at(request.name)) << request.name;
    }
}

TEST_F(DecisionTraceTest, TheDecisiveRulesAreExactlyThoseTheCommentTells) {
    for (const tovtest::ExampleRequest& request : tovtest::readExampleRequests()) {
        TOVResponse answer;
        const std::vector<TOVRuleConsultation> steps = traceOf(request, &answer);
        const std::string comment = answer.getGeneralResultComment();
        for (const TOVRuleConsultation& step : steps) {
            if (step.decisive) {
                EXPECT_NE(comment.find(step.words), std::string::npos)
                    << request.name << ": " << step.words;
                EXPECT_FALSE(answer.getGeneralResult()) << request.name;
            }
        }
    }
}

TEST_F(DecisionTraceTest, StepsTellTheRuleInTheWordsOfItsKind) {
    const std::vector<tovtest::ExampleRequest> requests = tovtest::readExampleRequests();
    const auto trigger =
        std::find_if(requests.begin(), requests.end(), [](const tovtest::ExampleRequest& r) {
            return r.name == "edit-part-release-family-clean";
        });
    ASSERT_NE(trigger, requests.end());
    const std::vector<TOVRuleConsultation> steps = traceOf(*trigger);
    ASSERT_FALSE(steps.empty());
    EXPECT_EQ(steps.back().kind, TOVRuleKind_Trigger);
    EXPECT_EQ(steps.back().words,
              "For Part: When Status is edited, ReleaseDate must be initialized to \"Reset\"");
    EXPECT_EQ(steps.front().words,
              "For Part: Status can transition from \"In Work\" to \"In Work\", \"In Review\", "
              "\"Cancelled\"");
}

TEST_F(DecisionTraceTest, ObservingChangesNoAnswerAndNoLogLine) {
    std::string whyNot;
    ASSERT_TRUE(engine.setLog("console", whyNot));
    for (const tovtest::ExampleRequest& request : tovtest::readExampleRequests()) {
        std::fflush(stdout);
        testing::internal::CaptureStdout();
        const std::string plain = asText(engine.evaluate(request.kind, request.text));
        std::fflush(stdout);
        const std::string plainLog = testing::internal::GetCapturedStdout();

        TOVDecisionTrace trace;
        testing::internal::CaptureStdout();
        const std::string traced = asText(engine.evaluate(request.kind, request.text, &trace));
        std::fflush(stdout);
        const std::string tracedLog = testing::internal::GetCapturedStdout();

        EXPECT_EQ(traced, plain) << request.name;
        EXPECT_EQ(tracedLog, plainLog) << request.name;
    }
}

// Transition rules are judged by another road when nobody listens; both
// roads give the same answers.
TEST(DecisionTrace, TransitionRulesAnswerAlikeWhetherObservedOrNot) {
    TOVEngine engine;
    engine.evaluate("rules", R"({"transitions": {
        "Part": [{"attribute": "Status", "fromValue": "Draft", "toValue": ["Review"]},
                 {"attribute": "Owner", "fromValue": "<any>", "toValue": ["<any>"]},
                 {"attribute": "Lock", "fromValue": "no", "toValue": ["no"]}],
        "ALL": [{"attribute": "Status", "fromValue": "<any>", "toValue": ["Draft", "Review"]},
                {"attribute": "Missing", "fromValue": "<any>", "toValue": ["x"]}],
        "Doc": [{"attribute": "Status", "fromValue": "Draft", "toValue": ["Draft"]}]}})");
    const std::vector<std::string> edits = {
        R"({"objectType": "Part", "initialAttributes": {"Status": "Draft", "Lock": "no"},
            "targetAttributes": {"Status": "Review"}})",
        R"({"objectType": "Part", "initialAttributes": {"Status": "Draft", "Lock": "no"},
            "targetAttributes": {"Status": "Obsolete"}})",
        R"({"objectType": "part", "initialAttributes": {"Status": "draft", "Lock": "yes"},
            "targetAttributes": {"Lock": "no"}})",
        R"({"objectType": "Doc", "initialAttributes": {"Status": "Draft"},
            "targetAttributes": {"Status": "Review"}})",
        R"({"objectType": "Part", "initialAttributes": {},
            "targetAttributes": {"Status": "Obsolete", "Missing": "y"}})",
        R"({"objectType": "Other", "initialAttributes": {"Status": "<any>", "Missing": "z"},
            "targetAttributes": {"Missing": "y"}})",
        R"({"objectType": "<any>", "initialAttributes": {"Status": "Draft"},
            "targetAttributes": {"Status": "Obsolete"}})",
    };
    for (const std::string& edit : edits) {
        TOVDecisionTrace trace;
        EXPECT_EQ(asText(engine.evaluate("edit", edit)),
                  asText(engine.evaluate("edit", edit, &trace)))
            << edit;
    }
}

// An object of more attributes than the unobserved road keeps at hand
// without the heap is judged alike too.
TEST(DecisionTrace, ManyAttributesAnswerAlikeWhetherObservedOrNot) {
    TOVEngine engine;
    engine.evaluate("rules", R"({"transitions": {"Part": [
        {"attribute": "a7", "fromValue": "v", "toValue": ["v", "w"]},
        {"attribute": "a37", "fromValue": "v", "toValue": ["v"]}]}})");
    std::string initial;
    for (int i = 0; i < 40; ++i) {
        initial += (i == 0 ? "\"a" : ",\"a") + std::to_string(i) + "\": \"v\"";
    }
    for (const char* target : {R"({"a7": "w"})", R"({"a37": "w"})", R"({"a40": "w"})"}) {
        const std::string edit = R"({"objectType": "Part", "initialAttributes": {)" + initial +
                                 R"(}, "targetAttributes": )" + target + "}";
        TOVDecisionTrace trace;
        EXPECT_EQ(asText(engine.evaluate("edit", edit)),
                  asText(engine.evaluate("edit", edit, &trace)))
            << target;
    }
    const std::string forbidden = R"({"objectType": "Part", "initialAttributes": {)" + initial +
                                  R"(}, "targetAttributes": {"a37": "w"}})";
    EXPECT_EQ(engine.evaluate("edit", forbidden).getGeneralResultComment(),
              "Transition violation detected: For Part: a37 can transition from \"v\" to \"v\"");
}

TEST(DecisionTrace, TheFreezeOfTheLastFrozenAttributeIsTheDecisiveOne) {
    TOVEngine engine;
    engine.evaluate("rules", R"({"transitionsFreeze": {"Part": [
        {"attribute": "Owner", "freezeConditionAttribute": "Status",
         "freezeConditionValue": "Released"},
        {"attribute": "Description", "freezeConditionAttribute": "Status",
         "freezeConditionValue": "Released"},
        {"attribute": "Description", "freezeConditionAttribute": "Lock",
         "freezeConditionValue": "yes"}]}})");
    // The edited attributes come in byte order: Description, then Owner.
    const std::string edit =
        R"({"objectType": "Part", "initialAttributes": {"Status": "Released", "Lock": "no",
            "Description": "a", "Owner": "x"},
            "targetAttributes": {"Description": "b", "Owner": "y"}})";
    TOVDecisionTrace trace;
    const TOVResponse answer = engine.evaluate("edit", edit, &trace);
    EXPECT_EQ(answer.getGeneralResultComment(),
              "Transition freeze violation detected: For Part: When Status equals \"Released\", "
              "then Owner must remain unchanged.");
    // Sorted by condition: the Lock rule (#3) before the two Status rules.
    EXPECT_EQ(compact(trace.steps()),
              "transitionsFreeze#3:not applicable, transitionsFreeze#2:objected, "
              "transitionsFreeze#1:objected*");
}

TEST(DecisionTrace, TheCoreDataCarriesTheObserverThroughTheEntryPoints) {
    tovtest::PrivateCore core;
    ASSERT_TRUE(tovtest::loadExampleDocuments(core.get()));
    TOVDecisionTrace trace;
    core.get()->setDecisionObserver(&trace);
    const std::string frozen =
        tovtest::exampleText("requests/edit-released-part-description-frozen.json");
    EvaluateTOVEditAttempt(frozen, core.get());
    EXPECT_EQ(compact(trace.steps()), "transitionsFreeze#1:objected*");

    core.get()->setDecisionObserver(nullptr);
    EvaluateTOVEditAttempt(frozen, core.get());
    EXPECT_EQ(trace.steps().size(), 1U);
}

TEST(DecisionTrace, AsJsonEachStepIsAnObjectNumberedFromOne) {
    const std::vector<TOVRuleConsultation> steps = {
        {TOVRuleKind_Transition, 1, "For Part: \"x\"", TOVRuleOutcome_Approved, false},
        {TOVRuleKind_HistoryLink, 0, "y", TOVRuleOutcome_AskedForMissingData, true},
        {TOVRuleKind_Trigger, static_cast<std::size_t>(-1), "", TOVRuleOutcome_NotApplicable,
         false},
    };
    EXPECT_EQ(ComposeTOVDecisionTraceJson(steps),
              R"([{"section":"transitions","number":2,"rule":"For Part: \"x\"",)"
              R"("outcome":"approved","decisive":false},)"
              R"({"section":"historyLinks","number":1,"rule":"y",)"
              R"("outcome":"asked for missing data","decisive":true},)"
              R"({"section":"triggers","number":0,"rule":"","outcome":"not applicable",)"
              R"("decisive":false}])");
    EXPECT_EQ(ComposeTOVDecisionTraceJson({}), "[]");
    EXPECT_STREQ(GetTOVRuleOutcomeWords(TOVRuleOutcome_Objected), "objected");
}

}  // namespace
