// The example scenario of examples/: its two documents and every request of
// its steps, each with the entry point that the step's kind names. The thread
// test and the fuzz targets run the library over it.
#ifndef TOV_TESTS_SUPPORT_EXAMPLE_SCENARIO_H_
#define TOV_TESTS_SUPPORT_EXAMPLE_SCENARIO_H_

#include <string>
#include <vector>

#include "tov/TOVResponse.h"

class TOVCoreDataControllers;

namespace tovtest {

using RequestFunction = TOVResponse (*)(const std::string&, TOVCoreDataControllers*);

struct ExampleRequest {
    std::string name;
    std::string kind;  // the C interface's word, as the scenario gives it
    RequestFunction evaluate;
    std::string text;
};

// The text entry point of a request kind, in the C interface's words ("edit",
// "save-before-resolution", "link", "options", ...), or null for a word that
// names none.
RequestFunction requestFunctionOfKind(const std::string& kind);

// The text of a file under examples/ ("rules.json", "requests/x.json"), or
// empty when it cannot be read.
std::string exampleText(const std::string& relativePath);

// Loads the example rules and data model from their files; true when both load.
bool loadExampleDocuments(TOVCoreDataControllers* coreData);

// The scenario's requests in step order; empty when the scenario cannot be
// read whole, so that a caller never runs on part of it.
std::vector<ExampleRequest> readExampleRequests();

}  // namespace tovtest

#endif  // TOV_TESTS_SUPPORT_EXAMPLE_SCENARIO_H_
