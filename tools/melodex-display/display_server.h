#pragma once

// The display server: keeps the state of the projection screen (main) and
// the band's screen (stage), takes requests from controllers as
// line-delimited JSON over TCP, and serves each screen as a web page that
// follows the state over a WebSocket (docs/display-protocol.md).
//
// Everything runs on the thread that calls run(): the state needs no lock,
// and a slow or broken peer only ever delays itself.

#include <memory>
#include <string>

namespace melodex::display {

struct ServerOptions {
    std::string address = "127.0.0.1";
    int port = 7430;      // control: JSON lines; 0 picks a free port
    int httpPort = 7431;  // pages, images and WebSocket; 0 picks a free port
    std::string token;    // required in hello and page URLs when not empty
};

class DisplayServer {
public:
    explicit DisplayServer(ServerOptions options);
    DisplayServer(const DisplayServer&) = delete;
    DisplayServer& operator=(const DisplayServer&) = delete;
    ~DisplayServer();

    // Binds both ports; false with the reason in `error`.
    bool listen(std::string& error);
    int port() const;
    int httpPort() const;

    // Serves until a shutdown request, stop() or SIGINT/SIGTERM.
    void run();
    // Ends run(); may be called from any thread.
    void stop();

    struct Impl;  // the server's state and connections; display_server.cpp only

private:
    std::unique_ptr<Impl> m_impl;
};

}  // namespace melodex::display
