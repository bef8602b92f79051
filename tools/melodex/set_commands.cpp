#include "set_commands.h"

#include <memory>
#include <string>

#include <fmt/core.h>
#include <CLI/CLI.hpp>

#include "library_commands.h"
#include "melodex/foundation/file_system.h"
#include "melodex/foundation/status.h"
#include "melodex/library/song_set.h"
#include "melodex/song/chord_sheet.h"
#include "melodex/song/song.h"

namespace melodex::cli {

namespace {

struct ShowOptions {
    std::string file;
    bool chords = false;
};

String signedNumber(int value) {
    return value > 0 ? "+" + std::to_string(value) : std::to_string(value);
}

// Where the entry's song comes from and what this use changes.
String describe(const SongSetEntry& entry) {
    StringArray notes;
    if (entry.dbflag()) {
        notes.push_back("library");
    } else if (!entry.song()->filename().empty()) {
        notes.push_back("file " + entry.song()->filename());
    } else {
        notes.push_back("embedded");
    }
    notes.push_back("key " + entry.song()->info().keyName(entry.transpose()));
    if (entry.transpose() != 0) notes.push_back("transpose " + signedNumber(entry.transpose()));
    if (entry.capo() != 0) notes.push_back("capo " + std::to_string(entry.capo()));
    if (entry.tempo() != 0) notes.push_back("tempo " + std::to_string(entry.tempo()));
    if (!entry.sequence().empty()) notes.push_back("order " + entry.sequence());
    return join(notes, ", ");
}

void showSet(const ShowOptions& options) {
    OpenLibrary library;

    SongSet set;
    if (const Status status = set.loadFromFile(options.file); status != StatusSuccess) {
        fmt::print(stderr, "melodex: cannot read the song set {}: {}\n", options.file,
                   status == StatusFailed ? String("no <songset> element") : statusMessage(status));
        throw CLI::RuntimeError(1);
    }
    fmt::print("{}: {} item{}\n", fileNameOf(options.file), set.size(), set.size() == 1 ? "" : "s");
    for (int i = 0; i < set.size(); ++i) {
        const SongSetEntry& entry = set.entry(i);
        switch (entry.type()) {
            case SongSetEntry::Gap:
                fmt::print("{:2}. (gap)\n", i + 1);
                continue;
            case SongSetEntry::Line:
                fmt::print("{:2}. ----------\n", i + 1);
                continue;
            default:
                break;
        }
        if (!entry.song()) continue;
        fmt::print("{:2}. {}  ({})\n", i + 1, listedTitle(*entry.song()), describe(entry));
        if (options.chords) fmt::print("\n{}\n", chordSheet(*entry.song(), entry.transpose()));
    }
}

}  // namespace

void addSetCommands(CLI::App& app) {
    CLI::App* setGroup = app.add_subcommand("set", "Show song sets (running orders)");
    setGroup->require_subcommand(1);
    setGroup->fallthrough();

    auto show = std::make_shared<ShowOptions>();
    CLI::App* showCommand = setGroup->add_subcommand(
        "show", "List a song set: its songs with their key and changes, gaps and lines");
    showCommand->add_option("FILE", show->file, "a song set file")->required();
    showCommand->add_flag("-c,--chords", show->chords,
                          "print each song with its chords, transposed as the set says");
    showCommand->callback([show] { showSet(*show); });
}

}  // namespace melodex::cli
