// The melodex program run as a user runs it, replaying each session in
// tests/data/cli/session*.txt (session.txt's notes say how).

#include <sys/wait.h>

#include <cstdlib>

#include <gtest/gtest.h>

#include "melodex/foundation/text.h"
#include "support/scoped_environment.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

// The start of a made-up uuid as the listing shows it, ending a line: eight
// hex digits after a blank, as "{id}".
String maskListedIds(const String& text) {
    StringArray lines = split(text, "\n");
    for (String& line : lines) {
        if (line.size() < 9 || line[line.size() - 9] != ' ') continue;
        const std::string_view id = std::string_view(line).substr(line.size() - 8);
        if (id.find_first_not_of("0123456789abcdef") == std::string_view::npos)
            line = line.substr(0, line.size() - 8) + "{id}";
    }
    return join(lines, "\n");
}

// Every version-4 uuid in `text` (the library makes them up) as "{uuid}".
String maskUuids(const String& text) {
    static constexpr std::string_view Shape = "hhhhhhhh-hhhh-4hhh-vhhh-hhhhhhhhhhhh";
    const auto fits = [&text](std::size_t at) {
        for (std::size_t i = 0; i < Shape.size(); ++i) {
            const char c = text[at + i];
            const bool hex = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
            const bool variant = c == '8' || c == '9' || c == 'a' || c == 'b';
            if (Shape[i] == 'h' ? !hex : Shape[i] == 'v' ? !variant : c != Shape[i]) return false;
        }
        return true;
    };
    String out;
    for (std::size_t i = 0; i < text.size();) {
        if (i + Shape.size() <= text.size() && fits(i)) {
            out += "{uuid}";
            i += Shape.size();
        } else {
            out += text[i++];
        }
    }
    return out;
}

// Replays one session in a temporary folder of its own.
void replay(const String& session) {
    SCOPED_TRACE(session);
    const test::TempFolder folder;
    // Commands without --data use the configured folders: the session's own.
    const test::ScopedEnvironment userData("XDG_DATA_HOME", folder.file("home").c_str());
    const test::ScopedEnvironment sharedData("MELODEX_SHARED_DATA_DIR",
                                             folder.file("shared").c_str());
    const String data = MELODEX_TEST_DATA_DIR;
    const StringArray lines = split(folder.read(data + "/cli/" + session), "\n");
    ASSERT_GT(lines.size(), 20u);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (!lines[i].starts_with("$ ")) continue;
        String expected;
        int expectedExit = 0;
        for (std::size_t end = i + 1;
             end < lines.size() && !lines[end].starts_with("$ ") && !lines[end].starts_with("# ");
             ++end) {
            if (lines[end].starts_with("[exit "))
                expectedExit = toInteger(lines[end].substr(6));
            else
                expected += lines[end] + "\n";
        }
        const String command = "cd '" + folder.path() + "' && '" + MELODEX_CLI_PROGRAM + "' " +
                               replaceAll(lines[i].substr(2), "{data}", "'" + data + "'") +
                               " >output 2>&1";
        const int status = std::system(command.c_str());
        String actual = folder.read("output");
        for (const auto& [from, to] : {std::pair<String, String>{folder.path(), "{tmp}"},
                                       {data, "{data}"},
                                       {MELODEX_CLI_PROGRAM, "melodex"}})
            actual = replaceAll(actual, from, to);
        actual = strip(maskListedIds(maskUuids(actual)), "\n", StripSide::End);
        SCOPED_TRACE(session + ":" + std::to_string(i + 1) + ": " + lines[i]);
        EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, expectedExit);
        EXPECT_EQ(actual, strip(expected, "\n", StripSide::End));
    }
}

TEST(MelodexCliTest, EachSessionPrintsWhatItsTranscriptSays) {
    for (const char* session : {"session.txt", "session_songs.txt", "session_chords.txt"})
        replay(session);
}

}  // namespace
}  // namespace melodex
