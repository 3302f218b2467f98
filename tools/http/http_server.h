// An HTTP/1.1 server over Boost.Beast and Asio. It is asynchronous, so that
// idle and slow connections cost no thread; it holds the limits of the wire
// (sizes, timeouts, connections) and hands every request to a handler as
// plain values. Beast and Asio stay behind this header, so that nothing else
// of the program pays for compiling them.
#ifndef TOV_TOOLS_HTTP_HTTP_SERVER_H_
#define TOV_TOOLS_HTTP_HTTP_SERVER_H_

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "http_handler.h"
#include "listen_address.h"

namespace tovhttp {

struct ServerLimits {
    std::uint64_t maxBodySize = std::uint64_t{16} << 20;
    std::uint32_t maxHeaderSize = 16 << 10;  // the request line and every header
    std::size_t maxConnections = 10000;      // more are answered 503 and closed
    // From a request's first byte to its last; a client that sends slower is cut off.
    std::chrono::milliseconds readTimeout{std::chrono::seconds(30)};
    // For each piece of an answer that the client must take.
    std::chrono::milliseconds writeTimeout{std::chrono::seconds(30)};
    // Between requests on a kept-alive connection.
    std::chrono::milliseconds idleTimeout{std::chrono::seconds(60)};
};

class HttpServer {
public:
    // Binds and listens at once, so that the port is taken and known before
    // run(); connections that come earlier wait in the backlog. Null, with the
    // reason in `error`, when the address cannot be had.
    static std::unique_ptr<HttpServer> listen(const ListenAddress& address,
                                              const ServerLimits& limits, std::string& error);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    // "http://127.0.0.1:8480", "http://[::1]:8480", with the port bound.
    std::string url() const;
    // True when the bound address is a loopback address (127.0.0.0/8, ::1).
    bool listensOnLoopback() const;

    // While run() runs, calls `onSignal` with each of `signals` as it arrives,
    // on a server thread rather than in a signal handler. Before run().
    void handleSignals(const std::vector<int>& signals, std::function<void(int)> onSignal);

    // Serves on `threads` threads, the calling one among them, until stop()
    // and the end of its grace.
    void run(HttpHandler& handler, unsigned threads);

    // From any thread: stops accepting, closes connections that wait for a
    // request, lets requests in flight finish (closing their connections
    // after the answer), and ends run() when all are done or when `grace`
    // has passed, whichever comes first. Called from a signal's callback, it
    // has stopped accepting when it returns. Later calls do nothing.
    void stop(std::chrono::milliseconds grace);

private:
    struct State;
    explicit HttpServer(std::unique_ptr<State> state);
    std::unique_ptr<State> state;
};

}  // namespace tovhttp

#endif  // TOV_TOOLS_HTTP_HTTP_SERVER_H_
