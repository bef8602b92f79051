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
// folder), or embedded whole. The reader drops, silently, an entry whose
// song cannot be found or read, and still accepts the older entry form
// <song>path</song>. Element names are read ignoring case.

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

    std::vector<std::unique_ptr<SongSetEntry>> m_entries;
    String m_filename;
    SongDatabase* m_database = nullptr;
};

}  // namespace melodex
