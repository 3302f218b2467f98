// History and manual link rules judged end to end, and the two-pass exchange
// in which the library asks the host for family members and manual link
// ancestors and the host asks again with them.
#include <gtest/gtest.h>

#include <string>

#include "test_support.h"
#include "tov/TOVResponse.h"
#include "tov/entry_points.h"
#include "tov/vocabulary.h"

namespace {

using tovtest::asText;
using tovtest::PrivateCore;

// Number tells a Part's family; Revision is its versioning attribute.
const char* const kDataModel = R"json({"OverwriteLabel":"Overwrite","structureObjects":[
  {"name":"Part","dmObjectType":"DMITEM","attributes":[
    {"name":"Number","type":"REGULAR","primary":true},
    {"name":"Revision","type":"VERSIONING","primary":true},
    {"name":"Status","type":"REGULAR","primary":false},
    {"name":"Approval","type":"REGULAR","primary":false},
    {"name":"Description","type":"REGULAR","primary":false}]}]})json";

// A released Part wants its family released or obsolete, and a Part released
// from In Work wants its manual link ancestors released.
const char* const kLinkRules = R"json({
  "historyLinks":{"Part":[
    {"attribute":"Status","fromValue":"<any>","toValue":"Released",
     "acceptableHistoryLinkValues":["Released","Obsolete"]}]},
  "manualLinks":{"Part":[
    {"attribute":"Status","fromValue":"In Work","toValue":"Released",
     "acceptableManualLinkValues":["Released"]}]}})json";

const char* const kHistoryRuleOnly = R"json({"historyLinks":{"Part":[
  {"attribute":"Status","fromValue":"<any>","toValue":"Released",
   "acceptableHistoryLinkValues":["Released","Obsolete"]}]}})json";

// The release that both link rules apply to, without any linked objects.
const char* const kRelease = R"json({"objectType":"Part",
  "initialAttributes":{"Number":"P-1","Revision":"A","Status":"In Work"},
  "targetAttributes":{"Status":"Released"}})json";

// The same release with the sections that a host adds on the second pass.
std::string releaseWith(const std::string& sections) {
    return R"json({"objectType":"Part",
  "initialAttributes":{"Number":"P-1","Revision":"A","Status":"In Work"},
  "targetAttributes":{"Status":"Released"},)json" +
           sections + "}";
}

const char* const kCleanFamily =
    R"json("membersOfFamily":{"11":{"attributes":{"Number":"P-1","Status":"Obsolete"}},
                              "12":{"attributes":{"Number":"P-1","Status":"Released"}}})json";
const char* const kOffendingFamily =
    R"json("membersOfFamily":{"11":{"attributes":{"Number":"P-1","Status":"Obsolete"}},
                              "12":{"attributes":{"Number":"P-1","Status":"In Work"}}})json";
const char* const kCleanAncestors =
    R"json("manualLinkAncestors":{"31":{"attributes":{"Number":"A-7","Status":"Released"}}})json";
const char* const kOffendingAncestors =
    R"json("manualLinkAncestors":{"31":{"attributes":{"Number":"A-7","Status":"Released"}},
                                  "32":{"attributes":{"Number":"A-8","Status":"Draft"}}})json";

void expectMissingData(const TOVResponse& response, bool familyMembers, bool manualAncestors) {
    TOVMissingDataForEvaluation missing;
    EXPECT_EQ(response.needsReevaluation(missing), familyMembers || manualAncestors);
    EXPECT_EQ(missing.objectFamilyMembersMissing, familyMembers);
    EXPECT_EQ(missing.manualLinkAncestorsMissing, manualAncestors);
}

class EditFamilyLinks : public ::testing::Test {
protected:
    void loadRules(const char* document) {
        ASSERT_EQ(asText(InitializeTOVRules(document, core.get())),
                  R"({"Result":"Success","ResultComment":"Successfully initialized TOV rules"})");
        ASSERT_EQ(asText(InitializeTOV_DMInfo(kDataModel, core.get())),
                  R"({"Result":"Success","ResultComment":"Succesfully initialized DM info"})");
    }
    TOVResponse edit(const std::string& request) {
        return EvaluateTOVEditAttempt(request, core.get());
    }

    PrivateCore core;
};

// --- The two-pass exchange --------------------------------------------------

TEST_F(EditFamilyLinks, FirstPassAsksForBothKindsOfLinkedObjects) {
    loadRules(kLinkRules);
    const TOVResponse response = edit(kRelease);

    EXPECT_FALSE(response.getGeneralResult());
    expectMissingData(response, true, true);
    EXPECT_STREQ(TOVResponseKeyword_ObjectFamilyMembers, "ObjectFamilyMembers");
    EXPECT_STREQ(TOVResponseKeyword_ManualAncestors, "ManualLinkAncestors");
    EXPECT_STREQ(TOVResponseValue_MissingData, "MissingData");
    std::string mark;
    EXPECT_TRUE(response.getCommentUnderKeyword(TOVResponseKeyword_ObjectFamilyMembers, mark));
    EXPECT_EQ(mark, "MissingData");
    mark.clear();
    EXPECT_TRUE(response.getCommentUnderKeyword(TOVResponseKeyword_ManualAncestors, mark));
    EXPECT_EQ(mark, "MissingData");
    EXPECT_EQ(
        asText(response),
        R"json({"ManualLinkAncestors":"MissingData","ObjectFamilyMembers":"MissingData","Result":"Failure","ResultComment":"History Link violation detected.No entries provided to check rule:For Part: When Status is \"Released\" then entries in the same object family can have Status equal to one of :[Obsolete,Released]. Manual Ancestor Link violation detected.No entries provided to check rule:For Part: When Status transitions from \"In Work\" to \"Released\" then its manual link ancestors can have Status equal to one of :[Released]"})json");
}

TEST_F(EditFamilyLinks, SecondPassWithCleanSectionsIsApproved) {
    loadRules(kLinkRules);
    const TOVResponse response =
        edit(releaseWith(std::string(kCleanFamily) + "," + kCleanAncestors));

    expectMissingData(response, false, false);
    EXPECT_EQ(asText(response), R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
}

TEST_F(EditFamilyLinks, SecondPassIsApprovedInTheFlavourThatAsked) {
    loadRules(kLinkRules);
    const std::string request = releaseWith(std::string(kCleanFamily) + "," + kCleanAncestors);

    EXPECT_EQ(
        asText(EvaluateTOVSaveReprFileAttempt(kRelease, core.get())),
        R"json({"ManualLinkAncestors":"MissingData","ObjectFamilyMembers":"MissingData","Result":"Failure","ResultComment":"History Link violation detected.No entries provided to check rule:For Part: When Status is \"Released\" then entries in the same object family can have Status equal to one of :[Obsolete,Released]. Manual Ancestor Link violation detected.No entries provided to check rule:For Part: When Status transitions from \"In Work\" to \"Released\" then its manual link ancestors can have Status equal to one of :[Released]"})json");
    EXPECT_EQ(asText(EvaluateTOVSaveReprFileAttempt(request, core.get())),
              R"({"Result":"Success","ResultComment":"Save attempt approved"})");
}

TEST_F(EditFamilyLinks, SecondPassWithAnOffendingFamilyMemberIsFinal) {
    loadRules(kLinkRules);
    const TOVResponse response =
        edit(releaseWith(std::string(kOffendingFamily) + "," + kCleanAncestors));

    expectMissingData(response, false, false);
    EXPECT_EQ(
        asText(response),
        R"json({"Result":"Failure","ResultComment":"History Link violation detected.Entry with server id \"12\" violates rule:For Part: When Status is \"Released\" then entries in the same object family can have Status equal to one of :[Obsolete,Released]"})json");
}

TEST_F(EditFamilyLinks, SecondPassWithAnOffendingAncestorIsFinal) {
    loadRules(kLinkRules);
    const TOVResponse response =
        edit(releaseWith(std::string(kCleanFamily) + "," + kOffendingAncestors));

    expectMissingData(response, false, false);
    EXPECT_EQ(
        asText(response),
        R"json({"Result":"Failure","ResultComment":"Manual Ancestor Link violation detected.Entry with server id \"32\" violates rule:For Part: When Status transitions from \"In Work\" to \"Released\" then its manual link ancestors can have Status equal to one of :[Released]"})json");
}

TEST_F(EditFamilyLinks, AnAnswerThatAsksForDataReportsNoTrigger) {
    loadRules(R"json({
      "historyLinks":{"Part":[
        {"attribute":"Status","fromValue":"<any>","toValue":"Released",
         "acceptableHistoryLinkValues":["Released","Obsolete"]}]},
      "triggers":{"Part":[
        {"attribute":"Status","triggerInitialize":"Approval","initializationValue":"Pending"}]}})json");

    EXPECT_EQ(
        asText(edit(kRelease)),
        R"json({"ObjectFamilyMembers":"MissingData","Result":"Failure","ResultComment":"History Link violation detected.No entries provided to check rule:For Part: When Status is \"Released\" then entries in the same object family can have Status equal to one of :[Obsolete,Released]"})json");
    // The second pass, with a clean family, is approved and only then triggers.
    const TOVResponse second = edit(releaseWith(kCleanFamily));
    expectMissingData(second, false, false);
    EXPECT_EQ(
        asText(second),
        R"json({"Result":"Success","ResultComment":"Edit attempt approved","TriggerInitialization":"{Approval:Pending}"})json");
}

// --- Only one of two asked-for sections sent ----------------------------------

TEST_F(EditFamilyLinks, OffendingFamilyWithoutAncestorsEndsAtTheFamilyCheck) {
    loadRules(kLinkRules);
    const TOVResponse response = edit(releaseWith(kOffendingFamily));

    expectMissingData(response, false, false);
    EXPECT_EQ(
        asText(response),
        R"json({"Result":"Failure","ResultComment":"History Link violation detected.Entry with server id \"12\" violates rule:For Part: When Status is \"Released\" then entries in the same object family can have Status equal to one of :[Obsolete,Released]"})json");
}

TEST_F(EditFamilyLinks, CleanFamilyWithoutAncestorsAsksForTheAncestorsOnly) {
    loadRules(kLinkRules);
    const TOVResponse response = edit(releaseWith(kCleanFamily));

    EXPECT_FALSE(response.getGeneralResult());
    expectMissingData(response, false, true);
    EXPECT_EQ(
        asText(response),
        R"json({"ManualLinkAncestors":"MissingData","Result":"Failure","ResultComment":"Manual Ancestor Link violation detected.No entries provided to check rule:For Part: When Status transitions from \"In Work\" to \"Released\" then its manual link ancestors can have Status equal to one of :[Released]"})json");
}

TEST_F(EditFamilyLinks, OffendingAncestorWithoutFamilyGivesAVerdictAndAsksForTheFamily) {
    loadRules(kLinkRules);
    const TOVResponse response = edit(releaseWith(kOffendingAncestors));

    // The manual verdict is final, yet the family is still asked for.
    EXPECT_FALSE(response.getGeneralResult());
    expectMissingData(response, true, false);
    EXPECT_EQ(
        asText(response),
        R"json({"ObjectFamilyMembers":"MissingData","Result":"Failure","ResultComment":"History Link violation detected.No entries provided to check rule:For Part: When Status is \"Released\" then entries in the same object family can have Status equal to one of :[Obsolete,Released]. Manual Ancestor Link violation detected.Entry with server id \"32\" violates rule:For Part: When Status transitions from \"In Work\" to \"Released\" then its manual link ancestors can have Status equal to one of :[Released]"})json");
}

TEST_F(EditFamilyLinks, CleanAncestorsWithoutFamilyAsksForTheFamilyOnly) {
    loadRules(kLinkRules);
    const TOVResponse response = edit(releaseWith(kCleanAncestors));

    expectMissingData(response, true, false);
    EXPECT_EQ(
        asText(response),
        R"json({"ObjectFamilyMembers":"MissingData","Result":"Failure","ResultComment":"History Link violation detected.No entries provided to check rule:For Part: When Status is \"Released\" then entries in the same object family can have Status equal to one of :[Obsolete,Released]"})json");
}

// --- When link rules apply ----------------------------------------------------

TEST_F(EditFamilyLinks, WithoutAnApplicableLinkRuleSectionsMakeNoDifference) {
    loadRules(kLinkRules);
    const char* const toChecked = R"json({"objectType":"Part",
      "initialAttributes":{"Number":"P-1","Status":"In Work"},
      "targetAttributes":{"Status":"Checked"}})json";
    const char* const toCheckedWithOffenders = R"json({"objectType":"Part",
      "initialAttributes":{"Number":"P-1","Status":"In Work"},
      "targetAttributes":{"Status":"Checked"},
      "membersOfFamily":{"12":{"attributes":{"Status":"In Work"}}},
      "manualLinkAncestors":{"32":{"attributes":{"Status":"Draft"}}}})json";

    const TOVResponse without = edit(toChecked);
    expectMissingData(without, false, false);
    EXPECT_EQ(asText(without), R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
    EXPECT_EQ(asText(edit(toCheckedWithOffenders)),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
}

TEST_F(EditFamilyLinks, AnApplicableHistoryRuleWithoutFamilyAsksForIt) {
    loadRules(kHistoryRuleOnly);
    const TOVResponse response = edit(kRelease);

    EXPECT_FALSE(response.getGeneralResult());
    expectMissingData(response, true, false);
    EXPECT_EQ(
        asText(response),
        R"json({"ObjectFamilyMembers":"MissingData","Result":"Failure","ResultComment":"History Link violation detected.No entries provided to check rule:For Part: When Status is \"Released\" then entries in the same object family can have Status equal to one of :[Obsolete,Released]"})json");
}

TEST_F(EditFamilyLinks, AnEmptyFamilyOffendsNoRule) {
    loadRules(kHistoryRuleOnly);
    const TOVResponse response = edit(releaseWith(R"json("membersOfFamily":{})json"));

    expectMissingData(response, false, false);
    EXPECT_EQ(asText(response), R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
}

TEST_F(EditFamilyLinks, AnEmptyFamilyGoesOnToTheManualCheck) {
    loadRules(kLinkRules);
    EXPECT_EQ(
        asText(edit(releaseWith(R"json("membersOfFamily":{})json"))),
        R"json({"ManualLinkAncestors":"MissingData","Result":"Failure","ResultComment":"Manual Ancestor Link violation detected.No entries provided to check rule:For Part: When Status transitions from \"In Work\" to \"Released\" then its manual link ancestors can have Status equal to one of :[Released]"})json");
}

TEST_F(EditFamilyLinks, ANumberInPlaceOfTheFamilyCountsAsNoFamily) {
    loadRules(kHistoryRuleOnly);
    const TOVResponse response = edit(releaseWith(R"json("membersOfFamily":5)json"));

    expectMissingData(response, true, false);
    EXPECT_EQ(
        asText(response),
        R"json({"ObjectFamilyMembers":"MissingData","Result":"Failure","ResultComment":"History Link violation detected.No entries provided to check rule:For Part: When Status is \"Released\" then entries in the same object family can have Status equal to one of :[Obsolete,Released]"})json");
}

TEST_F(EditFamilyLinks, OfSeveralApplicableHistoryRulesOnlyTheFirstInStoreOrderIsTold) {
    // Status (six letters) sorts before Approval (eight) in the store, against
    // both the document and the alphabet.
    loadRules(R"json({"historyLinks":{"Part":[
      {"attribute":"Approval","fromValue":"<any>","toValue":"Granted",
       "acceptableHistoryLinkValues":["Granted"]},
      {"attribute":"Status","fromValue":"<any>","toValue":"Released",
       "acceptableHistoryLinkValues":["Released","Obsolete"]}]}})json");
    const TOVResponse response = edit(R"json({"objectType":"Part",
      "initialAttributes":{"Number":"P-1","Status":"In Work","Approval":"Granted"},
      "targetAttributes":{"Status":"Released"}})json");

    expectMissingData(response, true, false);
    EXPECT_EQ(
        asText(response),
        R"json({"ObjectFamilyMembers":"MissingData","Result":"Failure","ResultComment":"History Link violation detected.No entries provided to check rule:For Part: When Status is \"Released\" then entries in the same object family can have Status equal to one of :[Obsolete,Released]"})json");
}

TEST_F(EditFamilyLinks, OfTwoOffendingMembersTheFirstInTheDocumentIsTold) {
    loadRules(kHistoryRuleOnly);
    // Server id 20 stands first in the document though 10 comes first in byte order.
    EXPECT_EQ(
        asText(edit(releaseWith(R"json("membersOfFamily":{
          "20":{"attributes":{"Status":"In Work"}},
          "10":{"attributes":{"Status":"Draft"}}})json"))),
        R"json({"Result":"Failure","ResultComment":"History Link violation detected.Entry with server id \"20\" violates rule:For Part: When Status is \"Released\" then entries in the same object family can have Status equal to one of :[Obsolete,Released]"})json");
}

TEST_F(EditFamilyLinks, AMemberWithoutTheAttributeOffendsNoRule) {
    loadRules(kHistoryRuleOnly);
    EXPECT_EQ(asText(edit(releaseWith(R"json("membersOfFamily":{
          "10":{"attributes":{"Number":"P-1"}},
          "11":{}})json"))),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
}

TEST_F(EditFamilyLinks, AManualRuleNeedsTheEditToChangeItsAttribute) {
    loadRules(R"json({"manualLinks":{"Part":[
      {"attribute":"Status","fromValue":"In Work","toValue":"Released",
       "acceptableManualLinkValues":["Released"]}]}})json");
    // The Part already stands on Released; only its Description changes.
    EXPECT_EQ(asText(edit(R"json({"objectType":"Part",
          "initialAttributes":{"Number":"P-1","Status":"Released","Description":"Bolt"},
          "targetAttributes":{"Description":"Screw"}})json")),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
}

TEST_F(EditFamilyLinks, AHistoryRuleAppliesAlsoToAnAttributeTheEditLeavesAlone) {
    loadRules(kLinkRules);
    const TOVResponse response = edit(R"json({"objectType":"Part",
          "initialAttributes":{"Number":"P-1","Status":"Released","Description":"Bolt"},
          "targetAttributes":{"Description":"Screw"}})json");

    expectMissingData(response, true, false);
    EXPECT_EQ(
        asText(response),
        R"json({"ObjectFamilyMembers":"MissingData","Result":"Failure","ResultComment":"History Link violation detected.No entries provided to check rule:For Part: When Status is \"Released\" then entries in the same object family can have Status equal to one of :[Obsolete,Released]"})json");
}

TEST_F(EditFamilyLinks, ANewObjectMeetsHistoryRulesButNoManualRule) {
    loadRules(kLinkRules);
    const TOVResponse response = edit(R"json({"objectType":"Part",
          "initialAttributes":{},
          "targetAttributes":{"Number":"P-9","Revision":"A","Status":"Released"}})json");

    expectMissingData(response, true, false);
    EXPECT_EQ(
        asText(response),
        R"json({"ObjectFamilyMembers":"MissingData","Result":"Failure","ResultComment":"History Link violation detected.No entries provided to check rule:For Part: When Status is \"Released\" then entries in the same object family can have Status equal to one of :[Obsolete,Released]"})json");
}

TEST_F(EditFamilyLinks, AViolationBeforeTheLinkChecksAsksForNothing) {
    loadRules(R"json({
      "transitions":{"Part":[{"attribute":"Status","fromValue":"In Work","toValue":["Checked"]}]},
      "historyLinks":{"Part":[
        {"attribute":"Status","fromValue":"<any>","toValue":"Released",
         "acceptableHistoryLinkValues":["Released","Obsolete"]}]}})json");
    const TOVResponse response = edit(kRelease);

    expectMissingData(response, false, false);
    EXPECT_EQ(
        asText(response),
        R"json({"Result":"Failure","ResultComment":"Transition violation detected: For Part: Status can transition from \"In Work\" to \"Checked\""})json");
}

// --- Family detection ---------------------------------------------------------

const char* const kSpinupOnAnyNumberChange = R"json({"conflictResolutions":{"ALL":[
  {"attribute":"Number","fromValue":"<any>","toValue":"<any>","updatesFile":"N_A",
   "conflictResolution":"spinup"}]}})json";

TEST_F(EditFamilyLinks, ANewNumberOfAKnownTypeIsAFamilyEdit) {
    loadRules(kSpinupOnAnyNumberChange);
    EXPECT_EQ(asText(edit(R"json({"objectType":"Part",
          "initialAttributes":{"Number":"P-1","Revision":"A"},
          "targetAttributes":{"Number":"P-2"}})json")),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
}

TEST_F(EditFamilyLinks, ANewNumberOfAnUnknownTypeIsNoFamilyEdit) {
    loadRules(kSpinupOnAnyNumberChange);
    // Without family detection the conflict resolution rule is measured.
    EXPECT_EQ(
        asText(edit(R"json({"objectType":"Gadget",
          "initialAttributes":{"Number":"P-1","Revision":"A"},
          "targetAttributes":{"Number":"P-2"}})json")),
        R"json({"Result":"Failure","ResultComment":"Conflict resolution violation detected: For <any>: When Number transitions from \"<any>\" to \"<any>\" then we MUST spinup"})json");
}

// --- The exchange keeps nothing between calls ---------------------------------

TEST_F(EditFamilyLinks, AskingAgainWithoutSectionsAsksAgain) {
    loadRules(kLinkRules);
    const std::string first = asText(edit(kRelease));
    EXPECT_EQ(asText(edit(releaseWith(std::string(kCleanFamily) + "," + kCleanAncestors))),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
    EXPECT_EQ(asText(edit(kRelease)), first);
}

}  // namespace
