#include "melodex/platform/system_info.h"

#include <cstdlib>
#include <optional>

#include <unistd.h>

#include <gtest/gtest.h>

#include "melodex/foundation/file_system.h"
#include "support/scoped_environment.h"

namespace melodex {
namespace {

using test::ScopedEnvironment;

TEST(SystemInfoTest, DescribesTheRunningProgramAndComputer) {
    String program = SystemInfo::programPath();
    ASSERT_TRUE(isAbsolutePath(program)) << program;
    EXPECT_TRUE(fileExists(program));
    EXPECT_EQ(::access(program.c_str(), X_OK), 0);
    EXPECT_EQ(joinPath(SystemInfo::programFolder(), fileNameOf(program)), program);

    String host = SystemInfo::hostName();
    EXPECT_FALSE(host.empty());
    EXPECT_TRUE(isPlainFileName(host)) << "the host name goes into the index file's name";
}

TEST(SystemInfoTest, UserFoldersFollowXdgVariablesThenHome) {
    ScopedEnvironment home("HOME", "/home/cantor");
    {
        ScopedEnvironment data("XDG_DATA_HOME", "/data/home");
        ScopedEnvironment config("XDG_CONFIG_HOME", "/config/home");
        EXPECT_EQ(SystemInfo::baseUserFolder(), "/data/home");
        EXPECT_EQ(SystemInfo::userConfigFolder(), "/config/home");
    }
    ScopedEnvironment emptyData("XDG_DATA_HOME", "");
    ScopedEnvironment relativeConfig("XDG_CONFIG_HOME", "relative/config");
    EXPECT_EQ(SystemInfo::homeFolder(), "/home/cantor");
    EXPECT_EQ(SystemInfo::baseUserFolder(), "/home/cantor/.local/share");
    EXPECT_EQ(SystemInfo::userConfigFolder(), "/home/cantor/.config");

    // Without HOME the account database still knows a home folder.
    ScopedEnvironment noHome("HOME", nullptr);
    EXPECT_TRUE(isAbsolutePath(SystemInfo::homeFolder()));
    EXPECT_EQ(SystemInfo::baseUserFolder(), joinPath(SystemInfo::homeFolder(), ".local/share"));
}

TEST(SystemInfoTest, SharedDataFolderPrefersOverrideThenFirstUsableDataDir) {
    ScopedEnvironment noOverride("MELODEX_SHARED_DATA_DIR", nullptr);
    {
        ScopedEnvironment dirs("XDG_DATA_DIRS", nullptr);
        EXPECT_EQ(SystemInfo::sharedDataFolder(), "/usr/local/share/Hymnora");
    }
    {
        ScopedEnvironment dirs("XDG_DATA_DIRS", "/opt/share:/usr/share");
        EXPECT_EQ(SystemInfo::sharedDataFolder(), "/opt/share/Hymnora");
    }
    {
        ScopedEnvironment dirs("XDG_DATA_DIRS", "relative::/srv/share/");
        EXPECT_EQ(SystemInfo::sharedDataFolder(), "/srv/share/Hymnora");
    }
    ScopedEnvironment dirs("XDG_DATA_DIRS", "/opt/share");
    ScopedEnvironment sharedDir("MELODEX_SHARED_DATA_DIR", "/tmp/shared data");
    EXPECT_EQ(SystemInfo::sharedDataFolder(), "/tmp/shared data");
}

}  // namespace
}  // namespace melodex
