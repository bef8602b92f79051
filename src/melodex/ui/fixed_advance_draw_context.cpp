#include "melodex/ui/fixed_advance_draw_context.h"

#include <algorithm>
#include <cstdint>

namespace melodex {

FixedAdvanceDrawContext::FixedAdvanceDrawContext(bool printing, SizeF pageSize, double advancePerEm)
    : m_printing(printing), m_pageSize(pageSize), m_advancePerEm(advancePerEm) {}

bool FixedAdvanceDrawContext::newPage() {
    if (!m_printing) return false;
    ++m_page;
    return true;
}

SizeF FixedAdvanceDrawContext::textExtent(std::string_view text) {
    return {double(codePointLength(text)) * advance(), lineHeight()};
}

double FixedAdvanceDrawContext::advanceTo(std::string_view line, std::size_t codePoints) {
    return double(std::min(codePoints, codePointLength(line))) * advance();
}

FontMetrics FixedAdvanceDrawContext::fontMetrics() {
    return {state().font.size, state().font.size * 0.25, lineHeight()};
}

StringArray FixedAdvanceDrawContext::wrapLines(std::string_view text, double width) const {
    // How many code points fit on a line; at least one, so that a rectangle
    // narrower than a letter still makes progress.
    const double step = advance();
    const std::size_t fit =
        step > 0 ? std::max<std::size_t>(1, std::size_t(width / step + 1e-9)) : SIZE_MAX;
    StringArray lines;
    for (const String& paragraph : split(text, "\n", EmptyPieces::Keep)) {
        String line;
        std::size_t lineLength = 0;
        for (const String& word : split(paragraph, " ", EmptyPieces::Skip)) {
            std::size_t wordLength = codePointLength(word);
            if (lineLength > 0 && lineLength + 1 + wordLength <= fit) {
                line += ' ';
                line += word;
                lineLength += 1 + wordLength;
                continue;
            }
            if (lineLength > 0) lines.push_back(std::move(line));
            line.clear();
            lineLength = 0;
            String rest = word;
            while (wordLength > fit) {
                lines.push_back(codePointSubstring(rest, 0, fit));
                rest = codePointSubstring(rest, fit);
                wordLength -= fit;
            }
            line = std::move(rest);
            lineLength = wordLength;
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

double FixedAdvanceDrawContext::wrappedTextHeight(std::string_view text, double width) {
    return double(wrapLines(text, width).size()) * lineHeight();
}

FixedAdvanceDrawContext::Operation& FixedAdvanceDrawContext::record(Operation::Kind kind) {
    Operation& op = m_operations.emplace_back();
    op.kind = kind;
    op.page = m_page;
    op.font = state().font;
    op.color = state().textColor;
    op.background = state().backgroundMode;
    op.clip = state().clip;
    return op;
}

void FixedAdvanceDrawContext::fillRect(const RectF& rect, Color color) {
    Operation& op = record(Operation::Kind::Fill);
    op.rect = rect;
    op.color = color;
}

void FixedAdvanceDrawContext::drawText(PointF origin, std::string_view text) {
    const SizeF extent = textExtent(text);
    Operation& op = record(Operation::Kind::Text);
    op.rect = {origin.x, origin.y, origin.x + extent.width, origin.y + extent.height};
    op.text.assign(text);
}

void FixedAdvanceDrawContext::drawWrappedText(const RectF& rect, std::string_view text) {
    Operation& op = record(Operation::Kind::WrappedText);
    op.rect = rect;
    op.text.assign(text);
    op.lines = wrapLines(text, rect.width());
}

}  // namespace melodex
