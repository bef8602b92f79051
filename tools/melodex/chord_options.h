#pragma once

// How the commands that print or draw songs show their chords: the display
// profile (--profile NAME, "Chords" unless given) and a capo (--capo FRET).
// song show, library show, set show, song render and set render all take
// them from here, so that each spells chords by the same rule: through the
// profile, in the key of the song as shown.
//
//     auto chords = std::make_shared<ChordOptions>();
//     addProfileOption(*command, *chords);
//     addCapoOption(*command, *chords);
//     ...
//     fmt::print("{}", chordSheet(song, chordSheetOptions(song, *chords, transpose)));
//
// Looking a profile up writes nothing: the profiles folder is read as it is
// (ProfileAccess::Read), so showing a song never creates files.

#include <optional>
#include <string>

#include "melodex/display/chord_display.h"
#include "melodex/song/chord_sheet.h"

namespace CLI {
class App;
}  // namespace CLI

namespace melodex {
class Song;
class SongDisplayProfile;
}  // namespace melodex

namespace melodex::cli {

struct ChordOptions {
    std::string profile = "Chords";
    std::optional<int> capo;  // a fret; not given: the profile's own capo rule
};

// --profile NAME.
void addProfileOption(CLI::App& command, ChordOptions& options);
// --capo FRET, with its sign convention and an example in the help.
void addCapoOption(CLI::App& command, ChordOptions& options);

// The profile --profile names, for the targets in `preferredTargets` when
// one of that name is (a printed page prefers the print profile of a name
// that several share), else of any target. Ends the command with status 1
// when no profile has that name.
SongDisplayProfile& chosenProfile(const ChordOptions& options, int preferredTargets = 0);

// How the command shows a song: the chosen profile's spelling, the
// command's transposition and capo.
ChordSheetOptions chordSheetOptions(const Song& song, const ChordOptions& options, int transpose);

}  // namespace melodex::cli
