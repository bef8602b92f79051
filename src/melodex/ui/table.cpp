#include "melodex/ui/table.h"

#include <algorithm>

namespace melodex {

namespace {

// The text a cell gets when its row or column is made for it, so that an
// untouched cell still has a line's height.
constexpr const char* BlankCellText = " ";

}  // namespace

Table::Table()
    : m_bodyFont{"Arial", 9.0, false, false, 0}, m_headerFont{"Arial", 9.0, true, false, 0} {
    m_table = this;
    header(true);
}

Table::Table(const Table& other)
    : TableRow(other), m_bodyFont(other.m_bodyFont), m_headerFont(other.m_headerFont) {
    m_rows.reserve(other.m_rows.size());
    for (const auto& row : other.m_rows)
        m_rows.push_back(std::make_unique<TableRow>(*row));
    adoptRows();
}

Table& Table::operator=(const Table& other) {
    if (this == &other) return *this;
    TableRow::operator=(other);
    std::vector<std::unique_ptr<TableRow>> rows;
    rows.reserve(other.m_rows.size());
    for (const auto& row : other.m_rows)
        rows.push_back(std::make_unique<TableRow>(*row));
    m_rows = std::move(rows);
    m_bodyFont = other.m_bodyFont;
    m_headerFont = other.m_headerFont;
    adoptRows();
    return *this;
}

Table::~Table() = default;

// Points the header, every row and every cell at this table.
void Table::adoptRows() {
    m_table = this;
    for (int column = 0; column < cellcount(); ++column)
        existingCell(column)->table(this);
    for (auto& row : m_rows) {
        row->table(this);
        for (int column = 0; column < row->cellcount(); ++column)
            row->cell(column)->table(this);
    }
}

TableCell* Table::addColumn(const String& title) {
    const int index = cellcount();
    TableCell* header = cell(index);
    header->text(title);
    header->table(this);
    for (auto& row : m_rows) {
        TableCell* added = row->cell(index);
        added->text(BlankCellText);
        added->table(this);
    }
    return header;
}

TableCell* Table::column(int index) {
    return existingCell(index);
}

TableRow* Table::addRow() {
    auto row = std::make_unique<TableRow>();
    row->table(this);
    for (int column = 0; column < cellcount(); ++column) {
        TableCell* added = row->cell(column);
        added->text(BlankCellText);
        added->table(this);
    }
    m_rows.push_back(std::move(row));
    return m_rows.back().get();
}

TableRow* Table::row(int index) const {
    return index >= 0 && index < rowcount() ? m_rows[std::size_t(index)].get() : nullptr;
}

void Table::removeRow(int index) {
    if (index < 0 || index >= rowcount()) return;
    m_rows.erase(m_rows.begin() + index);
}

void Table::moveRow(int from, int to) {
    if (from < 0 || from >= rowcount() || to < 0 || to >= rowcount()) return;
    // The row object itself moves, so pointers to it stay good; the result
    // is the same as copying it out and inserting the copy.
    std::unique_ptr<TableRow> moving = std::move(m_rows[std::size_t(from)]);
    m_rows.erase(m_rows.begin() + from);
    m_rows.insert(m_rows.begin() + to, std::move(moving));
}

void Table::clear() {
    m_rows.clear();
    TableRow::clear();
}

void Table::calculate(DrawContext& dc, const Rect& rect) {
    const int layout = layoutIndex(dc);
    DrawStateSaver saved(dc);

    dc.setFont(m_headerFont);
    std::int32_t width = std::max(0, TableRow::calculate(dc, layout).width);

    // The first pass widens each column to its widest cell; only the second
    // brings the cells of earlier rows up to those final widths.
    dc.setFont(m_bodyFont);
    for (int pass = 0; pass < 2; ++pass) {
        for (auto& row : m_rows)
            width = std::max(width, row->calculate(dc, layout).width);
    }

    m_size[layout].width = width;
    TableRow::position(layout, rect.left, rect.top);
    std::int32_t y = rect.top + m_size[layout].height;
    for (auto& row : m_rows) {
        row->position(layout, rect.left, y);
        y += row->size(layout).height;
    }
}

void Table::draw(DrawContext& dc) {
    const int layout = layoutIndex(dc);
    DrawStateSaver saved(dc);
    dc.setBackgroundMode(BackgroundMode::Transparent);
    dc.setFont(m_headerFont);
    TableRow::draw(dc, layout);
    dc.setFont(m_bodyFont);
    for (auto& row : m_rows)
        row->draw(dc, layout);
}

int Table::getSelectedRowIndex(Point point, bool extend) const {
    for (int index = 0; index < rowcount(); ++index) {
        if (m_rows[std::size_t(index)]->rect(ScreenLayout).contains(point)) return index;
    }
    if (extend && !m_rows.empty() && point.y >= m_rows.back()->rect(ScreenLayout).bottom)
        return rowcount();
    return -1;
}

TableRow* Table::getSelectedRow(Point point) const {
    const int index = getSelectedRowIndex(point, false);
    return index >= 0 ? m_rows[std::size_t(index)].get() : nullptr;
}

}  // namespace melodex
