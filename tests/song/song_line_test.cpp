#include "melodex/song/song_line.h"

#include <gtest/gtest.h>

#include "melodex/song/song_section.h"
#include "support/song_builders.h"

namespace melodex {
namespace {

using test::inlined;

TEST(SongLineTest, ChordsStaySortedOnePerOffsetWhateverTheOrderAdded) {
    SongLine line;
    line.setText("Praise God from whom");
    line.addChord(SongChord("D", 9));
    line.addChord(new SongChord("G", 0));
    line.addChord(SongChord("Em", 5));
    line.addChord(new SongChord("C", 12));
    EXPECT_EQ(inlined(line), "[G]Prais[Em]e Go[D]d f[C]rom whom");

    SongChord* stored = line.getChord(1);
    line.addChord(SongChord("Am", 5));  // assigned into the stored chord
    EXPECT_EQ(line.getChord(1), stored);
    auto* replacement = new SongChord("F", 9);
    line.addChord(replacement);  // takes the old one's place
    EXPECT_EQ(line.getChord(2), replacement);
    EXPECT_EQ(inlined(line), "[G]Prais[Am]e Go[F]d f[C]rom whom");

    line.addChord(SongChord("", 5));  // an empty chord deletes
    line.addChord(new SongChord("", 0));
    line.addChord(new SongChord("nope", 3));  // invalid and nothing there: dropped
    line.addChord(nullptr);
    EXPECT_EQ(inlined(line), "Praise Go[F]d f[C]rom whom");

    SongChord out("B", 1);
    EXPECT_TRUE(line.getChordAtOffset(12, out) && !line.getChordAtOffset(10, out));
    EXPECT_EQ(out.toString(), "C");  // a miss leaves it alone
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

TEST(SongLineTest, CopiesAreDeepAndKeepAttributesThatReadIgnoringCase) {
    SongSection section;
    SongLine* original = test::lineOf("Praise Him", {{"G", 7}});
    section.addLine(original);
    original->singers(SingerType::Women);
    original->addAttribute({"size", Value("12pt")});
    original->setAttribute("Size", "14pt");  // replaces in place, keeping the first spelling
    original->setAttribute("flag", "yes");

    SongLine copy(*original);
    EXPECT_EQ(copy.section(), nullptr);
    EXPECT_EQ(copy.singersText(), "Women");
    EXPECT_EQ(copy.getIntegerAttribute("SIZE", 0), 14);
    EXPECT_FALSE(copy.getBooleanAttribute("flag", true));  // not a number: 0
    EXPECT_EQ(copy.getIntegerAttribute("flag", 5), 0);     // the same reading
    EXPECT_TRUE(copy.getBooleanAttribute("missing", true));
    EXPECT_EQ(copy.getIntegerAttribute("missing", 5), 5);
    EXPECT_EQ(copy.getStringAttribute("missing", "x"), "x");
    ASSERT_EQ(copy.attributes().size(), 2u);
    EXPECT_EQ(copy.attributes()[0].name, "size");
    copy.getChord(0)->transpose(2);
    EXPECT_EQ(inlined(*original), "Praise [G]Him");

    *original = SongLine();  // assignment keeps the line in its section
    EXPECT_EQ(original->section(), &section);
    EXPECT_FALSE(original->hasChords());
    EXPECT_TRUE(original->attributes().empty());
}

}  // namespace
}  // namespace melodex
