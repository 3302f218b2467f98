// The order of judgement that help texts, the README and tov explain tell,
// held to the library's answers: of two rules that both object to one edit,
// the one of the kind judged first is the one that refuses it.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "judging_order.h"
#include "tov/TOVEngine.h"

namespace {

const char* const kDataModel = R"({"OverwriteLabel": "Overwrite", "structureObjects": [
  {"name": "Part", "dmObjectType": "DMITEM", "attributes": [
    {"name": "Number", "type": "REGULAR", "primary": true},
    {"name": "Revision", "type": "VERSIONING", "primary": true},
    {"name": "Status", "type": "REGULAR", "primary": false},
    {"name": "Owner", "type": "REGULAR", "primary": false}]}]})";

// The edit that every rule below objects to: Status from "In Work" to
// "Released" while Owner is "x", as an edit (no upload) and an overwrite.
const char* const kEdit = R"({"objectType": "Part",
  "initialAttributes": {"Status": "In Work", "Owner": "x"},
  "targetAttributes": {"Status": "Released"}})";

// For each kind that can refuse, its section with one rule that objects to
// the edit, and how its refusal opens.
struct Objection {
    const char* section;
    const char* opening;
};

const std::map<TOVRuleKind, Objection> kObjections = {
    {TOVRuleKind_TransitionFreeze,
     {R"("transitionsFreeze": {"Part": [{"attribute": "Status",
         "freezeConditionAttribute": "Owner", "freezeConditionValue": "x"}]})",
      "Transition freeze violation detected: "}},
    {TOVRuleKind_Transition,
     {R"("transitions": {"Part": [{"attribute": "Status", "fromValue": "In Work",
         "toValue": ["In Work"]}]})",
      "Transition violation detected: "}},
    {TOVRuleKind_FileConstraint,
     {R"("fileConstraints": {"Part": [{"attribute": "Status", "fromValue": "In Work",
         "toValue": "Released", "updateFile": "MANDATORY"}]})",
      "File constraint violation detected: "}},
    {TOVRuleKind_ConflictResolution,
     {R"("conflictResolutions": {"Part": [{"attribute": "Status", "fromValue": "In Work",
         "toValue": "Released", "updatesFile": "N_A", "conflictResolution": "spinup"}]})",
      "Conflict resolution violation detected: "}},
    {TOVRuleKind_HistoryLink,
     {R"("historyLinks": {"Part": [{"attribute": "Status", "fromValue": "<any>",
         "toValue": "Released", "acceptableHistoryLinkValues": ["Released"]}]})",
      "History Link violation detected."}},
    {TOVRuleKind_ManualLink,
     {R"("manualLinks": {"Part": [{"attribute": "Status", "fromValue": "<any>",
         "toValue": "Released", "acceptableManualLinkValues": ["Released"]}]})",
      "Manual Ancestor Link violation detected."}},
};

std::string commentOf(const std::string& rules, const char* kind) {
    TOVEngine engine;
    EXPECT_TRUE(engine.evaluate("datamodel", kDataModel).getGeneralResult());
    const TOVResponse loaded = engine.evaluate("rules", rules);
    EXPECT_TRUE(loaded.getGeneralResult()) << loaded.getGeneralResultComment();
    return engine.evaluate(kind, kEdit).getGeneralResultComment();
}

std::vector<TOVRuleKind> refusingKinds(const std::vector<tovcli::JudgingStep>& steps) {
    std::vector<TOVRuleKind> kinds;
    for (const tovcli::JudgingStep& step : steps) {
        if (step.isRuleKind && kObjections.count(step.kind) > 0) {
            kinds.push_back(step.kind);
        }
    }
    return kinds;
}

TEST(JudgingOrder, TheEditChainAsTold) {
    EXPECT_EQ(tovcli::stepsInWords(tovcli::editJudgingSteps()),
              "rules loaded; transition freeze; transition; file constraint; data model loaded; "
              "conflict resolution (not in the before-resolution flavours, nor when the edit "
              "moves the object to another family); history link (a missing family is asked "
              "for and the chain goes on); manual link; triggers of an approved attempt");
    EXPECT_EQ(refusingKinds(tovcli::editJudgingSteps()),
              (std::vector<TOVRuleKind>{TOVRuleKind_TransitionFreeze, TOVRuleKind_Transition,
                                        TOVRuleKind_FileConstraint, TOVRuleKind_ConflictResolution,
                                        TOVRuleKind_HistoryLink, TOVRuleKind_ManualLink}));
}

TEST(JudgingOrder, OfTwoObjectionsTheKindJudgedFirstRefuses) {
    const std::vector<TOVRuleKind> kinds = refusingKinds(tovcli::editJudgingSteps());
    for (std::size_t i = 0; i + 1 < kinds.size(); ++i) {
        const Objection& first = kObjections.at(kinds[i]);
        const Objection& second = kObjections.at(kinds[i + 1]);
        // Each order in the document, so that the order of reading cannot decide.
        for (const std::string& rules :
             {"{" + std::string(first.section) + "," + second.section + "}",
              "{" + std::string(second.section) + "," + first.section + "}"}) {
            const std::string comment = commentOf(rules, "edit");
            EXPECT_EQ(comment.rfind(first.opening, 0), 0U)
                << first.opening << " before " << second.opening << ": " << comment;
        }
    }
}

TEST(JudgingOrder, EachObjectionAloneRefuses) {
    for (const auto& objection : kObjections) {
        const std::string comment =
            commentOf("{" + std::string(objection.second.section) + "}", "edit");
        EXPECT_EQ(comment.rfind(objection.second.opening, 0), 0U) << comment;
    }
}

TEST(JudgingOrder, TheBeforeResolutionFlavoursLeaveConflictResolutionOut) {
    const std::string rules = "{" +
                              std::string(kObjections.at(TOVRuleKind_ConflictResolution).section) +
                              "," + kObjections.at(TOVRuleKind_HistoryLink).section + "}";
    EXPECT_EQ(commentOf(rules, "edit-before-resolution")
                  .rfind(kObjections.at(TOVRuleKind_HistoryLink).opening, 0),
              0U);
}

TEST(JudgingOrder, ExplainGroupsTheKindsAsTheyAreJudged) {
    EXPECT_EQ(tovcli::ruleKindsInJudgingOrder(),
              (std::vector<TOVRuleKind>{TOVRuleKind_TransitionFreeze, TOVRuleKind_Transition,
                                        TOVRuleKind_FileConstraint, TOVRuleKind_ConflictResolution,
                                        TOVRuleKind_HistoryLink, TOVRuleKind_ManualLink,
                                        TOVRuleKind_Trigger, TOVRuleKind_VersioningSelection}));
}

TEST(JudgingOrder, TheOtherRequests) {
    EXPECT_EQ(tovcli::stepsInWords(tovcli::linkCreationJudgingSteps()),
              "rules loaded; manual link (the descendant's rules, judging the ancestor)");
    EXPECT_EQ(tovcli::stepsInWords(tovcli::optionsJudgingSteps()),
              "rules loaded; data model loaded; conflict resolution (every rule is asked; "
              "forced overwrite and spin-up together are a contradiction); versioning selection "
              "(not when overwrite is forced)");
}

}  // namespace
