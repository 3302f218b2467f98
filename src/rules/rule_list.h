// The rules of one kind, owned together with what the store keeps beside
// them: the index of their places by object type, and each rule's place in
// its section of the rules document. Every operation that changes the rules
// keeps both, so that neither is ever stale, and a copy of the list is whole.
//
// `Access` reads what the list needs of a rule and its class keeps private:
//   static (const) std::string(&) objectType(const Rule& rule);
//   static void appendSortKey(const Rule& rule, std::string& key);
// where keys compared as plain bytes order as the rules' operator< does, and
// may declare
//   static constexpr bool kKeysBeginWithObjectType = true;
// when every key begins with appendFoldedSortKey of the rule's object type,
// which lets the sort work group by group of the index.
#ifndef TOV_RULES_RULE_LIST_H_
#define TOV_RULES_RULE_LIST_H_

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

#include "dm/object_type_matching.h"
#include "foundation/compare.h"
#include "tov/TOV_DMStructure.h"
#include "tov/string_helpers.h"
#include "tov/vocabulary.h"

namespace rulelist {

// The wildcard words as the index files them; built on first use, so that no
// lookup can run before they exist.
inline const std::string& foldedAny() {
    static const std::string folded = foldedObjectType(TOVAttrItemValue_Any);
    return folded;
}
inline const std::string& foldedLibraryItem() {
    static const std::string folded = foldedObjectType(TOVAttrItemValue_Library_Item);
    return folded;
}

// Moves each rule, with its document position, to its place in one pass over
// the cycles of the permutation: `order[i]` is the position the rule at place
// i comes from. Marks visited places in `order` itself, so that no second
// list of rules is needed.
// Whether `Access` declares that its keys begin with the object type.
template <typename Access, typename = void>
struct KeysBeginWithObjectType : std::false_type {};
template <typename Access>
struct KeysBeginWithObjectType<Access, std::void_t<decltype(Access::kKeysBeginWithObjectType)>>
    : std::bool_constant<Access::kKeysBeginWithObjectType> {};

template <typename Rule>
void permuteInPlace(std::vector<Rule>& rules, std::vector<std::size_t>& documentPositions,
                    std::vector<std::size_t>& order) {
    const std::size_t done = rules.size();
    for (std::size_t start = 0; start < rules.size(); ++start) {
        if (order[start] == done) {
            continue;
        }
        if (order[start] == start) {
            // Already in place: moving it out and back would cost a move each way.
            order[start] = done;
            continue;
        }
        Rule carried = std::move(rules[start]);
        const std::size_t carriedPosition = documentPositions[start];
        std::size_t place = start;
        while (order[place] != start) {
            const std::size_t from = order[place];
            rules[place] = std::move(rules[from]);
            documentPositions[place] = documentPositions[from];
            order[place] = done;
            place = from;
        }
        rules[place] = std::move(carried);
        documentPositions[place] = carriedPosition;
        order[place] = done;
    }
}

}  // namespace rulelist

template <typename Rule, typename Access>
class RuleList {
public:
    using RuleType = Rule;

    const std::vector<Rule>& rules() const { return stored; }
    bool empty() const { return stored.empty(); }
    std::size_t size() const { return stored.size(); }

    // Where the rule at `index` stood in its section of the document: how many
    // rules were appended before it since the list was last emptied, or its
    // place in the list it was replaced by.
    std::size_t documentPosition(std::size_t index) const { return documentPositions[index]; }

    void append(const Rule& rule) { append(Rule(rule)); }
    void append(Rule&& rule) {
        // A section lists its rules under their object type, so a load appends
        // runs of one type: the group found for the rule before serves again.
        const std::string& objectType = Access::objectType(rule);
        if (lastAppended.group == nullptr || lastAppended.objectType != objectType) {
            lastAppended.group = &index[foldedObjectType(objectType)];
            lastAppended.objectType = objectType;
        }
        lastAppended.group->push_back(stored.size());
        documentPositions.push_back(stored.size());
        stored.push_back(std::move(rule));
    }

    void replace(const std::vector<Rule>& replacement) {
        stored = replacement;
        documentPositions.resize(stored.size());
        for (std::size_t position = 0; position < stored.size(); ++position) {
            documentPositions[position] = position;
        }
        reindex();
    }

    // Room for `additional` more rules, so that a load that knows how many it
    // reads never holds a large list twice while the list grows.
    void reserve(std::size_t additional) {
        stored.reserve(stored.size() + additional);
        documentPositions.reserve(documentPositions.size() + additional);
    }

    void clear() {
        stored.clear();
        documentPositions.clear();
        index.clear();
        lastAppended = {};
    }

    // Sorts as std::sort with the rules' operator< would. When no two rules
    // are equivalent that order is the only sorted one; if the keys begin
    // with the object type, it is found group by group of the index: the
    // groups in the order of their object types, the few rules of each by
    // their keys. Otherwise the ties must fall as std::sort lets them fall,
    // and the whole list is sorted the long way.
    void sort() {
        if constexpr (rulelist::KeysBeginWithObjectType<Access>::value) {
            std::vector<std::size_t> order;
            std::vector<std::vector<std::size_t>*> groups;
            if (orderWithoutTies(order, groups)) {
                rulelist::permuteInPlace(stored, documentPositions, order);
                // Each group now holds a run of places, in the order of the groups.
                std::size_t place = 0;
                for (std::vector<std::size_t>* group : groups) {
                    for (std::size_t& position : *group) {
                        position = place++;
                    }
                }
                lastAppended = {};
                return;
            }
        }
        sortWithTies();
    }

    // Appends to `related`, in stored order, each rule whose object type
    // matches `objectType` and that `holds` accepts. Only the groups that can
    // match are visited: the asked type's own, "<any>", and "Library_Item"
    // when the data model calls the asked type an RLI type. An asked type that
    // is itself a wildcard matches across groups, so it walks the whole list.
    // True when this call appended any.
    template <typename Holds>
    bool select(const std::string& objectType, const TOV_DMStructure* structure,
                std::vector<const Rule*>& related, Holds&& holds) const {
        bool found = false;
        const auto keep = [&](const Rule& rule) {
            if (holds(rule)) {
                related.push_back(&rule);
                found = true;
            }
        };
        const bool askedTypeIsWildcard =
            isThisTheReservedAnyValue(objectType) ||
            (structure != nullptr && equalsIgnoringCase(objectType, TOVAttrItemValue_Library_Item));
        if (askedTypeIsWildcard) {
            for (const Rule& rule : stored) {
                if (objectTypesMatch(structure, Access::objectType(rule), objectType)) {
                    keep(rule);
                }
            }
            return found;
        }

        std::array<const std::vector<std::size_t>*, 3> groups{};
        std::size_t groupCount = 0;
        const auto addGroup = [&](const std::string& foldedType) {
            const auto group = index.find(foldedType);
            if (group != index.end()) {
                groups[groupCount++] = &group->second;
            }
        };
        addGroup(foldedObjectType(objectType));
        addGroup(rulelist::foldedAny());
        if (structure != nullptr && structure->isThisAnRLIObjectType(objectType)) {
            addGroup(rulelist::foldedLibraryItem());
        }
        // Room for every rule of the groups at once, rather than growing the
        // list rule by rule while the rules are judged.
        std::size_t candidates = 0;
        for (std::size_t g = 0; g < groupCount; ++g) {
            candidates += groups[g]->size();
        }
        related.reserve(related.size() + candidates);
        // The groups are disjoint and each in stored order: merge them.
        std::array<std::size_t, 3> next{};
        for (;;) {
            std::size_t chosen = groupCount;
            for (std::size_t g = 0; g < groupCount; ++g) {
                if (next[g] < groups[g]->size() &&
                    (chosen == groupCount ||
                     (*groups[g])[next[g]] < (*groups[chosen])[next[chosen]])) {
                    chosen = g;
                }
            }
            if (chosen == groupCount) {
                return found;
            }
            keep(stored[(*groups[chosen])[next[chosen]++]]);
        }
    }

private:
    // The group that the last appended rule joined, and its object type as
    // written. Never copied: it points into this list's own index.
    struct LastAppended {
        LastAppended() = default;
        LastAppended(const LastAppended& /*other*/) {}
        LastAppended& operator=(const LastAppended& other) {
            if (this != &other) {
                group = nullptr;
            }
            return *this;
        }
        std::string objectType;
        std::vector<std::size_t>* group = nullptr;
    };

    // Fills `order` (`order[i]` is the place of the rule that goes to place
    // i) and `groups` (the index's groups in the order of their object types),
    // or returns false when two rules are equivalent. Rules of one group share
    // their object type's part of the key, so their keys order them; those of
    // different groups never tie.
    bool orderWithoutTies(std::vector<std::size_t>& order,
                          std::vector<std::vector<std::size_t>*>& groups) {
        struct Group {
            std::string typeKey;
            std::vector<std::size_t>* places;
        };
        std::vector<Group> byType;
        byType.reserve(index.size());
        for (auto& entry : index) {
            Group group{std::string(), &entry.second};
            appendFoldedSortKey(entry.first, group.typeKey);
            byType.push_back(std::move(group));
        }
        std::sort(byType.begin(), byType.end(), [](const Group& first, const Group& second) {
            return first.typeKey < second.typeKey;
        });

        order.reserve(stored.size());
        groups.reserve(byType.size());
        std::string keys;
        std::vector<std::size_t> ends;
        std::vector<std::size_t> ranked;
        for (const Group& group : byType) {
            groups.push_back(group.places);
            const std::vector<std::size_t>& places = *group.places;
            if (places.size() == 1) {
                order.push_back(places.front());
                continue;
            }
            keys.clear();
            ends.clear();
            for (const std::size_t place : places) {
                Access::appendSortKey(stored[place], keys);
                ends.push_back(keys.size());
            }
            const auto keyOf = [&keys, &ends](std::size_t member) {
                const std::size_t begin = member == 0 ? 0 : ends[member - 1];
                return std::string_view(keys.data() + begin, ends[member] - begin);
            };
            ranked.resize(places.size());
            for (std::size_t member = 0; member < ranked.size(); ++member) {
                ranked[member] = member;
            }
            std::sort(ranked.begin(), ranked.end(),
                      [&keyOf](std::size_t first, std::size_t second) {
                          return keyOf(first) < keyOf(second);
                      });
            for (std::size_t member = 0; member < ranked.size(); ++member) {
                if (member > 0 && keyOf(ranked[member - 1]) == keyOf(ranked[member])) {
                    return false;
                }
                order.push_back(places[ranked[member]]);
            }
        }
        return true;
    }

    // Sorts by keys folded once instead of folding on every comparison.
    // std::sort's steps depend only on the outcomes of its comparisons, so
    // sorting positions by key, under the same order as operator<, from the
    // same starting order, makes the same moves as sorting the rules by
    // operator< and ends in the same permutation, ties included; the rules then
    // move once, each with its document position.
    void sortWithTies() {
        // The keys are measured first, so that the one buffer is allocated once
        // and never held twice while it grows: a large load peaks here.
        std::size_t keysSize = 0;
        std::string key;
        for (const Rule& rule : stored) {
            key.clear();
            Access::appendSortKey(rule, key);
            keysSize += key.size();
        }
        std::string keys;
        keys.reserve(keysSize);
        std::vector<std::size_t> ends;
        ends.reserve(stored.size());
        for (const Rule& rule : stored) {
            Access::appendSortKey(rule, keys);
            ends.push_back(keys.size());
        }
        // Offsets come from `ends`, so they are in range and need no check.
        const auto keyOf = [&keys, &ends](std::size_t position) {
            const std::size_t begin = position == 0 ? 0 : ends[position - 1];
            return std::string_view(keys.data() + begin, ends[position] - begin);
        };
        std::vector<std::size_t> order(stored.size());
        for (std::size_t i = 0; i < order.size(); ++i) {
            order[i] = i;
        }
        std::sort(order.begin(), order.end(), [&keyOf](std::size_t first, std::size_t second) {
            return keyOf(first) < keyOf(second);
        });
        rulelist::permuteInPlace(stored, documentPositions, order);
        reindex();
    }

    void reindex() {
        index.clear();
        lastAppended = {};
        for (std::size_t position = 0; position < stored.size(); ++position) {
            index[foldedObjectType(Access::objectType(stored[position]))].push_back(position);
        }
    }

    std::vector<Rule> stored;
    // Beside `stored`, place for place.
    std::vector<std::size_t> documentPositions;
    // Places in `stored` grouped by the case-folded object type of their
    // rules, each group in stored order ("<any>" and "library_item" are groups
    // too). Places, not pointers, so that a copy of the list is right.
    std::unordered_map<std::string, std::vector<std::size_t>> index;
    LastAppended lastAppended;
};

#endif  // TOV_RULES_RULE_LIST_H_
