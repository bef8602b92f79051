#pragma once

// The song library's summary of one song file: its name in the library's
// song files folder, uuid, title, author, key, tempo, time signature, first
// line, categories and modification time, and the library's text entries
// for it (title, first line, index entries).
//
//     for (SongDBFileEntry* file : theSongDB.files()) {
//         std::cout << file->title() << " (" << file->key() << ")\n";
//         Song* song = file->song();  // read from the song file on first use
//     }
//
// An entry is filled either from its song file (load(path), when the
// library adds a file) or from its section of the library index
// (load(ConfigKey*), when the library opens). The title and first line are
// filled only from the index. The full Song is read on demand by song().
//
// The entry belongs to the database that made it (theSongDB unless another
// is given): its song file lies in that database's song files folder, and
// its text entries are created in, owned by and deleted by that database.
//
// Copying is shallow: a copy shares the held song and lists the same text
// entries as its source. The song is shared, not duplicated, so whichever
// entry lives longest keeps it alive, and no song is ever deleted twice.

#include <memory>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "melodex/foundation/local_time.h"
#include "melodex/foundation/text.h"

namespace melodex {

class ConfigKey;
class Song;
class SongDatabase;
class SongDBTextEntry;

class SongDBFileEntry {
public:
    // An empty entry of theSongDB.
    SongDBFileEntry();
    // An empty entry of `database` (theSongDB when null; not owned).
    explicit SongDBFileEntry(SongDatabase* database);
    SongDBFileEntry(const SongDBFileEntry& other);
    SongDBFileEntry& operator=(const SongDBFileEntry& other);
    ~SongDBFileEntry();

    bool valid() const { return m_valid; }
    void valid(bool valid) { m_valid = valid; }

    // The song file's name without folder ("Amazing Grace.song").
    const String& filename() const { return m_filename; }
    const String& uuid() const { return m_uuid; }
    // As last read from the index; empty after load(path).
    const String& title() const { return m_title; }
    const String& author() const { return m_author; }
    // The first non-blank line of the song's first section, as last read
    // from the index; empty when it equals the title.
    const String& firstline() const { return m_firstline; }
    // The key as SongInfo::keyName(0) gives it ("C" for a song without one).
    const String& key() const { return m_key; }
    const String& tempo() const { return m_tempo; }
    const String& timesignature() const { return m_timesignature; }
    // The song file's modification time when the entry was last written to
    // the index.
    const LocalTime& updated() const { return m_updated; }
    // The song's non-blank categories in file order.
    const StringArray& categories() const { return m_categories; }

    // This file's text entries (not owned: the database deletes them).
    const std::vector<SongDBTextEntry*>& iterator() const { return m_texts; }

    // The database the entry belongs to.
    SongDatabase* database() const { return m_database; }

    // The song file: the database's song files folder joined with filename.
    String path() const;

    // The categories with `separator` between them; empty when there are none.
    String categoriesAsString(const String& separator) const;

    // The song, read from path() on first use and kept; a file that does not
    // read leaves an empty song, which is kept too. Owned by the entry (and
    // its copies): valid until the entry is cleared, loaded again or
    // destroyed.
    Song* song();
    // The same song as a shared handle, for holders that must keep it alive
    // beyond the entry (song sets).
    std::shared_ptr<Song> sharedSong();

    // Releases the song and empties uuid, filename, author, key, title,
    // firstline, the list of text entries (which are not deleted) and the
    // categories. Tempo, time signature, updated and valid stay.
    void clear();

    // Fills the entry from a song file and creates its text entries (title,
    // else the first line; the first line; every index entry). A song file
    // without a uuid is given one and written back as a song XML file, so
    // that every library file keeps its id. False, with no song held, when
    // the file does not read or is not a song (another kind of XML document,
    // binary data, nothing at all): such a file is never written to. An
    // empty path only tells whether a song is held.
    bool load(const String& path);

    // Writes the entry into its section of the library index: filename,
    // uuid, updated, then title, author, key, tempo, time signature, first
    // line, index entries and categories from the song (read first when not
    // held). A null key is ignored.
    void save(ConfigKey* key);

    // Fills the entry from its section of the library index and creates its
    // text entries. False at once when the file it names is not in the song
    // files folder, or when the name it gives is not a plain file name
    // (holding a folder separator, "." or "..": index values are data, never
    // paths to follow).
    bool load(const ConfigKey* key);

    // The name a song is listed and found under: its title, else for a
    // plain-text song read from a file that file's name without extension,
    // else its first line. The entry's form uses what the index holds and falls back to
    // the file name without extension.
    static String listedTitle(const Song& song);
    String listedTitle() const;

    // The text of the first non-blank line of the song's first section,
    // without surrounding blanks; later sections are never looked at, so a
    // song whose first section is blank has no first line.
    static String firstLineOf(const Song& song);

    // Whether a song just read by Song::loadFromFile is a song: false for
    // what the lenient readers accept but holds none (XML of another kind,
    // and binary or empty files read as plain text). The library neither
    // lists, imports nor writes such files.
    static bool isSong(const Song& song);

    // True when the song's uuid can name its section of the library index:
    // letters, digits, "-" and braces only. Any other text (a line break, a
    // "]", an "=") would let a song file rewrite other entries of the index,
    // so the library treats such a song as having no uuid and gives it one.
    static bool hasUsableUuid(const Song& song);
    static bool hasUsableUuidText(const String& uuid);

    // True when a file read as plain text begins with a tag: markup that did
    // not parse (a damaged song file). The library never rewrites such a
    // file in its folder, so the user can still repair it.
    static bool isUnreadMarkup(const Song& song);

private:
    friend class SongDatabase;

    // load(key) with the names of the files in the song files folder
    // already at hand (null: ask the file system).
    bool load(const ConfigKey* key, const std::unordered_set<std::string_view>* present);

    // load(path) for a song already read from that path; the entry takes it.
    bool loadFromSong(std::shared_ptr<Song> song, const String& path);
    // Steps of load(path) after the song is read.
    void fillFromSong(const String& path);
    SongDBTextEntry* addText(int type, const String& text);

    bool m_valid = false;
    String m_filename;
    String m_uuid;
    String m_author;
    String m_title;
    String m_tempo;
    String m_timesignature;
    String m_firstline;
    String m_key;
    std::shared_ptr<Song> m_song;
    LocalTime m_updated;
    std::vector<SongDBTextEntry*> m_texts;
    StringArray m_categories;
    SongDatabase* m_database = nullptr;
};

}  // namespace melodex
