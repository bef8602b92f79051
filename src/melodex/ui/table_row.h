#pragma once

// A row of a table: its cells left to right, and the flags the table draws
// and keeps by (selected, header; focus is kept but never drawn). The row
// owns its cells, held by value; a pointer from cell() stays valid until the
// row gains or loses cells, or is copied over or destroyed. Copies point
// their cells at themselves.
//
// Laying out a row measures each cell and evens it with its column: a cell
// narrower than its column's header cell is widened to it, a wider one
// widens the header. The table runs this twice over all rows, so that every
// cell ends as wide as the widest text of its column.

#include <vector>

#include "melodex/ui/table_cell.h"

namespace melodex {

// The fills of selected and header rows, and the text colour drawn on them.
inline constexpr Color SelectedRowColor = makeColor(100, 100, 255);
inline constexpr Color HeaderRowColor = makeColor(0, 0, 128);
inline constexpr Color HighlightTextColor = makeColor(255, 255, 255);

class TableRow : public TableObject {
public:
    TableRow() = default;
    TableRow(const TableRow& other);
    TableRow& operator=(const TableRow& other);

    // Cell `index`, after growing the row with empty cells up to it; null for
    // a negative index.
    TableCell* cell(int index);
    int cellcount() const { return int(m_cells.size()); }
    void clear() { m_cells.clear(); }

    bool selected() const { return m_selected; }
    void selected(bool selected) { m_selected = selected; }
    bool focus() const { return m_focus; }
    void focus(bool focus) { m_focus = focus; }
    bool header() const { return m_header; }
    void header(bool header) { m_header = header; }
    // The page the printing code put the row on.
    int page() const { return m_page; }
    void page(int page) { m_page = page; }

    // Height: the tallest cell; width: the sum of the cells' widths after
    // evening them with their columns.
    Size calculate(DrawContext& dc, int layout) override;
    // Places the row and then its cells left to right from x.
    void position(int layout, std::int32_t x, std::int32_t y) override;
    // A selected row is filled with SelectedRowColor, else a header row with
    // HeaderRowColor, both with white text; any other row has black text and
    // no fill.
    void draw(DrawContext& dc, int layout) override;

protected:
    // The cell in column `index` when the row has one, without growing.
    TableCell* existingCell(int index);

private:
    void adoptCells();

    std::vector<TableCell> m_cells;
    bool m_selected = false;
    bool m_focus = false;
    bool m_header = false;
    int m_page = 0;
};

}  // namespace melodex
