#pragma once

// How songs are laid out for one display target (screen, print, projection,
// follower screen, editor, viewer): which parts of a song show (words,
// chords, bass notes, header, key, author ...), columns, page and highlight
// colours, a colour per singer type, a text style per style kind, how each
// note is spelled in each key, the name of each key, and a default capo
// and local transposition per key. It also carries the running state of one
// display: the current key, the page number and count, the column width.
//
//     SongDisplayProfile* chords = SongDisplayProfile::getProfileByName("Chords", 0);
//     chords->setCurrentKey(8);          // a song in Ab
//     chords->getNoteName(1, 0);         // "Db"
//     chords->showBass(true);
//     if (chords->saveToFile(path) != StatusSuccess) ...
//
// A profile is a value: copies are independent. A new or cleared profile has
// no flags, no columns, a black page, no styles, no line colours and no
// spelling table until create() or a load fills it; asking such a profile
// for a note name gives an empty text.
//
// Profiles are stored as ".sdp" XML files. The process keeps one list of
// profiles, read from the display profiles folder (setProfileFolder(), which
// theAppConfig.init() sets); when the folder holds none, the house profiles
// are made and written into it, and the profiles the editor, the viewer and
// the follower screen need are made whenever they are missing. The list
// owns its profiles: a pointer from getProfile(), getProfileByName() or
// addProfile() stays valid until the list is loaded again. The list, like
// the rest of the library, belongs to the program's user-interface thread.

#include <array>
#include <optional>
#include <string_view>
#include <vector>

#include "melodex/display/gfont.h"
#include "melodex/display/song_text_style.h"
#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"

namespace melodex {

class XmlNode;

// The bits of a profile's flag word. They are part of the .sdp format and
// of the programs' interface; bit 12 (0x1000) is unused and stays so.
namespace ProfileFlag {
inline constexpr int ShowWords = 0x1;
inline constexpr int ShowChords = 0x2;
inline constexpr int ShowBass = 0x4;
inline constexpr int ShowMusic = 0x8;
inline constexpr int ShowHeader = 0x10;
inline constexpr int ShowFooter = 0x20;
inline constexpr int CapoChordsInBrackets = 0x40;
inline constexpr int ShrinkToFit = 0x80;  // never stored in a file
inline constexpr int MultiColumns = 0x100;
inline constexpr int VariableColumnWidths = 0x200;
inline constexpr int ShowKey = 0x400;
inline constexpr int WrapText = 0x800;
inline constexpr int ShowAnnotations = 0x2000;
inline constexpr int ShowLocalTranspose = 0x4000;
inline constexpr int ShowCopyright = 0x8000;
inline constexpr int ShowAuthor = 0x10000;
inline constexpr int ShowSequence = 0x20000;
inline constexpr int ShowTempo = 0x40000;
inline constexpr int ShowTimeSignature = 0x80000;
}  // namespace ProfileFlag

// The display targets a profile is for: its type is a set of these bits.
namespace DisplayTarget {
inline constexpr int Screen = 1;
inline constexpr int Print = 2;
inline constexpr int Projection = 4;
inline constexpr int Follower = 8;
inline constexpr int Editor = 16;
inline constexpr int Viewer = 32;
}  // namespace DisplayTarget

class SongDisplayProfile {
public:
    SongDisplayProfile();

    // Empties file name, name and title; type, capo position, flags,
    // columns, column gap and page colour become 0 (a black page); line
    // colours, styles and the spelling table are emptied; current key and
    // transposition 0, fade time 3 s, highlight 0x64FFFF. Key names and the
    // per-key defaults stay, and so do column width, page number and count
    // and info width.
    void clear();

    // Fills the profile with the house defaults for a target: the arguments,
    // page and highlight colours, ten line colours and twenty styles from
    // the light or the dark scheme, sized from `baseSize` (and the minimum
    // sizes from `secondarySize`, or a quarter of each size when it is 0),
    // key names, the spelling table, and the default capo positions and
    // local transpositions when asked for (else 0). File name,
    // transposition, capo position, columns and the running state stay.
    void create(const String& name, const String& title, int type, int flags, double baseSize,
                double secondarySize, bool darkBackground, bool useCapoDefaults,
                bool useTransposeDefaults);

    // --- Fields -------------------------------------------------------------------

    // The file the profile was loaded from or last saved to.
    const String& filename() const { return m_filename; }
    void filename(const String& path) { m_filename = path; }

    const String& name() const { return m_name; }
    void name(const String& name) { m_name = name; }
    const String& title() const { return m_title; }
    void title(const String& title) { m_title = title; }

    // The display targets (DisplayTarget bits).
    int type() const { return m_type; }
    void type(int type) { m_type = type; }

    // Semitones every song moves under this profile; not the song's own.
    int transpose() const { return m_transpose; }
    void transpose(int semitones) { m_transpose = semitones; }

    // The fret of a capo that applies to every song; 0 for none. Not stored
    // in the file.
    int capoPosition() const { return m_capoPosition; }
    void capoPosition(int fret) { m_capoPosition = fret; }

    int columns() const { return m_columns; }
    int columnGap() const { return m_columnGap; }
    int columnWidth() const { return m_columnWidth; }
    void setColumns(int columns, int gap);
    void setColumns(int columns, int width, int gap);

    unsigned long pageBackgroundColor() const { return m_pageBackgroundColor; }
    void pageBackgroundColor(unsigned long color) { m_pageBackgroundColor = color; }
    unsigned long highlightBackgroundColor() const { return m_highlightBackgroundColor; }
    void highlightBackgroundColor(unsigned long color) { m_highlightBackgroundColor = color; }
    // Seconds. The file keeps whole seconds only when read back.
    double highlightFadeTime() const { return m_highlightFadeTime; }
    void highlightFadeTime(double seconds) { m_highlightFadeTime = seconds; }

    // The colour of lines sung by a singer type (0 to 9); 0 (black) for a
    // type the profile holds no colour for. Setting beyond the end grows the
    // list; a negative type is ignored.
    unsigned long getLineColor(int singerType) const;
    void setLineColor(int singerType, unsigned long color);
    int getLineColorCount() const { return int(m_lineColors.size()); }

    // The style of a kind (0 to 19); a kind outside that range is the
    // default style 0. A profile without styles (cleared) answers default
    // styles: the non-const form fills the list with them.
    SongTextStyle& style(int kind);
    const SongTextStyle& style(int kind) const;

    // The running state of one display.
    int getCurrentKey() const { return m_currentKey; }
    void setCurrentKey(int key) { m_currentKey = key; }
    int pageNo() const { return m_pageNo; }
    void pageNo(int page) { m_pageNo = page; }
    int pageCount() const { return m_pageCount; }
    void pageCount(int count) { m_pageCount = count; }
    int infoWidth() const { return m_infoWidth; }
    void infoWidth(int width) { m_infoWidth = width; }

    // --- Flags -----------------------------------------------------------------------

    int flags() const { return m_flags; }
    void flags(int flags) { m_flags = flags; }
    // True when any bit of the mask is set.
    bool isFlagSet(int mask) const { return (m_flags & mask) != 0; }
    void setFlag(int mask) { m_flags |= mask; }
    void clearFlag(int mask) { m_flags &= ~mask; }
    void setFlag(int mask, bool on) { on ? setFlag(mask) : clearFlag(mask); }

    bool showWords() const { return isFlagSet(ProfileFlag::ShowWords); }
    void showWords(bool on) { setFlag(ProfileFlag::ShowWords, on); }
    bool showChords() const { return isFlagSet(ProfileFlag::ShowChords); }
    void showChords(bool on) { setFlag(ProfileFlag::ShowChords, on); }
    bool showBass() const { return isFlagSet(ProfileFlag::ShowBass); }
    void showBass(bool on) { setFlag(ProfileFlag::ShowBass, on); }
    bool showMusic() const { return isFlagSet(ProfileFlag::ShowMusic); }
    void showMusic(bool on) { setFlag(ProfileFlag::ShowMusic, on); }
    bool showHeader() const { return isFlagSet(ProfileFlag::ShowHeader); }
    void showHeader(bool on) { setFlag(ProfileFlag::ShowHeader, on); }
    bool showFooter() const { return isFlagSet(ProfileFlag::ShowFooter); }
    void showFooter(bool on) { setFlag(ProfileFlag::ShowFooter, on); }
    bool capoChordsInBrackets() const { return isFlagSet(ProfileFlag::CapoChordsInBrackets); }
    void capoChordsInBrackets(bool on) { setFlag(ProfileFlag::CapoChordsInBrackets, on); }
    bool shrinkToFit() const { return isFlagSet(ProfileFlag::ShrinkToFit); }
    void shrinkToFit(bool on) { setFlag(ProfileFlag::ShrinkToFit, on); }
    bool multiColumns() const { return isFlagSet(ProfileFlag::MultiColumns); }
    void multiColumns(bool on) { setFlag(ProfileFlag::MultiColumns, on); }
    bool variableColumnWidths() const { return isFlagSet(ProfileFlag::VariableColumnWidths); }
    void variableColumnWidths(bool on) { setFlag(ProfileFlag::VariableColumnWidths, on); }
    bool showKey() const { return isFlagSet(ProfileFlag::ShowKey); }
    void showKey(bool on) { setFlag(ProfileFlag::ShowKey, on); }
    bool wrapText() const { return isFlagSet(ProfileFlag::WrapText); }
    void wrapText(bool on) { setFlag(ProfileFlag::WrapText, on); }
    bool showAnnotations() const { return isFlagSet(ProfileFlag::ShowAnnotations); }
    void showAnnotations(bool on) { setFlag(ProfileFlag::ShowAnnotations, on); }
    bool showLocalTranspose() const { return isFlagSet(ProfileFlag::ShowLocalTranspose); }
    void showLocalTranspose(bool on) { setFlag(ProfileFlag::ShowLocalTranspose, on); }
    bool showCopyright() const { return isFlagSet(ProfileFlag::ShowCopyright); }
    void showCopyright(bool on) { setFlag(ProfileFlag::ShowCopyright, on); }
    bool showAuthor() const { return isFlagSet(ProfileFlag::ShowAuthor); }
    void showAuthor(bool on) { setFlag(ProfileFlag::ShowAuthor, on); }
    bool showSequence() const { return isFlagSet(ProfileFlag::ShowSequence); }
    void showSequence(bool on) { setFlag(ProfileFlag::ShowSequence, on); }
    bool showTempo() const { return isFlagSet(ProfileFlag::ShowTempo); }
    void showTempo(bool on) { setFlag(ProfileFlag::ShowTempo, on); }
    bool showTimeSignature() const { return isFlagSet(ProfileFlag::ShowTimeSignature); }
    void showTimeSignature(bool on) { setFlag(ProfileFlag::ShowTimeSignature, on); }

    // --- Keys and note names ---------------------------------------------------------

    // How `note` is spelled in `key` with a capo shift: key and note are
    // taken modulo 12 (-1 is 11), a negative capo counts as 0, and the
    // answer is the spelling table's entry [(key + capo) mod 12][(note +
    // capo) mod 12]. Empty while the profile has no spelling table.
    const String& getNoteName(int key, int note, int capo) const;
    // The same in the current key.
    const String& getNoteName(int note, int capo) const {
        return getNoteName(m_currentKey, note, capo);
    }
    void setNoteName(int key, int note, const String& name);

    // Key names, by key note number taken modulo 12; empty while unset.
    const String& getKeyName(int key) const;
    void setKeyName(int key, const String& name);

    // The default capo fret and local transposition of songs in a key (0 to
    // 11); 0 for any other key. Setting a key outside 0 to 11 is ignored.
    int defaultCapoPosition(int key) const;
    void defaultCapoPosition(int key, int fret);
    int defaultLocalTranspose(int key) const;
    void defaultLocalTranspose(int key, int semitones);

    // --- Fonts -------------------------------------------------------------------------

    // The font of a section type: styles 2 to 8 (Chorus ... Misc) for those
    // section types, the Verse style for every other.
    GFont getFontForSectionType(int sectionType, double scale) const;
    GFont getFont(int styleKind, double scale) const { return style(styleKind).font(scale); }

    // --- Files -------------------------------------------------------------------------

    // The .sdp document: name, title, targets, display flags and colours,
    // line colours, text styles (each after the first only where it differs
    // from it) and the keys with their spellings. Shrink-to-fit, the capo
    // position, the columns and the running state are not part of it.
    String saveToText() const;

    // Clears the profile, then reads the "profile" element: `node` itself
    // when it is one, else its child of that name. StatusFailed when there
    // is none (the profile stays cleared); anything else missing is no
    // error and stays as clear() left it. The file name is not changed.
    [[nodiscard]] Status loadFromXml(const XmlNode& node);

    // A whole document in memory (UTF-8 or UTF-16) or in a file. Text or a
    // file that does not parse leaves the profile as it was and gives the
    // read or parse status. loadFromFile() remembers the path as the
    // profile's file name.
    [[nodiscard]] Status loadFromText(std::string_view text);
    [[nodiscard]] Status loadFromFile(const String& path);

    // Writes saveToText() in UTF-8 through the atomic writer and remembers
    // the path as the profile's file name. save() writes to that file name;
    // ENOENT when the profile has none.
    [[nodiscard]] Status saveToFile(const String& path);
    [[nodiscard]] Status save();

    // What failed in the last load or save, for messages.
    const FileError& lastError() const { return m_lastError; }

    // --- Target and flag words ---------------------------------------------------------

    // The target words of the file ("screen", "print", "projection",
    // "beamwrightfollower", "editor", "viewer") of the bits in `type`,
    // joined by ", "; "none" for 0.
    static String targetsToString(int type);
    // A type from a decimal number, or from target words separated by
    // commas or blanks ("screen,print"); nullopt for anything else.
    static std::optional<int> targetsFromString(std::string_view text);

    // Names of the set flag bits, lowest bit first: the file's element
    // names ("words", "chords", "bass" ...), "shrinktofit" for the flag the
    // file does not keep, and the hexadecimal mask of a bit without a name.
    static StringArray flagNames(int flags);

    // --- The profile list --------------------------------------------------------------

    // The folder the list is read from and written to. It takes effect at
    // the next loadProfileList(). With no folder set, the list is made of
    // the built-in profiles and nothing is written.
    static void setProfileFolder(const String& folder);
    static const String& profileFolder();

    // A read-only list writes nothing: the built-in profiles it makes stay
    // in memory, without a file name, and no failure is recorded for them.
    // For programs that only show songs and must leave the data folders as
    // they found them. Off at start; takes effect at the next
    // loadProfileList().
    static void setProfileListReadOnly(bool readOnly);
    static bool isProfileListReadOnly();

    // Empties the list and reads every ".sdp" file of the folder (the
    // extension ignoring case), in name order; a file that does not load is
    // left out. When none loads, the ten house profiles are made and those
    // with a file name written; then each of the profiles of the editor,
    // the viewer and the follower screen whose name is missing is made and
    // written. A file is written only where no file of that name exists,
    // so a profile file that did not load is never overwritten.
    static void loadProfileList();

    static int getProfileCount();
    // Null when the index is out of range.
    static SongDisplayProfile* getProfile(int index);

    // The first profile in list order whose name is exactly `name` and,
    // when `typeMask` is not 0, whose type shares a bit with it; null when
    // none is. An empty list is loaded first.
    static SongDisplayProfile* getProfileByName(std::string_view name, int typeMask);
    // The same search answering the position, or -1.
    static int getProfileIndex(std::string_view name, int typeMask);

    // Appends a copy to the list and returns it.
    static SongDisplayProfile* addProfile(const SongDisplayProfile& profile);

    // The first failure of the last loadProfileList() (a folder that could
    // not be listed, a profile file that did not load, a built-in profile
    // that could not be written), for messages; the list itself goes on.
    static const FileError& lastListError();

private:
    using NoteRow = std::array<String, 12>;

    void ensureStyles();

    String m_filename;
    String m_name;
    String m_title;
    int m_type = 0;
    int m_transpose = 0;
    int m_capoPosition = 0;
    int m_flags = 0;
    int m_columns = 0;
    int m_columnGap = 0;
    unsigned long m_pageBackgroundColor = 0;
    unsigned long m_highlightBackgroundColor = 0x64FFFF;
    double m_highlightFadeTime = 3.0;
    std::vector<unsigned long> m_lineColors;
    std::vector<SongTextStyle> m_styles;
    std::vector<NoteRow> m_noteNames;
    StringArray m_keyNames;
    IntegerArray m_defaultCapoPositions;
    IntegerArray m_defaultLocalTransposes;
    int m_columnWidth = 0;
    int m_pageNo = 0;
    int m_pageCount = 0;
    int m_currentKey = 0;
    int m_infoWidth = 0;
    FileError m_lastError;
};

}  // namespace melodex
