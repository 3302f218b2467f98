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

namespace {

// A trigger is never reported as a violation, so the library has no sentence
// for it; this one reads like the sentences of the other kinds.
std::string triggerInWords(const TOVTriggerDescription& trigger) {
    std::string words =
        "For " + trigger.objectType + ": When " + trigger.attribute + " is edited, ";
    if (trigger.triggerInitialize == TOVAttrItemKeyword_ProperVersioningAttribute) {
        words += "the proper versioning attribute (" + trigger.triggerInitialize + ")";
    } else {
        words += trigger.triggerInitialize;
    }
    words += " must be initialized to " + createStringInQuotes(trigger.initializationValue.c_str());
    return words;
}

}  // namespace

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
        byKind[GetTOVRuleKinds()[TOVRuleKind_Trigger].label].push_back(triggerInWords(trigger));
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
