#include "melodex/song/opensong_lyrics.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string>

#include "melodex/music/song_chord.h"
#include "melodex/song/vocabulary.h"

namespace melodex {

namespace {

// A chord, parsed once when its row is read, and the code point it stands
// over; the chord takes the position as its offset when the line is made.
struct PlacedChord {
    int position;
    SongChord chord;
};

// A lyric being built before it becomes a SongLine: its code points and the
// chords over them.
struct ChordedText {
    std::u32string text;
    std::vector<PlacedChord> chords;

    bool isBlank() const;
};

// Holds the place of a chord inside a word whose joiner carried it: zero
// width, invisible, and no place to break the line.
constexpr char32_t WordJoiner = U'\u2060';

bool isBlankCharacter(char32_t c) {
    return c == U' ' || c == U'\t';
}

bool ChordedText::isBlank() const {
    return std::all_of(text.begin(), text.end(), isBlankCharacter);
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

// The SongLine of a finished lyric. Blanks at its end go; a chord over them
// or past the end goes at the end, and further chords past the end keep
// their distance from it on trailing blanks, so that no chord is lost and
// every offset lies within the text. A lyric with no letters keeps every
// chord at its own column. Chords never share an offset.
SongLine* makeLine(ChordedText lyric) {
    if (lyric.isBlank()) {
        lyric.text.clear();
    } else {
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

// --- Chord names -------------------------------------------------------------------

// A note name at the start of a chord token, as this reader understands it.
struct NoteName {
    int note = 0;            // 0 to 11
    std::size_t length = 0;  // bytes of the name
    bool central = false;    // a spelling only Central-European notation has
    bool lowerCase = false;  // "fis": a minor chord in that notation
};

// The letters A to H as note numbers; B is B natural here.
constexpr int LetterNotes[] = {9, 11, 0, 2, 4, 5, 7, 11};

// Reads the note name at the start of `text`. English notation takes A to G
// with "#" or "b". Central-European notation takes H too, B as B flat, the
// suffixes "is" (sharp), "es" and, after A and E, "s" (flat), each with the
// Hungarian "z" ("Fisz", "Asz"), and lower-case letters.
std::optional<NoteName> readNoteName(std::string_view text, bool central) {
    if (text.empty()) return std::nullopt;
    NoteName name;
    char letter = text[0];
    if (letter >= 'a' && letter <= 'h') {
        if (!central) return std::nullopt;
        name.lowerCase = name.central = true;
        letter = char(letter - 'a' + 'A');
    }
    if (letter < 'A' || letter > 'H' || (letter == 'H' && !central)) return std::nullopt;
    name.central = name.central || letter == 'H';
    name.note = LetterNotes[letter - 'A'];
    if (letter == 'B' && central) name.note = 10;
    name.length = 1;

    const std::string_view rest = text.substr(1);
    int shift = 0;
    if (rest.starts_with('#')) {
        shift = 1;
        name.length += 1;
    } else if (rest.starts_with('b')) {
        // "Bb" is B flat in either notation, never B double flat.
        shift = (letter == 'B' && central) ? 0 : -1;
        name.length += 1;
    } else if (central) {
        std::size_t suffix = 0;
        if (rest.starts_with("is")) {
            shift = 1;
            suffix = 2;
        } else if (rest.starts_with("es")) {
            shift = -1;
            suffix = 2;
        } else if ((letter == 'A' || letter == 'E') && rest.starts_with('s') &&
                   !rest.starts_with("sus")) {
            shift = -1;
            suffix = 1;
        }
        if (suffix > 0) {
            if (rest.substr(suffix).starts_with('z')) ++suffix;
            name.length += suffix;
            name.central = true;
        }
    }
    name.note = (name.note + shift + 12) % 12;
    return name;
}

// True when `quality` reads as the rest of a chord name ("m7", "sus4",
// "maj7(9)", "mi", "dim", "+"): a remark such as "break" or "riff" does not.
// Lower-case chord names must pass this test, as must the chords that make a
// song count as written in Central-European notation: words in a chord row
// must neither become chords nor change how B is read.
bool isChordQuality(std::string_view quality) {
    static constexpr std::string_view Parts[] = {
        "maj", "min", "dim", "aug", "sus", "add", "alt", "mi", "m", "M", "+",
        "-",   "o",   "(",   ")",   ",",   "#",   "b",   "^",  "°", "ø", "Δ"};
    while (!quality.empty()) {
        if (quality[0] >= '0' && quality[0] <= '9') {
            quality.remove_prefix(1);
            continue;
        }
        bool matched = false;
        for (std::string_view part : Parts) {
            if (quality.starts_with(part)) {
                quality.remove_prefix(part.size());
                matched = true;
                break;
            }
        }
        if (!matched) return false;
    }
    return true;
}

String noteSymbol(int note) {
    static constexpr const char* Names[] = {"C",  "C#", "D",  "Eb", "E",  "F",
                                            "F#", "G",  "G#", "A",  "Bb", "B"};
    return Names[note];
}

// A chord token of a chord row as a chord in the model's own spelling, or
// nothing when the token is no chord. `plausible` is set when the whole
// token reads as a chord name, quality and bass included.
std::optional<SongChord> readChord(std::string_view token, bool central,
                                   bool* plausible = nullptr) {
    const std::optional<NoteName> root = readNoteName(token, central);
    if (!root) return std::nullopt;
    const std::string_view rest = token.substr(root->length);
    const std::size_t slash = rest.find('/');
    String quality(rest.substr(0, slash));
    std::optional<NoteName> bass;
    if (slash != std::string_view::npos) bass = readNoteName(rest.substr(slash + 1), central);
    const bool wholeName =
        isChordQuality(quality) &&
        (slash == std::string_view::npos || (bass && bass->length == rest.size() - slash - 1));
    if (plausible) *plausible = wholeName;
    if (root->lowerCase) {
        if (!wholeName) return std::nullopt;
        // "a" and "a7" are A minor and A minor seventh; "am" says it twice.
        if (!(quality.starts_with('m') && !quality.starts_with("maj"))) quality.insert(0, "m");
    }
    String symbol = noteSymbol(root->note) + quality;
    // A bass that does not read is left out, as the chord model leaves out
    // the rest of "C/x".
    if (bass) symbol += "/" + noteSymbol(bass->note);
    return SongChord(symbol);
}

// The columns a character takes in a monospaced editor, where authors line
// chords up with letters: two for a wide East Asian character, none for a
// combining mark, one for a tab as for any other character.
std::size_t columnsOf(char32_t c) {
    if ((c >= U' ' && c < 0x7F) || c == U'\t') return 1;
    return std::size_t(displayWidth(c));
}

// The blank-separated tokens of a chord row after its marker, with the
// column each starts at.
template <typename Visit>
void forEachChordToken(std::u32string_view row, Visit visit) {
    std::size_t i = 1;
    std::size_t column = row.empty() ? 0 : columnsOf(row[0]);
    while (i < row.size()) {
        if (isBlankCharacter(row[i])) {
            column += columnsOf(row[i++]);
            continue;
        }
        const std::size_t start = i;
        const std::size_t startColumn = column;
        while (i < row.size() && !isBlankCharacter(row[i]))
            column += columnsOf(row[i++]);
        visit(startColumn, encode(row.substr(start, i - start)));
    }
}

// True when a chord row holds a chord that only Central-European notation
// writes (H, Fis, Es, a lower-case minor chord ...).
bool usesCentralNotation(std::u32string_view row) {
    bool found = false;
    forEachChordToken(row, [&found](std::size_t, const String& token) {
        if (found) return;
        bool plausible = false;
        const std::optional<NoteName> root = readNoteName(token, true);
        if (!root || !readChord(token, true, &plausible) || !plausible) return;
        const std::size_t slash = token.find('/');
        const std::optional<NoteName> bass =
            slash == String::npos ? std::nullopt
                                  : readNoteName(std::string_view(token).substr(slash + 1), true);
        found = root->central || (bass && bass->central);
    });
    return found;
}

// Splits the text into rows at LF, CR LF or CR, and hands each to `visit`.
template <typename Visit>
void forEachRow(std::u32string_view text, Visit visit) {
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = start;
        while (end < text.size() && text[end] != U'\n' && text[end] != U'\r')
            ++end;
        visit(text.substr(start, end - start));
        if (end == text.size()) break;
        start = end + 1;
        if (text[end] == U'\r' && start < text.size() && text[start] == U'\n') ++start;
    }
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
    bool m_central = false;  // the song writes chords in Central-European notation

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
    // The notation is the song's, not the row's: a row of "C F G" in a song
    // that writes H elsewhere still reads B as B flat.
    forEachRow(text, [this](std::u32string_view row) {
        if (!m_central && !row.empty() && row.front() == U'.') m_central = usesCentralNotation(row);
    });
    forEachRow(text, [this](std::u32string_view row) { readRow(row); });
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
    // "[3]" and "[3a]" are verses 3 and 3a.
    if (!m_header.empty() && m_header[0] >= '0' && m_header[0] <= '9') m_header.insert(0, "V");
    m_explicitHeader = true;
}

void Reader::readChordRow(std::u32string_view row) {
    m_chords.clear();
    m_chordsActive = true;
    m_chordsTaken.clear();
    // Bar lines, rhythm slashes and remarks share the row with the chords;
    // only what reads as a chord is kept.
    forEachChordToken(row, [this](std::size_t column, const String& token) {
        // "(G)", or "(G Am)" over two tokens, marks chords a player may leave
        // out. The model has no such mark; the chords themselves are kept,
        // each over the letter its name stood over.
        std::string_view symbol = token;
        if (symbol.size() > 1 && symbol.front() == '(') {
            symbol.remove_prefix(1);
            ++column;
        }
        if (symbol.size() > 1 && symbol.back() == ')') symbol.remove_suffix(1);
        if (std::optional<SongChord> chord = readChord(symbol, m_central))
            m_chords.push_back({int(column), std::move(*chord)});
    });
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
    // length. Each character is kept, removed (padding: blanks after the
    // first of a run or before any letter, joiners, slide breaks) or breaks
    // the line. The chords over removed characters wait for the next one
    // kept, remembering the place they would take if they had to stand
    // apart from its own chord.
    struct Waiting {
        std::size_t column;  // where in the row the chord stood
        char32_t slot;       // what keeps its place: a blank, or a word joiner
        SongChord chord;
    };
    std::vector<Waiting> waiting;
    ChordedText piece;
    bool brokenRow = false;  // a "|" has broken the row
    std::size_t next = 0;    // the first chord not met yet

    const auto keep = [&](char32_t c, std::optional<SongChord> own) {
        // The last chord for this character stands over it; each one before
        // it gets a place of its own just in front. At the start of a line a
        // blank holds that place: an invisible character must not lead a
        // line's text.
        std::size_t left = waiting.size() + (own ? 1 : 0);
        for (Waiting& chord : waiting) {
            piece.chords.push_back({int(piece.text.size()), std::move(chord.chord)});
            if (--left > 0) piece.text.push_back(piece.text.empty() ? U' ' : chord.slot);
        }
        waiting.clear();
        if (own) piece.chords.push_back({int(piece.text.size()), std::move(*own)});
        piece.text.push_back(c);
    };
    // At the end of a line the waiting chords go past its end (makeLine
    // brings the first to the end and keeps the distances of the others);
    // in a line without letters they keep their columns.
    std::size_t pieceStart = 0;  // the column where the line began in the row
    const auto finishPiece = [&](bool always) {
        for (Waiting& chord : waiting) {
            const std::size_t position =
                piece.text.empty() ? chord.column - pieceStart
                                   : piece.text.size() + 1 + chord.column - waiting.front().column;
            piece.chords.push_back({int(position), std::move(chord.chord)});
        }
        waiting.clear();
        if (always || !piece.isBlank() || !piece.chords.empty()) addRow(verse, std::move(piece));
        piece = ChordedText();
    };
    // The chord that stands before column `end`, over the character that
    // ends there.
    const auto ownChord = [&](std::size_t end) -> std::optional<SongChord> {
        if (next < chords.size() && std::size_t(chords[next].position) < end)
            return std::move(chords[next++].chord);
        return std::nullopt;
    };
    std::size_t column = 0;  // the first column of the character read
    const auto remove = [&](char32_t slot) {
        if (std::optional<SongChord> chord = ownChord(column + 1))
            waiting.push_back({column, slot, std::move(*chord)});
        column += 1;
    };

    for (std::size_t i = 0; i < lyric.size(); ++i) {
        const char32_t c = lyric[i];
        if (c == U'|' && i + 1 < lyric.size() && lyric[i + 1] == U'|') {
            remove(U' ');  // a slide break: nothing to show
            remove(U' ');
            ++i;
        } else if (c == U'|') {
            // A line break: the text before the first "|" is a line when it
            // holds anything, and every "|" starts a line, empty or not, as
            // other programs that read these files show it.
            finishPiece(brokenRow);
            brokenRow = true;
            pieceStart = column;
            remove(U' ');  // a chord over the bar starts the next line
        } else if (c == U'_') {
            remove(WordJoiner);
        } else if (isBlankCharacter(c) &&
                   (piece.text.empty() || isBlankCharacter(piece.text.back()))) {
            remove(U' ');
        } else {
            const std::size_t end = column + columnsOf(c);
            keep(c, ownChord(end));
            column = end;
        }
    }
    // Chords past the end of the row wait at its end too.
    for (; next < chords.size(); ++next)
        waiting.push_back(
            {std::size_t(chords[next].position), U' ', std::move(chords[next].chord)});
    finishPiece(brokenRow);
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
    if (name.front() >= '0' && name.front() <= '9') return SectionType::Verse;
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
