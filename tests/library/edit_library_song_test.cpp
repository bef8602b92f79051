// Melodex::editSong and viewSong for a song of the library.

#include <chrono>
#include <filesystem>
#include <thread>

#include <gtest/gtest.h>

#include "library_fixture.h"
#include "melodex/app/melodex.h"
#include "support/scoped_environment.h"
#include "support/scripted_dialogs.h"

namespace melodex {
namespace {

using test::ScopedEnvironment;

class EditLibrarySongTest : public test::LibraryTest {
protected:
    EditLibrarySongTest() {
        theBaseApp.setDialogs(&m_dialogs);
        theBaseApp.setSiblingProgramFolder(m_folder.file("bin"));
        writeSong("Song Database/Song Files/Hymn.song", "Hymn", {"Holy, holy, holy"});
        m_db.open();
        m_entry = m_db.findEntryByFilename("Hymn.song");
    }
    ~EditLibrarySongTest() override {
        m_db.close();
        theBaseApp.setDialogs(nullptr);
        theBaseApp.setSiblingProgramFolder("");
    }

    void installStandins() {
        namespace fs = std::filesystem;
        fs::create_directories(m_folder.file("bin"));
        for (const char* program : {EditorProgramName, ViewerProgramName})
            fs::copy_file(fs::path(MELODEX_STANDIN_DIR) / program,
                          m_folder.file("bin") + "/" + program);
    }

    // The arguments the stand-in was started with, waiting up to ten seconds.
    StringArray standinArguments() const {
        const String log = m_folder.file("standin.log");
        for (int i = 0; i < 1000 && !fileExists(log); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        StringArray lines = split(m_folder.read("standin.log"), "\n");
        if (!lines.empty() && lines.back().empty()) lines.pop_back();
        return lines;
    }

    test::ScriptedDialogs m_dialogs;
    ScopedEnvironment m_log{"MELODEX_STANDIN_LOG", m_folder.file("standin.log").c_str()};
    SongDBFileEntry* m_entry = nullptr;
};

TEST_F(EditLibrarySongTest, AnEditThatSavesMakesTheLibraryReadTheSongAgain) {
    installStandins();
    ASSERT_NE(m_entry, nullptr);
    Song* held = m_entry->song();
    const String index = indexFile();
    const String indexBefore = m_folder.read(index);

    ScopedEnvironment edit("MELODEX_STANDIN_EDIT", "1");
    EXPECT_TRUE(theBaseApp.editSong(m_entry));
    EXPECT_EQ(standinArguments(), (StringArray{"--exclusive", libraryFile("Hymn.song")}));

    // The stand-in appended a line of text: the song reads back with it, in
    // the same object, and the index was written again.
    EXPECT_EQ(m_entry->song(), held);
    const SongSection& last = *held->getSection(held->getSectionCount() - 1);
    EXPECT_EQ(last.getLine(last.getLineCount() - 1)->text(), "Edited by the stand-in");
    EXPECT_NE(m_folder.read(index), indexBefore);
    EXPECT_FALSE(m_db.changed());
}

TEST_F(EditLibrarySongTest, NoChangeNoEditorOrNoEntryLeaveTheLibraryAlone) {
    const String indexBefore = m_folder.read(indexFile());
    EXPECT_FALSE(theBaseApp.editSong(static_cast<SongDBFileEntry*>(nullptr)));
    EXPECT_FALSE(theBaseApp.viewSong(static_cast<SongDBFileEntry*>(nullptr)));
    EXPECT_FALSE(theBaseApp.editSong(m_entry)) << "no editor installed";
    installStandins();
    EXPECT_FALSE(theBaseApp.editSong(m_entry)) << "closed without saving";
    EXPECT_EQ(m_entry->song()->info().title(), "Hymn");
    EXPECT_EQ(m_folder.read(indexFile()), indexBefore);
}

TEST_F(EditLibrarySongTest, ViewSongShowsTheLibraryFile) {
    installStandins();
    EXPECT_TRUE(theBaseApp.viewSong(m_entry));
    EXPECT_EQ(standinArguments(), StringArray{libraryFile("Hymn.song")});
}

}  // namespace
}  // namespace melodex
