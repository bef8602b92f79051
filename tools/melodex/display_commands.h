#pragma once

// The "display" commands of the melodex program drive a running display
// server (melodex-display):
//
//     melodex display [--host H] [--port P] [--token T] status
//     melodex display image FILE [--background] [--mode M] [--fade MS] [--screen S]
//     melodex display clear [--layer foreground|background|all] [--screen S]
//     melodex display blank MODE [--screen S]      MODE: none, black, white, background
//     melodex display stage --song FILE [--section ID] [--transpose N]
//     melodex display shutdown
//
// Image paths are sent as absolute paths: the server reads the file itself.
// Exit codes: 0 done, 1 failed (the server or the connection said why, on
// stderr), 2 usage.

namespace CLI {
class App;
}  // namespace CLI

namespace melodex::cli {

// Adds the "display" command group.
void addDisplayCommands(CLI::App& app);

}  // namespace melodex::cli
