#include "melodex/library/song_set.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "melodex/foundation/file_system.h"
#include "melodex/foundation/text_file.h"
#include "melodex/foundation/xml.h"
#include "melodex/library/song_database.h"
#include "melodex/song/song.h"

namespace melodex {

SongSet::SongSet() = default;

SongSet::SongSet(const SongSet& other) {
    *this = other;
}

SongSet& SongSet::operator=(const SongSet& other) {
    if (this == &other) return *this;
    std::vector<std::unique_ptr<SongSetEntry>> entries;
    entries.reserve(other.m_entries.size());
    for (const auto& entry : other.m_entries)
        entries.push_back(std::make_unique<SongSetEntry>(*entry));
    m_entries = std::move(entries);
    m_filename = other.m_filename;
    m_database = other.m_database;
    m_unresolved = other.m_unresolved;
    return *this;
}

SongSet::~SongSet() = default;

SongDatabase& SongSet::database() const {
    return m_database ? *m_database : theSongDB;
}

SongSetEntry& SongSet::add(Song* song, bool owned, bool dbflag) {
    m_entries.push_back(std::make_unique<SongSetEntry>());
    m_entries.back()->set(song, owned, dbflag);
    return *m_entries.back();
}

SongSetEntry& SongSet::addGap() {
    m_entries.push_back(std::make_unique<SongSetEntry>());
    m_entries.back()->type(SongSetEntry::Gap);
    return *m_entries.back();
}

SongSetEntry& SongSet::addLine() {
    m_entries.push_back(std::make_unique<SongSetEntry>());
    m_entries.back()->type(SongSetEntry::Line);
    return *m_entries.back();
}

void SongSet::remove(int index) {
    if (index < 0 || index >= size()) return;
    m_entries.erase(m_entries.begin() + index);
}

void SongSet::move(int from, int to) {
    if (from < 0 || from >= size() || to < 0 || to >= size()) return;
    std::unique_ptr<SongSetEntry> entry = std::move(m_entries[std::size_t(from)]);
    m_entries.erase(m_entries.begin() + from);
    m_entries.insert(m_entries.begin() + to, std::move(entry));
}

void SongSet::clear() {
    m_entries.clear();
    m_filename.clear();
    m_unresolved.clear();
}

String SongSet::getFileXmlNamespace(int) {
    return "brackwell/songset";
}

Status SongSet::saveToFile(const String& path, bool useFilenames) {
    TextFile file;
    if (const Status status = file.open(path, TextFile::Mode::Write); status != StatusSuccess)
        return status;
    m_filename = path;
    file.write("<?xml version=\"1.0\"?>\n");
    file.write("<songset xmlns=" + quote(getFileXmlNamespace()) + ">\n");
    for (const auto& entry : m_entries)
        file.write(entry->writeToText(useFilenames, path));
    file.write("</songset>\n");
    return file.close();
}

String SongSet::UnresolvedEntry::describe(const String& file) const {
    switch (source) {
        case Source::Library:
            return "library song " + name + ": " + reason;
        case Source::File:
            return (name.empty() ? String("song file") : file) + ": " + reason;
        case Source::Embedded:
            return "embedded song: " + reason;
        case Source::None:
            break;
    }
    return reason;
}

Status SongSet::loadFromFile(const String& path) {
    clear();
    XmlFile file;
    return readDocument(file, file.load(path), path);
}

Status SongSet::loadFromText(std::string_view text, const String& path) {
    clear();
    XmlFile file;
    return readDocument(file, file.loadFromString(text), path.empty() ? String("-") : path);
}

Status SongSet::readDocument(const XmlFile& file, Status loadStatus, const String& path) {
    if (loadStatus != StatusSuccess) return loadStatus;
    m_filename = path;
    // A document has one top-level element (XmlFile refuses anything else).
    const XmlNode root = file.root();
    if (!equalsIgnoreCase(root.name(), "songset")) return StatusFailed;
    for (const XmlNode& child : root.childElements()) {
        const String name = child.name();
        if (equalsIgnoreCase(name, "song")) {
            processSongNode(child);
        } else if (equalsIgnoreCase(name, "songentry")) {
            processSongEntryNode(child);
        } else if (equalsIgnoreCase(name, "gap")) {
            processGapNode(child);
        } else if (equalsIgnoreCase(name, "line")) {
            processLineNode(child);
        }
    }
    return StatusSuccess;
}

String SongSet::resolvePath(const String& path) const {
    if (path.empty() || isAbsolutePath(path)) return path;
    // Sets written on Windows separate folders with backslashes. The result
    // is absolute, so that a set loaded through a relative path writes its
    // songs back relative to its own folder, not to the current one.
    return absolutePath(joinPath(folderOf(m_filename), replaceAll(path, "\\", "/")));
}

void SongSet::recordUnresolved(UnresolvedEntry::Source source, const String& name,
                               const String& reason) {
    m_unresolved.push_back({size(), source, name, reason});
}

void SongSet::addSongFile(const String& path, const XmlNode& node) {
    // Only a regular file is read: a set file must not make the reader wait
    // on a pipe or read a device without end.
    if (!fileExists(path)) {
        std::error_code ignored;
        const bool present = std::filesystem::exists(path, ignored);
        recordUnresolved(UnresolvedEntry::Source::File, path,
                         path.empty() ? String("the entry names no file")
                         : present    ? String("not a regular file")
                                      : statusMessage(Status(ENOENT)));
        return;
    }
    auto song = std::make_unique<Song>();
    if (const Status status = song->loadFromFile(path); status != StatusSuccess) {
        recordUnresolved(UnresolvedEntry::Source::File, path, statusMessage(status));
        return;
    }
    readAttributes(node, add(song.release(), true, false));
}

void SongSet::processSongEntryNode(const XmlNode& node) {
    if (const XmlNode filename = node.findChild("filename")) {
        addSongFile(resolvePath(strip(filename.text())), node);
    } else if (const XmlNode uuid = node.findChild("database")) {
        // The library keeps its songs; a song it no longer has drops out.
        const String id = strip(uuid.text());
        SongDBFileEntry* file = database().findEntryByUUID(id);
        if (!file) {
            recordUnresolved(UnresolvedEntry::Source::Library, id, "not in the library");
            return;
        }
        std::shared_ptr<Song> song = file->sharedSong();
        SongSetEntry& entry = add(song.get(), false, true);
        entry.holdLibrarySong(std::move(song));
        readAttributes(node, entry);
    } else if (const XmlNode embedded = node.findChild("song")) {
        auto song = std::make_unique<Song>();
        // A new song holds a default key; an embedded song without one must
        // not gain it.
        song->clear();
        if (const Status status = song->loadFromXmlNode(embedded); status != StatusSuccess) {
            recordUnresolved(UnresolvedEntry::Source::Embedded, {}, statusMessage(status));
            return;
        }
        readAttributes(node, add(song.release(), true, false));
    } else {
        recordUnresolved(UnresolvedEntry::Source::None, {}, "the entry names no song");
    }
}

void SongSet::processSongNode(const XmlNode& node) {
    addSongFile(resolvePath(strip(node.text())), node);
}

void SongSet::processGapNode(const XmlNode&) {
    addGap();
}

void SongSet::processLineNode(const XmlNode&) {
    addLine();
}

void SongSet::readAttributes(const XmlNode& node, SongSetEntry& entry) {
    // Added to the new entry's 0, as the relative change it is.
    if (node.hasAttribute("transpose")) entry.transpose(toInteger(node.attribute("transpose")));
    if (node.hasAttribute("capo")) entry.setCapo(toInteger(node.attribute("capo")));
    if (node.hasAttribute("tempo")) entry.tempo(toInteger(node.attribute("tempo")));
    if (node.hasAttribute("localtranspose"))
        entry.setLocalTranspose(toInteger(node.attribute("localtranspose")));
    if (node.hasAttribute("sequence")) entry.sequence(node.attribute("sequence"));
}

}  // namespace melodex
