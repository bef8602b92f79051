#include "melodex/ui/table_cell.h"

#include <cmath>

namespace melodex {

namespace {

// Whole points that hold the measure; the small allowance keeps an extent
// of exactly 15 points from becoming 16 through rounding noise.
std::int32_t wholePoints(double points) {
    return std::int32_t(std::ceil(points - 1e-6));
}

}  // namespace

Size TableCell::calculate(DrawContext& dc, int layout) {
    if (!isLayout(layout)) return {};
    Size extent;
    if (!m_text.empty()) {
        const SizeF measured = dc.textExtent(m_text);
        extent = {wholePoints(measured.width), wholePoints(measured.height)};
    }
    m_size[layout] = extent;
    return extent;
}

void TableCell::draw(DrawContext& dc, int layout) {
    if (!isLayout(layout) || m_text.empty()) return;
    dc.drawWrappedText(m_rect[layout], m_text);
}

}  // namespace melodex
