#include "request_guards.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace {

using tovhttp::GuardPolicy;
using tovhttp::HttpRequest;
using tovhttp::HttpResponse;
using tovhttp::RequestGuards;

HttpRequest withHeaders(std::vector<tovhttp::HttpHeader> headers) {
    HttpRequest request;
    request.method = "GET";
    request.target = "/health";
    request.headers = std::move(headers);
    return request;
}

RequestGuards loopbackGuards(std::vector<std::string> allowed = {}, std::string token = "") {
    GuardPolicy policy;
    policy.checkHost = true;
    policy.allowedHosts = std::move(allowed);
    policy.token = std::move(token);
    return RequestGuards(policy);
}

TEST(RequestGuards, LoopbackNamesPassWithOrWithoutAPort) {
    const RequestGuards guards = loopbackGuards({"tov.internal"});
    for (const char* host : {"127.0.0.1", "127.0.0.1:8480", "localhost", "LocalHost:1", "[::1]",
                             "[::1]:8480", " localhost ", "tov.internal", "TOV.internal:443"}) {
        EXPECT_EQ(guards.checkHost(withHeaders({{"Host", host}})), std::nullopt) << host;
    }
}

TEST(RequestGuards, OtherNamesAreRefused) {
    const RequestGuards guards = loopbackGuards({"tov.internal"});
    for (const char* host : {"attacker.example", "attacker.example:8480", "127.0.0.2", "localhost.",
                             "localhost:http", "::1", "[::1]x", "", "tov.internal.x"}) {
        const std::optional<HttpResponse> refusal = guards.checkHost(withHeaders({{"Host", host}}));
        ASSERT_TRUE(refusal) << host;
        EXPECT_EQ(refusal->status, 403);
        EXPECT_EQ(refusal->body, std::string("{\"error\":\"Host \\\"") + host +
                                     "\\\" is not allowed: this server answers requests for "
                                     "127.0.0.1, localhost, [::1], tov.internal only (allow "
                                     "another name with --allow-host)\"}\n");
    }
}

TEST(RequestGuards, ExactlyOneHostIsAsked) {
    const RequestGuards guards = loopbackGuards();
    const std::string message =
        "{\"error\":\"a request to this server must carry exactly one Host header\"}\n";
    EXPECT_EQ(guards.checkHost(withHeaders({}))->body, message);
    EXPECT_EQ(guards.checkHost(withHeaders({{"Host", "localhost"}, {"host", "localhost"}}))->body,
              message);
}

TEST(RequestGuards, TheHostIsNotCheckedOffTheLoopback) {
    const RequestGuards guards((GuardPolicy()));
    EXPECT_EQ(guards.checkHost(withHeaders({{"Host", "attacker.example"}})), std::nullopt);
    EXPECT_EQ(guards.checkHost(withHeaders({})), std::nullopt);
}

TEST(RequestGuards, OnlyTheServersOwnOriginPasses) {
    const RequestGuards guards((GuardPolicy()));
    EXPECT_EQ(guards.checkOrigin(withHeaders({{"Host", "localhost:8480"}})), std::nullopt);
    EXPECT_EQ(guards.checkOrigin(
                  withHeaders({{"Host", "localhost:8480"}, {"Origin", "http://localhost:8480"}})),
              std::nullopt);
    EXPECT_EQ(guards.checkOrigin(
                  withHeaders({{"Host", "localhost:8480"}, {"Origin", "HTTPS://LOCALHOST:8480"}})),
              std::nullopt);
    for (const char* origin : {"http://attacker.example", "null", "http://localhost:8481",
                               "http://localhost", "localhost:8480", ""}) {
        const std::optional<HttpResponse> refusal =
            guards.checkOrigin(withHeaders({{"Host", "localhost:8480"}, {"Origin", origin}}));
        ASSERT_TRUE(refusal) << origin;
        EXPECT_EQ(refusal->status, 403);
        EXPECT_EQ(refusal->body, std::string("{\"error\":\"cross-site request refused: Origin "
                                             "\\\"") +
                                     origin + "\\\" is not this server's own origin\"}\n");
    }
    // Without a Host there is no own origin to compare with.
    EXPECT_TRUE(guards.checkOrigin(withHeaders({{"Origin", "http://localhost"}})));
    // A second Origin header is looked at too.
    EXPECT_TRUE(guards.checkOrigin(withHeaders({{"Host", "localhost"},
                                                {"Origin", "http://localhost"},
                                                {"Origin", "http://attacker.example"}})));
}

TEST(RequestGuards, TheTokenIsAskedWhenSet) {
    const RequestGuards open((GuardPolicy()));
    EXPECT_FALSE(open.asksToken());
    EXPECT_EQ(open.checkToken(withHeaders({})), std::nullopt);

    const RequestGuards guarded = loopbackGuards({}, "t0ken");
    EXPECT_TRUE(guarded.asksToken());
    for (const char* authorization : {"Bearer t0ken", "bearer t0ken", "BEARER   t0ken  "}) {
        EXPECT_EQ(guarded.checkToken(withHeaders({{"Authorization", authorization}})), std::nullopt)
            << authorization;
    }
    for (const char* authorization : {"Bearer t0ke", "Bearer t0kenn", "Bearer T0KEN", "t0ken",
                                      "Basic t0ken", "Bearert0ken", "Bearer", ""}) {
        const std::optional<HttpResponse> refusal =
            guarded.checkToken(withHeaders({{"Authorization", authorization}}));
        ASSERT_TRUE(refusal) << authorization;
        EXPECT_EQ(refusal->status, 401);
        EXPECT_EQ(refusal->body,
                  "{\"error\":\"this server asks for its token: send \\\"Authorization: "
                  "Bearer TOKEN\\\"\"}\n");
        EXPECT_EQ(*refusal->header("WWW-Authenticate"), "Bearer realm=\"tov\"");
    }
    EXPECT_TRUE(guarded.checkToken(withHeaders({})));
    EXPECT_TRUE(guarded.checkToken(
        withHeaders({{"Authorization", "Bearer t0ken"}, {"Authorization", "Bearer t0ken"}})));
}

TEST(RequestGuards, ATokenHeaderIsAskedWhenSet) {
    const RequestGuards open((GuardPolicy()));
    EXPECT_EQ(open.checkTokenHeader(withHeaders({}), "X-Token"), std::nullopt);

    const RequestGuards guarded = loopbackGuards({}, "t0ken");
    for (const char* name : {"X-Token", "x-token", "X-TOKEN"}) {
        EXPECT_EQ(guarded.checkTokenHeader(withHeaders({{name, "t0ken"}}), "X-Token"),
                  std::nullopt);
    }
    EXPECT_EQ(guarded.checkTokenHeader(withHeaders({{"X-Token", " t0ken "}}), "X-Token"),
              std::nullopt);
    const std::vector<std::vector<tovhttp::HttpHeader>> refused = {
        {},
        {{"X-Token", ""}},
        {{"X-Token", "t0ke"}},
        {{"X-Token", "t0kenn"}},
        {{"X-Token", "T0KEN"}},
        {{"Authorization", "Bearer t0ken"}},
        {{"Cookie", "X-Token=t0ken"}},
        {{"X-Token", "t0ken"}, {"X-Token", "t0ken"}},
    };
    for (const std::vector<tovhttp::HttpHeader>& headers : refused) {
        const std::optional<HttpResponse> refusal =
            guarded.checkTokenHeader(withHeaders(headers), "X-Token");
        ASSERT_TRUE(refusal) << headers.size();
        EXPECT_EQ(refusal->status, 403);
        EXPECT_EQ(refusal->body,
                  "{\"error\":\"this server asks for its token, which the address that it "
                  "printed at its start carries: open that address\"}\n");
    }
}

TEST(RequestGuards, RandomTokensAreHexOfTheirLengthAndDiffer) {
    std::string error;
    const std::string first = tovhttp::randomToken(16, error);
    const std::string second = tovhttp::randomToken(16, error);
    EXPECT_EQ(error, "");
    EXPECT_EQ(first.size(), 32U);
    EXPECT_EQ(first.find_first_not_of("0123456789abcdef"), std::string::npos);
    EXPECT_NE(first, second);
    EXPECT_EQ(tovhttp::randomToken(0, error), "");
    EXPECT_EQ(tovhttp::randomToken(1000, error).size(), 2000U);
}

TEST(RequestGuards, ConstantTimeEquality) {
    EXPECT_TRUE(tovhttp::constantTimeEquals("secret", "secret"));
    EXPECT_FALSE(tovhttp::constantTimeEquals("secret", "secreT"));
    EXPECT_FALSE(tovhttp::constantTimeEquals("secret", "secre"));
    EXPECT_FALSE(tovhttp::constantTimeEquals("secret", "secrets"));
    EXPECT_FALSE(tovhttp::constantTimeEquals("secret", ""));
    EXPECT_FALSE(tovhttp::constantTimeEquals("secret", std::string("secret\0", 7)));
    EXPECT_TRUE(tovhttp::constantTimeEquals("", ""));
}

TEST(RequestGuards, OnlyJsonContentTypesPass) {
    const std::vector<std::string_view> json = {"application/json"};
    const std::vector<std::string_view> lines = {"application/json", "application/x-ndjson"};
    HttpRequest request = withHeaders({{"Content-Type", "application/json"}});
    EXPECT_EQ(tovhttp::checkContentType(request, json), std::nullopt);
    request.headers = {{"content-type", " Application/JSON ; charset=utf-8"}};
    EXPECT_EQ(tovhttp::checkContentType(request, json), std::nullopt);
    request.headers = {{"Content-Type", "application/x-ndjson"}};
    EXPECT_EQ(tovhttp::checkContentType(request, lines), std::nullopt);
    ASSERT_TRUE(tovhttp::checkContentType(request, json));
    EXPECT_EQ(tovhttp::checkContentType(request, json)->body,
              "{\"error\":\"Content-Type must be application/json, not "
              "\\\"application/x-ndjson\\\"\"}\n");
    request.headers = {{"Content-Type", "text/plain"}};
    EXPECT_EQ(tovhttp::checkContentType(request, lines)->body,
              "{\"error\":\"Content-Type must be one of application/json, "
              "application/x-ndjson, not \\\"text/plain\\\"\"}\n");
    EXPECT_EQ(tovhttp::checkContentType(request, lines)->status, 415);
    request.headers = {};
    EXPECT_EQ(tovhttp::checkContentType(request, json)->body,
              "{\"error\":\"Content-Type must be application/json (none was given)\"}\n");
}

}  // namespace
