#include "http_message.h"

#include <algorithm>
#include <cctype>

#include "json/json_types.h"

namespace tovhttp {

namespace {

int hexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

// "+" is a blank and %XX a byte, as forms and curl's --data-urlencode write
// them; a "%" without two hex digits stays as it is.
std::string decodeQueryText(std::string_view text) {
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '+') {
            decoded.push_back(' ');
        } else if (text[i] == '%' && i + 2 < text.size() && hexDigit(text[i + 1]) >= 0 &&
                   hexDigit(text[i + 2]) >= 0) {
            decoded.push_back(
                static_cast<char>(hexDigit(text[i + 1]) * 16 + hexDigit(text[i + 2])));
            i += 2;
        } else {
            decoded.push_back(text[i]);
        }
    }
    return decoded;
}

}  // namespace

bool equalsIgnoringCase(std::string_view left, std::string_view right) {
    return left.size() == right.size() &&
           std::equal(left.begin(), left.end(), right.begin(), [](char a, char b) {
               return std::tolower(static_cast<unsigned char>(a)) ==
                      std::tolower(static_cast<unsigned char>(b));
           });
}

std::string printableExcerpt(std::string_view text, std::size_t limit) {
    std::string excerpt;
    for (const char c : text.substr(0, limit)) {
        excerpt.push_back(c >= 0x20 && c < 0x7F && c != '"' && c != '\\' ? c : '?');
    }
    if (text.size() > limit) {
        excerpt += "...";
    }
    return excerpt;
}

const std::string* findHeader(const std::vector<HttpHeader>& headers, std::string_view name) {
    for (const HttpHeader& header : headers) {
        if (equalsIgnoringCase(header.name, name)) {
            return &header.value;
        }
    }
    return nullptr;
}

std::string_view HttpRequest::path() const {
    const std::string_view whole(target);
    return whole.substr(0, whole.find('?'));
}

std::string_view HttpRequest::query() const {
    const std::string_view whole(target);
    const std::size_t mark = whole.find('?');
    return mark == std::string_view::npos ? std::string_view() : whole.substr(mark + 1);
}

void HttpResponse::setHeader(std::string_view name, std::string value) {
    headers.erase(std::remove_if(headers.begin(), headers.end(),
                                 [&](const HttpHeader& header) {
                                     return equalsIgnoringCase(header.name, name);
                                 }),
                  headers.end());
    headers.push_back({std::string(name), std::move(value)});
}

HttpResponse errorResponse(int status, std::string_view message) {
    tovjson::StringBuffer buffer;
    tovjson::Writer writer(buffer);
    writer.StartObject();
    writer.Key("error");
    writer.String(message.data(), static_cast<rapidjson::SizeType>(message.size()));
    writer.EndObject();
    return jsonResponse(status, std::string(buffer.GetString(), buffer.GetSize()));
}

HttpResponse jsonResponse(int status, std::string body) {
    HttpResponse response;
    response.status = status;
    if (body.empty() || body.back() != '\n') {
        body.push_back('\n');
    }
    response.body = std::move(body);
    response.headers.push_back({"Content-Type", "application/json"});
    return response;
}

void setBrowserHeaders(HttpResponse& response, std::string_view contentSecurityPolicy) {
    response.setHeader("X-Content-Type-Options", "nosniff");
    response.setHeader("Referrer-Policy", "no-referrer");
    response.setHeader("X-Frame-Options", "DENY");
    if (!contentSecurityPolicy.empty()) {
        response.setHeader("Content-Security-Policy", std::string(contentSecurityPolicy));
    }
}

std::optional<std::string> queryParameter(std::string_view query, std::string_view name) {
    std::size_t start = 0;
    while (start <= query.size()) {
        const std::size_t end = std::min(query.find('&', start), query.size());
        const std::string_view pair = query.substr(start, end - start);
        const std::size_t equals = pair.find('=');
        const std::string_view key = pair.substr(0, equals);
        if (decodeQueryText(key) == name) {
            return equals == std::string_view::npos ? std::string()
                                                    : decodeQueryText(pair.substr(equals + 1));
        }
        start = end + 1;
    }
    return std::nullopt;
}

}  // namespace tovhttp
