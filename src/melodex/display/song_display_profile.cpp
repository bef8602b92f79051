#include "melodex/display/song_display_profile.h"

#include <array>

#include "melodex/music/notes.h"
#include "melodex/song/vocabulary.h"

namespace melodex {

namespace {

constexpr int SingerTypeCount = 10;

// The house colours of lines by singer type, on a light and on a dark page.
struct LineColor {
    unsigned long light;
    unsigned long dark;
};
constexpr std::array<LineColor, SingerTypeCount> HouseLineColors = {{
    {0x000000, 0xFFFFFF},
    {0x000000, 0xFFFFFF},
    {0x9A0087, 0x9A0087},
    {0x8A0009, 0xC40009},
    {0x808000, 0xC4C400},
    {0x008080, 0x00C4C4},
    {0xFF4040, 0xFF4040},
    {0x20FF40, 0x20FF40},
    {0x404040, 0xC4C4C4},
    {0x404040, 0xC4C4C4},
}};

// The house styles. A size code of 0 is the base size, a positive code a
// size in points, -1 two thirds and -2 half of the base size.
struct HouseStyle {
    const char* font;
    int sizeCode;
    int fontStyle;
    int indent;
    unsigned long light;
    unsigned long dark;
};
constexpr std::array<HouseStyle, StyleKind::Count> HouseStyles = {{
    {"Arial", 0, 0, 0, 0x000000, 0xFFFFFF},             // Default
    {"Arial", 0, 0, 0, 0x000000, 0xFFFFFF},             // Verse
    {"Arial", 0, 2, 1, 0x000000, 0xFFFFFF},             // Chorus
    {"Arial", 0, 2, 2, 0x1A500A, 0xC4FFC4},             // Bridge
    {"Arial", 0, 2, 1, 0x000000, 0xFFFFFF},             // PreChorus
    {"Arial", 0, 0, 0, 0x500050, 0xFFC4FF},             // Tag
    {"Arial", 0, 0, 0, 0x800000, 0xFFC4C4},             // Intro
    {"Arial", 0, 0, 0, 0x000080, 0xC4C4FF},             // Ending
    {"Arial", 0, 0, 0, 0x505000, 0xC4C400},             // Misc
    {"Arial", -1, 0, 0, 0x0000FF, 0x0000FF},            // Chord
    {"Arial", -1, 0, 0, 0x8040FF, 0x8040FF},            // Instruction
    {"Arial", 0, 0, 0, 0xFF0000, 0xFF0000},             // Number
    {"Times New Roman", 9, 2, 0, 0x806400, 0x806400},   // Reference
    {"Times New Roman", 9, 2, 0, 0x808080, 0x808080},   // Copyright
    {"Arial", -1, 2, 0, 0x808080, 0x808080},            // PageNo
    {"Arial", -2, 0, 0, 0x008000, 0x008000},            // SongInfo
    {"Arial", 7, 1, 0, 0x800000, 0x800000},             // SectionInfoTitle
    {"Arial", 7, 0, 0, 0x800000, 0x800000},             // SectionInfoValue
    {"Times New Roman", 10, 2, 0, 0x000078, 0xFFFFFF},  // BookIndexEntry
    {"Times New Roman", 10, 0, 0, 0x000000, 0xFFFFFF},  // BookTitleEntry
}};

// Per key: its name, the capo that turns it into easy guitar shapes (F with
// capo 3 is played in D shapes) and the local transposition a keyboard
// player may take (C# played as C).
constexpr std::array<const char*, 12> HouseKeyNames = {"C",  "C#", "D",  "Eb", "E",  "F",
                                                       "F#", "G",  "Ab", "A",  "Bb", "B"};
constexpr std::array<int, 12> HouseCapoPositions = {0, 1, 0, 1, 0, 3, 4, 0, 1, 0, 3, 4};
constexpr std::array<int, 12> HouseLocalTransposes = {0, -1, 0, 0, 0, 0, -1, 0, -1, 0, 0, 1};

// How profiles spell each note in each key. It differs from the chord
// spelling that songs use on their own (no key but F# and E spells note 8
// "G#" here), and the irregular rows are the house's: profiles in use and
// the printouts made with them depend on them, so they are not regularised.
using Row = std::array<const char*, 12>;
constexpr Row Usual = {"C", "C#", "D", "Eb", "E", "F", "F#", "G", "Ab", "A", "Bb", "B"};
constexpr std::array<Row, 12> HouseNoteNames = {{
    Usual,                                                              // C
    Usual,                                                              // C#
    Usual,                                                              // D
    {"C", "C#", "D", "Eb", "E", "F", "Gb", "G", "Ab", "A", "Bb", "B"},  // Eb
    {"C", "C#", "D", "Eb", "E", "F", "F#", "G", "G#", "A", "Bb", "B"},  // E
    Usual,                                                              // F
    {"C", "C#", "D", "Eb", "E", "F", "F#", "G", "G#", "A", "Bb", "B"},  // F#
    Usual,                                                              // G
    {"C", "Db", "D", "Eb", "E", "F", "Gb", "G", "Ab", "A", "Bb", "B"},  // Ab
    Usual,                                                              // A
    {"C", "C#", "D", "Eb", "E", "F", "Gb", "G", "Ab", "A", "Bb", "B"},  // Bb
    Usual,                                                              // B
}};

double sizeFromCode(int code, double baseSize) {
    if (code == 0) return baseSize;
    if (code == -1) return baseSize * 2.0 / 3.0;
    if (code == -2) return baseSize / 2.0;
    return double(code);
}

const String& emptyText() {
    static const String empty;
    return empty;
}

bool isKey(int key) {
    return key >= 0 && key < 12;
}

// A per-key default: 0 for a key the table does not reach.
int perKey(const IntegerArray& table, int key) {
    return key >= 0 && key < int(table.size()) ? table[std::size_t(key)] : 0;
}

// Sets a per-key default of a key 0 to 11, growing the table to twelve.
void setPerKey(IntegerArray& table, int key, int value) {
    if (!isKey(key)) return;
    if (table.size() < 12) table.resize(12, 0);
    table[std::size_t(key)] = value;
}

}  // namespace

SongDisplayProfile::SongDisplayProfile() {
    // Construction first sets one column, a gap of 12 and a white page, and
    // clear() then takes them back: a new profile, like a cleared one, shows
    // nothing until it is created or loaded.
    m_columns = 1;
    m_columnGap = 12;
    m_pageBackgroundColor = 0xFFFFFF;
    clear();
}

void SongDisplayProfile::clear() {
    m_filename.clear();
    m_name.clear();
    m_title.clear();
    m_type = 0;
    m_capoPosition = 0;
    m_flags = 0;
    m_columns = 0;
    m_columnGap = 0;
    m_pageBackgroundColor = 0;
    m_lineColors.clear();
    m_styles.clear();
    m_noteNames.clear();
    m_currentKey = 0;
    m_transpose = 0;
    m_highlightFadeTime = 3.0;
    m_highlightBackgroundColor = 0x64FFFF;
}

void SongDisplayProfile::create(const String& name, const String& title, int type, int flags,
                                double baseSize, double secondarySize, bool darkBackground,
                                bool useCapoDefaults, bool useTransposeDefaults) {
    m_name = name;
    m_title = title;
    m_type = type;
    m_flags = flags;

    m_pageBackgroundColor = darkBackground ? 0x000000 : 0xFFFFFF;
    m_highlightBackgroundColor = darkBackground ? 0x004080 : 0x64FFFF;
    m_highlightFadeTime = 3.0;
    m_infoWidth = 0;

    m_lineColors.clear();
    for (const LineColor& color : HouseLineColors)
        m_lineColors.push_back(darkBackground ? color.dark : color.light);

    m_styles.clear();
    for (const HouseStyle& house : HouseStyles) {
        SongTextStyle style;
        const double size = sizeFromCode(house.sizeCode, baseSize);
        style.FontName = house.font;
        style.FontPtSize = size;
        style.FontMaxPtSize = size;
        if (secondarySize == 0)
            style.FontMinPtSize = size * 0.25;
        else
            style.FontMinPtSize = baseSize != 0 ? secondarySize / baseSize * size : secondarySize;
        style.FontColor = darkBackground ? house.dark : house.light;
        style.FontStyle = house.fontStyle;
        style.Indent = house.indent;
        m_styles.push_back(style);
    }

    m_keyNames.assign(12, String());
    m_defaultCapoPositions.assign(12, 0);
    m_defaultLocalTransposes.assign(12, 0);
    m_noteNames.assign(12, NoteRow());
    for (std::size_t key = 0; key < 12; ++key) {
        m_keyNames[key] = HouseKeyNames[key];
        if (useTransposeDefaults) m_defaultLocalTransposes[key] = HouseLocalTransposes[key];
        if (useCapoDefaults) m_defaultCapoPositions[key] = HouseCapoPositions[key];
        for (std::size_t note = 0; note < 12; ++note)
            m_noteNames[key][note] = HouseNoteNames[key][note];
    }
}

void SongDisplayProfile::setColumns(int columns, int gap) {
    m_columns = columns;
    m_columnGap = gap;
}

void SongDisplayProfile::setColumns(int columns, int width, int gap) {
    m_columns = columns;
    m_columnWidth = width;
    m_columnGap = gap;
}

unsigned long SongDisplayProfile::getLineColor(int singerType) const {
    if (singerType < 0 || singerType >= int(m_lineColors.size())) return 0;
    return m_lineColors[std::size_t(singerType)];
}

void SongDisplayProfile::setLineColor(int singerType, unsigned long color) {
    if (singerType < 0) return;
    if (singerType >= int(m_lineColors.size())) m_lineColors.resize(std::size_t(singerType) + 1, 0);
    m_lineColors[std::size_t(singerType)] = color;
}

void SongDisplayProfile::ensureStyles() {
    if (m_styles.size() < std::size_t(StyleKind::Count)) m_styles.resize(StyleKind::Count);
}

SongTextStyle& SongDisplayProfile::style(int kind) {
    ensureStyles();
    if (kind < 0 || kind >= StyleKind::Count) kind = StyleKind::Default;
    return m_styles[std::size_t(kind)];
}

const SongTextStyle& SongDisplayProfile::style(int kind) const {
    static const SongTextStyle plain;
    if (kind < 0 || kind >= StyleKind::Count) kind = StyleKind::Default;
    return std::size_t(kind) < m_styles.size() ? m_styles[std::size_t(kind)] : plain;
}

const String& SongDisplayProfile::getNoteName(int key, int note, int capo) const {
    if (m_noteNames.size() < 12) return emptyText();
    const long long shift = capo < 0 ? 0 : capo;
    const int row = wrapNote(wrapNote(key) + shift);
    const int column = wrapNote(wrapNote(note) + shift);
    return m_noteNames[std::size_t(row)][std::size_t(column)];
}

void SongDisplayProfile::setNoteName(int key, int note, const String& name) {
    if (m_noteNames.size() < 12) m_noteNames.resize(12);
    m_noteNames[std::size_t(wrapNote(key))][std::size_t(wrapNote(note))] = name;
}

const String& SongDisplayProfile::getKeyName(int key) const {
    const std::size_t index = std::size_t(wrapNote(key));
    return index < m_keyNames.size() ? m_keyNames[index] : emptyText();
}

void SongDisplayProfile::setKeyName(int key, const String& name) {
    if (m_keyNames.size() < 12) m_keyNames.resize(12);
    m_keyNames[std::size_t(wrapNote(key))] = name;
}

int SongDisplayProfile::defaultCapoPosition(int key) const {
    return perKey(m_defaultCapoPositions, key);
}

void SongDisplayProfile::defaultCapoPosition(int key, int fret) {
    setPerKey(m_defaultCapoPositions, key, fret);
}

int SongDisplayProfile::defaultLocalTranspose(int key) const {
    return perKey(m_defaultLocalTransposes, key);
}

void SongDisplayProfile::defaultLocalTranspose(int key, int semitones) {
    setPerKey(m_defaultLocalTransposes, key, semitones);
}

GFont SongDisplayProfile::getFontForSectionType(int sectionType, double scale) const {
    const bool ownStyle = sectionType >= SectionType::Chorus && sectionType <= SectionType::Misc;
    return getFont(ownStyle ? sectionType : StyleKind::Verse, scale);
}

}  // namespace melodex
