#include "melodex/music/song_chord.h"

#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace melodex {
namespace {

TEST(SongChordTest, ParsesRootPostfixAndBass) {
    const std::tuple<const char*, int, const char*, int> cases[] = {
        {"", -1, "", -1},         {"/G", -1, "", -1},       {"C/", 0, "", -1},
        {"Cb", -1, "", -1},       {"Cbm", -1, "", -1},      {"Db", 1, "", -1},
        {"db", -1, "", -1},       {"G#m7/D#", 8, "m7", 3},  {"Abm7/Eb", 8, "m7", 3},
        {"Gsus4", 7, "sus4", -1}, {"Dm7b5", 2, "m7b5", -1}, {"Cmaj7(9)", 0, "maj7(9)", -1},
        {"C/x", 0, "", -1},       {"D/F#m", 2, "", 6},      {"Am/G/B", 9, "m", 7}};
    for (const auto& [symbol, root, postfix, bass] : cases) {
        SongChord chord("Am7/G", 3);
        chord = symbol;  // a reparse resets everything but the offset
        EXPECT_EQ(std::tuple(chord.chord(), chord.postfix(), chord.bass(), chord.offset()),
                  std::tuple(root, String(postfix), bass, 3))
            << symbol;
    }
}

TEST(SongChordTest, WritesWithRowZeroSpellingAndOptionalOriginal) {
    const std::tuple<const char*, int, bool, const char*> cases[] = {
        {"G#m7/D#", 0, false, "G#m7/Eb"},
        {"Abm7/Eb", 0, false, "G#m7/Eb"},
        {"Am7/G", 2, true, "Am7/G(Bm7/A)"},
        {"Am7/G", 2, false, "Bm7/A"},
        {"Am7/G", 0, true, "Am7/G"},
        {"Am7/G", -12, true, "Am7/G"},  // no transposition
        {"Am7/G", -13, false, "G#m7/F#"},
        {"Am7/G", 15, false, "Cm7/Bb"},
        {"Xm", 3, true, ""},
    };
    for (const auto& [symbol, transpose, showBoth, text] : cases)
        EXPECT_EQ(SongChord(symbol).toString(transpose, showBoth), text) << symbol << transpose;
}

TEST(SongChordTest, TransposesWithTheGreaterThanTwelveBound) {
    SongChord b("B");
    b.transpose(1);
    EXPECT_EQ(b.chord(), 12);  // kept, and read as C
    EXPECT_EQ(b.toString(), "C");
    b.transpose(1);
    EXPECT_EQ(b.chord(), 1);

    SongChord c("C/E");
    c.transpose(-1);
    EXPECT_EQ(std::pair(c.chord(), c.bass()), std::pair(11, 3));
    c.transpose(-25);
    EXPECT_EQ(std::pair(c.chord(), c.bass()), std::pair(10, 2));
    c.transpose(1000001);
    EXPECT_EQ(c.chord(), 3);

    // An invalid chord comes out with a root and an empty postfix.
    SongChord invalid("nothing");
    invalid.transpose(0);
    EXPECT_EQ(invalid.chord(), 11);
    invalid = "nothing";
    invalid.transpose(1);
    EXPECT_EQ(invalid.toString(), "C");
}

TEST(SongChordTest, ConvertToChordsKeepsColumnsInCodePoints) {
    std::vector<SongChord> chords;
    convertToChords("  G    D/F#  Em", chords);
    // Appends without clearing; words vanish; "é" and a tab are one column each.
    convertToChords("é\tAm words C", chords);
    convertToChords(" \t ", chords);
    String found;
    for (const SongChord& chord : chords)
        found += chord.toString() + "@" + std::to_string(chord.offset()) + " ";
    EXPECT_EQ(found, "G@2 D/F#@7 Em@13 Am@2 C@11 ");
}

}  // namespace
}  // namespace melodex
