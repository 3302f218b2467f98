// Edit and save attempts judged end to end: through the exported request
// functions, with rules and a data model loaded from documents, comparing the
// whole answer in its single-string form.
#include <gtest/gtest.h>

#include <string>

#include "test_support.h"
#include "tov/TOVCoreDataControllers.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVResponse.h"
#include "tov/TOV_DMStructure.h"
#include "tov/entry_points.h"

namespace {

using tovtest::asText;
using tovtest::PrivateCore;
using tovtest::TempFile;

using EvaluateFunction = TOVResponse (*)(const std::string&, TOVCoreDataControllers*);

// Number is the one property that tells a Part's family; Revision is its
// versioning attribute; everything else is secondary.
const char* const kDataModel = R"json({"OverwriteLabel":"Overwrite","structureObjects":[
  {"name":"Part","dmObjectType":"DMITEM","attributes":[
    {"name":"Number","type":"REGULAR","primary":true},
    {"name":"Revision","type":"VERSIONING","primary":true},
    {"name":"Status","type":"REGULAR","primary":false},
    {"name":"Owner","type":"REGULAR","primary":false},
    {"name":"Approval","type":"REGULAR","primary":false},
    {"name":"Description","type":"REGULAR","primary":false}]}]})json";

// Rules that concern another object type only, so that a Part edit meets none.
const char* const kRulesForAnotherType = R"json({"transitions":{"Drawing":[
  {"attribute":"Status","fromValue":"In Work","toValue":["Released"]}]}})json";

const char* const kTransitionOnStatus = R"json({"transitions":{"Part":[
  {"attribute":"Status","fromValue":"In Work","toValue":["Released","Checked"]}]}})json";

const char* const kSpinupOnRelease = R"json({"conflictResolutions":{"Part":[
  {"attribute":"Status","fromValue":"<any>","toValue":"Released","updatesFile":"N_A",
   "conflictResolution":"spinup"}]}})json";

// Moves Status from In Work to Released and leaves Revision alone.
const char* const kReleaseRequest = R"json({"objectType":"Part",
  "initialAttributes":{"Number":"P-1","Revision":"A","Status":"In Work"},
  "targetAttributes":{"Number":"P-1","Revision":"A","Status":"Released"}})json";

// The same release, with a new Number as well.
const char* const kReleaseWithNewNumberRequest = R"json({"objectType":"Part",
  "initialAttributes":{"Number":"P-1","Revision":"A","Status":"In Work"},
  "targetAttributes":{"Number":"P-2","Revision":"A","Status":"Released"}})json";

struct Flavour {
    const char* name;
    EvaluateFunction evaluate;
    EvaluateFunction evaluateFromFile;
};

const Flavour kEdit = {"EditAttempt", EvaluateTOVEditAttempt, EvaluateTOVEditAttemptFromFile};
const Flavour kEditBeforeConflictResolution = {
    "EditAttemptBeforeConflictResolution", EvaluateTOVEditAttemptBeforeConflictResolution,
    EvaluateTOVEditAttemptBeforeConflictResolutionFromFile};
const Flavour kSave = {"SaveReprFileAttempt", EvaluateTOVSaveReprFileAttempt,
                       EvaluateTOVSaveReprFileAttemptFromFile};
const Flavour kSaveBeforeConflictResolution = {
    "SaveReprFileAttemptBeforeConflictResolution",
    EvaluateTOVSaveReprFileAttemptBeforeConflictResolution,
    EvaluateTOVSaveReprFileAttemptBeforeConflictResolutionFromFile};

class EditEvaluation : public ::testing::Test {
protected:
    void loadRules(const char* document) {
        ASSERT_EQ(asText(InitializeTOVRules(document, core.get())),
                  R"({"Result":"Success","ResultComment":"Successfully initialized TOV rules"})");
    }
    void loadDataModel() {
        ASSERT_EQ(asText(InitializeTOV_DMInfo(kDataModel, core.get())),
                  R"({"Result":"Success","ResultComment":"Succesfully initialized DM info"})");
    }
    void loadRulesAndDataModel(const char* rules) {
        loadRules(rules);
        loadDataModel();
    }
    std::string edit(const std::string& request) {
        return asText(EvaluateTOVEditAttempt(request, core.get()));
    }
    std::string save(const std::string& request) {
        return asText(EvaluateTOVSaveReprFileAttempt(request, core.get()));
    }

    PrivateCore core;
};

// --- Nothing loaded, or nothing that can be used ---------------------------

// A store without link rules still logs both link lookups, with nothing found,
// when the log is read.
TEST_F(EditEvaluation, LinkLookupsAreLoggedEvenWithoutLinkRules) {
    loadRulesAndDataModel(kTransitionOnStatus);
    const std::string printed =
        tovtest::captureConsole(core.logger(), [&] { edit(kReleaseRequest); });
    EXPECT_NE(printed.find("*******HISTORY RULES LOOKUP********\nPart edits "
                           "[Number,Revision,Status].All target values={Status:Released, "
                           "_file_upload_:false}..... I found 0 related rules.\n"),
              std::string::npos)
        << printed;
    EXPECT_NE(printed.find("*******MANUAL RULES LOOKUP********\nPart edits [Status].All target "
                           "values={Status:Released, _file_upload_:false}..... I found 0 "
                           "related rules.\n"),
              std::string::npos)
        << printed;
}

TEST_F(EditEvaluation, WithoutAnyRulesLoadedEveryFlavourIsRefused) {
    loadDataModel();
    for (const Flavour& flavour :
         {kEdit, kEditBeforeConflictResolution, kSave, kSaveBeforeConflictResolution}) {
        SCOPED_TRACE(flavour.name);
        EXPECT_EQ(asText(flavour.evaluate(kReleaseRequest, core.get())),
                  R"({"Result":"Failure","ResultComment":"Uninitialized TOV rules"})");
    }
}

TEST_F(EditEvaluation, MissingRulesAreToldBeforeAMissingDataModel) {
    EXPECT_EQ(edit(kReleaseRequest),
              R"({"Result":"Failure","ResultComment":"Uninitialized TOV rules"})");
}

TEST_F(EditEvaluation, AFailedRulesLoadLeavesTheAttemptUninitialized) {
    loadDataModel();
    // A transition rule without its list of target values.
    const TOVResponse load = InitializeTOVRules(
        R"json({"transitions":{"Part":[{"attribute":"Status","fromValue":"In Work"}]}})json",
        core.get());
    ASSERT_FALSE(load.getGeneralResult());

    EXPECT_EQ(edit(kReleaseRequest),
              R"({"Result":"Failure","ResultComment":"Uninitialized TOV rules"})");
}

TEST_F(EditEvaluation, AFailedLoadAfterAGoodOneDropsTheGoodRules) {
    loadRulesAndDataModel(kTransitionOnStatus);
    ASSERT_FALSE(InitializeTOVRules("[1,2]", core.get()).getGeneralResult());

    EXPECT_EQ(edit(kReleaseRequest),
              R"({"Result":"Failure","ResultComment":"Uninitialized TOV rules"})");
}

TEST_F(EditEvaluation, ARulesDocumentWithoutRulesCountsAsUninitialized) {
    loadRulesAndDataModel("{}");
    EXPECT_EQ(edit(kReleaseRequest),
              R"({"Result":"Failure","ResultComment":"Uninitialized TOV rules"})");
}

TEST_F(EditEvaluation, WithRulesButNoDataModelAnAllowedEditIsRefused) {
    loadRules(kTransitionOnStatus);
    for (const Flavour& flavour :
         {kEdit, kEditBeforeConflictResolution, kSave, kSaveBeforeConflictResolution}) {
        SCOPED_TRACE(flavour.name);
        EXPECT_EQ(asText(flavour.evaluate(kReleaseRequest, core.get())),
                  R"({"Result":"Failure","ResultComment":"Uninitialized Dm Information"})");
    }
}

TEST_F(EditEvaluation, WithRulesButNoDataModelAForbiddenTransitionIsToldFirst) {
    loadRules(kTransitionOnStatus);
    EXPECT_EQ(
        edit(R"json({"objectType":"Part",
          "initialAttributes":{"Number":"P-1","Status":"In Work"},
          "targetAttributes":{"Number":"P-1","Status":"Obsolete"}})json"),
        R"json({"Result":"Failure","ResultComment":"Transition violation detected: For Part: Status can transition from \"In Work\" to \"Released\", \"Checked\""})json");
}

TEST_F(EditEvaluation, AFailedDataModelLoadLeavesTheAttemptUninitialized) {
    loadRulesAndDataModel(kRulesForAnotherType);
    ASSERT_FALSE(
        InitializeTOV_DMInfo(R"json({"structureObjects":[]})json", core.get()).getGeneralResult());

    EXPECT_EQ(edit(kReleaseRequest),
              R"({"Result":"Failure","ResultComment":"Uninitialized Dm Information"})");
}

TEST_F(EditEvaluation, ADataModelWithoutObjectTypesCountsAsUninitialized) {
    loadRules(kRulesForAnotherType);
    ASSERT_TRUE(InitializeTOV_DMInfo(
                    R"json({"structureObjects":[],"OverwriteLabel":"Overwrite"})json", core.get())
                    .getGeneralResult());

    EXPECT_EQ(edit(kReleaseRequest),
              R"({"Result":"Failure","ResultComment":"Uninitialized Dm Information"})");
}

// --- Approval -------------------------------------------------------------

TEST_F(EditEvaluation, WithNoRuleThatAppliesEachFlavourIsApprovedInItsOwnWords) {
    loadRulesAndDataModel(kRulesForAnotherType);

    EXPECT_EQ(asText(EvaluateTOVEditAttempt(kReleaseRequest, core.get())),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
    EXPECT_EQ(asText(EvaluateTOVEditAttemptBeforeConflictResolution(kReleaseRequest, core.get())),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
    EXPECT_EQ(asText(EvaluateTOVSaveReprFileAttempt(kReleaseRequest, core.get())),
              R"({"Result":"Success","ResultComment":"Save attempt approved"})");
    EXPECT_EQ(
        asText(EvaluateTOVSaveReprFileAttemptBeforeConflictResolution(kReleaseRequest, core.get())),
        R"({"Result":"Success","ResultComment":"Save attempt approved"})");
}

TEST_F(EditEvaluation, AnApprovedSaveSaysSo) {
    loadRulesAndDataModel(kTransitionOnStatus);
    EXPECT_EQ(save(kReleaseRequest),
              R"({"Result":"Success","ResultComment":"Save attempt approved"})");
}

TEST_F(EditEvaluation, ARequestFromAFileIsJudgedLikeTheSameText) {
    loadRulesAndDataModel(kRulesForAnotherType);
    const TempFile file(kReleaseRequest);

    EXPECT_EQ(asText(EvaluateTOVEditAttemptFromFile(file.path, core.get())),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
    EXPECT_EQ(asText(EvaluateTOVEditAttemptBeforeConflictResolutionFromFile(file.path, core.get())),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
    EXPECT_EQ(asText(EvaluateTOVSaveReprFileAttemptFromFile(file.path, core.get())),
              R"({"Result":"Success","ResultComment":"Save attempt approved"})");
    EXPECT_EQ(asText(EvaluateTOVSaveReprFileAttemptBeforeConflictResolutionFromFile(file.path,
                                                                                    core.get())),
              R"({"Result":"Success","ResultComment":"Save attempt approved"})");
}

TEST_F(EditEvaluation, AForbiddenRequestFromAFileGetsTheSameViolation) {
    loadRulesAndDataModel(kSpinupOnRelease);
    const TempFile file(kReleaseRequest);

    EXPECT_EQ(
        asText(EvaluateTOVEditAttemptFromFile(file.path, core.get())),
        R"json({"Result":"Failure","ResultComment":"Conflict resolution violation detected: For Part: When Status transitions from \"<any>\" to \"Released\" then we MUST spinup"})json");
}

// --- Transition freeze ----------------------------------------------------

const char* const kTwoFreezesOnRelease = R"json({"transitionsFreeze":{"Part":[
  {"attribute":"Description","freezeConditionAttribute":"Status","freezeConditionValue":"Released"},
  {"attribute":"Owner","freezeConditionAttribute":"Status","freezeConditionValue":"Released"}]}})json";

TEST_F(EditEvaluation, AFrozenAttributeIsToldWithItsRule) {
    loadRulesAndDataModel(kTwoFreezesOnRelease);
    EXPECT_EQ(
        edit(R"json({"objectType":"Part",
          "initialAttributes":{"Number":"P-1","Status":"Released","Description":"Bolt"},
          "targetAttributes":{"Description":"Screw"}})json"),
        R"json({"Result":"Failure","ResultComment":"Transition freeze violation detected: For Part: When Status equals \"Released\", then Description must remain unchanged."})json");
}

TEST_F(EditEvaluation, OfTwoFrozenAttributesTheLaterInTheEditIsTold) {
    loadRulesAndDataModel(kTwoFreezesOnRelease);
    // Description and Owner both change; Owner stands later in byte order.
    EXPECT_EQ(
        edit(R"json({"objectType":"Part",
          "initialAttributes":{"Number":"P-1","Status":"Released","Owner":"Alice","Description":"Bolt"},
          "targetAttributes":{"Owner":"Bob","Description":"Screw"}})json"),
        R"json({"Result":"Failure","ResultComment":"Transition freeze violation detected: For Part: When Status equals \"Released\", then Owner must remain unchanged."})json");
}

TEST_F(EditEvaluation, AFreezeThatDoesNotHoldLetsTheEditThrough) {
    loadRulesAndDataModel(kTwoFreezesOnRelease);
    EXPECT_EQ(edit(R"json({"objectType":"Part",
          "initialAttributes":{"Number":"P-1","Status":"In Work","Owner":"Alice"},
          "targetAttributes":{"Owner":"Bob"}})json"),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
}

TEST_F(EditEvaluation, AFrozenAttributeThatTheEditLeavesAloneStopsNothing) {
    loadRulesAndDataModel(R"json({"transitionsFreeze":{"Part":[
      {"attribute":"Owner","freezeConditionAttribute":"Status","freezeConditionValue":"Released"}]}})json");
    EXPECT_EQ(edit(R"json({"objectType":"Part",
          "initialAttributes":{"Number":"P-1","Status":"Released","Owner":"Alice","Description":"Bolt"},
          "targetAttributes":{"Owner":"Alice","Description":"Screw"}})json"),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
}

// --- Transitions ----------------------------------------------------------

TEST_F(EditEvaluation, AForbiddenTransitionIsToldWithItsRule) {
    loadRulesAndDataModel(kTransitionOnStatus);
    EXPECT_EQ(
        edit(R"json({"objectType":"Part",
          "initialAttributes":{"Number":"P-1","Status":"In Work"},
          "targetAttributes":{"Status":"Obsolete"}})json"),
        R"json({"Result":"Failure","ResultComment":"Transition violation detected: For Part: Status can transition from \"In Work\" to \"Released\", \"Checked\""})json");
}

TEST_F(EditEvaluation, OfTwoForbiddingTransitionsTheFirstInStoreOrderIsTold) {
    // The store sorts attribute names by length first, so Status (six letters)
    // comes before Approval (eight), against both the document and the alphabet.
    loadRulesAndDataModel(R"json({"transitions":{"Part":[
      {"attribute":"Approval","fromValue":"Pending","toValue":["Granted"]},
      {"attribute":"Status","fromValue":"In Work","toValue":["Released"]}]}})json");
    EXPECT_EQ(
        edit(R"json({"objectType":"Part",
          "initialAttributes":{"Number":"P-1","Status":"In Work","Approval":"Pending"},
          "targetAttributes":{"Status":"Obsolete","Approval":"Denied"}})json"),
        R"json({"Result":"Failure","ResultComment":"Transition violation detected: For Part: Status can transition from \"In Work\" to \"Released\""})json");
}

TEST_F(EditEvaluation, ATransitionRuleJudgesAnObjectOnItsFromValueEvenIfTheEditLeavesItAlone) {
    // The rule does not list In Work among its targets, so every edit of an
    // object standing on In Work is forbidden.
    loadRulesAndDataModel(R"json({"transitions":{"Part":[
      {"attribute":"Status","fromValue":"In Work","toValue":["Released"]}]}})json");
    EXPECT_EQ(
        edit(R"json({"objectType":"Part",
          "initialAttributes":{"Number":"P-1","Status":"In Work","Description":"Bolt"},
          "targetAttributes":{"Description":"Screw"}})json"),
        R"json({"Result":"Failure","ResultComment":"Transition violation detected: For Part: Status can transition from \"In Work\" to \"Released\""})json");
}

const char* const kTransitionOnSecondaryDescription = R"json({"transitions":{"Part":[
  {"attribute":"Description","fromValue":"Draft","toValue":["Final"]}]}})json";

TEST_F(EditEvaluation, ARuleOnASecondaryAttributeStopsAnOrdinaryEdit) {
    loadRulesAndDataModel(kTransitionOnSecondaryDescription);
    EXPECT_EQ(
        edit(R"json({"objectType":"Part",
          "initialAttributes":{"Number":"P-1","Description":"Draft"},
          "targetAttributes":{"Number":"P-1","Description":"Sketch"}})json"),
        R"json({"Result":"Failure","ResultComment":"Transition violation detected: For Part: Description can transition from \"Draft\" to \"Final\""})json");
}

TEST_F(EditEvaluation, ARuleOnASecondaryAttributeIsSkippedWhenTheFamilyPropertyChanges) {
    loadRulesAndDataModel(kTransitionOnSecondaryDescription);
    EXPECT_EQ(edit(R"json({"objectType":"Part",
          "initialAttributes":{"Number":"P-1","Description":"Draft"},
          "targetAttributes":{"Number":"P-2","Description":"Sketch"}})json"),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
}

TEST_F(EditEvaluation, ARuleOnAPrimaryAttributeStillHoldsWhenTheFamilyPropertyChanges) {
    loadRulesAndDataModel(R"json({"transitions":{"Part":[
      {"attribute":"Number","fromValue":"P-1","toValue":["P-3"]}]}})json");
    EXPECT_EQ(
        edit(R"json({"objectType":"Part",
          "initialAttributes":{"Number":"P-1","Description":"Draft"},
          "targetAttributes":{"Number":"P-2","Description":"Sketch"}})json"),
        R"json({"Result":"Failure","ResultComment":"Transition violation detected: For Part: Number can transition from \"P-1\" to \"P-3\""})json");
}

// --- File constraints -----------------------------------------------------

TEST_F(EditEvaluation, AMandatoryUploadStopsTheEditAndLetsTheSaveThrough) {
    loadRulesAndDataModel(R"json({"fileConstraints":{"Part":[
      {"attribute":"Status","fromValue":"In Work","toValue":"Released","updateFile":"MANDATORY"}]}})json");

    EXPECT_EQ(
        edit(kReleaseRequest),
        R"json({"Result":"Failure","ResultComment":"File constraint violation detected: For Part: When Status transitions from \"In Work\" to \"Released\" we MUST upload a new representation file"})json");
    EXPECT_EQ(save(kReleaseRequest),
              R"({"Result":"Success","ResultComment":"Save attempt approved"})");
}

TEST_F(EditEvaluation, AForbiddenUploadStopsTheSaveAndLetsTheEditThrough) {
    loadRulesAndDataModel(R"json({"fileConstraints":{"Part":[
      {"attribute":"Status","fromValue":"In Work","toValue":"Released","updateFile":"FORBIDDEN"}]}})json");

    EXPECT_EQ(
        save(kReleaseRequest),
        R"json({"Result":"Failure","ResultComment":"File constraint violation detected: For Part: When Status transitions from \"In Work\" to \"Released\" we MUST NOT upload a new representation file"})json");
    EXPECT_EQ(edit(kReleaseRequest),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
}

TEST_F(EditEvaluation, TheUploadWordOfTheHostIsOverruledByTheFlavour) {
    loadRulesAndDataModel(R"json({"fileConstraints":{"Part":[
      {"attribute":"Status","fromValue":"In Work","toValue":"Released","updateFile":"MANDATORY"}]}})json");
    EXPECT_EQ(
        edit(R"json({"objectType":"Part",
          "initialAttributes":{"Number":"P-1","Status":"In Work"},
          "targetAttributes":{"Status":"Released","_file_upload_":"true"}})json"),
        R"json({"Result":"Failure","ResultComment":"File constraint violation detected: For Part: When Status transitions from \"In Work\" to \"Released\" we MUST upload a new representation file"})json");
}

TEST_F(EditEvaluation, ANewObjectMeetsAFileConstraintFromAnyValue) {
    loadRulesAndDataModel(R"json({"fileConstraints":{"Part":[
      {"attribute":"Status","fromValue":"<any>","toValue":"<any>","updateFile":"MANDATORY"}]}})json");
    const char* const request = R"json({"objectType":"Part","initialAttributes":{},
          "targetAttributes":{"Number":"P-9","Revision":"A","Status":"In Work"}})json";

    EXPECT_EQ(
        edit(request),
        R"json({"Result":"Failure","ResultComment":"File constraint violation detected: For Part: When Status transitions from \"<any>\" to \"<any>\" we MUST upload a new representation file"})json");
    EXPECT_EQ(save(request), R"({"Result":"Success","ResultComment":"Save attempt approved"})");
}

// --- Conflict resolution --------------------------------------------------

TEST_F(EditEvaluation, AForcedSpinupStopsAnEditThatKeepsItsRevision) {
    loadRulesAndDataModel(kSpinupOnRelease);
    const TOVResponse response = EvaluateTOVEditAttempt(kReleaseRequest, core.get());

    // The sentence has two blanks before "then"; the single string collapses them.
    EXPECT_EQ(response.getGeneralResultComment(),
              "Conflict resolution violation detected: For Part: When Status transitions from "
              "\"<any>\" to \"Released\"  then we MUST spinup");
    EXPECT_EQ(
        asText(response),
        R"json({"Result":"Failure","ResultComment":"Conflict resolution violation detected: For Part: When Status transitions from \"<any>\" to \"Released\" then we MUST spinup"})json");
    EXPECT_EQ(
        save(kReleaseRequest),
        R"json({"Result":"Failure","ResultComment":"Conflict resolution violation detected: For Part: When Status transitions from \"<any>\" to \"Released\" then we MUST spinup"})json");
}

TEST_F(EditEvaluation, AForcedSpinupIsMetByANewRevision) {
    loadRulesAndDataModel(kSpinupOnRelease);
    EXPECT_EQ(edit(R"json({"objectType":"Part",
          "initialAttributes":{"Number":"P-1","Revision":"A","Status":"In Work"},
          "targetAttributes":{"Revision":"B","Status":"Released"}})json"),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
}

TEST_F(EditEvaluation, AForcedOverwriteStopsAnEditThatChangesItsRevision) {
    loadRulesAndDataModel(R"json({"conflictResolutions":{"Part":[
      {"attribute":"Status","fromValue":"In Work","toValue":"<any>","updatesFile":"NO",
       "conflictResolution":"overwrite"}]}})json");
    const char* const request = R"json({"objectType":"Part",
          "initialAttributes":{"Number":"P-1","Revision":"A","Status":"In Work"},
          "targetAttributes":{"Revision":"B","Status":"Checked"}})json";

    EXPECT_EQ(
        edit(request),
        R"json({"Result":"Failure","ResultComment":"Conflict resolution violation detected: For Part: When Status transitions from \"In Work\" to \"<any>\" and representation file is not updated then we MUST overwrite"})json");
    // A save uploads the file, so the rule about edits without one does not hold.
    EXPECT_EQ(save(request), R"({"Result":"Success","ResultComment":"Save attempt approved"})");
}

TEST_F(EditEvaluation, ARuleForSavesOnlyStopsTheSaveAndNotTheEdit) {
    loadRulesAndDataModel(R"json({"conflictResolutions":{"Part":[
      {"attribute":"Status","fromValue":"<any>","toValue":"Released","updatesFile":"YES",
       "conflictResolution":"spinup"}]}})json");

    EXPECT_EQ(
        save(kReleaseRequest),
        R"json({"Result":"Failure","ResultComment":"Conflict resolution violation detected: For Part: When Status transitions from \"<any>\" to \"Released\" and representation file is updated then we MUST spinup"})json");
    EXPECT_EQ(edit(kReleaseRequest),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
}

TEST_F(EditEvaluation, AConflictResolutionRuleOnAnAttributeTheEditLeavesAloneStillHolds) {
    loadRulesAndDataModel(R"json({"conflictResolutions":{"Part":[
      {"attribute":"Status","fromValue":"In Work","toValue":"<any>","updatesFile":"N_A",
       "conflictResolution":"spinup"}]}})json");
    EXPECT_EQ(
        edit(R"json({"objectType":"Part",
          "initialAttributes":{"Number":"P-1","Revision":"A","Status":"In Work","Description":"Bolt"},
          "targetAttributes":{"Description":"Screw"}})json"),
        R"json({"Result":"Failure","ResultComment":"Conflict resolution violation detected: For Part: When Status transitions from \"In Work\" to \"<any>\" then we MUST spinup"})json");
}

TEST_F(EditEvaluation, BeforeConflictResolutionAForcedSpinupDoesNotCount) {
    loadRulesAndDataModel(kSpinupOnRelease);
    EXPECT_EQ(asText(EvaluateTOVEditAttemptBeforeConflictResolution(kReleaseRequest, core.get())),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
    EXPECT_EQ(
        asText(EvaluateTOVSaveReprFileAttemptBeforeConflictResolution(kReleaseRequest, core.get())),
        R"({"Result":"Success","ResultComment":"Save attempt approved"})");
}

TEST_F(EditEvaluation, BeforeConflictResolutionTheOtherChecksStillCount) {
    loadRulesAndDataModel(R"json({
      "conflictResolutions":{"Part":[
        {"attribute":"Status","fromValue":"<any>","toValue":"Released","updatesFile":"N_A",
         "conflictResolution":"spinup"}]},
      "fileConstraints":{"Part":[
        {"attribute":"Status","fromValue":"In Work","toValue":"Released","updateFile":"MANDATORY"}]}})json");
    EXPECT_EQ(
        asText(EvaluateTOVEditAttemptBeforeConflictResolution(kReleaseRequest, core.get())),
        R"json({"Result":"Failure","ResultComment":"File constraint violation detected: For Part: When Status transitions from \"In Work\" to \"Released\" we MUST upload a new representation file"})json");
}

TEST_F(EditEvaluation, AnEditOfTheFamilyPropertyPassesConflictResolutionInEveryFlavour) {
    loadRulesAndDataModel(kSpinupOnRelease);
    EXPECT_EQ(asText(EvaluateTOVEditAttempt(kReleaseWithNewNumberRequest, core.get())),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
    EXPECT_EQ(asText(EvaluateTOVEditAttemptBeforeConflictResolution(kReleaseWithNewNumberRequest,
                                                                    core.get())),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
    EXPECT_EQ(asText(EvaluateTOVSaveReprFileAttempt(kReleaseWithNewNumberRequest, core.get())),
              R"({"Result":"Success","ResultComment":"Save attempt approved"})");
    EXPECT_EQ(asText(EvaluateTOVSaveReprFileAttemptBeforeConflictResolution(
                  kReleaseWithNewNumberRequest, core.get())),
              R"({"Result":"Success","ResultComment":"Save attempt approved"})");
}

// --- Checks come in a fixed order -------------------------------------------

TEST_F(EditEvaluation, AFreezeIsToldBeforeATransitionOfTheSameEdit) {
    loadRulesAndDataModel(R"json({
      "transitions":{"Part":[{"attribute":"Owner","fromValue":"Alice","toValue":["Carol"]}]},
      "transitionsFreeze":{"Part":[
        {"attribute":"Owner","freezeConditionAttribute":"Status","freezeConditionValue":"Released"}]}})json");
    EXPECT_EQ(
        edit(R"json({"objectType":"Part",
          "initialAttributes":{"Number":"P-1","Status":"Released","Owner":"Alice"},
          "targetAttributes":{"Owner":"Bob"}})json"),
        R"json({"Result":"Failure","ResultComment":"Transition freeze violation detected: For Part: When Status equals \"Released\", then Owner must remain unchanged."})json");
}

TEST_F(EditEvaluation, ATransitionIsToldBeforeAFileConstraintOfTheSameEdit) {
    loadRulesAndDataModel(R"json({
      "transitions":{"Part":[{"attribute":"Status","fromValue":"In Work","toValue":["Checked"]}]},
      "fileConstraints":{"Part":[
        {"attribute":"Status","fromValue":"In Work","toValue":"Released","updateFile":"MANDATORY"}]}})json");
    EXPECT_EQ(
        edit(kReleaseRequest),
        R"json({"Result":"Failure","ResultComment":"Transition violation detected: For Part: Status can transition from \"In Work\" to \"Checked\""})json");
}

// --- Bad requests, as the host sees them ------------------------------------

TEST_F(EditEvaluation, AnEmptyRequestIsInsufficient) {
    loadRulesAndDataModel(kRulesForAnotherType);
    for (const Flavour& flavour :
         {kEdit, kEditBeforeConflictResolution, kSave, kSaveBeforeConflictResolution}) {
        SCOPED_TRACE(flavour.name);
        EXPECT_EQ(asText(flavour.evaluate("", core.get())),
                  R"({"Result":"Failure","ResultComment":"Insufficient input data"})");
        EXPECT_EQ(asText(flavour.evaluateFromFile("", core.get())),
                  R"({"Result":"Failure","ResultComment":"Insufficient input data"})");
    }
}

TEST_F(EditEvaluation, AnInsufficientRequestIsToldEvenWithNothingLoaded) {
    EXPECT_EQ(edit(""), R"({"Result":"Failure","ResultComment":"Insufficient input data"})");
}

TEST_F(EditEvaluation, TextThatIsNoJsonObjectHasAFundamentalError) {
    loadRulesAndDataModel(kRulesForAnotherType);
    for (const char* text :
         {"not json", "[1,2]", "\"Part\"", "{\"objectType\":\"Part\"", "{} {}"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(edit(text),
                  R"({"Result":"Failure","ResultComment":"Json has fundamental parsing error"})");
    }
}

TEST_F(EditEvaluation, AMissingFileHasAFundamentalError) {
    loadRulesAndDataModel(kRulesForAnotherType);
    EXPECT_EQ(
        asText(EvaluateTOVEditAttemptFromFile("/nonexistent/tov/edit_request.json", core.get())),
        R"({"Result":"Failure","ResultComment":"Json has fundamental parsing error"})");
}

TEST_F(EditEvaluation, ABadRequestInAFileIsToldLikeTheSameText) {
    loadRulesAndDataModel(kRulesForAnotherType);
    const TempFile file(R"json({"initialAttributes":{},"targetAttributes":{}})json");
    EXPECT_EQ(
        asText(EvaluateTOVSaveReprFileAttemptFromFile(file.path, core.get())),
        R"({"Result":"Failure","ResultComment":"Object Type demands ALL keywords: [objectType]"})");
}

TEST_F(EditEvaluation, AParseFailureIsToldEvenWithNothingLoaded) {
    EXPECT_EQ(edit("not json"),
              R"({"Result":"Failure","ResultComment":"Json has fundamental parsing error"})");
}

TEST_F(EditEvaluation, AMissingOrMistypedObjectTypeIsToldByKeyword) {
    loadRulesAndDataModel(kRulesForAnotherType);
    EXPECT_EQ(
        edit(R"json({"initialAttributes":{},"targetAttributes":{}})json"),
        R"({"Result":"Failure","ResultComment":"Object Type demands ALL keywords: [objectType]"})");
    EXPECT_EQ(
        edit(R"json({"objectType":7,"initialAttributes":{},"targetAttributes":{}})json"),
        R"({"Result":"Failure","ResultComment":"Object Type demands ALL keywords: [objectType]"})");
}

TEST_F(EditEvaluation, AMissingOrMistypedInitialPacketIsToldByKeyword) {
    loadRulesAndDataModel(kRulesForAnotherType);
    EXPECT_EQ(
        edit(R"json({"objectType":"Part","targetAttributes":{}})json"),
        R"({"Result":"Failure","ResultComment":"Initial Attributes demands ALL keywords: [initialAttributes]"})");
    EXPECT_EQ(
        edit(
            R"json({"objectType":"Part","initialAttributes":["Status"],"targetAttributes":{}})json"),
        R"({"Result":"Failure","ResultComment":"Initial Attributes demands ALL keywords: [initialAttributes]"})");
}

TEST_F(EditEvaluation, AMissingTargetPacketFailsWithAnEmptyComment) {
    loadRulesAndDataModel(kRulesForAnotherType);
    EXPECT_EQ(edit(R"json({"objectType":"Part","initialAttributes":{"Status":"In Work"}})json"),
              R"({"Result":"Failure","ResultComment":""})");
    EXPECT_EQ(
        edit(R"json({"objectType":"Part","initialAttributes":{},"targetAttributes":"x"})json"),
        R"({"Result":"Failure","ResultComment":""})");
}

TEST_F(EditEvaluation, AMissingTargetPacketAddsNothingToTheOtherFaults) {
    loadRulesAndDataModel(kRulesForAnotherType);
    EXPECT_EQ(
        edit(R"json({"initialAttributes":{}})json"),
        R"({"Result":"Failure","ResultComment":"Object Type demands ALL keywords: [objectType]"})");
}

TEST_F(EditEvaluation, ANonStringValueInAPacketIsToldWithThePacketKey) {
    loadRulesAndDataModel(kRulesForAnotherType);
    EXPECT_EQ(
        edit(
            R"json({"objectType":"Part","initialAttributes":{"Status":1},"targetAttributes":{}})json"),
        R"({"Result":"Failure","ResultComment":"Initial Attributes: parsing error on keys - values of initialAttributes."})");
    EXPECT_EQ(
        edit(
            R"json({"objectType":"Part","initialAttributes":{},"targetAttributes":{"Status":true}})json"),
        R"({"Result":"Failure","ResultComment":"Target Attributes: parsing error on keys - values of targetAttributes."})");
}

TEST_F(EditEvaluation, AMemberThatIsNoObjectIsToldWithItsServerId) {
    loadRulesAndDataModel(kRulesForAnotherType);
    EXPECT_EQ(
        edit(R"json({"objectType":"Part","initialAttributes":{},"targetAttributes":{},
          "membersOfFamily":{"7":"Released"}})json"),
        R"json({"Result":"Failure","ResultComment":"Members of familyMember with server id\"7\":Data should be a map"})json");
}

TEST_F(EditEvaluation, AMemberWithAnUnknownKeywordIsToldWithTheKeyword) {
    loadRulesAndDataModel(kRulesForAnotherType);
    EXPECT_EQ(
        edit(R"json({"objectType":"Part","initialAttributes":{},"targetAttributes":{},
          "manualLinkAncestors":{"9":{"attrs":{"Status":"Released"}}}})json"),
        R"json({"Result":"Failure","ResultComment":"Manual Link AncestorsMember with server id\"9\":Unknown keyword \"attrs\""})json");
}

TEST_F(EditEvaluation, AMemberWhoseAttributesAreNoObjectIsToldWithItsServerId) {
    loadRulesAndDataModel(kRulesForAnotherType);
    EXPECT_EQ(
        edit(R"json({"objectType":"Part","initialAttributes":{},"targetAttributes":{},
          "membersOfFamily":{"7":{"attributes":["Released"]}}})json"),
        R"json({"Result":"Failure","ResultComment":"Members of familyMember with server id\"7\":Attributes should be a map."})json");
}

TEST_F(EditEvaluation, ANonStringValueInAMemberIsToldWithItsServerId) {
    loadRulesAndDataModel(kRulesForAnotherType);
    EXPECT_EQ(
        edit(R"json({"objectType":"Part","initialAttributes":{},"targetAttributes":{},
          "manualLinkAncestors":{"9":{"attributes":{"Status":3}}}})json"),
        R"({"Result":"Failure","ResultComment":"Manual Link Ancestors: parsing error on keys - values of attributes of 9."})");
}

TEST_F(EditEvaluation, SeveralFaultsAreJoinedInSectionOrder) {
    loadRulesAndDataModel(kRulesForAnotherType);
    EXPECT_EQ(
        edit(R"json({"initialAttributes":{},"targetAttributes":{},
          "membersOfFamily":{"7":"Released"}})json"),
        R"json({"Result":"Failure","ResultComment":"Members of familyMember with server id\"7\":Data should be a map|Object Type demands ALL keywords: [objectType]"})json");
}

TEST_F(EditEvaluation, EveryFaultOfARequestIsTold) {
    loadRulesAndDataModel(kRulesForAnotherType);
    // The document lists the sections against the order in which they are read.
    EXPECT_EQ(
        edit(R"json({"manualLinkAncestors":{"9":{"attrs":{}}},"membersOfFamily":{"7":5}})json"),
        R"json({"Result":"Failure","ResultComment":"Members of familyMember with server id\"7\":Data should be a map|Manual Link AncestorsMember with server id\"9\":Unknown keyword \"attrs\"|Object Type demands ALL keywords: [objectType]|Initial Attributes demands ALL keywords: [initialAttributes]"})json");
}

// --- The stores are only read ------------------------------------------------

TEST_F(EditEvaluation, ARequestLeavesTheStoresAsTheyWere) {
    loadRulesAndDataModel(kSpinupOnRelease);
    const std::string violation =
        R"json({"Result":"Failure","ResultComment":"Conflict resolution violation detected: For Part: When Status transitions from \"<any>\" to \"Released\" then we MUST spinup"})json";
    const std::string approval = R"({"Result":"Success","ResultComment":"Edit attempt approved"})";

    EXPECT_EQ(edit(kReleaseRequest), violation);
    EXPECT_EQ(edit(kReleaseWithNewNumberRequest), approval);
    EXPECT_EQ(edit("not json"),
              R"({"Result":"Failure","ResultComment":"Json has fundamental parsing error"})");
    EXPECT_EQ(edit(kReleaseRequest), violation);
    EXPECT_EQ(edit(kReleaseWithNewNumberRequest), approval);

    EXPECT_TRUE(core.rules()->existAnyRules());
    EXPECT_TRUE(core.dmInfo()->existAnyInfo());
    EXPECT_EQ(core.dmInfo()->getOverwriteLabel(), "Overwrite");
}

TEST_F(EditEvaluation, AnObjectTypeThatNobodyKnowsOnlyMeetsRulesForAnyType) {
    loadRulesAndDataModel(R"json({"transitions":{
      "ALL":[{"attribute":"Status","fromValue":"In Work","toValue":["Released"]}],
      "Part":[{"attribute":"Status","fromValue":"In Work","toValue":["Checked"]}]}})json");
    EXPECT_EQ(
        edit(R"json({"objectType":"Gadget",
          "initialAttributes":{"Status":"In Work"},
          "targetAttributes":{"Status":"Checked"}})json"),
        R"json({"Result":"Failure","ResultComment":"Transition violation detected: For <any>: Status can transition from \"In Work\" to \"Released\""})json");
    EXPECT_EQ(edit(R"json({"objectType":"Gadget",
          "initialAttributes":{"Status":"In Work"},
          "targetAttributes":{"Status":"Released"}})json"),
              R"({"Result":"Success","ResultComment":"Edit attempt approved"})");
}

}  // namespace
