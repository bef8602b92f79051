#pragma once

// The "library" commands of the melodex program, and the global option that
// chooses the data folder they work on:
//
//     melodex [--data DIR] library import PATH...   copy song files into the library
//     melodex [--data DIR] library list             title, key, author and uuid of every song
//     melodex [--data DIR] library search TEXT      songs whose titles, first lines or
//                                                   index entries hold the text
//     melodex [--data DIR] library show ID-OR-TITLE a library song with its chords
//     melodex [--data DIR] library remove ID        take a song out (deletes the library's copy)
//
// Without --data the library is the configured one (theAppConfig); with it,
// DIR/"Song Database" and its "Song Files" folder, created when missing.
// Exit codes: 0 success, 1 failure (the reason on stderr), 2 usage.

#include "melodex/foundation/text.h"

namespace CLI {
class App;
}  // namespace CLI

namespace melodex {
class Song;
class SongDBFileEntry;
}  // namespace melodex

namespace melodex::cli {

// Adds the "library" command group.
void addLibraryCommands(CLI::App& app);

// Points theSongDB at the chosen data folder and opens it; when the
// configuration is unusable, says so and ends the command with exit code 1
// (throws CLI::RuntimeError(1)). The caller closes theSongDB.
void openSongLibrary();

// openSongLibrary() for the lifetime of a command: theSongDB is closed
// (saving its index when it changed) however the command ends.
class OpenLibrary {
public:
    OpenLibrary();
    OpenLibrary(const OpenLibrary&) = delete;
    OpenLibrary& operator=(const OpenLibrary&) = delete;
    ~OpenLibrary();
};

// The text a song is listed under: its title, else its first line (for a
// library entry, else its file name).
String listedTitle(const Song& song);
String listedTitle(const SongDBFileEntry& file);

}  // namespace melodex::cli
