#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "test_support.h"
#include "tov/TOVCoreDataControllers.h"
#include "tov/TOVFunctionality.h"
#include "tov/TOVInitializerController.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVTransition.h"
#include "tov/entry_points.h"

namespace {

using tovtest::asText;
using tovtest::captureConsole;
using tovtest::PrivateCore;
using tovtest::TempFile;

const char* const kLoaded =
    R"({"Result":"Success","ResultComment":"Successfully initialized TOV rules"})";

const char* const kOneTransition = R"({"transitions":{"Part":[
    {"attribute":"Status","fromValue":"In Work","toValue":["Released"]}]}})";

std::string failure(const std::string& comment) {
    return R"({"Result":"Failure","ResultComment":")" + comment + R"("})";
}

size_t transitionsFor(PrivateCore& core, const std::string& objectType,
                      const std::string& attribute) {
    std::vector<const TOVTransition*> related;
    core.rules()->getRelatedTransitionRules(objectType, {attribute}, core.dmInfo(), related);
    return related.size();
}

TEST(RulesDocument, EmptyObjectLoadsNoRules) {
    PrivateCore core;
    EXPECT_EQ(asText(InitializeTOVRules("{}", core.get())), kLoaded);
    EXPECT_FALSE(core.rules()->existAnyRules());
}

TEST(RulesDocument, EmptyInputAfterALoadEmptiesTheStore) {
    PrivateCore core;
    ASSERT_EQ(asText(InitializeTOVRules(kOneTransition, core.get())), kLoaded);
    ASSERT_TRUE(core.rules()->existAnyRules());
    EXPECT_EQ(asText(InitializeTOVRules("", core.get())), failure("Insufficient input data"));
    EXPECT_FALSE(core.rules()->existAnyRules());
}

TEST(RulesDocument, RequestWithoutTheLabelStillEmptiesTheStore) {
    PrivateCore core;
    ASSERT_EQ(asText(InitializeTOVRules(kOneTransition, core.get())), kLoaded);
    TOVInitializerController controller({{"Something_else", "{}"}}, core.get());
    EXPECT_FALSE(core.rules()->existAnyRules());
    EXPECT_EQ(asText(controller.evaluateAndRespond()), failure("Insufficient input data"));
}

TEST(RulesDocument, ControllerReportsFunctionalityZeroAndItsLabels) {
    PrivateCore core;
    TOVInitializerController controller({}, core.get());
    EXPECT_EQ(controller.getFunctionality(), TOVFunctionality_InitializeRules);
    EXPECT_EQ(TOVInitializerController::getInputDataLabelIdentifierForAllRules(), "All_TOV_rules");
    EXPECT_EQ(TOVInitializerController::getInputDataLabelIdentifierForJsonFilepath(),
              "Input_is_filepath");
}

TEST(RulesDocument, FundamentalErrorsLeaveTheStoreEmpty) {
    PrivateCore core;
    for (const char* text : {"[]", "{", "\"rules\"", "{} {}", "{\"transitions\":{},}"}) {
        ASSERT_EQ(asText(InitializeTOVRules(kOneTransition, core.get())), kLoaded);
        EXPECT_EQ(asText(InitializeTOVRules(text, core.get())),
                  failure("Json has fundamental parsing error"))
            << text;
        EXPECT_FALSE(core.rules()->existAnyRules()) << text;
    }
}

TEST(RulesDocument, SectionsWithoutRulesAreNoError) {
    PrivateCore core;
    EXPECT_EQ(
        asText(InitializeTOVRules(R"({"transitions":{},"manualLinks":{"Part":[]}})", core.get())),
        kLoaded);
    EXPECT_FALSE(core.rules()->existAnyRules());
}

TEST(RulesDocument, SectionOfTheWrongTypeIsPassedOverInSilence) {
    PrivateCore core;
    EXPECT_EQ(asText(InitializeTOVRules(
                  R"({"transitions":[{"attribute":"A"}],"triggers":"none","fileConstraints":3})",
                  core.get())),
              kLoaded);
    EXPECT_FALSE(core.rules()->existAnyRules());
}

TEST(RulesDocument, RuleListOfTheWrongTypeIsAnError) {
    PrivateCore core;
    EXPECT_EQ(
        asText(InitializeTOVRules(R"({"transitions":{"Part":{"attribute":"A"}}})", core.get())),
        failure("Transition rules for Part should be in a List."));
    EXPECT_EQ(asText(InitializeTOVRules(R"({"transitions":{"Part":["rule"]}})", core.get())),
              failure("Transition rule in list for Part should be a map."));
}

TEST(RulesDocument, UnknownRootMembersAreIgnored) {
    PrivateCore core;
    EXPECT_EQ(asText(InitializeTOVRules(
                  R"({"comment":"release rules","version":2,"transitions":{"Part":[
                      {"attribute":"Status","fromValue":"In Work","toValue":["Released"]}]}})",
                  core.get())),
              kLoaded);
    EXPECT_EQ(transitionsFor(core, "Part", "Status"), 1u);
}

TEST(RulesDocument, ErrorsOfSeveralSectionsAreJoinedInSectionOrder) {
    PrivateCore core;
    const std::string document = R"({
        "manualLinks":{"Part":[{"attribute":"A","fromValue":"X","toValue":"Y"}]},
        "transitions":{"Part":[{"attribute":"A","fromValue":"X"}]}})";
    EXPECT_EQ(
        asText(InitializeTOVRules(document, core.get())),
        failure("Transition rule for Part demands ALL keywords: [attribute,fromValue,toValue]|"
                "Manual Link rule for Part demands ALL keywords: "
                "[attribute,fromValue,toValue,acceptableManualLinkValues]"));
    EXPECT_FALSE(core.rules()->existAnyRules());
}

TEST(RulesDocument, FailedSectionDoesNotStopTheOthersButEmptiesTheStore) {
    PrivateCore core;
    const std::string document = R"({
        "transitions":{"Part":[{"attribute":"Status","fromValue":"In Work","toValue":["Released"]},
                               "broken"]},
        "triggers":{"Part":[{"attribute":"Status","triggerInitialize":"B"}]}})";
    EXPECT_EQ(asText(InitializeTOVRules(document, core.get())),
              failure("Triggers rule for Part demands ALL keywords: "
                      "[attribute,initializationValue,triggerInitialize]|"
                      "Transition rule in list for Part should be a map."));
    EXPECT_FALSE(core.rules()->existAnyRules());
}

TEST(RulesDocument, MissingFileIsAFundamentalError) {
    PrivateCore core;
    EXPECT_EQ(asText(InitializeTOVRulesFromFile("/nonexistent/tov/rules.json", core.get())),
              failure("Json has fundamental parsing error"));
}

TEST(RulesDocument, LoadsFromAFile) {
    PrivateCore core;
    const TempFile file(kOneTransition);
    EXPECT_EQ(asText(InitializeTOVRulesFromFile(file.path, core.get())), kLoaded);
    EXPECT_EQ(transitionsFor(core, "Part", "Status"), 1u);
}

TEST(RulesDocument, FilePathLabelCountsWhateverItsValue) {
    PrivateCore core;
    const TempFile file(kOneTransition);
    TOVInitializerController controller({{"All_TOV_rules", file.path}, {"Input_is_filepath", "no"}},
                                        core.get());
    EXPECT_EQ(asText(controller.evaluateAndRespond()), kLoaded);
    EXPECT_EQ(transitionsFor(core, "Part", "Status"), 1u);
}

TEST(RulesDocument, AllInAnyCaseLoadsAsAny) {
    for (const char* all : {"ALL", "all", "All"}) {
        PrivateCore core;
        const std::string document =
            std::string(R"({"transitions":{")") + all +
            R"(":[{"attribute":"Status","fromValue":"A","toValue":["B"]}]}})";
        ASSERT_EQ(asText(InitializeTOVRules(document, core.get())), kLoaded) << all;
        EXPECT_EQ(transitionsFor(core, "Part", "Status"), 1u) << all;
        EXPECT_EQ(transitionsFor(core, "Anything", "Status"), 1u) << all;
        const std::string printed = captureConsole(
            core.logger(), [&] { core.rules()->printTransitionContentsDBG(core.logger()); });
        EXPECT_NE(printed.find("Object type : <any>\n"), std::string::npos) << printed;
    }
}

TEST(RulesDocument, MembersNamingOneTypeBothAddTheirRules) {
    PrivateCore core;
    const std::string document = R"({"transitions":{
        "Part":[{"attribute":"Status","fromValue":"A","toValue":["B"]}],
        "PART":[{"attribute":"Status","fromValue":"B","toValue":["C"]}]}})";
    ASSERT_EQ(asText(InitializeTOVRules(document, core.get())), kLoaded);
    EXPECT_EQ(transitionsFor(core, "Part", "Status"), 2u);
}

TEST(RulesDocument, AnObjectTypeWithAZeroByteKeepsItsWholeName) {
    PrivateCore core;
    const std::string document = R"({"transitions":{
        "Pa\u0000rt":[{"attribute":"Status","fromValue":"A","toValue":["B"]}]}})";
    ASSERT_EQ(asText(InitializeTOVRules(document, core.get())), kLoaded);
    const auto words = core.rules()->expressRulesInWords();
    ASSERT_EQ(words.size(), 1u);
    EXPECT_EQ(words[0].second,
              std::string("For Pa\0rt: Status can transition from \"A\" to \"B\"", 48));
    EXPECT_EQ(transitionsFor(core, "Pa", "Status"), 0u);
}

TEST(RulesDocument, SuccessLogsTheWholeStoreAndTheResponse) {
    PrivateCore core;
    const std::string printed =
        captureConsole(core.logger(), [&] { InitializeTOVRules(kOneTransition, core.get()); });
    const std::string expected =
        "----------------TRANSITIONS FREEZE RULES--------------\n"
        "---------------HISTORY LINKS RULES ------------------\n"
        "---------------MANUAL LINKS RULES ------------------\n"
        "---------------TRANSITION RULES ------------------\n"
        "**TOVTransition rule:\n"
        "Object type : Part\n"
        "Attribute : Status\n"
        "From value : In Work\n"
        "To values : [Released]\n"
        "---------------  TRIGGER RULES ------------------\n"
        "--------VERSIONING ATTRIBUTES SELECTION RULES--------\n"
        "---------------CONFLICTS RESOLUTIONS RULES---------------\n"
        "----------------------FILE CONSTRAINTS----------------\n"
        "*************TOVResponse******************\n"
        "{Result:Success, ResultComment:Successfully initialized TOV rules}\n"
        "*************JNI_TOVResponse******************\n" +
        std::string(kLoaded) + "\n" + "Initializing TOV Rules result=\"" + kLoaded + "\"\n";
    EXPECT_EQ(printed, expected);
}

TEST(RulesDocument, FailureLogsNoStore) {
    PrivateCore core;
    const std::string printed =
        captureConsole(core.logger(), [&] { InitializeTOVRules("[]", core.get()); });
    EXPECT_EQ(printed.find("TRANSITION RULES"), std::string::npos);
    EXPECT_NE(printed.find("Initializing TOV Rules result=\"" +
                           failure("Json has fundamental parsing error") + "\"\n"),
              std::string::npos);
}

TEST(RulesDocument, LoadsAHundredThousandRules) {
    PrivateCore core;
    std::string document = R"({"transitions":{"Part":[)";
    for (int i = 0; i < 100000; ++i) {
        if (i > 0) {
            document += ',';
        }
        document += R"({"attribute":"A)" + std::to_string(i % 100) + R"(","fromValue":"V)" +
                    std::to_string(i) + R"(","toValue":["W"]})";
    }
    document += "]}}";
    EXPECT_EQ(asText(InitializeTOVRules(document, core.get())), kLoaded);
    EXPECT_EQ(transitionsFor(core, "Part", "A7"), 1000u);
}

TEST(RulesDocument, MainInstancesShareOneStore) {
    TOVCoreDataControllers first;
    first.initializeFromStatics();
    setTOVLoggingFolder("", &first);
    TOVCoreDataControllers second;
    second.initializeFromStatics();
    ASSERT_EQ(asText(InitializeTOVRules(kOneTransition, &first)), kLoaded);
    EXPECT_TRUE(second.getRules()->existAnyRules());
    InitializeTOVRules("", &second);
    EXPECT_FALSE(first.getRules()->existAnyRules());
}

}  // namespace
