#include "melodex/library/song_import.h"

#include <algorithm>
#include <cerrno>
#include <set>
#include <unordered_map>

#include "melodex/foundation/file_system.h"
#include "melodex/library/song_database.h"
#include "melodex/library/song_db_file_entry.h"
#include "melodex/song/song.h"

namespace melodex {

namespace {

// No song file comes near this; anything larger (media, archives) is not
// read at all, so a folder of recordings beside the songs costs nothing.
constexpr std::size_t MaxSongFileBytes = 4 * 1024 * 1024;

// True when the bytes may be an XML document: after a byte-order mark and
// blanks, the first character is "<". UTF-16 text is left to the parser.
bool mayBeXml(std::string_view bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) return true;
    const std::size_t first = bytes.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && bytes[first] == '<';
}

bool sameLyrics(const Song& a, const Song& b) {
    if (a.getSectionCount() != b.getSectionCount()) return false;
    for (int s = 0; s < a.getSectionCount(); ++s) {
        const SongSection& left = *a.getSection(s);
        const SongSection& right = *b.getSection(s);
        if (left.getLineCount() != right.getLineCount()) return false;
        for (int l = 0; l < left.getLineCount(); ++l) {
            if (strip(left.getLine(l)->text()) != strip(right.getLine(l)->text())) return false;
        }
    }
    return true;
}

// The library's songs by listed title (case-folded), to find a song that is
// already there under another uuid or none. Lyrics are compared only when
// the titles match, so the library's songs are read only then.
class TitleIndex {
public:
    explicit TitleIndex(const SongDatabase& database) {
        for (SongDBFileEntry* file : database.files())
            add(file);
    }

    void add(SongDBFileEntry* file) { m_byTitle[foldCase(file->listedTitle())].push_back(file); }

    SongDBFileEntry* find(const Song& song) const {
        const auto it = m_byTitle.find(foldCase(SongDBFileEntry::listedTitle(song)));
        if (it == m_byTitle.end()) return nullptr;
        for (SongDBFileEntry* file : it->second) {
            if (sameLyrics(*file->song(), song)) return file;
        }
        return nullptr;
    }

private:
    std::unordered_map<String, std::vector<SongDBFileEntry*>> m_byTitle;
};

}  // namespace

String SongImport::Skipped::describe() const {
    switch (reason) {
        case Reason::NotASong:
            return "not a song file";
        case Reason::Unreadable:
            return "cannot read: " + statusMessage(status);
        case Reason::Duplicate:
            return "already in the library as " + existing;
        case Reason::WriteFailed:
            return "cannot write the library's copy: " + statusMessage(status);
        case Reason::NotFound:
            return "no such file or folder";
    }
    return {};
}

SongImport::SongImport(SongDatabase& database) : m_database(database) {}

StringArray SongImport::findFiles(const StringArray& paths, std::vector<Skipped>& failed) const {
    StringArray files;
    // The library's own folder is never walked: its songs are in it already,
    // and its index and lock are no songs.
    std::set<String> visited{canonicalPath(m_database.databaseFolder())};
    FolderWalk walk;
    walk.skipHidden = true;
    walk.file = [&files](const String& path, const String&) { files.push_back(path); };
    walk.unreadable = [&failed](const String& path, Status status) {
        failed.push_back({path, Reason::Unreadable, status, {}});
    };
    for (const String& path : paths) {
        if (folderExists(path)) {
            walkFolder(path, walk, visited);
        } else if (fileExists(path)) {
            files.push_back(path);
        } else {
            failed.push_back({path, Reason::NotFound, Status(ENOENT), {}});
        }
    }
    return files;
}

void SongImport::addText(const String& name, std::string bytes) {
    m_texts.push_back({name, std::move(bytes)});
}

Status SongImport::readSongFile(const String& path, Song& song) {
    std::string bytes;
    const Status read = readFileBytes(path, bytes, MaxSongFileBytes);
    if (read == EFBIG) return StatusFailed;
    if (read != StatusSuccess) return read;
    return readSongBytes(path, bytes, endsWithIgnoreCase(path, ".txt"), song);
}

Status SongImport::readSongBytes(const String& path, std::string_view bytes, bool plainText,
                                 Song& song) {
    song.clear();
    bool loaded = false;
    if (mayBeXml(bytes) && song.loadFromXmlString(bytes) == StatusSuccess) {
        loaded = true;
    } else if (plainText) {
        // A text song may begin with a tag of its own (the uuid line that
        // Melodex writes), which is not XML.
        song.clear();
        loaded = song.loadFromTextString(bytes) == StatusSuccess;
    }
    song.filename(path);
    if (!loaded || !SongDBFileEntry::isSong(song)) return StatusFailed;
    // The library's copy keeps the title the song is listed under.
    if (song.loadedFileType() == SongFileType::Text && !path.empty())
        song.info().setTitle(SongDBFileEntry::listedTitle(song));
    return StatusSuccess;
}

SongImport::Report SongImport::run(const StringArray& paths) {
    Report report;
    const StringArray files = findFiles(paths, report.failed);
    const std::size_t total = files.size() + m_texts.size();
    report.found = int(total);

    SongDatabase::Changes changes(m_database);
    if (!changes) {
        report.indexError = m_database.lastError();
        return report;
    }
    // Built under the lock, after the library took in other programs'
    // songs, so that a song another program just imported counts as there.
    TitleIndex titles(m_database);

    for (std::size_t i = 0; i < total; ++i) {
        const bool file = i < files.size();
        const String& path = file ? files[i] : m_texts[i - files.size()].name;
        if (m_progress) m_progress(int(i + 1), int(total), path);
        Song song;
        const Status read = file ? readSongFile(path, song)
                                 : readSongBytes(path, m_texts[i - files.size()].bytes, true, song);
        if (read == StatusFailed) {
            report.skipped.push_back({path, Reason::NotASong, StatusSuccess, {}});
            continue;
        }
        if (read != StatusSuccess) {
            report.failed.push_back({path, Reason::Unreadable, read, {}});
            continue;
        }
        const SongDBFileEntry* known = SongDBFileEntry::hasUsableUuid(song)
                                           ? m_database.findEntryByUUID(song.uuid())
                                           : nullptr;
        if (!known) known = titles.find(song);
        if (known) {
            report.already.push_back({path, Reason::Duplicate, StatusSuccess, known->filename()});
            continue;
        }
        SongDBFileEntry* entry = m_database.importSong(song, path, false, true);
        if (!entry) {
            const FileError& error = m_database.lastError();
            report.failed.push_back(
                {path, Reason::WriteFailed, error ? error.status : Status(StatusFailed), {}});
            continue;
        }
        titles.add(entry);
        report.imported.push_back(entry);
    }

    m_texts.clear();
    if (!report.imported.empty() || m_database.changed()) {
        m_database.sortTextEntries();
        (void)m_database.flush();
        report.indexError = m_database.lastError();
    }
    return report;
}

}  // namespace melodex
