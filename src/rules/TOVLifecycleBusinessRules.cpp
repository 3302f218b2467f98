#include "tov/TOVLifecycleBusinessRules.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <optional>
#include <tuple>
#include <type_traits>
#include <utility>

#include "foundation/log_reading.h"
#include "foundation/name_index.h"
#include "rules/rule_kinds.h"
#include "rules/rule_list.h"
#include "tov/TOVConflictResolution.h"
#include "tov/TOVFileConstraint.h"
#include "tov/TOVHistoryLink.h"
#include "tov/TOVLogger.h"
#include "tov/TOVManualLink.h"
#include "tov/TOVTransition.h"
#include "tov/TOVTransitionFreeze.h"
#include "tov/TOVTrigger.h"
#include "tov/TOVVersioningSelection.h"
#include "tov/string_helpers.h"

namespace {

// Attribute names are matched exactly: no case folding, no wildcard.
bool listHoldsAttribute(const std::vector<std::string>& attributes, const std::string& name) {
    return std::find(attributes.begin(), attributes.end(), name) != attributes.end();
}

// listHoldsAttribute asked once per candidate rule: a long list is hashed on
// the first question, so that each rule costs one probe instead of a scan.
class AttributeNames {
public:
    explicit AttributeNames(const std::vector<std::string>& attributes) : attributes(attributes) {}

    bool hold(const std::string& name) {
        // Up to here a scan is as cheap as hashing the names.
        constexpr std::size_t kLongestScanned = 4;
        if (attributes.size() <= kLongestScanned) {
            return listHoldsAttribute(attributes, name);
        }
        if (!index) {
            index.emplace(attributes.size());
            for (const std::string& attribute : attributes) {
                index->add(attribute);
            }
        }
        return index->find(name) != NameIndex::npos;
    }

private:
    const std::vector<std::string>& attributes;
    std::optional<NameIndex> index;
};

// The value a link rule is judged on: the target's, else the initial one's.
std::string candidateValue(const std::string& attribute, const AttributesMap& fromValues,
                           const AttributesMap& toValues) {
    std::string value;
    if (!getValueofKeywordFromStringStringMap(attribute, toValues, value)) {
        getValueofKeywordFromStringStringMap(attribute, fromValues, value);
    }
    return value;
}

}  // namespace

struct TOVLifecycleBusinessRules::RuleAccess {
    // Every rule class begins its key with its object type.
    static constexpr bool kKeysBeginWithObjectType = true;
    template <typename Rule>
    static decltype(auto) objectType(const Rule& rule) {
        return rule.getObjectType();
    }
    template <typename Rule>
    static void appendSortKey(const Rule& rule, std::string& key) {
        rule.appendSortKey(key);
    }
};

struct TOVLifecycleBusinessRules::Lists {
    template <typename Rule>
    using ListOf = RuleList<Rule, RuleAccess>;

    // One list per kind, in the order of the table of kinds.
    template <std::size_t... Kinds>
    static auto listsOf(std::index_sequence<Kinds...>)
        -> std::tuple<ListOf<rulekinds::RuleAt<Kinds>>...>;
    decltype(listsOf(std::make_index_sequence<TOVRuleKindCount>())) byKind;

    template <typename Rule>
    ListOf<Rule>& of() {
        return std::get<ListOf<Rule>>(byKind);
    }
    template <typename Rule>
    const ListOf<Rule>& of() const {
        return std::get<ListOf<Rule>>(byKind);
    }

    // The one walk over all lists: `visit(list, words)` on each, in the order
    // of the table, with the words of its kind.
    template <typename Visit>
    void forEach(Visit&& visit) {
        std::apply([&visit](auto&... list) { (visit(list, wordsOfList(list)), ...); }, byKind);
    }
    template <typename Visit>
    void forEach(Visit&& visit) const {
        std::apply([&visit](const auto&... list) { (visit(list, wordsOfList(list)), ...); },
                   byKind);
    }

    template <typename List>
    static const TOVRuleKindWords& wordsOfList(const List&) {
        return rulekinds::wordsOf(rulekinds::kindOf<typename List::RuleType>());
    }

    // The plain lookup, shared by every kind that has a single attribute.
    template <typename Rule>
    bool selectRelated(const std::string& objectType, const std::vector<std::string>& attributes,
                       const TOV_DMStructure* structure, std::vector<const Rule*>& related) const {
        AttributeNames names(attributes);
        return of<Rule>().select(objectType, structure, related, [&names](const Rule& rule) {
            return names.hold(rule.getAttribute());
        });
    }

    template <typename Rule>
    bool selectRelatedLinks(const std::string& objectType,
                            const std::vector<std::string>& attributes,
                            const AttributesMap& fromValues, const AttributesMap& toValues,
                            const TOV_DMStructure* structure,
                            std::vector<const Rule*>& related) const {
        AttributeNames names(attributes);
        return of<Rule>().select(objectType, structure, related, [&](const Rule& rule) {
            return names.hold(rule.getAttribute()) &&
                   areStringsEqualAccountingAlsoAnyValue(
                       candidateValue(rule.getAttribute(), fromValues, toValues),
                       rule.getToValue());
        });
    }

    template <typename Rule>
    static void print(const char* heading, const ListOf<Rule>& list, TOVLogger* logger) {
        // A load prints every rule; with logging off that would be most of its cost.
        if (!isLogRead(logger)) {
            return;
        }
        logger->printToLog(heading);
        for (const Rule& rule : list.rules()) {
            rule.printContentsDBG(logger);
        }
    }
};

TOVLifecycleBusinessRules::TOVLifecycleBusinessRules() : lists(std::make_unique<Lists>()) {}

TOVLifecycleBusinessRules::TOVLifecycleBusinessRules(const TOVLifecycleBusinessRules& other)
    : lists(std::make_unique<Lists>(*other.lists)) {}

TOVLifecycleBusinessRules& TOVLifecycleBusinessRules::operator=(
    const TOVLifecycleBusinessRules& other) {
    if (this != &other) {
        *lists = *other.lists;
    }
    return *this;
}

TOVLifecycleBusinessRules::~TOVLifecycleBusinessRules() = default;

void TOVLifecycleBusinessRules::setTransitionsFreeze(
    const std::vector<TOVTransitionFreeze>& rules) {
    lists->of<TOVTransitionFreeze>().replace(rules);
}
void TOVLifecycleBusinessRules::setHistoryLinks(const std::vector<TOVHistoryLink>& rules) {
    lists->of<TOVHistoryLink>().replace(rules);
}
void TOVLifecycleBusinessRules::setManualLinks(const std::vector<TOVManualLink>& rules) {
    lists->of<TOVManualLink>().replace(rules);
}
void TOVLifecycleBusinessRules::setTransitions(const std::vector<TOVTransition>& rules) {
    lists->of<TOVTransition>().replace(rules);
}
void TOVLifecycleBusinessRules::setFileConstraints(const std::vector<TOVFileConstraint>& rules) {
    lists->of<TOVFileConstraint>().replace(rules);
}
void TOVLifecycleBusinessRules::setVersioningAttributesSelections(
    const std::vector<TOVVersioningSelection>& rules) {
    lists->of<TOVVersioningSelection>().replace(rules);
}
void TOVLifecycleBusinessRules::setConflictsResolutions(
    const std::vector<TOVConflictResolution>& rules) {
    lists->of<TOVConflictResolution>().replace(rules);
}
void TOVLifecycleBusinessRules::setTriggers(const std::vector<TOVTrigger>& rules) {
    lists->of<TOVTrigger>().replace(rules);
}

void TOVLifecycleBusinessRules::appendNewTransitionFreezeRule(const TOVTransitionFreeze& rule) {
    lists->of<TOVTransitionFreeze>().append(rule);
}
void TOVLifecycleBusinessRules::appendNewTransitionFreezeRule(TOVTransitionFreeze&& rule) {
    lists->of<TOVTransitionFreeze>().append(std::move(rule));
}
void TOVLifecycleBusinessRules::appendNewHistoryLinkRule(const TOVHistoryLink& rule) {
    lists->of<TOVHistoryLink>().append(rule);
}
void TOVLifecycleBusinessRules::appendNewHistoryLinkRule(TOVHistoryLink&& rule) {
    lists->of<TOVHistoryLink>().append(std::move(rule));
}
void TOVLifecycleBusinessRules::appendNewManualLinkRule(const TOVManualLink& rule) {
    lists->of<TOVManualLink>().append(rule);
}
void TOVLifecycleBusinessRules::appendNewManualLinkRule(TOVManualLink&& rule) {
    lists->of<TOVManualLink>().append(std::move(rule));
}
void TOVLifecycleBusinessRules::appendNewTransitionRule(const TOVTransition& rule) {
    lists->of<TOVTransition>().append(rule);
}
void TOVLifecycleBusinessRules::appendNewTransitionRule(TOVTransition&& rule) {
    lists->of<TOVTransition>().append(std::move(rule));
}
void TOVLifecycleBusinessRules::appendNewFileConstraintRule(const TOVFileConstraint& rule) {
    lists->of<TOVFileConstraint>().append(rule);
}
void TOVLifecycleBusinessRules::appendNewFileConstraintRule(TOVFileConstraint&& rule) {
    lists->of<TOVFileConstraint>().append(std::move(rule));
}
void TOVLifecycleBusinessRules::appendNewVersioningAttrSelectionRule(
    const TOVVersioningSelection& rule) {
    lists->of<TOVVersioningSelection>().append(rule);
}
void TOVLifecycleBusinessRules::appendNewVersioningAttrSelectionRule(
    TOVVersioningSelection&& rule) {
    lists->of<TOVVersioningSelection>().append(std::move(rule));
}
void TOVLifecycleBusinessRules::appendNewConflictResolutionRule(const TOVConflictResolution& rule) {
    lists->of<TOVConflictResolution>().append(rule);
}
void TOVLifecycleBusinessRules::appendNewConflictResolutionRule(TOVConflictResolution&& rule) {
    lists->of<TOVConflictResolution>().append(std::move(rule));
}
void TOVLifecycleBusinessRules::appendNewTriggerRule(const TOVTrigger& rule) {
    lists->of<TOVTrigger>().append(rule);
}
void TOVLifecycleBusinessRules::appendNewTriggerRule(TOVTrigger&& rule) {
    lists->of<TOVTrigger>().append(std::move(rule));
}

template <typename Rule>
void TOVLifecycleBusinessRules::reserveRules(std::size_t additional) {
    lists->of<Rule>().reserve(additional);
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
    lists->forEach([](auto& list, const TOVRuleKindWords&) { list.clear(); });
}

void TOVLifecycleBusinessRules::sortAllRules() {
    lists->forEach([](auto& list, const TOVRuleKindWords&) { list.sort(); });
}

bool TOVLifecycleBusinessRules::existAnyRules() const {
    bool any = false;
    lists->forEach(
        [&any](const auto& list, const TOVRuleKindWords&) { any = any || !list.empty(); });
    return any;
}

bool TOVLifecycleBusinessRules::getRelatedTransitionRules(
    const std::string& objectType, const std::vector<std::string>& attributes,
    const TOV_DMStructure* structure, std::vector<const TOVTransition*>& related) const {
    return lists->selectRelated(objectType, attributes, structure, related);
}

bool TOVLifecycleBusinessRules::getTransitionRulesOfObjectType(
    const std::string& objectType, const TOV_DMStructure* structure,
    std::vector<const TOVTransition*>& candidates) const {
    return lists->of<TOVTransition>().select(objectType, structure, candidates,
                                             [](const TOVTransition&) { return true; });
}

bool TOVLifecycleBusinessRules::getRelatedTransitionFreezeRules(
    const std::string& objectType, const std::vector<std::string>& attributes,
    const TOV_DMStructure* structure, std::vector<const TOVTransitionFreeze*>& related) const {
    return lists->selectRelated(objectType, attributes, structure, related);
}

bool TOVLifecycleBusinessRules::getRelatedTriggerRules(
    const std::string& objectType, const std::vector<std::string>& attributes,
    const TOV_DMStructure* structure, std::vector<const TOVTrigger*>& related) const {
    return lists->selectRelated(objectType, attributes, structure, related);
}

bool TOVLifecycleBusinessRules::getRelatedFileConstraintRules(
    const std::string& objectType, const std::vector<std::string>& attributes,
    const TOV_DMStructure* structure, std::vector<const TOVFileConstraint*>& related) const {
    return lists->selectRelated(objectType, attributes, structure, related);
}

bool TOVLifecycleBusinessRules::getRelatedConflictResolutionRules(
    const std::string& objectType, const std::vector<std::string>& attributes,
    const TOV_DMStructure* structure, std::vector<const TOVConflictResolution*>& related) const {
    return lists->selectRelated(objectType, attributes, structure, related);
}

bool TOVLifecycleBusinessRules::getRelatedHistoryLinkRulesExact(
    const std::string& objectType, const std::vector<std::string>& attributes,
    const AttributesMap& fromValues, const AttributesMap& toValues,
    const TOV_DMStructure* structure, std::vector<const TOVHistoryLink*>& related,
    TOVLogger* logger) const {
    const bool found =
        lists->selectRelatedLinks(objectType, attributes, fromValues, toValues, structure, related);
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
    const bool found =
        lists->selectRelatedLinks(objectType, attributes, fromValues, toValues, structure, related);
    printDetailsOfScenarioLookingForRelatedRules("MANUAL RULES LOOKUP", objectType, attributes,
                                                 toValues, static_cast<int>(related.size()),
                                                 logger);
    return found;
}

bool TOVLifecycleBusinessRules::getRelatedVersioningSelectionRulesExact(
    const std::string& objectType, const AttributesMap& packet, const TOV_DMStructure* structure,
    std::vector<const TOVVersioningSelection*>& related) const {
    return lists->of<TOVVersioningSelection>().select(
        objectType, structure, related, [&packet](const TOVVersioningSelection& rule) {
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

template <typename Rule>
void TOVLifecycleBusinessRules::printRulesOfKind(TOVLogger* logger) const {
    Lists::print(rulekinds::wordsOf(rulekinds::kindOf<Rule>()).heading, lists->of<Rule>(), logger);
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
    lists->forEach([logger](const auto& list, const TOVRuleKindWords& words) {
        Lists::print(words.heading, list, logger);
    });
}

std::vector<std::pair<std::string, std::string>> TOVLifecycleBusinessRules::expressRulesInWords()
    const {
    std::vector<std::pair<std::string, std::string>> sentences;
    lists->forEach([&sentences](const auto& list, const TOVRuleKindWords& words) {
        // A trigger is never reported as a violation, so it has no sentence.
        if constexpr (!std::is_same_v<typename std::decay_t<decltype(list)>::RuleType,
                                      TOVTrigger>) {
            for (const auto& rule : list.rules()) {
                std::string sentence;
                rule.expressRuleInWords(sentence);
                sentences.emplace_back(words.label, sentence);
            }
        }
    });
    return sentences;
}

std::vector<TOVTriggerDescription> TOVLifecycleBusinessRules::describeTriggerRules() const {
    const std::vector<TOVTrigger>& triggers = lists->of<TOVTrigger>().rules();
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
    lists->forEach([&objectTypes](const auto& list, const TOVRuleKindWords&) {
        for (const auto& rule : list.rules()) {
            objectTypes.insert(rule.getObjectType());
        }
    });
    return objectTypes;
}

std::size_t TOVLifecycleBusinessRules::countRules(TOVRuleKind kind) const {
    std::size_t count = 0;
    lists->forEach([kind, &count](const auto& list, const TOVRuleKindWords& words) {
        if (words.kind == kind) {
            count = list.size();
        }
    });
    return count;
}

template <typename Rule>
std::size_t TOVLifecycleBusinessRules::indexOfRule(const Rule* rule) const {
    const std::vector<Rule>& rules = lists->of<Rule>().rules();
    const Rule* first = rules.data();
    const Rule* end = first + rules.size();
    // std::less orders any two pointers, so a rule from elsewhere is told apart
    // safely; only a pointer into the list is subtracted.
    const std::less<const Rule*> before;
    if (rule == nullptr || rules.empty() || before(rule, first) || !before(rule, end)) {
        return std::numeric_limits<std::size_t>::max();
    }
    return static_cast<std::size_t>(rule - first);
}
template TOV_API std::size_t TOVLifecycleBusinessRules::indexOfRule(
    const TOVTransitionFreeze*) const;
template TOV_API std::size_t TOVLifecycleBusinessRules::indexOfRule(const TOVHistoryLink*) const;
template TOV_API std::size_t TOVLifecycleBusinessRules::indexOfRule(const TOVManualLink*) const;
template TOV_API std::size_t TOVLifecycleBusinessRules::indexOfRule(const TOVTransition*) const;
template TOV_API std::size_t TOVLifecycleBusinessRules::indexOfRule(const TOVTrigger*) const;
template TOV_API std::size_t TOVLifecycleBusinessRules::indexOfRule(
    const TOVVersioningSelection*) const;
template TOV_API std::size_t TOVLifecycleBusinessRules::indexOfRule(
    const TOVConflictResolution*) const;
template TOV_API std::size_t TOVLifecycleBusinessRules::indexOfRule(const TOVFileConstraint*) const;

std::string TOVLifecycleBusinessRules::ruleInWords(TOVRuleKind kind, std::size_t index) const {
    std::string sentence;
    lists->forEach([kind, index, &sentence](const auto& list, const TOVRuleKindWords& words) {
        if (words.kind == kind && index < list.size()) {
            list.rules()[index].expressRuleInWords(sentence);
        }
    });
    return sentence;
}

std::size_t TOVLifecycleBusinessRules::documentPositionOfRule(TOVRuleKind kind,
                                                              std::size_t index) const {
    std::size_t position = std::numeric_limits<std::size_t>::max();
    lists->forEach([kind, index, &position](const auto& list, const TOVRuleKindWords& words) {
        if (words.kind == kind && index < list.size()) {
            position = list.documentPosition(index);
        }
    });
    return position;
}
