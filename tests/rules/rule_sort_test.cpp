// The store sorts by keys folded once; the order must be exactly the one that
// std::sort with each rule's operator< gives, ties included, since the first
// violated rule in that order is the one reported. Random lists from small
// alphabets, with case variants, wildcards and bytes beyond ASCII, make many
// ties and near ties.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "tov/TOVConflictResolution.h"
#include "tov/TOVFileConstraint.h"
#include "tov/TOVHistoryLink.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVManualLink.h"
#include "tov/TOVTransition.h"
#include "tov/TOVTransitionFreeze.h"
#include "tov/TOVTrigger.h"
#include "tov/TOVVersioningSelection.h"

namespace {

class RandomWords {
public:
    explicit RandomWords(unsigned seed) : engine(seed) {}

    const std::string& pick(const std::vector<std::string>& words) {
        std::uniform_int_distribution<std::size_t> index(0, words.size() - 1);
        return words[index(engine)];
    }
    std::size_t upTo(std::size_t most) {
        std::uniform_int_distribution<std::size_t> count(0, most);
        return count(engine);
    }
    std::vector<std::string> some(const std::vector<std::string>& words, std::size_t most) {
        std::vector<std::string> chosen;
        for (std::size_t n = upTo(most); n > 0; --n) {
            chosen.push_back(pick(words));
        }
        return chosen;
    }

private:
    std::mt19937 engine;
};

const std::vector<std::string> kTypes = {"Part",
                                         "part",
                                         "PART",
                                         "<any>",
                                         "<ANY>",
                                         "Doc",
                                         "Pa",
                                         "",
                                         "Library_Item",
                                         "library_item",
                                         "\xC3\xA9t\xC3\xA9",
                                         "Zz~"};
const std::vector<std::string> kNames = {"A", "a", "B", "AB", "ab", "\xC3\x89", "_", "{"};
const std::vector<std::string> kValues = {"x", "X", "y", "<any>", "", "xy", "Xy", "\xFF", "~"};

// What tells two rules apart in the store's order: their sentences, or for
// triggers, which have none, their fields.
std::vector<std::string> storeOrder(const TOVLifecycleBusinessRules& store) {
    std::vector<std::string> order;
    for (const auto& sentence : store.expressRulesInWords()) {
        order.push_back(sentence.first + ": " + sentence.second);
    }
    for (const TOVTriggerDescription& trigger : store.describeTriggerRules()) {
        order.push_back(trigger.objectType + "|" + trigger.attribute + "|" +
                        trigger.triggerInitialize + "|" + trigger.initializationValue);
    }
    return order;
}

// Sorts `rules` in a store and by operator< directly, and compares the orders.
template <typename Rule, typename SetRules>
void expectSameOrderAsOperatorLess(const std::vector<Rule>& rules, SetRules setRules) {
    TOVLifecycleBusinessRules sortedByStore;
    setRules(sortedByStore, rules);
    sortedByStore.sortAllRules();

    std::vector<Rule> sortedDirectly = rules;
    std::sort(sortedDirectly.begin(), sortedDirectly.end());
    TOVLifecycleBusinessRules expected;
    setRules(expected, sortedDirectly);

    ASSERT_EQ(storeOrder(sortedByStore), storeOrder(expected));
}

// The rules in their order, each left out when an earlier one is equivalent
// to it: a list without ties, which the store sorts group by group.
template <typename Rule>
std::vector<Rule> withoutEquivalents(const std::vector<Rule>& rules) {
    std::vector<Rule> kept;
    for (const Rule& rule : rules) {
        const bool tied = std::any_of(kept.begin(), kept.end(), [&rule](const Rule& other) {
            return !(rule < other) && !(other < rule);
        });
        if (!tied) {
            kept.push_back(rule);
        }
    }
    return kept;
}

// Lists of every length up to 200: short ones are sorted by insertion alone,
// long ones go through partitioning first. Each list is sorted as drawn, ties
// and all, and once more without its ties.
template <typename Rule, typename MakeRule, typename SetRules>
void checkManyLists(unsigned seed, MakeRule makeRule, SetRules setRules) {
    RandomWords random(seed);
    for (int list = 0; list < 150; ++list) {
        std::vector<Rule> rules;
        for (std::size_t n = random.upTo(200); n > 0; --n) {
            rules.push_back(makeRule(random));
        }
        expectSameOrderAsOperatorLess(rules, setRules);
        expectSameOrderAsOperatorLess(withoutEquivalents(rules), setRules);
    }
}

TEST(RuleSort, TransitionsSortAsOperatorLess) {
    checkManyLists<TOVTransition>(
        1,
        [](RandomWords& r) {
            return TOVTransition(r.pick(kTypes), r.pick(kNames), r.pick(kValues),
                                 r.some(kValues, 3));
        },
        [](TOVLifecycleBusinessRules& store, const std::vector<TOVTransition>& rules) {
            store.setTransitions(rules);
        });
}

TEST(RuleSort, FreezeRulesSortAsOperatorLess) {
    checkManyLists<TOVTransitionFreeze>(
        2,
        [](RandomWords& r) {
            return TOVTransitionFreeze(r.pick(kTypes), r.pick(kNames), r.pick(kNames),
                                       r.pick(kValues));
        },
        [](TOVLifecycleBusinessRules& store, const std::vector<TOVTransitionFreeze>& rules) {
            store.setTransitionsFreeze(rules);
        });
}

TEST(RuleSort, TriggersSortAsOperatorLess) {
    checkManyLists<TOVTrigger>(
        3,
        [](RandomWords& r) {
            return TOVTrigger(r.pick(kTypes), r.pick(kNames), r.pick(kNames), r.pick(kValues));
        },
        [](TOVLifecycleBusinessRules& store, const std::vector<TOVTrigger>& rules) {
            store.setTriggers(rules);
        });
}

TEST(RuleSort, FileConstraintsSortAsOperatorLess) {
    const std::vector<std::string> settings = {"FORBIDDEN", "MANDATORY", "other"};
    checkManyLists<TOVFileConstraint>(
        4,
        [&settings](RandomWords& r) {
            return TOVFileConstraint(r.pick(kTypes), r.pick(kNames), r.pick(kValues),
                                     r.pick(kValues), r.pick(settings));
        },
        [](TOVLifecycleBusinessRules& store, const std::vector<TOVFileConstraint>& rules) {
            store.setFileConstraints(rules);
        });
}

TEST(RuleSort, ConflictResolutionsSortAsOperatorLess) {
    const std::vector<std::string> files = {"YES", "NO", "N_A"};
    const std::vector<std::string> resolutions = {"overwrite", "spinup", "none"};
    checkManyLists<TOVConflictResolution>(
        5,
        [&](RandomWords& r) {
            return TOVConflictResolution(r.pick(kTypes), r.pick(kNames), r.pick(kValues),
                                         r.pick(kValues), r.pick(files), r.pick(resolutions),
                                         r.upTo(1) == 1);
        },
        [](TOVLifecycleBusinessRules& store, const std::vector<TOVConflictResolution>& rules) {
            store.setConflictsResolutions(rules);
        });
}

TEST(RuleSort, HistoryLinksSortAsOperatorLess) {
    checkManyLists<TOVHistoryLink>(
        6,
        [](RandomWords& r) {
            return TOVHistoryLink(r.pick(kTypes), r.pick(kNames), r.pick(kValues), r.pick(kValues),
                                  r.some(kValues, 3));
        },
        [](TOVLifecycleBusinessRules& store, const std::vector<TOVHistoryLink>& rules) {
            store.setHistoryLinks(rules);
        });
}

TEST(RuleSort, ManualLinksSortAsOperatorLess) {
    checkManyLists<TOVManualLink>(
        7,
        [](RandomWords& r) {
            return TOVManualLink(r.pick(kTypes), r.pick(kNames), r.pick(kValues), r.pick(kValues),
                                 r.some(kValues, 3));
        },
        [](TOVLifecycleBusinessRules& store, const std::vector<TOVManualLink>& rules) {
            store.setManualLinks(rules);
        });
}

// Many object types, a few rules each, none equivalent to another, in a
// shuffled order: the groups must come out in the order of their types, case
// and bytes beyond ASCII included, and the rules of each in their own order.
TEST(RuleSort, ListsWithoutTiesSortAsOperatorLessAcrossManyTypes) {
    std::mt19937 engine(9);
    std::vector<TOVTransition> rules;
    for (int type = 0; type < 300; ++type) {
        std::string name = "T" + std::to_string(type % 150);
        if (type >= 150) {
            name = "t" + name.substr(1) + "\xC3\xA9";
        }
        for (int attribute = 0; attribute < 1 + type % 7; ++attribute) {
            const std::string attributeName =
                (attribute % 2 == 0 ? "A" : "b") + std::to_string(attribute);
            rules.emplace_back(type % 3 == 0 ? "<ANY>" + name : name, attributeName,
                               attribute % 3 == 0 ? "<any>" : "V", std::vector<std::string>{"x"});
        }
    }
    std::shuffle(rules.begin(), rules.end(), engine);
    ASSERT_EQ(withoutEquivalents(rules).size(), rules.size());
    expectSameOrderAsOperatorLess(
        rules, [](TOVLifecycleBusinessRules& store, const std::vector<TOVTransition>& list) {
            store.setTransitions(list);
        });
}

TEST(RuleSort, VersioningSelectionsSortAsOperatorLess) {
    checkManyLists<TOVVersioningSelection>(
        8,
        [](RandomWords& r) {
            std::map<std::string, std::vector<std::string>> conditions;
            for (std::size_t n = r.upTo(3); n > 0; --n) {
                conditions[r.pick(kNames)] = r.some(kValues, 2);
            }
            return TOVVersioningSelection(r.pick(kTypes), conditions, r.some(kNames, 2));
        },
        [](TOVLifecycleBusinessRules& store, const std::vector<TOVVersioningSelection>& rules) {
            store.setVersioningAttributesSelections(rules);
        });
}

}  // namespace
