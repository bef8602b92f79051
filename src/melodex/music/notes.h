#pragma once

// Note names and numbers: reading a note name at the start of a text,
// spelling note numbers for chords and keys, and judging whether a line of
// plain text is a line of chords.
//
// A note number counts semitones up from C (0 to 11); -1 means no note.
// Transposed chords may carry 12, which every reader takes modulo 12.
//
//     leadingNote("Bbm7");     // {10, 2}: Bb, two bytes long
//     noteNumber("Amazing");   // 9: any text that starts with a note name
//     chordNoteName(0, 8);     // "G#" (chords), while keyNoteName(8) is "Ab"
//     isChords("C G Am F");    // true

#include <cstddef>
#include <string_view>

#include "melodex/foundation/text.h"

namespace melodex {

// A note name found at the start of a text.
struct LeadingNote {
    int number = -1;         // -1 when the text does not start with a note name
    std::size_t length = 0;  // bytes of the name; 0 when there is none
};

// The note name that starts `text`: one of the seventeen names C, C#, Db,
// D ... Bb, B. Only the first character, or the first two when the second is
// "#" or "b", are looked at, and there is no fall-back to one character: "Cb"
// gives no note although "C" is one. Matching is case-sensitive: "c", "H",
// "Fb", "E#" and "B#" are not notes.
LeadingNote leadingNote(std::string_view text);

// The number of the note name that starts `text`, or -1.
int noteNumber(std::string_view text);

// The same; `rest` receives the text without the note name (the whole text
// when there is none).
int noteNumber(std::string_view text, String& rest);

// How chords spell `note` in the key whose root is `key`; both are taken
// modulo 12 (negative values too). The rows are the house spelling, irregular
// on purpose (no key spells note 10 as "A#").
std::string_view chordNoteName(int key, int note);

// How key names spell a note (taken modulo 12): C C# D Eb E F F# G Ab A Bb B.
std::string_view keyNoteName(int note);

// True when the line, split at blanks and tabs, holds more tokens that start
// with a note name than tokens that do not; a tie, or no note token, is not
// chords.
bool isChords(std::string_view line);

// `value` modulo 12 as a non-negative remainder (-1 gives 11).
constexpr int wrapNote(long long value) {
    const long long rest = value % 12;
    return int(rest < 0 ? rest + 12 : rest);
}

}  // namespace melodex
