// Tests of trigger rules: the abstract versioning rule, getters, order, print,
// the "triggers" section of the rules document and the store's lookup.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "json/json_types.h"
#include "rules/TOVTriggersRulesJsonParser.h"
#include "test_support.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVResponse.h"
#include "tov/TOVTrigger.h"
#include "tov/entry_points.h"
#include "tov/vocabulary.h"

namespace {

using Strings = std::vector<std::string>;

const char* const kLoaded = "Successfully initialized TOV rules";
const char* const kTriggerHeading = "---------------  TRIGGER RULES ------------------\n";
const char* const kTriggerKeywords = "[attribute,initializationValue,triggerInitialize]";

std::string triggerLines(const std::string& objectType, const std::string& attribute,
                         const std::string& triggerInitialize, const std::string& value) {
    return "**TOVTrigger rule:\nObject type : " + objectType + "\nAttribute : " + attribute +
           "\nTrigger initialize : " + triggerInitialize + "\nInitialization value: " + value +
           "\n";
}

std::string printTriggers(tovtest::PrivateCore& core) {
    return tovtest::captureConsole(core.logger(),
                                   [&] { core.rules()->printTriggerContentsDBG(core.logger()); });
}

std::string loadFailure(const std::string& document) {
    tovtest::PrivateCore core;
    const TOVResponse response = InitializeTOVRules(document, core.get());
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_FALSE(core.rules()->existAnyRules());
    return response.getGeneralResultComment();
}

std::string triggerDocument(const std::string& objectType, const std::string& rule) {
    return R"({"triggers":{")" + objectType + R"(":[)" + rule + "]}}";
}

class ExposedTriggersParser : public TOVTriggersRulesJsonParser {
public:
    using TOVTriggersRulesJsonParser::getAllNecessaryKeywords;
    using TOVTriggersRulesJsonParser::getRuleName;
};

// ---------------------------------------------------------------- the class

TEST(TriggerRule, GettersGiveTheConstructedValues) {
    const TOVTrigger rule("Part", "Status", "Revision", "A");
    EXPECT_EQ(rule.getAttribute(), "Status");
    EXPECT_EQ(rule.getTriggerInitialize(), "Revision");
    EXPECT_EQ(rule.getInitializationValue(), "A");
    const TOVTrigger empty;
    EXPECT_EQ(empty.getAttribute(), "");
    EXPECT_EQ(empty.getTriggerInitialize(), "");
    EXPECT_EQ(empty.getInitializationValue(), "");
    EXPECT_FALSE(empty.isAbstractVersioningReinitializationRule());
}

TEST(TriggerRule, CopiesKeepTheValues) {
    TOVTrigger assigned;
    assigned = TOVTrigger("Part", "Status", "Proper_Versioning_Attribute", "Reset");
    const TOVTrigger copy(assigned);
    EXPECT_EQ(copy.getAttribute(), "Status");
    EXPECT_EQ(copy.getTriggerInitialize(), "Proper_Versioning_Attribute");
    EXPECT_EQ(copy.getInitializationValue(), "Reset");
    EXPECT_TRUE(copy.isAbstractVersioningReinitializationRule());
}

TEST(TriggerRule, ProperVersioningAttributeIsAbstractOnlyAsWrittenExactly) {
    EXPECT_TRUE(TOVTrigger("Part", "Status", TOVAttrItemKeyword_ProperVersioningAttribute, "")
                    .isAbstractVersioningReinitializationRule());
    EXPECT_TRUE(TOVTrigger("Part", "Status", "Proper_Versioning_Attribute", "x")
                    .isAbstractVersioningReinitializationRule());
    EXPECT_FALSE(TOVTrigger("Part", "Status", "proper_versioning_attribute", "x")
                     .isAbstractVersioningReinitializationRule());
    EXPECT_FALSE(TOVTrigger("Part", "Status", "PROPER_VERSIONING_ATTRIBUTE", "x")
                     .isAbstractVersioningReinitializationRule());
    EXPECT_FALSE(TOVTrigger("Part", "Status", "Proper_Versioning_Attribute ", "x")
                     .isAbstractVersioningReinitializationRule());
    EXPECT_FALSE(TOVTrigger("Part", "Proper_Versioning_Attribute", "Revision", "x")
                     .isAbstractVersioningReinitializationRule());
}

TEST(TriggerOrder, KeysInTurnCaseIgnoredLengthFirst) {
    // Object type first, shorter first.
    EXPECT_TRUE(TOVTrigger("Part", "Z", "Z", "") < TOVTrigger("Parts", "A", "A", ""));
    EXPECT_FALSE(TOVTrigger("Parts", "A", "A", "") < TOVTrigger("Part", "Z", "Z", ""));
    EXPECT_TRUE(TOVTrigger("Zz", "A", "A", "") < TOVTrigger("aaa", "A", "A", ""));
    // Then the attribute, case folded.
    EXPECT_TRUE(TOVTrigger("part", "a", "z", "") < TOVTrigger("PART", "B", "a", ""));
    EXPECT_FALSE(TOVTrigger("PART", "B", "a", "") < TOVTrigger("part", "a", "z", ""));
    // Then the target.
    EXPECT_TRUE(TOVTrigger("Part", "S", "a", "z") < TOVTrigger("Part", "s", "B", "a"));
    EXPECT_FALSE(TOVTrigger("Part", "s", "B", "a") < TOVTrigger("Part", "S", "a", "z"));
}

TEST(TriggerOrder, InitializationValueTakesNoPart) {
    const TOVTrigger first("Part", "Status", "Revision", "A");
    const TOVTrigger second("PART", "status", "REVISION", "Something else");
    EXPECT_FALSE(first < second);
    EXPECT_FALSE(second < first);
    EXPECT_FALSE(first < first);
}

TEST(TriggerPrint, LinesOfEachRuleAfterTheHeading) {
    tovtest::PrivateCore core;
    EXPECT_EQ(printTriggers(core), kTriggerHeading);
    core.rules()->setTriggers({TOVTrigger("Part", "Status", "Revision", "A"),
                               TOVTrigger("<any>", "Owner", "Proper_Versioning_Attribute", "")});
    EXPECT_EQ(printTriggers(core),
              kTriggerHeading + triggerLines("Part", "Status", "Revision", "A") +
                  triggerLines("<any>", "Owner", "Proper_Versioning_Attribute", ""));
}

TEST(TriggerOrder, LoadedRulesAreSortedAndPrinted) {
    tovtest::PrivateCore core;
    const TOVResponse response = InitializeTOVRules(R"({"triggers":{
        "Parts":[{"attribute":"A","triggerInitialize":"T","initializationValue":"1"}],
        "Part":[{"attribute":"Status","triggerInitialize":"b","initializationValue":"2"},
                {"attribute":"Status","triggerInitialize":"A","initializationValue":"3"},
                {"attribute":"Phase","triggerInitialize":"zz","initializationValue":"4"}],
        "ALL":[{"attribute":"Status","triggerInitialize":"Proper_Versioning_Attribute",
                "initializationValue":"5"}]}})",
                                                    core.get());
    ASSERT_TRUE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(), kLoaded);
    EXPECT_EQ(printTriggers(core),
              kTriggerHeading + triggerLines("Part", "Phase", "zz", "4") +
                  triggerLines("Part", "Status", "A", "3") +
                  triggerLines("Part", "Status", "b", "2") +
                  triggerLines("<any>", "Status", "Proper_Versioning_Attribute", "5") +
                  triggerLines("Parts", "A", "T", "1"));
}

// ---------------------------------------------------------------- section

TEST(TriggerSection, NameAndKeywords) {
    ExposedTriggersParser parser;
    EXPECT_EQ(parser.getRuleName(), "Triggers rule");
    Strings keywords{"kept"};
    parser.getAllNecessaryKeywords(keywords);
    EXPECT_EQ(keywords, (Strings{"kept", "attribute", "initializationValue", "triggerInitialize"}));
}

TEST(TriggerSection, ParseSectionDirectly) {
    tovtest::PrivateCore core;
    tovjson::Document document;
    document.Parse(R"({"triggers":{"Part":[{"attribute":"S","triggerInitialize":"T",
                                            "initializationValue":"V"},{"attribute":1}]}})");
    ASSERT_FALSE(document.HasParseError());
    TOVTriggersRulesJsonParser parser;
    EXPECT_FALSE(parser.parseSection(document, core.rules()));
    EXPECT_FALSE(parser.getParsingResult());
    EXPECT_EQ(parser.getParsingErrorComment(),
              "Triggers rule: parsing error on keys - values of Part.");
    // The rule before the error stays until the load as a whole removes it.
    EXPECT_EQ(printTriggers(core), kTriggerHeading + triggerLines("Part", "S", "T", "V"));

    tovjson::Document withoutSection;
    withoutSection.Parse(R"({"trigger":{"Part":[1]}})");
    TOVTriggersRulesJsonParser quiet;
    EXPECT_TRUE(quiet.parseSection(withoutSection, core.rules()));
    EXPECT_TRUE(quiet.getParsingResult());
    EXPECT_EQ(quiet.getParsingErrorComment(), "");
}

TEST(TriggerSection, MissingKeywordFails) {
    const std::string expected =
        std::string("Triggers rule for Part demands ALL keywords: ") + kTriggerKeywords;
    EXPECT_EQ(loadFailure(triggerDocument(
                  "Part", R"({"triggerInitialize":"T","initializationValue":"V"})")),
              expected);
    EXPECT_EQ(
        loadFailure(triggerDocument("Part", R"({"attribute":"S","initializationValue":"V"})")),
        expected);
    EXPECT_EQ(loadFailure(triggerDocument("Part", R"({"attribute":"S","triggerInitialize":"T"})")),
              expected);
}

TEST(TriggerSection, KeywordsAreCaseSensitive) {
    EXPECT_EQ(
        loadFailure(triggerDocument(
            "Part", R"({"Attribute":"S","triggerInitialize":"T","initializationValue":"V"})")),
        std::string("Triggers rule for Part demands ALL keywords: ") + kTriggerKeywords);
}

TEST(TriggerSection, MissingKeywordWithoutObjectTypeOmitsTheOwner) {
    EXPECT_EQ(loadFailure(triggerDocument("", R"({})")),
              std::string("Triggers rule demands ALL keywords: ") + kTriggerKeywords);
}

TEST(TriggerSection, FurtherMemberHoldingANumberFailsTheRule) {
    EXPECT_EQ(loadFailure(triggerDocument("Part", R"({"attribute":"S","triggerInitialize":"T",
                                                     "initializationValue":"V","order":3})")),
              "Triggers rule: parsing error on keys - values of Part.");
}

TEST(TriggerSection, NonStringKeywordIsTheKeyValueError) {
    EXPECT_EQ(loadFailure(triggerDocument("Part", R"({"attribute":["S"]})")),
              "Triggers rule: parsing error on keys - values of Part.");
    EXPECT_EQ(loadFailure(triggerDocument("", R"({"initializationValue":null})")),
              "Triggers rule: parsing error on keys - values.");
}

TEST(TriggerSection, MessageAfterAnAllRuleSaysAny) {
    EXPECT_EQ(loadFailure(R"({"triggers":{"all":[
        {"attribute":"S","triggerInitialize":"T","initializationValue":"V"},{"attribute":true}]}})"),
              "Triggers rule: parsing error on keys - values of <any>.");
}

TEST(TriggerSection, FrameErrorsUseTheRuleName) {
    EXPECT_EQ(loadFailure(R"({"triggers":{"Part":"rule"}})"),
              "Triggers rules for Part should be in a List.");
    EXPECT_EQ(loadFailure(R"({"triggers":{"Part":[["attribute"]]}})"),
              "Triggers rule in list for Part should be a map.");
}

TEST(TriggerSection, EmptyValuesLoadAndAreHandedOn) {
    tovtest::PrivateCore core;
    const TOVResponse response = InitializeTOVRules(
        triggerDocument("Part", R"({"attribute":"Status","triggerInitialize":"Revision",
                                    "initializationValue":"","comment":"dropped"})"),
        core.get());
    ASSERT_TRUE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(), kLoaded);
    std::vector<const TOVTrigger*> related;
    ASSERT_TRUE(core.rules()->getRelatedTriggerRules("Part", {"Status"}, core.dmInfo(), related));
    ASSERT_EQ(related.size(), 1U);
    EXPECT_EQ(related[0]->getAttribute(), "Status");
    EXPECT_EQ(related[0]->getTriggerInitialize(), "Revision");
    EXPECT_EQ(related[0]->getInitializationValue(), "");
    EXPECT_FALSE(related[0]->isAbstractVersioningReinitializationRule());
}

TEST(TriggerSection, EmptyKeysAndEmptyObjectTypeAreAccepted) {
    tovtest::PrivateCore core;
    const TOVResponse response = InitializeTOVRules(
        triggerDocument("", R"({"attribute":"","triggerInitialize":"","initializationValue":""})"),
        core.get());
    ASSERT_TRUE(response.getGeneralResult());
    EXPECT_EQ(printTriggers(core), kTriggerHeading + triggerLines("", "", "", ""));
}

TEST(TriggerSection, AnyAttributeIsStoredAsItStandsAndMatchesOnlyItself) {
    tovtest::PrivateCore core;
    const TOVResponse response = InitializeTOVRules(
        triggerDocument("ALL",
                        R"({"attribute":"<any>","triggerInitialize":"Proper_Versioning_Attribute",
                                   "initializationValue":"Reset"})"),
        core.get());
    ASSERT_TRUE(response.getGeneralResult());
    EXPECT_EQ(
        printTriggers(core),
        kTriggerHeading + triggerLines("<any>", "<any>", "Proper_Versioning_Attribute", "Reset"));
    std::vector<const TOVTrigger*> related;
    EXPECT_FALSE(
        core.rules()->getRelatedTriggerRules("Part", {"Status", "<ANY>"}, core.dmInfo(), related));
    EXPECT_TRUE(related.empty());
    EXPECT_TRUE(core.rules()->getRelatedTriggerRules("Part", {"<any>"}, core.dmInfo(), related));
    ASSERT_EQ(related.size(), 1U);
    EXPECT_EQ(related[0]->getAttribute(), "<any>");
    EXPECT_EQ(related[0]->getInitializationValue(), "Reset");
    EXPECT_TRUE(related[0]->isAbstractVersioningReinitializationRule());
}

TEST(TriggerSection, LastOfRepeatedKeywordsWins) {
    tovtest::PrivateCore core;
    const TOVResponse response =
        InitializeTOVRules(triggerDocument("Part", R"({"attribute":"S","triggerInitialize":"T",
                                    "initializationValue":"first","initializationValue":"last"})"),
                           core.get());
    ASSERT_TRUE(response.getGeneralResult());
    EXPECT_EQ(printTriggers(core), kTriggerHeading + triggerLines("Part", "S", "T", "last"));
}

TEST(TriggerSection, RulesDifferingInValueOnlyBothLoad) {
    tovtest::PrivateCore core;
    const TOVResponse response = InitializeTOVRules(
        triggerDocument("Part",
                        R"({"attribute":"S","triggerInitialize":"T","initializationValue":"1"},
                                   {"attribute":"S","triggerInitialize":"T","initializationValue":"2"})"),
        core.get());
    ASSERT_TRUE(response.getGeneralResult());
    std::vector<const TOVTrigger*> related;
    ASSERT_TRUE(core.rules()->getRelatedTriggerRules("Part", {"S"}, core.dmInfo(), related));
    ASSERT_EQ(related.size(), 2U);
    // Equivalent for the sort, so either may come first.
    const std::string values =
        related[0]->getInitializationValue() + related[1]->getInitializationValue();
    EXPECT_TRUE(values == "12" || values == "21") << values;
    EXPECT_FALSE(*related[0] < *related[1]);
    EXPECT_FALSE(*related[1] < *related[0]);
}

TEST(TriggerSection, TriggerErrorComesBeforeOtherSections) {
    EXPECT_EQ(loadFailure(R"({"historyLinks":{"Part":[{"attribute":"S"}]},
                              "triggers":{"Part":[{"attribute":"S"}]}})"),
              std::string("Triggers rule for Part demands ALL keywords: ") + kTriggerKeywords +
                  "|History Link rule for Part demands ALL keywords: "
                  "[attribute,fromValue,toValue,acceptableHistoryLinkValues]");
}

TEST(TriggerLookup, SelectsByObjectTypeAndExactAttribute) {
    tovtest::PrivateCore core;
    const TOVResponse response = InitializeTOVRules(R"({"triggers":{
        "Part":[{"attribute":"Status","triggerInitialize":"Revision","initializationValue":"A"}],
        "Doc":[{"attribute":"Status","triggerInitialize":"Issue","initializationValue":"1"}]}})",
                                                    core.get());
    ASSERT_TRUE(response.getGeneralResult());
    std::vector<const TOVTrigger*> related;
    EXPECT_TRUE(core.rules()->getRelatedTriggerRules("PART", {"Status"}, core.dmInfo(), related));
    ASSERT_EQ(related.size(), 1U);
    EXPECT_EQ(related[0]->getTriggerInitialize(), "Revision");
    EXPECT_FALSE(core.rules()->getRelatedTriggerRules("Part", {"status"}, core.dmInfo(), related));
    EXPECT_EQ(related.size(), 1U);
    EXPECT_TRUE(core.rules()->getRelatedTriggerRules("<any>", {"Status"}, core.dmInfo(), related));
    ASSERT_EQ(related.size(), 3U);
    EXPECT_EQ(related[1]->getTriggerInitialize(), "Issue");
    EXPECT_EQ(related[2]->getTriggerInitialize(), "Revision");
}

}  // namespace
