// The routes of tov serve, over the example documents. The input is a
// request as the wire carries it, simplified: "METHOD TARGET", header lines
// "Name: value", an empty line, then the body. Every answer must have a
// known status; every refusal must be {"error": "..."}; no header may carry
// a line end; no answer may let another origin read it; and a body in
// pieces must end.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz_support.h"
#include "json/json_types.h"
#include "serve_router.h"

namespace {

using tovhttp::HttpRequest;
using tovhttp::HttpResponse;

// Kept for the run: loading the documents again for each input would leave
// no time for the routes.
tovserve::ServeRouter& router() {
    struct Serving {
        Serving()
            : service(TOV_EXAMPLES_DIR "/rules.json", TOV_EXAMPLES_DIR "/datamodel.json", 1 << 20),
              router(service, guards()) {
            tovserve::DocumentTexts texts;
            std::string error;
            if (!service.readDocuments(texts, error) || !service.load(texts, false).published) {
                tovfuzz::fail("The example documents did not load: " + error);
            }
        }
        static tovhttp::RequestGuards guards() {
            tovhttp::GuardPolicy policy;
            policy.checkHost = true;
            policy.allowedHosts = {"tov.example"};
            policy.token = "fuzz-token";
            return tovhttp::RequestGuards(policy);
        }
        tovserve::DecisionService service;
        tovserve::ServeRouter router;
    };
    static Serving serving;
    return serving.router;
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

void checkAnswer(HttpResponse& response) {
    switch (response.status) {
        case 200:
        case 400:
        case 401:
        case 403:
        case 404:
        case 405:
        case 415:
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
    if (response.status != 200) {
        tovjson::Document parsed;
        parsed.Parse<rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag>(
            response.body.c_str(), response.body.size());
        if (parsed.HasParseError() || !parsed.IsObject() || parsed.MemberCount() != 1 ||
            !parsed.HasMember("error") || !parsed["error"].IsString()) {
            tovfuzz::fail("a refusal that is no {\"error\": ...}: " + response.body);
        }
    }
    if (response.bodyPieces) {
        std::string piece;
        for (std::size_t pieces = 0; response.bodyPieces(piece); ++pieces) {
            if (pieces > (std::size_t{1} << 20)) {
                tovfuzz::fail("a body in pieces that does not end");
            }
            piece.clear();
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input = tovfuzz::asText(data, size);
    HttpRequest request = requestOf(input);
    tovserve::ServeRouter& routes = router();
    // The screen of the head alone must agree with the whole answer's refusal.
    HttpRequest head = request;
    head.body.clear();
    const std::optional<HttpResponse> screened = routes.screen(head);
    HttpResponse answer = routes.respond(std::move(request));
    if (screened && screened->status != answer.status) {
        tovfuzz::fail("the screen refused with " + std::to_string(screened->status) +
                      " and the answer is " + std::to_string(answer.status));
    }
    checkAnswer(answer);
    return 0;
}
