// melodex: the command-line face of the library.

#include <CLI/CLI.hpp>
#include <fmt/core.h>

int main(int argc, char** argv) {
    CLI::App app{"melodex: songs, chords, song libraries and Bibles for church presentation"};
    app.set_version_flag("--version", "melodex " MELODEX_VERSION);
    app.require_subcommand(0);

    CLI11_PARSE(app, argc, argv);
    if (argc == 1) fmt::print("{}", app.help());
    return 0;
}
