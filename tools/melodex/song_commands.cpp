#include "song_commands.h"

#include <memory>
#include <string>

#include <fmt/core.h>
#include <CLI/CLI.hpp>

#include "chord_options.h"
#include "command_line.h"
#include "melodex/foundation/file_system.h"
#include "melodex/foundation/xml.h"
#include "melodex/library/song_db_file_entry.h"
#include "melodex/song/chord_sheet.h"
#include "melodex/song/song.h"
#include "melodex/song/song_conversion.h"
#include "melodex/ui/song_layout.h"
#include "render_output.h"

namespace melodex::cli {

namespace {

struct ShowOptions {
    std::string file;
    int transpose = 0;
    ChordOptions chords;
};

struct RenderOptions {
    std::string file;
    int transpose = 0;
    ChordOptions chords;
    RenderOutput output;
};

struct ConvertOptions {
    std::string input;
    std::string output;
    std::string type;  // "song", "txt", "sng"; empty: from the output's extension
};

}  // namespace

Song readSong(const std::string& path) {
    const std::string bytes = readInput(path);
    const String name = isStandardStream(path) ? String("standard input") : String(path);
    Song song;
    (void)song.loadFromText(bytes);
    // A file that says it is XML but does not parse (cut short, damaged)
    // would read as plain text: its markup shown as the words of a song.
    if (song.loadedFileType() == SongFileType::Text &&
        strip(bytes.substr(0, 64), "\xEF\xBB\xBF \t\r\n", StripSide::Start).starts_with("<?xml")) {
        XmlFile xml;
        fail(name + " is damaged XML: " + statusMessage(xml.loadFromString(bytes)));
    }
    // Text that is no song (binary data, XML of another kind) would read as
    // lines of noise or as nothing.
    if (!SongDBFileEntry::isSong(song)) fail(name + " holds no song");
    if (!isStandardStream(path)) song.filename(path);
    return song;
}

namespace {

// The type named on the command line, else the one the output's extension
// names; the song layout for a name without extension (and for "-").
int fileTypeFor(const ConvertOptions& options) {
    if (!options.type.empty()) {
        for (int type : {SongFileType::Song, SongFileType::Text, SongFileType::Sng}) {
            if (equalsIgnoreCase("." + options.type, Song::getFileExtension(type))) return type;
        }
    }
    if (const int type = songFileTypeForPath(options.output)) return type;
    const String extension = isStandardStream(options.output) ? "" : extensionOf(options.output);
    if (extension.empty()) return SongFileType::Song;
    failUsage("\"" + extension +
              "\" is no song file extension (.song, .xml, .txt, .sng); give --type song, txt or "
              "sng to write " +
              options.output + " all the same");
}

String typeName(int fileType) {
    switch (fileType) {
        case SongFileType::Text:
            return "plain text";
        case SongFileType::Sng:
            return "an .sng file";
        default:
            return "a song file";
    }
}

// "a, b and c"
String listed(const StringArray& items) {
    String out;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i > 0) out += i + 1 == items.size() ? " and " : ", ";
        out += items[i];
    }
    return out;
}

void showSong(const ShowOptions& options) {
    const Song song = readSong(options.file);
    fmt::print("{}", chordSheet(song, chordSheetOptions(song, options.chords, options.transpose)));
}

void renderSong(const RenderOptions& options) {
    Song song = readSong(options.file);
    // A song without a title is headed by its file's name.
    if (!isStandardStream(options.file)) song.filename(options.file);
    SongDisplayProfile& profile = chosenProfile(options.chords, options.output.targets());
    ChordDisplayOptions display;
    display.transpose = options.transpose;
    display.capoFret = options.chords.capo;
    SongLayout layout(profile);
    layout.addSong(song, display);
    const String title = !strip(song.info().title()).empty() || isStandardStream(options.file)
                             ? SongDBFileEntry::listedTitle(song)
                             : baseNameOf(options.file);
    renderPages(options.output, title, "\"" + title + "\"", [&layout](DrawContext& dc) {
        layout.layOut(dc);
        return layout.draw(dc);
    });
}

void convertSong(const ConvertOptions& options) {
    const int type = fileTypeFor(options);
    Song song = readSong(options.input);
    const StringArray lost = dataLostBySaving(song, type);
    if (!lost.empty()) {
        const String where = isStandardStream(options.output) ? "standard output" : options.output;
        warn(where + " is " + typeName(type) + ", which drops " + listed(lost));
    }
    writeOutput(options.output, song.saveToBytes(type));
}

}  // namespace

void addSongCommands(CLI::App& app) {
    CLI::App* song = app.add_subcommand("song", "Show, render and convert song files");
    song->require_subcommand(1);

    auto show = std::make_shared<ShowOptions>();
    CLI::App* showCommand =
        song->add_subcommand("show", "Print a song with its chords above the lyrics");
    showCommand
        ->add_option("FILE", show->file,
                     "a song file (.song, .sng, .txt, OpenSong ...), or - for standard input")
        ->required();
    showCommand->add_option("-t,--transpose", show->transpose, "semitones to move chords and key")
        ->check(CLI::Range(-12, 12));
    addProfileOption(*showCommand, show->chords);
    addCapoOption(*showCommand, show->chords);
    showCommand->callback([show] { showSong(*show); });

    auto render = std::make_shared<RenderOptions>();
    CLI::App* renderCommand = song->add_subcommand(
        "render",
        "Lay a song out on pages as a display profile says (header, sections in the song's "
        "running order in their styles, chords over their letters, columns, copyright, page "
        "numbers) and write it as a PDF or as a PNG of its first page");
    renderCommand
        ->add_option("FILE", render->file,
                     "a song file (.song, .sng, .txt, OpenSong ...), or - for standard input")
        ->required();
    renderCommand
        ->add_option("-t,--transpose", render->transpose, "semitones to move chords and key")
        ->check(CLI::Range(-12, 12));
    addProfileOption(*renderCommand, render->chords);
    addCapoOption(*renderCommand, render->chords);
    addRenderOutputOptions(*renderCommand, render->output);
    renderCommand->callback([render] { renderSong(*render); });

    auto convert = std::make_shared<ConvertOptions>();
    CLI::App* convertCommand =
        song->add_subcommand("convert", "Read any song file and write it as song, txt or sng");
    convertCommand
        ->add_option("IN", convert->input, "the song file to read, or - for standard input")
        ->required();
    convertCommand
        ->add_option("OUT", convert->output, "the file to write, or - for standard output")
        ->required();
    convertCommand
        ->add_option("--type", convert->type,
                     "song, txt or sng (default: from OUT's extension: .song and .xml song, .txt, "
                     ".sng; song for none)")
        ->check(CLI::IsMember({"song", "txt", "sng"}, CLI::ignore_case));
    convertCommand->callback([convert] { convertSong(*convert); });
}

}  // namespace melodex::cli
