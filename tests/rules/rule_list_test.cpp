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

}  // namespace
