// What the workbench's C++ tests share: the example documents, a workspace
// over them, requests as the page sends them, and renderers that need no
// Graphviz.
#ifndef TOV_TESTS_WORKBENCH_WORKBENCH_TEST_SUPPORT_H_
#define TOV_TESTS_WORKBENCH_WORKBENCH_TEST_SUPPORT_H_

#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "diagram_renderer.h"
#include "json/json_types.h"
#include "json_output.h"
#include "workspace.h"

namespace tovwbtest {

inline const std::string kExamples = TOV_EXAMPLES_DIR;

inline std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

inline std::string exampleRules() {
    return readFile(kExamples + "/rules.json");
}

inline std::string exampleDataModel() {
    return readFile(kExamples + "/datamodel.json");
}

inline std::string exampleRequest(const std::string& name) {
    return readFile(kExamples + "/requests/" + name + ".json");
}

// The line that tov eval prints for an example request.
inline std::string expectedLine(const std::string& name) {
    std::string line = readFile(kExamples + "/expected/" + name + ".out");
    while (!line.empty() && line.back() == '\n') {
        line.pop_back();
    }
    return line;
}

// A JSON object of strings, as the page writes its bodies.
inline std::string body(const std::vector<std::pair<const char*, std::string>>& members) {
    tovjson::StringBuffer buffer;
    tovcli::JsonWriter writer(buffer);
    writer.StartObject();
    for (const auto& [name, value] : members) {
        writer.Key(name);
        tovcli::writeString(writer, value);
    }
    writer.EndObject();
    return {buffer.GetString(), buffer.GetSize()};
}

// The body of a refusal, as the HTTP layer writes it.
inline std::string errorBody(const std::string& message) {
    tovjson::StringBuffer buffer;
    tovcli::JsonWriter writer(buffer);
    writer.StartObject();
    writer.Key("error");
    tovcli::writeString(writer, message);
    writer.EndObject();
    return std::string(buffer.GetString(), buffer.GetSize()) + "\n";
}

// A parsed answer; the test fails on one that is no JSON.
inline std::unique_ptr<tovjson::Document> parsed(const std::string& text) {
    auto json = std::make_unique<tovjson::Document>();
    json->Parse(text.c_str(), text.size());
    EXPECT_FALSE(json->HasParseError()) << text;
    return json;
}

// A renderer that draws every diagram as the same short SVG, and counts.
class FakeRenderer final : public tovwb::DiagramRenderer {
public:
    std::optional<std::string> svgOf(const std::string& dot, std::string& /*error*/) override {
        ++drawn;
        lastDot = dot;
        return std::string("<svg xmlns=\"http://www.w3.org/2000/svg\"></svg>");
    }
    std::string unavailable() const override { return {}; }

    int drawn = 0;
    std::string lastDot;
};

// A workspace over the example documents, requests and suite.
inline std::unique_ptr<tovwb::Workspace> exampleWorkspace(const std::string& rules = "",
                                                          const std::string& dataModel = "",
                                                          bool write = false) {
    tovwb::WorkspaceOptions options;
    options.examplesFolder = kExamples;
    options.rulesPath = rules;
    options.dataModelPath = dataModel;
    options.write = write;
    options.maxInputSize = 1 << 20;
    std::string error;
    std::unique_ptr<tovwb::Workspace> workspace = tovwb::Workspace::open(options, error);
    EXPECT_NE(workspace, nullptr) << error;
    return workspace;
}

}  // namespace tovwbtest

#endif  // TOV_TESTS_WORKBENCH_WORKBENCH_TEST_SUPPORT_H_
