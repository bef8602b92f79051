#include "melodex/ui/table_row.h"

#include <algorithm>

#include "melodex/ui/table.h"

namespace melodex {

TableRow::TableRow(const TableRow& other)
    : TableObject(other),
      m_cells(other.m_cells),
      m_selected(other.m_selected),
      m_focus(other.m_focus),
      m_header(other.m_header),
      m_page(other.m_page) {
    adoptCells();
}

TableRow& TableRow::operator=(const TableRow& other) {
    if (this == &other) return *this;
    TableObject::operator=(other);
    m_cells = other.m_cells;
    m_selected = other.m_selected;
    m_focus = other.m_focus;
    m_header = other.m_header;
    m_page = other.m_page;
    adoptCells();
    return *this;
}

void TableRow::adoptCells() {
    for (TableCell& cell : m_cells)
        cell.row(this);
}

TableCell* TableRow::cell(int index) {
    if (index < 0) return nullptr;
    if (index >= cellcount()) {
        m_cells.resize(std::size_t(index) + 1);
        // Growing may have moved every cell, so all of them are pointed at
        // the row again, not only the new ones.
        adoptCells();
    }
    return &m_cells[std::size_t(index)];
}

TableCell* TableRow::existingCell(int index) {
    return index >= 0 && index < cellcount() ? &m_cells[std::size_t(index)] : nullptr;
}

Size TableRow::calculate(DrawContext& dc, int layout) {
    if (!isLayout(layout)) return {};
    Size extent;
    for (int column = 0; column < cellcount(); ++column) {
        TableCell& cell = m_cells[std::size_t(column)];
        const Size measured = cell.calculate(dc, layout);
        TableCell* header = m_table != nullptr ? m_table->column(column) : nullptr;
        if (header != nullptr && header != &cell) {
            const std::int32_t columnWidth = header->size(layout).width;
            if (measured.width < columnWidth)
                cell.adjustWidth(layout, columnWidth);
            else if (measured.width > columnWidth)
                header->adjustWidth(layout, measured.width);
        }
        extent.height = std::max(extent.height, cell.size(layout).height);
        extent.width += cell.size(layout).width;
    }
    m_size[layout] = extent;
    return extent;
}

void TableRow::position(int layout, std::int32_t x, std::int32_t y) {
    if (!isLayout(layout)) return;
    TableObject::position(layout, x, y);
    for (TableCell& cell : m_cells) {
        cell.position(layout, x, y);
        x = cell.rect(layout).right;
    }
}

void TableRow::draw(DrawContext& dc, int layout) {
    if (!isLayout(layout)) return;
    if (m_selected || m_header) {
        dc.fillRect(m_rect[layout], m_selected ? SelectedRowColor : HeaderRowColor);
        dc.setTextColor(HighlightTextColor);
    } else {
        dc.setTextColor(0);
    }
    for (TableCell& cell : m_cells)
        cell.draw(dc, layout);
}

}  // namespace melodex
