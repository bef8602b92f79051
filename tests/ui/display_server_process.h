#pragma once

// The real display server for one test: melodex-display started on
// loopback with ports the system picks, read from its first lines, and
// ended (SIGTERM, then SIGKILL) when the object dies. Plus a raw line
// client, for what ProjectorClient never sends.

#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace melodex::test {

class DisplayServerProcess {
public:
    // Starts the server with `options` added to its command line;
    // started() is false (and the reason in error()) when it did not come
    // up within five seconds.
    explicit DisplayServerProcess(const std::vector<std::string>& options = {});
    DisplayServerProcess(const DisplayServerProcess&) = delete;
    DisplayServerProcess& operator=(const DisplayServerProcess&) = delete;
    ~DisplayServerProcess();

    bool started() const { return m_port > 0; }
    const std::string& error() const { return m_error; }
    int port() const { return m_port; }
    int httpPort() const { return m_httpPort; }

    // Waits up to `timeoutMs` for the server to end by itself; its exit
    // status, or -1 when it is still running.
    int waitForExit(int timeoutMs);

private:
    pid_t m_pid = -1;
    int m_port = 0;
    int m_httpPort = 0;
    std::string m_error;
};

// A TCP connection that sends bytes and reads lines, each read bounded in
// time.
class LineClient {
public:
    explicit LineClient(int port);
    LineClient(const LineClient&) = delete;
    LineClient& operator=(const LineClient&) = delete;
    ~LineClient();

    bool isOpen() const { return m_socket >= 0; }
    bool send(std::string_view bytes);
    // The next line without its LF; empty when none came within `timeoutMs`
    // or the connection closed.
    std::string readLine(int timeoutMs = 3000);
    // Sends `line` with an LF and reads the reply line.
    std::string request(std::string_view line);
    void close();

private:
    int m_socket = -1;
    std::string m_buffer;
};

}  // namespace melodex::test
