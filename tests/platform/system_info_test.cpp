#include "melodex/platform/system_info.h"

#include <unistd.h>

#include <gtest/gtest.h>

#include "melodex/foundation/file_system.h"
#include "support/scoped_environment.h"

namespace melodex {
namespace {

using test::ScopedEnvironment;

TEST(SystemInfoTest, DescribesTheRunningProgramAndComputer) {
    const String program = SystemInfo::programPath();
    ASSERT_TRUE(isAbsolutePath(program)) << program;
    EXPECT_EQ(::access(program.c_str(), X_OK), 0);
    EXPECT_EQ(joinPath(SystemInfo::programFolder(), fileNameOf(program)), program);
    // The host name goes into the index file's name.
    EXPECT_TRUE(isPlainFileName(SystemInfo::hostName())) << SystemInfo::hostName();
}

TEST(SystemInfoTest, FoldersFollowXdgVariablesThenHome) {
    ScopedEnvironment home("HOME", "/home/cantor"), noOverride("MELODEX_SHARED_DATA_DIR", nullptr);
    {
        ScopedEnvironment data("XDG_DATA_HOME", "/data/home");
        ScopedEnvironment config("XDG_CONFIG_HOME", "/config/home");
        EXPECT_EQ(SystemInfo::baseUserFolder() + SystemInfo::userConfigFolder(),
                  "/data/home/config/home");
    }
    {
        // Empty and relative values do not count.
        ScopedEnvironment data("XDG_DATA_HOME", ""), config("XDG_CONFIG_HOME", "relative/config");
        EXPECT_EQ(SystemInfo::baseUserFolder(), "/home/cantor/.local/share");
        EXPECT_EQ(SystemInfo::userConfigFolder(), "/home/cantor/.config");
        // Without HOME the account database still knows a home folder.
        ScopedEnvironment noHome("HOME", nullptr);
        EXPECT_TRUE(isAbsolutePath(SystemInfo::homeFolder()));
        EXPECT_EQ(SystemInfo::baseUserFolder(), joinPath(SystemInfo::homeFolder(), ".local/share"));
    }
    // clang-format off
    const std::pair<const char*, const char*> shared[] = {{nullptr, "/usr/local/share/Hymnora"},
        {"/opt/share:/usr/share", "/opt/share/Hymnora"}, {"relative::/srv/share/", "/srv/share/Hymnora"}};
    // clang-format on
    for (const auto& [dirs, folder] : shared) {
        ScopedEnvironment dataDirs("XDG_DATA_DIRS", dirs);
        EXPECT_EQ(SystemInfo::sharedDataFolder(), folder) << (dirs ? dirs : "(unset)");
    }
    ScopedEnvironment sharedDir("MELODEX_SHARED_DATA_DIR", "/tmp/shared data");
    EXPECT_EQ(SystemInfo::sharedDataFolder(), "/tmp/shared data");
}

}  // namespace
}  // namespace melodex
