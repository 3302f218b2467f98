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
#include <string_view>

#include "diagram_renderer.h"
#include "fuzz_support.h"
#include "json/json_types.h"
#include "workbench_router.h"
#include "workspace.h"

namespace {

using tovhttp::HttpRequest;
using tovhttp::HttpResponse;

// Kept for the run: the workspace reads the examples once.
tovwb::WorkbenchRouter& router() {
    struct Bench {
        Bench()
            : workspace(openWorkspace()),
              renderer(tovwb::makeMissingRenderer()),
              api(*workspace, *renderer, ""),
              router(api, guards()) {}
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
        static tovhttp::RequestGuards guards() {
            tovhttp::GuardPolicy policy;
            policy.checkHost = true;
            policy.allowedHosts = {"tov.example"};
            policy.token = "fuzz-token";
            return tovhttp::RequestGuards(policy);
        }
        std::unique_ptr<tovwb::Workspace> workspace;
        std::unique_ptr<tovwb::DiagramRenderer> renderer;
        tovwb::WorkbenchApi api;
        tovwb::WorkbenchRouter router;
    };
    static Bench bench;
    return bench.router;
}

std::string_view nextLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    return line;
}

HttpRequest requestOf(std::string_view text) {
    HttpRequest request;
    const std::string_view first = nextLine(text);
    const std::size_t blank = first.find(' ');
    request.method = std::string(first.substr(0, blank));
    request.target = blank == std::string_view::npos ? "" : std::string(first.substr(blank + 1));
    while (!text.empty()) {
        const std::string_view line = nextLine(text);
        if (line.empty()) {
            break;
        }
        const std::size_t colon = line.find(':');
        std::string_view value = colon == std::string_view::npos ? "" : line.substr(colon + 1);
        while (!value.empty() && value.front() == ' ') {
            value.remove_prefix(1);
        }
        request.headers.push_back({std::string(line.substr(0, colon)), std::string(value)});
    }
    request.body = std::string(text);
    return request;
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
    for (const tovhttp::HttpHeader& header : response.headers) {
        if (header.name.find_first_of("\r\n") != std::string::npos ||
            header.value.find_first_of("\r\n") != std::string::npos) {
            tovfuzz::fail("a line end in the header " + header.name);
        }
    }
    if (response.header("Access-Control-Allow-Origin") != nullptr) {
        tovfuzz::fail("an answer that another origin may read");
    }
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
    HttpRequest request = requestOf(input);
    tovwb::WorkbenchRouter& routes = router();
    HttpRequest head = request;
    head.body.clear();
    const std::optional<HttpResponse> screened = routes.screen(head);
    const HttpResponse answer = routes.respond(std::move(request));
    if (screened && screened->status != answer.status) {
        tovfuzz::fail("the screen refused with " + std::to_string(screened->status) +
                      " and the answer is " + std::to_string(answer.status));
    }
    checkAnswer(answer);
    return 0;
}
