#pragma once

// A song set: the running order of a service, an ordered list of entries
// (songs with their per-use overrides, gaps and separator lines), saved as
// a small XML file of its own.
//
//     SongSet set;
//     set.add(theSongDB.findEntryByUUID(uuid)->song(), false, true);  // by uuid
//     set.add(embedded, true, false).transpose(2);                    // owned
//     set.addGap();
//     Status status = set.saveToFile("/sets/Sunday.set", false);
//
// The file:
//
//     <?xml version="1.0"?>
//     <songset xmlns="brackwell/songset">
//     <songentry transpose="2" capo="1">
//     <database>3b8f1c2e-...</database>
//     </songentry>
//     <songentry>
//     <filename>Songs/Hymn.song</filename>
//     </songentry>
//     <songentry>
//     <song xmlns="brackwell/song"> ... </song>
//     </songentry>
//     <gap></gap>
//     <line></line>
//     </songset>
//
// A song is held by its uuid in the song library (the SongDatabase set with
// setDatabase(), theSongDB when none is; never owned),
// by a song file path (relative ones resolved against the set file's
// folder), or embedded whole. The reader leaves out an entry whose song
// cannot be found or read, so the rest of the set still serves; it keeps a
// record of each such entry (unresolvedEntries: what it named, where it
// stood and why it is missing), so that a program can tell the user. It
// still accepts the older entry form <song>path</song>. Element names are
// read ignoring case.

#include <memory>
#include <vector>

#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"
#include "melodex/library/song_set_entry.h"

namespace melodex {

class Song;
class SongDatabase;
class XmlNode;

class SongSet {
public:
    // An entry of the set file that the reader left out because its song
    // could not be found or read.
    struct UnresolvedEntry {
        enum class Source {
            Library,   // a uuid the library does not hold
            File,      // a song file that is missing or does not read
            Embedded,  // an embedded song that does not read
            None,      // an entry that names no song at all
        };
        // How many entries of the set come before it: it stood between
        // entry(position - 1) and entry(position) as the file was read.
        int position = 0;
        Source source = Source::None;
        String name;    // the uuid, or the path as resolved; empty otherwise
        String reason;  // "not in the library", "No such file or directory" ...

        // "library song gone-0001: not in the library", "<file>: No such file
        // or directory", "embedded song: ...", or the reason alone for an
        // entry that names no song. `file` is how the caller shows the
        // missing song file.
        String describe(const String& file) const;
    };

    SongSet();
    SongSet(const SongSet& other);  // entries copied as SongSetEntry copies
    SongSet& operator=(const SongSet& other);
    virtual ~SongSet();

    int size() const { return int(m_entries.size()); }
    // No range check.
    SongSetEntry& entry(int index) { return *m_entries[std::size_t(index)]; }
    const SongSetEntry& entry(int index) const { return *m_entries[std::size_t(index)]; }

    // Appends an entry; the reference stays valid until the entry is removed
    // or the set is cleared, loaded or destroyed.
    SongSetEntry& add(Song* song, bool owned, bool dbflag);
    SongSetEntry& addGap();
    SongSetEntry& addLine();

    // Out-of-range indexes do nothing. move() takes the entry out at `from`
    // and inserts it at `to`, counted in the shortened list.
    void remove(int index);
    void move(int from, int to);

    // Deletes every entry and forgets the file name.
    void clear();

    // The library whose songs the set's library entries name (not owned);
    // null for theSongDB.
    void setDatabase(SongDatabase* database) { m_database = database; }
    SongDatabase& database() const;

    // The path last loaded or saved.
    const String& filename() const { return m_filename; }

    // The entries the last loadFromFile left out, in file order; emptied by
    // clear() and by every load. Later changes to the set do not update the
    // positions.
    const std::vector<UnresolvedEntry>& unresolvedEntries() const { return m_unresolved; }

    // "brackwell/songset", whatever the argument.
    static String getFileXmlNamespace(int fileType = 0);

    // Writes the set; with useFilenames songs that have a file are written
    // by path rather than embedded. 0, or the errno value when the file
    // cannot be written (nothing is written then).
    [[nodiscard]] Status saveToFile(const String& path, bool useFilenames);

    // Replaces the set with the file's. 0; the XML reader's status for a
    // file that does not read or parse; StatusFailed when it is no song set.
    // The set is empty after a failure.
    [[nodiscard]] Status loadFromFile(const String& path);

    // The same for a set already in memory (one read from standard input):
    // `path` names where it would be, for the entries' relative paths and
    // filename(); "-" (or empty) puts it in the current folder.
    [[nodiscard]] Status loadFromText(std::string_view text, const String& path);

protected:
    void processSongNode(const XmlNode& node);
    void processSongEntryNode(const XmlNode& node);
    void processGapNode(const XmlNode& node);
    void processLineNode(const XmlNode& node);

private:
    // A path from the set file, resolved against the set file's folder.
    String resolvePath(const String& path) const;
    // Reads the per-use attributes onto the entry just added.
    static void readAttributes(const XmlNode& node, SongSetEntry& entry);
    // Adds a song file entry, or records why it cannot be added.
    void addSongFile(const String& path, const XmlNode& node);
    void recordUnresolved(UnresolvedEntry::Source source, const String& name, const String& reason);
    // Takes the entries of a loaded document (loadStatus 0) in.
    Status readDocument(const XmlFile& file, Status loadStatus, const String& path);

    std::vector<std::unique_ptr<SongSetEntry>> m_entries;
    String m_filename;
    SongDatabase* m_database = nullptr;
    std::vector<UnresolvedEntry> m_unresolved;
};

}  // namespace melodex
