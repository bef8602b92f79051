#include "melodex/music/notes.h"

#include <array>

namespace melodex {
namespace {

struct NoteName {
    std::string_view name;
    int number;
};

constexpr std::array<NoteName, 17> NoteTable = {{
    {"C", 0},
    {"C#", 1},
    {"Db", 1},
    {"D", 2},
    {"D#", 3},
    {"Eb", 3},
    {"E", 4},
    {"F", 5},
    {"F#", 6},
    {"Gb", 6},
    {"G", 7},
    {"G#", 8},
    {"Ab", 8},
    {"A", 9},
    {"A#", 10},
    {"Bb", 10},
    {"B", 11},
}};

// Rows are keys, columns notes. The rows are the spelling that printed song
// sheets of these programs have always used; several look inconsistent (the
// key of F writes F# but Bb), and musicians' files and printouts depend on
// them, so they are kept as they are.
constexpr std::array<std::array<std::string_view, 12>, 12> ChordSpelling = {{
    {"C", "C#", "D", "Eb", "E", "F", "F#", "G", "G#", "A", "Bb", "B"},  // C
    {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "Bb", "B"},  // C#/Db
    {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "Bb", "B"},  // D
    {"C", "C#", "D", "Eb", "E", "F", "Gb", "G", "Ab", "A", "Bb", "B"},  // Eb
    {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "Bb", "B"},  // E
    {"C", "C#", "D", "Eb", "E", "F", "F#", "G", "Ab", "A", "Bb", "B"},  // F
    {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "Bb", "B"},  // F#/Gb
    {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "Bb", "B"},  // G
    {"C", "Db", "D", "Eb", "E", "F", "Gb", "G", "Ab", "A", "Bb", "B"},  // Ab
    {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "Bb", "B"},  // A
    {"C", "C#", "D", "Eb", "E", "F", "Gb", "G", "Ab", "A", "Bb", "B"},  // Bb
    {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "Bb", "B"},  // B
}};

// Keys have a spelling of their own, which differs from chord row 0 in note 8
// (a key of "Ab", a chord of "G#").
constexpr std::array<std::string_view, 12> KeySpelling = {"C",  "C#", "D",  "Eb", "E",  "F",
                                                          "F#", "G",  "Ab", "A",  "Bb", "B"};

}  // namespace

LeadingNote leadingNote(std::string_view text) {
    if (text.empty()) return {};
    // Every note name is ASCII, so looking at bytes is enough: a text that
    // starts with a multi-byte character matches nothing either way.
    const std::size_t length = text.size() >= 2 && (text[1] == '#' || text[1] == 'b') ? 2 : 1;
    const std::string_view candidate = text.substr(0, length);
    for (const NoteName& note : NoteTable) {
        if (note.name == candidate) return {note.number, length};
    }
    return {};
}

int noteNumber(std::string_view text) {
    return leadingNote(text).number;
}

int noteNumber(std::string_view text, String& rest) {
    const LeadingNote note = leadingNote(text);
    rest.assign(text.substr(note.length));
    return note.number;
}

std::string_view chordNoteName(int key, int note) {
    return ChordSpelling[std::size_t(wrapNote(key))][std::size_t(wrapNote(note))];
}

std::string_view keyNoteName(int note) {
    return KeySpelling[std::size_t(wrapNote(note))];
}

bool isChords(std::string_view line) {
    int chordTokens = 0;
    int wordTokens = 0;
    std::size_t pos = 0;
    while (pos < line.size()) {
        // Runs of blanks are one separator: an empty token is neither a chord
        // nor a word, as the chord splitter also sees it.
        const std::size_t start = line.find_first_not_of(" \t", pos);
        if (start == std::string_view::npos) break;
        std::size_t end = line.find_first_of(" \t", start);
        if (end == std::string_view::npos) end = line.size();
        if (leadingNote(line.substr(start, end - start)).number >= 0) {
            ++chordTokens;
        } else {
            ++wordTokens;
        }
        pos = end;
    }
    return chordTokens > 0 && chordTokens > wordTokens;
}

}  // namespace melodex
