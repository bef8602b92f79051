#include "melodex/library/song_book.h"

#include <cerrno>

#include <gtest/gtest.h>

#include "melodex/library/song_book_entry.h"
#include "melodex/library/song_book_file.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

TEST(SongBookTest, LoadingReadsTheFileAndKeepsNothing) {
    test::TempFolder folder;
    SongBook book;
    EXPECT_TRUE(book.flag());
    EXPECT_EQ(book.loadFromFile(folder.file("missing.book")), ENOENT);
    EXPECT_EQ(book.loadFromFile(folder.write("empty.book", "")), 0);
    EXPECT_EQ(book.loadFromFile(folder.write("hymnal.book", "1 Amazing Grace\n2 Abide\n")), 0);
    EXPECT_NE(book.loadFromFile(folder.path()), 0) << "a folder is no book file";
}

TEST(SongBookTest, BookFilesKeepTheirIndexesInOrder) {
    SongBookFile file;
    file.setTitle("Hymns of the Church");
    file.addIndex("Morning");
    file.addIndex("Evening");
    ASSERT_EQ(file.getIndexCount(), 2);
    EXPECT_EQ(file.getIndex(0), "Morning");
    EXPECT_EQ(file.getIndex(1), "Evening");
    EXPECT_EQ(file.page(), 0);
}

TEST(SongBookTest, EntriesTakeNumberThenKindAndKeepTheirOwnPage) {
    SongBookEntry entry(3, 1, "Amazing grace");
    EXPECT_EQ(entry.index(), 3);
    EXPECT_EQ(entry.type(), 1);
    EXPECT_EQ(entry.page(), 0);
    entry.setPage(42);

    SongBookEntry target(9, 0, "Old");
    target.setPage(7);
    target = entry;
    EXPECT_EQ(target.text(), "Amazing grace");
    EXPECT_EQ(target.index(), 3);
    EXPECT_EQ(target.type(), 1);
    EXPECT_EQ(target.page(), 7) << "the page is not assigned";
    SongBookEntry copy(entry);
    EXPECT_EQ(copy.page(), 0) << "nor copied";
}

}  // namespace
}  // namespace melodex
