#include "profile_commands.h"

#include "command_line.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <fmt/core.h>
#include <CLI/CLI.hpp>

#include "melodex/app/song_config.h"
#include "melodex/display/song_display_profile.h"
#include "melodex/foundation/color_names.h"
#include "melodex/foundation/file_system.h"
#include "melodex/foundation/value.h"
#include "melodex/song/vocabulary.h"

namespace melodex::cli {

namespace {

bool& profilesLoaded() {
    static bool loaded = false;
    return loaded;
}

String padRight(const String& text, std::size_t width) {
    const std::size_t length = codePointLength(text);
    return length >= width ? text : text + String(width - length, ' ');
}

// A table printed with each column as wide as its widest cell.
void printTable(const std::vector<StringArray>& rows) {
    std::vector<std::size_t> widths;
    for (const StringArray& row : rows) {
        widths.resize(std::max(widths.size(), row.size()), 0);
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], codePointLength(row[i]));
    }
    for (const StringArray& row : rows) {
        String line;
        for (std::size_t i = 0; i < row.size(); ++i)
            line += i + 1 < row.size() ? padRight(row[i], widths[i]) + "  " : row[i];
        fmt::print("{}\n", strip(line, " ", StripSide::End));
    }
}

String number(double value) {
    return Value(value).toString();
}

// --- list ----------------------------------------------------------------------------

void listProfiles() {
    loadProfiles();
    std::vector<StringArray> rows{{"NAME", "TITLE", "TARGETS", "FILE"}};
    for (int i = 0; i < SongDisplayProfile::getProfileCount(); ++i) {
        const SongDisplayProfile& profile = *SongDisplayProfile::getProfile(i);
        rows.push_back(
            {profile.name(), profile.title(), SongDisplayProfile::targetsToString(profile.type()),
             profile.filename().empty() ? String("(not saved)") : fileNameOf(profile.filename())});
    }
    printTable(rows);
    const int count = SongDisplayProfile::getProfileCount();
    fmt::print("{} profile{} in {}\n", count, count == 1 ? "" : "s",
               SongDisplayProfile::profileFolder());
}

// --- show ----------------------------------------------------------------------------

struct ProfileOptions {
    std::string name;
    std::string type;
    std::string file;
};

int typeMaskOf(const std::string& text) {
    if (text.empty()) return 0;
    const std::optional<int> mask = SongDisplayProfile::targetsFromString(text);
    if (!mask) {
        failUsage(
            "--type takes a number or target words (screen, print, projection, "
            "beamwrightfollower, editor, viewer), not \"" +
            text + "\"");
    }
    return *mask;
}

String styleWords(int fontStyle) {
    StringArray words;
    if (fontStyle & SongTextStyle::Bold) words.push_back("bold");
    if (fontStyle & SongTextStyle::Italic) words.push_back("italic");
    return words.empty() ? String("-") : join(words, " ");
}

void showProfile(const ProfileOptions& options) {
    const SongDisplayProfile& profile = profileNamed(options.name, typeMaskOf(options.type));

    const auto field = [](std::string_view label, const String& value) {
        fmt::print("{}{}\n", padRight(String(label) + ":", 15), value);
    };
    field("Name", profile.name());
    field("Title", profile.title());
    field("Targets", SongDisplayProfile::targetsToString(profile.type()) + " (" +
                         std::to_string(profile.type()) + ")");
    field("File", profile.filename().empty() ? String("(not saved)") : profile.filename());
    const StringArray flags = SongDisplayProfile::flagNames(profile.flags());
    field("Flags",
          fmt::format("0x{:X}{}{}", profile.flags(), flags.empty() ? "" : ": ", join(flags, ", ")));
    String columns = profile.multiColumns() ? "several" : "one";
    if (profile.variableColumnWidths()) columns += ", of variable widths";
    if (profile.columns() > 0) {
        columns += fmt::format(" ({} set, gap {}, width {})", profile.columns(),
                               profile.columnGap(), profile.columnWidth());
    }
    field("Columns", columns);
    field("Transpose", std::to_string(profile.transpose()));
    field("Page", getColorName(profile.pageBackgroundColor()));
    field("Highlight", getColorName(profile.highlightBackgroundColor()) + ", fading over " +
                           number(profile.highlightFadeTime()) + " s");
    StringArray lineColors;
    for (int singers = 0; singers < 10; ++singers) {
        lineColors.push_back(singerTypeToString(singers) + " " +
                             getColorName(profile.getLineColor(singers)));
    }
    field("Line colours", join(lineColors, ", "));

    fmt::print("\nText styles:\n");
    std::vector<StringArray> styles{
        {"KIND", "FONT", "SIZE", "MIN", "MAX", "STYLE", "INDENT", "COLOUR"}};
    for (int kind = 0; kind < StyleKind::Count; ++kind) {
        const SongTextStyle& style = profile.style(kind);
        styles.push_back({SongTextStyle::getStyleName(kind), style.FontName,
                          number(style.FontPtSize), number(style.FontMinPtSize),
                          number(style.FontMaxPtSize), styleWords(style.FontStyle),
                          std::to_string(style.Indent), getColorName(style.FontColor)});
    }
    printTable(styles);

    fmt::print("\nKeys (how each note is spelled in the key):\n");
    std::vector<StringArray> keys{{"KEY", "NAME", "CAPO", "LOCAL", "SPELLING OF C TO B"}};
    for (int key = 0; key < 12; ++key) {
        StringArray spelling;
        for (int note = 0; note < 12; ++note)
            spelling.push_back(padRight(profile.getNoteName(key, note, 0), 2));
        keys.push_back({std::to_string(key), profile.getKeyName(key),
                        std::to_string(profile.defaultCapoPosition(key)),
                        std::to_string(profile.defaultLocalTranspose(key)), join(spelling, " ")});
    }
    printTable(keys);
}

// --- export --------------------------------------------------------------------------

void exportProfile(const ProfileOptions& options) {
    const SongDisplayProfile& profile = profileNamed(options.name, typeMaskOf(options.type));
    writeOutput(options.file, profile.saveToText());
}

}  // namespace

void loadProfiles(ProfileAccess access) {
    const String folder =
        dataSubfolder("Display Profiles", [] { return theAppConfig.getUserProfileDir(); });
    const bool readOnly = access == ProfileAccess::Read;
    Status why = StatusSuccess;
    if (!readOnly && !dataOption().empty() && !createFolders(folder, &why))
        fail(FileError{why, FileError::Action::CreateFolder, folder});
    SongDisplayProfile::setProfileListReadOnly(readOnly);
    SongDisplayProfile::setProfileFolder(readOnly && !folderExists(folder) ? String() : folder);
    SongDisplayProfile::loadProfileList();
    profilesLoaded() = true;
    if (const FileError& error = SongDisplayProfile::lastListError()) warn(error.message());
}

SongDisplayProfile& profileNamed(const std::string& name, int typeMask) {
    if (!profilesLoaded()) loadProfiles();
    if (SongDisplayProfile* profile = SongDisplayProfile::getProfileByName(name, typeMask))
        return *profile;
    if (typeMask != 0 && SongDisplayProfile::getProfileByName(name, 0)) {
        fail("the display profile \"" + name + "\" is not for " +
             SongDisplayProfile::targetsToString(typeMask) +
             "; \"melodex profile list\" shows "
             "every profile with its targets");
    }
    fail("no display profile is named \"" + name +
         "\" (names are matched exactly); "
         "\"melodex profile list\" shows them");
}

void addProfileCommands(CLI::App& app) {
    CLI::App* profile = app.add_subcommand(
        "profile", "List, show and export display profiles (how songs are laid out)");
    profile->require_subcommand(1);
    profile->fallthrough();

    profile
        ->add_subcommand("list",
                         "List every display profile: name, title, targets and file. The "
                         "first time, the built-in profiles are written into the folder.")
        ->callback(listProfiles);

    const auto addType = [](CLI::App* command, ProfileOptions& options) {
        command->add_option("--type", options.type,
                            "only a profile for these targets: a number (1 screen, 2 print, 4 "
                            "projection, 8 follower, 16 editor, 32 viewer) or the words, "
                            "e.g. print or screen,print");
    };

    auto show = std::make_shared<ProfileOptions>();
    CLI::App* showCommand = profile->add_subcommand(
        "show",
        "Print a display profile: targets, flags, columns, colours, text styles and "
        "how each key spells its notes");
    showCommand->add_option("NAME", show->name, "the profile's name, exactly")->required();
    addType(showCommand, *show);
    showCommand->callback([show] { showProfile(*show); });

    auto exported = std::make_shared<ProfileOptions>();
    CLI::App* exportCommand =
        profile->add_subcommand("export", "Write a display profile as an .sdp file");
    exportCommand->add_option("NAME", exported->name, "the profile's name, exactly")->required();
    exportCommand->add_option("FILE", exported->file, "the file to write; - for standard output")
        ->required();
    addType(exportCommand, *exported);
    exportCommand->callback([exported] { exportProfile(*exported); });
}

}  // namespace melodex::cli
