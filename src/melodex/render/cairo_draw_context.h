#pragma once

// A DrawContext on a Cairo context, with text laid out and shaped by Pango:
// accented Latin, Cyrillic, Greek, Hebrew (right to left) and CJK text come
// out as they should, with faces such as "Arial" or "Times New Roman" found
// among the installed fonts through fontconfig (a metric-compatible face
// when the named one is missing, and per letter a face that has it).
//
//     cairo_t* cr = ...;                      // a GTK widget's, a surface's
//     cairo_scale(cr, 96.0 / 72, 96.0 / 72);  // points to pixels, first
//     CairoDrawContext dc(cr, {400, 300}, /*printing=*/false);
//     table.draw(dc);
//
// PdfDocument and PngImage set one up for a PDF file and a PNG image; use
// this class directly only to draw on a Cairo context of your own. The
// context is not owned and must outlive this object; its transformation
// at construction must map points to the device. A printing context
// measures text at the font's outline sizes and starts a new page with
// cairo_show_page; a screen context measures text as hinted to the
// device's pixels (as a screen shows it), so the two lay the same table out
// slightly differently, and has a single page.

#include <memory>

#include "melodex/ui/draw_context.h"

typedef struct _cairo cairo_t;  // NOLINT(modernize-use-using): Cairo's own declaration

namespace melodex {

class CairoDrawContext : public DrawContext {
public:
    CairoDrawContext(cairo_t* cr, SizeF pageSize, bool printing);
    CairoDrawContext(const CairoDrawContext&) = delete;
    CairoDrawContext& operator=(const CairoDrawContext&) = delete;
    ~CairoDrawContext() override;

    // How many letters of the text drawn or measured so far had no glyph in
    // any installed font (drawn as boxes); 0 when every script was covered.
    int unknownGlyphCount() const;

    bool isPrinting() const override;
    SizeF pageSize() const override;
    bool newPage() override;

    SizeF textExtent(std::string_view text) override;
    // The leading edge of the code point: its left side in left-to-right
    // text, its right side in right-to-left text.
    double advanceTo(std::string_view line, std::size_t codePoints) override;
    FontMetrics fontMetrics() override;
    double wrappedTextHeight(std::string_view text, double width) override;

    void fillRect(const RectF& rect, Color color) override;
    void drawText(PointF origin, std::string_view text) override;
    void drawWrappedText(const RectF& rect, std::string_view text) override;

protected:
    void onSaveState() override;
    void onRestoreState() override;
    void onClip(const RectF& rect) override;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace melodex
