// The loaded rules read back in words, as tov explain tells them and the
// service hands them out: grouped by kind, in the order of judgement.
#ifndef TOV_TOOLS_RULES_IN_WORDS_H_
#define TOV_TOOLS_RULES_IN_WORDS_H_

#include <optional>
#include <string>
#include <utility>
#include <vector>

class TOVLifecycleBusinessRules;
class TOV_DMStructure;

namespace tovcli {

// The labels of the kinds ("transition freeze", ...) in the order of the
// store's lists, which is the order in which they are judged.
std::vector<std::string> labelsInStoreOrder();

// Kind ("transition freeze", ...) with the sentences of its rules.
using RuleGroups = std::vector<std::pair<std::string, std::vector<std::string>>>;

// The sentences of every rule, grouped by kind in the order in which the
// kinds are judged, each group in store order.
RuleGroups groupRulesInWords(const TOVLifecycleBusinessRules& rules);

// "Library_Item" stands for every RLI type: with a data model at hand, and
// rules written for it, the names of those types (perhaps none).
std::optional<std::vector<std::string>> libraryItemTypes(const TOVLifecycleBusinessRules& rules,
                                                         const TOV_DMStructure& dataModel);

// {"kinds": [{"kind": ..., "rules": [...]}, ...]} and, when given,
// "libraryItem": the form of tov explain --format json, without a line end.
std::string rulesInWordsJson(const RuleGroups& groups,
                             const std::optional<std::vector<std::string>>& libraryItem);

}  // namespace tovcli

#endif  // TOV_TOOLS_RULES_IN_WORDS_H_
