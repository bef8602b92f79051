#pragma once

// The "bible" commands of the melodex program:
//
//     melodex [--data DIR] bible import PATH                 install a .bbl folder or an XML Bible
//     melodex [--data DIR] bible list                        title, books, verses, hidden, folder
//     melodex [--data DIR] bible show TITLE REFERENCE...     the verses, with their numbers
//     melodex [--data DIR] bible search TITLE WORDS...       verses that hold all the words
//     melodex [--data DIR] bible hide|unhide TITLE           set or clear the hidden mark
//     melodex [--data DIR] bible remove TITLE                uninstall (deletes its folder)
//
// TITLE is a Bible's title or its folder's name. Without --data the Bibles
// are the configured ones (theAppConfig); with it, DIR/"Bible Database".
// Only import creates folders: the other commands fail on a --data folder
// that does not exist. Exit codes: 0 success, 1 failure (the reason on
// stderr), 2 usage (also a reference that cannot be read).

namespace CLI {
class App;
}  // namespace CLI

namespace melodex::cli {

// Adds the "bible" command group.
void addBibleCommands(CLI::App& app);

}  // namespace melodex::cli
