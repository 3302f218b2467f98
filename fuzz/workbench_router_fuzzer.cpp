// The routes of tov workbench, with its guards, over the example workspace
// (never with --write: no input may write a file). The input is a request
// as the wire carries it, simplified as for tov serve's routes: "METHOD
// TARGET", header lines "Name: value", an empty line, then the body. Every
// answer must have a known status and the headers that tell a browser how to
// treat it; every refusal must be {"error": "..."}; no header may carry a
// line end; no answer may let another origin read it; and the screen of the
// head alone must refuse as the whole answer does.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "diagram_renderer.h"
#include "fuzz_support.h"
#include "http_fuzz_support.h"
#include "json/json_types.h"
#include "workbench_router.h"
#include "workspace.h"

namespace {

using tovhttp::HttpResponse;

// Kept for the run: the workspace reads the examples once.
tovwb::WorkbenchRouter& router() {
    struct Bench {
        Bench()
            : workspace(openWorkspace()),
              renderer(tovwb::makeMissingRenderer()),
              api(*workspace, *renderer, ""),
              router(api, tovfuzz::fuzzGuards()) {}
        static std::unique_ptr<tovwb::Workspace> openWorkspace() {
            tovwb::WorkspaceOptions options;
            options.examplesFolder = TOV_EXAMPLES_DIR;
            options.maxInputSize = 1 << 20;
            std::string error;
            std::unique_ptr<tovwb::Workspace> opened = tovwb::Workspace::open(options, error);
            if (opened == nullptr) {
                tovfuzz::fail("The example workspace did not open: " + error);
            }
            return opened;
        }
        std::unique_ptr<tovwb::Workspace> workspace;
        std::unique_ptr<tovwb::DiagramRenderer> renderer;
        tovwb::WorkbenchApi api;
        tovwb::WorkbenchRouter router;
    };
    static Bench bench;
    return bench.router;
}

void checkAnswer(const HttpResponse& response) {
    switch (response.status) {
        case 200:
        case 400:
        case 403:
        case 404:
        case 405:
        case 415:
        case 422:
            break;
        default:
            tovfuzz::fail("an unexpected status " + std::to_string(response.status));
    }
    tovfuzz::checkHeaders(response);
    const std::string* policy = response.header("Content-Security-Policy");
    if (policy == nullptr || *policy != tovwb::kContentSecurityPolicy ||
        response.header("X-Content-Type-Options") == nullptr ||
        response.header("Referrer-Policy") == nullptr) {
        tovfuzz::fail("an answer without the browser headers");
    }
    if (response.bodyPieces) {
        tovfuzz::fail("an answer in pieces, which no question gives");
    }
    const std::string* type = response.header("Content-Type");
    if (type != nullptr && *type == "application/json") {
        tovjson::Document parsed;
        parsed.Parse<rapidjson::kParseIterativeFlag>(response.body.c_str(), response.body.size());
        if (parsed.HasParseError() || !parsed.IsObject()) {
            tovfuzz::fail("an answer that is no JSON object: " + response.body);
        }
        const bool refusal = response.status != 200;
        if (refusal && (parsed.MemberCount() != 1 || !parsed.HasMember("error") ||
                        !parsed["error"].IsString())) {
            tovfuzz::fail("a refusal that is no {\"error\": ...}: " + response.body);
        }
    } else if (response.status != 200) {
        tovfuzz::fail("a refusal that is no JSON");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input = tovfuzz::asText(data, size);
    const HttpResponse answer = tovfuzz::answerScreened(router(), tovfuzz::requestOf(input));
    checkAnswer(answer);
    return 0;
}
