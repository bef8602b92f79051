// Chords: parse, print, transpose. The first four bytes are a transposition
// (any int, little-endian), the rest a chord symbol and, read as a line of
// chords, a chord row. Checks that a chord prints as a symbol that parses
// back to it, that printing transposed equals transposing then printing,
// that transposing there and back returns the chord, and that a chord row
// gives valid chords in order at positions within the row.

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "fuzz_support.h"
#include "melodex/music/notes.h"
#include "melodex/music/song_chord.h"
#include "melodex/music/song_info.h"

using namespace melodex;

namespace {

bool sameNotes(const SongChord& a, const SongChord& b) {
    return wrapNote(a.chord()) == wrapNote(b.chord()) && a.postfix() == b.postfix() &&
           (a.bass() < 0 ? b.bass() < 0 : wrapNote(a.bass()) == wrapNote(b.bass()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 4) return 0;
    const int transposition = int(std::uint32_t(data[0]) | std::uint32_t(data[1]) << 8 |
                                  std::uint32_t(data[2]) << 16 | std::uint32_t(data[3]) << 24);
    const std::string_view symbol(reinterpret_cast<const char*>(data) + 4, size - 4);
    const String where = fuzz::printable(symbol) + " by " + std::to_string(transposition);

    const SongChord chord(symbol, 3);
    const String printed = chord.toString(0, false);
    if (!chord.isValid()) {
        FUZZ_CHECK(printed.empty() && chord.toString(transposition, true).empty(), where);
    } else {
        FUZZ_CHECK(SongChord(printed, 3) == chord, where + " printed " + fuzz::printable(printed));

        SongChord moved = chord;
        moved.transpose(transposition);
        FUZZ_CHECK(moved.isValid() && moved.chord() <= 12 && moved.bass() <= 12, where);
        const String movedText = chord.toString(transposition, false);
        FUZZ_CHECK(movedText == moved.toString(0, false), where);
        if (wrapNote(transposition) != 0) {
            FUZZ_CHECK(chord.toString(transposition, true) == printed + "(" + movedText + ")",
                       where);
        }
        // A postfix that begins with a sharp or flat sign joins a one-letter
        // root to a two-letter name ("Db" + "b" moved up one is "D" + "b"):
        // the notation cannot tell these apart, so only the others must read
        // back.
        if (chord.postfix().empty() || (chord.postfix()[0] != '#' && chord.postfix()[0] != 'b')) {
            FUZZ_CHECK(sameNotes(SongChord(movedText), moved),
                       where + " printed " + fuzz::printable(movedText));
        }
        SongChord back = moved;
        back.transpose(-(transposition % 12));
        FUZZ_CHECK(sameNotes(back, chord), where);
    }

    std::vector<SongChord> row;
    convertToChords(symbol, row);
    const std::size_t length = codePointLength(symbol);
    for (std::size_t i = 0; i < row.size(); ++i) {
        FUZZ_CHECK(
            row[i].isValid() && row[i].offset() >= 0 && std::size_t(row[i].offset()) < length,
            where);
        if (i > 0) FUZZ_CHECK(row[i - 1].offset() < row[i].offset(), where);
    }
    (void)isChords(symbol);

    SongInfo info;
    info.setKey(symbol);
    (void)info.keyName(transposition);
    info.transpose(transposition);
    FUZZ_CHECK(isValidUtf8(info.key()) || !isValidUtf8(symbol), where);
    return 0;
}
