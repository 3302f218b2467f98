// What the fuzz targets of the HTTP routes share: a request read from the
// fuzzer's bytes, the guards they run behind, and the checks that every
// answer of either server must pass.
#ifndef TOV_FUZZ_HTTP_FUZZ_SUPPORT_H_
#define TOV_FUZZ_HTTP_FUZZ_SUPPORT_H_

#include <string_view>

#include "http_handler.h"
#include "http_message.h"
#include "request_guards.h"

namespace tovfuzz {

// A request as the wire carries it, simplified: "METHOD TARGET", header lines
// "Name: value", an empty line, then the body.
tovhttp::HttpRequest requestOf(std::string_view text);

// The guards of a server on the loopback address that also answers to
// "tov.example", with the token "fuzz-token".
tovhttp::RequestGuards fuzzGuards();

// Answers `request` through `routes`, and aborts when the screen of its head
// alone refuses with another status than the whole answer has.
tovhttp::HttpResponse answerScreened(tovhttp::HttpHandler& routes, tovhttp::HttpRequest request);

// Aborts when a header carries a line end or the answer lets another origin
// read it.
void checkHeaders(const tovhttp::HttpResponse& response);

}  // namespace tovfuzz

#endif  // TOV_FUZZ_HTTP_FUZZ_SUPPORT_H_
