#pragma once

// The chords of one song as a display profile shows them: the shifts in
// force (the song shown transposed, the profile's own transposition, its
// local transposition for the key, a capo) settled once, and every chord
// spelled in the key of the song as shown.
//
//     SongDisplayProfile* profile = SongDisplayProfile::getProfileByName("Chords", 0);
//     ChordDisplay display(*profile, song.info(), 0, 3);  // capo on fret 3
//     display(SongChord("F"));    // "D": the shape played (or "F(D)" with
//                                 // capoChordsInBrackets: sounding chord first)
//
// A ChordDisplay is a function object from a chord to its text, so it can
// be handed to anything that asks for one (std::function<String(const
// SongChord&)>). It keeps a pointer to the profile, which must outlive it,
// and sets the profile's current key before each chord, so that several
// displays may share one profile.
//
// Capo positions here are frets, as musicians count them (0 for none);
// SongChord::getDisplayString takes the opposite sign, and this class does
// the turning: fret 3 is passed as -3.

#include <optional>

#include "melodex/foundation/text.h"
#include "melodex/song/chord_sheet.h"

namespace melodex {

class Song;
class SongChord;
class SongDisplayProfile;
class SongInfo;

class ChordDisplay {
public:
    // `songKey` is the note number of the song's key as stored
    // (SongInfo::keyNumber(0, false)); `transpose` the semitones the song is
    // shown moved by, to which the profile's own transposition is added.
    // `capoFret` is the fret of the capo, 0 for none; without one, the
    // profile's capo position when it has one, else the profile's default
    // capo for the key shown. `localTranspose` is the local transposition
    // of this use (a song set entry's); without it, the profile's default
    // for the key shown.
    ChordDisplay(SongDisplayProfile& profile, int songKey, int transpose = 0,
                 std::optional<int> capoFret = std::nullopt,
                 std::optional<int> localTranspose = std::nullopt);

    // The same with the key read from the song's information; a key text
    // that names no note counts as C.
    ChordDisplay(SongDisplayProfile& profile, const SongInfo& info, int transpose = 0,
                 std::optional<int> capoFret = std::nullopt,
                 std::optional<int> localTranspose = std::nullopt);

    // The chord's text under the profile; empty for an invalid chord, and
    // for every chord when the profile shows neither chords nor bass notes.
    String operator()(const SongChord& chord) const;

    // The key the chords are spelled in (0 to 11): the song's key after
    // transposition and local transposition.
    int key() const { return m_key; }
    // The semitones chords move, the caller's and the profile's together,
    // taken modulo 12 (0 to 11).
    int transpose() const { return m_transpose; }
    int localTranspose() const { return m_localTranspose; }
    int capoFret() const { return m_capoFret; }

private:
    SongDisplayProfile* m_profile;
    int m_key = 0;
    int m_transpose = 0;
    int m_localTranspose = 0;
    int m_capoFret = 0;
};

// How one use of a song shows it: the shifts and the capo of that use.
struct ChordDisplayOptions {
    int transpose = 0;                  // semitones the song is shown moved by
    std::optional<int> capoFret;        // see ChordDisplay
    std::optional<int> localTranspose;  // see ChordDisplay
    // The running order; empty: the plain-text sheet prints every section
    // once, a SongLayout follows the song's own running order.
    String sequence;
};

// The options that print `song` as a plain-text chord sheet under `profile`:
// every chord spelled by a ChordDisplay in the key of the song as shown
// (nothing for a profile that shows no chords, only bass notes for a bass
// profile), the key shown after the caller's and the profile's
// transposition, and the capo fret in force given as the sheet's capo. The
// profile must outlive the options.
//
//     String sheet = chordSheet(song, chordSheetOptions(*profile, song, {.capoFret = 3}));
ChordSheetOptions chordSheetOptions(SongDisplayProfile& profile, const Song& song,
                                    const ChordDisplayOptions& options = {});

}  // namespace melodex
