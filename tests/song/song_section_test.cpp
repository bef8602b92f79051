#include "melodex/song/song_section.h"

#include <memory>

#include <gtest/gtest.h>

namespace melodex {
namespace {

// Appends a line and then its chord, the order in which loaders build
// sections: only a chord added to a line already in the section marks it.
SongLine* addLineTo(SongSection& section, const char* text, const char* chord = nullptr) {
    auto* line = new SongLine;
    line->setText(text);
    section.addLine(line);
    if (chord != nullptr) line->addChord(SongChord(chord, 0));
    return line;
}

TEST(SongSectionTest, RepeatNeverBelowOneAndTargetZeroAnswersFalse) {
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

TEST(SongSectionTest, ClearIsAPartialReset) {
    SongSection section(SectionType::Bridge);
    section.id("B1");
    section.setSingers(SingerType::Men);
    section.target(Target::Band);
    section.repeat(3);
    section.indent(2);
    section.spaceBefore(1);
    section.keepWithPrevious(true);
    section.setFirstOnPage(true);
    addLineTo(section, "x", "G");
    ASSERT_TRUE(section.hasChords());

    section.clear();
    EXPECT_EQ(section.getLineCount(), 0);
    EXPECT_EQ(section.type(), SectionType::Verse);
    EXPECT_EQ(section.target() + section.indent() + section.spaceBefore(), 0);
    EXPECT_EQ(section.repeat(), 1);
    EXPECT_FALSE(section.keepWithPrevious());
    EXPECT_EQ(section.id(), "B1");
    EXPECT_EQ(section.singers(), SingerType::Men);
    EXPECT_TRUE(section.hasChords());
    EXPECT_TRUE(section.firstOnPage());
    section.checkForChords();
    EXPECT_FALSE(section.hasChords());
}

TEST(SongSectionTest, AssignmentKeepsIdChordFlagAndPageBreakWhileCopiesTakeThem) {
    SongSection source(SectionType::Chorus);
    source.id("C1");
    source.setSingers(SingerType::All);
    source.setFirstOnPage(true);
    addLineTo(source, "Hallelujah", "F");
    addLineTo(source, "Amen");

    SongSection target(SectionType::Verse);
    target.id("V3");
    addLineTo(target, "old");
    target = source;
    EXPECT_EQ(target.id(), "V3");
    EXPECT_FALSE(target.hasChords());
    EXPECT_FALSE(target.firstOnPage());
    EXPECT_EQ(target.singers(), SingerType::All);
    ASSERT_EQ(target.getLineCount(), 2);

    const SongSection copy(source);
    EXPECT_EQ(copy.id(), "C1");
    EXPECT_TRUE(copy.hasChords());
    EXPECT_TRUE(copy.firstOnPage());

    // Every copied line belongs to its copy, so the source can go first.
    auto* temporary = new SongSection(source);
    target = *temporary;
    const SongSection* const copies[] = {&target, &copy, temporary};
    for (const SongSection* section : copies) {
        for (int i = 0; i < section->getLineCount(); ++i) {
            EXPECT_EQ(section->getLine(i)->section(), section);
            EXPECT_NE(section->getLine(i), source.getLine(i));
        }
    }
    delete temporary;
    target.getLine(0)->removeChord(0);
    target.transpose(2);
    EXPECT_EQ(source.getLine(0)->getChord(0)->chord(), 5);

    const SongSection& same = target;
    target = same;
    EXPECT_EQ(target.getLineCount(), 2);
}

}  // namespace
}  // namespace melodex
