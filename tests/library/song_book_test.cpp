#include "melodex/library/song_book.h"

#include <cerrno>

#include <gtest/gtest.h>

#include "melodex/library/song_book_entry.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

TEST(SongBookTest, ReadsItsFileAndEntriesKeepTheirOwnPage) {
    test::TempFolder folder;
    EXPECT_EQ(SongBook().loadFromFile(folder.file("missing.book")), ENOENT);
    EXPECT_EQ(SongBook().loadFromFile(folder.write("hymnal.book", "1 Amazing Grace\n")), 0);
    EXPECT_NE(SongBook().loadFromFile(folder.path()), 0) << "a folder is no book file";
    SongBookEntry entry(3, 1, "Amazing grace");  // number, then kind
    entry.setPage(42);
    SongBookEntry target(9, 0, "Old");
    target.setPage(7);
    target = entry;
    EXPECT_EQ(target.text() + " " + std::to_string(target.index()) + std::to_string(target.type()),
              "Amazing grace 31");
    EXPECT_EQ(target.page(), 7) << "the page is not assigned";
    EXPECT_EQ(SongBookEntry(entry).page(), 0) << "nor copied";
}

}  // namespace
}  // namespace melodex
