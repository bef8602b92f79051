#pragma once

// The "song" commands of the melodex program:
//
//     melodex song show FILE [--transpose N]     print a song as a chord sheet
//     melodex song convert IN OUT [--type T]     write a song as song, txt or sng
//
// A command that fails prints the reason on stderr and ends the program with
// exit code 1 (it throws CLI::RuntimeError(1), which CLI::App::exit passes
// through without a message of its own).

namespace CLI {
class App;
}  // namespace CLI

namespace melodex::cli {

// Adds the "song" command group to the program's command line.
void addSongCommands(CLI::App& app);

}  // namespace melodex::cli
