#include "http_fuzz_support.h"

#include <optional>
#include <string>
#include <utility>

#include "fuzz_support.h"

namespace tovfuzz {

namespace {

std::string_view nextLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    return line;
}

}  // namespace

tovhttp::HttpRequest requestOf(std::string_view text) {
    tovhttp::HttpRequest request;
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

tovhttp::RequestGuards fuzzGuards() {
    tovhttp::GuardPolicy policy;
    policy.checkHost = true;
    policy.allowedHosts = {"tov.example"};
    policy.token = "fuzz-token";
    return tovhttp::RequestGuards(policy);
}

tovhttp::HttpResponse answerScreened(tovhttp::HttpHandler& routes, tovhttp::HttpRequest request) {
    tovhttp::HttpRequest head = request;
    head.body.clear();
    const std::optional<tovhttp::HttpResponse> screened = routes.screen(head);
    tovhttp::HttpResponse answer = routes.respond(std::move(request));
    if (screened && screened->status != answer.status) {
        fail("the screen refused with " + std::to_string(screened->status) + " and the answer is " +
             std::to_string(answer.status));
    }
    return answer;
}

void checkHeaders(const tovhttp::HttpResponse& response) {
    for (const tovhttp::HttpHeader& header : response.headers) {
        if (header.name.find_first_of("\r\n") != std::string::npos ||
            header.value.find_first_of("\r\n") != std::string::npos) {
            fail("a line end in the header " + header.name);
        }
    }
    if (response.header("Access-Control-Allow-Origin") != nullptr) {
        fail("an answer that another origin may read");
    }
}

}  // namespace tovfuzz
