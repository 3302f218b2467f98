// What a server of the HTTP layer asks about each request. It is kept apart
// from the server, so that what answers requests needs no sockets and no Beast.
#ifndef TOV_TOOLS_HTTP_HTTP_HANDLER_H_
#define TOV_TOOLS_HTTP_HTTP_HANDLER_H_

#include <optional>

#include "http_message.h"

namespace tovhttp {

// What the server asks about each request, on one of its threads.
class HttpHandler {
public:
    virtual ~HttpHandler() = default;
    // The request's head, its body still unread (and empty). A response given
    // here answers the request without reading the body.
    virtual std::optional<HttpResponse> screen(const HttpRequest& head) = 0;
    // The whole request. An exception that escapes is answered with 500.
    virtual HttpResponse respond(HttpRequest request) = 0;
    // Every status the server sends, its own refusals (400, 413, 431, 503...)
    // included, for counting.
    virtual void responded(int status) { static_cast<void>(status); }
};

}  // namespace tovhttp

#endif  // TOV_TOOLS_HTTP_HTTP_HANDLER_H_
