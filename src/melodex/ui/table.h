#pragma once

// A small owner-drawn table for a window or a printed page: a header row of
// column titles and any number of body rows of text cells. The table is its
// own header row: its cells are the column headers.
//
//     Table table;
//     table.addColumn(" Title ");
//     table.addColumn(" Key ");
//     TableRow* row = table.addRow();
//     row->cell(0)->text(" Amazing Grace ");
//     row->cell(1)->text(" G ");
//     table.calculate(dc, {36, 36, 559, 806});  // lays out for dc's kind of device
//     table.draw(dc);
//     int hit = table.getSelectedRowIndex(click, false);  // screen layout
//
// Every column is as wide as its widest text; rows stack below the header
// without gaps. The table keeps one layout for the screen and one for the
// printer (chosen by whether the context prints), so printing never moves
// what the screen shows; hit-testing always uses the screen layout.
//
// The table owns its rows; a pointer from row() or addRow() stays valid
// until that row is removed or the table is cleared, assigned to or
// destroyed (moving a row keeps it valid). Copies are deep and point their
// rows and cells at themselves.

#include <memory>
#include <vector>

#include "melodex/display/gfont.h"
#include "melodex/ui/table_row.h"

namespace melodex {

class Table : public TableRow {
public:
    // Body: Arial 9 points; header: Arial 9 points bold.
    Table();
    Table(const Table& other);
    Table& operator=(const Table& other);
    ~Table() override;

    // Appends a column: its header cell gets the title, and every existing
    // row a cell holding " " in it. Returns the header cell.
    TableCell* addColumn(const String& title);
    // The header cell of that column; null when there is no such column.
    TableCell* column(int index);
    int columncount() const { return cellcount(); }

    // Appends a row with one cell holding " " per column.
    TableRow* addRow();
    int rowcount() const { return int(m_rows.size()); }
    // Null when the index is out of range.
    TableRow* row(int index) const;
    // Ignored unless 0 <= index < rowcount().
    void removeRow(int index);
    // Takes row `from` out and puts it back at `to`, counted after the
    // removal; nothing happens unless both are in 0 .. rowcount() - 1.
    void moveRow(int from, int to);
    // Removes every row, then every column.
    void clear();

    const GFont& bodyFont() const { return m_bodyFont; }
    void bodyFont(const GFont& font) { m_bodyFont = font; }
    const GFont& headerFont() const { return m_headerFont; }
    void headerFont(const GFont& font) { m_headerFont = font; }

    // Lays the table out for the context's kind of device with its top-left
    // corner at the rectangle's (only the corner is used: the table is as
    // large as its text). The context's state is kept.
    void calculate(DrawContext& dc, const Rect& rect);
    // Draws the layout of the context's kind of device. The context's state
    // is kept.
    void draw(DrawContext& dc);
    using TableRow::calculate;
    using TableRow::draw;

    // The first row whose screen rectangle holds the point; -1 when none,
    // except that with `extend` a point below the last row (at or past its
    // bottom edge) gives rowcount(), the drop position after the end.
    int getSelectedRowIndex(Point point, bool extend) const;
    // The first row whose screen rectangle holds the point, or null.
    TableRow* getSelectedRow(Point point) const;

private:
    void adoptRows();

    std::vector<std::unique_ptr<TableRow>> m_rows;
    GFont m_bodyFont;
    GFont m_headerFont;
};

}  // namespace melodex
