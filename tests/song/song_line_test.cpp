#include "melodex/song/song_line.h"

#include <gtest/gtest.h>

#include "melodex/song/song_section.h"

namespace melodex {
namespace {

// "G@0 C@8": the chords of a line with their offsets.
String chordsOf(const SongLine& line) {
    String out;
    for (int i = 0; i < line.getChordCount(); ++i) {
        const SongChord& chord = *line.getChord(i);
        if (!out.empty()) out += ' ';
        out += chord.toString(0, false) + "@" + std::to_string(chord.offset());
    }
    return out;
}

TEST(SongLineTest, ChordsStaySortedOnePerOffsetWhateverTheOrderAdded) {
    SongLine line;
    line.addChord(SongChord("D", 9));
    line.addChord(new SongChord("G", 0));
    line.addChord(SongChord("Em", 5));
    line.addChord(new SongChord("C", 12));
    EXPECT_EQ(chordsOf(line), "G@0 Em@5 D@9 C@12");

    SongChord* stored = line.getChord(1);
    line.addChord(SongChord("Am", 5));  // assigned into the stored chord
    EXPECT_EQ(line.getChord(1), stored);
    auto* replacement = new SongChord("F", 9);
    line.addChord(replacement);  // takes the old one's place
    EXPECT_EQ(line.getChord(2), replacement);
    EXPECT_EQ(chordsOf(line), "G@0 Am@5 F@9 C@12");

    line.addChord(SongChord("", 5));  // an empty chord deletes
    line.addChord(new SongChord("", 0));
    line.addChord(new SongChord("nope", 3));  // invalid and nothing there: dropped
    line.addChord(nullptr);
    EXPECT_EQ(chordsOf(line), "F@9 C@12");

    SongChord out("B", 1);
    EXPECT_TRUE(line.getChordAtOffset(12, out));
    EXPECT_EQ(out.toString(0, false), "C");
    EXPECT_FALSE(line.getChordAtOffset(10, out));
    EXPECT_EQ(out.toString(0, false), "C");
}

TEST(SongLineTest, OnlyAppendingMarksTheSectionAndRemovingTheLastChordRechecks) {
    SongSection section;
    auto* line = new SongLine;
    section.addLine(line);
    line->addChord(SongChord("G", 5));
    EXPECT_TRUE(section.hasChords());

    section.hasChords(false);
    line->addChord(SongChord("C", 2));  // an insertion before G
    line->addChord(SongChord("D", 5));  // a replacement
    EXPECT_FALSE(section.hasChords());

    section.hasChords(true);
    line->removeChord(7);
    line->removeChord(-1);
    line->removeChord(0);
    EXPECT_TRUE(section.hasChords());  // one chord left: no recheck
    line->removeChord(0);
    EXPECT_FALSE(section.hasChords());
}

TEST(SongLineTest, ChordOffsetsCountCodePoints) {
    SongLine line;
    line.setText("Jésus, mon Roi");
    std::vector<SongChord> chords;
    convertToChords("  D     A", chords);
    for (const SongChord& chord : chords)
        line.addChord(chord);
    line.transpose(2);
    String shown = line.text();
    for (int i = line.getChordCount() - 1; i >= 0; --i) {
        const SongChord& chord = *line.getChord(i);
        insertAtCodePoint(shown, std::size_t(chord.offset()), "[" + chord.toString(0, false) + "]");
    }
    // Over the "s" of "Jésus" and the "o" of "mon", not at byte positions.
    EXPECT_EQ(shown, "Jé[E]sus, m[B]on Roi");
}

TEST(SongLineTest, CopiesAreDeepAndKeepTheirOwnSectionLink) {
    SongSection section;
    auto* original = new SongLine;
    section.addLine(original);
    original->setText("Praise Him");
    original->singers(SingerType::Women);
    original->setAttribute("chordsize", 12);
    original->addChord(SongChord("G", 7));

    SongLine copy(*original);
    EXPECT_EQ(copy.section(), nullptr);
    EXPECT_EQ(copy.singersText(), "Women");
    EXPECT_EQ(copy.getIntegerAttribute("CHORDSIZE", 0), 12);
    ASSERT_EQ(copy.getChordCount(), 1);
    copy.getChord(0)->transpose(2);
    EXPECT_EQ(original->getChord(0)->chord(), 7);

    *original = SongLine();  // assignment keeps the line in its section
    EXPECT_EQ(original->section(), &section);
    EXPECT_FALSE(original->hasChords());
    EXPECT_TRUE(original->attributes().empty());
}

TEST(SongLineTest, AttributeGettersFallBackToDefaults) {
    SongLine line;
    line.addAttribute({"size", Value("12pt")});
    line.setAttribute("Size", "14pt");
    line.setAttribute("flag", "yes");
    EXPECT_FALSE(line.getBooleanAttribute("flag", true));  // not a number: 0
    EXPECT_EQ(line.getIntegerAttribute("flag", 5), 0);     // the same reading
    EXPECT_TRUE(line.getBooleanAttribute("missing", true));
    EXPECT_EQ(line.getIntegerAttribute("missing", 5), 5);
    EXPECT_EQ(line.getIntegerAttribute("SIZE", 0), 14);
    EXPECT_EQ(line.getStringAttribute("missing", "x"), "x");
    ASSERT_EQ(line.attributes().size(), 2u);
    EXPECT_EQ(line.attributes()[0].name, "size");  // first spelling and place kept
}

}  // namespace
}  // namespace melodex
