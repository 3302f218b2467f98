// Tests of conflict resolution rules: both predicates, the sentences and debug
// lines, the order of rules, and the "conflictResolutions" section of the
// rules document.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "test_support.h"
#include "tov/TOVConflictResolution.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVResponse.h"
#include "tov/TOV_DMAttribute.h"
#include "tov/TOV_DMStructure.h"
#include "tov/TOV_DMStructureObject.h"
#include "tov/entry_points.h"
#include "tov/vocabulary.h"

namespace {

using Values = TOVConflictResolution::TOVConflictResolutionValues;

const char* const kMissingKeywordsForPart =
    "Conflict Resolution rule for Part demands ALL keywords: "
    "[attribute,fromValue,toValue,updatesFile,hasDifferentPrimaries,conflictResolution]";
const char* const kSuccess = "Successfully initialized TOV rules";
const char* const kHeading = "---------------CONFLICTS RESOLUTIONS RULES---------------\n";

const char* const kIrrelevant = "representation file updating is irrelevant";
const char* const kUpdated = "representation file is updated";
const char* const kNotUpdated = "representation file is not updated";
const char* const kNoConstraint = "there is no constraint whether you should spinup or not";
const char* const kOverwrite = "we MUST overwrite";
const char* const kSpinup = "we MUST spinup";

std::string wordsOf(const TOVConflictResolution& rule) {
    std::string text;
    rule.expressRuleInWords(text);
    return text;
}

// The seven debug lines of one rule as the console shows them.
std::string printedRule(const std::string& objectType, const std::string& attribute,
                        const std::string& fromValue, const std::string& toValue,
                        const std::string& fileWords, const std::string& resolutionWords) {
    return "**TOVConflictResolution rule:\n"
           "Object type : " +
           objectType + "\nAttribute : " + attribute + "\nFrom value : " + fromValue +
           "\nTo value : " + toValue + "\nFile: " + fileWords +
           "\nSpinup constraint: " + resolutionWords + "\n";
}

std::string printConflictResolutions(tovtest::PrivateCore& core) {
    return tovtest::captureConsole(
        core.logger(), [&] { core.rules()->printConflictResolutionRulesDBG(core.logger()); });
}

// A rules document holding only the given "conflictResolutions" section.
TOVResponse loadSection(tovtest::PrivateCore& core, const std::string& section) {
    return InitializeTOVRules("{\"conflictResolutions\":" + section + "}", core.get());
}

// One rule object of the given object type, with `extra` members added.
std::string documentWithRule(const std::string& objectType, const std::string& extra) {
    return "{\"" + objectType +
           "\": [{\"attribute\": \"A\", \"fromValue\": \"X\", \"toValue\": \"Y\", "
           "\"updatesFile\": \"N_A\", \"conflictResolution\": \"spinup\"" +
           extra + "}]}";
}

// A data model with the RLI type "Doc" and the DMITEM type "Item".
void fillDataModel(TOV_DMStructure& structure) {
    structure.appendDMStructureObject(
        TOV_DMStructureObject("Doc", "RLI", {TOV_DMAttribute("A", "REGULAR", true)}));
    structure.appendDMStructureObject(
        TOV_DMStructureObject("Item", "DMITEM", {TOV_DMAttribute("A", "REGULAR", true)}));
    structure.sortAllDMInfo();
}

const AttributesMap kInitial = {{"A", "X"}, {"Rev", "1"}};
const AttributesMap kTargetSameRev = {{"A", "Y"}, {"Rev", "1"}};
const AttributesMap kTargetNewRev = {{"A", "Y"}, {"Rev", "2"}};
const std::vector<std::string> kVersioning = {"Rev"};

// ---------------------------------------------------------------- shouldTransitionBeForbidden

TEST(ConflictResolutionForbidden, OverwriteRuleForbidsAChangeOfVersioningAttribute) {
    const TOVConflictResolution rule("Part", "A", "X", "Y", "N_A", "overwrite", false);
    EXPECT_TRUE(rule.shouldTransitionBeForbidden(kInitial, kTargetNewRev, kVersioning));
    EXPECT_FALSE(rule.shouldTransitionBeForbidden(kInitial, kTargetSameRev, kVersioning));
}

TEST(ConflictResolutionForbidden, SpinupRuleForbidsLeavingVersioningAttributesAlone) {
    const TOVConflictResolution rule("Part", "A", "X", "Y", "N_A", "spinup", false);
    EXPECT_TRUE(rule.shouldTransitionBeForbidden(kInitial, kTargetSameRev, kVersioning));
    EXPECT_FALSE(rule.shouldTransitionBeForbidden(kInitial, kTargetNewRev, kVersioning));
}

TEST(ConflictResolutionForbidden, EmptyVersioningListCountsAsNoChange) {
    const TOVConflictResolution spinup("Part", "A", "X", "Y", "N_A", "spinup", false);
    const TOVConflictResolution overwrite("Part", "A", "X", "Y", "N_A", "overwrite", false);
    EXPECT_TRUE(spinup.shouldTransitionBeForbidden(kInitial, kTargetNewRev, {}));
    EXPECT_FALSE(overwrite.shouldTransitionBeForbidden(kInitial, kTargetNewRev, {}));
}

TEST(ConflictResolutionForbidden, VersioningAttributeInOnePacketOnlyIsNoChange) {
    const TOVConflictResolution spinup("Part", "A", "X", "Y", "N_A", "spinup", false);
    const TOVConflictResolution overwrite("Part", "A", "X", "Y", "N_A", "overwrite", false);
    const AttributesMap initial = {{"A", "X"}};
    EXPECT_TRUE(spinup.shouldTransitionBeForbidden(initial, kTargetNewRev, kVersioning));
    EXPECT_FALSE(overwrite.shouldTransitionBeForbidden(initial, kTargetNewRev, kVersioning));
    EXPECT_TRUE(spinup.shouldTransitionBeForbidden(kInitial, {{"A", "Y"}}, kVersioning));
}

TEST(ConflictResolutionForbidden, VersioningValuesAreComparedIgnoringCaseAndWithoutWildcard) {
    const TOVConflictResolution spinup("Part", "A", "X", "Y", "N_A", "spinup", false);
    EXPECT_TRUE(spinup.shouldTransitionBeForbidden({{"A", "X"}, {"Rev", "a"}},
                                                   {{"A", "Y"}, {"Rev", "A"}}, kVersioning));
    // "<any>" is a change here: the comparison does not know the wildcard.
    EXPECT_FALSE(spinup.shouldTransitionBeForbidden({{"A", "X"}, {"Rev", "a"}},
                                                    {{"A", "Y"}, {"Rev", "<any>"}}, kVersioning));
}

TEST(ConflictResolutionForbidden, FileSettingNoAgainstUploadWords) {
    const TOVConflictResolution rule("Part", "A", "X", "Y", "NO", "spinup", false);
    AttributesMap target = kTargetSameRev;
    EXPECT_TRUE(rule.shouldTransitionBeForbidden(kInitial, target, kVersioning));
    target["_file_upload_"] = "true";
    EXPECT_FALSE(rule.shouldTransitionBeForbidden(kInitial, target, kVersioning));
    target["_file_upload_"] = "false";
    EXPECT_TRUE(rule.shouldTransitionBeForbidden(kInitial, target, kVersioning));
    target["_file_upload_"] = "N_A";
    EXPECT_TRUE(rule.shouldTransitionBeForbidden(kInitial, target, kVersioning));
}

TEST(ConflictResolutionForbidden, NoConstraintNeverForbids) {
    const TOVConflictResolution rule("Part", "A", "X", "Y", "N_A", "Overwrite", false);
    EXPECT_FALSE(rule.shouldTransitionBeForbidden(kInitial, kTargetNewRev, kVersioning));
    EXPECT_FALSE(rule.shouldTransitionBeForbidden(kInitial, kTargetSameRev, kVersioning));
}

TEST(ConflictResolutionForbidden, ObjectTypeIsNotLookedAt) {
    const TOVConflictResolution rule("Other", "A", "X", "Y", "N_A", "spinup", false);
    EXPECT_TRUE(rule.shouldTransitionBeForbidden(kInitial, kTargetSameRev, kVersioning));
}

// ---------------------------------------------------------------- constrained resolution

TEST(ConflictResolutionConstrained, WritesTheForcedValueWhenTheRuleHolds) {
    TOV_DMStructure structure;
    Values value = TOVConflictResolution::TOVConflictResolution_NoConstraint;
    EXPECT_TRUE(TOVConflictResolution("Part", "A", "X", "Y", "N_A", "overwrite", false)
                    .doesThisTransitionHaveAConstrainedConflictResolution(
                        "Part", kInitial, kTargetSameRev, &structure, value));
    EXPECT_EQ(value, TOVConflictResolution::TOVConflictResolution_Overwrite);
    EXPECT_TRUE(TOVConflictResolution("Part", "A", "X", "Y", "N_A", "spinup", false)
                    .doesThisTransitionHaveAConstrainedConflictResolution(
                        "Part", kInitial, kTargetSameRev, &structure, value));
    EXPECT_EQ(value, TOVConflictResolution::TOVConflictResolution_Spinup);
}

TEST(ConflictResolutionConstrained, FalseResultLeavesTheOutputAsItWas) {
    TOV_DMStructure structure;
    const TOVConflictResolution rule("Part", "A", "X", "Y", "N_A", "overwrite", false);
    Values value = TOVConflictResolution::TOVConflictResolution_Spinup;
    EXPECT_FALSE(rule.doesThisTransitionHaveAConstrainedConflictResolution(
        "Doc", kInitial, kTargetSameRev, &structure, value));
    EXPECT_EQ(value, TOVConflictResolution::TOVConflictResolution_Spinup);
    EXPECT_FALSE(rule.doesThisTransitionHaveAConstrainedConflictResolution(
        "Part", kInitial, {{"A", "Z"}}, &structure, value));
    EXPECT_EQ(value, TOVConflictResolution::TOVConflictResolution_Spinup);
    const TOVConflictResolution inert("Part", "A", "X", "Y", "N_A", "", false);
    EXPECT_FALSE(inert.doesThisTransitionHaveAConstrainedConflictResolution(
        "Part", kInitial, kTargetSameRev, &structure, value));
    EXPECT_EQ(value, TOVConflictResolution::TOVConflictResolution_Spinup);
}

TEST(ConflictResolutionConstrained, ObjectTypeMatching) {
    TOV_DMStructure structure;
    fillDataModel(structure);
    const TOVConflictResolution library("Library_Item", "A", "X", "Y", "N_A", "spinup", false);
    const TOVConflictResolution anyType("<any>", "A", "X", "Y", "N_A", "spinup", false);
    const TOVConflictResolution part("Part", "A", "X", "Y", "N_A", "spinup", false);
    const TOVConflictResolution doc("Doc", "A", "X", "Y", "N_A", "spinup", false);
    auto holds = [&](const TOVConflictResolution& rule, const std::string& type) {
        Values value = TOVConflictResolution::TOVConflictResolution_NoConstraint;
        const bool result = rule.doesThisTransitionHaveAConstrainedConflictResolution(
            type, kInitial, kTargetSameRev, &structure, value);
        EXPECT_EQ(value, result ? TOVConflictResolution::TOVConflictResolution_Spinup
                                : TOVConflictResolution::TOVConflictResolution_NoConstraint);
        return result;
    };
    EXPECT_TRUE(holds(library, "Doc"));
    EXPECT_FALSE(holds(library, "Item"));
    EXPECT_FALSE(holds(library, "Unknown"));
    EXPECT_TRUE(holds(library, "library_item"));
    EXPECT_TRUE(holds(doc, "Library_Item"));
    EXPECT_TRUE(holds(anyType, "Item"));
    EXPECT_TRUE(holds(anyType, "Whatever"));
    EXPECT_TRUE(holds(part, "PART"));
    EXPECT_FALSE(holds(part, "Doc"));
    EXPECT_TRUE(holds(part, "<any>"));
}

TEST(ConflictResolutionConstrained, FileSettingAgainstUploadWords) {
    TOV_DMStructure structure;
    auto holds = [&](const char* fileWord, const AttributesMap& target) {
        Values value = TOVConflictResolution::TOVConflictResolution_NoConstraint;
        return TOVConflictResolution("Part", "A", "X", "Y", fileWord, "overwrite", false)
            .doesThisTransitionHaveAConstrainedConflictResolution("Part", kInitial, target,
                                                                  &structure, value);
    };
    const AttributesMap silent = {{"A", "Y"}};
    const AttributesMap uploads = {{"A", "Y"}, {"_file_upload_", "true"}};
    const AttributesMap keeps = {{"A", "Y"}, {"_file_upload_", "NO"}};
    const AttributesMap unclear = {{"A", "Y"}, {"_file_upload_", "maybe"}};
    EXPECT_FALSE(holds("NO", uploads));
    EXPECT_TRUE(holds("NO", silent));
    EXPECT_TRUE(holds("NO", keeps));
    EXPECT_TRUE(holds("NO", unclear));
    EXPECT_TRUE(holds("YES", uploads));
    EXPECT_FALSE(holds("YES", keeps));
    EXPECT_TRUE(holds("YES", silent));
    for (const AttributesMap* target : {&silent, &uploads, &keeps, &unclear}) {
        EXPECT_TRUE(holds("N_A", *target));
        // A word in the wrong case leaves the setting at "irrelevant".
        EXPECT_TRUE(holds("no", *target));
    }
}

TEST(ConflictResolutionConstrained, ValueChecks) {
    TOV_DMStructure structure;
    Values value = TOVConflictResolution::TOVConflictResolution_NoConstraint;
    const TOVConflictResolution rule("Part", "A", "x", "y", "N_A", "spinup", false);
    // Case is ignored in values.
    EXPECT_TRUE(rule.doesThisTransitionHaveAConstrainedConflictResolution(
        "Part", {{"A", "X"}}, {{"A", "Y"}}, &structure, value));
    // A new object, or one without the attribute, is never bound.
    EXPECT_FALSE(rule.doesThisTransitionHaveAConstrainedConflictResolution("Part", {}, {{"A", "Y"}},
                                                                           &structure, value));
    EXPECT_FALSE(TOVConflictResolution("Part", "A", "<any>", "<any>", "N_A", "spinup", false)
                     .doesThisTransitionHaveAConstrainedConflictResolution("Part", {}, {{"A", "Y"}},
                                                                           &structure, value));
    EXPECT_FALSE(rule.doesThisTransitionHaveAConstrainedConflictResolution(
        "Part", {{"B", "X"}}, {{"A", "Y"}}, &structure, value));
    // A target without the attribute keeps the initial value.
    EXPECT_FALSE(rule.doesThisTransitionHaveAConstrainedConflictResolution("Part", {{"A", "X"}}, {},
                                                                           &structure, value));
    EXPECT_TRUE(TOVConflictResolution("Part", "A", "X", "X", "N_A", "spinup", false)
                    .doesThisTransitionHaveAConstrainedConflictResolution("Part", {{"A", "X"}}, {},
                                                                          &structure, value));
    // "ALL" and "Reset" are ordinary values.
    EXPECT_FALSE(TOVConflictResolution("Part", "A", "ALL", "Reset", "N_A", "spinup", false)
                     .doesThisTransitionHaveAConstrainedConflictResolution(
                         "Part", {{"A", "X"}}, {{"A", "Y"}}, &structure, value));
    EXPECT_TRUE(TOVConflictResolution("Part", "A", "ALL", "Reset", "N_A", "spinup", false)
                    .doesThisTransitionHaveAConstrainedConflictResolution(
                        "Part", {{"A", "all"}}, {{"A", "RESET"}}, &structure, value));
}

TEST(ConflictResolutionConstrained, CapitalisedResolutionHoldsForNothing) {
    TOV_DMStructure structure;
    Values value = TOVConflictResolution::TOVConflictResolution_Overwrite;
    for (const char* word : {"Overwrite", "SPINUP", "", "none"}) {
        EXPECT_FALSE(TOVConflictResolution("<any>", "A", "<any>", "<any>", "N_A", word, false)
                         .doesThisTransitionHaveAConstrainedConflictResolution(
                             "Part", kInitial, kTargetSameRev, &structure, value))
            << word;
    }
    EXPECT_EQ(value, TOVConflictResolution::TOVConflictResolution_Overwrite);
    EXPECT_FALSE(TOVConflictResolution().doesThisTransitionHaveAConstrainedConflictResolution(
        "", {{"", ""}}, {{"", ""}}, &structure, value));
}

// ---------------------------------------------------------------- words

TEST(ConflictResolutionWords, EveryFileSettingAndResolution) {
    EXPECT_EQ(wordsOf(TOVConflictResolution("Part", "A", "X", "Y", "N_A", "overwrite", false)),
              "For Part: When A transitions from \"X\" to \"Y\"  then we MUST overwrite");
    EXPECT_EQ(wordsOf(TOVConflictResolution("Part", "A", "X", "Y", "YES", "spinup", false)),
              "For Part: When A transitions from \"X\" to \"Y\" and representation file is "
              "updated then we MUST spinup");
    EXPECT_EQ(wordsOf(TOVConflictResolution("Part", "A", "X", "Y", "NO", "other", true)),
              "For Part: When A transitions from \"X\" to \"Y\" and representation file is not "
              "updated then there is no constraint whether you should spinup or not");
    EXPECT_EQ(wordsOf(TOVConflictResolution("Part", "A", "X", "Y", "maybe", "spinup", false)),
              "For Part: When A transitions from \"X\" to \"Y\"  then we MUST spinup");
}

TEST(ConflictResolutionWords, AnyFromValueHasNoShorterFormAndTextIsAppended) {
    std::string text = "Rule: ";
    TOVConflictResolution("<any>", "A", "<any>", "<any>", "N_A", "spinup", false)
        .expressRuleInWords(text);
    EXPECT_EQ(text,
              "Rule: For <any>: When A transitions from \"<any>\" to \"<any>\"  then we MUST "
              "spinup");
    EXPECT_EQ(wordsOf(TOVConflictResolution()),
              "For : When  transitions from \"\" to \"\"  then there is no constraint whether you "
              "should spinup or not");
}

// ---------------------------------------------------------------- order

TEST(ConflictResolutionOrder, StringKeysInTurnThenFileSettingAsNumber) {
    auto rule = [](const char* type, const char* attribute, const char* from, const char* to,
                   const char* file) {
        return TOVConflictResolution(type, attribute, from, to, file, "spinup", false);
    };
    EXPECT_TRUE(rule("Part", "A", "X", "Y", "NO") < rule("Assembly", "A", "X", "Y", "N_A"));
    EXPECT_FALSE(rule("Assembly", "A", "X", "Y", "N_A") < rule("Part", "A", "X", "Y", "NO"));
    EXPECT_TRUE(rule("T", "A", "Z", "Z", "NO") < rule("T", "B", "A", "A", "N_A"));
    EXPECT_TRUE(rule("T", "A", "A", "Z", "NO") < rule("T", "A", "b", "A", "N_A"));
    EXPECT_TRUE(rule("T", "A", "A", "a", "NO") < rule("T", "A", "A", "B", "N_A"));
    // Equal strings, case ignored: not applicable before yes before no.
    EXPECT_TRUE(rule("t", "a", "x", "y", "N_A") < rule("T", "A", "X", "Y", "YES"));
    EXPECT_TRUE(rule("T", "A", "X", "Y", "YES") < rule("t", "a", "x", "y", "NO"));
    EXPECT_FALSE(rule("T", "A", "X", "Y", "NO") < rule("T", "A", "X", "Y", "YES"));
    EXPECT_FALSE(rule("T", "A", "X", "Y", "YES") < rule("T", "A", "X", "Y", "YES"));
}

TEST(ConflictResolutionOrder, ResolutionAndPrimariesTakeNoPart) {
    const TOVConflictResolution overwrite("T", "A", "X", "Y", "YES", "overwrite", true);
    const TOVConflictResolution spinup("T", "A", "X", "Y", "YES", "spinup", false);
    EXPECT_FALSE(overwrite < spinup);
    EXPECT_FALSE(spinup < overwrite);
}

// ---------------------------------------------------------------- debug print

TEST(ConflictResolutionPrint, StorePrintsHeadingThenSevenLinesPerRule) {
    tovtest::PrivateCore core;
    EXPECT_EQ(printConflictResolutions(core), kHeading);
    core.rules()->appendNewConflictResolutionRule(
        TOVConflictResolution("Part", "A", "X", "Y", "N_A", "overwrite", false));
    core.rules()->appendNewConflictResolutionRule(
        TOVConflictResolution("Doc", "B", "1", "2", "YES", "spinup", true));
    core.rules()->appendNewConflictResolutionRule(
        TOVConflictResolution("<any>", "C", "<any>", "3", "NO", "", false));
    EXPECT_EQ(printConflictResolutions(core),
              std::string(kHeading) + printedRule("Part", "A", "X", "Y", kIrrelevant, kOverwrite) +
                  printedRule("Doc", "B", "1", "2", kUpdated, kSpinup) +
                  printedRule("<any>", "C", "<any>", "3", kNotUpdated, kNoConstraint));
}

// ---------------------------------------------------------------- document

TEST(ConflictResolutionDocument, LoadsRulesInSortOrder) {
    tovtest::PrivateCore core;
    const TOVResponse response = loadSection(core, R"({
        "Assembly": [
            {"attribute": "A", "fromValue": "X", "toValue": "Y", "updatesFile": "N_A",
             "conflictResolution": "overwrite"}
        ],
        "Part": [
            {"attribute": "A", "fromValue": "X", "toValue": "Y", "updatesFile": "NO",
             "conflictResolution": "spinup", "hasDifferentPrimaries": true},
            {"conflictResolution": "overwrite", "updatesFile": "YES", "toValue": "Y",
             "fromValue": "X", "attribute": "A", "hasDifferentPrimaries": false},
            {"attribute": "A", "fromValue": "X", "toValue": "Y", "updatesFile": "N_A",
             "conflictResolution": "Overwrite", "comment": 5, "extra": {"a": [1]}}
        ],
        "ALL": [
            {"attribute": "A", "fromValue": "<any>", "toValue": "<any>", "updatesFile": "unknown",
             "conflictResolution": "spinup"}
        ]
    })");
    EXPECT_TRUE(response.getGeneralResult()) << tovtest::asText(response);
    EXPECT_EQ(response.getGeneralResultComment(), kSuccess);
    EXPECT_EQ(printConflictResolutions(core),
              std::string(kHeading) +
                  printedRule("Part", "A", "X", "Y", kIrrelevant, kNoConstraint) +
                  printedRule("Part", "A", "X", "Y", kUpdated, kOverwrite) +
                  printedRule("Part", "A", "X", "Y", kNotUpdated, kSpinup) +
                  printedRule("<any>", "A", "<any>", "<any>", kIrrelevant, kSpinup) +
                  printedRule("Assembly", "A", "X", "Y", kIrrelevant, kOverwrite));
}

TEST(ConflictResolutionDocument, LoadedRulesAnswerThroughTheStore) {
    tovtest::PrivateCore core;
    fillDataModel(*core.dmInfo());
    const TOVResponse response = loadSection(core, R"({
        "Library_Item": [
            {"attribute": "A", "fromValue": "X", "toValue": "Y", "updatesFile": "YES",
             "conflictResolution": "spinup"}
        ],
        "Part": [
            {"attribute": "A", "fromValue": "X", "toValue": "<any>", "updatesFile": "N_A",
             "conflictResolution": "overwrite"}
        ]
    })");
    ASSERT_TRUE(response.getGeneralResult()) << tovtest::asText(response);

    std::vector<const TOVConflictResolution*> forDoc;
    EXPECT_TRUE(
        core.rules()->getRelatedConflictResolutionRules("Doc", {"A"}, core.dmInfo(), forDoc));
    ASSERT_EQ(forDoc.size(), 1u);
    Values value = TOVConflictResolution::TOVConflictResolution_NoConstraint;
    EXPECT_TRUE(forDoc[0]->doesThisTransitionHaveAConstrainedConflictResolution(
        "Doc", kInitial, {{"A", "Y"}, {"_file_upload_", "true"}}, core.dmInfo(), value));
    EXPECT_EQ(value, TOVConflictResolution::TOVConflictResolution_Spinup);
    EXPECT_TRUE(forDoc[0]->shouldTransitionBeForbidden(kInitial, kTargetSameRev, kVersioning));
    EXPECT_FALSE(forDoc[0]->shouldTransitionBeForbidden(kInitial, kTargetNewRev, kVersioning));

    std::vector<const TOVConflictResolution*> forItem;
    EXPECT_FALSE(
        core.rules()->getRelatedConflictResolutionRules("Item", {"A"}, core.dmInfo(), forItem));

    std::vector<const TOVConflictResolution*> forPart;
    EXPECT_TRUE(
        core.rules()->getRelatedConflictResolutionRules("Part", {"A"}, core.dmInfo(), forPart));
    ASSERT_EQ(forPart.size(), 1u);
    EXPECT_TRUE(forPart[0]->shouldTransitionBeForbidden(kInitial, kTargetNewRev, kVersioning));
    EXPECT_FALSE(forPart[0]->shouldTransitionBeForbidden(kInitial, kTargetSameRev, kVersioning));
}

TEST(ConflictResolutionDocument, MissingOrEmptyKeywordMessage) {
    for (const char* rule :
         {R"({"attribute": "A", "fromValue": "X", "toValue": "Y", "updatesFile": "N_A"})",
          R"({"attribute": "A", "fromValue": "X", "toValue": "", "updatesFile": "N_A",
              "conflictResolution": "spinup"})",
          R"({"Attribute": "A", "fromValue": "X", "toValue": "Y", "updatesFile": "N_A",
              "conflictResolution": "spinup"})",
          R"({"attribute": "A", "fromValue": "X", "toValue": "Y", "updatesFile": "",
              "conflictResolution": "spinup", "hasDifferentPrimaries": true})"}) {
        tovtest::PrivateCore core;
        const TOVResponse response = loadSection(core, std::string("{\"Part\": [") + rule + "]}");
        EXPECT_FALSE(response.getGeneralResult()) << rule;
        EXPECT_EQ(response.getGeneralResultComment(), kMissingKeywordsForPart) << rule;
        EXPECT_FALSE(core.rules()->existAnyRules()) << rule;
    }
}

TEST(ConflictResolutionDocument, EmptyObjectTypeCountsAsMissing) {
    tovtest::PrivateCore core;
    const TOVResponse response = loadSection(core, documentWithRule("", ""));
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(),
              "Conflict Resolution rule demands ALL keywords: "
              "[attribute,fromValue,toValue,updatesFile,hasDifferentPrimaries,conflictResolution]");
}

TEST(ConflictResolutionDocument, HasDifferentPrimariesIsOptionalButMustBeABool) {
    tovtest::PrivateCore core;
    const TOVResponse withoutIt = loadSection(core, documentWithRule("Part", ""));
    EXPECT_TRUE(withoutIt.getGeneralResult());
    EXPECT_EQ(withoutIt.getGeneralResultComment(), kSuccess);
    EXPECT_TRUE(core.rules()->existAnyRules());

    const TOVResponse asString =
        loadSection(core, documentWithRule("Part", ", \"hasDifferentPrimaries\": \"true\""));
    EXPECT_FALSE(asString.getGeneralResult());
    EXPECT_EQ(asString.getGeneralResultComment(),
              "Conflict Resolution rule value for hasDifferentPrimaries of Part should be a "
              "boolean.");
    EXPECT_FALSE(core.rules()->existAnyRules());
}

TEST(ConflictResolutionDocument, NonStringValueGivesTheStringError) {
    tovtest::PrivateCore core;
    const TOVResponse response = loadSection(core, R"({"Part": [
        {"attribute": "A", "fromValue": "X", "toValue": ["Y"], "updatesFile": "N_A",
         "conflictResolution": "spinup"}
    ]})");
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(),
              "Conflict Resolution rule value for toValue of Part should be a string.");
    EXPECT_EQ(
        loadSection(core, R"({"": [{"conflictResolution": true}]})").getGeneralResultComment(),
        "Conflict Resolution rule value for conflictResolution should be a string.");
    // Members are read in document order, so the first bad one is reported.
    EXPECT_EQ(loadSection(core, R"({"Part": [{"updatesFile": 1, "hasDifferentPrimaries": "x"}]})")
                  .getGeneralResultComment(),
              "Conflict Resolution rule value for updatesFile of Part should be a string.");
}

TEST(ConflictResolutionDocument, AllBecomesAnyOnlyOnceARuleOfItLoaded) {
    tovtest::PrivateCore core;
    EXPECT_EQ(loadSection(core, R"({"ALL": [{"attribute": "A"}]})").getGeneralResultComment(),
              "Conflict Resolution rule for ALL demands ALL keywords: "
              "[attribute,fromValue,toValue,updatesFile,hasDifferentPrimaries,conflictResolution]");
    const TOVResponse response = loadSection(core, R"({"aLL": [
        {"attribute": "A", "fromValue": "X", "toValue": "Y", "updatesFile": "N_A",
         "conflictResolution": "spinup"},
        {"attribute": 7}
    ]})");
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(),
              "Conflict Resolution rule value for attribute of <any> should be a string.");
    EXPECT_FALSE(core.rules()->existAnyRules());
}

TEST(ConflictResolutionDocument, FrameErrorsNameTheRule) {
    tovtest::PrivateCore core;
    EXPECT_EQ(loadSection(core, R"({"Part": "rules"})").getGeneralResultComment(),
              "Conflict Resolution rules for Part should be in a List.");
    EXPECT_EQ(loadSection(core, R"({"Part": [[]]})").getGeneralResultComment(),
              "Conflict Resolution rule in list for Part should be a map.");
}

TEST(ConflictResolutionDocument, ErrorsOfBothSectionsAreJoinedInSectionOrder) {
    tovtest::PrivateCore core;
    const TOVResponse response = InitializeTOVRules(R"({
        "conflictResolutions": {"Part": [{"attribute": "A"}]},
        "fileConstraints": {"Part": [{"attribute": "A"}]}
    })",
                                                    core.get());
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(),
              "File Constraint rule for Part demands ALL keywords: "
              "[attribute,fromValue,toValue,updateFile]|" +
                  std::string(kMissingKeywordsForPart));
}

}  // namespace
