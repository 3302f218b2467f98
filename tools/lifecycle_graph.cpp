#include "lifecycle_graph.h"

#include <algorithm>
#include <functional>

#include "json_files.h"
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

void addValue(LifecycleGraph& graph, const std::string& value) {
    if (std::find(graph.values.begin(), graph.values.end(), value) == graph.values.end()) {
        graph.values.push_back(value);
    }
}

// Labels the edges that a rule's from and to values stand for, matched as the
// rules compare values: case ignored, "<any>" on either side.
void labelEdgesOf(LifecycleGraph& graph, const tovjson::Value& rule, const std::string& label) {
    const std::string from = stringOf(rule, "fromValue");
    const std::string to = stringOf(rule, "toValue");
    for (LifecycleEdge& edge : graph.edges) {
        if (areStringsEqualAccountingAlsoAnyValue(edge.from, from) &&
            areStringsEqualAccountingAlsoAnyValue(edge.to, to)) {
            edge.labels.push_back(label);
        }
    }
}

std::string fileCondition(const std::string& word) {
    if (word == TOVAttrItemValue_YES) {
        return " if the file is updated";
    }
    if (word == TOVAttrItemValue_NO) {
        return " if the file is not updated";
    }
    return {};
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

}  // namespace

bool describesObjectType(const TOV_DMStructure& dataModel, const std::string& objectType) {
    const auto& objects = dataModel.getAllStructureObjects();
    return std::any_of(objects.begin(), objects.end(), [&](const TOV_DMStructureObject& object) {
        return dataModel.areObjectTypesThatShouldBeConsideredEqual(object.getName(), objectType);
    });
}

LifecycleGraph buildLifecycleGraph(const tovjson::Value& rules, const std::string& objectType,
                                   const std::string& attribute, const TOV_DMStructure& dataModel) {
    LifecycleGraph graph{objectType, attribute, {}, {}, {}};
    const auto forEach = [&](const char* section, auto&& visit) {
        forEachRule(rules, section, objectType, dataModel, [&](const tovjson::Value& rule) {
            if (stringOf(rule, "attribute") == attribute) {
                visit(rule);
            }
        });
    };
    forEach(sectionOf(TOVRuleKind_Transition), [&](const tovjson::Value& rule) {
        const std::string from = stringOf(rule, "fromValue");
        addValue(graph, from);
        const auto toValues = rule.FindMember("toValue");
        if (toValues == rule.MemberEnd() || !toValues->value.IsArray()) {
            return;
        }
        for (const auto& value : toValues->value.GetArray()) {
            const std::string to(value.GetString(), value.GetStringLength());
            addValue(graph, to);
            // Staying on a value is no move of the lifecycle.
            const bool known = std::any_of(
                graph.edges.begin(), graph.edges.end(),
                [&](const LifecycleEdge& edge) { return edge.from == from && edge.to == to; });
            if (to != from && !known) {
                graph.edges.push_back({from, to, {}});
            }
        }
    });
    forEach(sectionOf(TOVRuleKind_FileConstraint), [&](const tovjson::Value& rule) {
        const std::string word = stringOf(rule, "updateFile");
        const char* label = word == TOVAttrItemValue_Mandatory   ? "file upload required"
                            : word == TOVAttrItemValue_Forbidden ? "no file upload"
                                                                 : nullptr;
        if (label != nullptr) {
            labelEdgesOf(graph, rule, label);
        }
    });
    forEach(sectionOf(TOVRuleKind_ConflictResolution), [&](const tovjson::Value& rule) {
        const std::string word = stringOf(rule, "conflictResolution");
        const char* forced = word == TOVAttrItemValue_Overwrite ? "forced overwrite"
                             : word == TOVAttrItemValue_Spinup  ? "forced spin-up"
                                                                : nullptr;
        if (forced != nullptr) {
            labelEdgesOf(graph, rule, forced + fileCondition(stringOf(rule, "updatesFile")));
        }
    });
    // A freeze of the attribute holds on every transition; one whose condition
    // is the attribute itself keeps its value from ever leaving.
    forEachRule(rules, sectionOf(TOVRuleKind_TransitionFreeze), objectType, dataModel,
                [&](const tovjson::Value& rule) {
                    if (stringOf(rule, "attribute") != attribute) {
                        return;
                    }
                    const std::string condition = stringOf(rule, "freezeConditionAttribute");
                    const std::string value = stringOf(rule, "freezeConditionValue");
                    for (LifecycleEdge& edge : graph.edges) {
                        if (condition != attribute) {
                            edge.labels.push_back(std::string("frozen while ")
                                                      .append(condition)
                                                      .append(" is ")
                                                      .append(value));
                        } else if (areStringsEqualAccountingAlsoAnyValue(edge.from, value)) {
                            edge.labels.emplace_back("frozen");
                        }
                    }
                });
    for (const std::string& value : graph.values) {
        const bool wayOut =
            std::any_of(graph.edges.begin(), graph.edges.end(), [&](const LifecycleEdge& edge) {
                return edge.from == value && std::find(edge.labels.begin(), edge.labels.end(),
                                                       "frozen") == edge.labels.end();
            });
        if (!wayOut) {
            graph.deadEnds.push_back(value);
        }
    }
    return graph;
}

void writeDot(const LifecycleGraph& graph, std::ostream& out) {
    out << "// The lifecycle of " << graph.attribute << " for " << graph.objectType
        << ": values with a double border have no way out.\n"
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
}

void writeGraph(const LifecycleGraph& graph, GraphFormat format, std::ostream& out) {
    if (format == GraphFormat::kMermaid) {
        writeMermaid(graph, out);
    } else {
        writeDot(graph, out);
    }
}

}  // namespace tovcli
