#include "rules_in_words.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>

#include "json_output.h"

namespace tovcli {

namespace {

// The kinds as the store keeps them; the store's words carry the same labels.
constexpr std::array<const char*, 8> kKindsInStoreOrder = {
    "transition freeze", "history link",         "manual link",         "transition",
    "trigger",           "versioning selection", "conflict resolution", "file constraint",
};

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

RuleGroups groupRulesInWords(const TOVLifecycleBusinessRules& rules) {
    std::map<std::string, std::vector<std::string>> byKind;
    std::vector<std::string> kinds(kKindsInStoreOrder.begin(), kKindsInStoreOrder.end());
    for (const auto& entry : rules.expressRulesInWords()) {
        if (byKind.count(entry.first) == 0 &&
            std::find(kinds.begin(), kinds.end(), entry.first) == kinds.end()) {
            kinds.push_back(entry.first);  // a kind this program does not know yet
        }
        byKind[entry.first].push_back(entry.second);
    }
    for (const TOVTriggerDescription& trigger : rules.describeTriggerRules()) {
        byKind["trigger"].push_back(triggerInWords(trigger));
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
