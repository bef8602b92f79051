#include "display_server_process.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <thread>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace melodex::test {

namespace {

using Clock = std::chrono::steady_clock;

int remainingMs(Clock::time_point deadline) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return left > 0 ? int(left) : 0;
}

}  // namespace

DisplayServerProcess::DisplayServerProcess(const std::vector<std::string>& options) {
#ifdef MELODEX_DISPLAY_PROGRAM
    int out[2];
    if (pipe(out) != 0) {
        m_error = "pipe failed";
        return;
    }
    const char* program = MELODEX_DISPLAY_PROGRAM;
    std::vector<std::string> words = {program, "--port", "0", "--http-port", "0"};
    words.insert(words.end(), options.begin(), options.end());
    std::vector<char*> argv;
    for (std::string& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    m_pid = fork();
    if (m_pid == 0) {
        // The server ends with the test, even one that dies without
        // running its destructors.
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        dup2(out[1], STDOUT_FILENO);
        ::close(out[0]);
        ::close(out[1]);
        execv(program, argv.data());
        _exit(127);
    }
    ::close(out[1]);
    if (m_pid < 0) {
        ::close(out[0]);
        m_error = std::string("cannot start ") + program + ": " + std::strerror(errno);
        return;
    }
    // The two first lines name the ports.
    std::string output;
    const auto deadline = Clock::now() + std::chrono::seconds(5);
    while (output.find("/stage") == std::string::npos) {
        pollfd wait{out[0], POLLIN, 0};
        if (poll(&wait, 1, remainingMs(deadline)) <= 0) break;
        char chunk[512];
        const ssize_t got = read(out[0], chunk, sizeof chunk);
        if (got <= 0) break;
        output.append(chunk, std::size_t(got));
    }
    ::close(out[0]);
    int port = 0;
    int httpPort = 0;
    const std::size_t control = output.find("controllers on 127.0.0.1:");
    const std::size_t screens = output.find("http://127.0.0.1:");
    if (control != std::string::npos && screens != std::string::npos &&
        std::sscanf(output.c_str() + control, "controllers on 127.0.0.1:%d", &port) == 1 &&
        std::sscanf(output.c_str() + screens, "http://127.0.0.1:%d", &httpPort) == 1) {
        m_port = port;
        m_httpPort = httpPort;
    } else {
        m_error = "the server said: " + output;
    }
#else
    (void)options;
    m_error = "built without the display server";
#endif
}

DisplayServerProcess::~DisplayServerProcess() {
    if (m_pid <= 0) return;
    kill(m_pid, SIGTERM);
    if (waitForExit(3000) == -1) {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
}

int DisplayServerProcess::waitForExit(int timeoutMs) {
    if (m_pid <= 0) return -1;
    const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
    do {
        int status = 0;
        if (waitpid(m_pid, &status, WNOHANG) == m_pid) {
            m_pid = -1;
            return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    } while (Clock::now() < deadline);
    return -1;
}

LineClient::LineClient(int port) {
    m_socket = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (m_socket < 0) return;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        close();
        return;
    }
    int on = 1;
    setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

LineClient::~LineClient() {
    close();
}

bool LineClient::send(std::string_view bytes) {
    while (!bytes.empty() && m_socket >= 0) {
        const ssize_t sent = ::send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0) return false;
        bytes.remove_prefix(std::size_t(sent));
    }
    return m_socket >= 0;
}

std::string LineClient::readLine(int timeoutMs) {
    const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
    std::size_t end;
    while ((end = m_buffer.find('\n')) == std::string::npos) {
        if (m_socket < 0) return {};
        pollfd wait{m_socket, POLLIN, 0};
        if (poll(&wait, 1, remainingMs(deadline)) <= 0) return {};
        char chunk[4096];
        const ssize_t got = recv(m_socket, chunk, sizeof chunk, 0);
        if (got <= 0) return {};
        m_buffer.append(chunk, std::size_t(got));
    }
    std::string line = m_buffer.substr(0, end);
    m_buffer.erase(0, end + 1);
    return line;
}

std::string LineClient::request(std::string_view line) {
    if (!send(std::string(line) + "\n")) return {};
    return readLine();
}

void LineClient::close() {
    if (m_socket >= 0) ::close(m_socket);
    m_socket = -1;
}

}  // namespace melodex::test
