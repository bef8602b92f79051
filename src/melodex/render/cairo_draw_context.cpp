#include "melodex/render/cairo_draw_context.h"

#include <climits>
#include <optional>
#include <vector>

#include <cairo.h>
#include <pango/pangocairo.h>

namespace melodex {

namespace {

void setSourceColor(cairo_t* cr, Color color) {
    cairo_set_source_rgb(cr, redOf(color) / 255.0, greenOf(color) / 255.0, blueOf(color) / 255.0);
}

double fromPango(int units) {
    return double(units) / PANGO_SCALE;
}

// Pango refuses text that is not UTF-8 (it warns and drops the rest), while
// song files in the wild hold stray bytes: each one is drawn as U+FFFD.
String validUtf8(std::string_view text) {
    if (isValidUtf8(text)) return String(text);
    String valid;
    valid.reserve(text.size() + 8);
    for (std::size_t pos = 0; pos < text.size();)
        appendUtf8(valid, decodeUtf8(text, pos));
    return valid;
}

}  // namespace

struct CairoDrawContext::Impl {
    cairo_t* cr = nullptr;
    PangoContext* pango = nullptr;
    PangoLayout* layout = nullptr;
    PangoFontDescription* description = nullptr;
    std::optional<GFont> appliedFont;  // the font the layout is set to
    bool haveMetrics = false;
    FontMetrics metrics;
    SizeF pageSize;
    bool printing = false;
    int unknownGlyphs = 0;
    bool prepared = false;  // the layout holds preparedText, laid out as below
    String preparedText;
    bool preparedSingle = false;
    double preparedWidth = 0;

    ~Impl() {
        if (description != nullptr) pango_font_description_free(description);
        if (layout != nullptr) g_object_unref(layout);
        if (pango != nullptr) g_object_unref(pango);
    }

    void applyFont(const GFont& font) {
        if (appliedFont && *appliedFont == font) return;
        if (description != nullptr) pango_font_description_free(description);
        description = pango_font_description_new();
        pango_font_description_set_family(description, font.face.c_str());
        // The context's resolution is 72 dots per inch, so a point is one
        // unit of the Cairo context and the size goes in unchanged.
        pango_font_description_set_size(description, int(font.size * PANGO_SCALE + 0.5));
        pango_font_description_set_weight(description,
                                          font.bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
        pango_font_description_set_style(description,
                                         font.italic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
        pango_layout_set_font_description(layout, description);
        appliedFont = font;
        haveMetrics = false;
    }

    // Puts `text` into the layout: as one line, or wrapped to `width`. The
    // same text asked again keeps the layout Pango has made of it, so that
    // measuring where each chord of a line goes shapes the line once.
    void prepare(const GFont& font, std::string_view text, bool singleLine, double width = -1) {
        applyFont(font);
        if (!prepared || text != preparedText || singleLine != preparedSingle ||
            width != preparedWidth) {
            const String valid = validUtf8(text);
            pango_layout_set_single_paragraph_mode(layout, singleLine);
            // Pango takes the width in its units as an int; wider than that
            // is as good as no limit.
            const bool limited = width >= 0 && width * PANGO_SCALE < double(INT_MAX);
            pango_layout_set_width(layout, limited ? int(width * PANGO_SCALE) : -1);
            pango_layout_set_text(layout, valid.data(), int(valid.size()));
            prepared = true;
            preparedText.assign(text);
            preparedSingle = singleLine;
            preparedWidth = width;
        }
        unknownGlyphs += pango_layout_get_unknown_glyphs_count(layout);
    }

    PangoRectangle logicalExtents() const {
        PangoRectangle logical;
        pango_layout_get_extents(layout, nullptr, &logical);
        return logical;
    }

    // Draws the prepared layout with its top-left corner at (x, y).
    void show(const DrawState& state, double x, double y) {
        if (state.backgroundMode == BackgroundMode::Opaque) {
            const PangoRectangle logical = logicalExtents();
            setSourceColor(cr, state.backgroundColor);
            cairo_rectangle(cr, x + fromPango(logical.x), y + fromPango(logical.y),
                            fromPango(logical.width), fromPango(logical.height));
            cairo_fill(cr);
        }
        setSourceColor(cr, state.textColor);
        cairo_move_to(cr, x, y);
        pango_cairo_show_layout(cr, layout);
    }
};

CairoDrawContext::CairoDrawContext(cairo_t* cr, SizeF pageSize, bool printing)
    : m_impl(std::make_unique<Impl>()) {
    Impl& d = *m_impl;
    d.cr = cr;
    d.pageSize = pageSize;
    d.printing = printing;
    d.pango = pango_cairo_create_context(cr);
    pango_cairo_context_set_resolution(d.pango, 72.0);

    // Paper gets the outlines' own metrics; a screen gets them hinted to its
    // pixels and glyphs placed on whole pixels, as it shows them.
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_hint_metrics(options,
                                        printing ? CAIRO_HINT_METRICS_OFF : CAIRO_HINT_METRICS_ON);
    cairo_font_options_set_hint_style(options,
                                      printing ? CAIRO_HINT_STYLE_NONE : CAIRO_HINT_STYLE_SLIGHT);
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    pango_cairo_context_set_font_options(d.pango, options);
    cairo_font_options_destroy(options);
    pango_context_set_round_glyph_positions(d.pango, !printing);
    pango_cairo_update_context(cr, d.pango);

    d.layout = pango_layout_new(d.pango);
    pango_layout_set_wrap(d.layout, PANGO_WRAP_WORD_CHAR);
}

CairoDrawContext::~CairoDrawContext() = default;

int CairoDrawContext::unknownGlyphCount() const {
    return m_impl->unknownGlyphs;
}

bool CairoDrawContext::isPrinting() const {
    return m_impl->printing;
}

SizeF CairoDrawContext::pageSize() const {
    return m_impl->pageSize;
}

bool CairoDrawContext::newPage() {
    if (!m_impl->printing) return false;
    cairo_show_page(m_impl->cr);
    return true;
}

void CairoDrawContext::onSaveState() {
    cairo_save(m_impl->cr);
}

void CairoDrawContext::onRestoreState() {
    cairo_restore(m_impl->cr);
}

void CairoDrawContext::onClip(const RectF& rect) {
    cairo_rectangle(m_impl->cr, rect.left, rect.top, rect.width(), rect.height());
    cairo_clip(m_impl->cr);
}

SizeF CairoDrawContext::textExtent(std::string_view text) {
    m_impl->prepare(font(), text, true);
    const PangoRectangle logical = m_impl->logicalExtents();
    return {fromPango(logical.width), fromPango(logical.height)};
}

double CairoDrawContext::advanceTo(std::string_view line, std::size_t codePoints) {
    m_impl->prepare(font(), line, true);
    const String valid = validUtf8(line);
    const std::size_t byte = codePointToByteOffset(valid, codePoints);
    if (byte >= valid.size()) return fromPango(m_impl->logicalExtents().width);
    PangoRectangle position;
    pango_layout_index_to_pos(m_impl->layout, int(byte), &position);
    return fromPango(position.x);
}

FontMetrics CairoDrawContext::fontMetrics() {
    Impl& d = *m_impl;
    d.applyFont(font());
    if (!d.haveMetrics) {
        // Measured on a line of text as drawText lays it out. The font's
        // own metrics (pango_context_get_metrics, or a line without text)
        // come out in points divided by the device's scale on a screen
        // context, a quarter too small at 96 dpi, and lines laid out by them
        // overlap.
        d.prepare(font(), "M", true);
        const double height = fromPango(d.logicalExtents().height);
        d.metrics.ascent = fromPango(pango_layout_get_baseline(d.layout));
        d.metrics.lineHeight = height;
        d.metrics.descent = height - d.metrics.ascent;
        d.haveMetrics = true;
    }
    return d.metrics;
}

double CairoDrawContext::wrappedTextHeight(std::string_view text, double width) {
    m_impl->prepare(font(), text, false, width);
    return fromPango(m_impl->logicalExtents().height);
}

void CairoDrawContext::fillRect(const RectF& rect, Color color) {
    cairo_t* cr = m_impl->cr;
    setSourceColor(cr, color);
    cairo_rectangle(cr, rect.left, rect.top, rect.width(), rect.height());
    cairo_fill(cr);
}

void CairoDrawContext::drawText(PointF origin, std::string_view text) {
    m_impl->prepare(font(), text, true);
    m_impl->show(state(), origin.x, origin.y);
}

void CairoDrawContext::drawWrappedText(const RectF& rect, std::string_view text) {
    if (rect.isEmpty()) return;
    Impl& d = *m_impl;
    d.prepare(font(), text, false, rect.width());
    cairo_save(d.cr);
    cairo_rectangle(d.cr, rect.left, rect.top, rect.width(), rect.height());
    cairo_clip(d.cr);
    d.show(state(), rect.left, rect.top);
    cairo_restore(d.cr);
}

}  // namespace melodex
