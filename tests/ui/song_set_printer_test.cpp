#include "melodex/ui/song_set_printer.h"

#include <algorithm>
#include <utility>

#include <gtest/gtest.h>

#include "melodex/display/song_display_profile.h"
#include "melodex/library/song_set.h"
#include "melodex/ui/fixed_advance_draw_context.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using Op = FixedAdvanceDrawContext::Operation;

// A set of a song file (moved down two, capo 3), a gap, a line, a missing
// file and an embedded song in F.
class SongSetPrinterTest : public ::testing::Test {
protected:
    SongSetPrinterTest() {
        m_folder.write("grace.song",
                       "<song><info><title>Amazing Grace</title><key>G</key></info>"
                       "<block type=\"Verse\" id=\"V1\"><line><chord>G</chord>Amazing "
                       "<chord>C</chord>grace</line></block></song>");
        m_folder.write(
            "service.set",
            "<songset>"
            "<songentry transpose=\"-2\" capo=\"3\" tempo=\"80\"><filename>grace.song</filename>"
            "</songentry><gap/><line/>"
            "<songentry><filename>gone.song</filename></songentry>"
            "<songentry sequence=\"V1,V1\"><song><info><title>Doxology</title><key>F</key></info>"
            "<block type=\"Verse\" id=\"V1\"><line><chord>F</chord>Praise God</line></block>"
            "</song></songentry></songset>");
        EXPECT_EQ(m_set.loadFromFile(m_folder.file("service.set")), StatusSuccess);
        m_chords.create("Chords", "Chords", 3, 0xD8F33, 18, 0, false, false, false);
        m_guitar.create("Guitar", "Guitar", 3, 0xD8F33, 18, 0, false, true, false);
        m_words.create("Words", "Words", 3, 0x18F31, 18, 0, false, false, false);
    }

    static std::vector<StringArray> cells(Table&& table) {
        std::vector<StringArray> rows;
        for (int i = 0; i < table.rowcount(); ++i) {
            StringArray row;
            for (int column = 0; column < table.row(i)->cellcount(); ++column)
                row.push_back(table.row(i)->cell(column)->text());
            rows.push_back(row);
        }
        return rows;
    }

    test::TempFolder m_folder;
    SongSet m_set;
    SongDisplayProfile m_chords;
    SongDisplayProfile m_guitar;
    SongDisplayProfile m_words;
};

TEST_F(SongSetPrinterTest, TheRunningOrderListsEveryItemWhereItStood) {
    Table table = runningOrderTable(m_set, m_chords);
    ASSERT_EQ(table.columncount(), 5);
    EXPECT_EQ(table.column(1)->text(), " Title ");
    const std::vector<StringArray> rows = cells(std::move(table));
    const std::vector<StringArray> expected = {
        {" 1 ", " Amazing Grace ", " F ", " 3 ", " transpose -2, tempo 80 "},
        {" ", " ", " ", " ", " "},
        {" ", " \u2014\u2014\u2014\u2014\u2014\u2014 ", " ", " ", " "},
        {" 4 ", " (missing) gone.song: No such file or directory ", " ", " ", " "},
        {" 5 ", " Doxology ", " F ", " ", " order V1,V1 "},
    };
    EXPECT_EQ(rows, expected);

    // The capo a profile gives a song in F; none where no chords show.
    EXPECT_EQ(cells(runningOrderTable(m_set, m_guitar))[4][3], " 3 ");
    EXPECT_EQ(cells(runningOrderTable(m_set, m_words))[0][3], " ");
}

TEST_F(SongSetPrinterTest, PrintsTheRunningOrderThenTheSongsNumberedOn) {
    FixedAdvanceDrawContext dc(true);
    SongSetPrintOptions options;
    options.title = "Sunday";
    EXPECT_EQ(printSongSet(dc, m_set, m_chords, options), 2);
    EXPECT_EQ(dc.pageCount(), 2);
    EXPECT_EQ(dc.stateDepth(), 0);

    StringArray firstPage;
    StringArray secondPage;
    for (const Op& op : dc.operations()) {
        if (op.kind != Op::Kind::Fill) (op.page == 0 ? firstPage : secondPage).push_back(op.text);
    }
    EXPECT_EQ(firstPage.front(), "Sunday");
    // The songs as their entries say: in F, played in D shapes; the
    // Doxology's verse twice; the page numbered after the running order.
    for (const char* text :
         {"Amazing Grace", "Key: F    Capo: 3    Tempo: 80", "D", "G", "Doxology", "2 / 2"}) {
        EXPECT_NE(std::find(secondPage.begin(), secondPage.end(), text), secondPage.end()) << text;
    }
    EXPECT_EQ(std::count(secondPage.begin(), secondPage.end(), String("Praise God")), 2);
    EXPECT_EQ(std::find(firstPage.begin(), firstPage.end(), String("1 / 2")), firstPage.end());
}

TEST_F(SongSetPrinterTest, AScreenImageShowsTheRunningOrderOnly) {
    FixedAdvanceDrawContext dc(false);
    EXPECT_EQ(printSongSet(dc, m_set, m_chords), 1);
    bool heading = false;
    for (const Op& op : dc.operations()) {
        EXPECT_NE(op.text, "Praise God");
        heading = heading || op.text == "Running order";
    }
    EXPECT_TRUE(heading);
}

}  // namespace
}  // namespace melodex
