#include "request_guards.h"

#include <sys/random.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <utility>

namespace tovhttp {

namespace {

// The names under which a loopback address is always reached.
constexpr std::array<std::string_view, 3> kLoopbackNames = {"127.0.0.1", "localhost", "[::1]"};

std::string_view trimmed(std::string_view text) {
    const auto blank = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && blank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && blank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// The name of a Host value without its port ("[::1]:8480" -> "[::1]"); empty
// when the port is no number.
std::string_view hostName(std::string_view host) {
    const std::size_t bracket = host.rfind(']');
    const std::size_t colon = host.rfind(':');
    if (colon == std::string_view::npos || (bracket != std::string_view::npos && colon < bracket)) {
        return host;
    }
    const std::string_view port = host.substr(colon + 1);
    const bool numeric = !port.empty() && std::all_of(port.begin(), port.end(), [](char c) {
        return std::isdigit(static_cast<unsigned char>(c)) != 0;
    });
    return numeric ? host.substr(0, colon) : std::string_view();
}

std::size_t countHeaders(const HttpRequest& request, std::string_view name) {
    return static_cast<std::size_t>(std::count_if(
        request.headers.begin(), request.headers.end(),
        [&](const HttpHeader& header) { return equalsIgnoringCase(header.name, name); }));
}

}  // namespace

RequestGuards::RequestGuards(GuardPolicy policy) : policy(std::move(policy)) {}

bool RequestGuards::isAllowedHost(std::string_view host) const {
    const std::string_view name = hostName(trimmed(host));
    if (name.empty()) {
        return false;
    }
    const auto same = [&](std::string_view allowed) { return equalsIgnoringCase(name, allowed); };
    return std::any_of(kLoopbackNames.begin(), kLoopbackNames.end(), same) ||
           std::any_of(policy.allowedHosts.begin(), policy.allowedHosts.end(), same);
}

std::optional<HttpResponse> RequestGuards::checkHost(const HttpRequest& request) const {
    if (!policy.checkHost) {
        return std::nullopt;
    }
    const std::string* host = request.header("Host");
    if (host == nullptr || countHeaders(request, "Host") != 1) {
        return errorResponse(403, "a request to this server must carry exactly one Host header");
    }
    if (isAllowedHost(*host)) {
        return std::nullopt;
    }
    std::string names;
    for (const std::string_view name : kLoopbackNames) {
        names += std::string(name) + ", ";
    }
    for (const std::string& name : policy.allowedHosts) {
        names += name + ", ";
    }
    names.resize(names.size() - 2);
    return errorResponse(403, "Host \"" + printableExcerpt(*host) +
                                  "\" is not allowed: this server answers requests for " + names +
                                  " only (allow another name with --allow-host)");
}

std::optional<HttpResponse> RequestGuards::checkOrigin(const HttpRequest& request) const {
    const std::string* host = request.header("Host");
    for (const HttpHeader& header : request.headers) {
        if (!equalsIgnoringCase(header.name, "Origin")) {
            continue;
        }
        const std::string_view origin = trimmed(header.value);
        const bool own = host != nullptr && !trimmed(*host).empty() &&
                         (equalsIgnoringCase(origin, "http://" + std::string(trimmed(*host))) ||
                          equalsIgnoringCase(origin, "https://" + std::string(trimmed(*host))));
        if (!own) {
            return errorResponse(403, "cross-site request refused: Origin \"" +
                                          printableExcerpt(origin) +
                                          "\" is not this server's own origin");
        }
    }
    return std::nullopt;
}

std::optional<HttpResponse> RequestGuards::checkToken(const HttpRequest& request) const {
    if (policy.token.empty()) {
        return std::nullopt;
    }
    const std::string* authorization = request.header("Authorization");
    if (authorization != nullptr && countHeaders(request, "Authorization") == 1) {
        const std::string_view value = trimmed(*authorization);
        constexpr std::string_view kScheme = "Bearer";
        if (value.size() > kScheme.size() &&
            equalsIgnoringCase(value.substr(0, kScheme.size()), kScheme) &&
            value[kScheme.size()] == ' ' &&
            constantTimeEquals(policy.token, trimmed(value.substr(kScheme.size())))) {
            return std::nullopt;
        }
    }
    HttpResponse refusal =
        errorResponse(401, "this server asks for its token: send \"Authorization: Bearer TOKEN\"");
    refusal.setHeader("WWW-Authenticate", "Bearer realm=\"tov\"");
    return refusal;
}

std::optional<HttpResponse> RequestGuards::checkTokenHeader(const HttpRequest& request,
                                                            std::string_view name) const {
    if (policy.token.empty()) {
        return std::nullopt;
    }
    const std::string* given = request.header(name);
    if (given != nullptr && countHeaders(request, name) == 1 &&
        constantTimeEquals(policy.token, trimmed(*given))) {
        return std::nullopt;
    }
    return errorResponse(403,
                         "this server asks for its token, which the address that it "
                         "printed at its start carries: open that address");
}

std::optional<HttpResponse> checkContentType(const HttpRequest& request,
                                             const std::vector<std::string_view>& accepted) {
    const std::string* contentType = request.header("Content-Type");
    if (contentType != nullptr) {
        const std::string_view mediaType =
            trimmed(std::string_view(*contentType).substr(0, contentType->find(';')));
        const bool known =
            std::any_of(accepted.begin(), accepted.end(),
                        [&](std::string_view type) { return equalsIgnoringCase(mediaType, type); });
        if (known) {
            return std::nullopt;
        }
    }
    std::string names;
    for (const std::string_view type : accepted) {
        names += (names.empty() ? "" : ", ") + std::string(type);
    }
    return errorResponse(
        415, "Content-Type must be " + std::string(accepted.size() == 1 ? "" : "one of ") + names +
                 (contentType == nullptr ? " (none was given)"
                                         : ", not \"" + printableExcerpt(*contentType) + "\""));
}

std::string randomToken(std::size_t bytes, std::string& error) {
    std::vector<unsigned char> random(bytes);
    std::size_t filled = 0;
    while (filled < bytes) {
        const ssize_t got = ::getrandom(random.data() + filled, bytes - filled, 0);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            error = std::string("cannot draw a random token: ") + std::strerror(errno);
            return {};
        }
        filled += static_cast<std::size_t>(got);
    }
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string token;
    token.reserve(bytes * 2);
    for (const unsigned char byte : random) {
        token.push_back(kDigits[byte >> 4]);
        token.push_back(kDigits[byte & 0x0F]);
    }
    return token;
}

bool constantTimeEquals(std::string_view secret, std::string_view given) {
    unsigned char difference = secret.size() == given.size() ? 0 : 1;
    for (std::size_t i = 0; i < secret.size(); ++i) {
        const char other = i < given.size() ? given[i] : '\0';
        difference |= static_cast<unsigned char>(secret[i] ^ other);
    }
    return difference == 0;
}

}  // namespace tovhttp
