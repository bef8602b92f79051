#include "set_commands.h"

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <fmt/core.h>
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "chord_options.h"
#include "command_line.h"
#include "library_commands.h"
#include "melodex/foundation/file_system.h"
#include "melodex/foundation/status.h"
#include "melodex/library/song_set.h"
#include "melodex/song/chord_sheet.h"
#include "melodex/song/song.h"
#include "melodex/ui/song_set_printer.h"
#include "render_output.h"

namespace melodex::cli {

namespace {

using Unresolved = SongSet::UnresolvedEntry;

struct ShowOptions {
    std::string file;
    bool chords = false;
    bool json = false;
    ChordOptions profile;  // the profile only: each entry has its own capo
};

// One item of the set as the file gave it: an entry, or one the reader left out.
struct Item {
    const SongSetEntry* entry = nullptr;
    const Unresolved* missing = nullptr;
};

std::vector<Item> itemsOf(const SongSet& set) {
    std::vector<Item> items;
    const std::vector<Unresolved>& missing = set.unresolvedEntries();
    std::size_t next = 0;
    for (int i = 0; i <= set.size(); ++i) {
        for (; next < missing.size() && missing[next].position <= i; ++next)
            items.push_back({nullptr, &missing[next]});
        if (i < set.size()) items.push_back({&set.entry(i), nullptr});
    }
    return items;
}

// A song file's path as the listing shows it: below the set's folder
// relative to it, so that lines stay short.
String shownPath(const String& path, const SongSet& set) {
    const String folder = absolutePath(folderOf(set.filename()));
    const String relative = relativePath(path, folder);
    return relative.starts_with("../") ? path : relative;
}

String sourceOf(const SongSetEntry& entry) {
    if (entry.dbflag()) return "library";
    return entry.song()->filename().empty() ? "embedded" : "file";
}

// Where the entry's song comes from and what this use changes.
String describe(const SongSetEntry& entry, const SongSet& set) {
    StringArray notes;
    const String source = sourceOf(entry);
    notes.push_back(source == "file" ? "file " + shownPath(entry.song()->filename(), set) : source);
    notes.push_back("key " + entry.song()->info().keyName(entry.transpose()));
    if (entry.transpose() != 0) notes.push_back("transpose " + signedNumber(entry.transpose()));
    if (entry.capo() != 0) notes.push_back("capo " + std::to_string(entry.capo()));
    if (entry.tempo() != 0) notes.push_back("tempo " + std::to_string(entry.tempo()));
    if (!entry.sequence().empty()) notes.push_back("order " + entry.sequence());
    return join(notes, ", ");
}

const char* sourceWord(Unresolved::Source source) {
    switch (source) {
        case Unresolved::Source::Library:
            return "library";
        case Unresolved::Source::File:
            return "file";
        case Unresolved::Source::Embedded:
            return "embedded";
        case Unresolved::Source::None:
            break;
    }
    return "none";
}

// "library song gone-0001: not in the library", "the entry names no song"
String describe(const Unresolved& missing, const SongSet& set) {
    return missing.describe("file " + shownPath(missing.name, set));
}

// The song as a chord sheet in the entry's running order, with the entry's
// transposition, capo and local transposition, spelled under the profile.
String sheetOf(const SongSetEntry& entry, const ShowOptions& options) {
    const Song& song = *entry.song();
    return chordSheet(
        song, chordSheetOptions(chosenProfile(options.profile), song, entry.chordDisplayOptions()));
}

// How messages name a set file.
String setName(const std::string& file) {
    return isStandardStream(file) ? String("standard input") : fileNameOf(file);
}

void printListing(const SongSet& set, const std::vector<Item>& items, const ShowOptions& options) {
    const std::size_t missing = set.unresolvedEntries().size();
    fmt::print("{}: {} item{}{}\n", setName(options.file), items.size(),
               items.size() == 1 ? "" : "s",
               missing == 0 ? String() : ", " + std::to_string(missing) + " missing");
    for (std::size_t i = 0; i < items.size(); ++i) {
        const std::size_t number = i + 1;
        if (items[i].missing) {
            fmt::print("{:2}. (missing) {}\n", number, describe(*items[i].missing, set));
            continue;
        }
        const SongSetEntry& entry = *items[i].entry;
        switch (entry.type()) {
            case SongSetEntry::Gap:
                fmt::print("{:2}. (gap)\n", number);
                continue;
            case SongSetEntry::Line:
                fmt::print("{:2}. ----------\n", number);
                continue;
            default:
                break;
        }
        if (!entry.song()) continue;
        fmt::print("{:2}. {}  ({})\n", number, listedTitle(*entry.song()), describe(entry, set));
        if (options.chords) fmt::print("\n{}\n", sheetOf(entry, options));
    }
}

Json jsonOf(const SongSet& set, const std::vector<Item>& items, const ShowOptions& options) {
    Json list = Json::array();
    for (std::size_t i = 0; i < items.size(); ++i) {
        Json item;
        item["position"] = i + 1;
        if (items[i].missing) {
            const Unresolved& missing = *items[i].missing;
            item["type"] = "missing";
            item["source"] = sourceWord(missing.source);
            item["name"] = missing.name;
            item["reason"] = missing.reason;
            list.push_back(std::move(item));
            continue;
        }
        const SongSetEntry& entry = *items[i].entry;
        if (entry.type() == SongSetEntry::Gap || entry.type() == SongSetEntry::Line ||
            !entry.song()) {
            item["type"] = entry.type() == SongSetEntry::Gap ? "gap" : "line";
            list.push_back(std::move(item));
            continue;
        }
        const Song& song = *entry.song();
        item["type"] = "song";
        item["source"] = sourceOf(entry);
        item["uuid"] = song.uuid();
        item["path"] = song.filename();
        item["title"] = listedTitle(song);
        item["key"] = song.info().keyName(entry.transpose());
        item["transpose"] = entry.transpose();
        item["capo"] = entry.capo();
        item["tempo"] = entry.tempo();
        item["localTranspose"] = entry.localTranspose();
        item["sequence"] = entry.sequence();
        item["runningOrder"] = entry.getSequence();
        if (options.chords) item["chordSheet"] = sheetOf(entry, options);
        list.push_back(std::move(item));
    }
    Json out;
    out["file"] = options.file;
    out["items"] = std::move(list);
    out["missing"] = set.unresolvedEntries().size();
    return out;
}

// The set in the file, its library songs from the open library.
void loadSet(SongSet& set, const std::string& file) {
    const Status status =
        isStandardStream(file) ? set.loadFromText(readInput(file), file) : set.loadFromFile(file);
    if (status != StatusSuccess) {
        fail("cannot read the song set " +
             (isStandardStream(file) ? String("on standard input") : String(file)) + ": " +
             (status == StatusFailed ? String("no <songset> element") : statusMessage(status)));
    }
}

// After what the command printed: a warning for every entry whose song is
// missing, and status 1 when there is one.
void failOnMissing(const SongSet& set, const std::string& file) {
    if (set.unresolvedEntries().empty()) return;
    // The output first, then the warnings, in this order even when both
    // streams go to one file.
    std::fflush(stdout);
    const std::vector<Item> items = itemsOf(set);
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (items[i].missing)
            warn(setName(file) + ", item " + std::to_string(i + 1) + ": " +
                 describe(*items[i].missing, set));
    }
    throw CLI::RuntimeError(ExitFailed);
}

void showSet(const ShowOptions& options) {
    OpenLibrary library;
    SongSet set;
    loadSet(set, options.file);
    const std::vector<Item> items = itemsOf(set);
    if (options.json) {
        printJson(jsonOf(set, items, options));
    } else {
        printListing(set, items, options);
    }
    failOnMissing(set, options.file);
}

struct RenderOptions {
    std::string file;
    std::string title;
    ChordOptions profile;
    RenderOutput output;
};

// The running order and every song as its entry says; the songs whose entries
// are missing are left out (the running order lists them), and the command
// then fails as show does.
void renderSet(const RenderOptions& options) {
    OpenLibrary library;
    SongSet set;
    loadSet(set, options.file);
    SongDisplayProfile& profile = chosenProfile(options.profile, options.output.targets());
    SongSetPrintOptions print;
    print.title = options.title.empty()
                      ? (isStandardStream(options.file) ? String("Song set")
                                                        : baseNameOf(fileNameOf(options.file)))
                      : options.title;
    renderPages(options.output, print.title, "the set " + setName(options.file),
                [&](DrawContext& dc) { return printSongSet(dc, set, profile, print); });
    failOnMissing(set, options.file);
}

}  // namespace

void addSetCommands(CLI::App& app) {
    CLI::App* setGroup = app.add_subcommand("set", "Show and print song sets (running orders)");
    setGroup->require_subcommand(1);
    setGroup->fallthrough();

    auto show = std::make_shared<ShowOptions>();
    CLI::App* showCommand = setGroup->add_subcommand(
        "show", "List a song set: its songs with their key and changes, gaps and lines");
    showCommand->add_option("FILE", show->file, "a song set file")->required();
    showCommand->add_flag("-c,--chords", show->chords,
                          "print each song with its chords, in the running order and "
                          "transposed as the set says");
    showCommand->add_flag("--json", show->json, "print the set as one JSON object");
    addProfileOption(*showCommand, show->profile);

    auto render = std::make_shared<RenderOptions>();
    CLI::App* renderCommand = setGroup->add_subcommand(
        "render",
        "Print a song set: a first page with the running order as a table, then every song "
        "laid out under a display profile with its entry's transposition, capo and running "
        "order, gaps as space and lines as separator lines; as a PDF, or a PNG of the first "
        "page");
    renderCommand->add_option("FILE", render->file, "a song set file")->required();
    renderCommand->add_option("--title", render->title,
                              "the running order's heading (default: the set's file name)");
    addProfileOption(*renderCommand, render->profile);
    addRenderOutputOptions(*renderCommand, render->output);
    renderCommand->callback([render] { renderSet(*render); });
    showCommand->callback([show] { showSet(*show); });
}

}  // namespace melodex::cli
