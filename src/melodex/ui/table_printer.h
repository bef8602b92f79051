#pragma once

// Prints a Table over as many pages as its rows need: a title at the top of
// every page, the header row repeated under it, the rows that fit, and the
// page number at the foot.
//
//     PdfDocument pdf(PageSizeA4);                // melodex::render
//     TablePrintOptions options;
//     options.title = "Song library";
//     int pages = printTable(pdf.context(), table, options);
//
// The table is laid out for the context's kind of device (the printer's
// layout on a printing context) between the margins, and each row is then
// placed on its page, which row->page() tells afterwards (0 for the first).
// A row taller than a page gets a page of its own and is cut off at the
// foot. A table wider than the page is not narrowed: give it shorter texts.

#include "melodex/display/gfont.h"
#include "melodex/foundation/text.h"
#include "melodex/ui/draw_context.h"
#include "melodex/ui/table.h"

namespace melodex {

struct TablePrintOptions {
    String title;  // empty: no title line
    GFont titleFont{"Arial", 14.0, true, false, 0};
    GFont footerFont{"Arial", 8.0, false, false, 0};
    double margin = 36.0;     // points, on every side
    bool pageNumbers = true;  // "2 / 5" centred at the foot
};

// Returns the number of pages drawn: all of them on a printing context; on a
// context with a single page (an image) only what fits on the first.
int printTable(DrawContext& dc, Table& table, const TablePrintOptions& options = {});

}  // namespace melodex
