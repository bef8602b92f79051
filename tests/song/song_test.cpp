#include "melodex/song/song.h"

#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "support/song_builders.h"

namespace melodex {
namespace {

using namespace SectionType;
using test::outline;

SongSection* sectionOf(int type) {
    auto* section = new SongSection(type);
    section->addLine(test::lineOf("Words of the section"));
    return section;
}

Song songOf(const std::vector<int>& types) {
    Song song;
    for (int type : types)
        song.addSection(sectionOf(type));
    song.generateSectionIDs();
    return song;
}

// A book link for tests that only compare it; never dereferenced.
int bookMarker = 0;
SongBook* const SomeBook = reinterpret_cast<SongBook*>(&bookMarker);

TEST(SongTest, SectionIdsCountPerTypeAndShowInTheDescription) {
    Song song = songOf({Verse, Chorus, Verse, Misc, PreChorus, Tag, Intro, Ending, Bridge});
    song.addSection(sectionOf(42));  // written "V" but counted on its own
    song.addSection(sectionOf(Verse));
    song.getSection(0)->id("stale");
    song.generateSectionIDs();
    song.info().setTitle("Amazing Grace");
    EXPECT_EQ(song.toString(), "Song \"Amazing Grace\" key C: V1 C1 V2 M1 P1 T1 I1 E1 B1 V1 V3");
    EXPECT_EQ(Song().toString(), "Song \"\" key C: no sections");
}

TEST(SongTest, SequencePrefersLocalThenInfoThenBuildsOne) {
    Song song = songOf({Verse, Chorus, Verse});
    song.info().sequence("C1,V1");
    song.setLocalSequence("AUTO");
    EXPECT_EQ(song.getSequence(), "C1,V1");
    song.setLocalSequence("V2,V1");
    EXPECT_EQ(song.getSequence(), "V2,V1");
    song.setLocalSequence("");
    song.info().sequence("Auto");
    EXPECT_EQ(song.getSequence(), "V1,C1,V2,C1");

    const std::pair<std::vector<int>, const char*> built[] = {
        {{Verse, Verse, Chorus}, "V1,V2,C1"},
        {{Verse, PreChorus, Chorus, Verse, Bridge}, "V1,P1,C1,V2,P1,C1,B1,P1,C1"},
        {{Chorus, Verse, Verse, Tag}, "C1,V1,C1,V2,T1"},
        {{Intro, Verse, Chorus, Ending}, "I1,V1,C1,E1"},
        {{}, ""},
    };
    for (const auto& [types, sequence] : built)
        EXPECT_EQ(songOf(types).getSequence(), sequence);
}

TEST(SongTest, RemoveSectionHandsOwnershipBackOrDeletes) {
    Song song = songOf({Verse, Chorus, Bridge});
    std::unique_ptr<SongSection> taken(song.removeSection(1, false));
    ASSERT_NE(taken, nullptr);
    EXPECT_EQ(taken->id(), "C1");
    EXPECT_EQ(taken->getLine(0)->section(), taken.get());
    EXPECT_EQ(song.removeSection(0, true), nullptr);
    song.insertSection(taken.release(), 0);
    song.insertSection(sectionOf(Tag), -5);
    song.insertSection(nullptr, 0);
    song.generateSectionIDs();
    EXPECT_EQ(song.toString(), "Song \"\" key C: T1 C1 B1");
}

TEST(SongTest, TransposeMovesKeyAndChordsButNotText) {
    Song song;
    song.info().setKey("G");
    song.addSection(new SongSection);
    song.getSection(0)->addLine(
        test::lineOf("Words of the section", {{"G", 3}, {"D/F#", 6}, {"Em7", 9}, {"B", 12}}));
    song.transpose(1);
    EXPECT_EQ(song.info().key() + " " + outline(song),
              "Ab : Wor[G#]ds [Eb/G]of [Fm7]the[C] section");
    song.transpose(-1);
    EXPECT_EQ(song.info().key() + " " + outline(song), "G : Wor[G]ds [D/F#]of [Em7]the[B] section");
}

TEST(SongTest, ClearResetsAllButBookNumberAndLocalSequence) {
    const LocalTime before = LocalTime::now();
    Song song = songOf({Verse});
    song.book(SomeBook);
    song.numberInBook(7);
    song.setLocalSequence("V1,V1");
    song.setPageCount(3);
    song.generateUUID();
    song.updated(LocalTime(2001, 2, 3));
    song.clear();
    EXPECT_EQ(song.toString(), "Song \"\" key : no sections");  // a cleared info has no key
    EXPECT_FALSE(song.hasUUID());
    EXPECT_EQ(song.getPageCount(), 1);
    EXPECT_LE(before, song.updated());
    EXPECT_EQ(song.book(), SomeBook);
    EXPECT_EQ(song.numberInBook(), 7);
    EXPECT_EQ(song.localSequence(), "V1,V1");
}

TEST(SongTest, CopiesAreDeepAndSkipTheBookLink) {
    auto source = std::make_unique<Song>(songOf({Verse, Chorus}));
    source->getSection(0)->getLine(0)->addChord(SongChord("G", 0));
    source->book(SomeBook);
    source->numberInBook(12);
    source->setLocalSequence("C1");
    Song target;
    target.setLocalSequence("V1");
    target = *source;
    Song constructed(*source);
    EXPECT_EQ(target.localSequence() + constructed.localSequence(), "V1");
    for (Song* copy : {&target, &constructed}) {
        EXPECT_EQ(copy->book(), nullptr);
        EXPECT_EQ(copy->numberInBook(), 0);  // not in a book, yet the number was copied
        copy->book(SomeBook);
        EXPECT_EQ(copy->numberInBook(), 12);
    }
    // The copies outlive their source and still work on their own lines.
    source.reset();
    for (Song* copy : {&target, &constructed}) {
        EXPECT_EQ(outline(*copy), "V1: [G]Words of the section | C1: Words of the section");
        copy->getSection(0)->getLine(0)->removeChord(0);
        EXPECT_FALSE(copy->getSection(0)->hasChords());
    }
}

}  // namespace
}  // namespace melodex
