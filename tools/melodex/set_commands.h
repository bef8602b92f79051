#pragma once

// The "set" commands of the melodex program:
//
//     melodex [--data DIR] set show FILE [--chords] [--json]   the running order of a song set
//
// Songs the set takes from the library are looked up in the library that
// --data chooses (the configured one by default). An entry whose song cannot
// be found (not in the library, a missing or unreadable file) is listed as
// missing in its place, with a warning on standard error, and the command
// ends with 1. --chords prints each song as a chord sheet in the running
// order of its entry; --json prints the same as one JSON object. Exit codes:
// 0 done, 1 failed or songs missing (the reasons on standard error), 2 usage.

namespace CLI {
class App;
}  // namespace CLI

namespace melodex::cli {

// Adds the "set" command group.
void addSetCommands(CLI::App& app);

}  // namespace melodex::cli
