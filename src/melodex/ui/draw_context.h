#pragma once

// What everything that lays out and draws (tables, chord sheets) asks of a
// drawing device: measure text in a font, fill rectangles, draw text in a
// colour with or without a background, wrap text in a rectangle, keep and
// restore its state, and tell a printed page from a screen. It plays the
// part a Windows device context plays for the programs of the family.
//
//     dc.setFont(GFont{"Arial", 9, true});
//     SizeF extent = dc.textExtent("Amazing Grace");
//     dc.fillRect({0, 0, extent.width, extent.height}, makeColor(0, 0, 128));
//     dc.setTextColor(makeColor(255, 255, 255));
//     dc.setBackgroundMode(BackgroundMode::Transparent);
//     dc.drawText({0, 0}, "Amazing Grace");
//
//     {
//         DrawStateSaver saved(dc);   // font, colours, background mode, clip
//         dc.setFont(chordFont);
//         ...
//     }                               // restored here
//
// Units are points (1/72 inch) on every device, y growing downwards; a
// backend maps them to its pixels or paper. Text is UTF-8 and drawn as it
// is: no "&" prefix processing, no markup. Text positions are the top-left
// corner of the line box; a line's baseline lies fontMetrics().ascent below
// it, so text in two fonts shares a baseline when each is drawn at
// baseline - its own ascent.
//
// Laying chords over their letters: the chord for code point n of a lyric
// line stands at x + advanceTo(line, n), which measures the prefix as part
// of the whole shaped line (kerning, ligatures and right-to-left runs
// included), not as a string of its own.
//
// A context starts with GFont{} (Arial 12), black text, a white opaque
// background and no clip. Implementations: CairoDrawContext (melodex::render,
// PDF and PNG), FixedAdvanceDrawContext (deterministic, for layout tests).

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "melodex/display/gfont.h"
#include "melodex/foundation/color_names.h"
#include "melodex/foundation/text.h"
#include "melodex/ui/geometry.h"

namespace melodex {

// Whether text is drawn over a box of the background colour (Opaque) or
// straight over what is there (Transparent).
enum class BackgroundMode { Opaque, Transparent };

// The vertical measures of a font on a device, in points.
struct FontMetrics {
    double ascent = 0;      // from the top of the line box to the baseline
    double descent = 0;     // from the baseline to the bottom of the line box
    double lineHeight = 0;  // the distance from one line to the next
};

// Everything saveState() keeps. The context holds and stacks it for every
// device; a device reads it when it measures and draws.
struct DrawState {
    GFont font;
    Color textColor = 0;
    Color backgroundColor = 0xFFFFFF;
    BackgroundMode backgroundMode = BackgroundMode::Opaque;
    std::optional<RectF> clip;  // in points; none: the whole page
};

class DrawContext {
public:
    virtual ~DrawContext();

    // True for a printed page (a PDF, a printer), false for a screen image.
    // Objects that keep one layout per kind of device choose it by this.
    virtual bool isPrinting() const = 0;

    // The size of the page or image in points.
    virtual SizeF pageSize() const = 0;

    // Ends the page and starts an empty one with the same state. False, and
    // nothing happens, on a device that has a single page (an image).
    virtual bool newPage() = 0;

    // --- State -------------------------------------------------------------------

    void setFont(const GFont& font) { m_state.font = font; }
    const GFont& font() const { return m_state.font; }

    // The colour text is drawn in. The colour of the font is not used for
    // drawing: callers set it here, as they set a device context's.
    void setTextColor(Color color) { m_state.textColor = color; }
    Color textColor() const { return m_state.textColor; }

    void setBackgroundColor(Color color) { m_state.backgroundColor = color; }
    void setBackgroundMode(BackgroundMode mode) { m_state.backgroundMode = mode; }
    BackgroundMode backgroundMode() const { return m_state.backgroundMode; }

    // Pushes the whole state (font, colours, background mode, clip); calls
    // nest. restoreState() without a matching saveState() does nothing.
    void saveState();
    void restoreState();
    // How deep saveState() calls are nested now.
    int stateDepth() const { return int(m_saved.size()); }

    // Limits drawing to `rect` (within any clip in force) until the state is
    // restored.
    void clipTo(const RectF& rect);

    // --- Measuring in the current font -----------------------------------------

    // The extent of `text` drawn as one line: its advance width and the
    // font's line height. Line breaks in it do not start new lines. An
    // empty text is 0 wide and a line high.
    virtual SizeF textExtent(std::string_view text) = 0;

    // How far from the start of `line` the code point with index
    // `codePoints` begins, measured in the whole shaped line. An index at or
    // past the end gives the line's width.
    virtual double advanceTo(std::string_view line, std::size_t codePoints) = 0;

    virtual FontMetrics fontMetrics() = 0;

    // The height `text` takes when wrapped at word breaks to `width`.
    virtual double wrappedTextHeight(std::string_view text, double width) = 0;

    // --- Drawing -----------------------------------------------------------------

    virtual void fillRect(const RectF& rect, Color color) = 0;

    // One line whose line box has its top-left corner at `origin`, in the
    // text colour (over the background colour in opaque mode).
    virtual void drawText(PointF origin, std::string_view text) = 0;

    // Text wrapped at word breaks to the width of `rect`, starting at its
    // top-left corner and cut off at its edges. A word wider than the
    // rectangle is broken between letters. Line breaks in the text start
    // new lines.
    virtual void drawWrappedText(const RectF& rect, std::string_view text) = 0;

protected:
    const DrawState& state() const { return m_state; }

    // For a device that keeps a state of its own (a Cairo context's clip):
    // called after the state is pushed, after it is popped, and after a
    // clip is added.
    virtual void onSaveState() {}
    virtual void onRestoreState() {}
    virtual void onClip(const RectF& /*rect*/) {}

private:
    DrawState m_state;
    std::vector<DrawState> m_saved;
};

// Saves a context's state for the lifetime of this object.
class DrawStateSaver {
public:
    explicit DrawStateSaver(DrawContext& dc) : m_dc(dc) { m_dc.saveState(); }
    DrawStateSaver(const DrawStateSaver&) = delete;
    DrawStateSaver& operator=(const DrawStateSaver&) = delete;
    ~DrawStateSaver() { m_dc.restoreState(); }

private:
    DrawContext& m_dc;
};

}  // namespace melodex
