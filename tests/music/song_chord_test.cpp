#include "melodex/music/song_chord.h"

#include <gtest/gtest.h>

namespace melodex {
namespace {

TEST(SongChordTest, ParsesRootPostfixAndBass) {
    struct Case {
        const char* symbol;
        int chord;
        const char* postfix;
        int bass;
    };
    const Case cases[] = {
        {"", -1, "", -1},         {"/G", -1, "", -1},       {"C/", 0, "", -1},
        {"Cb", -1, "", -1},       {"Cbm", -1, "", -1},      {"Db", 1, "", -1},
        {"db", -1, "", -1},       {"G#m7/D#", 8, "m7", 3},  {"Abm7/Eb", 8, "m7", 3},
        {"Gsus4", 7, "sus4", -1}, {"Dm7b5", 2, "m7b5", -1}, {"Cmaj7(9)", 0, "maj7(9)", -1},
        {"C/x", 0, "", -1},       {"D/F#m", 2, "", 6},      {"Am/G/B", 9, "m", 7}};
    for (const Case& c : cases) {
        SongChord chord("Am7/G", 3);
        chord = c.symbol;  // a reparse resets everything but the offset
        EXPECT_EQ(chord.chord(), c.chord) << c.symbol;
        EXPECT_EQ(chord.postfix(), c.postfix) << c.symbol;
        EXPECT_EQ(chord.bass(), c.bass) << c.symbol;
        EXPECT_EQ(chord.offset(), 3) << c.symbol;
    }
}

TEST(SongChordTest, WritesWithRowZeroSpellingAndOptionalOriginal) {
    EXPECT_EQ(SongChord("G#m7/D#").toString(0, false), "G#m7/Eb");
    EXPECT_EQ(SongChord("Abm7/Eb").toString(0, false), "G#m7/Eb");
    const SongChord slash("Am7/G");
    EXPECT_EQ(slash.toString(2, true), "Am7/G(Bm7/A)");
    EXPECT_EQ(slash.toString(2, false), "Bm7/A");
    EXPECT_EQ(slash.toString(0, true), "Am7/G");
    EXPECT_EQ(slash.toString(-12, true), "Am7/G");  // -12 is no transposition
    EXPECT_EQ(slash.toString(-13, false), "G#m7/F#");
    EXPECT_EQ(slash.toString(15, false), "Cm7/Bb");
    EXPECT_EQ(SongChord("Xm").toString(3, true), "");
}

TEST(SongChordTest, TransposesWithTheGreaterThanTwelveBound) {
    SongChord b("B");
    b.transpose(1);
    EXPECT_EQ(b.chord(), 12);  // kept, and read as C
    EXPECT_EQ(b.toString(0, false), "C");
    b.transpose(1);
    EXPECT_EQ(b.chord(), 1);

    SongChord c("C/E");
    c.transpose(-1);
    EXPECT_EQ(c.chord(), 11);
    EXPECT_EQ(c.bass(), 3);
    c.transpose(-25);
    EXPECT_EQ(c.chord(), 10);
    EXPECT_EQ(c.bass(), 2);
    c.transpose(1000001);
    EXPECT_EQ(c.chord(), 3);

    // An invalid chord comes out with a root and an empty postfix.
    SongChord invalid("nothing");
    invalid.transpose(0);
    EXPECT_EQ(invalid.chord(), 11);
    invalid = "nothing";
    invalid.transpose(1);
    EXPECT_EQ(invalid.toString(0, false), "C");
}

TEST(SongChordTest, ConvertToChordsKeepsColumnsInCodePoints) {
    std::vector<SongChord> chords;
    convertToChords("  G    D/F#  Em", chords);
    ASSERT_EQ(chords.size(), 3u);
    EXPECT_EQ(chords[0].offset(), 2);
    EXPECT_EQ(chords[1].toString(0, false), "D/F#");
    EXPECT_EQ(chords[1].offset(), 7);
    EXPECT_EQ(chords[2].offset(), 13);

    // Appends without clearing; words vanish; "é" is one column.
    convertToChords("é\tAm words C", chords);
    ASSERT_EQ(chords.size(), 5u);
    EXPECT_EQ(chords[3].offset(), 2);
    EXPECT_EQ(chords[4].offset(), 11);
    convertToChords(" \t ", chords);
    EXPECT_EQ(chords.size(), 5u);
}

}  // namespace
}  // namespace melodex
