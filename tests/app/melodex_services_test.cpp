#include "melodex/app/melodex.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>
#include <thread>

#include <gtest/gtest.h>

#include "melodex/foundation/file_system.h"
#include "melodex/song/song.h"
#include "support/scoped_environment.h"
#include "support/scripted_dialogs.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using test::ScopedEnvironment;
using test::ScriptedDialogs;
using test::TempFolder;

// The services object is process-wide: each test gives it scripted dialogs
// and a program folder of its own and puts the defaults back afterwards.
class MelodexServicesTest : public ::testing::Test {
protected:
    MelodexServicesTest() {
        theBaseApp.setDialogs(&m_dialogs);
        theBaseApp.setSiblingProgramFolder(m_folder.file("bin"));
    }
    ~MelodexServicesTest() override {
        theBaseApp.setDialogs(nullptr);
        theBaseApp.setSiblingProgramFolder("");
    }

    // Copies the stand-ins for the editor and the viewer into the program
    // folder.
    void installStandins() {
        namespace fs = std::filesystem;
        fs::create_directories(m_folder.file("bin"));
        for (const char* program : {EditorProgramName, ViewerProgramName}) {
            fs::copy_file(fs::path(MELODEX_STANDIN_DIR) / program, m_folder.file("bin") + "/" + program);
        }
    }

    String writeSong(const String& name, const String& title) {
        Song song;
        song.info().setTitle(title);
        song.addSection(new SongSection(1));
        song.getSection(0)->addLine(new SongLine());
        song.getSection(0)->getLine(0)->setText("Amazing grace, how sweet the sound");
        const String path = m_folder.file(name);
        EXPECT_EQ(song.saveToFile(path, 1), 0);
        return path;
    }

    // Waits up to ten seconds for a file that a stand-in writes.
    void waitForFile(const String& name) const {
        for (int i = 0; i < 1000 && !fileExists(m_folder.file(name)); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }

    // The lines the stand-in wrote.
    StringArray standinArguments() const {
        waitForFile("standin.log");
        StringArray lines = split(m_folder.read("standin.log"), "\n");
        if (!lines.empty() && lines.back().empty()) lines.pop_back();
        return lines;
    }

    TempFolder m_folder;
    ScriptedDialogs m_dialogs;
    ScopedEnvironment m_log{"MELODEX_STANDIN_LOG", m_folder.file("standin.log").c_str()};
};

TEST_F(MelodexServicesTest, RecognisesSongFilesAndTheirTitles) {
    EXPECT_TRUE(theBaseApp.isSongFile("Amazing Grace.song"));
    EXPECT_TRUE(theBaseApp.isSongFile("/songs/HYMN.TXT"));
    EXPECT_FALSE(theBaseApp.isSongFile("hymn.sng"));
    EXPECT_FALSE(theBaseApp.isSongFile("song"));

    EXPECT_EQ(theBaseApp.getSongTitle(writeSong("file name.song", "Be Thou My Vision")),
              "Be Thou My Vision");
    EXPECT_EQ(theBaseApp.getSongTitle(writeSong("Untitled Hymn.song", "")), "Untitled Hymn");
    EXPECT_EQ(theBaseApp.getSongTitle(m_folder.file("missing/Lost Chord.song")), "Lost Chord");
}

TEST_F(MelodexServicesTest, ChoosesAndLoadsASongFileThroughTheDialogs) {
    const String path = writeSong("Hymn.song", "Holy, Holy, Holy");
    m_dialogs.answerOpen(path);
    std::unique_ptr<Song> song(theBaseApp.loadSongFile("/srv/songs"));
    ASSERT_TRUE(song);
    EXPECT_EQ(song->info().title(), "Holy, Holy, Holy");

    ASSERT_EQ(m_dialogs.requests().size(), 1u);
    const FileDialogRequest& request = m_dialogs.requests()[0].file;
    EXPECT_EQ(request.filter, String(SongFileOpenFilter));
    EXPECT_EQ(request.filter,
              "Song Files (*.song;*.sng;*.xml;*.txt))|*.song; *.sng; *.xml; *.txt|Cantorix Files "
              "(*.song))|*.song|XML Song Files (*.xml)|*.xml|Creative Lifestyle Song Files "
              "(*.sng)|*.sng|Text Files (*.txt)|*.txt|All Files (*.*)|*.*||");
    EXPECT_EQ(request.initialFolder, "/srv/songs");
    EXPECT_TRUE(request.fileMustExist);

    // Cancel, and a file that cannot be read at all.
    m_dialogs.answerCancel();
    EXPECT_EQ(theBaseApp.loadSongFile(""), nullptr);
    m_dialogs.answerOpen(m_folder.path());
    EXPECT_EQ(theBaseApp.loadSongFile(""), nullptr);
}

TEST_F(MelodexServicesTest, TheChosenSaveFilterDecidesTypeAndExtension) {
    Song song;
    song.info().setTitle("Abide with Me");
    song.addSection(new SongSection(2));
    song.getSection(0)->addLine(new SongLine());
    song.getSection(0)->getLine(0)->setText("Abide with me; fast falls the eventide");

    struct Case {
        String typed;
        int filterIndex;
        String written;
        int loadedType;
    };
    const Case cases[] = {
        {"Abide.txt", 1, "Abide.song", 1},
        {"Abide.song", 2, "Abide.txt", 2},
        {"Abide", 3, "Abide.sng", 3},
        {"Abide.with.me.song", 0, "Abide.with.me.song", 1},
    };
    for (const Case& c : cases) {
        m_dialogs.answerSave(m_folder.file(c.typed), c.filterIndex);
        const String path = theBaseApp.saveSongFile(&song, "/start");
        EXPECT_EQ(path, m_folder.file(c.written)) << c.typed;
        Song back;
        ASSERT_EQ(back.loadFromFile(path), 0u) << path;
        EXPECT_EQ(back.loadedFileType(), c.loadedType) << path;
    }
    const FileDialogRequest& request = m_dialogs.requests().at(0).file;
    EXPECT_EQ(request.filter, "Cantorix Files (*.song))|*.song|Text Files (*.txt)|*.txt|Other "
                              "Song Files (*.sng)|*.sng||");
    EXPECT_EQ(request.proposedName, "Abide with Me");
    EXPECT_EQ(request.initialFolder, "/start");
    EXPECT_TRUE(request.overwritePrompt);

    m_dialogs.answerCancel();
    EXPECT_EQ(theBaseApp.saveSongFile(&song, ""), "");
    EXPECT_EQ(theBaseApp.saveSongFile(nullptr, ""), "");
}

TEST_F(MelodexServicesTest, EditSongWaitsForTheEditorAndReportsAChange) {
    installStandins();
    const String path = writeSong("It's \"Amazing\" Grace.song", "Amazing Grace");
    std::atomic<bool> released{false};
    std::thread releaser([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        released = true;
        m_folder.write("release", "");
    });
    ScopedEnvironment edit("MELODEX_STANDIN_EDIT", "1");
    ScopedEnvironment release("MELODEX_STANDIN_RELEASE", m_folder.file("release").c_str());
    EXPECT_TRUE(theBaseApp.editSong(path));
    EXPECT_TRUE(released) << "editSong returned before the editor ended";
    releaser.join();

    EXPECT_EQ(standinArguments(), (StringArray{"--exclusive", path}));
    EXPECT_EQ(m_dialogs.waitCursorBeginCount(), 1);
    EXPECT_EQ(m_dialogs.waitCursorDepth(), 0);
}

TEST_F(MelodexServicesTest, EditSongWithoutAChangeOrWithoutAnEditorIsFalse) {
    const String path = writeSong("Hymn.song", "Hymn");
    EXPECT_FALSE(theBaseApp.editSong(path)) << "no editor installed";
    installStandins();
    EXPECT_FALSE(theBaseApp.editSong(path)) << "closed without saving";
    EXPECT_EQ(standinArguments(), (StringArray{"--exclusive", path}));
}

TEST_F(MelodexServicesTest, ViewSongDoesNotWaitForTheViewer) {
    const String path = writeSong("A Mighty Fortress.song", "A Mighty Fortress");
    EXPECT_FALSE(theBaseApp.viewSong(path)) << "no viewer installed";
    installStandins();
    ScopedEnvironment release("MELODEX_STANDIN_RELEASE", m_folder.file("release").c_str());
    // The viewer runs until it is released, so this returns only if it did
    // not wait.
    EXPECT_TRUE(theBaseApp.viewSong(path));
    EXPECT_EQ(standinArguments(), StringArray{path});
    m_folder.write("release", "");
    waitForFile("standin.log.done");  // let it end before its folder goes
}

}  // namespace
}  // namespace melodex
