#include "song_commands.h"

#include <cstdio>
#include <memory>
#include <string>

#include <fmt/core.h>
#include <CLI/CLI.hpp>

#include "melodex/foundation/file_system.h"
#include "melodex/foundation/status.h"
#include "melodex/song/chord_sheet.h"
#include "melodex/song/song.h"

namespace melodex::cli {

namespace {

struct ShowOptions {
    std::string file;
    int transpose = 0;
};

struct ConvertOptions {
    std::string input;
    std::string output;
    std::string type;  // "song", "txt", "sng"; empty: from the output's extension
};

[[noreturn]] void fail(const std::string& what, const std::string& path, Status status) {
    fmt::print(stderr, "melodex: cannot {} {}: {}\n", what, path, statusMessage(status));
    throw CLI::RuntimeError(1);
}

// The type named on the command line, else the one the output's extension
// names, else the native song file.
int fileTypeFor(const ConvertOptions& options) {
    const String type = options.type.empty() ? extensionOf(options.output) : "." + options.type;
    for (int fileType : {SongFileType::Song, SongFileType::Text, SongFileType::Sng}) {
        if (equalsIgnoreCase(type, Song::getFileExtension(fileType))) return fileType;
    }
    return SongFileType::Song;
}

void showSong(const ShowOptions& options) {
    Song song;
    if (const Status status = song.loadFromFile(options.file); status != StatusSuccess)
        fail("read", options.file, status);
    fmt::print("{}", chordSheet(song, options.transpose));
}

void convertSong(const ConvertOptions& options) {
    Song song;
    if (const Status status = song.loadFromFile(options.input); status != StatusSuccess)
        fail("read", options.input, status);
    if (const Status status = song.saveToFile(options.output, fileTypeFor(options));
        status != StatusSuccess) {
        fail("write", options.output, status);
    }
}

}  // namespace

void addSongCommands(CLI::App& app) {
    CLI::App* song = app.add_subcommand("song", "Show and convert song files");
    song->require_subcommand(1);

    auto show = std::make_shared<ShowOptions>();
    CLI::App* showCommand =
        song->add_subcommand("show", "Print a song with its chords above the lyrics");
    showCommand->add_option("FILE", show->file, "a song file (.song, .sng, .txt, OpenSong)")
        ->required();
    showCommand->add_option("-t,--transpose", show->transpose, "semitones to move chords and key")
        ->check(CLI::Range(-12, 12));
    showCommand->callback([show] { showSong(*show); });

    auto convert = std::make_shared<ConvertOptions>();
    CLI::App* convertCommand =
        song->add_subcommand("convert", "Read any song file and write it as song, txt or sng");
    convertCommand->add_option("IN", convert->input, "the song file to read")->required();
    convertCommand->add_option("OUT", convert->output, "the file to write")->required();
    convertCommand
        ->add_option("--type", convert->type,
                     "song, txt or sng (default: from OUT's extension, else song)")
        ->check(CLI::IsMember({"song", "txt", "sng"}, CLI::ignore_case));
    convertCommand->callback([convert] { convertSong(*convert); });
}

}  // namespace melodex::cli
