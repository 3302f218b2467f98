// RuleList alone, over a tiny rule type: the rules, their index by object
// type and their places in the document stay together through every change.
#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/compare.h"
#include "rules/rule_list.h"
#include "tov/TOV_DMAttribute.h"
#include "tov/TOV_DMStructure.h"
#include "tov/TOV_DMStructureObject.h"

namespace {

struct TinyRule {
    std::string objectType;
    std::string key;
    std::string name;
};

struct TinyAccess {
    static const std::string& objectType(const TinyRule& rule) { return rule.objectType; }
    static void appendSortKey(const TinyRule& rule, std::string& key) {
        appendFoldedSortKey(rule.key, key);
    }
};

using TinyList = RuleList<TinyRule, TinyAccess>;

const auto kEvery = [](const TinyRule&) { return true; };

std::vector<std::string> namesOf(const std::vector<const TinyRule*>& rules) {
    std::vector<std::string> names;
    names.reserve(rules.size());
    for (const TinyRule* rule : rules) {
        names.push_back(rule->name);
    }
    return names;
}

std::vector<std::string> namesOf(const TinyList& list) {
    std::vector<std::string> names;
    for (const TinyRule& rule : list.rules()) {
        names.push_back(rule.name);
    }
    return names;
}

std::vector<std::size_t> positionsOf(const TinyList& list) {
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < list.size(); ++i) {
        positions.push_back(list.documentPosition(i));
    }
    return positions;
}

std::vector<std::string> select(const TinyList& list, const std::string& objectType,
                                const TOV_DMStructure* structure = nullptr) {
    std::vector<const TinyRule*> related;
    list.select(objectType, structure, related, kEvery);
    return namesOf(related);
}

// Four rules in document order, for two types and every type.
TinyList fourRules() {
    TinyList list;
    list.append({"Part", "c", "first"});
    list.append({"<any>", "a", "second"});
    list.append({"Doc", "b", "third"});
    list.append({"PART", "a", "fourth"});
    return list;
}

TEST(RuleList, StartsEmpty) {
    const TinyList list;
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(list.size(), 0u);
    EXPECT_TRUE(select(list, "Part").empty());
}

TEST(RuleList, AppendedRulesKeepTheirOrderAndCountTheirPlaces) {
    const TinyList list = fourRules();
    EXPECT_EQ(namesOf(list), (std::vector<std::string>{"first", "second", "third", "fourth"}));
    EXPECT_EQ(positionsOf(list), (std::vector<std::size_t>{0, 1, 2, 3}));
}

TEST(RuleList, SelectsTheAskedTypeIgnoringCaseAndEveryTypeInStoredOrder) {
    const TinyList list = fourRules();
    EXPECT_EQ(select(list, "part"), (std::vector<std::string>{"first", "second", "fourth"}));
    EXPECT_EQ(select(list, "Doc"), (std::vector<std::string>{"second", "third"}));
    EXPECT_EQ(select(list, "Note"), (std::vector<std::string>{"second"}));
}

TEST(RuleList, AnAskedWildcardWalksTheWholeList) {
    const TinyList list = fourRules();
    EXPECT_EQ(select(list, "<any>"),
              (std::vector<std::string>{"first", "second", "third", "fourth"}));
}

TEST(RuleList, LibraryItemRulesJoinForTheRliTypesOfTheDataModel) {
    TOV_DMStructure structure;
    structure.appendDMStructureObject(
        TOV_DMStructureObject("Drawing", "RLI", {TOV_DMAttribute("A", "REGULAR", true)}));
    structure.sortAllDMInfo();
    TinyList list = fourRules();
    list.append({"Library_Item", "d", "fifth"});
    EXPECT_EQ(select(list, "Drawing", &structure), (std::vector<std::string>{"second", "fifth"}));
    EXPECT_EQ(select(list, "Drawing"), (std::vector<std::string>{"second"}));
    EXPECT_EQ(select(list, "Part", &structure),
              (std::vector<std::string>{"first", "second", "fourth"}));
}

TEST(RuleList, TheTestDecidesWhichMatchingRulesAreSelected) {
    const TinyList list = fourRules();
    std::vector<const TinyRule*> related;
    EXPECT_TRUE(list.select("Part", nullptr, related,
                            [](const TinyRule& rule) { return rule.key == "a"; }));
    EXPECT_EQ(namesOf(related), (std::vector<std::string>{"second", "fourth"}));
    EXPECT_FALSE(list.select("Part", nullptr, related,
                             [](const TinyRule& rule) { return rule.key == "z"; }));
    EXPECT_EQ(related.size(), 2u);
}

TEST(RuleList, SortingOrdersByKeyAndEachRuleKeepsItsDocumentPlace) {
    TinyList list = fourRules();
    list.sort();
    EXPECT_EQ(namesOf(list), (std::vector<std::string>{"second", "fourth", "third", "first"}));
    EXPECT_EQ(positionsOf(list), (std::vector<std::size_t>{1, 3, 2, 0}));
    // The index follows the new order.
    EXPECT_EQ(select(list, "Part"), (std::vector<std::string>{"second", "fourth", "first"}));
}

TEST(RuleList, SortingIsTheOrderOfStdSortByTheKeys) {
    TinyList list;
    std::vector<TinyRule> expected;
    const std::vector<std::string> keys = {"b", "B", "a", "", "ab", "A", "b", "a"};
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const TinyRule rule{"Part", keys[i], std::to_string(i)};
        list.append(rule);
        expected.push_back(rule);
    }
    std::sort(expected.begin(), expected.end(), [](const TinyRule& a, const TinyRule& b) {
        return compareStringsIgnoringCase(a.key, b.key) < 0;
    });
    list.sort();
    std::vector<std::string> expectedNames;
    expectedNames.reserve(expected.size());
    for (const TinyRule& rule : expected) {
        expectedNames.push_back(rule.name);
    }
    EXPECT_EQ(namesOf(list), expectedNames);
    for (std::size_t i = 0; i < list.size(); ++i) {
        EXPECT_EQ(std::to_string(list.documentPosition(i)), list.rules()[i].name);
    }
}

TEST(RuleList, ReplacingNumbersTheNewRulesByTheirPlaceInTheGivenList) {
    TinyList list = fourRules();
    list.sort();
    list.replace({{"Doc", "x", "one"}, {"Part", "y", "two"}});
    EXPECT_EQ(namesOf(list), (std::vector<std::string>{"one", "two"}));
    EXPECT_EQ(positionsOf(list), (std::vector<std::size_t>{0, 1}));
    EXPECT_EQ(select(list, "Part"), (std::vector<std::string>{"two"}));
    EXPECT_EQ(select(list, "Note"), (std::vector<std::string>{}));
}

TEST(RuleList, ReservingMakesRoomAndChangesNothing) {
    TinyList list = fourRules();
    list.reserve(100);
    EXPECT_GE(list.rules().capacity(), 104u);
    EXPECT_EQ(namesOf(list), (std::vector<std::string>{"first", "second", "third", "fourth"}));
    list.append({"Doc", "e", "fifth"});
    EXPECT_EQ(list.documentPosition(4), 4u);
}

TEST(RuleList, ClearingEmptiesTheRulesTheIndexAndThePlaces) {
    TinyList list = fourRules();
    list.clear();
    EXPECT_TRUE(list.empty());
    EXPECT_TRUE(select(list, "Part").empty());
    list.append({"Part", "a", "again"});
    EXPECT_EQ(positionsOf(list), (std::vector<std::size_t>{0}));
}

TEST(RuleList, ACopyHandsOutItsOwnRules) {
    const TinyList original = fourRules();
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the copy is what is tested.
    const TinyList copy = original;
    std::vector<const TinyRule*> related;
    copy.select("Doc", nullptr, related, kEvery);
    ASSERT_EQ(related.size(), 2u);
    EXPECT_EQ(related[1], &copy.rules()[2]);
    EXPECT_EQ(positionsOf(copy), positionsOf(original));
}

// The rule classes' keys begin with their object type, which lets the list
// sort group by group; these rules' keys do the same.
struct TypedAccess {
    static constexpr bool kKeysBeginWithObjectType = true;
    static const std::string& objectType(const TinyRule& rule) { return rule.objectType; }
    static void appendSortKey(const TinyRule& rule, std::string& key) {
        appendFoldedSortKey(rule.objectType, key);
        appendFoldedSortKey(rule.key, key);
    }
};

using TypedList = RuleList<TinyRule, TypedAccess>;

std::vector<std::string> namesOf(const TypedList& list) {
    std::vector<std::string> names;
    for (const TinyRule& rule : list.rules()) {
        names.push_back(rule.name);
    }
    return names;
}

std::vector<std::string> select(const TypedList& list, const std::string& objectType) {
    std::vector<const TinyRule*> related;
    list.select(objectType, nullptr, related, kEvery);
    return namesOf(related);
}

// What std::sort makes of `rules` under the keys of TypedAccess.
std::vector<std::string> namesSortedByStdSort(std::vector<TinyRule> rules) {
    std::sort(rules.begin(), rules.end(), [](const TinyRule& first, const TinyRule& second) {
        std::string firstKey;
        std::string secondKey;
        TypedAccess::appendSortKey(first, firstKey);
        TypedAccess::appendSortKey(second, secondKey);
        return firstKey < secondKey;
    });
    std::vector<std::string> names;
    names.reserve(rules.size());
    for (const TinyRule& rule : rules) {
        names.push_back(rule.name);
    }
    return names;
}

TypedList typedList(const std::vector<TinyRule>& rules) {
    TypedList list;
    for (const TinyRule& rule : rules) {
        list.append(rule);
    }
    return list;
}

// Types in runs and out of them, in several cases, none two rules equivalent.
const std::vector<TinyRule> kRulesWithoutTies = {
    {"Part", "c", "0"},      {"Part", "a", "1"}, {"Doc", "b", "2"},  {"PART", "b", "3"},
    {"<any>", "a", "4"},     {"Doc", "A1", "5"}, {"Pa", "z", "6"},   {"part", "d", "7"},
    {"\xC3\xA9t", "a", "8"}, {"Zz~", "a", "9"},  {"doc", "c", "10"}, {"<ANY>", "b", "11"}};

TEST(RuleList, WithoutTiesTheGroupsSortAsStdSortWould) {
    TypedList list = typedList(kRulesWithoutTies);
    list.sort();
    EXPECT_EQ(namesOf(list), namesSortedByStdSort(kRulesWithoutTies));
    for (std::size_t i = 0; i < list.size(); ++i) {
        EXPECT_EQ(std::to_string(list.documentPosition(i)), list.rules()[i].name);
    }
    // The index follows the new order, each group a run: "<any>", five
    // letters long, sorts after "Part" and "Doc"; within "Doc", "A1" is the
    // longest key.
    EXPECT_EQ(select(list, "PART"), (std::vector<std::string>{"1", "3", "0", "7", "4", "11"}));
    EXPECT_EQ(select(list, "Doc"), (std::vector<std::string>{"2", "10", "5", "4", "11"}));
}

TEST(RuleList, WithATieTheWholeListSortsAsStdSortWould) {
    std::vector<TinyRule> rules = kRulesWithoutTies;
    rules.push_back({"PART", "C", "12"});  // equivalent to the first
    rules.push_back({"doc", "b", "13"});   // and to the third
    TypedList list = typedList(rules);
    list.sort();
    EXPECT_EQ(namesOf(list), namesSortedByStdSort(rules));
    for (std::size_t i = 0; i < list.size(); ++i) {
        EXPECT_EQ(std::to_string(list.documentPosition(i)), list.rules()[i].name);
    }
}

TEST(RuleList, RulesAppendedAfterASortJoinTheirGroups) {
    TypedList list = typedList(kRulesWithoutTies);
    list.sort();
    list.append({"Part", "e", "12"});
    list.append({"Note", "e", "13"});
    list.append({"part", "f", "14"});
    EXPECT_EQ(select(list, "Part"),
              (std::vector<std::string>{"1", "3", "0", "7", "4", "11", "12", "14"}));
    EXPECT_EQ(select(list, "note"), (std::vector<std::string>{"4", "11", "13"}));
}

TEST(RuleList, ACopyAppendsToItsOwnIndex) {
    TypedList original = typedList(kRulesWithoutTies);
    TypedList copy = original;
    // The last rule appended to the original was of type "<ANY>": the copy's
    // rule of that type must join the copy's group, not the original's.
    copy.append({"<ANY>", "c", "12"});
    original.append({"<ANY>", "d", "13"});
    EXPECT_EQ(select(copy, "Note"), (std::vector<std::string>{"4", "11", "12"}));
    EXPECT_EQ(select(original, "Note"), (std::vector<std::string>{"4", "11", "13"}));
}

}  // namespace
