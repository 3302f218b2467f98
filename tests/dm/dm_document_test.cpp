// Loading the data-model document through the request functions: every
// message of its three levels, the all-or-nothing load, the file form and the
// log of a successful load.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "test_support.h"
#include "tov/TOVCoreDataControllers.h"
#include "tov/TOVResponse.h"
#include "tov/TOV_DMAttribute.h"
#include "tov/TOV_DMInfoInitializerController.h"
#include "tov/TOV_DMStructure.h"
#include "tov/TOV_DMStructureObject.h"
#include "tov/entry_points.h"

namespace {

namespace fs = std::filesystem;

using Names = std::vector<std::string>;
using tovtest::asConsoleLines;
using tovtest::namesOf;

const char* const kSuccess =
    R"({"Result":"Success","ResultComment":"Succesfully initialized DM info"})";
const char* const kBothRootKeywords =
    "DM Structure Information demands ALL keywords: [structureObjects,OverwriteLabel]";

std::string failure(const std::string& comment) {
    return R"({"Result":"Failure","ResultComment":")" + comment + R"("})";
}

// A document with the given list and a label, so that only the list can fail.
std::string withObjects(const std::string& objects) {
    return R"({"structureObjects":[)" + objects + R"(],"OverwriteLabel":"Overwrite"})";
}

// A valid object with one primary attribute.
std::string validObject(const std::string& name) {
    return R"({"name":")" + name +
           R"(","dmObjectType":"DMITEM","attributes":[{"name":"Number","type":"REGULAR","primary":true}]})";
}

// An object named Part whose only attribute is `attribute`.
std::string partWithAttribute(const std::string& attribute) {
    return withObjects(R"({"name":"Part","dmObjectType":"DMITEM","attributes":[)" + attribute +
                       "]}");
}

const char* const kValidDocument = R"({
  "OverwriteLabel": "Overwrite",
  "structureObjects": [
    {"name": "Part", "dmObjectType": "DMITEM", "attributes": [
      {"name": "Number", "type": "REGULAR", "primary": true},
      {"name": "Version", "type": "VERSIONING", "primary": true},
      {"name": "Description", "type": "REGULAR", "primary": false},
      {"name": "Code", "type": "REGULAR", "primary": true}]},
    {"name": "Drawing", "dmObjectType": "RLI", "attributes": [
      {"name": "Content", "type": "FILE", "primary": true},
      {"name": "Note", "type": "FILE", "primary": false}]}
  ]
})";

class DMDocumentTest : public ::testing::Test {
protected:
    std::string load(const std::string& document) {
        return tovtest::asText(InitializeTOV_DMInfo(document, core.get()));
    }
    std::string loadFromFile(const std::string& path) {
        return tovtest::asText(InitializeTOV_DMInfoFromFile(path, core.get()));
    }
    // Loads the valid document and makes sure that it took.
    void loadValidDocument() {
        ASSERT_EQ(load(kValidDocument), kSuccess);
        ASSERT_TRUE(core.dmInfo()->existAnyInfo());
        ASSERT_EQ(core.dmInfo()->getOverwriteLabel(), "Overwrite");
    }
    void expectEmptyStructure() {
        EXPECT_FALSE(core.dmInfo()->existAnyInfo());
        EXPECT_TRUE(core.dmInfo()->getAllStructureObjects().empty());
        EXPECT_EQ(core.dmInfo()->getOverwriteLabel(), "");
    }

    tovtest::PrivateCore core;
};

// A scratch folder of its own, removed afterwards.
class DMDocumentFileTest : public DMDocumentTest {
protected:
    void SetUp() override { ASSERT_FALSE(folder.path().empty()); }
    std::string write(const std::string& name, const std::string& content) {
        const fs::path path = fs::path(folder.path()) / name;
        std::ofstream(path, std::ios::binary) << content;
        return path.string();
    }

    const tovtest::TempFolder folder;
};

// ---------------------------------------------------------------- success

TEST_F(DMDocumentTest, ValidDocumentLoadsSorted) {
    EXPECT_EQ(load(kValidDocument), kSuccess);
    const TOV_DMStructure& structure = *core.dmInfo();
    EXPECT_TRUE(structure.existAnyInfo());
    EXPECT_EQ(structure.getOverwriteLabel(), "Overwrite");
    ASSERT_EQ(namesOf(structure.getAllStructureObjects()), (Names{"Drawing", "Part"}));
    const TOV_DMStructureObject& drawing = structure.getAllStructureObjects()[0];
    EXPECT_EQ(drawing.getObjectCategory(), TOV_DMStructureObject::RLI);
    EXPECT_EQ(namesOf(drawing.getPrimaryAttributes()), (Names{"Content"}));
    EXPECT_EQ(namesOf(drawing.getSecondaryAttributes()), (Names{"Note"}));
    EXPECT_EQ(drawing.getPrimaryAttributes()[0].getTypeOfAttribute(), TOV_DMAttribute::FILE);
    const TOV_DMStructureObject& part = structure.getAllStructureObjects()[1];
    EXPECT_EQ(part.getObjectCategory(), TOV_DMStructureObject::DMITEM);
    EXPECT_EQ(namesOf(part.getPrimaryAttributes()), (Names{"Code", "Number", "Version"}));
    EXPECT_EQ(part.getPrimaryAttributes()[2].getTypeOfAttribute(), TOV_DMAttribute::VERSIONING);
    EXPECT_TRUE(part.getPrimaryAttributes()[2].isPrimary());
}

TEST_F(DMDocumentTest, AttributeWithPrimaryFalseLandsAmongTheSecondaries) {
    ASSERT_EQ(load(kValidDocument), kSuccess);
    const TOV_DMStructureObject* part = core.dmInfo()->getDMObjectTypeWithName("Part");
    ASSERT_NE(part, nullptr);
    EXPECT_EQ(namesOf(part->getSecondaryAttributes()), (Names{"Description"}));
    EXPECT_FALSE(part->getSecondaryAttributes()[0].isPrimary());
    EXPECT_TRUE(core.dmInfo()->isAttributeSecondary("Part", "Description"));
    EXPECT_FALSE(core.dmInfo()->isAttributeSecondary("Part", "Number"));
}

TEST_F(DMDocumentTest, LoadedInformationAnswersTheQuestionsOfTheEvaluators) {
    ASSERT_EQ(load(kValidDocument), kSuccess);
    const TOV_DMStructure& structure = *core.dmInfo();
    EXPECT_TRUE(structure.isThisAnRLIObjectType("Drawing"));
    EXPECT_FALSE(structure.isThisAnRLIObjectType("Part"));
    EXPECT_TRUE(structure.areObjectTypesThatShouldBeConsideredEqual("Library_Item", "Drawing"));
    Names family;
    EXPECT_TRUE(structure.collectAttrsForObjectFamilyDetection("Part", family));
    EXPECT_EQ(family, (Names{"Code", "Number"}));
    Names versioning;
    EXPECT_TRUE(structure.collectVersioningAttributesOfObject("Part", versioning));
    EXPECT_EQ(versioning, (Names{"Version"}));
}

TEST_F(DMDocumentTest, UnknownCategoryWordsLoadAsTheDefaults) {
    ASSERT_EQ(load(withObjects(R"({"name":"Drawing","dmObjectType":"rli","attributes":[)"
                               R"({"name":"Content","type":"file","primary":true},)"
                               R"({"name":"Other","type":"Unheard","primary":true}]})")),
              kSuccess);
    const TOV_DMStructureObject* drawing = core.dmInfo()->getDMObjectTypeWithName("Drawing");
    ASSERT_NE(drawing, nullptr);
    EXPECT_EQ(drawing->getObjectCategory(), TOV_DMStructureObject::DMITEM);
    ASSERT_EQ(namesOf(drawing->getPrimaryAttributes()), (Names{"Content", "Other"}));
    EXPECT_EQ(drawing->getPrimaryAttributes()[0].getTypeOfAttribute(), TOV_DMAttribute::REGULAR);
    EXPECT_EQ(drawing->getPrimaryAttributes()[1].getTypeOfAttribute(), TOV_DMAttribute::REGULAR);
}

TEST_F(DMDocumentTest, OtherMembersAreIgnoredAtEveryLevel) {
    ASSERT_EQ(load(R"({"comment":"x","structureObjects":[{"note":[1,2],"name":"Part","extra":null,)"
                   R"("dmObjectType":"DMITEM","attributes":[{"name":"Number","hint":{"a":1},)"
                   R"("type":"REGULAR","primary":true,"Primary":"yes"}],"Name":5}],)"
                   R"("overwriteLabel":3,"OverwriteLabel":"Overwrite"})"),
              kSuccess);
    ASSERT_EQ(namesOf(core.dmInfo()->getAllStructureObjects()), (Names{"Part"}));
    EXPECT_EQ(namesOf(core.dmInfo()->getAllStructureObjects()[0].getPrimaryAttributes()),
              (Names{"Number"}));
}

TEST_F(DMDocumentTest, EmptyOverwriteLabelIsAccepted) {
    EXPECT_EQ(load(R"({"structureObjects":[)" + validObject("Part") + R"(],"OverwriteLabel":""})"),
              kSuccess);
    EXPECT_TRUE(core.dmInfo()->existAnyInfo());
    EXPECT_EQ(core.dmInfo()->getOverwriteLabel(), "");
}

TEST_F(DMDocumentTest, EmptyObjectListSucceedsWithNoInformation) {
    EXPECT_EQ(load(R"({"structureObjects":[],"OverwriteLabel":"Overwrite"})"), kSuccess);
    EXPECT_FALSE(core.dmInfo()->existAnyInfo());
    EXPECT_EQ(core.dmInfo()->getOverwriteLabel(), "Overwrite");
}

TEST_F(DMDocumentTest, TwoObjectsWithOneNameBothLoadAndTheFirstInSortedOrderAnswers) {
    ASSERT_EQ(load(withObjects(R"({"name":"Part","dmObjectType":"RLI","attributes":[)"
                               R"({"name":"Content","type":"FILE","primary":true}]},)" +
                               validObject("Alpha") + "," +
                               R"({"name":"Part","dmObjectType":"DMITEM","attributes":[)"
                               R"({"name":"Number","type":"REGULAR","primary":true}]})")),
              kSuccess);
    const std::vector<TOV_DMStructureObject>& objects = core.dmInfo()->getAllStructureObjects();
    ASSERT_EQ(namesOf(objects), (Names{"Alpha", "Part", "Part"}));
    EXPECT_NE(objects[1].getObjectCategory(), objects[2].getObjectCategory());
    EXPECT_EQ(core.dmInfo()->getDMObjectTypeWithName("Part"), &objects[1]);
}

TEST_F(DMDocumentTest, NewLoadReplacesTheOldInformation) {
    loadValidDocument();
    ASSERT_EQ(load(R"({"structureObjects":[)" + validObject("Model") +
                   R"(],"OverwriteLabel":"Replace"})"),
              kSuccess);
    EXPECT_EQ(namesOf(core.dmInfo()->getAllStructureObjects()), (Names{"Model"}));
    EXPECT_EQ(core.dmInfo()->getOverwriteLabel(), "Replace");
}

TEST_F(DMDocumentTest, LargeDocumentLoads) {
    const int count = 10000;
    std::string objects;
    // In reverse, so that the load has to sort them.
    for (int index = count - 1; index >= 0; --index) {
        if (!objects.empty()) {
            objects += ",";
        }
        objects += R"({"name":"Type)" + std::to_string(100000 + index) + R"(","dmObjectType":")" +
                   (index % 2 == 0 ? "DMITEM" : "RLI") +
                   R"(","attributes":[{"name":"Number","type":"REGULAR","primary":true},)"
                   R"({"name":"Version","type":"VERSIONING","primary":false}]})";
    }
    ASSERT_EQ(load(withObjects(objects)), kSuccess);
    const std::vector<TOV_DMStructureObject>& loaded = core.dmInfo()->getAllStructureObjects();
    ASSERT_EQ(loaded.size(), static_cast<std::size_t>(count));
    EXPECT_EQ(loaded.front().getName(), "Type100000");
    EXPECT_EQ(loaded.back().getName(), "Type109999");
    EXPECT_FALSE(core.dmInfo()->isThisAnRLIObjectType("Type104242"));
    EXPECT_TRUE(core.dmInfo()->isThisAnRLIObjectType("Type104243"));
    EXPECT_TRUE(core.dmInfo()->isAttributeSecondary("Type109999", "Version"));
    EXPECT_EQ(core.dmInfo()->getDMObjectTypeWithName("Type110000"), nullptr);
}

// ---------------------------------------------------------------- the whole input

TEST_F(DMDocumentTest, EmptyInputIsInsufficient) {
    EXPECT_EQ(load(""), R"({"Result":"Failure","ResultComment":"Insufficient input data"})");
    expectEmptyStructure();
}

TEST_F(DMDocumentTest, EmptyInputAfterASuccessfulLoadEmptiesTheStructure) {
    loadValidDocument();
    EXPECT_EQ(load(""), failure("Insufficient input data"));
    expectEmptyStructure();
}

TEST_F(DMDocumentTest, UnusableJsonIsAFundamentalError) {
    const std::string fundamental = failure("Json has fundamental parsing error");
    EXPECT_EQ(load("not json"), fundamental);
    EXPECT_EQ(load("[]"), fundamental);
    EXPECT_EQ(load(R"("structureObjects")"), fundamental);
    EXPECT_EQ(load("42"), fundamental);
    EXPECT_EQ(load(R"({"structureObjects":[],"OverwriteLabel":""} {})"), fundamental);
    EXPECT_EQ(load(R"({"structureObjects":[],"OverwriteLabel":"",})"), fundamental);
    expectEmptyStructure();
}

// ---------------------------------------------------------------- root level

TEST_F(DMDocumentTest, MissingObjectListIsAMissingKeyword) {
    EXPECT_EQ(
        load(R"({"OverwriteLabel":"Overwrite"})"),
        R"({"Result":"Failure","ResultComment":"DM Structure Information demands ALL keywords: [structureObjects,OverwriteLabel]"})");
    expectEmptyStructure();
}

TEST_F(DMDocumentTest, MissingLabelIsAMissingKeywordAndUndoesTheObjects) {
    EXPECT_EQ(load(R"({"structureObjects":[)" + validObject("Part") + "]}"),
              failure(kBothRootKeywords));
    expectEmptyStructure();
}

TEST_F(DMDocumentTest, DocumentWithoutBothRootMembersReportsTheMessageTwice) {
    EXPECT_EQ(
        load("{}"),
        R"({"Result":"Failure","ResultComment":"DM Structure Information demands ALL keywords: [structureObjects,OverwriteLabel]|DM Structure Information demands ALL keywords: [structureObjects,OverwriteLabel]"})");
    EXPECT_EQ(load(R"({"structureobjects":[],"overwriteLabel":""})"),
              failure(std::string(kBothRootKeywords) + "|" + kBothRootKeywords));
    expectEmptyStructure();
}

TEST_F(DMDocumentTest, LabelOfAnotherTypeCountsAsMissing) {
    EXPECT_EQ(load(R"({"structureObjects":[],"OverwriteLabel":3})"), failure(kBothRootKeywords));
    EXPECT_EQ(load(R"({"structureObjects":[],"OverwriteLabel":null})"), failure(kBothRootKeywords));
    EXPECT_EQ(load(R"({"structureObjects":[],"OverwriteLabel":["Overwrite"]})"),
              failure(kBothRootKeywords));
}

TEST_F(DMDocumentTest, ObjectListOfAnotherTypeCountsAsMissing) {
    EXPECT_EQ(load(R"({"structureObjects":{"name":"Part"},"OverwriteLabel":""})"),
              failure(kBothRootKeywords));
    EXPECT_EQ(load(R"({"structureObjects":"Part","OverwriteLabel":""})"),
              failure(kBothRootKeywords));
}

TEST_F(DMDocumentTest, ErrorInTheListAndMissingLabelAreBothReported) {
    EXPECT_EQ(load(R"({"structureObjects":[5]})"),
              failure("Structure object in list for index=0 should be a map.|" +
                      std::string(kBothRootKeywords)));
    expectEmptyStructure();
}

// ---------------------------------------------------------------- structure objects

TEST_F(DMDocumentTest, ElementThatIsAStringShouldBeAMap) {
    EXPECT_EQ(load(withObjects(R"("Part")")),
              failure("Structure object in list for index=0 should be a map."));
    expectEmptyStructure();
}

TEST_F(DMDocumentTest, ElementThatIsNoMapAfterANamedOneCarriesThatName) {
    EXPECT_EQ(load(withObjects(validObject("Part") + R"(,"Drawing")")),
              failure("Structure object with name Part: in list for index=1 should be a map."));
    expectEmptyStructure();
}

TEST_F(DMDocumentTest, NameThatIsNoStringNamesTheIndex) {
    EXPECT_EQ(
        load(withObjects(
            R"({"name":7,"dmObjectType":"DMITEM","attributes":[{"name":"N","type":"REGULAR","primary":true}]})")),
        failure("Structure object value for name of index=0 should be a string."));
    EXPECT_EQ(load(withObjects(validObject("Part") + "," + validObject("Model") +
                               R"(,{"name":["Drawing"]})")),
              failure("Structure object with name Model: value for name of index=2 should be a "
                      "string."));
    expectEmptyStructure();
}

TEST_F(DMDocumentTest, CategoryThatIsNoStringBehindTheNameIsToldByTheRuleName) {
    EXPECT_EQ(load(withObjects(R"({"name":"Part","dmObjectType":1})")),
              failure("Structure object with name Part: value for dmObjectType should be a "
                      "string."));
    expectEmptyStructure();
}

TEST_F(DMDocumentTest, CategoryThatIsNoStringInFrontOfTheNameNamesTheIndex) {
    EXPECT_EQ(load(withObjects(R"({"dmObjectType":true,"name":"Part"})")),
              failure("Structure object value for dmObjectType of index=0 should be a string."));
    EXPECT_EQ(load(withObjects(validObject("Part") + R"(,{"dmObjectType":null,"name":"Model"})")),
              failure("Structure object with name Part: value for dmObjectType of index=1 should "
                      "be a string."));
}

TEST_F(DMDocumentTest, AttributesThatAreNoListShouldBeInAList) {
    EXPECT_EQ(load(withObjects(
                  R"({"name":"Part","dmObjectType":"DMITEM","attributes":{"name":"Number"}})")),
              failure("Structure object with name Part: attributes should be in a List."));
    EXPECT_EQ(load(withObjects(R"({"attributes":"Number","name":"Part"})")),
              failure("Structure object: attributes should be in a List."));
    expectEmptyStructure();
}

TEST_F(DMDocumentTest, ObjectWithoutNameNamesTheIndex) {
    EXPECT_EQ(
        load(withObjects(
            R"({"dmObjectType":"DMITEM","attributes":[{"name":"Number","type":"REGULAR","primary":true}]})")),
        R"({"Result":"Failure","ResultComment":"Structure object for index=0 demands ALL keywords: [name,dmObjectType,attributes]"})");
    EXPECT_EQ(load(withObjects("{}")), failure("Structure object for index=0 demands ALL keywords: "
                                               "[name,dmObjectType,attributes]"));
    expectEmptyStructure();
}

TEST_F(DMDocumentTest, ObjectWithoutNameAfterANamedOneCarriesThatName) {
    EXPECT_EQ(load(withObjects(validObject("Part") + "," + validObject("Model") + ",{}")),
              failure("Structure object with name Model: for index=2 demands ALL keywords: "
                      "[name,dmObjectType,attributes]"));
    expectEmptyStructure();
}

TEST_F(DMDocumentTest, EmptyNameCountsAsMissingAndForgetsTheNameBefore) {
    EXPECT_EQ(
        load(withObjects(
            validObject("Part") +
            R"(,{"name":"","dmObjectType":"DMITEM","attributes":[{"name":"N","type":"REGULAR","primary":true}]})")),
        failure("Structure object for index=1 demands ALL keywords: "
                "[name,dmObjectType,attributes]"));
}

TEST_F(DMDocumentTest, ObjectWithoutAttributesNamesTheObject) {
    EXPECT_EQ(
        load(withObjects(R"({"name":"Part","dmObjectType":"DMITEM"})")),
        R"({"Result":"Failure","ResultComment":"Structure object with name Part: demands ALL keywords: [name,dmObjectType,attributes]"})");
    expectEmptyStructure();
}

TEST_F(DMDocumentTest, ObjectWithAnEmptyAttributeListNamesTheObject) {
    EXPECT_EQ(
        load(withObjects(R"({"name":"Part","dmObjectType":"DMITEM","attributes":[]})")),
        R"({"Result":"Failure","ResultComment":"Structure object with name Part: demands ALL keywords: [name,dmObjectType,attributes]"})");
}

TEST_F(DMDocumentTest, ObjectWithoutOrWithAnEmptyCategoryNamesTheObject) {
    const std::string missing = failure(
        "Structure object with name Part: demands ALL keywords: "
        "[name,dmObjectType,attributes]");
    EXPECT_EQ(
        load(withObjects(
            R"({"name":"Part","attributes":[{"name":"N","type":"REGULAR","primary":true}]})")),
        missing);
    EXPECT_EQ(
        load(withObjects(
            R"({"name":"Part","dmObjectType":"","attributes":[{"name":"N","type":"REGULAR","primary":true}]})")),
        missing);
}

TEST_F(DMDocumentTest, FirstFailingElementEndsTheList) {
    // The third element would fail too, but is never read.
    EXPECT_EQ(load(withObjects(validObject("Part") + R"(,{"name":"Model"},5)")),
              failure("Structure object with name Model: demands ALL keywords: "
                      "[name,dmObjectType,attributes]"));
    expectEmptyStructure();
}

// ---------------------------------------------------------------- attributes

TEST_F(DMDocumentTest, AttributeThatIsNoMapNamesItsObject) {
    EXPECT_EQ(load(partWithAttribute(R"("Number")")),
              failure("DM Attribute in list for Part should be a map."));
    expectEmptyStructure();
}

TEST_F(DMDocumentTest, AttributeNameThatIsNoStringNamesItsObject) {
    EXPECT_EQ(load(partWithAttribute(R"({"name":1,"type":"REGULAR","primary":true})")),
              failure("DM Attribute value for name of Part should be a string."));
}

TEST_F(DMDocumentTest, AttributeTypeThatIsNoStringNamesItsObject) {
    EXPECT_EQ(load(partWithAttribute(R"({"name":"Number","type":["REGULAR"],"primary":true})")),
              failure("DM Attribute value for type of Part should be a string."));
}

TEST_F(DMDocumentTest, PrimaryGivenAsTheStringTrueShouldBeABoolean) {
    EXPECT_EQ(
        load(partWithAttribute(R"({"name":"Number","type":"REGULAR","primary":"true"})")),
        R"({"Result":"Failure","ResultComment":"DM Attribute value for primary of Part should be a boolean."})");
    EXPECT_EQ(load(partWithAttribute(R"({"name":"Number","type":"REGULAR","primary":1})")),
              failure("DM Attribute value for primary of Part should be a boolean."));
    expectEmptyStructure();
}

TEST_F(DMDocumentTest, AttributeWithoutPrimaryDemandsAllKeywords) {
    EXPECT_EQ(load(partWithAttribute(R"({"name":"Number","type":"REGULAR"})")),
              failure("DM Attribute for Part demands ALL keywords: [name,type,primary]"));
}

TEST_F(DMDocumentTest, AttributeWithoutOrWithEmptyNameOrTypeDemandsAllKeywords) {
    const std::string missing =
        failure("DM Attribute for Part demands ALL keywords: [name,type,primary]");
    EXPECT_EQ(load(partWithAttribute(R"({"type":"REGULAR","primary":true})")), missing);
    EXPECT_EQ(load(partWithAttribute(R"({"name":"","type":"REGULAR","primary":true})")), missing);
    EXPECT_EQ(load(partWithAttribute(R"({"name":"Number","primary":false})")), missing);
    EXPECT_EQ(load(partWithAttribute(R"({"name":"Number","type":"","primary":false})")), missing);
    EXPECT_EQ(load(partWithAttribute("{}")), missing);
}

TEST_F(DMDocumentTest, AttributesInFrontOfTheNameReportWithoutAName) {
    EXPECT_EQ(
        load(withObjects(R"({"attributes":[{"name":"Number","type":"REGULAR"}],"name":"Part"})")),
        failure("DM Attribute demands ALL keywords: [name,type,primary]"));
    EXPECT_EQ(
        load(withObjects(
            R"({"attributes":[{"name":"Number","type":"REGULAR","primary":"no"}],"name":"Part"})")),
        failure("DM Attribute value for primary should be a boolean."));
    // The comment keeps both blanks of the empty owner; the single-string form
    // collapses them.
    const TOVResponse response =
        InitializeTOV_DMInfo(withObjects(R"({"attributes":[3],"name":"Part"})"), core.get());
    EXPECT_EQ(response.getGeneralResultComment(), "DM Attribute in list for  should be a map.");
    EXPECT_EQ(tovtest::asText(response), failure("DM Attribute in list for should be a map."));
}

TEST_F(DMDocumentTest, FirstFailingAttributeEndsTheList) {
    EXPECT_EQ(load(partWithAttribute(
                  R"({"name":"Number","type":"REGULAR","primary":true},{"name":"Code"},7)")),
              failure("DM Attribute for Part demands ALL keywords: [name,type,primary]"));
}

TEST_F(DMDocumentTest, AttributeErrorAndMissingLabelAreBothReported) {
    EXPECT_EQ(load(R"({"structureObjects":[{"name":"Part","dmObjectType":"DMITEM","attributes":[)"
                   R"({"name":"Number","type":"REGULAR","primary":"true"}]}]})"),
              failure("DM Attribute value for primary of Part should be a boolean.|" +
                      std::string(kBothRootKeywords)));
}

// ---------------------------------------------------------------- all or nothing

TEST_F(DMDocumentTest, FailedLoadAfterASuccessfulOneLeavesNothing) {
    loadValidDocument();
    EXPECT_EQ(load(withObjects(validObject("Model") + R"(,{"name":"Part"})")),
              failure("Structure object with name Part: demands ALL keywords: "
                      "[name,dmObjectType,attributes]"));
    expectEmptyStructure();
    EXPECT_EQ(core.dmInfo()->getDMObjectTypeWithName("Model"), nullptr);
}

TEST_F(DMDocumentTest, FailedLabelAfterASuccessfulLoadLeavesNoLabel) {
    loadValidDocument();
    EXPECT_EQ(
        load(R"({"structureObjects":[)" + validObject("Model") + R"(],"OverwriteLabel":false})"),
        failure(kBothRootKeywords));
    expectEmptyStructure();
}

TEST_F(DMDocumentTest, FundamentalErrorAfterASuccessfulLoadLeavesNothing) {
    loadValidDocument();
    EXPECT_EQ(load("{"), failure("Json has fundamental parsing error"));
    expectEmptyStructure();
}

// ---------------------------------------------------------------- the log

TEST_F(DMDocumentTest, SuccessfulLoadPrintsTheSortedStructure) {
    TOVResponse response;
    const std::string printed = tovtest::captureConsole(
        core.logger(), [&] { response = InitializeTOV_DMInfo(kValidDocument, core.get()); });
    EXPECT_EQ(tovtest::asText(response), kSuccess);
    EXPECT_EQ(printed,
              asConsoleLines({
                  "---------------------------------All DM Info---------------------------",
                  "Overwrite Label: Overwrite",
                  "---------DM Structure Objects -----------",
                  "-------------------------DM Structure object-------------------------",
                  "name: Drawing",
                  "object category: RLI",
                  "-----Primaries:",
                  "*Attribute:",
                  "Name : Content",
                  "Category : FILE",
                  "IsPrimary : True",
                  "-----Secondaries:",
                  "*Attribute:",
                  "Name : Note",
                  "Category : FILE",
                  "IsPrimary : False",
                  "-------------------------DM Structure object-------------------------",
                  "name: Part",
                  "object category: DMITEM",
                  "-----Primaries:",
                  "*Attribute:",
                  "Name : Code",
                  "Category : REGULAR",
                  "IsPrimary : True",
                  "*Attribute:",
                  "Name : Number",
                  "Category : REGULAR",
                  "IsPrimary : True",
                  "*Attribute:",
                  "Name : Version",
                  "Category : VERSIONING",
                  "IsPrimary : True",
                  "-----Secondaries:",
                  "*Attribute:",
                  "Name : Description",
                  "Category : REGULAR",
                  "IsPrimary : False",
                  "*************TOVResponse******************",
                  "{Result:Success, ResultComment:Succesfully initialized DM info}",
                  "*************JNI_TOVResponse******************",
                  kSuccess,
                  std::string("Initializing DM Info attempt result=\"") + kSuccess + "\"",
              }));
}

TEST_F(DMDocumentTest, FailedLoadPrintsNoStructure) {
    TOVResponse response;
    const std::string printed = tovtest::captureConsole(core.logger(), [&] {
        response = InitializeTOV_DMInfo(R"({"OverwriteLabel":""})", core.get());
    });
    const std::string single = failure(kBothRootKeywords);
    EXPECT_EQ(tovtest::asText(response), single);
    EXPECT_EQ(printed, asConsoleLines({
                           "*************TOVResponse******************",
                           std::string("{Result:Failure, ResultComment:") + kBothRootKeywords + "}",
                           "*************JNI_TOVResponse******************",
                           single,
                           "Initializing DM Info attempt result=\"" + single + "\"",
                       }));
}

TEST_F(DMDocumentTest, EmptyObjectListPrintsTheHeadingsAlone) {
    TOVResponse response;
    const std::string printed = tovtest::captureConsole(core.logger(), [&] {
        response =
            InitializeTOV_DMInfo(R"({"structureObjects":[],"OverwriteLabel":"Keep"})", core.get());
    });
    EXPECT_EQ(tovtest::asText(response), kSuccess);
    EXPECT_EQ(
        printed.substr(0, printed.find("*************TOVResponse")),
        asConsoleLines({"---------------------------------All DM Info---------------------------",
                        "Overwrite Label: Keep", "---------DM Structure Objects -----------"}));
}

// ---------------------------------------------------------------- the controller

TEST_F(DMDocumentTest, ControllerNamesItsLabels) {
    EXPECT_EQ(TOV_DMInfoInitializerController::getInputDataLabelIdentifierForAllDMInfo(),
              "All_DM_Info");
    EXPECT_EQ(TOV_DMInfoInitializerController::getInputDataLabelIdentifierForJsonFilepath(),
              "Input_is_filepath");
}

TEST_F(DMDocumentTest, ControllerEmptiesTheStructureWhenBuilt) {
    loadValidDocument();
    const TOV_DMInfoInitializerController controller({}, core.get());
    expectEmptyStructure();
}

TEST_F(DMDocumentTest, ControllerWithAPathLabelOfAnyValueReadsAFile) {
    TOV_DMInfoInitializerController controller(
        {{"All_DM_Info", kValidDocument}, {"Input_is_filepath", "no"}}, core.get());
    EXPECT_EQ(tovtest::asText(controller.evaluateAndRespond()),
              failure("Json has fundamental parsing error"));
    expectEmptyStructure();
}

TEST_F(DMDocumentTest, ControllerWithoutItsLabelHasInsufficientInput) {
    TOV_DMInfoInitializerController controller({{"All_TOV_rules", kValidDocument}}, core.get());
    EXPECT_EQ(tovtest::asText(controller.evaluateAndRespond()), failure("Insufficient input data"));
    expectEmptyStructure();
}

TEST_F(DMDocumentTest, ControllerLoadsFromItsLabel) {
    TOV_DMInfoInitializerController controller({{"All_DM_Info", kValidDocument}}, core.get());
    EXPECT_EQ(tovtest::asText(controller.evaluateAndRespond()), kSuccess);
    EXPECT_EQ(namesOf(core.dmInfo()->getAllStructureObjects()), (Names{"Drawing", "Part"}));
}

// ---------------------------------------------------------------- the file form

TEST_F(DMDocumentFileTest, DocumentInAFileLoads) {
    const std::string path = write("dm.json", kValidDocument);
    EXPECT_EQ(loadFromFile(path), kSuccess);
    EXPECT_EQ(namesOf(core.dmInfo()->getAllStructureObjects()), (Names{"Drawing", "Part"}));
    EXPECT_EQ(core.dmInfo()->getOverwriteLabel(), "Overwrite");
}

TEST_F(DMDocumentFileTest, FileFormLogsThePathFirst) {
    const std::string path = write("dm.json", R"({"structureObjects":[],"OverwriteLabel":""})");
    const std::string printed = tovtest::captureConsole(core.logger(), [&] { loadFromFile(path); });
    const std::string firstLine = "\nInitializing DM Info attempt input=\"" + path + "\"\n";
    EXPECT_EQ(printed.substr(0, firstLine.size()), firstLine);
    const std::string heading =
        "---------------------------------All DM Info---------------------------\n";
    EXPECT_EQ(printed.substr(firstLine.size(), heading.size()), heading);
}

TEST_F(DMDocumentFileTest, FaultsInAFileAreReportedAsInText) {
    const std::string path = write("dm.json", withObjects(R"({"name":"Part"})"));
    EXPECT_EQ(loadFromFile(path), failure("Structure object with name Part: demands ALL keywords: "
                                          "[name,dmObjectType,attributes]"));
    expectEmptyStructure();
}

TEST_F(DMDocumentFileTest, MissingFileIsAFundamentalError) {
    loadValidDocument();
    EXPECT_EQ(loadFromFile(folder.path() + "/absent.json"),
              failure("Json has fundamental parsing error"));
    expectEmptyStructure();
}

TEST_F(DMDocumentFileTest, DirectoryIsAFundamentalError) {
    loadValidDocument();
    EXPECT_EQ(loadFromFile(folder.path()), failure("Json has fundamental parsing error"));
    expectEmptyStructure();
}

TEST_F(DMDocumentFileTest, FileWithAByteOrderMarkIsAFundamentalError) {
    const std::string path = write(
        "bom.json", "\xEF\xBB\xBF" + std::string(R"({"structureObjects":[],"OverwriteLabel":""})"));
    EXPECT_EQ(loadFromFile(path), failure("Json has fundamental parsing error"));
}

TEST_F(DMDocumentFileTest, EmptyPathIsInsufficient) {
    EXPECT_EQ(loadFromFile(""), failure("Insufficient input data"));
}

}  // namespace
