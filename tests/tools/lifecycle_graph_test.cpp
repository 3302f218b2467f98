// The lifecycle graph against the library's own answers: over random rule
// sets of every kind that bears on an edit, each drawn edge is a move that an
// evaluation approves (or approves once it has the family or the ancestors),
// and each such move among the values the rules name is drawn, labelled as
// its answers say. TOV_GRAPH_RULE_SETS raises the number of rule sets (200 by
// default), TOV_GRAPH_SEED changes the seed.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "json/json_types.h"
#include "lifecycle_graph.h"
#include "tov/TOVEngine.h"
#include "tov/TOVJsonComposer.h"
#include "tov/string_helpers.h"
#include "tov/vocabulary.h"

namespace {

// Part is a plain item, Drawing a library item: "Library_Item" rules reach
// only the drawing. Number is a primary, so editing it moves the object to
// another family; Revision is what a spin-up changes.
const char* const kDataModel = R"({"OverwriteLabel": "Overwrite", "structureObjects": [
  {"name": "Part", "dmObjectType": "DMITEM", "attributes": [
    {"name": "Number", "type": "REGULAR", "primary": true},
    {"name": "Revision", "type": "VERSIONING", "primary": true},
    {"name": "Status", "type": "REGULAR", "primary": false},
    {"name": "Owner", "type": "REGULAR", "primary": false}]},
  {"name": "Drawing", "dmObjectType": "RLI", "attributes": [
    {"name": "Number", "type": "REGULAR", "primary": true},
    {"name": "Revision", "type": "VERSIONING", "primary": true},
    {"name": "Status", "type": "REGULAR", "primary": false},
    {"name": "Owner", "type": "REGULAR", "primary": false}]}]})";

const std::vector<std::string> kTypes = {"Part", "Drawing", "ALL", "Library_Item", "part"};
const std::vector<std::string> kAttributes = {"Status", "Owner", "Number"};
// "b" differs from "B" only in case; "<any>" is the wildcard of the rules.
const std::vector<std::string> kValues = {"A", "B", "C", "D", "b", "<any>"};

// A random rules document, with what it names: for each rule object type and
// attribute, the values that a rule of that type gives the attribute.
class RuleSetMaker {
public:
    explicit RuleSetMaker(std::uint32_t seed) : random(seed) {}

    struct Named {
        std::string type;
        std::string attribute;
        std::string value;
    };

    std::string make(std::vector<Named>& named) {
        named.clear();
        std::string text = "{";
        const auto section = [&](const char* key, auto&& rule) {
            text += std::string(text.size() > 1 ? "," : "") + "\"" + key + "\":{";
            const std::size_t types = pick(3);
            for (std::size_t t = 0; t < types; ++t) {
                const std::string& type = kTypes[pick(kTypes.size())];
                text += std::string(t > 0 ? "," : "") + quoted(type) + ":[";
                const std::size_t rules = 1 + pick(4);
                for (std::size_t r = 0; r < rules; ++r) {
                    text += std::string(r > 0 ? "," : "") + "{" + rule(type, named) + "}";
                }
                text += "]";
            }
            text += "}";
        };
        section("transitions", [&](const std::string& type, std::vector<Named>& names) {
            const std::string attribute = anAttribute();
            std::string list;
            const std::size_t count = 1 + pick(3);
            for (std::size_t i = 0; i < count; ++i) {
                list += std::string(i > 0 ? "," : "") + quoted(aValue(type, attribute, names));
            }
            return member("attribute", attribute) + "," +
                   member("fromValue", aValue(type, attribute, names)) + ",\"toValue\":[" + list +
                   "]";
        });
        section("transitionsFreeze", [&](const std::string& type, std::vector<Named>& names) {
            const std::string condition = anAttribute();
            return member("attribute", anAttribute()) + "," +
                   member("freezeConditionAttribute", condition) + "," +
                   member("freezeConditionValue", aValue(type, condition, names));
        });
        section("fileConstraints", [&](const std::string& type, std::vector<Named>& names) {
            const std::string attribute = anAttribute();
            return member("attribute", attribute) + "," +
                   member("fromValue", aValue(type, attribute, names)) + "," +
                   member("toValue", aValue(type, attribute, names)) + "," +
                   member("updateFile", pick(2) == 0 ? "MANDATORY" : "FORBIDDEN");
        });
        section("conflictResolutions", [&](const std::string& type, std::vector<Named>& names) {
            const std::string attribute = anAttribute();
            const std::array<const char*, 3> files = {"YES", "NO", "N_A"};
            return member("attribute", attribute) + "," +
                   member("fromValue", aValue(type, attribute, names)) + "," +
                   member("toValue", aValue(type, attribute, names)) + "," +
                   member("updatesFile", files[pick(3)]) + "," +
                   member("conflictResolution", pick(2) == 0 ? "overwrite" : "spinup");
        });
        for (const char* link : {"historyLinks", "manualLinks"}) {
            const std::string acceptable = link == std::string("historyLinks")
                                               ? "acceptableHistoryLinkValues"
                                               : "acceptableManualLinkValues";
            if (pick(2) == 0) {
                continue;  // every answer would ask for linked objects
            }
            section(link, [&](const std::string& type, std::vector<Named>& names) {
                const std::string attribute = anAttribute();
                return member("attribute", attribute) + "," + member("fromValue", "<any>") + "," +
                       member("toValue", aValue(type, attribute, names)) + ",\"" + acceptable +
                       "\":[" + quoted(aValue(type, attribute, names)) + "]";
            });
        }
        section("triggers", [&](const std::string& /*type*/, std::vector<Named>& /*names*/) {
            return member("attribute", anAttribute()) + "," + member("triggerInitialize", "Owner") +
                   "," + member("initializationValue", "Reset");
        });
        section("versioningSelections", [&](const std::string& type, std::vector<Named>& names) {
            return member("conditionAttribute1", "Status") + ",\"conditionValue1\":[" +
                   quoted(aValue(type, "Status", names)) + "]," +
                   R"("versioningOption":["Revision"])";
        });
        return text + "}";
    }

    std::size_t pick(std::size_t count) { return random() % count; }

private:
    static std::string quoted(const std::string& text) { return "\"" + text + "\""; }

    static std::string member(const char* name, const std::string& value) {
        return quoted(name) + ":" + quoted(value);
    }

    // Half of the rules are of Status, so that its lifecycles are rich.
    std::string anAttribute() {
        return pick(2) == 0 ? kAttributes.front() : kAttributes[pick(kAttributes.size())];
    }

    std::string aValue(const std::string& type, const std::string& attribute,
                       std::vector<Named>& named) {
        const std::string& value = kValues[pick(kValues.size())];
        named.push_back({type, attribute, value});
        return value;
    }

    std::mt19937 random;
};

bool passes(const TOVResponse& response) {
    TOVMissingDataForEvaluation missing;
    return response.getGeneralResult() || response.needsReevaluation(missing);
}

bool asks(const TOVResponse& response, const char* keyword) {
    return !response.getGeneralResult() && response.doesThisKeywordReportMissingData(keyword);
}

bool hasLabel(const tovcli::LifecycleEdge& edge, const std::string& label) {
    return std::find(edge.labels.begin(), edge.labels.end(), label) != edge.labels.end();
}

bool hasLabelStartingWith(const tovcli::LifecycleEdge& edge, const std::string& start) {
    return std::any_of(edge.labels.begin(), edge.labels.end(),
                       [&](const std::string& label) { return label.rfind(start, 0) == 0; });
}

std::size_t fromEnvironment(const char* name, std::size_t otherwise) {
    const char* text = std::getenv(name);
    return text == nullptr ? otherwise : std::strtoul(text, nullptr, 10);
}

class LifecycleGraphAgainstTheLibrary : public ::testing::Test {
protected:
    void load(const std::string& rules, const char* dataModel = kDataModel) {
        ASSERT_TRUE(engine.evaluate("datamodel", dataModel).getGeneralResult());
        const TOVResponse loaded = engine.evaluate("rules", rules);
        ASSERT_TRUE(loaded.getGeneralResult()) << loaded.getGeneralResultComment() << "\n" << rules;
        generation = engine.current();
        document.Parse(rules.c_str(), rules.size());
    }

    TOVResponse ask(const std::string& kind, const std::string& objectType,
                    const std::string& attribute, const std::string& from,
                    const std::string& to) const {
        std::string request;
        composeSimpleTransitionJson(objectType, {{attribute, from}}, {{attribute, to}}, request);
        return generation->evaluate(kind, request);
    }

    tovcli::LifecycleGraph draw(const std::string& objectType, const std::string& attribute) {
        const TOVEngineGeneration& judged = *generation;
        return tovcli::buildLifecycleGraph(
            document, objectType, attribute, generation->dataModel(),
            [&judged](const std::string& kind, const std::string& text) {
                return judged.evaluate(kind, text);
            });
    }

    // Every claim of the graph held to the library's answers.
    void holdToTheLibrary(const tovcli::LifecycleGraph& graph,
                          const std::set<std::string>& namedFolded, const std::string& rules) {
        const std::string& type = graph.objectType;
        const std::string& attribute = graph.attribute;
        std::set<std::string> drawnFolded;
        for (const std::string& value : graph.values) {
            EXPECT_FALSE(isThisTheReservedAnyValue(value)) << rules;
            std::string folded = value;
            std::transform(folded.begin(), folded.end(), folded.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
            EXPECT_TRUE(drawnFolded.insert(folded).second) << "twice: " << value << "\n" << rules;
        }
        EXPECT_EQ(drawnFolded, namedFolded) << type << " " << attribute << "\n" << rules;

        for (const std::string& from : graph.values) {
            for (const std::string& to : graph.values) {
                if (from == to) {
                    continue;
                }
                const TOVResponse asEdit = ask("edit-before-resolution", type, attribute, from, to);
                const TOVResponse asSave = ask("save-before-resolution", type, attribute, from, to);
                const auto edge = std::find_if(graph.edges.begin(), graph.edges.end(),
                                               [&](const tovcli::LifecycleEdge& drawn) {
                                                   return drawn.from == from && drawn.to == to;
                                               });
                std::string move = type;
                move.append(" ").append(attribute).append(" ").append(from).append(" -> ").append(
                    to);
                const bool approved = passes(asEdit) || passes(asSave);
                ASSERT_EQ(edge != graph.edges.end(), approved) << move << "\n"
                                                               << asText(asEdit) << "\n"
                                                               << asText(asSave) << "\n"
                                                               << rules;
                if (!approved) {
                    continue;
                }
                EXPECT_EQ(hasLabel(*edge, "file upload required"), !passes(asEdit)) << move;
                EXPECT_EQ(hasLabel(*edge, "no file upload"), passes(asEdit) && !passes(asSave))
                    << move;
                const bool family =
                    (passes(asEdit) && asks(asEdit, TOVResponseKeyword_ObjectFamilyMembers)) ||
                    (passes(asSave) && asks(asSave, TOVResponseKeyword_ObjectFamilyMembers));
                EXPECT_EQ(hasLabel(*edge, "asks for the family"), family) << move;
                const bool ancestors =
                    (passes(asEdit) && asks(asEdit, TOVResponseKeyword_ManualAncestors)) ||
                    (passes(asSave) && asks(asSave, TOVResponseKeyword_ManualAncestors));
                EXPECT_EQ(hasLabel(*edge, "asks for the ancestors"), ancestors) << move;
                // A way that passes before conflict resolution and not after,
                // with no spin-up, is a forced spin-up.
                const bool spinUp =
                    (passes(asEdit) && !passes(ask("edit", type, attribute, from, to))) ||
                    (passes(asSave) && !passes(ask("save", type, attribute, from, to)));
                EXPECT_EQ(hasLabelStartingWith(*edge, "forced spin-up"), spinUp) << move << "\n"
                                                                                 << rules;
            }
        }
        for (const tovcli::RefusedMove& refused : graph.refused) {
            const bool drawn = std::any_of(
                graph.edges.begin(), graph.edges.end(), [&](const tovcli::LifecycleEdge& edge) {
                    return edge.from == refused.from && edge.to == refused.to;
                });
            EXPECT_FALSE(drawn) << refused.from << " -> " << refused.to;
            EXPECT_EQ(refused.asEdit,
                      ask("edit-before-resolution", type, attribute, refused.from, refused.to)
                          .getGeneralResultComment());
        }
    }

    static std::string asText(const TOVResponse& response) {
        return response.turnResponseIntoASingleString();
    }

    TOVEngine engine;
    std::shared_ptr<const TOVEngineGeneration> generation;
    tovjson::Document document;
};

TEST_F(LifecycleGraphAgainstTheLibrary, RandomRuleSets) {
    const std::size_t ruleSets = fromEnvironment("TOV_GRAPH_RULE_SETS", 200);
    RuleSetMaker maker(static_cast<std::uint32_t>(fromEnvironment("TOV_GRAPH_SEED", 20240611)));
    std::size_t edges = 0;
    std::size_t refused = 0;
    std::set<std::string> labels;  // the start of each kind of label drawn
    for (std::size_t set = 0; set < ruleSets; ++set) {
        std::vector<RuleSetMaker::Named> named;
        const std::string rules = maker.make(named);
        load(rules);
        if (HasFatalFailure()) {
            return;
        }
        for (const char* type : {"Part", "Drawing"}) {
            const std::string attribute =
                maker.pick(2) == 0 ? "Status" : kAttributes[maker.pick(kAttributes.size())];
            std::set<std::string> namedFolded;
            for (const RuleSetMaker::Named& name : named) {
                std::string ruleType = name.type;
                changeAllToAny(ruleType);
                if (name.attribute != attribute || isThisTheReservedAnyValue(name.value) ||
                    !generation->dataModel().areObjectTypesThatShouldBeConsideredEqual(ruleType,
                                                                                       type)) {
                    continue;
                }
                std::string folded = name.value;
                std::transform(folded.begin(), folded.end(), folded.begin(),
                               [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
                namedFolded.insert(folded);
            }
            const tovcli::LifecycleGraph graph = draw(type, attribute);
            holdToTheLibrary(graph, namedFolded, rules);
            if (HasFatalFailure()) {
                return;
            }
            edges += graph.edges.size();
            refused += graph.refused.size();
            for (const tovcli::LifecycleEdge& edge : graph.edges) {
                for (const std::string& label : edge.labels) {
                    labels.insert(label.substr(0, label.find(" if ")).substr(0, 12));
                }
            }
        }
    }
    std::printf("%zu rule sets: %zu edges, %zu refused moves\n", ruleSets, edges, refused);
    // The rule sets must both permit and refuse, or the test proves little.
    EXPECT_GT(edges, ruleSets);
    EXPECT_GT(refused, ruleSets / 4);
    EXPECT_EQ(labels, (std::set<std::string>{"asks for the", "file upload ", "forced overw",
                                             "forced spin-", "frozen while", "no file uplo"}));
}

// The example that misled: two rules from "Draft", each to another value,
// both of which must hold, and a rule from "<any>".
TEST_F(LifecycleGraphAgainstTheLibrary, TwoRulesFromOneValueDrawNeitherMove) {
    load(R"({"transitions": {"Document": [
      {"attribute": "Status", "fromValue": "Draft", "toValue": ["In Review"]},
      {"attribute": "Status", "fromValue": "Draft", "toValue": ["Approved"]},
      {"attribute": "Status", "fromValue": "<any>", "toValue": ["Obsolete"]}]}})",
         R"({"OverwriteLabel": "Overwrite", "structureObjects": [
      {"name": "Document", "dmObjectType": "DMITEM", "attributes": [
        {"name": "Number", "type": "REGULAR", "primary": true},
        {"name": "Status", "type": "REGULAR", "primary": false}]}]})");
    std::ostringstream dot;
    tovcli::writeDot(draw("Document", "Status"), dot);
    EXPECT_EQ(dot.str(),
              "// The lifecycle of Status for Document: values with a double border have no way "
              "out.\n"
              "// Each edge is a move of Status alone that the library approves as an edit or a "
              "save.\n"
              "digraph \"Document Status\" {\n"
              "  rankdir=LR;\n"
              "  node [shape=box, style=rounded];\n"
              "  \"Draft\" [peripheries=2];\n"
              "  \"In Review\";\n"
              "  \"Approved\";\n"
              "  \"Obsolete\" [peripheries=2];\n"
              "  \"In Review\" -> \"Obsolete\";\n"
              "  \"Approved\" -> \"Obsolete\";\n"
              "  // refused: \"Draft\" -> \"In Review\": Transition violation detected: For "
              "Document: Status can transition from \"<any>\" to \"Obsolete\"\n"
              "  // refused: \"Draft\" -> \"Approved\": Transition violation detected: For "
              "Document: Status can transition from \"<any>\" to \"Obsolete\"\n"
              "  // refused: \"Draft\" -> \"Obsolete\": Transition violation detected: For "
              "Document: Status can transition from \"Draft\" to \"In Review\"\n"
              "}\n");
}

}  // namespace
