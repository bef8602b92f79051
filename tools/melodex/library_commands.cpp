#include "library_commands.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <fmt/core.h>
#include <CLI/CLI.hpp>

#include "chord_options.h"
#include "command_line.h"
#include "melodex/app/song_config.h"
#include "melodex/foundation/file_system.h"
#include "melodex/library/song_database.h"
#include "melodex/library/song_import.h"
#include "melodex/library/song_search.h"
#include "melodex/song/chord_sheet.h"
#include "melodex/song/song.h"

namespace melodex::cli {

namespace {

// The widest listing that fits a terminal of 80 columns without wrapping.
constexpr std::size_t ListingWidth = 79;
// How much of a uuid the listing shows; show and remove take it.
constexpr std::size_t ShortIdLength = 8;

String padRight(const String& text, std::size_t width) {
    const std::size_t length = codePointLength(text);
    return length >= width ? text : text + String(width - length, ' ');
}

// The text cut to `width` characters, with "..." where it was cut.
String fitTo(const String& text, std::size_t width) {
    if (codePointLength(text) <= width) return text;
    if (width <= 3) return codePointSubstring(text, 0, width);
    return codePointSubstring(text, 0, width - 3) + "...";
}

Json songJson(const SongDBFileEntry& file) {
    Json json;
    json["uuid"] = file.uuid();
    json["title"] = file.listedTitle();
    json["key"] = file.key();
    json["author"] = file.author();
    json["tempo"] = file.tempo();
    json["file"] = file.filename();
    json["categories"] = file.categories();
    return json;
}

// --- import ------------------------------------------------------------------------

struct ImportOptions {
    std::vector<std::string> paths;
    bool verbose = false;
};

// A song read from standard input has no path.
String shownPath(const SongImport::Skipped& skipped) {
    return skipped.path.empty() ? String("standard input") : skipped.path;
}

void printSkipped(const SongImport::Skipped& skipped) {
    fmt::print(stderr, "  {}: {}\n", shownPath(skipped), skipped.describe());
}

void importSongs(const ImportOptions& options) {
    OpenLibrary library(LibraryAccess::Write);
    SongImport songImport(theSongDB);
    // Progress only where someone watches it, on one line rewritten in place.
    const bool terminal = ::isatty(::fileno(stderr)) != 0;
    if (terminal) {
        songImport.setProgress([](int number, int total, const String& path) {
            fmt::print(stderr, "\rImporting {}/{}: {}\x1b[K", number, total,
                       fitTo(fileNameOf(path), 50));
        });
    }
    StringArray paths;
    for (const std::string& path : options.paths) {
        // "-": one song from standard input, plain text too; with no file
        // name to go by, it is listed under its first line.
        if (isStandardStream(path)) {
            songImport.addText({}, readInput(path));
        } else {
            paths.push_back(path);
        }
    }
    const SongImport::Report report = songImport.run(paths);
    if (terminal && report.found > 0) fmt::print(stderr, "\r\x1b[K");

    for (const SongImport::Skipped& failed : report.failed)
        fmt::print(stderr, "melodex: {}: {}\n", shownPath(failed), failed.describe());
    if (report.indexError) fmt::print(stderr, "melodex: {}\n", report.indexError.message());
    if (options.verbose) {
        if (!report.already.empty()) fmt::print(stderr, "Already in the library:\n");
        for (const SongImport::Skipped& skipped : report.already)
            printSkipped(skipped);
        if (!report.skipped.empty()) fmt::print(stderr, "Not song files:\n");
        for (const SongImport::Skipped& skipped : report.skipped)
            printSkipped(skipped);
    }

    const std::size_t imported = report.imported.size();
    String summary = fmt::format("Imported {} song{}; {} already in the library", imported,
                                 imported == 1 ? "" : "s", report.already.size());
    if (!report.skipped.empty()) {
        summary += fmt::format("; {} other file{} skipped{}", report.skipped.size(),
                               report.skipped.size() == 1 ? "" : "s",
                               options.verbose ? "" : " (--verbose lists them)");
    }
    if (!report.failed.empty()) summary += fmt::format("; {} failed", report.failed.size());
    fmt::print("{}\n", summary);
    if (report.hasFailures()) throw CLI::RuntimeError(ExitFailed);
}  // namespace

// --- list, search, show, remove ------------------------------------------------------

struct ListOptions {
    bool json = false;
};

void listSongs(const ListOptions& options) {
    OpenLibrary library(LibraryAccess::Read);
    std::vector<SongDBFileEntry*> files(theSongDB.files().begin(), theSongDB.files().end());
    std::vector<String> titles;
    std::stable_sort(files.begin(), files.end(), [](SongDBFileEntry* a, SongDBFileEntry* b) {
        return compareIgnoreCase(a->listedTitle(), b->listedTitle()) < 0;
    });
    if (options.json) {
        Json songs = Json::array();
        for (SongDBFileEntry* file : files)
            songs.push_back(songJson(*file));
        printJson(songs);
        return;
    }

    // Songs are shown by the start of their uuid, which show and remove take
    // as well as the whole: whole uuids would leave too little of 80
    // columns for titles. Title, key and author share the rest; the title
    // gets the most.
    std::size_t keyWidth = 3, authorWidth = 6, titleWidth = 5;
    for (SongDBFileEntry* file : files) {
        keyWidth = std::max(keyWidth, codePointLength(file->key()));
        authorWidth = std::max(authorWidth, codePointLength(file->author()));
        titleWidth = std::max(titleWidth, codePointLength(file->listedTitle()));
    }
    keyWidth = std::min<std::size_t>(keyWidth, 5);
    const std::size_t room = ListingWidth - ShortIdLength - keyWidth - 6;
    authorWidth = std::min(authorWidth, std::max(room / 3, room - std::min(titleWidth, room)));
    titleWidth = std::min(titleWidth, room - authorWidth);
    auto print = [&](const String& title, const String& key, const String& author,
                     const String& id) {
        const String line = padRight(fitTo(title, titleWidth), titleWidth) + "  " +
                            padRight(fitTo(key, keyWidth), keyWidth) + "  " +
                            padRight(fitTo(author, authorWidth), authorWidth) + "  " + id;
        fmt::print("{}\n", strip(line, " ", StripSide::End));
    };
    print("TITLE", "KEY", "AUTHOR", "ID");
    for (SongDBFileEntry* file : files)
        print(file->listedTitle(), file->key(), file->author(),
              file->uuid().substr(0, ShortIdLength));
    fmt::print("{} song{} in {}\n", files.size(), files.size() == 1 ? "" : "s",
               theSongDB.songFilesFolder());
}

struct SearchOptions {
    std::string text;
    bool json = false;
};

void searchSongs(const SearchOptions& options) {
    if (SongSearch::searchKey(options.text).empty())
        failUsage("search for letters or digits, not only punctuation");
    OpenLibrary library(LibraryAccess::Read);
    SongSearch search(theSongDB);
    const std::vector<SongSearch::Hit> hits = search.search(options.text);
    if (options.json) {
        Json songs = Json::array();
        for (const SongSearch::Hit& hit : hits) {
            Json song;
            song["uuid"] = hit.uuid;
            song["title"] = hit.title;
            song["field"] = SongSearch::fieldName(hit.field);
            song["text"] = hit.text;
            songs.push_back(std::move(song));
        }
        printJson(songs);
    }
    if (hits.empty()) {
        if (!options.json) fmt::print(stderr, "No song holds \"{}\"\n", options.text);
        throw CLI::RuntimeError(ExitFailed);
    }
    if (options.json) return;
    // Title, where it was found and the start of the uuid, in 80 columns.
    for (const SongSearch::Hit& hit : hits) {
        String where = SongSearch::fieldName(hit.field);
        if (hit.field != SongSearch::Field::Title) where += ": " + String(hit.text);
        const String id(hit.uuid.substr(0, ShortIdLength));
        const std::size_t room = ListingWidth - ShortIdLength - 6;
        const String title = fitTo(String(hit.title), std::min<std::size_t>(40, room / 2));
        fmt::print("{}  [{}]  {}\n", title, fitTo(where, room - codePointLength(title)), id);
    }
}

// The one song that `word` names (songsNamed for a title or a uuid,
// songsWithUuid where only a uuid will do); fails when none or several are.
SongDBFileEntry* theSongNamed(const std::string& word, bool uuidOnly) {
    const std::vector<SongDBFileEntry*> found =
        uuidOnly ? songsWithUuid(theSongDB, word) : songsNamed(theSongDB, word);
    if (found.size() == 1) return found.front();
    if (found.empty()) {
        fail(uuidOnly ? "no song in the library has the uuid " + word
                      : "no song in the library has the uuid or title \"" + word + "\"");
    }
    std::string message = "several songs answer to \"" + word + "\"; give more of the uuid:";
    for (SongDBFileEntry* file : found)
        message += "\n  " + file->uuid() + "  " + file->listedTitle();
    fail(message);
}

struct ShowOptions {
    std::string song;
    int transpose = 0;
    ChordOptions chords;
};

void showSong(const ShowOptions& options) {
    OpenLibrary library(LibraryAccess::Read);
    SongDBFileEntry* file = theSongNamed(options.song, false);
    const Song& song = *file->song();
    fmt::print("{}", chordSheet(song, chordSheetOptions(song, options.chords, options.transpose)));
}

void removeSong(const std::string& uuid) {
    OpenLibrary library(LibraryAccess::Write);
    SongDBFileEntry* file = theSongNamed(uuid, true);
    const String title = file->listedTitle();
    const String path = file->path();
    theSongDB.removeEntry(file, true);
    if (const FileError& error = theSongDB.lastError()) fail(error);
    fmt::print("Removed \"{}\" ({})\n", title, path);
}

}  // namespace

void openSongLibrary(LibraryAccess access) {
    const String folder =
        dataSubfolder("Song Database", [] { return theAppConfig.getSongDatabaseDir(); });
    const bool readOnly = access == LibraryAccess::Read;
    // Looking never creates anything: a library that is not there is an
    // error, not an empty library made on the spot.
    if (readOnly && !folderExists(folder))
        fail("no library at " + (dataOption().empty() ? folder : dataOption()));
    theSongDB.setDatabaseFolder(folder);
    theSongDB.setReadOnly(readOnly);
    theSongDB.setLockWaitNotice([](const String& lockPath) {
        fmt::print(stderr,
                   "melodex: waiting for another program to finish changing the library "
                   "({})\n",
                   lockPath);
    });
    theSongDB.open();
    if (const FileError error = theSongDB.lastError()) {
        // A library that cannot be read, or locked for a change, is not
        // worked on half-way.
        theSongDB.close();
        fail(error);
    }
}

OpenLibrary::OpenLibrary(LibraryAccess access) {
    openSongLibrary(access);
}

OpenLibrary::~OpenLibrary() {
    theSongDB.close();
}

String listedTitle(const Song& song) {
    return SongDBFileEntry::listedTitle(song);
}

String listedTitle(const SongDBFileEntry& file) {
    return file.listedTitle();
}

void addLibraryCommands(CLI::App& app) {
    CLI::App* library =
        app.add_subcommand("library", "Import, list, search and show library songs");
    library->require_subcommand(1);
    library->fallthrough();

    auto import = std::make_shared<ImportOptions>();
    CLI::App* importCommand = library->add_subcommand(
        "import",
        "Copy song files or whole folders into the library. Song files are recognised by what "
        "they hold (song XML of any kind, OpenSong files without an extension) and by the "
        ".txt extension for plain-text songs, which take their file name as title. A song "
        "whose uuid is in the library is skipped, and so is one with the title and lyrics of "
        "a library song, so importing the same files again adds nothing.");
    importCommand
        ->add_option("PATH", import->paths, "song files or folders; - for a song on standard input")
        ->required();
    importCommand->add_flag("-v,--verbose", import->verbose,
                            "list every file that was skipped, and why");
    importCommand->callback([import] { importSongs(*import); });

    auto list = std::make_shared<ListOptions>();
    CLI::App* listCommand = library->add_subcommand(
        "list", "List every song: title, key, author and the start of its uuid");
    listCommand->add_flag("--json", list->json, "print the songs as JSON, for scripts");
    listCommand->callback([list] { listSongs(*list); });

    auto search = std::make_shared<SearchOptions>();
    CLI::App* searchCommand = library->add_subcommand(
        "search",
        "Find songs whose title, first line, index entries, author or lyrics hold TEXT, "
        "ignoring case, accents, punctuation and typographic quotes (\"pow'r\" finds "
        "\"pow’r\"); each song once, best matches first. Exits with 1 when nothing is "
        "found.");
    searchCommand->add_option("TEXT", search->text, "the words to look for")->required();
    searchCommand->add_flag("--json", search->json, "print the songs found as JSON");
    searchCommand->callback([search] { searchSongs(*search); });

    auto show = std::make_shared<ShowOptions>();
    CLI::App* showCommand =
        library->add_subcommand("show", "Print a library song with its chords above the lyrics");
    showCommand
        ->add_option("ID-OR-TITLE", show->song,
                     "the song's title (case, accents and punctuation aside), or its uuid or the "
                     "start of it as listed")
        ->required();
    showCommand->add_option("-t,--transpose", show->transpose, "semitones to move chords and key")
        ->check(CLI::Range(-12, 12));
    addProfileOption(*showCommand, show->chords);
    addCapoOption(*showCommand, show->chords);
    showCommand->callback([show] { showSong(*show); });

    auto remove = std::make_shared<std::string>();
    CLI::App* removeCommand = library->add_subcommand(
        "remove", "Take a song out of the library and delete the library's copy of it");
    removeCommand->add_option("ID", *remove, "the song's uuid, or its start as listed")->required();
    removeCommand->callback([remove] { removeSong(*remove); });
}

}  // namespace melodex::cli
