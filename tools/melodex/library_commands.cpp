#include "library_commands.h"

#include "command_line.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include <fmt/core.h>
#include <CLI/CLI.hpp>

#include "melodex/app/song_config.h"
#include "melodex/foundation/file_system.h"
#include "melodex/library/song_database.h"
#include "melodex/song/chord_sheet.h"
#include "melodex/song/song.h"

namespace melodex::cli {

namespace {

String padRight(const String& text, std::size_t width) {
    const std::size_t length = codePointLength(text);
    return length >= width ? text : text + String(width - length, ' ');
}

// --- import ------------------------------------------------------------------------

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
// already in the library under another uuid or none.
class TitleIndex {
public:
    TitleIndex() {
        for (SongDBFileEntry* file : theSongDB.files())
            add(file);
    }

    void add(SongDBFileEntry* file) { m_byTitle[foldCase(listedTitle(*file))].push_back(file); }

    bool contains(const Song& song) const {
        const auto it = m_byTitle.find(foldCase(listedTitle(song)));
        if (it == m_byTitle.end()) return false;
        return std::any_of(it->second.begin(), it->second.end(), [&song](SongDBFileEntry* file) {
            return sameLyrics(*file->song(), song);
        });
    }

private:
    std::unordered_map<String, std::vector<SongDBFileEntry*>> m_byTitle;
};

struct ImportOptions {
    std::vector<std::string> paths;
};

void importSongs(const ImportOptions& options) {
    StringArray files;
    std::set<String> visited;
    int failed = 0;
    for (const std::string& path : options.paths) {
        if (folderExists(path)) {
            SongDatabase::listImportableFiles(path, files, visited);
        } else if (fileExists(path)) {
            files.push_back(path);
        } else {
            fmt::print(stderr, "melodex: no such file or folder: {}\n", path);
            ++failed;
        }
    }

    OpenLibrary library;
    TitleIndex titles;
    const bool terminal = ::isatty(::fileno(stdout)) != 0;
    int imported = 0;
    int already = 0;
    for (std::size_t i = 0; i < files.size(); ++i) {
        const String& path = files[i];
        if (terminal) {
            // One line, rewritten in place.
            fmt::print("\rImporting {}/{}: {}\x1b[K", i + 1, files.size(), fileNameOf(path));
            std::fflush(stdout);
        }
        Song song;
        if (song.loadFromFile(path) != StatusSuccess || !SongDBFileEntry::isSong(song)) {
            if (terminal) fmt::print("\r\x1b[K");
            fmt::print(stderr, "melodex: not a song file: {}\n", path);
            ++failed;
            continue;
        }
        if (theSongDB.holdsSong(song) || titles.contains(song)) {
            ++already;
            continue;
        }
        SongDBFileEntry* entry = theSongDB.importSong(song, path, false, true);
        if (!entry) {
            if (terminal) fmt::print("\r\x1b[K");
            fmt::print(stderr, "melodex: cannot write {} into {}\n", path,
                       theSongDB.songFilesFolder());
            ++failed;
            continue;
        }
        titles.add(entry);
        ++imported;
    }
    if (terminal && !files.empty()) fmt::print("\r\x1b[K");
    fmt::print("Imported {} song{}; {} already in the library\n", imported,
               imported == 1 ? "" : "s", already);
    if (failed > 0) throw CLI::RuntimeError(1);
}

// --- list, search, show, remove ------------------------------------------------------

void listSongs() {
    OpenLibrary library;
    struct Row {
        String title, key, author, uuid;
    };
    std::vector<Row> rows;
    for (SongDBFileEntry* file : theSongDB.files())
        rows.push_back({listedTitle(*file), file->key(), file->author(), file->uuid()});
    std::stable_sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) {
        return compareIgnoreCase(a.title, b.title) < 0;
    });
    std::size_t titleWidth = 5, keyWidth = 3, authorWidth = 6;
    for (const Row& row : rows) {
        titleWidth = std::max(titleWidth, codePointLength(row.title));
        keyWidth = std::max(keyWidth, codePointLength(row.key));
        authorWidth = std::max(authorWidth, codePointLength(row.author));
    }
    authorWidth = std::min<std::size_t>(authorWidth, 40);
    auto print = [&](const Row& row) {
        String author = row.author;
        if (codePointLength(author) > authorWidth)
            author = codePointSubstring(author, 0, authorWidth - 3) + "...";
        fmt::print("{}  {}  {}  {}\n", padRight(row.title, titleWidth), padRight(row.key, keyWidth),
                   padRight(author, authorWidth), row.uuid);
    };
    print({"TITLE", "KEY", "AUTHOR", "UUID"});
    for (const Row& row : rows)
        print(row);
    fmt::print("{} song{} in {}\n", rows.size(), rows.size() == 1 ? "" : "s",
               theSongDB.songFilesFolder());
}

void searchSongs(const std::string& text) {
    OpenLibrary library;
    const String query = foldCase(SongDBTextEntry::makeBareText(text));
    if (query.empty()) fail("search for letters or digits, not only punctuation");
    static const char* const kinds[] = {"title", "first line", "index"};
    int found = 0;
    for (const SongDBTextEntry* entry : theSongDB.entries()) {
        if (foldCase(entry->baretext()).find(query) == String::npos) continue;
        const int type = std::clamp(entry->type(), 0, 2);
        fmt::print("{}  [{}]  {}\n", entry->text(), kinds[type], entry->fileEntry()->uuid());
        ++found;
    }
    if (found == 0) fmt::print("No song holds \"{}\"\n", text);
}

// The entry with that uuid, else the one listed under that title (ignoring
// case); fails when there is none or the title is not unique.
SongDBFileEntry* findSong(const std::string& idOrTitle) {
    if (SongDBFileEntry* file = theSongDB.findEntryByUUID(idOrTitle)) return file;
    std::vector<SongDBFileEntry*> matches;
    for (SongDBFileEntry* file : theSongDB.files()) {
        if (equalsIgnoreCase(listedTitle(*file), idOrTitle)) matches.push_back(file);
    }
    if (matches.empty()) fail("no song in the library has the uuid or title \"" + idOrTitle + "\"");
    if (matches.size() > 1) {
        std::string message = "several songs are titled \"" + idOrTitle + "\"; give the uuid:";
        for (SongDBFileEntry* file : matches)
            message += "\n  " + file->uuid() + "  " + file->filename();
        fail(message);
    }
    return matches.front();
}

struct ShowOptions {
    std::string song;
    int transpose = 0;
};

void showSong(const ShowOptions& options) {
    OpenLibrary library;
    SongDBFileEntry* file = findSong(options.song);
    fmt::print("{}", chordSheet(*file->song(), options.transpose));
}

void removeSong(const std::string& uuid) {
    OpenLibrary library;
    SongDBFileEntry* file = theSongDB.findEntryByUUID(uuid);
    if (!file) fail("no song in the library has the uuid " + uuid);
    const String title = listedTitle(*file);
    const String path = file->path();
    theSongDB.removeEntry(file, true);
    fmt::print("Removed \"{}\" ({})\n", title, path);
}

}  // namespace

void openSongLibrary() {
    theSongDB.setDatabaseFolder(
        dataSubfolder("Song Database", [] { return theAppConfig.getSongDatabaseDir(); }));
    if (!dataOption().empty() && !createFolders(theSongDB.songFilesFolder()))
        fail("cannot create the song library in " + theSongDB.databaseFolder());
    theSongDB.open();
}

OpenLibrary::OpenLibrary() {
    openSongLibrary();
}

OpenLibrary::~OpenLibrary() {
    theSongDB.close();
}

String listedTitle(const Song& song) {
    String title = strip(song.info().title());
    return title.empty() ? SongDBFileEntry::firstLineOf(song) : title;
}

String listedTitle(const SongDBFileEntry& file) {
    if (!file.title().empty()) return file.title();
    for (const SongDBTextEntry* text : file.iterator()) {
        if (text->type() != SongDBTextEntry::IndexEntry) return text->text();
    }
    return baseNameOf(file.filename());
}

void addLibraryCommands(CLI::App& app) {
    CLI::App* library =
        app.add_subcommand("library", "Import, list, search and show library songs");
    library->require_subcommand(1);
    library->fallthrough();

    auto import = std::make_shared<ImportOptions>();
    CLI::App* importCommand = library->add_subcommand(
        "import",
        "Copy song files (.song, .sng, .xml, .txt, OpenSong) or whole folders into the library. "
        "A song whose uuid is in the library is skipped, and so is any other song when the "
        "library has one of the same title and the same lyrics, so importing the same files "
        "again adds nothing.");
    importCommand->add_option("PATH", import->paths, "song files or folders")->required();
    importCommand->callback([import] { importSongs(*import); });

    library->add_subcommand("list", "List every song: title, key, author and uuid")
        ->callback(listSongs);

    auto query = std::make_shared<std::string>();
    CLI::App* searchCommand = library->add_subcommand(
        "search",
        "Find songs whose title, first line or index entries hold TEXT (ignoring case "
        "and punctuation)");
    searchCommand->add_option("TEXT", *query, "the words to look for")->required();
    searchCommand->callback([query] { searchSongs(*query); });

    auto show = std::make_shared<ShowOptions>();
    CLI::App* showCommand =
        library->add_subcommand("show", "Print a library song with its chords above the lyrics");
    showCommand->add_option("ID-OR-TITLE", show->song, "the song's uuid, or its title")->required();
    showCommand->add_option("-t,--transpose", show->transpose, "semitones to move chords and key")
        ->check(CLI::Range(-12, 12));
    showCommand->callback([show] { showSong(*show); });

    auto remove = std::make_shared<std::string>();
    CLI::App* removeCommand = library->add_subcommand(
        "remove", "Take a song out of the library and delete the library's copy of it");
    removeCommand->add_option("ID", *remove, "the song's uuid")->required();
    removeCommand->callback([remove] { removeSong(*remove); });
}

}  // namespace melodex::cli
