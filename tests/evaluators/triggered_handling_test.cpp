// End-to-end tests of the initializations that an approved edit triggers:
// plain trigger rules, the case-sensitive skip, the later rule winning, and the
// abstract versioning attribute narrowed through the spin-up options.
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "test_support.h"
#include "tov/TOVCoreDataControllers.h"
#include "tov/TOVLogger.h"
#include "tov/TOVResponse.h"
#include "tov/entry_points.h"
#include "tov/vocabulary.h"

namespace {

using testing::HasSubstr;
using testing::Not;

// Part has two versioning attributes, Tool one, Note none.
const char* const kDataModel = R"({
  "OverwriteLabel": "Overwrite",
  "structureObjects": [
    {"name": "Part", "dmObjectType": "DMITEM", "attributes": [
      {"name": "Number", "type": "REGULAR", "primary": true},
      {"name": "Revision", "type": "VERSIONING", "primary": true},
      {"name": "Iteration", "type": "VERSIONING", "primary": true},
      {"name": "Status", "type": "REGULAR", "primary": false},
      {"name": "Owner", "type": "REGULAR", "primary": false},
      {"name": "ReleaseDate", "type": "REGULAR", "primary": false},
      {"name": "Approver", "type": "REGULAR", "primary": false}]},
    {"name": "Tool", "dmObjectType": "DMITEM", "attributes": [
      {"name": "Number", "type": "REGULAR", "primary": true},
      {"name": "Revision", "type": "VERSIONING", "primary": true},
      {"name": "Status", "type": "REGULAR", "primary": false}]},
    {"name": "Note", "dmObjectType": "DMITEM", "attributes": [
      {"name": "Number", "type": "REGULAR", "primary": true},
      {"name": "Status", "type": "REGULAR", "primary": false}]}
  ]
})";

const char* const kApprovedEdit = R"({"Result":"Success","ResultComment":"Edit attempt approved"})";
const char* const kFailedNarrowing =
    "Failed to determine abstract versioning attribute to trigger initialization for\n";

std::string approvedWith(const std::string& triggers) {
    return R"({"Result":"Success","ResultComment":"Edit attempt approved",)"
           R"("TriggerInitialization":")" +
           triggers + R"("})";
}

std::string trigger(const std::string& attribute, const std::string& target,
                    const std::string& value) {
    return R"({"attribute":")" + attribute + R"(","triggerInitialize":")" + target +
           R"(","initializationValue":")" + value + R"("})";
}

std::string request(const std::string& objectType, const std::string& initial,
                    const std::string& target) {
    return R"({"objectType":")" + objectType + R"(","initialAttributes":)" + initial +
           R"(,"targetAttributes":)" + target + "}";
}

// A core with the data model above and the given rules document loaded.
class Loaded {
public:
    explicit Loaded(const std::string& rules) {
        EXPECT_TRUE(InitializeTOVRules(rules, core.get()).getGeneralResult());
        EXPECT_TRUE(InitializeTOV_DMInfo(kDataModel, core.get()).getGeneralResult());
    }
    TOVCoreDataControllers* get() { return core.get(); }
    TOVLogger* logger() { return core.logger(); }

private:
    tovtest::PrivateCore core;
};

// Status moves from In Work to In Review; nothing else changes.
const std::string kStatusEdit =
    request("Part", R"({"Number":"P-1","Status":"In Work","ReleaseDate":"2026-01-01"})",
            R"({"Number":"P-1","Status":"In Review","ReleaseDate":"2026-01-01"})");

// ------------------------------------------------------------- plain triggers

TEST(TriggeredHandling, NoTriggerRuleOnAnEditedAttributeGivesThePlainApproval) {
    Loaded core(R"({"triggers":{"Part":[)" + trigger("Owner", "ReleaseDate", "Reset") + "]}}");
    EXPECT_EQ(tovtest::asText(EvaluateTOVEditAttempt(kStatusEdit, core.get())), kApprovedEdit);
}

TEST(TriggeredHandling, RuleOnAnEditedAttributeReportsTheInitialization) {
    Loaded core(R"({"triggers":{"Part":[)" + trigger("Status", "ReleaseDate", "Reset") + "]}}");
    EXPECT_EQ(tovtest::asText(EvaluateTOVEditAttempt(kStatusEdit, core.get())),
              approvedWith("{ReleaseDate:Reset}"));
}

TEST(TriggeredHandling, TheNewValueOfTheWatchedAttributePlaysNoPart) {
    Loaded core(R"({"triggers":{"Part":[)" + trigger("Status", "ReleaseDate", "Reset") + "]}}");
    const std::string toCancelled =
        request("Part", R"({"Status":"In Work"})", R"({"Status":"Cancelled"})");
    EXPECT_EQ(tovtest::asText(EvaluateTOVEditAttempt(toCancelled, core.get())),
              approvedWith("{ReleaseDate:Reset}"));
}

TEST(TriggeredHandling, AnAttributeTheEditSetsToExactlyTheRuleValueIsNotReported) {
    Loaded core(R"({"triggers":{"Part":[)" + trigger("Status", "ReleaseDate", "Reset") + "]}}");
    const std::string edit = request("Part", R"({"Status":"In Work","ReleaseDate":"2026-01-01"})",
                                     R"({"Status":"In Review","ReleaseDate":"Reset"})");
    EXPECT_EQ(tovtest::asText(EvaluateTOVEditAttempt(edit, core.get())), kApprovedEdit);
}

TEST(TriggeredHandling, TheSkipComparesCaseSensitively) {
    Loaded core(R"({"triggers":{"Part":[)" + trigger("Status", "ReleaseDate", "Reset") + "]}}");
    const std::string edit = request("Part", R"({"Status":"In Work","ReleaseDate":"2026-01-01"})",
                                     R"({"Status":"In Review","ReleaseDate":"reset"})");
    EXPECT_EQ(tovtest::asText(EvaluateTOVEditAttempt(edit, core.get())),
              approvedWith("{ReleaseDate:Reset}"));
}

TEST(TriggeredHandling, AnUnchangedAttributeAlreadyHoldingTheValueIsStillReported) {
    // The edit leaves ReleaseDate alone, so it is not in the packet that changes.
    Loaded core(R"({"triggers":{"Part":[)" + trigger("Status", "ReleaseDate", "Reset") + "]}}");
    const std::string edit = request("Part", R"({"Status":"In Work","ReleaseDate":"Reset"})",
                                     R"({"Status":"In Review","ReleaseDate":"Reset"})");
    EXPECT_EQ(tovtest::asText(EvaluateTOVEditAttempt(edit, core.get())),
              approvedWith("{ReleaseDate:Reset}"));
}

TEST(TriggeredHandling, OfTwoRulesOnOneAttributeTheLaterInStoreOrderWins) {
    // Owner sorts before Status, whatever the document order.
    Loaded core(R"({"triggers":{"Part":[)" + trigger("Status", "ReleaseDate", "FromStatus") + "," +
                trigger("Owner", "ReleaseDate", "FromOwner") + "]}}");
    const std::string edit = request("Part", R"({"Status":"In Work","Owner":"ann"})",
                                     R"({"Status":"In Review","Owner":"bob"})");
    EXPECT_EQ(tovtest::asText(EvaluateTOVEditAttempt(edit, core.get())),
              approvedWith("{ReleaseDate:FromStatus}"));
}

TEST(TriggeredHandling, SeveralTriggeredAttributesStandInKeyOrder) {
    Loaded core(R"({"triggers":{"Part":[)" + trigger("Status", "ReleaseDate", "Reset") + "," +
                trigger("Status", "Approver", "None") + "]}}");
    EXPECT_EQ(tovtest::asText(EvaluateTOVEditAttempt(kStatusEdit, core.get())),
              approvedWith("{Approver:None, ReleaseDate:Reset}"));
}

TEST(TriggeredHandling, ASaveAndAnAttemptBeforeConflictResolutionTriggerAlike) {
    Loaded core(R"({"triggers":{"Part":[)" + trigger("Status", "ReleaseDate", "Reset") + "]}}");
    EXPECT_EQ(tovtest::asText(EvaluateTOVSaveReprFileAttempt(kStatusEdit, core.get())),
              R"({"Result":"Success","ResultComment":"Save attempt approved",)"
              R"("TriggerInitialization":"{ReleaseDate:Reset}"})");
    EXPECT_EQ(
        tovtest::asText(EvaluateTOVEditAttemptBeforeConflictResolution(kStatusEdit, core.get())),
        approvedWith("{ReleaseDate:Reset}"));
}

TEST(TriggeredHandling, TheHostReadsTheTriggersBackAsAMap) {
    Loaded core(R"({"triggers":{"Part":[)" + trigger("Status", "ReleaseDate", "Reset") + "," +
                trigger("Status", "Approver", "None") + "]}}");
    const TOVResponse response = EvaluateTOVEditAttempt(kStatusEdit, core.get());
    AttributesMap triggered;
    ASSERT_TRUE(response.collectAttrsToTriggerInitialization(triggered));
    EXPECT_EQ(triggered, (AttributesMap{{"Approver", "None"}, {"ReleaseDate", "Reset"}}));
}

// ------------------------------------------- the abstract versioning attribute

std::string abstractTrigger(const std::string& objectType) {
    return R"({"triggers":{")" + objectType + R"(":[)" +
           trigger("Status", "Proper_Versioning_Attribute", "Reset") + "]}}";
}

TEST(TriggeredHandling, AbstractRuleOnATypeWithOneVersioningAttributeNamesIt) {
    Loaded core(abstractTrigger("Tool"));
    const std::string edit = request("Tool", R"({"Status":"In Work"})", R"({"Status":"Done"})");
    EXPECT_EQ(tovtest::asText(EvaluateTOVEditAttempt(edit, core.get())),
              approvedWith("{Revision:Reset}"));
}

TEST(TriggeredHandling, AbstractRuleOnATypeWithTwoVersioningAttributesNamesBothInOneKey) {
    Loaded core(abstractTrigger("Part"));
    EXPECT_EQ(tovtest::asText(EvaluateTOVEditAttempt(kStatusEdit, core.get())),
              approvedWith("{[Iteration,Revision]:Reset}"));
}

TEST(TriggeredHandling, AbstractRuleIsNarrowedByTheSelectionRulesOfTheInitialState) {
    Loaded core(R"({"triggers":{"Part":[)" +
                trigger("Status", "Proper_Versioning_Attribute", "Reset") +
                R"(]},"versioningSelections":{"Part":[)"
                R"({"conditionAttribute1":"Status","conditionValue1":["In Work"],)"
                R"("versioningOption":["Iteration"]}]}})");
    EXPECT_EQ(tovtest::asText(EvaluateTOVEditAttempt(kStatusEdit, core.get())),
              approvedWith("{Iteration:Reset}"));
}

TEST(TriggeredHandling, ContradictingSelectionRulesLeaveTheAbstractWordAndLogTheFailure) {
    Loaded core(R"({"triggers":{"Part":[)" +
                trigger("Status", "Proper_Versioning_Attribute", "Reset") +
                R"(]},"versioningSelections":{"Part":[)"
                R"({"conditionAttribute1":"Status","conditionValue1":["In Work"],)"
                R"("versioningOption":["Iteration"]},)"
                R"({"conditionAttribute1":"Number","conditionValue1":["P-1"],)"
                R"("versioningOption":["Revision"]}]}})");
    TOVResponse response;
    const std::string log = tovtest::captureConsole(
        core.logger(), [&] { response = EvaluateTOVEditAttempt(kStatusEdit, core.get()); });
    EXPECT_EQ(tovtest::asText(response), approvedWith("{Proper_Versioning_Attribute:Reset}"));
    EXPECT_THAT(log, HasSubstr(kFailedNarrowing));
    // The finder's own contradiction never reaches the edit's response.
    EXPECT_THAT(tovtest::asText(response), Not(HasSubstr("Contradicting")));
}

TEST(TriggeredHandling, AbstractRuleOnATypeWithoutVersioningAttributesFailsToNarrow) {
    // The options would hold the overwrite label alone, which is no attribute.
    Loaded core(abstractTrigger("Note"));
    const std::string edit = request("Note", R"({"Status":"Draft"})", R"({"Status":"Final"})");
    TOVResponse response;
    const std::string log = tovtest::captureConsole(
        core.logger(), [&] { response = EvaluateTOVEditAttempt(edit, core.get()); });
    EXPECT_EQ(tovtest::asText(response), approvedWith("{Proper_Versioning_Attribute:Reset}"));
    EXPECT_THAT(log, HasSubstr(kFailedNarrowing));
}

TEST(TriggeredHandling, AbstractRuleOnAnUnknownObjectTypeFailsToNarrow) {
    Loaded core(abstractTrigger("ALL"));
    const std::string edit = request("Gadget", R"({"Status":"Draft"})", R"({"Status":"Final"})");
    TOVResponse response;
    const std::string log = tovtest::captureConsole(
        core.logger(), [&] { response = EvaluateTOVEditAttempt(edit, core.get()); });
    EXPECT_EQ(tovtest::asText(response), approvedWith("{Proper_Versioning_Attribute:Reset}"));
    EXPECT_THAT(log, HasSubstr(kFailedNarrowing));
}

TEST(TriggeredHandling, ASuccessfulNarrowingLogsNoFailure) {
    Loaded core(abstractTrigger("Part"));
    const std::string log = tovtest::captureConsole(
        core.logger(), [&] { EvaluateTOVEditAttempt(kStatusEdit, core.get()); });
    EXPECT_THAT(log, Not(HasSubstr("Failed to determine")));
}

TEST(TriggeredHandling, NarrowingIgnoresConflictResolutionRulesThatForceOverwrite) {
    // The spin-up options never look at forced resolutions, so both versioning
    // attributes stay proper.
    Loaded core(R"({"triggers":{"Part":[)" +
                trigger("Status", "Proper_Versioning_Attribute", "Reset") +
                R"(]},"conflictResolutions":{"Part":[)"
                R"({"attribute":"Status","fromValue":"In Work","toValue":"In Review",)"
                R"("updatesFile":"N_A","conflictResolution":"overwrite"}]}})");
    EXPECT_EQ(tovtest::asText(EvaluateTOVEditAttempt(kStatusEdit, core.get())),
              approvedWith("{[Iteration,Revision]:Reset}"));
}

TEST(TriggeredHandling, AbstractAndPlainRulesTogether) {
    Loaded core(R"({"triggers":{"Tool":[)" +
                trigger("Status", "Proper_Versioning_Attribute", "Reset") + "," +
                trigger("Status", "Number", "Renumber") + "]}}");
    const std::string edit = request("Tool", R"({"Status":"In Work"})", R"({"Status":"Done"})");
    EXPECT_EQ(tovtest::asText(EvaluateTOVEditAttempt(edit, core.get())),
              approvedWith("{Number:Renumber, Revision:Reset}"));
}

// ------------------------------------------------ no triggers without approval

TEST(TriggeredHandling, AViolationReportsNoTrigger) {
    Loaded core(R"({"triggers":{"Part":[)" + trigger("Status", "ReleaseDate", "Reset") +
                R"(]},"transitions":{"Part":[)"
                R"({"attribute":"Status","fromValue":"In Work","toValue":["In Work"]}]}})");
    const TOVResponse response = EvaluateTOVEditAttempt(kStatusEdit, core.get());
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_THAT(tovtest::asText(response), Not(HasSubstr("TriggerInitialization")));
}

TEST(TriggeredHandling, AnAttemptEndingOnMissingDataReportsNoTrigger) {
    Loaded core(R"({"triggers":{"Part":[)" + trigger("Status", "ReleaseDate", "Reset") +
                R"(]},"historyLinks":{"Part":[)"
                R"({"attribute":"Status","fromValue":"<any>","toValue":"In Review",)"
                R"("acceptableHistoryLinkValues":["In Review"]}]}})");
    const TOVResponse response = EvaluateTOVEditAttempt(kStatusEdit, core.get());
    TOVMissingDataForEvaluation missing;
    EXPECT_TRUE(response.needsReevaluation(missing));
    EXPECT_THAT(tovtest::asText(response), Not(HasSubstr("TriggerInitialization")));
}

TEST(TriggeredHandling, AnAttemptAskingForManualLinkAncestorsReportsNoTrigger) {
    Loaded core(R"({"triggers":{"Part":[)" + trigger("Status", "ReleaseDate", "Reset") +
                R"(]},"manualLinks":{"Part":[)"
                R"({"attribute":"Status","fromValue":"<any>","toValue":"In Review",)"
                R"("acceptableManualLinkValues":["In Review"]}]}})");
    const TOVResponse response = EvaluateTOVEditAttempt(kStatusEdit, core.get());
    EXPECT_FALSE(response.getGeneralResult());
    std::string comment;
    EXPECT_TRUE(response.getCommentUnderKeyword("ManualLinkAncestors", comment));
    EXPECT_EQ(comment, "MissingData");
    EXPECT_FALSE(response.getCommentUnderKeyword("TriggerInitialization", comment));
}

}  // namespace
