#include "display_commands.h"

#include <memory>
#include <string>

#include <fmt/core.h>
#include <CLI/CLI.hpp>

#include "command_line.h"
#include "melodex/foundation/status.h"
#include "melodex/song/song.h"
#include "melodex/ui/cached_image.h"
#include "melodex/ui/display_connection.h"
#include "melodex/ui/display_stage.h"
#include "melodex/ui/display_status.h"
#include "song_commands.h"

namespace melodex::cli {

namespace {

struct ServerOptions {
    std::string host = "127.0.0.1";
    int port = ProjectorClient::DefaultPort;
    std::string token;
    std::string screen;  // empty: the command's own default
};

struct ImageOptions {
    std::string file;
    bool background = false;
    std::string mode;
    int fadeMs = 0;
};

struct StageOptions {
    std::string song;
    std::string section;
    int transpose = 0;
};

[[noreturn]] void failRequest(const ProjectorClient& client, std::string_view what) {
    const ProjectorError error = client.lastError();
    fail(fmt::format("{}: {}", what, error.message.empty() ? error.code : error.message));
}

void connectTo(DisplayConnection& display, const ServerOptions& server) {
    display.setToken(server.token);
    if (!display.connect(server.host, server.port)) failRequest(display, "no display server");
}

DisplayScreen screenOption(const ServerOptions& server, DisplayScreen fallback) {
    if (server.screen.empty()) return fallback;
    DisplayScreen screen;
    if (!screenFromName(server.screen, screen)) failUsage("--screen must be main or stage");
    return screen;
}

String describeLayer(const DisplayLayerState& layer) {
    if (layer.path.empty()) return "none";
    String text = layer.path + " (" + imageModeName(layer.mode);
    if (layer.transition.type == DisplayTransition::Fade)
        text += ", fade " + std::to_string(layer.transition.durationMs) + " ms";
    return text + ")";
}

void showStatus(const ServerOptions& server) {
    DisplayConnection display;
    connectTo(display, server);
    String version;
    if (!display.getVersionInfo(version)) failRequest(display, "cannot ask for the version");
    DisplayStatus status;
    if (!display.getStatus(status)) failRequest(display, "cannot ask for the status");
    fmt::print("{} at {}:{}, change {}\n", version, server.host, server.port, status.seq);
    for (int i = 0; i < DisplayScreenCount; ++i) {
        const DisplayScreenState& screen = status.screens[std::size_t(i)];
        fmt::print(
            "\n{} screen: {} page{} showing it{}\n", screenName(DisplayScreen(i)), screen.viewers,
            screen.viewers == 1 ? "" : "s",
            screen.shownSeq > 0 ? fmt::format(", change {} on screen", screen.shownSeq) : String());
        fmt::print("  background  {}\n  foreground  {}\n  blank       {}\n",
                   describeLayer(screen.background), describeLayer(screen.foreground),
                   blankName(screen.blank));
        if (screen.hasStage) {
            const DisplayStage& stage = screen.stage;
            fmt::print("  stage       {} / {} ({} line{}, next {})\n",
                       stage.title.empty() ? "-" : stage.title,
                       stage.section.empty() ? "-" : stage.section, stage.current.size(),
                       stage.current.size() == 1 ? "" : "s", stage.next.size());
        }
    }
}

void showImage(const ServerOptions& server, const ImageOptions& options) {
    int mode = options.background ? ImageMode::Fill : ImageMode::Fit;
    if (!options.mode.empty() && !imageModeFromName(options.mode, mode))
        failUsage("--mode must be fill, fit, stretch or centre (or 0 to 3)");
    DisplayTransition fade = DisplayTransition::fade(options.fadeMs);
    DisplayTransition* transition = options.fadeMs > 0 ? &fade : nullptr;
    const DisplayScreen screen = screenOption(server, DisplayScreen::Main);
    DisplayConnection display;
    connectTo(display, server);
    CachedImage image(options.file);
    bool shown;
    if (screen == DisplayScreen::Main) {
        shown = options.background ? display.setBackgroundImage(&image, mode, transition)
                                   : display.setForegroundImage(&image, mode, transition);
    } else {
        shown = display.setImage(
            screen, options.background ? DisplayLayer::Background : DisplayLayer::Foreground,
            image.path(), mode, transition);
    }
    if (!shown) failRequest(display, "cannot show " + options.file);
}

void clearScreen(const ServerOptions& server, const std::string& layerWord) {
    DisplayLayer layer = DisplayLayer::Foreground;
    const bool all = layerWord == "all";
    if (!all && !layerFromName(layerWord, layer))
        failUsage("--layer must be foreground, background or all");
    const DisplayScreen screen = screenOption(server, DisplayScreen::Main);
    DisplayConnection display;
    connectTo(display, server);
    if (!display.clear(screen, all, layer)) failRequest(display, "cannot clear the screen");
}

void blankScreens(const ServerOptions& server, const std::string& modeWord) {
    DisplayBlank mode;
    if (!blankFromName(modeWord, mode)) failUsage("MODE must be none, black, white or background");
    const DisplayScreen screen = screenOption(server, DisplayScreen::Main);
    DisplayConnection display;
    connectTo(display, server);
    const bool done = server.screen.empty() ? display.blankAll(mode) : display.blank(screen, mode);
    if (!done) failRequest(display, "cannot blank the screen");
}

void showStage(const ServerOptions& server, const StageOptions& options) {
    if (options.transpose < -11 || options.transpose > 11)
        failUsage("--transpose must be from -11 to 11");
    const DisplayScreen screen = screenOption(server, DisplayScreen::Stage);
    const Song song = readSong(options.song);
    int index = 0;
    if (!options.section.empty()) {
        index = DisplayStage::findSection(song, options.section);
        if (index < 0) {
            StringArray ids;
            for (int i = 0; i < song.getSectionCount(); ++i)
                ids.push_back(song.getSection(i)->id());
            fail(fmt::format("{} has no section {} (it has {})", options.song, options.section,
                             ids.empty() ? String("none") : join(ids, ", ")));
        }
    } else if (song.getSectionCount() == 0) {
        fail(fmt::format("{} has no sections to show", options.song));
    }
    const DisplayStage stage = DisplayStage::fromSong(song, index, options.transpose);
    DisplayConnection display;
    connectTo(display, server);
    if (!display.setStage(stage, screen)) failRequest(display, "cannot show the stage text");
}

void shutdownServer(const ServerOptions& server) {
    DisplayConnection display;
    connectTo(display, server);
    if (!display.shutdown()) failRequest(display, "cannot stop the display server");
}

}  // namespace

void addDisplayCommands(CLI::App& app) {
    CLI::App* group =
        app.add_subcommand("display", "Drive a running display server (melodex-display)");
    group->require_subcommand(1);
    group->fallthrough();
    auto server = std::make_shared<ServerOptions>();
    group->add_option("--host", server->host, "the server's address (default 127.0.0.1)");
    group->add_option("--port", server->port, "the server's control port (default 7430)")
        ->check(CLI::Range(1, 65535));
    group->add_option("--token", server->token, "the token the server was started with");
    group->add_option("--screen", server->screen, "main or stage");

    CLI::App* status = group->add_subcommand("status", "Show what each screen shows");
    status->callback([server] { showStatus(*server); });

    auto image = std::make_shared<ImageOptions>();
    CLI::App* imageCommand =
        group->add_subcommand("image", "Show an image on the projection screen");
    imageCommand->add_option("FILE", image->file, "an image file (PNG, JPEG, GIF, WebP, BMP, SVG)")
        ->required();
    imageCommand->add_flag("-b,--background", image->background, "show it as the background");
    imageCommand->add_option("--mode", image->mode,
                             "fill, fit, stretch or centre (default fit, fill for the background)");
    imageCommand->add_option("--fade", image->fadeMs, "fade over this many milliseconds")
        ->check(CLI::Range(0, DisplayTransition::MaxDurationMs));
    imageCommand->callback([server, image] { showImage(*server, *image); });

    auto layer = std::make_shared<std::string>("all");
    CLI::App* clearCommand =
        group->add_subcommand("clear", "Remove images (and the stage text) from a screen");
    clearCommand->add_option("--layer", *layer, "foreground, background or all (default)");
    clearCommand->callback([server, layer] { clearScreen(*server, *layer); });

    auto blankMode = std::make_shared<std::string>();
    CLI::App* blankCommand =
        group->add_subcommand("blank", "Blank the screens, or show them again");
    blankCommand->add_option("MODE", *blankMode, "none, black, white or background")->required();
    blankCommand->callback([server, blankMode] { blankScreens(*server, *blankMode); });

    auto stage = std::make_shared<StageOptions>();
    CLI::App* stageCommand =
        group->add_subcommand("stage", "Show a song section on the stage screen");
    stageCommand->add_option("--song", stage->song, "a song file")->required();
    stageCommand->add_option("--section", stage->section,
                             "the section's id, such as V1 (default: the first)");
    stageCommand->add_option("--transpose", stage->transpose, "semitones, -11 to 11");
    stageCommand->callback([server, stage] { showStage(*server, *stage); });

    CLI::App* shutdownCommand = group->add_subcommand("shutdown", "Stop the display server");
    shutdownCommand->callback([server] { shutdownServer(*server); });
}

}  // namespace melodex::cli
