// The shareable engine on one thread: it answers exactly as the entry points
// do on a private core data, loads all or nothing, numbers its generations,
// and replaces both documents at once only when both load.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "example_scenario.h"
#include "test_support.h"
#include "tov/TOVEngine.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOV_DMStructure.h"
#include "tov/entry_points.h"
#include "tov/request_kinds.h"

namespace {

using tovtest::asText;

const std::string kExamples = TOV_EXAMPLES_DIR;
const std::string kRulesPath = kExamples + "/rules.json";
const std::string kDataModelPath = kExamples + "/datamodel.json";
const std::string kUnknownKindTail =
    "expected rules, datamodel, edit, edit-before-resolution, save, save-before-resolution, "
    "link or options";

std::string failure(const std::string& comment) {
    return R"({"Result":"Failure","ResultComment":")" + comment + "\"}";
}

// A rules document with a fault: a transition rule without its "toValue".
const char* const kFaultyRules =
    R"({"transitions":{"Part":[{"attribute":"Status","fromValue":"In Work"}]}})";

// An edit that the example rules refuse for its frozen attribute, and that is
// approved once the rules are gone but for a transition that allows it.
const char* const kFrozenEdit =
    R"({"objectType":"Part","initialAttributes":{"Status":"Released","Description":"a"},)"
    R"("targetAttributes":{"Description":"b"}})";

class EngineTest : public ::testing::Test {
protected:
    void loadExamples() {
        ASSERT_TRUE(engine.evaluateFile("datamodel", kDataModelPath).getGeneralResult());
        ASSERT_TRUE(engine.evaluateFile("rules", kRulesPath).getGeneralResult());
    }

    TOVEngine engine;
};

TEST_F(EngineTest, AnswersEveryExampleRequestAsTheEntryPointsDoOnAPrivateCoreData) {
    const std::vector<tovtest::ExampleRequest> requests = tovtest::readExampleRequests();
    ASSERT_FALSE(requests.empty());
    tovtest::PrivateCore core;
    ASSERT_TRUE(tovtest::loadExampleDocuments(core.get()));
    loadExamples();
    for (const tovtest::ExampleRequest& request : requests) {
        const std::string expected = asText(request.evaluate(request.text, core.get()));
        EXPECT_EQ(asText(engine.evaluate(request.kind, request.text)), expected) << request.name;
        EXPECT_EQ(asText(engine.current()->evaluate(request.kind, request.text)), expected)
            << request.name;
        const std::string path = kExamples + "/requests/" + request.name + ".json";
        EXPECT_EQ(asText(engine.evaluateFile(request.kind, path)), expected) << request.name;
    }
}

TEST_F(EngineTest, LoadsAnswerAsTheInitializeFunctionsDo) {
    EXPECT_EQ(asText(engine.evaluateFile("rules", kRulesPath)),
              R"({"Result":"Success","ResultComment":"Successfully initialized TOV rules"})");
    EXPECT_EQ(asText(engine.evaluateFile("datamodel", kDataModelPath)),
              R"({"Result":"Success","ResultComment":"Succesfully initialized DM info"})");
    EXPECT_EQ(asText(engine.evaluate("rules", "")), failure("Insufficient input data"));
    EXPECT_EQ(asText(engine.evaluate("datamodel", "[1]")),
              failure("Json has fundamental parsing error"));
}

TEST_F(EngineTest, AnUnknownKindIsAnsweredWithTheKindsItCouldHaveBeen) {
    loadExamples();
    EXPECT_EQ(asText(engine.evaluate("Edit", kFrozenEdit)),
              failure(R"(Unknown request kind \"Edit\": )" + kUnknownKindTail));
    EXPECT_EQ(asText(engine.evaluateFile("", kRulesPath)),
              failure(R"(Unknown request kind \"\": )" + kUnknownKindTail));
    // A generation never changes, so it takes no document.
    EXPECT_EQ(asText(engine.current()->evaluate("rules", "{}")),
              failure(R"(Unknown request kind \"rules\": )" + kUnknownKindTail));
}

TEST_F(EngineTest, AFailedLoadLeavesThatDocumentUnloadedAndTheOtherAsItWas) {
    loadExamples();
    EXPECT_FALSE(engine.evaluate("edit", kFrozenEdit).getGeneralResult());

    EXPECT_EQ(engine.evaluate("rules", kFaultyRules).getGeneralResultComment(),
              "Transition rule for Part demands ALL keywords: [attribute,fromValue,toValue]");
    EXPECT_EQ(asText(engine.evaluate("edit", kFrozenEdit)), failure("Uninitialized TOV rules"));
    EXPECT_TRUE(engine.current()->dataModel().existAnyInfo());

    ASSERT_TRUE(engine.evaluateFile("rules", kRulesPath).getGeneralResult());
    EXPECT_EQ(asText(engine.evaluate("datamodel", "")), failure("Insufficient input data"));
    EXPECT_FALSE(engine.current()->dataModel().existAnyInfo());
    EXPECT_TRUE(engine.current()->rules().existAnyRules());
}

TEST_F(EngineTest, EveryLoadPublishesANewGenerationAndALogChangeDoesNot) {
    EXPECT_EQ(engine.current()->number(), 0U);
    loadExamples();
    EXPECT_EQ(engine.current()->number(), 2U);
    engine.evaluate("rules", kFaultyRules);
    EXPECT_EQ(engine.current()->number(), 3U);
    engine.evaluate("edit", kFrozenEdit);
    std::string whyNot;
    ASSERT_TRUE(engine.setLog("off", whyNot));
    EXPECT_EQ(engine.current()->number(), 3U);
}

TEST_F(EngineTest, ReplacingBothDocumentsPublishesOnlyWhenBothLoad) {
    loadExamples();
    const std::string refused = asText(engine.evaluate("edit", kFrozenEdit));
    const std::uint64_t before = engine.current()->number();

    TOVEngine::DocumentsLoad load = engine.replaceDocuments(kFaultyRules, kDataModelPath, true);
    EXPECT_FALSE(load.published);
    EXPECT_EQ(asText(load.rules), failure("Json has fundamental parsing error"));
    EXPECT_TRUE(load.dataModel.getGeneralResult());
    EXPECT_EQ(engine.current()->number(), before);
    EXPECT_EQ(asText(engine.evaluate("edit", kFrozenEdit)), refused);

    const std::string dataModel = tovtest::exampleText("datamodel.json");
    load = engine.replaceDocuments(kFaultyRules, dataModel, false);
    EXPECT_FALSE(load.published);
    EXPECT_EQ(load.rules.getGeneralResultComment(),
              "Transition rule for Part demands ALL keywords: [attribute,fromValue,toValue]");
    EXPECT_EQ(asText(engine.evaluate("edit", kFrozenEdit)), refused);

    load = engine.replaceDocuments(tovtest::exampleText("rules.json"), "{", false);
    EXPECT_FALSE(load.published);
    EXPECT_EQ(asText(load.dataModel), failure("Json has fundamental parsing error"));
    EXPECT_EQ(asText(engine.evaluate("edit", kFrozenEdit)), refused);

    const std::string onlyTransitions =
        R"({"transitions":{"Part":[{"attribute":"Status","fromValue":"Released",)"
        R"("toValue":["Released"]}]}})";
    load = engine.replaceDocuments(onlyTransitions, dataModel, false);
    EXPECT_TRUE(load.published);
    EXPECT_EQ(asText(load.rules),
              R"({"Result":"Success","ResultComment":"Successfully initialized TOV rules"})");
    EXPECT_EQ(engine.current()->number(), before + 1);
    EXPECT_EQ(engine.evaluate("edit", kFrozenEdit).getGeneralResultComment(),
              "Edit attempt approved");
}

TEST_F(EngineTest, LogsWhereItIsTold) {
    std::string whyNot;
    EXPECT_TRUE(engine.setLog("console", whyNot));
    std::fflush(stdout);
    testing::internal::CaptureStdout();
    engine.evaluate("edit", kFrozenEdit);
    std::fflush(stdout);
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_NE(printed.find("Evaluating Edit attempt input="), std::string::npos) << printed;

    tovtest::TempFile notAFolder("x");
    EXPECT_FALSE(engine.setLog(notAFolder.path + "/log", whyNot));
    EXPECT_EQ(whyNot.rfind("cannot use log folder " + notAFolder.path + "/log: ", 0), 0U) << whyNot;

    EXPECT_TRUE(engine.setLog("", whyNot));
    std::fflush(stdout);
    testing::internal::CaptureStdout();
    engine.evaluate("edit", kFrozenEdit);
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(EngineKinds, NamesTheDocumentsFirstThenTheRequests) {
    EXPECT_EQ(TOVEngine::kindNames(),
              (std::vector<std::string>{"rules", "datamodel", "edit", "edit-before-resolution",
                                        "save", "save-before-resolution", "link", "options"}));
    EXPECT_TRUE(TOVEngine::isDocumentKind("rules"));
    EXPECT_TRUE(TOVEngine::isDocumentKind("datamodel"));
    EXPECT_FALSE(TOVEngine::isDocumentKind("edit"));
    EXPECT_FALSE(TOVEngine::isDocumentKind("Rules"));
}

// The engine's words are those of the one public table, which also gives each
// kind its entry points and its words for help texts.
TEST(EngineKinds, AreThePublicTableOfRequestKinds) {
    std::vector<std::string> names;
    for (const TOVRequestKind& kind : GetTOVRequestKinds()) {
        names.emplace_back(kind.name);
        EXPECT_EQ(TOVEngine::isDocumentKind(kind.name), kind.isDocument) << kind.name;
        EXPECT_NE(std::string(kind.description), "") << kind.name;
        EXPECT_EQ(FindTOVRequestKind(kind.name), &kind);
    }
    EXPECT_EQ(names, TOVEngine::kindNames());
    EXPECT_EQ(FindTOVRequestKind("link")->fromText, &EvaluateTOVManualLinkCreation);
    EXPECT_EQ(FindTOVRequestKind("rules")->fromFile, &InitializeTOVRulesFromFile);
    EXPECT_STREQ(FindTOVRequestKind("options")->description,
                 "which conflict resolutions are proper for this change? (options query)");
    EXPECT_EQ(FindTOVRequestKind("Edit"), nullptr);
    EXPECT_EQ(FindTOVRequestKind(""), nullptr);
}

}  // namespace
