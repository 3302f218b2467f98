// Lookups visit only the rules filed under the asked object type, "<any>" and
// "Library_Item". They must select exactly what a walk over the whole list
// selects, in the same order: pinned here for every kind of rule, and held
// against a plain walk over many random stores.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "dm/object_type_matching.h"
#include "tov/TOVConflictResolution.h"
#include "tov/TOVFileConstraint.h"
#include "tov/TOVHistoryLink.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVManualLink.h"
#include "tov/TOVTransition.h"
#include "tov/TOVTransitionFreeze.h"
#include "tov/TOVTrigger.h"
#include "tov/TOVVersioningSelection.h"
#include "tov/TOV_DMAttribute.h"
#include "tov/TOV_DMStructure.h"
#include "tov/TOV_DMStructureObject.h"
#include "tov/vocabulary.h"

namespace {

// Drawing and Sheet are RLI types, Part is a DMITEM type.
TOV_DMStructure makeStructure() {
    TOV_DMStructure structure;
    for (const char* rli : {"Drawing", "Sheet"}) {
        structure.appendDMStructureObject(
            TOV_DMStructureObject(rli, "RLI", {TOV_DMAttribute("A", "REGULAR", true)}));
    }
    structure.appendDMStructureObject(
        TOV_DMStructureObject("Part", "DMITEM", {TOV_DMAttribute("A", "REGULAR", true)}));
    structure.sortAllDMInfo();
    return structure;
}

template <typename Rule>
std::string inWords(const Rule& rule) {
    std::string words;
    rule.expressRuleInWords(words);
    return words;
}

// Each kind: how to make a rule of an object type and attribute whose identity
// carries `label`, how to tell it, and how the store adds and selects it.
struct Transitions {
    static constexpr const char* kName = "Transitions";
    using Rule = TOVTransition;
    static Rule make(const std::string& type, const std::string& attribute,
                     const std::string& label) {
        return Rule(type, attribute, label, {"Y"});
    }
    static std::string identity(const Rule& rule) { return inWords(rule); }
    static void append(TOVLifecycleBusinessRules& store, const Rule& rule) {
        store.appendNewTransitionRule(rule);
    }
    static void set(TOVLifecycleBusinessRules& store, const std::vector<Rule>& rules) {
        store.setTransitions(rules);
    }
    static void select(const TOVLifecycleBusinessRules& store, const std::string& type,
                       const std::vector<std::string>& attributes, const TOV_DMStructure* structure,
                       std::vector<const Rule*>& related) {
        store.getRelatedTransitionRules(type, attributes, structure, related);
    }
};

struct FreezeRules {
    static constexpr const char* kName = "FreezeRules";
    using Rule = TOVTransitionFreeze;
    static Rule make(const std::string& type, const std::string& attribute,
                     const std::string& label) {
        return Rule(type, attribute, "C", label);
    }
    static std::string identity(const Rule& rule) { return inWords(rule); }
    static void append(TOVLifecycleBusinessRules& store, const Rule& rule) {
        store.appendNewTransitionFreezeRule(rule);
    }
    static void set(TOVLifecycleBusinessRules& store, const std::vector<Rule>& rules) {
        store.setTransitionsFreeze(rules);
    }
    static void select(const TOVLifecycleBusinessRules& store, const std::string& type,
                       const std::vector<std::string>& attributes, const TOV_DMStructure* structure,
                       std::vector<const Rule*>& related) {
        store.getRelatedTransitionFreezeRules(type, attributes, structure, related);
    }
};

struct Triggers {
    static constexpr const char* kName = "Triggers";
    using Rule = TOVTrigger;
    static Rule make(const std::string& type, const std::string& attribute,
                     const std::string& label) {
        return Rule(type, attribute, label, "v");
    }
    static std::string identity(const Rule& rule) { return rule.getTriggerInitialize(); }
    static void append(TOVLifecycleBusinessRules& store, const Rule& rule) {
        store.appendNewTriggerRule(rule);
    }
    static void set(TOVLifecycleBusinessRules& store, const std::vector<Rule>& rules) {
        store.setTriggers(rules);
    }
    static void select(const TOVLifecycleBusinessRules& store, const std::string& type,
                       const std::vector<std::string>& attributes, const TOV_DMStructure* structure,
                       std::vector<const Rule*>& related) {
        store.getRelatedTriggerRules(type, attributes, structure, related);
    }
};

struct FileConstraints {
    static constexpr const char* kName = "FileConstraints";
    using Rule = TOVFileConstraint;
    static Rule make(const std::string& type, const std::string& attribute,
                     const std::string& label) {
        return Rule(type, attribute, label, "Y", "FORBIDDEN");
    }
    static std::string identity(const Rule& rule) { return inWords(rule); }
    static void append(TOVLifecycleBusinessRules& store, const Rule& rule) {
        store.appendNewFileConstraintRule(rule);
    }
    static void set(TOVLifecycleBusinessRules& store, const std::vector<Rule>& rules) {
        store.setFileConstraints(rules);
    }
    static void select(const TOVLifecycleBusinessRules& store, const std::string& type,
                       const std::vector<std::string>& attributes, const TOV_DMStructure* structure,
                       std::vector<const Rule*>& related) {
        store.getRelatedFileConstraintRules(type, attributes, structure, related);
    }
};

struct ConflictResolutions {
    static constexpr const char* kName = "ConflictResolutions";
    using Rule = TOVConflictResolution;
    static Rule make(const std::string& type, const std::string& attribute,
                     const std::string& label) {
        return Rule(type, attribute, label, "Y", "N_A", "spinup", false);
    }
    static std::string identity(const Rule& rule) { return inWords(rule); }
    static void append(TOVLifecycleBusinessRules& store, const Rule& rule) {
        store.appendNewConflictResolutionRule(rule);
    }
    static void set(TOVLifecycleBusinessRules& store, const std::vector<Rule>& rules) {
        store.setConflictsResolutions(rules);
    }
    static void select(const TOVLifecycleBusinessRules& store, const std::string& type,
                       const std::vector<std::string>& attributes, const TOV_DMStructure* structure,
                       std::vector<const Rule*>& related) {
        store.getRelatedConflictResolutionRules(type, attributes, structure, related);
    }
};

// Link rules whose to value is "<any>", so that the value never decides.
struct HistoryLinks {
    static constexpr const char* kName = "HistoryLinks";
    using Rule = TOVHistoryLink;
    static Rule make(const std::string& type, const std::string& attribute,
                     const std::string& label) {
        return Rule(type, attribute, label, "<any>", {"Z"});
    }
    static std::string identity(const Rule& rule) { return inWords(rule); }
    static void append(TOVLifecycleBusinessRules& store, const Rule& rule) {
        store.appendNewHistoryLinkRule(rule);
    }
    static void set(TOVLifecycleBusinessRules& store, const std::vector<Rule>& rules) {
        store.setHistoryLinks(rules);
    }
    static void select(const TOVLifecycleBusinessRules& store, const std::string& type,
                       const std::vector<std::string>& attributes, const TOV_DMStructure* structure,
                       std::vector<const Rule*>& related) {
        store.getRelatedHistoryLinkRulesExact(type, attributes, {}, {}, structure, related,
                                              nullptr);
    }
};

struct ManualLinks {
    static constexpr const char* kName = "ManualLinks";
    using Rule = TOVManualLink;
    static Rule make(const std::string& type, const std::string& attribute,
                     const std::string& label) {
        return Rule(type, attribute, label, "<any>", {"Z"});
    }
    static std::string identity(const Rule& rule) { return inWords(rule); }
    static void append(TOVLifecycleBusinessRules& store, const Rule& rule) {
        store.appendNewManualLinkRule(rule);
    }
    static void set(TOVLifecycleBusinessRules& store, const std::vector<Rule>& rules) {
        store.setManualLinks(rules);
    }
    static void select(const TOVLifecycleBusinessRules& store, const std::string& type,
                       const std::vector<std::string>& attributes, const TOV_DMStructure* structure,
                       std::vector<const Rule*>& related) {
        store.getRelatedManualLinkRulesExact(type, attributes, {}, {}, structure, related, nullptr);
    }
};

// A selection rule has no single attribute: its condition is on the attribute,
// and the asked attributes become the packet.
struct VersioningSelections {
    static constexpr const char* kName = "VersioningSelections";
    using Rule = TOVVersioningSelection;
    static Rule make(const std::string& type, const std::string& attribute,
                     const std::string& label) {
        return Rule(type, attribute, {"<any>"}, {label});
    }
    static std::string identity(const Rule& rule) { return rule.getVersioningOptions().front(); }
    static void append(TOVLifecycleBusinessRules& store, const Rule& rule) {
        store.appendNewVersioningAttrSelectionRule(rule);
    }
    static void set(TOVLifecycleBusinessRules& store, const std::vector<Rule>& rules) {
        store.setVersioningAttributesSelections(rules);
    }
    static void select(const TOVLifecycleBusinessRules& store, const std::string& type,
                       const std::vector<std::string>& attributes, const TOV_DMStructure* structure,
                       std::vector<const Rule*>& related) {
        AttributesMap packet;
        for (const std::string& attribute : attributes) {
            packet[attribute] = "x";
        }
        store.getRelatedVersioningSelectionRulesExact(type, packet, structure, related);
    }
};

template <typename Kind>
std::vector<std::string> identities(const std::vector<const typename Kind::Rule*>& rules) {
    std::vector<std::string> names;
    names.reserve(rules.size());
    for (const auto* rule : rules) {
        names.push_back(Kind::identity(*rule));
    }
    return names;
}

template <typename Kind>
class RuleIndex : public testing::Test {};

using Kinds = testing::Types<Transitions, FreezeRules, Triggers, FileConstraints,
                             ConflictResolutions, HistoryLinks, ManualLinks, VersioningSelections>;
// Names the instances by kind, so that a failure says which.
struct KindName {
    template <typename Kind>
    static std::string GetName(int /*index*/) {
        return Kind::kName;
    }
};
TYPED_TEST_SUITE(RuleIndex, Kinds, KindName);

// One store of every sort of object type, in this stored order; "ALL" reaches
// the store as "<any>", as the rules document rewrites it.
const std::vector<std::string> kPinnedTypes = {"Drawing", "Part",   "<any>", "Library_Item",
                                               "PART",    "Other",  "part",  "LIBRARY_ITEM",
                                               "<ANY>",   "drawing"};

template <typename Kind>
std::vector<std::string> selectedFromPinnedStore(const std::string& askedType,
                                                 const TOV_DMStructure* structure) {
    TOVLifecycleBusinessRules store;
    for (std::size_t i = 0; i < kPinnedTypes.size(); ++i) {
        Kind::append(store, Kind::make(kPinnedTypes[i], "A", "r" + std::to_string(i)));
    }
    std::vector<const typename Kind::Rule*> related;
    Kind::select(store, askedType, {"A"}, structure, related);
    return identities<Kind>(related);
}

template <typename Kind>
std::vector<std::string> pinned(const std::vector<int>& positions) {
    std::vector<std::string> names;
    names.reserve(positions.size());
    for (const int position : positions) {
        names.push_back(Kind::identity(
            Kind::make(kPinnedTypes[position], "A", "r" + std::to_string(position))));
    }
    return names;
}

TYPED_TEST(RuleIndex, SelectsInStoredOrderFromEveryMatchingGroup) {
    using Kind = TypeParam;
    const TOV_DMStructure structure = makeStructure();
    // Its own type in any case, and the wildcard; the DMITEM type gets no Library_Item rule.
    EXPECT_EQ(selectedFromPinnedStore<Kind>("Part", &structure), pinned<Kind>({1, 2, 4, 6, 8}));
    EXPECT_EQ(selectedFromPinnedStore<Kind>("pART", nullptr), pinned<Kind>({1, 2, 4, 6, 8}));
    // An RLI type also gets the Library_Item rules, merged into stored order.
    EXPECT_EQ(selectedFromPinnedStore<Kind>("Drawing", &structure),
              pinned<Kind>({0, 2, 3, 7, 8, 9}));
    // Without a data model, or under a name the data model does not know exactly, it does not.
    EXPECT_EQ(selectedFromPinnedStore<Kind>("Drawing", nullptr), pinned<Kind>({0, 2, 8, 9}));
    EXPECT_EQ(selectedFromPinnedStore<Kind>("DRAWING", &structure), pinned<Kind>({0, 2, 8, 9}));
    // An unknown type gets the wildcard rules alone.
    EXPECT_EQ(selectedFromPinnedStore<Kind>("Unknown", &structure), pinned<Kind>({2, 8}));
    // Asked as "Library_Item" with a data model: the word itself and every RLI type.
    EXPECT_EQ(selectedFromPinnedStore<Kind>("Library_Item", &structure),
              pinned<Kind>({0, 2, 3, 7, 8}));
    // Without one the word is just a name.
    EXPECT_EQ(selectedFromPinnedStore<Kind>("library_item", nullptr), pinned<Kind>({2, 3, 7, 8}));
    // Asked as "<any>": everything.
    EXPECT_EQ(selectedFromPinnedStore<Kind>("<Any>", &structure),
              pinned<Kind>({0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
}

TYPED_TEST(RuleIndex, SelectsAfterSortingClearingAndSetting) {
    using Kind = TypeParam;
    TOVLifecycleBusinessRules store;
    Kind::append(store, Kind::make("Part", "A", "late"));
    Kind::append(store, Kind::make("<any>", "A", "any"));
    store.clearAllRules();
    std::vector<const typename Kind::Rule*> related;
    Kind::select(store, "Part", {"A"}, nullptr, related);
    EXPECT_TRUE(related.empty());

    Kind::set(store, {Kind::make("Other", "A", "o"), Kind::make("part", "A", "p")});
    Kind::append(store, Kind::make("PART", "A", "q"));
    Kind::select(store, "Part", {"A"}, nullptr, related);
    EXPECT_EQ(identities<Kind>(related),
              (std::vector<std::string>{Kind::identity(Kind::make("part", "A", "p")),
                                        Kind::identity(Kind::make("PART", "A", "q"))}));

    // A copy of the store answers from its own lists.
    const TOVLifecycleBusinessRules copy = store;
    store.clearAllRules();
    related.clear();
    Kind::select(copy, "part", {"A"}, nullptr, related);
    EXPECT_EQ(related.size(), 2U);
}

// Many random stores and asked types against a plain walk with objectTypesMatch,
// on stores filled by appending, by appending and sorting, and by a setter.
TYPED_TEST(RuleIndex, SelectsWhatAPlainWalkSelects) {
    using Kind = TypeParam;
    using Rule = typename Kind::Rule;
    const TOV_DMStructure structure = makeStructure();
    const std::vector<std::string> types = {
        "Part",         "part",  "PART",  "Drawing", "drawing",
        "DRAWING",      "Sheet", "<any>", "<ANY>",   "Library_Item",
        "library_item", "Other", "",      "ALL",     "\xC3\xA9t\xC3\xA9"};
    const std::vector<std::string> askedTypes = [&types] {
        std::vector<std::string> asked = types;
        asked.emplace_back("Unknown");
        asked.emplace_back("\xC3\x89T\xC3\x89");
        return asked;
    }();
    const std::vector<std::vector<std::string>> attributeLists = {{"A"}, {"B"}, {"A", "B"}, {}};
    std::mt19937 engine(20240607);
    const auto pick = [&engine](std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(engine);
    };

    for (int round = 0; round < 60; ++round) {
        struct Written {
            std::string type;
            std::string attribute;
            Rule rule;
        };
        std::vector<Written> written;
        for (std::size_t n = pick(80); n > 0; --n) {
            const std::string& type = types[pick(types.size())];
            const std::string attribute = pick(2) == 0 ? "A" : "B";
            written.push_back({type, attribute,
                               Kind::make(type, attribute, "r" + std::to_string(written.size()))});
        }
        const int filling = round % 3;
        TOVLifecycleBusinessRules store;
        std::vector<Rule> rules;
        for (const Written& w : written) {
            rules.push_back(w.rule);
            if (filling != 2) {
                Kind::append(store, w.rule);
            }
        }
        if (filling == 1) {
            store.sortAllRules();
            // Ties may end in either order, so the order of the store is read back
            // through the one walk that visits everything.
            std::vector<const Rule*> all;
            Kind::select(store, "<any>", {"A", "B"}, nullptr, all);
            std::vector<Written> stored;
            for (const Rule* rule : all) {
                for (const Written& w : written) {
                    if (Kind::identity(w.rule) == Kind::identity(*rule)) {
                        stored.push_back(w);
                    }
                }
            }
            ASSERT_EQ(stored.size(), written.size());
            written = stored;
        } else if (filling == 2) {
            Kind::set(store, rules);
        }

        for (int ask = 0; ask < 20; ++ask) {
            const std::string& asked = askedTypes[pick(askedTypes.size())];
            const std::vector<std::string>& attributes =
                attributeLists[pick(attributeLists.size())];
            const TOV_DMStructure* model = pick(2) == 0 ? &structure : nullptr;
            std::vector<std::string> expected;
            for (const Written& w : written) {
                if (objectTypesMatch(model, w.type, asked) &&
                    std::find(attributes.begin(), attributes.end(), w.attribute) !=
                        attributes.end()) {
                    expected.push_back(Kind::identity(w.rule));
                }
            }
            std::vector<const Rule*> related;
            Kind::select(store, asked, attributes, model, related);
            ASSERT_EQ(identities<Kind>(related), expected)
                << "asked " << asked << (model != nullptr ? " with" : " without")
                << " a data model";
        }
    }
}

}  // namespace
