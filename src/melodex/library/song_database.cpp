#include "melodex/library/song_database.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <unordered_set>

#include "melodex/foundation/file_system.h"
#include "melodex/foundation/uuid.h"
#include "melodex/platform/dialogs.h"
#include "melodex/platform/headless_dialogs.h"
#include "melodex/platform/system_info.h"
#include "melodex/song/song.h"

namespace melodex {

namespace {

constexpr std::string_view SongExtension = ".song";
// Shared by every program and computer that uses the library folder.
constexpr std::string_view LockFileName = "songdb.lock";
constexpr std::string_view FolderDialogTitle = "Select Folder for Import";

bool isImportable(std::string_view name) {
    for (std::string_view extension : {".song", ".sng", ".xml", ".txt"}) {
        if (endsWithIgnoreCase(name, extension)) return true;
    }
    return false;
}

}  // namespace

SongDatabase::SongDatabase() = default;

Dialogs& SongDatabase::dialogs() const {
    return m_dialogs ? *m_dialogs : sharedHeadlessDialogs();
}

SongDatabase::~SongDatabase() {
    // Text entries first: they point at the file entries.
    m_entries.clear();
    m_files.clear();
}

// --- Where the library lies -------------------------------------------------------

String SongDatabase::databaseFolder() const {
    return m_openFolder.empty() ? m_databaseFolder : m_openFolder;
}

String SongDatabase::songFilesFolder() const {
    return joinPath(databaseFolder(), SongFilesFolderName);
}

String SongDatabase::indexPath() const {
    if (!m_indexPath.empty()) return m_indexPath;
    if (databaseFolder().empty()) return {};
    const String host = m_hostName.empty() ? SystemInfo::hostName() : m_hostName;
    return joinPath(databaseFolder(), "songdb-" + host + ".ini");
}

String SongDatabase::lockPath() const {
    return databaseFolder().empty() ? String() : joinPath(databaseFolder(), LockFileName);
}

// --- Sharing the library with other programs -----------------------------------------

bool SongDatabase::beginChanges() {
    if (m_changeDepth > 0) {
        ++m_changeDepth;
        return true;
    }
    m_error.clear();
    if (m_readOnly) {
        m_error.record(FileError::Action::Write, databaseFolder(), StatusReadOnly);
        return false;
    }
    if (databaseFolder().empty()) {
        m_error.record(FileError::Action::Write, {}, StatusNoFolder);
        return false;
    }
    // A writable library makes its folders: the lock file, the index and the
    // songs all need them.
    if (Status why = StatusSuccess; !createFolders(songFilesFolder(), &why)) {
        m_error.record(FileError::Action::CreateFolder, songFilesFolder(), why);
        return false;
    }
    const Status locked = m_lock.acquire(lockPath(), m_lockTimeout, m_lockNotice);
    if (locked != StatusSuccess) {
        m_error.record(FileError::Action::Lock, lockPath(), locked);
        return false;
    }
    m_changeDepth = 1;
    m_folderChanged = false;
    // Another program changed the library since this one last looked: take
    // in its songs and its removals before changing anything. The lock's
    // counter tells about programs that lock; the folder's time about those
    // that do not (a file manager, a copy from a backup).
    if (m_opened && (m_lock.changeCount() != m_seenChanges ||
                     fileModificationStamp(songFilesFolder()) != m_folderStamp)) {
        catchUp();
    }
    m_seenChanges = m_lock.changeCount();
    return true;
}

void SongDatabase::endChanges() {
    if (m_changeDepth == 0 || --m_changeDepth > 0) return;
    if (m_folderChanged) m_lock.markChanged();
    m_seenChanges = m_lock.changeCount();
    m_folderStamp = fileModificationStamp(songFilesFolder());
    m_folderChanged = false;
    m_lock.release();
}

void SongDatabase::catchUp() {
    Status listed = StatusSuccess;
    const std::optional<std::vector<FolderItem>> items = listFolder(songFilesFolder(), &listed);
    if (!items) {
        m_error.record(FileError::Action::List, songFilesFolder(), listed);
        return;
    }
    std::unordered_set<std::string_view> present;
    present.reserve(items->size());
    for (const FolderItem& item : *items) {
        if (item.isFile) present.insert(item.name);
    }
    std::vector<SongDBFileEntry*> gone;
    for (const auto& file : m_files) {
        if (!present.contains(file->filename())) gone.push_back(file.get());
    }
    for (SongDBFileEntry* file : gone)
        dropEntry(file);
    scanSongFolder(*items, entriesByName());
    sortTextEntries();
}

// --- Opening and saving -------------------------------------------------------------

unsigned SongDatabase::open() {
    if (!m_files.empty() || !m_entries.empty() || !m_indexPath.empty()) close();
    m_error.clear();

    // Settled here, so that later changes of the settings wait for the next
    // open().
    m_openFolder = databaseFolder();
    if (m_openFolder.empty()) {
        // Never the current folder in its place: a library written there
        // would be lost to the user.
        m_error.record(FileError::Action::Read, {}, StatusNoFolder);
        return 0;
    }
    m_indexPath = indexPath();
    m_changed = false;
    m_index.clear();

    // The rescan may rewrite sections and the index, so a writable library
    // reads under the lock: another program's half-finished import is never
    // taken for the library's state. A read-only library reads what is
    // there; every file it reads was written whole.
    std::optional<Changes> changes;
    if (!m_readOnly) {
        changes.emplace(*this);
        if (!*changes) {
            // Without the lock the library is still shown, read-only for now.
            changes.reset();
        }
    }

    // The folder is listed once, for the sections' files and for the scan:
    // asking the file system about each file of a large library twice
    // would cost more than everything else that open does.
    Status listed = StatusSuccess;
    const std::optional<std::vector<FolderItem>> items = listFolder(songFilesFolder(), &listed);
    if (!items && listed != ENOENT)
        m_error.record(FileError::Action::List, songFilesFolder(), listed);
    EntriesByName byName;
    std::unordered_set<std::string_view> present;
    if (items) {
        present.reserve(items->size());
        for (const FolderItem& item : *items) {
            if (item.isFile) present.insert(item.name);
        }
    }

    // An index that is missing or cannot be read is rebuilt by the scan.
    if (fileExists(m_indexPath) && m_index.load(m_indexPath) == StatusSuccess) {
        StringArray stale;
        // Exact names: on a file system that tells case apart, "Hymn.song"
        // and "hymn.song" are two songs.
        byName.reserve(std::size_t(m_index.getKeyCount()));
        m_files.reserve(std::size_t(m_index.getKeyCount()));
        const int sections = m_index.getKeyCount();
        for (int i = 0; i < sections; ++i) {
            ConfigKey* key = m_index.getKey(i);
            auto file = std::make_unique<SongDBFileEntry>(this);
            bool keep = file->load(key, &present);
            // A second section for a file already listed is left over from an
            // older state of the folder; keeping it would list the song twice.
            if (keep && !byName.emplace(file->filename(), file.get()).second) {
                removeTextEntriesForFile(file.get(), true);
                keep = false;
            }
            if (keep && !keySectionByUuid(key, file.get(), stale)) {
                byName.erase(file->filename());
                removeTextEntriesForFile(file.get(), true);
                keep = false;
            }
            if (!keep) {
                stale.push_back(key->name());
                m_changed = true;
                continue;
            }
            appendFile(std::move(file));
        }
        for (const String& name : stale)
            m_index.removeKey(name);
    }

    if (items) scanSongFolder(*items, byName);
    sortTextEntries();
    if (m_changed && !m_readOnly && changes) (void)saveDatabaseFiles();
    m_folderStamp = fileModificationStamp(songFilesFolder());
    m_opened = true;
    return 0;
}

bool SongDatabase::keySectionByUuid(ConfigKey* key, SongDBFileEntry* file, StringArray& stale) {
    if (equalsIgnoreCase(key->name(), file->uuid())) return true;
    // A section under another name would be deleted by the scan the day a
    // song with that name as its uuid is added, and a song listed under a
    // name that is not its uuid cannot be found by it.
    if (!SongDBFileEntry::hasUsableUuidText(file->uuid()) || m_index.findKey(file->uuid()))
        return false;
    ConfigKey* renamed = m_index.createKey(file->uuid());
    for (int i = 0; i < key->getValueCount(); ++i) {
        const ConfigValue& value = key->getValue(i);
        renamed->setString(value.name(), value.value());
    }
    stale.push_back(key->name());
    m_changed = true;
    return true;
}

unsigned SongDatabase::close() {
    m_error.clear();
    if (m_changed && !m_readOnly && !m_indexPath.empty()) {
        Changes changes(*this);
        if (changes) (void)saveDatabaseFiles();
    }
    m_entries.clear();
    m_files.clear();
    m_byUuid.clear();
    m_byFilename.clear();
    m_index.clear();
    m_indexPath.clear();
    m_openFolder.clear();
    m_changed = false;
    m_opened = false;
    return 0;
}

unsigned SongDatabase::flush() {
    m_error.clear();
    if (m_indexPath.empty()) {
        m_error.record(FileError::Action::Write, {}, StatusNoFolder);
        return 0;
    }
    Changes changes(*this);
    if (changes) (void)saveDatabaseFiles();
    return 0;
}

Status SongDatabase::saveDatabaseFiles() {
    if (m_readOnly) {
        m_error.record(FileError::Action::Write, m_indexPath, StatusReadOnly);
        return StatusReadOnly;
    }
    const Status status = m_index.save(m_indexPath);
    m_error.record(FileError::Action::Write, m_indexPath, status);
    // A failed write keeps the flag, so that close() tries again.
    if (status == StatusSuccess) m_changed = false;
    return status;
}

SongDatabase::EntriesByName SongDatabase::entriesByName() const {
    EntriesByName byName;
    byName.reserve(m_files.size());
    for (const auto& file : m_files)
        byName.emplace(file->filename(), file.get());
    return byName;
}

void SongDatabase::scanSongFolder() {
    Status listed = StatusSuccess;
    const std::optional<std::vector<FolderItem>> items = listFolder(songFilesFolder(), &listed);
    if (!items) {
        if (listed != ENOENT) m_error.record(FileError::Action::List, songFilesFolder(), listed);
        return;
    }
    scanSongFolder(*items, entriesByName());
}

void SongDatabase::scanSongFolder(const std::vector<FolderItem>& items,
                                  const EntriesByName& byName) {
    const String folder = songFilesFolder();
    for (const FolderItem& item : items) {
        if (!item.isFile || !endsWithIgnoreCase(item.name, SongExtension)) continue;
        const String path = joinPath(folder, item.name);
        const auto found = byName.find(item.name);
        if (found == byName.end()) {
            addFileEntry(path);
            continue;
        }
        // The index keeps whole seconds, so the file's time is compared at
        // whole seconds too.
        // (An entry that the refresh drops is never looked up again: names
        // in a folder are unique.)
        const std::optional<LocalTime> modified = fileModificationTime(path);
        if (modified && *modified != found->second->updated()) refreshEntry(found->second);
    }
}

void SongDatabase::refreshEntry(SongDBFileEntry* file) {
    Song fresh;
    if (readLibrarySong(fresh, file->path(), file->uuid())) {
        takeContents(file, fresh);
    } else {
        // No longer a song: out of the library, like any file that is not
        // one, but the file itself stays untouched.
        dropEntry(file);
    }
}

void SongDatabase::takeContents(SongDBFileEntry* file, const Song& fresh) {
    removeFromLookups(file);
    const String oldUuid = file->uuid();
    // Song sets and windows that show the held song keep a valid pointer.
    if (file->m_song) {
        *file->m_song = fresh;
    } else {
        file->m_song = std::make_shared<Song>(fresh);
    }
    file->m_uuid = fresh.uuid();
    makeUuidUnique(file);
    m_index.removeKey(oldUuid);
    m_index.removeKey(file->uuid());
    ConfigKey* key = m_index.createKey(file->uuid());
    // The file's time, as when the file was added, so that the next open
    // finds the entry up to date.
    if (const std::optional<LocalTime> modified = fileModificationTime(file->path()))
        file->m_updated = *modified;
    file->save(key);
    m_changed = true;
    // The text entries, title and first line as the index now holds them.
    removeTextEntriesForFile(file, true);
    file->load(key);
    addToLookups(file);
}

void SongDatabase::dropEntry(SongDBFileEntry* file) {
    m_index.removeKey(file->uuid());
    removeTextEntriesForFile(file, true);
    removeFromLookups(file);
    std::erase_if(m_files, [file](const auto& own) { return own.get() == file; });
    m_changed = true;
}

void SongDatabase::makeUuidUnique(SongDBFileEntry* file) {
    const SongDBFileEntry* other = findEntryByUUID(file->uuid());
    if (!other || other == file) return;
    Song* song = file->m_song.get();
    if (!song) return;
    do {
        song->generateUUID();
    } while (findEntryByUUID(song->uuid()));
    (void)writeLibrarySong(*song, file->path());
    file->m_uuid = song->uuid();
}

bool SongDatabase::readLibrarySong(Song& song, const String& path, const String& knownUuid) {
    // Not written back: a file that is not a song stays as it was.
    const Status read = song.loadFromFile(path);
    if (read != StatusSuccess) {
        if (read < StatusFailed) m_error.record(FileError::Action::Read, path, read);
        return false;
    }
    if (!SongDBFileEntry::isSong(song)) return false;
    if (SongDBFileEntry::hasUsableUuid(song)) return true;
    // Markup that did not parse reads as plain text whose first line is a
    // tag; writing the uuid back would turn the user's (repairable) file
    // into lines of raw markup, so such a file is left alone.
    if (SongDBFileEntry::isUnreadMarkup(song)) return false;
    // The uuid is the song's name in the index and in song sets: written
    // into the file it stays the same however often the library is rebuilt,
    // and a song saved elsewhere without it keeps the one the library knows.
    if (knownUuid.empty()) {
        song.generateUUID();
    } else {
        song.uuid(knownUuid);
    }
    (void)writeLibrarySong(song, path);
    return true;
}

bool SongDatabase::writeLibrarySong(Song& song, const String& path) {
    // A read-only library keeps the uuid in memory only; the next writable
    // open writes it.
    if (m_readOnly) return false;
    const Status written = song.saveToFile(path, SongFileType::Song);
    m_error.record(FileError::Action::Write, path, written);
    if (written == StatusSuccess) noteFolderChanged();
    return written == StatusSuccess;
}

// --- The entries -----------------------------------------------------------------------

SongDBFileEntry* SongDatabase::findEntryByUUID(const String& uuid) const {
    return find(m_byUuid, uuid, &SongDBFileEntry::uuid);
}

SongDBFileEntry* SongDatabase::findEntryByFilename(const String& name) const {
    return find(m_byFilename, name, &SongDBFileEntry::filename);
}

SongDBFileEntry* SongDatabase::find(Lookup& lookup, const String& key,
                                    const String& (SongDBFileEntry::*field)() const) const {
    auto it = lookup.find(key);
    if (it == lookup.end()) return nullptr;
    if (!equalsIgnoreCase((it->second.first->*field)(), key)) {
        // An entry was changed behind the library's back (cleared or loaded
        // by hand): build the lookups again from the entries as they are.
        rebuildLookups();
        it = lookup.find(key);
        if (it == lookup.end()) return nullptr;
    }
    return it->second.first;
}

void SongDatabase::appendFile(std::unique_ptr<SongDBFileEntry> file) {
    addToLookups(file.get());
    m_files.push_back(std::move(file));
}

void SongDatabase::addToLookups(SongDBFileEntry* file) {
    addKey(m_byUuid, file->uuid(), file);
    addKey(m_byFilename, file->filename(), file);
}

void SongDatabase::removeFromLookups(SongDBFileEntry* file) {
    removeKey(m_byUuid, file->uuid(), file, &SongDBFileEntry::uuid);
    removeKey(m_byFilename, file->filename(), file, &SongDBFileEntry::filename);
}

void SongDatabase::addKey(Lookup& lookup, const String& key, SongDBFileEntry* file) {
    Slot& slot = lookup[key];
    // Entries are appended, so one already there comes first in files().
    if (slot.count++ == 0) slot.first = file;
}

void SongDatabase::removeKey(Lookup& lookup, const String& key, SongDBFileEntry* file,
                             const String& (SongDBFileEntry::*field)() const) {
    const auto it = lookup.find(key);
    if (it == lookup.end()) return;
    Slot& slot = it->second;
    if (--slot.count <= 0) {
        lookup.erase(it);
        return;
    }
    if (slot.first != file) return;
    // The rare shared key: the next entry in files() order takes its place.
    slot.first = nullptr;
    for (const auto& other : m_files) {
        if (other.get() != file && equalsIgnoreCase((other.get()->*field)(), key)) {
            slot.first = other.get();
            break;
        }
    }
    if (!slot.first) lookup.erase(it);
}

void SongDatabase::rebuildLookups() const {
    m_byUuid.clear();
    m_byFilename.clear();
    auto* self = const_cast<SongDatabase*>(this);
    for (const auto& file : m_files)
        self->addToLookups(file.get());
}

bool SongDatabase::isOwnEntry(const SongDBFileEntry* file) const {
    return file && std::any_of(m_files.begin(), m_files.end(),
                               [file](const auto& own) { return own.get() == file; });
}

SongDBFileEntry* SongDatabase::addFileEntry(const String& path) {
    return addFileEntry(path, nullptr);
}

SongDBFileEntry* SongDatabase::addFileEntry(const String& path, std::shared_ptr<Song> loaded) {
    auto file = std::make_unique<SongDBFileEntry>(this);
    const bool read = loaded ? file->loadFromSong(std::move(loaded), path) : file->load(path);
    if (!read) {
        removeTextEntriesForFile(file.get(), true);
        return nullptr;
    }
    makeUuidUnique(file.get());
    const std::optional<LocalTime> modified = fileModificationTime(path);

    SongDBFileEntry* added = file.get();
    appendFile(std::move(file));
    m_index.removeKey(added->uuid());
    ConfigKey* key = m_index.createKey(added->uuid());
    if (modified) added->m_updated = *modified;
    added->save(key);
    m_changed = true;
    return added;
}

SongDBTextEntry* SongDatabase::addTextEntry(SongDBFileEntry* file, int type, const String& text) {
    m_entries.push_back(std::make_unique<SongDBTextEntry>(file, type, text));
    SongDBTextEntry* entry = m_entries.back().get();
    if (file) file->m_texts.push_back(entry);
    return entry;
}

void SongDatabase::removeTextEntriesForFile(SongDBFileEntry* file, bool deleteThem) {
    if (!file) return;
    // The file's own list first, while its entries are still alive.
    std::erase_if(file->m_texts,
                  [file](const SongDBTextEntry* entry) { return entry->fileEntry() == file; });
    const auto belongs = [file](const std::unique_ptr<SongDBTextEntry>& entry) {
        return entry->fileEntry() == file;
    };
    if (deleteThem) {
        std::erase_if(m_entries, belongs);
        return;
    }
    for (auto& entry : m_entries) {
        if (belongs(entry)) (void)entry.release();
    }
    std::erase(m_entries, nullptr);
}

void SongDatabase::sortTextEntries() {
    std::stable_sort(m_entries.begin(), m_entries.end(),
                     [](const std::unique_ptr<SongDBTextEntry>& a,
                        const std::unique_ptr<SongDBTextEntry>& b) { return a->sortsBefore(*b); });
}

void SongDatabase::removeEntry(SongDBFileEntry* file, bool save) {
    m_error.clear();
    if (!isOwnEntry(file)) return;
    Changes changes(*this);
    // Taking the lock may have taken in another program's removal of this
    // very song.
    if (!changes || !isOwnEntry(file)) return;
    // Only a plain name is ever joined to the folder, so the removal cannot
    // reach outside it whatever the index held.
    if (isPlainFileName(file->filename())) {
        const String path = file->path();
        const Status removed = removeFile(path);
        if (removed != StatusSuccess && removed != ENOENT) {
            m_error.record(FileError::Action::Remove, path, removed);
            return;
        }
        noteFolderChanged();
    }
    dropEntry(file);
    if (save) (void)saveDatabaseFiles();
}

void SongDatabase::reload(SongDBFileEntry* file) {
    m_error.clear();
    if (!isOwnEntry(file)) return;
    Changes changes(*this);
    if (!changes || !isOwnEntry(file)) return;
    Song fresh;
    if (!readLibrarySong(fresh, file->path(), file->uuid())) return;
    takeContents(file, fresh);
    sortTextEntries();
    (void)saveDatabaseFiles();
}

bool SongDatabase::holdsSong(const Song& song) const {
    return SongDBFileEntry::hasUsableUuid(song) && findEntryByUUID(song.uuid()) != nullptr;
}

// --- Imports -----------------------------------------------------------------------------

SongDBFileEntry* SongDatabase::importFile(const String& path, bool save, bool nameByTitle) {
    m_error.clear();
    Song song;
    const Status read = song.loadFromFile(path);
    if (read != StatusSuccess) {
        if (read < StatusFailed) m_error.record(FileError::Action::Read, path, read);
        return nullptr;
    }
    if (!SongDBFileEntry::isSong(song)) return nullptr;
    return importSong(song, path, save, nameByTitle);
}

SongDBFileEntry* SongDatabase::importSong(Song& song, const String& sourcePath, bool save,
                                          bool nameByTitle) {
    m_error.clear();
    Changes changes(*this);
    if (!changes) return nullptr;
    if (holdsSong(song)) return nullptr;  // imported before
    if (!SongDBFileEntry::hasUsableUuid(song)) {
        do {
            song.generateUUID();
        } while (findEntryByUUID(song.uuid()));
    }

    String base = nameByTitle ? fileNameFromTitle(song.info().title()) : String();
    if (base.empty()) base = fileNameFromTitle(baseNameOf(sourcePath));
    if (base.empty()) base = "Song";

    // The name is taken only when it is free (WriteMode::CreateNew), so a
    // program that does not lock the folder, or another computer whose lock
    // does not reach this one, can never have its song overwritten.
    const String folder = songFilesFolder();
    const String text = song.saveToText(SongFileType::Song, true);
    String target;
    for (int number = 1; target.empty(); ++number) {
        const String name =
            number == 1 ? base + ".song" : base + " " + std::to_string(number) + ".song";
        // A name that differs from a listed one only in case would make
        // findEntryByFilename ambiguous.
        if (findEntryByFilename(name)) continue;
        const String candidate = joinPath(folder, name);
        const Status written = writeFileAtomically(candidate, text, WriteMode::CreateNew);
        if (written == StatusSuccess) {
            target = candidate;
        } else if (written != EEXIST) {
            m_error.record(FileError::Action::Write, candidate, written);
            return nullptr;
        }
    }
    noteFolderChanged();

    // The entry is filled from the song in hand (what was written reads back
    // as it: the writer escapes all that a reader would change) and does not
    // keep it: song() reads the library's copy when it is wanted. An import
    // of thousands of songs then holds none of them, and never parses what
    // it has just written.
    SongDBFileEntry* entry =
        addFileEntry(target, std::shared_ptr<Song>(std::shared_ptr<Song>(), &song));
    if (entry) entry->m_song.reset();
    if (entry && save) (void)saveDatabaseFiles();
    return entry;
}

void SongDatabase::listImportableFiles(const String& folder, StringArray& files,
                                       std::set<String>& visited) {
    FolderWalk walk;
    walk.file = [&files](const String& path, const String& name) {
        if (isImportable(name)) files.push_back(path);
    };
    walkFolder(folder, walk, visited);
}

bool SongDatabase::importFolder(const String& folder, const ImportProgress& progress) {
    WaitCursor busy(dialogs());
    // One lock for the whole folder: a second program waits once, not
    // between every two songs.
    Changes changes(*this);
    if (!changes) return false;
    StringArray files;
    // Not the library's own folder, whose songs are in it already.
    std::set<String> visited{canonicalPath(databaseFolder())};
    listImportableFiles(folder, files, visited);
    bool imported = false;
    for (const String& path : files) {
        const bool done = importFile(path, false, false) != nullptr;
        if (progress) progress(path, done);
        imported = imported || done;
    }
    return imported;
}

void SongDatabase::selectAndImportFiles() {
    FileDialogRequest request;
    request.filter = SongFileOpenFilter;
    request.fileMustExist = true;
    request.longNames = true;
    request.fileNameBufferLength = MultiSelectFileNameBufferLength;
    const std::optional<StringArray> paths = dialogs().openFiles(request);
    if (!paths) return;
    Changes changes(*this);
    if (!changes) return;
    bool imported = false;
    for (const String& path : *paths)
        imported = importFile(path, false, false) != nullptr || imported;
    if (imported) (void)saveDatabaseFiles();
}

void SongDatabase::selectAndImportFolder() {
    FolderDialogRequest request;
    request.title = FolderDialogTitle;
    const std::optional<String> folder = dialogs().chooseFolder(request);
    if (!folder) return;
    Changes changes(*this);
    if (changes && importFolder(*folder)) (void)saveDatabaseFiles();
}

}  // namespace melodex
