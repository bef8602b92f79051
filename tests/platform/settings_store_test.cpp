#include "melodex/platform/settings_store.h"

#include <cstdlib>
#include <optional>

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "melodex/foundation/file_system.h"
#include "support/scoped_environment.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using test::TempFolder;

using test::ScopedEnvironment;

TEST(SettingsStoreTest, RoundTripsValuesThroughAFileInAMissingFolder) {
    TempFolder folder;
    String path = folder.file("config/Hymnora/Settings.ini");
    SettingsStore store(path);
    ASSERT_EQ(store.setString("SongDatabaseDir", "/srv/songs"), StatusSuccess);
    ASSERT_EQ(store.setString("UserDataDir", "  Chants d'église = \"vieux\"  "), StatusSuccess);
    ASSERT_EQ(store.setString("songdatabasedir", "/srv/other"), StatusSuccess);  // same value

    SettingsStore reader(path);
    EXPECT_EQ(reader.getString("SONGDATABASEDIR", "x"), "/srv/other");
    EXPECT_EQ(reader.getString("UserDataDir"), "  Chants d'église = \"vieux\"  ");
    EXPECT_EQ(reader.getString("LogFilesDir", "fallback"), "fallback");

    ASSERT_EQ(store.removeValue("UserDataDir"), StatusSuccess);
    EXPECT_EQ(reader.getString("UserDataDir", "gone"), "gone");
    EXPECT_EQ(reader.getString("SongDatabaseDir"), "/srv/other");
}

TEST(SettingsStoreTest, KeepsWhatOthersWroteInTheFile) {
    TempFolder folder;
    String path = folder.write("Settings.ini", "[Other]\nkeep=1\n[Settings]\nA=first\n");
    ASSERT_EQ(SettingsStore(path).setString("B", "second"), StatusSuccess);
    String text = folder.read("Settings.ini");
    EXPECT_NE(text.find("keep=1"), String::npos);
    EXPECT_LT(text.find("A=first"), text.find("B=second"));
}

TEST(SettingsStoreTest, FollowsTheEnvironmentAtEveryCall) {
    TempFolder folder;
    SettingsStore store;  // made before the variables change
    {
        ScopedEnvironment file("MELODEX_SETTINGS_FILE", folder.file("env.ini").c_str());
        EXPECT_EQ(SettingsStore::defaultPath(), folder.file("env.ini"));
        ASSERT_EQ(store.setString("Name", "value"), StatusSuccess);
        EXPECT_TRUE(fileExists(folder.file("env.ini")));
    }
    ScopedEnvironment noFile("MELODEX_SETTINGS_FILE", "");
    ScopedEnvironment home("HOME", folder.path().c_str());
    {
        ScopedEnvironment config("XDG_CONFIG_HOME", folder.file("xdg").c_str());
        EXPECT_EQ(store.path(), folder.file("xdg/Hymnora/Settings.ini"));
    }
    ScopedEnvironment emptyConfig("XDG_CONFIG_HOME", "");
    EXPECT_EQ(store.path(), folder.file(".config/Hymnora/Settings.ini"));
    EXPECT_EQ(store.getString("Name", "unset"), "unset");
}

TEST(SettingsStoreTest, MissingAndMalformedFilesReadAsDefaults) {
    TempFolder folder;
    EXPECT_EQ(SettingsStore(folder.file("missing.ini")).getString("A", "d"), "d");

    String garbage = folder.write("garbage.ini", String("\x01\x80\xC3(\0[Sett\n=\n", 13) +
                                                     "A=stray\n[Settings\nB\n[Settings]\nC=ok\n");
    SettingsStore malformed(garbage);
    EXPECT_EQ(malformed.getString("A", "d"), "d");
    EXPECT_EQ(malformed.getString("B", "d"), "d");
    EXPECT_EQ(malformed.getString("C", "d"), "ok");

    // A folder where the file should be: reads give defaults, writes fail.
    SettingsStore onFolder(folder.path());
    EXPECT_EQ(onFolder.getString("A", "d"), "d");
    EXPECT_NE(onFolder.setString("A", "v"), StatusSuccess);
    EXPECT_TRUE(folderExists(folder.path()));
}

TEST(SettingsStoreTest, AnUnreadableFileIsNeitherReadNorReplaced) {
    if (::geteuid() == 0) GTEST_SKIP() << "permissions do not bind the superuser";
    TempFolder folder;
    String locked = folder.write("locked.ini", "[Settings]\nA=secret\nB=kept\n");
    ::chmod(locked.c_str(), 0);
    SettingsStore unreadable(locked);
    EXPECT_EQ(unreadable.getString("A", "d"), "d");
    EXPECT_NE(unreadable.setString("A", "new"), StatusSuccess);
    ::chmod(locked.c_str(), 0600);
    EXPECT_EQ(SettingsStore(locked).getString("B"), "kept");
}

}  // namespace
}  // namespace melodex
