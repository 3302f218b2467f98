// The three steps that every controller runs, and what the controller base
// offers them: input lookups, the uninitialized-store checks, the stores.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tov/TOVActionController.h"
#include "tov/TOVCoreDataControllers.h"
#include "tov/TOVFunctionality.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVLogger.h"
#include "tov/TOVResponse.h"
#include "tov/TOV_DMStructure.h"

#include "test_support.h"

namespace {

using StringMap = std::map<std::string, std::string>;
using tovtest::ConsoleLoggedTest;

// ---------------------------------------------------------------------------
// TOVActionController

constexpr const char* kScriptedLabel = "Scripted_input";

// A controller whose steps are scripted by the test. Like the real ones, it
// needs its label with a non-empty value to be satisfied.
class ScriptedController : public TOVActionController {
public:
    ScriptedController(TOVFunctionality functionality, const StringMap& labeledInput,
                       TOVCoreDataControllers* coreData, bool* destroyed = nullptr)
        : TOVActionController(functionality, labeledInput, coreData), destroyed(destroyed) {}
    ScriptedController(const ScriptedController&) = default;
    ~ScriptedController() override {
        if (destroyed != nullptr) {
            *destroyed = true;
        }
    }

    using TOVActionController::foundUninitializedDMInfoViolation;
    using TOVActionController::foundUninitializedRulesViolation;
    using TOVActionController::getInputStringWithThisLabel;
    using TOVActionController::getInputWithThisLabel;
    using TOVActionController::getLifecycleBusinessRules;
    using TOVActionController::getLifecycleDMInfo;
    using TOVActionController::isInputDataSufficientUpdateResponse;

    bool parseAnswer = true;
    bool evaluateAnswer = true;
    std::function<void(TOVResponse&)> parseEffect;
    std::function<void(TOVResponse&)> evaluateEffect;

    std::vector<std::string> steps;
    // The response as each later step found it on entry.
    TOVResponse seenByParse;
    TOVResponse seenByEvaluate;

protected:
    bool isInputDataSufficient() override {
        steps.emplace_back("isInputDataSufficient");
        std::string value;
        return getInputStringWithThisLabel(kScriptedLabel, value) && !value.empty();
    }

    bool parseInputData(TOVResponse& response) override {
        steps.emplace_back("parseInputData");
        seenByParse = response;
        if (parseEffect) {
            parseEffect(response);
        }
        return parseAnswer;
    }

    bool evaluateRequest(TOVResponse& response) override {
        steps.emplace_back("evaluateRequest");
        seenByEvaluate = response;
        if (evaluateEffect) {
            evaluateEffect(response);
        }
        return evaluateAnswer;
    }

private:
    bool* destroyed;
};

class ActionControllerTest : public ConsoleLoggedTest {
protected:
    ScriptedController makeController(const StringMap& input) {
        return ScriptedController(TOVFunctionality_EditAttempt, input, &coreData);
    }
};

TEST_F(ActionControllerTest, MissingLabelIsInsufficientInputAndStopsBeforeParsing) {
    ScriptedController controller = makeController({{"Other_label", "x"}});
    const TOVResponse response = controller.evaluateAndRespond();

    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getStringStringMapOfResponse(),
              (StringMap{{"ResultComment", "Insufficient input data"}}));
    EXPECT_EQ(controller.steps, (std::vector<std::string>{"isInputDataSufficient"}));
}

TEST_F(ActionControllerTest, EmptyInputIsInsufficientInput) {
    ScriptedController controller = makeController({{kScriptedLabel, ""}});
    const TOVResponse response = controller.evaluateAndRespond();

    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(), "Insufficient input data");
    EXPECT_EQ(response.turnResponseIntoASingleString(),
              R"({"Result":"Failure","ResultComment":"Insufficient input data"})");
    EXPECT_EQ(controller.steps, (std::vector<std::string>{"isInputDataSufficient"}));
}

TEST_F(ActionControllerTest, ParseFailureReturnsTheResponseAsTheParserLeftIt) {
    ScriptedController controller = makeController({{kScriptedLabel, "{"}});
    controller.parseAnswer = false;
    controller.parseEffect = [](TOVResponse& response) {
        response.setGeneralResult(false);
        response.setGeneralResultComment("Not a JSON document|Missing objectType");
        response.setCommentUnderKeyword("ParserDetail", "offset 1");
    };
    const TOVResponse response = controller.evaluateAndRespond();

    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getStringStringMapOfResponse(),
              (StringMap{{"ParserDetail", "offset 1"},
                         {"ResultComment", "Not a JSON document|Missing objectType"}}));
    EXPECT_EQ(controller.steps,
              (std::vector<std::string>{"isInputDataSufficient", "parseInputData"}));
    // Sufficient input had already set the general result to true.
    EXPECT_TRUE(controller.seenByParse.getGeneralResult());
    EXPECT_EQ(controller.seenByParse.getStringStringMapOfResponse(),
              (StringMap{{"ResultComment", ""}}));
}

TEST_F(ActionControllerTest, ParseFailureThatLeavesTheResponseAloneKeepsTheTrueResult) {
    ScriptedController controller = makeController({{kScriptedLabel, "{}"}});
    controller.parseAnswer = false;
    const TOVResponse response = controller.evaluateAndRespond();

    EXPECT_TRUE(response.getGeneralResult());
    EXPECT_EQ(response.getStringStringMapOfResponse(), (StringMap{{"ResultComment", ""}}));
    EXPECT_EQ(controller.steps,
              (std::vector<std::string>{"isInputDataSufficient", "parseInputData"}));
}

TEST_F(ActionControllerTest, SuccessfulParseRunsEvaluateAndIgnoresItsFalseAnswer) {
    ScriptedController controller = makeController({{kScriptedLabel, "{}"}});
    controller.parseEffect = [](TOVResponse& response) {
        response.setCommentUnderKeyword("Parsed", "yes");
    };
    controller.evaluateAnswer = false;
    controller.evaluateEffect = [](TOVResponse& response) {
        response.setGeneralResultComment("Edit attempt approved");
    };
    const TOVResponse response = controller.evaluateAndRespond();

    EXPECT_EQ(controller.steps, (std::vector<std::string>{"isInputDataSufficient", "parseInputData",
                                                          "evaluateRequest"}));
    EXPECT_TRUE(controller.seenByEvaluate.getGeneralResult());
    EXPECT_EQ(controller.seenByEvaluate.getStringStringMapOfResponse(),
              (StringMap{{"Parsed", "yes"}, {"ResultComment", ""}}));
    EXPECT_TRUE(response.getGeneralResult());
    EXPECT_EQ(response.getStringStringMapOfResponse(),
              (StringMap{{"Parsed", "yes"}, {"ResultComment", "Edit attempt approved"}}));
}

TEST_F(ActionControllerTest, EvaluateRefusesBySettingFalseWhateverItAnswers) {
    ScriptedController controller = makeController({{kScriptedLabel, "{}"}});
    controller.evaluateAnswer = true;
    controller.evaluateEffect = [](TOVResponse& response) {
        response.setGeneralResult(false);
        response.appendToGeneralResultComment("Transition forbidden");
    };
    const TOVResponse response = controller.evaluateAndRespond();

    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getStringStringMapOfResponse(),
              (StringMap{{"ResultComment", "Transition forbidden"}}));
}

TEST_F(ActionControllerTest, EachCallStartsFromAFreshResponse) {
    ScriptedController controller = makeController({{kScriptedLabel, "{}"}});
    controller.evaluateEffect = [](TOVResponse& response) {
        response.appendToGeneralResultComment("Checked");
    };
    controller.evaluateAndRespond();
    const TOVResponse second = controller.evaluateAndRespond();

    EXPECT_TRUE(second.getGeneralResult());
    EXPECT_EQ(second.getGeneralResultComment(), "Checked");
}

TEST_F(ActionControllerTest, SufficiencyUpdateSetsTrueAndKeepsTheComment) {
    ScriptedController controller = makeController({{kScriptedLabel, "x"}});
    TOVResponse response;
    response.setGeneralResultComment("earlier");

    EXPECT_TRUE(controller.isInputDataSufficientUpdateResponse(response));
    EXPECT_TRUE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(), "earlier");
}

TEST_F(ActionControllerTest, SufficiencyUpdateReplacesTheCommentOnInsufficientInput) {
    ScriptedController controller = makeController({});
    TOVResponse response;
    response.setGeneralResult(true);
    response.setGeneralResultComment("earlier");

    EXPECT_FALSE(controller.isInputDataSufficientUpdateResponse(response));
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(), "Insufficient input data");
}

TEST_F(ActionControllerTest, UninitializedRulesOnAnEmptyCommentHasNoFullStop) {
    ScriptedController controller = makeController({{kScriptedLabel, "x"}});
    ASSERT_FALSE(coreData.getRules()->existAnyRules());
    TOVResponse response;
    response.setGeneralResult(true);

    EXPECT_TRUE(controller.foundUninitializedRulesViolation(response));
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getStringStringMapOfResponse(),
              (StringMap{{"ResultComment", "Uninitialized TOV rules"}}));
}

TEST_F(ActionControllerTest, UninitializedRulesIsAppendedAsANewSentence) {
    ScriptedController controller = makeController({{kScriptedLabel, "x"}});
    TOVResponse response;
    response.setGeneralResult(true);
    response.setGeneralResultComment("Earlier finding");
    response.setCommentUnderKeyword("ObjectFamilyMembers", "MissingData");

    EXPECT_TRUE(controller.foundUninitializedRulesViolation(response));
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getStringStringMapOfResponse(),
              (StringMap{{"ObjectFamilyMembers", "MissingData"},
                         {"ResultComment", "Earlier finding. Uninitialized TOV rules"}}));
}

TEST_F(ActionControllerTest, UninitializedDMInfoOnAnEmptyCommentHasNoFullStop) {
    ScriptedController controller = makeController({{kScriptedLabel, "x"}});
    ASSERT_FALSE(coreData.getDmInfo()->existAnyInfo());
    TOVResponse response;
    response.setGeneralResult(true);

    EXPECT_TRUE(controller.foundUninitializedDMInfoViolation(response));
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getStringStringMapOfResponse(),
              (StringMap{{"ResultComment", "Uninitialized Dm Information"}}));
}

TEST_F(ActionControllerTest, UninitializedDMInfoIsAppendedAsANewSentence) {
    ScriptedController controller = makeController({{kScriptedLabel, "x"}});
    TOVResponse response;
    response.setGeneralResultComment("Earlier finding");

    EXPECT_TRUE(controller.foundUninitializedDMInfoViolation(response));
    EXPECT_EQ(response.getGeneralResultComment(), "Earlier finding. Uninitialized Dm Information");
}

TEST_F(ActionControllerTest, UninitializedCheckAfterAClosedSentenceAddsOnlyABlank) {
    ScriptedController controller = makeController({{kScriptedLabel, "x"}});
    TOVResponse response;
    response.setGeneralResultComment("Earlier finding.");

    EXPECT_TRUE(controller.foundUninitializedRulesViolation(response));
    EXPECT_EQ(response.getGeneralResultComment(), "Earlier finding. Uninitialized TOV rules");
}

TEST_F(ActionControllerTest, BothUninitializedChecksInARowJoinTheirSentences) {
    ScriptedController controller = makeController({{kScriptedLabel, "x"}});
    TOVResponse response;

    EXPECT_TRUE(controller.foundUninitializedRulesViolation(response));
    EXPECT_TRUE(controller.foundUninitializedDMInfoViolation(response));
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(),
              "Uninitialized TOV rules. Uninitialized Dm Information");
}

TEST_F(ActionControllerTest, UninitializedChecksLogNothing) {
    ScriptedController controller = makeController({{kScriptedLabel, "x"}});
    TOVResponse response;
    startCapture();
    controller.foundUninitializedRulesViolation(response);
    controller.foundUninitializedDMInfoViolation(response);
    EXPECT_EQ(stopCapture(), "");
}

TEST_F(ActionControllerTest, LabelLookupCopiesTheValueOnAnExactHit) {
    ScriptedController controller =
        makeController({{kScriptedLabel, "the text"}, {"Input_is_filepath", "whatever"}});
    std::string out = "untouched";

    EXPECT_TRUE(controller.getInputStringWithThisLabel(kScriptedLabel, out));
    EXPECT_EQ(out, "the text");
    EXPECT_TRUE(controller.getInputStringWithThisLabel("Input_is_filepath", out));
    EXPECT_EQ(out, "whatever");
}

// The lookup in place, which parsers use to read a whole document uncopied:
// the same exact match, and the empty text for a miss.
TEST_F(ActionControllerTest, LabelLookupInPlaceGivesTheStoredTextOrNothing) {
    ScriptedController controller = makeController({{kScriptedLabel, "the text"}});

    EXPECT_EQ(controller.getInputWithThisLabel(kScriptedLabel), "the text");
    EXPECT_EQ(controller.getInputWithThisLabel("SCRIPTED_INPUT"), "");
    EXPECT_EQ(controller.getInputWithThisLabel(""), "");
    EXPECT_EQ(&controller.getInputWithThisLabel(kScriptedLabel),
              &controller.getInputWithThisLabel(kScriptedLabel));
}

TEST_F(ActionControllerTest, LabelLookupOfAnEmptyValueIsAHit) {
    ScriptedController controller = makeController({{kScriptedLabel, ""}});
    std::string out = "untouched";

    EXPECT_TRUE(controller.getInputStringWithThisLabel(kScriptedLabel, out));
    EXPECT_EQ(out, "");
}

TEST_F(ActionControllerTest, LabelLookupMissLeavesTheOutputAlone) {
    ScriptedController controller = makeController({{kScriptedLabel, "the text"}});
    std::string out = "untouched";

    EXPECT_FALSE(controller.getInputStringWithThisLabel("scripted_input", out));
    EXPECT_EQ(out, "untouched");
    EXPECT_FALSE(controller.getInputStringWithThisLabel("SCRIPTED_INPUT", out));
    EXPECT_EQ(out, "untouched");
    EXPECT_FALSE(controller.getInputStringWithThisLabel("Scripted", out));
    EXPECT_EQ(out, "untouched");
    EXPECT_FALSE(controller.getInputStringWithThisLabel("Scripted_input ", out));
    EXPECT_EQ(out, "untouched");
    EXPECT_FALSE(controller.getInputStringWithThisLabel("", out));
    EXPECT_EQ(out, "untouched");
}

TEST_F(ActionControllerTest, KeepsItsOwnCopyOfTheInput) {
    StringMap input{{kScriptedLabel, "before"}};
    ScriptedController controller(TOVFunctionality_EditAttempt, input, &coreData);
    input[kScriptedLabel] = "after";
    input["Added_later"] = "y";

    std::string out;
    EXPECT_TRUE(controller.getInputStringWithThisLabel(kScriptedLabel, out));
    EXPECT_EQ(out, "before");
    EXPECT_FALSE(controller.getInputStringWithThisLabel("Added_later", out));
}

TEST_F(ActionControllerTest, ReportsTheFunctionalityItWasGiven) {
    EXPECT_EQ(
        ScriptedController(TOVFunctionality_InitializeRules, {}, &coreData).getFunctionality(),
        TOVFunctionality_InitializeRules);
    EXPECT_EQ(ScriptedController(TOVFunctionality_EditAttempt, {}, &coreData).getFunctionality(),
              TOVFunctionality_EditAttempt);
    EXPECT_EQ(
        ScriptedController(TOVFunctionality_ManualLinkCreation, {}, &coreData).getFunctionality(),
        TOVFunctionality_ManualLinkCreation);
}

TEST_F(ActionControllerTest, ReachesTheStoresAndLoggerOfItsCoreData) {
    ScriptedController controller = makeController({});
    EXPECT_EQ(controller.getLifecycleBusinessRules(), coreData.getRules());
    EXPECT_EQ(controller.getLifecycleDMInfo(), coreData.getDmInfo());
    EXPECT_EQ(controller.getLifecycleLogger(), coreData.getLogger());
}

TEST_F(ActionControllerTest, CopyIsMemberWise) {
    const ScriptedController original(TOVFunctionality_SaveReprFileAttempt,
                                      {{kScriptedLabel, "text"}}, &coreData);
    ScriptedController copied(original);

    std::string out;
    EXPECT_TRUE(copied.getInputStringWithThisLabel(kScriptedLabel, out));
    EXPECT_EQ(out, "text");
    EXPECT_EQ(copied.getFunctionality(), TOVFunctionality_SaveReprFileAttempt);
    EXPECT_EQ(copied.getLifecycleLogger(), coreData.getLogger());
}

TEST_F(ActionControllerTest, IsDestroyedThroughTheBasePointer) {
    bool destroyed = false;
    TOVActionController* controller =
        new ScriptedController(TOVFunctionality_EditAttempt, {}, &coreData, &destroyed);
    delete controller;
    EXPECT_TRUE(destroyed);
}

}  // namespace
