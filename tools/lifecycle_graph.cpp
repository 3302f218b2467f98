#include "lifecycle_graph.h"

#include <algorithm>
#include <functional>
#include <initializer_list>
#include <utility>

#include "json_files.h"
#include "tov/TOVJsonComposer.h"
#include "tov/rule_kinds.h"
#include "tov/string_helpers.h"
#include "tov/vocabulary.h"

namespace tovcli {

namespace {

// The section of a kind, as the library reads it.
const char* sectionOf(TOVRuleKind kind) {
    return GetTOVRuleKinds()[kind].section;
}

// Calls `visit` with every rule object of `section` written for an object type
// that matches `objectType`.
void forEachRule(const tovjson::Value& rules, const char* section, const std::string& objectType,
                 const TOV_DMStructure& dataModel,
                 const std::function<void(const tovjson::Value&)>& visit) {
    const auto found = rules.FindMember(section);
    if (found == rules.MemberEnd() || !found->value.IsObject()) {
        return;
    }
    for (const auto& type : found->value.GetObject()) {
        std::string ruleType(type.name.GetString(), type.name.GetStringLength());
        changeAllToAny(ruleType);
        if (!type.value.IsArray() ||
            !dataModel.areObjectTypesThatShouldBeConsideredEqual(ruleType, objectType)) {
            continue;
        }
        for (const auto& rule : type.value.GetArray()) {
            if (rule.IsObject()) {
                visit(rule);
            }
        }
    }
}

// Spellings that differ only in case are one value to the library's packets,
// so they are one state, told as first written; "<any>" is no value at all.
void addValue(std::vector<std::string>& values, const std::string& value) {
    if (value.empty() || isThisTheReservedAnyValue(value)) {
        return;
    }
    const bool known = std::any_of(values.begin(), values.end(), [&](const std::string& other) {
        return areStringsEqualSimple(other, value);
    });
    if (!known) {
        values.push_back(value);
    }
}

void addValues(std::vector<std::string>& values, const tovjson::Value& rule, const char* member) {
    const auto found = rule.FindMember(member);
    if (found == rule.MemberEnd()) {
        return;
    }
    if (found->value.IsString()) {
        addValue(values, std::string(found->value.GetString(), found->value.GetStringLength()));
    } else if (found->value.IsArray()) {
        for (const auto& element : found->value.GetArray()) {
            if (element.IsString()) {
                addValue(values, std::string(element.GetString(), element.GetStringLength()));
            }
        }
    }
}

// What the library said to one way of asking for a move.
struct Verdict {
    bool passes = false;  // approved, or refused only for want of linked objects
    bool asksFamily = false;
    bool asksAncestors = false;
    std::string comment;
};

Verdict verdictOf(const TOVResponse& response) {
    Verdict verdict;
    TOVMissingDataForEvaluation missing;
    const bool pending = !response.getGeneralResult() && response.needsReevaluation(missing);
    verdict.passes = response.getGeneralResult() || pending;
    verdict.asksFamily = pending && missing.objectFamilyMembersMissing;
    verdict.asksAncestors = pending && missing.manualLinkAncestorsMissing;
    verdict.comment = response.getGeneralResultComment();
    return verdict;
}

// An edit and a save of one move: the kind asked before conflict resolution,
// the full kind, and whether an upload goes with it.
struct Way {
    const char* beforeResolution;
    const char* full;
};

constexpr Way kEdit{"edit-before-resolution", "edit"};
constexpr Way kSave{"save-before-resolution", "save"};

// Asks the library about the moves of one attribute of one object type.
class MoveProbe {
public:
    MoveProbe(const std::string& objectType, const std::string& attribute,
              const TOV_DMStructure& dataModel, const LifecycleJudge& judge)
        : objectType(objectType), attribute(attribute), judge(judge) {
        std::vector<std::string> versioning;
        dataModel.collectVersioningAttributesOfObject(objectType, versioning);
        // A spin-up changes a versioning attribute; which one does not matter
        // to the conflict resolution rules.
        if (!versioning.empty() && versioning.front() != attribute) {
            spinUpAttribute = versioning.front();
        }
    }

    // The move alone, as an overwrite: no versioning attribute changes.
    Verdict ask(const char* kind, const std::string& from, const std::string& to) const {
        return askWith(kind, {{attribute, from}}, {{attribute, to}});
    }

    // The move with a spin-up beside it; passes nothing when the type has no
    // versioning attribute to spin up along.
    Verdict askSpinningUp(const char* kind, const std::string& from, const std::string& to) const {
        if (spinUpAttribute.empty()) {
            return {};
        }
        return askWith(kind, {{attribute, from}, {spinUpAttribute, "1"}},
                       {{attribute, to}, {spinUpAttribute, "2"}});
    }

private:
    Verdict askWith(const char* kind, const AttributesMap& initial,
                    const AttributesMap& target) const {
        std::string request;
        composeSimpleTransitionJson(objectType, initial, target, request);
        return verdictOf(judge(kind, request));
    }

    const std::string& objectType;
    const std::string& attribute;
    const LifecycleJudge& judge;
    std::string spinUpAttribute;
};

// Which of the two ways a conflict resolution forces, as a label: whether
// every way that lets the move pass is forced, or the save or the edit alone.
std::string forcedLabel(const char* what, bool forcedAsEdit, bool forcedAsSave, bool editPasses,
                        bool savePasses) {
    if (!forcedAsEdit && !forcedAsSave) {
        return {};
    }
    std::string label = std::string("forced ") + what;
    if ((forcedAsEdit || !editPasses) && (forcedAsSave || !savePasses)) {
        return label;
    }
    return label + (forcedAsSave ? " if the file is updated" : " if the file is not updated");
}

// A way forces a spin-up when it passes before conflict resolution and not
// after, with no versioning attribute changing; it forces an overwrite when
// the same holds with one changing.
bool forcesSpinUp(const MoveProbe& probe, const Way& way, const Verdict& before,
                  const std::string& from, const std::string& to) {
    return before.passes && !probe.ask(way.full, from, to).passes;
}

bool forcesOverwrite(const MoveProbe& probe, const Way& way, const std::string& from,
                     const std::string& to) {
    return probe.askSpinningUp(way.beforeResolution, from, to).passes &&
           !probe.askSpinningUp(way.full, from, to).passes;
}

// The labels of a move that passes as an edit, a save or both.
std::vector<std::string> labelsOfMove(const MoveProbe& probe, const std::string& from,
                                      const std::string& to, const Verdict& asEdit,
                                      const Verdict& asSave) {
    std::vector<std::string> labels;
    if (!asEdit.passes) {
        labels.emplace_back("file upload required");
    } else if (!asSave.passes) {
        labels.emplace_back("no file upload");
    }
    const std::string spinUp =
        forcedLabel("spin-up", forcesSpinUp(probe, kEdit, asEdit, from, to),
                    forcesSpinUp(probe, kSave, asSave, from, to), asEdit.passes, asSave.passes);
    const std::string overwrite = forcedLabel(
        "overwrite", asEdit.passes && forcesOverwrite(probe, kEdit, from, to),
        asSave.passes && forcesOverwrite(probe, kSave, from, to), asEdit.passes, asSave.passes);
    for (const std::string* label : {&spinUp, &overwrite}) {
        if (!label->empty()) {
            labels.push_back(*label);
        }
    }
    if ((asEdit.passes && asEdit.asksFamily) || (asSave.passes && asSave.asksFamily)) {
        labels.emplace_back("asks for the family");
    }
    if ((asEdit.passes && asEdit.asksAncestors) || (asSave.passes && asSave.asksAncestors)) {
        labels.emplace_back("asks for the ancestors");
    }
    return labels;
}

// The value of `values` that `written` stands for: itself (in its first
// spelling), or every value for "<any>".
std::vector<std::string> valuesMeant(const std::vector<std::string>& values,
                                     const std::string& written) {
    if (isThisTheReservedAnyValue(written)) {
        return values;
    }
    std::vector<std::string> meant;
    for (const std::string& value : values) {
        if (areStringsEqualSimple(value, written)) {
            meant.push_back(value);
        }
    }
    return meant;
}

// The moves that the rules name, each once, in order of first naming.
std::vector<std::pair<std::string, std::string>> namedMoves(
    const tovjson::Value& rules, const std::string& objectType, const std::string& attribute,
    const TOV_DMStructure& dataModel, const std::vector<std::string>& values) {
    std::vector<std::pair<std::string, std::string>> moves;
    const auto name = [&](const std::string& from, const std::string& to) {
        for (const std::string& source : valuesMeant(values, from)) {
            for (const std::string& target : valuesMeant(values, to)) {
                const std::pair<std::string, std::string> move(source, target);
                if (!areStringsEqualSimple(source, target) &&
                    std::find(moves.begin(), moves.end(), move) == moves.end()) {
                    moves.push_back(move);
                }
            }
        }
    };
    for (const TOVRuleKind kind :
         {TOVRuleKind_Transition, TOVRuleKind_FileConstraint, TOVRuleKind_ConflictResolution}) {
        forEachRule(rules, sectionOf(kind), objectType, dataModel, [&](const tovjson::Value& rule) {
            if (stringOf(rule, "attribute") != attribute) {
                return;
            }
            const std::string from = stringOf(rule, "fromValue");
            const auto to = rule.FindMember("toValue");
            if (to == rule.MemberEnd()) {
                return;
            }
            if (to->value.IsString()) {
                name(from, stringOf(rule, "toValue"));
            } else if (to->value.IsArray()) {
                for (const auto& element : to->value.GetArray()) {
                    if (element.IsString()) {
                        name(from, std::string(element.GetString(), element.GetStringLength()));
                    }
                }
            }
        });
    }
    return moves;
}

// Freezes of the attribute conditioned on another attribute hold while that
// one has its value, which the probing packets leave out: told as labels.
std::vector<std::string> freezeLabels(const tovjson::Value& rules, const std::string& objectType,
                                      const std::string& attribute,
                                      const TOV_DMStructure& dataModel) {
    std::vector<std::string> labels;
    forEachRule(rules, sectionOf(TOVRuleKind_TransitionFreeze), objectType, dataModel,
                [&](const tovjson::Value& rule) {
                    const std::string condition = stringOf(rule, "freezeConditionAttribute");
                    if (stringOf(rule, "attribute") == attribute && condition != attribute) {
                        labels.push_back("frozen while " + condition + " is " +
                                         stringOf(rule, "freezeConditionValue"));
                    }
                });
    return labels;
}

std::string dotQuoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
        }
        quoted += c == '\n' ? ' ' : c;
    }
    return quoted + "\"";
}

// Mermaid has no escape for a quote inside a state's name, only its entity.
std::string mermaidText(const std::string& text) {
    std::string clean;
    for (const char c : text) {
        if (c == '"') {
            clean += "#quot;";
        } else if (c == '\n' || c == ':' || c == ';') {
            clean += ' ';
        } else {
            clean += c;
        }
    }
    return clean;
}

std::string joined(const std::vector<std::string>& labels, const char* separator) {
    std::string text;
    for (const std::string& label : labels) {
        text += (text.empty() ? "" : separator) + label;
    }
    return text;
}

// A comment line per refused move: what the edit was told and, when the
// save was told otherwise, that too. Line ends in the words would end the
// comment, so they become blanks.
void writeRefusals(const LifecycleGraph& graph, const char* commentStart, std::ostream& out) {
    const auto oneLine = [](std::string text) {
        std::replace(text.begin(), text.end(), '\n', ' ');
        std::replace(text.begin(), text.end(), '\r', ' ');
        return text;
    };
    for (const RefusedMove& move : graph.refused) {
        const std::string fromTo =
            "\"" + oneLine(move.from) + "\" -> \"" + oneLine(move.to) + "\": ";
        out << commentStart << "refused: " << fromTo << oneLine(move.asEdit) << "\n";
        if (move.asSave != move.asEdit) {
            out << commentStart << "refused as a save: " << fromTo << oneLine(move.asSave) << "\n";
        }
    }
}

}  // namespace

bool describesObjectType(const TOV_DMStructure& dataModel, const std::string& objectType) {
    const auto& objects = dataModel.getAllStructureObjects();
    return std::any_of(objects.begin(), objects.end(), [&](const TOV_DMStructureObject& object) {
        return dataModel.areObjectTypesThatShouldBeConsideredEqual(object.getName(), objectType);
    });
}

LifecycleGraph buildLifecycleGraph(const tovjson::Value& rules, const std::string& objectType,
                                   const std::string& attribute, const TOV_DMStructure& dataModel,
                                   const LifecycleJudge& judge) {
    LifecycleGraph graph;
    graph.objectType = objectType;
    graph.attribute = attribute;
    // The values each kind gives the attribute: the transition rules first, so
    // that their spelling is the one told.
    const auto collect = [&](TOVRuleKind kind, std::initializer_list<const char*> members) {
        forEachRule(rules, sectionOf(kind), objectType, dataModel, [&](const tovjson::Value& rule) {
            if (stringOf(rule, "attribute") != attribute) {
                return;
            }
            graph.hasTransitionRules = graph.hasTransitionRules || kind == TOVRuleKind_Transition;
            for (const char* member : members) {
                addValues(graph.values, rule, member);
            }
        });
    };
    collect(TOVRuleKind_Transition, {"fromValue", "toValue"});
    collect(TOVRuleKind_FileConstraint, {"fromValue", "toValue"});
    collect(TOVRuleKind_ConflictResolution, {"fromValue", "toValue"});
    // A link rule's from value takes no part in its judgement.
    collect(TOVRuleKind_HistoryLink, {"toValue", "acceptableHistoryLinkValues"});
    collect(TOVRuleKind_ManualLink, {"toValue", "acceptableManualLinkValues"});
    // Conditions on the attribute itself name its values too.
    forEachRule(rules, sectionOf(TOVRuleKind_TransitionFreeze), objectType, dataModel,
                [&](const tovjson::Value& rule) {
                    if (stringOf(rule, "freezeConditionAttribute") == attribute) {
                        addValues(graph.values, rule, "freezeConditionValue");
                    }
                });
    forEachRule(rules, sectionOf(TOVRuleKind_VersioningSelection), objectType, dataModel,
                [&](const tovjson::Value& rule) {
                    if (stringOf(rule, "conditionAttribute1") == attribute) {
                        addValues(graph.values, rule, "conditionValue1");
                    }
                    if (stringOf(rule, "conditionAttribute2") == attribute) {
                        addValues(graph.values, rule, "conditionValue2");
                    }
                });

    const MoveProbe probe(objectType, attribute, dataModel, judge);
    const std::vector<std::string> frozen = freezeLabels(rules, objectType, attribute, dataModel);
    std::vector<std::pair<std::pair<std::string, std::string>, std::pair<Verdict, Verdict>>>
        refusals;
    for (const std::string& from : graph.values) {
        for (const std::string& to : graph.values) {
            if (&from == &to) {
                continue;
            }
            const Verdict asEdit = probe.ask(kEdit.beforeResolution, from, to);
            const Verdict asSave = probe.ask(kSave.beforeResolution, from, to);
            if (!asEdit.passes && !asSave.passes) {
                refusals.push_back({{from, to}, {asEdit, asSave}});
                continue;
            }
            LifecycleEdge edge{from, to, labelsOfMove(probe, from, to, asEdit, asSave)};
            edge.labels.insert(edge.labels.end(), frozen.begin(), frozen.end());
            graph.edges.push_back(std::move(edge));
        }
    }
    for (const auto& move : namedMoves(rules, objectType, attribute, dataModel, graph.values)) {
        const auto refusal =
            std::find_if(refusals.begin(), refusals.end(),
                         [&move](const auto& entry) { return entry.first == move; });
        if (refusal != refusals.end()) {
            graph.refused.push_back({move.first, move.second, refusal->second.first.comment,
                                     refusal->second.second.comment});
        }
    }
    for (const std::string& value : graph.values) {
        const bool wayOut =
            std::any_of(graph.edges.begin(), graph.edges.end(),
                        [&](const LifecycleEdge& edge) { return edge.from == value; });
        if (!wayOut) {
            graph.deadEnds.push_back(value);
        }
    }
    return graph;
}

void writeDot(const LifecycleGraph& graph, std::ostream& out) {
    out << "// The lifecycle of " << graph.attribute << " for " << graph.objectType
        << ": values with a double border have no way out.\n"
        << "// Each edge is a move of " << graph.attribute
        << " alone that the library approves as an edit or a save.\n"
        << "digraph " << dotQuoted(graph.objectType + " " + graph.attribute) << " {\n"
        << "  rankdir=LR;\n"
        << "  node [shape=box, style=rounded];\n";
    for (const std::string& value : graph.values) {
        const bool deadEnd =
            std::find(graph.deadEnds.begin(), graph.deadEnds.end(), value) != graph.deadEnds.end();
        out << "  " << dotQuoted(value) << (deadEnd ? " [peripheries=2]" : "") << ";\n";
    }
    for (const LifecycleEdge& edge : graph.edges) {
        out << "  " << dotQuoted(edge.from) << " -> " << dotQuoted(edge.to);
        if (!edge.labels.empty()) {
            out << " [label=" << dotQuoted(joined(edge.labels, ", ")) << "]";
        }
        out << ";\n";
    }
    writeRefusals(graph, "  // ", out);
    out << "}\n";
}

void writeMermaid(const LifecycleGraph& graph, std::ostream& out) {
    const auto idOf = [&graph](const std::string& value) {
        const auto at = std::find(graph.values.begin(), graph.values.end(), value);
        return "s" + std::to_string(at - graph.values.begin());
    };
    out << "stateDiagram-v2\n";
    for (const std::string& value : graph.values) {
        out << "    state \"" << mermaidText(value) << "\" as " << idOf(value) << "\n";
    }
    for (const LifecycleEdge& edge : graph.edges) {
        out << "    " << idOf(edge.from) << " --> " << idOf(edge.to);
        if (!edge.labels.empty()) {
            out << " : " << mermaidText(joined(edge.labels, ", "));
        }
        out << "\n";
    }
    for (const std::string& value : graph.deadEnds) {
        out << "    " << idOf(value) << " --> [*]\n";
    }
    writeRefusals(graph, "    %% ", out);
}

void writeGraph(const LifecycleGraph& graph, GraphFormat format, std::ostream& out) {
    if (format == GraphFormat::kMermaid) {
        writeMermaid(graph, out);
    } else {
        writeDot(graph, out);
    }
}

}  // namespace tovcli
