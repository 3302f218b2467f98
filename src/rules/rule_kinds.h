// The one table of the rule kinds: for each kind its section, the name its
// messages give a rule, its label and print heading, the order in which a
// load reads it, and the members of its rule objects, each keyword spelled
// once. The section parsers, the store's walk over its lists and, through
// GetTOVRuleKinds(), the tools read it; the rule class of each kind is named
// here too, so that code can go from a kind to its class and back.
#ifndef TOV_RULES_RULE_KINDS_H_
#define TOV_RULES_RULE_KINDS_H_

#include <array>
#include <cstddef>
#include <type_traits>

#include "tov/rule_kinds.h"

class TOVConflictResolution;
class TOVFileConstraint;
class TOVHistoryLink;
class TOVManualLink;
class TOVTransition;
class TOVTransitionFreeze;
class TOVTrigger;
class TOVVersioningSelection;

namespace rulekinds {

// The member keywords of rule objects. "attribute", "fromValue" and "toValue"
// are shared by most kinds.
inline constexpr const char* kAttribute = "attribute";
inline constexpr const char* kFromValue = "fromValue";
inline constexpr const char* kToValue = "toValue";
inline constexpr const char* kAllowJumps = "allowJumps";
inline constexpr const char* kAllowReverse = "allowReverse";
inline constexpr const char* kFreezeConditionAttribute = "freezeConditionAttribute";
inline constexpr const char* kFreezeConditionValue = "freezeConditionValue";
inline constexpr const char* kUpdateFile = "updateFile";
inline constexpr const char* kUpdatesFile = "updatesFile";
inline constexpr const char* kConflictResolution = "conflictResolution";
inline constexpr const char* kHasDifferentPrimaries = "hasDifferentPrimaries";
inline constexpr const char* kConditionAttribute1 = "conditionAttribute1";
inline constexpr const char* kConditionValue1 = "conditionValue1";
inline constexpr const char* kConditionAttribute2 = "conditionAttribute2";
inline constexpr const char* kConditionValue2 = "conditionValue2";
inline constexpr const char* kVersioningOption = "versioningOption";
inline constexpr const char* kAcceptableHistoryLinkValues = "acceptableHistoryLinkValues";
inline constexpr const char* kAcceptableManualLinkValues = "acceptableManualLinkValues";
inline constexpr const char* kTriggerInitialize = "triggerInitialize";
inline constexpr const char* kInitializationValue = "initializationValue";

// The member lists of the table, in the order of the rules schema.
inline constexpr std::array<const char*, 3> kFreezeMembers = {kAttribute, kFreezeConditionAttribute,
                                                              kFreezeConditionValue};
inline constexpr std::array<const char*, 2> kFreezeAttributeMembers = {kAttribute,
                                                                       kFreezeConditionAttribute};
inline constexpr std::array<const char*, 4> kHistoryLinkMembers = {kAttribute, kFromValue, kToValue,
                                                                   kAcceptableHistoryLinkValues};
inline constexpr std::array<const char*, 4> kManualLinkMembers = {kAttribute, kFromValue, kToValue,
                                                                  kAcceptableManualLinkValues};
inline constexpr std::array<const char*, 5> kTransitionMembers = {kAttribute, kFromValue, kToValue,
                                                                  kAllowJumps, kAllowReverse};
inline constexpr std::array<const char*, 3> kTriggerMembers = {kAttribute, kTriggerInitialize,
                                                               kInitializationValue};
inline constexpr std::array<const char*, 2> kTriggerAttributeMembers = {kAttribute,
                                                                        kTriggerInitialize};
inline constexpr std::array<const char*, 5> kVersioningSelectionMembers = {
    kConditionAttribute1, kConditionValue1, kConditionAttribute2, kConditionValue2,
    kVersioningOption};
inline constexpr std::array<const char*, 2> kVersioningSelectionAttributeMembers = {
    kConditionAttribute1, kConditionAttribute2};
inline constexpr std::array<const char*, 6> kConflictResolutionMembers = {
    kAttribute, kFromValue, kToValue, kUpdatesFile, kConflictResolution, kHasDifferentPrimaries};
inline constexpr std::array<const char*, 4> kFileConstraintMembers = {kAttribute, kFromValue,
                                                                      kToValue, kUpdateFile};
inline constexpr std::array<const char*, 1> kAttributeOnly = {kAttribute};

template <std::size_t Count>
constexpr TOVWordList listOf(const std::array<const char*, Count>& words) {
    return {words.data(), Count};
}

// Indexed by TOVRuleKind, so in the order of the store's lists.
inline constexpr std::array<TOVRuleKindWords, TOVRuleKindCount> kRuleKinds = {{
    {TOVRuleKind_TransitionFreeze, "transitionsFreeze", "Transition Freeze rule",
     "transition freeze", "----------------TRANSITIONS FREEZE RULES--------------", 2,
     listOf(kFreezeMembers), listOf(kFreezeAttributeMembers)},
    {TOVRuleKind_HistoryLink, "historyLinks", "History Link rule", "history link",
     "---------------HISTORY LINKS RULES ------------------", 6, listOf(kHistoryLinkMembers),
     listOf(kAttributeOnly)},
    {TOVRuleKind_ManualLink, "manualLinks", "Manual Link rule", "manual link",
     "---------------MANUAL LINKS RULES ------------------", 7, listOf(kManualLinkMembers),
     listOf(kAttributeOnly)},
    {TOVRuleKind_Transition, "transitions", "Transition rule", "transition",
     "---------------TRANSITION RULES ------------------", 1, listOf(kTransitionMembers),
     listOf(kAttributeOnly)},
    {TOVRuleKind_Trigger, "triggers", "Triggers rule", "trigger",
     "---------------  TRIGGER RULES ------------------", 0, listOf(kTriggerMembers),
     listOf(kTriggerAttributeMembers)},
    {TOVRuleKind_VersioningSelection, "versioningSelections", "Versioning Selection rule",
     "versioning selection", "--------VERSIONING ATTRIBUTES SELECTION RULES--------", 5,
     listOf(kVersioningSelectionMembers), listOf(kVersioningSelectionAttributeMembers)},
    {TOVRuleKind_ConflictResolution, "conflictResolutions", "Conflict Resolution rule",
     "conflict resolution", "---------------CONFLICTS RESOLUTIONS RULES---------------", 4,
     listOf(kConflictResolutionMembers), listOf(kAttributeOnly)},
    {TOVRuleKind_FileConstraint, "fileConstraints", "File Constraint rule", "file constraint",
     "----------------------FILE CONSTRAINTS----------------", 3, listOf(kFileConstraintMembers),
     listOf(kAttributeOnly)},
}};

constexpr const TOVRuleKindWords& wordsOf(TOVRuleKind kind) {
    return kRuleKinds[static_cast<std::size_t>(kind)];
}

// Each entry stands at its kind's index, and the reading positions are the
// numbers 0 to 7, each once.
constexpr bool tableIsWhole() {
    std::size_t positionsSeen = 0;
    for (std::size_t i = 0; i < kRuleKinds.size(); ++i) {
        if (static_cast<std::size_t>(kRuleKinds[i].kind) != i ||
            kRuleKinds[i].readingPosition >= kRuleKinds.size()) {
            return false;
        }
        positionsSeen |= std::size_t{1} << kRuleKinds[i].readingPosition;
    }
    return positionsSeen == (std::size_t{1} << kRuleKinds.size()) - 1;
}
static_assert(tableIsWhole(), "every kind once, at its index, with its own reading position");

// The kind that a load reads at `position`.
constexpr TOVRuleKind kindReadAt(std::size_t position) {
    for (const TOVRuleKindWords& words : kRuleKinds) {
        if (words.readingPosition == position) {
            return words.kind;
        }
    }
    return TOVRuleKind_TransitionFreeze;  // never reached: the table is whole
}

// The rule class of each kind.
template <TOVRuleKind Kind>
struct RuleClass;
template <>
struct RuleClass<TOVRuleKind_TransitionFreeze> {
    using type = TOVTransitionFreeze;
};
template <>
struct RuleClass<TOVRuleKind_HistoryLink> {
    using type = TOVHistoryLink;
};
template <>
struct RuleClass<TOVRuleKind_ManualLink> {
    using type = TOVManualLink;
};
template <>
struct RuleClass<TOVRuleKind_Transition> {
    using type = TOVTransition;
};
template <>
struct RuleClass<TOVRuleKind_Trigger> {
    using type = TOVTrigger;
};
template <>
struct RuleClass<TOVRuleKind_VersioningSelection> {
    using type = TOVVersioningSelection;
};
template <>
struct RuleClass<TOVRuleKind_ConflictResolution> {
    using type = TOVConflictResolution;
};
template <>
struct RuleClass<TOVRuleKind_FileConstraint> {
    using type = TOVFileConstraint;
};

template <std::size_t Index>
using RuleAt = typename RuleClass<static_cast<TOVRuleKind>(Index)>::type;

// The kind of a rule class.
template <typename Rule, std::size_t Index = 0>
constexpr TOVRuleKind kindOf() {
    static_assert(Index < TOVRuleKindCount, "a rule class of no kind");
    if constexpr (std::is_same_v<Rule, RuleAt<Index>>) {
        return static_cast<TOVRuleKind>(Index);
    } else {
        return kindOf<Rule, Index + 1>();
    }
}

}  // namespace rulekinds

#endif  // TOV_RULES_RULE_KINDS_H_
