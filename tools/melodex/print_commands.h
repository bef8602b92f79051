#pragma once

// Printing from the melodex program:
//
//     melodex [--data DIR] library list --pdf OUT.pdf   the library as a printed table
//                                                       (title, key, author), "-" for
//                                                       standard output
//
// Exit codes: 0 success, 1 failure (the reason on stderr), 2 usage.

#include <string>

namespace CLI {
class App;
}  // namespace CLI

namespace melodex::cli {

// Adds the printing options to the commands already on `app`: call it after
// addLibraryCommands(). The "--pdf" option of "library list" takes the
// command over when it is given, so the text listing stays as it is.
void addPrintCommands(CLI::App& app);

// Prints the open library's songs, in the order of the text listing, as a
// table to a PDF at `path` ("-" for standard output).
void printLibraryList(const std::string& path);

}  // namespace melodex::cli
