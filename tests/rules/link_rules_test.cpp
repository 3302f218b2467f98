// Tests of history and manual link rules: the walk over neighbour packets, the
// sentence, the print, the order, the two rules document sections and the exact
// lookups of the store.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "json/json_types.h"
#include "rules/TOVLinkRulesJsonParsers.h"
#include "test_support.h"
#include "tov/TOVHistoryLink.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVManualLink.h"
#include "tov/TOVResponse.h"
#include "tov/entry_points.h"
#include "tov/vocabulary.h"

namespace {

using Packets = std::vector<AttributesMap>;
using Strings = std::vector<std::string>;

const char* const kLoaded = "Successfully initialized TOV rules";
const char* const kHistoryHeading = "---------------HISTORY LINKS RULES ------------------\n";
const char* const kManualHeading = "---------------MANUAL LINKS RULES ------------------\n";
const char* const kHistoryKeywords = "[attribute,fromValue,toValue,acceptableHistoryLinkValues]";
const char* const kManualKeywords = "[attribute,fromValue,toValue,acceptableManualLinkValues]";

std::string historyRuleLines(const std::string& objectType, const std::string& attribute,
                             const std::string& fromValue, const std::string& toValue,
                             const std::string& acceptable) {
    return "**TOVHistoryLink rule:\nObject type : " + objectType + "\nAttribute : " + attribute +
           "\nFrom value : " + fromValue + "\nTo value : " + toValue +
           "\nAcceptable HistoryLink Values : " + acceptable + "\n";
}

std::string manualRuleLines(const std::string& objectType, const std::string& attribute,
                            const std::string& fromValue, const std::string& toValue,
                            const std::string& acceptable) {
    return "**TOVManualLink rule:\nObject type : " + objectType + "\nAttribute : " + attribute +
           "\nFrom value : " + fromValue + "\nTo value : " + toValue +
           "\nAcceptable ManualLink Ancestor Values : " + acceptable + "\n";
}

std::string printHistoryLinks(tovtest::PrivateCore& core) {
    return tovtest::captureConsole(
        core.logger(), [&] { core.rules()->printHistoryLinksContentsDBG(core.logger()); });
}

std::string printManualLinks(tovtest::PrivateCore& core) {
    return tovtest::captureConsole(
        core.logger(), [&] { core.rules()->printManualLinksContentsDBG(core.logger()); });
}

// Loads a rules document that must fail and gives its comment; the store must
// be left empty.
std::string loadFailure(const std::string& document) {
    tovtest::PrivateCore core;
    const TOVResponse response = InitializeTOVRules(document, core.get());
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_FALSE(core.rules()->existAnyRules());
    return response.getGeneralResultComment();
}

// A history section with one object type and one rule written as `rule`.
std::string historyDocument(const std::string& objectType, const std::string& rule) {
    return R"({"historyLinks":{")" + objectType + R"(":[)" + rule + "]}}";
}

std::string manualDocument(const std::string& objectType, const std::string& rule) {
    return R"({"manualLinks":{")" + objectType + R"(":[)" + rule + "]}}";
}

const AttributesMap kReleased{{"Name", "A-1"}, {"Status", "Released"}};
const AttributesMap kFrozen{{"Name", "A-2"}, {"Status", "Frozen"}};
const AttributesMap kNoStatus{{"Name", "A-3"}, {"Owner", "Ann"}};
const AttributesMap kSmallReleased{{"Name", "A-4"}, {"Status", "released"}};
const AttributesMap kObsolete{{"Name", "A-5"}, {"Status", "Obsolete"}};

TOVHistoryLink statusHistoryRule(const Strings& acceptable) {
    return TOVHistoryLink("Part", "Status", "In Work", "Released", acceptable);
}

TOVManualLink statusManualRule(const Strings& acceptable) {
    return TOVManualLink("Part", "Status", "In Work", "Released", acceptable);
}

// The parsers with their rule name and keywords opened up.
class ExposedHistoryParser : public TOVHistoryLinkRulesJsonParser {
public:
    using TOVHistoryLinkRulesJsonParser::getAllNecessaryKeywords;
    using TOVHistoryLinkRulesJsonParser::getRuleName;
};

class ExposedManualParser : public TOVManualLinkRulesJsonParser {
public:
    using TOVManualLinkRulesJsonParser::getAllNecessaryKeywords;
    using TOVManualLinkRulesJsonParser::getRuleName;
};

// ---------------------------------------------------------------- walks

TEST(HistoryLinkWalk, EmptyListGivesFalseAndLeavesOffendingUntouched) {
    AttributesMap offending{{"Kept", "yes"}};
    EXPECT_FALSE(
        statusHistoryRule({"Released"}).foundHistoryLinkObjectViolatingRule({}, offending));
    EXPECT_EQ(offending, (AttributesMap{{"Kept", "yes"}}));
}

TEST(HistoryLinkWalk, PacketWithoutTheAttributeIsSkippedEvenWhenAlone) {
    AttributesMap offending{{"Kept", "yes"}};
    EXPECT_FALSE(statusHistoryRule({"Released"})
                     .foundHistoryLinkObjectViolatingRule({kNoStatus}, offending));
    EXPECT_EQ(offending, (AttributesMap{{"Kept", "yes"}}));
}

TEST(HistoryLinkWalk, AttributeKeyIsLookedUpExactly) {
    // "status" is another key than "Status", so the packet does not report the attribute.
    const AttributesMap lowerKey{{"status", "Frozen"}};
    AttributesMap offending;
    EXPECT_FALSE(
        statusHistoryRule({"Released"}).foundHistoryLinkObjectViolatingRule({lowerKey}, offending));
    EXPECT_TRUE(offending.empty());
}

TEST(HistoryLinkWalk, AllAcceptablePacketsGiveFalse) {
    AttributesMap offending{{"Kept", "yes"}};
    EXPECT_FALSE(
        statusHistoryRule({"Released", "Frozen"})
            .foundHistoryLinkObjectViolatingRule({kReleased, kNoStatus, kFrozen}, offending));
    EXPECT_EQ(offending, (AttributesMap{{"Kept", "yes"}}));
}

TEST(HistoryLinkWalk, ValueDifferingInCaseOnlyIsAViolation) {
    AttributesMap offending;
    EXPECT_TRUE(statusHistoryRule({"Released"})
                    .foundHistoryLinkObjectViolatingRule({kReleased, kSmallReleased}, offending));
    EXPECT_EQ(offending, kSmallReleased);
}

TEST(HistoryLinkWalk, OffendingPacketReplacesTheWholeOutput) {
    AttributesMap offending{{"Kept", "yes"}, {"Status", "old"}};
    EXPECT_TRUE(
        statusHistoryRule({"Released"}).foundHistoryLinkObjectViolatingRule({kFrozen}, offending));
    EXPECT_EQ(offending, (AttributesMap{{"Name", "A-2"}, {"Status", "Frozen"}}));
}

TEST(HistoryLinkWalk, AcceptableAnyMatchesOnlyTheTextAny) {
    const TOVHistoryLink rule = statusHistoryRule({"<any>"});
    const AttributesMap anyValue{{"Status", "<any>"}};
    AttributesMap offending;
    EXPECT_FALSE(rule.foundHistoryLinkObjectViolatingRule({anyValue}, offending));
    EXPECT_TRUE(offending.empty());
    EXPECT_TRUE(rule.foundHistoryLinkObjectViolatingRule({anyValue, kReleased}, offending));
    EXPECT_EQ(offending, kReleased);
    const AttributesMap capitalAny{{"Status", "<ANY>"}};
    EXPECT_TRUE(rule.foundHistoryLinkObjectViolatingRule({capitalAny}, offending));
    EXPECT_EQ(offending, capitalAny);
}

TEST(HistoryLinkWalk, FirstOfTwoOffendersIsReported) {
    AttributesMap offending;
    EXPECT_TRUE(statusHistoryRule({"Released"})
                    .foundHistoryLinkObjectViolatingRule({kReleased, kNoStatus, kObsolete, kFrozen},
                                                         offending));
    EXPECT_EQ(offending, kObsolete);
}

TEST(HistoryLinkWalk, EmptyAcceptableListMakesEveryReportedValueAViolation) {
    AttributesMap offending;
    EXPECT_FALSE(statusHistoryRule({}).foundHistoryLinkObjectViolatingRule({kNoStatus}, offending));
    EXPECT_TRUE(statusHistoryRule({}).foundHistoryLinkObjectViolatingRule({kNoStatus, kReleased},
                                                                          offending));
    EXPECT_EQ(offending, kReleased);
}

TEST(HistoryLinkWalk, EmptyValueIsAcceptableOnlyWhenListed) {
    const AttributesMap emptyStatus{{"Status", ""}};
    AttributesMap offending;
    EXPECT_TRUE(statusHistoryRule({"Released"})
                    .foundHistoryLinkObjectViolatingRule({emptyStatus}, offending));
    EXPECT_EQ(offending, emptyStatus);
    offending.clear();
    EXPECT_FALSE(statusHistoryRule({"", "Released"})
                     .foundHistoryLinkObjectViolatingRule({emptyStatus}, offending));
    EXPECT_TRUE(offending.empty());
}

TEST(HistoryLinkWalk, ResetAndAllAreOrdinaryValues) {
    const TOVHistoryLink rule = statusHistoryRule({"ALL", "Reset"});
    const AttributesMap all{{"Status", "ALL"}};
    const AttributesMap reset{{"Status", "Reset"}};
    const AttributesMap smallAll{{"Status", "all"}};
    const AttributesMap smallReset{{"Status", "reset"}};
    AttributesMap offending;
    EXPECT_FALSE(rule.foundHistoryLinkObjectViolatingRule({all, reset}, offending));
    EXPECT_TRUE(rule.foundHistoryLinkObjectViolatingRule({all, smallAll}, offending));
    EXPECT_EQ(offending, smallAll);
    EXPECT_TRUE(rule.foundHistoryLinkObjectViolatingRule({reset, smallReset}, offending));
    EXPECT_EQ(offending, smallReset);
}

TEST(HistoryLinkWalk, UnsortedAcceptableValuesAreAllFound) {
    // The search halves the list, so every value is found only once it is sorted.
    const Strings acceptable{"zeta", "Beta", "alpha", "Omega", "mu", "Delta", "epsilon", "Z"};
    const TOVHistoryLink rule = statusHistoryRule(acceptable);
    for (const std::string& value : acceptable) {
        AttributesMap offending;
        EXPECT_FALSE(rule.foundHistoryLinkObjectViolatingRule({{{"Status", value}}}, offending))
            << value;
    }
    AttributesMap offending;
    EXPECT_TRUE(rule.foundHistoryLinkObjectViolatingRule({{{"Status", "beta"}}}, offending));
    EXPECT_EQ(offending, (AttributesMap{{"Status", "beta"}}));
}

TEST(HistoryLinkWalk, CopiedRuleKeepsItsWalk) {
    TOVHistoryLink copy;
    copy = statusHistoryRule({"Released", "Frozen"});
    const TOVHistoryLink constructedCopy(copy);
    AttributesMap offending;
    EXPECT_FALSE(
        constructedCopy.foundHistoryLinkObjectViolatingRule({kFrozen, kReleased}, offending));
    EXPECT_TRUE(
        constructedCopy.foundHistoryLinkObjectViolatingRule({kFrozen, kObsolete}, offending));
    EXPECT_EQ(offending, kObsolete);
}

TEST(HistoryLinkWalk, DefaultRuleSkipsPacketsWithoutAnEmptyKey) {
    const TOVHistoryLink rule;
    AttributesMap offending;
    EXPECT_FALSE(rule.foundHistoryLinkObjectViolatingRule({kReleased, kFrozen}, offending));
    EXPECT_TRUE(rule.foundHistoryLinkObjectViolatingRule({kReleased, {{"", "x"}}}, offending));
    EXPECT_EQ(offending, (AttributesMap{{"", "x"}}));
}

TEST(ManualLinkWalk, EmptyListGivesFalseAndLeavesOffendingUntouched) {
    AttributesMap offending{{"Kept", "yes"}};
    EXPECT_FALSE(statusManualRule({"Released"}).foundManualAncestorViolatingRule({}, offending));
    EXPECT_EQ(offending, (AttributesMap{{"Kept", "yes"}}));
}

TEST(ManualLinkWalk, PacketWithoutTheAttributeIsSkippedEvenWhenAlone) {
    AttributesMap offending{{"Kept", "yes"}};
    EXPECT_FALSE(
        statusManualRule({"Released"}).foundManualAncestorViolatingRule({kNoStatus}, offending));
    EXPECT_EQ(offending, (AttributesMap{{"Kept", "yes"}}));
}

TEST(ManualLinkWalk, ValueDifferingInCaseOnlyIsAViolation) {
    AttributesMap offending{{"Kept", "yes"}};
    EXPECT_TRUE(statusManualRule({"Released"})
                    .foundManualAncestorViolatingRule({kReleased, kSmallReleased}, offending));
    EXPECT_EQ(offending, kSmallReleased);
}

TEST(ManualLinkWalk, AcceptableAnyMakesEveryOtherValueAViolation) {
    const TOVManualLink rule = statusManualRule({"<any>"});
    AttributesMap offending;
    EXPECT_FALSE(rule.foundManualAncestorViolatingRule({{{"Status", "<any>"}}}, offending));
    EXPECT_TRUE(offending.empty());
    EXPECT_TRUE(rule.foundManualAncestorViolatingRule({kNoStatus, kFrozen}, offending));
    EXPECT_EQ(offending, kFrozen);
}

TEST(ManualLinkWalk, FirstOfTwoOffendersIsReported) {
    AttributesMap offending;
    EXPECT_TRUE(
        statusManualRule({"Released", "Frozen"})
            .foundManualAncestorViolatingRule({kFrozen, kObsolete, kSmallReleased}, offending));
    EXPECT_EQ(offending, kObsolete);
}

TEST(ManualLinkWalk, UnsortedAcceptableValuesAreAllFound) {
    const Strings acceptable{"zeta", "Beta", "alpha", "Omega", "mu", "Delta", "epsilon", "Z"};
    const TOVManualLink rule = statusManualRule(acceptable);
    for (const std::string& value : acceptable) {
        AttributesMap offending;
        EXPECT_FALSE(rule.foundManualAncestorViolatingRule({{{"Status", value}}}, offending))
            << value;
    }
    AttributesMap offending;
    EXPECT_TRUE(rule.foundManualAncestorViolatingRule({{{"Status", "OMEGA"}}}, offending));
    EXPECT_EQ(offending, (AttributesMap{{"Status", "OMEGA"}}));
}

// ---------------------------------------------------------------- words

TEST(HistoryLinkWords, TransitionSentenceWithValuesInByteOrder) {
    std::string text = "Before. ";
    TOVHistoryLink("Part", "Status", "In Work", "Released", {"frozen", "Released", "Obsolete"})
        .expressRuleInWords(text);
    EXPECT_EQ(text,
              "Before. For Part: When Status transitions from \"In Work\" to \"Released\" then "
              "entries in the same object family can have Status equal to one of "
              ":[Obsolete,Released,frozen]");
}

TEST(HistoryLinkWords, AnyFromValueReadsWithIs) {
    std::string text;
    TOVHistoryLink("<any>", "Status", "<any>", "Released", {"Released"}).expressRuleInWords(text);
    EXPECT_EQ(text,
              "For <any>: When Status is \"Released\" then entries in the same object family can "
              "have Status equal to one of :[Released]");
}

TEST(HistoryLinkWords, AnyInCapitalsKeepsTheTransition) {
    std::string text;
    TOVHistoryLink("Part", "Status", "<ANY>", "Released", {"b", "a"}).expressRuleInWords(text);
    EXPECT_EQ(text,
              "For Part: When Status transitions from \"<ANY>\" to \"Released\" then entries in "
              "the same object family can have Status equal to one of :[a,b]");
}

TEST(HistoryLinkWords, EmptyAcceptableListLeavesNothingBehindTheColon) {
    std::string text;
    TOVHistoryLink("Part", "Status", "A", "B", {}).expressRuleInWords(text);
    EXPECT_EQ(text,
              "For Part: When Status transitions from \"A\" to \"B\" then entries in the same "
              "object family can have Status equal to one of :");
}

TEST(ManualLinkWords, TransitionSentenceWithValuesInByteOrder) {
    std::string text = "x";
    TOVManualLink("Doc", "Phase", "Draft", "Approved", {"approved", "Approved", "Closed"})
        .expressRuleInWords(text);
    EXPECT_EQ(text,
              "xFor Doc: When Phase transitions from \"Draft\" to \"Approved\" then its manual "
              "link ancestors can have Phase equal to one of :[Approved,Closed,approved]");
}

TEST(ManualLinkWords, AnyFromValueReadsWithIs) {
    std::string text;
    TOVManualLink("Doc", "Phase", "<any>", "<any>", {"Closed"}).expressRuleInWords(text);
    EXPECT_EQ(text,
              "For Doc: When Phase is \"<any>\" then its manual link ancestors can have Phase "
              "equal to one of :[Closed]");
}

TEST(ManualLinkWords, AnyInOtherCapitalsKeepsTheTransition) {
    std::string text;
    TOVManualLink("Doc", "Phase", "<Any>", "Approved", {"Closed"}).expressRuleInWords(text);
    EXPECT_EQ(text,
              "For Doc: When Phase transitions from \"<Any>\" to \"Approved\" then its manual "
              "link ancestors can have Phase equal to one of :[Closed]");
}

// ---------------------------------------------------------------- order

TEST(HistoryLinkOrder, ObjectTypeComesFirstAndShorterGoesFirst) {
    const TOVHistoryLink shortType("Part", "Z", "Z", "Z", {});
    const TOVHistoryLink longType("Parts", "A", "A", "A", {});
    EXPECT_TRUE(shortType < longType);
    EXPECT_FALSE(longType < shortType);
    // Length first: "Zz" goes before "aaa" although 'a' comes before 'z'.
    EXPECT_TRUE(TOVHistoryLink("Zz", "A", "A", "A", {}) < TOVHistoryLink("aaa", "A", "A", "A", {}));
    EXPECT_FALSE(TOVHistoryLink("aaa", "A", "A", "A", {}) <
                 TOVHistoryLink("Zz", "A", "A", "A", {}));
}

TEST(HistoryLinkOrder, CaseIsIgnoredInEachKey) {
    EXPECT_TRUE(TOVHistoryLink("a", "X", "X", "X", {}) < TOVHistoryLink("B", "A", "A", "A", {}));
    EXPECT_FALSE(TOVHistoryLink("B", "A", "A", "A", {}) < TOVHistoryLink("a", "X", "X", "X", {}));
    const TOVHistoryLink lower("part", "status", "in", "out", {"x"});
    const TOVHistoryLink upper("PART", "STATUS", "IN", "OUT", {"y", "z"});
    EXPECT_FALSE(lower < upper);
    EXPECT_FALSE(upper < lower);
}

TEST(HistoryLinkOrder, LaterKeysDecideInTurn) {
    const TOVHistoryLink base("Part", "b", "b", "b", {});
    EXPECT_TRUE(TOVHistoryLink("Part", "a", "z", "z", {}) < base);
    EXPECT_FALSE(base < TOVHistoryLink("Part", "a", "z", "z", {}));
    EXPECT_TRUE(TOVHistoryLink("Part", "b", "a", "z", {}) < base);
    EXPECT_FALSE(base < TOVHistoryLink("Part", "b", "a", "z", {}));
    EXPECT_TRUE(TOVHistoryLink("Part", "b", "b", "a", {}) < base);
    EXPECT_FALSE(base < TOVHistoryLink("Part", "b", "b", "a", {}));
    EXPECT_FALSE(base < base);
}

TEST(HistoryLinkOrder, AcceptableValuesTakeNoPart) {
    const TOVHistoryLink few("Part", "Status", "A", "B", {"a"});
    const TOVHistoryLink many("Part", "Status", "A", "B", {"0", "1", "2"});
    EXPECT_FALSE(few < many);
    EXPECT_FALSE(many < few);
}

TEST(ManualLinkOrder, KeysInTurnCaseIgnoredLengthFirst) {
    EXPECT_TRUE(TOVManualLink("Doc", "Z", "Z", "Z", {}) < TOVManualLink("Docs", "A", "A", "A", {}));
    EXPECT_FALSE(TOVManualLink("Docs", "A", "A", "A", {}) <
                 TOVManualLink("Doc", "Z", "Z", "Z", {}));
    EXPECT_TRUE(TOVManualLink("Doc", "a", "z", "z", {}) < TOVManualLink("Doc", "B", "a", "a", {}));
    EXPECT_TRUE(TOVManualLink("Doc", "B", "a", "z", {}) < TOVManualLink("Doc", "b", "B", "a", {}));
    EXPECT_TRUE(TOVManualLink("Doc", "B", "b", "a", {}) < TOVManualLink("doc", "b", "B", "B", {}));
    EXPECT_FALSE(TOVManualLink("Doc", "B", "b", "b", {"1"}) <
                 TOVManualLink("DOC", "b", "B", "B", {"2"}));
    EXPECT_FALSE(TOVManualLink("DOC", "b", "B", "B", {"2"}) <
                 TOVManualLink("Doc", "B", "b", "b", {"1"}));
}

TEST(HistoryLinkOrder, LoadedRulesAreSortedAndPrinted) {
    tovtest::PrivateCore core;
    const TOVResponse response = InitializeTOVRules(R"({"historyLinks":{
        "Parts":[{"attribute":"A","fromValue":"A","toValue":"A","acceptableHistoryLinkValues":["a"]}],
        "Part":[
          {"attribute":"Status","fromValue":"x","toValue":"b","acceptableHistoryLinkValues":["b"]},
          {"attribute":"Status","fromValue":"x","toValue":"A","acceptableHistoryLinkValues":["a"]},
          {"attribute":"Phase","fromValue":"zz","toValue":"zz","acceptableHistoryLinkValues":["p"]}],
        "ALL":[{"attribute":"Status","fromValue":"<any>","toValue":"Released",
                "acceptableHistoryLinkValues":["Released","Frozen","frozen"]}]}})",
                                                    core.get());
    ASSERT_TRUE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(), kLoaded);
    EXPECT_EQ(
        printHistoryLinks(core),
        std::string(kHistoryHeading) + historyRuleLines("Part", "Phase", "zz", "zz", "[p]") +
            historyRuleLines("Part", "Status", "x", "A", "[a]") +
            historyRuleLines("Part", "Status", "x", "b", "[b]") +
            historyRuleLines("<any>", "Status", "<any>", "Released", "[Frozen,Released,frozen]") +
            historyRuleLines("Parts", "A", "A", "A", "[a]"));
    EXPECT_EQ(printManualLinks(core), kManualHeading);
}

TEST(ManualLinkOrder, LoadedRulesAreSortedAndPrinted) {
    tovtest::PrivateCore core;
    const TOVResponse response = InitializeTOVRules(R"({"manualLinks":{
        "Document":[
          {"attribute":"Phase","fromValue":"Draft","toValue":"Released","acceptableManualLinkValues":["Released"]},
          {"attribute":"Phase","fromValue":"Draft","toValue":"Frozen","acceptableManualLinkValues":["z","Z","a"]}],
        "Doc":[{"attribute":"Phase","fromValue":"b","toValue":"x","acceptableManualLinkValues":["x"]},
               {"attribute":"Phase","fromValue":"A","toValue":"x","acceptableManualLinkValues":["y"]}]}})",
                                                    core.get());
    ASSERT_TRUE(response.getGeneralResult());
    EXPECT_EQ(printManualLinks(core),
              std::string(kManualHeading) + manualRuleLines("Doc", "Phase", "A", "x", "[y]") +
                  manualRuleLines("Doc", "Phase", "b", "x", "[x]") +
                  manualRuleLines("Document", "Phase", "Draft", "Frozen", "[Z,a,z]") +
                  manualRuleLines("Document", "Phase", "Draft", "Released", "[Released]"));
    EXPECT_EQ(printHistoryLinks(core), kHistoryHeading);
}

TEST(LinkRulePrint, StoreContentsPrintsBothLinkListsInPlace) {
    tovtest::PrivateCore core;
    core.rules()->setHistoryLinks({TOVHistoryLink("Part", "Status", "A", "B", {"c", "C"})});
    core.rules()->setManualLinks({TOVManualLink("Doc", "Phase", "<any>", "X", {})});
    const std::string printed = tovtest::captureConsole(
        core.logger(), [&] { core.rules()->printContentsDBG(core.logger()); });
    EXPECT_EQ(printed, "----------------TRANSITIONS FREEZE RULES--------------\n" +
                           std::string(kHistoryHeading) +
                           historyRuleLines("Part", "Status", "A", "B", "[C,c]") + kManualHeading +
                           manualRuleLines("Doc", "Phase", "<any>", "X", "") +
                           "---------------TRANSITION RULES ------------------\n"
                           "---------------  TRIGGER RULES ------------------\n"
                           "--------VERSIONING ATTRIBUTES SELECTION RULES--------\n"
                           "---------------CONFLICTS RESOLUTIONS RULES---------------\n"
                           "----------------------FILE CONSTRAINTS----------------\n");
}

// ---------------------------------------------------------------- sections

TEST(LinkRuleParsers, NamesAndKeywords) {
    ExposedHistoryParser history;
    ExposedManualParser manual;
    EXPECT_EQ(history.getRuleName(), "History Link rule");
    EXPECT_EQ(manual.getRuleName(), "Manual Link rule");
    Strings keywords{"kept"};
    history.getAllNecessaryKeywords(keywords);
    EXPECT_EQ(keywords, (Strings{"kept", "attribute", "fromValue", "toValue",
                                 "acceptableHistoryLinkValues"}));
    keywords.clear();
    manual.getAllNecessaryKeywords(keywords);
    EXPECT_EQ(keywords,
              (Strings{"attribute", "fromValue", "toValue", "acceptableManualLinkValues"}));
}

TEST(LinkRuleParsers, ParseSectionDirectly) {
    tovtest::PrivateCore core;
    tovjson::Document document;
    document.Parse(R"({"manualLinks":{"Doc":[{"attribute":"P"}]},
                       "historyLinks":{"Doc":[{"attribute":"P","fromValue":"a","toValue":"b",
                                               "acceptableHistoryLinkValues":["c"]}]}})");
    ASSERT_FALSE(document.HasParseError());

    TOVHistoryLinkRulesJsonParser history;
    EXPECT_TRUE(history.parseSection(document, core.rules()));
    EXPECT_TRUE(history.getParsingResult());
    EXPECT_EQ(history.getParsingErrorComment(), "");

    TOVManualLinkRulesJsonParser manual;
    EXPECT_FALSE(manual.parseSection(document, core.rules()));
    EXPECT_FALSE(manual.getParsingResult());
    EXPECT_EQ(manual.getParsingErrorComment(),
              std::string("Manual Link rule for Doc demands ALL keywords: ") + kManualKeywords);

    EXPECT_EQ(printHistoryLinks(core),
              std::string(kHistoryHeading) + historyRuleLines("Doc", "P", "a", "b", "[c]"));
}

TEST(LinkRuleParsers, AbsentOrNonObjectSectionsAreFine) {
    tovtest::PrivateCore core;
    tovjson::Document document;
    document.Parse(R"({"manualLinks":["not","an","object"]})");
    TOVHistoryLinkRulesJsonParser history;
    EXPECT_TRUE(history.parseSection(document, core.rules()));
    TOVManualLinkRulesJsonParser manual;
    EXPECT_TRUE(manual.parseSection(document, core.rules()));
    EXPECT_TRUE(manual.getParsingResult());
    EXPECT_EQ(manual.getParsingErrorComment(), "");
    EXPECT_FALSE(core.rules()->existAnyRules());
}

TEST(HistoryLinkSection, MissingKeywordFails) {
    EXPECT_EQ(loadFailure(historyDocument(
                  "Part", R"({"attribute":"Status","fromValue":"A","toValue":"B"})")),
              std::string("History Link rule for Part demands ALL keywords: ") + kHistoryKeywords);
}

TEST(HistoryLinkSection, EmptyStringKeywordCountsAsMissing) {
    const std::string expected =
        std::string("History Link rule for Part demands ALL keywords: ") + kHistoryKeywords;
    EXPECT_EQ(loadFailure(historyDocument("Part", R"({"attribute":"","fromValue":"A","toValue":"B",
                              "acceptableHistoryLinkValues":["a"]})")),
              expected);
    EXPECT_EQ(loadFailure(historyDocument("Part", R"({"attribute":"S","fromValue":"","toValue":"B",
                              "acceptableHistoryLinkValues":["a"]})")),
              expected);
    EXPECT_EQ(loadFailure(historyDocument("Part", R"({"attribute":"S","fromValue":"A","toValue":"",
                              "acceptableHistoryLinkValues":["a"]})")),
              expected);
}

TEST(HistoryLinkSection, EmptyAcceptableListCountsAsMissing) {
    EXPECT_EQ(loadFailure(historyDocument("Part", R"({"attribute":"S","fromValue":"A","toValue":"B",
                              "acceptableHistoryLinkValues":[]})")),
              std::string("History Link rule for Part demands ALL keywords: ") + kHistoryKeywords);
}

TEST(HistoryLinkSection, EmptyObjectTypeFailsWithoutOwner) {
    EXPECT_EQ(loadFailure(historyDocument("", R"({"attribute":"S","fromValue":"A","toValue":"B",
                          "acceptableHistoryLinkValues":["a"]})")),
              std::string("History Link rule demands ALL keywords: ") + kHistoryKeywords);
}

TEST(HistoryLinkSection, ToValueGivenAsArrayIsTheStringError) {
    EXPECT_EQ(
        loadFailure(historyDocument("Part", R"({"attribute":"S","fromValue":"A","toValue":["B","C"],
                              "acceptableHistoryLinkValues":["a"]})")),
        "History Link rule value for toValue of Part should be a string.");
}

TEST(HistoryLinkSection, EachStringKeywordRejectsOtherTypes) {
    EXPECT_EQ(loadFailure(historyDocument("Part", R"({"attribute":3})")),
              "History Link rule value for attribute of Part should be a string.");
    EXPECT_EQ(loadFailure(historyDocument("Part", R"({"fromValue":true})")),
              "History Link rule value for fromValue of Part should be a string.");
    EXPECT_EQ(loadFailure(historyDocument("Part", R"({"toValue":null})")),
              "History Link rule value for toValue of Part should be a string.");
}

TEST(HistoryLinkSection, StringErrorWithoutObjectTypeOmitsTheOwner) {
    EXPECT_EQ(loadFailure(historyDocument("", R"({"toValue":{}})")),
              "History Link rule value for toValue should be a string.");
}

TEST(HistoryLinkSection, AcceptableGivenAsBareStringIsTheListError) {
    EXPECT_EQ(loadFailure(historyDocument("Part", R"({"attribute":"S","fromValue":"A","toValue":"B",
                              "acceptableHistoryLinkValues":"a"})")),
              "History Link rule value for acceptableHistoryLinkValues of Part should be a List of "
              "strings.");
}

TEST(HistoryLinkSection, AcceptableListWithANumberIsTheListError) {
    EXPECT_EQ(loadFailure(historyDocument(
                  "Part", R"({"acceptableHistoryLinkValues":["a",1],"attribute":"S"})")),
              "History Link rule value for acceptableHistoryLinkValues of Part should be a List of "
              "strings.");
}

TEST(HistoryLinkSection, ListErrorWithoutObjectTypeKeepsTwoBlanks) {
    EXPECT_EQ(loadFailure(historyDocument("", R"({"acceptableHistoryLinkValues":5})")),
              "History Link rule value for acceptableHistoryLinkValues of  should be a List of "
              "strings.");
}

TEST(HistoryLinkSection, FirstBadMemberInDocumentOrderIsReported) {
    EXPECT_EQ(
        loadFailure(historyDocument("Part", R"({"acceptableHistoryLinkValues":"a","toValue":1})")),
        "History Link rule value for acceptableHistoryLinkValues of Part should be a List of "
        "strings.");
    EXPECT_EQ(
        loadFailure(historyDocument("Part", R"({"toValue":1,"acceptableHistoryLinkValues":"a"})")),
        "History Link rule value for toValue of Part should be a string.");
}

TEST(HistoryLinkSection, ManualListKeywordIsUnknownHere) {
    EXPECT_EQ(loadFailure(historyDocument("Part", R"({"attribute":"S","fromValue":"A","toValue":"B",
                              "acceptableManualLinkValues":["a"]})")),
              std::string("History Link rule for Part demands ALL keywords: ") + kHistoryKeywords);
}

TEST(HistoryLinkSection, KeywordsAreCaseSensitive) {
    EXPECT_EQ(loadFailure(historyDocument("Part", R"({"Attribute":"S","fromValue":"A","toValue":"B",
                              "acceptableHistoryLinkValues":["a"]})")),
              std::string("History Link rule for Part demands ALL keywords: ") + kHistoryKeywords);
}

TEST(HistoryLinkSection, MessageAfterAnAllRuleSaysAny) {
    // The object type is rewritten in place by the first good rule of its member.
    EXPECT_EQ(loadFailure(R"({"historyLinks":{"ALL":[
        {"attribute":"S","fromValue":"A","toValue":"B","acceptableHistoryLinkValues":["a"]},
        {"attribute":"S"}]}})"),
              std::string("History Link rule for <any> demands ALL keywords: ") + kHistoryKeywords);
    EXPECT_EQ(loadFailure(R"({"historyLinks":{"ALL":[{"attribute":"S"}]}})"),
              std::string("History Link rule for ALL demands ALL keywords: ") + kHistoryKeywords);
}

TEST(HistoryLinkSection, FrameErrorsUseTheRuleName) {
    EXPECT_EQ(loadFailure(R"({"historyLinks":{"Part":{"attribute":"S"}}})"),
              "History Link rules for Part should be in a List.");
    EXPECT_EQ(loadFailure(R"({"historyLinks":{"Part":["rule"]}})"),
              "History Link rule in list for Part should be a map.");
}

TEST(HistoryLinkSection, OtherKeywordsAreSkippedAndOrderIsFree) {
    tovtest::PrivateCore core;
    const TOVResponse response = InitializeTOVRules(
        historyDocument("all", R"({"acceptableHistoryLinkValues":["b","B"],"note":5,
                                   "toValue":"T","extra":{"x":[1]},"fromValue":"F",
                                   "attribute":"S"})"),
        core.get());
    ASSERT_TRUE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(), kLoaded);
    EXPECT_EQ(printHistoryLinks(core),
              std::string(kHistoryHeading) + historyRuleLines("<any>", "S", "F", "T", "[B,b]"));
}

TEST(HistoryLinkSection, RepeatedListKeywordAddsAndRepeatedStringKeywordReplaces) {
    tovtest::PrivateCore core;
    const TOVResponse response = InitializeTOVRules(
        historyDocument("Part", R"({"attribute":"S","fromValue":"F","toValue":"first",
                                    "acceptableHistoryLinkValues":["z"],"toValue":"second",
                                    "acceptableHistoryLinkValues":["a","z"]})"),
        core.get());
    ASSERT_TRUE(response.getGeneralResult());
    EXPECT_EQ(printHistoryLinks(core), std::string(kHistoryHeading) +
                                           historyRuleLines("Part", "S", "F", "second", "[a,z,z]"));
}

TEST(HistoryLinkSection, AllInAnyCapitalsLoadsAsAny) {
    tovtest::PrivateCore core;
    const std::string rule =
        R"([{"attribute":"S","fromValue":"F","toValue":"T","acceptableHistoryLinkValues":["v"]}])";
    const TOVResponse response = InitializeTOVRules(
        R"({"historyLinks":{"ALL":)" + rule + R"(,"All":)" + rule + R"(,"aLl":)" + rule + "}}",
        core.get());
    ASSERT_TRUE(response.getGeneralResult());
    const std::string line = historyRuleLines("<any>", "S", "F", "T", "[v]");
    EXPECT_EQ(printHistoryLinks(core), kHistoryHeading + line + line + line);
}

TEST(ManualLinkSection, MissingKeywordFails) {
    EXPECT_EQ(loadFailure(manualDocument("Part", R"({"attribute":"S","fromValue":"A",
                                                    "acceptableManualLinkValues":["a"]})")),
              std::string("Manual Link rule for Part demands ALL keywords: ") + kManualKeywords);
}

TEST(ManualLinkSection, HistoryListKeywordIsUnknownHere) {
    EXPECT_EQ(loadFailure(manualDocument("Part", R"({"attribute":"S","fromValue":"A","toValue":"B",
                              "acceptableHistoryLinkValues":["a"]})")),
              std::string("Manual Link rule for Part demands ALL keywords: ") + kManualKeywords);
}

TEST(ManualLinkSection, ToValueGivenAsArrayIsTheStringError) {
    EXPECT_EQ(
        loadFailure(manualDocument("Part", R"({"attribute":"S","fromValue":"A","toValue":["B"],
                              "acceptableManualLinkValues":["a"]})")),
        "Manual Link rule value for toValue of Part should be a string.");
}

TEST(ManualLinkSection, AcceptableGivenAsBareStringIsTheListError) {
    EXPECT_EQ(loadFailure(manualDocument("Part", R"({"attribute":"S","fromValue":"A","toValue":"B",
                              "acceptableManualLinkValues":"a"})")),
              "Manual Link rule value for acceptableManualLinkValues of Part should be a List of "
              "strings.");
}

TEST(ManualLinkSection, EmptyAcceptableListCountsAsMissing) {
    EXPECT_EQ(loadFailure(manualDocument("Doc", R"({"attribute":"S","fromValue":"A","toValue":"B",
                             "acceptableManualLinkValues":[]})")),
              std::string("Manual Link rule for Doc demands ALL keywords: ") + kManualKeywords);
}

TEST(LinkRuleSections, BothSectionsFailHistoryFirst) {
    EXPECT_EQ(loadFailure(R"({"manualLinks":{"Doc":[{"toValue":1}]},
                              "historyLinks":{"Part":[{"attribute":"S"}]}})"),
              std::string("History Link rule for Part demands ALL keywords: ") + kHistoryKeywords +
                  "|Manual Link rule value for toValue of Doc should be a string.");
}

TEST(LinkRuleSections, FirstErrorEndsTheSectionButNotTheOtherSections) {
    EXPECT_EQ(loadFailure(R"({"historyLinks":{"Part":[{"toValue":1},{"fromValue":2}],
                                              "Doc":[{"attribute":3}]},
                              "manualLinks":{"Doc":[{"attribute":"S"}]}})"),
              "History Link rule value for toValue of Part should be a string.|Manual Link rule "
              "for Doc demands ALL keywords: " +
                  std::string(kManualKeywords));
}

// ---------------------------------------------------------------- lookups

// A store with three history and three manual rules, all on "Status".
class LinkRuleLookup : public testing::Test {
protected:
    void SetUp() override {
        const TOVResponse response = InitializeTOVRules(R"({
          "historyLinks":{"Part":[
            {"attribute":"Status","fromValue":"In Work","toValue":"Released",
             "acceptableHistoryLinkValues":["Released","Frozen"]}],
                          "ALL":[
            {"attribute":"Owner","fromValue":"<any>","toValue":"<any>",
             "acceptableHistoryLinkValues":["Ann"]}]},
          "manualLinks":{"Part":[
            {"attribute":"Status","fromValue":"In Work","toValue":"Released",
             "acceptableManualLinkValues":["Released"]}]}})",
                                                        core.get());
        ASSERT_TRUE(response.getGeneralResult());
    }

    std::string lookUpHistory(const std::string& objectType, const Strings& attributes,
                              const AttributesMap& fromValues, const AttributesMap& toValues,
                              std::vector<const TOVHistoryLink*>& related, bool& found) {
        return tovtest::captureConsole(core.logger(), [&] {
            found = core.rules()->getRelatedHistoryLinkRulesExact(
                objectType, attributes, fromValues, toValues, core.dmInfo(), related,
                core.logger());
        });
    }

    std::string lookUpManual(const std::string& objectType, const Strings& attributes,
                             const AttributesMap& fromValues, const AttributesMap& toValues,
                             std::vector<const TOVManualLink*>& related, bool& found) {
        return tovtest::captureConsole(core.logger(), [&] {
            found = core.rules()->getRelatedManualLinkRulesExact(objectType, attributes, fromValues,
                                                                 toValues, core.dmInfo(), related,
                                                                 core.logger());
        });
    }

    tovtest::PrivateCore core;
};

TEST_F(LinkRuleLookup, TargetValueSelectsIgnoringCaseAndIsLogged) {
    std::vector<const TOVHistoryLink*> related;
    bool found = false;
    const std::string log = lookUpHistory("part", {"Status"}, {{"Status", "In Work"}},
                                          {{"Status", "released"}}, related, found);
    EXPECT_TRUE(found);
    ASSERT_EQ(related.size(), 1U);
    EXPECT_EQ(log,
              "*******HISTORY RULES LOOKUP********\npart edits [Status].All target "
              "values={Status:released}..... I found 1 related rules.\n");
    std::string words;
    related[0]->expressRuleInWords(words);
    EXPECT_EQ(words,
              "For Part: When Status transitions from \"In Work\" to \"Released\" then entries in "
              "the same object family can have Status equal to one of :[Frozen,Released]");
}

TEST_F(LinkRuleLookup, SelectedRuleJudgesTheFamily) {
    std::vector<const TOVHistoryLink*> related;
    bool found = false;
    lookUpHistory("Part", {"Status"}, {}, {{"Status", "Released"}}, related, found);
    ASSERT_EQ(related.size(), 1U);
    AttributesMap offending{{"Kept", "yes"}};
    EXPECT_FALSE(related[0]->foundHistoryLinkObjectViolatingRule({kReleased, kFrozen, kNoStatus},
                                                                 offending));
    EXPECT_EQ(offending, (AttributesMap{{"Kept", "yes"}}));
    EXPECT_TRUE(related[0]->foundHistoryLinkObjectViolatingRule(
        {kReleased, kSmallReleased, kObsolete}, offending));
    EXPECT_EQ(offending, kSmallReleased);
}

TEST_F(LinkRuleLookup, MissingTargetKeyFallsBackOnInitialValue) {
    std::vector<const TOVHistoryLink*> related;
    bool found = false;
    const std::string log = lookUpHistory("Part", {"Status"}, {{"Status", "RELEASED"}},
                                          {{"Name", "A-1"}}, related, found);
    EXPECT_TRUE(found);
    ASSERT_EQ(related.size(), 1U);
    EXPECT_EQ(log,
              "*******HISTORY RULES LOOKUP********\nPart edits [Status].All target "
              "values={Name:A-1}..... I found 1 related rules.\n");
}

TEST_F(LinkRuleLookup, TargetKeyIsNeverOverruledByInitialValue) {
    std::vector<const TOVHistoryLink*> related;
    bool found = true;
    const std::string log = lookUpHistory("Part", {"Status"}, {{"Status", "Released"}},
                                          {{"Status", "Frozen"}}, related, found);
    EXPECT_FALSE(found);
    EXPECT_TRUE(related.empty());
    EXPECT_EQ(log,
              "*******HISTORY RULES LOOKUP********\nPart edits [Status].All target "
              "values={Status:Frozen}..... I found 0 related rules.\n");
}

TEST_F(LinkRuleLookup, KeyAbsentFromBothPacketsGivesTheEmptyValue) {
    std::vector<const TOVHistoryLink*> related;
    bool found = true;
    lookUpHistory("Part", {"Status"}, {}, {}, related, found);
    EXPECT_FALSE(found);
    EXPECT_TRUE(related.empty());
    // The rule on "Owner" has the to value "<any>", which the empty value matches.
    const std::string log = lookUpHistory("Part", {"Owner"}, {}, {}, related, found);
    EXPECT_TRUE(found);
    ASSERT_EQ(related.size(), 1U);
    EXPECT_EQ(log,
              "*******HISTORY RULES LOOKUP********\nPart edits [Owner].All target values={}..... "
              "I found 1 related rules.\n");
}

TEST(LinkRuleLookupEmptyValue, EmptyToValueIsSelectedByAnAbsentKey) {
    tovtest::PrivateCore core;
    core.rules()->setHistoryLinks({TOVHistoryLink("Part", "Status", "A", "", {"x"}),
                                   TOVHistoryLink("Part", "Status", "A", "X", {"x"})});
    std::vector<const TOVHistoryLink*> related;
    EXPECT_TRUE(core.rules()->getRelatedHistoryLinkRulesExact("Part", {"Status"}, {{"Other", "1"}},
                                                              {{"Name", "n"}}, core.dmInfo(),
                                                              related, core.logger()));
    ASSERT_EQ(related.size(), 1U);
    std::string words;
    related[0]->expressRuleInWords(words);
    EXPECT_EQ(words,
              "For Part: When Status transitions from \"A\" to \"\" then entries in the same "
              "object family can have Status equal to one of :[x]");
}

TEST_F(LinkRuleLookup, AttributeMustMatchExactly) {
    std::vector<const TOVHistoryLink*> related;
    bool found = true;
    const std::string log =
        lookUpHistory("Part", {"status"}, {}, {{"status", "Released"}}, related, found);
    EXPECT_FALSE(found);
    EXPECT_TRUE(related.empty());
    EXPECT_EQ(log,
              "*******HISTORY RULES LOOKUP********\nPart edits [status].All target "
              "values={status:Released}..... I found 0 related rules.\n");
}

TEST_F(LinkRuleLookup, RuleUnderAllMatchesEveryObjectType) {
    std::vector<const TOVHistoryLink*> related;
    bool found = false;
    lookUpHistory("Whatever", {"Owner", "Status"}, {}, {{"Owner", "Bob"}, {"Status", "Released"}},
                  related, found);
    EXPECT_TRUE(found);
    ASSERT_EQ(related.size(), 1U);
    std::string words;
    related[0]->expressRuleInWords(words);
    EXPECT_EQ(words,
              "For <any>: When Owner is \"<any>\" then entries in the same object family can have "
              "Owner equal to one of :[Ann]");
}

TEST_F(LinkRuleLookup, SecondCallAppendsAndCountsWhatWasThere) {
    std::vector<const TOVHistoryLink*> related;
    bool found = false;
    const AttributesMap toValues{{"Owner", "x"}, {"Status", "Released"}};
    lookUpHistory("Part", {"Status", "Owner"}, {}, toValues, related, found);
    ASSERT_EQ(related.size(), 2U);
    const std::string log =
        lookUpHistory("Part", {"Status", "Owner"}, {}, toValues, related, found);
    EXPECT_TRUE(found);
    ASSERT_EQ(related.size(), 4U);
    EXPECT_EQ(related[0], related[2]);
    EXPECT_EQ(related[1], related[3]);
    EXPECT_EQ(log,
              "*******HISTORY RULES LOOKUP********\nPart edits [Status,Owner].All target "
              "values={Owner:x, Status:Released}..... I found 4 related rules.\n");
}

TEST_F(LinkRuleLookup, ManualLookupHasItsOwnHeading) {
    std::vector<const TOVManualLink*> related;
    bool found = false;
    const std::string log = lookUpManual("Part", {"Status"}, {{"Status", "Released"}},
                                         {{"Status", "RELEASED"}}, related, found);
    EXPECT_TRUE(found);
    ASSERT_EQ(related.size(), 1U);
    EXPECT_EQ(log,
              "*******MANUAL RULES LOOKUP********\nPart edits [Status].All target "
              "values={Status:RELEASED}..... I found 1 related rules.\n");
    AttributesMap offending;
    EXPECT_TRUE(related[0]->foundManualAncestorViolatingRule({kReleased, kFrozen}, offending));
    EXPECT_EQ(offending, kFrozen);
}

TEST_F(LinkRuleLookup, ManualLookupFallsBackOnInitialValueAndLogsZero) {
    std::vector<const TOVManualLink*> related;
    bool found = false;
    lookUpManual("Part", {"Status"}, {{"Status", "released"}}, {}, related, found);
    EXPECT_TRUE(found);
    EXPECT_EQ(related.size(), 1U);
    related.clear();
    const std::string log = lookUpManual("Part", {"Status"}, {{"Status", "Released"}},
                                         {{"Status", "Frozen"}}, related, found);
    EXPECT_FALSE(found);
    EXPECT_TRUE(related.empty());
    EXPECT_EQ(log,
              "*******MANUAL RULES LOOKUP********\nPart edits [Status].All target "
              "values={Status:Frozen}..... I found 0 related rules.\n");
}

}  // namespace
