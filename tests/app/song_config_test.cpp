#include "melodex/app/song_config.h"

#include <gtest/gtest.h>

#include "melodex/app/melodex.h"
#include "melodex/foundation/file_system.h"
#include "melodex/foundation/string_tables.h"
#include "melodex/platform/settings_store.h"
#include "melodex/song/song.h"
#include "support/scoped_environment.h"
#include "support/scripted_dialogs.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

// A whole installation in a temporary folder: the program in install/bin,
// settings, user data and shared data beside it. The process-wide string
// tables and dialogs are put back afterwards.
class SongConfigTest : public ::testing::Test {
protected:
    SongConfigTest() {
        StringTables::instance().clear();
        theBaseApp.setDialogs(&m_dialogs);
    }
    ~SongConfigTest() override {
        StringTables::instance().clear();
        theBaseApp.setDialogs(nullptr);
    }

    SongConfig config() const { return SongConfig(m_root.file("install/bin/Scrivel")); }
    void writeProductFile(const String& folder = "install/bin/") const {
        m_root.write(folder + "product.bcf", m_root.read(test::testDataPath("app/product.bcf")));
    }

    test::TempFolder m_root;
    test::ScriptedDialogs m_dialogs;
    const String m_user = m_root.file("data/Cantorix");
    test::ScopedEnvironment m_settings{"MELODEX_SETTINGS_FILE",
                                       m_root.file("config/Settings.ini").c_str()};
    test::ScopedEnvironment m_data{"XDG_DATA_HOME", m_root.file("data").c_str()};
    test::ScopedEnvironment m_shared{"MELODEX_SHARED_DATA_DIR",
                                     m_root.file("shared/Hymnora").c_str()};
    test::ScopedEnvironment m_resources{"MELODEX_RESOURCE_DIR", nullptr};
};

TEST_F(SongConfigTest, WithoutSettingsFoldersLieUnderTheUserFolderAndTablesServeInOrder) {
    writeProductFile("install/");  // the program folder's parent serves too
    m_root.write("install/bin/Melodex.ini", "[SongFileType]\nstandard=Library\ntext=Text\n");
    m_root.write("install/bin/Scrivel.ini", "[SongFileType]\nstandard=Editor\n");
    SongConfig config = this->config();
    ASSERT_TRUE(config.init(3));
    EXPECT_EQ(config.productInfo().majorVersion * 100 + config.productInfo().build, 742u);
    EXPECT_EQ(config.getProductValue("PRODUCT_COMPANY"), "Brackwell") << "not in the file";
    EXPECT_EQ(config.getUserDataDir(), m_user);
    const std::pair<String, const char*> folders[] = {
        {config.getUserProfileDir(), "Display Profiles"},
        {config.getSongDatabaseDir(), "Song Database"},
        {config.getImageDatabaseDir(), "Image Database"},
        {config.getBibleDatabaseDir(), "Bible Database"},
        {config.getMediaDatabaseDir(), "Media Database"},
        {config.getLogFilesDir(), "Log Files"},
        {config.getSongDatabaseFilesDir(), "Song Database/Song Files"}};
    for (const auto& [folder, name] : folders) {
        EXPECT_EQ(folder, joinPath(m_user, name));
        EXPECT_TRUE(folderExists(folder)) << folder;
    }
    EXPECT_TRUE(folderExists(m_root.file("shared/Hymnora")));

    SongConfig copy(m_root.file("other/program"));
    copy = SongConfig(config);  // copies carry every folder
    EXPECT_EQ(copy.getLogFilesDir() + copy.getProductValue("PRODUCT_NAME"),
              config.getLogFilesDir() + "Cantorix Test");

    // The program's string table comes first and falls through to the
    // library's; one added at the back serves only what the others lack.
    // The song's file type names come from the same tables.
    auto load = [](const char* id) { return theBaseApp.loadString("songFILEtype", id, "?"); };
    EXPECT_EQ(load("STANDARD") + load("text") + load("sng"), "EditorText?");
    theBaseApp.addStringTable(m_root.file("missing.ini"), true);  // ignored
    theBaseApp.addStringTable(m_root.write("more.ini", "[SongFileType]\nsng=Sng\ntext=No\n"),
                              false);
    EXPECT_EQ(load("sng") + load("text"), "SngText");
    EXPECT_EQ(Song::getFileTypeName(SongFileType::Sng), "Sng");
}

TEST_F(SongConfigTest, SettingsMoveTheFolders) {
    writeProductFile();
    const String moved = m_root.file("elsewhere/Our Church");
    const String shared = m_root.file("network share/songs");
    ASSERT_EQ(SettingsStore().setString("UserDataDir", moved), StatusSuccess);
    ASSERT_EQ(SettingsStore().setString("SongDatabaseDir", shared), StatusSuccess);
    SongConfig config = this->config();
    ASSERT_TRUE(config.init(1));
    // Folders without a setting of their own follow the user data folder;
    // only the song database goes where its own setting says.
    EXPECT_EQ(config.getUserDataDir(), moved);
    EXPECT_EQ(config.getUserProfileDir(), joinPath(moved, "Display Profiles"));
    EXPECT_EQ(config.getLogFilesDir(), joinPath(moved, "Log Files"));
    EXPECT_EQ(config.getSongDatabaseDir(), shared);
    EXPECT_TRUE(folderExists(joinPath(shared, "Song Files")));
    EXPECT_FALSE(folderExists(joinPath(moved, "Song Database")));
    EXPECT_FALSE(folderExists(m_user));

    // An empty setting is no setting: the folder does not land in whatever
    // folder the program runs in.
    ASSERT_EQ(SettingsStore().setString("LogFilesDir", ""), StatusSuccess);
    ASSERT_TRUE(config.init(1));
    EXPECT_EQ(config.getLogFilesDir(), joinPath(moved, "Log Files"));
}

TEST_F(SongConfigTest, WithoutAProductFileInitTellsTheUserAndFails) {
    writeProductFile("");  // two levels up is too far
    EXPECT_FALSE(config().init(1));
    m_root.write("install/bin/Melodex.ini", "[setup]\nReinstallNeeded=Bitte neu installieren.\n");
    EXPECT_FALSE(config().init(1));
    ASSERT_EQ(m_dialogs.messages().size(), 2u);
    EXPECT_EQ(m_dialogs.messages()[0].icon, MessageIcon::Error);
    EXPECT_EQ(m_dialogs.messages()[0].text,
              "<b>There is a problem with the software configuration.</b><p>Please try "
              "reinstalling this software and this message continues to appear please contact "
              "Brackwell Technical Support.");
    EXPECT_EQ(m_dialogs.messages()[1].text, "Bitte neu installieren.");
    EXPECT_FALSE(folderExists(m_user));
}

TEST_F(SongConfigTest, BadFilesFallBackToDefaults) {
    m_root.write("install/bin/product.bcf", "no section\n\x01\x02\xff\xfe garbage");
    m_root.write("config/Settings.ini", String("\0\0\xff[Settings\nUserDataDir", 24));
    m_root.write("install/bin/Melodex.ini", String("\177ELF\0\0\0binary", 13));
    m_root.write("install/bin/Scrivel.ini", "[SongFileType\nstandard");
    SongConfig config = this->config();
    EXPECT_EQ(config.getProductValue("PRODUCT_NAME"), "Cantorix");
    ASSERT_TRUE(config.init(1));
    EXPECT_EQ(config.getUserDataDir(), m_user);
    EXPECT_EQ(theBaseApp.loadString("SongFileType", "standard", "fallback"), "fallback");
}

}  // namespace
}  // namespace melodex
