#pragma once

// The base of the parts of an owner-drawn table (Table, TableRow,
// TableCell): a text and, for each of two kinds of device, the extent the
// object measured and the rectangle it was placed in.
//
// Layout 0 is the screen's and layout 1 the printer's; layoutIndex() picks
// one by whether the context prints. Laying a table out for the printer
// therefore never disturbs what the screen shows or hit-tests, and back.
// Geometry is in whole points; all of it is zero and the text empty after
// construction.
//
// The table and row pointers are back links, not owned: a table owns its
// rows and a row its cells, and the owners keep these links right when they
// are copied.

#include <cstdint>

#include "melodex/foundation/text.h"
#include "melodex/ui/draw_context.h"
#include "melodex/ui/geometry.h"

namespace melodex {

class Table;
class TableRow;

class TableObject {
public:
    static constexpr int ScreenLayout = 0;
    static constexpr int PrinterLayout = 1;

    // 1 when the context is printing, else 0.
    static int layoutIndex(const DrawContext& dc) {
        return dc.isPrinting() ? PrinterLayout : ScreenLayout;
    }

    TableObject() = default;
    TableObject(const TableObject&) = default;
    TableObject& operator=(const TableObject&) = default;
    virtual ~TableObject();

    // Measures the object in the context's current font for that layout,
    // stores the extent and returns it.
    virtual Size calculate(DrawContext& dc, int layout) = 0;
    // Places the object with its top-left corner at (x, y).
    virtual void position(int layout, std::int32_t x, std::int32_t y);
    virtual void draw(DrawContext& dc, int layout) = 0;

    // Makes the object `width` wide, keeping its left edge.
    void adjustWidth(int layout, std::int32_t width);

    Table* table() const { return m_table; }
    void table(Table* table) { m_table = table; }
    TableRow* row() const { return m_row; }
    void row(TableRow* row) { m_row = row; }

    // A layout index other than 0 or 1 gives an empty rectangle or extent.
    const Rect& rect(int layout) const;
    const Size& size(int layout) const;

    const String& text() const { return m_text; }
    void text(const String& text) { m_text = text; }

protected:
    static bool isLayout(int layout) { return layout == ScreenLayout || layout == PrinterLayout; }

    Table* m_table = nullptr;
    TableRow* m_row = nullptr;
    Rect m_rect[2];
    Size m_size[2];
    String m_text;
};

}  // namespace melodex
