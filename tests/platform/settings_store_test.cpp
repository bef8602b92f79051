#include "melodex/platform/settings_store.h"

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "melodex/foundation/file_system.h"
#include "support/scoped_environment.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using test::ScopedEnvironment;

TEST(SettingsStoreTest, RoundTripsValuesAndKeepsWhatOthersWrote) {
    test::TempFolder folder;
    const String path = folder.file("config/Hymnora/Settings.ini");  // folders not there yet
    SettingsStore store(path), reader(path);
    ASSERT_EQ(store.setString("SongDatabaseDir", "/srv/songs"), StatusSuccess);
    ASSERT_EQ(store.setString("UserDataDir", "  Chants d'\u00e9glise = \"vieux\"  "),
              StatusSuccess);
    ASSERT_EQ(store.setString("songdatabasedir", "/srv/other"), StatusSuccess);  // same value
    EXPECT_EQ(reader.getString("SONGDATABASEDIR", "x"), "/srv/other");
    EXPECT_EQ(reader.getString("UserDataDir"), "  Chants d'\u00e9glise = \"vieux\"  ");
    EXPECT_EQ(reader.getString("LogFilesDir", "fallback"), "fallback");
    ASSERT_EQ(store.removeValue("UserDataDir"), StatusSuccess);
    EXPECT_EQ(reader.getString("UserDataDir", "gone"), "gone");
    const String shared = folder.write("Settings.ini", "[Other]\nkeep=1\n[Settings]\nA=first\n");
    ASSERT_EQ(SettingsStore(shared).setString("B", "second"), StatusSuccess);
    const String text = folder.read(shared);
    EXPECT_NE(text.find("keep=1"), String::npos);
    EXPECT_LT(text.find("A=first"), text.find("B=second"));
}

TEST(SettingsStoreTest, FollowsTheEnvironmentAtEveryCall) {
    test::TempFolder folder;
    SettingsStore store;  // made before the variables change
    {
        ScopedEnvironment file("MELODEX_SETTINGS_FILE", folder.file("env.ini").c_str());
        EXPECT_EQ(SettingsStore::defaultPath(), folder.file("env.ini"));
        ASSERT_EQ(store.setString("Name", "value"), StatusSuccess);
        EXPECT_TRUE(fileExists(folder.file("env.ini")));
    }
    ScopedEnvironment noFile("MELODEX_SETTINGS_FILE", ""), home("HOME", folder.path().c_str());
    {
        ScopedEnvironment config("XDG_CONFIG_HOME", folder.file("xdg").c_str());
        EXPECT_EQ(store.path(), folder.file("xdg/Hymnora/Settings.ini"));
    }
    ScopedEnvironment emptyConfig("XDG_CONFIG_HOME", "");
    EXPECT_EQ(store.path(), folder.file(".config/Hymnora/Settings.ini"));
    EXPECT_EQ(store.getString("Name", "unset"), "unset");
}

TEST(SettingsStoreTest, MissingMalformedAndUnreadableFilesReadAsDefaults) {
    test::TempFolder folder;
    EXPECT_EQ(SettingsStore(folder.file("missing.ini")).getString("A", "d"), "d");
    const SettingsStore malformed(folder.write(
        "garbage.ini",
        String("\x01\x80\xC3(\0[Sett\n=\n", 13) + "A=stray\n[Settings\nB\n[Settings]\nC=ok\n"));
    EXPECT_EQ(malformed.getString("A", "d") + malformed.getString("B", "d"), "dd");
    EXPECT_EQ(malformed.getString("C", "d"), "ok");
    // A folder where the file should be: reads give defaults, writes fail.
    SettingsStore onFolder(folder.path());
    EXPECT_EQ(onFolder.getString("A", "d"), "d");
    EXPECT_NE(onFolder.setString("A", "v"), StatusSuccess);
    EXPECT_TRUE(folderExists(folder.path()));
    if (::geteuid() == 0) return;  // permissions do not bind the superuser
    const String locked = folder.write("locked.ini", "[Settings]\nA=secret\nB=kept\n");
    ::chmod(locked.c_str(), 0);
    SettingsStore unreadable(locked);
    EXPECT_EQ(unreadable.getString("A", "d"), "d");
    EXPECT_NE(unreadable.setString("A", "new"), StatusSuccess);  // would lose B
    ::chmod(locked.c_str(), 0600);
    EXPECT_EQ(SettingsStore(locked).getString("B"), "kept");
}

}  // namespace
}  // namespace melodex
