#include "melodex/ui/table.h"

#include <gtest/gtest.h>

#include "melodex/ui/fixed_advance_draw_context.h"
#include "melodex/ui/table_printer.h"

namespace melodex {
namespace {

using Op = FixedAdvanceDrawContext::Operation;

// Fonts of 8 points on the fixed-advance context: every code point is 4
// points wide and every line 10 points high.
void useEightPoints(Table& table) {
    table.bodyFont({"Arial", 8.0, false, false, 0});
    table.headerFont({"Arial", 8.0, true, false, 0});
}

// Title | Key with rows "A" G, "Amazing Grace" Bb, "Be Still" D.
Table hymnTable() {
    Table table;
    useEightPoints(table);
    table.addColumn("Title");
    table.addColumn("Key");
    const char* rows[][2] = {{"A", "G"}, {"Amazing Grace", "Bb"}, {"Be Still", "D"}};
    for (const auto& texts : rows) {
        TableRow* row = table.addRow();
        row->cell(0)->text(texts[0]);
        row->cell(1)->text(texts[1]);
    }
    return table;
}

std::vector<String> titles(Table& table) {
    std::vector<String> result;
    for (int i = 0; i < table.rowcount(); ++i)
        result.push_back(table.row(i)->cell(0)->text());
    return result;
}

TEST(TableTest, ColumnsAndRowsGiveEveryCellABlankText) {
    Table table;
    table.addColumn("Title");
    TableRow* first = table.addRow();
    TableRow* second = table.addRow();
    first->cell(0)->text("Abide");

    // A column added after rows exist reaches every row ...
    TableCell* key = table.addColumn("Key");
    EXPECT_EQ(key, table.column(1));
    EXPECT_EQ(key->text(), "Key");
    for (TableRow* row : {first, second}) {
        ASSERT_EQ(row->cellcount(), 2);
        EXPECT_EQ(row->cell(1)->text(), " ");
        EXPECT_EQ(row->cell(1)->row(), row);
        EXPECT_EQ(row->cell(1)->table(), &table);
    }
    EXPECT_EQ(first->cell(0)->text(), "Abide");

    // ... and a row added later has one blank cell per column.
    TableRow* third = table.addRow();
    ASSERT_EQ(third->cellcount(), 2);
    EXPECT_EQ(third->cell(0)->text(), " ");
    EXPECT_EQ(third->cell(1)->text(), " ");
    EXPECT_EQ(third->table(), &table);

    EXPECT_EQ(table.column(2), nullptr);
    EXPECT_EQ(table.column(-1), nullptr);
    EXPECT_EQ(table.row(3), nullptr);
    EXPECT_EQ(first->cell(-1), nullptr);

    // cell() grows the row with empty cells that point at it.
    TableCell* far = first->cell(4);
    EXPECT_EQ(first->cellcount(), 5);
    EXPECT_EQ(first->cell(3)->text(), "");
    EXPECT_EQ(far->row(), first);
    EXPECT_EQ(first->cell(0)->row(), first);
}

TEST(TableTest, EveryCellOfAColumnIsAsWideAsItsWidestText) {
    Table table = hymnTable();
    FixedAdvanceDrawContext dc;
    table.calculate(dc, {10, 20, 500, 800});

    // "Amazing Grace" (13 x 4) widens the "Title" header (5 x 4) and, after
    // the second pass, the "A" of the row above it; "Key" (3 x 4) stays the
    // widest of its column.
    for (TableRow* row :
         {static_cast<TableRow*>(&table), table.row(0), table.row(1), table.row(2)}) {
        EXPECT_EQ(row->cell(0)->size(0).width, 52) << row->cell(0)->text();
        EXPECT_EQ(row->cell(1)->size(0).width, 12) << row->cell(1)->text();
        EXPECT_EQ(row->size(0), (Size{64, 10}));
    }

    // Header at the corner, rows stacked below it, cells left to right.
    EXPECT_EQ(table.rect(0), (Rect{10, 20, 74, 30}));
    EXPECT_EQ(table.row(0)->rect(0), (Rect{10, 30, 74, 40}));
    EXPECT_EQ(table.row(2)->rect(0), (Rect{10, 50, 74, 60}));
    EXPECT_EQ(table.row(1)->cell(1)->rect(0), (Rect{62, 40, 74, 50}));
    EXPECT_EQ(table.column(1)->rect(0), (Rect{62, 20, 74, 30}));
    // The printer's layout was not touched.
    EXPECT_EQ(table.row(1)->rect(1), Rect{});
}

TEST(TableTest, EmptyCellsMeasureNothingAndRowsTakeTheTallestCell) {
    Table table;
    useEightPoints(table);
    table.addColumn("");
    table.addColumn("B");
    TableRow* row = table.addRow();
    row->cell(0)->text("");
    row->cell(1)->text("");
    FixedAdvanceDrawContext dc;
    table.calculate(dc, {0, 0, 100, 100});
    EXPECT_EQ(table.column(0)->size(0), (Size{0, 0}));
    EXPECT_EQ(table.size(0), (Size{4, 10}));
    EXPECT_EQ(row->size(0), (Size{4, 0}));  // widened to the column, no text
    EXPECT_EQ(row->cell(1)->size(0), (Size{4, 0}));
}

TEST(TableTest, HitTestingFindsRowsAndTheDropPositionAfterTheLast) {
    Table table = hymnTable();
    FixedAdvanceDrawContext dc;
    table.calculate(dc, {10, 20, 500, 800});  // rows at y 30, 40, 50; bottom 60

    struct Case {
        Point point;
        int plain;
        int extending;
    } cases[] = {
        {{11, 35}, 0, 0},    {{73, 59}, 2, 2},   {{10, 40}, 1, 1},  // inside rows
        {{11, 25}, -1, -1},                                         // the header
        {{11, 5}, -1, -1},                                          // above the table
        {{11, 60}, -1, 3},   {{11, 400}, -1, 3},                    // below the last row
        {{300, 45}, -1, -1},                                        // beside a row
    };
    for (const Case& c : cases) {
        EXPECT_EQ(table.getSelectedRowIndex(c.point, false), c.plain)
            << c.point.x << "," << c.point.y;
        EXPECT_EQ(table.getSelectedRowIndex(c.point, true), c.extending)
            << c.point.x << "," << c.point.y;
    }
    EXPECT_EQ(table.getSelectedRow({11, 45}), table.row(1));
    EXPECT_EQ(table.getSelectedRow({11, 60}), nullptr);

    Table empty;
    EXPECT_EQ(empty.getSelectedRowIndex({0, 500}, true), -1);
}

TEST(TableTest, HitTestingUsesTheScreenLayoutAfterPrinting) {
    Table table = hymnTable();
    FixedAdvanceDrawContext screen(false);
    FixedAdvanceDrawContext printer(true, {595, 842}, 0.75);
    table.calculate(screen, {0, 0, 500, 800});
    const Rect onScreen = table.row(1)->rect(0);
    table.calculate(printer, {100, 300, 500, 800});

    EXPECT_EQ(table.row(1)->rect(0), onScreen);
    EXPECT_EQ(table.row(1)->rect(1), (Rect{100, 320, 100 + 13 * 6 + 3 * 6, 330}));
    EXPECT_EQ(table.getSelectedRowIndex({1, 25}, false), 1);
    EXPECT_EQ(table.getSelectedRowIndex({101, 325}, false), -1);
    EXPECT_EQ(table.getSelectedRowIndex({101, 325}, true), 3);
}

TEST(TableTest, MoveRowNeedsBothIndicesInRange) {
    Table table = hymnTable();
    TableRow* first = table.row(0);
    table.moveRow(0, 2);
    EXPECT_EQ(titles(table), (std::vector<String>{"Amazing Grace", "Be Still", "A"}));
    EXPECT_EQ(table.row(2), first);
    table.moveRow(2, 0);
    EXPECT_EQ(titles(table), (std::vector<String>{"A", "Amazing Grace", "Be Still"}));

    for (auto [from, to] : {std::pair{-1, 0}, {0, 3}, {3, 0}, {0, -1}}) {
        table.moveRow(from, to);
        EXPECT_EQ(titles(table), (std::vector<String>{"A", "Amazing Grace", "Be Still"}))
            << from << " -> " << to;
    }
}

TEST(TableTest, RemoveAndClear) {
    Table table = hymnTable();
    table.removeRow(3);
    table.removeRow(-1);
    EXPECT_EQ(table.rowcount(), 3);
    table.removeRow(1);
    EXPECT_EQ(titles(table), (std::vector<String>{"A", "Be Still"}));
    table.clear();
    EXPECT_EQ(table.rowcount(), 0);
    EXPECT_EQ(table.cellcount(), 0);
    TableCell* only = table.addColumn("Only");
    EXPECT_EQ(only, table.column(0));
}

TEST(TableTest, CopiesPointTheirRowsAndCellsAtThemselves) {
    Table original = hymnTable();
    original.row(1)->selected(true);
    Table copy(original);
    Table assigned;
    assigned = original;
    for (Table* table : {&copy, &assigned}) {
        ASSERT_EQ(table->rowcount(), 3);
        EXPECT_EQ(table->table(), table);
        EXPECT_EQ(table->column(0)->row(), table);
        EXPECT_TRUE(table->row(1)->selected());
        for (int i = 0; i < 3; ++i) {
            TableRow* row = table->row(i);
            EXPECT_NE(row, original.row(i));
            EXPECT_EQ(row->table(), table);
            EXPECT_EQ(row->cell(0)->row(), row);
            EXPECT_EQ(row->cell(1)->table(), table);
        }
    }
    FixedAdvanceDrawContext dc;
    copy.calculate(dc, {0, 0, 500, 500});  // widens the copy's header only
    EXPECT_EQ(copy.column(0)->size(0).width, 52);
    EXPECT_EQ(original.column(0)->size(0).width, 0);
}

TEST(TableTest, DrawsHeaderAndSelectedRowsFilledWithWhiteText) {
    Table table = hymnTable();
    table.row(1)->selected(true);
    table.row(2)->focus(true);  // kept, never drawn
    FixedAdvanceDrawContext dc(false);
    dc.setFont({"Courier", 20});
    dc.setTextColor(makeColor(1, 2, 3));
    table.calculate(dc, {0, 0, 500, 500});
    dc.clearOperations();
    table.draw(dc);

    std::vector<Op> fills, texts;
    for (const Op& op : dc.operations())
        (op.kind == Op::Kind::Fill ? fills : texts).push_back(op);
    ASSERT_EQ(fills.size(), 2u);
    EXPECT_EQ(fills[0].color, makeColor(0, 0, 128));
    EXPECT_EQ(fills[0].rect, RectF(table.rect(0)));
    EXPECT_EQ(fills[1].color, makeColor(100, 100, 255));
    EXPECT_EQ(fills[1].rect, RectF(table.row(1)->rect(0)));

    ASSERT_EQ(texts.size(), 8u);
    const Color white = makeColor(255, 255, 255);
    const Color expected[] = {white, white, 0, 0, white, white, 0, 0};
    for (std::size_t i = 0; i < texts.size(); ++i) {
        EXPECT_EQ(texts[i].kind, Op::Kind::WrappedText);
        EXPECT_EQ(texts[i].color, expected[i]) << texts[i].text;
        EXPECT_EQ(texts[i].background, BackgroundMode::Transparent);
        EXPECT_EQ(texts[i].font.bold, i < 2) << texts[i].text;
    }
    EXPECT_EQ(texts[2].rect, RectF(table.row(0)->cell(0)->rect(0)));
    EXPECT_EQ(texts[2].lines, StringArray{"A"});

    // The caller's state survives both calls.
    EXPECT_EQ(dc.stateDepth(), 0);
    EXPECT_EQ(dc.font(), (GFont{"Courier", 20}));
    EXPECT_EQ(dc.textColor(), makeColor(1, 2, 3));
    EXPECT_EQ(dc.backgroundMode(), BackgroundMode::Opaque);
}

TEST(TableTest, CellTextIsDrawnAsWrittenWithoutPrefixProcessing) {
    Table table;
    useEightPoints(table);
    table.addColumn("Words & Music");
    FixedAdvanceDrawContext dc;
    table.calculate(dc, {0, 0, 500, 500});
    table.draw(dc);
    ASSERT_FALSE(dc.operations().empty());
    EXPECT_EQ(dc.operations().back().lines, StringArray{"Words & Music"});
}

TEST(TablePrinterTest, SplitsRowsOverPagesWithTheHeaderOnEach) {
    Table table;
    useEightPoints(table);
    table.addColumn("Title");
    for (int i = 0; i < 25; ++i)
        table.addRow()->cell(0)->text("Song " + std::to_string(i));
    FixedAdvanceDrawContext dc(true, {200, 150});
    TablePrintOptions options;
    options.title = "Library";
    options.margin = 10;
    const int pages = printTable(dc, table, options);

    // The body runs from y 36 (10 + a title of 17.5 + 8, rounded up) to 122
    // (150 - 10 - a page number of 10 - 8): a header of 10 and 7 rows of 10
    // per page.
    EXPECT_EQ(pages, 4);
    EXPECT_EQ(dc.pageCount(), 4);
    for (int i = 0; i < 25; ++i)
        EXPECT_EQ(table.row(i)->page(), i / 7) << i;
    EXPECT_EQ(table.row(7)->rect(1), (Rect{10, 46, 10 + 7 * 4, 56}));  // "Song 24" is widest

    int headers = 0, numbers = 0, titlesDrawn = 0;
    for (const Op& op : dc.operations()) {
        if (op.kind == Op::Kind::WrappedText && op.text == "Title") ++headers;
        if (op.kind == Op::Kind::Text && op.text == "Library") ++titlesDrawn;
        if (op.kind == Op::Kind::Text && op.text == std::to_string(op.page + 1) + " / 4") ++numbers;
    }
    EXPECT_EQ(headers, 4);
    EXPECT_EQ(titlesDrawn, 4);
    EXPECT_EQ(numbers, 4);
    EXPECT_EQ(dc.stateDepth(), 0);
}

TEST(TablePrinterTest, AScreenGetsTheFirstPageOnly) {
    Table table;
    useEightPoints(table);
    table.addColumn("Title");
    for (int i = 0; i < 30; ++i)
        table.addRow()->cell(0)->text("Song");
    FixedAdvanceDrawContext dc(false, {200, 150});
    TablePrintOptions options;
    options.margin = 10;
    options.pageNumbers = false;
    EXPECT_EQ(printTable(dc, table, options), 1);
    EXPECT_EQ(table.row(11)->page(), 0);
    EXPECT_EQ(table.row(12)->page(), 1);  // 12 rows of 10 below the header
    for (const Op& op : dc.operations())
        EXPECT_EQ(op.page, 0);
}

TEST(FixedAdvanceDrawContextTest, MeasuresAndWrapsByCodePoints) {
    FixedAdvanceDrawContext dc;
    dc.setFont({"Arial", 10});
    EXPECT_EQ(dc.textExtent("Jésus"), (SizeF{25, 12.5}));
    EXPECT_EQ(dc.textExtent(""), (SizeF{0, 12.5}));
    EXPECT_EQ(dc.advanceTo("Jésus", 3), 15);
    EXPECT_EQ(dc.advanceTo("Jésus", 9), 25);
    EXPECT_EQ(dc.fontMetrics().ascent, 10);

    struct Case {
        const char* text;
        double width;
        StringArray lines;
    } cases[] = {
        {"Amazing grace how sweet", 65, {"Amazing grace", "how sweet"}},
        {"Amazing  grace", 200, {"Amazing grace"}},
        {"Hallelujah", 20, {"Hall", "eluj", "ah"}},
        {"one\n\ntwo", 200, {"one", "", "two"}},
        {"", 100, {""}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(dc.wrapLines(c.text, c.width), c.lines) << c.text;
    EXPECT_EQ(dc.wrappedTextHeight("Amazing grace how sweet", 65), 25);
}

TEST(FixedAdvanceDrawContextTest, StateNestsAndClipsIntersect) {
    FixedAdvanceDrawContext dc;
    dc.restoreState();  // without a save: nothing
    dc.saveState();
    dc.setTextColor(5);
    dc.clipTo({0, 0, 100, 100});
    dc.saveState();
    dc.clipTo({50, 50, 200, 200});
    dc.fillRect({0, 0, 1, 1}, 7);
    EXPECT_EQ(dc.operations().back().clip, (RectF{50, 50, 100, 100}));
    dc.restoreState();
    dc.restoreState();
    EXPECT_EQ(dc.textColor(), 0u);
    dc.fillRect({0, 0, 1, 1}, 7);
    EXPECT_FALSE(dc.operations().back().clip.has_value());
    EXPECT_FALSE(dc.newPage());
}

}  // namespace
}  // namespace melodex
