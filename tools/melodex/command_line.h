#pragma once

// What every command of the melodex program shares: how it ends, the global
// --data option that chooses the data folders, and "-" for standard input
// and output wherever a command names a file.
//
// Exit statuses: 0 done, 1 failed (the reason is on standard error, naming
// the path and the system's reason), 2 usage (a bad command line).

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"

namespace CLI {
class App;
}  // namespace CLI

namespace melodex::cli {

inline constexpr int ExitDone = 0;
inline constexpr int ExitFailed = 1;
inline constexpr int ExitUsage = 2;

// Ends the command with status 1 after printing "melodex: <message>".
[[noreturn]] void fail(std::string_view message);
// Ends the command with status 1 after printing the error's message.
[[noreturn]] void fail(const FileError& error);
// Ends the command with status 2: the command line asked for something
// that cannot be done as asked.
[[noreturn]] void failUsage(std::string_view message);
// Prints "melodex: warning: <message>" and goes on.
void warn(std::string_view message);

// Adds the global --data option to the program.
void addDataOption(CLI::App& app);

// The data folder given with --data, made absolute; empty when none was.
const String& dataOption();

// The folder `name` ("Song Database", "Bible Database", "Display Profiles")
// of the data folder given with --data; without it, `configured` is called
// once theAppConfig is initialised (its failure ends the command) and its
// answer is taken.
String dataSubfolder(std::string_view name, String (*configured)());

// Initialises theAppConfig once for the program; ends the command with
// status 1 when the installation is unusable.
void configureApplication();

// What --json prints: objects keep their members in the order written.
using Json = nlohmann::ordered_json;

// Prints the value, indented; text that is not UTF-8 becomes U+FFFD rather
// than failing the whole output.
void printJson(const Json& json);

// True when `path` is "-": standard input for an input, standard output for
// an output.
inline bool isStandardStream(std::string_view path) {
    return path == "-";
}

// Reads a whole input file, or standard input for "-"; ends the command
// with status 1 naming the path when it cannot be read.
std::string readInput(const std::string& path);

// Writes a whole output file through the atomic writer, or to standard
// output for "-"; ends the command with status 1 naming the path when it
// cannot be written.
void writeOutput(const std::string& path, std::string_view bytes);

}  // namespace melodex::cli
