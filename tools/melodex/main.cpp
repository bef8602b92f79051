// melodex: the command-line face of the library.

#include <fmt/core.h>
#include <CLI/CLI.hpp>

#include "bible_commands.h"
#include "command_line.h"
#include "library_commands.h"
#include "print_commands.h"
#include "profile_commands.h"
#include "set_commands.h"
#include "song_commands.h"

int main(int argc, char** argv) {
    CLI::App app{"melodex: songs, chords, song libraries and Bibles for church presentation"};
    app.set_version_flag("--version", "melodex " MELODEX_VERSION);
    app.require_subcommand(0);
    app.footer(
        "Exit status: 0 done; 1 failed (the reason is on standard error, naming the file and the "
        "system's reason); 2 a command line that cannot be taken. Wherever a command names a "
        "file, \"-\" means standard input or standard output.");
    melodex::cli::addDataOption(app);
    melodex::cli::addSongCommands(app);
    melodex::cli::addLibraryCommands(app);
    melodex::cli::addSetCommands(app);
    melodex::cli::addProfileCommands(app);
    melodex::cli::addPrintCommands(app);  // after the commands it adds options to
    melodex::cli::addBibleCommands(app);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Help and version end with 0 and a failed command with its own code
        // (it has said why already); any other parse error is a usage error.
        const int code = app.exit(error);
        if (code == melodex::cli::ExitDone || error.get_name() == "RuntimeError") return code;
        return melodex::cli::ExitUsage;
    }
    if (argc == 1) fmt::print("{}", app.help());
    return 0;
}
