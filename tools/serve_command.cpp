// tov serve: the decision service. The documents load into one engine; HTTP
// requests are answered by its generation of the moment; SIGHUP and, with
// --watch, a change of either file load the next generation beside the one
// that serves; SIGTERM and SIGINT stop after the requests in flight.
#include <sys/resource.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <csignal>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "commands.h"
#include "decision_log.h"
#include "decision_service.h"
#include "document_watch.h"
#include "http_server.h"
#include "reloader.h"
#include "request_guards.h"
#include "request_kinds.h"
#include "serve_router.h"

namespace tovcli {

namespace {

constexpr std::uint64_t kMaxTokenFileSize = 4096;

struct ServeOptions {
    DocumentPaths documents;
    std::string log = "off";
    std::string listen = "127.0.0.1:8480";
    unsigned threads = 1;
    std::uint64_t maxBodySize = std::uint64_t{16} << 20;
    std::uint64_t maxHeaderSize = std::uint64_t{16} << 10;
    std::size_t maxConnections = 10000;
    double readTimeout = 30;
    double writeTimeout = 30;
    double idleTimeout = 60;
    double grace = 10;
    bool watch = false;
    std::string tokenFile;
    std::vector<std::string> allowedHosts;
    std::string decisionLog;
};

unsigned defaultThreads() {
    const unsigned threads = std::thread::hardware_concurrency();
    return threads == 0 ? 1 : threads;
}

std::chrono::milliseconds milliseconds(double seconds) {
    return std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000));
}

// Idle connections each hold a descriptor; the hard limit is ours to take.
void raiseOpenFileLimit() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < limit.rlim_max) {
        limit.rlim_cur = limit.rlim_max;
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
}

// The token, without the blanks and line end that editors leave around it.
bool readToken(const std::string& path, std::string& token, std::string& error) {
    if (isStandardInput(path)) {
        error = "the token file must be a file, not standard input";
        return false;
    }
    if (!readInput(path, "token file", kMaxTokenFileSize, token, error)) {
        return false;
    }
    const auto blank = [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; };
    token.erase(token.begin(), std::find_if_not(token.begin(), token.end(), blank));
    token.erase(std::find_if_not(token.rbegin(), token.rend(), blank).base(), token.end());
    if (token.empty()) {
        error = "the token file " + path + " holds no token";
        return false;
    }
    const bool printable =
        std::all_of(token.begin(), token.end(), [](char c) { return c > ' ' && c < 0x7F; });
    if (!printable) {
        error = "the token in " + path +
                " must be one word of printable ASCII characters, as a bearer token is sent";
        return false;
    }
    return true;
}

// The server, with the limits of the options, bound to `address`; null with
// the reason in `error`.
std::unique_ptr<tovhttp::HttpServer> openServer(const ServeOptions& options,
                                                const tovhttp::ListenAddress& address,
                                                std::string& error) {
    tovhttp::ServerLimits limits;
    limits.maxBodySize = options.maxBodySize;
    limits.maxHeaderSize = static_cast<std::uint32_t>(options.maxHeaderSize);
    limits.maxConnections = options.maxConnections;
    limits.readTimeout = milliseconds(options.readTimeout);
    limits.writeTimeout = milliseconds(options.writeTimeout);
    limits.idleTimeout = milliseconds(options.idleTimeout);
    return tovhttp::HttpServer::listen(address, limits, error);
}

// Runs the server on a thread of its own while the calling thread loads the
// documents; however the caller leaves, the server is stopped (at once, if
// it still runs) and the thread joined.
class ServingThread {
public:
    ServingThread(tovhttp::HttpServer& server, tovhttp::HttpHandler& handler, unsigned threads)
        : server(server), thread([&server, &handler, threads] { server.run(handler, threads); }) {}
    ~ServingThread() {
        if (thread.joinable()) {
            server.stop(std::chrono::milliseconds(0));
            thread.join();
        }
    }
    ServingThread(const ServingThread&) = delete;
    ServingThread& operator=(const ServingThread&) = delete;

    // Waits until the server has stopped.
    void join() { thread.join(); }

private:
    tovhttp::HttpServer& server;
    std::thread thread;
};

// Loads the documents, and tells what keeps them from loading as check
// tells it. False when they do not load.
bool loadAtStart(tovserve::DecisionService& service, const std::vector<Document>& documents,
                 std::uint64_t maxInputSize) {
    tovserve::DocumentTexts texts;
    std::string error;
    if (!service.readDocuments(texts, error)) {
        std::cerr << "tov: " << error << "\n";
        return false;
    }
    StdoutCapture capture;
    const tovserve::DecisionService::Load load = service.load(texts, false);
    const std::string printed = capture.finish();
    if (!load.error.empty()) {
        std::cerr << "tov: " << load.error << "\n";
        return false;
    }
    std::vector<Finding> findings;
    for (Document document : documents) {
        const bool rules = document.kind == Document::kRules;
        document.size = rules ? texts.rules.size() : texts.dataModel.size();
        document.text = rules ? &texts.rules : &texts.dataModel;  // as loaded
        // The library prints its notices while it reads rules.
        findingsOfLoad(document, rules ? load.rules : load.dataModel, rules ? printed : "",
                       maxInputSize, findings);
    }
    for (const Finding& finding : findings) {
        if (finding.severity != Finding::kLoaded) {
            printFinding(finding, false, std::cerr);
        }
    }
    return load.published;
}

int runServe(const ServeOptions& options) {
    std::signal(SIGPIPE, SIG_IGN);
    raiseOpenFileLimit();

    std::string logFolder;
    std::vector<Document> documents;
    if (!prepareCommand(options.log, options.documents, logFolder, documents)) {
        return kExitUsageOrInput;
    }
    std::string error;
    tovhttp::ListenAddress address;
    if (!tovhttp::parseListenAddress(options.listen, address, error)) {
        std::cerr << "tov: " << error << "\n";
        return kExitUsageOrInput;
    }
    std::string token;
    if (!options.tokenFile.empty() && !readToken(options.tokenFile, token, error)) {
        std::cerr << "tov: " << error << "\n";
        return kExitUsageOrInput;
    }
    tovserve::DecisionLog decisionLog;
    if (!options.decisionLog.empty() && !decisionLog.open(options.decisionLog, error)) {
        std::cerr << "tov: " << error << "\n";
        return kExitUsageOrInput;
    }

    // Before the server: answers still being written when the grace ends are
    // dropped with the server, and they count in the service's metrics.
    tovserve::DecisionService service(options.documents.rulesPath, options.documents.dataModelPath,
                                      options.documents.maxInputSize);
    if (!service.engine().setLog(options.log, error)) {
        std::cerr << "tov: " << error << "\n";
        return kExitUsageOrInput;
    }
    if (!options.decisionLog.empty()) {
        service.keepDecisionLog(&decisionLog);
    }

    const std::unique_ptr<tovhttp::HttpServer> server = openServer(options, address, error);
    if (server == nullptr) {
        std::cerr << "tov: " << error << "\n";
        return kExitUsageOrInput;
    }
    // The port is taken: a caller that asked for any port learns which here.
    std::cerr << "tov serve: listening on " << server->url() << std::endl;

    tovhttp::GuardPolicy policy;
    policy.checkHost = server->listensOnLoopback();
    policy.allowedHosts = options.allowedHosts;
    policy.token = token;
    tovserve::ServeRouter router(service, tovhttp::RequestGuards(policy));

    tovserve::Reloader reloader(service);
    server->handleSignals({SIGHUP, SIGTERM, SIGINT}, [&](int signal) {
        if (signal == SIGHUP) {
            std::string reopenError;
            if (!decisionLog.reopen(reopenError)) {
                std::cerr << "tov serve: " << reopenError << std::endl;
            }
            reloader.request("SIGHUP", false);
            return;
        }
        if (!service.stopping()) {
            service.beginStopping();
            server->stop(milliseconds(options.grace));
            std::cerr << "tov serve: stopping; requests in flight have " << options.grace
                      << " s to finish" << std::endl;
        }
    });

    // Watched before the first load, so that no change goes unseen; a change
    // that the first load already read is skipped as unchanged.
    tovserve::DocumentWatch watch([&reloader] { reloader.request("a document changed", true); });
    if (options.watch &&
        !watch.start({options.documents.rulesPath, options.documents.dataModelPath}, error)) {
        std::cerr << "tov: " << error << "\n";
        return kExitUsageOrInput;
    }

    // Served while the documents load, so that probes learn that the process
    // lives (/health) and is not ready yet (/ready) however long a load takes.
    ServingThread serving(*server, router, options.threads);
    if (!loadAtStart(service, documents, options.documents.maxInputSize)) {
        return kExitUsageOrInput;
    }
    const std::shared_ptr<const tovserve::Served> first = service.served();
    std::cerr << "tov serve: generation " << first->generation->number() << " serves, with "
              << first->ruleCount << " rules" << std::endl;
    serving.join();
    watch.stop();
    reloader.stop();
    std::cerr << "tov serve: stopped" << std::endl;
    return kExitSuccess;
}

}  // namespace

Command addServeCommand(CLI::App& program) {
    auto options = std::make_shared<ServeOptions>();
    options->threads = defaultThreads();
    CLI::App* command = program.add_subcommand(
        "serve", "Answer requests over HTTP, reloading the documents without a restart");
    addDocumentOptions(*command, options->documents, true);
    command->add_option("--listen", options->listen, "Address and port (default 127.0.0.1:8480)")
        ->type_name("HOST:PORT");
    command
        ->add_option("--threads", options->threads,
                     "Threads that answer (default: " + std::to_string(defaultThreads()) +
                         ", the hardware threads)")
        ->type_name("N")
        ->check(CLI::Range(1u, 256u));
    command
        ->add_option("--max-body-size", options->maxBodySize,
                     "The largest request body (default 16MiB)")
        ->type_name("SIZE")
        ->transform(CLI::AsSizeValue(false))
        ->check(CLI::PositiveNumber);
    command
        ->add_option("--max-header-size", options->maxHeaderSize,
                     "The largest request line and headers (default 16KiB)")
        ->type_name("SIZE")
        ->transform(CLI::AsSizeValue(false))
        ->check(CLI::Range(std::uint64_t{1024}, std::uint64_t{1} << 20));
    command
        ->add_option("--max-connections", options->maxConnections,
                     "Open connections at most (default 10000)")
        ->type_name("N")
        ->check(CLI::Range(std::size_t{1}, std::size_t{1000000}));
    for (auto [name, value, help] :
         {std::make_tuple("--read-timeout", &options->readTimeout,
                          "Seconds from a request's first byte to its last (default 30)"),
          std::make_tuple("--write-timeout", &options->writeTimeout,
                          "Seconds for the client to take each piece of an answer (default 30)"),
          std::make_tuple("--idle-timeout", &options->idleTimeout,
                          "Seconds a kept-alive connection may wait for its next request "
                          "(default 60)"),
          std::make_tuple("--grace", &options->grace,
                          "Seconds that requests in flight have to finish on SIGTERM or SIGINT "
                          "(default 10)")}) {
        command->add_option(name, *value, help)
            ->type_name("SECONDS")
            ->check(CLI::Range(0.001, 86400.0));
    }
    command->add_flag("--watch", options->watch,
                      "Reload when either document changes (the folders are watched)");
    command
        ->add_option("--token-file", options->tokenFile,
                     "Ask every request but /health and /ready for this bearer token")
        ->type_name("FILE");
    command
        ->add_option("--allow-host", options->allowedHosts,
                     "A further host name that requests may be for (repeatable)")
        ->type_name("NAME");
    command
        ->add_option("--decision-log", options->decisionLog,
                     "Append one JSON line per decision to this file (off by default)")
        ->type_name("FILE");
    addLogOption(*command, options->log);
    command->footer(helpText({
        R"x(Routes (HTTP/1.1, keep-alive; every error is {"error": "..."}):)x",
        "  POST /v1/evaluate/KIND: the body is the request; the answer is the line that eval "
        "KIND prints (?format=structured: eval --format json). KIND is one of " +
            requestKindNamesInWords() + ".",
        // NOLINTNEXTLINE(bugprone-suspicious-missing-comma): one paragraph over two lines.
        "  POST /v1/batch: JSON Lines in, as batch reads them; the lines batch prints out "
        "(?format=structured: batch --format json).",
        "  GET /v1/rules (explain --format json), GET /v1/graph?type=T&attribute=A"
        "[&format=mermaid] (graph), GET /v1/status, GET /metrics (Prometheus), GET "
        "/openapi.json, GET /health, GET /ready.",
        "Reload: SIGHUP, or with --watch a change of either file, loads both documents into a "
        "new generation; requests in flight finish on the one they started with. A reload "
        "whose documents do not load keeps the generation before serving; /v1/status and "
        "tov_reloads_total tell it. SIGHUP also reopens the decision log.",
        "Guards: listening on a loopback address, requests for other host names than "
        "127.0.0.1, localhost and [::1] (and --allow-host) are refused (403), against DNS "
        "rebinding; so is an Origin other than the server's own, and a POST whose "
        "Content-Type is not JSON (415). Elsewhere, --token-file is the guard.",
        "Standard error: first \"tov serve: listening on http://HOST:PORT\", then loads, "
        "reloads and the stop. Documents that do not load at the start end the command with "
        "status 2 and their faults as check tells them.",
        kLogHelp,
        kMaxInputSizeHelp,
        "Example: tov serve --rules rules.json --dm datamodel.json --watch",
    }));
    return {command, [options] { return runServe(*options); }};
}

}  // namespace tovcli
