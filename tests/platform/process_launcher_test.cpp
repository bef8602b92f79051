#include "melodex/platform/process_launcher.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <thread>

#include <sys/stat.h>

#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace melodex {
namespace {

// Writes an executable file into the folder and returns its path.
String writeProgram(const test::TempFolder& folder, std::string_view name, std::string_view text) {
    String path = folder.write(name, text);
    ::chmod(path.c_str(), 0755);
    return path;
}

TEST(ProcessLauncherTest, PassesArgumentsAndEnvironmentIntactAndReportsTheEnd) {
    test::TempFolder folder;
    const String script =
        writeProgram(folder, "with space/it's \"here\".sh",
                     "#!/bin/sh\nout=\"$1\"; shift\n"
                     "{ echo \"$#\"; echo \"$MELODEX_LAUNCH_PROBE\";"
                     "  for a in \"$@\"; do printf '%s|\\n' \"$a\"; done; } > \"$out\"\n");
    const StringArray arguments = {folder.file("out.txt"), "two words", R"(say "hi" \n)",
                                   "$HOME;`ls`*",          "",          "J\u00e9sus"};
    ::setenv("MELODEX_LAUNCH_PROBE", "inherited", 1);
    LaunchResult result = ProcessLauncher().start(script, arguments, LaunchWait::UntilExit);
    ::unsetenv("MELODEX_LAUNCH_PROBE");
    ASSERT_TRUE(result.started) << result.error;
    EXPECT_TRUE(result.exited && result.exitCode == 0);
    EXPECT_EQ(folder.read("out.txt"),
              "5\ninherited\ntwo words|\nsay \"hi\" \\n|\n$HOME;`ls`*|\n|\nJ\u00e9sus|\n");
    ProcessLauncher launcher;
    EXPECT_EQ(launcher.start("sh", {"-c", "exit 3"}, LaunchWait::UntilExit).exitCode, 3);  // PATH
    // A signal that this program ignores must still reach the child as usual.
    const auto previous = std::signal(SIGTERM, SIG_IGN);
    result = launcher.start("/bin/sh", {"-c", "kill -TERM $$"}, LaunchWait::UntilExit);
    std::signal(SIGTERM, previous);
    EXPECT_TRUE(result.started && result.exited);
    EXPECT_EQ(result.signal, SIGTERM);
    EXPECT_EQ(result.exitCode, -1);
}

TEST(ProcessLauncherTest, DoesNotWaitWhenToldAndLeavesNoZombie) {
    test::TempFolder folder;
    // The script goes on only after the test has seen start() return, so a
    // start() that waited would leave it without its go-ahead.
    const String script =
        writeProgram(folder, "handshake.sh",
                     "#!/bin/sh\ni=0; while [ ! -e \"$1\" ] && [ $i -lt 200 ]; do\n"
                     "  sleep 0.05; i=$((i+1)); done\n"
                     "[ -e \"$1\" ] && echo done > \"$2\"\n");
    const LaunchResult result =
        ProcessLauncher().start(script, {folder.file("go"), folder.file("out.txt")});
    ASSERT_TRUE(result.started) << result.error;
    EXPECT_TRUE(!result.exited && result.processId > 0);
    folder.write("go", "");
    // Gone, zombies included, within a generous bound so that a fault fails instead of hanging.
    int waits = 0;
    while (!(::kill(result.processId, 0) != 0 && errno == ESRCH) && ++waits < 600)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_LT(waits, 600) << "the ended program was not reaped";
    EXPECT_EQ(folder.read("out.txt"), "done\n");
}

TEST(ProcessLauncherTest, ReportsProgramsThatCannotRun) {
    test::TempFolder folder;
    const String plain = folder.write("plain.sh", "#!/bin/sh\nexit 0\n");
    const String garbage = writeProgram(folder, "garbage", "\x01\x02 not a program\n");
    const String orphan = writeProgram(folder, "orphan", "#!/nonexistent/interpreter\n");
    // The exec of a garbage file fails in the child; the status still comes back.
    // clang-format off
    const std::pair<String, Status> cases[] = {
        {folder.file("missing"), ENOENT}, {"melodex-no-such-program", ENOENT}, {"", ENOENT},
        {plain, EACCES}, {folder.path(), EACCES}, {garbage, ENOEXEC}, {orphan, ENOENT}};
    // clang-format on
    ProcessLauncher launcher;
    for (const auto& [program, error] : cases) {
        for (LaunchWait wait : {LaunchWait::No, LaunchWait::UntilExit}) {
            const LaunchResult result = launcher.start(program, {"arg"}, wait);
            EXPECT_TRUE(!result.started && result.processId == 0) << program;
            EXPECT_EQ(result.error, error) << program;
        }
    }
    EXPECT_EQ(launcher.start("/bin/sh", {String("a\0b", 3)}).error, Status(EINVAL));
}

}  // namespace
}  // namespace melodex
