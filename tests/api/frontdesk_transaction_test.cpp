// The road of a request below the exported functions: front desk labelling and
// logging, the factory and the transaction.
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "api/TOVVemoFrontdesk.h"
#include "api/factory.h"
#include "tov/TOVActionController.h"
#include "tov/TOVCoreDataControllers.h"
#include "tov/TOVEditController.h"
#include "tov/TOVFrontdesk.h"
#include "tov/TOVFunctionality.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVLogger.h"
#include "tov/TOVResponse.h"
#include "tov/TOVTransactionController.h"
#include "tov/TOV_DMStructure.h"

#include "test_support.h"

namespace {

using StringMap = std::map<std::string, std::string>;

// No controller is ever registered for these, whatever the factory learns.
constexpr TOVFunctionality kUnknownFunctionality = static_cast<TOVFunctionality>(8);
constexpr TOVFunctionality kNegativeFunctionality = static_cast<TOVFunctionality>(-1);

const char* const kDefaultSingleString = R"({"Result":"Failure","ResultComment":""})";

using tovtest::ConsoleLoggedTest;

// Opens the protected parts of the front desk; serving only counts calls.
class InspectableFrontdesk : public TOVFrontdesk {
public:
    explicit InspectableFrontdesk(TOVFunctionality functionality) : TOVFrontdesk(functionality) {}

    void serveLabeledInput() override { ++servedCount; }

    using TOVFrontdesk::getFunctionalityIdentifier;
    using TOVFrontdesk::getLabeledInput;
    using TOVFrontdesk::getTOVBrain;

    int servedCount = 0;
};

class InspectableVemoFrontdesk : public TOVVemoFrontdesk {
public:
    explicit InspectableVemoFrontdesk(TOVFunctionality functionality)
        : TOVVemoFrontdesk(functionality) {}

    using TOVFrontdesk::getLabeledInput;
    using TOVFrontdesk::getTOVBrain;
};

void expectDefaultResponse(const TOVResponse& response) {
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(), "");
    EXPECT_EQ(response.getStringStringMapOfResponse(), (StringMap{{"ResultComment", ""}}));
    EXPECT_EQ(response.turnResponseIntoASingleString(), kDefaultSingleString);
}

// ---------------------------------------------------------------------------
// TOVFrontdesk

using FrontdeskTest = ConsoleLoggedTest;

TEST_F(FrontdeskTest, StartsWithItsFunctionalityAnEmptyMapAndANullBrain) {
    InspectableFrontdesk frontdesk(TOVFunctionality_ManualLinkCreation);
    EXPECT_EQ(frontdesk.getFunctionalityIdentifier(), TOVFunctionality_ManualLinkCreation);
    EXPECT_TRUE(frontdesk.getLabeledInput().empty());
    EXPECT_EQ(frontdesk.getTOVBrain()->getRules(), nullptr);
    EXPECT_EQ(frontdesk.getTOVBrain()->getDmInfo(), nullptr);
    EXPECT_EQ(frontdesk.getTOVBrain()->getLogger(), nullptr);
}

TEST_F(FrontdeskTest, LabelsAnIncomingStringWithoutLogging) {
    InspectableFrontdesk frontdesk(TOVFunctionality_EditAttempt);
    frontdesk.getTOVBrain()->borrowData(&coreData);

    startCapture();
    const bool labelled = frontdesk.getIncomingStringAndLabelItAs("All_transition_values", "{}");
    const bool pathLabelled = frontdesk.getIncomingStringAndLabelItAs("Input_is_filepath", "true");
    EXPECT_EQ(stopCapture(), "");

    EXPECT_TRUE(labelled);
    EXPECT_TRUE(pathLabelled);
    EXPECT_EQ(frontdesk.getLabeledInput(),
              (StringMap{{"All_transition_values", "{}"}, {"Input_is_filepath", "true"}}));
}

TEST_F(FrontdeskTest, SecondUseOfALabelKeepsTheFirstValueAndLogsTheRefusal) {
    InspectableFrontdesk frontdesk(TOVFunctionality_EditAttempt);
    frontdesk.getTOVBrain()->borrowData(&coreData);
    ASSERT_TRUE(frontdesk.getIncomingStringAndLabelItAs("All_transition_values", "first"));

    startCapture();
    const bool relabelled =
        frontdesk.getIncomingStringAndLabelItAs("All_transition_values", "second");
    const std::string log = stopCapture();

    EXPECT_FALSE(relabelled);
    EXPECT_EQ(log, "All_transition_values has already been assigned to another input string.\n");
    EXPECT_EQ(frontdesk.getLabeledInput(), (StringMap{{"All_transition_values", "first"}}));
}

TEST_F(FrontdeskTest, AnEmptyStringIsLabelledAndStillBlocksTheLabel) {
    InspectableFrontdesk frontdesk(TOVFunctionality_InitializeRules);
    frontdesk.getTOVBrain()->borrowData(&coreData);
    EXPECT_TRUE(frontdesk.getIncomingStringAndLabelItAs("All_TOV_rules", ""));

    startCapture();
    EXPECT_FALSE(frontdesk.getIncomingStringAndLabelItAs("All_TOV_rules", "{}"));
    EXPECT_EQ(stopCapture(), "All_TOV_rules has already been assigned to another input string.\n");
    EXPECT_EQ(frontdesk.getLabeledInput(), (StringMap{{"All_TOV_rules", ""}}));
}

TEST_F(FrontdeskTest, LabelsAreCaseSensitive) {
    InspectableFrontdesk frontdesk(TOVFunctionality_InitializeDMInfo);
    frontdesk.getTOVBrain()->borrowData(&coreData);

    startCapture();
    EXPECT_TRUE(frontdesk.getIncomingStringAndLabelItAs("All_DM_Info", "upper"));
    EXPECT_TRUE(frontdesk.getIncomingStringAndLabelItAs("all_dm_info", "lower"));
    EXPECT_EQ(stopCapture(), "");
    EXPECT_EQ(frontdesk.getLabeledInput(),
              (StringMap{{"All_DM_Info", "upper"}, {"all_dm_info", "lower"}}));
}

TEST_F(FrontdeskTest, TitledStringIsTheTitleThenTheTextInQuotes) {
    InspectableFrontdesk frontdesk(TOVFunctionality_EditAttempt);
    frontdesk.getTOVBrain()->borrowData(&coreData);

    startCapture();
    frontdesk.printTitledStringToLog("Evaluating Edit attempt input=", R"({"objectType":"Part"})");
    EXPECT_EQ(stopCapture(), "Evaluating Edit attempt input=\"{\"objectType\":\"Part\"}\"\n");
}

TEST_F(FrontdeskTest, TitledStringOfAnEmptyTextHasTwoQuotes) {
    InspectableFrontdesk frontdesk(TOVFunctionality_EditAttempt);
    frontdesk.getTOVBrain()->borrowData(&coreData);

    startCapture();
    frontdesk.printTitledStringToLog("Title=", "");
    EXPECT_EQ(stopCapture(), "Title=\"\"\n");
}

TEST_F(FrontdeskTest, TitledStringIsCutAtTheFirstNul) {
    InspectableFrontdesk frontdesk(TOVFunctionality_EditAttempt);
    frontdesk.getTOVBrain()->borrowData(&coreData);

    startCapture();
    frontdesk.printTitledStringToLog("Title=", std::string("ab\0cd", 5));
    EXPECT_EQ(stopCapture(), "Title=\"ab\"\n");
}

TEST_F(FrontdeskTest, TitledStringEscapesNothing) {
    InspectableFrontdesk frontdesk(TOVFunctionality_EditAttempt);
    frontdesk.getTOVBrain()->borrowData(&coreData);

    startCapture();
    frontdesk.printTitledStringToLog("T=", "a\"b\\c\nd\te");
    EXPECT_EQ(stopCapture(), "T=\"a\"b\\c\nd\te\"\n");
}

TEST_F(FrontdeskTest, TitledStringKeepsTheLeadingLineFeedOfTheTitle) {
    InspectableFrontdesk frontdesk(TOVFunctionality_InitializeRules);
    frontdesk.getTOVBrain()->borrowData(&coreData);

    startCapture();
    frontdesk.printTitledStringToLog("\nInitializing TOV Rules input=", "/data/rules.json");
    EXPECT_EQ(stopCapture(), "\nInitializing TOV Rules input=\"/data/rules.json\"\n");
}

TEST_F(FrontdeskTest, CopiesTakeFunctionalityMapAndBorrowedPointers) {
    InspectableFrontdesk original(TOVFunctionality_SaveReprFileAttempt);
    original.getTOVBrain()->borrowData(&coreData);
    original.getIncomingStringAndLabelItAs("All_transition_values", "text");

    InspectableFrontdesk copied(original);
    EXPECT_EQ(copied.getFunctionalityIdentifier(), TOVFunctionality_SaveReprFileAttempt);
    EXPECT_EQ(copied.getLabeledInput(), (StringMap{{"All_transition_values", "text"}}));
    EXPECT_EQ(copied.getTOVBrain()->getRules(), coreData.getRules());
    EXPECT_EQ(copied.getTOVBrain()->getDmInfo(), coreData.getDmInfo());
    EXPECT_EQ(copied.getTOVBrain()->getLogger(), coreData.getLogger());

    InspectableFrontdesk assigned(TOVFunctionality_InitializeRules);
    assigned = original;
    EXPECT_EQ(assigned.getFunctionalityIdentifier(), TOVFunctionality_SaveReprFileAttempt);
    EXPECT_EQ(assigned.getLabeledInput(), (StringMap{{"All_transition_values", "text"}}));
    EXPECT_EQ(assigned.getTOVBrain()->getLogger(), coreData.getLogger());
}

TEST_F(FrontdeskTest, MovesTakeOverTheMapAndCopyTheBrain) {
    InspectableFrontdesk original(TOVFunctionality_ProperConflictResolutionOptions);
    original.getTOVBrain()->borrowData(&coreData);
    original.getIncomingStringAndLabelItAs("Conflicts_Resolution_Options_query_data", "q");

    InspectableFrontdesk moved(std::move(original));
    EXPECT_EQ(moved.getFunctionalityIdentifier(), TOVFunctionality_ProperConflictResolutionOptions);
    EXPECT_EQ(moved.getLabeledInput(),
              (StringMap{{"Conflicts_Resolution_Options_query_data", "q"}}));
    EXPECT_EQ(moved.getTOVBrain()->getRules(), coreData.getRules());
    EXPECT_EQ(moved.getTOVBrain()->getLogger(), coreData.getLogger());

    InspectableFrontdesk assigned(TOVFunctionality_InitializeRules);
    assigned = std::move(moved);
    EXPECT_EQ(assigned.getFunctionalityIdentifier(),
              TOVFunctionality_ProperConflictResolutionOptions);
    EXPECT_EQ(assigned.getLabeledInput(),
              (StringMap{{"Conflicts_Resolution_Options_query_data", "q"}}));
    EXPECT_EQ(assigned.getTOVBrain()->getDmInfo(), coreData.getDmInfo());
}

// ---------------------------------------------------------------------------
// TOVVemoFrontdesk

using FrontdeskVemoTest = ConsoleLoggedTest;

TEST_F(FrontdeskVemoTest, StartsWithTheDefaultResponse) {
    TOVVemoFrontdesk frontdesk(TOVFunctionality_EditAttempt);
    expectDefaultResponse(frontdesk.getResponse());
}

TEST_F(FrontdeskVemoTest, BorrowsTheCoreDataWithoutOwningIt) {
    {
        InspectableVemoFrontdesk frontdesk(TOVFunctionality_EditAttempt);
        frontdesk.borrowData(&coreData);
        EXPECT_EQ(frontdesk.getTOVBrain()->getRules(), coreData.getRules());
        EXPECT_EQ(frontdesk.getTOVBrain()->getDmInfo(), coreData.getDmInfo());
        EXPECT_EQ(frontdesk.getTOVBrain()->getLogger(), coreData.getLogger());
    }
    // The front desk is gone; the logger it pointed at must still work.
    startCapture();
    EXPECT_TRUE(coreData.getLogger()->printToLog("still alive"));
    EXPECT_EQ(stopCapture(), "still alive\n");
}

TEST_F(FrontdeskVemoTest, ServingAnUnknownFunctionalityLogsTheFactoryAndKeepsTheDefaultResponse) {
    InspectableVemoFrontdesk frontdesk(kUnknownFunctionality);
    frontdesk.borrowData(&coreData);
    frontdesk.getIncomingStringAndLabelItAs("All_transition_values", "{}");

    startCapture();
    frontdesk.serveLabeledInput();
    const std::string log = stopCapture();

    EXPECT_EQ(log, "ATTENTION!!! YOU FORGOT TO ADD 8 IN THE FACTORY!!\n");
    expectDefaultResponse(frontdesk.getResponse());
    // Serving does not touch the labelled input.
    EXPECT_EQ(frontdesk.getLabeledInput(), (StringMap{{"All_transition_values", "{}"}}));
}

TEST_F(FrontdeskVemoTest, WholeLogOfACallForAnUnknownFunctionality) {
    startCapture();
    {
        TOVVemoFrontdesk frontdesk(kNegativeFunctionality);
        frontdesk.borrowData(&coreData);
        frontdesk.printTitledStringToLog("\nSome request input=", "payload");
        frontdesk.getIncomingStringAndLabelItAs("Some_label", "payload");
        frontdesk.serveLabeledInput();
        frontdesk.printResponseToLog("Some request result=", frontdesk.getResponse());
    }
    EXPECT_EQ(stopCapture(),
              "\nSome request input=\"payload\"\n"
              "ATTENTION!!! YOU FORGOT TO ADD -1 IN THE FACTORY!!\n"
              "Some request result=\"{\"Result\":\"Failure\",\"ResultComment\":\"\"}\"\n");
}

TEST_F(FrontdeskVemoTest, ResponseIsLoggedInItsSingleStringForm) {
    TOVVemoFrontdesk frontdesk(TOVFunctionality_EditAttempt);
    frontdesk.borrowData(&coreData);
    TOVResponse response;
    response.setGeneralResult(true);
    response.setGeneralResultComment("Edit attempt approved");
    response.setCommentUnderKeyword("TriggerInitialization", "{Revision:A}");

    startCapture();
    frontdesk.printResponseToLog("Evaluating Edit attempt result=", response);
    EXPECT_EQ(stopCapture(),
              "Evaluating Edit attempt result=\"{\"Result\":\"Success\","
              "\"ResultComment\":\"Edit attempt approved\","
              "\"TriggerInitialization\":\"{Revision:A}\"}\"\n");
}

// ---------------------------------------------------------------------------
// createProperController

using FactoryTest = ConsoleLoggedTest;

TEST_F(FactoryTest, ValueEightIsLoggedAndGivesNull) {
    startCapture();
    TOVActionController* controller = createProperController(
        kUnknownFunctionality, StringMap{{"All_TOV_rules", "{}"}}, &coreData);
    const std::string log = stopCapture();

    EXPECT_EQ(controller, nullptr);
    delete controller;
    EXPECT_EQ(log, "ATTENTION!!! YOU FORGOT TO ADD 8 IN THE FACTORY!!\n");
}

TEST_F(FactoryTest, NegativeValueIsLoggedWithItsMinus) {
    startCapture();
    TOVActionController* controller =
        createProperController(kNegativeFunctionality, StringMap{}, &coreData);
    const std::string log = stopCapture();

    EXPECT_EQ(controller, nullptr);
    delete controller;
    EXPECT_EQ(log, "ATTENTION!!! YOU FORGOT TO ADD -1 IN THE FACTORY!!\n");
}

TEST_F(FactoryTest, ExtremeValuesAreWrittenAsSigned32BitNumbers) {
    startCapture();
    TOVActionController* lowest =
        createProperController(static_cast<TOVFunctionality>(INT32_MIN), StringMap{}, &coreData);
    TOVActionController* highest =
        createProperController(static_cast<TOVFunctionality>(INT32_MAX), StringMap{}, &coreData);
    const std::string log = stopCapture();

    EXPECT_EQ(lowest, nullptr);
    EXPECT_EQ(highest, nullptr);
    delete lowest;
    delete highest;
    EXPECT_EQ(log,
              "ATTENTION!!! YOU FORGOT TO ADD -2147483648 IN THE FACTORY!!\n"
              "ATTENTION!!! YOU FORGOT TO ADD 2147483647 IN THE FACTORY!!\n");
}

// The library's own road hands a request's text on instead of copying it.
TEST_F(FactoryTest, TheControllerTakesTheInputOverWhenThereIsOne) {
    setTOVLoggingFolder("", &coreData);
    StringMap input{{"All_transition_values", R"({"objectType":"Part"})"}};
    std::unique_ptr<TOVActionController> controller(
        createControllerTakingInput(TOVFunctionality_EditAttempt, input, &coreData));
    ASSERT_NE(controller, nullptr);
    EXPECT_TRUE(input.empty());
    EXPECT_NE(dynamic_cast<const TOVEditController*>(controller.get()), nullptr);
    EXPECT_EQ(tovtest::asText(controller->evaluateAndRespond()),
              R"({"Result":"Failure","ResultComment":"Initial Attributes demands ALL keywords: )"
              R"([initialAttributes]"})");
}

TEST_F(FactoryTest, WithoutAControllerTheInputStaysWhereItWas) {
    StringMap input{{"All_transition_values", "{}"}};
    startCapture();
    TOVActionController* controller =
        createControllerTakingInput(kUnknownFunctionality, input, &coreData);
    EXPECT_EQ(stopCapture(), "ATTENTION!!! YOU FORGOT TO ADD 8 IN THE FACTORY!!\n");
    EXPECT_EQ(controller, nullptr);
    EXPECT_EQ(input, (StringMap{{"All_transition_values", "{}"}}));
}

TEST_F(FactoryTest, MessageGoesToTheLoggerOfTheGivenCoreData) {
    setTOVLoggingFolder("", &coreData);
    startCapture();
    TOVActionController* controller =
        createProperController(kUnknownFunctionality, StringMap{}, &coreData);
    EXPECT_EQ(stopCapture(), "");
    EXPECT_EQ(controller, nullptr);
    delete controller;
}

// ---------------------------------------------------------------------------
// TOVTransactionController

using TransactionTest = ConsoleLoggedTest;

TEST_F(TransactionTest, UnknownFunctionalityLeavesTheTransactionWithoutController) {
    StringMap input{{"All_transition_values", "{}"}};

    startCapture();
    TOVTransactionController transaction(kUnknownFunctionality, input, &coreData);
    const std::string log = stopCapture();

    EXPECT_FALSE(transaction.hasController());
    EXPECT_EQ(log, "ATTENTION!!! YOU FORGOT TO ADD 8 IN THE FACTORY!!\n");
    EXPECT_EQ(input, (StringMap{{"All_transition_values", "{}"}}));
}

TEST_F(TransactionTest, ExecutingWithoutControllerGivesTheDefaultResponseSilently) {
    StringMap input;
    startCapture();
    TOVTransactionController transaction(kNegativeFunctionality, input, &coreData);
    EXPECT_EQ(stopCapture(), "ATTENTION!!! YOU FORGOT TO ADD -1 IN THE FACTORY!!\n");
    ASSERT_FALSE(transaction.hasController());

    startCapture();
    const TOVResponse response = transaction.executeTransaction();
    EXPECT_EQ(stopCapture(), "");
    expectDefaultResponse(response);
}

TEST_F(TransactionTest, DestroyingATransactionWithoutControllerLogsNothing) {
    StringMap input;
    startCapture();
    auto* transaction = new TOVTransactionController(kUnknownFunctionality, input, &coreData);
    EXPECT_EQ(stopCapture(), "ATTENTION!!! YOU FORGOT TO ADD 8 IN THE FACTORY!!\n");
    startCapture();
    delete transaction;
    EXPECT_EQ(stopCapture(), "");
}

}  // namespace
