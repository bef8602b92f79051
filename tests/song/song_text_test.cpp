#include "melodex/song/song.h"

#include <cerrno>

#include <gtest/gtest.h>

#include "support/song_builders.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using namespace test;

// How paragraphs become sections and lines may end: see song/read/paragraphs.txt
// and song/read/breaks.*.txt.
TEST(SongTextTest, TheReadersAddToTheSongWithoutClearingIt) {
    Song song;
    song.info().setTitle("Kept");
    ASSERT_EQ(song.loadFromTextString("one"), StatusSuccess);
    ASSERT_EQ(song.loadFromTextString("\ttwo"), StatusSuccess);
    ASSERT_EQ(song.loadFromTextString(" \t\n\n\t \n"), StatusSuccess);
    TempFolder folder;
    EXPECT_EQ(song.loadFromTextFile(folder.file("missing.txt")), Status(ENOENT));
    EXPECT_EQ(song.info().title() + " " + outline(song), "Kept V1: one | C1: two");
}

// The writer puts the uuid and the time in front of the first lyric line;
// the reader takes them back as the song's, and only a prefix of exactly
// that shape.
TEST(SongTextTest, TheWrittenUuidAndTimeAreTheSongsNotItsFirstLine) {
    Song song;
    ASSERT_EQ(song.loadFromText("<uuid>ab-12</uuid><updated>20240131174502</updated>Praise Him\r\n"
                                "from whom\r\n"),
              StatusSuccess);
    EXPECT_EQ(song.uuid(), "ab-12");
    EXPECT_EQ(song.updated().format("%Y%m%d%H%M%S"), "20240131174502");
    EXPECT_EQ(outline(song), "V1: Praise Him/from whom");

    // A song without lyrics keeps its uuid and has no section.
    ASSERT_EQ(song.loadFromText("<uuid>ab-12</uuid><updated>20240131174502</updated>"),
              StatusSuccess);
    EXPECT_EQ(song.uuid() + " " + std::to_string(song.getSectionCount()), "ab-12 0");

    for (const char* text :
         {"<uuid>ab</uuid><updated>yesterday</updated>Hi",
          "<uuid>a<b</uuid><updated>20240131174502</updated>Hi", "<uuid>ab</uuid>Hi",
          " <uuid>ab</uuid><updated>20240131174502</updated>Hi"}) {
        ASSERT_EQ(song.loadFromText(text), StatusSuccess);
        EXPECT_EQ(song.uuid(), "") << text;
        EXPECT_EQ(outline(song), "V1: " + strip(text)) << text;
    }
}

}  // namespace
}  // namespace melodex
