#include "melodex/app/string_tables.h"

#include <gtest/gtest.h>

#include "melodex/app/globals.h"
#include "melodex/song/song.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

TEST(StringTablesTest, LaterFrontTablesWinAndGapsFallThrough) {
    test::TempFolder folder;
    const String library = folder.write("Melodex.ini",
                                        "[SongFileType]\n"
                                        "standard=Song file\n"
                                        "text=Text file\n"
                                        "[Messages]\n"
                                        "20000=The file %1 is not a valid song file.\n");
    const String program = folder.write("Scrivel.ini",
                                        "[SongFileType]\n"
                                        "standard=Scrivel song\n");
    StringTables tables;
    EXPECT_TRUE(tables.addTable(library, true));
    EXPECT_TRUE(tables.addTable(program, true));
    EXPECT_FALSE(tables.addTable(folder.file("missing.ini"), true));
    EXPECT_EQ(tables.getTableCount(), 2);

    EXPECT_EQ(tables.loadString("SongFileType", "standard", "?"), "Scrivel song");
    EXPECT_EQ(tables.loadString("songfiletype", "TEXT", "?"), "Text file");
    EXPECT_EQ(tables.loadString("Messages", "20000", ""), "The file %1 is not a valid song file.");
    EXPECT_EQ(tables.loadString("Messages", "20001", "Choir"), "Choir");
    EXPECT_EQ(tables.loadString("Nowhere", "x", ""), "");

    StringTables backOrder;
    ASSERT_TRUE(backOrder.addTable(library, false));
    ASSERT_TRUE(backOrder.addTable(program, false));
    EXPECT_EQ(backOrder.loadString("SongFileType", "standard", "?"), "Song file");
}

TEST(StringTablesTest, ServicesObjectAndSongShareTheProcessTables) {
    test::TempFolder folder;
    const String table = folder.write("Melodex.ini",
                                      "[SongFileType]\n"
                                      "sng=Creative Lifestyles song\n"
                                      "unknown=Unknown file\n");
    StringTables::instance().clear();
    EXPECT_EQ(Song::getFileTypeName(3), "");
    theBaseApp.addStringTable(table, true);
    EXPECT_EQ(Song::getFileTypeName(3), "Creative Lifestyles song");
    EXPECT_EQ(Song::getFileTypeName(6), "Unknown file");
    EXPECT_EQ(Song::getFileTypeName(1), "");
    EXPECT_EQ(theBaseApp.loadString("SongFileType", "sng", "x"), "Creative Lifestyles song");
    StringTables::instance().clear();
}

}  // namespace
}  // namespace melodex
