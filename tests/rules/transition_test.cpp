// Transition rules: the predicates, the word and debug forms, the sort order,
// and the "transitions" section of the rules document.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "test_support.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVTransition.h"
#include "tov/TOV_DMAttribute.h"
#include "tov/TOV_DMStructure.h"
#include "tov/TOV_DMStructureObject.h"
#include "tov/entry_points.h"
#include "tov/vocabulary.h"

namespace {

const char* const kLoaded =
    R"({"Result":"Success","ResultComment":"Successfully initialized TOV rules"})";
const char* const kTransitionHeading = "---------------TRANSITION RULES ------------------\n";

std::string failure(const std::string& comment) {
    return R"({"Result":"Failure","ResultComment":")" + comment + R"("})";
}

std::string load(tovtest::PrivateCore& core, const std::string& document) {
    return tovtest::asText(InitializeTOVRules(document, core.get()));
}

// What the store's transition list prints, heading included.
std::string printedTransitions(tovtest::PrivateCore& core) {
    return tovtest::captureConsole(
        core.logger(), [&] { core.rules()->printTransitionContentsDBG(core.logger()); });
}

std::string printedRule(const std::string& objectType, const std::string& attribute,
                        const std::string& fromValue, const std::string& toValues) {
    return "**TOVTransition rule:\nObject type : " + objectType + "\nAttribute : " + attribute +
           "\nFrom value : " + fromValue + "\nTo values : " + toValues + "\n";
}

// Runs `action` and returns what it wrote on the standard output.
template <typename Action>
std::string captureStdout(Action action) {
    std::fflush(stdout);
    testing::internal::CaptureStdout();
    action();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

TOVTransition statusRule(const std::string& fromValue, const std::vector<std::string>& toValues) {
    return TOVTransition("Part", "Status", fromValue, toValues);
}

}  // namespace

// ---- Predicates on constructed rules ----

TEST(TransitionRule, InitialPacketWithoutTheAttributeIsNeverForbidden) {
    const AttributesMap initial{{"Owner", "Draft"}};
    const AttributesMap target{{"Status", "Obsolete"}};
    EXPECT_FALSE(statusRule("Draft", {"Review"}).shouldTransitionBeForbidden(initial, target));
    EXPECT_FALSE(statusRule("<any>", {"Review"}).shouldTransitionBeForbidden(initial, target));
}

// The form for values looked up by the caller answers as the packets do,
// for every combination of a present, absent, wildcard or case-changed value.
TEST(TransitionRule, ValuesLookedUpAnswerAsThePacketsDo) {
    const std::vector<TOVTransition> rules = {
        statusRule("Draft", {"Review"}), statusRule("<any>", {"Review"}),
        statusRule("Draft", {"<any>"}),  statusRule("Draft", {"Draft"}),
        statusRule("draft", {"<ANY>"}),  statusRule("Draft", {}),
    };
    const std::vector<std::string> values = {"Draft", "draft", "Review", "review", "<any>", ""};
    const auto valueOf = [](const AttributesMap& packet) -> const std::string* {
        const auto found = packet.find("Status");
        return found == packet.end() ? nullptr : &found->second;
    };
    std::vector<AttributesMap> packets = {{}, {{"Owner", "Draft"}}};
    for (const std::string& value : values) {
        packets.push_back({{"Status", value}});
    }
    for (const TOVTransition& rule : rules) {
        for (const AttributesMap& initial : packets) {
            for (const AttributesMap& target : packets) {
                std::string words;
                rule.expressRuleInWords(words);
                EXPECT_EQ(rule.shouldTransitionBeForbiddenFrom(valueOf(initial), valueOf(target)),
                          rule.shouldTransitionBeForbidden(initial, target))
                    << words << " from " << (valueOf(initial) ? *valueOf(initial) : "(none)")
                    << " to " << (valueOf(target) ? *valueOf(target) : "(none)");
            }
        }
    }
}

TEST(TransitionRule, AnyFromValueBindsAnEmptyPacketValue) {
    const TOVTransition rule = statusRule("<any>", {"Review"});
    const AttributesMap initial{{"Status", ""}};
    EXPECT_TRUE(rule.shouldTransitionBeForbidden(initial, {{"Status", "Obsolete"}}));
    EXPECT_FALSE(rule.shouldTransitionBeForbidden(initial, {{"Status", "Review"}}));
}

TEST(TransitionRule, UnrelatedFromValueDoesNotBind) {
    const TOVTransition rule = statusRule("Draft", {"Review"});
    EXPECT_FALSE(
        rule.shouldTransitionBeForbidden({{"Status", "Review"}}, {{"Status", "Obsolete"}}));
    EXPECT_TRUE(rule.shouldTransitionBeForbidden({{"Status", "Draft"}}, {{"Status", "Obsolete"}}));
    EXPECT_FALSE(rule.shouldTransitionBeForbidden({{"Status", "Draft"}}, {{"Status", "Review"}}));
}

TEST(TransitionRule, PacketValueDifferingInCaseOnlyBinds) {
    const TOVTransition rule = statusRule("Draft", {"Review"});
    EXPECT_TRUE(rule.shouldTransitionBeForbidden({{"Status", "DRAFT"}}, {{"Status", "Obsolete"}}));
    EXPECT_FALSE(rule.shouldTransitionBeForbidden({{"Status", "dRaFt"}}, {{"Status", "Review"}}));
}

TEST(TransitionRule, AttemptedValueDifferingInCaseOnlyIsForbidden) {
    const TOVTransition rule = statusRule("Draft", {"Review"});
    const AttributesMap initial{{"Status", "Draft"}};
    EXPECT_TRUE(rule.shouldTransitionBeForbidden(initial, {{"Status", "review"}}));
    EXPECT_TRUE(rule.shouldTransitionBeForbidden(initial, {{"Status", "REVIEW"}}));
    EXPECT_FALSE(rule.shouldTransitionBeForbidden(initial, {{"Status", "Review"}}));
}

TEST(TransitionRule, AnyValueInThePacketBindsEveryRuleOnThatAttribute) {
    const AttributesMap target{{"Status", "Obsolete"}};
    EXPECT_TRUE(
        statusRule("Draft", {"Review"}).shouldTransitionBeForbidden({{"Status", "<any>"}}, target));
    EXPECT_TRUE(statusRule("Released", {"Review"})
                    .shouldTransitionBeForbidden({{"Status", "<ANY>"}}, target));
    // Bound, and the target is allowed: the rule binds but does not object.
    EXPECT_FALSE(statusRule("Released", {"Obsolete"})
                     .shouldTransitionBeForbidden({{"Status", "<any>"}}, target));
}

TEST(TransitionRule, AnyInToValuesForbidsNothing) {
    const TOVTransition rule = statusRule("Draft", {"Review", "<any>"});
    const AttributesMap initial{{"Status", "Draft"}};
    EXPECT_FALSE(rule.shouldTransitionBeForbidden(initial, {{"Status", "Obsolete"}}));
    EXPECT_FALSE(rule.shouldTransitionBeForbidden(initial, {{"Status", ""}}));
    EXPECT_FALSE(rule.shouldTransitionBeForbidden(initial, {{"Status", "review"}}));
    EXPECT_FALSE(rule.shouldTransitionBeForbidden(initial, {}));
}

TEST(TransitionRule, AnyInCapitalsInToValuesIsNoWildcard) {
    const TOVTransition rule = statusRule("Draft", {"<ANY>"});
    const AttributesMap initial{{"Status", "Draft"}};
    EXPECT_TRUE(rule.shouldTransitionBeForbidden(initial, {{"Status", "Review"}}));
    EXPECT_TRUE(rule.shouldTransitionBeForbidden(initial, {{"Status", "<any>"}}));
    EXPECT_TRUE(rule.shouldTransitionBeForbidden(initial, {{"Status", "<Any>"}}));
    EXPECT_FALSE(rule.shouldTransitionBeForbidden(initial, {{"Status", "<ANY>"}}));
}

TEST(TransitionRule, AttemptedAnyValuePassesOnlyWhenTheListAllowsIt) {
    const AttributesMap initial{{"Status", "Draft"}};
    const AttributesMap target{{"Status", "<any>"}};
    EXPECT_TRUE(statusRule("Draft", {"Review"}).shouldTransitionBeForbidden(initial, target));
    EXPECT_FALSE(statusRule("Draft", {"<any>"}).shouldTransitionBeForbidden(initial, target));
}

TEST(TransitionRule, TargetWithoutTheAttributeIsAnAttemptAtTheFromValue) {
    const AttributesMap initial{{"Status", "Draft"}};
    const AttributesMap target{{"Owner", "Smith"}};
    EXPECT_TRUE(statusRule("Draft", {"Review"}).shouldTransitionBeForbidden(initial, target));
    EXPECT_FALSE(
        statusRule("Draft", {"Review", "Draft"}).shouldTransitionBeForbidden(initial, target));
    // The packet's own value is attempted, not the rule's from value.
    EXPECT_TRUE(
        statusRule("Draft", {"Draft"}).shouldTransitionBeForbidden({{"Status", "draft"}}, target));
}

TEST(TransitionRule, StayingOnTheFromValueIsJudgedLikeAnyAttempt) {
    const AttributesMap initial{{"Status", "Draft"}};
    const AttributesMap target{{"Status", "Draft"}};
    EXPECT_TRUE(statusRule("Draft", {"Review"}).shouldTransitionBeForbidden(initial, target));
    EXPECT_FALSE(
        statusRule("Draft", {"Draft", "Review"}).shouldTransitionBeForbidden(initial, target));
}

TEST(TransitionRule, DefaultConstructedRuleForbidsABoundAttribute) {
    const TOVTransition rule;
    EXPECT_TRUE(rule.shouldTransitionBeForbidden({{"", ""}}, {{"", ""}}));
    EXPECT_TRUE(rule.shouldTransitionBeForbidden({{"", ""}}, {}));
    EXPECT_FALSE(rule.shouldTransitionBeForbidden({{"Status", ""}}, {{"", ""}}));
}

TEST(TransitionRule, AttributeIsAnExactPacketKey) {
    const TOVTransition rule = statusRule("Draft", {"Review"});
    EXPECT_FALSE(rule.shouldTransitionBeForbidden({{"status", "Draft"}}, {{"status", "Obsolete"}}));
    // The target's key in another case does not count, so the from value is attempted.
    EXPECT_TRUE(rule.shouldTransitionBeForbidden({{"Status", "Draft"}}, {{"status", "Review"}}));
}

TEST(TransitionRule, ResetAndAllAreOrdinaryValues) {
    const AttributesMap draft{{"Status", "Draft"}};
    EXPECT_FALSE(
        statusRule("ALL", {"Review"}).shouldTransitionBeForbidden(draft, {{"Status", "X"}}));
    EXPECT_TRUE(statusRule("ALL", {"Review"})
                    .shouldTransitionBeForbidden({{"Status", "all"}}, {{"Status", "X"}}));
    EXPECT_TRUE(statusRule("Draft", {"ALL"}).shouldTransitionBeForbidden(draft, {{"Status", "X"}}));
    EXPECT_FALSE(
        statusRule("Draft", {"ALL"}).shouldTransitionBeForbidden(draft, {{"Status", "ALL"}}));
    EXPECT_FALSE(
        statusRule("Draft", {"Reset"}).shouldTransitionBeForbidden(draft, {{"Status", "Reset"}}));
    EXPECT_TRUE(
        statusRule("Draft", {"Reset"}).shouldTransitionBeForbidden(draft, {{"Status", "reset"}}));
    EXPECT_FALSE(statusRule("Reset", {"Review"})
                     .shouldTransitionBeForbidden(draft, {{"Status", "Obsolete"}}));
}

// ---- constrainsSecondaryAttribute ----

class TransitionSecondary : public testing::Test {
protected:
    void SetUp() override {
        structure.appendDMStructureObject(TOV_DMStructureObject(
            "Part", "DMITEM",
            {TOV_DMAttribute("A", "REGULAR", false), TOV_DMAttribute("P", "REGULAR", true)}));
        structure.appendDMStructureObject(
            TOV_DMStructureObject("Assembly", "DMITEM", {TOV_DMAttribute("B", "REGULAR", false)}));
        structure.sortAllDMInfo();
    }
    TOV_DMStructure structure;
};

TEST_F(TransitionSecondary, UsesTheRuleObjectType) {
    EXPECT_TRUE(TOVTransition("Part", "A", "x", {"y"})
                    .constrainsSecondaryAttribute("Assembly", &structure));
    EXPECT_FALSE(TOVTransition("Assembly", "A", "x", {"y"})
                     .constrainsSecondaryAttribute("Part", &structure));
    EXPECT_TRUE(TOVTransition("Assembly", "B", "x", {"y"})
                    .constrainsSecondaryAttribute("Part", &structure));
}

TEST_F(TransitionSecondary, PrimaryOrUnknownAttributeIsNotSecondary) {
    EXPECT_FALSE(
        TOVTransition("Part", "P", "x", {"y"}).constrainsSecondaryAttribute("Part", &structure));
    EXPECT_FALSE(
        TOVTransition("Part", "a", "x", {"y"}).constrainsSecondaryAttribute("Part", &structure));
    EXPECT_FALSE(
        TOVTransition("Part", "Z", "x", {"y"}).constrainsSecondaryAttribute("Part", &structure));
}

TEST_F(TransitionSecondary, UnknownObjectTypeIsNotSecondary) {
    EXPECT_FALSE(
        TOVTransition("Drawing", "A", "x", {"y"}).constrainsSecondaryAttribute("Part", &structure));
}

TEST_F(TransitionSecondary, AnyObjectTypeTakesTheEditedObjectType) {
    const TOVTransition lower("<any>", "A", "x", {"y"});
    EXPECT_TRUE(lower.constrainsSecondaryAttribute("Part", &structure));
    EXPECT_FALSE(lower.constrainsSecondaryAttribute("Assembly", &structure));
    const TOVTransition upper("<ANY>", "B", "x", {"y"});
    EXPECT_TRUE(upper.constrainsSecondaryAttribute("Assembly", &structure));
    EXPECT_FALSE(upper.constrainsSecondaryAttribute("Part", &structure));
}

// ---- operator< ----

TEST(TransitionRule, OrderIsByObjectTypeThenAttributeThenFromValue) {
    EXPECT_TRUE(TOVTransition("Abc", "Z", "Z", {}) < TOVTransition("Abd", "A", "A", {}));
    EXPECT_FALSE(TOVTransition("Abd", "A", "A", {}) < TOVTransition("Abc", "Z", "Z", {}));
    EXPECT_TRUE(TOVTransition("Part", "A", "Z", {}) < TOVTransition("PART", "B", "A", {}));
    EXPECT_FALSE(TOVTransition("PART", "B", "A", {}) < TOVTransition("Part", "A", "Z", {}));
    EXPECT_TRUE(TOVTransition("Part", "A", "Draft", {}) < TOVTransition("part", "a", "Drafu", {}));
    EXPECT_FALSE(TOVTransition("part", "a", "Drafu", {}) < TOVTransition("Part", "A", "Draft", {}));
}

TEST(TransitionRule, OrderLooksAtLengthFirst) {
    EXPECT_TRUE(TOVTransition("Zed", "A", "A", {}) < TOVTransition("Assembly", "A", "A", {}));
    EXPECT_FALSE(TOVTransition("Assembly", "A", "A", {}) < TOVTransition("Zed", "A", "A", {}));
    EXPECT_TRUE(TOVTransition("Part", "Zz", "A", {}) < TOVTransition("Part", "Abc", "A", {}));
    EXPECT_TRUE(TOVTransition("Part", "A", "Zz", {}) < TOVTransition("Part", "A", "Abc", {}));
}

TEST(TransitionRule, AnyObjectTypeSortsAsAFiveLetterWord) {
    const TOVTransition any("<any>", "A", "A", {});
    EXPECT_TRUE(TOVTransition("Part", "A", "A", {}) < any);
    EXPECT_FALSE(any < TOVTransition("Part", "A", "A", {}));
    EXPECT_TRUE(any < TOVTransition("Assembly", "A", "A", {}));
    EXPECT_FALSE(TOVTransition("Assembly", "A", "A", {}) < any);
}

TEST(TransitionRule, CaseAndToValuesTakeNoPartInTheOrder) {
    const TOVTransition first("Part", "Status", "Draft", {"Review"});
    const TOVTransition second("PART", "STATUS", "draft", {"Obsolete", "Released"});
    EXPECT_FALSE(first < second);
    EXPECT_FALSE(second < first);
    EXPECT_FALSE(first < first);
}

// ---- Word and debug forms ----

TEST(TransitionRule, ExpressRuleInWordsAppendsOneSentence) {
    std::string text = "Refused. ";
    statusRule("Draft", {"Review", "Released"}).expressRuleInWords(text);
    EXPECT_EQ(text,
              R"(Refused. For Part: Status can transition from "Draft" to "Review", "Released")");
}

TEST(TransitionRule, ExpressRuleInWordsWithOneAndNoTargets) {
    std::string one;
    TOVTransition("<any>", "Status", "<any>", {"<any>"}).expressRuleInWords(one);
    EXPECT_EQ(one, R"(For <any>: Status can transition from "<any>" to "<any>")");
    std::string none;
    TOVTransition().expressRuleInWords(none);
    EXPECT_EQ(none, R"(For :  can transition from "" to )");
}

TEST(TransitionRule, PrintsFiveLinesUnderTheStoreHeading) {
    tovtest::PrivateCore core;
    core.rules()->appendNewTransitionRule(statusRule("Draft", {"Review", "Released"}));
    core.rules()->appendNewTransitionRule(TOVTransition());
    EXPECT_EQ(printedTransitions(core),
              std::string(kTransitionHeading) +
                  printedRule("Part", "Status", "Draft", "[Review,Released]") +
                  printedRule("", "", "", ""));
}

TEST(TransitionRule, EmptyListPrintsTheHeadingAlone) {
    tovtest::PrivateCore core;
    EXPECT_EQ(printedTransitions(core), kTransitionHeading);
}

// ---- The "transitions" section ----

TEST(TransitionSection, LoadsARuleThatJudgesEdits) {
    tovtest::PrivateCore core;
    EXPECT_EQ(load(core, R"({"transitions":{"Part":[
        {"attribute":"Status","fromValue":"Draft","toValue":["Review","Released"]}]}})"),
              kLoaded);
    std::vector<const TOVTransition*> related;
    ASSERT_TRUE(
        core.rules()->getRelatedTransitionRules("part", {"Status"}, core.dmInfo(), related));
    ASSERT_EQ(related.size(), 1u);
    EXPECT_TRUE(
        related[0]->shouldTransitionBeForbidden({{"Status", "Draft"}}, {{"Status", "Obsolete"}}));
    EXPECT_FALSE(
        related[0]->shouldTransitionBeForbidden({{"Status", "Draft"}}, {{"Status", "Released"}}));
    EXPECT_FALSE(
        related[0]->shouldTransitionBeForbidden({{"Status", "Review"}}, {{"Status", "Obsolete"}}));
    std::string words;
    related[0]->expressRuleInWords(words);
    EXPECT_EQ(words, R"(For Part: Status can transition from "Draft" to "Review", "Released")");
}

TEST(TransitionSection, AllInAnyCaseBecomesAnyAndMatchesEveryType) {
    tovtest::PrivateCore core;
    EXPECT_EQ(load(core, R"({"transitions":{"all":[
        {"attribute":"Status","fromValue":"ALL","toValue":["<any>"]}]}})"),
              kLoaded);
    EXPECT_EQ(printedTransitions(core),
              std::string(kTransitionHeading) + printedRule("<any>", "Status", "ALL", "[<any>]"));
    std::vector<const TOVTransition*> related;
    EXPECT_TRUE(
        core.rules()->getRelatedTransitionRules("Drawing", {"Status"}, core.dmInfo(), related));
    EXPECT_EQ(related.size(), 1u);
}

TEST(TransitionSection, RepeatedToValueAddsToTheListAndOtherKeywordsAreSkipped) {
    tovtest::PrivateCore core;
    std::string response;
    const std::string printed = captureStdout([&] {
        response = load(core, R"({"transitions":{"Part":[
            {"toValue":["B"],"comment":"ignored","attribute":"Status","fromValue":"Draft",
             "toValue":["A","B"],"allowjumps":true}]}})");
    });
    EXPECT_EQ(response, kLoaded);
    EXPECT_EQ(printed, "");
    EXPECT_EQ(printedTransitions(core),
              std::string(kTransitionHeading) + printedRule("Part", "Status", "Draft", "[B,A,B]"));
}

TEST(TransitionSection, RulesAreStoredInSortOrder) {
    tovtest::PrivateCore core;
    EXPECT_EQ(load(core, R"({"transitions":{
        "Assembly":[{"attribute":"Status","fromValue":"Draft","toValue":["Review"]}],
        "ALL":[{"attribute":"Status","fromValue":"Draft","toValue":["Review"]}],
        "Part":[{"attribute":"Abc","fromValue":"Draft","toValue":["Review"]},
                {"attribute":"Zz","fromValue":"Review","toValue":["Released"]},
                {"attribute":"Zz","fromValue":"Draft","toValue":["Review"]}]}})"),
              kLoaded);
    const std::string printed = tovtest::captureConsole(
        core.logger(), [&] { core.rules()->printContentsDBG(core.logger()); });
    EXPECT_EQ(printed,
              "----------------TRANSITIONS FREEZE RULES--------------\n"
              "---------------HISTORY LINKS RULES ------------------\n"
              "---------------MANUAL LINKS RULES ------------------\n"
              "---------------TRANSITION RULES ------------------\n" +
                  printedRule("Part", "Zz", "Draft", "[Review]") +
                  printedRule("Part", "Zz", "Review", "[Released]") +
                  printedRule("Part", "Abc", "Draft", "[Review]") +
                  printedRule("<any>", "Status", "Draft", "[Review]") +
                  printedRule("Assembly", "Status", "Draft", "[Review]") +
                  "---------------  TRIGGER RULES ------------------\n"
                  "--------VERSIONING ATTRIBUTES SELECTION RULES--------\n"
                  "---------------CONFLICTS RESOLUTIONS RULES---------------\n"
                  "----------------------FILE CONSTRAINTS----------------\n");
}

TEST(TransitionSection, MissingKeywordIsReported) {
    tovtest::PrivateCore core;
    EXPECT_EQ(
        load(core, R"({"transitions":{"Part":[{"attribute":"Status","fromValue":"Draft"}]}})"),
        failure("Transition rule for Part demands ALL keywords: [attribute,fromValue,toValue]"));
    EXPECT_EQ(
        load(core, R"({"transitions":{"Part":[{"attribute":"Status","toValue":["A"]}]}})"),
        failure("Transition rule for Part demands ALL keywords: [attribute,fromValue,toValue]"));
    EXPECT_EQ(
        load(core, R"({"transitions":{"Part":[{"fromValue":"Draft","toValue":["A"]}]}})"),
        failure("Transition rule for Part demands ALL keywords: [attribute,fromValue,toValue]"));
}

TEST(TransitionSection, KeywordsAreMatchedInTheirExactCase) {
    tovtest::PrivateCore core;
    EXPECT_EQ(
        load(core, R"({"transitions":{"Part":[
        {"Attribute":"Status","fromValue":"Draft","toValue":["A"]}]}})"),
        failure("Transition rule for Part demands ALL keywords: [attribute,fromValue,toValue]"));
}

TEST(TransitionSection, EmptyValuesCountAsMissing) {
    tovtest::PrivateCore core;
    const std::string message =
        failure("Transition rule for Part demands ALL keywords: [attribute,fromValue,toValue]");
    EXPECT_EQ(
        load(core,
             R"({"transitions":{"Part":[{"attribute":"","fromValue":"D","toValue":["A"]}]}})"),
        message);
    EXPECT_EQ(
        load(core,
             R"({"transitions":{"Part":[{"attribute":"S","fromValue":"","toValue":["A"]}]}})"),
        message);
    EXPECT_EQ(
        load(core, R"({"transitions":{"Part":[{"attribute":"S","fromValue":"D","toValue":[]}]}})"),
        message);
}

TEST(TransitionSection, EmptyObjectTypeIsAKeywordError) {
    tovtest::PrivateCore core;
    EXPECT_EQ(
        load(core, R"({"transitions":{"":[{"attribute":"S","fromValue":"D","toValue":["A"]}]}})"),
        failure("Transition rule demands ALL keywords: [attribute,fromValue,toValue]"));
}

TEST(TransitionSection, ToValueAsABareStringIsTheStringValueError) {
    tovtest::PrivateCore core;
    EXPECT_EQ(load(core, R"({"transitions":{"Part":[
        {"attribute":"Status","fromValue":"Draft","toValue":"Review"}]}})"),
              failure("Transition rule value for toValue of Part should be a string."));
    // The walk reports the bad value before any missing keyword.
    EXPECT_EQ(load(core, R"({"transitions":{"Part":[{"toValue":"Review"}]}})"),
              failure("Transition rule value for toValue of Part should be a string."));
    EXPECT_EQ(load(core, R"({"transitions":{"Part":[
        {"attribute":"Status","fromValue":"Draft","toValue":["Review",3]}]}})"),
              failure("Transition rule value for toValue of Part should be a string."));
}

TEST(TransitionSection, NonStringAttributeOrFromValueIsTheStringValueError) {
    tovtest::PrivateCore core;
    EXPECT_EQ(load(core, R"({"transitions":{"Part":[
        {"attribute":7,"fromValue":"Draft","toValue":["Review"]}]}})"),
              failure("Transition rule value for attribute of Part should be a string."));
    EXPECT_EQ(load(core, R"({"transitions":{"Part":[
        {"attribute":"Status","fromValue":true,"toValue":["Review"]}]}})"),
              failure("Transition rule value for fromValue of Part should be a string."));
}

TEST(TransitionSection, FrameErrors) {
    tovtest::PrivateCore core;
    EXPECT_EQ(
        load(core, R"({"transitions":{"Part":{"attribute":"S","fromValue":"D","toValue":["A"]}}})"),
        failure("Transition rules for Part should be in a List."));
    EXPECT_EQ(load(core, R"({"transitions":{"Part":["a rule"]}})"),
              failure("Transition rule in list for Part should be a map."));
}

TEST(TransitionSection, MessagesAfterTheRewriteSayAny) {
    tovtest::PrivateCore core;
    EXPECT_EQ(
        load(core, R"({"transitions":{"ALL":[{"attribute":"S","fromValue":"D"}]}})"),
        failure("Transition rule for ALL demands ALL keywords: [attribute,fromValue,toValue]"));
    EXPECT_EQ(
        load(core, R"({"transitions":{"ALL":[
        {"attribute":"S","fromValue":"D","toValue":["A"]},
        {"attribute":"S","fromValue":"D"}]}})"),
        failure("Transition rule for <any> demands ALL keywords: [attribute,fromValue,toValue]"));
    EXPECT_EQ(load(core, R"({"transitions":{"All":[
        {"attribute":"S","fromValue":"D","toValue":["A"]}, "a rule"]}})"),
              failure("Transition rule in list for <any> should be a map."));
}

TEST(TransitionSection, FailedLoadLeavesTheStoreEmpty) {
    tovtest::PrivateCore core;
    EXPECT_EQ(load(core, R"({"transitions":{"Part":[
        {"attribute":"S","fromValue":"D","toValue":["A"]},
        {"attribute":"S","fromValue":"D","toValue":"A"}]}})"),
              failure("Transition rule value for toValue of Part should be a string."));
    EXPECT_FALSE(core.rules()->existAnyRules());
    EXPECT_EQ(printedTransitions(core), kTransitionHeading);
}

TEST(TransitionSection, SectionThatIsNoObjectIsPassedOver) {
    tovtest::PrivateCore core;
    EXPECT_EQ(load(core, R"({"transitions":[{"attribute":"S"}]})"), kLoaded);
    EXPECT_EQ(load(core, R"({"transitions":"Part"})"), kLoaded);
    EXPECT_EQ(load(core, R"({"transitions":{"Part":[]}})"), kLoaded);
    EXPECT_FALSE(core.rules()->existAnyRules());
}

TEST(TransitionSection, UnsupportedKeywordNoticesArePrintedOncePerOccurrence) {
    tovtest::PrivateCore core;
    std::string response;
    const std::string printed = captureStdout([&] {
        response = load(core, R"({"transitions":{"Part":[
            {"allowJumps":true,"attribute":"S","fromValue":"D","toValue":["A"],"allowReverse":false},
            {"attribute":"S","fromValue":"E","allowJumps":"yes","toValue":["A"]}]}})");
    });
    EXPECT_EQ(response, kLoaded);
    EXPECT_EQ(printed,
              "We do not support the allowJumps keyword in the Transition Rule.\n"
              "We do not support the allowReverse keyword in the Transition Rule."
              "We do not support the allowJumps keyword in the Transition Rule.\n");
    EXPECT_EQ(printedTransitions(core), std::string(kTransitionHeading) +
                                            printedRule("Part", "S", "D", "[A]") +
                                            printedRule("Part", "S", "E", "[A]"));
}

TEST(TransitionSection, AllowReverseAloneEndsWithoutALineEnd) {
    tovtest::PrivateCore core;
    std::string response;
    const std::string printed = captureStdout([&] {
        response = load(core, R"({"transitions":{"Part":[
            {"attribute":"S","fromValue":"D","toValue":["A"],"allowReverse":{}}]}})");
    });
    EXPECT_EQ(response, kLoaded);
    EXPECT_EQ(printed, "We do not support the allowReverse keyword in the Transition Rule.");
}
