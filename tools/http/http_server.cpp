#include "http_server.h"

#include <boost/asio/dispatch.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>

#include <array>
#include <atomic>
#include <cerrno>
#include <exception>
#include <iostream>
#include <limits>
#include <list>
#include <mutex>
#include <new>
#include <thread>
#include <utility>

namespace tovhttp {

namespace {

namespace beast = boost::beast;
namespace http = beast::http;
namespace net = boost::asio;
using tcp = net::ip::tcp;

// How long a connection that is closed on a refusal keeps reading (and
// dropping) what the client still sends, so that the client reads the answer
// before the close resets the connection.
constexpr std::chrono::seconds kLingerTime(2);
// The first read of a request takes what has arrived, up to this much.
constexpr std::size_t kFirstReadSize = 4096;
// Wait before accepting again when the process is out of file descriptors.
constexpr std::chrono::milliseconds kAcceptRetryDelay(100);

// The connections that live, shared with each of them, so that a connection
// that ends after the server's run (when the io_context drops its handlers)
// touches nothing that is gone.
class ConnectionRegistry {
public:
    using Close = std::function<void()>;
    using Entry = std::list<Close>::iterator;

    // Counts a new connection; false when that passes the limit (the
    // connection is counted all the same, until it ends).
    bool enter(std::size_t limit) {
        std::lock_guard<std::mutex> lock(mutex);
        return ++count <= limit;
    }

    // Keeps what closes the connection while it waits for a request.
    Entry add(Close closeIfIdle) {
        std::lock_guard<std::mutex> lock(mutex);
        return closers.insert(closers.end(), std::move(closeIfIdle));
    }

    // A connection ended.
    void remove(std::optional<Entry> entry) {
        std::function<void()> onLast;
        {
            std::lock_guard<std::mutex> lock(mutex);
            if (entry) {
                closers.erase(*entry);
            }
            if (--count == 0 && whenEmpty) {
                onLast = std::move(whenEmpty);
                whenEmpty = nullptr;
            }
        }
        if (onLast) {
            onLast();
        }
    }

    // Closes the connections that wait for a request, and calls `onEmpty` at
    // once or when the last connection ends. Until forgetEmpty(), `onEmpty`
    // must stay callable.
    void drain(std::function<void()> onEmpty) {
        std::vector<Close> closeNow;
        std::function<void()> callNow;
        {
            std::lock_guard<std::mutex> lock(mutex);
            if (count == 0) {
                callNow = std::move(onEmpty);
            } else {
                whenEmpty = std::move(onEmpty);
                closeNow.assign(closers.begin(), closers.end());
            }
        }
        if (callNow) {
            callNow();
        }
        for (const Close& close : closeNow) {
            close();
        }
    }

    void forgetEmpty() {
        std::lock_guard<std::mutex> lock(mutex);
        whenEmpty = nullptr;
    }

private:
    std::mutex mutex;
    std::size_t count = 0;
    std::list<Close> closers;
    std::function<void()> whenEmpty;
};

HttpRequest headOf(const http::request<http::string_body>& message) {
    HttpRequest request;
    request.method = std::string(message.method_string());
    request.target = std::string(message.target());
    request.headers.reserve(8);
    for (const auto& field : message) {
        request.headers.push_back({std::string(field.name_string()), std::string(field.value())});
    }
    return request;
}

template <class Body>
void setHeaders(http::response<Body>& message, const HttpResponse& response) {
    for (const HttpHeader& header : response.headers) {
        message.set(header.name, header.value);
    }
}

class Session : public std::enable_shared_from_this<Session> {
public:
    Session(tcp::socket&& socket, const ServerLimits& limits, HttpHandler& handler,
            std::shared_ptr<ConnectionRegistry> registry, const std::atomic<bool>& stopping)
        : stream(std::move(socket)),
          limits(limits),
          handler(handler),
          registry(std::move(registry)),
          stopping(stopping) {}

    ~Session() { registry->remove(entry); }

    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    net::any_io_executor executor() { return stream.get_executor(); }

    void start(bool admitted) {
        beast::error_code ignored;
        stream.socket().set_option(tcp::no_delay(true), ignored);
        if (!admitted) {
            answerAndClose(errorResponse(503, "too many connections; try again later"));
            return;
        }
        std::weak_ptr<Session> weak = weak_from_this();
        entry = registry->add([weak] {
            if (const std::shared_ptr<Session> session = weak.lock()) {
                net::post(session->stream.get_executor(), [session] { session->closeIfIdle(); });
            }
        });
        awaitRequest();
    }

private:
    // Waits for the first byte of the next request under the idle timeout.
    void awaitRequest() {
        idle = true;
        beast::error_code ignored;
        // The client sent the next request ahead; while stopping, one whose
        // bytes have arrived is in flight too.
        if (buffer.size() > 0 || (stopping && stream.socket().available(ignored) > 0)) {
            readHead();
            return;
        }
        if (stopping) {
            close();
            return;
        }
        stream.expires_after(limits.idleTimeout);
        stream.async_read_some(
            buffer.prepare(kFirstReadSize),
            [self = shared_from_this()](beast::error_code error, std::size_t bytes) {
                if (error) {
                    self->close();
                    return;
                }
                self->buffer.commit(bytes);
                self->readHead();
            });
    }

    // At a stop. A request whose first bytes have arrived is in flight,
    // even if this connection has not read them yet.
    void closeIfIdle() {
        beast::error_code ignored;
        if (idle && stream.socket().available(ignored) == 0) {
            stream.cancel();
        }
    }

    void readHead() {
        idle = false;
        parser.emplace();
        parser->header_limit(limits.maxHeaderSize);
        // The limit applies once the head is screened, so that a refusal of
        // the head comes first and the declared length is judged here.
        parser->body_limit(std::numeric_limits<std::uint64_t>::max());
        stream.expires_after(limits.readTimeout);
        http::async_read_header(stream, buffer, *parser,
                                [self = shared_from_this()](beast::error_code error, std::size_t) {
                                    self->onHead(error);
                                });
    }

    void onHead(beast::error_code error) {
        if (error == http::error::header_limit) {
            answerAndClose(errorResponse(431, "the request's head is larger than " +
                                                  std::to_string(limits.maxHeaderSize) + " bytes"));
            return;
        }
        if (error) {
            failedRead(error);
            return;
        }
        const http::request<http::string_body>& message = parser->get();
        version = message.version();
        std::optional<HttpResponse> refusal;
        try {
            head = headOf(message);
            refusal = handler.screen(head);
        } catch (const std::exception&) {
            refusal = errorResponse(500, "the server could not screen the request");
        }
        if (refusal) {
            if (parser->is_done()) {
                answer(std::move(*refusal), message.keep_alive());
            } else {
                answerAndClose(std::move(*refusal));
            }
            return;
        }
        const boost::optional<std::uint64_t> length = parser->content_length();
        if (length && *length > limits.maxBodySize) {
            answerAndClose(errorResponse(413, "the request's body of " + std::to_string(*length) +
                                                  " bytes is larger than the limit of " +
                                                  std::to_string(limits.maxBodySize) + " bytes"));
            return;
        }
        parser->body_limit(limits.maxBodySize);
        if (parser->is_done()) {
            dispatch();
            return;
        }
        const auto expect = message.find(http::field::expect);
        if (expect != message.end() && beast::iequals(expect->value(), "100-continue")) {
            // The client waits for a word before it sends the body.
            continueMessage.emplace(http::status::continue_, version);
            stream.expires_after(limits.writeTimeout);
            http::async_write(stream, *continueMessage,
                              [self = shared_from_this()](beast::error_code written, std::size_t) {
                                  if (written) {
                                      self->close();
                                  } else {
                                      self->readBody();
                                  }
                              });
            return;
        }
        readBody();
    }

    void readBody() {
        stream.expires_after(limits.readTimeout);
        http::async_read(stream, buffer, *parser,
                         [self = shared_from_this()](beast::error_code error, std::size_t) {
                             if (error == http::error::body_limit) {
                                 self->answerAndClose(errorResponse(
                                     413, "the request's body is larger than the limit of " +
                                              std::to_string(self->limits.maxBodySize) + " bytes"));
                             } else if (error) {
                                 self->failedRead(error);
                             } else {
                                 self->dispatch();
                             }
                         });
    }

    // A read that ended without a request: the client left or was too slow,
    // which needs no answer, or sent something that is no HTTP.
    void failedRead(beast::error_code error) {
        if (error == http::error::end_of_stream || error == net::error::eof ||
            error == beast::error::timeout || error == net::error::operation_aborted ||
            error == net::error::connection_reset) {
            close();
            return;
        }
        answerAndClose(errorResponse(400, "malformed request: " + error.message()));
    }

    void dispatch() {
        http::request<http::string_body>& message = parser->get();
        const bool keepAlive = message.keep_alive();
        // The head as screened, so that its headers are copied once.
        HttpRequest request = std::move(head);
        request.body = std::move(message.body());
        HttpResponse response;
        try {
            response = handler.respond(std::move(request));
        } catch (const std::bad_alloc&) {
            response = errorResponse(500, "out of memory: the server could not answer");
        } catch (const std::exception&) {
            response = errorResponse(500, "the server could not answer");
        }
        answer(std::move(response), keepAlive);
    }

    void answerAndClose(HttpResponse response) {
        bodyUnread = true;
        answer(std::move(response), false);
    }

    void answer(HttpResponse response, bool clientKeepsAlive) {
        handler.responded(response.status);
        keepAlive = clientKeepsAlive && !bodyUnread && !stopping;
        if (response.bodyPieces && version < 11) {
            // HTTP/1.0 knows no chunks: the pieces are gathered first.
            std::string piece;
            while (response.bodyPieces(piece)) {
            }
            response.body += piece;
            response.bodyPieces = nullptr;
        }
        if (response.bodyPieces) {
            writeInPieces(std::move(response));
            return;
        }
        whole.emplace(static_cast<http::status>(response.status), version);
        setHeaders(*whole, response);
        whole->keep_alive(keepAlive);
        whole->body() = std::move(response.body);
        whole->prepare_payload();
        stream.expires_after(limits.writeTimeout);
        http::async_write(stream, *whole,
                          [self = shared_from_this()](beast::error_code error, std::size_t) {
                              self->whole.reset();
                              self->written(error);
                          });
    }

    void writeInPieces(HttpResponse response) {
        pieces = std::move(response.bodyPieces);
        morePieces = true;
        pieceHead.emplace(static_cast<http::status>(response.status), version);
        setHeaders(*pieceHead, response);
        pieceHead->keep_alive(keepAlive);
        pieceHead->chunked(true);
        pieceSerializer.emplace(*pieceHead);
        stream.expires_after(limits.writeTimeout);
        http::async_write_header(stream, *pieceSerializer,
                                 [self = shared_from_this()](beast::error_code error, std::size_t) {
                                     if (error) {
                                         self->close();
                                     } else {
                                         self->writeNextPiece();
                                     }
                                 });
    }

    void writeNextPiece() {
        piece.clear();
        try {
            while (morePieces && piece.empty()) {
                morePieces = pieces(piece);
            }
        } catch (const std::exception&) {
            close();  // the head is out: all that is left is to cut the answer short
            return;
        }
        stream.expires_after(limits.writeTimeout);
        if (piece.empty()) {
            net::async_write(stream, http::make_chunk_last(),
                             [self = shared_from_this()](beast::error_code error, std::size_t) {
                                 self->pieces = nullptr;
                                 self->pieceSerializer.reset();
                                 self->pieceHead.reset();
                                 self->written(error);
                             });
            return;
        }
        net::async_write(stream, http::make_chunk(net::buffer(piece)),
                         [self = shared_from_this()](beast::error_code error, std::size_t) {
                             if (error) {
                                 self->close();
                             } else {
                                 self->writeNextPiece();
                             }
                         });
    }

    void written(beast::error_code error) {
        if (!error && bodyUnread) {
            lingerThenClose();
        } else if (!error && keepAlive) {
            awaitRequest();
        } else {
            close();
        }
    }

    // Sends the end of the stream and drops what still comes, for a while,
    // so that the answer is read before the connection is reset.
    void lingerThenClose() {
        beast::error_code ignored;
        stream.socket().shutdown(tcp::socket::shutdown_send, ignored);
        stream.expires_after(kLingerTime);
        drainUntilClosed();
    }

    void drainUntilClosed() {
        stream.async_read_some(net::buffer(scratch),
                               [self = shared_from_this()](beast::error_code error, std::size_t) {
                                   if (error) {
                                       self->close();
                                   } else {
                                       self->drainUntilClosed();
                                   }
                               });
    }

    void close() {
        beast::error_code ignored;
        stream.socket().shutdown(tcp::socket::shutdown_both, ignored);
        stream.close();
    }

    beast::tcp_stream stream;
    const ServerLimits& limits;
    HttpHandler& handler;
    std::shared_ptr<ConnectionRegistry> registry;
    const std::atomic<bool>& stopping;
    std::optional<ConnectionRegistry::Entry> entry;

    beast::flat_buffer buffer;
    std::optional<http::request_parser<http::string_body>> parser;
    HttpRequest head;
    unsigned version = 11;
    bool idle = false;
    bool keepAlive = false;
    bool bodyUnread = false;

    std::optional<http::response<http::empty_body>> continueMessage;
    std::optional<http::response<http::string_body>> whole;
    std::optional<http::response<http::empty_body>> pieceHead;
    std::optional<http::response_serializer<http::empty_body>> pieceSerializer;
    std::function<bool(std::string&)> pieces;
    bool morePieces = false;
    std::string piece;
    std::array<char, 4096> scratch{};
};

// Runs a context until it has no more work or is stopped. An exception that
// escapes a handler (memory that ran out while a connection built its
// answer) ends that connection alone, whose handler it was; the others go on.
void serve(net::io_context& context) {
    while (true) {
        try {
            context.run();
            return;
        } catch (const std::exception& error) {
            std::cerr << "tov: a connection was dropped: " << error.what() << std::endl;
        }
    }
}

}  // namespace

struct HttpServer::State {
    explicit State(const ServerLimits& limits)
        : limits(limits),
          acceptor(first()),
          acceptRetry(first()),
          graceTimer(first()),
          signals(first()) {}

    // The context of the acceptor, the timers and the signals.
    net::io_context& first() {
        if (contexts.empty()) {
            contexts.push_back(std::make_unique<net::io_context>(1));
        }
        return *contexts.front();
    }

    void accept() {
        net::io_context& home = *contexts[nextContext++ % contexts.size()];
        acceptor.async_accept(home.get_executor(), [this](beast::error_code error,
                                                          tcp::socket socket) {
            if (stopping) {
                return;
            }
            const int code = error.value();
            if (error && (code == EMFILE || code == ENFILE || code == ENOBUFS || code == ENOMEM)) {
                // Out of descriptors or memory for now: connections that end
                // will give them back, so wait a little instead of spinning.
                acceptRetry.expires_after(kAcceptRetryDelay);
                acceptRetry.async_wait([this](beast::error_code waited) {
                    if (!waited && !stopping) {
                        accept();
                    }
                });
                return;
            }
            if (!error) {
                const bool admitted = registry->enter(limits.maxConnections);
                auto session = std::make_shared<Session>(std::move(socket), limits, *handler,
                                                         registry, stopping);
                // Started on the thread of its own context, which alone runs it.
                net::post(session->executor(), [session, admitted] { session->start(admitted); });
            }
            accept();
        });
    }

    void awaitSignal() {
        signals.async_wait([this](beast::error_code error, int signal) {
            if (error) {
                return;
            }
            if (onSignal) {
                onSignal(signal);
            }
            awaitSignal();
        });
    }

    // On the first context's thread.
    void beginStop(std::chrono::milliseconds grace) {
        if (stopping.exchange(true)) {
            return;
        }
        beast::error_code ignored;
        acceptor.close(ignored);
        acceptRetry.cancel();
        graceTimer.expires_after(grace);
        graceTimer.async_wait([this](beast::error_code error) {
            if (!error) {
                // The grace is over: what is still in flight is dropped.
                for (const std::unique_ptr<net::io_context>& context : contexts) {
                    context->stop();
                }
            }
        });
        registry->drain([this] {
            net::post(acceptor.get_executor(), [this] {
                graceTimer.cancel();
                beast::error_code cancelled;
                signals.cancel(cancelled);
                keepRunning.clear();
            });
        });
    }

    ServerLimits limits;
    // One context per thread, so that threads share no queue of handlers and
    // a connection is served by one thread alone. The first also holds the
    // acceptor, the timers and the signals.
    std::vector<std::unique_ptr<net::io_context>> contexts;
    std::vector<net::executor_work_guard<net::io_context::executor_type>> keepRunning;
    std::size_t nextContext = 0;
    tcp::acceptor acceptor;
    net::steady_timer acceptRetry;
    net::steady_timer graceTimer;
    net::signal_set signals;
    std::function<void(int)> onSignal;
    std::shared_ptr<ConnectionRegistry> registry = std::make_shared<ConnectionRegistry>();
    HttpHandler* handler = nullptr;
    std::atomic<bool> stopping{false};
};

HttpServer::HttpServer(std::unique_ptr<State> state) : state(std::move(state)) {}

HttpServer::~HttpServer() {
    state->registry->forgetEmpty();
}

std::unique_ptr<HttpServer> HttpServer::listen(const ListenAddress& address,
                                               const ServerLimits& limits, std::string& error) {
    auto state = std::make_unique<State>(limits);
    beast::error_code failure;
    const net::ip::address ip = net::ip::make_address(address.host, failure);
    const tcp::endpoint endpoint(ip, address.port);
    if (!failure) {
        state->acceptor.open(endpoint.protocol(), failure);
    }
    if (!failure) {
        state->acceptor.set_option(net::socket_base::reuse_address(true), failure);
    }
    if (!failure) {
        state->acceptor.bind(endpoint, failure);
    }
    if (!failure) {
        state->acceptor.listen(net::socket_base::max_listen_connections, failure);
    }
    if (failure) {
        error = "cannot listen on " + address.host + ":" + std::to_string(address.port) + ": " +
                failure.message();
        return nullptr;
    }
    return std::unique_ptr<HttpServer>(new HttpServer(std::move(state)));
}

std::string HttpServer::url() const {
    beast::error_code ignored;
    const tcp::endpoint bound = state->acceptor.local_endpoint(ignored);
    const std::string host = bound.address().is_v6() ? "[" + bound.address().to_string() + "]"
                                                     : bound.address().to_string();
    return "http://" + host + ":" + std::to_string(bound.port());
}

bool HttpServer::listensOnLoopback() const {
    beast::error_code ignored;
    return state->acceptor.local_endpoint(ignored).address().is_loopback();
}

void HttpServer::handleSignals(const std::vector<int>& signals, std::function<void(int)> onSignal) {
    for (const int signal : signals) {
        state->signals.add(signal);
    }
    state->onSignal = std::move(onSignal);
}

void HttpServer::run(HttpHandler& handler, unsigned threads) {
    state->handler = &handler;
    for (unsigned i = 1; i < threads; ++i) {
        state->contexts.push_back(std::make_unique<net::io_context>(1));
        // Kept running while no connection is theirs, until the stop.
        state->keepRunning.push_back(net::make_work_guard(*state->contexts.back()));
    }
    net::post(state->acceptor.get_executor(), [this] {
        state->accept();
        state->awaitSignal();
    });
    std::vector<std::thread> others;
    for (std::size_t i = 1; i < state->contexts.size(); ++i) {
        others.emplace_back([this, i] { serve(*state->contexts[i]); });
    }
    serve(*state->contexts.front());
    for (std::thread& thread : others) {
        thread.join();
    }
    state->registry->forgetEmpty();
}

void HttpServer::stop(std::chrono::milliseconds grace) {
    // On the first context's thread (as a signal's callback is) the stop
    // begins at once, so that no connection is accepted once stop() returns.
    net::dispatch(state->acceptor.get_executor(), [this, grace] { state->beginStop(grace); });
}

}  // namespace tovhttp
