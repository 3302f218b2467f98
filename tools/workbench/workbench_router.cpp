#include "workbench_router.h"

#include <new>
#include <string>
#include <utility>

#include "page_assets.h"

namespace tovwb {

namespace {

using tovhttp::errorResponse;
using tovhttp::HttpRequest;
using tovhttp::HttpResponse;

constexpr std::string_view kStaticPrefix = "/static/";

// Every answer, refusals included: the browser headers, and no copy kept.
HttpResponse finished(HttpResponse response) {
    tovhttp::setBrowserHeaders(response, kContentSecurityPolicy);
    response.setHeader("Cache-Control", "no-store");
    return response;
}

}  // namespace

struct WorkbenchRouter::Route {
    std::string_view path;  // exact, or kStaticPrefix for the page's files
    std::string_view method;
    bool shell;  // the page and its files: the same in every copy of the program, so open
    HttpResponse (*handler)(const WorkbenchApi& api, const HttpRequest& request);
};

const std::vector<WorkbenchRouter::Route>& WorkbenchRouter::routeTable() {
    const auto asset = [](const WorkbenchApi& /*api*/, const HttpRequest& request) {
        const PageAsset* found = findPageAsset(request.path());
        if (found == nullptr) {
            return errorResponse(
                404, "no page file \"" + tovhttp::printableExcerpt(request.path()) + "\"");
        }
        HttpResponse response;
        response.body = std::string(found->text());
        response.headers.push_back({"Content-Type", std::string(found->contentType)});
        return response;
    };
    static const std::vector<Route> table = {
        {"/", "GET", true, asset},
        {kStaticPrefix, "GET", true, asset},
        {"/api/documents", "GET", false,
         [](const WorkbenchApi& api, const HttpRequest& /*request*/) { return api.documents(); }},
        {"/api/check", "POST", false,
         [](const WorkbenchApi& api, const HttpRequest& request) {
             return api.check(request.body);
         }},
        {"/api/explain", "POST", false,
         [](const WorkbenchApi& api, const HttpRequest& request) {
             return api.explain(request.body);
         }},
        {"/api/graph", "POST", false,
         [](const WorkbenchApi& api, const HttpRequest& request) {
             return api.graph(request.body);
         }},
        {"/api/evaluate", "POST", false,
         [](const WorkbenchApi& api, const HttpRequest& request) {
             return api.evaluate(request.body);
         }},
        {"/api/test", "POST", false,
         [](const WorkbenchApi& api, const HttpRequest& request) {
             return api.test(request.body);
         }},
        {"/api/save", "POST", false,
         [](const WorkbenchApi& api, const HttpRequest& request) {
             return api.save(request.body);
         }},
    };
    return table;
}

const WorkbenchRouter::Route* WorkbenchRouter::findRoute(std::string_view path) {
    for (const Route& route : routeTable()) {
        const bool matches = route.path == kStaticPrefix
                                 ? path.substr(0, kStaticPrefix.size()) == kStaticPrefix
                                 : path == route.path;
        if (matches) {
            return &route;
        }
    }
    return nullptr;
}

WorkbenchRouter::WorkbenchRouter(const WorkbenchApi& api, tovhttp::RequestGuards guards)
    : api(api), guards(std::move(guards)) {}

std::optional<HttpResponse> WorkbenchRouter::refusal(const HttpRequest& request) const {
    if (std::optional<HttpResponse> refused = guards.checkHost(request)) {
        return refused;
    }
    const std::string_view path = request.path();
    const Route* route = findRoute(path);
    // A link to the page from anywhere opens it; everything else answers
    // only the page's own script.
    const bool pageShell = route != nullptr && route->path == "/" && request.method == "GET";
    if (!pageShell) {
        if (std::optional<HttpResponse> refused = guards.checkOrigin(request)) {
            return refused;
        }
    }
    if (route == nullptr || !route->shell) {
        if (std::optional<HttpResponse> refused = guards.checkTokenHeader(request, kTokenHeader)) {
            return refused;
        }
    }
    if (route == nullptr) {
        return errorResponse(404, "no route for \"" + tovhttp::printableExcerpt(path) + "\"");
    }
    if (request.method != route->method) {
        HttpResponse refused =
            errorResponse(405, "method " + tovhttp::printableExcerpt(request.method) +
                                   " is not allowed here; use " + std::string(route->method));
        refused.setHeader("Allow", std::string(route->method));
        return refused;
    }
    if (route->method == "POST") {
        // Only a script can send JSON across the network layer's checks; a
        // form of another page cannot.
        if (std::optional<HttpResponse> refused =
                tovhttp::checkContentType(request, {"application/json"})) {
            return refused;
        }
    }
    return std::nullopt;
}

std::optional<HttpResponse> WorkbenchRouter::screen(const HttpRequest& request) {
    if (std::optional<HttpResponse> refused = refusal(request)) {
        return finished(std::move(*refused));
    }
    return std::nullopt;
}

HttpResponse WorkbenchRouter::respond(HttpRequest request) {
    if (std::optional<HttpResponse> refused = refusal(request)) {
        return finished(std::move(*refused));
    }
    const Route& route = *findRoute(request.path());
    try {
        return finished(route.handler(api, request));
    } catch (const std::bad_alloc&) {
        return finished(errorResponse(500, "out of memory: the workbench could not answer"));
    }
}

}  // namespace tovwb
