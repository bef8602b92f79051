#include "melodex/app/song_config.h"

#include <gtest/gtest.h>

#include "melodex/app/melodex.h"
#include "melodex/app/string_tables.h"
#include "melodex/foundation/file_system.h"
#include "melodex/foundation/ini_file.h"
#include "melodex/platform/settings_store.h"
#include "support/scoped_environment.h"
#include "support/scripted_dialogs.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using test::ScopedEnvironment;
using test::ScriptedDialogs;
using test::TempFolder;

constexpr const char* ProductFile =
    "[Product]\nPRODUCT_NAME=Cantorix Test\nPRODUCT_MAJOR_VERSION=7\nPRODUCT_BUILD=42\n";

// A whole installation in a temporary folder: the program lies in
// root/install/bin, settings, user data and shared data under root, and the
// process-wide string tables and dialogs are put back afterwards.
class SongConfigTest : public ::testing::Test {
protected:
    SongConfigTest() { StringTables::instance().clear(); }
    ~SongConfigTest() override {
        StringTables::instance().clear();
        theBaseApp.setDialogs(nullptr);
    }

    String programPath() const { return m_root.file("install/bin/Scrivel"); }
    String programFolder() const { return m_root.file("install/bin"); }
    String baseUserFolder() const { return m_root.file("data"); }

    void setSetting(const char* name, const String& value) {
        ASSERT_EQ(SettingsStore().setString(name, value), StatusSuccess);
    }

    TempFolder m_root;
    ScopedEnvironment m_settings{"MELODEX_SETTINGS_FILE", m_root.file("config/Settings.ini").c_str()};
    ScopedEnvironment m_data{"XDG_DATA_HOME", m_root.file("data").c_str()};
    ScopedEnvironment m_shared{"MELODEX_SHARED_DATA_DIR", m_root.file("shared/Hymnora").c_str()};
    ScopedEnvironment m_resources{"MELODEX_RESOURCE_DIR", nullptr};
};

TEST_F(SongConfigTest, WithoutSettingsEveryFolderLiesUnderTheBaseUserFolder) {
    m_root.write("install/bin/product.bcf", ProductFile);
    SongConfig config(programPath());
    ASSERT_TRUE(config.isConfigured());
    ASSERT_TRUE(config.init(3));
    EXPECT_EQ(config.programId(), 3);

    const String user = joinPath(baseUserFolder(), "Cantorix");
    EXPECT_EQ(config.getUserDataDir(), user);
    EXPECT_EQ(config.getUserProfileDir(), joinPath(user, "Display Profiles"));
    EXPECT_EQ(config.getSongDatabaseDir(), joinPath(user, "Song Database"));
    EXPECT_EQ(config.getImageDatabaseDir(), joinPath(user, "Image Database"));
    EXPECT_EQ(config.getBibleDatabaseDir(), joinPath(user, "Bible Database"));
    EXPECT_EQ(config.getMediaDatabaseDir(), joinPath(user, "Media Database"));
    EXPECT_EQ(config.getLogFilesDir(), joinPath(user, "Log Files"));
    EXPECT_EQ(config.getSongDatabaseFilesDir(), joinPath(user, "Song Database/Song Files"));

    for (const String& folder :
         {config.getUserProfileDir(), config.getSongDatabaseFilesDir(),
          config.getImageDatabaseDir(), config.getBibleDatabaseDir(),
          config.getMediaDatabaseDir(), config.getLogFilesDir(), m_root.file("shared/Hymnora")}) {
        EXPECT_TRUE(folderExists(folder)) << folder;
    }
}

TEST_F(SongConfigTest, SettingsMoveTheFolders) {
    m_root.write("install/bin/product.bcf", ProductFile);
    const String moved = m_root.file("elsewhere/Our Church");
    const String shared = m_root.file("network share/songs");
    setSetting("UserDataDir", moved);
    setSetting("SongDatabaseDir", shared);

    SongConfig config(programPath());
    ASSERT_TRUE(config.init(1));
    // Folders without a setting of their own follow the user data folder ...
    EXPECT_EQ(config.getUserDataDir(), moved);
    EXPECT_EQ(config.getUserProfileDir(), joinPath(moved, "Display Profiles"));
    EXPECT_EQ(config.getLogFilesDir(), joinPath(moved, "Log Files"));
    // ... and only the song database goes where its own setting says.
    EXPECT_EQ(config.getSongDatabaseDir(), shared);
    EXPECT_TRUE(folderExists(joinPath(shared, "Song Files")));
    EXPECT_FALSE(folderExists(joinPath(moved, "Song Database")));
    EXPECT_FALSE(folderExists(joinPath(baseUserFolder(), "Cantorix")));
}

TEST_F(SongConfigTest, FindsTheProductFileInTheProgramFolderOrItsParent) {
    {
        m_root.write("install/product.bcf", ProductFile);
        SongConfig config(programPath());
        EXPECT_TRUE(config.isConfigured());
        EXPECT_EQ(config.getProductValue("PRODUCT_NAME"), "Cantorix Test");
        EXPECT_EQ(config.productInfo().name, "Cantorix Test");
        EXPECT_EQ(config.productInfo().majorVersion, 7u);
        EXPECT_EQ(config.productInfo().build, 42u);
        // Values the file does not give keep their defaults.
        EXPECT_EQ(config.getProductValue("PRODUCT_COMPANY"), "Brackwell");
    }
    {
        // Two levels up is too far.
        SongConfig config(m_root.file("install/bin/tools/Scrivel"));
        EXPECT_FALSE(config.isConfigured());
    }
}

TEST_F(SongConfigTest, WithoutAProductFileInitTellsTheUserAndFails) {
    ScriptedDialogs dialogs;
    theBaseApp.setDialogs(&dialogs);
    SongConfig config(programPath());
    EXPECT_FALSE(config.isConfigured());
    EXPECT_FALSE(config.init(1));

    ASSERT_EQ(dialogs.messages().size(), 1u);
    EXPECT_EQ(dialogs.messages()[0].icon, MessageIcon::Error);
    EXPECT_EQ(dialogs.messages()[0].text,
              "<b>There is a problem with the software configuration.</b><p>Please try "
              "reinstalling this software and this message continues to appear please contact "
              "Brackwell Technical Support.");
    EXPECT_FALSE(folderExists(joinPath(baseUserFolder(), "Cantorix")));
}

TEST_F(SongConfigTest, TheReinstallMessageComesFromTheStringTables) {
    m_root.write("install/bin/Melodex.ini", "[setup]\nReinstallNeeded=Bitte neu installieren.\n");
    ScriptedDialogs dialogs;
    theBaseApp.setDialogs(&dialogs);
    SongConfig config(programPath());
    EXPECT_FALSE(config.init(1));
    ASSERT_EQ(dialogs.messages().size(), 1u);
    EXPECT_EQ(dialogs.messages()[0].text, "Bitte neu installieren.");
}

TEST_F(SongConfigTest, TheProgramsTableComesBeforeTheLibrarysAndFallsThroughToIt) {
    m_root.write("install/bin/product.bcf", ProductFile);
    m_root.write("install/bin/Melodex.ini",
                 "[SongFileType]\nstandard=Library Song\ntext=Library Text\n");
    m_root.write("install/bin/Scrivel.ini", "[SongFileType]\nstandard=Editor Song\n");
    SongConfig config(programPath());
    ASSERT_TRUE(config.init(1));
    EXPECT_EQ(theBaseApp.loadString("SongFileType", "standard", "?"), "Editor Song");
    EXPECT_EQ(theBaseApp.loadString("SongFileType", "text", "?"), "Library Text");
    EXPECT_EQ(theBaseApp.loadString("SongFileType", "sng", "?"), "?");
    EXPECT_EQ(theBaseApp.loadString("Elsewhere", "standard", "?"), "?");
}

TEST_F(SongConfigTest, CopiesCarryEveryFolder) {
    m_root.write("install/bin/product.bcf", ProductFile);
    SongConfig config(programPath());
    ASSERT_TRUE(config.init(5));
    SongConfig copy(config);
    SongConfig assigned(m_root.file("other/program"));
    assigned = config;
    for (const SongConfig* other : {&copy, &assigned}) {
        EXPECT_TRUE(other->isConfigured());
        EXPECT_EQ(other->programId(), 5);
        EXPECT_EQ(other->programPath(), programPath());
        EXPECT_EQ(other->getSongDatabaseFilesDir(), config.getSongDatabaseFilesDir());
        EXPECT_EQ(other->getLogFilesDir(), config.getLogFilesDir());
        EXPECT_EQ(other->getProductValue("PRODUCT_NAME"), "Cantorix Test");
    }
}

TEST_F(SongConfigTest, BadFilesFallBackToDefaults) {
    // A product file without its section, a settings file and string tables
    // that are not INI text at all.
    m_root.write("install/bin/product.bcf", "just some words\n\x01\x02\xff\xfe garbage");
    m_root.write("config/Settings.ini", String("\0\0\xff[Settings\nUserDataDir", 24));
    m_root.write("install/bin/Melodex.ini", String("\x7f" "ELF\0\0\0binary", 13));
    m_root.write("install/bin/Scrivel.ini", "[SongFileType\nstandard");

    SongConfig config(programPath());
    EXPECT_TRUE(config.isConfigured());
    EXPECT_EQ(config.getProductValue("PRODUCT_NAME"), "Cantorix");
    ASSERT_TRUE(config.init(1));
    EXPECT_EQ(config.getUserDataDir(), joinPath(baseUserFolder(), "Cantorix"));
    EXPECT_EQ(theBaseApp.loadString("SongFileType", "standard", "fallback"), "fallback");
}

}  // namespace
}  // namespace melodex
