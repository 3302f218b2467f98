#include "strict_checks.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "json_files.h"
#include "tov/rule_kinds.h"
#include "tov/string_helpers.h"

namespace tovcli {

namespace {

// The sections of the rules document in the order in which the library reads
// them, which is also the order in which near misses are weighed.
std::vector<std::string> ruleSectionsInReadingOrder() {
    std::vector<std::string> sections(TOVRuleKindCount);
    for (const TOVRuleKindWords& kind : GetTOVRuleKinds()) {
        sections[kind.readingPosition] = kind.section;
    }
    return sections;
}

const std::vector<std::string> kRuleSections = ruleSectionsInReadingOrder();

// The members of a rule of `section` that name an attribute of the object type.
const TOVWordList& attributeMembersOf(const std::string& section) {
    for (const TOVRuleKindWords& kind : GetTOVRuleKinds()) {
        if (section == kind.section) {
            return kind.attributeMembers;
        }
    }
    static const TOVWordList none{nullptr, 0};
    return none;
}

// A word of a fixed set, and what any other word loads as.
struct FixedWords {
    const char* section;
    const char* member;
    std::vector<std::string> words;
    const char* otherwise;
};

// The section of a kind, as the library reads it.
const char* sectionOf(TOVRuleKind kind) {
    return GetTOVRuleKinds()[kind].section;
}

const std::array<FixedWords, 3> kRuleWords = {{
    {sectionOf(TOVRuleKind_FileConstraint),
     "updateFile",
     {"FORBIDDEN", "MANDATORY"},
     "loads as no constraint, so the rule never forbids anything"},
    {sectionOf(TOVRuleKind_ConflictResolution),
     "updatesFile",
     {"YES", "NO", "N_A"},
     "loads as N_A, so the rule holds whether or not the file is updated"},
    {sectionOf(TOVRuleKind_ConflictResolution),
     "conflictResolution",
     {"overwrite", "spinup"},
     "loads as no constraint, so the rule never forces anything"},
}};

const std::array<FixedWords, 2> kDataModelWords = {{
    {"structureObjects", "dmObjectType", {"DMITEM", "RLI"}, "loads as DMITEM"},
    {"structureObjects", "type", {"REGULAR", "FILE", "VERSIONING"}, "loads as REGULAR"},
}};

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::string listInWords(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : ", ") + word;
    }
    return text.empty() ? "none" : text;
}

// One rule of the rules document and where it stands.
struct RuleAt {
    std::string section;
    std::string objectType;   // as written
    std::string matchedType;  // as loaded: "<any>" for "ALL"
    std::size_t number;       // from 1 in its object type's list
    const tovjson::Value* rule;

    std::string where() const { return objectType + " #" + std::to_string(number); }
};

class StrictChecker {
public:
    StrictChecker(const DocumentPaths& paths, const TOV_DMStructure& dataModel,
                  std::vector<Finding>& findings)
        : paths(paths), dataModel(dataModel), findings(findings) {}

    void checkRules(const tovjson::Value& root) {
        std::vector<RuleAt> rules;
        for (const auto& section : root.GetObject()) {
            const std::string name(section.name.GetString(), section.name.GetStringLength());
            if (std::find(kRuleSections.begin(), kRuleSections.end(), name) ==
                kRuleSections.end()) {
                const std::string nearest = nearestWord(name, kRuleSections, 3);
                note(paths.rulesPath, name,
                     "unknown section " + quoted(name) + " is ignored" +
                         (nearest.empty() ? "" : "; did you mean " + quoted(nearest) + "?"));
            } else if (!section.value.IsObject()) {
                note(paths.rulesPath, name,
                     "the section is a JSON " + std::string(jsonTypeName(section.value)) +
                         ", not an object, and is ignored");
            } else {
                collectRules(name, section.value, rules);
            }
        }
        for (const RuleAt& rule : rules) {
            checkRule(rule);
        }
        checkDuplicates(rules);
        checkConflictResolutions(rules);
    }

    void checkDataModel(const tovjson::Value& root) {
        const auto objects = root.FindMember("structureObjects");
        if (objects == root.MemberEnd() || !objects->value.IsArray()) {
            return;
        }
        for (const auto& object : objects->value.GetArray()) {
            const std::string name = stringOf(object, "name");
            checkFixedWords(paths.dataModelPath, name, object, kDataModelWords[0]);
            const auto attributes = object.FindMember("attributes");
            if (attributes == object.MemberEnd() || !attributes->value.IsArray()) {
                continue;
            }
            for (const auto& attribute : attributes->value.GetArray()) {
                checkFixedWords(paths.dataModelPath, name + " " + stringOf(attribute, "name"),
                                attribute, kDataModelWords[1]);
            }
        }
    }

private:
    void note(const std::string& document, const std::string& section, const std::string& message) {
        findings.push_back({Finding::kNote, document, section, {}, section + ": " + message});
    }

    void note(const RuleAt& rule, const std::string& message) {
        note(paths.rulesPath, rule.section, rule.where() + ": " + message);
    }

    static void collectRules(const std::string& section, const tovjson::Value& types,
                             std::vector<RuleAt>& rules) {
        for (const auto& type : types.GetObject()) {
            if (!type.value.IsArray()) {
                continue;
            }
            std::string objectType(type.name.GetString(), type.name.GetStringLength());
            std::string matched = objectType;
            changeAllToAny(matched);
            std::size_t number = 0;
            for (const auto& rule : type.value.GetArray()) {
                rules.push_back({section, objectType, matched, ++number, &rule});
            }
        }
    }

    bool hasDataModel() const { return !paths.dataModelPath.empty() && dataModel.existAnyInfo(); }

    // The object types of the data model that a rule's object type stands for.
    std::vector<const TOV_DMStructureObject*> typesOf(const std::string& matchedType) const {
        std::vector<const TOV_DMStructureObject*> types;
        for (const TOV_DMStructureObject& object : dataModel.getAllStructureObjects()) {
            if (dataModel.areObjectTypesThatShouldBeConsideredEqual(matchedType,
                                                                    object.getName())) {
                types.push_back(&object);
            }
        }
        return types;
    }

    static bool describes(const TOV_DMStructureObject& object, const std::string& attribute) {
        const auto named = [&attribute](const TOV_DMAttribute& candidate) {
            return candidate.getName() == attribute;
        };
        return std::any_of(object.getPrimaryAttributes().begin(),
                           object.getPrimaryAttributes().end(), named) ||
               std::any_of(object.getSecondaryAttributes().begin(),
                           object.getSecondaryAttributes().end(), named);
    }

    void checkRule(const RuleAt& rule) {
        const tovjson::Value& body = *rule.rule;
        for (const FixedWords& words : kRuleWords) {
            if (rule.section == words.section) {
                checkFixedWords(paths.rulesPath, rule.where(), body, words);
            }
        }
        if (findString(body, "attribute") != nullptr &&
            stringOf(body, "attribute") == TOVAttrItemValue_Any) {
            note(rule,
                 "attribute \"<any>\" is no wildcard where rules are looked up, so the "
                 "rule applies only to an attribute named \"<any>\"");
        }
        if (!hasDataModel()) {
            return;
        }
        const std::vector<const TOV_DMStructureObject*> types = typesOf(rule.matchedType);
        if (types.empty()) {
            return;  // an object type the data model lacks is told once for all its rules
        }
        std::vector<std::string> attributes;
        for (const char* member : attributeMembersOf(rule.section)) {
            attributes.push_back(stringOf(body, member));
        }
        const auto options = body.FindMember("versioningOption");
        if (options != body.MemberEnd() && options->value.IsArray()) {
            for (const auto& option : options->value.GetArray()) {
                if (option.IsString()) {
                    attributes.emplace_back(option.GetString(), option.GetStringLength());
                }
            }
            checkVersioningOptions(rule, types);
        }
        for (const std::string& attribute : attributes) {
            if (attribute.empty() || attribute == TOVAttrItemValue_Any ||
                attribute == TOVAttrItemKeyword_ProperVersioningAttribute) {
                continue;
            }
            const bool known = std::any_of(
                types.begin(), types.end(),
                [&](const TOV_DMStructureObject* type) { return describes(*type, attribute); });
            if (!known) {
                note(rule, quoted(attribute) + " is no attribute of " +
                               (types.size() == 1 ? types.front()->getName()
                                                  : std::string("any object type")) +
                               " in the data model");
            }
        }
    }

    void checkVersioningOptions(const RuleAt& rule,
                                const std::vector<const TOV_DMStructureObject*>& types) {
        const auto& options = (*rule.rule)["versioningOption"];
        for (const TOV_DMStructureObject* type : types) {
            std::vector<std::string> versioning;
            type->collectVersioningAttributes(versioning);
            const bool shared = std::any_of(
                options.Begin(), options.End(), [&versioning](const tovjson::Value& option) {
                    return option.IsString() && std::find(versioning.begin(), versioning.end(),
                                                          option.GetString()) != versioning.end();
                });
            if (!shared) {
                note(rule, "offers no versioning attribute of " + type->getName() + " (" +
                               listInWords(versioning) +
                               "), so no spin-up can follow the selection");
            }
        }
    }

    void checkFixedWords(const std::string& document, const std::string& where,
                         const tovjson::Value& body, const FixedWords& words) {
        if (findString(body, words.member) == nullptr) {
            return;
        }
        const std::string word = stringOf(body, words.member);
        if (std::find(words.words.begin(), words.words.end(), word) != words.words.end()) {
            return;
        }
        const auto sameButCase = std::find_if(
            words.words.begin(), words.words.end(),
            [&word](const std::string& known) { return areStringsEqualSimple(known, word); });
        std::string message = where + ": " + words.member + " " + quoted(word) + " ";
        if (sameButCase != words.words.end()) {
            message += words.otherwise + std::string("; the word is ") + quoted(*sameButCase) +
                       ", exactly in this case";
        } else {
            message +=
                std::string("is none of ") + listInWords(words.words) + " and " + words.otherwise;
        }
        note(document, words.section, message);
    }

    // Two rules of one kind that say the same for the same object type.
    void checkDuplicates(const std::vector<RuleAt>& rules) {
        std::map<std::string, const RuleAt*> seen;
        for (const RuleAt& rule : rules) {
            std::string matched = rule.matchedType;
            std::transform(matched.begin(), matched.end(), matched.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
            const std::string key = rule.section + '\n' + matched + '\n' + canonical(*rule.rule);
            const auto first = seen.emplace(key, &rule);
            if (!first.second) {
                note(rule, "repeats " + first.first->second->where());
            }
        }
    }

    // A rule's members in name order, lists as sets: what the rule says.
    static std::string canonical(const tovjson::Value& rule) {
        if (!rule.IsObject()) {
            return {};
        }
        std::map<std::string, std::set<std::string>> members;
        for (const auto& member : rule.GetObject()) {
            std::set<std::string>& values =
                members[std::string(member.name.GetString(), member.name.GetStringLength())];
            if (member.value.IsString()) {
                values.emplace(member.value.GetString(), member.value.GetStringLength());
            } else if (member.value.IsArray()) {
                for (const auto& element : member.value.GetArray()) {
                    if (element.IsString()) {
                        values.emplace(element.GetString(), element.GetStringLength());
                    }
                }
            } else if (member.value.IsBool()) {
                values.emplace(member.value.GetBool() ? "true" : "false");
            }
        }
        std::string text;
        for (const auto& member : members) {
            text += member.first + '=';
            for (const std::string& value : member.second) {
                text += value + '\x1f';
            }
            text += '\n';
        }
        return text;
    }

    // Conflict resolution rules that force overwrite and spin-up on one transition.
    void checkConflictResolutions(const std::vector<RuleAt>& rules) {
        std::vector<const RuleAt*> forcing;
        for (const RuleAt& rule : rules) {
            if (rule.section == sectionOf(TOVRuleKind_ConflictResolution) &&
                rule.rule->IsObject()) {
                forcing.push_back(&rule);
            }
        }
        for (std::size_t i = 0; i < forcing.size(); ++i) {
            for (std::size_t j = i + 1; j < forcing.size(); ++j) {
                const RuleAt& first = *forcing[i];
                const RuleAt& second = *forcing[j];
                if (contradict(first, second)) {
                    note(second, "forces " + stringOf(*second.rule, "conflictResolution") +
                                     " where " + first.where() + " forces " +
                                     stringOf(*first.rule, "conflictResolution") + " on " +
                                     stringOf(*second.rule, "attribute") + " from " +
                                     quoted(stringOf(*second.rule, "fromValue")) + " to " +
                                     quoted(stringOf(*second.rule, "toValue")));
                }
            }
        }
    }

    bool contradict(const RuleAt& first, const RuleAt& second) const {
        const tovjson::Value& a = *first.rule;
        const tovjson::Value& b = *second.rule;
        const std::string resolutionA = stringOf(a, "conflictResolution");
        const std::string resolutionB = stringOf(b, "conflictResolution");
        const bool opposite =
            (resolutionA == TOVAttrItemValue_Overwrite && resolutionB == TOVAttrItemValue_Spinup) ||
            (resolutionA == TOVAttrItemValue_Spinup && resolutionB == TOVAttrItemValue_Overwrite);
        // Any word but YES and NO loads as N_A, which holds either way.
        const auto fileWord = [](const tovjson::Value& rule) {
            const std::string word = stringOf(rule, "updatesFile");
            return word == TOVAttrItemValue_YES || word == TOVAttrItemValue_NO
                       ? word
                       : std::string(TOVAttrItemValue_N_A);
        };
        const std::string fileA = fileWord(a);
        const std::string fileB = fileWord(b);
        return opposite &&
               dataModel.areObjectTypesThatShouldBeConsideredEqual(first.matchedType,
                                                                   second.matchedType) &&
               stringOf(a, "attribute") == stringOf(b, "attribute") &&
               areStringsEqualAccountingAlsoAnyValue(stringOf(a, "fromValue"),
                                                     stringOf(b, "fromValue")) &&
               areStringsEqualAccountingAlsoAnyValue(stringOf(a, "toValue"),
                                                     stringOf(b, "toValue")) &&
               (fileA == fileB || fileA == TOVAttrItemValue_N_A || fileB == TOVAttrItemValue_N_A);
    }

    const DocumentPaths& paths;
    const TOV_DMStructure& dataModel;
    std::vector<Finding>& findings;
};

// A document's text parsed, from the text it holds or from its file.
bool parseDocument(const Document& document, std::uint64_t maxInputSize, tovjson::Document& json) {
    if (document.text != nullptr) {
        json.Parse<rapidjson::kParseIterativeFlag>(document.text->c_str(), document.text->size());
        return !json.HasParseError();
    }
    std::string error;
    return parseJsonFile(
        document.path, document.kind == Document::kRules ? "rules document" : "data-model document",
        maxInputSize, json, error);
}

}  // namespace

void checkStrictly(const DocumentPaths& paths, const TOV_DMStructure& dataModel,
                   std::vector<Finding>& findings) {
    std::vector<Document> documents;
    if (!paths.dataModelPath.empty()) {
        documents.push_back({Document::kDataModel, paths.dataModelPath, 0});
    }
    documents.push_back({Document::kRules, paths.rulesPath, 0});
    checkStrictly(documents, paths.maxInputSize, dataModel, findings);
}

void checkStrictly(const std::vector<Document>& documents, std::uint64_t maxInputSize,
                   const TOV_DMStructure& dataModel, std::vector<Finding>& findings) {
    DocumentPaths paths;
    paths.maxInputSize = maxInputSize;
    for (const Document& document : documents) {
        (document.kind == Document::kRules ? paths.rulesPath : paths.dataModelPath) = document.path;
    }
    StrictChecker checker(paths, dataModel, findings);
    // Both documents loaded a moment ago, so they read and parse again; the
    // data model first, as it loaded.
    for (const Document::Kind kind : {Document::kDataModel, Document::kRules}) {
        for (const Document& document : documents) {
            tovjson::Document json;
            if (document.kind != kind || !parseDocument(document, maxInputSize, json) ||
                !json.IsObject()) {
                continue;
            }
            if (kind == Document::kRules) {
                checker.checkRules(json);
            } else {
                checker.checkDataModel(json);
            }
        }
    }
}

}  // namespace tovcli
