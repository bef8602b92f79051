#pragma once

// The song library: a folder of song files that the library owns (its song
// files folder, "Song Files" in the song database folder), an index file
// that caches a summary of every song so that the library opens without
// reading every song, and in memory one file entry per song file and a
// sorted list of searchable text entries (titles, first lines, index
// entries). The one instance the programs share is the global theSongDB.
//
//     if (!theAppConfig.init(ProgramId)) return 1;
//     theSongDB.open();
//     for (SongDBTextEntry* text : theSongDB.entries())
//         std::cout << text->text() << '\n';          // sorted, ignoring blanks and case
//     theSongDB.importFile("/home/ann/Hymn.txt", true, true);  // a copy in "Song Files"
//     theSongDB.close();                               // saves the index when it changed
//
// The index is "songdb-" + host name + ".ini" in the song database folder,
// one section per song named by its uuid, so several computers that share
// one data folder each keep their own index over the same song files. It is
// written whole and atomically: a reader, or another program writing its own
// index, never sees half a file.
//
// Songs come in only by import: the song is written as a new ".song" file
// into the song files folder, named after its title or its source file
// ("Hymn.song", "Hymn 2.song" ...). Removing a song deletes the library's
// copy. The library owns its file entries, their songs and the text
// entries; a pointer handed out stays valid until that entry is removed or
// the library is closed or opened again.
//
// A library folder is shared between programs, and between computers (that
// is why the index is per host). Every change (imports, removals, reloads,
// index saves, and the rescan of open() that rewrites sections) is made
// holding the lock file "songdb.lock" of the song database folder. A second
// program waits for it (up to lockTimeout(), telling its wait notice) and
// then first takes in what the other program changed, its new songs and its
// removals, before it changes anything itself. A program that makes many
// changes in a row holds the lock once for all of them (Changes).
//
// open(), close() and flush() return 0 as they always have; what went wrong
// in the last public operation (an index that could not be written, a song
// file that could not be removed, a folder that could not be read) is kept
// in lastError() for the program to show.
//
// Where the library lies is settled by open(): the folder set with
// setDatabaseFolder() (theAppConfig.init() sets theSongDB's), and the host
// name set with setHostName(), else the computer's. The dialogs it shows
// (import choosers, the wait cursor) are the ones set with setDialogs(),
// else a headless set.

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <ranges>
#include <set>
#include <unordered_map>
#include <vector>

#include "melodex/foundation/file_lock.h"
#include "melodex/foundation/file_system.h"
#include "melodex/foundation/ini_file.h"
#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"
#include "melodex/library/song_db_file_entry.h"
#include "melodex/library/song_db_text_entry.h"

namespace melodex {

class Dialogs;
class Song;

// The folder, in the song database folder, that holds the library's own song
// files.
inline constexpr const char* SongFilesFolderName = "Song Files";

class SongDatabase {
public:
    // Called by importFolder once for every song file it tries, with its
    // path and whether it was imported.
    using ImportProgress = std::function<void(const String& path, bool imported)>;

    SongDatabase();
    SongDatabase(const SongDatabase&) = delete;
    SongDatabase& operator=(const SongDatabase&) = delete;
    // Deletes the entries without saving: programs call close() first.
    virtual ~SongDatabase();

    // --- Where the library lies ------------------------------------------------

    // The song database folder, and the host name that names the index
    // (empty: the computer's name). Both take effect at the next open().
    void setDatabaseFolder(const String& folder) { m_databaseFolder = folder; }
    void setHostName(const String& hostName) { m_hostName = hostName; }

    // The dialogs of the program (not owned; they must outlive their use
    // here); null for the headless set.
    void setDialogs(Dialogs* dialogs) { m_dialogs = dialogs; }
    Dialogs& dialogs() const;

    // The folders and the index file of the library as open() settled them
    // (before that, as it would settle them now).
    String databaseFolder() const;
    String songFilesFolder() const;
    String indexPath() const;
    String lockPath() const;

    // A read-only library writes nothing: no index, no uuid written back into
    // a song file, no lock file, no folder. Imports, removals and reloads
    // fail with StatusReadOnly. For programs that only show songs. Takes
    // effect at once.
    void setReadOnly(bool readOnly) { m_readOnly = readOnly; }
    bool readOnly() const { return m_readOnly; }

    // What went wrong in the last public operation; empty when nothing did.
    const FileError& lastError() const { return m_error; }

    // --- Sharing the library with other programs ----------------------------------

    // How long a change waits for another program's lock before it fails
    // with StatusLockTimedOut (30 seconds unless set).
    void setLockTimeout(std::chrono::milliseconds timeout) { m_lockTimeout = timeout; }
    std::chrono::milliseconds lockTimeout() const { return m_lockTimeout; }

    // Called once whenever a change has to wait for another program, with
    // the lock file's path, so that the program can tell the user.
    void setLockWaitNotice(FileLock::WaitNotice notice) { m_lockNotice = std::move(notice); }

    // Takes the library's lock for a run of changes and takes in what other
    // programs changed since this library last looked. Calls nest: only the
    // outermost pair takes and gives up the lock. False when the lock could
    // not be had (lastError() says why) or the library is read-only; the
    // caller must not call endChanges() then.
    [[nodiscard]] bool beginChanges();
    void endChanges();

    // beginChanges() and endChanges() for a scope:
    //     SongDatabase::Changes changes(theSongDB);
    //     if (!changes) return report(theSongDB.lastError());
    class Changes {
    public:
        explicit Changes(SongDatabase& database)
            : m_database(database), m_held(database.beginChanges()) {}
        Changes(const Changes&) = delete;
        Changes& operator=(const Changes&) = delete;
        ~Changes() {
            if (m_held) m_database.endChanges();
        }
        explicit operator bool() const { return m_held; }

    private:
        SongDatabase& m_database;
        bool m_held;
    };

    // --- Opening and saving ------------------------------------------------------

    // Reads the index, drops the entries whose song file is gone, adds and
    // refreshes entries from the song files folder, sorts the text entries
    // and saves the index when anything changed. A missing index or song
    // files folder is no error (a writable library creates its folders).
    // Opening an open library closes it first. Always 0; without a database
    // folder nothing is read or written and lastError() holds
    // StatusNoFolder.
    unsigned open();
    // Saves the index when it changed and deletes every entry. Always 0.
    unsigned close();
    // Saves the index. Always 0; lastError() tells whether it was written.
    unsigned flush();

    // True when the index in memory differs from the index file.
    bool changed() const { return m_changed; }
    void changed(bool changed) { m_changed = changed; }

    // --- The entries ---------------------------------------------------------------

    // The file entries in the order they were added, and the text entries
    // (sorted after open() and sortTextEntries()), as ranges of pointers:
    //     for (SongDBFileEntry* file : theSongDB.files()) ...
    auto files() const {
        return std::views::transform(
            m_files, [](const std::unique_ptr<SongDBFileEntry>& file) { return file.get(); });
    }
    auto entries() const {
        return std::views::transform(
            m_entries, [](const std::unique_ptr<SongDBTextEntry>& text) { return text.get(); });
    }
    int getFileCount() const { return int(m_files.size()); }
    int getEntryCount() const { return int(m_entries.size()); }

    // The first file entry (in the order of files()) whose uuid, or whose
    // file name without folder, equals the text ignoring case; null when
    // none does. Hashed: the cost does not grow with the library.
    SongDBFileEntry* findEntryByUUID(const String& uuid) const;
    SongDBFileEntry* findEntryByFilename(const String& name) const;

    // Takes every text entry of `file` out of the library's list and out of
    // the file's own list. With deleteThem they are deleted; without, the
    // caller, which must have kept the pointers, owns them from now on.
    void removeTextEntriesForFile(SongDBFileEntry* file, bool deleteThem);

    // Sorts the text entries by their texts with every blank removed,
    // ignoring case; equal texts keep their order.
    void sortTextEntries();

    // Takes the song out of the library and deletes its song file (the
    // library's own copy); with `save` the index is saved. An entry that is
    // not this library's is left alone, and so is an entry whose file cannot
    // be deleted (lastError() says why): a song taken out of the index but
    // left on disk would come back at the next open.
    void removeEntry(SongDBFileEntry* file, bool save);

    // Reads an entry's song file again after it was edited: the held song
    // (the same object, so pointers to it stay valid) takes the new
    // contents, the text entries and the index section are made anew, the
    // list is sorted and the index saved. A song saved without its uuid
    // takes the entry's, in the file too. A file that no longer reads as a
    // song, or markup that did not parse, leaves the entry and the file as
    // they were.
    void reload(SongDBFileEntry* file);

    // True when the song was imported before: its uuid is one the library
    // knows. A song without a usable uuid is never held (importing gives it
    // a fresh one).
    bool holdsSong(const Song& song) const;

    // --- Imports -------------------------------------------------------------------

    // Copies a song file of any readable kind into the song files folder as
    // a ".song" file and adds it. The copy is named after the song's title
    // with nameByTitle (when it has one), else after the source file; a name
    // in use gets " 2", " 3" ... A song without a uuid gets a fresh one. Null
    // when the file does not read as a song, or when its uuid is already in
    // the library (the song was imported before; nothing is written). With
    // `save` the index is saved. The text entries are not sorted.
    SongDBFileEntry* importFile(const String& path, bool save, bool nameByTitle);

    // importFile for a song already in memory; `sourcePath` is the file it
    // came from, whose name serves when the song is not named by its title.
    // The song is given a uuid when it has none; the library keeps a copy.
    SongDBFileEntry* importSong(Song& song, const String& sourcePath, bool save, bool nameByTitle);

    // Appends to `files` the files an import takes from the folder: every
    // ".song", ".sng", ".xml" and ".txt" file of it and of its sub-folders,
    // to any depth, in name order. A folder already in `visited` (reached
    // twice through links, or listed by an earlier call) is skipped.
    static void listImportableFiles(const String& folder, StringArray& files,
                                    std::set<String>& visited);

    // Imports the files listImportableFiles finds in the folder, showing
    // the wait cursor. True when at least one file was imported. The index
    // is not saved.
    bool importFolder(const String& folder, const ImportProgress& progress = {});

    // Asks for song files (several at once) or for a folder through
    // theBaseApp's dialogs, imports them and saves the index when anything
    // was imported. Cancel does nothing.
    void selectAndImportFiles();
    void selectAndImportFolder();

protected:
    // Writes the index file; `changed` is cleared when that succeeded. 0 or
    // the status of the failed write (also kept in lastError()).
    Status saveDatabaseFiles();

    // Reads a song file of the song files folder into a new entry and writes
    // its index section; null when it is not a song.
    SongDBFileEntry* addFileEntry(const String& path);

    // Makes a text entry and appends it to the library's list (unsorted)
    // and to the file's own list.
    SongDBTextEntry* addTextEntry(SongDBFileEntry* file, int type, const String& text);

    // Adds the ".song" files of the song files folder that the index does
    // not know, and refreshes those changed since the index was written.
    void scanSongFolder();

private:
    friend class SongDBFileEntry;

    // Where a key of a lookup first appears in files(), and how many
    // entries share it (a uuid or a file name is normally unique).
    struct Slot {
        SongDBFileEntry* first = nullptr;
        int count = 0;
    };
    using Lookup = std::unordered_map<String, Slot, CaseInsensitiveHash, CaseInsensitiveEqual>;
    // Entries by their exact file names.
    using EntriesByName = std::unordered_map<String, SongDBFileEntry*>;

    SongDBFileEntry* addFileEntry(const String& path, std::shared_ptr<Song> loaded);
    // The entries by their exact file names.
    EntriesByName entriesByName() const;
    // scanSongFolder() over a listing of the folder, and the entries by
    // name, already made.
    void scanSongFolder(const std::vector<FolderItem>& items, const EntriesByName& byName);
    // Reads an entry's song file again; an entry whose file no longer reads
    // as a song is dropped (the file stays).
    void refreshEntry(SongDBFileEntry* file);
    // Gives the entry's held song the contents of `fresh` (in place, so that
    // pointers to it stay valid) and makes its index section, text entries
    // and lookups anew.
    void takeContents(SongDBFileEntry* file, const Song& fresh);
    // Reads a song file of the library's folder into `song`. False when it
    // does not read as a song, or is markup that did not parse and has no
    // uuid. A song without a usable uuid takes `knownUuid` (a fresh one when
    // empty) and is written back with it (unless the library is read-only).
    bool readLibrarySong(Song& song, const String& path, const String& knownUuid);
    // Writes a song into the library's folder, noting a failure.
    bool writeLibrarySong(Song& song, const String& path);
    // Drops the entries whose file is gone and scans the folder again: what
    // another program changed while this one did not hold the lock.
    void catchUp();
    // The section of each entry is named by its uuid; a section named
    // otherwise (written by hand, or by an older program) is renamed, or
    // dropped for the scan to add its file afresh when the name is taken.
    bool keySectionByUuid(ConfigKey* key, SongDBFileEntry* file, StringArray& stale);
    // Notes that files of the folder changed, so that other programs take
    // it in when they next take the lock.
    void noteFolderChanged() { m_folderChanged = true; }
    // Takes the entry out of the lists, the lookups and the index; its song
    // file stays.
    void dropEntry(SongDBFileEntry* file);
    // Gives the entry's song a uuid that no other entry has, written into
    // its file, when another entry has its uuid (a song file copied inside
    // the folder).
    void makeUuidUnique(SongDBFileEntry* file);
    bool isOwnEntry(const SongDBFileEntry* file) const;

    void appendFile(std::unique_ptr<SongDBFileEntry> file);
    void addToLookups(SongDBFileEntry* file);
    void removeFromLookups(SongDBFileEntry* file);
    void rebuildLookups() const;
    SongDBFileEntry* find(Lookup& lookup, const String& key,
                          const String& (SongDBFileEntry::*field)() const) const;
    void addKey(Lookup& lookup, const String& key, SongDBFileEntry* file);
    void removeKey(Lookup& lookup, const String& key, SongDBFileEntry* file,
                   const String& (SongDBFileEntry::*field)() const);

    bool m_changed = false;
    std::vector<std::unique_ptr<SongDBFileEntry>> m_files;
    std::vector<std::unique_ptr<SongDBTextEntry>> m_entries;
    IniFile m_index;
    String m_indexPath;
    String m_databaseFolder;  // as set; empty for the configured one
    String m_hostName;        // as set; empty for the computer's
    Dialogs* m_dialogs = nullptr;
    bool m_readOnly = false;
    bool m_opened = false;  // open() has read the library
    FileError m_error;
    FileLock m_lock;
    int m_changeDepth = 0;
    bool m_folderChanged = false;     // files of the folder changed under this lock
    std::uint64_t m_seenChanges = 0;  // the lock's change count when this library last looked
    std::optional<std::int64_t> m_folderStamp;  // the song files folder's time then
    std::chrono::milliseconds m_lockTimeout{30000};
    FileLock::WaitNotice m_lockNotice;
    String m_openFolder;  // as open() settled it
    mutable Lookup m_byUuid;
    mutable Lookup m_byFilename;
};

// The one instance, defined with the other globals (app/globals.h).
extern SongDatabase theSongDB;

}  // namespace melodex
