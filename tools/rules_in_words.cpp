#include "rules_in_words.h"

#include <algorithm>
#include <map>
#include <set>

#include "json_output.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVTrigger.h"
#include "tov/TOV_DMStructure.h"
#include "tov/TOV_DMStructureObject.h"
#include "tov/rule_kinds.h"
#include "tov/string_helpers.h"
#include "tov/vocabulary.h"

namespace tovcli {

std::vector<std::string> labelsInStoreOrder() {
    std::vector<std::string> labels;
    for (const TOVRuleKindWords& kind : GetTOVRuleKinds()) {
        labels.emplace_back(kind.label);
    }
    return labels;
}

RuleGroups groupRulesInWords(const TOVLifecycleBusinessRules& rules) {
    std::map<std::string, std::vector<std::string>> byKind;
    std::vector<std::string> kinds = labelsInStoreOrder();
    for (const auto& entry : rules.expressRulesInWords()) {
        if (byKind.count(entry.first) == 0 &&
            std::find(kinds.begin(), kinds.end(), entry.first) == kinds.end()) {
            kinds.push_back(entry.first);  // a kind this program does not know yet
        }
        byKind[entry.first].push_back(entry.second);
    }
    for (const TOVTriggerDescription& trigger : rules.describeTriggerRules()) {
        byKind[GetTOVRuleKinds()[TOVRuleKind_Trigger].label].push_back(expressTriggerInWords(trigger));
    }
    RuleGroups groups;
    for (const std::string& kind : kinds) {
        auto sentences = byKind.find(kind);
        if (sentences != byKind.end()) {
            groups.emplace_back(kind, std::move(sentences->second));
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
        for (const std::string& sentence : group.second) {
            writeString(writer, sentence);
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
