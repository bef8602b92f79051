#include "chord_options.h"

#include <CLI/CLI.hpp>

#include "melodex/display/song_display_profile.h"
#include "profile_commands.h"

namespace melodex::cli {

namespace {

bool& profilesRead() {
    static bool read = false;
    return read;
}

}  // namespace

void addProfileOption(CLI::App& command, ChordOptions& options) {
    command.add_option("-p,--profile", options.profile,
                       "the display profile that says how chords show (default Chords; Words "
                       "shows none, Bass only bass notes; \"melodex profile list\" lists them)");
}

void addCapoOption(CLI::App& command, ChordOptions& options) {
    // The chord display takes the capo as a shift (-3 for fret 3); people
    // count frets, so the command line does, and the library turns it.
    command
        .add_option("--capo", options.capo,
                    "the fret of the capo (0 for none): chords show as played with it, e.g. "
                    "--capo 3 shows a song's F as the D shape, or as \"F(D)\" (sounding chord "
                    "first) under a profile that puts capo chords in brackets. Default: the "
                    "profile's capo rule (none for Chords)")
        ->check(CLI::Range(0, 11));
}

SongDisplayProfile& chosenProfile(const ChordOptions& options, int preferredTargets) {
    if (!profilesRead()) {
        loadProfiles(ProfileAccess::Read);
        profilesRead() = true;
    }
    if (preferredTargets != 0) {
        if (SongDisplayProfile* profile =
                SongDisplayProfile::getProfileByName(options.profile, preferredTargets)) {
            return *profile;
        }
    }
    return profileNamed(options.profile, 0);
}

ChordSheetOptions chordSheetOptions(const Song& song, const ChordOptions& options, int transpose) {
    ChordDisplayOptions display;
    display.transpose = transpose;
    display.capoFret = options.capo;
    return melodex::chordSheetOptions(chosenProfile(options), song, display);
}

}  // namespace melodex::cli
