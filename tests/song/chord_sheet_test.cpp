#include "melodex/song/chord_sheet.h"

#include <memory>

#include <gtest/gtest.h>

#include "support/song_builders.h"

namespace melodex {
namespace {

using test::lineOf;

TEST(ChordSheetTest, ChordsStandAtTheColumnsOfTheirLettersAndNeverTouch) {
    struct Case {
        const char* text;
        std::initializer_list<std::pair<const char*, int>> chords;
        int transpose;
        const char* chordLine;
    };
    const Case cases[] = {
        {"Amazing grace", {{"G", 0}, {"C", 8}, {"D7", 13}}, 0, "G       C    D7"},
        // Columns count characters: "é" does not push the chord by its two bytes.
        {"Jésus, Noël", {{"D", 3}, {"A", 10}}, 0, "   D      A"},
        {"Свят", {{"Em", 2}}, 0, "  Em"},
        {"no chords", {}, 0, ""},
        {"Alleluia", {{"Gsus4", 0}, {"G", 2}, {"C/E", 3}, {"D", 12}}, 0, "Gsus4 G C/E D"},
        {"Hi", {{"A", 0}, {"B", 1}, {"C", 5}}, 0, "A B  C"},
        // Transposed spellings may be longer than the stored ones.
        {"Oh", {{"E", 0}, {"B", 2}}, -1, "Eb Bb"},
    };
    for (const Case& c : cases) {
        const std::unique_ptr<SongLine> line(lineOf(c.text, c.chords));
        EXPECT_EQ(chordLine(*line, c.transpose), c.chordLine) << c.text;
    }
}

// The sheets under opensong/ show information, sections, chords over lines
// without words and an empty section.
TEST(ChordSheetTest, ASongShowsItsInformationThenEachSection) {
    for (const String name : {"amazing_grace", "a_mighty_fortress"}) {
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
