#include "melodex/library/song_database.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <unordered_set>

#include "melodex/foundation/file_system.h"
#include "melodex/foundation/uuid.h"
#include "melodex/platform/dialogs.h"
#include "melodex/platform/headless_dialogs.h"
#include "melodex/platform/system_info.h"
#include "melodex/song/song.h"

namespace melodex {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view SongExtension = ".song";
constexpr std::string_view FolderDialogTitle = "Select Folder for Import";
// Longest base name an import gives a file (in bytes), leaving room for a
// number and the extension within the 255 bytes most file systems allow.
constexpr std::size_t MaxBaseNameBytes = 200;

bool isImportable(std::string_view name) {
    for (std::string_view extension : {".song", ".sng", ".xml", ".txt"}) {
        if (endsWithIgnoreCase(name, extension)) return true;
    }
    return false;
}

// The path with every link resolved, so that a folder reached through links
// is known again; absolutePath(path) when it cannot be resolved. Paths are
// UTF-8 whatever the system's code page.
String resolvedPath(const String& path) {
    std::error_code error;
    const fs::path resolved =
        fs::canonical(fs::path(std::u8string(path.begin(), path.end())), error);
    if (error) return absolutePath(path);
    const std::u8string text = resolved.u8string();
    return String(text.begin(), text.end());
}

// A song title as a file name: characters that cannot stand in a file name
// here or on the other systems that may share the folder are dropped or
// replaced, and the result is cut to a safe length. Empty when nothing
// usable is left.
String fileNameFromTitle(std::string_view title) {
    String name;
    name.reserve(title.size());
    for (char c : title) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '/' || c == '\\' || c == ':') {
            name += '-';
        } else if (byte >= 32 && std::string_view("?*\"<>|").find(c) == std::string_view::npos) {
            name += c;
        }
    }
    if (name.size() > MaxBaseNameBytes) {
        std::size_t cut = MaxBaseNameBytes;
        while (cut > 0 && (static_cast<unsigned char>(name[cut]) & 0xC0) == 0x80)
            --cut;
        name.resize(cut);
    }
    // Trailing dots and blanks are not kept by every file system.
    name = strip(strip(name, " \t", StripSide::Both), ". ", StripSide::End);
    return isPlainFileName(name) ? name : String();
}

// Writes the bytes to a new file that no other file shares a name with;
// false when the file cannot be created.
bool writeNewFile(const String& path, std::string_view bytes) {
    std::FILE* file = std::fopen(path.c_str(), "wbx");
    if (!file) return false;
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    const bool closed = std::fclose(file) == 0;
    if (written && closed) return true;
    (void)removeFile(path);
    return false;
}

enum class Placement { Done, Taken, Failed };

// Gives the finished file `staging` the name `target` unless a file of that
// name exists. A hard link does that in one step, so two programs importing
// into one shared folder at once can never take the same name and overwrite
// each other's song. Where the file system has no hard links, a test and a
// rename serve.
Placement placeFile(const String& staging, const String& target) {
    std::error_code error;
    fs::create_hard_link(staging, target, error);
    if (!error) return Placement::Done;
    if (error == std::errc::file_exists) return Placement::Taken;
    std::error_code statusError;
    if (fs::exists(fs::symlink_status(target, statusError))) return Placement::Taken;
    fs::rename(staging, target, error);
    return error ? Placement::Failed : Placement::Done;
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
    const String host = m_hostName.empty() ? SystemInfo::hostName() : m_hostName;
    return joinPath(databaseFolder(), "songdb-" + host + ".ini");
}

// --- Opening and saving -------------------------------------------------------------

unsigned SongDatabase::open() {
    if (!m_files.empty() || !m_entries.empty() || !m_indexPath.empty()) close();

    // Settled here, so that later changes of the settings wait for the next
    // open().
    m_openFolder = databaseFolder();
    m_indexPath = indexPath();
    m_changed = false;
    m_index.clear();

    // The folder is listed once, for the sections' files and for the scan:
    // asking the file system about each file of a large library twice
    // would cost more than everything else that open does.
    const std::optional<std::vector<FolderItem>> items = listFolder(songFilesFolder());
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
        for (int i = 0; i < m_index.getKeyCount(); ++i) {
            ConfigKey* key = m_index.getKey(i);
            auto file = std::make_unique<SongDBFileEntry>(this);
            bool keep = file->load(key, &present);
            // A second section for a file already listed is left over from an
            // older state of the folder; keeping it would list the song twice.
            if (keep && !byName.emplace(file->filename(), file.get()).second) {
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
    if (m_changed) (void)saveDatabaseFiles();
    return 0;
}

unsigned SongDatabase::close() {
    if (m_changed) (void)saveDatabaseFiles();
    m_entries.clear();
    m_files.clear();
    m_byUuid.clear();
    m_byFilename.clear();
    m_index.clear();
    m_indexPath.clear();
    m_openFolder.clear();
    m_changed = false;
    return 0;
}

unsigned SongDatabase::flush() {
    (void)saveDatabaseFiles();
    return 0;
}

Status SongDatabase::saveDatabaseFiles() {
    const Status status = m_index.save(m_indexPath);
    // A failed write keeps the flag, so that close() tries again.
    if (status == StatusSuccess) m_changed = false;
    return status;
}

void SongDatabase::scanSongFolder() {
    const std::optional<std::vector<FolderItem>> items = listFolder(songFilesFolder());
    if (!items) return;
    EntriesByName byName;
    byName.reserve(m_files.size());
    for (const auto& file : m_files)
        byName.emplace(file->filename(), file.get());
    scanSongFolder(*items, byName);
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
    if (SongDBFileEntry::readLibrarySong(fresh, file->path(), file->uuid())) {
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
    (void)song->saveToFile(file->path(), SongFileType::Song);
    file->m_uuid = song->uuid();
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
    if (!isOwnEntry(file)) return;
    // Only a plain name is ever joined to the folder, so the removal cannot
    // reach outside it whatever the index held.
    const String path = isPlainFileName(file->filename()) ? file->path() : String();
    dropEntry(file);
    if (!path.empty()) (void)removeFile(path);
    if (save) (void)saveDatabaseFiles();
}

void SongDatabase::reload(SongDBFileEntry* file) {
    if (!isOwnEntry(file)) return;
    Song fresh;
    if (!SongDBFileEntry::readLibrarySong(fresh, file->path(), file->uuid())) return;
    takeContents(file, fresh);
    sortTextEntries();
    flush();
}

bool SongDatabase::holdsSong(const Song& song) const {
    return SongDBFileEntry::hasUsableUuid(song) && findEntryByUUID(song.uuid()) != nullptr;
}

// --- Imports -----------------------------------------------------------------------------

SongDBFileEntry* SongDatabase::importFile(const String& path, bool save, bool nameByTitle) {
    Song song;
    if (song.loadFromFile(path) != StatusSuccess || !SongDBFileEntry::isSong(song)) return nullptr;
    return importSong(song, path, save, nameByTitle);
}

SongDBFileEntry* SongDatabase::importSong(Song& song, const String& sourcePath, bool save,
                                          bool nameByTitle) {
    if (holdsSong(song)) return nullptr;  // imported before
    if (!SongDBFileEntry::hasUsableUuid(song)) {
        do {
            song.generateUUID();
        } while (findEntryByUUID(song.uuid()));
    }

    String base = nameByTitle ? fileNameFromTitle(song.info().title()) : String();
    if (base.empty()) base = fileNameFromTitle(baseNameOf(sourcePath));
    if (base.empty()) base = "Song";

    // The song is written once under a hidden name of its own and then
    // given its final name, which is taken atomically.
    const String folder = songFilesFolder();
    const String text = song.saveToText(SongFileType::Song, true);
    const String staging = joinPath(folder, "." + Uuid::generate().toString() + ".import");
    if (!writeNewFile(staging, text)) return nullptr;

    String target;
    for (int number = 1; target.empty(); ++number) {
        const String name =
            number == 1 ? base + ".song" : base + " " + std::to_string(number) + ".song";
        // A name that differs from a listed one only in case would make
        // findEntryByFilename ambiguous.
        if (findEntryByFilename(name)) continue;
        const String candidate = joinPath(folder, name);
        const Placement placement = placeFile(staging, candidate);
        if (placement == Placement::Failed) break;
        if (placement == Placement::Done) target = candidate;
    }
    (void)removeFile(staging);
    if (target.empty()) return nullptr;

    // The entry takes the song as a read of the file would give it: parsed
    // from the very bytes written, not read from disk a second time.
    auto written = std::make_shared<Song>();
    (void)written->loadFromText(text);
    written->filename(target);
    SongDBFileEntry* entry = addFileEntry(target, std::move(written));
    if (entry && save) (void)saveDatabaseFiles();
    return entry;
}

void SongDatabase::listImportableFiles(const String& folder, StringArray& files,
                                       std::set<String>& visited) {
    if (!visited.insert(resolvedPath(folder)).second) return;
    const std::optional<std::vector<FolderItem>> items = listFolder(folder);
    if (!items) return;
    for (const FolderItem& item : *items) {
        const String path = joinPath(folder, item.name);
        if (item.isFolder) {
            listImportableFiles(path, files, visited);
        } else if (item.isFile && isImportable(item.name)) {
            files.push_back(path);
        }
    }
}

bool SongDatabase::importFolder(const String& folder, const ImportProgress& progress) {
    WaitCursor busy(dialogs());
    StringArray files;
    std::set<String> visited;
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
    bool imported = false;
    for (const String& path : *paths)
        imported = importFile(path, false, false) != nullptr || imported;
    if (imported) (void)saveDatabaseFiles();
}

void SongDatabase::selectAndImportFolder() {
    FolderDialogRequest request;
    request.title = FolderDialogTitle;
    const std::optional<String> folder = dialogs().chooseFolder(request);
    if (folder && importFolder(*folder)) (void)saveDatabaseFiles();
}

}  // namespace melodex
