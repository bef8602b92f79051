// The display connection on loopback: the round trip of a status request,
// and the time from setForegroundImage to the browser page reporting the
// new image on screen (headless Chromium showing the main screen).

#include <benchmark/benchmark.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "display_server_process.h"
#include "melodex/ui/display_connection.h"

namespace melodex {
namespace {

// The server, started once for all benchmarks.
test::DisplayServerProcess& server() {
    static test::DisplayServerProcess process;
    return process;
}

void statusRoundTrip(benchmark::State& state) {
    ProjectorClient client;
    if (!server().started() || !client.connect("127.0.0.1", server().port())) {
        state.SkipWithError("no display server");
        return;
    }
    for (auto _ : state) {
        if (!client.updateDisplayStatus()) state.SkipWithError("status failed");
    }
}
BENCHMARK(statusRoundTrip)->UseRealTime()->Unit(benchmark::kMicrosecond);

void pingRoundTrip(benchmark::State& state) {
    ProjectorClient client;
    if (!server().started() || !client.connect("127.0.0.1", server().port())) {
        state.SkipWithError("no display server");
        return;
    }
    for (auto _ : state) {
        if (!client.ping()) state.SkipWithError("ping failed");
    }
}
BENCHMARK(pingRoundTrip)->UseRealTime()->Unit(benchmark::kMicrosecond);

// Headless Chromium on the main screen page, ended with the benchmark.
class Browser {
public:
    explicit Browser(int httpPort) {
#ifdef MELODEX_CHROMIUM_PROGRAM
        const std::string profile =
            "--user-data-dir=/tmp/melodex-bench-" + std::to_string(getpid());
        const std::string url = "http://127.0.0.1:" + std::to_string(httpPort) + "/main";
        m_profile = profile.substr(16);
        const char* argv[] = {MELODEX_CHROMIUM_PROGRAM,
                              "--headless",
                              "--no-sandbox",
                              "--disable-gpu",
                              "--disable-quic",
                              "--no-first-run",
                              "--disable-background-networking",
                              "--disable-component-update",
                              "--disable-sync",
                              "--window-size=1280,720",
                              profile.c_str(),
                              url.c_str(),
                              nullptr};
        m_pid = fork();
        if (m_pid == 0) {
            prctl(PR_SET_PDEATHSIG, SIGTERM);
            const int null = open("/dev/null", O_WRONLY);
            dup2(null, STDOUT_FILENO);
            dup2(null, STDERR_FILENO);
            execv(argv[0], const_cast<char* const*>(argv));
            _exit(127);
        }
#else
        (void)httpPort;
#endif
    }
    ~Browser() {
        if (m_pid > 0) {
            kill(m_pid, SIGTERM);
            waitpid(m_pid, nullptr, 0);
        }
        if (!m_profile.empty()) std::system(("rm -rf '" + m_profile + "'").c_str());
    }
    bool started() const {
        return m_pid > 0;
    }

private:
    pid_t m_pid = -1;
    std::string m_profile;
};

void foregroundImageToPage(benchmark::State& state) {
    DisplayConnection display;
    if (!server().started() || !display.connect("127.0.0.1", server().port()) ||
        !display.subscribe()) {
        state.SkipWithError("no display server");
        return;
    }
    Browser browser(server().httpPort());
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (display.displayStatus().screen(DisplayScreen::Main).viewers < 1) {
        if (!browser.started() || std::chrono::steady_clock::now() > deadline) {
            state.SkipWithError("no browser showed the main screen");
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    CachedImage images[] = {CachedImage(MELODEX_TEST_DATA_DIR "/display/red.png"),
                            CachedImage(MELODEX_TEST_DATA_DIR "/display/blue.png")};
    int next = 0;
    for (auto _ : state) {
        if (!display.setForegroundImage(&images[next], ImageMode::Fill, nullptr) ||
            !display.waitUntilShown(DisplayScreen::Main, display.lastChangeSeq(), 5000)) {
            state.SkipWithError("the page did not show the image");
            return;
        }
        next = 1 - next;
    }
}
BENCHMARK(foregroundImageToPage)->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(40);

}  // namespace
}  // namespace melodex
