#pragma once

// A DrawContext whose text measures are simple arithmetic, for layout tests
// that must give the same figures on every machine whatever fonts it has.
// It draws nothing: it records what was asked of it.
//
// Every code point advances `advancePerEm` x the font size (0.5 unless
// given), whatever the face, weight or script; a line is 1.25 x the size
// high, with the baseline one size below its top. So in a 10-point font
// "Abc" is 15 x 12.5 points, and the chord over code point 4 of a line
// stands 20 points in.
//
//     FixedAdvanceDrawContext dc(/*printing=*/true);
//     table.calculate(dc, {0, 0, 500, 800});
//     table.draw(dc);
//     for (const auto& op : dc.operations()) ...  // fills, texts, wrapped lines
//
// Wrapping breaks at blanks and line breaks, and inside a word only when the
// word alone is wider than the rectangle; blanks at a break are dropped.

#include <vector>

#include "melodex/ui/draw_context.h"

namespace melodex {

class FixedAdvanceDrawContext : public DrawContext {
public:
    // One thing drawn, with the state it was drawn in.
    struct Operation {
        enum class Kind { Fill, Text, WrappedText };
        Kind kind = Kind::Fill;
        int page = 0;       // 0 for the first page
        RectF rect;         // the fill; the text's line box; the wrapping rectangle
        String text;        // Text and WrappedText: as given
        StringArray lines;  // WrappedText: the lines, as wrapped (before clipping)
        Color color = 0;    // Fill: its colour; text: the text colour
        GFont font;         // text: the font in force
        BackgroundMode background = BackgroundMode::Opaque;  // text
        std::optional<RectF> clip;                           // the clip in force
    };

    explicit FixedAdvanceDrawContext(bool printing = false, SizeF pageSize = {595, 842},
                                     double advancePerEm = 0.5);

    const std::vector<Operation>& operations() const { return m_operations; }
    void clearOperations() { m_operations.clear(); }
    int pageCount() const { return m_page + 1; }

    // The lines `text` wraps into at `width` in the current font.
    StringArray wrapLines(std::string_view text, double width) const;

    bool isPrinting() const override { return m_printing; }
    SizeF pageSize() const override { return m_pageSize; }
    bool newPage() override;

    SizeF textExtent(std::string_view text) override;
    double advanceTo(std::string_view line, std::size_t codePoints) override;
    FontMetrics fontMetrics() override;
    double wrappedTextHeight(std::string_view text, double width) override;

    void fillRect(const RectF& rect, Color color) override;
    void drawText(PointF origin, std::string_view text) override;
    void drawWrappedText(const RectF& rect, std::string_view text) override;

private:
    double advance() const { return state().font.size * m_advancePerEm; }
    double lineHeight() const { return state().font.size * 1.25; }
    Operation& record(Operation::Kind kind);

    bool m_printing;
    SizeF m_pageSize;
    double m_advancePerEm;
    int m_page = 0;
    std::vector<Operation> m_operations;
};

}  // namespace melodex
