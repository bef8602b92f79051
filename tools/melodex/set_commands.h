#pragma once

// The "set" commands of the melodex program:
//
//     melodex [--data DIR] set show FILE [--chords]   the running order of a song set
//
// Songs the set takes from the library are looked up in the library that
// --data chooses (the configured one by default). Exit codes: 0 success, 1
// failure (the reason on stderr), 2 usage.

namespace CLI {
class App;
}  // namespace CLI

namespace melodex::cli {

// Adds the "set" command group.
void addSetCommands(CLI::App& app);

}  // namespace melodex::cli
