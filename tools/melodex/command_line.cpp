#include "command_line.h"

#include <cstdio>

#include <fmt/core.h>
#include <CLI/CLI.hpp>

#include "melodex/app/song_config.h"
#include "melodex/foundation/file_system.h"

namespace melodex::cli {

namespace {

// The id the command-line program gives the configuration.
constexpr int ProgramId = 0;

String& dataFolder() {
    static String folder;
    return folder;
}

}  // namespace

void fail(std::string_view message) {
    fmt::print(stderr, "melodex: {}\n", message);
    throw CLI::RuntimeError(ExitFailed);
}

void fail(const FileError& error) {
    fail(error.message());
}

void failUsage(std::string_view message) {
    fmt::print(stderr, "melodex: {}\n", message);
    throw CLI::RuntimeError(ExitUsage);
}

void warn(std::string_view message) {
    fmt::print(stderr, "melodex: warning: {}\n", message);
}

void addDataOption(CLI::App& app) {
    app.add_option("--data", dataFolder(),
                   "data folder: the song library is DIR/\"Song Database\", the Bibles "
                   "DIR/\"Bible Database\", the display profiles DIR/\"Display Profiles\" "
                   "(default: the configured folders)");
}

const String& dataOption() {
    static String absolute;
    if (absolute.empty() && !dataFolder().empty()) absolute = absolutePath(dataFolder());
    return absolute;
}

void configureApplication() {
    static bool configured = false;
    if (configured) return;
    if (!theAppConfig.init(ProgramId))
        fail("the installation is unusable (see above); give a data folder with --data DIR");
    configured = true;
}

String dataSubfolder(std::string_view name, String (*configured)()) {
    if (!dataOption().empty()) return joinPath(dataOption(), name);
    configureApplication();
    return configured();
}

void printJson(const Json& json) {
    fmt::print("{}\n", json.dump(2, ' ', false, Json::error_handler_t::replace));
}

std::string readInput(const std::string& path) {
    std::string bytes;
    if (isStandardStream(path)) {
        char buffer[65536];
        std::size_t got = 0;
        while ((got = std::fread(buffer, 1, sizeof buffer, stdin)) > 0)
            bytes.append(buffer, got);
        if (std::ferror(stdin)) fail("cannot read standard input");
        return bytes;
    }
    FileError error;
    error.record(FileError::Action::Read, path, readFileBytes(path, bytes));
    if (error) fail(error);
    return bytes;
}

void writeOutput(const std::string& path, std::string_view bytes) {
    if (isStandardStream(path)) {
        if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size() ||
            std::fflush(stdout) != 0) {
            fail("cannot write standard output");
        }
        return;
    }
    FileError error;
    error.record(FileError::Action::Write, path, writeFileAtomically(path, bytes));
    if (error) fail(error);
}

}  // namespace melodex::cli
