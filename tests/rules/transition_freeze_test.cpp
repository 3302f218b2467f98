// Transition freeze rules: the predicate, the word and debug forms, the sort
// order, and the "transitionsFreeze" section of the rules document.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_support.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVTransitionFreeze.h"
#include "tov/entry_points.h"
#include "tov/vocabulary.h"

namespace {

const char* const kLoaded =
    R"({"Result":"Success","ResultComment":"Successfully initialized TOV rules"})";
const char* const kFreezeHeading = "----------------TRANSITIONS FREEZE RULES--------------\n";
const char* const kMissingForPart =
    "Transition Freeze rule for Part demands ALL keywords: "
    "[attribute,freezeConditionAttribute,freezeConditionValue]";

std::string failure(const std::string& comment) {
    return R"({"Result":"Failure","ResultComment":")" + comment + R"("})";
}

std::string load(tovtest::PrivateCore& core, const std::string& document) {
    return tovtest::asText(InitializeTOVRules(document, core.get()));
}

std::string printedFreezes(tovtest::PrivateCore& core) {
    return tovtest::captureConsole(
        core.logger(), [&] { core.rules()->printTransitionsFreezeContentsDBG(core.logger()); });
}

std::string printedRule(const std::string& objectType, const std::string& attribute,
                        const std::string& conditionAttribute, const std::string& conditionValue) {
    return "**TOVTransitionsFreeze rule:\nObject type : " + objectType +
           "\nAttribute : " + attribute + "\nFreeze Condition Attribute : " + conditionAttribute +
           "\nFreeze Condition Value : " + conditionValue + "\n";
}

}  // namespace

// ---- shouldPackageBeFrozen on constructed rules ----

TEST(TransitionFreezeRule, FreezesTheAttributeWhileTheConditionHolds) {
    const TOVTransitionFreeze rule("Part", "Status", "Lifecycle", "Released");
    EXPECT_TRUE(rule.shouldPackageBeFrozen("Status", {{"Lifecycle", "Released"}}));
    EXPECT_FALSE(rule.shouldPackageBeFrozen("Status", {{"Lifecycle", "Draft"}}));
    EXPECT_FALSE(rule.shouldPackageBeFrozen("Owner", {{"Lifecycle", "Released"}}));
}

TEST(TransitionFreezeRule, AnyAttributeFreezesEveryChangedAttribute) {
    const TOVTransitionFreeze rule("Part", "<any>", "Lifecycle", "Released");
    const AttributesMap released{{"Lifecycle", "Released"}};
    EXPECT_TRUE(rule.shouldPackageBeFrozen("Status", released));
    EXPECT_TRUE(rule.shouldPackageBeFrozen("Owner", released));
    EXPECT_TRUE(rule.shouldPackageBeFrozen("", released));
    EXPECT_FALSE(rule.shouldPackageBeFrozen("Status", {{"Lifecycle", "Draft"}}));
}

TEST(TransitionFreezeRule, AttributeNamesCompareAsValues) {
    const TOVTransitionFreeze rule("Part", "Status", "Lifecycle", "Released");
    const AttributesMap released{{"Lifecycle", "Released"}};
    EXPECT_TRUE(rule.shouldPackageBeFrozen("STATUS", released));
    EXPECT_TRUE(rule.shouldPackageBeFrozen("<any>", released));
    EXPECT_TRUE(rule.shouldPackageBeFrozen("<ANY>", released));
    EXPECT_FALSE(rule.shouldPackageBeFrozen("Statu", released));
}

TEST(TransitionFreezeRule, AbsentConditionAttributeNeverFreezes) {
    const AttributesMap packet{{"Status", "Released"}, {"lifecycle", "Released"}};
    EXPECT_FALSE(TOVTransitionFreeze("Part", "Status", "Lifecycle", "Released")
                     .shouldPackageBeFrozen("Status", packet));
    EXPECT_FALSE(TOVTransitionFreeze("Part", "Status", "Lifecycle", "<any>")
                     .shouldPackageBeFrozen("Status", packet));
}

TEST(TransitionFreezeRule, AnyConditionValueHoldsForAPresentEmptyValue) {
    const TOVTransitionFreeze rule("Part", "Status", "Lifecycle", "<any>");
    EXPECT_TRUE(rule.shouldPackageBeFrozen("Status", {{"Lifecycle", ""}}));
    EXPECT_TRUE(rule.shouldPackageBeFrozen("Status", {{"Lifecycle", "Draft"}}));
}

TEST(TransitionFreezeRule, ConditionValueDifferingInCaseOnlyFreezes) {
    const TOVTransitionFreeze rule("Part", "Status", "Lifecycle", "Released");
    EXPECT_TRUE(rule.shouldPackageBeFrozen("Status", {{"Lifecycle", "RELEASED"}}));
    EXPECT_TRUE(rule.shouldPackageBeFrozen("Status", {{"Lifecycle", "released"}}));
}

TEST(TransitionFreezeRule, AnyValueInThePacketFreezes) {
    const TOVTransitionFreeze rule("Part", "Status", "Lifecycle", "Released");
    EXPECT_TRUE(rule.shouldPackageBeFrozen("Status", {{"Lifecycle", "<any>"}}));
    EXPECT_TRUE(rule.shouldPackageBeFrozen("Status", {{"Lifecycle", "<Any>"}}));
}

TEST(TransitionFreezeRule, ConditionOnTheFrozenAttributeItselfIsJudgedBeforeTheEdit) {
    const TOVTransitionFreeze rule("Part", "Status", "Status", "Released");
    EXPECT_TRUE(rule.shouldPackageBeFrozen("Status", {{"Status", "Released"}}));
    EXPECT_FALSE(rule.shouldPackageBeFrozen("Status", {{"Status", "Draft"}}));
}

TEST(TransitionFreezeRule, EmptyAttributeMatchesOnlyAnEmptyOrAnyName) {
    const TOVTransitionFreeze rule("Part", "", "Lifecycle", "Released");
    const AttributesMap released{{"Lifecycle", "Released"}};
    EXPECT_TRUE(rule.shouldPackageBeFrozen("", released));
    EXPECT_TRUE(rule.shouldPackageBeFrozen("<any>", released));
    EXPECT_FALSE(rule.shouldPackageBeFrozen("Status", released));
}

TEST(TransitionFreezeRule, ResetAndAllAreOrdinaryValues) {
    const TOVTransitionFreeze all("Part", "Status", "Lifecycle", "ALL");
    EXPECT_FALSE(all.shouldPackageBeFrozen("Status", {{"Lifecycle", "Draft"}}));
    EXPECT_TRUE(all.shouldPackageBeFrozen("Status", {{"Lifecycle", "all"}}));
    const TOVTransitionFreeze reset("Part", "Status", "Lifecycle", "Reset");
    EXPECT_FALSE(reset.shouldPackageBeFrozen("Status", {{"Lifecycle", "Draft"}}));
    EXPECT_TRUE(reset.shouldPackageBeFrozen("Status", {{"Lifecycle", "RESET"}}));
    EXPECT_FALSE(TOVTransitionFreeze("Part", "ALL", "Lifecycle", "Released")
                     .shouldPackageBeFrozen("Status", {{"Lifecycle", "Released"}}));
}

// ---- operator< ----

TEST(TransitionFreezeRule, OrderSkipsTheFrozenAttribute) {
    const TOVTransitionFreeze first("Part", "Aaaaaaaa", "Lifecycle", "Released");
    const TOVTransitionFreeze second("Part", "B", "Lifecycle", "Released");
    EXPECT_FALSE(first < second);
    EXPECT_FALSE(second < first);
}

TEST(TransitionFreezeRule, OrderIsByObjectTypeThenConditionAttributeThenValue) {
    EXPECT_TRUE(TOVTransitionFreeze("Abc", "Z", "Z", "Z") <
                TOVTransitionFreeze("Abd", "A", "A", "A"));
    EXPECT_FALSE(TOVTransitionFreeze("Abd", "A", "A", "A") <
                 TOVTransitionFreeze("Abc", "Z", "Z", "Z"));
    EXPECT_TRUE(TOVTransitionFreeze("Part", "Z", "A", "Z") <
                TOVTransitionFreeze("PART", "A", "B", "A"));
    EXPECT_FALSE(TOVTransitionFreeze("PART", "A", "B", "A") <
                 TOVTransitionFreeze("Part", "Z", "A", "Z"));
    EXPECT_TRUE(TOVTransitionFreeze("Part", "Z", "A", "A") <
                TOVTransitionFreeze("part", "A", "a", "B"));
    EXPECT_FALSE(TOVTransitionFreeze("part", "A", "a", "B") <
                 TOVTransitionFreeze("Part", "Z", "A", "A"));
}

TEST(TransitionFreezeRule, OrderLooksAtLengthFirstAndIgnoresCase) {
    EXPECT_TRUE(TOVTransitionFreeze("Zed", "A", "A", "A") <
                TOVTransitionFreeze("Assembly", "A", "A", "A"));
    EXPECT_TRUE(TOVTransitionFreeze("Part", "A", "Zz", "A") <
                TOVTransitionFreeze("Part", "A", "Abc", "A"));
    EXPECT_TRUE(TOVTransitionFreeze("Part", "A", "C", "Zz") <
                TOVTransitionFreeze("Part", "A", "C", "Abc"));
    EXPECT_TRUE(TOVTransitionFreeze("Part", "A", "C", "D") <
                TOVTransitionFreeze("<any>", "A", "C", "D"));
    const TOVTransitionFreeze lower("part", "a", "lifecycle", "released");
    const TOVTransitionFreeze upper("PART", "A", "LIFECYCLE", "RELEASED");
    EXPECT_FALSE(lower < upper);
    EXPECT_FALSE(upper < lower);
}

// ---- Word and debug forms ----

TEST(TransitionFreezeRule, ExpressRuleInWordsAppendsOneSentence) {
    std::string text = "Refused. ";
    TOVTransitionFreeze("Part", "Status", "Lifecycle", "Released").expressRuleInWords(text);
    EXPECT_EQ(
        text,
        R"(Refused. For Part: When Lifecycle equals "Released", then Status must remain unchanged.)");
    std::string empty;
    TOVTransitionFreeze().expressRuleInWords(empty);
    EXPECT_EQ(empty, R"(For : When  equals "", then  must remain unchanged.)");
}

TEST(TransitionFreezeRule, PrintsFiveLinesUnderTheStoreHeading) {
    tovtest::PrivateCore core;
    core.rules()->appendNewTransitionFreezeRule(
        TOVTransitionFreeze("Part", "Status", "Lifecycle", "Released"));
    EXPECT_EQ(printedFreezes(core),
              std::string(kFreezeHeading) + printedRule("Part", "Status", "Lifecycle", "Released"));
}

TEST(TransitionFreezeRule, EmptyListPrintsTheHeadingAlone) {
    tovtest::PrivateCore core;
    EXPECT_EQ(printedFreezes(core), kFreezeHeading);
}

// ---- The "transitionsFreeze" section ----

TEST(TransitionFreezeSection, LoadsARuleThatFreezes) {
    tovtest::PrivateCore core;
    EXPECT_EQ(load(core, R"({"transitionsFreeze":{"Part":[
        {"attribute":"Status","freezeConditionAttribute":"Lifecycle",
         "freezeConditionValue":"Released","note":"dropped"}]}})"),
              kLoaded);
    std::vector<const TOVTransitionFreeze*> related;
    ASSERT_TRUE(
        core.rules()->getRelatedTransitionFreezeRules("Part", {"Status"}, core.dmInfo(), related));
    ASSERT_EQ(related.size(), 1u);
    EXPECT_TRUE(related[0]->shouldPackageBeFrozen("Status", {{"Lifecycle", "released"}}));
    EXPECT_FALSE(related[0]->shouldPackageBeFrozen("Status", {{"Lifecycle", "Draft"}}));
    std::string words;
    related[0]->expressRuleInWords(words);
    EXPECT_EQ(words,
              R"(For Part: When Lifecycle equals "Released", then Status must remain unchanged.)");
    EXPECT_EQ(printedFreezes(core),
              std::string(kFreezeHeading) + printedRule("Part", "Status", "Lifecycle", "Released"));
}

TEST(TransitionFreezeSection, EmptyValuesAndAnEmptyObjectTypeAreAccepted) {
    tovtest::PrivateCore core;
    EXPECT_EQ(load(core, R"({"transitionsFreeze":{"":[
        {"attribute":"","freezeConditionAttribute":"","freezeConditionValue":""}]}})"),
              kLoaded);
    EXPECT_EQ(printedFreezes(core), std::string(kFreezeHeading) + printedRule("", "", "", ""));
}

TEST(TransitionFreezeSection, AllInAnyCaseBecomesAny) {
    tovtest::PrivateCore core;
    EXPECT_EQ(load(core, R"({"transitionsFreeze":{"aLL":[
        {"attribute":"<any>","freezeConditionAttribute":"Lifecycle","freezeConditionValue":"ALL"}]}})"),
              kLoaded);
    EXPECT_EQ(printedFreezes(core),
              std::string(kFreezeHeading) + printedRule("<any>", "<any>", "Lifecycle", "ALL"));
}

TEST(TransitionFreezeSection, RulesAreStoredInSortOrder) {
    tovtest::PrivateCore core;
    EXPECT_EQ(load(core, R"({"transitionsFreeze":{
        "Assembly":[{"attribute":"S","freezeConditionAttribute":"C","freezeConditionValue":"V"}],
        "ALL":[{"attribute":"S","freezeConditionAttribute":"C","freezeConditionValue":"V"}],
        "Part":[{"attribute":"S","freezeConditionAttribute":"Abc","freezeConditionValue":"V"},
                {"attribute":"S","freezeConditionAttribute":"Zz","freezeConditionValue":"Released"},
                {"attribute":"S","freezeConditionAttribute":"Zz","freezeConditionValue":"Draft"}]}})"),
              kLoaded);
    const std::string printed = tovtest::captureConsole(
        core.logger(), [&] { core.rules()->printContentsDBG(core.logger()); });
    EXPECT_EQ(printed, std::string(kFreezeHeading) + printedRule("Part", "S", "Zz", "Draft") +
                           printedRule("Part", "S", "Zz", "Released") +
                           printedRule("Part", "S", "Abc", "V") +
                           printedRule("<any>", "S", "C", "V") +
                           printedRule("Assembly", "S", "C", "V") +
                           "---------------HISTORY LINKS RULES ------------------\n"
                           "---------------MANUAL LINKS RULES ------------------\n"
                           "---------------TRANSITION RULES ------------------\n"
                           "---------------  TRIGGER RULES ------------------\n"
                           "--------VERSIONING ATTRIBUTES SELECTION RULES--------\n"
                           "---------------CONFLICTS RESOLUTIONS RULES---------------\n"
                           "----------------------FILE CONSTRAINTS----------------\n");
}

TEST(TransitionFreezeSection, MissingKeywordIsReported) {
    tovtest::PrivateCore core;
    EXPECT_EQ(load(core, R"({"transitionsFreeze":{"Part":[
        {"attribute":"Status","freezeConditionAttribute":"Lifecycle"}]}})"),
              failure(kMissingForPart));
    EXPECT_EQ(load(core, R"({"transitionsFreeze":{"Part":[
        {"freezeConditionAttribute":"Lifecycle","freezeConditionValue":"Released"}]}})"),
              failure(kMissingForPart));
    EXPECT_EQ(load(core, R"({"transitionsFreeze":{"Part":[
        {"attribute":"Status","FreezeConditionAttribute":"Lifecycle","freezeConditionValue":"R"}]}})"),
              failure(kMissingForPart));
    EXPECT_EQ(load(core, R"({"transitionsFreeze":{"":[{}]}})"),
              failure("Transition Freeze rule demands ALL keywords: "
                      "[attribute,freezeConditionAttribute,freezeConditionValue]"));
}

TEST(TransitionFreezeSection, NonStringMemberFailsTheWholeRule) {
    tovtest::PrivateCore core;
    EXPECT_EQ(load(core, R"({"transitionsFreeze":{"Part":[
        {"attribute":"Status","freezeConditionAttribute":"Lifecycle",
         "freezeConditionValue":"Released","priority":3}]}})"),
              failure("Transition Freeze rule: parsing error on keys - values of Part."));
    EXPECT_EQ(load(core, R"({"transitionsFreeze":{"Part":[
        {"attribute":["Status"],"freezeConditionAttribute":"Lifecycle","freezeConditionValue":"R"}]}})"),
              failure("Transition Freeze rule: parsing error on keys - values of Part."));
    EXPECT_EQ(load(core, R"({"transitionsFreeze":{"":[{"attribute":null}]}})"),
              failure("Transition Freeze rule: parsing error on keys - values."));
    EXPECT_FALSE(core.rules()->existAnyRules());
}

TEST(TransitionFreezeSection, FrameErrors) {
    tovtest::PrivateCore core;
    EXPECT_EQ(load(core, R"({"transitionsFreeze":{"Part":{"attribute":"S"}}})"),
              failure("Transition Freeze rules for Part should be in a List."));
    EXPECT_EQ(load(core, R"({"transitionsFreeze":{"Part":["a rule"]}})"),
              failure("Transition Freeze rule in list for Part should be a map."));
}

TEST(TransitionFreezeSection, MessagesAfterTheRewriteSayAny) {
    tovtest::PrivateCore core;
    EXPECT_EQ(load(core, R"({"transitionsFreeze":{"ALL":[{"attribute":"S"}]}})"),
              failure("Transition Freeze rule for ALL demands ALL keywords: "
                      "[attribute,freezeConditionAttribute,freezeConditionValue]"));
    EXPECT_EQ(load(core, R"({"transitionsFreeze":{"ALL":[
        {"attribute":"S","freezeConditionAttribute":"C","freezeConditionValue":"V"},
        {"attribute":"S"}]}})"),
              failure("Transition Freeze rule for <any> demands ALL keywords: "
                      "[attribute,freezeConditionAttribute,freezeConditionValue]"));
    EXPECT_EQ(load(core, R"({"transitionsFreeze":{"all":[
        {"attribute":"S","freezeConditionAttribute":"C","freezeConditionValue":"V"},
        {"attribute":false}]}})"),
              failure("Transition Freeze rule: parsing error on keys - values of <any>."));
}

TEST(TransitionFreezeSection, FailuresOfBothSectionsAreJoinedInSectionOrder) {
    tovtest::PrivateCore core;
    EXPECT_EQ(
        load(core, R"({"transitionsFreeze":{"Part":[7]},
                             "transitions":{"Part":[{"attribute":"S"}]}})"),
        failure("Transition rule for Part demands ALL keywords: [attribute,fromValue,toValue]|"
                "Transition Freeze rule in list for Part should be a map."));
    EXPECT_FALSE(core.rules()->existAnyRules());
}

TEST(TransitionFreezeSection, SectionThatIsNoObjectIsPassedOver) {
    tovtest::PrivateCore core;
    EXPECT_EQ(load(core, R"({"transitionsFreeze":[{"attribute":"S"}]})"), kLoaded);
    EXPECT_EQ(load(core, R"({"transitionsFreeze":{}})"), kLoaded);
    EXPECT_EQ(load(core, R"({"transitionsFreeze":{"Part":[]}})"), kLoaded);
    EXPECT_FALSE(core.rules()->existAnyRules());
}
