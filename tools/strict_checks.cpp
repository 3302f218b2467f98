#include "strict_checks.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>

#include "input_files.h"
#include "json_files.h"
#include "placed_json.h"
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

const TOVRuleKindWords* kindOfSection(const std::string& section) {
    for (const TOVRuleKindWords& kind : GetTOVRuleKinds()) {
        if (section == kind.section) {
            return &kind;
        }
    }
    return nullptr;
}

// A word of a fixed set, and what any other word loads as.
struct FixedWords {
    TOVRuleKind kind;
    const char* member;
    std::vector<std::string> words;
    const char* otherwise;
};

const std::array<FixedWords, 3> kRuleWords = {{
    {TOVRuleKind_FileConstraint,
     "updateFile",
     {"FORBIDDEN", "MANDATORY"},
     "loads as no constraint, so the rule never forbids anything"},
    {TOVRuleKind_ConflictResolution,
     "updatesFile",
     {"YES", "NO", "N_A"},
     "loads as N_A, so the rule holds whether or not the file is updated"},
    {TOVRuleKind_ConflictResolution,
     "conflictResolution",
     {"overwrite", "spinup"},
     "loads as no constraint, so the rule never forces anything"},
}};

struct DataModelWords {
    const char* member;
    std::vector<std::string> words;
    const char* otherwise;
};

const DataModelWords kObjectTypeWords = {"dmObjectType", {"DMITEM", "RLI"}, "loads as DMITEM"};
const DataModelWords kAttributeTypeWords = {
    "type", {"REGULAR", "FILE", "VERSIONING"}, "loads as REGULAR"};

// Where a value of the attribute that a rule watches is named, and whether the
// rule compares it exactly, case included.
struct ValueMember {
    TOVRuleKind kind;
    const char* member;
    const char* attributeMember;  // the member that names the value's attribute
    bool exact;
};

const std::array<ValueMember, 11> kValueMembers = {{
    {TOVRuleKind_TransitionFreeze, "freezeConditionValue", "freezeConditionAttribute", false},
    {TOVRuleKind_FileConstraint, "fromValue", "attribute", false},
    {TOVRuleKind_FileConstraint, "toValue", "attribute", false},
    {TOVRuleKind_ConflictResolution, "fromValue", "attribute", false},
    {TOVRuleKind_ConflictResolution, "toValue", "attribute", false},
    {TOVRuleKind_HistoryLink, "toValue", "attribute", false},
    {TOVRuleKind_HistoryLink, "acceptableHistoryLinkValues", "attribute", true},
    {TOVRuleKind_ManualLink, "toValue", "attribute", false},
    {TOVRuleKind_ManualLink, "acceptableManualLinkValues", "attribute", true},
    {TOVRuleKind_VersioningSelection, "conditionValue1", "conditionAttribute1", true},
    {TOVRuleKind_VersioningSelection, "conditionValue2", "conditionAttribute2", true},
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

std::string quotedList(const std::vector<std::string>& words) {
    std::vector<std::string> quotedWords;
    quotedWords.reserve(words.size());
    for (const std::string& word : words) {
        quotedWords.push_back(quoted(word));
    }
    return listInWords(quotedWords);
}

std::string textOf(const tovjson::Value& value) {
    return {value.GetString(), value.GetStringLength()};
}

std::string folded(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

// The string members of a rule named `member`, alone or in a list, each with
// the value that holds it.
std::vector<const tovjson::Value*> stringsOf(const tovjson::Value& rule, const char* member) {
    std::vector<const tovjson::Value*> strings;
    const auto found = rule.FindMember(member);
    if (found == rule.MemberEnd()) {
        return strings;
    }
    if (found->value.IsString()) {
        strings.push_back(&found->value);
    } else if (found->value.IsArray()) {
        for (const auto& element : found->value.GetArray()) {
            if (element.IsString()) {
                strings.push_back(&element);
            }
        }
    }
    return strings;
}

// One rule of the rules document and where it stands.
struct RuleAt {
    const TOVRuleKindWords* kind;
    std::string objectType;   // as written
    std::string matchedType;  // as loaded: "<any>" for "ALL"
    std::size_t number;       // from 1 in its object type's list
    std::size_t explained;    // from 1 across its section, as tov explain numbers it
    const tovjson::Value* rule;

    bool is(TOVRuleKind other) const { return kind->kind == other; }
    std::string where() const {
        return objectType + " #" + std::to_string(number) + " (explain " +
               std::to_string(explained) + ")";
    }
};

class StrictChecker {
public:
    StrictChecker(const DocumentPaths& paths, const TOV_DMStructure& dataModel)
        : paths(paths), dataModel(dataModel) {}

    void checkDataModel(const PlacedJson& json) {
        document = &json;
        isDataModel = true;
        const tovjson::Value& root = json.root();
        checkRepeatedNames(root, {});
        const auto objects = root.FindMember("structureObjects");
        if (objects == root.MemberEnd() || !objects->value.IsArray()) {
            return;
        }
        for (const auto& object : objects->value.GetArray()) {
            const std::string name = stringOf(object, "name");
            checkFixedWords(object, "structureObjects", name, kObjectTypeWords);
            const auto attributes = object.FindMember("attributes");
            if (attributes == object.MemberEnd() || !attributes->value.IsArray()) {
                continue;
            }
            for (const auto& attribute : attributes->value.GetArray()) {
                checkFixedWords(attribute, "structureObjects",
                                name + " " + stringOf(attribute, "name"), kAttributeTypeWords);
            }
        }
    }

    void checkRules(const PlacedJson& json) {
        document = &json;
        isDataModel = false;
        const tovjson::Value& root = json.root();
        std::vector<RuleAt> rules;
        std::set<std::string> read;
        for (const auto& section : root.GetObject()) {
            const std::string name = textOf(section.name);
            if (!read.insert(name).second) {
                continue;  // told among the repeated names below
            }
            if (std::find(kRuleSections.begin(), kRuleSections.end(), name) ==
                kRuleSections.end()) {
                const std::string nearest = nearestWord(name, kRuleSections, 3);
                warn(section.name, name,
                     "unknown section " + quoted(name) + " is ignored" +
                         (nearest.empty() ? "" : "; did you mean " + quoted(nearest) + "?"));
            } else if (!section.value.IsObject()) {
                warn(section.name, name,
                     "the section is a JSON " + std::string(jsonTypeName(section.value)) +
                         ", not an object, and is ignored");
            } else {
                collectRules(*kindOfSection(name), section.value, rules);
            }
        }
        checkRepeatedNames(root, rules);
        for (const RuleAt& rule : rules) {
            checkRule(rule);
        }
        checkDuplicates(rules);
        checkConflictResolutions(rules);
        checkTransitionsFromOneValue(rules);
        checkNamedValues(rules);
    }

    // Every finding with its place, the data model's first, each document's
    // in the order of its text.
    void finish(std::vector<Finding>& findings) {
        std::vector<std::pair<std::pair<std::size_t, std::size_t>, Finding>> placed;
        for (const auto& byDocument : pending) {
            std::vector<const tovjson::Value*> anchors;
            for (const Pending& entry : byDocument.second) {
                anchors.push_back(entry.anchor);
            }
            const auto places = byDocument.first->placesOf(anchors);
            std::vector<std::pair<std::pair<std::size_t, std::size_t>, Finding>> ofDocument;
            for (const Pending& entry : byDocument.second) {
                Finding finding = entry.finding;
                const auto place = places.find(entry.anchor);
                if (place != places.end()) {
                    finding.location = place->second;
                }
                ofDocument.emplace_back(lineAndColumn(finding.location), std::move(finding));
            }
            std::stable_sort(ofDocument.begin(), ofDocument.end(),
                             [](const auto& a, const auto& b) { return a.first < b.first; });
            placed.insert(placed.end(), ofDocument.begin(), ofDocument.end());
        }
        for (auto& entry : placed) {
            findings.push_back(std::move(entry.second));
        }
    }

private:
    struct Pending {
        Finding finding;
        const tovjson::Value* anchor;
    };

    static std::pair<std::size_t, std::size_t> lineAndColumn(const std::string& location) {
        const std::size_t colon = location.find(':');
        if (colon == std::string::npos) {
            return {0, 0};
        }
        return {std::stoul(location.substr(0, colon)), std::stoul(location.substr(colon + 1))};
    }

    // A warning about `anchor`, a value or member name of the current document.
    void warn(const tovjson::Value& anchor, const std::string& section,
              const std::string& message) {
        if (pending.empty() || pending.back().first != document) {
            pending.emplace_back(document, std::vector<Pending>());
        }
        const std::string& path = isDataModel ? paths.dataModelPath : paths.rulesPath;
        pending.back().second.push_back(
            {{Finding::kWarning, path, section, {}, section + ": " + message}, &anchor});
    }

    void warn(const RuleAt& rule, const tovjson::Value& anchor, const std::string& message) {
        warn(anchor, rule.kind->section, rule.where() + ": " + message);
    }

    static void collectRules(const TOVRuleKindWords& kind, const tovjson::Value& types,
                             std::vector<RuleAt>& rules) {
        std::size_t explained = 0;
        for (const auto& type : types.GetObject()) {
            if (!type.value.IsArray()) {
                continue;
            }
            const std::string objectType = textOf(type.name);
            std::string matched = objectType;
            changeAllToAny(matched);
            std::size_t number = 0;
            for (const auto& rule : type.value.GetArray()) {
                rules.push_back({&kind, objectType, matched, ++number, ++explained, &rule});
            }
        }
    }

    // Member names that an object repeats: the library keeps one of them, or
    // joins both, without a word. Only the first of a section's repeats is
    // read; the program's walk keeps its own stack.
    void checkRepeatedNames(const tovjson::Value& root, const std::vector<RuleAt>& rules) {
        std::unordered_map<const tovjson::Value*, const RuleAt*> ruleOf;
        for (const RuleAt& rule : rules) {
            ruleOf.emplace(rule.rule, &rule);
        }
        struct Frame {
            const tovjson::Value* value;
            std::string section;
            const RuleAt* rule;
        };
        std::vector<Frame> stack{{&root, {}, nullptr}};
        while (!stack.empty()) {
            const Frame frame = stack.back();
            stack.pop_back();
            const tovjson::Value& value = *frame.value;
            if (value.IsArray()) {
                for (auto element = value.End(); element != value.Begin();) {
                    --element;
                    const auto rule = ruleOf.find(&*element);
                    stack.push_back({&*element, frame.section,
                                     rule == ruleOf.end() ? frame.rule : rule->second});
                }
                continue;
            }
            if (!value.IsObject()) {
                continue;
            }
            std::unordered_map<std::string, const tovjson::Value*> names;
            for (const auto& member : value.GetObject()) {
                const std::string name = textOf(member.name);
                const auto first = names.emplace(name, &member.name);
                if (!first.second) {
                    tellRepeatedName(frame, member.name, *first.first->second, name,
                                     frame.value == &root);
                }
            }
            for (auto member = value.MemberEnd(); member != value.MemberBegin();) {
                --member;
                stack.push_back({&member->value,
                                 frame.value == &root ? textOf(member->name) : frame.section,
                                 frame.rule});
            }
        }
    }

    template <typename Frame>
    void tellRepeatedName(const Frame& frame, const tovjson::Value& repeated,
                          const tovjson::Value& first, const std::string& name, bool topLevel) {
        const std::string firstPlace = document->placeOf(first);
        const std::string section = topLevel ? name : frame.section;
        std::string message;
        if (topLevel && !isDataModel && kindOfSection(name) != nullptr) {
            message = quoted(name) + " is named a second time (first at " + firstPlace +
                      "); the library reads only the first and ignores this section without a "
                      "word: merge the two";
        } else {
            message = quoted(name) + " is named a second time in one object (first at " +
                      firstPlace +
                      "); a JSON object names each member once, and which of the two counts is "
                      "not told: keep one";
        }
        if (frame.rule != nullptr) {
            message = frame.rule->where() + ": " + message;
        }
        warn(repeated, section, message);
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
        if (!body.IsObject()) {
            return;
        }
        for (const FixedWords& words : kRuleWords) {
            if (rule.is(words.kind)) {
                checkFixedWords(rule, words);
            }
        }
        checkMembers(rule);
        const tovjson::Value* attribute = findString(body, "attribute");
        if (attribute != nullptr && textOf(*attribute) == TOVAttrItemValue_Any) {
            warn(rule, *attribute,
                 "attribute \"<any>\" is no wildcard where rules are looked up, so the rule "
                 "applies only to an attribute named \"<any>\"");
        }
        const tovjson::Value* from = findString(body, "fromValue");
        if (from != nullptr && rule.is(TOVRuleKind_Transition) &&
            isThisTheReservedAnyValue(textOf(*from))) {
            std::vector<std::string> targets;
            for (const tovjson::Value* target : stringsOf(body, "toValue")) {
                targets.push_back(textOf(*target));
            }
            warn(rule, *from,
                 "fromValue \"<any>\" holds on every value of " + stringOf(body, "attribute") +
                     ", beside the rules for each value, and all rules that apply must hold: "
                     "every value may move only to " +
                     quotedList(targets) + "; write a rule for each value instead");
        }
        if (from != nullptr &&
            (rule.is(TOVRuleKind_HistoryLink) || rule.is(TOVRuleKind_ManualLink)) &&
            textOf(*from) != TOVAttrItemValue_Any) {
            const std::string watched = stringOf(body, "attribute");
            const std::string to = quoted(stringOf(body, "toValue"));
            warn(rule, *from,
                 "fromValue " + quoted(textOf(*from)) + " is ignored: the rule holds " +
                     (rule.is(TOVRuleKind_HistoryLink)
                          ? "whenever " + watched + " is " + to + " after an edit"
                          : "whenever an edit changes " + watched + " to " + to) +
                     ", whatever it was before; write \"<any>\"");
        }
        checkAttributesAgainstDataModel(rule);
    }

    // Members that the kind does not have are read by nothing.
    void checkMembers(const RuleAt& rule) {
        std::vector<std::string> known;
        for (const char* member : rule.kind->members) {
            known.emplace_back(member);
        }
        for (const auto& member : rule.rule->GetObject()) {
            const std::string name = textOf(member.name);
            if (std::find(known.begin(), known.end(), name) != known.end()) {
                continue;
            }
            const std::string nearest = nearestWord(name, known, 3);
            warn(rule, member.name,
                 quoted(name) + " is no member of a " + rule.kind->label +
                     " rule and is ignored; " +
                     (nearest.empty() ? "the members are " + listInWords(known)
                                      : "did you mean " + quoted(nearest) + "?"));
        }
    }

    void checkAttributesAgainstDataModel(const RuleAt& rule) {
        if (!hasDataModel()) {
            return;
        }
        const std::vector<const TOV_DMStructureObject*> types = typesOf(rule.matchedType);
        if (types.empty()) {
            return;  // an object type the data model lacks is told once for all its rules
        }
        const tovjson::Value& body = *rule.rule;
        std::vector<const tovjson::Value*> attributes;
        for (const char* member : rule.kind->attributeMembers) {
            if (const tovjson::Value* named = findString(body, member)) {
                attributes.push_back(named);
            }
        }
        const auto options = body.FindMember("versioningOption");
        if (options != body.MemberEnd() && options->value.IsArray()) {
            for (const tovjson::Value* option : stringsOf(body, "versioningOption")) {
                attributes.push_back(option);
            }
            checkVersioningOptions(rule, types);
        }
        for (const tovjson::Value* named : attributes) {
            const std::string attribute = textOf(*named);
            if (attribute.empty() || attribute == TOVAttrItemValue_Any ||
                attribute == TOVAttrItemKeyword_ProperVersioningAttribute) {
                continue;
            }
            const bool known = std::any_of(
                types.begin(), types.end(),
                [&](const TOV_DMStructureObject* type) { return describes(*type, attribute); });
            if (!known) {
                warn(rule, *named,
                     quoted(attribute) + " is no attribute of " +
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
                warn(rule, options,
                     "offers no versioning attribute of " + type->getName() + " (" +
                         listInWords(versioning) + "), so no spin-up can follow the selection");
            }
        }
    }

    template <typename Words>
    static std::string fixedWordMessage(const std::string& word, const Words& words) {
        const auto sameButCase = std::find_if(
            words.words.begin(), words.words.end(),
            [&word](const std::string& known) { return areStringsEqualSimple(known, word); });
        std::string message = std::string(words.member) + " " + quoted(word) + " ";
        if (sameButCase != words.words.end()) {
            return message + words.otherwise + "; the word is " + quoted(*sameButCase) +
                   ", exactly in this case";
        }
        return message + "is none of " + listInWords(words.words) + " and " + words.otherwise;
    }

    void checkFixedWords(const RuleAt& rule, const FixedWords& words) {
        const tovjson::Value* value = findString(*rule.rule, words.member);
        if (value == nullptr) {
            return;
        }
        const std::string word = textOf(*value);
        if (std::find(words.words.begin(), words.words.end(), word) == words.words.end()) {
            warn(rule, *value, fixedWordMessage(word, words));
        }
    }

    void checkFixedWords(const tovjson::Value& object, const char* section,
                         const std::string& where, const DataModelWords& words) {
        const tovjson::Value* value = findString(object, words.member);
        if (value == nullptr) {
            return;
        }
        const std::string word = textOf(*value);
        if (std::find(words.words.begin(), words.words.end(), word) == words.words.end()) {
            warn(*value, section, where + ": " + fixedWordMessage(word, words));
        }
    }

    // Two rules of one kind that say the same for the same object type.
    void checkDuplicates(const std::vector<RuleAt>& rules) {
        std::map<std::string, const RuleAt*> seen;
        for (const RuleAt& rule : rules) {
            const std::string key = std::string(rule.kind->section) + '\n' +
                                    folded(rule.matchedType) + '\n' + canonical(*rule.rule);
            const auto first = seen.emplace(key, &rule);
            if (!first.second) {
                warn(rule, *rule.rule, "repeats " + first.first->second->where());
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
            std::set<std::string>& values = members[textOf(member.name)];
            if (member.value.IsString()) {
                values.emplace(textOf(member.value));
            } else if (member.value.IsArray()) {
                for (const auto& element : member.value.GetArray()) {
                    if (element.IsString()) {
                        values.emplace(textOf(element));
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
            if (rule.is(TOVRuleKind_ConflictResolution) && rule.rule->IsObject()) {
                forcing.push_back(&rule);
            }
        }
        const auto key = [](const RuleAt& rule) { return stringOf(*rule.rule, "attribute"); };
        forEachWithEarlierOverlapping(
            forcing, key, [this](const RuleAt& second, const std::vector<const RuleAt*>& earlier) {
                for (const RuleAt* first : earlier) {
                    if (contradict(*first, second)) {
                        warn(second, *second.rule,
                             "forces " + stringOf(*second.rule, "conflictResolution") + " where " +
                                 first->where() + " forces " +
                                 stringOf(*first->rule, "conflictResolution") + " on " +
                                 stringOf(*second.rule, "attribute") + " from " +
                                 quoted(stringOf(*second.rule, "fromValue")) + " to " +
                                 quoted(stringOf(*second.rule, "toValue")));
                    }
                }
            });
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
        return opposite && overlap(first, second) &&
               stringOf(a, "attribute") == stringOf(b, "attribute") &&
               areStringsEqualAccountingAlsoAnyValue(stringOf(a, "fromValue"),
                                                     stringOf(b, "fromValue")) &&
               areStringsEqualAccountingAlsoAnyValue(stringOf(a, "toValue"),
                                                     stringOf(b, "toValue")) &&
               (fileA == fileB || fileA == TOVAttrItemValue_N_A || fileB == TOVAttrItemValue_N_A);
    }

    // Whether some object type is judged by both rules.
    bool overlap(const RuleAt& first, const RuleAt& second) const {
        return dataModel.areObjectTypesThatShouldBeConsideredEqual(first.matchedType,
                                                                   second.matchedType);
    }

    static bool isWildcardType(const std::string& matchedType) {
        return isThisTheReservedAnyValue(matchedType) ||
               areStringsEqualSimple(matchedType, TOVAttrItemValue_Library_Item);
    }

    // Calls `visit(rule, earlier)` for each of `rules`, in document order, with
    // the earlier rules of the same `key` whose object types overlap its own.
    // Two types that differ other than in case overlap only through a
    // wildcard, so a rule of a named type looks at its own type and at the
    // wildcards alone, and large documents are checked in about linear time.
    template <typename Key, typename Visit>
    void forEachWithEarlierOverlapping(const std::vector<const RuleAt*>& rules, Key&& key,
                                       Visit&& visit) const {
        struct Group {
            std::map<std::string, std::vector<const RuleAt*>> byType;  // folded type
            std::vector<std::string> wildcards;                        // of byType's keys
        };
        std::map<std::string, Group> seen;
        for (const RuleAt* rule : rules) {
            Group& group = seen[key(*rule)];
            const std::string type = folded(rule->matchedType);
            std::vector<const RuleAt*> earlier;
            const auto take = [&](const std::vector<const RuleAt*>& bucket) {
                if (!bucket.empty() && overlap(*bucket.front(), *rule)) {
                    earlier.insert(earlier.end(), bucket.begin(), bucket.end());
                }
            };
            if (isWildcardType(type)) {
                for (const auto& bucket : group.byType) {
                    take(bucket.second);
                }
            } else {
                const auto own = group.byType.find(type);
                if (own != group.byType.end()) {
                    take(own->second);
                }
                for (const std::string& wildcard : group.wildcards) {
                    take(group.byType[wildcard]);
                }
            }
            std::sort(earlier.begin(), earlier.end(),
                      [](const RuleAt* a, const RuleAt* b) { return a->explained < b->explained; });
            visit(*rule, earlier);
            std::vector<const RuleAt*>& bucket = group.byType[type];
            if (bucket.empty() && isWildcardType(type)) {
                group.wildcards.push_back(type);
            }
            bucket.push_back(rule);
        }
    }

    // Transition rules of one attribute from one value (the from side compares
    // without regard to case) all apply, and each must hold: a move must be a
    // target of every one of them.
    void checkTransitionsFromOneValue(const std::vector<RuleAt>& rules) {
        std::vector<const RuleAt*> transitions;
        for (const RuleAt& rule : rules) {
            if (rule.is(TOVRuleKind_Transition) && findString(*rule.rule, "fromValue") != nullptr &&
                !isThisTheReservedAnyValue(stringOf(*rule.rule, "fromValue"))) {
                transitions.push_back(&rule);
            }
        }
        const auto key = [](const RuleAt& rule) {
            return stringOf(*rule.rule, "attribute") + '\n' +
                   folded(stringOf(*rule.rule, "fromValue"));
        };
        forEachWithEarlierOverlapping(
            transitions, key,
            [this](const RuleAt& rule, const std::vector<const RuleAt*>& earlier) {
                if (earlier.empty()) {
                    return;
                }
                const std::string from = stringOf(*rule.rule, "fromValue");
                std::vector<std::string> common = targetsOf(rule);
                std::vector<std::string> others;
                for (const RuleAt* other : earlier) {
                    common = commonTargets(common, targetsOf(*other));
                    others.push_back(other->where());
                }
                warn(rule, *rule.rule,
                     stringOf(*rule.rule, "attribute") + " from " + quoted(from) +
                         " has a rule already, " + listInWords(others) +
                         ", and every rule that applies must hold, so " + quoted(from) +
                         " may move only to what all of them list: " + quotedList(common) +
                         "; write the targets of " + quoted(from) + " in one rule");
            });
    }

    static std::vector<std::string> targetsOf(const RuleAt& rule) {
        std::vector<std::string> targets;
        for (const tovjson::Value* target : stringsOf(*rule.rule, "toValue")) {
            targets.push_back(textOf(*target));
        }
        return targets;
    }

    // Targets compare exactly; "<any>" among them permits every value.
    static std::vector<std::string> commonTargets(const std::vector<std::string>& first,
                                                  const std::vector<std::string>& second) {
        const auto opensAll = [](const std::vector<std::string>& targets) {
            return std::find(targets.begin(), targets.end(), TOVAttrItemValue_Any) != targets.end();
        };
        if (opensAll(first)) {
            return second;
        }
        if (opensAll(second)) {
            return first;
        }
        std::vector<std::string> common;
        for (const std::string& target : first) {
            if (std::find(second.begin(), second.end(), target) != second.end()) {
                common.push_back(target);
            }
        }
        return common;
    }

    // The values of one attribute that transition rules name: each spelling
    // with the rule that named it first, in order of first naming, and by
    // folded spelling the first of them.
    struct NamedValues {
        std::vector<std::pair<std::string, const RuleAt*>> spellings;
        std::unordered_map<std::string, std::size_t> exact;
        std::unordered_map<std::string, std::size_t> byFolded;

        void add(const std::string& text, const RuleAt* rule) {
            if (exact.emplace(text, spellings.size()).second) {
                byFolded.emplace(folded(text), spellings.size());
                spellings.emplace_back(text, rule);
            }
        }
        // The first spelling that differs from `text` only in case, or null.
        const std::pair<std::string, const RuleAt*>* sameButCase(const std::string& text) const {
            const auto found = byFolded.find(folded(text));
            return found == byFolded.end() ? nullptr : &spellings[found->second];
        }
    };

    // Values of an attribute that no transition rule names are most often
    // misspelt, and a rule about a misspelt value never meets the real one
    // where values are compared exactly. The values are held to those that the
    // transition rules of every object type name, since one type's value is
    // another's too.
    void checkNamedValues(const std::vector<RuleAt>& rules) {
        std::map<std::string, NamedValues> named;  // by attribute
        for (const RuleAt& rule : rules) {
            if (!rule.is(TOVRuleKind_Transition)) {
                continue;
            }
            NamedValues& values = named[stringOf(*rule.rule, "attribute")];
            for (const char* member : {"fromValue", "toValue"}) {
                for (const tovjson::Value* value : stringsOf(*rule.rule, member)) {
                    if (!isThisTheReservedAnyValue(textOf(*value))) {
                        values.add(textOf(*value), &rule);
                    }
                }
            }
        }
        for (const RuleAt& rule : rules) {
            if (rule.is(TOVRuleKind_Transition)) {
                const auto values = named.find(stringOf(*rule.rule, "attribute"));
                if (values != named.end()) {
                    checkTransitionTargets(rule, values->second);
                }
                continue;
            }
            for (const ValueMember& member : kValueMembers) {
                if (!rule.is(member.kind)) {
                    continue;
                }
                const auto values = named.find(stringOf(*rule.rule, member.attributeMember));
                if (values == named.end()) {
                    continue;  // no transition rule tells the values of that attribute
                }
                for (const tovjson::Value* value : stringsOf(*rule.rule, member.member)) {
                    checkNamedValue(rule, member, *value, values->first, values->second);
                }
            }
        }
    }

    void checkNamedValue(const RuleAt& rule, const ValueMember& member, const tovjson::Value& value,
                         const std::string& attribute, const NamedValues& values) {
        const std::string text = textOf(value);
        if (isThisTheReservedAnyValue(text) || values.exact.count(text) > 0) {
            return;
        }
        if (const auto* sameButCase = values.sameButCase(text)) {
            if (member.exact) {
                warn(rule, value,
                     std::string(member.member) + " " + quoted(text) +
                         " differs only in case from " + quoted(sameButCase->first) +
                         ", which the transition rules name, and this member is compared "
                         "exactly, case included: write " +
                         quoted(sameButCase->first));
            }
            return;
        }
        std::vector<std::string> spellings;
        for (const auto& entry : values.spellings) {
            spellings.push_back(entry.first);
        }
        const std::string nearest =
            nearestWord(text, spellings, std::max<std::size_t>(2, text.size() / 3));
        warn(rule, value,
             std::string(member.member) + " " + quoted(text) + " is no value of " + attribute +
                 " that a transition rule names (" + listInWords(spellings) + "); " +
                 (nearest.empty() ? "add a transition rule for it, or correct it"
                                  : "did you mean " + quoted(nearest) + "?"));
    }

    // A transition's targets are compared exactly: a target spelt otherwise
    // than the same value was first named is never met by a host's value.
    void checkTransitionTargets(const RuleAt& rule, const NamedValues& values) {
        for (const tovjson::Value* target : stringsOf(*rule.rule, "toValue")) {
            const std::string text = textOf(*target);
            const auto* first = values.sameButCase(text);
            if (first != nullptr && first->first != text) {
                warn(rule, *target,
                     "toValue " + quoted(text) + " differs only in case from " +
                         quoted(first->first) + ", which " + first->second->where() +
                         " names first, and targets are compared exactly, case included: "
                         "write " +
                         quoted(first->first));
            }
        }
    }

    const DocumentPaths& paths;
    const TOV_DMStructure& dataModel;
    std::vector<std::pair<const PlacedJson*, std::vector<Pending>>> pending;
    // The document being checked.
    const PlacedJson* document = nullptr;
    bool isDataModel = false;
};

// Reads and parses a document that loaded a moment ago, so it reads and parses
// again: from its text when it is held as one, else from its file.
bool readPlaced(const Document& document, std::uint64_t limit, PlacedJson& json) {
    std::string text;
    std::string error;
    if (document.text != nullptr) {
        text = *document.text;
    } else if (!readInput(
                   document.path,
                   document.kind == Document::kRules ? "rules document" : "data-model document",
                   limit, text, error)) {
        return false;
    }
    return json.parse(std::move(text), error) && json.root().IsObject();
}

}  // namespace

void findLikelyMistakes(const std::vector<Document>& documents, std::uint64_t maxInputSize,
                        const TOV_DMStructure& dataModel, std::vector<Finding>& findings) {
    DocumentPaths paths;
    paths.maxInputSize = maxInputSize;
    for (const Document& document : documents) {
        (document.kind == Document::kRules ? paths.rulesPath : paths.dataModelPath) = document.path;
    }
    StrictChecker checker(paths, dataModel);
    // Each document stays parsed until every finding is placed; the data model first, as it loaded.
    PlacedJson dataModelJson;
    PlacedJson rulesJson;
    for (const Document::Kind kind : {Document::kDataModel, Document::kRules}) {
        for (const Document& document : documents) {
            if (document.kind != kind) {
                continue;
            }
            PlacedJson& json = kind == Document::kRules ? rulesJson : dataModelJson;
            if (!readPlaced(document, maxInputSize, json)) {
                continue;
            }
            if (kind == Document::kRules) {
                checker.checkRules(json);
            } else {
                checker.checkDataModel(json);
            }
        }
    }
    checker.finish(findings);
}

}  // namespace tovcli
