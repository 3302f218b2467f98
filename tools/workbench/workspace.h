// What the workbench starts from, read once at its start: the two documents
// (from the files given, or the shipped examples), the example requests with
// their kinds, and a suite of cases; and, with --write, where edits are saved.
#ifndef TOV_TOOLS_WORKBENCH_WORKSPACE_H_
#define TOV_TOOLS_WORKBENCH_WORKSPACE_H_

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "edited_documents.h"

namespace tovwb {

struct WorkspaceOptions {
    std::string rulesPath;       // empty: the examples' rules.json
    std::string dataModelPath;   // empty: the examples' datamodel.json
    std::string suitePath;       // empty: the examples' tests.json, when there are examples
    std::string examplesFolder;  // empty: none found
    bool write = false;          // saves go back to rulesPath and dataModelPath
    std::uint64_t maxInputSize = 0;
};

// An example request, as examples/scenario.json names it.
struct ExampleRequest {
    std::string name;  // "edit-part-release-first-pass"
    std::string kind;  // "edit"
    std::string purpose;
    std::string text;  // the request document as written
};

// A suite of cases whose requests are written out in the suite itself, since
// the page names no file.
struct PageSuite {
    std::string name;  // the suite's path as given, or examples/tests.json
    std::string text;  // JSON: the suite with every "requestFile" replaced by its "request"
};

class Workspace {
public:
    // Reads everything the options name. Null, with the reason in `error`,
    // when a document, the scenario or the suite cannot be read.
    static std::unique_ptr<Workspace> open(const WorkspaceOptions& options, std::string& error);

    // What names the documents on the page and in messages: the paths as
    // given, or examples/rules.json and examples/datamodel.json.
    const DocumentNames& names() const { return documentNames; }
    // The files they were read from.
    const DocumentNames& files() const { return documentFiles; }
    // The documents as they were read, or as last saved.
    DocumentTexts documents() const;
    const std::vector<ExampleRequest>& examples() const { return exampleRequests; }
    const std::optional<PageSuite>& suite() const { return pageSuite; }
    bool writes() const { return writable; }

    // Saves both texts to the paths given at the start, each replaced whole,
    // and keeps them as the documents. False, with the reason in `error`,
    // when one cannot be saved. Only with --write.
    bool save(const DocumentTexts& texts, std::string& error);

private:
    Workspace() = default;

    DocumentNames documentNames;
    DocumentNames documentFiles;
    std::string rulesTarget;  // where a save writes: the files behind the names
    std::string dataModelTarget;
    bool writable = false;
    std::vector<ExampleRequest> exampleRequests;
    std::optional<PageSuite> pageSuite;

    mutable std::mutex guard;  // the texts, and one save at a time
    DocumentTexts texts;
};

}  // namespace tovwb

#endif  // TOV_TOOLS_WORKBENCH_WORKSPACE_H_
