// What the workbench's page asks of the program, each question a function of
// a request body: check, explain, draw, evaluate, test and save the edited
// documents. Every answer comes from a private core loaded with the texts of
// that one request (EditedDocuments); nothing of one request stays for the
// next. Bodies are JSON objects of strings; a body that is not what an
// endpoint takes is refused with 400, documents that do not load with 422.
#ifndef TOV_TOOLS_WORKBENCH_WORKBENCH_API_H_
#define TOV_TOOLS_WORKBENCH_WORKBENCH_API_H_

#include <string>

#include "diagram_renderer.h"
#include "http_message.h"
#include "workspace.h"

namespace tovwb {

// Bounds of a drawing: Graphviz's layout takes far longer than linear time
// on large graphs, and a lifecycle of this size is no longer read as a picture.
constexpr std::size_t kMaxDrawnValues = 200;
constexpr std::size_t kMaxDrawnEdges = 2000;

class WorkbenchApi {
public:
    // `logFolder`: the library's log for every private core ("" for none).
    WorkbenchApi(Workspace& workspace, DiagramRenderer& renderer, std::string logFolder);

    // GET /api/documents: the documents, names, example requests, suite,
    // request kinds and whether saves and drawings are possible.
    tovhttp::HttpResponse documents() const;
    // POST /api/check {"rules", "datamodel"}: every fault and finding of
    // tov check --strict, with its place when known, and the object types.
    tovhttp::HttpResponse check(const std::string& body) const;
    // POST /api/explain {"rules", "datamodel"}: the rules in words, as tov
    // explain --format json.
    tovhttp::HttpResponse explain(const std::string& body) const;
    // POST /api/graph {"rules", "datamodel", "type", "attribute"}: the DOT
    // text of the lifecycle as tov graph draws it, and its SVG drawing.
    tovhttp::HttpResponse graph(const std::string& body) const;
    // POST /api/evaluate {"rules", "datamodel", "kind", "request"}: the answer,
    // with the decision trace (which rules judged it, in judging order),
    // where each of those rules stands in the rules text, and the warnings of
    // tov eval about names the data model does not describe.
    tovhttp::HttpResponse evaluate(const std::string& body) const;
    // POST /api/test {"rules", "datamodel", "suite"}: every case's outcome,
    // as tov test --format json tells it: both answers whole, the difference
    // and the names of the request that the data model does not describe.
    tovhttp::HttpResponse test(const std::string& body) const;
    // POST /api/save {"rules", "datamodel"}: both documents saved to the
    // paths given at the start, once both load; only with --write.
    tovhttp::HttpResponse save(const std::string& body) const;

private:
    Workspace& workspace;
    DiagramRenderer& renderer;
    const std::string logFolder;
};

}  // namespace tovwb

#endif  // TOV_TOOLS_WORKBENCH_WORKBENCH_API_H_
