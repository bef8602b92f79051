#include "melodex/render/table_pdf.h"

#include <algorithm>
#include <cerrno>

#include <gtest/gtest.h>

#include "melodex/render/png_image.h"
#include "support/pdf_text.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using test::TempFolder;

Table songTable(int rows) {
    Table table;
    table.addColumn(" Title ");
    table.addColumn(" Key ");
    table.addColumn(" Author ");
    const char* songs[][3] = {
        {"Amazing Grace", "G", "John Newton"}, {"Stille Nacht", "Bb", "Joseph Mohr & Franz Gruber"},
        {"Слава Отцу", "Dm", "Традиционный"},  {"הללויה", "Em", "תהלים"},
        {"奇异恩典", "F", "约翰·牛顿"},
    };
    for (int i = 0; i < rows; ++i) {
        TableRow* row = table.addRow();
        for (int column = 0; column < 3; ++column)
            row->cell(column)->text(" " + String(songs[i % 5][column]) + " ");
    }
    return table;
}

std::vector<Rect> cellRects(Table& table, int layout) {
    std::vector<Rect> rects;
    for (int column = 0; column < table.cellcount(); ++column)
        rects.push_back(table.column(column)->rect(layout));
    for (int i = 0; i < table.rowcount(); ++i) {
        for (int column = 0; column < table.row(i)->cellcount(); ++column)
            rects.push_back(table.row(i)->cell(column)->rect(layout));
    }
    return rects;
}

TEST(TableOnCairoTest, KeepsAScreenAndAPrinterLayoutOfItsOwn) {
    Table table = songTable(5);
    PngImage image({400, 200});  // 96 dpi: metrics hinted to its pixels
    PdfDocument pdf;
    table.calculate(image.context(), {8, 8, 392, 192});
    const std::vector<Rect> screen = cellRects(table, 0);
    table.calculate(pdf.context(), {36, 72, 559, 800});
    const std::vector<Rect> printer = cellRects(table, 1);

    // Printing did not move the screen's layout, and each layout is what its
    // device gives on its own.
    EXPECT_EQ(cellRects(table, 0), screen);
    Table fresh = songTable(5);
    fresh.calculate(pdf.context(), {36, 72, 559, 800});
    EXPECT_EQ(cellRects(fresh, 1), printer);
    EXPECT_EQ(cellRects(fresh, 0), std::vector<Rect>(screen.size()));
    EXPECT_EQ(table.rect(0).left, 8);
    EXPECT_EQ(table.rect(1).top, 72);

    // Hinted screen metrics and unhinted paper metrics give different widths.
    std::vector<std::int32_t> screenWidths, printerWidths;
    for (int column = 0; column < 3; ++column) {
        screenWidths.push_back(table.column(column)->size(0).width);
        printerWidths.push_back(table.column(column)->size(1).width);
    }
    EXPECT_NE(screenWidths, printerWidths);

    // Columns line up in both layouts.
    for (int layout : {0, 1}) {
        for (int i = 0; i < table.rowcount(); ++i) {
            for (int column = 0; column < 3; ++column)
                EXPECT_EQ(table.row(i)->cell(column)->rect(layout).left,
                          table.column(column)->rect(layout).left);
        }
    }

    // A click lands on the screen's rows whatever was printed since.
    const Rect third = table.row(2)->rect(0);
    EXPECT_EQ(table.getSelectedRowIndex({third.left + 1, third.top + 1}, false), 2);
    EXPECT_EQ(table.getSelectedRowIndex({third.left + 1, table.row(4)->rect(0).bottom}, true), 5);
}

TEST(TableOnCairoTest, DrawsTheFillsAndWhiteTextOnAnImage) {
    Table table = songTable(3);
    table.row(1)->selected(true);
    PngImage image({400, 120}, 72);
    table.calculate(image.context(), {0, 0, 400, 120});
    table.draw(image.context());

    const Rect header = table.rect(0);
    const Rect selected = table.row(1)->rect(0);
    const Rect plain = table.row(0)->rect(0);
    EXPECT_EQ(image.pixel(header.left + 1, header.top + 1), makeColor(0, 0, 128));
    EXPECT_EQ(image.pixel(selected.left + 1, selected.top + 1), makeColor(100, 100, 255));
    EXPECT_EQ(image.pixel(plain.left + 1, plain.top + 1), 0xFFFFFFu);
    EXPECT_EQ(image.pixel(header.right + 2, header.top + 1), 0xFFFFFFu);

    // Light text over the header, dark text over a plain row (the edges of
    // the letters are blended with what is under them).
    auto light = [](Color c) { return redOf(c) > 0xC0 && greenOf(c) > 0xC0 && blueOf(c) > 0xC0; };
    auto dark = [](Color c) { return redOf(c) < 0x60 && greenOf(c) < 0x60 && blueOf(c) < 0x60; };
    int whiteOnHeader = 0, darkOnPlain = 0;
    for (int y = header.top; y < header.bottom; ++y)
        for (int x = header.left; x < header.right; ++x)
            whiteOnHeader += light(image.pixel(x, y));
    for (int y = plain.top; y < plain.bottom; ++y)
        for (int x = plain.left; x < plain.right; ++x)
            darkOnPlain += dark(image.pixel(x, y));
    EXPECT_GT(whiteOnHeader, 10);
    EXPECT_GT(darkOnPlain, 10);
}

TEST(TableOnCairoTest, PrintsAllRowsOverPagesToAPdf) {
    TempFolder folder;
    Table table = songTable(150);
    TablePrintOptions options;
    options.title = "Song library: 150 songs";
    const String path = folder.file("library.pdf");
    const PrintResult printed = printTableToPdf(table, path, options);
    EXPECT_FALSE(printed.error) << printed.error.message();
    EXPECT_EQ(printed.pages, table.row(149)->page() + 1);
    EXPECT_GE(printed.pages, 3);
    // Every page but the last is full: the rows are in order, none is lost.
    for (int i = 1; i < 150; ++i)
        EXPECT_GE(table.row(i)->page(), table.row(i - 1)->page());

    const std::optional<String> text = test::pdfText(path);
    if (!text) GTEST_SKIP() << "pdftotext is not installed";
    EXPECT_EQ(std::count(text->begin(), text->end(), '\f'), printed.pages);
    for (const char* expected : {"Song library: 150 songs", "Title", "Author", "Amazing Grace",
                                 "Joseph Mohr & Franz Gruber", "Слава Отцу", "奇异恩典", "Bb"}) {
        EXPECT_NE(text->find(expected), String::npos) << expected;
    }
    // Page numbers (pdftotext closes up the blanks around the slash).
    EXPECT_NE(text->find("1/" + std::to_string(printed.pages)), String::npos);
    // The header row is repeated on every page.
    std::size_t headers = 0;
    for (std::size_t at = text->find("Author"); at != String::npos;
         at = text->find("Author", at + 1))
        ++headers;
    EXPECT_EQ(headers, std::size_t(printed.pages));
}

TEST(TableOnCairoTest, AFailedWriteSaysWhereAndWhy) {
    TempFolder folder;
    Table table = songTable(2);
    const String path = folder.file("no folder/library.pdf");
    const PrintResult printed = printTableToPdf(table, path);
    EXPECT_EQ(printed.pages, 0);
    EXPECT_EQ(printed.error.status, Status(ENOENT));
    EXPECT_EQ(printed.error.path, path);

    const std::string bytes = printTableToPdf(table);
    EXPECT_EQ(bytes.rfind("%PDF-", 0), 0u);
}

}  // namespace
}  // namespace melodex
