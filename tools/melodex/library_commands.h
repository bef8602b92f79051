#pragma once

// The "library" commands of the melodex program:
//
//     melodex [--data DIR] library import [-v] PATH...   copy song files into the library
//     melodex [--data DIR] library list [--json]         title, key, author and uuid of every song
//     melodex [--data DIR] library search TEXT           songs whose titles, first lines or
//                                                        index entries hold the text
//     melodex [--data DIR] library show ID-OR-TITLE      a library song with its chords
//     melodex [--data DIR] library remove ID             take a song out (deletes the library's
//     copy)
//
// Without --data the library is the configured one (theAppConfig); with it,
// DIR/"Song Database" and its "Song Files" folder.

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

// Whether a command only looks at the library or changes it. Looking
// creates no folder and no file, and a library that is not there is an
// error; changing takes the library's lock (waiting for another program,
// with a message) and creates the library when it is missing.
enum class LibraryAccess { Read, Write };

// Points theSongDB at the chosen data folder and opens it; when the
// configuration is unusable, the library is missing (for reading) or cannot
// be read or locked, says so and ends the command with exit code 1 (throws
// CLI::RuntimeError(1)). The caller closes theSongDB.
void openSongLibrary(LibraryAccess access);

// openSongLibrary() for the lifetime of a command: theSongDB is closed
// (saving its index when it changed) however the command ends.
class OpenLibrary {
public:
    explicit OpenLibrary(LibraryAccess access = LibraryAccess::Read);
    OpenLibrary(const OpenLibrary&) = delete;
    OpenLibrary& operator=(const OpenLibrary&) = delete;
    ~OpenLibrary();
};

// The text a song is listed under: its title, else its first line (for a
// library entry, else its file name).
String listedTitle(const Song& song);
String listedTitle(const SongDBFileEntry& file);

}  // namespace melodex::cli
