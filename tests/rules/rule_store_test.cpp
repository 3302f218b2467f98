#include <string>
#include <vector>

#include "test_support.h"
#include "tov/TOVConflictResolution.h"
#include "tov/TOVFileConstraint.h"
#include "tov/TOVHistoryLink.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVManualLink.h"
#include "tov/TOVResponse.h"
#include "tov/TOVTransition.h"
#include "tov/TOVTransitionFreeze.h"
#include "tov/TOVTrigger.h"
#include "tov/TOVVersioningSelection.h"
#include "tov/TOV_DMAttribute.h"
#include "tov/TOV_DMStructure.h"
#include "tov/TOV_DMStructureObject.h"
#include "tov/entry_points.h"
#include "tov/rule_kinds.h"
#include "tov/vocabulary.h"

namespace {

using tovtest::captureConsole;
using tovtest::PrivateCore;

// A data model with one RLI type, one DMITEM type, sorted for lookups.
TOV_DMStructure makeStructure() {
    TOV_DMStructure structure;
    structure.appendDMStructureObject(
        TOV_DMStructureObject("Drawing", "RLI", {TOV_DMAttribute("A", "REGULAR", true)}));
    structure.appendDMStructureObject(
        TOV_DMStructureObject("Part", "DMITEM", {TOV_DMAttribute("A", "REGULAR", true)}));
    structure.sortAllDMInfo();
    return structure;
}

TOVTransition transitionRule(const std::string& objectType, const std::string& attribute) {
    return TOVTransition(objectType, attribute, "X", {"Y"});
}

size_t countTransitions(const TOVLifecycleBusinessRules& store, const std::string& objectType,
                        const std::vector<std::string>& attributes,
                        const TOV_DMStructure* structure) {
    std::vector<const TOVTransition*> related;
    store.getRelatedTransitionRules(objectType, attributes, structure, related);
    return related.size();
}

TEST(RuleStore, StartsEmptyAndClears) {
    TOVLifecycleBusinessRules store;
    EXPECT_FALSE(store.existAnyRules());
    store.appendNewTransitionRule(transitionRule("Part", "A"));
    EXPECT_TRUE(store.existAnyRules());
    store.clearAllRules();
    EXPECT_FALSE(store.existAnyRules());
}

TEST(RuleStore, AnyKindOfRuleCountsAsLoaded) {
    TOVLifecycleBusinessRules store;
    store.appendNewVersioningAttrSelectionRule(
        TOVVersioningSelection("Part", "A", {"x"}, {"Revision"}));
    EXPECT_TRUE(store.existAnyRules());

    TOVLifecycleBusinessRules triggersOnly;
    triggersOnly.appendNewTriggerRule(TOVTrigger("Part", "A", "B", "v"));
    EXPECT_TRUE(triggersOnly.existAnyRules());

    TOVLifecycleBusinessRules manualOnly;
    manualOnly.appendNewManualLinkRule(TOVManualLink("Part", "A", "X", "Y", {"Z"}));
    EXPECT_TRUE(manualOnly.existAnyRules());
}

TEST(RuleStore, AnyObjectTypeMatchesEveryAskedTypeButAttributesMatchExactly) {
    const TOV_DMStructure structure = makeStructure();
    TOVLifecycleBusinessRules store;
    store.appendNewTransitionRule(transitionRule("<any>", "A"));
    EXPECT_EQ(countTransitions(store, "Part", {"A"}, &structure), 1u);
    EXPECT_EQ(countTransitions(store, "Unknown", {"A"}, &structure), 1u);
    EXPECT_EQ(countTransitions(store, "Part", {"a"}, &structure), 0u);
}

TEST(RuleStore, ObjectTypeIgnoresCaseWhileAttributeKeepsIt) {
    const TOV_DMStructure structure = makeStructure();
    TOVLifecycleBusinessRules store;
    store.appendNewTransitionRule(transitionRule("Assembly", "Status"));
    EXPECT_EQ(countTransitions(store, "assembly", {"Status"}, &structure), 1u);
    EXPECT_EQ(countTransitions(store, "assembly", {"status"}, &structure), 0u);
}

TEST(RuleStore, AskedAnyMatchesEveryRule) {
    const TOV_DMStructure structure = makeStructure();
    TOVLifecycleBusinessRules store;
    store.appendNewTransitionRule(transitionRule("Part", "A"));
    store.appendNewTransitionRule(transitionRule("Drawing", "A"));
    EXPECT_EQ(countTransitions(store, "<any>", {"A"}, &structure), 2u);
}

TEST(RuleStore, AnyAttributeIsNoWildcard) {
    const TOV_DMStructure structure = makeStructure();
    TOVLifecycleBusinessRules store;
    store.appendNewTransitionRule(transitionRule("Part", "<any>"));
    EXPECT_EQ(countTransitions(store, "Part", {"A"}, &structure), 0u);
    EXPECT_EQ(countTransitions(store, "Part", {"<any>"}, &structure), 1u);
}

TEST(RuleStore, LibraryItemMatchesOnlyRliTypes) {
    const TOV_DMStructure structure = makeStructure();
    TOVLifecycleBusinessRules store;
    store.appendNewTransitionRule(transitionRule("Library_Item", "A"));
    EXPECT_EQ(countTransitions(store, "Drawing", {"A"}, &structure), 1u);
    EXPECT_EQ(countTransitions(store, "Part", {"A"}, &structure), 0u);
    EXPECT_EQ(countTransitions(store, "Unknown", {"A"}, &structure), 0u);
    EXPECT_EQ(countTransitions(store, "library_item", {"A"}, &structure), 1u);
}

TEST(RuleStore, WithoutDataModelOnlyEqualityAndWildcardMatch) {
    const TOV_DMStructure empty;
    TOVLifecycleBusinessRules store;
    store.appendNewTransitionRule(transitionRule("Library_Item", "A"));
    EXPECT_EQ(countTransitions(store, "Drawing", {"A"}, &empty), 0u);
    EXPECT_EQ(countTransitions(store, "LIBRARY_ITEM", {"A"}, &empty), 1u);
}

TEST(RuleStore, EmptyAttributeListSelectsNothing) {
    const TOV_DMStructure structure = makeStructure();
    TOVLifecycleBusinessRules store;
    store.appendNewTransitionRule(transitionRule("<any>", "A"));
    std::vector<const TOVTransition*> related;
    EXPECT_FALSE(store.getRelatedTransitionRules("Part", {}, &structure, related));
    EXPECT_TRUE(related.empty());
}

TEST(RuleStore, PlainLookupsOfEveryKindSelectByTypeAndAttribute) {
    const TOV_DMStructure structure = makeStructure();
    TOVLifecycleBusinessRules store;
    store.appendNewTransitionFreezeRule(TOVTransitionFreeze("Part", "A", "C", "v"));
    store.appendNewTriggerRule(TOVTrigger("Part", "A", "B", "v"));
    store.appendNewFileConstraintRule(TOVFileConstraint("Part", "A", "X", "Y", "MANDATORY"));
    store.appendNewConflictResolutionRule(
        TOVConflictResolution("Part", "A", "X", "Y", "YES", "spinup", false));

    std::vector<const TOVTransitionFreeze*> freezes;
    EXPECT_TRUE(store.getRelatedTransitionFreezeRules("part", {"B", "A"}, &structure, freezes));
    EXPECT_EQ(freezes.size(), 1u);
    std::vector<const TOVTrigger*> triggers;
    EXPECT_TRUE(store.getRelatedTriggerRules("Part", {"A"}, &structure, triggers));
    EXPECT_FALSE(store.getRelatedTriggerRules("Drawing", {"A"}, &structure, triggers));
    EXPECT_EQ(triggers.size(), 1u);
    std::vector<const TOVFileConstraint*> files;
    EXPECT_TRUE(store.getRelatedFileConstraintRules("Part", {"A"}, &structure, files));
    EXPECT_EQ(files.size(), 1u);
    std::vector<const TOVConflictResolution*> resolutions;
    EXPECT_FALSE(store.getRelatedConflictResolutionRules("Part", {"B"}, &structure, resolutions));
    EXPECT_TRUE(store.getRelatedConflictResolutionRules("Part", {"A"}, &structure, resolutions));
    EXPECT_EQ(resolutions.size(), 1u);
}

TEST(RuleStore, LookupAppendsAndReportsOnlyItsOwnFinds) {
    const TOV_DMStructure structure = makeStructure();
    TOVLifecycleBusinessRules store;
    store.appendNewTransitionRule(transitionRule("Part", "A"));
    std::vector<const TOVTransition*> related;
    EXPECT_TRUE(store.getRelatedTransitionRules("Part", {"A"}, &structure, related));
    EXPECT_TRUE(store.getRelatedTransitionRules("Part", {"A"}, &structure, related));
    ASSERT_EQ(related.size(), 2u);
    EXPECT_EQ(related[0], related[1]);
    EXPECT_FALSE(store.getRelatedTransitionRules("Part", {"B"}, &structure, related));
    EXPECT_EQ(related.size(), 2u);
}

// The exact lookup of link rules, seen through one history rule on A.
class RuleStoreLinkLookup : public ::testing::Test {
protected:
    bool selects(const std::string& ruleToValue, const AttributesMap& fromValues,
                 const AttributesMap& toValues) {
        TOVLifecycleBusinessRules store;
        store.appendNewHistoryLinkRule(TOVHistoryLink("Part", "A", "Q", ruleToValue, {"ok"}));
        std::vector<const TOVHistoryLink*> related;
        return store.getRelatedHistoryLinkRulesExact("Part", {"A"}, fromValues, toValues,
                                                     &structure, related, core.logger());
    }

    TOV_DMStructure structure = makeStructure();
    PrivateCore core;
};

TEST_F(RuleStoreLinkLookup, TargetValueIgnoresCase) {
    EXPECT_TRUE(selects("X", {}, {{"A", "x"}}));
}

TEST_F(RuleStoreLinkLookup, FallsBackOnInitialPacket) {
    EXPECT_TRUE(selects("X", {{"A", "X"}}, {{"B", "other"}}));
    EXPECT_FALSE(selects("X", {{"A", "Z"}}, {{"B", "other"}}));
}

TEST_F(RuleStoreLinkLookup, NeitherPacketGivesTheEmptyValue) {
    EXPECT_FALSE(selects("X", {}, {}));
    EXPECT_TRUE(selects("<any>", {}, {}));
    EXPECT_TRUE(selects("", {}, {}));
}

TEST_F(RuleStoreLinkLookup, TargetKeyIsNeverOverruledByInitialPacket) {
    EXPECT_FALSE(selects("X", {{"A", "X"}}, {{"A", "Z"}}));
}

TEST_F(RuleStoreLinkLookup, AnyInPacketMatchesEveryToValue) {
    EXPECT_TRUE(selects("X", {}, {{"A", "<ANY>"}}));
}

TEST(RuleStore, HistoryLookupLogsCountIncludingEarlierContents) {
    const TOV_DMStructure structure = makeStructure();
    PrivateCore core;
    TOVLifecycleBusinessRules store;
    store.appendNewHistoryLinkRule(TOVHistoryLink("Part", "A", "Q", "X", {"ok"}));
    std::vector<const TOVHistoryLink*> related;
    const AttributesMap toValues = {{"A", "X"}, {"B", "2"}};
    const std::string first = captureConsole(core.logger(), [&] {
        store.getRelatedHistoryLinkRulesExact("Part", {"A", "B"}, {}, toValues, &structure, related,
                                              core.logger());
    });
    EXPECT_EQ(first,
              "*******HISTORY RULES LOOKUP********\nPart edits [A,B].All target values={A:X, B:2}"
              "..... I found 1 related rules.\n");
    const std::string second = captureConsole(core.logger(), [&] {
        store.getRelatedHistoryLinkRulesExact("Part", {"A", "B"}, {}, toValues, &structure, related,
                                              core.logger());
    });
    EXPECT_EQ(second,
              "*******HISTORY RULES LOOKUP********\nPart edits [A,B].All target values={A:X, B:2}"
              "..... I found 2 related rules.\n");
    EXPECT_EQ(related.size(), 2u);
}

TEST(RuleStore, ManualLookupLogsAlsoWhenItFindsNothing) {
    const TOV_DMStructure structure = makeStructure();
    PrivateCore core;
    TOVLifecycleBusinessRules store;
    std::vector<const TOVManualLink*> related;
    bool found = true;
    const std::string printed = captureConsole(core.logger(), [&] {
        found = store.getRelatedManualLinkRulesExact("Part", {}, {}, {}, &structure, related,
                                                     core.logger());
    });
    EXPECT_FALSE(found);
    EXPECT_EQ(printed,
              "*******MANUAL RULES LOOKUP********\nPart edits .All target values={}..... I found "
              "0 related rules.\n");
}

TEST(RuleStore, ExactLookupsWithoutLoggerStillSelect) {
    const TOV_DMStructure structure = makeStructure();
    TOVLifecycleBusinessRules store;
    store.appendNewHistoryLinkRule(TOVHistoryLink("Part", "A", "Q", "X", {"ok"}));
    store.appendNewManualLinkRule(TOVManualLink("Part", "A", "Q", "X", {"ok"}));
    std::vector<const TOVHistoryLink*> history;
    std::vector<const TOVManualLink*> manual;
    EXPECT_TRUE(store.getRelatedHistoryLinkRulesExact("Part", {"A"}, {}, {{"A", "X"}}, &structure,
                                                      history, nullptr));
    EXPECT_TRUE(store.getRelatedManualLinkRulesExact("Part", {"A"}, {}, {{"A", "X"}}, &structure,
                                                     manual, nullptr));
    EXPECT_EQ(history.size(), 1u);
    EXPECT_EQ(manual.size(), 1u);
}

TEST(RuleStore, ManualLookupSelectsLikeHistoryLookup) {
    const TOV_DMStructure structure = makeStructure();
    PrivateCore core;
    TOVLifecycleBusinessRules store;
    store.appendNewManualLinkRule(TOVManualLink("<any>", "A", "Q", "X", {"ok"}));
    store.appendNewManualLinkRule(TOVManualLink("Part", "A", "Q", "Y", {"ok"}));
    std::vector<const TOVManualLink*> related;
    EXPECT_TRUE(store.getRelatedManualLinkRulesExact("Part", {"A"}, {}, {{"A", "x"}}, &structure,
                                                     related, core.logger()));
    EXPECT_EQ(related.size(), 1u);
}

TEST(RuleStore, PrintsEveryHeadingInOrderWhenEmpty) {
    PrivateCore core;
    const TOVLifecycleBusinessRules store;
    const std::string printed =
        captureConsole(core.logger(), [&] { store.printContentsDBG(core.logger()); });
    EXPECT_EQ(printed,
              "----------------TRANSITIONS FREEZE RULES--------------\n"
              "---------------HISTORY LINKS RULES ------------------\n"
              "---------------MANUAL LINKS RULES ------------------\n"
              "---------------TRANSITION RULES ------------------\n"
              "---------------  TRIGGER RULES ------------------\n"
              "--------VERSIONING ATTRIBUTES SELECTION RULES--------\n"
              "---------------CONFLICTS RESOLUTIONS RULES---------------\n"
              "----------------------FILE CONSTRAINTS----------------\n");
}

TEST(RuleStore, SettersReplaceWholeLists) {
    const TOV_DMStructure structure = makeStructure();
    TOVLifecycleBusinessRules store;
    store.appendNewTransitionRule(transitionRule("Part", "A"));
    store.setTransitions({transitionRule("Part", "B"), transitionRule("Part", "C")});
    EXPECT_EQ(countTransitions(store, "Part", {"A"}, &structure), 0u);
    EXPECT_EQ(countTransitions(store, "Part", {"B", "C"}, &structure), 2u);
    store.setTransitions({});
    EXPECT_FALSE(store.existAnyRules());
}

// A load reserves what a section lists: rules already held stay, and rules
// appended within the reservation never move the ones before them.
TEST(RuleStore, ReservingKeepsRulesAndAppendsInPlace) {
    const TOV_DMStructure structure = makeStructure();
    TOVLifecycleBusinessRules store;
    store.appendNewTransitionRule(transitionRule("Part", "A"));
    store.reserveRules<TOVTransition>(3);
    store.reserveRules<TOVTrigger>(2);
    std::vector<const TOVTransition*> before;
    store.getRelatedTransitionRules("Part", {"A"}, &structure, before);
    ASSERT_EQ(before.size(), 1u);
    store.appendNewTransitionRule(transitionRule("Part", "B"));
    store.appendNewTransitionRule(transitionRule("Part", "C"));
    store.appendNewTransitionRule(transitionRule("<any>", "A"));
    std::vector<const TOVTransition*> after;
    store.getRelatedTransitionRules("Part", {"A"}, &structure, after);
    ASSERT_EQ(after.size(), 2u);
    EXPECT_EQ(after[0], before[0]);
    EXPECT_EQ(countTransitions(store, "part", {"A", "B", "C"}, &structure), 4u);
}

TEST(RuleStore, CopiesAreDeep) {
    const TOV_DMStructure structure = makeStructure();
    TOVLifecycleBusinessRules store;
    store.appendNewTransitionRule(transitionRule("Part", "A"));
    const TOVLifecycleBusinessRules copy = store;
    store.clearAllRules();
    EXPECT_EQ(countTransitions(copy, "Part", {"A"}, &structure), 1u);
}

TEST(RuleStore, AnAssignedStoreHoldsCopiesOfTheOthersRules) {
    const TOV_DMStructure structure = makeStructure();
    TOVLifecycleBusinessRules store;
    store.appendNewTransitionRule(transitionRule("Part", "A"));
    TOVLifecycleBusinessRules assigned;
    assigned.appendNewTriggerRule(TOVTrigger("Part", "A", "B", "v"));
    assigned = store;
    store.clearAllRules();
    EXPECT_EQ(countTransitions(assigned, "Part", {"A"}, &structure), 1u);
    EXPECT_EQ(assigned.countRules(TOVRuleKind_Trigger), 0u);
}

// The place of each rule in its section of the document, in the order in which
// the rules are judged: the same rule carries its number through the sort.
TEST(RuleStore, EveryRuleKeepsItsPlaceInItsSectionOfTheDocument) {
    PrivateCore core;
    const TOVResponse load = InitializeTOVRules(R"({
      "transitions": {
        "Part": [{"attribute": "Status", "fromValue": "W", "toValue": ["R"]},
                 {"attribute": "Status", "fromValue": "B", "toValue": ["R"]}],
        "ALL": [{"attribute": "Owner", "fromValue": "x", "toValue": ["y"]}]
      },
      "triggers": {"Part": [{"attribute": "Status", "triggerInitialize": "Owner",
                             "initializationValue": "v"}]}
    })",
                                                core.get());
    ASSERT_TRUE(load.getGeneralResult()) << load.getGeneralResultComment();
    const TOVLifecycleBusinessRules& store = *core.rules();
    ASSERT_EQ(store.countRules(TOVRuleKind_Transition), 3u);
    std::vector<std::string> judged;
    for (const auto& sentence : store.expressRulesInWords()) {
        judged.push_back(sentence.second);
    }
    // Sorted by object type (the shorter first), then by from value.
    EXPECT_EQ(judged,
              (std::vector<std::string>{"For Part: Status can transition from \"B\" to \"R\"",
                                        "For Part: Status can transition from \"W\" to \"R\"",
                                        "For <any>: Owner can transition from \"x\" to \"y\""}));
    EXPECT_EQ(store.documentPositionOfRule(TOVRuleKind_Transition, 0), 1u);
    EXPECT_EQ(store.documentPositionOfRule(TOVRuleKind_Transition, 1), 0u);
    EXPECT_EQ(store.documentPositionOfRule(TOVRuleKind_Transition, 2), 2u);
    EXPECT_EQ(store.countRules(TOVRuleKind_Trigger), 1u);
    EXPECT_EQ(store.documentPositionOfRule(TOVRuleKind_Trigger, 0), 0u);
    EXPECT_EQ(store.countRules(TOVRuleKind_ManualLink), 0u);
    EXPECT_EQ(store.documentPositionOfRule(TOVRuleKind_Transition, 3), SIZE_MAX);
    EXPECT_EQ(store.documentPositionOfRule(TOVRuleKind_ManualLink, 0), SIZE_MAX);

    const TOVLifecycleBusinessRules copy = store;
    EXPECT_EQ(copy.documentPositionOfRule(TOVRuleKind_Transition, 0), 1u);
}

TEST(RuleStore, ARuleListSetWholeIsNumberedByItsPlaceInIt) {
    TOVLifecycleBusinessRules store;
    store.setTransitions({transitionRule("Part", "B"), transitionRule("Part", "A")});
    store.appendNewTransitionRule(transitionRule("Doc", "C"));
    store.sortAllRules();
    // "Doc" before "Part", and Part's rules by attribute.
    EXPECT_EQ(store.documentPositionOfRule(TOVRuleKind_Transition, 0), 2u);
    EXPECT_EQ(store.documentPositionOfRule(TOVRuleKind_Transition, 1), 1u);
    EXPECT_EQ(store.documentPositionOfRule(TOVRuleKind_Transition, 2), 0u);
    store.clearAllRules();
    EXPECT_EQ(store.countRules(TOVRuleKind_Transition), 0u);
}

}  // namespace
