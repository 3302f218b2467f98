// A request and a response as the HTTP layer hands them to a handler and
// takes them back: plain values without sockets, so that everything between
// the wire and the answer is a function that tests and fuzzers call directly.
#ifndef TOV_TOOLS_HTTP_HTTP_MESSAGE_H_
#define TOV_TOOLS_HTTP_HTTP_MESSAGE_H_

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tovhttp {

struct HttpHeader {
    std::string name;  // as sent; compared without regard to case
    std::string value;
};

// The first header named `name` (case ignored), or null.
const std::string* findHeader(const std::vector<HttpHeader>& headers, std::string_view name);

struct HttpRequest {
    std::string method;  // as sent: "GET", "POST", ...
    std::string target;  // path and query as sent: "/v1/graph?type=Part"
    std::vector<HttpHeader> headers;
    std::string body;  // empty while only the head has been read

    const std::string* header(std::string_view name) const { return findHeader(headers, name); }
    // The target up to "?", and what follows it (without the "?").
    std::string_view path() const;
    std::string_view query() const;
};

struct HttpResponse {
    int status = 200;
    std::vector<HttpHeader> headers;
    std::string body;
    // When set, the body is made piece by piece after the head has gone out,
    // so that a long answer never waits whole in memory: each call appends
    // the next piece to its argument and returns false once it made the last
    // one. `body` is then unused.
    std::function<bool(std::string& piece)> bodyPieces;

    const std::string* header(std::string_view name) const { return findHeader(headers, name); }
    // Replaces every header of that name (case ignored) with one.
    void setHeader(std::string_view name, std::string value);
};

// The one way the HTTP layer and its handlers refuse: `status` with the JSON
// body {"error": message}.
HttpResponse errorResponse(int status, std::string_view message);

// `status` with a JSON body as given; a line end is added when it lacks one,
// so that answers read well in a terminal.
HttpResponse jsonResponse(int status, std::string body);

// What a browser is told with every answer of a server that serves pages:
// never to guess a type other than the one given (X-Content-Type-Options),
// never to tell a page's address to what it links to (Referrer-Policy),
// never to show it inside another site's frame (X-Frame-Options); and, when
// given, the Content-Security-Policy that says what a page may load and run.
void setBrowserHeaders(HttpResponse& response, std::string_view contentSecurityPolicy);

// The value of the query parameter `name` ("+" and %XX decoded), or nothing
// when the query lacks it. The first occurrence counts.
std::optional<std::string> queryParameter(std::string_view query, std::string_view name);

// `text` fit to be quoted in a message: bytes other than printable ASCII
// become "?", and more than `limit` bytes end in "...". What a client sent
// then cannot break the JSON or the log line that tells it.
std::string printableExcerpt(std::string_view text, std::size_t limit = 80);

// ASCII case-insensitive equality, as header names and host names compare.
bool equalsIgnoringCase(std::string_view left, std::string_view right);

}  // namespace tovhttp

#endif  // TOV_TOOLS_HTTP_HTTP_MESSAGE_H_
