// The loaded rules read back in words, as tov explain tells them and the
// service hands them out: grouped by kind, in the order of judgement, each
// rule with its number in the document.
#ifndef TOV_TOOLS_RULES_IN_WORDS_H_
#define TOV_TOOLS_RULES_IN_WORDS_H_

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

class TOVLifecycleBusinessRules;
class TOV_DMStructure;

namespace tovcli {

// One rule in words, with its number: its place in its section of the rules
// document, from 1, counted across the section's object types in the order
// of the document, which check's findings and the decision trace use too.
struct RuleInWords {
    std::size_t number;
    std::string sentence;
};

// Kind ("transition freeze", ...) with its rules.
using RuleGroups = std::vector<std::pair<std::string, std::vector<RuleInWords>>>;

// The rules of every kind, grouped by kind in the order in which they are
// judged (judging_order.h), each group in the order in which the library asks
// its rules, which decides the rule that a refusal names.
RuleGroups groupRulesInWords(const TOVLifecycleBusinessRules& rules);

// "Library_Item" stands for every RLI type: with a data model at hand, and
// rules written for it, the names of those types (perhaps none).
std::optional<std::vector<std::string>> libraryItemTypes(const TOVLifecycleBusinessRules& rules,
                                                         const TOV_DMStructure& dataModel);

// {"kinds": [{"kind": ..., "rules": [sentence, ...], "numbers": [number, ...]},
// ...]} and, when given, "libraryItem": the form of tov explain --format json,
// without a line end.
std::string rulesInWordsJson(const RuleGroups& groups,
                             const std::optional<std::vector<std::string>>& libraryItem);

}  // namespace tovcli

#endif  // TOV_TOOLS_RULES_IN_WORDS_H_
