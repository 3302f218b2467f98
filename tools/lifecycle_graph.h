// The lifecycle of one attribute of one object type, as the rules document
// draws it: values as states, permitted transitions as edges.
#ifndef TOV_TOOLS_LIFECYCLE_GRAPH_H_
#define TOV_TOOLS_LIFECYCLE_GRAPH_H_

#include <ostream>
#include <string>
#include <vector>

#include "json/json_types.h"
#include "tov/TOV_DMStructure.h"

namespace tovcli {

struct LifecycleEdge {
    std::string from;
    std::string to;
    std::vector<std::string> labels;  // freeze conditions, file constraints, forced resolutions
};

struct LifecycleGraph {
    std::string objectType;
    std::string attribute;
    std::vector<std::string> values;  // in order of first appearance
    std::vector<LifecycleEdge> edges;
    std::vector<std::string> deadEnds;  // values with no way out
};

enum class GraphFormat { kDot, kMermaid };

// True when the data model describes `objectType`, matched as evaluations
// match object types (case ignored).
bool describesObjectType(const TOV_DMStructure& dataModel, const std::string& objectType);

// Builds the graph from a rules document that loaded: the transition rules of
// `attribute` for `objectType` (matched as the rule store matches: case
// ignored, "ALL" and "Library_Item" understood through `dataModel`), labelled
// by the file constraint, conflict resolution and freeze rules that concern
// the same transitions.
LifecycleGraph buildLifecycleGraph(const tovjson::Value& rules, const std::string& objectType,
                                   const std::string& attribute, const TOV_DMStructure& dataModel);

// Graphviz DOT: a digraph, values with no way out drawn with a double border.
void writeDot(const LifecycleGraph& graph, std::ostream& out);

// Mermaid: a stateDiagram-v2, values with no way out leading to the end state.
void writeMermaid(const LifecycleGraph& graph, std::ostream& out);

// writeDot or writeMermaid.
void writeGraph(const LifecycleGraph& graph, GraphFormat format, std::ostream& out);

}  // namespace tovcli

#endif  // TOV_TOOLS_LIFECYCLE_GRAPH_H_
