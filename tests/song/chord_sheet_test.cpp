#include "melodex/song/chord_sheet.h"

#include <memory>

#include <gtest/gtest.h>

#include "support/song_builders.h"

namespace melodex {
namespace {

using test::lineOf;

TEST(ChordSheetTest, EveryChordStandsOverItsOwnLetter) {
    struct Case {
        const char* text;
        std::initializer_list<std::pair<const char*, int>> chords;
        int transpose;
        const char* chordLine;
        const char* words;  // null: the text as it is
    };
    const Case cases[] = {
        {"Amazing grace", {{"G", 0}, {"C", 8}, {"D7", 13}}, 0, "G       C    D7", nullptr},
        // Columns count cells: "é" takes one, precomposed or as e with a
        // combining mark; a wide East Asian character takes two.
        {"Jésus, Noël", {{"D", 3}, {"A", 10}}, 0, "   D      A", nullptr},
        {"Je\u0301sus", {{"D", 4}}, 0, "   D", nullptr},
        {"奇異恩典", {{"G", 1}, {"D", 3}}, 0, "  G   D", nullptr},
        {"Свят", {{"Em", 2}}, 0, "  Em", nullptr},
        {"no chords", {}, 0, "", nullptr},
        // A chord wider than the words under it widens the words.
        {"blood of Jesus;", {{"Bsus", 9}, {"E", 11}}, 0, "         Bsus E", "blood of Je   sus;"},
        {"Alleluia",
         {{"Gsus4", 0}, {"G", 2}, {"C/E", 3}, {"D", 7}},
         0,
         "Gsus4 G C/E D",
         "Al    l eluia"},
        {"Hi", {{"A", 0}, {"B", 1}, {"C", 5}}, 0, "A B   C", "H i"},
        {"奇異", {{"Gsus4", 0}, {"D", 1}}, 0, "Gsus4 D", "奇    異"},
        // Past the end a chord keeps its distance, and moves when it must.
        {"Amen", {{"G", 0}, {"D", 4}, {"A", 5}}, 0, "G   D A", nullptr},
        // Transposed spellings may be longer than the stored ones.
        {"Oh", {{"E", 0}, {"B", 1}}, -1, "Eb Bb", "O  h"},
        // A tab is printed as one blank.
        {"Tab\tstop", {{"C", 0}, {"F", 4}}, 0, "C   F", "Tab stop"},
    };
    for (const Case& c : cases) {
        const std::unique_ptr<SongLine> line(lineOf(c.text, c.chords));
        ChordSheetOptions options;
        options.transpose = c.transpose;
        const ChordSheetLine laidOut = layOutLine(*line, options);
        EXPECT_EQ(laidOut.chords, c.chordLine) << c.text;
        EXPECT_EQ(laidOut.words, c.words ? c.words : c.text) << c.text;
    }
}

TEST(ChordSheetTest, TheCallerMaySpellTheChordsAndChooseTheRunningOrder) {
    Song song;
    song.info().setKey("G");
    for (const auto& [type, text] :
         {std::pair{SectionType::Verse, "One"}, {SectionType::Chorus, "Two"}}) {
        auto* section = new SongSection(type);
        section->addLine(lineOf(text, {{"G", 0}, {"D", 2}}));
        song.addSection(section);
    }
    song.generateSectionIDs();

    ChordSheetOptions options;
    options.transpose = 2;  // the key follows; the spelling below is the caller's
    options.chordText = [](const SongChord& chord) {
        return chord.chord() == 7 ? String("Sol") : String();  // nothing for other chords
    };
    options.sequence = "C1, v1 C1,X9";
    EXPECT_EQ(chordSheet(song, options),
              "Key: A\n\n"
              "[C1] Chorus\nSol\nTwo\n\n"
              "[V1] Verse\nSol\nOne\n\n"
              "[C1] Chorus\nSol\nTwo\n\n"
              "[X9] (not in the song)\n");
}

// The sheets under opensong/ show information, sections, chords over lines
// without words and an empty section.
TEST(ChordSheetTest, ASongShowsItsInformationThenEachSection) {
    for (const String name : {"amazing_grace", "a_mighty_fortress", "wsrod_nocnej_ciszy"}) {
        Song song;
        ASSERT_EQ(song.loadFromFile(test::testDataPath("opensong/" + name)), StatusSuccess);
        EXPECT_EQ(chordSheet(song, 2), test::goldenText("opensong/" + name + ".sheet"));
        song.info().clear();
        EXPECT_EQ(chordSheet(song).substr(0, 2), "[" + song.getSection(0)->id().substr(0, 1));
    }
    EXPECT_EQ(chordSheet(Song()), "Key: C\n");
}

}  // namespace
}  // namespace melodex
