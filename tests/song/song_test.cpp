#include "melodex/song/song.h"

#include <memory>

#include <gtest/gtest.h>

namespace melodex {
namespace {

using namespace SectionType;

SongSection* sectionOf(int type, std::initializer_list<const char*> chords = {}) {
    auto* section = new SongSection(type);
    auto* line = new SongLine;
    line->setText("Words of the section");
    section->addLine(line);
    int offset = 0;
    for (const char* chord : chords)
        line->addChord(SongChord(chord, offset += 3));
    return section;
}

Song songOf(std::initializer_list<int> types) {
    Song song;
    for (int type : types)
        song.addSection(sectionOf(type));
    song.generateSectionIDs();
    return song;
}

String idsOf(const Song& song) {
    String ids;
    for (int i = 0; i < song.getSectionCount(); ++i)
        ids += song.getSection(i)->id() + " ";
    return ids;
}

// A book link for tests that only compare it; never dereferenced.
SongBook* someBook() {
    static int marker = 0;
    return reinterpret_cast<SongBook*>(&marker);
}

TEST(SongTest, SectionIdsCountPerTypeAndShowInTheDescription) {
    Song song = songOf({Verse, Chorus, Verse, Misc, PreChorus, Tag, Intro, Ending, Bridge});
    EXPECT_EQ(idsOf(song), "V1 C1 V2 M1 P1 T1 I1 E1 B1 ");
    song.addSection(sectionOf(42));  // written "V" but counted on its own
    song.addSection(sectionOf(Verse));
    song.getSection(0)->id("stale");
    song.generateSectionIDs();
    EXPECT_EQ(idsOf(song), "V1 C1 V2 M1 P1 T1 I1 E1 B1 V1 V3 ");
    song.info().setTitle("Amazing Grace");
    EXPECT_EQ(song.toString(), "Song \"Amazing Grace\" key C: V1 C1 V2 M1 P1 T1 I1 E1 B1 V1 V3");
    EXPECT_EQ(Song().toString(), "Song \"\" key C: no sections");
}

TEST(SongTest, SequencePrefersLocalThenInfoThenBuildsOne) {
    Song song = songOf({Verse, Chorus, Verse});
    EXPECT_EQ(song.getSequence(), "V1,C1,V2,C1");
    song.info().sequence("C1,V1");
    song.setLocalSequence("AUTO");
    EXPECT_EQ(song.getSequence(), "C1,V1");
    song.setLocalSequence("V2,V1");
    EXPECT_EQ(song.getSequence(), "V2,V1");
    song.setLocalSequence("");
    song.info().sequence("Auto");
    EXPECT_EQ(song.getSequence(), "V1,C1,V2,C1");

    EXPECT_EQ(songOf({Verse, Verse, Chorus}).getSequence(), "V1,V2,C1");
    EXPECT_EQ(songOf({Verse, PreChorus, Chorus, Verse, Bridge}).getSequence(),
              "V1,P1,C1,V2,P1,C1,B1,P1,C1");
    EXPECT_EQ(songOf({Chorus, Verse, Verse, Tag}).getSequence(), "C1,V1,C1,V2,T1");
    EXPECT_EQ(songOf({Intro, Verse, Chorus, Ending}).getSequence(), "I1,V1,C1,E1");
    EXPECT_EQ(songOf({}).getSequence(), "");
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
    EXPECT_EQ(idsOf(song), "T1 C1 B1 ");
}

TEST(SongTest, TransposeMovesKeyAndChordsButNotText) {
    Song song;
    song.info().setKey("G");
    song.addSection(sectionOf(Verse, {"G", "D/F#", "Em7"}));
    song.addSection(sectionOf(Chorus, {"B", "C"}));
    song.transpose(1);
    const SongLine& verse = *song.getSection(0)->getLine(0);
    EXPECT_EQ(song.info().key(), "Ab");
    EXPECT_EQ(verse.text(), "Words of the section");
    EXPECT_EQ(verse.getChord(1)->toString(0, false), "Eb/G");
    EXPECT_EQ(song.getSection(1)->getLine(0)->getChord(0)->chord(), 12);
    song.transpose(-1);
    EXPECT_EQ(song.info().key(), "G");
    EXPECT_EQ(verse.getChord(1)->toString(0, false), "D/F#");
    EXPECT_EQ(song.getSection(1)->getLine(0)->getChord(0)->toString(0, false), "B");
}

TEST(SongTest, ClearResetsAllButBookNumberAndLocalSequence) {
    const LocalTime before = LocalTime::now();
    Song song = songOf({Verse});
    EXPECT_LE(before, song.updated());
    EXPECT_EQ(song.info().key(), "C");
    song.book(someBook());
    song.numberInBook(7);
    song.setLocalSequence("V1,V1");
    song.setPageCount(3);
    song.generateUUID();
    EXPECT_EQ(song.uuid().size(), 36u);
    song.updated(LocalTime(2001, 2, 3));

    song.clear();
    EXPECT_EQ(song.getSectionCount(), 0);
    EXPECT_FALSE(song.hasUUID());
    EXPECT_EQ(song.getPageCount(), 1);
    EXPECT_LE(before, song.updated());
    EXPECT_EQ(song.info().key(), "");  // a cleared info has no key
    EXPECT_EQ(song.book(), someBook());
    EXPECT_EQ(song.numberInBook(), 7);
    song.book(nullptr);
    EXPECT_EQ(song.numberInBook(), 0);
    EXPECT_EQ(song.localSequence(), "V1,V1");
}

TEST(SongTest, CopiesAreDeepAndSkipTheBookLink) {
    auto source = std::make_unique<Song>(songOf({Verse, Chorus}));
    source->info().setTitle("Amazing Grace");
    source->getSection(0)->getLine(0)->addChord(SongChord("G", 0));
    source->book(someBook());
    source->numberInBook(12);
    source->setLocalSequence("C1");

    Song target;
    target.setLocalSequence("V1");
    target = *source;
    Song constructed(*source);
    Song* const copies[] = {&target, &constructed};
    for (Song* copy : copies) {
        EXPECT_EQ(copy->info().title(), "Amazing Grace");
        EXPECT_EQ(copy->book(), nullptr);
        EXPECT_EQ(copy->numberInBook(), 0);  // not in a book, yet the number was copied
        copy->book(someBook());
        EXPECT_EQ(copy->numberInBook(), 12);
        copy->book(nullptr);
        EXPECT_EQ(idsOf(*copy), "V1 C1 ");
        for (int i = 0; i < copy->getSectionCount(); ++i) {
            const SongSection* section = copy->getSection(i);
            EXPECT_NE(section, source->getSection(i));
            EXPECT_EQ(section->getLine(0)->section(), section);
        }
    }
    EXPECT_EQ(target.localSequence(), "V1");
    EXPECT_EQ(constructed.localSequence(), "");

    // The copies outlive their source and still work on their own lines.
    source.reset();
    target.getSection(0)->getLine(0)->removeChord(0);
    EXPECT_FALSE(target.getSection(0)->hasChords());
    EXPECT_EQ(constructed.getSection(0)->getLine(0)->getChordCount(), 1);
}

}  // namespace
}  // namespace melodex
