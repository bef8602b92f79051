#pragma once

// The in-memory song document: an id, the time of its last update, its
// information (title, key ...) and its ordered sections.
//
//     Song song;
//     song.info().setTitle("Amazing Grace");
//     song.info().setKey("G");
//     auto* verse = new SongSection(SectionType::Verse);
//     verse->addLine(line);
//     song.addSection(verse);       // the song owns the section
//     song.generateSectionIDs();    // "V1"
//     song.transpose(2);            // key "A", every chord two semitones up
//
// The song owns its sections, each section its lines, each line its chords.
// A pointer returned by getSection() stays valid until that section is
// removed or the song is cleared, assigned to or destroyed.
//
// Storage: the XML layouts (".song", ".sng"), the plain-text layout (".txt")
// and, for reading only, OpenSong songs and SongSmart data:
//
//     Song song;
//     if (song.loadFromFile(path) != StatusSuccess) ...;  // any readable song file
//     song.saveToFile(copyPath, SongFileType::Song);
//
// Readers are lenient: unknown elements, attributes and words are skipped or
// take their defaults, and text that is not one well-formed XML document is
// read as plain text. Several losses are part of the formats and are kept:
// a section's singers and indent do not survive the XML layout, a ".sng" file
// holds no chords, and a ".txt" file reads its choruses back as verses.

#include <memory>
#include <string_view>
#include <vector>

#include "melodex/foundation/local_time.h"
#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"
#include "melodex/foundation/xml.h"
#include "melodex/music/song_info.h"
#include "melodex/song/song_section.h"

namespace melodex {

class SongBook;

// Song file types.
namespace SongFileType {
inline constexpr int Song = 1;       // ".song" XML
inline constexpr int Text = 2;       // ".txt" plain text
inline constexpr int Sng = 3;        // ".sng" XML
inline constexpr int OpenSong = 4;   // read only
inline constexpr int SongSmart = 6;  // read only
}  // namespace SongFileType

// The filter of the dialogs that open or import song files, exactly as the
// programs have always shown it (the doubled closing parentheses included).
inline constexpr const char* SongFileOpenFilter =
    "Song Files (*.song;*.sng;*.xml;*.txt))|*.song; *.sng; *.xml; *.txt|Cantorix Files "
    "(*.song))|*.song|XML Song Files (*.xml)|*.xml|Creative Lifestyle Song Files "
    "(*.sng)|*.sng|Text Files (*.txt)|*.txt|All Files (*.*)|*.*||";

// The filter of the dialog that saves a song; the chosen entry's 1-based
// position is the file type written (1 song, 2 text, 3 sng).
inline constexpr const char* SongFileSaveFilter =
    "Cantorix Files (*.song))|*.song|Text Files (*.txt)|*.txt|Other Song Files (*.sng)|*.sng||";

class Song {
public:
    Song();
    // A default song assigned from `other`.
    Song(const Song& other);
    // Replaces the sections with deep copies (their lines point at the
    // copies) and copies uuid, updated, info, numberInBook, filename,
    // pageCount and loadedFileType. The book link and the local sequence stay this
    // song's own.
    Song& operator=(const Song& other);
    virtual ~Song();

    SongInfo& info() { return m_info; }
    const SongInfo& info() const { return m_info; }

    // Text form of a Uuid; empty means none yet.
    const String& uuid() const { return m_uuid; }
    void uuid(std::string_view uuid) { m_uuid.assign(uuid); }
    bool hasUUID() const { return !m_uuid.empty(); }

    const LocalTime& updated() const { return m_updated; }
    void updated(const LocalTime& time) { m_updated = time; }
    // Sets the update time to now.
    void updateFileTimes();

    // The file the song was loaded from; empty when none.
    const String& filename() const { return m_filename; }
    void filename(std::string_view path) { m_filename.assign(path); }

    // The song book the song belongs to (not owned), or null.
    SongBook* book() const { return m_book; }
    void book(SongBook* book) { m_book = book; }
    bool isInBook() const { return m_book != nullptr; }
    // 0 when not in a book, whatever number is stored: a copy keeps the
    // number but not the book, and shows it again once put in a book.
    int numberInBook() const { return m_book != nullptr ? m_numberInBook : 0; }
    void numberInBook(int number) { m_numberInBook = number; }

    int getPageCount() const { return m_pageCount; }
    void setPageCount(int pages) { m_pageCount = pages; }

    // The file type of the last load; 0 when the song was not loaded.
    int loadedFileType() const { return m_loadedFileType; }

    // A running order that overrides the information's sequence; empty or
    // "auto" means none.
    const String& localSequence() const { return m_localSequence; }
    void setLocalSequence(std::string_view sequence) { m_localSequence.assign(sequence); }

    // --- Sections ------------------------------------------------------------

    int getSectionCount() const { return int(m_sections.size()); }
    // No range check.
    SongSection* getSection(int index) const { return m_sections[std::size_t(index)].get(); }

    // Take ownership of a heap-allocated section; null is ignored.
    // insertSection() appends when the index is past the end.
    void addSection(SongSection* section);
    void insertSection(SongSection* section, int index);

    // Takes the section out. With `deleteIt` it is deleted and null returned;
    // otherwise the caller owns the returned section. No range check.
    SongSection* removeSection(int index, bool deleteIt);

    // --- Whole song ----------------------------------------------------------

    // Deletes the sections and empties uuid, info (which then has no key) and
    // filename; updated becomes now, pageCount 1, loadedFileType 0. The book
    // link, numberInBook and the local sequence are kept.
    void clear();

    // Stores a new random UUID.
    void generateUUID();

    // Gives every section the first letter of its type word and its number
    // among the sections of that type: "V1", "C1", "V2", "B1", "P1" ...
    void generateSectionIDs();

    // The running order as comma-separated section ids: the local sequence,
    // else the information's sequence, else one built from the sections,
    // in which the last chorus (with its pre-chorus) follows every verse or
    // bridge that is not already followed by one.
    String getSequence() const;

    // Transposes the key and every chord; the text is not touched.
    void transpose(int semitones);

    // A short description for diagnostics: Song "Amazing Grace" key G: V1 C1 V2
    String toString() const;

    // --- File types ----------------------------------------------------------

    // ".song", ".txt", ".sng"; empty for other types.
    static String getFileExtension(int fileType);
    // `path` with its extension replaced by the one of `fileType`, whatever
    // was typed: "/s/Hymn.song" as text is "/s/Hymn.txt", "/s/Hymn" too.
    static String pathWithFileExtension(std::string_view path, int fileType);
    // The localised name of the type from the string tables (section
    // "SongFileType", keys "standard", "text", "sng", "opensong", "unknown");
    // empty when no table has it.
    static String getFileTypeName(int fileType);
    // "brackwell/song" for type 1, "creativelifestyles/song" for type 3,
    // empty for others.
    static String getFileXmlNamespace(int fileType);
    // Every type but plain text.
    static bool isXmlFiletype(int fileType) { return fileType != SongFileType::Text; }

    // --- Storage -------------------------------------------------------------

    // The whole song in the layout of `fileType` (1 ".song", 2 ".txt", 3
    // ".sng"); `withHeader` adds the XML declaration. Gives the song a uuid
    // first when it has none. Other types write a skeleton that no reader
    // takes back: only 1, 2 and 3 are meant for writing.
    String saveToText(int fileType, bool withHeader);

    // The bytes of the file saveToFile writes: saveToText(fileType, true),
    // type 3 in UTF-16 LE with BOM, the others in UTF-8; types 2 and 3 with
    // CR LF line ends. For writing anywhere else (standard output).
    std::string saveToBytes(int fileType);

    // Writes saveToBytes(fileType) to `path` atomically. 0, or the errno
    // value when the file cannot be written.
    [[nodiscard]] Status saveToFile(std::string_view path, int fileType);

    // Clears the song and reads `path` as XML, else as plain text; the path
    // becomes the filename whatever happens. 0, or the plain-text reader's
    // status (the errno value of a file that cannot be read).
    [[nodiscard]] Status loadFromFile(std::string_view path);

    // The same for text in memory (any encoding loadFromFile accepts); the
    // filename becomes empty. Text that is not XML always loads, so this
    // returns 0.
    [[nodiscard]] Status loadFromText(std::string_view text);

    // Parse `path` or `text` as XML and read the document. The XML status
    // when it is not a single well-formed document (nothing is read then).
    [[nodiscard]] Status loadFromXmlFile(std::string_view path);
    [[nodiscard]] Status loadFromXmlString(std::string_view text);

    // Reads the document's root element when it is a "song" or a "set"; any
    // other document leaves the song empty and returns 0.
    [[nodiscard]] Status loadFromXmlFile(const XmlFile& file);

    // Reads a song element: the song XML layouts, an OpenSong song (an
    // element with "lyrics") or SongSmart data (an element with "songdata").
    // Adds to what the song holds: callers clear it first. StatusFailed for a
    // null node, else 0.
    [[nodiscard]] Status loadFromXmlNode(const XmlNode& song);

    // Reads the first "song" element inside a set element (searched level by
    // level, so it may be wrapped). A set without songs leaves the song empty
    // and returns 0.
    [[nodiscard]] Status loadFromXmlSet(const XmlNode& set);

    // Read the plain-text layout into the song without clearing it first.
    // A text that begins with the "<uuid>...</uuid><updated>...</updated>"
    // that saveToText writes gives the song that uuid and time, and its
    // first lyric line starts after it. The file form gives 0 or the errno
    // value of a file that cannot be read; the string form always gives 0.
    [[nodiscard]] Status loadFromTextFile(std::string_view path);
    [[nodiscard]] Status loadFromTextString(std::string_view text);

protected:
    // The steps of loadFromXmlNode, one per element of the song layouts.
    void processInfoNode(const XmlNode& info);
    void processBlockNode(const XmlNode& block);
    void processLineNode(const XmlNode& lineNode, SongSection* section);
    void processVersesNode(const XmlNode& verses);
    void processVerseNode(const XmlNode& verse);
    // The lyrics text of an OpenSong song.
    void processLyricsNode(const XmlNode& lyrics);
    // A song element of SongSmart data, and the lyrics text it carries.
    void processSongSmartNode(const XmlNode& song);
    void processSongSmartData(std::string_view text);

private:
    void copySections(const Song& other);
    // Adds the sections of plain text (already decoded) to the song.
    void readText(std::string_view text);

    String m_uuid;
    LocalTime m_updated;
    SongInfo m_info;
    std::vector<std::unique_ptr<SongSection>> m_sections;
    SongBook* m_book = nullptr;
    int m_numberInBook = 0;
    String m_filename;
    int m_pageCount = 1;
    int m_loadedFileType = 0;
    String m_localSequence;
};

}  // namespace melodex
