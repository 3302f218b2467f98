#include "rule_load_faults.h"

#include <array>
#include <utility>

#include "input_files.h"
#include "json_files.h"
#include "json_output.h"
#include "placed_json.h"
#include "session.h"
#include "tov/TOVResponse.h"
#include "tov/entry_points.h"

namespace tovcli {

namespace {

using Shape = MemberShape;

// In the order of TOVRuleKind, as the section parsers take rules; a test holds
// each entry to the library's loads, member by member.
const std::array<RuleShape, TOVRuleKindCount> kShapes = {{
    // transition freeze
    {{{"attribute", Shape::kText, true},
      {"freezeConditionAttribute", Shape::kText, true},
      {"freezeConditionValue", Shape::kText, true}},
     true,
     false},
    // history link
    {{{"attribute", Shape::kNonEmptyText, true},
      {"fromValue", Shape::kNonEmptyText, true},
      {"toValue", Shape::kNonEmptyText, true},
      {"acceptableHistoryLinkValues", Shape::kNonEmptyTextList, true}},
     false,
     true},
    // manual link
    {{{"attribute", Shape::kNonEmptyText, true},
      {"fromValue", Shape::kNonEmptyText, true},
      {"toValue", Shape::kNonEmptyText, true},
      {"acceptableManualLinkValues", Shape::kNonEmptyTextList, true}},
     false,
     true},
    // transition
    {{{"attribute", Shape::kNonEmptyText, true},
      {"fromValue", Shape::kNonEmptyText, true},
      {"toValue", Shape::kNonEmptyTextList, true},
      {"allowJumps", Shape::kAnything, false},
      {"allowReverse", Shape::kAnything, false}},
     false,
     true},
    // trigger
    {{{"attribute", Shape::kText, true},
      {"triggerInitialize", Shape::kText, true},
      {"initializationValue", Shape::kText, true}},
     true,
     false},
    // versioning selection
    {{{"conditionAttribute1", Shape::kNonEmptyText, true},
      {"conditionValue1", Shape::kNonEmptyTextList, true},
      {"conditionAttribute2", Shape::kText, false},
      {"conditionValue2", Shape::kTextList, false},
      {"versioningOption", Shape::kNonEmptyTextList, true}},
     false,
     false},
    // conflict resolution
    {{{"attribute", Shape::kNonEmptyText, true},
      {"fromValue", Shape::kNonEmptyText, true},
      {"toValue", Shape::kNonEmptyText, true},
      {"updatesFile", Shape::kNonEmptyText, true},
      {"conflictResolution", Shape::kNonEmptyText, true},
      {"hasDifferentPrimaries", Shape::kBoolean, false}},
     false,
     true},
    // file constraint
    {{{"attribute", Shape::kText, true},
      {"fromValue", Shape::kText, true},
      {"toValue", Shape::kText, true},
      {"updateFile", Shape::kText, true}},
     true,
     false},
}};

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::string textOf(const tovjson::Value& value) {
    return {value.GetString(), value.GetStringLength()};
}

bool isList(Shape shape) {
    return shape == Shape::kTextList || shape == Shape::kNonEmptyTextList;
}

const char* shapeInWords(Shape shape) {
    switch (shape) {
        case Shape::kText:
        case Shape::kNonEmptyText:
            return "a string";
        case Shape::kTextList:
        case Shape::kNonEmptyTextList:
            return "a list of strings";
        case Shape::kBoolean:
            return "true or false";
        default:
            return "anything";
    }
}

// "a transition rule", from the kind's label.
std::string aRuleOf(TOVRuleKind kind) {
    return "a " + std::string(GetTOVRuleKinds()[kind].label) + " rule";
}

std::string neededInWords(const RuleShape& shape) {
    std::vector<std::string> names;
    for (const MemberRule& member : shape.members) {
        if (member.needed) {
            names.push_back(quoted(member.name));
        }
    }
    std::string words;
    for (std::size_t i = 0; i < names.size(); ++i) {
        words += (i == 0 ? "" : i + 1 == names.size() ? " and " : ", ") + names[i];
    }
    return words;
}

// What is wrong with one member's value, or empty.
std::string memberFault(TOVRuleKind kind, const MemberRule& member, const tovjson::Value& value) {
    if (member.shape == Shape::kAnything) {
        return {};
    }
    const std::string name = quoted(member.name);
    const bool fits = (member.shape == Shape::kBoolean && value.IsBool()) ||
                      (isList(member.shape) && value.IsArray()) ||
                      ((member.shape == Shape::kText || member.shape == Shape::kNonEmptyText) &&
                       value.IsString());
    if (!fits) {
        std::string words =
            name + " is a JSON " + jsonTypeName(value) + ", not " + shapeInWords(member.shape);
        if (isList(member.shape) && value.IsString()) {
            words += ": write [" + quoted(textOf(value)) + "]";
        }
        return words;
    }
    if (value.IsArray()) {
        std::size_t position = 0;
        for (const auto& element : value.GetArray()) {
            ++position;
            if (!element.IsString()) {
                return name + " holds a JSON " + jsonTypeName(element) + " (its element " +
                       std::to_string(position) + "), where it takes strings only";
            }
        }
        if (member.shape == Shape::kNonEmptyTextList && value.Empty()) {
            return name + " is an empty list, and " + aRuleOf(kind) + " needs at least one value " +
                   "there";
        }
    }
    if (member.shape == Shape::kNonEmptyText && value.IsString() && value.GetStringLength() == 0) {
        return name + " is empty, and " + aRuleOf(kind) + " needs a value there";
    }
    return {};
}

// What is wrong with `rule`, with the value it concerns in `anchor` (null
// when a member is missing); empty when nothing is.
std::string describeFault(TOVRuleKind kind, const std::string& objectType,
                          const tovjson::Value& rule, const tovjson::Value*& anchor) {
    anchor = nullptr;
    const RuleShape& shape = kShapes[static_cast<std::size_t>(kind)];
    if (objectType.empty() && shape.needsObjectType) {
        return "the object type is empty, and " + aRuleOf(kind) +
               " needs one (\"ALL\" for every type)";
    }
    // Each member as the library meets it, in the order of the text; a
    // member repeated is read each time.
    for (const auto& member : rule.GetObject()) {
        const std::string name = textOf(member.name);
        const MemberRule* known = nullptr;
        for (const MemberRule& candidate : shape.members) {
            if (name == candidate.name) {
                known = &candidate;
            }
        }
        std::string fault;
        if (known != nullptr) {
            fault = memberFault(kind, *known, member.value);
        } else if (shape.otherMembersAreText && !member.value.IsString()) {
            fault = quoted(name) + " is a JSON " + jsonTypeName(member.value) + ", and every " +
                    "member of " + aRuleOf(kind) + " must be a string";
        }
        if (!fault.empty()) {
            anchor = &member.value;
            return fault;
        }
    }
    for (const MemberRule& member : shape.members) {
        if (member.needed && !rule.HasMember(member.name)) {
            return "has no " + quoted(member.name) + ", and " + aRuleOf(kind) + " needs " +
                   neededInWords(shape);
        }
    }
    return {};
}

// Whether the member of a rule of `kind` is read for a notice only.
bool isPrintedOnly(TOVRuleKind kind, const std::string& name) {
    for (const MemberRule& member : kShapes[static_cast<std::size_t>(kind)].members) {
        if (name == member.name) {
            return member.shape == Shape::kAnything;
        }
    }
    return false;
}

}  // namespace

const RuleShape& ruleShapeOf(TOVRuleKind kind) {
    return kShapes[static_cast<std::size_t>(kind)];
}

std::string shapeFaultOf(TOVRuleKind kind, const std::string& objectType,
                         const tovjson::Value& rule) {
    const tovjson::Value* anchor = nullptr;
    return describeFault(kind, objectType, rule, anchor);
}

class RuleLoadFaults::Parsed {
public:
    bool usable = false;
    PlacedJson json;
    PrivateCore scratch{""};  // rules loaded alone, one at a time
};

RuleLoadFaults::RuleLoadFaults(const Document& document, std::uint64_t maxInputSize)
    : document(document), maxInputSize(maxInputSize) {}

RuleLoadFaults::~RuleLoadFaults() = default;

std::optional<Finding> RuleLoadFaults::noteFor(const std::string& section) {
    const TOVRuleKindWords* kind = nullptr;
    for (const TOVRuleKindWords& candidate : GetTOVRuleKinds()) {
        if (section == candidate.section) {
            kind = &candidate;
        }
    }
    if (kind == nullptr || document.kind != Document::kRules) {
        return std::nullopt;
    }
    if (parsed == nullptr) {
        parsed = std::make_unique<Parsed>();
        std::string text;
        std::string error;
        if (document.text != nullptr) {
            text = *document.text;
        } else if (!readInput(document.path, "rules document", maxInputSize, text, error)) {
            return std::nullopt;
        }
        parsed->usable =
            parsed->json.parse(std::move(text), error) && parsed->json.root().IsObject();
    }
    if (!parsed->usable) {
        return std::nullopt;
    }
    // The library reads the first member of that name.
    const tovjson::Value& root = parsed->json.root();
    const auto found = root.FindMember(section.c_str());
    if (found == root.MemberEnd() || !found->value.IsObject()) {
        return std::nullopt;
    }
    const auto note = [&](const tovjson::Value& anchor, const std::string& message) {
        return Finding{Finding::kNote, document.path, section, parsed->json.placeOf(anchor),
                       section + ": " + message};
    };
    for (const auto& type : found->value.GetObject()) {
        const std::string objectType = textOf(type.name);
        if (!type.value.IsArray()) {
            return note(type.value, "the rules of " + objectType + " are a JSON " +
                                        jsonTypeName(type.value) + ", not a list");
        }
        std::size_t number = 0;
        for (const auto& rule : type.value.GetArray()) {
            const std::string where = objectType + " #" + std::to_string(++number);
            if (!rule.IsObject()) {
                return note(
                    rule, where + ": the rule is a JSON " + jsonTypeName(rule) + ", not an object");
            }
            // The library judges the rule alone, so that the note never blames
            // a rule it would take. Members read only for a notice are left
            // out, so that nothing is printed: a server may be answering on
            // other threads meanwhile.
            tovjson::StringBuffer alone;
            JsonWriter writer(alone);
            writer.StartObject();
            writer.Key(section.c_str(), static_cast<rapidjson::SizeType>(section.size()));
            writer.StartObject();
            writeString(writer, objectType);
            writer.StartArray();
            writer.StartObject();
            for (const auto& member : rule.GetObject()) {
                if (!isPrintedOnly(kind->kind, textOf(member.name))) {
                    writeString(writer, textOf(member.name));
                    writeValue(writer, member.value);
                }
            }
            writer.EndObject();
            writer.EndArray();
            writer.EndObject();
            writer.EndObject();
            const bool refused =
                !InitializeTOVRules(std::string(alone.GetString(), alone.GetSize()),
                                    parsed->scratch.get())
                     .getGeneralResult();
            if (!refused) {
                continue;
            }
            const tovjson::Value* member = nullptr;
            const std::string fault = describeFault(kind->kind, objectType, rule, member);
            return note(member != nullptr ? *member : rule,
                        where + ": " + (fault.empty() ? "the library refuses this rule" : fault));
        }
    }
    return std::nullopt;
}

}  // namespace tovcli
