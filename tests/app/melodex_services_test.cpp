#include "melodex/app/melodex.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <thread>

#include <gtest/gtest.h>

#include "melodex/foundation/file_system.h"
#include "melodex/library/song_database.h"
#include "melodex/song/song.h"
#include "support/scoped_environment.h"
#include "support/scripted_dialogs.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

// The services object is process-wide: each test gives it scripted dialogs and
// a program folder with stand-ins for the editor and the viewer (they log
// their arguments), and puts the defaults back afterwards.
class MelodexServicesTest : public ::testing::Test {
protected:
    MelodexServicesTest() {
        theBaseApp.setDialogs(&m_dialogs);
        theBaseApp.setSiblingProgramFolder(m_folder.file("bin"));
        std::filesystem::create_directories(m_folder.file("bin"));
        for (const char* program : {EditorProgramName, ViewerProgramName})
            std::filesystem::copy_file(String(MELODEX_STANDIN_DIR) + "/" + program,
                                       m_folder.file("bin/") + program);
    }
    ~MelodexServicesTest() override {
        theBaseApp.setDialogs(nullptr);
        theBaseApp.setSiblingProgramFolder("");
    }

    String writeSong(const String& name, const String& title) {
        return m_folder.write(name, "<song><info><title>" + title +
                                        "</title></info><block><line>Amazing grace</line>"
                                        "</block></song>");
    }

    // Waits up to ten seconds for a file that a stand-in writes.
    void waitFor(const String& name) const {
        for (int i = 0; i < 1000 && !fileExists(m_folder.file(name)); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    StringArray standinArguments() const {
        waitFor("standin.log");
        return split(m_folder.read("standin.log"), "\n", EmptyPieces::Skip);
    }

    test::TempFolder m_folder;
    test::ScriptedDialogs m_dialogs;
    test::ScopedEnvironment m_log{"MELODEX_STANDIN_LOG", m_folder.file("standin.log").c_str()};
};

TEST_F(MelodexServicesTest, RecognisesLoadsAndSavesSongFilesThroughTheDialogs) {
    EXPECT_TRUE(theBaseApp.isSongFile("/songs/HYMN.TXT"));
    EXPECT_FALSE(theBaseApp.isSongFile("hymn.sng") || theBaseApp.isSongFile("song"));
    EXPECT_EQ(theBaseApp.getSongTitle(writeSong("file name.song", "Be Thou My Vision")),
              "Be Thou My Vision");
    EXPECT_EQ(theBaseApp.getSongTitle(writeSong("Untitled Hymn.song", "")), "Untitled Hymn");
    EXPECT_EQ(theBaseApp.getSongTitle(m_folder.file("missing/Lost Chord.song")), "Lost Chord");
    m_dialogs.answerOpen(writeSong("Hymn.song", "Holy, Holy, Holy"));
    std::unique_ptr<Song> song(theBaseApp.loadSongFile("/srv/songs"));
    ASSERT_TRUE(song);
    EXPECT_EQ(song->info().title(), "Holy, Holy, Holy");
    const FileDialogRequest& request = m_dialogs.requests().at(0).file;
    EXPECT_EQ(request.filter,
              "Song Files (*.song;*.sng;*.xml;*.txt))|*.song; *.sng; *.xml; *.txt|Cantorix Files "
              "(*.song))|*.song|XML Song Files (*.xml)|*.xml|Creative Lifestyle Song Files "
              "(*.sng)|*.sng|Text Files (*.txt)|*.txt|All Files (*.*)|*.*||");
    EXPECT_TRUE(request.fileMustExist && request.initialFolder == "/srv/songs");
    m_dialogs.answerCancel();
    EXPECT_EQ(theBaseApp.loadSongFile(""), nullptr);
    m_dialogs.answerOpen(m_folder.path());  // no song at all
    EXPECT_EQ(theBaseApp.loadSongFile(""), nullptr);

    // The chosen save filter decides type and extension, whatever was typed.
    song->info().setTitle("Abide with Me");
    const std::tuple<const char*, int, const char*, int> cases[] = {
        {"Abide.txt", 1, "Abide.song", 1},
        {"Abide.song", 2, "Abide.txt", 2},
        {"Abide", 3, "Abide.sng", 3},
        {"Abide.with.me.song", 0, "Abide.with.me.song", 1}};
    for (const auto& [typed, filterIndex, written, loadedType] : cases) {
        m_dialogs.answerSave(m_folder.file(typed), filterIndex);
        const String path = theBaseApp.saveSongFile(song.get(), "/start");
        EXPECT_EQ(path, m_folder.file(written)) << typed;
        Song back;
        EXPECT_EQ(back.loadFromFile(path), 0u) << path;
        EXPECT_EQ(back.loadedFileType(), loadedType) << path;
    }
    const FileDialogRequest& saving = m_dialogs.requests().at(3).file;
    EXPECT_EQ(saving.filter,
              "Cantorix Files (*.song))|*.song|Text Files (*.txt)|*.txt|Other "
              "Song Files (*.sng)|*.sng||");
    EXPECT_EQ(saving.proposedName + saving.initialFolder, "Abide with Me/start");
    EXPECT_TRUE(saving.overwritePrompt);
    m_dialogs.answerCancel();
    EXPECT_EQ(theBaseApp.saveSongFile(song.get(), "") + theBaseApp.saveSongFile(nullptr, ""), "");
}

TEST_F(MelodexServicesTest, EditSongWaitsForTheEditorAndViewSongDoesNotWait) {
    const String path = writeSong("It's \"Amazing\" Grace.song", "Amazing Grace");
    EXPECT_FALSE(theBaseApp.editSong(path)) << "closed without saving";
    EXPECT_EQ(standinArguments(), (StringArray{"--exclusive", path}));
    theBaseApp.setSiblingProgramFolder(m_folder.path());
    EXPECT_FALSE(theBaseApp.editSong(path) || theBaseApp.viewSong(path)) << "no such programs";
    theBaseApp.setSiblingProgramFolder(m_folder.file("bin"));

    // This editor saves and ends once released (released at once here): had
    // editSong not waited, it would not have ended yet.
    test::ScopedEnvironment release("MELODEX_STANDIN_RELEASE",
                                    m_folder.write("release", "").c_str());
    {
        test::ScopedEnvironment edit("MELODEX_STANDIN_EDIT", "1");
        EXPECT_TRUE(theBaseApp.editSong(path));
    }
    EXPECT_TRUE(fileExists(m_folder.file("standin.log.done")));
    EXPECT_EQ(m_dialogs.waitCursorDepth(), 0);

    // The viewer runs until released: this returns only if it did not wait.
    ASSERT_EQ(removeFile(m_folder.file("release")) + removeFile(m_folder.file("standin.log")) +
                  removeFile(m_folder.file("standin.log.done")),
              0u);
    EXPECT_TRUE(theBaseApp.viewSong(path));
    EXPECT_EQ(standinArguments(), StringArray{path});
    m_folder.write("release", "");
    waitFor("standin.log.done");  // let it end before its folder goes
}

TEST_F(MelodexServicesTest, EditingALibrarySongReloadsItAndItsIndex) {
    SongDatabase library;
    library.setDatabaseFolder(m_folder.file("db"));
    writeSong("db/Song Files/Hymn.song", "Hymn");
    library.open();
    SongDBFileEntry* entry = library.findEntryByFilename("Hymn.song");
    ASSERT_NE(entry, nullptr);
    Song* held = entry->song();
    const String indexBefore = m_folder.read(library.indexPath());
    EXPECT_FALSE(theBaseApp.editSong(static_cast<SongDBFileEntry*>(nullptr)) ||
                 theBaseApp.viewSong(static_cast<SongDBFileEntry*>(nullptr)));
    EXPECT_FALSE(theBaseApp.editSong(entry)) << "closed without saving";
    EXPECT_EQ(m_folder.read(library.indexPath()), indexBefore);

    const auto stampBefore = fileModificationStamp(library.indexPath());
    // The stand-in saves a line more: it is read into the same song object,
    // and the index is written again. A file that is no song leaves it as it is.
    test::ScopedEnvironment edit("MELODEX_STANDIN_EDIT", "1");
    EXPECT_TRUE(theBaseApp.editSong(entry));
    EXPECT_EQ(standinArguments(), (StringArray{"--exclusive", entry->path()}));
    EXPECT_EQ(entry->song(), held);
    EXPECT_EQ(entry->title(), "Hymn");
    const SongSection& last = *held->getSection(held->getSectionCount() - 1);
    EXPECT_EQ(last.getLine(last.getLineCount() - 1)->text(), "Edited by the stand-in");
    EXPECT_NE(fileModificationStamp(library.indexPath()), stampBefore) << "written again";
    const int texts = library.getEntryCount();
    m_folder.write("db/Song Files/Hymn.song", "<other/>");
    library.reload(entry);
    EXPECT_EQ(library.getEntryCount(), texts);
    EXPECT_EQ(last.getLine(last.getLineCount() - 1)->text(), "Edited by the stand-in");
    ASSERT_EQ(removeFile(m_folder.file("standin.log")), 0u);
    EXPECT_TRUE(theBaseApp.viewSong(entry));
    EXPECT_EQ(standinArguments(), StringArray{entry->path()});
    library.close();
}

}  // namespace
}  // namespace melodex
