#include "tov/TOVLifecycleBusinessRules.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <type_traits>
#include <utility>

#include "dm/object_type_matching.h"
#include "foundation/compare.h"
#include "foundation/log_reading.h"
#include "rules/rule_kinds.h"
#include "tov/TOVLogger.h"
#include "tov/TOV_DMStructure.h"
#include "tov/string_helpers.h"

namespace {

// Attribute names are matched exactly: no case folding, no wildcard.
bool listHoldsAttribute(const std::vector<std::string>& attributes, const std::string& name) {
    return std::find(attributes.begin(), attributes.end(), name) != attributes.end();
}

// The value a link rule is judged on: the target's, else the initial one's.
std::string candidateValue(const std::string& attribute, const AttributesMap& fromValues,
                           const AttributesMap& toValues) {
    std::string value;
    if (!getValueofKeywordFromStringStringMap(attribute, toValues, value)) {
        getValueofKeywordFromStringStringMap(attribute, fromValues, value);
    }
    return value;
}

// Moves each rule to its place in one pass over the cycles of the permutation:
// `order[i]` is the position the rule at place i comes from. Marks visited
// places in `order` itself, so no second list of rules is needed.
template <typename Rule>
void permuteInPlace(std::vector<Rule>& rules, std::vector<std::size_t>& order) {
    const std::size_t done = rules.size();
    for (std::size_t start = 0; start < rules.size(); ++start) {
        if (order[start] == done) {
            continue;
        }
        Rule carried = std::move(rules[start]);
        std::size_t place = start;
        while (order[place] != start) {
            const std::size_t from = order[place];
            rules[place] = std::move(rules[from]);
            order[place] = done;
            place = from;
        }
        rules[place] = std::move(carried);
        order[place] = done;
    }
}

// The wildcard words as the index files them; built on first use, so that no
// lookup can run before they exist.
const std::string& foldedAny() {
    static const std::string folded = foldedObjectType(TOVAttrItemValue_Any);
    return folded;
}
const std::string& foldedLibraryItem() {
    static const std::string folded = foldedObjectType(TOVAttrItemValue_Library_Item);
    return folded;
}

}  // namespace

// Sorts by keys folded once instead of folding on every comparison.
// std::sort's steps depend only on the outcomes of its comparisons, so sorting
// positions by key, under the same order as operator<, from the same starting
// order, makes the same moves as sorting the rules by operator< and ends in
// the same permutation, ties included; the rules then move once.
template <typename Rule>
void TOVLifecycleBusinessRules::sortRulesOfKind(std::vector<Rule>& rules) {
    // The keys are measured first, so that the one buffer is allocated once
    // and never held twice while it grows: a large load peaks here.
    std::size_t keysSize = 0;
    std::string key;
    for (const Rule& rule : rules) {
        key.clear();
        rule.appendSortKey(key);
        keysSize += key.size();
    }
    std::string keys;
    keys.reserve(keysSize);
    std::vector<std::size_t> ends;
    ends.reserve(rules.size());
    for (const Rule& rule : rules) {
        rule.appendSortKey(keys);
        ends.push_back(keys.size());
    }
    const auto keyOf = [&keys, &ends](std::size_t position) {
        const std::size_t begin = position == 0 ? 0 : ends[position - 1];
        return std::string_view(keys).substr(begin, ends[position] - begin);
    };
    std::vector<std::size_t> order(rules.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        order[i] = i;
    }
    std::sort(order.begin(), order.end(), [&keyOf](std::size_t first, std::size_t second) {
        return keyOf(first) < keyOf(second);
    });
    permuteInPlace(rules, order);
}

// The one walk over all lists, in the order of the table of kinds: each list
// comes with its index and the words of its kind, whose heading heads its
// print and whose label marks its sentences for tools.
template <typename Store, typename Visit>
void TOVLifecycleBusinessRules::forEachRuleList(Store& store, Visit&& visit) {
    using rulekinds::wordsOf;
    visit(store.transitionsFreeze, store.transitionsFreezeIndex,
          wordsOf(TOVRuleKind_TransitionFreeze));
    visit(store.historyLinks, store.historyLinksIndex, wordsOf(TOVRuleKind_HistoryLink));
    visit(store.manualLinks, store.manualLinksIndex, wordsOf(TOVRuleKind_ManualLink));
    visit(store.transitions, store.transitionsIndex, wordsOf(TOVRuleKind_Transition));
    visit(store.triggers, store.triggersIndex, wordsOf(TOVRuleKind_Trigger));
    visit(store.versioningSelections, store.versioningSelectionsIndex,
          wordsOf(TOVRuleKind_VersioningSelection));
    visit(store.conflictResolutions, store.conflictResolutionsIndex,
          wordsOf(TOVRuleKind_ConflictResolution));
    visit(store.fileConstraints, store.fileConstraintsIndex, wordsOf(TOVRuleKind_FileConstraint));
}

template <typename Rule>
void TOVLifecycleBusinessRules::printRules(const char* heading, const std::vector<Rule>& rules,
                                           TOVLogger* logger) {
    // A load prints every rule; with logging off that would be most of its cost.
    if (!isLogRead(logger)) {
        return;
    }
    logger->printToLog(heading);
    for (const Rule& rule : rules) {
        rule.printContentsDBG(logger);
    }
}

// One list under its heading, found by its rule class in the list of kinds.
template <typename Rule>
void TOVLifecycleBusinessRules::printRulesOfKind(TOVLogger* logger) const {
    forEachRuleList(*this, [logger](const auto& rules, const auto&, const TOVRuleKindWords& words) {
        if constexpr (std::is_same_v<std::decay_t<decltype(rules)>, std::vector<Rule>>) {
            printRules(words.heading, rules, logger);
        }
    });
}

template <typename Rule>
void TOVLifecycleBusinessRules::indexRules(const std::vector<Rule>& rules,
                                           PositionsByObjectType& index) {
    index.clear();
    for (std::size_t position = 0; position < rules.size(); ++position) {
        index[foldedObjectType(rules[position].getObjectType())].push_back(position);
    }
}

template <typename Rule>
void TOVLifecycleBusinessRules::replaceRules(std::vector<Rule>& rules, PositionsByObjectType& index,
                                             const std::vector<Rule>& replacement) {
    rules = replacement;
    indexRules(rules, index);
}

template <typename Rule>
void TOVLifecycleBusinessRules::appendRule(std::vector<Rule>& rules, PositionsByObjectType& index,
                                           Rule rule) {
    index[foldedObjectType(rule.getObjectType())].push_back(rules.size());
    rules.push_back(std::move(rule));
}

// Every lookup keeps, in stored order, each rule whose object type matches and
// that `holds` accepts. Only the groups that can match are visited: the asked
// type's own, "<any>", and "Library_Item" when the data model calls the asked
// type an RLI type. An asked type that is itself a wildcard matches across
// groups, so it walks the whole list.
template <typename Rule, typename Holds>
bool TOVLifecycleBusinessRules::selectRules(const std::vector<Rule>& rules,
                                            const PositionsByObjectType& index,
                                            const std::string& objectType,
                                            const TOV_DMStructure* structure,
                                            std::vector<const Rule*>& related, Holds&& holds) {
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
        for (const Rule& rule : rules) {
            if (objectTypesMatch(structure, rule.getObjectType(), objectType)) {
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
    addGroup(foldedAny());
    if (structure != nullptr && structure->isThisAnRLIObjectType(objectType)) {
        addGroup(foldedLibraryItem());
    }
    // The groups are disjoint and each in stored order: merge them.
    std::array<std::size_t, 3> next{};
    for (;;) {
        std::size_t chosen = groupCount;
        for (std::size_t g = 0; g < groupCount; ++g) {
            if (next[g] < groups[g]->size() &&
                (chosen == groupCount || (*groups[g])[next[g]] < (*groups[chosen])[next[chosen]])) {
                chosen = g;
            }
        }
        if (chosen == groupCount) {
            return found;
        }
        keep(rules[(*groups[chosen])[next[chosen]++]]);
    }
}

// The plain lookup, shared by every kind that has a single attribute.
template <typename Rule>
bool TOVLifecycleBusinessRules::selectRelatedRules(const std::vector<Rule>& rules,
                                                   const PositionsByObjectType& index,
                                                   const std::string& objectType,
                                                   const std::vector<std::string>& attributes,
                                                   const TOV_DMStructure* structure,
                                                   std::vector<const Rule*>& related) {
    return selectRules(rules, index, objectType, structure, related,
                       [&attributes](const Rule& rule) {
                           return listHoldsAttribute(attributes, rule.getAttribute());
                       });
}

template <typename Rule>
bool TOVLifecycleBusinessRules::selectRelatedLinkRules(
    const std::vector<Rule>& rules, const PositionsByObjectType& index,
    const std::string& objectType, const std::vector<std::string>& attributes,
    const AttributesMap& fromValues, const AttributesMap& toValues,
    const TOV_DMStructure* structure, std::vector<const Rule*>& related) {
    return selectRules(rules, index, objectType, structure, related, [&](const Rule& rule) {
        return listHoldsAttribute(attributes, rule.getAttribute()) &&
               areStringsEqualAccountingAlsoAnyValue(
                   candidateValue(rule.getAttribute(), fromValues, toValues), rule.getToValue());
    });
}

TOVLifecycleBusinessRules::TOVLifecycleBusinessRules() = default;

void TOVLifecycleBusinessRules::setTransitionsFreeze(
    const std::vector<TOVTransitionFreeze>& rules) {
    replaceRules(transitionsFreeze, transitionsFreezeIndex, rules);
}
void TOVLifecycleBusinessRules::setHistoryLinks(const std::vector<TOVHistoryLink>& rules) {
    replaceRules(historyLinks, historyLinksIndex, rules);
}
void TOVLifecycleBusinessRules::setManualLinks(const std::vector<TOVManualLink>& rules) {
    replaceRules(manualLinks, manualLinksIndex, rules);
}
void TOVLifecycleBusinessRules::setTransitions(const std::vector<TOVTransition>& rules) {
    replaceRules(transitions, transitionsIndex, rules);
}
void TOVLifecycleBusinessRules::setFileConstraints(const std::vector<TOVFileConstraint>& rules) {
    replaceRules(fileConstraints, fileConstraintsIndex, rules);
}
void TOVLifecycleBusinessRules::setVersioningAttributesSelections(
    const std::vector<TOVVersioningSelection>& rules) {
    replaceRules(versioningSelections, versioningSelectionsIndex, rules);
}
void TOVLifecycleBusinessRules::setConflictsResolutions(
    const std::vector<TOVConflictResolution>& rules) {
    replaceRules(conflictResolutions, conflictResolutionsIndex, rules);
}
void TOVLifecycleBusinessRules::setTriggers(const std::vector<TOVTrigger>& rules) {
    replaceRules(triggers, triggersIndex, rules);
}

void TOVLifecycleBusinessRules::appendNewTransitionFreezeRule(const TOVTransitionFreeze& rule) {
    appendRule(transitionsFreeze, transitionsFreezeIndex, rule);
}
void TOVLifecycleBusinessRules::appendNewTransitionFreezeRule(TOVTransitionFreeze&& rule) {
    appendRule(transitionsFreeze, transitionsFreezeIndex, std::move(rule));
}
void TOVLifecycleBusinessRules::appendNewHistoryLinkRule(const TOVHistoryLink& rule) {
    appendRule(historyLinks, historyLinksIndex, rule);
}
void TOVLifecycleBusinessRules::appendNewHistoryLinkRule(TOVHistoryLink&& rule) {
    appendRule(historyLinks, historyLinksIndex, std::move(rule));
}
void TOVLifecycleBusinessRules::appendNewManualLinkRule(const TOVManualLink& rule) {
    appendRule(manualLinks, manualLinksIndex, rule);
}
void TOVLifecycleBusinessRules::appendNewManualLinkRule(TOVManualLink&& rule) {
    appendRule(manualLinks, manualLinksIndex, std::move(rule));
}
void TOVLifecycleBusinessRules::appendNewTransitionRule(const TOVTransition& rule) {
    appendRule(transitions, transitionsIndex, rule);
}
void TOVLifecycleBusinessRules::appendNewTransitionRule(TOVTransition&& rule) {
    appendRule(transitions, transitionsIndex, std::move(rule));
}
void TOVLifecycleBusinessRules::appendNewFileConstraintRule(const TOVFileConstraint& rule) {
    appendRule(fileConstraints, fileConstraintsIndex, rule);
}
void TOVLifecycleBusinessRules::appendNewFileConstraintRule(TOVFileConstraint&& rule) {
    appendRule(fileConstraints, fileConstraintsIndex, std::move(rule));
}
void TOVLifecycleBusinessRules::appendNewVersioningAttrSelectionRule(
    const TOVVersioningSelection& rule) {
    appendRule(versioningSelections, versioningSelectionsIndex, rule);
}
void TOVLifecycleBusinessRules::appendNewVersioningAttrSelectionRule(
    TOVVersioningSelection&& rule) {
    appendRule(versioningSelections, versioningSelectionsIndex, std::move(rule));
}
void TOVLifecycleBusinessRules::appendNewConflictResolutionRule(const TOVConflictResolution& rule) {
    appendRule(conflictResolutions, conflictResolutionsIndex, rule);
}
void TOVLifecycleBusinessRules::appendNewConflictResolutionRule(TOVConflictResolution&& rule) {
    appendRule(conflictResolutions, conflictResolutionsIndex, std::move(rule));
}
void TOVLifecycleBusinessRules::appendNewTriggerRule(const TOVTrigger& rule) {
    appendRule(triggers, triggersIndex, rule);
}
void TOVLifecycleBusinessRules::appendNewTriggerRule(TOVTrigger&& rule) {
    appendRule(triggers, triggersIndex, std::move(rule));
}

template <typename Rule>
void TOVLifecycleBusinessRules::reserveRules(std::size_t additional) {
    forEachRuleList(*this, [additional](auto& rules, const auto&, const TOVRuleKindWords&) {
        if constexpr (std::is_same_v<std::decay_t<decltype(rules)>, std::vector<Rule>>) {
            rules.reserve(rules.size() + additional);
        }
    });
}
template TOV_API void TOVLifecycleBusinessRules::reserveRules<TOVTransitionFreeze>(std::size_t);
template TOV_API void TOVLifecycleBusinessRules::reserveRules<TOVHistoryLink>(std::size_t);
template TOV_API void TOVLifecycleBusinessRules::reserveRules<TOVManualLink>(std::size_t);
template TOV_API void TOVLifecycleBusinessRules::reserveRules<TOVTransition>(std::size_t);
template TOV_API void TOVLifecycleBusinessRules::reserveRules<TOVTrigger>(std::size_t);
template TOV_API void TOVLifecycleBusinessRules::reserveRules<TOVVersioningSelection>(std::size_t);
template TOV_API void TOVLifecycleBusinessRules::reserveRules<TOVConflictResolution>(std::size_t);
template TOV_API void TOVLifecycleBusinessRules::reserveRules<TOVFileConstraint>(std::size_t);

void TOVLifecycleBusinessRules::clearAllRules() {
    forEachRuleList(*this, [](auto& rules, auto& index, const TOVRuleKindWords&) {
        rules.clear();
        index.clear();
    });
}

void TOVLifecycleBusinessRules::sortAllRules() {
    forEachRuleList(*this, [](auto& rules, auto& index, const TOVRuleKindWords&) {
        sortRulesOfKind(rules);
        indexRules(rules, index);
    });
}

bool TOVLifecycleBusinessRules::existAnyRules() const {
    bool any = false;
    forEachRuleList(*this, [&any](const auto& rules, const auto&, const TOVRuleKindWords&) {
        any = any || !rules.empty();
    });
    return any;
}

bool TOVLifecycleBusinessRules::getRelatedTransitionRules(
    const std::string& objectType, const std::vector<std::string>& attributes,
    const TOV_DMStructure* structure, std::vector<const TOVTransition*>& related) const {
    return selectRelatedRules(transitions, transitionsIndex, objectType, attributes, structure,
                              related);
}

bool TOVLifecycleBusinessRules::getRelatedTransitionFreezeRules(
    const std::string& objectType, const std::vector<std::string>& attributes,
    const TOV_DMStructure* structure, std::vector<const TOVTransitionFreeze*>& related) const {
    return selectRelatedRules(transitionsFreeze, transitionsFreezeIndex, objectType, attributes,
                              structure, related);
}

bool TOVLifecycleBusinessRules::getRelatedTriggerRules(
    const std::string& objectType, const std::vector<std::string>& attributes,
    const TOV_DMStructure* structure, std::vector<const TOVTrigger*>& related) const {
    return selectRelatedRules(triggers, triggersIndex, objectType, attributes, structure, related);
}

bool TOVLifecycleBusinessRules::getRelatedFileConstraintRules(
    const std::string& objectType, const std::vector<std::string>& attributes,
    const TOV_DMStructure* structure, std::vector<const TOVFileConstraint*>& related) const {
    return selectRelatedRules(fileConstraints, fileConstraintsIndex, objectType, attributes,
                              structure, related);
}

bool TOVLifecycleBusinessRules::getRelatedConflictResolutionRules(
    const std::string& objectType, const std::vector<std::string>& attributes,
    const TOV_DMStructure* structure, std::vector<const TOVConflictResolution*>& related) const {
    return selectRelatedRules(conflictResolutions, conflictResolutionsIndex, objectType, attributes,
                              structure, related);
}

bool TOVLifecycleBusinessRules::getRelatedHistoryLinkRulesExact(
    const std::string& objectType, const std::vector<std::string>& attributes,
    const AttributesMap& fromValues, const AttributesMap& toValues,
    const TOV_DMStructure* structure, std::vector<const TOVHistoryLink*>& related,
    TOVLogger* logger) const {
    const bool found = selectRelatedLinkRules(historyLinks, historyLinksIndex, objectType,
                                              attributes, fromValues, toValues, structure, related);
    printDetailsOfScenarioLookingForRelatedRules("HISTORY RULES LOOKUP", objectType, attributes,
                                                 toValues, static_cast<int>(related.size()),
                                                 logger);
    return found;
}

bool TOVLifecycleBusinessRules::getRelatedManualLinkRulesExact(
    const std::string& objectType, const std::vector<std::string>& attributes,
    const AttributesMap& fromValues, const AttributesMap& toValues,
    const TOV_DMStructure* structure, std::vector<const TOVManualLink*>& related,
    TOVLogger* logger) const {
    const bool found = selectRelatedLinkRules(manualLinks, manualLinksIndex, objectType, attributes,
                                              fromValues, toValues, structure, related);
    printDetailsOfScenarioLookingForRelatedRules("MANUAL RULES LOOKUP", objectType, attributes,
                                                 toValues, static_cast<int>(related.size()),
                                                 logger);
    return found;
}

bool TOVLifecycleBusinessRules::getRelatedVersioningSelectionRulesExact(
    const std::string& objectType, const AttributesMap& packet, const TOV_DMStructure* structure,
    std::vector<const TOVVersioningSelection*>& related) const {
    return selectRules(versioningSelections, versioningSelectionsIndex, objectType, structure,
                       related, [&packet](const TOVVersioningSelection& rule) {
                           return rule.mustSelectVersioningAttributesAccordingToRule(packet);
                       });
}

void TOVLifecycleBusinessRules::printDetailsOfScenarioLookingForRelatedRules(
    const char* heading, const std::string& objectType, const std::vector<std::string>& attributes,
    const AttributesMap& toValues, int count, TOVLogger* logger) const {
    // Without a reader the lookup says nothing, so the text is not built either.
    if (!isLogRead(logger)) {
        return;
    }
    const std::string message =
        std::string("*******") + heading + "********\n" + objectType + " edits " +
        createCommaSeparatedListOfStrings(attributes) +
        ".All target values=" + createCommaSeparatedStringStringMap(toValues) + "..... I found " +
        std::to_string(count) + " related rules.";
    logger->printToLog(message.c_str());
}

void TOVLifecycleBusinessRules::printTransitionsFreezeContentsDBG(TOVLogger* logger) const {
    printRulesOfKind<TOVTransitionFreeze>(logger);
}
void TOVLifecycleBusinessRules::printHistoryLinksContentsDBG(TOVLogger* logger) const {
    printRulesOfKind<TOVHistoryLink>(logger);
}
void TOVLifecycleBusinessRules::printManualLinksContentsDBG(TOVLogger* logger) const {
    printRulesOfKind<TOVManualLink>(logger);
}
void TOVLifecycleBusinessRules::printTransitionContentsDBG(TOVLogger* logger) const {
    printRulesOfKind<TOVTransition>(logger);
}
void TOVLifecycleBusinessRules::printTriggerContentsDBG(TOVLogger* logger) const {
    printRulesOfKind<TOVTrigger>(logger);
}
void TOVLifecycleBusinessRules::printVersioningAttrSelectionsDBG(TOVLogger* logger) const {
    printRulesOfKind<TOVVersioningSelection>(logger);
}
void TOVLifecycleBusinessRules::printConflictResolutionRulesDBG(TOVLogger* logger) const {
    printRulesOfKind<TOVConflictResolution>(logger);
}
void TOVLifecycleBusinessRules::printFileConstraintsDBG(TOVLogger* logger) const {
    printRulesOfKind<TOVFileConstraint>(logger);
}

void TOVLifecycleBusinessRules::printContentsDBG(TOVLogger* logger) const {
    forEachRuleList(*this, [logger](const auto& rules, const auto&, const TOVRuleKindWords& words) {
        printRules(words.heading, rules, logger);
    });
}

std::vector<std::pair<std::string, std::string>> TOVLifecycleBusinessRules::expressRulesInWords()
    const {
    std::vector<std::pair<std::string, std::string>> sentences;
    forEachRuleList(
        *this, [&sentences](const auto& rules, const auto&, const TOVRuleKindWords& words) {
            if constexpr (!std::is_same_v<std::decay_t<decltype(rules)>, std::vector<TOVTrigger>>) {
                for (const auto& rule : rules) {
                    std::string sentence;
                    rule.expressRuleInWords(sentence);
                    sentences.emplace_back(words.label, sentence);
                }
            }
        });
    return sentences;
}

std::vector<TOVTriggerDescription> TOVLifecycleBusinessRules::describeTriggerRules() const {
    std::vector<TOVTriggerDescription> descriptions;
    descriptions.reserve(triggers.size());
    for (const TOVTrigger& rule : triggers) {
        descriptions.push_back({rule.getObjectType(), rule.getAttribute(),
                                rule.getTriggerInitialize(), rule.getInitializationValue()});
    }
    return descriptions;
}

std::set<std::string> TOVLifecycleBusinessRules::collectObjectTypesOfRules() const {
    std::set<std::string> objectTypes;
    // A lambda here shares the store's friendship with the rule classes.
    forEachRuleList(*this, [&objectTypes](const auto& rules, const auto&, const TOVRuleKindWords&) {
        for (const auto& rule : rules) {
            objectTypes.insert(rule.getObjectType());
        }
    });
    return objectTypes;
}
