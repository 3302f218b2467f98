// The read-only walks that tools use to tell the loaded rules to people and to
// hold them against the data model.
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "test_support.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVTrigger.h"
#include "tov/entry_points.h"

namespace {

using tovtest::PrivateCore;

bool load(PrivateCore& core, const std::string& rules) {
    return InitializeTOVRules(rules, core.get()).getGeneralResult();
}

TEST(RulesInWords, EmptyStoreHasNoSentencesAndNoTriggers) {
    TOVLifecycleBusinessRules store;
    EXPECT_TRUE(store.expressRulesInWords().empty());
    EXPECT_TRUE(store.describeTriggerRules().empty());
}

TEST(RulesInWords, TriggersComeInStoreOrderWithAllReadAsAny) {
    PrivateCore core;
    ASSERT_TRUE(load(core, R"({"triggers":{
        "Part":[{"attribute":"Status","triggerInitialize":"Approver","initializationValue":""}],
        "ALL":[{"attribute":"Title","triggerInitialize":"Proper_Versioning_Attribute",
                "initializationValue":"A"}]}})"));

    const std::vector<TOVTriggerDescription> triggers = core.rules()->describeTriggerRules();
    ASSERT_EQ(triggers.size(), 2u);
    // Length first: "Part" sorts before "<any>".
    EXPECT_EQ(triggers[0].objectType, "Part");
    EXPECT_EQ(triggers[0].attribute, "Status");
    EXPECT_EQ(triggers[0].triggerInitialize, "Approver");
    EXPECT_EQ(triggers[0].initializationValue, "");
    EXPECT_EQ(triggers[1].objectType, "<any>");
    EXPECT_EQ(triggers[1].attribute, "Title");
    EXPECT_EQ(triggers[1].triggerInitialize, "Proper_Versioning_Attribute");
    EXPECT_EQ(triggers[1].initializationValue, "A");
}

TEST(RulesInWords, TriggersAreLeftOutOfTheSentences) {
    PrivateCore core;
    ASSERT_TRUE(load(core, R"({"triggers":{"Part":[
        {"attribute":"Status","triggerInitialize":"Approver","initializationValue":"x"}]}})"));
    EXPECT_TRUE(core.rules()->existAnyRules());
    EXPECT_TRUE(core.rules()->expressRulesInWords().empty());
    EXPECT_EQ(core.rules()->describeTriggerRules().size(), 1u);
}

TEST(RulesInWords, SentencesFollowTheOrderOfTheDebugPrintWithTheirKinds) {
    PrivateCore core;
    ASSERT_TRUE(load(core, R"({
        "fileConstraints":{"Part":[{"attribute":"Status","fromValue":"A","toValue":"B",
                                    "updateFile":"MANDATORY"}]},
        "transitions":{"Part":[{"attribute":"Status","fromValue":"A","toValue":["B"]}]},
        "transitionsFreeze":{"Part":[{"attribute":"Title","freezeConditionAttribute":"Status",
                                      "freezeConditionValue":"B"}]}})"));

    const std::vector<std::pair<std::string, std::string>> expected = {
        {"transition freeze",
         "For Part: When Status equals \"B\", then Title must remain unchanged."},
        {"transition", "For Part: Status can transition from \"A\" to \"B\""},
        {"file constraint",
         "For Part: When Status transitions from \"A\" to \"B\" we MUST upload a new "
         "representation file"},
    };
    EXPECT_EQ(core.rules()->expressRulesInWords(), expected);
}

TEST(RulesInWords, ObjectTypesOfAllKindsEachOnceWithAllReadAsAny) {
    PrivateCore core;
    ASSERT_TRUE(load(core, R"({
        "triggers":{"Part":[{"attribute":"S","triggerInitialize":"A","initializationValue":""}]},
        "transitions":{"Part":[{"attribute":"S","fromValue":"A","toValue":["B"]}],
                       "all":[{"attribute":"S","fromValue":"A","toValue":["B"]}]},
        "versioningSelections":{"Drawing":[{"conditionAttribute1":"S","conditionValue1":["A"],
                                            "versioningOption":["Revision"]}]},
        "manualLinks":{"Library_Item":[{"attribute":"S","fromValue":"A","toValue":"B",
                                        "acceptableManualLinkValues":["B"]}]}})"));
    const std::set<std::string> expected = {"<any>", "Drawing", "Library_Item", "Part"};
    EXPECT_EQ(core.rules()->collectObjectTypesOfRules(), expected);
}

TEST(RulesInWords, AnEmptyStoreNamesNoObjectType) {
    TOVLifecycleBusinessRules store;
    EXPECT_TRUE(store.collectObjectTypesOfRules().empty());
}

TEST(RulesInWords, AFailedLoadLeavesNothingToTell) {
    PrivateCore core;
    ASSERT_TRUE(load(core, R"({"triggers":{"Part":[
        {"attribute":"Status","triggerInitialize":"Approver","initializationValue":"x"}]}})"));
    EXPECT_FALSE(load(core, R"({"triggers":{"Part":[{"attribute":"Status"}]}})"));
    EXPECT_TRUE(core.rules()->describeTriggerRules().empty());
    EXPECT_TRUE(core.rules()->collectObjectTypesOfRules().empty());
}

}  // namespace
