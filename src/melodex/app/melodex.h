#pragma once

// The application services object of the programs (its one instance is the
// global theBaseApp): string tables and the conversions
// between codes and words, note names and chord lines.
//
//     theBaseApp.addStringTable(folder + "/Melodex.ini", true);
//     theBaseApp.getSectionTypeFromString("Chorus");  // 2
//     theBaseApp.getNoteNumber("Bbm", rest);          // 10, rest "m"
//
// The members forward to free functions (song/vocabulary.h, music/notes.h,
// music/song_chord.h, app/string_tables.h), which the model uses directly.
// The conversions keep no state; the string tables are the process's.

#include <vector>

#include "melodex/foundation/text.h"
#include "melodex/music/song_chord.h"

namespace melodex {

class Melodex {
public:
    Melodex() = default;
    Melodex(const Melodex&) = delete;
    Melodex& operator=(const Melodex&) = delete;
    virtual ~Melodex() = default;

    // --- Vocabulary ----------------------------------------------------------

    // Singer word to code; 0 for an unknown word.
    int getSingerType(const String& word) const;
    // Singer code to word; "Default" for an unknown code.
    String getSingerTypeAsString(int singers) const;
    // Section code to word; "Verse" for an unknown code.
    String getSectionTypeAsString(int type) const;
    // Section word to code; 1 for an unknown word.
    int getSectionTypeFromString(const String& word) const;
    // Target bits to words joined by `separator`; "All" for 0 and 7.
    String getTargetAsString(int bits, const String& separator) const;
    // ","-separated words to target bits; "All" gives 0.
    int getTargetFromString(const String& words) const;
    // The older text-style conversions; not inverses of each other.
    int getTextStyle(const String& word) const;
    String getTextStyleAsString(int style) const;

    // --- Notes and chords ----------------------------------------------------

    // The note number at the start of `text` (-1 when none); `rest`
    // receives the text without the note name.
    int getNoteNumber(const String& text, String& rest) const;
    int getNoteNumber(const String& text) const;
    bool isChords(const String& line) const;
    // Appends the chords of a line of chords.
    void convertToChords(const String& line, std::vector<SongChord>& chords) const;

    // --- String tables -------------------------------------------------------

    // Registers a table file; a missing file is ignored. With `flag` the
    // table is searched before those registered earlier.
    void addStringTable(const String& path, bool flag);
    String loadString(const String& section, const String& id, const String& defaultText) const;
};

// The one instance, defined with the other globals (globals.h).
extern Melodex theBaseApp;

}  // namespace melodex
