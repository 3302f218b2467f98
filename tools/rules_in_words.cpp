#include "rules_in_words.h"

#include <algorithm>
#include <map>
#include <set>

#include "json_output.h"
#include "judging_order.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVTrigger.h"
#include "tov/TOV_DMStructure.h"
#include "tov/TOV_DMStructureObject.h"
#include "tov/rule_kinds.h"
#include "tov/string_helpers.h"
#include "tov/vocabulary.h"

namespace tovcli {

RuleGroups groupRulesInWords(const TOVLifecycleBusinessRules& rules) {
    // The store's words come kind by kind, each kind's rules in the order in
    // which they are asked; the place of each in its kind tells its number.
    std::map<std::string, std::vector<RuleInWords>> byKind;
    const auto numberOf = [&rules](TOVRuleKind kind, std::size_t index) {
        return rules.documentPositionOfRule(kind, index) + 1;
    };
    const auto kindLabelled = [](const std::string& label) {
        for (const TOVRuleKindWords& kind : GetTOVRuleKinds()) {
            if (label == kind.label) {
                return kind.kind;
            }
        }
        return TOVRuleKind_Trigger;  // never: every label is a kind's
    };
    for (const auto& entry : rules.expressRulesInWords()) {
        std::vector<RuleInWords>& group = byKind[entry.first];
        group.push_back({numberOf(kindLabelled(entry.first), group.size()), entry.second});
    }
    const std::string triggers = GetTOVRuleKinds()[TOVRuleKind_Trigger].label;
    for (const TOVTriggerDescription& trigger : rules.describeTriggerRules()) {
        std::vector<RuleInWords>& group = byKind[triggers];
        group.push_back(
            {numberOf(TOVRuleKind_Trigger, group.size()), expressTriggerInWords(trigger)});
    }
    RuleGroups groups;
    for (const TOVRuleKind kind : ruleKindsInJudgingOrder()) {
        const std::string label = GetTOVRuleKinds()[kind].label;
        auto group = byKind.find(label);
        if (group != byKind.end()) {
            groups.emplace_back(label, std::move(group->second));
        }
    }
    return groups;
}

std::optional<std::vector<std::string>> libraryItemTypes(const TOVLifecycleBusinessRules& rules,
                                                         const TOV_DMStructure& dataModel) {
    const std::set<std::string> objectTypes = rules.collectObjectTypesOfRules();
    const bool named = std::any_of(objectTypes.begin(), objectTypes.end(), [](const auto& type) {
        return areStringsEqualSimple(type, TOVAttrItemValue_Library_Item);
    });
    if (!named) {
        return std::nullopt;
    }
    std::vector<std::string> types;
    for (const TOV_DMStructureObject& object : dataModel.getAllStructureObjects()) {
        if (object.isThisAnRLI()) {
            types.push_back(object.getName());
        }
    }
    return types;
}

std::string rulesInWordsJson(const RuleGroups& groups,
                             const std::optional<std::vector<std::string>>& libraryItem) {
    tovjson::StringBuffer buffer;
    JsonWriter writer(buffer);
    writer.StartObject();
    writer.Key("kinds");
    writer.StartArray();
    for (const auto& group : groups) {
        writer.StartObject();
        writer.Key("kind");
        writeString(writer, group.first);
        writer.Key("rules");
        writer.StartArray();
        for (const RuleInWords& rule : group.second) {
            writeString(writer, rule.sentence);
        }
        writer.EndArray();
        writer.Key("numbers");
        writer.StartArray();
        for (const RuleInWords& rule : group.second) {
            writer.Uint64(rule.number);
        }
        writer.EndArray();
        writer.EndObject();
    }
    writer.EndArray();
    if (libraryItem) {
        writer.Key("libraryItem");
        writer.StartArray();
        for (const std::string& type : *libraryItem) {
            writeString(writer, type);
        }
        writer.EndArray();
    }
    writer.EndObject();
    return {buffer.GetString(), buffer.GetSize()};
}

}  // namespace tovcli
