#include "melodex/ui/projector_client.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <optional>
#include <thread>
#include <unordered_map>

#include <asio.hpp>
#include <nlohmann/json.hpp>

namespace melodex {

using asio::ip::tcp;
using nlohmann::json;

namespace {

// A status with long stage texts on both screens stays far below this; a
// line beyond it means the peer is not a display server.
constexpr std::size_t MaxReplyBytes = 16 * 1024 * 1024;

constexpr int DefaultTimeoutMs = 5000;

String dumpJson(const json& value) {
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

json transitionToJson(const DisplayTransition* transition) {
    const DisplayTransition cut;
    const DisplayTransition& t = transition ? *transition : cut;
    return {{"type", DisplayTransition::typeName(t.type)}, {"duration_ms", t.durationMs}};
}

struct Reply {
    bool ok = false;
    json result;
    ProjectorError error;
};

}  // namespace

struct ProjectorClient::Impl {
    using Handler = std::function<void(Reply&)>;  // runs on the I/O thread

    // Touched by the I/O thread only, or while it is not running.
    asio::io_context io;
    std::optional<asio::executor_work_guard<asio::io_context::executor_type>> work;
    tcp::socket socket{io};
    asio::streambuf readBuffer{MaxReplyBytes};
    std::deque<std::string> writeQueue;

    std::thread thread;
    std::mutex lifecycle;            // serialises connect, disconnect and stop
    std::atomic<bool> open{false};   // the socket is up (hello may still be due)
    std::atomic<bool> ready{false};  // hello accepted

    mutable std::mutex mutex;  // everything below
    std::condition_variable changed;
    std::unordered_map<std::int64_t, Handler> pending;
    std::int64_t nextId = 1;
    DisplayStatus status;
    std::int64_t lastEventSeq = -1;  // -1: not subscribed
    std::int64_t lastChangeSeq = 0;
    ProjectorError lastError;
    int timeoutMs = DefaultTimeoutMs;
    String token;

    void setError(String code, String message) {
        std::lock_guard guard(mutex);
        lastError = {std::move(code), std::move(message)};
    }
    void clearError() {
        std::lock_guard guard(mutex);
        lastError = {};
    }
    int timeout() const {
        std::lock_guard guard(mutex);
        return timeoutMs;
    }

    // --- I/O thread -------------------------------------------------------

    void startReading() {
        asio::async_read_until(
            socket, readBuffer, '\n', [this](std::error_code error, std::size_t size) {
                if (error) {
                    connectionLost();
                    return;
                }
                std::string line(asio::buffers_begin(readBuffer.data()),
                                 asio::buffers_begin(readBuffer.data()) + std::ptrdiff_t(size));
                readBuffer.consume(size);
                handleLine(line);
                startReading();
            });
    }

    void write(std::string line) {
        writeQueue.push_back(std::move(line));
        if (writeQueue.size() == 1) writeNext();
    }

    void writeNext() {
        asio::async_write(socket, asio::buffer(writeQueue.front()),
                          [this](std::error_code error, std::size_t) {
                              if (error) {
                                  connectionLost();
                                  return;
                              }
                              writeQueue.pop_front();
                              if (!writeQueue.empty()) writeNext();
                          });
    }

    void handleLine(const std::string& line) {
        const json message = json::parse(line, nullptr, false);
        if (!message.is_object()) return;  // nothing a server sends; ignore it
        if (const auto event = message.find("event"); event != message.end()) {
            handleEvent(message);
            return;
        }
        const auto id = message.find("id");
        if (id == message.end() || !id->is_number_integer()) return;
        Handler handler;
        {
            std::lock_guard guard(mutex);
            const auto found = pending.find(id->get<std::int64_t>());
            if (found == pending.end()) return;  // its caller gave up waiting
            handler = std::move(found->second);
            pending.erase(found);
        }
        Reply reply;
        const auto ok = message.find("ok");
        reply.ok = ok != message.end() && ok->is_boolean() && ok->get<bool>();
        if (reply.ok) {
            if (const auto result = message.find("result"); result != message.end())
                reply.result = *result;
        } else {
            reply.error = {"bad_reply", "the server's reply carries no error"};
            if (const auto error = message.find("error");
                error != message.end() && error->is_object()) {
                reply.error.code = error->value("code", String("bad_reply"));
                reply.error.message = error->value("message", String());
            }
        }
        handler(reply);
    }

    void handleEvent(const json& message) {
        if (message.value("event", String()) != "state") return;
        DisplayScreen screen;
        const auto seq = message.find("seq");
        const auto state = message.find("state");
        if (!screenFromName(message.value("screen", String()), screen) || seq == message.end() ||
            !seq->is_number_integer() || state == message.end())
            return;
        DisplayScreenState screenState;
        if (!screenState.fromJson(dumpJson(*state))) return;
        bool missed = false;
        {
            std::lock_guard guard(mutex);
            const std::int64_t number = seq->get<std::int64_t>();
            if (lastEventSeq >= 0 && number > lastEventSeq + 1) missed = true;
            if (number > lastEventSeq) lastEventSeq = number;
            if (number >= status.seq) {
                status.screen(screen) = std::move(screenState);
                status.seq = number;
            }
        }
        changed.notify_all();
        // An event went missing: the whole status puts every screen right.
        if (missed) send({{"op", "status"}}, [this](Reply& reply) { applyStatus(reply); });
    }

    void applyStatus(const Reply& reply) {
        if (!reply.ok) return;
        DisplayStatus fresh;
        if (!fresh.fromJson(dumpJson(reply.result))) return;
        {
            std::lock_guard guard(mutex);
            if (fresh.seq >= status.seq) status = std::move(fresh);
        }
        changed.notify_all();
    }

    void connectionLost() {
        if (!open.exchange(false)) return;
        ready = false;
        std::error_code ignored;
        socket.shutdown(tcp::socket::shutdown_both, ignored);
        socket.close(ignored);
        writeQueue.clear();
        failPending("disconnected", "the display server closed the connection");
    }

    // --- the thread that holds `lifecycle` -----------------------------------

    // Ends the connection and, with `wait`, the I/O thread. Without `wait`
    // the thread ends on its own soon; the next connect or stop joins it.
    void stopLocked(bool wait = true) {
        if (!thread.joinable()) return;
        asio::post(io, [this] {
            connectionLost();
            std::error_code ignored;
            socket.close(ignored);
        });
        work.reset();
        if (!wait || thread.get_id() == std::this_thread::get_id()) return;
        thread.join();
        open = false;
        ready = false;
        writeQueue.clear();
        failPending("disconnected", "disconnected from the display server");
    }

    // --- any thread ---------------------------------------------------------

    void failPending(const String& code, const String& message) {
        std::unordered_map<std::int64_t, Handler> failed;
        {
            std::lock_guard guard(mutex);
            failed.swap(pending);
        }
        for (auto& [id, handler] : failed) {
            Reply reply;
            reply.error = {code, message};
            handler(reply);
        }
        changed.notify_all();
    }

    // Queues a request; `handler` gets its reply on the I/O thread.
    std::int64_t send(json request, Handler handler) {
        std::int64_t id;
        {
            std::lock_guard guard(mutex);
            id = nextId++;
            pending.emplace(id, std::move(handler));
        }
        request["id"] = id;
        std::string line = dumpJson(request);
        line += '\n';
        asio::post(io, [this, line = std::move(line)]() mutable {
            if (open) write(std::move(line));
        });
        return id;
    }

    // Sends a request and waits for its reply. `apply`, when given, runs on
    // the I/O thread with a successful reply before the caller wakes, so
    // that state it sets is ordered with the events around it.
    bool request(json message, json* result, std::function<void(Reply&)> apply = nullptr,
                 bool needsHello = true) {
        if (!open || (needsHello && !ready)) {
            setError("not_connected", "not connected to a display server");
            return false;
        }
        auto promise = std::make_shared<std::promise<Reply>>();
        std::future<Reply> future = promise->get_future();
        const std::int64_t id = send(std::move(message), [promise, apply](Reply& reply) {
            if (reply.ok && apply) apply(reply);
            promise->set_value(std::move(reply));
        });
        if (future.wait_for(std::chrono::milliseconds(timeout())) != std::future_status::ready) {
            bool abandoned;
            {
                std::lock_guard guard(mutex);
                abandoned = pending.erase(id) == 1;
            }
            // Not abandoned: the reply came in just now and is being handed over.
            if (abandoned) {
                setError("timeout", "the display server did not answer in time");
                return false;
            }
        }
        Reply reply = future.get();
        if (!reply.ok) {
            setError(reply.error.code, reply.error.message);
            return false;
        }
        if (result) *result = std::move(reply.result);
        clearError();
        return true;
    }

    bool change(json message) {
        json result;
        if (!request(std::move(message), &result)) return false;
        std::lock_guard guard(mutex);
        if (result.is_object() && result.contains("seq") && result["seq"].is_number_integer())
            lastChangeSeq = result["seq"].get<std::int64_t>();
        return true;
    }
};

ProjectorClient::ProjectorClient() : m_impl(std::make_unique<Impl>()) {}

ProjectorClient::ProjectorClient(const ProjectorClient& other) : ProjectorClient() {
    *this = other;
}

ProjectorClient& ProjectorClient::operator=(const ProjectorClient& other) {
    if (this == &other) return *this;
    int timeout;
    String token;
    {
        std::lock_guard guard(other.m_impl->mutex);
        timeout = other.m_impl->timeoutMs;
        token = other.m_impl->token;
    }
    std::lock_guard guard(m_impl->mutex);
    m_impl->timeoutMs = timeout;
    m_impl->token = std::move(token);
    return *this;
}

ProjectorClient::~ProjectorClient() {
    // Not the virtual disconnect(): a subclass is gone by now.
    ProjectorClient::stop(true);
}

bool ProjectorClient::connect(const String& host, int port) {
    Impl& impl = *m_impl;
    // Held throughout, so that a disconnect() from another thread waits for
    // the connection to be made (or refused) and then ends it.
    std::lock_guard lifecycle(impl.lifecycle);
    impl.stopLocked();
    impl.clearError();
    if (port <= 0 || port > 65535) {
        impl.setError("connect_failed", "the port must be from 1 to 65535");
        return false;
    }
    impl.io.restart();
    impl.work.emplace(impl.io.get_executor());
    impl.socket = tcp::socket(impl.io);
    impl.readBuffer.consume(impl.readBuffer.size());
    {
        std::lock_guard guard(impl.mutex);
        impl.status = DisplayStatus();
        impl.lastEventSeq = -1;
        impl.lastChangeSeq = 0;
    }
    impl.thread = std::thread([this] { run(); });

    // Resolve and connect on the I/O thread, under a deadline.
    auto outcome = std::make_shared<std::promise<std::error_code>>();
    auto done = std::make_shared<std::atomic<bool>>(false);
    auto resolver = std::make_shared<tcp::resolver>(impl.io);
    auto finish = [outcome, done](std::error_code error) {
        if (!done->exchange(true)) outcome->set_value(error);
    };
    asio::post(impl.io, [&impl, resolver, finish, host, port] {
        resolver->async_resolve(
            host, std::to_string(port),
            [&impl, resolver, finish](std::error_code error,
                                      const tcp::resolver::results_type& results) {
                if (error) {
                    finish(error);
                    return;
                }
                asio::async_connect(impl.socket, results,
                                    [finish](std::error_code connectError, const tcp::endpoint&) {
                                        finish(connectError);
                                    });
            });
    });
    std::future<std::error_code> future = outcome->get_future();
    if (future.wait_for(std::chrono::milliseconds(impl.timeout())) != std::future_status::ready)
        finish(asio::error::timed_out);
    if (const std::error_code error = future.get()) {
        impl.setError("connect_failed", "cannot reach the display server at " + host + ":" +
                                            std::to_string(port) + ": " + error.message());
        asio::post(impl.io, [resolver] { resolver->cancel(); });
        impl.stopLocked();
        return false;
    }
    impl.open = true;
    asio::post(impl.io, [&impl] {
        std::error_code ignored;
        impl.socket.set_option(tcp::no_delay(true), ignored);
        impl.startReading();
    });

    String token;
    {
        std::lock_guard guard(impl.mutex);
        token = impl.token;
    }
    json hello = {{"op", "hello"}, {"versions", {ProtocolVersion}}, {"client", "melodex"}};
    if (!token.empty()) hello["token"] = token;
    if (!impl.request(std::move(hello), nullptr, nullptr, false)) {
        const ProjectorError error = lastError();
        impl.stopLocked();
        impl.setError(error.code, error.message);
        return false;
    }
    impl.ready = true;
    return true;
}

void ProjectorClient::disconnect() {
    stop(true);
}

bool ProjectorClient::isConnected() const {
    return m_impl->ready;
}

void ProjectorClient::run() {
    // No handler throws; should the library below, the thread ends cleanly
    // and the connection counts as lost.
    try {
        m_impl->io.run();
    } catch (...) {
        m_impl->open = false;
        m_impl->ready = false;
    }
}

void ProjectorClient::stop(bool wait) {
    std::lock_guard lifecycle(m_impl->lifecycle);
    m_impl->stopLocked(wait);
}

bool ProjectorClient::updateDisplayStatus() {
    return m_impl->request({{"op", "status"}}, nullptr,
                           [this](Reply& reply) { m_impl->applyStatus(reply); });
}

DisplayStatus ProjectorClient::displayStatus() const {
    std::lock_guard guard(m_impl->mutex);
    return m_impl->status;
}

bool ProjectorClient::setForegroundImage(const String& path, int mode,
                                         const DisplayTransition* transition) {
    return setImage(DisplayScreen::Main, DisplayLayer::Foreground, path, mode, transition);
}

bool ProjectorClient::setBackgroundImage(const String& path, int mode,
                                         const DisplayTransition* transition) {
    return setImage(DisplayScreen::Main, DisplayLayer::Background, path, mode, transition);
}

bool ProjectorClient::setImage(DisplayScreen screen, DisplayLayer layer, const String& path,
                               int mode, const DisplayTransition* transition) {
    return m_impl->change({{"op", "set_image"},
                           {"screen", screenName(screen)},
                           {"layer", layerName(layer)},
                           {"path", path},
                           {"mode", mode},
                           {"transition", transitionToJson(transition)}});
}

bool ProjectorClient::clear(DisplayScreen screen, bool all, DisplayLayer layer) {
    return m_impl->change({{"op", "clear"},
                           {"screen", screenName(screen)},
                           {"layer", all ? String("all") : layerName(layer)}});
}

bool ProjectorClient::blank(DisplayScreen screen, DisplayBlank mode) {
    return m_impl->change(
        {{"op", "blank"}, {"screen", screenName(screen)}, {"mode", blankName(mode)}});
}

bool ProjectorClient::blankAll(DisplayBlank mode) {
    return m_impl->change({{"op", "blank"}, {"mode", blankName(mode)}});
}

bool ProjectorClient::setStage(const DisplayStage& stage, DisplayScreen screen) {
    json message = json::parse(stage.toJson(), nullptr, false);
    message["op"] = "set_stage";
    message["screen"] = screenName(screen);
    return m_impl->change(std::move(message));
}

bool ProjectorClient::ping() {
    return m_impl->request({{"op", "ping"}}, nullptr);
}

bool ProjectorClient::getVersionInfo(String& info) {
    json result;
    if (!m_impl->request({{"op", "version"}}, &result)) return false;
    if (!result.is_object()) {
        m_impl->setError("bad_reply", "the version reply is not an object");
        return false;
    }
    const auto text = [&](const char* name) {
        const auto found = result.find(name);
        if (found == result.end()) return String("?");
        return found->is_string() ? found->get<String>() : found->dump();
    };
    info = text("server") + " " + text("version") + ", protocol " + text("protocol");
    return true;
}

bool ProjectorClient::shutdown() {
    if (!m_impl->request({{"op", "shutdown"}}, nullptr)) return false;
    disconnect();
    return true;
}

bool ProjectorClient::subscribe() {
    json result;
    if (!m_impl->request({{"op", "subscribe"}}, &result, [this](Reply& reply) {
            std::lock_guard guard(m_impl->mutex);
            if (reply.result.is_object() && reply.result.contains("seq") &&
                reply.result["seq"].is_number_integer())
                m_impl->lastEventSeq = reply.result["seq"].get<std::int64_t>();
        }))
        return false;
    return updateDisplayStatus();
}

std::int64_t ProjectorClient::lastChangeSeq() const {
    std::lock_guard guard(m_impl->mutex);
    return m_impl->lastChangeSeq;
}

bool ProjectorClient::waitUntilShown(DisplayScreen screen, std::int64_t seq, int timeoutMs) {
    std::unique_lock guard(m_impl->mutex);
    const bool shown = m_impl->changed.wait_for(guard, std::chrono::milliseconds(timeoutMs), [&] {
        return m_impl->status.screen(screen).shownSeq >= seq || !m_impl->open;
    });
    if (shown && m_impl->status.screen(screen).shownSeq >= seq) return true;
    m_impl->lastError = {"timeout",
                         "no page of the " + screenName(screen) + " screen showed it in time"};
    return false;
}

int ProjectorClient::timeoutMs() const {
    return m_impl->timeout();
}

void ProjectorClient::setTimeoutMs(int milliseconds) {
    std::lock_guard guard(m_impl->mutex);
    m_impl->timeoutMs = milliseconds > 0 ? milliseconds : DefaultTimeoutMs;
}

void ProjectorClient::setToken(const String& token) {
    std::lock_guard guard(m_impl->mutex);
    m_impl->token = token;
}

ProjectorError ProjectorClient::lastError() const {
    std::lock_guard guard(m_impl->mutex);
    return m_impl->lastError;
}

}  // namespace melodex
