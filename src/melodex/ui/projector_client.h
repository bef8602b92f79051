#pragma once

// A client of the display server (melodex-display), speaking the display
// protocol (docs/display-protocol.md): line-delimited JSON over TCP.
//
// The client runs its own I/O thread from connect() to disconnect(): it
// reads replies and events and writes requests while the calling threads
// wait for their replies. Every public function is thread-safe; requests
// from several threads are answered each to its own caller. A request
// waits at most timeoutMs() for its reply.
//
//     ProjectorClient client;
//     if (client.connect("127.0.0.1", 7430)) {
//         DisplayTransition fade = DisplayTransition::fade(500);
//         client.setBackgroundImage("/slides/sunrise.jpg", ImageMode::Fill, &fade);
//     }
//     if (!client.isConnected()) std::cerr << client.lastError().message << '\n';
//
// The client keeps the last status it received (updateDisplayStatus(), or
// the events that follow subscribe()): displayStatus() returns a copy.
// Failures are reported by return value; lastError() says why the last
// failed call of this client failed.

#include <cstdint>
#include <memory>

#include "melodex/foundation/text.h"
#include "melodex/ui/display_stage.h"
#include "melodex/ui/display_status.h"
#include "melodex/ui/display_transition.h"

namespace melodex {

// Why a request failed: a protocol error code ("not_found", "invalid_params"
// ...) with the server's message, or one of the client's own codes:
// "not_connected", "connect_failed", "timeout", "disconnected",
// "bad_reply".
struct ProjectorError {
    String code;
    String message;
    explicit operator bool() const { return !code.empty(); }
};

class ProjectorClient {
public:
    static constexpr int DefaultPort = 7430;
    static constexpr int ProtocolVersion = 1;

    ProjectorClient();
    // A copy is a new client, not connected, with the same timeout and token.
    ProjectorClient(const ProjectorClient& other);
    ProjectorClient& operator=(const ProjectorClient& other);
    // Disconnects and ends the client's thread.
    virtual ~ProjectorClient();

    // Connects and says hello; true when the server accepted. A client that
    // is connected already is disconnected first. Fails after timeoutMs()
    // when the server does not answer.
    virtual bool connect(const String& host, int port);
    // Closes the connection and ends the I/O thread; requests still waiting
    // fail with "disconnected".
    virtual void disconnect();
    bool isConnected() const;

    // Asks the server for its whole status and keeps it; false when not
    // connected or the server did not answer.
    bool updateDisplayStatus();
    // The status last received.
    DisplayStatus displayStatus() const;

    // Shows the image at `path` (absolute, on the server's machine) on the
    // main screen's foreground or background; an empty path clears the
    // layer. A null transition is a cut.
    bool setForegroundImage(const String& path, int mode, const DisplayTransition* transition);
    bool setBackgroundImage(const String& path, int mode, const DisplayTransition* transition);
    bool setImage(DisplayScreen screen, DisplayLayer layer, const String& path, int mode,
                  const DisplayTransition* transition);

    // Removes one layer's image, or both and the stage text (`all`).
    bool clear(DisplayScreen screen, bool all, DisplayLayer layer = DisplayLayer::Foreground);
    // Blanks one screen (DisplayBlank::None shows it again).
    bool blank(DisplayScreen screen, DisplayBlank mode);
    // Blanks every screen.
    bool blankAll(DisplayBlank mode);
    bool setStage(const DisplayStage& stage, DisplayScreen screen = DisplayScreen::Stage);
    bool ping();

    // "melodex-display 0.1.0, protocol 1"; false (and `info` unchanged) when
    // the server did not answer.
    virtual bool getVersionInfo(String& info);
    // Asks the server to end; the connection closes.
    virtual bool shutdown();

    // Receives the server's state events from now on and keeps the status
    // current with them (a missed event makes the client fetch the whole
    // status).
    bool subscribe();
    // The seq the server gave the last change this client made (set_image,
    // clear, blank, set_stage); 0 before any.
    std::int64_t lastChangeSeq() const;
    // Waits until a page of `screen` reports that it shows the state of
    // `seq` or a later one; needs subscribe(). False after `timeoutMs` or
    // when the connection drops.
    bool waitUntilShown(DisplayScreen screen, std::int64_t seq, int timeoutMs);

    int timeoutMs() const;
    void setTimeoutMs(int milliseconds);
    // The token that hello gives, for a server started with --token.
    void setToken(const String& token);

    ProjectorError lastError() const;

protected:
    // The I/O thread's body: runs until stop().
    virtual void run();
    // Ends the connection and the I/O thread; with `wait`, returns once the
    // thread has ended.
    virtual void stop(bool wait);

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace melodex
