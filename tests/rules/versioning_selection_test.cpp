#include <map>
#include <string>
#include <vector>

#include "test_support.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVResponse.h"
#include "tov/TOVVersioningSelection.h"
#include "tov/TOV_DMAttribute.h"
#include "tov/TOV_DMStructure.h"
#include "tov/TOV_DMStructureObject.h"
#include "tov/entry_points.h"
#include "tov/string_helpers.h"
#include "tov/vocabulary.h"

namespace {

using tovtest::captureConsole;
using tovtest::PrivateCore;

using Strings = std::vector<std::string>;
using Conditions = std::map<std::string, std::vector<std::string>>;

const char* const kHeading = "--------VERSIONING ATTRIBUTES SELECTION RULES--------\n";

std::string words(const TOVVersioningSelection& rule) {
    std::string text;
    rule.expressRuleInWords(text);
    return text;
}

// Loads a rules document that holds only the given "versioningSelections" section.
TOVResponse loadSection(PrivateCore& core, const std::string& section) {
    return InitializeTOVRules("{\"versioningSelections\":" + section + "}", core.get());
}

// What the store prints of its versioning selection rules, heading included.
std::string printedStore(PrivateCore& core) {
    return captureConsole(core.logger(),
                          [&] { core.rules()->printVersioningAttrSelectionsDBG(core.logger()); });
}

// The loaded rules that apply to the packet for any object type.
std::vector<const TOVVersioningSelection*> selected(PrivateCore& core,
                                                    const AttributesMap& packet) {
    std::vector<const TOVVersioningSelection*> related;
    core.rules()->getRelatedVersioningSelectionRulesExact("<any>", packet, core.dmInfo(), related);
    return related;
}

// The comment of a load that must fail, with the store checked to be empty.
std::string failedLoadComment(PrivateCore& core, const std::string& section) {
    const TOVResponse response = loadSection(core, section);
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_FALSE(core.rules()->existAnyRules());
    return response.getGeneralResultComment();
}

const char* const kMissingKeywordsForPart =
    "Versioning Selection rule for Part demands ALL keywords: "
    "[conditionAttribute1,conditionValue1,versioningOption]";

// ---------------------------------------------------------------- predicate

TEST(VersioningSelectionPredicate, AnyInTheListMeetsEveryPacketThatHasTheAttribute) {
    const TOVVersioningSelection rule("Part", "Status", {"<any>"}, {"Revision"});
    EXPECT_TRUE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "Released"}}));
    EXPECT_TRUE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", ""}}));
    EXPECT_TRUE(
        rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "x"}, {"Other", "y"}}));
    EXPECT_FALSE(rule.mustSelectVersioningAttributesAccordingToRule({{"Other", "Released"}}));
    EXPECT_FALSE(rule.mustSelectVersioningAttributesAccordingToRule({{"status", "Released"}}));
    EXPECT_FALSE(rule.mustSelectVersioningAttributesAccordingToRule({}));
}

TEST(VersioningSelectionPredicate, ValuesAreComparedWithTheirCase) {
    const TOVVersioningSelection rule("Part", "Status", {"Released"}, {"Revision"});
    // The same pair of values binds a transition rule, which ignores case.
    EXPECT_TRUE(areStringsEqualSimple("released", "Released"));
    EXPECT_FALSE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "released"}}));
    EXPECT_FALSE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "RELEASED"}}));
    EXPECT_FALSE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "Released "}}));
    EXPECT_TRUE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "Released"}}));
}

TEST(VersioningSelectionPredicate, OnlyTheExactWildcardInTheRuleWidensIt) {
    const TOVVersioningSelection capitals("Part", "Status", {"<ANY>"}, {"Revision"});
    EXPECT_FALSE(capitals.mustSelectVersioningAttributesAccordingToRule({{"Status", "x"}}));
    EXPECT_TRUE(capitals.mustSelectVersioningAttributesAccordingToRule({{"Status", "<ANY>"}}));

    // A packet value of "<any>" is an ordinary value.
    const TOVVersioningSelection plain("Part", "Status", {"x"}, {"Revision"});
    EXPECT_FALSE(plain.mustSelectVersioningAttributesAccordingToRule({{"Status", "<any>"}}));

    // The wildcard anywhere in the list is enough.
    const TOVVersioningSelection mixed("Part", "Status", {"a", "<any>"}, {"Revision"});
    EXPECT_TRUE(mixed.mustSelectVersioningAttributesAccordingToRule({{"Status", "zzz"}}));
}

TEST(VersioningSelectionPredicate, ReservedWordsAreOrdinaryValues) {
    const TOVVersioningSelection rule("Part", "Status", {"ALL", "Reset"}, {"Revision"});
    EXPECT_TRUE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "ALL"}}));
    EXPECT_TRUE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "Reset"}}));
    EXPECT_FALSE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "all"}}));
    EXPECT_FALSE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "Other"}}));
}

TEST(VersioningSelectionPredicate, AnyListedValueMeetsTheCondition) {
    const TOVVersioningSelection rule("Part", "Status", {"A", "B", "C"}, {"Revision"});
    EXPECT_TRUE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "A"}}));
    EXPECT_TRUE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "C"}}));
    EXPECT_FALSE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "D"}}));
}

TEST(VersioningSelectionPredicate, TwoConditionFormNeedsBothConditions) {
    const TOVVersioningSelection rule("Part", "Status", {"Released"}, "Kind", {"A", "B"},
                                      {"Revision"});
    EXPECT_TRUE(rule.mustSelectVersioningAttributesAccordingToRule(
        {{"Status", "Released"}, {"Kind", "B"}}));
    EXPECT_FALSE(rule.mustSelectVersioningAttributesAccordingToRule(
        {{"Status", "Released"}, {"Kind", "C"}}));
    EXPECT_FALSE(
        rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "Draft"}, {"Kind", "A"}}));
    EXPECT_FALSE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "Released"}}));
    EXPECT_FALSE(rule.mustSelectVersioningAttributesAccordingToRule({{"Kind", "A"}}));
}

TEST(VersioningSelectionPredicate, TwoConditionFormLeavesOutAHalfGivenSecondCondition) {
    const TOVVersioningSelection noValues("Part", "Status", {"Released"}, "Kind", {}, {"Revision"});
    EXPECT_TRUE(noValues.mustSelectVersioningAttributesAccordingToRule({{"Status", "Released"}}));
    EXPECT_EQ(words(noValues),
              "For Part: When {\"Status\" equals \"Released\"} then you should spin up versions "
              "using one of the attributes: [Revision]");

    const TOVVersioningSelection noName("Part", "Status", {"Released"}, "", {"A"}, {"Revision"});
    EXPECT_TRUE(noName.mustSelectVersioningAttributesAccordingToRule({{"Status", "Released"}}));
    EXPECT_EQ(words(noName), words(noValues));
}

TEST(VersioningSelectionPredicate, TwoConditionFormWithOneAttributeKeepsTheSecondList) {
    const TOVVersioningSelection rule("Part", "Status", {"A"}, "Status", {"B", "C"}, {"Revision"});
    EXPECT_FALSE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "A"}}));
    EXPECT_TRUE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "B"}}));
    EXPECT_TRUE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "C"}}));
    EXPECT_EQ(words(rule),
              "For Part: When {\"Status\" is one of [B,C]} then you should spin up versions using "
              "one of the attributes: [Revision]");
}

TEST(VersioningSelectionPredicate, OneConditionFormWithoutAConditionAppliesToEveryPacket) {
    const TOVVersioningSelection noName("Part", "", {"x"}, {"Revision"});
    EXPECT_TRUE(noName.mustSelectVersioningAttributesAccordingToRule({}));
    EXPECT_TRUE(noName.mustSelectVersioningAttributesAccordingToRule({{"Any", "thing"}}));

    const TOVVersioningSelection noValues("Part", "Status", {}, {"Revision"});
    EXPECT_TRUE(noValues.mustSelectVersioningAttributesAccordingToRule({}));
    EXPECT_EQ(words(noValues),
              "For Part: When {} then you should spin up versions using one of the attributes: "
              "[Revision]");
}

TEST(VersioningSelectionPredicate, GeneralFormCopiesEveryCondition) {
    const TOVVersioningSelection rule("Part", Conditions{{"Status", {"Released"}}, {"Kind", {"A"}}},
                                      {"Revision"});
    EXPECT_TRUE(rule.mustSelectVersioningAttributesAccordingToRule(
        {{"Status", "Released"}, {"Kind", "A"}}));
    EXPECT_FALSE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "Released"}}));
    EXPECT_FALSE(rule.mustSelectVersioningAttributesAccordingToRule({{"Kind", "A"}}));
}

TEST(VersioningSelectionPredicate, GeneralFormKeepsAnEmptyListWhichIsNeverMet) {
    const TOVVersioningSelection rule("Part", Conditions{{"Status", {}}}, {"Revision"});
    EXPECT_FALSE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "x"}}));
    EXPECT_FALSE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", ""}}));
    EXPECT_FALSE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "<any>"}}));
    EXPECT_FALSE(rule.mustSelectVersioningAttributesAccordingToRule({}));
    EXPECT_EQ(words(rule),
              "For Part: When {\"Status\" equals \"\"} then you should spin up versions using one "
              "of the attributes: [Revision]");

    const TOVVersioningSelection emptyName("Part", Conditions{{"", {"<any>"}}}, {"Revision"});
    EXPECT_FALSE(emptyName.mustSelectVersioningAttributesAccordingToRule({{"Status", "x"}}));
    EXPECT_TRUE(emptyName.mustSelectVersioningAttributesAccordingToRule({{"", "x"}}));
}

TEST(VersioningSelectionPredicate, GeneralFormWithoutConditionsAppliesToEveryPacket) {
    const TOVVersioningSelection rule("Part", Conditions{}, {"Revision"});
    EXPECT_TRUE(rule.mustSelectVersioningAttributesAccordingToRule({}));
    EXPECT_TRUE(rule.mustSelectVersioningAttributesAccordingToRule({{"Status", "x"}}));
}

TEST(VersioningSelectionPredicate, OptionsKeepTheirOrderAndCopiesAreEqual) {
    const TOVVersioningSelection rule("Part", "Status", {"x"}, {"Version", "Revision", "Version"});
    EXPECT_EQ(rule.getVersioningOptions(), (Strings{"Version", "Revision", "Version"}));

    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the copy is tested.
    const TOVVersioningSelection copy(rule);
    EXPECT_EQ(words(copy), words(rule));
    EXPECT_EQ(copy.getVersioningOptions(), rule.getVersioningOptions());

    TOVVersioningSelection assigned("Other", "", {}, {});
    assigned = rule;
    EXPECT_EQ(words(assigned), words(rule));
    EXPECT_TRUE(assigned.mustSelectVersioningAttributesAccordingToRule({{"Status", "x"}}));
}

// -------------------------------------------------------------------- words

TEST(VersioningSelectionWords, OneElementEqualsAndTwoElementsIsOneOf) {
    EXPECT_EQ(words(TOVVersioningSelection("Part", "Status", {"Released"}, {"Revision"})),
              "For Part: When {\"Status\" equals \"Released\"} then you should spin up versions "
              "using one of the attributes: [Revision]");
    EXPECT_EQ(words(TOVVersioningSelection("Part", "Status", {"A", "B"}, {"Revision", "Version"})),
              "For Part: When {\"Status\" is one of [A,B]} then you should spin up versions using "
              "one of the attributes: [Revision,Version]");
}

TEST(VersioningSelectionWords, TwoConditionsStandSideBySideInKeyOrder) {
    const TOVVersioningSelection rule("<any>", "Status", {"Released"}, "Kind", {"A", "B", "C"},
                                      {"Revision"});
    EXPECT_EQ(words(rule),
              "For <any>: When {\"Kind\" is one of [A,B,C]\"Status\" equals \"Released\"} then "
              "you should spin up versions using one of the attributes: [Revision]");
}

TEST(VersioningSelectionWords, SentenceIsAppendedWithoutLineEnd) {
    const TOVVersioningSelection rule("Part", "Status", {"<any>"}, {});
    std::string text = "Before. ";
    rule.expressRuleInWords(text);
    EXPECT_EQ(text,
              "Before. For Part: When {\"Status\" equals \"<any>\"} then you should spin up "
              "versions using one of the attributes: ");
}

TEST(VersioningSelectionWords, PrintsOneLinePerPiece) {
    PrivateCore core;
    core.rules()->appendNewVersioningAttrSelectionRule(TOVVersioningSelection(
        "Part", "Status", {"Released", "Draft"}, "Kind", {"A"}, {"Revision", "Version"}));
    EXPECT_EQ(printedStore(core), std::string(kHeading) +
                                      "**TOVVersioningSelection rule:\n"
                                      "Object type : Part\n"
                                      "Condition Attributes and values : \n"
                                      " Kind - [A]\n"
                                      " Status - [Released,Draft]\n"
                                      "Versioning options:\n"
                                      "   [Revision,Version]\n");
}

TEST(VersioningSelectionWords, PrintsARuleWithoutConditionsOrOptions) {
    PrivateCore core;
    core.rules()->appendNewVersioningAttrSelectionRule(
        TOVVersioningSelection("Part", Conditions{{"Status", {}}}, {}));
    core.rules()->appendNewVersioningAttrSelectionRule(
        TOVVersioningSelection("Drawing", Conditions{}, {"Revision"}));
    EXPECT_EQ(printedStore(core), std::string(kHeading) +
                                      "**TOVVersioningSelection rule:\n"
                                      "Object type : Part\n"
                                      "Condition Attributes and values : \n"
                                      " Status - \n"
                                      "Versioning options:\n"
                                      "   \n"
                                      "**TOVVersioningSelection rule:\n"
                                      "Object type : Drawing\n"
                                      "Condition Attributes and values : \n"
                                      "Versioning options:\n"
                                      "   [Revision]\n");
}

// -------------------------------------------------------------------- order

TEST(VersioningSelectionOrder, ObjectTypeDecidesFirstByLengthIgnoringCase) {
    const TOVVersioningSelection part("Part", "Z", {"z"}, {"Revision"});
    const TOVVersioningSelection drawing("Drawing", "A", {"a"}, "B", {"b"}, {"Revision"});
    EXPECT_TRUE(part < drawing);
    EXPECT_FALSE(drawing < part);

    // "Zz" is shorter than "Aaa", so it sorts first although it is later alphabetically.
    const TOVVersioningSelection shortType("Zz", "A", {"a"}, {"Revision"});
    const TOVVersioningSelection longType("Aaa", "A", {"a"}, {"Revision"});
    EXPECT_TRUE(shortType < longType);
    EXPECT_FALSE(longType < shortType);

    // Types that differ in case only leave the decision to the conditions.
    const TOVVersioningSelection upper("PART", "B", {"b"}, {"Revision"});
    const TOVVersioningSelection lower("part", "A", {"a"}, {"Revision"});
    EXPECT_TRUE(lower < upper);
    EXPECT_FALSE(upper < lower);
}

TEST(VersioningSelectionOrder, MoreConditionsSortFirst) {
    const TOVVersioningSelection two("Part", "Z", {"z"}, "Y", {"y"}, {"Revision"});
    const TOVVersioningSelection one("Part", "A", {"a"}, {"Revision"});
    const TOVVersioningSelection none("Part", Conditions{}, {"Revision"});
    EXPECT_TRUE(two < one);
    EXPECT_FALSE(one < two);
    EXPECT_TRUE(one < none);
    EXPECT_FALSE(none < one);
    EXPECT_TRUE(two < none);
}

TEST(VersioningSelectionOrder, ConditionsTextDecidesLastByteForByte) {
    // Capitals come before small letters in byte order.
    const TOVVersioningSelection capital("Part", "B", {"x"}, {"Revision"});
    const TOVVersioningSelection small("Part", "a", {"x"}, {"Revision"});
    EXPECT_TRUE(capital < small);
    EXPECT_FALSE(small < capital);

    // Not length first: the longer name sorts first here.
    const TOVVersioningSelection longName("Part", "AAAA", {"x"}, {"Revision"});
    const TOVVersioningSelection shortName("Part", "B", {"x"}, {"Revision"});
    EXPECT_TRUE(longName < shortName);
    EXPECT_FALSE(shortName < longName);

    // The values keep their own order in the text.
    const TOVVersioningSelection xy("Part", "A", {"x", "y"}, {"Revision"});
    const TOVVersioningSelection yx("Part", "A", {"y", "x"}, {"Revision"});
    EXPECT_TRUE(xy < yx);
    EXPECT_FALSE(yx < xy);
}

TEST(VersioningSelectionOrder, OptionsTakeNoPart) {
    const TOVVersioningSelection first("Part", "A", {"x"}, {"Zeta"});
    const TOVVersioningSelection second("Part", "A", {"x"}, {"Alpha"});
    EXPECT_FALSE(first < second);
    EXPECT_FALSE(second < first);
    EXPECT_FALSE(first < first);
}

TEST(VersioningSelectionOrder, LoadedRulesAreSortedByTypeConditionsAndText) {
    PrivateCore core;
    const TOVResponse response =
        loadSection(core, R"({"Drawing":[{"conditionAttribute1":"A","conditionValue1":["x"],)"
                          R"("versioningOption":["D1"]}],)"
                          R"("Part":[)"
                          R"({"conditionAttribute1":"B","conditionValue1":["x"],)"
                          R"("versioningOption":["P1"]},)"
                          R"({"conditionAttribute1":"a","conditionValue1":["x"],)"
                          R"("versioningOption":["P2"]},)"
                          R"({"conditionAttribute1":"Z","conditionValue1":["z"],)"
                          R"("conditionAttribute2":"Y","conditionValue2":["y"],)"
                          R"("versioningOption":["P3"]},)"
                          R"({"conditionAttribute1":"AAAA","conditionValue1":["x"],)"
                          R"("versioningOption":["P4"]}],)"
                          R"("ALL":[{"conditionAttribute1":"A","conditionValue1":["x"],)"
                          R"("versioningOption":["Any1"]}]})");
    ASSERT_TRUE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(), "Successfully initialized TOV rules");

    // "Part" (4) before "<any>" (5) before "Drawing" (7); within "Part" the rule
    // with two conditions first, then "{AAAA:[x]}" < "{B:[x]}" < "{a:[x]}".
    EXPECT_EQ(printedStore(core), std::string(kHeading) +
                                      "**TOVVersioningSelection rule:\n"
                                      "Object type : Part\n"
                                      "Condition Attributes and values : \n"
                                      " Y - [y]\n"
                                      " Z - [z]\n"
                                      "Versioning options:\n"
                                      "   [P3]\n"
                                      "**TOVVersioningSelection rule:\n"
                                      "Object type : Part\n"
                                      "Condition Attributes and values : \n"
                                      " AAAA - [x]\n"
                                      "Versioning options:\n"
                                      "   [P4]\n"
                                      "**TOVVersioningSelection rule:\n"
                                      "Object type : Part\n"
                                      "Condition Attributes and values : \n"
                                      " B - [x]\n"
                                      "Versioning options:\n"
                                      "   [P1]\n"
                                      "**TOVVersioningSelection rule:\n"
                                      "Object type : Part\n"
                                      "Condition Attributes and values : \n"
                                      " a - [x]\n"
                                      "Versioning options:\n"
                                      "   [P2]\n"
                                      "**TOVVersioningSelection rule:\n"
                                      "Object type : <any>\n"
                                      "Condition Attributes and values : \n"
                                      " A - [x]\n"
                                      "Versioning options:\n"
                                      "   [Any1]\n"
                                      "**TOVVersioningSelection rule:\n"
                                      "Object type : Drawing\n"
                                      "Condition Attributes and values : \n"
                                      " A - [x]\n"
                                      "Versioning options:\n"
                                      "   [D1]\n");
}

TEST(VersioningSelectionOrder, SameAttributeTwiceSortsAsTheSecondList) {
    // Built from "Status":[B] then "Status":[A], the key is "{Status:[A]}", which
    // sorts before the "{Status:[B]}" of the other rule.
    PrivateCore core;
    core.rules()->appendNewVersioningAttrSelectionRule(
        TOVVersioningSelection("Part", "Status", {"A"}, {"Second"}));
    core.rules()->appendNewVersioningAttrSelectionRule(
        TOVVersioningSelection("Part", "Status", {"C"}, "Status", {"B"}, {"First"}));
    core.rules()->sortAllRules();
    std::vector<const TOVVersioningSelection*> related;
    core.rules()->getRelatedVersioningSelectionRulesExact("Part", {{"Status", "A"}}, core.dmInfo(),
                                                          related);
    core.rules()->getRelatedVersioningSelectionRulesExact("Part", {{"Status", "B"}}, core.dmInfo(),
                                                          related);
    ASSERT_EQ(related.size(), 2u);
    EXPECT_EQ(related[0]->getVersioningOptions(), Strings{"Second"});
    EXPECT_EQ(related[1]->getVersioningOptions(), Strings{"First"});

    // The rule whose first list was "C" has no condition on "C" any more.
    std::vector<const TOVVersioningSelection*> none;
    EXPECT_FALSE(core.rules()->getRelatedVersioningSelectionRulesExact("Part", {{"Status", "C"}},
                                                                       core.dmInfo(), none));
}

// ----------------------------------------------------------------- document

TEST(VersioningSelectionDocument, LoadsTwoConditionsAndAppliesThem) {
    PrivateCore core;
    const TOVResponse response =
        loadSection(core, R"({"Part":[{"versioningOption":["Revision","Version"],)"
                          R"("conditionValue2":["A","B"],"conditionAttribute2":"Kind",)"
                          R"("conditionValue1":["Released"],"conditionAttribute1":"Status"}]})");
    ASSERT_TRUE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(), "Successfully initialized TOV rules");

    const auto both = selected(core, {{"Status", "Released"}, {"Kind", "B"}});
    ASSERT_EQ(both.size(), 1u);
    EXPECT_EQ(both[0]->getVersioningOptions(), (Strings{"Revision", "Version"}));
    EXPECT_EQ(words(*both[0]),
              "For Part: When {\"Kind\" is one of [A,B]\"Status\" equals \"Released\"} then you "
              "should spin up versions using one of the attributes: [Revision,Version]");
    EXPECT_TRUE(selected(core, {{"Status", "Released"}}).empty());
    EXPECT_TRUE(selected(core, {{"Status", "released"}, {"Kind", "B"}}).empty());
}

TEST(VersioningSelectionDocument, AnyValueLoadedAppliesOnlyWhereTheAttributeIsPresent) {
    PrivateCore core;
    ASSERT_TRUE(loadSection(core, R"({"Part":[{"conditionAttribute1":"Status",)"
                                  R"("conditionValue1":["<any>"],)"
                                  R"("versioningOption":["Revision"]}]})")
                    .getGeneralResult());
    EXPECT_EQ(selected(core, {{"Status", "whatever"}}).size(), 1u);
    EXPECT_EQ(selected(core, {{"Status", ""}}).size(), 1u);
    EXPECT_TRUE(selected(core, {{"Kind", "whatever"}}).empty());
}

TEST(VersioningSelectionDocument, SecondAttributeWithoutValuesGivesOneCondition) {
    PrivateCore core;
    const TOVResponse response = loadSection(core, R"({"Part":[{"conditionAttribute1":"Status",)"
                                                   R"("conditionValue1":["Released"],)"
                                                   R"("conditionAttribute2":"Kind",)"
                                                   R"("versioningOption":["Revision"]}]})");
    ASSERT_TRUE(response.getGeneralResult());
    const auto related = selected(core, {{"Status", "Released"}});
    ASSERT_EQ(related.size(), 1u);
    EXPECT_EQ(words(*related[0]),
              "For Part: When {\"Status\" equals \"Released\"} then you should spin up versions "
              "using one of the attributes: [Revision]");
}

TEST(VersioningSelectionDocument, SecondValuesWithoutAttributeGiveOneCondition) {
    PrivateCore core;
    const TOVResponse response =
        loadSection(core, R"({"Part":[{"conditionAttribute1":"Status",)"
                          R"("conditionValue1":["Released"],"conditionValue2":["A"],)"
                          R"("versioningOption":["Revision"]}]})");
    ASSERT_TRUE(response.getGeneralResult());
    const auto related = selected(core, {{"Status", "Released"}});
    ASSERT_EQ(related.size(), 1u);
    EXPECT_EQ(words(*related[0]),
              "For Part: When {\"Status\" equals \"Released\"} then you should spin up versions "
              "using one of the attributes: [Revision]");

    // An empty second attribute counts as absent too.
    PrivateCore emptyName;
    ASSERT_TRUE(loadSection(emptyName, R"({"Part":[{"conditionAttribute1":"Status",)"
                                       R"("conditionValue1":["Released"],)"
                                       R"("conditionAttribute2":"",)"
                                       R"("conditionValue2":["A"],)"
                                       R"("versioningOption":["Revision"]}]})")
                    .getGeneralResult());
    EXPECT_EQ(selected(emptyName, {{"Status", "Released"}}).size(), 1u);
}

TEST(VersioningSelectionDocument, SameAttributeTwiceKeepsTheSecondList) {
    PrivateCore core;
    ASSERT_TRUE(loadSection(core, R"({"Part":[{"conditionAttribute1":"Status",)"
                                  R"("conditionValue1":["A"],)"
                                  R"("conditionAttribute2":"Status",)"
                                  R"("conditionValue2":["B","C"],)"
                                  R"("versioningOption":["Revision"]}]})")
                    .getGeneralResult());
    EXPECT_TRUE(selected(core, {{"Status", "A"}}).empty());
    const auto related = selected(core, {{"Status", "C"}});
    ASSERT_EQ(related.size(), 1u);
    EXPECT_EQ(words(*related[0]),
              "For Part: When {\"Status\" is one of [B,C]} then you should spin up versions using "
              "one of the attributes: [Revision]");
}

TEST(VersioningSelectionDocument, AllInAnyCaseBecomesAny) {
    PrivateCore core;
    ASSERT_TRUE(loadSection(core, R"({"all":[{"conditionAttribute1":"Status",)"
                                  R"("conditionValue1":["x"],)"
                                  R"("versioningOption":["Revision"]}],)"
                                  R"("aLl":[{"conditionAttribute1":"Kind",)"
                                  R"("conditionValue1":["y"],)"
                                  R"("versioningOption":["Version"]}]})")
                    .getGeneralResult());
    std::vector<const TOVVersioningSelection*> related;
    EXPECT_TRUE(core.rules()->getRelatedVersioningSelectionRulesExact(
        "Drawing", {{"Status", "x"}, {"Kind", "y"}}, core.dmInfo(), related));
    ASSERT_EQ(related.size(), 2u);
    EXPECT_EQ(words(*related[0]),
              "For <any>: When {\"Kind\" equals \"y\"} then you should spin up versions using one "
              "of the attributes: [Version]");
    EXPECT_EQ(words(*related[1]),
              "For <any>: When {\"Status\" equals \"x\"} then you should spin up versions using "
              "one of the attributes: [Revision]");
}

TEST(VersioningSelectionDocument, EmptyObjectTypeKeyIsAccepted) {
    PrivateCore core;
    const TOVResponse response = loadSection(core, R"({"":[{"conditionAttribute1":"Status",)"
                                                   R"("conditionValue1":["x"],)"
                                                   R"("versioningOption":["Revision"]}]})");
    ASSERT_TRUE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(), "Successfully initialized TOV rules");
    std::vector<const TOVVersioningSelection*> related;
    EXPECT_TRUE(core.rules()->getRelatedVersioningSelectionRulesExact("", {{"Status", "x"}},
                                                                      core.dmInfo(), related));
    ASSERT_EQ(related.size(), 1u);
    EXPECT_EQ(words(*related[0]),
              "For : When {\"Status\" equals \"x\"} then you should spin up versions using one of "
              "the attributes: [Revision]");
    EXPECT_FALSE(core.rules()->getRelatedVersioningSelectionRulesExact("Part", {{"Status", "x"}},
                                                                       core.dmInfo(), related));
}

TEST(VersioningSelectionDocument, UnknownKeywordsAreSkippedAndListsAppend) {
    PrivateCore core;
    ASSERT_TRUE(loadSection(core, R"({"Part":[{"comment":42,"conditionAttribute1":)"
                                  R"("Status","conditionValue1":["x"],)"
                                  R"("extra":{"a":[1]},)"
                                  R"("conditionValue1":["y"],)"
                                  R"("versioningOption":["Revision"]}]})")
                    .getGeneralResult());
    const auto related = selected(core, {{"Status", "y"}});
    ASSERT_EQ(related.size(), 1u);
    EXPECT_EQ(words(*related[0]),
              "For Part: When {\"Status\" is one of [x,y]} then you should spin up versions using "
              "one of the attributes: [Revision]");
}

TEST(VersioningSelectionDocument, EmptySectionsAddNothing) {
    PrivateCore core;
    const TOVResponse emptySection = loadSection(core, "{}");
    EXPECT_TRUE(emptySection.getGeneralResult());
    EXPECT_FALSE(core.rules()->existAnyRules());

    const TOVResponse emptyList = loadSection(core, R"({"Part":[]})");
    EXPECT_TRUE(emptyList.getGeneralResult());
    EXPECT_FALSE(core.rules()->existAnyRules());

    // A section that is no object is passed over in silence.
    const TOVResponse listSection = loadSection(core, "[1,2]");
    EXPECT_TRUE(listSection.getGeneralResult());
    EXPECT_EQ(listSection.getGeneralResultComment(), "Successfully initialized TOV rules");
}

TEST(VersioningSelectionDocument, MissingKeywordsAreReported) {
    PrivateCore core;
    // Each rule lacks one necessary keyword or gives it empty.
    const std::vector<std::string> rules = {
        R"({"conditionValue1":["x"],"versioningOption":["R"]})",
        // NOLINTNEXTLINE(bugprone-suspicious-missing-comma): one rule over two lines.
        R"({"conditionAttribute1":"","conditionValue1":["x"],)"
        R"("versioningOption":["R"]})",
        R"({"conditionAttribute1":"S","versioningOption":["R"]})",
        R"({"conditionAttribute1":"S","conditionValue1":[],)"
        R"("versioningOption":["R"]})",
        R"({"conditionAttribute1":"S","conditionValue1":["x"]})",
        R"({"conditionAttribute1":"S","conditionValue1":["x"],)"
        R"("versioningOption":[]})",
        // Keywords match with their case only.
        R"({"ConditionAttribute1":"S","conditionValue1":["x"],)"
        R"("versioningOption":["R"]})",
        // The second condition does not stand in for the first.
        R"({"conditionAttribute2":"S","conditionValue2":["x"],)"
        R"("versioningOption":["R"]})",
    };
    for (const std::string& rule : rules) {
        SCOPED_TRACE(rule);
        EXPECT_EQ(failedLoadComment(core, R"({"Part":[)" + rule + "]}"), kMissingKeywordsForPart);
    }
}

TEST(VersioningSelectionDocument, RuleWithoutMembersIsAKeywordError) {
    PrivateCore core;
    EXPECT_EQ(failedLoadComment(core, R"({"Part":[{}]})"), kMissingKeywordsForPart);
}

TEST(VersioningSelectionDocument, EmptyObjectTypeLeavesTheOwnerOutOfTheKeywordError) {
    PrivateCore core;
    EXPECT_EQ(failedLoadComment(core, R"({"":[{}]})"),
              "Versioning Selection rule demands ALL keywords: "
              "[conditionAttribute1,conditionValue1,versioningOption]");
}

TEST(VersioningSelectionDocument, AttributeThatIsNoStringIsReported) {
    PrivateCore core;
    EXPECT_EQ(
        failedLoadComment(core, R"({"Part":[{"conditionAttribute1":3,)"
                                R"("conditionValue1":["x"],)"
                                R"("versioningOption":["R"]}]})"),
        "Versioning Selection rule value for conditionAttribute1 of Part should be a string.");
    EXPECT_EQ(
        failedLoadComment(core, R"({"Part":[{"conditionAttribute1":"S",)"
                                R"("conditionValue1":["x"],)"
                                R"("conditionAttribute2":["K"],)"
                                R"("versioningOption":["R"]}]})"),
        "Versioning Selection rule value for conditionAttribute2 of Part should be a string.");
    EXPECT_EQ(failedLoadComment(core, R"({"":[{"conditionAttribute1":null}]})"),
              "Versioning Selection rule value for conditionAttribute1 should be a string.");
}

TEST(VersioningSelectionDocument, ValuesThatAreNoListOfStringsAreReported) {
    PrivateCore core;
    EXPECT_EQ(failedLoadComment(core, R"({"Part":[{"conditionAttribute1":"S",)"
                                      R"("conditionValue1":"x",)"
                                      R"("versioningOption":["R"]}]})"),
              "Versioning Selection rule value for conditionValue1 of Part should be a List of "
              "strings.");
    EXPECT_EQ(failedLoadComment(core, R"({"Part":[{"conditionAttribute1":"S",)"
                                      R"("conditionValue1":["x",1],)"
                                      R"("versioningOption":["R"]}]})"),
              "Versioning Selection rule value for conditionValue1 of Part should be a List of "
              "strings.");
    EXPECT_EQ(failedLoadComment(core, R"({"Part":[{"conditionAttribute1":"S",)"
                                      R"("conditionValue1":["x"],)"
                                      R"("conditionValue2":{},)"
                                      R"("versioningOption":["R"]}]})"),
              "Versioning Selection rule value for conditionValue2 of Part should be a List of "
              "strings.");
    EXPECT_EQ(failedLoadComment(core, R"({"Part":[{"conditionAttribute1":"S",)"
                                      R"("conditionValue1":["x"],)"
                                      R"("versioningOption":[true]}]})"),
              "Versioning Selection rule value for versioningOption of Part should be a List of "
              "strings.");
    // With no object type the two blanks around it meet.
    EXPECT_EQ(failedLoadComment(core, R"({"":[{"versioningOption":"R"}]})"),
              "Versioning Selection rule value for versioningOption of  should be a List of "
              "strings.");
}

TEST(VersioningSelectionDocument, FirstBadMemberEndsTheRule) {
    // The type error stands before the missing keywords, and only it is told.
    PrivateCore core;
    EXPECT_EQ(failedLoadComment(core, R"({"Part":[{"conditionValue1":7,)"
                                      R"("conditionAttribute1":7}]})"),
              "Versioning Selection rule value for conditionValue1 of Part should be a List of "
              "strings.");
}

TEST(VersioningSelectionDocument, FirstBadRuleEndsTheSectionAndEmptiesTheStore) {
    PrivateCore core;
    EXPECT_EQ(failedLoadComment(core, R"({"Part":[{"conditionAttribute1":"S",)"
                                      R"("conditionValue1":["x"],)"
                                      R"("versioningOption":["R"]},{}],)"
                                      R"("Drawing":[{"conditionAttribute1":1}]})"),
              kMissingKeywordsForPart);
}

TEST(VersioningSelectionDocument, MessagesAfterAnAllRuleSayAny) {
    PrivateCore core;
    EXPECT_EQ(failedLoadComment(core, R"({"ALL":[{"conditionAttribute1":"S",)"
                                      R"("conditionValue1":["x"],)"
                                      R"("versioningOption":["R"]},{}]})"),
              "Versioning Selection rule for <any> demands ALL keywords: "
              "[conditionAttribute1,conditionValue1,versioningOption]");
    EXPECT_EQ(failedLoadComment(core, R"({"ALL":[{}]})"),
              "Versioning Selection rule for ALL demands ALL keywords: "
              "[conditionAttribute1,conditionValue1,versioningOption]");
}

TEST(VersioningSelectionDocument, FrameErrorsCarryTheRuleName) {
    PrivateCore core;
    EXPECT_EQ(failedLoadComment(core, R"({"Part":{}})"),
              "Versioning Selection rules for Part should be in a List.");
    EXPECT_EQ(failedLoadComment(core, R"({"Part":["rule"]})"),
              "Versioning Selection rule in list for Part should be a map.");
}

// ------------------------------------------------------------------- lookup

TEST(VersioningSelectionLookup, MatchesObjectTypeAndPredicate) {
    TOVLifecycleBusinessRules store;
    store.appendNewVersioningAttrSelectionRule(
        TOVVersioningSelection("Part", "Status", {"Released"}, {"PartOption"}));
    store.appendNewVersioningAttrSelectionRule(
        TOVVersioningSelection("<any>", "Status", {"<any>"}, {"AnyOption"}));
    store.appendNewVersioningAttrSelectionRule(
        TOVVersioningSelection("Drawing", "Status", {"Released"}, {"DrawingOption"}));
    store.appendNewVersioningAttrSelectionRule(
        TOVVersioningSelection("Part", "Kind", {"A"}, {"KindOption"}));
    const TOV_DMStructure structure;

    std::vector<const TOVVersioningSelection*> related;
    EXPECT_TRUE(store.getRelatedVersioningSelectionRulesExact("part", {{"Status", "Released"}},
                                                              &structure, related));
    ASSERT_EQ(related.size(), 2u);
    EXPECT_EQ(related[0]->getVersioningOptions(), Strings{"PartOption"});
    EXPECT_EQ(related[1]->getVersioningOptions(), Strings{"AnyOption"});

    // The output list is appended to.
    EXPECT_TRUE(store.getRelatedVersioningSelectionRulesExact("Drawing", {{"Status", "Draft"}},
                                                              &structure, related));
    ASSERT_EQ(related.size(), 3u);
    EXPECT_EQ(related[2]->getVersioningOptions(), Strings{"AnyOption"});

    // An asked type of "<any>" meets every rule whose conditions hold.
    std::vector<const TOVVersioningSelection*> every;
    EXPECT_TRUE(store.getRelatedVersioningSelectionRulesExact(
        "<any>", {{"Status", "Released"}, {"Kind", "A"}}, &structure, every));
    ASSERT_EQ(every.size(), 4u);

    // Nothing selected: false, and the list stays as it was.
    EXPECT_FALSE(store.getRelatedVersioningSelectionRulesExact("Part", {{"Kind", "B"}}, &structure,
                                                               related));
    EXPECT_EQ(related.size(), 3u);
    EXPECT_FALSE(store.getRelatedVersioningSelectionRulesExact("Part", {}, &structure, related));
}

TEST(VersioningSelectionLookup, LibraryItemRulesMeetRliTypes) {
    TOV_DMStructure structure;
    structure.appendDMStructureObject(
        TOV_DMStructureObject("Drawing", "RLI", {TOV_DMAttribute("A", "REGULAR", true)}));
    structure.appendDMStructureObject(
        TOV_DMStructureObject("Part", "DMITEM", {TOV_DMAttribute("A", "REGULAR", true)}));
    structure.sortAllDMInfo();

    TOVLifecycleBusinessRules store;
    store.appendNewVersioningAttrSelectionRule(
        TOVVersioningSelection("Library_Item", "Status", {"x"}, {"Revision"}));
    std::vector<const TOVVersioningSelection*> related;
    EXPECT_TRUE(store.getRelatedVersioningSelectionRulesExact("Drawing", {{"Status", "x"}},
                                                              &structure, related));
    EXPECT_FALSE(store.getRelatedVersioningSelectionRulesExact("Drawing", {{"Status", "X"}},
                                                               &structure, related));
    EXPECT_FALSE(store.getRelatedVersioningSelectionRulesExact("Part", {{"Status", "x"}},
                                                               &structure, related));
    EXPECT_EQ(related.size(), 1u);
}

}  // namespace
