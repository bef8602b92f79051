#pragma once

// A chord of a song line: root note, optional bass note after a slash, the
// rest of the symbol kept verbatim (its postfix) and the character offset in
// the line's text above which it stands.
//
//     SongChord chord("F#m7/C#", 4);  // chord 6, postfix "m7", bass 1, offset 4
//     chord.toString(2, false);       // "G#m7/Eb"
//     chord.toString(2, true);        // "F#m7/C#(G#m7/Eb)"
//
// The postfix is not checked against any grammar of chord qualities: "Cxyz"
// is a valid C chord with postfix "xyz". A symbol that does not start with a
// note name gives an invalid chord (chord and bass -1, empty postfix).
// Offsets count code points, so a chord over the "s" of "Jésus" is at 3.

#include <string_view>
#include <vector>

#include "melodex/foundation/text.h"

namespace melodex {

class SongDisplayProfile;

class SongChord {
public:
    explicit SongChord(std::string_view symbol = {}, int offset = 0);

    // Parses a chord symbol; the offset is kept.
    SongChord& operator=(std::string_view symbol);

    int chord() const { return m_chord; }  // root note; -1 when not valid
    int bass() const { return m_bass; }    // bass note; -1 when there is none
    const String& postfix() const { return m_postfix; }
    int offset() const { return m_offset; }
    void offset(int offset) { m_offset = offset; }
    bool isValid() const { return m_chord >= 0; }

    // The symbol spelled with the chord spelling of C. A transposition below
    // 0 is brought into 0 to 11. With a transposition and `showBoth`, the
    // chord as stored comes first and the transposed one follows in brackets,
    // with nothing between them: "Am7/G(Bm7/A)". Empty for an invalid chord.
    String toString(int transpose = 0, bool showBoth = false) const;

    // The text drawn for the chord under a display profile: moved by
    // `transpose` + `localTranspose` semitones and spelled from the profile's
    // table in its current key (set it to the key of the song as shown). A
    // non-zero `capo` is added to the notes, and the spelling row moves with
    // it: for a capo on fret f pass -f, so that F with -3 shows the D shape.
    // The profile's flags choose what shows: with showChords the chord
    // ("F", or "F(D)" with capoChordsInBrackets and a capo: sounding chord
    // first), else with showBass only the bass note (the root when there is
    // none), else nothing. Empty for an invalid chord or a null profile.
    // Defined with the profile (display/chord_display.cpp).
    String getDisplayString(const SongDisplayProfile* profile, int transpose, int localTranspose,
                            int capo) const;

    // Moves root and bass. The root moves even when the chord is invalid (it
    // then becomes valid with an empty postfix), and the result may be 12,
    // which readers take as C: values above 12, not 12 itself, are wrapped.
    void transpose(int semitones);

    // The note number at the start of `text`, which loses the note name
    // when one is found.
    static int getNoteNumber(String& text);

    // The note number at the start of `text`.
    static int noteNumber(std::string_view text);

    friend bool operator==(const SongChord&, const SongChord&) = default;

private:
    int m_chord = -1;
    int m_bass = -1;
    String m_postfix;
    int m_offset = 0;
};

// Appends to `chords` the chords of a line of chords: each token (split at
// blanks and tabs) that starts with a note name becomes a chord at the
// code-point position of its first character; other tokens are dropped.
// `chords` is not cleared first.
void convertToChords(std::string_view line, std::vector<SongChord>& chords);

}  // namespace melodex
