#include "melodex/ui/table_printer.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace melodex {

namespace {

// The space between the title or the page number and the table.
constexpr double SectionGap = 8.0;

}  // namespace

int printTable(DrawContext& dc, Table& table, const TablePrintOptions& options) {
    const int layout = TableObject::layoutIndex(dc);
    const SizeF page = dc.pageSize();
    DrawStateSaver saved(dc);
    dc.setBackgroundMode(BackgroundMode::Transparent);
    dc.setTextColor(0);

    double top = options.margin;
    double bottom = page.height - options.margin;
    if (!options.title.empty()) {
        dc.setFont(options.titleFont);
        top += dc.textExtent(options.title).height + SectionGap;
    }
    double footerHeight = 0;
    if (options.pageNumbers) {
        dc.setFont(options.footerFont);
        footerHeight = dc.fontMetrics().lineHeight;
        bottom -= footerHeight + SectionGap;
    }
    const Rect area{std::int32_t(std::ceil(options.margin)), std::int32_t(std::ceil(top)),
                    std::int32_t(std::floor(page.width - options.margin)),
                    std::int32_t(std::floor(bottom))};
    table.calculate(dc, area);

    // Rows go on the current page while they fit below the header; a row that
    // fits on no page still takes one of its own rather than none.
    const std::int32_t firstRowTop = area.top + table.size(layout).height;
    int lastPage = 0;
    std::int32_t y = firstRowTop;
    for (int index = 0; index < table.rowcount(); ++index) {
        TableRow* row = table.row(index);
        const std::int32_t height = row->size(layout).height;
        if (y > firstRowTop && y + height > area.bottom) {
            ++lastPage;
            y = firstRowTop;
        }
        row->page(lastPage);
        row->position(layout, area.left, y);
        y += height;
    }
    const int pageCount = lastPage + 1;

    for (int pageIndex = 0; pageIndex < pageCount; ++pageIndex) {
        if (pageIndex > 0 && !dc.newPage()) return pageIndex;
        if (!options.title.empty()) {
            dc.setFont(options.titleFont);
            dc.setTextColor(0);
            dc.drawText({double(area.left), options.margin}, options.title);
        }
        dc.setFont(table.headerFont());
        table.draw(dc, layout);
        dc.setFont(table.bodyFont());
        for (int index = 0; index < table.rowcount(); ++index) {
            TableRow* row = table.row(index);
            if (row->page() == pageIndex) row->draw(dc, layout);
        }
        if (options.pageNumbers) {
            dc.setFont(options.footerFont);
            dc.setTextColor(0);
            const String number = std::to_string(pageIndex + 1) + " / " + std::to_string(pageCount);
            const double width = dc.textExtent(number).width;
            dc.drawText({(page.width - width) / 2, page.height - options.margin - footerHeight},
                        number);
        }
    }
    return pageCount;
}

}  // namespace melodex
