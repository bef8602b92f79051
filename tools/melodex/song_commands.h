#pragma once

// The "song" commands of the melodex program:
//
//     melodex song show FILE [--transpose N]     print a song as a chord sheet
//     melodex song convert IN OUT [--type T]     write a song as song, txt or sng
//
// FILE, IN and OUT may be "-" for standard input or output; the format of
// what is read is found from its content. OUT's extension chooses the type
// (.song and .xml the song layout, .txt, .sng; none: the song layout); any
// other extension is refused unless --type says what to write. A type that
// cannot hold all of the song (chords, information ...) is written with a
// warning on standard error that names what is dropped. Exit codes: 0 done,
// 1 failed (the reason on standard error), 2 usage.

#include <string>

#include "melodex/song/song.h"

namespace CLI {
class App;
}  // namespace CLI

namespace melodex::cli {

// The song in a file, or on standard input for "-", whatever its format;
// ends the command with status 1 when it cannot be read or holds no song.
Song readSong(const std::string& path);

// Adds the "song" command group to the program's command line.
void addSongCommands(CLI::App& app);

}  // namespace melodex::cli
