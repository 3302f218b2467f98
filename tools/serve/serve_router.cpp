#include "serve_router.h"

#include "json/json_types.h"

#include <chrono>
#include <new>
#include <sstream>
#include <utility>

#include "batch_line.h"
#include "json_output.h"
#include "lifecycle_graph.h"
#include "openapi_document.h"
#include "request_kinds.h"
#include "rules_in_words.h"
#include "tov/entry_points.h"

namespace tovserve {

namespace {

using tovhttp::errorResponse;
using tovhttp::HttpRequest;
using tovhttp::HttpResponse;
using tovhttp::jsonResponse;
using Clock = std::chrono::steady_clock;

constexpr std::string_view kEvaluatePrefix = "/v1/evaluate/";
// A batch's answers go out in pieces of about this size.
constexpr std::size_t kBatchPieceSize = std::size_t{64} << 10;

DecisionResult resultOf(const TOVResponse& response) {
    if (response.getGeneralResult()) {
        return DecisionResult::kSuccess;
    }
    TOVMissingDataForEvaluation missing;
    return response.needsReevaluation(missing) ? DecisionResult::kMissingData
                                               : DecisionResult::kFailure;
}

std::size_t kindIndex(const tovcli::RequestKind& kind) {
    return static_cast<std::size_t>(&kind - tovcli::requestKinds().data());
}

// Judges one request by the generation of `served`, and counts and logs it.
TOVResponse decide(DecisionService& service, const Served& served, const tovcli::RequestKind& kind,
                   const std::string& request) {
    const Clock::time_point start = Clock::now();
    TOVResponse response = served.generation->evaluate(kind.name, request);
    const std::chrono::nanoseconds took = Clock::now() - start;
    service.metrics().countDecision(kindIndex(kind), resultOf(response), took);
    if (DecisionLog* log = service.decisionLog()) {
        log->write({kind.name, request, response.turnResponseIntoASingleString(),
                    served.generation->number(), took});
    }
    return response;
}

// The "format" parameter of the evaluating routes: nothing or "structured".
std::optional<tovcli::OutputFormat> answerFormat(const HttpRequest& request) {
    const std::optional<std::string> format = tovhttp::queryParameter(request.query(), "format");
    if (!format) {
        return tovcli::OutputFormat::kText;
    }
    if (*format == "structured") {
        return tovcli::OutputFormat::kJson;
    }
    return std::nullopt;
}

HttpResponse badFormat(const HttpRequest& request) {
    return errorResponse(400,
                         "format \"" +
                             tovhttp::printableExcerpt(
                                 tovhttp::queryParameter(request.query(), "format").value_or("")) +
                             "\" is unknown; leave it out, or ask for format=structured");
}

HttpResponse textResponse(std::string body, const char* contentType) {
    HttpResponse response;
    response.body = std::move(body);
    response.headers.push_back({"Content-Type", contentType});
    return response;
}

void writeFacts(tovcli::JsonWriter& writer, const DocumentFacts& facts, bool loaded) {
    writer.StartObject();
    writer.Key("path");
    tovcli::writeString(writer, facts.path);
    writer.Key("sha256");
    if (loaded) {
        tovcli::writeString(writer, facts.sha256);
    } else {
        writer.Null();
    }
    writer.Key("loadedAt");
    if (loaded) {
        tovcli::writeString(writer, facts.loadedAt);
    } else {
        writer.Null();
    }
    writer.EndObject();
}

// The lines of a batch, answered as the pieces of the body are asked for,
// all by the generation that served when the batch came.
struct BatchAnswers {
    BatchAnswers(DecisionService& service, std::string body, tovcli::OutputFormat format)
        : service(service),
          served(service.served()),
          body(std::move(body)),
          format(format),
          inFlight(service.metrics()) {}

    bool nextPiece(std::string& piece) {
        std::string line;
        while (piece.size() < kBatchPieceSize && tovcli::cutBatchLine(body, position, line)) {
            const tovcli::BatchAnswer answer =
                tovcli::answerBatchLine(line, ++lineNumber, judge, format);
            piece += answer.text;
            piece += '\n';
        }
        if (position < body.size()) {
            return true;
        }
        service.metrics().countBatch(Clock::now() - start);
        return false;
    }

    DecisionService& service;
    const std::shared_ptr<const Served> served;
    const std::string body;
    const tovcli::OutputFormat format;
    const tovcli::RequestJudge judge = [this](const tovcli::RequestKind& kind,
                                              const std::string& request) {
        return decide(service, *served, kind, request);
    };
    ServeMetrics::InFlight inFlight;
    const Clock::time_point start = Clock::now();
    std::size_t position = 0;
    std::size_t lineNumber = 0;
};

}  // namespace

struct ServeRouter::Route {
    std::string_view path;  // exact, or the prefix of /v1/evaluate/{kind}
    std::string_view method;
    bool open;            // answered without the token, for probes
    bool needsDocuments;  // answered from the documents, so 503 until they load
    std::vector<std::string_view> contentTypes;  // accepted bodies of a POST
    HttpResponse (ServeRouter::*handler)(HttpRequest&);
};

const std::vector<ServeRouter::Route>& ServeRouter::routeTable() {
    static const std::vector<Route> table = {
        {kEvaluatePrefix, "POST", false, true, {"application/json"}, &ServeRouter::evaluate},
        {"/v1/batch",
         "POST",
         false,
         true,
         {"application/json", "application/x-ndjson", "application/jsonl"},
         &ServeRouter::batch},
        {"/v1/rules", "GET", false, true, {}, &ServeRouter::rules},
        {"/v1/graph", "GET", false, true, {}, &ServeRouter::graph},
        {"/v1/status", "GET", false, false, {}, &ServeRouter::status},
        {"/health", "GET", true, false, {}, &ServeRouter::health},
        {"/ready", "GET", true, false, {}, &ServeRouter::ready},
        {"/metrics", "GET", false, false, {}, &ServeRouter::metrics},
        {"/openapi.json", "GET", false, false, {}, &ServeRouter::openApi},
    };
    return table;
}

std::vector<RouteDescription> ServeRouter::routes() {
    std::vector<RouteDescription> descriptions;
    for (const Route& route : routeTable()) {
        const std::string path = route.path == kEvaluatePrefix
                                     ? std::string(kEvaluatePrefix) + "{kind}"
                                     : std::string(route.path);
        descriptions.push_back({std::string(route.method), path});
    }
    return descriptions;
}

ServeRouter::ServeRouter(DecisionService& service, tovhttp::RequestGuards guards)
    : service(service), guards(std::move(guards)) {}

std::optional<HttpResponse> ServeRouter::screen(const HttpRequest& request) {
    if (std::optional<HttpResponse> refusal = guards.checkHost(request)) {
        return refusal;
    }
    if (std::optional<HttpResponse> refusal = guards.checkOrigin(request)) {
        return refusal;
    }
    const std::string_view path = request.path();
    const Route* route = nullptr;
    for (const Route& candidate : routeTable()) {
        const bool matches = candidate.path == kEvaluatePrefix
                                 ? path.substr(0, kEvaluatePrefix.size()) == kEvaluatePrefix
                                 : path == candidate.path;
        if (matches) {
            route = &candidate;
            break;
        }
    }
    if (route == nullptr || !route->open) {
        if (std::optional<HttpResponse> refusal = guards.checkToken(request)) {
            return refusal;
        }
    }
    if (route == nullptr) {
        return errorResponse(404, "no route for \"" + tovhttp::printableExcerpt(path) +
                                      "\"; /openapi.json lists the routes");
    }
    if (route->path == kEvaluatePrefix) {
        const std::string kind(path.substr(kEvaluatePrefix.size()));
        if (tovcli::findRequestKind(kind) == nullptr) {
            return errorResponse(404, "unknown request kind \"" + tovhttp::printableExcerpt(kind) +
                                          "\"; expected " + tovcli::requestKindNamesInWords());
        }
    }
    if (request.method != route->method) {
        HttpResponse refusal =
            errorResponse(405, "method " + tovhttp::printableExcerpt(request.method) +
                                   " is not allowed here; use " + std::string(route->method));
        refusal.setHeader("Allow", std::string(route->method));
        return refusal;
    }
    if (!route->contentTypes.empty()) {
        if (std::optional<HttpResponse> refusal =
                tovhttp::checkContentType(request, route->contentTypes)) {
            return refusal;
        }
    }
    return std::nullopt;
}

HttpResponse ServeRouter::respond(HttpRequest request) {
    if (std::optional<HttpResponse> refusal = screen(request)) {
        return std::move(*refusal);
    }
    const std::string_view path = request.path();
    for (const Route& route : routeTable()) {
        if (route.path == kEvaluatePrefix
                ? path.substr(0, kEvaluatePrefix.size()) == kEvaluatePrefix
                : path == route.path) {
            if (route.needsDocuments && service.served()->generation->number() == 0) {
                return errorResponse(503, "the documents are not loaded yet");
            }
            try {
                return (this->*route.handler)(request);
            } catch (const std::bad_alloc&) {
                return errorResponse(500, "out of memory: the server could not answer");
            }
        }
    }
    return errorResponse(404, "no route");  // screen() already refused every other path
}

void ServeRouter::responded(int status) {
    service.metrics().countResponse(status);
}

HttpResponse ServeRouter::evaluate(HttpRequest& request) {
    const std::optional<tovcli::OutputFormat> format = answerFormat(request);
    if (!format) {
        return badFormat(request);
    }
    const tovcli::RequestKind& kind =
        *tovcli::findRequestKind(std::string(request.path().substr(kEvaluatePrefix.size())));
    const ServeMetrics::InFlight inFlight(service.metrics());
    const std::shared_ptr<const Served> served = service.served();
    const TOVResponse response = decide(service, *served, kind, request.body);
    return jsonResponse(200, *format == tovcli::OutputFormat::kJson
                                 ? tovcli::responseAsJson(response)
                                 : response.turnResponseIntoASingleString());
}

HttpResponse ServeRouter::batch(HttpRequest& request) {
    const std::optional<tovcli::OutputFormat> format = answerFormat(request);
    if (!format) {
        return badFormat(request);
    }
    auto answers = std::make_shared<BatchAnswers>(service, std::move(request.body), *format);
    HttpResponse response;
    response.headers.push_back({"Content-Type", "application/x-ndjson"});
    response.bodyPieces = [answers](std::string& piece) { return answers->nextPiece(piece); };
    return response;
}

HttpResponse ServeRouter::rules(HttpRequest& /*request*/) {
    const std::shared_ptr<const Served> served = service.served();
    const TOVLifecycleBusinessRules& loaded = served->generation->rules();
    return jsonResponse(200,
                        tovcli::rulesInWordsJson(
                            tovcli::groupRulesInWords(loaded),
                            tovcli::libraryItemTypes(loaded, served->generation->dataModel())));
}

HttpResponse ServeRouter::graph(HttpRequest& request) {
    const std::optional<std::string> type = tovhttp::queryParameter(request.query(), "type");
    const std::optional<std::string> attribute =
        tovhttp::queryParameter(request.query(), "attribute");
    if (!type || type->empty() || !attribute || attribute->empty()) {
        return errorResponse(400,
                             "a graph needs the parameters type and attribute, such as "
                             "/v1/graph?type=Part&attribute=Status");
    }
    const std::string format = tovhttp::queryParameter(request.query(), "format").value_or("dot");
    if (format != "dot" && format != "mermaid") {
        return errorResponse(400, "format \"" + tovhttp::printableExcerpt(format) +
                                      "\" is unknown; ask for dot (the default) or mermaid");
    }
    const std::shared_ptr<const Served> served = service.served();
    const TOV_DMStructure& dataModel = served->generation->dataModel();
    if (!tovcli::describesObjectType(dataModel, *type)) {
        return errorResponse(404, "the data model " + served->dataModel.path +
                                      " describes no object type " +
                                      tovhttp::printableExcerpt(*type));
    }
    tovjson::Document rulesDocument;
    rulesDocument.Parse<rapidjson::kParseIterativeFlag>(served->rulesText->c_str(),
                                                        served->rulesText->size());
    const TOVEngineGeneration& generation = *served->generation;
    const tovcli::LifecycleGraph lifecycle = tovcli::buildLifecycleGraph(
        rulesDocument, *type, *attribute, dataModel,
        [&generation](const std::string& kind, const std::string& text) {
            return generation.evaluate(kind, text);
        });
    if (!lifecycle.hasTransitionRules) {
        return errorResponse(404, served->rules.path + " has no transition rule of " +
                                      tovhttp::printableExcerpt(*attribute) + " for " +
                                      tovhttp::printableExcerpt(*type));
    }
    std::ostringstream drawing;
    const bool mermaid = format == "mermaid";
    tovcli::writeGraph(
        lifecycle, mermaid ? tovcli::GraphFormat::kMermaid : tovcli::GraphFormat::kDot, drawing);
    return textResponse(drawing.str(),
                        mermaid ? "text/plain; charset=utf-8" : "text/vnd.graphviz; charset=utf-8");
}

HttpResponse ServeRouter::status(HttpRequest& /*request*/) {
    const std::shared_ptr<const Served> served = service.served();
    const bool loaded = served->generation->number() > 0;
    const ReloadRecord reload = service.lastReload();
    tovjson::StringBuffer buffer;
    tovcli::JsonWriter writer(buffer);
    writer.StartObject();
    writer.Key("program");
    writer.String("tov");
    writer.Key("programVersion");
    writer.String(TOV_PROGRAM_VERSION);
    writer.Key("libraryVersion");
    tovcli::writeString(writer, GetTOVVersion());
    writer.Key("startedAt");
    tovcli::writeString(writer, service.startedAt());
    writer.Key("generation");
    writer.Uint64(served->generation->number());
    writer.Key("rulesLoaded");
    writer.Uint64(served->ruleCount);
    writer.Key("documents");
    writer.StartObject();
    writer.Key("rules");
    writeFacts(writer, served->rules, loaded);
    writer.Key("datamodel");
    writeFacts(writer, served->dataModel, loaded);
    writer.EndObject();
    writer.Key("lastReload");
    writer.StartObject();
    writer.Key("outcome");
    tovcli::writeString(writer, reload.outcome);
    writer.Key("at");
    if (reload.at.empty()) {
        writer.Null();
    } else {
        tovcli::writeString(writer, reload.at);
    }
    writer.Key("message");
    tovcli::writeString(writer, reload.message);
    writer.EndObject();
    writer.EndObject();
    return jsonResponse(200, std::string(buffer.GetString(), buffer.GetSize()));
}

HttpResponse ServeRouter::health(HttpRequest& /*request*/) {
    return jsonResponse(200, R"({"status":"serving"})");
}

HttpResponse ServeRouter::ready(HttpRequest& /*request*/) {
    if (service.stopping()) {
        return errorResponse(503, "the server is stopping");
    }
    const std::uint64_t generation = service.served()->generation->number();
    if (generation == 0) {
        return errorResponse(503, "the documents are not loaded yet");
    }
    return jsonResponse(200,
                        R"({"status":"ready","generation":)" + std::to_string(generation) + "}");
}

HttpResponse ServeRouter::metrics(HttpRequest& /*request*/) {
    const std::shared_ptr<const Served> served = service.served();
    return textResponse(
        service.metrics().exposition({served->generation->number(), served->ruleCount}),
        "text/plain; version=0.0.4; charset=utf-8");
}

HttpResponse ServeRouter::openApi(HttpRequest& /*request*/) {
    return textResponse(std::string(openApiDocument()), "application/json");
}

}  // namespace tovserve
