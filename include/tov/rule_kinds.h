// The eight kinds of rule in words: the key of each kind's section in the
// rules document and the members of its rule objects, the name that the
// library's messages give one rule of it, and the words that tools tell it
// by. Plain data, the very words the library reads documents and prints rules
// with, so that a tool keeps no list of its own.
#ifndef TOV_RULE_KINDS_H_
#define TOV_RULE_KINDS_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "tov/export.h"

// In the order of the rule store's lists: the order of its debug print, of
// its words for tools and of `tov explain`.
enum TOVRuleKind : std::int32_t {
    TOVRuleKind_TransitionFreeze = 0,
    TOVRuleKind_HistoryLink = 1,
    TOVRuleKind_ManualLink = 2,
    TOVRuleKind_Transition = 3,
    TOVRuleKind_Trigger = 4,
    TOVRuleKind_VersioningSelection = 5,
    TOVRuleKind_ConflictResolution = 6,
    TOVRuleKind_FileConstraint = 7,
};

constexpr std::size_t TOVRuleKindCount = 8;

// A fixed list of words that a range-for can walk.
struct TOVWordList {
    const char* const* words;
    std::size_t count;

    const char* const* begin() const { return words; }
    const char* const* end() const { return words + count; }
};

struct TOVRuleKindWords {
    TOVRuleKind kind;
    const char* section;   // the key of the kind's section: "transitions"
    const char* ruleName;  // how messages name one rule of it: "Transition rule"
    const char* label;     // the kind in words: "transition"
    const char* heading;   // the heading of its list in the store's debug print
    // Where its section stands in the order in which a load reads the
    // sections, which is the order of the load's messages: 0 for the first.
    std::size_t readingPosition;
    TOVWordList members;  // every member that a rule object of the kind may have
    // The members whose value names an attribute of the rule's object type.
    TOVWordList attributeMembers;
};

// Every kind, indexed by TOVRuleKind.
TOV_API const std::array<TOVRuleKindWords, TOVRuleKindCount>& GetTOVRuleKinds();

#endif  // TOV_RULE_KINDS_H_
