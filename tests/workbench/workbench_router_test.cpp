// The workbench's routes and guards, called directly: a request in, a response out.
#include "workbench_router.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "page_assets.h"
#include "workbench_test_support.h"

namespace {

using tovhttp::HttpRequest;
using tovhttp::HttpResponse;
using tovwb::WorkbenchRouter;
using tovwbtest::errorBody;

const std::string kToken = "0123456789abcdef";
const std::string kTokenRefusal =
    "this server asks for its token, which the address that it printed at its start carries: "
    "open that address";

const std::vector<std::string> kPageFiles = {
    "/",
    "/static/workbench.js",
    "/static/workbench.css",
    "/static/codemirror/codemirror.js",
    "/static/codemirror/codemirror.css",
    "/static/codemirror/javascript.js",
    "/static/codemirror/matchbrackets.js",
};
const std::vector<std::pair<std::string, std::string>> kQuestions = {
    {"GET", "/api/documents"}, {"POST", "/api/check"},    {"POST", "/api/explain"},
    {"POST", "/api/graph"},    {"POST", "/api/evaluate"}, {"POST", "/api/test"},
    {"POST", "/api/save"},
};

tovhttp::RequestGuards guards(const std::string& token = kToken) {
    tovhttp::GuardPolicy policy;
    policy.checkHost = true;
    policy.token = token;
    return tovhttp::RequestGuards(policy);
}

// A request as the page's script sends it.
HttpRequest request(const std::string& method, const std::string& target,
                    const std::string& body = "") {
    HttpRequest made;
    made.method = method;
    made.target = target;
    made.body = body;
    made.headers = {{"Host", "127.0.0.1:8490"}, {"X-Tov-Token", kToken}};
    if (method == "POST") {
        made.headers.push_back({"Origin", "http://127.0.0.1:8490"});
        made.headers.push_back({"Content-Type", "application/json"});
    }
    return made;
}

HttpRequest without(HttpRequest made, const std::string& name) {
    made.headers.erase(std::remove_if(made.headers.begin(), made.headers.end(),
                                      [&](const tovhttp::HttpHeader& header) {
                                          return tovhttp::equalsIgnoringCase(header.name, name);
                                      }),
                       made.headers.end());
    return made;
}

HttpRequest with(HttpRequest made, const std::string& name, const std::string& value) {
    made = without(std::move(made), name);
    made.headers.push_back({name, value});
    return made;
}

void expectBrowserHeaders(const HttpResponse& answer, const std::string& what) {
    ASSERT_NE(answer.header("Content-Security-Policy"), nullptr) << what;
    EXPECT_EQ(*answer.header("Content-Security-Policy"),
              "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
              "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'")
        << what;
    EXPECT_EQ(*answer.header("X-Content-Type-Options"), "nosniff") << what;
    EXPECT_EQ(*answer.header("Referrer-Policy"), "no-referrer") << what;
    EXPECT_EQ(*answer.header("X-Frame-Options"), "DENY") << what;
    EXPECT_EQ(*answer.header("Cache-Control"), "no-store") << what;
    EXPECT_EQ(answer.header("Access-Control-Allow-Origin"), nullptr) << what;
}

class WorkbenchRouterTest : public ::testing::Test {
protected:
    WorkbenchRouterTest()
        : workspace(tovwbtest::exampleWorkspace()),
          api(*workspace, renderer, ""),
          router(api, guards()) {}

    HttpResponse ask(const HttpRequest& made) {
        const std::optional<HttpResponse> screened = router.screen(made);
        HttpResponse answer = router.respond(made);
        // The head alone refuses as the whole request does.
        if (screened) {
            EXPECT_EQ(screened->status, answer.status) << made.target;
            EXPECT_EQ(screened->body, answer.body) << made.target;
        }
        expectBrowserHeaders(answer, made.method + " " + made.target);
        return answer;
    }

    std::unique_ptr<tovwb::Workspace> workspace;
    tovwbtest::FakeRenderer renderer;
    tovwb::WorkbenchApi api;
    WorkbenchRouter router;
};

TEST_F(WorkbenchRouterTest, ThePageAndItsFilesNeedNoToken) {
    for (const std::string& path : kPageFiles) {
        const HttpResponse answer = ask(without(request("GET", path), "X-Tov-Token"));
        EXPECT_EQ(answer.status, 200) << path;
        const tovwb::PageAsset* asset = tovwb::findPageAsset(path);
        ASSERT_NE(asset, nullptr) << path;
        EXPECT_EQ(answer.body, asset->text()) << path;
        EXPECT_EQ(*answer.header("Content-Type"), asset->contentType) << path;
        EXPECT_FALSE(answer.body.empty()) << path;
    }
    EXPECT_EQ(*tovwb::findPageAsset("/")->contentType.data(), 't');
    EXPECT_EQ(tovwb::findPageAsset("/")->contentType, "text/html; charset=utf-8");
    EXPECT_EQ(tovwb::findPageAsset("/static/workbench.js")->contentType,
              "text/javascript; charset=utf-8");
    EXPECT_EQ(tovwb::findPageAsset("/static/workbench.css")->contentType,
              "text/css; charset=utf-8");
    // The address with the token opens the same page.
    EXPECT_EQ(ask(request("GET", "/?token=" + kToken)).body, tovwb::pageHtml());
}

TEST_F(WorkbenchRouterTest, ThePageHoldsNoInlineScriptOrStyle) {
    const std::string page(tovwb::pageHtml());
    EXPECT_EQ(page.find("<script>"), std::string::npos);
    EXPECT_EQ(page.find("<style"), std::string::npos);
    EXPECT_EQ(page.find("style="), std::string::npos);
    EXPECT_EQ(page.find(" on"), std::string::npos);   // no inline event handlers
    EXPECT_EQ(page.find("http"), std::string::npos);  // nothing fetched from elsewhere
}

TEST_F(WorkbenchRouterTest, APageFileThatDoesNotExistIs404) {
    const HttpResponse answer = ask(request("GET", "/static/nowhere.js"));
    EXPECT_EQ(answer.status, 404);
    EXPECT_EQ(answer.body, errorBody("no page file \"/static/nowhere.js\""));
}

TEST_F(WorkbenchRouterTest, EveryQuestionAsksTheToken) {
    for (const auto& [method, path] : kQuestions) {
        for (const std::vector<tovhttp::HttpHeader>& tokens :
             std::vector<std::vector<tovhttp::HttpHeader>>{
                 {},
                 {{"X-Tov-Token", ""}},
                 {{"X-Tov-Token", kToken + "0"}},
                 {{"X-Tov-Token", kToken.substr(1)}},
                 {{"Authorization", "Bearer " + kToken}},
                 {{"Cookie", "X-Tov-Token=" + kToken}},
                 {{"X-Tov-Token", kToken}, {"X-Tov-Token", kToken}}}) {
            HttpRequest made = without(request(method, path, "{}"), "X-Tov-Token");
            made.headers.insert(made.headers.end(), tokens.begin(), tokens.end());
            const HttpResponse answer = ask(made);
            EXPECT_EQ(answer.status, 403) << path;
            EXPECT_EQ(answer.body, errorBody(kTokenRefusal)) << path;
        }
    }
    // An unknown path tells nothing without the token either.
    EXPECT_EQ(ask(without(request("GET", "/api/nowhere"), "X-Tov-Token")).status, 403);
}

TEST_F(WorkbenchRouterTest, WithTheTokenEveryQuestionIsAnswered) {
    EXPECT_EQ(ask(request("GET", "/api/documents")).status, 200);
    const std::string documents = tovwbtest::body(
        {{"rules", tovwbtest::exampleRules()}, {"datamodel", tovwbtest::exampleDataModel()}});
    EXPECT_EQ(ask(request("POST", "/api/check", documents)).status, 200);
    EXPECT_EQ(ask(request("POST", "/api/explain", documents)).status, 200);
    EXPECT_EQ(ask(request("POST", "/api/graph",
                          tovwbtest::body({{"rules", tovwbtest::exampleRules()},
                                           {"datamodel", tovwbtest::exampleDataModel()},
                                           {"type", "Part"},
                                           {"attribute", "Status"}})))
                  .status,
              200);
    const HttpResponse evaluated = ask(request(
        "POST", "/api/evaluate",
        tovwbtest::body({{"rules", tovwbtest::exampleRules()},
                         {"datamodel", tovwbtest::exampleDataModel()},
                         {"kind", "edit"},
                         {"request", tovwbtest::exampleRequest("edit-part-release-first-pass")}})));
    EXPECT_EQ(evaluated.status, 200);
    EXPECT_EQ(*evaluated.header("Content-Type"), "application/json");
    EXPECT_EQ(ask(request("POST", "/api/test",
                          tovwbtest::body({{"rules", "{}"}, {"datamodel", "{}"}, {"suite", "{"}})))
                  .status,
              422);
    EXPECT_EQ(ask(request("POST", "/api/save", documents)).status, 403);
}

TEST_F(WorkbenchRouterTest, ForeignHostsAreRefusedEverywhere) {
    std::vector<std::string> paths = kPageFiles;
    for (const auto& question : kQuestions) {
        paths.push_back(question.second);
    }
    for (const std::string& path : paths) {
        for (const char* host : {"attacker.example", "attacker.example:8490", "127.0.0.2",
                                 "localhost.attacker.example"}) {
            const HttpResponse answer = ask(with(request("GET", path), "Host", host));
            EXPECT_EQ(answer.status, 403) << path;
            EXPECT_EQ(answer.body,
                      errorBody("Host \"" + std::string(host) +
                                "\" is not allowed: this server answers requests for 127.0.0.1, "
                                "localhost, [::1] only (allow another name with --allow-host)"))
                << path;
        }
    }
}

TEST_F(WorkbenchRouterTest, ForeignOriginsAreRefusedBeyondThePage) {
    for (const char* origin :
         {"http://attacker.example", "null", "http://127.0.0.1:1", "https://localhost:8490"}) {
        const std::string refusal =
            errorBody("cross-site request refused: Origin \"" + std::string(origin) +
                      "\" is not this server's own origin");
        for (const auto& [method, path] : kQuestions) {
            const HttpResponse answer = ask(with(request(method, path, "{}"), "Origin", origin));
            EXPECT_EQ(answer.status, 403) << path;
            EXPECT_EQ(answer.body, refusal) << path;
        }
        for (const std::string& path : kPageFiles) {
            const HttpResponse answer = ask(with(request("GET", path), "Origin", origin));
            EXPECT_EQ(answer.status, path == "/" ? 200 : 403) << path;
        }
        const HttpResponse posted = ask(with(request("POST", "/"), "Origin", origin));
        EXPECT_EQ(posted.status, 403);
    }
    EXPECT_EQ(ask(with(request("GET", "/api/documents"), "Origin", "http://127.0.0.1:8490")).status,
              200);
}

TEST_F(WorkbenchRouterTest, FormPostsAreRefused) {
    for (const char* type : {"application/x-www-form-urlencoded", "multipart/form-data; boundary=x",
                             "text/plain", "application/jsonx"}) {
        for (const auto& [method, path] : kQuestions) {
            if (method != "POST") {
                continue;
            }
            const HttpResponse answer =
                ask(with(request("POST", path, "{}"), "Content-Type", type));
            EXPECT_EQ(answer.status, 415) << path;
            EXPECT_EQ(answer.body, errorBody("Content-Type must be application/json, not \"" +
                                             std::string(type) + "\""));
        }
    }
    const HttpResponse untyped = ask(without(request("POST", "/api/check", "{}"), "Content-Type"));
    EXPECT_EQ(untyped.status, 415);
    EXPECT_EQ(untyped.body, errorBody("Content-Type must be application/json (none was given)"));
    EXPECT_EQ(ask(with(request("POST", "/api/check", "{}"), "Content-Type",
                       "application/json; charset=utf-8"))
                  .status,
              400);
}

TEST_F(WorkbenchRouterTest, WrongMethodsAre405) {
    for (const auto& [method, path] : kQuestions) {
        for (const char* other : {"GET", "POST", "PUT", "DELETE", "HEAD"}) {
            if (method == other) {
                continue;
            }
            const HttpResponse answer = ask(request(other, path, "{}"));
            EXPECT_EQ(answer.status, 405) << other << " " << path;
            EXPECT_EQ(*answer.header("Allow"), method);
            EXPECT_EQ(answer.body, errorBody("method " + std::string(other) +
                                             " is not allowed here; use " + method));
        }
    }
    EXPECT_EQ(ask(request("DELETE", "/static/workbench.js")).status, 405);
}

TEST_F(WorkbenchRouterTest, UnknownPathsAre404) {
    for (const char* path : {"/api", "/api/", "/api/save/x", "/index.html", "/v1/evaluate/edit"}) {
        const HttpResponse answer = ask(request("GET", path));
        EXPECT_EQ(answer.status, 404) << path;
        EXPECT_EQ(answer.body, errorBody("no route for \"" + std::string(path) + "\""));
    }
}

TEST(WorkbenchRouter, WithoutATokenQuestionsNeedNone) {
    const auto workspace = tovwbtest::exampleWorkspace();
    tovwbtest::FakeRenderer renderer;
    const tovwb::WorkbenchApi api(*workspace, renderer, "");
    WorkbenchRouter router(api, guards(""));
    EXPECT_EQ(router.respond(without(request("GET", "/api/documents"), "X-Tov-Token")).status, 200);
    // The other guards still hold.
    EXPECT_EQ(
        router.respond(with(request("GET", "/api/documents"), "Host", "attacker.example")).status,
        403);
    EXPECT_EQ(
        router.respond(with(request("GET", "/api/documents"), "Origin", "http://x.example")).status,
        403);
}

}  // namespace
