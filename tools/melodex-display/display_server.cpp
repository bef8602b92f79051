#include "display_server.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <deque>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>  // Boost 1.74's Asio uses std::exchange without it

#include <boost/asio.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
#include <nlohmann/json.hpp>

#include "melodex/foundation/file_system.h"
#include "melodex/ui/cached_image.h"
#include "melodex/ui/display_stage.h"
#include "melodex/ui/display_status.h"
#include "web_assets.h"

namespace melodex::display {

namespace net = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
namespace websocket = boost::beast::websocket;
using nlohmann::json;
using tcp = net::ip::tcp;
using ErrorCode = beast::error_code;

namespace {

constexpr int ProtocolVersion = 1;
constexpr std::size_t MaxLineBytes = 65536;
// A peer with this much unsent output is not reading; it is let go rather
// than allowed to pile up the server's memory.
constexpr std::size_t MaxQueuedBytes = 4 * 1024 * 1024;
constexpr std::size_t MaxWebSocketFrame = 1024 * 1024;
constexpr std::size_t MaxPeers = 256;

#ifndef MELODEX_VERSION
#define MELODEX_VERSION "0.0.0"
#endif

// Thrown inside a request's handler and turned into its error reply; the
// server itself never stops on one.
struct RequestError {
    std::string code;
    std::string message;
};

std::string dumpJson(const json& value) {
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::string errorReply(const json& id, const std::string& code, const std::string& message) {
    return dumpJson({{"id", id}, {"ok", false}, {"error", {{"code", code}, {"message", message}}}});
}

// --- reading parameters ---------------------------------------------------

std::string stringParam(const json& request, const char* name, const std::string& fallback) {
    const auto found = request.find(name);
    if (found == request.end() || found->is_null()) return fallback;
    if (!found->is_string())
        throw RequestError{"invalid_params", std::string(name) + " must be a string"};
    return found->get<std::string>();
}

std::string requiredString(const json& request, const char* name) {
    if (!request.contains(name))
        throw RequestError{"invalid_params", std::string(name) + " is missing"};
    return stringParam(request, name, {});
}

std::int64_t integerParam(const json& request, const char* name, std::int64_t low,
                          std::int64_t high, std::int64_t fallback) {
    const auto found = request.find(name);
    if (found == request.end() || found->is_null()) return fallback;
    if (!found->is_number_integer() || found->get<std::int64_t>() < low ||
        found->get<std::int64_t>() > high)
        throw RequestError{"invalid_params", std::string(name) + " must be an integer from " +
                                                 std::to_string(low) + " to " +
                                                 std::to_string(high)};
    return found->get<std::int64_t>();
}

DisplayScreen screenParam(const json& request, DisplayScreen fallback) {
    const auto found = request.find("screen");
    if (found == request.end() || found->is_null()) return fallback;
    DisplayScreen screen;
    if (!found->is_string() || !screenFromName(found->get<std::string>(), screen))
        throw RequestError{"invalid_params", "screen must be \"main\" or \"stage\""};
    return screen;
}

DisplayTransition transitionParam(const json& request) {
    const auto found = request.find("transition");
    if (found == request.end() || found->is_null()) return {};
    if (!found->is_object()) throw RequestError{"invalid_params", "transition must be an object"};
    DisplayTransition transition;
    if (!DisplayTransition::typeFromName(stringParam(*found, "type", "cut"), transition.type))
        throw RequestError{"invalid_params", "transition type must be \"cut\" or \"fade\""};
    transition.durationMs =
        int(integerParam(*found, "duration_ms", 0, DisplayTransition::MaxDurationMs, 0));
    return transition;
}

// "/main?token=a%20b" gives "/main" and {"token": "a b"}.
std::string decodePercent(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size() &&
            std::isxdigit(static_cast<unsigned char>(text[i + 1])) &&
            std::isxdigit(static_cast<unsigned char>(text[i + 2]))) {
            out += char(std::stoi(std::string(text.substr(i + 1, 2)), nullptr, 16));
            i += 2;
        } else {
            out += text[i] == '+' ? ' ' : text[i];
        }
    }
    return out;
}

std::map<std::string, std::string> queryOf(std::string_view query) {
    std::map<std::string, std::string> values;
    while (!query.empty()) {
        const std::size_t amp = query.find('&');
        const std::string_view pair = query.substr(0, amp);
        const std::size_t equals = pair.find('=');
        if (equals != std::string_view::npos)
            values[decodePercent(pair.substr(0, equals))] = decodePercent(pair.substr(equals + 1));
        if (amp == std::string_view::npos) break;
        query.remove_prefix(amp + 1);
    }
    return values;
}

std::int64_t nowMs() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

}  // namespace

// --- peers ----------------------------------------------------------------

// One connected controller or page, over TCP or WebSocket.
struct Peer {
    virtual ~Peer() = default;
    virtual void send(const std::string& message) = 0;
    virtual void close() = 0;
    // Closes once what is queued has been written (at shutdown, so that the
    // shutdown reply still goes out).
    virtual void finish() = 0;

    bool greeted = false;
    std::array<bool, DisplayScreenCount> subscribed{};
    std::array<bool, DisplayScreenCount> viewing{};
};

struct DisplayServer::Impl {
    ServerOptions options;
    net::io_context io;
    tcp::acceptor acceptor{io};
    tcp::acceptor webAcceptor{io};
    net::signal_set signals{io, SIGINT, SIGTERM};
    int boundPort = 0;
    int boundHttpPort = 0;
    bool stopping = false;

    DisplayStatus status;
    std::set<Peer*> peers;
    std::unordered_map<std::string, int> imageIds;  // path -> id of its URL
    std::unordered_map<int, std::string> imagePaths;

    using Handler = json (Impl::*)(Peer&, const json&);
    std::unordered_map<std::string, Handler> handlers;

    explicit Impl(ServerOptions serverOptions);

    void accept();
    void acceptWeb();
    std::string handle(Peer& peer, std::string_view text);
    void changed(DisplayScreen screen);
    void dropPeer(Peer& peer);
    void shutdown();

    // Every open connection (controller, page, HTTP session) with the call
    // that ends it, so that shutdown can end them all and the I/O loop then
    // returns by itself.
    std::unordered_map<const void*, std::function<void()>> connections;
    std::optional<net::steady_timer> deadline;
    void opened(const void* key, std::function<void()> closer) {
        connections[key] = std::move(closer);
    }
    void closed(const void* key) {
        connections.erase(key);
        if (stopping && connections.empty() && deadline) deadline->cancel();
    }

    // HTTP and WebSocket
    struct HttpReply {
        http::status status = http::status::ok;
        std::string contentType;
        std::string body;
    };
    HttpReply serveHttp(std::string_view method, std::string_view target) const;
    std::string screenPage(DisplayScreen screen) const;
    bool tokenAccepted(const std::map<std::string, std::string>& query) const;

    // Operations
    json opHello(Peer& peer, const json& request);
    json opVersion(Peer& peer, const json& request);
    json opStatus(Peer& peer, const json& request);
    json opSubscribe(Peer& peer, const json& request);
    json opSetImage(Peer& peer, const json& request);
    json opClear(Peer& peer, const json& request);
    json opBlank(Peer& peer, const json& request);
    json opSetStage(Peer& peer, const json& request);
    json opShown(Peer& peer, const json& request);
    json opPing(Peer& peer, const json& request);
    json opShutdown(Peer& peer, const json& request);
};

namespace {

// A controller on the TCP port: reads lines, answers each, and writes
// through a queue of its own.
class TcpPeer : public Peer, public std::enable_shared_from_this<TcpPeer> {
public:
    TcpPeer(DisplayServer::Impl& server, tcp::socket socket)
        : m_server(server), m_socket(std::move(socket)) {}

    void start() {
        ErrorCode ignored;
        m_socket.set_option(tcp::no_delay(true), ignored);
        m_server.opened(this, [weak = weak_from_this()] {
            if (auto self = weak.lock()) self->finish();
        });
        read();
    }

    void finish() override {
        m_finishing = true;
        if (m_queue.empty()) close();
    }

    void send(const std::string& message) override {
        if (m_closed) return;
        m_queuedBytes += message.size() + 1;
        if (m_queuedBytes > MaxQueuedBytes) {
            close();
            return;
        }
        m_queue.push_back(message + '\n');
        if (m_queue.size() == 1) write();
    }

    void close() override;

private:
    void read() {
        auto self = shared_from_this();
        m_socket.async_read_some(net::buffer(m_chunk),
                                 [this, self](ErrorCode error, std::size_t size) {
                                     if (error) {
                                         close();
                                         return;
                                     }
                                     m_pending.append(m_chunk.data(), size);
                                     drain();
                                 });
    }

    // Answers one line per turn of the loop, so that a client with many
    // requests queued takes turns with the others. A line over the limit is
    // answered once and the rest of it dropped up to its end.
    void drain() {
        if (m_closed) return;
        const std::size_t end = m_pending.find('\n');
        if (end == std::string::npos) {
            if (m_discarding) {
                m_pending.clear();
            } else if (m_pending.size() > MaxLineBytes) {
                m_pending.clear();
                m_discarding = true;
                send(errorReply(nullptr, "line_too_long", "a line may hold at most 65536 bytes"));
            }
            read();
            return;
        }
        std::string line = m_pending.substr(0, end);
        m_pending.erase(0, end + 1);
        if (m_discarding) {
            m_discarding = false;
        } else if (line.size() > MaxLineBytes) {
            send(errorReply(nullptr, "line_too_long", "a line may hold at most 65536 bytes"));
        } else {
            if (!line.empty() && line.back() == '\r') line.pop_back();
            if (line.find_first_not_of(" \t") != std::string::npos) {
                const std::string reply = m_server.handle(*this, line);
                if (!reply.empty()) send(reply);
            }
        }
        net::post(m_socket.get_executor(), [self = shared_from_this()] { self->drain(); });
    }

    void write() {
        auto self = shared_from_this();
        net::async_write(m_socket, net::buffer(m_queue.front()),
                         [this, self](ErrorCode error, std::size_t) {
                             if (error) {
                                 close();
                                 return;
                             }
                             m_queuedBytes -= m_queue.front().size();
                             m_queue.pop_front();
                             if (!m_queue.empty()) {
                                 write();
                             } else if (m_finishing) {
                                 close();
                             }
                         });
    }

    DisplayServer::Impl& m_server;
    tcp::socket m_socket;
    bool m_finishing = false;
    std::array<char, 8192> m_chunk{};
    std::string m_pending;  // bytes read and not yet answered
    bool m_discarding = false;
    std::deque<std::string> m_queue;
    std::size_t m_queuedBytes = 0;
    bool m_closed = false;
};

void TcpPeer::close() {
    if (m_closed) return;
    m_closed = true;
    ErrorCode ignored;
    m_socket.shutdown(tcp::socket::shutdown_both, ignored);
    m_socket.close(ignored);
    m_server.dropPeer(*this);
    m_server.closed(this);
}

// A page (or a controller) on the WebSocket: text frames in, each
// answered, and a write queue of its own as on TCP.
class WebSocketPeer : public Peer, public std::enable_shared_from_this<WebSocketPeer> {
public:
    WebSocketPeer(DisplayServer::Impl& server, tcp::socket socket)
        : m_server(server), m_ws(std::move(socket)) {}

    void start(http::request<http::string_body> request) {
        m_server.opened(this, [weak = weak_from_this()] {
            if (auto self = weak.lock()) self->finish();
        });
        beast::get_lowest_layer(m_ws).expires_never();
        m_ws.set_option(websocket::stream_base::timeout::suggested(beast::role_type::server));
        m_ws.read_message_max(MaxWebSocketFrame);
        m_ws.async_accept(request, [self = shared_from_this()](ErrorCode error) {
            if (error || self->m_server.stopping) {
                self->close();
                return;
            }
            self->m_server.peers.insert(self.get());
            self->read();
        });
    }

    void send(const std::string& message) override {
        if (m_closed) return;
        m_queuedBytes += message.size();
        if (m_queuedBytes > MaxQueuedBytes) {
            close();
            return;
        }
        m_queue.push_back(message);
        if (m_queue.size() == 1) write();
    }

    void close() override {
        if (m_closed) return;
        m_closed = true;
        ErrorCode ignored;
        beast::get_lowest_layer(m_ws).socket().shutdown(tcp::socket::shutdown_both, ignored);
        beast::get_lowest_layer(m_ws).socket().close(ignored);
        m_server.dropPeer(*this);
        m_server.closed(this);
    }

    void finish() override {
        m_finishing = true;
        if (m_queue.empty()) close();
    }

private:
    void read() {
        m_ws.async_read(m_buffer, [self = shared_from_this()](ErrorCode error, std::size_t) {
            if (error) {
                self->close();
                return;
            }
            const std::string text = beast::buffers_to_string(self->m_buffer.data());
            self->m_buffer.consume(self->m_buffer.size());
            const std::string reply =
                self->m_ws.got_text()
                    ? self->m_server.handle(*self, text)
                    : errorReply(nullptr, "bad_request", "send JSON in text frames");
            if (!reply.empty()) self->send(reply);
            if (!self->m_closed) self->read();
        });
    }

    void write() {
        m_ws.text(true);
        m_ws.async_write(net::buffer(m_queue.front()),
                         [self = shared_from_this()](ErrorCode error, std::size_t) {
                             if (error) {
                                 self->close();
                                 return;
                             }
                             self->m_queuedBytes -= self->m_queue.front().size();
                             self->m_queue.pop_front();
                             if (!self->m_queue.empty() && !self->m_closed) {
                                 self->write();
                             } else if (self->m_finishing) {
                                 self->close();
                             }
                         });
    }

    DisplayServer::Impl& m_server;
    websocket::stream<beast::tcp_stream> m_ws;
    bool m_finishing = false;
    beast::flat_buffer m_buffer;
    std::deque<std::string> m_queue;
    std::size_t m_queuedBytes = 0;
    bool m_closed = false;
};

// One browser connection on the screens' port: HTTP requests, one after
// another, until it asks for the WebSocket and becomes a WebSocketPeer.
class HttpSession : public std::enable_shared_from_this<HttpSession> {
public:
    HttpSession(DisplayServer::Impl& server, tcp::socket socket)
        : m_server(server), m_stream(std::move(socket)) {}

    void start() {
        m_server.opened(this, [weak = weak_from_this()] {
            if (auto self = weak.lock()) self->end();
        });
        read();
    }

private:
    void end() {
        ErrorCode ignored;
        m_stream.socket().shutdown(tcp::socket::shutdown_both, ignored);
        m_stream.socket().close(ignored);
        m_server.closed(this);
    }

    void read() {
        m_parser.emplace();
        m_parser->header_limit(16 * 1024);
        m_parser->body_limit(64 * 1024);
        m_stream.expires_after(std::chrono::seconds(30));
        http::async_read(
            m_stream, m_buffer, *m_parser,
            [self = shared_from_this()](ErrorCode error, std::size_t) { self->answer(error); });
    }

    void answer(ErrorCode error) {
        if (error) {
            end();
            return;
        }
        http::request<http::string_body> request = m_parser->release();
        const std::string_view target(request.target().data(), request.target().size());
        if (websocket::is_upgrade(request) && target.substr(0, target.find('?')) == "/ws" &&
            m_server.peers.size() < MaxPeers && !m_server.stopping) {
            std::make_shared<WebSocketPeer>(m_server, m_stream.release_socket())
                ->start(std::move(request));
            m_server.closed(this);
            return;
        }
        const std::string_view method(request.method_string().data(),
                                      request.method_string().size());
        DisplayServer::Impl::HttpReply reply = m_server.serveHttp(method, target);
        auto response =
            std::make_shared<http::response<http::string_body>>(reply.status, request.version());
        response->set(http::field::server, "melodex-display");
        response->set(http::field::content_type, reply.contentType);
        response->set(http::field::cache_control, "no-cache");
        response->set("X-Content-Type-Options", "nosniff");
        response->keep_alive(request.keep_alive());
        response->body() = std::move(reply.body);
        response->prepare_payload();
        http::async_write(
            m_stream, *response,
            [self = shared_from_this(), response](ErrorCode writeError, std::size_t) {
                if (writeError || !response->keep_alive() || self->m_server.stopping) {
                    self->end();
                    return;
                }
                self->read();
            });
    }

    DisplayServer::Impl& m_server;
    beast::tcp_stream m_stream;
    beast::flat_buffer m_buffer;
    std::optional<http::request_parser<http::string_body>> m_parser;
};

}  // namespace

DisplayServer::Impl::Impl(ServerOptions serverOptions) : options(std::move(serverOptions)) {
    handlers = {{"hello", &Impl::opHello},        {"version", &Impl::opVersion},
                {"status", &Impl::opStatus},      {"subscribe", &Impl::opSubscribe},
                {"set_image", &Impl::opSetImage}, {"clear", &Impl::opClear},
                {"blank", &Impl::opBlank},        {"set_stage", &Impl::opSetStage},
                {"shown", &Impl::opShown},        {"ping", &Impl::opPing},
                {"shutdown", &Impl::opShutdown}};
}

// --- requests ---------------------------------------------------------------

std::string DisplayServer::Impl::handle(Peer& peer, std::string_view text) {
    if (text.size() > MaxLineBytes)
        return errorReply(nullptr, "line_too_long", "a message may hold at most 65536 bytes");
    const json request = json::parse(text, nullptr, false);
    if (request.is_discarded())
        return errorReply(nullptr, "parse_error", "the message is not JSON");
    if (!request.is_object())
        return errorReply(nullptr, "bad_request", "a request must be a JSON object");
    json id = request.contains("id") ? request["id"] : json(nullptr);
    if (!id.is_null() && !id.is_number_integer() && !id.is_string())
        return errorReply(nullptr, "bad_request", "id must be an integer or a string");
    const auto op = request.find("op");
    if (op == request.end() || !op->is_string())
        return errorReply(id, "bad_request", "op must name an operation");
    const std::string name = op->get<std::string>();
    try {
        if (!peer.greeted && name != "hello")
            throw RequestError{"hello_required", "say hello first"};
        const auto handler = handlers.find(name);
        if (handler == handlers.end())
            throw RequestError{"unknown_op", "no operation \"" + name + "\""};
        json result = (this->*handler->second)(peer, request);
        return dumpJson({{"id", id}, {"ok", true}, {"result", std::move(result)}});
    } catch (const RequestError& error) {
        return errorReply(id, error.code, error.message);
    } catch (const json::exception& error) {
        return errorReply(id, "invalid_params", error.what());
    } catch (const std::exception& error) {
        return errorReply(id, "internal", error.what());
    }
}

json DisplayServer::Impl::opHello(Peer& peer, const json& request) {
    const auto versions = request.find("versions");
    int chosen = 0;
    if (versions == request.end()) {
        chosen = ProtocolVersion;  // a client that names none gets the first
    } else if (!versions->is_array()) {
        throw RequestError{"invalid_params", "versions must be an array of integers"};
    } else {
        for (const json& version : *versions)
            if (version.is_number_integer() && version.get<std::int64_t>() == ProtocolVersion)
                chosen = ProtocolVersion;
    }
    if (chosen == 0)
        throw RequestError{"unsupported_version", "this server speaks protocol version 1"};
    if (!options.token.empty() && stringParam(request, "token", {}) != options.token)
        throw RequestError{"unauthorized", "the token is missing or wrong"};
    peer.greeted = true;
    return {{"protocol", chosen},
            {"server", "melodex-display"},
            {"version", MELODEX_VERSION},
            {"capabilities", {"images", "blank", "stage", "events", "shown"}},
            {"screens", {"main", "stage"}}};
}

json DisplayServer::Impl::opVersion(Peer&, const json&) {
    return {
        {"server", "melodex-display"}, {"version", MELODEX_VERSION}, {"protocol", ProtocolVersion}};
}

json DisplayServer::Impl::opStatus(Peer&, const json&) {
    return json::parse(status.toJson());
}

json DisplayServer::Impl::opSubscribe(Peer& peer, const json& request) {
    std::array<bool, DisplayScreenCount> wanted{true, true};
    if (const auto screens = request.find("screens");
        screens != request.end() && !screens->is_null()) {
        if (!screens->is_array()) throw RequestError{"invalid_params", "screens must be an array"};
        wanted = {};
        for (const json& item : *screens) {
            DisplayScreen screen;
            if (!item.is_string() || !screenFromName(item.get<std::string>(), screen))
                throw RequestError{"invalid_params", "screens may name \"main\" and \"stage\""};
            wanted[std::size_t(screen)] = true;
        }
    }
    const auto viewerParam = request.find("viewer");
    if (viewerParam != request.end() && !viewerParam->is_boolean() && !viewerParam->is_null())
        throw RequestError{"invalid_params", "viewer must be true or false"};
    const bool viewer =
        viewerParam != request.end() && viewerParam->is_boolean() && viewerParam->get<bool>();
    peer.subscribed = wanted;
    for (int i = 0; i < DisplayScreenCount; ++i) {
        const bool views = viewer && wanted[std::size_t(i)];
        if (views == peer.viewing[std::size_t(i)]) continue;
        peer.viewing[std::size_t(i)] = views;
        status.screens[std::size_t(i)].viewers += views ? 1 : -1;
        changed(DisplayScreen(i));
    }
    return {{"seq", status.seq}};
}

json DisplayServer::Impl::opSetImage(Peer&, const json& request) {
    const DisplayScreen screen = screenParam(request, DisplayScreen::Main);
    DisplayLayer layer;
    if (!layerFromName(requiredString(request, "layer"), layer))
        throw RequestError{"invalid_params", "layer must be \"foreground\" or \"background\""};
    const std::string path = requiredString(request, "path");
    const int mode =
        int(integerParam(request, "mode", 0, ImageMode::Last,
                         layer == DisplayLayer::Foreground ? ImageMode::Fit : ImageMode::Fill));
    const DisplayTransition transition = transitionParam(request);
    std::string url;
    if (!path.empty()) {
        if (!isAbsolutePath(path)) throw RequestError{"invalid_params", "path must be absolute"};
        if (!fileExists(path)) {
            throw RequestError{
                "not_found",
                (folderExists(path) ? "a folder, not an image file: " : "no such file: ") + path};
        }
        if (imageFileFormat(path) == ImageFormat::None)
            throw RequestError{"not_an_image",
                               "not a PNG, JPEG, GIF, WebP, BMP or SVG file: " + path};
        auto [entry, added] = imageIds.try_emplace(path, int(imageIds.size()) + 1);
        if (added) imagePaths[entry->second] = path;
        url = "/image/" + std::to_string(entry->second);
    }
    DisplayLayerState& state = status.screen(screen).layer(layer);
    state.path = path;
    state.url = url;
    state.mode = mode;
    state.transition = transition;
    changed(screen);
    return {{"seq", status.seq}, {"url", url}};
}

json DisplayServer::Impl::opClear(Peer&, const json& request) {
    const DisplayScreen screen = screenParam(request, DisplayScreen::Main);
    const std::string which = stringParam(request, "layer", "all");
    DisplayScreenState& state = status.screen(screen);
    DisplayLayer layer;
    if (which == "all") {
        for (DisplayLayerState* cleared : {&state.foreground, &state.background}) {
            cleared->path.clear();
            cleared->url.clear();
            cleared->transition = {};
        }
        state.hasStage = false;
        state.stage = {};
    } else if (layerFromName(which, layer)) {
        state.layer(layer).path.clear();
        state.layer(layer).url.clear();
        state.layer(layer).transition = {};
    } else {
        throw RequestError{"invalid_params",
                           "layer must be \"foreground\", \"background\" or \"all\""};
    }
    changed(screen);
    return {{"seq", status.seq}};
}

json DisplayServer::Impl::opBlank(Peer&, const json& request) {
    DisplayBlank mode;
    if (!blankFromName(requiredString(request, "mode"), mode))
        throw RequestError{"invalid_params",
                           "mode must be \"none\", \"black\", \"white\" or \"background\""};
    if (request.contains("screen") && !request["screen"].is_null()) {
        const DisplayScreen screen = screenParam(request, DisplayScreen::Main);
        status.screen(screen).blank = mode;
        changed(screen);
    } else {
        for (int i = 0; i < DisplayScreenCount; ++i) {
            status.screens[std::size_t(i)].blank = mode;
            changed(DisplayScreen(i));
        }
    }
    return {{"seq", status.seq}};
}

json DisplayServer::Impl::opSetStage(Peer&, const json& request) {
    const DisplayScreen screen = screenParam(request, DisplayScreen::Stage);
    DisplayStage stage;
    std::string error;
    if (!stage.fromJson(dumpJson(request), &error)) throw RequestError{"invalid_params", error};
    DisplayScreenState& state = status.screen(screen);
    state.stage = std::move(stage);
    state.hasStage = true;
    changed(screen);
    return {{"seq", status.seq}};
}

json DisplayServer::Impl::opShown(Peer&, const json& request) {
    const DisplayScreen screen = screenParam(request, DisplayScreen::Main);
    if (!request.contains("seq")) throw RequestError{"invalid_params", "seq is missing"};
    const std::int64_t seq = integerParam(request, "seq", 0, INT64_MAX, 0);
    DisplayScreenState& state = status.screen(screen);
    const std::int64_t shown = std::min(seq, status.seq);
    if (shown > state.shownSeq) {
        state.shownSeq = shown;
        changed(screen);
    }
    return json::object();
}

json DisplayServer::Impl::opPing(Peer&, const json&) {
    return {{"time_ms", nowMs()}};
}

json DisplayServer::Impl::opShutdown(Peer&, const json&) {
    // After this reply has been queued; the writes still go out before the
    // sockets close.
    net::post(io, [this] { shutdown(); });
    return json::object();
}

// --- state and peers --------------------------------------------------------

void DisplayServer::Impl::changed(DisplayScreen screen) {
    status.seq += 1;
    const std::size_t index = std::size_t(screen);
    const std::string event = dumpJson({{"event", "state"},
                                        {"seq", status.seq},
                                        {"screen", screenName(screen)},
                                        {"state", json::parse(status.screens[index].toJson())}});
    // A peer may be dropped while sending (it stopped reading): walk a copy.
    const std::set<Peer*> listeners = peers;
    for (Peer* peer : listeners)
        if (peers.count(peer) && peer->subscribed[index]) peer->send(event);
}

void DisplayServer::Impl::dropPeer(Peer& peer) {
    if (!peers.erase(&peer)) return;
    for (int i = 0; i < DisplayScreenCount; ++i) {
        if (!peer.viewing[std::size_t(i)]) continue;
        peer.viewing[std::size_t(i)] = false;
        status.screens[std::size_t(i)].viewers -= 1;
        if (!stopping) changed(DisplayScreen(i));
    }
}

void DisplayServer::Impl::accept() {
    acceptor.async_accept([this](ErrorCode error, tcp::socket socket) {
        if (error) {
            if (!stopping && error != net::error::operation_aborted) accept();
            return;
        }
        if (peers.size() >= MaxPeers) {
            ErrorCode ignored;
            socket.close(ignored);
        } else {
            auto peer = std::make_shared<TcpPeer>(*this, std::move(socket));
            peers.insert(peer.get());
            peer->start();
        }
        accept();
    });
}

void DisplayServer::Impl::acceptWeb() {
    webAcceptor.async_accept([this](ErrorCode error, tcp::socket socket) {
        if (error) {
            if (!stopping && error != net::error::operation_aborted) acceptWeb();
            return;
        }
        std::make_shared<HttpSession>(*this, std::move(socket))->start();
        acceptWeb();
    });
}

void DisplayServer::Impl::shutdown() {
    if (stopping) return;
    stopping = true;
    ErrorCode ignored;
    acceptor.close(ignored);
    webAcceptor.close(ignored);
    signals.cancel(ignored);
    const auto open = connections;
    for (const auto& [key, closer] : open)
        if (connections.count(key)) closer();
    // A peer that never takes what is left for it must not keep the server
    // alive.
    if (!connections.empty()) {
        deadline.emplace(io, std::chrono::seconds(2));
        deadline->async_wait([this](ErrorCode error) {
            if (!error) io.stop();
        });
    }
}

// --- HTTP -------------------------------------------------------------------

bool DisplayServer::Impl::tokenAccepted(const std::map<std::string, std::string>& query) const {
    if (options.token.empty()) return true;
    const auto found = query.find("token");
    return found != query.end() && found->second == options.token;
}

std::string DisplayServer::Impl::screenPage(DisplayScreen screen) const {
    const WebAsset* page = findWebAsset("screen.html");
    std::string html(page->body);
    json initial = {{"screen", screenName(screen)},
                    {"seq", status.seq},
                    {"state", json::parse(status.screen(screen).toJson())}};
    // The state goes inside a <script> element: "</" must not end it early.
    std::string script = dumpJson(initial);
    for (std::size_t at = script.find("</"); at != std::string::npos;
         at = script.find("</", at + 3))
        script.replace(at, 2, "<\\/");
    const auto replace = [&html](std::string_view marker, const std::string& text) {
        for (std::size_t at = html.find(marker); at != std::string::npos;
             at = html.find(marker, at + text.size()))
            html.replace(at, marker.size(), text);
    };
    replace("@SCREEN@", screenName(screen));
    replace("@INITIAL@", script);
    return html;
}

DisplayServer::Impl::HttpReply DisplayServer::Impl::serveHttp(std::string_view method,
                                                              std::string_view target) const {
    const std::size_t question = target.find('?');
    const std::string path(target.substr(0, question));
    const auto query = queryOf(question == std::string_view::npos ? std::string_view()
                                                                  : target.substr(question + 1));
    const auto text = [](http::status code, std::string body) {
        return HttpReply{code, "text/plain; charset=utf-8", std::move(body)};
    };
    if (method != "GET") return text(http::status::method_not_allowed, "GET only\n");
    DisplayScreen screen;
    // The pages carry the state and the images are the service's own; the
    // script, the style sheet and the index are the same for everyone.
    const bool isScreen = path.size() > 1 && screenFromName(path.substr(1), screen);
    if ((isScreen || path.rfind("/image/", 0) == 0) && !tokenAccepted(query))
        return text(http::status::forbidden, "token needed\n");
    if (path == "/") {
        const WebAsset* index = findWebAsset("index.html");
        return {http::status::ok, std::string(index->contentType), std::string(index->body)};
    }
    if (isScreen) return {http::status::ok, "text/html; charset=utf-8", screenPage(screen)};
    if (path.rfind("/image/", 0) == 0) {
        // Only files a controller named, by the number given to them: a URL
        // never carries a path, so it cannot reach anything else.
        const std::string digits = path.substr(7);
        if (digits.empty() || digits.size() > 9 ||
            digits.find_first_not_of("0123456789") != std::string::npos)
            return text(http::status::not_found, "not found\n");
        const auto found = imagePaths.find(std::stoi(digits));
        const ImageFormat format =
            found == imagePaths.end() ? ImageFormat::None : imageFileFormat(found->second);
        if (format == ImageFormat::None) return text(http::status::not_found, "not found\n");
        std::ifstream file(found->second, std::ios::binary);
        std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        return {http::status::ok, imageMimeType(format), std::move(bytes)};
    }
    // The page's script and style sheet; the page template itself only
    // through its screen's address.
    if (path.size() > 1 && path.find('/', 1) == std::string::npos &&
        path.find(".html") == std::string::npos) {
        if (const WebAsset* asset = findWebAsset(path.substr(1)))
            return {http::status::ok, std::string(asset->contentType), std::string(asset->body)};
    }
    return text(http::status::not_found, "not found\n");
}

// --- the server -------------------------------------------------------------

DisplayServer::DisplayServer(ServerOptions options)
    : m_impl(std::make_unique<Impl>(std::move(options))) {}

DisplayServer::~DisplayServer() = default;

bool DisplayServer::listen(std::string& error) {
    Impl& impl = *m_impl;
    ErrorCode code;
    const net::ip::address address = net::ip::make_address(impl.options.address, code);
    if (code) {
        error = "not an address: " + impl.options.address;
        return false;
    }
    if (!address.is_loopback() && impl.options.token.empty()) {
        error = "listening beyond this computer (" + impl.options.address + ") needs --token";
        return false;
    }
    const tcp::endpoint control(address, static_cast<unsigned short>(impl.options.port));
    impl.acceptor.open(control.protocol(), code);
    if (!code) impl.acceptor.set_option(tcp::acceptor::reuse_address(true), code);
    if (!code) impl.acceptor.bind(control, code);
    if (!code) impl.acceptor.listen(net::socket_base::max_listen_connections, code);
    if (code) {
        error = "cannot listen on " + impl.options.address + ":" +
                std::to_string(impl.options.port) + ": " + code.message();
        return false;
    }
    impl.boundPort = impl.acceptor.local_endpoint().port();

    const tcp::endpoint screens(address, static_cast<unsigned short>(impl.options.httpPort));
    impl.webAcceptor.open(screens.protocol(), code);
    if (!code) impl.webAcceptor.set_option(tcp::acceptor::reuse_address(true), code);
    if (!code) impl.webAcceptor.bind(screens, code);
    if (!code) impl.webAcceptor.listen(net::socket_base::max_listen_connections, code);
    if (code) {
        error = "cannot listen on " + impl.options.address + ":" +
                std::to_string(impl.options.httpPort) + ": " + code.message();
        return false;
    }
    impl.boundHttpPort = impl.webAcceptor.local_endpoint().port();
    impl.acceptWeb();
    impl.accept();
    impl.signals.async_wait([&impl](ErrorCode signalError, int) {
        if (!signalError) impl.shutdown();
    });
    return true;
}

int DisplayServer::port() const {
    return m_impl->boundPort;
}

int DisplayServer::httpPort() const {
    return m_impl->boundHttpPort;
}

void DisplayServer::run() {
    m_impl->io.run();
}

void DisplayServer::stop() {
    net::post(m_impl->io, [this] { m_impl->shutdown(); });
}

}  // namespace melodex::display
