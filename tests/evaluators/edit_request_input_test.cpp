// Tests of the input side of TOVEditController: its flavours, the request
// document with its parsers and their messages, the post-processing of the
// packets and the lazily calculated values, family detection, and a few whole
// attempts through the entry points.
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "test_support.h"
#include "tov/TOVActionController.h"
#include "tov/TOVEditController.h"
#include "tov/TOVFunctionality.h"
#include "tov/TOVJsonComposer.h"
#include "tov/TOVResponse.h"
#include "tov/TOVTransactionController.h"
#include "tov/entry_points.h"
#include "tov/vocabulary.h"

namespace {

using StringMap = std::map<std::string, std::string>;
using Strings = std::vector<std::string>;
using Packets = std::vector<AttributesMap>;

const char* const kLabel = "All_transition_values";
const char* const kFilepathLabel = "Input_is_filepath";
const char* const kFundamental = "Json has fundamental parsing error";

// Opens the protected steps so that a test can run them one by one and read
// what they leave in the controller.
class ExposedEditController : public TOVEditController {
public:
    using TOVEditController::editsPropertiesUsedForObjectFamilyDetection;
    using TOVEditController::evaluateRequest;
    using TOVEditController::isInputDataSufficient;
    using TOVEditController::parseInputData;
    using TOVEditController::TOVEditController;
};

// A data model in which "Number" decides the family of a Part, "Revision"
// versions it and "Status" is a secondary attribute.
const char* const kDataModel = R"({
  "OverwriteLabel": "Overwrite",
  "structureObjects": [
    { "name": "Part", "dmObjectType": "DMITEM", "attributes": [
        { "name": "Number", "type": "REGULAR", "primary": true },
        { "name": "Revision", "type": "VERSIONING", "primary": true },
        { "name": "Status", "type": "REGULAR", "primary": false } ] }
  ]
})";

class EditRequestInputTest : public ::testing::Test {
protected:
    // Runs the sufficiency check and the parse the way evaluateAndRespond
    // does, and keeps the controller to be read.
    bool parse(const std::string& request, bool updatingReprFile = false) {
        return parseLabeled(StringMap{{kLabel, request}}, updatingReprFile);
    }

    bool parseLabeled(const StringMap& labeledInput, bool updatingReprFile = false) {
        controller = std::make_unique<ExposedEditController>(labeledInput, core.get(),
                                                             updatingReprFile, false);
        response = TOVResponse();
        if (!controller->isInputDataSufficient()) {
            return false;
        }
        response.setGeneralResult(true);
        return controller->parseInputData(response);
    }

    // The whole answer of an edit attempt on `request`.
    TOVResponse respond(const std::string& request) {
        ExposedEditController edit(StringMap{{kLabel, request}}, core.get(), false, false);
        return edit.evaluateAndRespond();
    }

    // A parse that must fail: the response holds the comment and nothing else.
    void expectParseFailure(const std::string& request, const std::string& comment) {
        EXPECT_FALSE(parse(request)) << request;
        EXPECT_FALSE(response.getGeneralResult());
        EXPECT_EQ(response.getStringStringMapOfResponse(), (StringMap{{"ResultComment", comment}}))
            << request;
    }

    tovtest::PrivateCore core;
    std::unique_ptr<ExposedEditController> controller;
    TOVResponse response;
};

// --- Construction, labels and flavours -------------------------------------

TEST_F(EditRequestInputTest, LabelsAreTheTransitionDataAndTheFilepathLabels) {
    EXPECT_EQ(TOVEditController::getInputDataLabelIdentifierForTransitionData(),
              "All_transition_values");
    EXPECT_EQ(TOVEditController::getInputDataLabelIdentifierForJsonFilepath(), "Input_is_filepath");
}

TEST_F(EditRequestInputTest, ANewControllerHoldsTheBoolsAndEmptyFields) {
    const TOVEditController edit(StringMap{}, core.get(), true, false);
    EXPECT_EQ(edit.getFunctionality(), TOVFunctionality_EditAttempt);
    EXPECT_TRUE(edit.amUpdatingReprFile());
    EXPECT_FALSE(edit.shouldIgnoreConflictResolutionErrors());
    EXPECT_EQ(edit.getObjectType(), "");
    EXPECT_TRUE(edit.getFromValues().empty());
    EXPECT_TRUE(edit.getToValues().empty());
    EXPECT_TRUE(edit.getHistoryLinks().empty());
    EXPECT_FALSE(edit.haveHistoryLinksDataBeenProvided());
    EXPECT_TRUE(edit.getManualLinkAncestors().empty());
    EXPECT_FALSE(edit.haveManualLinkAncestorsDataBeenProvided());
    EXPECT_FALSE(edit.haveAttributesToEditBeenCalculated());
    EXPECT_FALSE(edit.haveAllAttributeNamesBeenCalculated());
    EXPECT_FALSE(edit.hasEditsPropertiesForFamilyDetectionBeenCalculated());
    EXPECT_FALSE(edit.getEditsPropertiesUsedForFamilyDetection());
}

struct Flavour {
    TOVFunctionality functionality;
    bool updatingReprFile;
    bool ignoreConflictResolutionErrors;
};

TEST_F(EditRequestInputTest, TheFactoryBuildsFourFlavoursThatAllReportFunctionalityThree) {
    const std::vector<Flavour> flavours = {
        {TOVFunctionality_EditAttemptBeforeConflictResolution, false, true},
        {TOVFunctionality_EditAttempt, false, false},
        {TOVFunctionality_SaveReprFileAttemptBeforeConflictResolution, true, true},
        {TOVFunctionality_SaveReprFileAttempt, true, false},
    };
    for (const Flavour& flavour : flavours) {
        std::unique_ptr<TOVActionController> built(
            createProperController(flavour.functionality, StringMap{}, core.get()));
        const auto* edit = dynamic_cast<const TOVEditController*>(built.get());
        ASSERT_NE(edit, nullptr) << flavour.functionality;
        EXPECT_EQ(edit->getFunctionality(), TOVFunctionality_EditAttempt);
        EXPECT_EQ(edit->amUpdatingReprFile(), flavour.updatingReprFile);
        EXPECT_EQ(edit->shouldIgnoreConflictResolutionErrors(),
                  flavour.ignoreConflictResolutionErrors);
    }
}

TEST_F(EditRequestInputTest, CopyingCopiesEveryField) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{"A":"1","B":"2"},
        "targetAttributes":{"A":"3","B":"2"},"membersOfFamily":{"S1":{"attributes":{"A":"x"}}}})",
                      true));
    controller->getAllAttributeNames();
    const ExposedEditController copy(*controller);
    EXPECT_EQ(copy.getObjectType(), "Part");
    EXPECT_EQ(copy.getFromValues(), controller->getFromValues());
    EXPECT_EQ(copy.getToValues(), controller->getToValues());
    EXPECT_EQ(copy.getHistoryLinks(), controller->getHistoryLinks());
    EXPECT_TRUE(copy.haveHistoryLinksDataBeenProvided());
    EXPECT_FALSE(copy.haveManualLinkAncestorsDataBeenProvided());
    EXPECT_TRUE(copy.amUpdatingReprFile());
    EXPECT_TRUE(copy.haveAttributesToEditBeenCalculated());
    EXPECT_TRUE(copy.haveAllAttributeNamesBeenCalculated());
    ExposedEditController copyToFill = copy;
    EXPECT_EQ(copyToFill.getAttributesToEdit(), Strings{"A"});
    EXPECT_EQ(copyToFill.getAllAttributeNames(), (Strings{"A", "B"}));
}

// --- Sufficiency ------------------------------------------------------------

TEST_F(EditRequestInputTest, InputIsSufficientOnlyWithANonEmptyStringUnderTheLabel) {
    EXPECT_FALSE(
        ExposedEditController(StringMap{}, core.get(), false, false).isInputDataSufficient());
    EXPECT_FALSE(ExposedEditController(StringMap{{kLabel, ""}}, core.get(), false, false)
                     .isInputDataSufficient());
    EXPECT_FALSE(
        ExposedEditController(StringMap{{"all_transition_values", "{}"}}, core.get(), false, false)
            .isInputDataSufficient());
    // The text is neither parsed nor opened here.
    EXPECT_TRUE(ExposedEditController(StringMap{{kLabel, "not json"}}, core.get(), false, false)
                    .isInputDataSufficient());
}

TEST_F(EditRequestInputTest, InsufficientInputIsAnsweredBeforeAnyParse) {
    ExposedEditController edit(StringMap{{kLabel, ""}}, core.get(), false, false);
    EXPECT_EQ(tovtest::asText(edit.evaluateAndRespond()),
              R"({"Result":"Failure","ResultComment":"Insufficient input data"})");
}

// --- Failure messages --------------------------------------------------------

TEST_F(EditRequestInputTest, TextThatIsNoJsonIsAFundamentalError) {
    expectParseFailure("{\"objectType\":", kFundamental);
    expectParseFailure("not json at all", kFundamental);
    expectParseFailure(R"({"objectType":"Part"} trailing)", kFundamental);
}

TEST_F(EditRequestInputTest, ARootThatIsNoObjectIsAFundamentalError) {
    expectParseFailure(R"([{"objectType":"Part"}])", kFundamental);
    expectParseFailure(R"("objectType")", kFundamental);
    expectParseFailure("42", kFundamental);
}

TEST_F(EditRequestInputTest, AFileThatCannotBeReadIsAFundamentalError) {
    EXPECT_FALSE(parseLabeled(
        StringMap{{kLabel, "/nonexistent/tov/request.json"}, {kFilepathLabel, "true"}}));
    EXPECT_EQ(response.getStringStringMapOfResponse(),
              (StringMap{{"ResultComment", kFundamental}}));
    EXPECT_FALSE(response.getGeneralResult());
}

TEST_F(EditRequestInputTest, AMissingObjectTypeDemandsItsKeyword) {
    expectParseFailure(R"({"initialAttributes":{},"targetAttributes":{}})",
                       "Object Type demands ALL keywords: [objectType]");
}

TEST_F(EditRequestInputTest, AnObjectTypeThatIsNoStringCountsAsMissing) {
    const char* const demand = "Object Type demands ALL keywords: [objectType]";
    expectParseFailure(R"({"objectType":7,"initialAttributes":{},"targetAttributes":{}})", demand);
    expectParseFailure(R"({"objectType":null,"initialAttributes":{},"targetAttributes":{}})",
                       demand);
    expectParseFailure(R"({"objectType":["Part"],"initialAttributes":{},"targetAttributes":{}})",
                       demand);
}

TEST_F(EditRequestInputTest, MissingInitialAttributesDemandTheirKeyword) {
    expectParseFailure(R"({"objectType":"Part","targetAttributes":{}})",
                       "Initial Attributes demands ALL keywords: [initialAttributes]");
    expectParseFailure(R"({"objectType":"Part","initialAttributes":[],"targetAttributes":{}})",
                       "Initial Attributes demands ALL keywords: [initialAttributes]");
}

TEST_F(EditRequestInputTest, MissingTargetAttributesFailWithAnEmptyComment) {
    expectParseFailure(R"({"objectType":"Part","initialAttributes":{"A":"1"}})", "");
    expectParseFailure(R"({"objectType":"Part","initialAttributes":{},"targetAttributes":"A"})",
                       "");
    EXPECT_EQ(tovtest::asText(respond(R"({"objectType":"Part","initialAttributes":{}})")),
              R"({"Result":"Failure","ResultComment":""})");
}

TEST_F(EditRequestInputTest, AValueThatIsNoStringInInitialAttributesNamesTheSection) {
    expectParseFailure(
        R"({"objectType":"Part","initialAttributes":{"A":"1","B":2},"targetAttributes":{}})",
        "Initial Attributes: parsing error on keys - values of initialAttributes.");
    // The pairs read before the fault are dropped with the map.
    EXPECT_TRUE(controller->getFromValues().empty());
}

TEST_F(EditRequestInputTest, AValueThatIsNoStringInTargetAttributesNamesTheSection) {
    expectParseFailure(
        R"({"objectType":"Part","initialAttributes":{},"targetAttributes":{"A":"1","B":true}})",
        "Target Attributes: parsing error on keys - values of targetAttributes.");
    EXPECT_TRUE(controller->getToValues().empty());
}

TEST_F(EditRequestInputTest, AFamilyMemberThatIsNoObjectIsNoMap) {
    expectParseFailure(R"({"objectType":"Part","initialAttributes":{},"targetAttributes":{},
                           "membersOfFamily":{"S1":"Released"}})",
                       "Members of familyMember with server id\"S1\":Data should be a map");
}

TEST_F(EditRequestInputTest, AFamilyMemberWithAnotherKeyThanAttributesIsAnError) {
    expectParseFailure(R"({"objectType":"Part","initialAttributes":{},"targetAttributes":{},
                           "membersOfFamily":{"S1":{"attributes":{},"extra":{}}}})",
                       "Members of familyMember with server id\"S1\":Unknown keyword \"extra\"");
    // The keyword is matched whole and with its case.
    expectParseFailure(R"({"objectType":"Part","initialAttributes":{},"targetAttributes":{},
                           "membersOfFamily":{"S1":{"Attributes":{}}}})",
                       "Members of familyMember with server id\"S1\":Unknown keyword "
                       "\"Attributes\"");
}

TEST_F(EditRequestInputTest, FamilyMemberAttributesThatAreNoObjectAreNoMap) {
    expectParseFailure(R"({"objectType":"Part","initialAttributes":{},"targetAttributes":{},
                           "membersOfFamily":{"S1":{"attributes":["Status"]}}})",
                       "Members of familyMember with server id\"S1\":Attributes should be a map.");
}

TEST_F(EditRequestInputTest, AFamilyMemberValueThatIsNoStringNamesAttributesAndTheServerId) {
    expectParseFailure(R"({"objectType":"Part","initialAttributes":{},"targetAttributes":{},
                           "membersOfFamily":{"S1":{"attributes":{"Status":1}}}})",
                       "Members of family: parsing error on keys - values of attributes of S1.");
}

TEST_F(EditRequestInputTest, ManualLinkAncestorFaultsCarryTheirOwnRuleName) {
    const std::string frame = R"({"objectType":"Part","initialAttributes":{},
                                  "targetAttributes":{},"manualLinkAncestors":)";
    expectParseFailure(frame + R"({"A1":3}})",
                       "Manual Link AncestorsMember with server id\"A1\":Data should be a map");
    expectParseFailure(frame + R"({"A1":{"name":"x"}}})",
                       "Manual Link AncestorsMember with server id\"A1\":Unknown keyword \"name\"");
    expectParseFailure(frame + R"({"A1":{"attributes":"x"}}})",
                       "Manual Link AncestorsMember with server id\"A1\":Attributes should be a "
                       "map.");
    expectParseFailure(frame + R"({"A1":{"attributes":{"Status":null}}}})",
                       "Manual Link Ancestors: parsing error on keys - values of attributes of "
                       "A1.");
}

TEST_F(EditRequestInputTest, AMemberFaultComesBeforeTheObjectTypeFault) {
    expectParseFailure(R"({"initialAttributes":{},"targetAttributes":{},
                           "membersOfFamily":{"S1":[]}})",
                       "Members of familyMember with server id\"S1\":Data should be a map|"
                       "Object Type demands ALL keywords: [objectType]");
}

TEST_F(EditRequestInputTest, EverySectionReportsItsFaultInSectionOrder) {
    expectParseFailure(R"({"targetAttributes":{"A":1},"initialAttributes":5,
                           "manualLinkAncestors":{"A1":{"x":{}}},
                           "membersOfFamily":{"S1":{"attributes":{"B":false}}}})",
                       "Members of family: parsing error on keys - values of attributes of S1.|"
                       "Manual Link AncestorsMember with server id\"A1\":Unknown keyword \"x\"|"
                       "Object Type demands ALL keywords: [objectType]|"
                       "Initial Attributes demands ALL keywords: [initialAttributes]|"
                       "Target Attributes: parsing error on keys - values of targetAttributes.");
}

TEST_F(EditRequestInputTest, ASectionGivesUpAtItsFirstFault) {
    expectParseFailure(R"({"objectType":"Part","initialAttributes":{},"targetAttributes":{},
                           "membersOfFamily":{"S1":{"attributes":{"A":"1"}},"S2":1,"S3":2}})",
                       "Members of familyMember with server id\"S2\":Data should be a map");
}

TEST_F(EditRequestInputTest, AFailedParseEndsTheAttemptBeforeAnyCheck) {
    // No rules are loaded, yet the answer is the parse fault, not the store's.
    EXPECT_EQ(tovtest::asText(respond(R"({"initialAttributes":{},"targetAttributes":{}})")),
              R"({"Result":"Failure","ResultComment":"Object Type demands ALL keywords: )"
              R"([objectType]"})");
}

// --- Post-processing ---------------------------------------------------------

TEST_F(EditRequestInputTest, AnEditKeepsOnlyTheChangingAttributesAndSaysNoUpload) {
    ASSERT_TRUE(parse(R"({"objectType":"Part",
        "initialAttributes":{"Number":"100","Status":"In Work","Owner":"ann"},
        "targetAttributes":{"Number":"100","Status":"In Review","Owner":"bob"}})"));
    EXPECT_TRUE(response.getGeneralResult());
    EXPECT_EQ(controller->getObjectType(), "Part");
    EXPECT_EQ(controller->getFromValues(),
              (AttributesMap{{"Number", "100"}, {"Owner", "ann"}, {"Status", "In Work"}}));
    EXPECT_EQ(
        controller->getToValues(),
        (AttributesMap{{"Owner", "bob"}, {"Status", "In Review"}, {"_file_upload_", "false"}}));
    EXPECT_TRUE(controller->haveAttributesToEditBeenCalculated());
    EXPECT_EQ(controller->getAttributesToEdit(), (Strings{"Owner", "Status"}));
    EXPECT_FALSE(controller->haveHistoryLinksDataBeenProvided());
    EXPECT_FALSE(controller->haveManualLinkAncestorsDataBeenProvided());
}

TEST_F(EditRequestInputTest, ASaveSaysUploadWhateverTheHostSent) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{"Status":"In Work"},
        "targetAttributes":{"Status":"In Review","_file_upload_":"false"}})",
                      true));
    EXPECT_EQ(controller->getToValues(),
              (AttributesMap{{"Status", "In Review"}, {"_file_upload_", "true"}}));
}

TEST_F(EditRequestInputTest, AnEditSaysNoUploadWhateverTheHostSent) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{},
        "targetAttributes":{"Status":"In Work","_file_upload_":"YES"}})"));
    EXPECT_EQ(controller->getToValues(),
              (AttributesMap{{"Status", "In Work"}, {"_file_upload_", "false"}}));
}

TEST_F(EditRequestInputTest, TheUploadWordIsAnEditOnlyWhenBothRawPacketsHoldItDifferently) {
    ASSERT_TRUE(parse(R"({"objectType":"Part",
        "initialAttributes":{"Status":"In Work","_file_upload_":"true"},
        "targetAttributes":{"Status":"In Work","_file_upload_":"false"}})",
                      true));
    EXPECT_EQ(controller->getAttributesToEdit(), Strings{"_file_upload_"});
    EXPECT_EQ(controller->getToValues(), (AttributesMap{{"_file_upload_", "true"}}));

    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{"Status":"In Work"},
        "targetAttributes":{"Status":"In Review","_file_upload_":"true"}})"));
    EXPECT_EQ(controller->getAttributesToEdit(), Strings{"Status"});
}

TEST_F(EditRequestInputTest, EmptyInitialAttributesKeepTheWholeTarget) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{},
        "targetAttributes":{"Number":"100","Status":"In Work"}})"));
    EXPECT_TRUE(controller->getAttributesToEdit().empty());
    EXPECT_EQ(
        controller->getToValues(),
        (AttributesMap{{"Number", "100"}, {"Status", "In Work"}, {"_file_upload_", "false"}}));
    EXPECT_FALSE(controller->haveAllAttributeNamesBeenCalculated());
    EXPECT_EQ(controller->getAllAttributeNames(), (Strings{"Number", "Status", "_file_upload_"}));
    EXPECT_TRUE(controller->haveAllAttributeNamesBeenCalculated());
}

TEST_F(EditRequestInputTest, EmptyTargetAttributesLeaveOnlyTheUploadWord) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{"Number":"100",
        "Status":"In Work"},"targetAttributes":{}})"));
    EXPECT_TRUE(controller->getAttributesToEdit().empty());
    EXPECT_EQ(controller->getToValues(), (AttributesMap{{"_file_upload_", "false"}}));
    EXPECT_EQ(controller->getAllAttributeNames(), (Strings{"Number", "Status"}));
}

TEST_F(EditRequestInputTest, ATargetAttributeMissingFromTheInitialPacketIsNoEdit) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{"Status":"In Work"},
        "targetAttributes":{"Status":"In Review","Owner":"bob"}})"));
    EXPECT_EQ(controller->getAttributesToEdit(), Strings{"Status"});
    EXPECT_EQ(controller->getToValues(),
              (AttributesMap{{"Status", "In Review"}, {"_file_upload_", "false"}}));
    EXPECT_EQ(controller->getAllAttributeNames(), Strings{"Status"});
}

TEST_F(EditRequestInputTest, AChangeOfCaseAloneIsNoEdit) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{"Status":"RELEASED",
        "Owner":"ann"},"targetAttributes":{"Status":"released","Owner":"bob"}})"));
    EXPECT_EQ(controller->getAttributesToEdit(), Strings{"Owner"});
    EXPECT_EQ(controller->getToValues(),
              (AttributesMap{{"Owner", "bob"}, {"_file_upload_", "false"}}));
}

TEST_F(EditRequestInputTest, TheWildcardIsAnOrdinaryValueWhenEditsAreFound) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{"Status":"In Work"},
        "targetAttributes":{"Status":"<any>"}})"));
    EXPECT_EQ(controller->getAttributesToEdit(), Strings{"Status"});
}

TEST_F(EditRequestInputTest, ARepeatedAttributeKeepsItsLastValue) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{"Status":"A","Status":"B"},
        "targetAttributes":{"Status":"B"}})"));
    EXPECT_EQ(controller->getFromValues(), (AttributesMap{{"Status", "B"}}));
    EXPECT_TRUE(controller->getAttributesToEdit().empty());
}

TEST_F(EditRequestInputTest, OfComposedKeysThatCollapseAlikeTheOneLastInByteOrderWins) {
    std::string request;
    ASSERT_EQ(
        composeSimpleTransitionJson("Part", {{"Status", "In Review"}},
                                    {{"Status", "Released"}, {" Status", "In Work"}}, request),
        1);
    ASSERT_TRUE(parse(request));
    EXPECT_EQ(controller->getToValues(),
              (AttributesMap{{"Status", "Released"}, {"_file_upload_", "false"}}));
}

TEST_F(EditRequestInputTest, ValuesOfAttributesAreReadByName) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{"Status":"In Work"},
        "targetAttributes":{"Status":"In Review"}})"));
    std::string value = "untouched";
    EXPECT_TRUE(controller->getFromValueOfAttribute(std::string("Status"), value));
    EXPECT_EQ(value, "In Work");
    EXPECT_TRUE(controller->getToValueOfAttribute("Status", value));
    EXPECT_EQ(value, "In Review");
    EXPECT_TRUE(controller->getToValueOfAttribute("_file_upload_", value));
    EXPECT_EQ(value, "false");

    value = "untouched";
    EXPECT_FALSE(controller->getFromValueOfAttribute("status", value));
    EXPECT_FALSE(controller->getToValueOfAttribute(std::string("Owner"), value));
    EXPECT_FALSE(controller->getFromValueOfAttribute(static_cast<const char*>(nullptr), value));
    EXPECT_FALSE(controller->getToValueOfAttribute(static_cast<const char*>(nullptr), value));
    EXPECT_EQ(value, "untouched");
}

TEST_F(EditRequestInputTest, TheSettersReplaceTheFields) {
    TOVEditController edit(StringMap{}, core.get(), false, false);
    edit.setObjectType("Assembly");
    edit.setFromValues({{"A", "1"}});
    edit.setToValues({{"A", "2"}});
    edit.setHistoryLinks({{{"ServerId", "S1"}}});
    edit.setManualLinkAncestors({{{"ServerId", "A1"}}, {{"ServerId", "A2"}}});
    edit.setHistoryLinksDataHaveBeenProvided(true);
    edit.setManualLinkAncestorsDataHaveBeenProvided(true);
    EXPECT_EQ(edit.getObjectType(), "Assembly");
    EXPECT_EQ(edit.getFromValues(), (AttributesMap{{"A", "1"}}));
    EXPECT_EQ(edit.getToValues(), (AttributesMap{{"A", "2"}}));
    EXPECT_EQ(edit.getHistoryLinks().size(), 1u);
    EXPECT_EQ(edit.getManualLinkAncestors().size(), 2u);
    EXPECT_TRUE(edit.haveHistoryLinksDataBeenProvided());
    EXPECT_TRUE(edit.haveManualLinkAncestorsDataBeenProvided());
    EXPECT_EQ(edit.getAttributesToEdit(), Strings{"A"});
    EXPECT_TRUE(edit.haveAttributesToEditBeenCalculated());
}

TEST_F(EditRequestInputTest, ACalculatedValueIsNotCalculatedAgain) {
    TOVEditController edit(StringMap{}, core.get(), false, false);
    edit.setFromValues({{"A", "1"}});
    edit.setToValues({{"A", "2"}});
    edit.setAttributesToEditCalculated(true);
    edit.setAllAttributeNamesBeenCalculated(true);
    EXPECT_TRUE(edit.getAttributesToEdit().empty());
    EXPECT_TRUE(edit.getAllAttributeNames().empty());
}

// --- Linked objects ----------------------------------------------------------

TEST_F(EditRequestInputTest, LeftOutLinkSectionsAreNotProvided) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{},"targetAttributes":{}})"));
    EXPECT_FALSE(controller->haveHistoryLinksDataBeenProvided());
    EXPECT_FALSE(controller->haveManualLinkAncestorsDataBeenProvided());
}

TEST_F(EditRequestInputTest, ANumberUnderMembersOfFamilyCountsAsLeftOut) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{},"targetAttributes":{},
                          "membersOfFamily":5,"manualLinkAncestors":["A1"]})"));
    EXPECT_TRUE(response.getGeneralResult());
    EXPECT_FALSE(controller->haveHistoryLinksDataBeenProvided());
    EXPECT_FALSE(controller->haveManualLinkAncestorsDataBeenProvided());
    EXPECT_TRUE(controller->getHistoryLinks().empty());
}

TEST_F(EditRequestInputTest, AnEmptyObjectUnderMembersOfFamilyIsProvidedAndEmpty) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{},"targetAttributes":{},
                          "membersOfFamily":{},"manualLinkAncestors":{}})"));
    EXPECT_TRUE(controller->haveHistoryLinksDataBeenProvided());
    EXPECT_TRUE(controller->getHistoryLinks().empty());
    EXPECT_TRUE(controller->haveManualLinkAncestorsDataBeenProvided());
    EXPECT_TRUE(controller->getManualLinkAncestors().empty());
}

TEST_F(EditRequestInputTest, AMemberGivesItsAttributesAndItsServerId) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{},"targetAttributes":{},
        "membersOfFamily":{"S1":{"attributes":{"Status":"Released"}},
                           "S0":{"attributes":{"Status":"Obsolete","Owner":"ann"}}},
        "manualLinkAncestors":{"A1":{"attributes":{"Status":"In Work"}}}})"));
    // Document order, not key order.
    EXPECT_EQ(controller->getHistoryLinks(),
              (Packets{{{"ServerId", "S1"}, {"Status", "Released"}},
                       {{"Owner", "ann"}, {"ServerId", "S0"}, {"Status", "Obsolete"}}}));
    EXPECT_EQ(controller->getManualLinkAncestors(),
              (Packets{{{"ServerId", "A1"}, {"Status", "In Work"}}}));
    EXPECT_TRUE(controller->haveHistoryLinksDataBeenProvided());
    EXPECT_TRUE(controller->haveManualLinkAncestorsDataBeenProvided());
}

TEST_F(EditRequestInputTest, TheServerIdOverwritesAnAttributeOfThatName) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{},"targetAttributes":{},
        "membersOfFamily":{"S1":{"attributes":{"ServerId":"forged","Status":"Released"}}}})"));
    EXPECT_EQ(controller->getHistoryLinks(),
              (Packets{{{"ServerId", "S1"}, {"Status", "Released"}}}));
}

TEST_F(EditRequestInputTest, AMemberWithoutKeysGivesNoEntry) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{},"targetAttributes":{},
        "membersOfFamily":{"S1":{},"S2":{"attributes":{}}}})"));
    EXPECT_TRUE(controller->haveHistoryLinksDataBeenProvided());
    EXPECT_EQ(controller->getHistoryLinks(), (Packets{{{"ServerId", "S2"}}}));
}

TEST_F(EditRequestInputTest, AttributesTwiceInOneMemberGiveTwoEntries) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{},"targetAttributes":{},
        "membersOfFamily":{"S1":{"attributes":{"Status":"A"},"attributes":{"Status":"B"}}}})"));
    EXPECT_EQ(controller->getHistoryLinks(), (Packets{{{"ServerId", "S1"}, {"Status", "A"}},
                                                      {{"ServerId", "S1"}, {"Status", "B"}}}));
}

TEST_F(EditRequestInputTest, AnExtraTopLevelKeyIsIgnoredWhileOneInAMemberIsAnError) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{},"targetAttributes":{},
                          "comment":{"anything":[1,2,3]},"objecttype":7})"));
    EXPECT_EQ(controller->getObjectType(), "Part");
    expectParseFailure(R"({"objectType":"Part","initialAttributes":{},"targetAttributes":{},
                           "membersOfFamily":{"S1":{"attributes":{},"comment":"x"}}})",
                       "Members of familyMember with server id\"S1\":Unknown keyword "
                       "\"comment\"");
}

// --- Object type and file input ---------------------------------------------

TEST_F(EditRequestInputTest, AnyObjectTypeEvenAnEmptyOnePassesTheParse) {
    ASSERT_TRUE(parse(R"({"objectType":"","initialAttributes":{},"targetAttributes":{}})"));
    EXPECT_EQ(controller->getObjectType(), "");
    ASSERT_TRUE(parse(R"({"objectType":"Gizmo","initialAttributes":{},"targetAttributes":{}})"));
    EXPECT_EQ(controller->getObjectType(), "Gizmo");
}

TEST_F(EditRequestInputTest, WithTheFilepathLabelTheStringIsAPathWhateverTheLabelSays) {
    const std::string request =
        R"({"objectType":"Part","initialAttributes":{"A":"1"},"targetAttributes":{"A":"2"}})";
    const tovtest::TempFile file(request);

    ASSERT_TRUE(parseLabeled(StringMap{{kLabel, file.path}, {kFilepathLabel, "false"}}));
    EXPECT_EQ(controller->getObjectType(), "Part");
    EXPECT_EQ(controller->getToValues(), (AttributesMap{{"A", "2"}, {"_file_upload_", "false"}}));

    ASSERT_TRUE(parseLabeled(StringMap{{kLabel, file.path}, {kFilepathLabel, ""}}));
    EXPECT_EQ(controller->getObjectType(), "Part");

    // The JSON text itself under the label is then taken as a path, and fails.
    EXPECT_FALSE(parseLabeled(StringMap{{kLabel, request}, {kFilepathLabel, "false"}}));
    EXPECT_EQ(response.getGeneralResultComment(), kFundamental);
}

TEST_F(EditRequestInputTest, AFileWithAByteOrderMarkIsAFundamentalError) {
    const tovtest::TempFile file(
        "\xEF\xBB\xBF{\"objectType\":\"Part\",\"initialAttributes\":{},\"targetAttributes\":{}}");
    EXPECT_FALSE(parseLabeled(StringMap{{kLabel, file.path}, {kFilepathLabel, "true"}}));
    EXPECT_EQ(response.getGeneralResultComment(), kFundamental);
}

// --- Family detection --------------------------------------------------------

class EditFamilyDetectionTest : public EditRequestInputTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(InitializeTOV_DMInfo(kDataModel, core.get()).getGeneralResult());
    }
};

TEST_F(EditFamilyDetectionTest, EditingAFamilyPropertyIsDetectedOnce) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{"Number":"1","Status":"A"},
        "targetAttributes":{"Number":"2","Status":"A"}})"));
    EXPECT_FALSE(controller->hasEditsPropertiesForFamilyDetectionBeenCalculated());
    EXPECT_TRUE(controller->editsPropertiesUsedForObjectFamilyDetection());
    EXPECT_TRUE(controller->hasEditsPropertiesForFamilyDetectionBeenCalculated());
    EXPECT_TRUE(controller->getEditsPropertiesUsedForFamilyDetection());

    // The stored answer stands from now on.
    controller->setEditsPropertiesUsedForFamilyDetection(false);
    EXPECT_FALSE(controller->editsPropertiesUsedForObjectFamilyDetection());
}

TEST_F(EditFamilyDetectionTest, EditingOtherAttributesIsNoFamilyEdit) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{"Number":"1","Status":"A"},
        "targetAttributes":{"Number":"1","Status":"B"}})"));
    EXPECT_FALSE(controller->editsPropertiesUsedForObjectFamilyDetection());
    EXPECT_TRUE(controller->hasEditsPropertiesForFamilyDetectionBeenCalculated());
}

TEST_F(EditFamilyDetectionTest, AVersioningPrimaryDoesNotDecideTheFamily) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{"Revision":"A"},
        "targetAttributes":{"Revision":"B"}})"));
    EXPECT_FALSE(controller->editsPropertiesUsedForObjectFamilyDetection());
}

TEST_F(EditFamilyDetectionTest, AnUnknownObjectTypeHasNoFamilyProperties) {
    ASSERT_TRUE(parse(R"({"objectType":"Gizmo","initialAttributes":{"Number":"1"},
        "targetAttributes":{"Number":"2"}})"));
    EXPECT_FALSE(controller->editsPropertiesUsedForObjectFamilyDetection());
    // Object types of the data model are looked up with their case.
    ASSERT_TRUE(parse(R"({"objectType":"part","initialAttributes":{"Number":"1"},
        "targetAttributes":{"Number":"2"}})"));
    EXPECT_FALSE(controller->editsPropertiesUsedForObjectFamilyDetection());
}

TEST_F(EditFamilyDetectionTest, PropertyNamesCompareByteForByte) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{"number":"1"},
        "targetAttributes":{"number":"2"}})"));
    EXPECT_FALSE(controller->editsPropertiesUsedForObjectFamilyDetection());
}

TEST_F(EditFamilyDetectionTest, ANewObjectEditsNothing) {
    ASSERT_TRUE(parse(R"({"objectType":"Part","initialAttributes":{},
        "targetAttributes":{"Number":"2"}})"));
    EXPECT_FALSE(controller->editsPropertiesUsedForObjectFamilyDetection());
}

// --- Whole attempts through the entry points ---------------------------------

const char* const kSmokeRules = R"({
  "transitions": { "Part": [
    { "attribute": "Status", "fromValue": "In Work", "toValue": ["In Work", "In Review"] } ] },
  "historyLinks": { "Part": [
    { "attribute": "Status", "fromValue": "In Review", "toValue": "Released",
      "acceptableHistoryLinkValues": ["Released", "Obsolete"] } ] },
  "conflictResolutions": { "Part": [
    { "attribute": "Status", "fromValue": "In Work", "toValue": "In Review", "updatesFile": "N_A",
      "conflictResolution": "spinup", "hasDifferentPrimaries": false } ] }
})";

class EditAttemptSmokeTest : public ::testing::Test {
protected:
    void load() {
        ASSERT_TRUE(InitializeTOVRules(kSmokeRules, core.get()).getGeneralResult());
        ASSERT_TRUE(InitializeTOV_DMInfo(kDataModel, core.get()).getGeneralResult());
    }

    tovtest::PrivateCore core;
};

const char* const kReviewRequest = R"({"objectType":"Part",
    "initialAttributes":{"Number":"100","Revision":"A","Status":"In Work"},
    "targetAttributes":{"Number":"100","Revision":"B","Status":"In Review"}})";

TEST_F(EditAttemptSmokeTest, WithoutRulesTheAttemptIsRefused) {
    EXPECT_EQ(tovtest::asText(EvaluateTOVEditAttempt(kReviewRequest, core.get())),
              R"({"Result":"Failure","ResultComment":"Uninitialized TOV rules"})");
}

TEST_F(EditAttemptSmokeTest, AnAllowedEditIsApproved) {
    load();
    EXPECT_EQ(tovtest::asText(EvaluateTOVEditAttempt(kReviewRequest, core.get())),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
}

TEST_F(EditAttemptSmokeTest, AnAllowedSaveIsApprovedAsASave) {
    load();
    EXPECT_EQ(tovtest::asText(EvaluateTOVSaveReprFileAttempt(kReviewRequest, core.get())),
              R"({"Result":"Success","ResultComment":"Save attempt approved"})");
    EXPECT_EQ(tovtest::asText(EvaluateTOVSaveReprFileAttemptBeforeConflictResolution(kReviewRequest,
                                                                                     core.get())),
              R"({"Result":"Success","ResultComment":"Save attempt approved"})");
}

TEST_F(EditAttemptSmokeTest, AForbiddenTransitionIsToldInWords) {
    load();
    const std::string request = R"({"objectType":"Part","initialAttributes":{"Status":"In Work"},
                                    "targetAttributes":{"Status":"Released"}})";
    EXPECT_EQ(tovtest::asText(EvaluateTOVEditAttempt(request, core.get())),
              R"({"Result":"Failure","ResultComment":"Transition violation detected: For Part: )"
              R"(Status can transition from \"In Work\" to \"In Work\", \"In Review\""})");
}

TEST_F(EditAttemptSmokeTest, ConflictResolutionCountsOnlyInThePlainAttempt) {
    load();
    // Leaving the revision alone is an overwrite, where the rule wants a spin-up.
    const std::string request = R"({"objectType":"Part",
        "initialAttributes":{"Revision":"A","Status":"In Work"},
        "targetAttributes":{"Revision":"A","Status":"In Review"}})";
    const TOVResponse refused = EvaluateTOVEditAttempt(request, core.get());
    EXPECT_FALSE(refused.getGeneralResult());
    EXPECT_EQ(refused.getStringStringMapOfResponse(),
              (StringMap{{"ResultComment",
                          "Conflict resolution violation detected: For Part: When Status "
                          "transitions from \"In Work\" to \"In Review\"  then we MUST spinup"}}));
    EXPECT_EQ(tovtest::asText(EvaluateTOVEditAttemptBeforeConflictResolution(request, core.get())),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
}

TEST_F(EditAttemptSmokeTest, MissingFamilyMembersAreAskedForAndThenJudged) {
    load();
    const std::string firstRequest = R"({"objectType":"Part",
        "initialAttributes":{"Status":"In Review"},"targetAttributes":{"Status":"Released"}})";
    const char* const rule =
        R"(For Part: When Status transitions from \"In Review\" to \"Released\" then entries )"
        R"(in the same object family can have Status equal to one of :[Obsolete,Released])";

    const TOVResponse asking = EvaluateTOVEditAttempt(firstRequest, core.get());
    EXPECT_EQ(tovtest::asText(asking),
              std::string(R"({"ObjectFamilyMembers":"MissingData","Result":"Failure",)") +
                  R"("ResultComment":"History Link violation detected.No entries provided to )" +
                  R"(check rule:)" + rule + R"("})");
    TOVMissingDataForEvaluation missing;
    EXPECT_TRUE(asking.needsReevaluation(missing));
    EXPECT_TRUE(missing.objectFamilyMembersMissing);
    EXPECT_FALSE(missing.manualLinkAncestorsMissing);

    const std::string withOffender = R"({"objectType":"Part",
        "initialAttributes":{"Status":"In Review"},"targetAttributes":{"Status":"Released"},
        "membersOfFamily":{"S6":{"attributes":{"Status":"Released"}},
                           "S7":{"attributes":{"Status":"In Work"}}}})";
    const TOVResponse refused = EvaluateTOVEditAttempt(withOffender, core.get());
    EXPECT_EQ(tovtest::asText(refused),
              std::string(R"({"Result":"Failure","ResultComment":"History Link violation )") +
                  R"(detected.Entry with server id \"S7\" violates rule:)" + rule + R"("})");
    TOVMissingDataForEvaluation none;
    EXPECT_FALSE(refused.needsReevaluation(none));

    const std::string withCleanFamily = R"({"objectType":"Part",
        "initialAttributes":{"Status":"In Review"},"targetAttributes":{"Status":"Released"},
        "membersOfFamily":{}})";
    EXPECT_EQ(tovtest::asText(EvaluateTOVEditAttempt(withCleanFamily, core.get())),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
}

TEST_F(EditAttemptSmokeTest, AnUnknownObjectTypeMeetsOnlyTheRulesForEveryType) {
    ASSERT_TRUE(InitializeTOVRules(R"({"transitions": {
        "Part": [ { "attribute": "Status", "fromValue": "In Work", "toValue": ["In Review"] } ],
        "ALL": [ { "attribute": "Status", "fromValue": "Draft", "toValue": ["Draft"] } ] }})",
                                   core.get())
                    .getGeneralResult());
    ASSERT_TRUE(InitializeTOV_DMInfo(kDataModel, core.get()).getGeneralResult());

    for (const char* objectType : {"", "Gizmo"}) {
        const std::string prefix = std::string(R"({"objectType":")") + objectType + "\",";
        EXPECT_EQ(tovtest::asText(
                      EvaluateTOVEditAttempt(prefix + R"("initialAttributes":{"Status":"In Work"},
                                  "targetAttributes":{"Status":"Released"}})",
                                             core.get())),
                  R"({"Result":"Success","ResultComment":"Edit attempt approved"})")
            << objectType;
        EXPECT_EQ(tovtest::asText(
                      EvaluateTOVEditAttempt(prefix + R"("initialAttributes":{"Status":"Draft"},
                                  "targetAttributes":{"Status":"Final"}})",
                                             core.get())),
                  R"({"Result":"Failure","ResultComment":"Transition violation detected: )"
                  R"(For <any>: Status can transition from \"Draft\" to \"Draft\""})")
            << objectType;
    }
}

TEST_F(EditAttemptSmokeTest, ARequestFileIsReadByTheFileEntryPoint) {
    load();
    const tovtest::TempFile file(kReviewRequest);
    EXPECT_EQ(tovtest::asText(EvaluateTOVEditAttemptFromFile(file.path, core.get())),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
}

}  // namespace
