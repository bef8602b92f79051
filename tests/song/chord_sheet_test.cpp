#include "melodex/song/chord_sheet.h"

#include <gtest/gtest.h>

namespace melodex {
namespace {

SongLine* lineOf(std::string_view text, std::initializer_list<std::pair<const char*, int>> chords) {
    auto* line = new SongLine;
    line->setText(text);
    for (const auto& [symbol, offset] : chords)
        line->addChord(SongChord(symbol, offset));
    return line;
}

TEST(ChordSheetTest, ChordsStandAtTheColumnsOfTheirLetters) {
    std::unique_ptr<SongLine> line(lineOf("Amazing grace", {{"G", 0}, {"C", 8}, {"D7", 13}}));
    EXPECT_EQ(chordLine(*line), "G       C    D7");
    // Columns count characters: the chord after "é" is not pushed by its two bytes.
    line.reset(lineOf("Jésus, Noël", {{"D", 3}, {"A", 10}}));
    EXPECT_EQ(chordLine(*line), "   D      A");
    line.reset(lineOf("Свят", {{"Em", 2}}));
    EXPECT_EQ(chordLine(*line), "  Em");
    line.reset(lineOf("no chords", {}));
    EXPECT_EQ(chordLine(*line), "");
}

TEST(ChordSheetTest, ChordsThatWouldTouchAreKeptOneBlankApart) {
    std::unique_ptr<SongLine> line(
        lineOf("Alleluia", {{"Gsus4", 0}, {"G", 2}, {"C/E", 3}, {"D", 12}}));
    EXPECT_EQ(chordLine(*line), "Gsus4 G C/E D");
    line.reset(lineOf("Hi", {{"A", 0}, {"B", 1}, {"C", 5}}));
    EXPECT_EQ(chordLine(*line), "A B  C");
    // Transposed spellings may be longer than the stored ones.
    line.reset(lineOf("Oh", {{"E", 0}, {"B", 2}}));
    EXPECT_EQ(chordLine(*line, -1), "Eb Bb");
}

TEST(ChordSheetTest, ASongShowsItsInformationThenEachSection) {
    Song song;
    song.info().setTitle("Amazing Grace");
    song.info().setKey("G");
    song.info().setAuthor("John Newton");
    song.info().setCopyright("Public domain");
    song.info().setAttribute("tempo", "");
    song.info().setAttribute("timesignature", "3/4");
    auto* verse = new SongSection(SectionType::Verse);
    verse->addLine(lineOf("Amazing grace", {{"G", 2}, {"C", 8}}));
    verse->addLine(lineOf("how sweet the sound", {}));
    song.addSection(verse);
    auto* intro = new SongSection(SectionType::Intro);
    intro->addLine(lineOf("        ", {{"G", 0}, {"D", 4}, {"G", 8}}));
    song.addSection(intro);
    song.generateSectionIDs();

    EXPECT_EQ(chordSheet(song, 2),
              "Title: Amazing Grace\n"
              "Author: John Newton\n"
              "Key: A\n"
              "Copyright: Public domain\n"
              "Timesignature: 3/4\n"
              "\n"
              "[V1] Verse\n"
              "  A     D\n"
              "Amazing grace\n"
              "how sweet the sound\n"
              "\n"
              "[I1] Intro\n"
              "A   E   A\n");

    Song plain;
    auto* only = new SongSection(SectionType::Chorus);
    only->addLine(lineOf("Alleluia", {}));
    plain.addSection(only);
    plain.generateSectionIDs();
    plain.info().clear();
    EXPECT_EQ(chordSheet(plain), "[C1] Chorus\nAlleluia\n");
    EXPECT_EQ(chordSheet(Song()), "Key: C\n");
}

}  // namespace
}  // namespace melodex
