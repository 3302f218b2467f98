// The lifecycle of one attribute of one object type as the library judges it:
// the values that the rules name as states, and as edges exactly the moves
// between them that the library approves. tov graph, tov serve's /v1/graph
// and the workbench all draw through buildLifecycleGraph, so that no picture
// shows a move that an evaluation would refuse.
#ifndef TOV_TOOLS_LIFECYCLE_GRAPH_H_
#define TOV_TOOLS_LIFECYCLE_GRAPH_H_

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "json/json_types.h"
#include "tov/TOVResponse.h"
#include "tov/TOV_DMStructure.h"

namespace tovcli {

// Answers one request of `kind`, a word of tov eval ("edit",
// "edit-before-resolution", "save", "save-before-resolution"), given as JSON
// text, from the documents the graph is drawn for.
using LifecycleJudge = std::function<TOVResponse(const std::string& kind, const std::string& text)>;

// A move the library approves, or approves once the family or the manual link
// ancestors are sent ("asks for the family", "asks for the ancestors").
struct LifecycleEdge {
    std::string from;
    std::string to;
    // In this order: file upload, forced resolutions, what it asks for,
    // freeze conditions on other attributes.
    std::vector<std::string> labels;
};

// A move that a rule names (a transition, file constraint or conflict
// resolution rule, "<any>" standing for every value) but that the library
// refuses both as an edit and as a save, with the refusals' words.
struct RefusedMove {
    std::string from;
    std::string to;
    std::string asEdit;
    std::string asSave;
};

struct LifecycleGraph {
    std::string objectType;
    std::string attribute;
    bool hasTransitionRules = false;  // of the attribute for the object type
    // Every value that a rule of the object type gives the attribute, in order
    // of first appearance, the transition rules first; spellings that differ
    // only in case are one value, told as first written; never "<any>".
    std::vector<std::string> values;
    std::vector<LifecycleEdge> edges;
    std::vector<std::string> deadEnds;  // values with no way out
    std::vector<RefusedMove> refused;
};

enum class GraphFormat { kDot, kMermaid };

// True when the data model describes `objectType`, matched as evaluations
// match object types (case ignored).
bool describesObjectType(const TOV_DMStructure& dataModel, const std::string& objectType);

// Draws the lifecycle from a rules document that loaded into the documents
// that `judge` answers from. Every ordered pair of different values is put to
// the library as a move of the attribute alone: initial attributes
// {attribute: from}, target attributes {attribute: to}, no other attribute in
// either packet, so that rules about other attributes (their transitions,
// freezes conditioned on them) stay out of the answer and it tells of the move
// itself. The move is asked before conflict resolution as an edit and as a
// save; it is an edge when either passes or asks only for the family or the
// ancestors. Labels: "file upload required" (only the save passes), "no file
// upload" (only the edit passes); "forced spin-up" or "forced overwrite" when
// the full edit or save refuses the move without a spin-up (an overwrite) or
// with one (a change of the type's first versioning attribute, from "1" to
// "2"), with " if the file is updated" or " if the file is not updated" when
// it holds for the save or the edit alone; "asks for the family", "asks for
// the ancestors"; and, read from the rules, "frozen while X is V" for a freeze
// of the attribute conditioned on another attribute.
LifecycleGraph buildLifecycleGraph(const tovjson::Value& rules, const std::string& objectType,
                                   const std::string& attribute, const TOV_DMStructure& dataModel,
                                   const LifecycleJudge& judge);

// Graphviz DOT: a digraph, values with no way out drawn with a double border,
// refused moves told in comments after the graph's own lines.
void writeDot(const LifecycleGraph& graph, std::ostream& out);

// Mermaid: a stateDiagram-v2, values with no way out leading to the end
// state, refused moves told in comments.
void writeMermaid(const LifecycleGraph& graph, std::ostream& out);

// writeDot or writeMermaid.
void writeGraph(const LifecycleGraph& graph, GraphFormat format, std::ostream& out);

}  // namespace tovcli

#endif  // TOV_TOOLS_LIFECYCLE_GRAPH_H_
