// Tests of file constraint rules: the predicate, the sentences and debug lines,
// the order of rules, and the "fileConstraints" section of the rules document.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "test_support.h"
#include "tov/TOVFileConstraint.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVResponse.h"
#include "tov/entry_points.h"
#include "tov/vocabulary.h"

namespace {

const char* const kMissingKeywordsForPart =
    "File Constraint rule for Part demands ALL keywords: "
    "[attribute,fromValue,toValue,updateFile]";
const char* const kSuccess = "Successfully initialized TOV rules";
const char* const kHeading = "----------------------FILE CONSTRAINTS----------------\n";

std::string wordsOf(const TOVFileConstraint& rule) {
    std::string text;
    rule.expressRuleInWords(text);
    return text;
}

// The six debug lines of one rule as the console shows them.
std::string printedRule(const std::string& objectType, const std::string& attribute,
                        const std::string& fromValue, const std::string& toValue,
                        const std::string& constraintWords) {
    return "**TOVFileConstraint rule:\n"
           "Object type : " +
           objectType + "\nAttribute : " + attribute + "\nFrom value : " + fromValue +
           "\nTo value : " + toValue + "\nFile constraint : " + constraintWords + "\n";
}

std::string printFileConstraints(tovtest::PrivateCore& core) {
    return tovtest::captureConsole(core.logger(),
                                   [&] { core.rules()->printFileConstraintsDBG(core.logger()); });
}

// A rules document holding only the given "fileConstraints" section.
TOVResponse loadSection(tovtest::PrivateCore& core, const std::string& section) {
    return InitializeTOVRules("{\"fileConstraints\":" + section + "}", core.get());
}

// The rules of the store that concern `objectType` and attribute "A".
std::vector<const TOVFileConstraint*> relatedToA(tovtest::PrivateCore& core,
                                                 const std::string& objectType) {
    std::vector<const TOVFileConstraint*> related;
    core.rules()->getRelatedFileConstraintRules(objectType, {"A"}, core.dmInfo(), related);
    return related;
}

const char* const kFree = " uploading a new representation file is possible but not mandatory.";
const char* const kForbiddenWords = "we MUST NOT upload a new representation file";
const char* const kMandatoryWords = "we MUST upload a new representation file";

// ---------------------------------------------------------------- predicate

TEST(FileConstraintPredicate,
     NewObjectWithAnyValuesAndMandatoryUploadIsForbiddenWithoutUploadWord) {
    const TOVFileConstraint rule("Part", "A", "<any>", "<any>", "MANDATORY");
    EXPECT_TRUE(rule.shouldTransitionBeForbidden({}, {{"A", "X"}}));
    EXPECT_TRUE(rule.shouldTransitionBeForbidden({}, {}));
    EXPECT_FALSE(rule.shouldTransitionBeForbidden({}, {{"A", "X"}, {"_file_upload_", "true"}}));
}

TEST(FileConstraintPredicate, NewObjectWithConcreteFromValueIsNeverForbidden) {
    const TOVFileConstraint mandatory("Part", "A", "X", "<any>", "MANDATORY");
    const TOVFileConstraint forbidden("Part", "A", "X", "<any>", "FORBIDDEN");
    const std::vector<AttributesMap> targets = {
        {},
        {{"A", "X"}},
        {{"A", "X"}, {"_file_upload_", "true"}},
        {{"A", "X"}, {"_file_upload_", "false"}},
        {{"A", "Y"}, {"_file_upload_", "N_A"}},
    };
    for (const AttributesMap& target : targets) {
        EXPECT_FALSE(mandatory.shouldTransitionBeForbidden({}, target));
        EXPECT_FALSE(forbidden.shouldTransitionBeForbidden({}, target));
    }
}

TEST(FileConstraintPredicate, FromValueAnyInCapitalsStillOpensTheNewObjectCase) {
    const TOVFileConstraint rule("Part", "A", "<ANY>", "Y", "MANDATORY");
    EXPECT_TRUE(rule.shouldTransitionBeForbidden({}, {{"A", "Y"}}));
}

TEST(FileConstraintPredicate, InitialPacketWithoutTheAttributeIsNeverForbidden) {
    const TOVFileConstraint rule("Part", "A", "<any>", "<any>", "MANDATORY");
    EXPECT_FALSE(rule.shouldTransitionBeForbidden({{"B", "1"}}, {{"A", "X"}}));
    EXPECT_FALSE(rule.shouldTransitionBeForbidden({{"B", "1"}}, {}));
    // The attribute lookup is exact: another case is another attribute.
    EXPECT_FALSE(rule.shouldTransitionBeForbidden({{"a", "1"}}, {{"a", "2"}}));
}

TEST(FileConstraintPredicate, NewObjectAndTargetWithoutAttributeComparesEmptyFromValueWithToValue) {
    const TOVFileConstraint anyTo("Part", "A", "<any>", "<any>", "MANDATORY");
    const TOVFileConstraint concreteTo("Part", "A", "<any>", "X", "MANDATORY");
    const AttributesMap target = {{"B", "X"}};
    EXPECT_TRUE(anyTo.shouldTransitionBeForbidden({}, target));
    EXPECT_FALSE(concreteTo.shouldTransitionBeForbidden({}, target));
}

TEST(FileConstraintPredicate, UploadWordsAgainstForbidden) {
    const TOVFileConstraint rule("Part", "A", "X", "Y", "FORBIDDEN");
    const AttributesMap initial = {{"A", "X"}};
    EXPECT_TRUE(rule.shouldTransitionBeForbidden(initial, {{"A", "Y"}, {"_file_upload_", "true"}}));
    EXPECT_TRUE(rule.shouldTransitionBeForbidden(initial, {{"A", "Y"}, {"_file_upload_", "YES"}}));
    EXPECT_FALSE(
        rule.shouldTransitionBeForbidden(initial, {{"A", "Y"}, {"_file_upload_", "false"}}));
    EXPECT_FALSE(rule.shouldTransitionBeForbidden(initial, {{"A", "Y"}, {"_file_upload_", "No"}}));
    EXPECT_TRUE(rule.shouldTransitionBeForbidden(initial, {{"A", "Y"}, {"_file_upload_", "N_A"}}));
    EXPECT_TRUE(rule.shouldTransitionBeForbidden(initial, {{"A", "Y"}}));
}

TEST(FileConstraintPredicate, UploadWordsAgainstMandatory) {
    const TOVFileConstraint rule("Part", "A", "X", "Y", "MANDATORY");
    const AttributesMap initial = {{"A", "X"}};
    EXPECT_TRUE(
        rule.shouldTransitionBeForbidden(initial, {{"A", "Y"}, {"_file_upload_", "false"}}));
    EXPECT_FALSE(
        rule.shouldTransitionBeForbidden(initial, {{"A", "Y"}, {"_file_upload_", "true"}}));
    EXPECT_FALSE(
        rule.shouldTransitionBeForbidden(initial, {{"A", "Y"}, {"_file_upload_", "TRUE"}}));
    EXPECT_TRUE(rule.shouldTransitionBeForbidden(initial, {{"A", "Y"}, {"_file_upload_", "N_A"}}));
    EXPECT_TRUE(
        rule.shouldTransitionBeForbidden(initial, {{"A", "Y"}, {"_file_upload_", "maybe"}}));
    EXPECT_TRUE(rule.shouldTransitionBeForbidden(initial, {{"A", "Y"}}));
}

TEST(FileConstraintPredicate, ValuesDifferingOnlyInCaseStillBind) {
    const TOVFileConstraint rule("Part", "A", "draft", "released", "MANDATORY");
    EXPECT_TRUE(rule.shouldTransitionBeForbidden({{"A", "DRAFT"}}, {{"A", "Released"}}));
    EXPECT_FALSE(rule.shouldTransitionBeForbidden({{"A", "DRAFT"}},
                                                  {{"A", "Released"}, {"_file_upload_", "yes"}}));
}

TEST(FileConstraintPredicate, TransitionOtherThanTheRulesIsNotForbidden) {
    const TOVFileConstraint rule("Part", "A", "X", "Y", "MANDATORY");
    EXPECT_FALSE(rule.shouldTransitionBeForbidden({{"A", "Z"}}, {{"A", "Y"}}));
    EXPECT_FALSE(rule.shouldTransitionBeForbidden({{"A", "X"}}, {{"A", "Z"}}));
    EXPECT_TRUE(rule.shouldTransitionBeForbidden({{"A", "X"}}, {{"A", "Y"}}));
}

TEST(FileConstraintPredicate, TargetWithoutTheAttributeKeepsTheInitialValue) {
    const TOVFileConstraint stays("Part", "A", "X", "X", "FORBIDDEN");
    const TOVFileConstraint moves("Part", "A", "X", "Y", "FORBIDDEN");
    const AttributesMap target = {{"_file_upload_", "true"}};
    EXPECT_TRUE(stays.shouldTransitionBeForbidden({{"A", "X"}}, target));
    EXPECT_FALSE(moves.shouldTransitionBeForbidden({{"A", "X"}}, target));
}

TEST(FileConstraintPredicate, UnknownConstraintWordForbidsNothing) {
    for (const char* word : {"mandatory", "Forbidden", "", "NONE"}) {
        const TOVFileConstraint rule("Part", "A", "<any>", "<any>", word);
        EXPECT_FALSE(rule.shouldTransitionBeForbidden({{"A", "X"}}, {{"A", "Y"}})) << word;
        EXPECT_FALSE(rule.shouldTransitionBeForbidden({}, {})) << word;
    }
    EXPECT_FALSE(TOVFileConstraint().shouldTransitionBeForbidden({}, {}));
}

TEST(FileConstraintPredicate, ResetAndAllAreOrdinaryValues) {
    const TOVFileConstraint fromAll("Part", "A", "ALL", "<any>", "MANDATORY");
    EXPECT_FALSE(fromAll.shouldTransitionBeForbidden({{"A", "X"}}, {{"A", "Y"}}));
    EXPECT_TRUE(fromAll.shouldTransitionBeForbidden({{"A", "all"}}, {{"A", "Y"}}));
    // "ALL" is no wildcard, so a new object does not open the rule either.
    EXPECT_FALSE(fromAll.shouldTransitionBeForbidden({}, {{"A", "Y"}}));
    const TOVFileConstraint toReset("Part", "A", "<any>", "Reset", "MANDATORY");
    EXPECT_FALSE(toReset.shouldTransitionBeForbidden({{"A", "X"}}, {{"A", "Y"}}));
    EXPECT_TRUE(toReset.shouldTransitionBeForbidden({{"A", "X"}}, {{"A", "reset"}}));
}

TEST(FileConstraintPredicate, CopyKeepsTheConstraint) {
    const TOVFileConstraint original("Part", "A", "X", "Y", "FORBIDDEN");
    TOVFileConstraint assigned;
    assigned = original;
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the copy is tested.
    const TOVFileConstraint copied(original);
    const AttributesMap target = {{"A", "Y"}, {"_file_upload_", "true"}};
    EXPECT_TRUE(copied.shouldTransitionBeForbidden({{"A", "X"}}, target));
    EXPECT_TRUE(assigned.shouldTransitionBeForbidden({{"A", "X"}}, target));
    EXPECT_EQ(wordsOf(original), wordsOf(assigned));
}

// ---------------------------------------------------------------- words

TEST(FileConstraintWords, EachConstraintInASentence) {
    EXPECT_EQ(wordsOf(TOVFileConstraint("Part", "A", "X", "Y", "FORBIDDEN")),
              "For Part: When A transitions from \"X\" to \"Y\" "
              "we MUST NOT upload a new representation file");
    EXPECT_EQ(wordsOf(TOVFileConstraint("Part", "A", "X", "Y", "MANDATORY")),
              "For Part: When A transitions from \"X\" to \"Y\" "
              "we MUST upload a new representation file");
    EXPECT_EQ(wordsOf(TOVFileConstraint("Part", "A", "X", "Y", "")),
              "For Part: When A transitions from \"X\" to \"Y\"  "
              "uploading a new representation file is possible but not mandatory.");
}

TEST(FileConstraintWords, WrongCaseWordReadsAsTheFreeCase) {
    EXPECT_EQ(wordsOf(TOVFileConstraint("Part", "A", "X", "Y", "forbidden")),
              "For Part: When A transitions from \"X\" to \"Y\"  "
              "uploading a new representation file is possible but not mandatory.");
}

TEST(FileConstraintWords, AnyFromValueHasNoShorterForm) {
    EXPECT_EQ(wordsOf(TOVFileConstraint("<any>", "A", "<any>", "<any>", "MANDATORY")),
              "For <any>: When A transitions from \"<any>\" to \"<any>\" "
              "we MUST upload a new representation file");
}

TEST(FileConstraintWords, DefaultRuleAndAppending) {
    std::string text = "Rule: ";
    TOVFileConstraint().expressRuleInWords(text);
    EXPECT_EQ(text,
              "Rule: For : When  transitions from \"\" to \"\"  "
              "uploading a new representation file is possible but not mandatory.");
    TOVFileConstraint("T", "B", "1", "2", "FORBIDDEN").expressRuleInWords(text);
    EXPECT_EQ(text,
              "Rule: For : When  transitions from \"\" to \"\"  "
              "uploading a new representation file is possible but not mandatory."
              "For T: When B transitions from \"1\" to \"2\" "
              "we MUST NOT upload a new representation file");
}

// ---------------------------------------------------------------- order

TEST(FileConstraintOrder, KeysInTurnCaseIgnoredLengthFirst) {
    // Shorter strings come first whatever their letters.
    EXPECT_TRUE(TOVFileConstraint("Part", "A", "X", "Y", "") <
                TOVFileConstraint("Assembly", "A", "X", "Y", ""));
    EXPECT_FALSE(TOVFileConstraint("Assembly", "A", "X", "Y", "") <
                 TOVFileConstraint("Part", "A", "X", "Y", ""));
    // Equal lengths: by folded bytes.
    EXPECT_TRUE(TOVFileConstraint("abc", "A", "X", "Y", "") <
                TOVFileConstraint("ABD", "A", "X", "Y", ""));
    // The object type decides before the attribute.
    EXPECT_TRUE(TOVFileConstraint("Aa", "Z", "X", "Y", "") <
                TOVFileConstraint("Ab", "A", "X", "Y", ""));
    EXPECT_TRUE(TOVFileConstraint("T", "A", "Z", "Z", "") <
                TOVFileConstraint("T", "B", "A", "A", ""));
    EXPECT_TRUE(TOVFileConstraint("T", "A", "A", "Z", "") <
                TOVFileConstraint("T", "A", "B", "A", ""));
    EXPECT_TRUE(TOVFileConstraint("T", "A", "A", "A", "") <
                TOVFileConstraint("T", "A", "A", "B", ""));
    EXPECT_FALSE(TOVFileConstraint("T", "A", "A", "B", "") <
                 TOVFileConstraint("T", "A", "A", "A", ""));
}

TEST(FileConstraintOrder, CaseAndConstraintTakeNoPart) {
    const TOVFileConstraint lower("part", "a", "x", "y", "FORBIDDEN");
    const TOVFileConstraint upper("PART", "A", "X", "Y", "MANDATORY");
    EXPECT_FALSE(lower < upper);
    EXPECT_FALSE(upper < lower);
    EXPECT_FALSE(lower < lower);
}

// ---------------------------------------------------------------- debug print

TEST(FileConstraintPrint, StorePrintsHeadingThenSixLinesPerRule) {
    tovtest::PrivateCore core;
    EXPECT_EQ(printFileConstraints(core), kHeading);
    core.rules()->appendNewFileConstraintRule(
        TOVFileConstraint("Part", "A", "X", "Y", "FORBIDDEN"));
    core.rules()->appendNewFileConstraintRule(TOVFileConstraint("Doc", "B", "1", "2", "MANDATORY"));
    core.rules()->appendNewFileConstraintRule(TOVFileConstraint("<any>", "C", "<any>", "3", "x"));
    EXPECT_EQ(printFileConstraints(core), std::string(kHeading) +
                                              printedRule("Part", "A", "X", "Y", kForbiddenWords) +
                                              printedRule("Doc", "B", "1", "2", kMandatoryWords) +
                                              printedRule("<any>", "C", "<any>", "3", kFree));
}

TEST(FileConstraintPrint, FreeConstraintLineHasTwoBlanks) {
    tovtest::PrivateCore core;
    core.rules()->appendNewFileConstraintRule(TOVFileConstraint());
    EXPECT_EQ(printFileConstraints(core),
              std::string(kHeading) +
                  "**TOVFileConstraint rule:\nObject type : \nAttribute : \nFrom value : \n"
                  "To value : \nFile constraint :  uploading a new representation file is "
                  "possible but not mandatory.\n");
}

// ---------------------------------------------------------------- document

TEST(FileConstraintDocument, LoadsRulesSortedWithAllAsAny) {
    tovtest::PrivateCore core;
    const TOVResponse response = loadSection(core, R"({
        "Assembly": [
            {"attribute": "Status", "fromValue": "Draft", "toValue": "Released", "updateFile": "MANDATORY"}
        ],
        "ALL": [
            {"attribute": "Rev", "fromValue": "<any>", "toValue": "<any>", "updateFile": "FORBIDDEN"}
        ],
        "Part": [
            {"attribute": "Status", "fromValue": "B", "toValue": "C", "updateFile": "MANDATORY"},
            {"attribute": "Status", "fromValue": "A", "toValue": "Z", "updateFile": "FORBIDDEN"},
            {"attribute": "Rev", "fromValue": "9", "toValue": "9", "updateFile": "other", "note": "x"}
        ]
    })");
    EXPECT_TRUE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(), kSuccess);
    // "Part" is shorter than "<any>", which is shorter than "Assembly"; within
    // "Part" the shorter attribute "Rev" leads.
    EXPECT_EQ(printFileConstraints(core),
              std::string(kHeading) + printedRule("Part", "Rev", "9", "9", kFree) +
                  printedRule("Part", "Status", "A", "Z", kForbiddenWords) +
                  printedRule("Part", "Status", "B", "C", kMandatoryWords) +
                  printedRule("<any>", "Rev", "<any>", "<any>", kForbiddenWords) +
                  printedRule("Assembly", "Status", "Draft", "Released", kMandatoryWords));
}

TEST(FileConstraintDocument, FirstRuleInSortOrderIsTheFirstRelatedOne) {
    tovtest::PrivateCore core;
    const TOVResponse response = loadSection(core, R"({
        "all": [{"attribute": "A", "fromValue": "<any>", "toValue": "<any>", "updateFile": "MANDATORY"}],
        "Part": [{"attribute": "A", "fromValue": "X", "toValue": "Y", "updateFile": "FORBIDDEN"}]
    })");
    ASSERT_TRUE(response.getGeneralResult()) << tovtest::asText(response);
    const std::vector<const TOVFileConstraint*> related = relatedToA(core, "part");
    ASSERT_EQ(related.size(), 2u);
    EXPECT_EQ(wordsOf(*related[0]),
              "For Part: When A transitions from \"X\" to \"Y\" "
              "we MUST NOT upload a new representation file");
    EXPECT_EQ(wordsOf(*related[1]),
              "For <any>: When A transitions from \"<any>\" to \"<any>\" "
              "we MUST upload a new representation file");
    // An upload satisfies the mandatory rule but breaks the forbidding one.
    const AttributesMap initial = {{"A", "X"}};
    const AttributesMap target = {{"A", "Y"}, {"_file_upload_", "true"}};
    EXPECT_TRUE(related[0]->shouldTransitionBeForbidden(initial, target));
    EXPECT_FALSE(related[1]->shouldTransitionBeForbidden(initial, target));
    // Only the rule for every type concerns another type.
    const std::vector<const TOVFileConstraint*> forDoc = relatedToA(core, "Doc");
    ASSERT_EQ(forDoc.size(), 1u);
    EXPECT_TRUE(forDoc[0]->shouldTransitionBeForbidden({}, {{"A", "new"}}));
}

TEST(FileConstraintDocument, EmptyValuesAndWrongCaseWordLoad) {
    tovtest::PrivateCore core;
    const TOVResponse response = loadSection(core, R"({
        "": [{"attribute": "", "fromValue": "", "toValue": "", "updateFile": ""}],
        "Part": [{"attribute": "A", "fromValue": "<any>", "toValue": "<any>", "updateFile": "mandatory"}]
    })");
    EXPECT_TRUE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(), kSuccess);
    EXPECT_EQ(printFileConstraints(core), std::string(kHeading) +
                                              printedRule("", "", "", "", kFree) +
                                              printedRule("Part", "A", "<any>", "<any>", kFree));
    const std::vector<const TOVFileConstraint*> related = relatedToA(core, "Part");
    ASSERT_EQ(related.size(), 1u);
    EXPECT_FALSE(related[0]->shouldTransitionBeForbidden({}, {{"A", "1"}}));
}

TEST(FileConstraintDocument, MissingKeywordMessage) {
    tovtest::PrivateCore core;
    const TOVResponse response = loadSection(core, R"({
        "Part": [{"attribute": "A", "fromValue": "X", "toValue": "Y"}]
    })");
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(), kMissingKeywordsForPart);
    EXPECT_FALSE(core.rules()->existAnyRules());
}

TEST(FileConstraintDocument, KeywordsAreExactInCase) {
    tovtest::PrivateCore core;
    const TOVResponse response = loadSection(core, R"({
        "Part": [{"Attribute": "A", "fromValue": "X", "toValue": "Y", "updateFile": "FORBIDDEN"}]
    })");
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(), kMissingKeywordsForPart);
}

TEST(FileConstraintDocument, NonStringMemberGivesTheKeyValueMapError) {
    for (const char* rule :
         {R"({"attribute": "A", "fromValue": "X", "toValue": "Y", "updateFile": true})",
          R"({"attribute": "A", "fromValue": "X", "toValue": "Y", "updateFile": "NO", "n": 3})",
          R"({"attribute": ["A"]})"}) {
        tovtest::PrivateCore core;
        const TOVResponse response = loadSection(core, std::string("{\"Part\": [") + rule + "]}");
        EXPECT_FALSE(response.getGeneralResult()) << rule;
        EXPECT_EQ(response.getGeneralResultComment(),
                  "File Constraint rule: parsing error on keys - values of Part.")
            << rule;
        EXPECT_FALSE(core.rules()->existAnyRules()) << rule;
    }
}

TEST(FileConstraintDocument, MessagesForAnEmptyObjectType) {
    tovtest::PrivateCore core;
    EXPECT_EQ(
        loadSection(core, R"({"": [{"attribute": "A"}]})").getGeneralResultComment(),
        "File Constraint rule demands ALL keywords: [attribute,fromValue,toValue,updateFile]");
    EXPECT_EQ(loadSection(core, R"({"": [{"attribute": 1}]})").getGeneralResultComment(),
              "File Constraint rule: parsing error on keys - values.");
}

TEST(FileConstraintDocument, AllBecomesAnyOnlyOnceARuleOfItLoaded) {
    tovtest::PrivateCore core;
    EXPECT_EQ(loadSection(core, R"({"ALL": [{"attribute": "A"}]})").getGeneralResultComment(),
              "File Constraint rule for ALL demands ALL keywords: "
              "[attribute,fromValue,toValue,updateFile]");
    const TOVResponse response = loadSection(core, R"({"All": [
        {"attribute": "A", "fromValue": "X", "toValue": "Y", "updateFile": "FORBIDDEN"},
        {"attribute": "A", "fromValue": "X", "toValue": "Y", "updateFile": 0}
    ]})");
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(),
              "File Constraint rule: parsing error on keys - values of <any>.");
    EXPECT_FALSE(core.rules()->existAnyRules());
}

TEST(FileConstraintDocument, FrameErrorsNameTheRule) {
    tovtest::PrivateCore core;
    EXPECT_EQ(loadSection(core, R"({"Part": {"attribute": "A"}})").getGeneralResultComment(),
              "File Constraint rules for Part should be in a List.");
    EXPECT_EQ(loadSection(core, R"({"Part": ["rule"]})").getGeneralResultComment(),
              "File Constraint rule in list for Part should be a map.");
}

TEST(FileConstraintDocument, FirstErrorEndsTheSection) {
    tovtest::PrivateCore core;
    const TOVResponse response = loadSection(core, R"({
        "Part": [{"attribute": "A"}, {"attribute": 5}],
        "Doc": [{"fromValue": "A"}]
    })");
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(), kMissingKeywordsForPart);
}

TEST(FileConstraintDocument, SectionThatIsNotAnObjectAddsNothing) {
    tovtest::PrivateCore core;
    const TOVResponse response = loadSection(
        core,
        R"([{"attribute": "A", "fromValue": "X", "toValue": "Y", "updateFile": "FORBIDDEN"}])");
    EXPECT_TRUE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(), kSuccess);
    EXPECT_FALSE(core.rules()->existAnyRules());
    EXPECT_TRUE(loadSection(core, R"({"Part": []})").getGeneralResult());
    EXPECT_FALSE(core.rules()->existAnyRules());
}

}  // namespace
