// melodex-display: the display server. Turns any browser into the
// projection screen (/main) and the band's screen (/stage), driven by the
// presentation programs over the display protocol.

#include <cstdio>
#include <string>

#include <fmt/core.h>
#include <CLI/CLI.hpp>

#include "display_server.h"

int main(int argc, char** argv) {
    melodex::display::ServerOptions options;
    CLI::App app{
        "melodex-display: shows song text and images on the projection and stage screens, "
        "in any browser"};
    app.set_version_flag("--version", "melodex-display " MELODEX_VERSION);
    app.add_option("--address", options.address,
                   "address to listen on (default 127.0.0.1; any other needs --token)");
    app.add_option("--port", options.port,
                   "port for controllers (default 7430; 0 picks a free one)")
        ->check(CLI::Range(0, 65535));
    app.add_option("--http-port", options.httpPort,
                   "port for the screen pages (default 7431; 0 picks a free one)")
        ->check(CLI::Range(0, 65535));
    app.add_option("--token", options.token, "a secret that controllers and pages must give");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const int code = app.exit(error);
        return code == 0 ? 0 : 2;
    }

    melodex::display::DisplayServer server(options);
    std::string error;
    if (!server.listen(error)) {
        fmt::print(stderr, "melodex-display: {}\n", error);
        return 1;
    }
    // Programs that start the server read these two lines to learn the ports.
    const std::string host = options.address.find(':') != std::string::npos
                                 ? "[" + options.address + "]"
                                 : options.address;
    fmt::print("melodex-display {}: controllers on {}:{}\n", MELODEX_VERSION, host, server.port());
    fmt::print("screens: http://{}:{}/main http://{}:{}/stage\n", host, server.httpPort(), host,
               server.httpPort());
    std::fflush(stdout);
    server.run();
    return 0;
}
