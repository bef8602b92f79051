#include "melodex/ui/song_layout.h"

#include <algorithm>
#include <string>
#include <utility>

#include "melodex/display/song_display_profile.h"
#include "melodex/foundation/file_system.h"
#include "melodex/music/song_chord.h"
#include "melodex/song/song.h"
#include "melodex/song/vocabulary.h"

namespace melodex {

namespace {

using Role = SongLayout::Role;
using Item = SongLayout::Item;

// Space, in lines of the Default style: between sections, after a song, and
// for a gap in a set. The header keeps half a line from the first section.
constexpr double SectionSpace = 0.5;
constexpr double SongSpace = 1.0;
constexpr double GapSpace = 1.0;
// Points between the footer and the text above it, and a separator's
// thickness.
constexpr double FooterSpace = 6.0;
constexpr double RuleThickness = 0.75;
// shrinkToFit never goes below this scale (the styles' minimum sizes stop
// the fonts sooner), and tries this many scales to find the largest that fits.
constexpr double SmallestScale = 0.25;
constexpr int ShrinkSteps = 7;
// More columns than this leave too little of a line.
constexpr int MostColumns = 3;
// Rows longer than this many code points are judged by their start before
// they are measured whole (see RowFitter::isTooWide).
constexpr std::size_t LongRow = 300;

String blanksForTabs(String text) {
    std::replace(text.begin(), text.end(), '\t', ' ');
    return text;
}

bool isBlank(std::string_view text) {
    return text.find_first_not_of(' ') == std::string_view::npos;
}

// The style kind a section type is drawn in (as getFontForSectionType
// chooses it).
int styleKindOf(int sectionType) {
    return sectionType >= SectionType::Chorus && sectionType <= SectionType::Misc
               ? sectionType
               : StyleKind::Verse;
}

struct ChordMark {
    std::size_t offset = 0;  // code points into the row's text
    String text;
};

// One line of a block before it is fitted to a width.
struct Row {
    enum class Kind { Text, Space, Rule };
    Kind kind = Kind::Text;
    Role role = Role::Lyric;
    String text;
    std::vector<ChordMark> chords;
    GFont font;
    Color color = 0;
    GFont chordFont;
    Color chordColor = 0;
    double indent = 0;       // points
    bool wrap = true;        // lines too wide wrap at blanks; else they are cut off
    bool showText = true;    // false: the words only place the chords
    bool continued = false;  // the rest of a wrapped row, indented once
    double space = 0;        // Space and Rule: the height
};

// Rows kept together in a column where they fit one.
struct Block {
    std::vector<Row> rows;
    double spaceAfter = 0;
    bool pageBreakBefore = false;
    bool isGap = false;  // nothing but space: dropped at the top of a column
    int entry = -1;
};

// A row fitted to a width: its items relative to the column's left edge
// and the line's top.
struct Line {
    double height = 0;
    double width = 0;  // from the column's left edge to its rightmost ink
    bool rule = false;
    Color ruleColor = 0;
    std::vector<Item> items;
};

// Where a row's words and chords go on one line, before indenting.
struct Placement {
    struct Segment {
        std::size_t from = 0;  // code point
        double natural = 0;    // where it starts in the line as shaped
        double x = 0;          // where it is drawn
    };
    std::vector<Segment> segments;
    std::vector<double> chordX;
    std::vector<double> chordWidth;
    double textWidth = 0;  // the words as drawn, widened
    double lineWidth = 0;  // the words as shaped
    double right = 0;      // the rightmost edge of words and chords
};

class RowFitter {
public:
    explicit RowFitter(DrawContext& dc) : m_dc(dc) {}

    // The lines a row takes at `width`: one, or more where it wraps.
    void fit(const Row& row, double width, std::vector<Line>& out) {
        if (row.kind != Row::Kind::Text) {
            Line line;
            line.height = row.space;
            line.rule = row.kind == Row::Kind::Rule;
            line.ruleColor = row.color;
            out.push_back(std::move(line));
            return;
        }
        Row current = row;
        while (true) {
            std::optional<Placement> placed;
            if (current.wrap && isTooWide(current, width, placed)) {
                if (const std::optional<std::size_t> at =
                        breakAt(current, width - current.indent)) {
                    auto [first, rest] = split(current, *at);
                    out.push_back(lineOf(first, place(first)));
                    current = std::move(rest);
                    continue;
                }
            }
            out.push_back(lineOf(current, placed ? *placed : place(current)));
            return;
        }
    }

private:
    // Every chord over its letter; where a chord would run into the one
    // before it, the words from its letter on move right to make room.
    Placement place(const Row& row) {
        Placement placed;
        const bool hasText = !row.text.empty();
        m_dc.setFont(row.font);
        const std::size_t length = codePointLength(row.text);
        placed.lineWidth = hasText ? m_dc.advanceTo(row.text, length) : 0;
        const double blank = row.chords.empty() ? 0 : m_dc.textExtent(" ").width;
        std::vector<double> natural;
        natural.reserve(row.chords.size());
        for (const ChordMark& chord : row.chords) {
            natural.push_back(chord.offset < length
                                  ? m_dc.advanceTo(row.text, chord.offset)
                                  : placed.lineWidth + double(chord.offset - length) * blank);
        }

        placed.segments.push_back({0, 0, 0});
        double shift = 0;
        double previousEnd = 0;
        if (!row.chords.empty()) {
            m_dc.setFont(row.chordFont);
            const double gap = m_dc.textExtent(" ").width;
            for (std::size_t i = 0; i < row.chords.size(); ++i) {
                const double chordWidth = m_dc.textExtent(row.chords[i].text).width;
                double x = natural[i] + shift;
                if (i > 0 && x < previousEnd + gap) {
                    const double room = previousEnd + gap - x;
                    x += room;
                    if (row.chords[i].offset < length) {
                        shift += room;
                        placed.segments.push_back({row.chords[i].offset, natural[i], x});
                    }
                }
                placed.chordX.push_back(x);
                placed.chordWidth.push_back(chordWidth);
                previousEnd = x + chordWidth;
            }
        }
        placed.textWidth = placed.lineWidth + shift;
        placed.right = std::max(row.showText ? placed.textWidth : 0.0, previousEnd);
        return placed;
    }

    // Whether the row is wider than `width`. A long row is first judged by
    // its start, so that wrapping a whole chapter pasted into one line
    // shapes a few hundred letters a line rather than all that is left of it
    // each time. `placed` gets the row's placement when it was made whole.
    bool isTooWide(const Row& row, double width, std::optional<Placement>& placed) {
        if (codePointLength(row.text) > LongRow &&
            row.indent + place(cut(row, LongRow)).right > width) {
            return true;
        }
        placed = place(row);
        return row.indent + placed->right > width;
    }

    // The last blank before which the row fits `width`; the first blank
    // when none does (the line still gets shorter); none in a row without
    // blanks after its first word. What lies before a blank is measured on
    // its own, a few blanks further on each try, then halving the distance:
    // the break of a line of any length is found in a few measures of about
    // a line each.
    std::optional<std::size_t> breakAt(const Row& row, double width) {
        std::vector<std::size_t> blanks;
        std::size_t index = 0;
        bool word = false;
        for (std::size_t pos = 0; pos < row.text.size(); ++index) {
            const char32_t c = decodeUtf8(row.text, pos);
            if (c == U' ' && word && (blanks.empty() || blanks.back() + 1 != index))
                blanks.push_back(index);
            if (c != U' ') word = true;
        }
        if (blanks.empty()) return std::nullopt;
        const auto fits = [&](std::size_t i) { return place(cut(row, blanks[i])).right <= width; };
        if (!fits(0)) return blanks.front();
        std::size_t fitting = 0;
        std::size_t tooWide = blanks.size();
        for (std::size_t step = 1; fitting + step < blanks.size(); step *= 2) {
            if (!fits(fitting + step)) {
                tooWide = fitting + step;
                break;
            }
            fitting += step;
        }
        while (tooWide - fitting > 1) {
            const std::size_t middle = fitting + (tooWide - fitting) / 2;
            (fits(middle) ? fitting : tooWide) = middle;
        }
        return blanks[fitting];
    }

    // The row's first `length` code points with the chords over them,
    // without the blanks at its end.
    static Row cut(const Row& row, std::size_t length) {
        Row first = row;
        first.text = strip(codePointSubstring(row.text, 0, length), " ", StripSide::End);
        first.chords.clear();
        for (const ChordMark& chord : row.chords) {
            if (chord.offset < length) first.chords.push_back(chord);
        }
        return first;
    }

    // The row before the blank at `at`, and the rest after the blanks there,
    // indented by one em to show that it goes on (once, however often it
    // wraps). A chord over the blanks goes to the start of the rest.
    static std::pair<Row, Row> split(const Row& row, std::size_t at) {
        Row first = cut(row, at);
        Row rest = row;
        rest.chords.clear();
        std::size_t start = at;
        const std::size_t length = codePointLength(row.text);
        const String tail = codePointSubstring(row.text, at, length - at);
        start += codePointLength(tail) - codePointLength(strip(tail, " ", StripSide::Start));
        rest.text = codePointSubstring(row.text, start, length - start);
        for (const ChordMark& chord : row.chords) {
            if (chord.offset >= at) {
                ChordMark moved = chord;
                moved.offset = chord.offset > start ? chord.offset - start : 0;
                if (!rest.chords.empty() && rest.chords.back().offset >= moved.offset)
                    moved.offset = rest.chords.back().offset + 1;
                rest.chords.push_back(std::move(moved));
            }
        }
        if (!row.continued) rest.indent += row.font.size;
        rest.continued = true;
        return {std::move(first), std::move(rest)};
    }

    Line lineOf(const Row& row, const Placement& placed) {
        Line line;
        const bool chordLine = !row.chords.empty();
        const bool textLine = row.showText && (!isBlank(row.text) || !chordLine);
        double chordHeight = 0;
        if (chordLine) {
            m_dc.setFont(row.chordFont);
            chordHeight = m_dc.fontMetrics().lineHeight;
            for (std::size_t i = 0; i < row.chords.size(); ++i) {
                Item item;
                item.role = Role::Chord;
                item.text = row.chords[i].text;
                item.font = row.chordFont;
                item.color = row.chordColor;
                const double x = row.indent + placed.chordX[i];
                item.rect = {x, 0, x + placed.chordWidth[i], chordHeight};
                line.items.push_back(std::move(item));
            }
        }
        double textHeight = 0;
        if (textLine) {
            m_dc.setFont(row.font);
            textHeight = m_dc.fontMetrics().lineHeight;
            const std::size_t length = codePointLength(row.text);
            for (std::size_t i = 0; i < placed.segments.size(); ++i) {
                const Placement::Segment& segment = placed.segments[i];
                const bool last = i + 1 == placed.segments.size();
                const std::size_t end = last ? length : placed.segments[i + 1].from;
                const double naturalEnd = last ? placed.lineWidth : placed.segments[i + 1].natural;
                String text = codePointSubstring(row.text, segment.from, end - segment.from);
                if (isBlank(text)) continue;
                Item item;
                item.role = row.role;
                item.text = std::move(text);
                item.font = row.font;
                item.color = row.color;
                const double x = row.indent + segment.x;
                item.rect = {x, chordHeight, x + (naturalEnd - segment.natural),
                             chordHeight + textHeight};
                line.items.push_back(std::move(item));
            }
        } else if (!chordLine && row.showText) {
            m_dc.setFont(row.font);
            textHeight = m_dc.fontMetrics().lineHeight;
        }
        line.height = chordHeight + textHeight;
        line.width = row.indent + placed.right;
        return line;
    }

    DrawContext& m_dc;
};

// "Verse 2", "Chorus": the type word, with the number of the section's id
// when the song has more than one section of its type.
String sectionLabel(const Song& song, const SongSection& section) {
    String label = sectionTypeToString(section.type());
    int sameType = 0;
    for (int i = 0; i < song.getSectionCount(); ++i) {
        if (song.getSection(i)->type() == section.type()) ++sameType;
    }
    // The number is the id's digits and what follows them ("V3a": "3a").
    const String& id = section.id();
    const std::size_t digits = id.find_first_of("0123456789");
    if (sameType > 1 && digits != String::npos) label += " " + id.substr(digits);
    return label;
}

// The sections a running order names, in its order; ids the song lacks are
// passed over. Empty: every section once.
std::vector<const SongSection*> sectionsInOrder(const Song& song, const String& sequence) {
    std::vector<const SongSection*> sections;
    if (sequence.empty()) {
        for (int i = 0; i < song.getSectionCount(); ++i)
            sections.push_back(song.getSection(i));
        return sections;
    }
    for (const String& id : split(sequence, ", \t", EmptyPieces::Skip)) {
        for (int i = 0; i < song.getSectionCount(); ++i) {
            if (equalsIgnoreCase(song.getSection(i)->id(), id)) {
                sections.push_back(song.getSection(i));
                break;
            }
        }
    }
    return sections;
}

// Builds the blocks of everything added, at one scale.
class BlockMaker {
public:
    BlockMaker(DrawContext& dc, SongDisplayProfile& profile, double scale)
        : m_dc(dc), m_profile(profile), m_scale(scale) {
        m_dc.setFont(profile.getFont(StyleKind::Default, scale));
        m_baseLine = m_dc.fontMetrics().lineHeight;
    }

    double baseLine() const { return m_baseLine; }

    Row textRow(Role role, int styleKind, const String& text, bool bold = false) const {
        Row row;
        row.role = role;
        row.text = blanksForTabs(text);
        row.font = m_profile.getFont(styleKind, m_scale);
        if (bold) row.font.bold = true;
        row.color = row.font.color;
        return row;
    }

    Row spaceRow(double lines) const {
        Row row;
        row.kind = Row::Kind::Space;
        row.space = lines * m_baseLine;
        return row;
    }

    void addSong(std::vector<Block>& blocks, const Song& song, const ChordDisplayOptions& options,
                 int tempo, int entry) {
        const SongDisplayProfile& profile = m_profile;
        const ChordDisplay display(m_profile, song.info(), options.transpose, options.capoFret,
                                   options.localTranspose);
        const bool chords = profile.showChords() || profile.showBass();
        const String sequence = options.sequence.empty() ? song.getSequence() : options.sequence;

        std::vector<Row> header = headerRows(song, display, sequence, chords, tempo);
        const std::size_t first = blocks.size();
        for (const SongSection* section : sectionsInOrder(song, sequence)) {
            Block block;
            block.entry = entry;
            block.pageBreakBefore = section->firstOnPage();
            if (chords || profile.showSequence())
                block.rows.push_back(textRow(Role::SectionLabel, StyleKind::SectionInfoTitle,
                                             sectionLabel(song, *section)));
            for (int i = 0; i < section->getLineCount(); ++i)
                block.rows.push_back(lyricRow(*section, *section->getLine(i), display, chords));
            block.spaceAfter = SectionSpace * m_baseLine;
            blocks.push_back(std::move(block));
        }
        if (blocks.size() == first) {
            Block empty;
            empty.entry = entry;
            blocks.push_back(std::move(empty));
        }
        Block& opening = blocks[first];
        if (!header.empty()) {
            header.push_back(spaceRow(SectionSpace));
            opening.rows.insert(opening.rows.begin(), header.begin(), header.end());
        }
        Block& closing = blocks.back();
        const String copyright = song.info().copyright();
        if (profile.showCopyright() && !strip(copyright).empty()) {
            closing.rows.push_back(spaceRow(SectionSpace / 2));
            closing.rows.push_back(textRow(Role::Copyright, StyleKind::Copyright, copyright));
        }
        closing.spaceAfter = SongSpace * m_baseLine;
    }

private:
    std::vector<Row> headerRows(const Song& song, const ChordDisplay& display,
                                const String& sequence, bool chords, int tempoOfUse) const {
        const SongDisplayProfile& profile = m_profile;
        std::vector<Row> rows;
        if (!profile.showHeader()) return rows;
        const SongInfo& info = song.info();
        // A song without a title (a plain-text song) goes by its file's name.
        String title = strip(info.title());
        if (title.empty() && !song.filename().empty()) title = baseNameOf(song.filename());
        if (!title.empty()) rows.push_back(textRow(Role::Title, StyleKind::Default, title, true));
        if (profile.showAuthor() && !strip(info.author()).empty())
            rows.push_back(textRow(Role::Info, StyleKind::SongInfo, info.author()));
        StringArray facts;
        if (profile.showKey() && !strip(info.key()).empty())
            facts.push_back("Key: " + info.keyName(display.transpose()));
        if (chords && display.capoFret() != 0)
            facts.push_back("Capo: " + std::to_string(display.capoFret()));
        const String tempo =
            tempoOfUse != 0 ? std::to_string(tempoOfUse) : strip(info.getAttribute("tempo"));
        if (profile.showTempo() && !tempo.empty()) facts.push_back("Tempo: " + tempo);
        const String time = strip(info.getAttribute("timesignature"));
        if (profile.showTimeSignature() && !time.empty()) facts.push_back("Time: " + time);
        if (!facts.empty())
            rows.push_back(textRow(Role::Info, StyleKind::SongInfo, join(facts, "    ")));
        if (profile.showSequence() && !sequence.empty()) {
            rows.push_back(
                textRow(Role::Info, StyleKind::SongInfo,
                        "Order: " + join(split(sequence, ", \t", EmptyPieces::Skip), " ")));
        }
        return rows;
    }

    Row lyricRow(const SongSection& section, const SongLine& line, const ChordDisplay& display,
                 bool chords) const {
        const SongDisplayProfile& profile = m_profile;
        Row row;
        row.role = Role::Lyric;
        row.text = blanksForTabs(line.text());
        row.font = profile.getFontForSectionType(section.type(), m_scale);
        const int singers = line.singers() != 0 ? line.singers() : section.singers();
        row.color = singers > 0 ? profile.getLineColor(singers) : row.font.color;
        const int steps =
            profile.style(styleKindOf(section.type())).Indent + section.indent() + line.indent();
        row.indent = std::max(steps, 0) * row.font.size;
        row.wrap = profile.wrapText();
        row.showText = profile.showWords();
        if (chords) {
            row.chordFont = profile.getFont(StyleKind::Chord, m_scale);
            row.chordColor = row.chordFont.color;
            for (int i = 0; i < line.getChordCount(); ++i) {
                const SongChord& chord = *line.getChord(i);
                String text = display(chord);
                if (text.empty()) continue;
                row.chords.push_back(
                    {chord.offset() < 0 ? 0 : std::size_t(chord.offset()), std::move(text)});
            }
        }
        return row;
    }

    DrawContext& m_dc;
    SongDisplayProfile& m_profile;
    double m_scale;
    double m_baseLine = 0;
};

// Places blocks in columns and pages.
class Flow {
public:
    struct Area {
        double left = 0, top = 0, right = 0, bottom = 0;
    };

    Flow(RowFitter& fitter, Area area, bool variable, int columns, double gap)
        : m_fitter(fitter),
          m_area(area),
          m_variable(variable),
          m_columns(std::max(columns, 1)),
          m_gap(gap) {
        m_columnWidth = (area.right - area.left - double(m_columns - 1) * gap) / double(m_columns);
        m_x = area.left;
        m_y = area.top;
    }

    int pages() const { return m_page + 1; }

    void place(const Block& block, std::vector<Item>& items) {
        if (block.isGap && atColumnTop()) return;
        if (block.pageBreakBefore && !(m_column == 0 && atColumnTop())) newPage();
        std::vector<Line> lines = fitted(block, available());
        double height = 0;
        for (const Line& line : lines)
            height += line.height;
        if (m_y + height > m_area.bottom && !atColumnTop() &&
            height <= m_area.bottom - m_area.top) {
            nextColumn(widest(block));
            lines = fitted(block, available());
        }
        for (const Line& line : lines) {
            if (m_y + line.height > m_area.bottom && !atColumnTop()) nextColumn(line.width);
            put(line, block.entry, items);
        }
        m_y += block.spaceAfter;
    }

private:
    bool atColumnTop() const { return m_y <= m_area.top; }

    double available() const { return m_variable ? m_area.right - m_x : m_columnWidth; }

    std::vector<Line> fitted(const Block& block, double width) {
        std::vector<Line> lines;
        for (const Row& row : block.rows)
            m_fitter.fit(row, width, lines);
        return lines;
    }

    // How wide the block is unwrapped (at most the page's width), to tell
    // whether it fits a column beside the others.
    double widest(const Block& block) {
        double width = 0;
        for (const Line& line : fitted(block, m_area.right - m_area.left)) {
            if (!line.rule) width = std::max(width, line.width);
        }
        return width;
    }

    void newPage() {
        ++m_page;
        m_column = 0;
        m_x = m_area.left;
        m_y = m_area.top;
        m_used = 0;
    }

    void nextColumn(double wanted) {
        if (m_variable) {
            const double x = m_x + m_used + m_gap;
            if (m_used > 0 && x + wanted <= m_area.right) {
                ++m_column;
                m_x = x;
                m_y = m_area.top;
                m_used = 0;
                return;
            }
        } else if (m_column + 1 < m_columns) {
            ++m_column;
            m_x = m_area.left + double(m_column) * (m_columnWidth + m_gap);
            m_y = m_area.top;
            m_used = 0;
            return;
        }
        newPage();
    }

    void put(const Line& line, int entry, std::vector<Item>& items) {
        const double width = available();
        if (line.rule) {
            const double ruleWidth = m_used > 0 ? m_used : width;
            Item rule;
            rule.role = Role::Separator;
            rule.page = m_page;
            rule.entry = entry;
            rule.color = line.ruleColor;
            const double middle = m_y + line.height / 2;
            rule.rect = {m_x, middle - RuleThickness / 2, m_x + ruleWidth,
                         middle + RuleThickness / 2};
            items.push_back(std::move(rule));
            m_used = std::max(m_used, ruleWidth);
        }
        const bool tooWide = line.width > width + 0.01;
        for (const Item& relative : line.items) {
            Item item = relative;
            item.page = m_page;
            item.entry = entry;
            item.rect = {m_x + relative.rect.left, m_y + relative.rect.top,
                         m_x + relative.rect.right, m_y + relative.rect.bottom};
            if (tooWide) item.clip = RectF{m_x, m_area.top, m_x + width, m_area.bottom};
            items.push_back(std::move(item));
        }
        if (!line.rule) m_used = std::max(m_used, std::min(line.width, width));
        m_y += line.height;
    }

    RowFitter& m_fitter;
    Area m_area;
    bool m_variable;
    int m_columns;
    double m_gap;
    double m_columnWidth = 0;
    int m_page = 0;
    int m_column = 0;
    double m_x = 0;
    double m_y = 0;
    double m_used = 0;  // the width of what the column holds
};

}  // namespace

SongLayout::SongLayout(SongDisplayProfile& profile, PageSetup page)
    : m_profile(&profile), m_page(page) {}

void SongLayout::addSong(const Song& song, const ChordDisplayOptions& options, int tempo) {
    m_entries.push_back({Entry::Kind::Song, &song, options, tempo});
}

void SongLayout::addGap() {
    m_entries.push_back({Entry::Kind::Gap, nullptr, {}, 0});
}

void SongLayout::addSeparator() {
    m_entries.push_back({Entry::Kind::Separator, nullptr, {}, 0});
}

int SongLayout::layOut(DrawContext& dc) {
    DrawStateSaver saved(dc);
    m_scale = 1.0;
    int pages = layOutAt(dc, 1.0);
    const auto songs = std::count_if(m_entries.begin(), m_entries.end(), [](const Entry& entry) {
        return entry.kind == Entry::Kind::Song;
    });
    if (m_profile->shrinkToFit() && songs == 1 && pages > 1) {
        // The largest scale that fits one page: each step halves the range.
        double fits = SmallestScale;
        double tooBig = 1.0;
        for (int step = 0; step < ShrinkSteps; ++step) {
            const double scale = (fits + tooBig) / 2;
            if (layOutAt(dc, scale) == 1)
                fits = scale;
            else
                tooBig = scale;
        }
        m_scale = fits;
        pages = layOutAt(dc, fits);
    }
    return pages;
}

int SongLayout::layOutAt(DrawContext& dc, double scale) {
    SongDisplayProfile& profile = *m_profile;
    m_items.clear();
    m_pageSize = dc.pageSize();

    BlockMaker maker(dc, profile, scale);
    std::vector<Block> blocks;
    int songNumber = 0;
    for (const Entry& entry : m_entries) {
        switch (entry.kind) {
            case Entry::Kind::Song:
                maker.addSong(blocks, *entry.song, entry.options, entry.tempo, songNumber++);
                break;
            case Entry::Kind::Gap: {
                Block gap;
                gap.isGap = true;
                gap.rows.push_back(maker.spaceRow(GapSpace));
                blocks.push_back(std::move(gap));
                break;
            }
            case Entry::Kind::Separator: {
                Block separator;
                Row rule = maker.spaceRow(SongSpace);
                rule.kind = Row::Kind::Rule;
                rule.color = profile.style(StyleKind::Default).FontColor;
                separator.rows.push_back(std::move(rule));
                separator.spaceAfter = SectionSpace * maker.baseLine();
                blocks.push_back(std::move(separator));
                break;
            }
        }
    }

    Flow::Area area{m_page.margin, m_page.margin, m_pageSize.width - m_page.margin,
                    m_pageSize.height - m_page.margin};
    double footerHeight = 0;
    GFont footerFont;
    if (profile.showFooter()) {
        footerFont = profile.getFont(StyleKind::PageNo, scale);
        dc.setFont(footerFont);
        footerHeight = dc.fontMetrics().lineHeight;
        area.bottom -= footerHeight + FooterSpace;
    }
    const double gap = profile.columnGap() > 0 ? double(profile.columnGap()) : m_page.columnGap;

    RowFitter fitter(dc);
    bool variable = false;
    int columns = 1;
    if (profile.multiColumns()) {
        if (profile.columns() > 1) {
            columns = profile.columns();
        } else if (profile.variableColumnWidths()) {
            variable = true;
        } else {
            // As many equal columns as the widest line allows, when one
            // column would not hold everything on one page.
            double height = 0;
            double widest = 0;
            std::vector<Line> lines;
            for (const Block& block : blocks) {
                lines.clear();
                for (const Row& row : block.rows)
                    fitter.fit(row, 1e9, lines);
                for (const Line& line : lines) {
                    height += line.height;
                    if (!line.rule) widest = std::max(widest, line.width);
                }
                height += block.spaceAfter;
            }
            if (height > area.bottom - area.top) {
                for (int n = MostColumns; n > 1 && columns == 1; --n) {
                    if ((area.right - area.left - double(n - 1) * gap) / n >= widest) columns = n;
                }
            }
        }
    }

    Flow flow(fitter, area, variable, columns, gap);
    for (const Block& block : blocks)
        flow.place(block, m_items);
    m_pageCount = flow.pages();

    if (profile.showFooter()) {
        for (int page = 0; page < m_pageCount; ++page) {
            Item number;
            number.role = Role::PageNumber;
            number.page = page;
            number.font = footerFont;
            number.color = footerFont.color;
            number.rect = {area.left, m_pageSize.height - m_page.margin - footerHeight, area.right,
                           m_pageSize.height - m_page.margin};
            m_items.push_back(std::move(number));
        }
        numberPages();
    }
    return m_pageCount;
}

void SongLayout::setPageNumbers(int first, int total) {
    m_firstPageNumber = first;
    m_totalPages = total;
    numberPages();
}

void SongLayout::numberPages() {
    const int total = m_totalPages > 0 ? m_totalPages : m_pageCount;
    for (Item& item : m_items) {
        if (item.role == Role::PageNumber)
            item.text =
                std::to_string(m_firstPageNumber + item.page) + " / " + std::to_string(total);
    }
}

void SongLayout::drawPage(DrawContext& dc, int page) const {
    DrawStateSaver saved(dc);
    dc.setBackgroundMode(BackgroundMode::Transparent);
    const Color background = m_profile->pageBackgroundColor();
    // Paper and a new image are white already.
    if (background != 0xFFFFFF)
        dc.fillRect({0, 0, m_pageSize.width, m_pageSize.height}, background);
    for (const Item& item : m_items) {
        if (item.page != page) continue;
        if (item.role == Role::Separator) {
            dc.fillRect(item.rect, item.color);
            continue;
        }
        std::optional<DrawStateSaver> clipped;
        if (item.clip) {
            clipped.emplace(dc);
            dc.clipTo(*item.clip);
        }
        dc.setFont(item.font);
        dc.setTextColor(item.color);
        double x = item.rect.left;
        if (item.role == Role::PageNumber) {
            x += (item.rect.width() - dc.textExtent(item.text).width) / 2;
        }
        dc.drawText({x, item.rect.top}, item.text);
    }
}

int SongLayout::draw(DrawContext& dc) const {
    for (int page = 0; page < m_pageCount; ++page) {
        if (page > 0 && !dc.newPage()) return page;
        drawPage(dc, page);
    }
    return m_pageCount;
}

}  // namespace melodex
