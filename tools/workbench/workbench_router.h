// The routes of the workbench: a request in, a response out, no sockets, as
// tov serve's router. The guards come first (the host, the origin, the
// token), then the route, method and content type, and only then a handler;
// every answer carries the headers that tell a browser how to treat it.
#ifndef TOV_TOOLS_WORKBENCH_WORKBENCH_ROUTER_H_
#define TOV_TOOLS_WORKBENCH_WORKBENCH_ROUTER_H_

#include <optional>
#include <string_view>
#include <vector>

#include "http_handler.h"
#include "request_guards.h"
#include "workbench_api.h"

namespace tovwb {

// The header in which the page's script sends the token.
constexpr std::string_view kTokenHeader = "X-Tov-Token";

// What the page may load and run: its own scripts and styles only, no inline
// script or style, connections to its own server only, and no frame around it.
constexpr std::string_view kContentSecurityPolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
    "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

class WorkbenchRouter final : public tovhttp::HttpHandler {
public:
    WorkbenchRouter(const WorkbenchApi& api, tovhttp::RequestGuards guards);

    std::optional<tovhttp::HttpResponse> screen(const tovhttp::HttpRequest& request) override;
    tovhttp::HttpResponse respond(tovhttp::HttpRequest request) override;

private:
    struct Route;
    static const std::vector<Route>& routeTable();
    static const Route* findRoute(std::string_view path);
    std::optional<tovhttp::HttpResponse> refusal(const tovhttp::HttpRequest& request) const;

    const WorkbenchApi& api;
    const tovhttp::RequestGuards guards;
};

}  // namespace tovwb

#endif  // TOV_TOOLS_WORKBENCH_WORKBENCH_ROUTER_H_
