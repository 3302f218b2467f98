// The routes of tov serve, over the example documents. The input is a
// request as the wire carries it, simplified: "METHOD TARGET", header lines
// "Name: value", an empty line, then the body. Every answer must have a
// known status; every refusal must be {"error": "..."}; no header may carry
// a line end; no answer may let another origin read it; and a body in
// pieces must end.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz_support.h"
#include "http_fuzz_support.h"
#include "json/json_types.h"
#include "serve_router.h"

namespace {

using tovhttp::HttpResponse;

// Kept for the run: loading the documents again for each input would leave
// no time for the routes.
tovserve::ServeRouter& router() {
    struct Serving {
        Serving()
            : service(TOV_EXAMPLES_DIR "/rules.json", TOV_EXAMPLES_DIR "/datamodel.json", 1 << 20),
              router(service, tovfuzz::fuzzGuards()) {
            tovserve::DocumentTexts texts;
            std::string error;
            if (!service.readDocuments(texts, error) || !service.load(texts, false).published) {
                tovfuzz::fail("The example documents did not load: " + error);
            }
        }
        tovserve::DecisionService service;
        tovserve::ServeRouter router;
    };
    static Serving serving;
    return serving.router;
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
    tovfuzz::checkHeaders(response);
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
    HttpResponse answer = tovfuzz::answerScreened(router(), tovfuzz::requestOf(input));
    checkAnswer(answer);
    return 0;
}
