// What a request must pass before any handler sees it. A service on a
// developer's machine or behind a proxy meets three attacks that need no
// access to the machine: DNS rebinding (a web page's own host name that now
// points at the loopback address, seen in Host), cross-site requests sent by
// a web page (seen in Origin, or as a form's content type), and callers that
// lack the token. Each server of the program (tov serve, and later the
// workbench) asks these same checks.
#ifndef TOV_TOOLS_HTTP_REQUEST_GUARDS_H_
#define TOV_TOOLS_HTTP_REQUEST_GUARDS_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "http_message.h"

namespace tovhttp {

struct GuardPolicy {
    // While a server listens on a loopback address, only requests for
    // 127.0.0.1, localhost, [::1] (any port) and these further names pass.
    bool checkHost = false;
    std::vector<std::string> allowedHosts;
    // The bearer token that every guarded request must carry; empty asks none.
    std::string token;
};

class RequestGuards {
public:
    explicit RequestGuards(GuardPolicy policy);

    // 403 when the host is checked and the request is not for an allowed
    // name, or carries no single Host header.
    std::optional<HttpResponse> checkHost(const HttpRequest& request) const;

    // 403 when an Origin header names another origin than the server's own,
    // which is "http://" or "https://" followed by the request's Host.
    std::optional<HttpResponse> checkOrigin(const HttpRequest& request) const;

    // 401, with WWW-Authenticate, when a token is asked and the request does
    // not carry "Authorization: Bearer TOKEN" with it (compared in constant
    // time).
    std::optional<HttpResponse> checkToken(const HttpRequest& request) const;

    // 403 when a token is asked and the request does not carry exactly one
    // header `name` with it (compared in constant time). For a page whose
    // own script sends the token: a page of another site can make a browser
    // send neither the header nor, without the server's consent, any
    // request that carries it.
    std::optional<HttpResponse> checkTokenHeader(const HttpRequest& request,
                                                 std::string_view name) const;

    bool asksToken() const { return !policy.token.empty(); }

private:
    bool isAllowedHost(std::string_view host) const;

    GuardPolicy policy;
};

// 415 unless the Content-Type's media type (parameters such as charset aside,
// case ignored) is one of `accepted`. A request without one is refused too:
// a web page can send a body without a type across sites.
std::optional<HttpResponse> checkContentType(const HttpRequest& request,
                                             const std::vector<std::string_view>& accepted);

// A secret of `bytes` random bytes from the operating system's random source
// (getrandom), written as lower-case hex. Empty, with the reason in `error`,
// when the source cannot give them.
std::string randomToken(std::size_t bytes, std::string& error);

// Equality whose time depends on the length of `secret` only, not on where
// `given` first differs, so that a caller cannot find the token byte by byte.
bool constantTimeEquals(std::string_view secret, std::string_view given);

}  // namespace tovhttp

#endif  // TOV_TOOLS_HTTP_REQUEST_GUARDS_H_
