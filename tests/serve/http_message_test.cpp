#include "http_message.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using tovhttp::HttpRequest;
using tovhttp::HttpResponse;

TEST(HttpMessage, HeadersAreFoundWithoutRegardToCase) {
    HttpRequest request;
    request.headers = {{"Content-TYPE", "application/json"}, {"content-type", "text/plain"}};
    ASSERT_NE(request.header("content-type"), nullptr);
    EXPECT_EQ(*request.header("Content-Type"), "application/json");
    EXPECT_EQ(request.header("Host"), nullptr);
}

TEST(HttpMessage, PathAndQuery) {
    HttpRequest request;
    request.target = "/v1/graph?type=Part&attribute=Status";
    EXPECT_EQ(request.path(), "/v1/graph");
    EXPECT_EQ(request.query(), "type=Part&attribute=Status");
    request.target = "/health";
    EXPECT_EQ(request.path(), "/health");
    EXPECT_EQ(request.query(), "");
    request.target = "/health?";
    EXPECT_EQ(request.path(), "/health");
    EXPECT_EQ(request.query(), "");
}

TEST(HttpMessage, SetHeaderReplacesEveryHeaderOfThatName) {
    HttpResponse response;
    response.headers = {{"allow", "GET"}, {"X-Other", "1"}, {"ALLOW", "PUT"}};
    response.setHeader("Allow", "POST");
    ASSERT_EQ(response.headers.size(), 2U);
    EXPECT_EQ(response.headers[0].name, "X-Other");
    EXPECT_EQ(response.headers[1].name, "Allow");
    EXPECT_EQ(*response.header("allow"), "POST");
}

TEST(HttpMessage, ErrorResponsesAreJson) {
    const HttpResponse response = tovhttp::errorResponse(404, "no \"route\"\n here");
    EXPECT_EQ(response.status, 404);
    EXPECT_EQ(response.body, "{\"error\":\"no \\\"route\\\"\\n here\"}\n");
    ASSERT_EQ(response.headers.size(), 1U);
    EXPECT_EQ(*response.header("Content-Type"), "application/json");
    EXPECT_FALSE(response.bodyPieces);
}

TEST(HttpMessage, JsonResponsesEndWithOneLineEnd) {
    EXPECT_EQ(tovhttp::jsonResponse(200, "{}").body, "{}\n");
    EXPECT_EQ(tovhttp::jsonResponse(200, "{}\n").body, "{}\n");
    EXPECT_EQ(tovhttp::jsonResponse(503, "").body, "\n");
    EXPECT_EQ(tovhttp::jsonResponse(503, "").status, 503);
}

TEST(HttpMessage, BrowserHeaders) {
    HttpResponse response = tovhttp::jsonResponse(200, "{}");
    response.setHeader("X-Frame-Options", "SAMEORIGIN");
    tovhttp::setBrowserHeaders(response, "default-src 'none'");
    ASSERT_EQ(response.headers.size(), 5U);
    EXPECT_EQ(*response.header("Content-Type"), "application/json");
    EXPECT_EQ(*response.header("X-Content-Type-Options"), "nosniff");
    EXPECT_EQ(*response.header("Referrer-Policy"), "no-referrer");
    EXPECT_EQ(*response.header("X-Frame-Options"), "DENY");
    EXPECT_EQ(*response.header("Content-Security-Policy"), "default-src 'none'");

    HttpResponse plain;
    tovhttp::setBrowserHeaders(plain, "");
    EXPECT_EQ(plain.headers.size(), 3U);
    EXPECT_EQ(plain.header("Content-Security-Policy"), nullptr);
}

TEST(HttpMessage, QueryParametersAreDecoded) {
    const std::string query = "type=Part+Two&attribute=St%61tus&empty=&bare&type=Other&bad=%zz%4";
    EXPECT_EQ(tovhttp::queryParameter(query, "type"), "Part Two");
    EXPECT_EQ(tovhttp::queryParameter(query, "attribute"), "Status");
    EXPECT_EQ(tovhttp::queryParameter(query, "empty"), "");
    EXPECT_EQ(tovhttp::queryParameter(query, "bare"), "");
    EXPECT_EQ(tovhttp::queryParameter(query, "bad"), "%zz%4");
    EXPECT_EQ(tovhttp::queryParameter(query, "missing"), std::nullopt);
    EXPECT_EQ(tovhttp::queryParameter("", "type"), std::nullopt);
    EXPECT_EQ(tovhttp::queryParameter("ty%70e=x", "type"), "x");
}

TEST(HttpMessage, PrintableExcerpts) {
    EXPECT_EQ(tovhttp::printableExcerpt("plain text"), "plain text");
    EXPECT_EQ(tovhttp::printableExcerpt("a\"b\\c\nd\xC3\xA9"), "a?b?c?d??");
    EXPECT_EQ(tovhttp::printableExcerpt("abcdef", 3), "abc...");
    EXPECT_EQ(tovhttp::printableExcerpt(std::string(80, 'x')), std::string(80, 'x'));
}

TEST(HttpMessage, CaseInsensitiveEquality) {
    EXPECT_TRUE(tovhttp::equalsIgnoringCase("LocalHost", "localhost"));
    EXPECT_FALSE(tovhttp::equalsIgnoringCase("localhost", "localhost."));
    EXPECT_TRUE(tovhttp::equalsIgnoringCase("", ""));
}

}  // namespace
