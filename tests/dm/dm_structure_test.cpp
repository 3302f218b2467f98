// The data-model classes: attribute, object type and the whole structure, with
// their categories, lookups, collections, object-type matching and debug print.
#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <string>
#include <vector>

#include "test_support.h"
#include "tov/TOVLogger.h"
#include "tov/TOV_DMAttribute.h"
#include "tov/TOV_DMStructure.h"
#include "tov/TOV_DMStructureObject.h"

namespace {

using Names = std::vector<std::string>;
using NameSet = std::set<std::string>;
using tovtest::asConsoleLines;
using tovtest::namesOf;

// An object type with primaries of all three categories and secondaries of
// all three categories, listed out of order.
std::vector<TOV_DMAttribute> mixedAttributes() {
    return {
        TOV_DMAttribute("Version", "VERSIONING", true),
        TOV_DMAttribute("Number", "REGULAR", true),
        TOV_DMAttribute("Description", "REGULAR", false),
        TOV_DMAttribute("Content", "FILE", true),
        TOV_DMAttribute("Revision", "VERSIONING", false),
        TOV_DMAttribute("Code", "REGULAR", true),
        TOV_DMAttribute("Thumbnail", "FILE", false),
    };
}

// A sorted structure with a DMITEM type, two RLI types and a label.
TOV_DMStructure sampleStructure() {
    TOV_DMStructure structure;
    structure.appendDMStructureObject(TOV_DMStructureObject("Part", "DMITEM", mixedAttributes()));
    structure.appendDMStructureObject(TOV_DMStructureObject("Drawing", "RLI", mixedAttributes()));
    structure.appendDMStructureObject(
        TOV_DMStructureObject("Model", "RLI", {TOV_DMAttribute("ModelNumber", "REGULAR", true)}));
    structure.setOverwriteLabel("Overwrite");
    structure.sortAllDMInfo();
    return structure;
}

// ---------------------------------------------------------------- attribute

TEST(DMAttributeTest, DefaultConstructorGivesAnUnnamedRegularAttribute) {
    const TOV_DMAttribute attribute;
    EXPECT_EQ(attribute.getName(), "");
    EXPECT_EQ(attribute.getTypeOfAttribute(), TOV_DMAttribute::REGULAR);
}

TEST(DMAttributeTest, CategoriesHaveTheirFixedValues) {
    EXPECT_EQ(static_cast<int>(TOV_DMAttribute::REGULAR), 0);
    EXPECT_EQ(static_cast<int>(TOV_DMAttribute::FILE), 1);
    EXPECT_EQ(static_cast<int>(TOV_DMAttribute::VERSIONING), 2);
}

TEST(DMAttributeTest, ConstructorTakesEachOfTheThreeWords) {
    const TOV_DMAttribute regular("Number", "REGULAR", true);
    EXPECT_EQ(regular.getName(), "Number");
    EXPECT_EQ(regular.getTypeOfAttribute(), TOV_DMAttribute::REGULAR);
    EXPECT_TRUE(regular.isThisaRegularAttribute());
    EXPECT_FALSE(regular.isThisaFileAttribute());
    EXPECT_FALSE(regular.isThisaVersioningAttribute());
    EXPECT_EQ(regular.expressAttributeCategoryInWords(), "REGULAR");
    EXPECT_TRUE(regular.isPrimary());

    const TOV_DMAttribute file("Content", "FILE", false);
    EXPECT_EQ(file.getTypeOfAttribute(), TOV_DMAttribute::FILE);
    EXPECT_FALSE(file.isThisaRegularAttribute());
    EXPECT_TRUE(file.isThisaFileAttribute());
    EXPECT_FALSE(file.isThisaVersioningAttribute());
    EXPECT_EQ(file.expressAttributeCategoryInWords(), "FILE");
    EXPECT_FALSE(file.isPrimary());

    const TOV_DMAttribute versioning("Version", "VERSIONING", true);
    EXPECT_EQ(versioning.getTypeOfAttribute(), TOV_DMAttribute::VERSIONING);
    EXPECT_FALSE(versioning.isThisaRegularAttribute());
    EXPECT_FALSE(versioning.isThisaFileAttribute());
    EXPECT_TRUE(versioning.isThisaVersioningAttribute());
    EXPECT_EQ(versioning.expressAttributeCategoryInWords(), "VERSIONING");
}

TEST(DMAttributeTest, TypeWordInSmallLettersLeavesTheAttributeRegular) {
    EXPECT_EQ(TOV_DMAttribute("Content", "file", true).getTypeOfAttribute(),
              TOV_DMAttribute::REGULAR);
    EXPECT_EQ(TOV_DMAttribute("Version", "Versioning", true).getTypeOfAttribute(),
              TOV_DMAttribute::REGULAR);
    EXPECT_EQ(TOV_DMAttribute("Other", "", true).getTypeOfAttribute(), TOV_DMAttribute::REGULAR);
    EXPECT_EQ(TOV_DMAttribute("Other", "FILE ", true).getTypeOfAttribute(),
              TOV_DMAttribute::REGULAR);
}

TEST(DMAttributeTest, UnknownTypeWordKeepsTheCategoryItHad) {
    TOV_DMAttribute attribute("Content", "FILE", true);
    attribute.setTypeOfAttribute("regular");
    EXPECT_EQ(attribute.getTypeOfAttribute(), TOV_DMAttribute::FILE);
    attribute.setTypeOfAttribute("VERSIONING");
    EXPECT_EQ(attribute.getTypeOfAttribute(), TOV_DMAttribute::VERSIONING);
    attribute.setTypeOfAttribute("REGULAR");
    EXPECT_EQ(attribute.getTypeOfAttribute(), TOV_DMAttribute::REGULAR);
}

TEST(DMAttributeTest, SettersChangeCategoryAndPrimaryFlag) {
    TOV_DMAttribute attribute("Number", "REGULAR", false);
    attribute.setTypeOfAttribute(TOV_DMAttribute::VERSIONING);
    EXPECT_EQ(attribute.getTypeOfAttribute(), TOV_DMAttribute::VERSIONING);
    attribute.setIsPrimary(true);
    EXPECT_TRUE(attribute.isPrimary());
    attribute.setIsPrimary(false);
    EXPECT_FALSE(attribute.isPrimary());
}

TEST(DMAttributeTest, OrderIsByNameAsBytes) {
    const TOV_DMAttribute upper("Zeta", "REGULAR", true);
    const TOV_DMAttribute lower("alpha", "REGULAR", true);
    const TOV_DMAttribute other("beta", "FILE", false);
    EXPECT_TRUE(upper < lower);
    EXPECT_FALSE(lower < upper);
    EXPECT_TRUE(lower < other);
    EXPECT_FALSE(lower < TOV_DMAttribute("alpha", "FILE", false));
}

TEST(DMAttributeTest, CopyIsIndependentOfTheOriginal) {
    TOV_DMAttribute original("Number", "REGULAR", true);
    const TOV_DMAttribute copy = original;
    original.setTypeOfAttribute(TOV_DMAttribute::FILE);
    original.setIsPrimary(false);
    EXPECT_EQ(copy.getName(), "Number");
    EXPECT_EQ(copy.getTypeOfAttribute(), TOV_DMAttribute::REGULAR);
    EXPECT_TRUE(copy.isPrimary());
}

TEST(DMAttributeTest, PrintsFourLines) {
    tovtest::PrivateCore core;
    const TOV_DMAttribute primary("Version", "VERSIONING", true);
    const TOV_DMAttribute secondary("Content", "FILE", false);
    EXPECT_EQ(
        tovtest::captureConsole(core.logger(), [&] { primary.printContentsDBG(core.logger()); }),
        asConsoleLines(
            {"*Attribute:", "Name : Version", "Category : VERSIONING", "IsPrimary : True"}));
    EXPECT_EQ(
        tovtest::captureConsole(core.logger(), [&] { secondary.printContentsDBG(core.logger()); }),
        asConsoleLines({"*Attribute:", "Name : Content", "Category : FILE", "IsPrimary : False"}));
}

// ---------------------------------------------------------------- object type

TEST(DMStructureObjectTest, NameOnlyObjectIsAnEmptyDMItem) {
    const TOV_DMStructureObject object("Part");
    EXPECT_EQ(object.getName(), "Part");
    EXPECT_EQ(object.getObjectCategory(), TOV_DMStructureObject::DMITEM);
    EXPECT_FALSE(object.isThisAnRLI());
    EXPECT_TRUE(object.getPrimaryAttributes().empty());
    EXPECT_TRUE(object.getSecondaryAttributes().empty());
}

TEST(DMStructureObjectTest, CategoriesHaveTheirFixedValues) {
    EXPECT_EQ(static_cast<int>(TOV_DMStructureObject::DMITEM), 0);
    EXPECT_EQ(static_cast<int>(TOV_DMStructureObject::RLI), 1);
}

TEST(DMStructureObjectTest, CategoryWordsAreExactInCase) {
    const TOV_DMStructureObject rli("Drawing", "RLI", {});
    EXPECT_EQ(rli.getObjectCategory(), TOV_DMStructureObject::RLI);
    EXPECT_TRUE(rli.isThisAnRLI());
    EXPECT_EQ(rli.expressObjectCategoryInWords(), "RLI");

    const TOV_DMStructureObject item("Part", "DMITEM", {});
    EXPECT_EQ(item.getObjectCategory(), TOV_DMStructureObject::DMITEM);
    EXPECT_FALSE(item.isThisAnRLI());
    EXPECT_EQ(item.expressObjectCategoryInWords(), "DMITEM");

    const TOV_DMStructureObject smallLetters("Drawing", "rli", {});
    EXPECT_EQ(smallLetters.getObjectCategory(), TOV_DMStructureObject::DMITEM);
    EXPECT_EQ(smallLetters.expressObjectCategoryInWords(), "DMITEM");

    EXPECT_EQ(TOV_DMStructureObject("Other", "Document", {}).getObjectCategory(),
              TOV_DMStructureObject::DMITEM);
}

TEST(DMStructureObjectTest, UnknownCategoryWordKeepsTheCategoryItHad) {
    TOV_DMStructureObject object("Drawing", "RLI", {});
    object.setDMObjectCategory("dmitem");
    EXPECT_EQ(object.getObjectCategory(), TOV_DMStructureObject::RLI);
    object.setDMObjectCategory("DMITEM");
    EXPECT_EQ(object.getObjectCategory(), TOV_DMStructureObject::DMITEM);
    object.setDMObjectCategory(TOV_DMStructureObject::RLI);
    EXPECT_EQ(object.getObjectCategory(), TOV_DMStructureObject::RLI);
}

TEST(DMStructureObjectTest, AttributesAreSeparatedInListOrder) {
    const TOV_DMStructureObject object("Part", "DMITEM", mixedAttributes());
    EXPECT_EQ(namesOf(object.getPrimaryAttributes()),
              (Names{"Version", "Number", "Content", "Code"}));
    EXPECT_EQ(namesOf(object.getSecondaryAttributes()),
              (Names{"Description", "Revision", "Thumbnail"}));
    EXPECT_EQ(object.getSecondaryAttributes()[1].getTypeOfAttribute(), TOV_DMAttribute::VERSIONING);
}

TEST(DMStructureObjectTest, FillingAgainAndAppendingAddToTheLists) {
    TOV_DMStructureObject object("Part");
    object.fillAttributesSeparatingThemToPrimaryAndSecondary(
        {TOV_DMAttribute("B", "REGULAR", true), TOV_DMAttribute("C", "REGULAR", false)});
    object.fillAttributesSeparatingThemToPrimaryAndSecondary({TOV_DMAttribute("A", "FILE", true)});
    // Appending does not look at the primary flag.
    object.appendToPrimaries(TOV_DMAttribute("S", "REGULAR", false));
    object.appendToSecondaries(TOV_DMAttribute("P", "REGULAR", true));
    EXPECT_EQ(namesOf(object.getPrimaryAttributes()), (Names{"B", "A", "S"}));
    EXPECT_EQ(namesOf(object.getSecondaryAttributes()), (Names{"C", "P"}));
}

TEST(DMStructureObjectTest, SecondaryAttributeLookupIsExact) {
    const TOV_DMStructureObject object("Part", "DMITEM", mixedAttributes());
    EXPECT_TRUE(object.isThisASecondaryAttribute("Description"));
    EXPECT_TRUE(object.isThisASecondaryAttribute("Revision"));
    EXPECT_FALSE(object.isThisASecondaryAttribute("description"));
    EXPECT_FALSE(object.isThisASecondaryAttribute("Number"));
    EXPECT_FALSE(object.isThisASecondaryAttribute("Unknown"));
    EXPECT_FALSE(object.isThisASecondaryAttribute(""));
}

TEST(DMStructureObjectTest, CollectPrimaryAttributesSkipsTheAskedCategories) {
    const TOV_DMStructureObject object("Part", "DMITEM", mixedAttributes());
    Names all;
    object.collectPrimaryAttributes(all, false, false);
    EXPECT_EQ(all, (Names{"Version", "Number", "Content", "Code"}));
    Names noVersioning;
    object.collectPrimaryAttributes(noVersioning, true, false);
    EXPECT_EQ(noVersioning, (Names{"Number", "Content", "Code"}));
    Names noFile;
    object.collectPrimaryAttributes(noFile, false, true);
    EXPECT_EQ(noFile, (Names{"Version", "Number", "Code"}));
    Names regularOnly{"Before"};
    object.collectPrimaryAttributes(regularOnly, true, true);
    EXPECT_EQ(regularOnly, (Names{"Before", "Number", "Code"}));
}

TEST(DMStructureObjectTest, FamilyOfADMItemIsToldByRegularPrimariesOnly) {
    const TOV_DMStructureObject object("Part", "DMITEM", mixedAttributes());
    Names names{"Before"};
    object.collectAttributesForObjectFamilyDetection(names);
    EXPECT_EQ(names, (Names{"Before", "Number", "Code"}));
}

TEST(DMStructureObjectTest, FamilyOfAnRLIIsToldByRegularAndFilePrimaries) {
    const TOV_DMStructureObject object("Drawing", "RLI", mixedAttributes());
    Names names;
    object.collectAttributesForObjectFamilyDetection(names);
    EXPECT_EQ(names, (Names{"Number", "Content", "Code"}));
}

TEST(DMStructureObjectTest, VersioningAttributesAreTakenFromThePrimariesOnly) {
    TOV_DMStructureObject object("Part", "DMITEM", mixedAttributes());
    object.appendToPrimaries(TOV_DMAttribute("Iteration", "VERSIONING", true));
    Names list{"Before"};
    object.collectVersioningAttributes(list);
    EXPECT_EQ(list, (Names{"Before", "Version", "Iteration"}));
    NameSet set{"Before"};
    object.collectVersioningAttributes(set);
    EXPECT_EQ(set, (NameSet{"Before", "Iteration", "Version"}));
}

TEST(DMStructureObjectTest, SortingOrdersEachListByName) {
    TOV_DMStructureObject object("Part", "DMITEM", mixedAttributes());
    object.appendToPrimaries(TOV_DMAttribute("alpha", "REGULAR", true));
    object.appendToSecondaries(TOV_DMAttribute("Alpha", "REGULAR", false));
    object.sortMyPrimaryAttributes();
    EXPECT_EQ(namesOf(object.getPrimaryAttributes()),
              (Names{"Code", "Content", "Number", "Version", "alpha"}));
    EXPECT_EQ(namesOf(object.getSecondaryAttributes()),
              (Names{"Description", "Revision", "Thumbnail", "Alpha"}));
    object.sortMySecondaryAttributes();
    EXPECT_EQ(namesOf(object.getSecondaryAttributes()),
              (Names{"Alpha", "Description", "Revision", "Thumbnail"}));
}

TEST(DMStructureObjectTest, OrderAndEqualityAreByNameWithCaseCounting) {
    const TOV_DMStructureObject upper("Zeta", "RLI", {});
    const TOV_DMStructureObject lower("alpha");
    EXPECT_TRUE(upper < lower);
    EXPECT_FALSE(lower < upper);
    EXPECT_TRUE(TOV_DMStructureObject("Zeta") == upper);
    EXPECT_FALSE(TOV_DMStructureObject("zeta") == upper);
    EXPECT_FALSE(upper < TOV_DMStructureObject("Zeta"));
}

TEST(DMStructureObjectTest, CopyIsDeep) {
    TOV_DMStructureObject original("Part", "DMITEM", mixedAttributes());
    const TOV_DMStructureObject copy = original;
    original.appendToPrimaries(TOV_DMAttribute("Extra", "REGULAR", true));
    original.setDMObjectCategory(TOV_DMStructureObject::RLI);
    EXPECT_EQ(copy.getPrimaryAttributes().size(), 4U);
    EXPECT_EQ(copy.getObjectCategory(), TOV_DMStructureObject::DMITEM);
    TOV_DMStructureObject assigned("Other");
    assigned = copy;
    EXPECT_EQ(assigned.getName(), "Part");
    EXPECT_EQ(namesOf(assigned.getSecondaryAttributes()),
              (Names{"Description", "Revision", "Thumbnail"}));
}

TEST(DMStructureObjectTest, PrintsHeaderThenPrimariesThenSecondaries) {
    tovtest::PrivateCore core;
    const TOV_DMStructureObject object(
        "Drawing", "RLI",
        {TOV_DMAttribute("Number", "REGULAR", true), TOV_DMAttribute("Note", "FILE", false)});
    EXPECT_EQ(
        tovtest::captureConsole(core.logger(), [&] { object.printContentsDBG(core.logger()); }),
        asConsoleLines({"-------------------------DM Structure object-------------------------",
                        "name: Drawing", "object category: RLI",
                        "-----Primaries:", "*Attribute:", "Name : Number", "Category : REGULAR",
                        "IsPrimary : True", "-----Secondaries:", "*Attribute:", "Name : Note",
                        "Category : FILE", "IsPrimary : False"}));
}

TEST(DMStructureObjectTest, PrintsEmptyListsAsHeadingsAlone) {
    tovtest::PrivateCore core;
    const TOV_DMStructureObject object("Part");
    EXPECT_EQ(
        tovtest::captureConsole(core.logger(), [&] { object.printContentsDBG(core.logger()); }),
        asConsoleLines({"-------------------------DM Structure object-------------------------",
                        "name: Part", "object category: DMITEM",
                        "-----Primaries:", "-----Secondaries:"}));
}

// ---------------------------------------------------------------- structure

TEST(DMStructureTest, NewStructureIsEmpty) {
    const TOV_DMStructure structure;
    EXPECT_FALSE(structure.existAnyInfo());
    EXPECT_TRUE(structure.getAllStructureObjects().empty());
    EXPECT_EQ(structure.getOverwriteLabel(), "");
    EXPECT_EQ(structure.getDMObjectTypeWithName("Part"), nullptr);
    EXPECT_EQ(structure.getDMObjectTypeWithName(""), nullptr);
}

TEST(DMStructureTest, LabelAloneIsNoInformation) {
    TOV_DMStructure structure;
    structure.setOverwriteLabel("Overwrite");
    EXPECT_FALSE(structure.existAnyInfo());
    EXPECT_EQ(structure.getOverwriteLabel(), "Overwrite");
    structure.appendDMStructureObject(TOV_DMStructureObject("Part"));
    EXPECT_TRUE(structure.existAnyInfo());
}

TEST(DMStructureTest, AppendingKeepsTheOrderOfArrival) {
    TOV_DMStructure structure;
    structure.appendDMStructureObject(TOV_DMStructureObject("b"));
    structure.appendDMStructureObject(TOV_DMStructureObject("A"));
    structure.appendDMStructureObject(TOV_DMStructureObject("a"));
    EXPECT_EQ(namesOf(structure.getAllStructureObjects()), (Names{"b", "A", "a"}));
}

TEST(DMStructureTest, ClearAllInfoEmptiesObjectsAndLabel) {
    TOV_DMStructure structure = sampleStructure();
    ASSERT_TRUE(structure.existAnyInfo());
    structure.clearAllInfo();
    EXPECT_FALSE(structure.existAnyInfo());
    EXPECT_TRUE(structure.getAllStructureObjects().empty());
    EXPECT_EQ(structure.getOverwriteLabel(), "");
    EXPECT_EQ(structure.getDMObjectTypeWithName("Part"), nullptr);
}

TEST(DMStructureTest, SortingPutsCapitalsBeforeSmallLettersAndSortsAttributes) {
    TOV_DMStructure structure;
    structure.appendDMStructureObject(TOV_DMStructureObject("part", "DMITEM", mixedAttributes()));
    structure.appendDMStructureObject(TOV_DMStructureObject("Zeta"));
    structure.appendDMStructureObject(TOV_DMStructureObject("Part"));
    structure.appendDMStructureObject(TOV_DMStructureObject("apple"));
    structure.sortAllDMInfo();
    EXPECT_EQ(namesOf(structure.getAllStructureObjects()),
              (Names{"Part", "Zeta", "apple", "part"}));
    const TOV_DMStructureObject& sorted = structure.getAllStructureObjects()[3];
    EXPECT_EQ(namesOf(sorted.getPrimaryAttributes()),
              (Names{"Code", "Content", "Number", "Version"}));
    EXPECT_EQ(namesOf(sorted.getSecondaryAttributes()),
              (Names{"Description", "Revision", "Thumbnail"}));
}

TEST(DMStructureTest, LookupByNameIsExactInCase) {
    const TOV_DMStructure structure = sampleStructure();
    const TOV_DMStructureObject* found = structure.getDMObjectTypeWithName("Drawing");
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found, &structure.getAllStructureObjects()[0]);
    EXPECT_EQ(found->getName(), "Drawing");
    EXPECT_TRUE(found->isThisAnRLI());
    ASSERT_NE(structure.getDMObjectTypeWithName("Part"), nullptr);
    EXPECT_EQ(structure.getDMObjectTypeWithName("Part"), &structure.getAllStructureObjects()[2]);
    EXPECT_EQ(structure.getDMObjectTypeWithName("drawing"), nullptr);
    EXPECT_EQ(structure.getDMObjectTypeWithName("DRAWING"), nullptr);
    EXPECT_EQ(structure.getDMObjectTypeWithName("Drawin"), nullptr);
    EXPECT_EQ(structure.getDMObjectTypeWithName("Drawings"), nullptr);
    EXPECT_EQ(structure.getDMObjectTypeWithName("Zzz"), nullptr);
    EXPECT_EQ(structure.getDMObjectTypeWithName("A"), nullptr);
}

TEST(DMStructureTest, OfTwoObjectsWithOneNameTheFirstInSortedOrderAnswers) {
    TOV_DMStructure structure;
    structure.appendDMStructureObject(TOV_DMStructureObject("Zeta"));
    structure.appendDMStructureObject(TOV_DMStructureObject("Part", "RLI", {}));
    structure.appendDMStructureObject(TOV_DMStructureObject("Alpha"));
    structure.appendDMStructureObject(TOV_DMStructureObject("Part", "DMITEM", {}));
    structure.sortAllDMInfo();
    ASSERT_EQ(namesOf(structure.getAllStructureObjects()),
              (Names{"Alpha", "Part", "Part", "Zeta"}));
    EXPECT_EQ(structure.getDMObjectTypeWithName("Part"), &structure.getAllStructureObjects()[1]);
    EXPECT_EQ(structure.isThisAnRLIObjectType("Part"),
              structure.getAllStructureObjects()[1].isThisAnRLI());
}

TEST(DMStructureTest, RLIQuestionIsFalseForDMItemsAndUnknownNames) {
    const TOV_DMStructure structure = sampleStructure();
    EXPECT_TRUE(structure.isThisAnRLIObjectType("Drawing"));
    EXPECT_TRUE(structure.isThisAnRLIObjectType("Model"));
    EXPECT_FALSE(structure.isThisAnRLIObjectType("Part"));
    EXPECT_FALSE(structure.isThisAnRLIObjectType("model"));
    EXPECT_FALSE(structure.isThisAnRLIObjectType("Unknown"));
    EXPECT_FALSE(structure.isThisAnRLIObjectType("Library_Item"));
}

TEST(DMStructureTest, SecondaryQuestionNeedsAKnownObjectType) {
    const TOV_DMStructure structure = sampleStructure();
    EXPECT_TRUE(structure.isAttributeSecondary("Part", "Description"));
    EXPECT_TRUE(structure.isAttributeSecondary("Drawing", "Thumbnail"));
    EXPECT_FALSE(structure.isAttributeSecondary("Part", "Number"));
    EXPECT_FALSE(structure.isAttributeSecondary("Part", "description"));
    EXPECT_FALSE(structure.isAttributeSecondary("part", "Description"));
    EXPECT_FALSE(structure.isAttributeSecondary("Unknown", "Description"));
}

TEST(DMStructureTest, FamilyAttributesOfADMItemAreTheRegularPrimaries) {
    const TOV_DMStructure structure = sampleStructure();
    Names names{"Before"};
    EXPECT_TRUE(structure.collectAttrsForObjectFamilyDetection("Part", names));
    EXPECT_EQ(names, (Names{"Before", "Code", "Number"}));
}

TEST(DMStructureTest, FamilyAttributesOfAnRLIAreTheRegularAndFilePrimaries) {
    const TOV_DMStructure structure = sampleStructure();
    Names names;
    EXPECT_TRUE(structure.collectAttrsForObjectFamilyDetection("Drawing", names));
    EXPECT_EQ(names, (Names{"Code", "Content", "Number"}));
}

TEST(DMStructureTest, FamilyAttributesOfAnUnknownTypeCollectNothing) {
    const TOV_DMStructure structure = sampleStructure();
    Names names{"Before"};
    EXPECT_FALSE(structure.collectAttrsForObjectFamilyDetection("part", names));
    EXPECT_EQ(names, (Names{"Before"}));
}

TEST(DMStructureTest, VersioningAttributesIgnoreVersioningSecondaries) {
    const TOV_DMStructure structure = sampleStructure();
    Names list{"Before"};
    EXPECT_TRUE(structure.collectVersioningAttributesOfObject("Part", list));
    EXPECT_EQ(list, (Names{"Before", "Version"}));
    NameSet set;
    EXPECT_TRUE(structure.collectVersioningAttributesOfObject("Drawing", set));
    EXPECT_EQ(set, (NameSet{"Version"}));
    Names none;
    EXPECT_TRUE(structure.collectVersioningAttributesOfObject("Model", none));
    EXPECT_TRUE(none.empty());
}

TEST(DMStructureTest, VersioningAttributesOfAnUnknownTypeCollectNothing) {
    const TOV_DMStructure structure = sampleStructure();
    Names list{"Before"};
    EXPECT_FALSE(structure.collectVersioningAttributesOfObject("Unknown", list));
    EXPECT_EQ(list, (Names{"Before"}));
    NameSet set{"Before"};
    EXPECT_FALSE(structure.collectVersioningAttributesOfObject("PART", set));
    EXPECT_EQ(set, (NameSet{"Before"}));
}

TEST(DMStructureTest, LibraryItemEqualsAnRLITypeInBothOrders) {
    const TOV_DMStructure structure = sampleStructure();
    EXPECT_TRUE(structure.areObjectTypesThatShouldBeConsideredEqual("Library_Item", "Drawing"));
    EXPECT_TRUE(structure.areObjectTypesThatShouldBeConsideredEqual("Drawing", "Library_Item"));
    EXPECT_TRUE(structure.areObjectTypesThatShouldBeConsideredEqual("Model", "Library_Item"));
}

TEST(DMStructureTest, LibraryItemDiffersFromADMItemAndFromAnUnknownType) {
    const TOV_DMStructure structure = sampleStructure();
    EXPECT_FALSE(structure.areObjectTypesThatShouldBeConsideredEqual("Library_Item", "Part"));
    EXPECT_FALSE(structure.areObjectTypesThatShouldBeConsideredEqual("Part", "Library_Item"));
    EXPECT_FALSE(structure.areObjectTypesThatShouldBeConsideredEqual("Library_Item", "Unknown"));
    EXPECT_FALSE(structure.areObjectTypesThatShouldBeConsideredEqual("Unknown", "Library_Item"));
}

TEST(DMStructureTest, LibraryItemWordIgnoresCaseButTheLookupDoesNot) {
    const TOV_DMStructure structure = sampleStructure();
    EXPECT_TRUE(
        structure.areObjectTypesThatShouldBeConsideredEqual("Library_Item", "library_item"));
    EXPECT_TRUE(structure.areObjectTypesThatShouldBeConsideredEqual("LIBRARY_ITEM", "Drawing"));
    EXPECT_TRUE(structure.areObjectTypesThatShouldBeConsideredEqual("Drawing", "library_item"));
    EXPECT_FALSE(structure.areObjectTypesThatShouldBeConsideredEqual("Library_Item", "drawing"));
    EXPECT_FALSE(structure.areObjectTypesThatShouldBeConsideredEqual("DRAWING", "Library_Item"));
}

TEST(DMStructureTest, TwoDifferentRLITypesDiffer) {
    const TOV_DMStructure structure = sampleStructure();
    EXPECT_FALSE(structure.areObjectTypesThatShouldBeConsideredEqual("Drawing", "Model"));
    EXPECT_FALSE(structure.areObjectTypesThatShouldBeConsideredEqual("Model", "Drawing"));
}

TEST(DMStructureTest, AnyEqualsEveryTypeKnownOrNot) {
    const TOV_DMStructure structure = sampleStructure();
    EXPECT_TRUE(structure.areObjectTypesThatShouldBeConsideredEqual("Part", "<any>"));
    EXPECT_TRUE(structure.areObjectTypesThatShouldBeConsideredEqual("<any>", "Part"));
    EXPECT_TRUE(structure.areObjectTypesThatShouldBeConsideredEqual("Unknown", "<any>"));
    EXPECT_TRUE(structure.areObjectTypesThatShouldBeConsideredEqual("<ANY>", "Unknown"));
    EXPECT_TRUE(structure.areObjectTypesThatShouldBeConsideredEqual("<any>", "Library_Item"));
    const TOV_DMStructure empty;
    EXPECT_TRUE(empty.areObjectTypesThatShouldBeConsideredEqual("Unknown", "<any>"));
}

TEST(DMStructureTest, OtherTypesAreEqualOnlyIgnoringCase) {
    const TOV_DMStructure structure = sampleStructure();
    EXPECT_TRUE(structure.areObjectTypesThatShouldBeConsideredEqual("Part", "Part"));
    EXPECT_TRUE(structure.areObjectTypesThatShouldBeConsideredEqual("Part", "pART"));
    EXPECT_TRUE(structure.areObjectTypesThatShouldBeConsideredEqual("Unknown", "UNKNOWN"));
    EXPECT_FALSE(structure.areObjectTypesThatShouldBeConsideredEqual("Part", "Parts"));
    EXPECT_FALSE(structure.areObjectTypesThatShouldBeConsideredEqual("Part", "Drawing"));
    EXPECT_FALSE(structure.areObjectTypesThatShouldBeConsideredEqual("Part", ""));
}

TEST(DMStructureTest, WithoutInformationLibraryItemEqualsOnlyItself) {
    const TOV_DMStructure empty;
    EXPECT_TRUE(empty.areObjectTypesThatShouldBeConsideredEqual("Library_Item", "LIBRARY_ITEM"));
    EXPECT_FALSE(empty.areObjectTypesThatShouldBeConsideredEqual("Library_Item", "Drawing"));
    EXPECT_FALSE(empty.areObjectTypesThatShouldBeConsideredEqual("Drawing", "Library_Item"));
}

TEST(DMStructureTest, CopyAndAssignmentAreDeep) {
    TOV_DMStructure original = sampleStructure();
    const TOV_DMStructure copy = original;
    TOV_DMStructure assigned;
    assigned = original;
    original.clearAllInfo();
    EXPECT_EQ(namesOf(copy.getAllStructureObjects()), (Names{"Drawing", "Model", "Part"}));
    EXPECT_EQ(copy.getOverwriteLabel(), "Overwrite");
    EXPECT_EQ(namesOf(assigned.getAllStructureObjects()), (Names{"Drawing", "Model", "Part"}));
    EXPECT_TRUE(assigned.isThisAnRLIObjectType("Model"));
}

TEST(DMStructureTest, PrintsLabelThenEachObjectInListOrder) {
    tovtest::PrivateCore core;
    TOV_DMStructure structure;
    structure.appendDMStructureObject(
        TOV_DMStructureObject("Part", "DMITEM", {TOV_DMAttribute("Number", "REGULAR", true)}));
    structure.appendDMStructureObject(TOV_DMStructureObject(
        "Drawing", "RLI",
        {TOV_DMAttribute("Version", "VERSIONING", true), TOV_DMAttribute("Note", "FILE", false)}));
    structure.setOverwriteLabel("Overwrite");
    EXPECT_EQ(
        tovtest::captureConsole(core.logger(), [&] { structure.printContentsDBG(core.logger()); }),
        asConsoleLines({"---------------------------------All DM Info---------------------------",
                        "Overwrite Label: Overwrite",
                        "---------DM Structure Objects -----------",
                        "-------------------------DM Structure object-------------------------",
                        "name: Part",
                        "object category: DMITEM",
                        "-----Primaries:",
                        "*Attribute:",
                        "Name : Number",
                        "Category : REGULAR",
                        "IsPrimary : True",
                        "-----Secondaries:",
                        "-------------------------DM Structure object-------------------------",
                        "name: Drawing",
                        "object category: RLI",
                        "-----Primaries:",
                        "*Attribute:",
                        "Name : Version",
                        "Category : VERSIONING",
                        "IsPrimary : True",
                        "-----Secondaries:",
                        "*Attribute:",
                        "Name : Note",
                        "Category : FILE",
                        "IsPrimary : False"}));
}

TEST(DMStructureTest, PrintsAnEmptyStructureAsItsHeadings) {
    tovtest::PrivateCore core;
    const TOV_DMStructure structure;
    EXPECT_EQ(
        tovtest::captureConsole(core.logger(), [&] { structure.printContentsDBG(core.logger()); }),
        asConsoleLines({"---------------------------------All DM Info---------------------------",
                        "Overwrite Label: ", "---------DM Structure Objects -----------"}));
}

TEST(DMStructureTest, PrintsNothingWhileTheLoggerIsOff) {
    tovtest::PrivateCore core;
    const TOV_DMStructure structure = sampleStructure();
    std::fflush(stdout);
    testing::internal::CaptureStdout();
    structure.printContentsDBG(core.logger());
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
