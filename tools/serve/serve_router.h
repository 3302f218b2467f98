// The routes of tov serve: a request in, a response out, no sockets. The
// guards run first, then the route, method and content type are checked,
// and only then does a handler run, so that every refusal is decided in one
// place, and tests and fuzzers reach all of it by calling respond().
#ifndef TOV_TOOLS_SERVE_SERVE_ROUTER_H_
#define TOV_TOOLS_SERVE_SERVE_ROUTER_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "decision_service.h"
#include "http_handler.h"
#include "request_guards.h"

namespace tovserve {

// One route as the OpenAPI document lists it.
struct RouteDescription {
    std::string method;  // "GET" or "POST"
    std::string path;    // "/v1/evaluate/{kind}"
};

class ServeRouter final : public tovhttp::HttpHandler {
public:
    ServeRouter(DecisionService& service, tovhttp::RequestGuards guards);

    // Everything that can be decided from the head: the guards, the route,
    // the method and the content type. Nothing when the request may go on.
    std::optional<tovhttp::HttpResponse> screen(const tovhttp::HttpRequest& request) override;

    // The answer to a whole request: the screen's refusal, or the handler's.
    tovhttp::HttpResponse respond(tovhttp::HttpRequest request) override;

    // Counts every status sent.
    void responded(int status) override;

    // Every route, in the order of the OpenAPI document.
    static std::vector<RouteDescription> routes();

private:
    struct Route;
    static const std::vector<Route>& routeTable();

    tovhttp::HttpResponse evaluate(tovhttp::HttpRequest& request);
    tovhttp::HttpResponse batch(tovhttp::HttpRequest& request);
    tovhttp::HttpResponse rules(tovhttp::HttpRequest& request);
    tovhttp::HttpResponse graph(tovhttp::HttpRequest& request);
    tovhttp::HttpResponse status(tovhttp::HttpRequest& request);
    tovhttp::HttpResponse health(tovhttp::HttpRequest& request);
    tovhttp::HttpResponse ready(tovhttp::HttpRequest& request);
    tovhttp::HttpResponse metrics(tovhttp::HttpRequest& request);
    tovhttp::HttpResponse openApi(tovhttp::HttpRequest& request);

    DecisionService& service;
    const tovhttp::RequestGuards guards;
};

}  // namespace tovserve

#endif  // TOV_TOOLS_SERVE_SERVE_ROUTER_H_
