#include "melodex/display/chord_display.h"

#include <array>
#include <tuple>

#include <gtest/gtest.h>

#include "melodex/display/song_display_profile.h"
#include "melodex/music/song_chord.h"
#include "melodex/music/song_info.h"
#include "melodex/song/chord_sheet.h"
#include "support/song_builders.h"

namespace melodex {
namespace {

// The house spelling of display profiles, row by key, as the tests expect
// it; written out here so that the expectations do not come from the code.
using Row = std::array<const char*, 12>;
constexpr std::array<Row, 12> Spelling = {{
    {"C", "C#", "D", "Eb", "E", "F", "F#", "G", "Ab", "A", "Bb", "B"},
    {"C", "C#", "D", "Eb", "E", "F", "F#", "G", "Ab", "A", "Bb", "B"},
    {"C", "C#", "D", "Eb", "E", "F", "F#", "G", "Ab", "A", "Bb", "B"},
    {"C", "C#", "D", "Eb", "E", "F", "Gb", "G", "Ab", "A", "Bb", "B"},
    {"C", "C#", "D", "Eb", "E", "F", "F#", "G", "G#", "A", "Bb", "B"},
    {"C", "C#", "D", "Eb", "E", "F", "F#", "G", "Ab", "A", "Bb", "B"},
    {"C", "C#", "D", "Eb", "E", "F", "F#", "G", "G#", "A", "Bb", "B"},
    {"C", "C#", "D", "Eb", "E", "F", "F#", "G", "Ab", "A", "Bb", "B"},
    {"C", "Db", "D", "Eb", "E", "F", "Gb", "G", "Ab", "A", "Bb", "B"},
    {"C", "C#", "D", "Eb", "E", "F", "F#", "G", "Ab", "A", "Bb", "B"},
    {"C", "C#", "D", "Eb", "E", "F", "Gb", "G", "Ab", "A", "Bb", "B"},
    {"C", "C#", "D", "Eb", "E", "F", "F#", "G", "Ab", "A", "Bb", "B"},
}};

SongDisplayProfile profile(int flags, bool capoDefaults = false, bool transposeDefaults = false) {
    SongDisplayProfile made;
    made.create("Test", "Test", 3, flags, 18, 0, false, capoDefaults, transposeDefaults);
    return made;
}

constexpr int Chords = 0xD8F33;  // the house Chords profile: no capo brackets
constexpr int ChordsInBrackets = Chords | ProfileFlag::CapoChordsInBrackets;

TEST(ChordDisplayTest, EveryKeyAndCapoSpellsFromTheKeysRow) {
    struct Case {
        const char* symbol;
        int root;
        const char* postfix;
        int bass;
    };
    const Case chords[] = {
        {"C", 0, "", -1},
        {"C#m7", 1, "m7", -1},
        {"Ebmaj7", 3, "maj7", -1},
        {"F#/A#", 6, "", 10},
        {"G#m/D#", 8, "m", 3},
        {"Ab/C", 8, "", 0},
        {"Bbsus4/D", 10, "sus4", 2},
        {"Dm7b5/Ab", 2, "m7b5", 8},
        {"B", 11, "", -1},
    };
    SongDisplayProfile plain = profile(Chords);
    SongDisplayProfile brackets = profile(ChordsInBrackets);
    for (int key = 0; key < 12; ++key) {
        for (int fret = 0; fret <= 7; ++fret) {
            const int shift = (12 - fret) % 12;  // the shapes lie f semitones below
            const ChordDisplay showPlain(plain, key, 0, fret);
            const ChordDisplay showBrackets(brackets, key, 0, fret);
            for (const Case& chord : chords) {
                const auto spell = [&](int row, int move) {
                    String text = Spelling[std::size_t((row + move) % 12)]
                                          [std::size_t((chord.root + move) % 12)];
                    text += chord.postfix;
                    if (chord.bass >= 0) {
                        text += "/";
                        text += Spelling[std::size_t((row + move) % 12)]
                                        [std::size_t((chord.bass + move) % 12)];
                    }
                    return text;
                };
                const String sounding = spell(key, 0);
                const String shape = spell(key, shift);
                SCOPED_TRACE(String(chord.symbol) + " key " + std::to_string(key) + " capo " +
                             std::to_string(fret));
                EXPECT_EQ(showPlain(SongChord(chord.symbol)), fret == 0 ? sounding : shape);
                EXPECT_EQ(showBrackets(SongChord(chord.symbol)),
                          fret == 0 ? sounding : sounding + "(" + shape + ")");
            }
        }
    }
}

TEST(ChordDisplayTest, WorkedExamples) {
    SongDisplayProfile brackets = profile(ChordsInBrackets);
    const std::tuple<int, int, const char*, const char*> cases[] = {
        {5, 3, "F", "F(D)"},  // F with capo 3: D shapes
        {5, 3, "Bb", "Bb(G)"}, {5, 3, "Dm/A", "Dm/A(Bm/F#)"}, {8, 1, "Db/F", "Db/F(C/E)"},
        {8, 0, "G#m", "Abm"},  // a song in Ab spells the flat side
        {4, 0, "Abm", "G#m"},  // and one in E the sharp side
        {3, 0, "F#", "Gb"},    {11, 4, "F#", "F#(D)"},        {0, 0, "Am7/G", "Am7/G"},
    };
    for (const auto& [key, fret, symbol, text] : cases) {
        EXPECT_EQ(ChordDisplay(brackets, key, 0, fret)(SongChord(symbol)), text)
            << symbol << " key " << key << " capo " << fret;
    }
}

TEST(ChordDisplayTest, FlagsChooseChordsBassOrNothing) {
    const SongChord slash("D/F#");
    const SongChord plain("Dsus4");
    SongDisplayProfile words = profile(0x18F31);
    EXPECT_EQ(slash.getDisplayString(&words, 0, 0, 0), "");
    EXPECT_EQ(plain.getDisplayString(&words, 3, 1, -2), "");

    SongDisplayProfile bass = profile(0x18F35);
    EXPECT_EQ(slash.getDisplayString(&bass, 0, 0, 0), "F#");
    EXPECT_EQ(plain.getDisplayString(&bass, 0, 0, 0), "D");  // the root, without postfix
    EXPECT_EQ(slash.getDisplayString(&bass, 0, 0, -2), "E");

    SongDisplayProfile both = profile(ProfileFlag::ShowChords | ProfileFlag::ShowBass);
    EXPECT_EQ(slash.getDisplayString(&both, 0, 0, 0), "D/F#");  // chords win

    SongDisplayProfile brackets = profile(ChordsInBrackets);
    EXPECT_EQ(slash.getDisplayString(&brackets, 0, 0, 0), "D/F#");         // no capo, no brackets
    EXPECT_EQ(slash.getDisplayString(&brackets, 0, 0, -3), "D/F#(B/Eb)");  // -3 acts as 9

    EXPECT_EQ(SongChord("Xm").getDisplayString(&brackets, 0, 0, 0), "");
    EXPECT_EQ(slash.getDisplayString(nullptr, 0, 0, 0), "");
}

TEST(ChordDisplayTest, ShiftsAddUpAndWrap) {
    SongDisplayProfile chords = profile(Chords);
    const SongChord c("C");
    EXPECT_EQ(c.getDisplayString(&chords, -1, 0, 0), "B");   // -1 is 11
    EXPECT_EQ(c.getDisplayString(&chords, 13, 0, 0), "C#");  // 13 is spelled as 1
    EXPECT_EQ(c.getDisplayString(&chords, 2, -3, 0), "B");
    EXPECT_EQ(c.getDisplayString(&chords, -25, 0, 0), "B");
    // 2^31 semitones are 8 more: no overflow on the way.
    EXPECT_EQ(SongChord("Bb/Ab").getDisplayString(&chords, 2147483647, 1, 0), "F#/E");
    chords.setCurrentKey(8);
    EXPECT_EQ(SongChord("C#/F#").getDisplayString(&chords, 0, 0, 0), "Db/Gb");
    chords.setCurrentKey(-4);  // the same key
    EXPECT_EQ(SongChord("C#/F#").getDisplayString(&chords, 0, 0, 0), "Db/Gb");
}

TEST(ChordDisplayTest, TakesTheProfilesDefaultsForTheKeyShown) {
    SongDisplayProfile guitar = profile(Chords, true, false);
    const ChordDisplay inF(guitar, 5);
    EXPECT_EQ(inF.capoFret(), 3);
    EXPECT_EQ(inF(SongChord("F")), "D");
    EXPECT_EQ(ChordDisplay(guitar, 5, 0, 0)(SongChord("F")), "F");  // a capo given wins
    EXPECT_EQ(ChordDisplay(guitar, 3, 2)(SongChord("Eb")), "D");    // shown in F: capo 3
    guitar.capoPosition(2);
    EXPECT_EQ(ChordDisplay(guitar, 5)(SongChord("F")), "Eb");  // the profile's capo

    SongDisplayProfile piano = profile(Chords, false, true);
    const ChordDisplay inCSharp(piano, 1);
    EXPECT_EQ(inCSharp.localTranspose(), -1);
    EXPECT_EQ(inCSharp.key(), 0);
    EXPECT_EQ(inCSharp(SongChord("C#/G#")), "C/G");

    SongDisplayProfile moved = profile(Chords);
    moved.transpose(1);
    const ChordDisplay up(moved, 8, 2);  // Ab, 2 and 1 up: B
    EXPECT_EQ(up.transpose(), 3);
    EXPECT_EQ(up.key(), 11);
    EXPECT_EQ(up(SongChord("Ab")), "B");
    moved.transpose(2147483647);  // as a file may say: no overflow
    EXPECT_EQ(ChordDisplay(moved, 0, 1).transpose(), 8);
    moved.transpose(-1);
    EXPECT_EQ(ChordDisplay(moved, 0, 0).transpose(), 11);

    SongInfo info;
    info.setKey("Ab");
    SongDisplayProfile chords = profile(Chords);
    EXPECT_EQ(ChordDisplay(chords, info)(SongChord("G#")), "Ab");
    info.setKey("Abm");
    EXPECT_EQ(ChordDisplay(chords, info).key(), 8);
    info.setKey("unknown");
    EXPECT_EQ(ChordDisplay(chords, info).key(), 0);
    EXPECT_EQ(ChordDisplay(guitar, info).capoFret(), 2);
}

TEST(ChordDisplayTest, ALocalTranspositionGivenReplacesTheProfilesDefault) {
    SongDisplayProfile piano = profile(Chords, false, true);
    EXPECT_EQ(ChordDisplay(piano, 1, 0, 0, 1).localTranspose(), 1);  // C#: default -1
    EXPECT_EQ(ChordDisplay(piano, 1, 0, 0, 1)(SongChord("C#")), "D");
    EXPECT_EQ(ChordDisplay(piano, 1, 0, 0, 0)(SongChord("C#")), "C#");
}

// A chord sheet under a profile: the chords of the key shown, the key line
// moved with them, the capo printed in place of the song's own.
TEST(ChordDisplayTest, ChordSheetOptionsSpellEveryChordInTheKeyShown) {
    Song song;
    song.info().setTitle("T");
    song.info().setKey("Ab");
    song.info().setAttribute("capo", 2);
    auto* verse = new SongSection(SectionType::Verse);
    verse->addLine(test::lineOf("Holy holy", {{"G#", 0}, {"C#/F", 5}}));
    song.addSection(verse);
    song.generateSectionIDs();

    SongDisplayProfile chords = profile(Chords);
    EXPECT_EQ(chordSheet(song, chordSheetOptions(chords, song)),
              "Title: T\nKey: Ab\nCapo: 2\n\n[V1] Verse\nAb   Db/F\nHoly holy\n");
    ChordDisplayOptions up;
    up.transpose = 2;  // Bb
    up.capoFret = 1;   // played in A shapes
    EXPECT_EQ(chordSheet(song, chordSheetOptions(chords, song, up)),
              "Title: T\nKey: Bb\nCapo: 1\n\n[V1] Verse\nA    D/F#\nHoly holy\n");
    chords.transpose(-2);  // the profile's own transposition moves the key line too
    EXPECT_EQ(chordSheetOptions(chords, song).transpose, 10);

    SongDisplayProfile words = profile(0x18F31);
    EXPECT_EQ(chordSheet(song, chordSheetOptions(words, song)),
              "Title: T\nKey: Ab\nCapo: 2\n\n[V1] Verse\nHoly holy\n");
}

}  // namespace
}  // namespace melodex
