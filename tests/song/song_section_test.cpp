#include "melodex/song/song_section.h"

#include <memory>

#include <gtest/gtest.h>

#include "support/song_builders.h"

namespace melodex {
namespace {

using test::describe;

// Appends a line and then its chord, the order in which loaders build
// sections: only a chord added to a line already in the section marks it.
void addLineTo(SongSection& section, const char* text, const char* chord = nullptr) {
    SongLine* line = test::lineOf(text);
    section.addLine(line);
    if (chord != nullptr) line->addChord(SongChord(chord, 0));
}

TEST(SongSectionTest, SettingsKeepTheirOddRulesAndClearIsAPartialReset) {
    SongSection section(SectionType::Chorus);
    section.repeat(0);
    EXPECT_EQ(section.repeat(), 1);
    EXPECT_FALSE(section.isTarget(Target::Leader));  // 0 means all, but answers false
    section.setTarget(Target::Leader | Target::Audience, true);
    section.setTarget(Target::Leader, false);
    EXPECT_EQ(section.target(), Target::Audience);
    EXPECT_EQ(section.indentForType(), 1);
    section.setType(42);
    EXPECT_EQ(section.indentForType(), 0);

    section.id("B1");
    section.setSingers(SingerType::Men);
    section.repeat(3);
    section.indent(2);
    section.spaceBefore(1);
    section.keepWithPrevious(true);
    section.setFirstOnPage(true);
    addLineTo(section, "x", "G");
    section.clear();
    // Id, singers, the chord flag and the page break stay.
    EXPECT_EQ(describe(section), "B1 Verse singers=Men firstonpage=1\n");
    section.checkForChords();
    EXPECT_FALSE(section.hasChords());
}

TEST(SongSectionTest, RemoveLineHandsBackAnUnlinkedLine) {
    SongSection section;
    addLineTo(section, "two");
    section.insertLine(new SongLine, 0);
    section.insertLine(new SongLine, 99);
    section.addLine(nullptr);
    ASSERT_EQ(section.getLineCount(), 3);
    EXPECT_EQ(section.getLine(2)->section(), &section);

    std::unique_ptr<SongLine> taken(section.removeLine(1, false));
    ASSERT_NE(taken, nullptr);
    EXPECT_EQ(taken->text(), "two");
    EXPECT_EQ(taken->section(), nullptr);
    taken->addChord(SongChord("G", 0));
    taken->removeChord(0);  // must not reach the section
    EXPECT_EQ(section.removeLine(0, true), nullptr);
    EXPECT_EQ(section.getLineCount(), 1);
}

TEST(SongSectionTest, AssignmentKeepsIdChordFlagAndPageBreakWhileCopiesTakeThem) {
    SongSection source(SectionType::Chorus);
    source.id("C1");
    source.setSingers(SingerType::All);
    source.setFirstOnPage(true);
    addLineTo(source, "Hallelujah", "F");
    addLineTo(source, "Amen");
    const String described = "C1 Chorus singers=All firstonpage=1\n  [F]Hallelujah\n  Amen\n";
    ASSERT_EQ(describe(source), described);

    SongSection copy(source);
    EXPECT_EQ(describe(copy), described);
    SongSection target(SectionType::Verse);
    target.id("V3");
    addLineTo(target, "old");
    auto temporary = std::make_unique<SongSection>(source);
    target = *temporary;
    temporary.reset();  // the copied lines belong to their copy, not to the source
    EXPECT_EQ(describe(target), "V3 Chorus (no chords) singers=All\n  [F]Hallelujah\n  Amen\n");

    // Each copy's lines report to that copy and leave the source alone.
    target.getLine(1)->addChord(SongChord("C", 0));
    EXPECT_TRUE(target.hasChords());
    copy.getLine(0)->removeChord(0);
    EXPECT_FALSE(copy.hasChords());
    EXPECT_EQ(describe(source), described);

    const SongSection& same = target;
    target = same;
    EXPECT_EQ(target.getLineCount(), 2);
}

}  // namespace
}  // namespace melodex
