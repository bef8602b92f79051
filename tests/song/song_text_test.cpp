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

}  // namespace
}  // namespace melodex
