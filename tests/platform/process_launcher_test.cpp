#include "melodex/platform/process_launcher.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace melodex {
namespace {

using test::TempFolder;

// Writes an executable shell script into the folder and returns its path.
String writeScript(const TempFolder& folder, std::string_view name, std::string_view body) {
    String path = folder.write(name, "#!/bin/sh\n" + String(body));
    ::chmod(path.c_str(), 0755);
    return path;
}

// True once no process of that id exists any more, zombies included;
// gives up after a generous bound so that a fault fails instead of hanging.
bool waitUntilGone(int pid) {
    for (int i = 0; i < 600; ++i) {
        if (::kill(pid, 0) != 0 && errno == ESRCH) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return false;
}

TEST(ProcessLauncherTest, PassesArgumentsAndEnvironmentIntact) {
    TempFolder folder;
    String script =
        writeScript(folder, "with space/it's \"here\".sh",
                    "out=\"$1\"; shift\n"
                    "{ echo \"$#\"; echo \"$MELODEX_LAUNCH_PROBE\";"
                    "  for a in \"$@\"; do printf '%s|\\n' \"$a\"; done; } > \"$out\"\n");
    ::setenv("MELODEX_LAUNCH_PROBE", "inherited", 1);
    StringArray arguments = {folder.file("out.txt"), "two words", R"(say "hi" \n)",
                             "$HOME;`ls`*",          "",          "Jésus"};
    LaunchResult result = ProcessLauncher().start(script, arguments, LaunchWait::UntilExit);
    ::unsetenv("MELODEX_LAUNCH_PROBE");
    ASSERT_TRUE(result.started) << result.error;
    EXPECT_TRUE(result.exited);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(folder.read("out.txt"),
              "5\ninherited\ntwo words|\nsay \"hi\" \\n|\n$HOME;`ls`*|\n|\nJésus|\n");
}

TEST(ProcessLauncherTest, ReportsHowAWaitedProgramEnded) {
    ProcessLauncher launcher;
    LaunchResult code = launcher.start("/bin/sh", {"-c", "exit 3"}, LaunchWait::UntilExit);
    EXPECT_TRUE(code.started && code.exited);
    EXPECT_EQ(code.exitCode, 3);
    EXPECT_EQ(code.signal, 0);

    // A signal that this program ignores must still reach the child as usual.
    auto previous = std::signal(SIGTERM, SIG_IGN);
    LaunchResult killed = launcher.start("/bin/sh", {"-c", "kill -TERM $$"}, LaunchWait::UntilExit);
    std::signal(SIGTERM, previous);
    EXPECT_TRUE(killed.started && killed.exited);
    EXPECT_EQ(killed.signal, SIGTERM);
    EXPECT_EQ(killed.exitCode, -1);

    LaunchResult found = launcher.start("sh", {"-c", "exit 7"}, LaunchWait::UntilExit);  // via PATH
    EXPECT_EQ(found.exitCode, 7);
}

TEST(ProcessLauncherTest, DoesNotWaitWhenToldAndLeavesNoZombie) {
    TempFolder folder;
    // The script goes on only after the test has seen start() return, so a
    // start() that waited would leave it without its go-ahead.
    String script = writeScript(folder, "handshake.sh",
                                "i=0; while [ ! -e \"$1\" ] && [ $i -lt 200 ]; do\n"
                                "  sleep 0.05; i=$((i+1)); done\n"
                                "[ -e \"$1\" ] && echo done > \"$2\"\n");
    LaunchResult result =
        ProcessLauncher().start(script, {folder.file("go"), folder.file("out.txt")});
    ASSERT_TRUE(result.started) << result.error;
    EXPECT_FALSE(result.exited);
    EXPECT_GT(result.processId, 0);
    folder.write("go", "");
    EXPECT_TRUE(waitUntilGone(result.processId)) << "the ended program was not reaped";
    EXPECT_EQ(folder.read("out.txt"), "done\n");
}

TEST(ProcessLauncherTest, ReportsProgramsThatCannotRun) {
    TempFolder folder;
    String notExecutable = folder.write("plain.sh", "#!/bin/sh\nexit 0\n");
    String notAProgram = folder.write("garbage", "\x01\x02 not a program\n");
    ::chmod(notAProgram.c_str(), 0755);
    String noInterpreter = folder.write("orphan", "#!/nonexistent/interpreter\n");
    ::chmod(noInterpreter.c_str(), 0755);

    struct Case {
        String program;
        Status error;
    };
    const Case cases[] = {
        {folder.file("missing"), ENOENT},
        {"melodex-no-such-program", ENOENT},
        {"", ENOENT},
        {notExecutable, EACCES},
        {folder.path(), EACCES},
        {notAProgram, ENOEXEC},  // the exec fails in the child
        {noInterpreter, ENOENT},
    };
    ProcessLauncher launcher;
    for (const Case& c : cases) {
        for (LaunchWait wait : {LaunchWait::No, LaunchWait::UntilExit}) {
            LaunchResult result = launcher.start(c.program, {"arg"}, wait);
            EXPECT_FALSE(result.started) << c.program;
            EXPECT_EQ(result.error, c.error) << c.program;
            EXPECT_EQ(result.processId, 0);
        }
    }
    EXPECT_EQ(launcher.start("/bin/sh", {String("a\0b", 3)}).error, Status(EINVAL));
}

}  // namespace
}  // namespace melodex
