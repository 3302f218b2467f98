// The routes of tov serve, called directly: a request in, a response out.
#include "serve_router.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "json/json_types.h"
#include "openapi_document.h"
#include "sha256.h"

namespace {

using tovhttp::HttpRequest;
using tovhttp::HttpResponse;
using tovserve::DecisionService;
using tovserve::ServeRouter;

const std::string kExamples = TOV_EXAMPLES_DIR;
const std::string kToken = "t0ken";

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string expected(const std::string& step) {
    return readFile(kExamples + "/expected/" + step + ".out");
}

std::string requestText(const std::string& step) {
    return readFile(kExamples + "/requests/" + step + ".json");
}

// The request on one line, as a batch line holds it.
std::string requestLine(const std::string& step) {
    std::string text = requestText(step);
    for (char& c : text) {
        if (c == '\n') {
            c = ' ';
        }
    }
    return text;
}

std::string errorBody(const std::string& message) {
    return tovhttp::errorResponse(400, message).body;
}

tovhttp::RequestGuards guards() {
    tovhttp::GuardPolicy policy;
    policy.checkHost = true;
    policy.token = kToken;
    return tovhttp::RequestGuards(policy);
}

HttpRequest request(const std::string& method, const std::string& target,
                    const std::string& body = "") {
    HttpRequest made;
    made.method = method;
    made.target = target;
    made.body = body;
    made.headers = {{"Host", "127.0.0.1:8480"}, {"Authorization", "Bearer " + kToken}};
    if (method == "POST") {
        made.headers.push_back({"Content-Type", "application/json"});
    }
    return made;
}

// The whole body, its pieces gathered when it comes in pieces.
std::string bodyOf(HttpResponse& response) {
    std::string body = response.body;
    if (response.bodyPieces) {
        std::string piece;
        int pieces = 0;
        bool more = true;
        while (more) {
            more = response.bodyPieces(piece);
            ++pieces;
        }
        body += piece;
        EXPECT_LE(pieces, 1000);
    }
    return body;
}

class ServeRouterTest : public ::testing::Test {
protected:
    ServeRouterTest()
        : service(kExamples + "/rules.json", kExamples + "/datamodel.json", 1 << 20),
          router(service, guards()) {
        tovserve::DocumentTexts texts;
        std::string error;
        EXPECT_TRUE(service.readDocuments(texts, error)) << error;
        EXPECT_TRUE(service.load(texts, false).published);
    }

    HttpResponse ask(HttpRequest made) { return router.respond(std::move(made)); }

    DecisionService service;
    ServeRouter router;
};

TEST_F(ServeRouterTest, EvaluatesEachKindAsEvalAnswers) {
    for (const auto& [kind, step] : std::vector<std::pair<std::string, std::string>>{
             {"edit", "edit-part-release-first-pass"},
             {"edit-before-resolution", "edit-before-resolution-part-to-review-with-new-iteration"},
             {"save", "save-drawing-to-review-with-new-sheet"},
             {"save-before-resolution", "save-before-resolution-drawing-reopen-keeping-revision"},
             {"link", "link-released-assembly-to-part-in-work"},
             {"options", "options-part-in-work-selection"}}) {
        HttpResponse answer = ask(request("POST", "/v1/evaluate/" + kind, requestText(step)));
        EXPECT_EQ(answer.status, 200) << kind;
        EXPECT_EQ(*answer.header("Content-Type"), "application/json");
        EXPECT_EQ(answer.body, expected(step)) << kind;
    }
}

TEST_F(ServeRouterTest, StructuredAnswersHaveRealTypes) {
    HttpResponse answer = ask(request("POST", "/v1/evaluate/edit?format=structured",
                                      requestText("edit-part-release-first-pass")));
    EXPECT_EQ(answer.status, 200);
    tovjson::Document parsed;
    parsed.Parse(answer.body.c_str());
    ASSERT_TRUE(parsed.IsObject());
    EXPECT_FALSE(parsed["result"].GetBool());
    EXPECT_STREQ(parsed["missing"][0].GetString(), "membersOfFamily");
}

TEST_F(ServeRouterTest, BatchesAnswerEveryLineInOrder) {
    HttpResponse answer = ask(
        request("POST", "/v1/batch",
                "{\"kind\": \"edit\", \"request\": " + requestLine("edit-part-release-first-pass") +
                    "}\nnot json\r\n\n"));
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(*answer.header("Content-Type"), "application/x-ndjson");
    ASSERT_TRUE(answer.bodyPieces);
    EXPECT_EQ(bodyOf(answer), expected("edit-part-release-first-pass") +
                                  "{\"line\":2,\"error\":\"not JSON: Invalid value. (column 2)\"}\n"
                                  "{\"line\":3,\"error\":\"empty line\"}\n");
}

TEST_F(ServeRouterTest, AnEmptyBatchEndsAtOnce) {
    HttpResponse answer = ask(request("POST", "/v1/batch", ""));
    EXPECT_EQ(bodyOf(answer), "");
}

TEST_F(ServeRouterTest, RulesStatusHealthReadyMetricsAndTheOpenApiDocument) {
    HttpResponse rules = ask(request("GET", "/v1/rules"));
    EXPECT_EQ(rules.status, 200);
    EXPECT_EQ(rules.body.rfind("{\"kinds\":[{\"kind\":\"transition freeze\",\"rules\":[", 0), 0U);

    HttpResponse status = ask(request("GET", "/v1/status"));
    tovjson::Document parsed;
    parsed.Parse(status.body.c_str());
    ASSERT_TRUE(parsed.IsObject());
    EXPECT_EQ(parsed["generation"].GetUint64(), 1U);
    EXPECT_EQ(parsed["rulesLoaded"].GetUint64(), 20U);
    EXPECT_EQ(std::string(parsed["documents"]["rules"]["sha256"].GetString()),
              tovserve::sha256Hex(readFile(kExamples + "/rules.json")));
    EXPECT_STREQ(parsed["lastReload"]["outcome"].GetString(), "none");
    EXPECT_TRUE(parsed["lastReload"]["at"].IsNull());

    EXPECT_EQ(ask(request("GET", "/health")).body, "{\"status\":\"serving\"}\n");
    EXPECT_EQ(ask(request("GET", "/ready")).body, "{\"status\":\"ready\",\"generation\":1}\n");
    HttpResponse metrics = ask(request("GET", "/metrics"));
    EXPECT_EQ(*metrics.header("Content-Type"), "text/plain; version=0.0.4; charset=utf-8");
    EXPECT_NE(metrics.body.find("tov_generation 1\n"), std::string::npos);
    HttpResponse openApi = ask(request("GET", "/openapi.json"));
    EXPECT_EQ(openApi.body, std::string(tovserve::openApiDocument()));
    EXPECT_EQ(*openApi.header("Content-Type"), "application/json");
}

TEST_F(ServeRouterTest, GraphsAndTheirRefusals) {
    HttpResponse dot = ask(request("GET", "/v1/graph?type=Part&attribute=Status"));
    EXPECT_EQ(dot.status, 200);
    EXPECT_EQ(dot.body.rfind("// The lifecycle of Status for Part", 0), 0U);
    EXPECT_NE(dot.body.find("\ndigraph \"Part Status\" {\n"), std::string::npos);
    EXPECT_EQ(*dot.header("Content-Type"), "text/vnd.graphviz; charset=utf-8");
    HttpResponse mermaid =
        ask(request("GET", "/v1/graph?type=Part&attribute=Status&format=mermaid"));
    EXPECT_EQ(mermaid.body.rfind("stateDiagram-v2\n", 0), 0U);
    HttpResponse missing = ask(request("GET", "/v1/graph?type=Part"));
    EXPECT_EQ(missing.status, 400);
    HttpResponse unknownType = ask(request("GET", "/v1/graph?type=Bolt&attribute=Status"));
    EXPECT_EQ(unknownType.status, 404);
    EXPECT_EQ(unknownType.body, errorBody("the data model " + kExamples +
                                          "/datamodel.json describes no object type Bolt"));
}

TEST_F(ServeRouterTest, RefusalsComeInTheirOrder) {
    // A foreign host comes first, even without the token.
    HttpRequest foreign = request("PUT", "/nowhere");
    foreign.headers = {{"Host", "attacker.example"}};
    EXPECT_EQ(ask(foreign).status, 403);
    // Then the origin, then the token, even for a path that does not exist.
    HttpRequest crossSite = request("GET", "/nowhere");
    crossSite.headers = {{"Host", "localhost"}, {"Origin", "http://attacker.example"}};
    EXPECT_EQ(ask(crossSite).status, 403);
    HttpRequest anonymous = request("GET", "/nowhere");
    anonymous.headers = {{"Host", "localhost"}};
    EXPECT_EQ(ask(anonymous).status, 401);
    // The probes need no token.
    HttpRequest probe = request("GET", "/ready");
    probe.headers = {{"Host", "localhost"}};
    EXPECT_EQ(ask(probe).status, 200);
    // Then the route, the kind, the method, the content type.
    EXPECT_EQ(ask(request("GET", "/nowhere")).status, 404);
    EXPECT_EQ(ask(request("GET", "/v1/evaluate/rules")).status, 404);
    HttpResponse wrongMethod = ask(request("GET", "/v1/evaluate/edit"));
    EXPECT_EQ(wrongMethod.status, 405);
    EXPECT_EQ(*wrongMethod.header("Allow"), "POST");
    HttpRequest form = request("POST", "/v1/evaluate/edit", "{}");
    form.headers.back().value = "application/x-www-form-urlencoded";
    EXPECT_EQ(ask(form).status, 415);
    HttpRequest lines = request("POST", "/v1/batch", "");
    lines.headers.back().value = "application/jsonl; charset=utf-8";
    EXPECT_EQ(ask(lines).status, 200);
    // No answer ever names an origin that may read it.
    EXPECT_EQ(ask(request("GET", "/health")).header("Access-Control-Allow-Origin"), nullptr);
}

// Off the loopback address the program leaves the host unchecked (a proxy or
// a cluster names the service as it likes), and the token is the guard.
TEST_F(ServeRouterTest, OffTheLoopbackTheTokenGuardsWhateverTheHost) {
    tovhttp::GuardPolicy policy;
    policy.checkHost = false;
    policy.token = kToken;
    ServeRouter offLoopback(service, tovhttp::RequestGuards(policy));
    HttpRequest anonymous = request("GET", "/v1/status");
    anonymous.headers = {{"Host", "tov.example.org"}};
    EXPECT_EQ(offLoopback.respond(std::move(anonymous)).status, 401);
    HttpRequest named = request("GET", "/v1/status");
    named.headers = {{"Host", "tov.example.org"}, {"Authorization", "Bearer " + kToken}};
    EXPECT_EQ(offLoopback.respond(std::move(named)).status, 200);
    // The origin is checked all the same.
    HttpRequest crossSite = request("GET", "/health");
    crossSite.headers = {{"Host", "tov.example.org"}, {"Origin", "https://attacker.example"}};
    EXPECT_EQ(offLoopback.respond(std::move(crossSite)).status, 403);
}

TEST_F(ServeRouterTest, TheScreenDecidesFromTheHeadAlone) {
    HttpRequest head = request("POST", "/v1/evaluate/edit");
    EXPECT_EQ(router.screen(head), std::nullopt);
    head.headers = {{"Host", "localhost"}};
    const std::optional<HttpResponse> refusal = router.screen(head);
    ASSERT_TRUE(refusal);
    EXPECT_EQ(refusal->status, 401);
}

TEST_F(ServeRouterTest, StoppingIsNotReady) {
    service.beginStopping();
    HttpResponse ready = ask(request("GET", "/ready"));
    EXPECT_EQ(ready.status, 503);
    EXPECT_EQ(ready.body, errorBody("the server is stopping"));
    EXPECT_EQ(ask(request("GET", "/health")).status, 200);
}

TEST_F(ServeRouterTest, AReloadThatDoesNotLoadKeepsTheGenerationBefore) {
    tovserve::DocumentTexts texts;
    std::string error;
    ASSERT_TRUE(service.readDocuments(texts, error));
    EXPECT_TRUE(service.load(texts, true).unchanged);
    texts.rules = "{\"transitions\": {\"Part\": [{\"attribute\": \"Status\"}]}}";
    const DecisionService::Load failed = service.load(texts, true);
    EXPECT_FALSE(failed.published);
    EXPECT_FALSE(failed.unchanged);
    EXPECT_FALSE(failed.rules.getGeneralResult());
    EXPECT_EQ(service.served()->generation->number(), 1U);
    service.recordReload(false, "the faults");
    EXPECT_EQ(service.lastReload().outcome, "failure");
    EXPECT_EQ(service.lastReload().message, "the faults");
    EXPECT_EQ(
        ask(request("POST", "/v1/evaluate/edit", requestText("edit-part-release-first-pass"))).body,
        expected("edit-part-release-first-pass"));
}

TEST(ServeRouterUnloaded, IsNotReadyAndAnswersNothingFromTheDocuments) {
    DecisionService service("rules.json", "datamodel.json", 1 << 20);
    ServeRouter router(service, tovhttp::RequestGuards(tovhttp::GuardPolicy()));
    const auto ask = [&](const std::string& method, const std::string& target) {
        HttpRequest made;
        made.method = method;
        made.target = target;
        made.headers = {{"Content-Type", "application/json"}};
        made.body = "{}";
        return router.respond(made);
    };
    const std::string notLoaded = errorBody("the documents are not loaded yet");
    for (const auto& [method, target] : std::vector<std::pair<std::string, std::string>>{
             {"GET", "/ready"},
             {"POST", "/v1/evaluate/edit"},
             {"POST", "/v1/batch"},
             {"GET", "/v1/rules"},
             {"GET", "/v1/graph?type=Part&attribute=Status"}}) {
        HttpResponse answer = ask(method, target);
        EXPECT_EQ(answer.status, 503) << target;
        EXPECT_EQ(answer.body, notLoaded) << target;
    }
    EXPECT_EQ(ask("GET", "/health").status, 200);
    EXPECT_EQ(ask("GET", "/metrics").status, 200);
    HttpResponse status = ask("GET", "/v1/status");
    EXPECT_EQ(status.status, 200);
    EXPECT_NE(status.body.find("\"generation\":0,"), std::string::npos);
    EXPECT_NE(status.body.find("\"sha256\":null"), std::string::npos);
}

TEST(ServeOpenApi, ListsEveryRouteAndNoOther) {
    const std::string_view text = tovserve::openApiDocument();
    tovjson::Document document;
    document.Parse(text.data(), text.size());
    ASSERT_FALSE(document.HasParseError());
    EXPECT_EQ(std::string(document["openapi"].GetString()).rfind("3.", 0), 0U);
    EXPECT_STREQ(document["info"]["version"].GetString(), TOV_PROGRAM_VERSION);
    const tovjson::Value& paths = document["paths"];
    std::size_t listed = 0;
    for (const tovserve::RouteDescription& route : ServeRouter::routes()) {
        ASSERT_TRUE(paths.HasMember(route.path.c_str())) << route.path;
        std::string method = route.method;
        for (char& c : method) {
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
        EXPECT_TRUE(paths[route.path.c_str()].HasMember(method.c_str())) << route.path;
        EXPECT_EQ(paths[route.path.c_str()].MemberCount(), 1U) << route.path;
        ++listed;
    }
    EXPECT_EQ(paths.MemberCount(), listed);
}

TEST(DecisionLog, WritesOneLinePerDecision) {
    std::string path = "/tmp/tov_decisions_XXXXXX";
    const int descriptor = ::mkstemp(path.data());
    ASSERT_GE(descriptor, 0);
    ::close(descriptor);
    {
        tovserve::DecisionLog log;
        std::string error;
        ASSERT_TRUE(log.open(path, error)) << error;
        const std::string request = "{\"objectType\": \"Part\"}";
        const std::string answer = "{\"Result\":\"Success\"}";
        log.write({"edit", request, answer, 4, std::chrono::microseconds(12)});
        const std::string notJson = "not json";
        log.write({"link", notJson, answer, 4, std::chrono::microseconds(3)});
    }
    const std::string written = readFile(path);
    std::remove(path.c_str());
    const std::size_t firstEnd = written.find('\n');
    ASSERT_NE(firstEnd, std::string::npos);
    tovjson::Document first;
    first.Parse(written.substr(0, firstEnd).c_str());
    ASSERT_TRUE(first.IsObject());
    EXPECT_STREQ(first["kind"].GetString(), "edit");
    EXPECT_STREQ(first["request"]["objectType"].GetString(), "Part");
    EXPECT_STREQ(first["answer"]["Result"].GetString(), "Success");
    EXPECT_EQ(first["generation"].GetUint64(), 4U);
    EXPECT_DOUBLE_EQ(first["latencySeconds"].GetDouble(), 12e-6);
    EXPECT_EQ(std::string(first["time"].GetString()).size(), 27U);
    EXPECT_NE(written.find("\"request\":\"not json\""), std::string::npos);
    EXPECT_EQ(written.back(), '\n');
}

}  // namespace
