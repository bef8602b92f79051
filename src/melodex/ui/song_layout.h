#pragma once

// Songs laid out on pages as a display profile says: the chord sheets,
// words sheets and large-print copies that churches print, and what a
// screen shows of them.
//
//     SongDisplayProfile& chords = *SongDisplayProfile::getProfileByName("Chords", 2);
//     SongLayout layout(chords);
//     layout.addSong(song);                    // in the song's own running order
//     ChordDisplayOptions capo;
//     capo.capoFret = 3;
//     layout.addSong(other, capo);             // shown as played on the third fret
//     PdfDocument pdf;                         // melodex::render
//     layout.layOut(pdf.context());            // measures with the context's fonts
//     layout.draw(pdf.context());              // every page
//
// What the profile decides:
// - the parts shown: the header (title; the author, key, capo, tempo, time
//   signature and running order as its flags say), chords (spelled by
//   ChordDisplay in the key of the song as shown: capo shapes, bass notes
//   only, or none), the words, the copyright at the end of each song, page
//   numbers in the footer;
// - each section in its style (font, size between the style's minimum and
//   maximum, colour, indent), each line in its singers' colour when the line
//   or its section names singers, the chords in the Chord style over the
//   letters they stand over (advanceTo, so kerning and scripts are measured
//   as drawn); where a chord is wider than the words under it, the words make
//   room rather than the chords running into each other;
// - long lines wrapped at blanks (wrapText), their chords going with their
//   letters; without it a line is cut off at its column's edge;
// - columns: with multiColumns, the profile's number of columns of equal
//   width when it sets one (else as many as the widest line allows, when the
//   songs do not fit one page in one), or with variableColumnWidths columns
//   as wide as what they hold, side by side while they fit across the page;
// - shrinkToFit: one song made smaller (down to its styles' minimum sizes)
//   until it fits on one page;
// - the page colour; section labels ("Verse 2", "Chorus") where chords or
//   the running order are shown, for musicians finding their place.
//
// Sections follow the running order (the song's own, or one given), repeats
// printed each time. A section is kept whole in a column when it fits one;
// the header stays with the first section and the copyright with the last.
//
// The layout keeps pointers to the profile and the songs: both must outlive
// layOut(). Items are in points on the pages of the context laid out for.

#include <optional>
#include <vector>

#include "melodex/display/chord_display.h"
#include "melodex/display/gfont.h"
#include "melodex/foundation/text.h"
#include "melodex/ui/draw_context.h"

namespace melodex {

class Song;
class SongDisplayProfile;

struct PageSetup {
    double margin = 36.0;     // points on every side
    double columnGap = 18.0;  // between columns, unless the profile sets its own
};

class SongLayout {
public:
    // What an item shows.
    enum class Role { Title, Info, SectionLabel, Chord, Lyric, Copyright, Separator, PageNumber };

    // One thing placed on a page.
    struct Item {
        Role role = Role::Lyric;
        int page = 0;  // 0 for the first page
        RectF rect;    // text: its line box; separator: the rule itself
        String text;   // empty for a separator
        GFont font;    // the colour drawn is `color`
        Color color = 0;
        std::optional<RectF> clip;  // the column a line too wide for it is cut off at
        int entry = -1;             // the song's number in order of adding; -1 for none
    };

    explicit SongLayout(SongDisplayProfile& profile, PageSetup page = {});

    // Queues a song, a gap (a blank line's height) or a separator line. A
    // song's running order is options.sequence, else the song's own
    // (Song::getSequence); `tempo` is this use's (a set entry's), 0 for the
    // song's own.
    void addSong(const Song& song, const ChordDisplayOptions& options = {}, int tempo = 0);
    void addGap();
    void addSeparator();

    // Lays what was added out on pages of the context's size with its
    // measures, replacing any earlier layout; returns the number of pages.
    int layOut(DrawContext& dc);

    int pageCount() const { return m_pageCount; }
    const std::vector<Item>& items() const { return m_items; }
    // The scale the styles' fonts were taken at: 1, or less when shrunk to fit.
    double scale() const { return m_scale; }

    // Numbers the pages "first / total", "first + 1 / total" ... (for pages
    // printed after others); total 0 counts this layout's pages. Without it
    // the pages are numbered from 1 of their own count.
    void setPageNumbers(int first, int total);

    // Draws one page (its background, then its items) on the current page of
    // the context.
    void drawPage(DrawContext& dc, int page) const;

    // Draws every page, starting a new page of the context between them;
    // returns the pages drawn (only the first on a context with one page).
    int draw(DrawContext& dc) const;

private:
    // What was added, in order.
    struct Entry {
        enum class Kind { Song, Gap, Separator };
        Kind kind = Kind::Song;
        const Song* song = nullptr;
        ChordDisplayOptions options;
        int tempo = 0;
    };

    int layOutAt(DrawContext& dc, double scale);
    void numberPages();

    SongDisplayProfile* m_profile;
    PageSetup m_page;
    std::vector<Entry> m_entries;
    std::vector<Item> m_items;
    int m_pageCount = 0;
    double m_scale = 1.0;
    int m_firstPageNumber = 1;
    int m_totalPages = 0;
    SizeF m_pageSize;
};

}  // namespace melodex
