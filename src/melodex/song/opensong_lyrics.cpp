#include "melodex/song/opensong_lyrics.h"

#include <algorithm>
#include <set>
#include <string>

#include "melodex/music/song_chord.h"
#include "melodex/song/vocabulary.h"

namespace melodex {

namespace {

// A chord, parsed once when its row is read, and the code point it stands
// over. The position moves while the lyric is edited; the chord takes it as
// its offset when the line is made.
struct PlacedChord {
    int position;
    SongChord chord;
};

// A lyric being edited before it becomes a SongLine: its code points and the
// chords over them. Removing characters moves the chords that stand after
// them, so every chord stays over the letter it was written over.
struct ChordedText {
    std::u32string text;
    std::vector<PlacedChord> chords;

    void erase(int at, int count) {
        text.erase(std::size_t(at), std::size_t(count));
        for (PlacedChord& chord : chords) {
            if (chord.position >= at + count) {
                chord.position -= count;
            } else if (chord.position >= at) {
                chord.position = at;  // it stood over a removed character
            }
        }
    }

    bool isBlank() const {
        return std::all_of(text.begin(), text.end(),
                           [](char32_t c) { return c == U' ' || c == U'\t'; });
    }
};

bool isBlankCharacter(char32_t c) {
    return c == U' ' || c == U'\t';
}

std::u32string decode(std::string_view text) {
    std::u32string out;
    out.reserve(text.size());
    for (std::size_t pos = 0; pos < text.size();)
        out += decodeUtf8(text, pos);
    return out;
}

String encode(std::u32string_view text) {
    String out;
    out.reserve(text.size());
    for (char32_t c : text)
        appendUtf8(out, c);
    return out;
}

// The SongLine of a finished lyric. A chord over leading blanks moves to the
// first letter, and chords that would share an offset are kept apart, one
// character each. A chord past the end goes at the end; further chords past
// the end keep their distance from it, and the text gets trailing blanks to
// hold them, so that no chord is lost and every offset lies within the text.
// A lyric with no letters keeps every chord at its own column.
SongLine* makeLine(ChordedText lyric) {
    if (lyric.isBlank()) {
        lyric.text.clear();
    } else {
        int leading = 0;
        while (isBlankCharacter(lyric.text[std::size_t(leading)]))
            ++leading;
        lyric.erase(0, leading);
        while (isBlankCharacter(lyric.text.back()))
            lyric.text.pop_back();
    }

    const int length = int(lyric.text.size());
    int previous = -1;
    int pull = lyric.text.empty() ? 0 : -1;
    for (PlacedChord& chord : lyric.chords) {
        int offset = std::max(chord.position, previous + 1);
        if (offset > length) {
            if (pull < 0) pull = offset - std::max(length, previous + 1);
            offset = std::max(offset - pull, previous + 1);
        }
        chord.position = offset;
        previous = offset;
    }
    if (previous > length) lyric.text.append(std::size_t(previous - length), U' ');

    auto* line = new SongLine;
    line->setText(encode(lyric.text));
    for (PlacedChord& placed : lyric.chords) {
        placed.chord.offset(placed.position);
        line->addChord(new SongChord(std::move(placed.chord)));
    }
    return line;
}

struct Row {
    int verse = 0;  // 0 for a row of every verse
    ChordedText lyric;
};

class Reader {
public:
    std::vector<OpenSongLyrics::Section> read(std::string_view lyrics);

private:
    void readRow(std::u32string_view row);
    void startHeader(std::u32string_view row);
    void readChordRow(std::u32string_view row);
    void readLyricRow(std::u32string_view lyric, int verse, int markerWidth);
    // The chord row stops applying; kept as a line of its own when no
    // lyric row took it.
    void endChords();
    void finishBlock();
    void addRow(int verse, ChordedText lyric);

    std::vector<OpenSongLyrics::Section> m_sections;

    // The header being read and its rows. Rows before any header belong to
    // an implicit verse that is only kept when it has rows.
    String m_header = "V";
    bool m_explicitHeader = false;
    std::vector<Row> m_rows;

    std::vector<PlacedChord> m_chords;
    bool m_chordsActive = false;
    std::set<int> m_chordsTaken;  // the verse numbers whose row took the chords
};

std::vector<OpenSongLyrics::Section> Reader::read(std::string_view lyrics) {
    const std::u32string text = decode(lyrics);
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = start;
        while (end < text.size() && text[end] != U'\n' && text[end] != U'\r')
            ++end;
        readRow(std::u32string_view(text).substr(start, end - start));
        if (end == text.size()) break;
        start = end + 1;
        if (text[end] == U'\r' && start < text.size() && text[start] == U'\n') ++start;
    }
    endChords();
    finishBlock();
    return std::move(m_sections);
}

void Reader::readRow(std::u32string_view row) {
    if (std::all_of(row.begin(), row.end(), [](char32_t c) { return isBlankCharacter(c); })) {
        endChords();
        return;
    }
    const char32_t marker = row.front();
    if (marker == U'[') {
        endChords();
        finishBlock();
        startHeader(row.substr(1));
    } else if (marker == U'.') {
        endChords();
        readChordRow(row);
    } else if (marker == U';') {
        endChords();
    } else if (marker == U'-') {
        // Print layout ("---" a new column, "-!!" a new page): nothing to keep.
    } else if (marker >= U'1' && marker <= U'9') {
        readLyricRow(row.substr(1), int(marker - U'0'), 1);
    } else if (marker == U' ') {
        readLyricRow(row.substr(1), 0, 1);
    } else {
        // A row without a marker: its text starts at column 0.
        readLyricRow(row, 0, 0);
    }
}

void Reader::startHeader(std::u32string_view row) {
    const std::size_t close = row.find(U']');
    m_header = strip(encode(row.substr(0, close)));
    m_explicitHeader = true;
}

void Reader::readChordRow(std::u32string_view row) {
    m_chords.clear();
    m_chordsActive = true;
    m_chordsTaken.clear();
    std::size_t column = 0;
    while (column < row.size()) {
        if (isBlankCharacter(row[column]) || column == 0) {
            ++column;
            continue;
        }
        const std::size_t start = column;
        while (column < row.size() && !isBlankCharacter(row[column]))
            ++column;
        SongChord chord(encode(row.substr(start, column - start)));
        // Bar lines, rhythm slashes and remarks share the row with the
        // chords; only what reads as a chord is kept.
        if (chord.isValid()) m_chords.push_back({int(start), std::move(chord)});
    }
}

void Reader::readLyricRow(std::u32string_view lyric, int verse, int markerWidth) {
    std::vector<PlacedChord> chords;
    // A chord row serves one row of each verse number: the numbered rows of
    // several verses below it share it, while a further row of the same verse
    // is a line that a musician sees without chords.
    if (m_chordsActive && m_chordsTaken.insert(verse).second) {
        for (const PlacedChord& chord : m_chords)
            chords.push_back({std::max(chord.position - markerWidth, 0), chord.chord});
    }

    // One pass over the row, so that a huge row costs no more than its
    // length. A chord goes with the character it stands over; over a removed
    // character it goes to the next one kept.
    ChordedText piece;
    std::size_t next = 0;  // the first chord not placed yet
    auto placeChordsUpTo = [&](std::size_t position) {
        for (; next < chords.size() && std::size_t(chords[next].position) <= position; ++next)
            piece.chords.push_back({int(piece.text.size()), std::move(chords[next].chord)});
    };
    auto finishPiece = [&] {
        if (!piece.isBlank() || !piece.chords.empty()) addRow(verse, std::move(piece));
        piece = ChordedText();
    };
    std::size_t skip = 0;  // characters of a slide break still to drop
    for (std::size_t i = 0; i < lyric.size(); ++i) {
        const char32_t c = lyric[i];
        const bool doubleBar = i + 1 < lyric.size() && lyric[i + 1] == U'|';
        if (skip == 0 && c == U'|' && !doubleBar) {
            finishPiece();  // a line break: the chords over it start the next line
            placeChordsUpTo(i);
            continue;
        }
        placeChordsUpTo(i);
        if (skip > 0) {
            --skip;
        } else if (c == U'|') {
            // "word || word" would leave two blanks where the words meet.
            const bool blankAround = !piece.text.empty() && isBlankCharacter(piece.text.back()) &&
                                     i + 2 < lyric.size() && isBlankCharacter(lyric[i + 2]);
            skip = blankAround ? 2 : 1;
        } else if (c != U'_') {
            piece.text.push_back(c);
        }
    }
    // Chords past the end keep their distance from it.
    for (; next < chords.size(); ++next) {
        const int past = chords[next].position - int(lyric.size());
        piece.chords.push_back({int(piece.text.size()) + past, std::move(chords[next].chord)});
    }
    finishPiece();
}

void Reader::addRow(int verse, ChordedText lyric) {
    m_rows.push_back({verse, std::move(lyric)});
}

void Reader::endChords() {
    if (m_chordsActive && m_chordsTaken.empty() && !m_chords.empty()) {
        ChordedText chordsOnly;
        for (const PlacedChord& chord : m_chords)
            chordsOnly.chords.push_back({chord.position - 1, chord.chord});
        addRow(0, std::move(chordsOnly));
    }
    m_chords.clear();
    m_chordsActive = false;
    m_chordsTaken.clear();
}

void Reader::finishBlock() {
    std::set<int> verses;
    for (const Row& row : m_rows) {
        if (row.verse != 0) verses.insert(row.verse);
    }
    const int type = OpenSongLyrics::sectionTypeOf(m_header);
    auto makeSection = [&](const String& name, int verse) {
        auto section = std::make_unique<SongSection>(type);
        for (const Row& row : m_rows) {
            if (row.verse != 0 && row.verse != verse) continue;
            section->addLine(makeLine(row.lyric));
        }
        section->checkForChords();
        m_sections.push_back({name, std::move(section)});
    };
    if (verses.empty()) {
        if (m_explicitHeader || !m_rows.empty()) makeSection(m_header, 0);
    } else {
        for (int verse : verses)
            makeSection(m_header + std::to_string(verse), verse);
    }
    m_rows.clear();
}

}  // namespace

std::vector<OpenSongLyrics::Section> OpenSongLyrics::read(std::string_view lyrics) {
    return Reader().read(lyrics);
}

int OpenSongLyrics::sectionTypeOf(std::string_view name) {
    if (name.empty()) return SectionType::Misc;
    switch (name.front()) {
        case 'V':
        case 'v':
            return SectionType::Verse;
        case 'C':
        case 'c':
            return SectionType::Chorus;
        case 'B':
        case 'b':
            return SectionType::Bridge;
        case 'P':
        case 'p':
            return SectionType::PreChorus;
        case 'T':
        case 't':
            return SectionType::Tag;
        case 'I':
        case 'i':
            return SectionType::Intro;
        case 'E':
        case 'e':
            return SectionType::Ending;
        default:
            return SectionType::Misc;
    }
}

}  // namespace melodex
