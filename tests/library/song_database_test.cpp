#include "melodex/library/song_database.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include <gtest/gtest.h>

#include "library_fixture.h"
#include "melodex/app/melodex.h"
#include "support/scripted_dialogs.h"

namespace melodex {
namespace {

using test::LibraryTest;

using SongDatabaseTest = LibraryTest;

TEST_F(SongDatabaseTest, ImportsByTitleNumberingNamesThatAreTaken) {
    m_db.open();
    for (const char* source : {"a/first.song", "b/second.song", "c/third.song"})
        writeSong(source, "Hymn", {"Holy, holy, holy"});
    ASSERT_NE(m_db.importFile(m_folder.file("a/first.song"), false, true), nullptr);
    ASSERT_NE(m_db.importFile(m_folder.file("b/second.song"), false, true), nullptr);
    SongDBFileEntry* third = m_db.importFile(m_folder.file("c/third.song"), true, true);
    ASSERT_NE(third, nullptr);
    EXPECT_EQ(songFiles(), (StringArray{"Hymn 2.song", "Hymn 3.song", "Hymn.song"}));
    EXPECT_EQ(third->filename(), "Hymn 3.song");
    EXPECT_EQ(third->path(), libraryFile("Hymn 3.song"));

    // Without nameByTitle, or without a title, the source file names it; a
    // title that cannot be a file name is made into one.
    writeSong("d/Source Name.song", "Ignored Title", {"line"});
    writeSong("e/untitled.song", "", {"Only lyrics"});
    writeSong("f/slash.song", "Joy/Sorrow: \"Why?\"", {"line"});
    EXPECT_EQ(m_db.importFile(m_folder.file("d/Source Name.song"), false, false)->filename(),
              "Source Name.song");
    EXPECT_EQ(m_db.importFile(m_folder.file("e/untitled.song"), false, true)->filename(),
              "untitled.song");
    EXPECT_EQ(m_db.importFile(m_folder.file("f/slash.song"), false, true)->filename(),
              "Joy-Sorrow- Why.song");
    // No staging file is left behind.
    EXPECT_EQ(songFiles().size(), 6u);

    // Every import got its index section, saved with `save`.
    const IniFile index = readIndex(indexFile());
    EXPECT_EQ(index.getKeyCount(), 3);  // saved after the third import
    EXPECT_EQ(index.findKey(third->uuid())->getString("filename"), "Hymn 3.song");
}

TEST_F(SongDatabaseTest, ASongAlreadyImportedIsRefusedAndWritesNothing) {
    m_db.open();
    const String source = writeSong("in/Abide.song", "Abide with Me", {"Abide with me"});
    SongDBFileEntry* first = m_db.importFile(source, true, true);
    ASSERT_NE(first, nullptr);
    const String indexBefore = m_folder.read(indexFile());

    EXPECT_EQ(m_db.importFile(source, true, true), nullptr);
    EXPECT_EQ(songFiles(), StringArray{"Abide with Me.song"});
    EXPECT_EQ(m_db.getFileCount(), 1);
    EXPECT_EQ(m_folder.read(indexFile()), indexBefore);

    // Uuids compare ignoring case.
    String upper = first->uuid();
    std::transform(upper.begin(), upper.end(), upper.begin(), ::toupper);
    EXPECT_EQ(m_db.findEntryByUUID(upper), first);
}

TEST_F(SongDatabaseTest, TextFilesAndSongsWithoutUuidGetFreshOnes) {
    m_db.open();
    const String text = m_folder.write("in/Rock of Ages.txt",
                                       "Rock of Ages, cleft for me,\nLet me hide myself in Thee\n");
    SongDBFileEntry* first = m_db.importFile(text, false, false);
    SongDBFileEntry* second = m_db.importFile(text, false, false);
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr) << "a text file carries no uuid, so it imports again";
    EXPECT_NE(first->uuid(), second->uuid());
    EXPECT_EQ(second->filename(), "Rock of Ages 2.song");
    // The source is read, never written.
    EXPECT_EQ(m_folder.read(text), "Rock of Ages, cleft for me,\nLet me hide myself in Thee\n");

    // The library copy is a song XML file that keeps the uuid.
    Song copy;
    ASSERT_EQ(copy.loadFromFile(first->path()), 0u);
    EXPECT_EQ(copy.loadedFileType(), SongFileType::Song);
    EXPECT_EQ(copy.uuid(), first->uuid());
}

TEST_F(SongDatabaseTest, NotASongIsNeitherImportedNorListedNorWritten) {
    const String binary("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16);
    const String html = "<html><body>Not a song</body></html>";
    m_folder.write("in/picture.xml", binary);
    m_folder.write("in/page.xml", html);
    m_folder.write("in/empty.txt", "");
    m_folder.write("Song Database/Song Files/picture.song", binary);
    m_folder.write("Song Database/Song Files/page.song", html);

    m_db.open();
    EXPECT_EQ(m_db.getFileCount(), 0);
    EXPECT_FALSE(m_db.importFolder(m_folder.file("in")));
    EXPECT_EQ(m_db.importFile(m_folder.file("in/missing.song"), true, true), nullptr);
    EXPECT_EQ(m_folder.read(libraryFile("picture.song")), binary);
    EXPECT_EQ(m_folder.read(libraryFile("page.song")), html);
    EXPECT_EQ(m_folder.read("in/page.xml"), html);
    EXPECT_EQ(songFiles(), (StringArray{"page.song", "picture.song"}));
}

TEST_F(SongDatabaseTest, OpenBuildsTheIndexFromTheFolderAndReadsItBack) {
    // The first section is blank: the song has no first line, although the
    // second section has lyrics.
    Song hymn = makeSong("Holy, Holy, Holy", {{"", " "}, {"Holy, holy, holy! Lord God Almighty!"}});
    hymn.info().setAuthor("Reginald Heber");
    hymn.info().setKey("D");
    hymn.info().setAttribute("tempo", "Slow");
    hymn.info().addIndex("Early in the morning");
    hymn.info().addCategory("Trinity");
    writeSong("Song Database/Song Files/Holy.song", hymn);
    writeSong("Song Database/Song Files/Abide.song", "abide with me", {"Abide with me"});
    m_folder.write("Song Database/Song Files/Notes.txt", "Remember the capo\n");
    createFolders(libraryFile("Sub"));
    writeSong("Song Database/Song Files/Sub/Deep.song", "Deep", {"Deep"});

    m_db.open();
    ASSERT_EQ(m_db.getFileCount(), 2) << "only the folder's own .song files are listed";
    EXPECT_FALSE(m_db.changed());
    // Sorted ignoring blanks and case; "Abide with me" is both the title
    // and the first line, so it is listed twice when read from the file.
    EXPECT_EQ(texts(), (StringArray{"abide with me", "Abide with me", "Early in the morning",
                                    "Holy, Holy, Holy"}));

    const IniFile index = readIndex(indexFile());
    ASSERT_EQ(index.getKeyCount(), 2);
    const ConfigKey& holy = *index.findKey(m_db.findEntryByFilename("HOLY.SONG")->uuid());
    // Every value in its place; the empty time signature too.
    const StringArray expectedNames{"filename", "uuid",  "updated",       "title",  "author",
                                    "key",      "tempo", "timesignature", "index1", "category1"};
    ASSERT_EQ(holy.getValueCount(), int(expectedNames.size()));
    for (int i = 0; i < holy.getValueCount(); ++i)
        EXPECT_EQ(holy.getValue(i).name(), expectedNames[std::size_t(i)]);
    EXPECT_EQ(holy.getString("updated"),
              fileModificationTime(libraryFile("Holy.song"))->format("%Y%m%d%H%M%S"));
    m_db.close();

    // Reopened from the index: the titles come from there, the first line
    // equal to the title (ignoring case) is listed once, and nothing changes.
    const String indexBefore = m_folder.read(indexFile());
    m_db.open();
    EXPECT_FALSE(m_db.changed());
    EXPECT_EQ(texts(), (StringArray{"abide with me", "Early in the morning", "Holy, Holy, Holy"}));
    EXPECT_EQ(m_db.findEntryByFilename("Abide.song")->firstline(), "");
    EXPECT_EQ(m_db.findEntryByFilename("Holy.song")->categoriesAsString(", "), "Trinity");
    m_db.close();
    EXPECT_EQ(m_folder.read(indexFile()), indexBefore);
}

TEST_F(SongDatabaseTest, NextOpenPicksUpFilesChangedOrDeletedOutside) {
    writeSong("Song Database/Song Files/Grace.song", "Amazing Grace", {"Amazing grace"});
    writeSong("Song Database/Song Files/Gone.song", "Gone", {"Soon deleted"});
    writeSong("Song Database/Song Files/Spoilt.song", "Spoilt", {"Soon no song"});
    m_db.open();
    const String graceUuid = m_db.findEntryByFilename("Grace.song")->uuid();
    const String goneUuid = m_db.findEntryByFilename("Gone.song")->uuid();
    m_db.close();

    // Edited outside: a new title and index entry, and a new time.
    Song edited;
    ASSERT_EQ(edited.loadFromFile(libraryFile("Grace.song")), 0u);
    edited.info().setTitle("Amazing Grace (New Britain)");
    edited.info().addIndex("How sweet the sound");
    ASSERT_EQ(edited.saveToFile(libraryFile("Grace.song"), 1), 0u);
    touch(libraryFile("Grace.song"), -3600);
    ASSERT_EQ(removeFile(libraryFile("Gone.song")), 0u);
    m_folder.write("Song Database/Song Files/Spoilt.song", "<html>No song</html>");
    touch(libraryFile("Spoilt.song"), -60);

    m_db.open();
    EXPECT_FALSE(m_db.changed()) << "the changes were saved by open";
    EXPECT_EQ(m_db.getFileCount(), 1);
    EXPECT_EQ(m_db.findEntryByUUID(goneUuid), nullptr);
    EXPECT_EQ(m_db.findEntryByFilename("Spoilt.song"), nullptr) << "no longer a song";
    EXPECT_EQ(m_folder.read(libraryFile("Spoilt.song")), "<html>No song</html>");
    SongDBFileEntry* grace = m_db.findEntryByUUID(graceUuid);
    ASSERT_NE(grace, nullptr);
    EXPECT_EQ(grace->title(), "Amazing Grace (New Britain)");
    EXPECT_EQ(texts(),
              (StringArray{"Amazing grace", "Amazing Grace (New Britain)", "How sweet the sound"}));
    EXPECT_EQ(grace->updated(), *fileModificationTime(libraryFile("Grace.song")));

    const IniFile index = readIndex(indexFile());
    EXPECT_EQ(index.getKeyCount(), 1);
    EXPECT_EQ(index.findKey(goneUuid), nullptr);
    EXPECT_EQ(index.findKey(graceUuid)->getString("index1"), "How sweet the sound");
}

TEST_F(SongDatabaseTest, TwoHostsKeepTwoIndexesOverOneFolder) {
    SongDatabase other;
    other.setDatabaseFolder(databaseFolder());
    other.setHostName("LAPTOP");
    writeSong("Song Database/Song Files/Shared.song", "Shared", {"Shared"});
    m_db.open();
    other.open();
    writeSong("in/New.song", "New", {"New"});
    ASSERT_NE(other.importFile(m_folder.file("in/New.song"), true, true), nullptr);
    m_db.close();
    other.close();

    EXPECT_EQ(readIndex(indexFile("CHOIRPC")).getKeyCount(), 1);
    EXPECT_EQ(readIndex(indexFile("LAPTOP")).getKeyCount(), 2);
    // The other computer's import is found by the next open here.
    m_db.open();
    EXPECT_EQ(m_db.getFileCount(), 2);
    EXPECT_TRUE(m_db.findEntryByFilename("New.song"));
    EXPECT_EQ(m_db.indexPath(), indexFile("CHOIRPC"));
}

TEST_F(SongDatabaseTest, IndexValuesAreDataNeverPaths) {
    // Files that a hostile index points at, outside the song files folder.
    const String outside = writeSong("Song Database/Precious.song", "Precious", {"Keep me"});
    const String precious = m_folder.read(outside);
    writeSong("Song Database/Song Files/Sub/Nested.song", "Nested", {"Keep me too"});
    m_folder.write(indexFile(),
                   "[evil-1]\nfilename=../Precious.song\nuuid=evil-1\ntitle=Evil\n"
                   "[evil-2]\nfilename=Sub/Nested.song\n"
                   "[evil-3]\nfilename=..\n"
                   "[evil-4]\nfilename=" +
                       outside + "\n");

    m_db.open();
    EXPECT_EQ(m_db.getFileCount(), 0);
    EXPECT_EQ(m_db.findEntryByUUID("evil-1"), nullptr);
    EXPECT_EQ(readIndex(indexFile()).getKeyCount(), 0) << "the sections were dropped";

    // Even an entry made to point outside by hand is not deleted there.
    SongDBFileEntry stray(&m_db);
    IniFile crafted;
    crafted.loadFromString("[x]\nfilename=../Precious.song\n");
    EXPECT_FALSE(stray.load(crafted.findKey("x")));
    m_db.removeEntry(&stray, true);
    m_db.close();
    EXPECT_EQ(m_folder.read(outside), precious);
    EXPECT_TRUE(fileExists(libraryFile("Sub/Nested.song")));
}

TEST_F(SongDatabaseTest, BadIndexesHealAndLoseNothingOnDisk) {
    const String kept = writeSong("Song Database/Song Files/Kept.song", "Kept", {"Still here"});
    Song kept2;
    ASSERT_EQ(kept2.loadFromFile(kept), 0u);
    const String uuid = kept2.uuid();
    const String songBytes = m_folder.read(kept);

    struct Case {
        const char* what;
        String index;
    };
    const Case cases[] = {
        {"truncated", "[" + uuid + "]\nfilename=Kept.song\nuuid=" + uuid + "\nupdated=2024"},
        {"a section without values", "[" + uuid + "]\n"},
        {"a section naming a missing file", "[gone]\nfilename=Gone.song\n"},
        {"bytes that are no INI at all", String("\0\xff\xfe garbage \x01\x02", 14)},
        {"two sections for one file",
         "[" + uuid + "]\nfilename=Kept.song\n[old]\nfilename=Kept.song\ntitle=Old\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        m_folder.write(indexFile(), c.index);
        m_db.open();
        ASSERT_EQ(m_db.getFileCount(), 1);
        ASSERT_NE(m_db.findEntryByUUID(uuid), nullptr);
        EXPECT_EQ(texts(), (StringArray{"Kept", "Still here"}));
        m_db.close();
        const IniFile index = readIndex(indexFile());
        ASSERT_EQ(index.getKeyCount(), 1);
        EXPECT_EQ(index.findKey(uuid)->getString("title"), "Kept");
        EXPECT_EQ(m_folder.read(kept), songBytes);
        // Healed: the next open reads the index as it is.
        m_db.open();
        EXPECT_FALSE(m_db.changed());
        EXPECT_EQ(m_db.findEntryByUUID(uuid)->title(), "Kept");
        m_db.close();
    }
}

TEST_F(SongDatabaseTest, ACopiedSongFileInsideTheFolderGetsAUuidOfItsOwn) {
    const String original = writeSong("Song Database/Song Files/Hymn.song", "Hymn", {"Verse"});
    m_db.open();
    m_db.close();
    std::filesystem::copy_file(original, libraryFile("Hymn copy.song"));

    m_db.open();
    ASSERT_EQ(m_db.getFileCount(), 2);
    SongDBFileEntry* a = m_db.findEntryByFilename("Hymn.song");
    SongDBFileEntry* b = m_db.findEntryByFilename("Hymn copy.song");
    EXPECT_NE(a->uuid(), b->uuid());
    EXPECT_EQ(m_db.findEntryByUUID(b->uuid()), b);
    Song copy;
    ASSERT_EQ(copy.loadFromFile(libraryFile("Hymn copy.song")), 0u);
    EXPECT_EQ(copy.uuid(), b->uuid()) << "the new uuid is kept in the file";
    m_db.close();

    m_db.open();
    EXPECT_FALSE(m_db.changed());
    EXPECT_EQ(m_db.getFileCount(), 2);
}

TEST_F(SongDatabaseTest, RemoveEntryDeletesTheLibraryCopyAndItsSection) {
    writeSong("Song Database/Song Files/One.song", "One", {"First"});
    writeSong("Song Database/Song Files/Two.song", "Two", {"Second"});
    m_db.open();
    SongDBFileEntry* one = m_db.findEntryByFilename("One.song");
    const String uuid = one->uuid();
    m_db.removeEntry(one, true);

    EXPECT_EQ(m_db.getFileCount(), 1);
    EXPECT_EQ(m_db.findEntryByUUID(uuid), nullptr);
    EXPECT_EQ(m_db.findEntryByFilename("One.song"), nullptr);
    EXPECT_EQ(texts(), (StringArray{"Second", "Two"}));
    EXPECT_EQ(songFiles(), StringArray{"Two.song"});
    EXPECT_EQ(readIndex(indexFile()).findKey(uuid), nullptr);
    EXPECT_FALSE(m_db.changed());
}

TEST_F(SongDatabaseTest, ImportFolderGoesToAnyDepthOnceAndReportsEachFile) {
    writeSong("in/A.song", "A", {"a"});
    m_folder.write("in/deeper/B.txt", "b\n");
    m_folder.write("in/deeper/still/C.xml",
                   "<song><title>C</title><lyrics>[V]\n c line</lyrics></song>");
    m_folder.write("in/deeper/readme.md", "not a song file name");
    m_folder.write("in/deeper/broken.song", std::string("\0\0", 2));
    std::filesystem::create_directory_symlink(m_folder.file("in"), m_folder.file("in/deeper/loop"));

    m_db.open();
    std::vector<std::pair<String, bool>> reported;
    test::ScriptedDialogs dialogs;
    theBaseApp.setDialogs(&dialogs);
    EXPECT_TRUE(m_db.importFolder(m_folder.file("in"), [&](const String& path, bool imported) {
        reported.emplace_back(fileNameOf(path), imported);
    }));
    theBaseApp.setDialogs(nullptr);
    EXPECT_EQ(reported,
              (std::vector<std::pair<String, bool>>{
                  {"A.song", true}, {"B.txt", true}, {"broken.song", false}, {"C.xml", true}}));
    EXPECT_EQ(m_db.getFileCount(), 3);
    EXPECT_EQ(dialogs.waitCursorBeginCount(), 1);
    EXPECT_EQ(dialogs.waitCursorDepth(), 0);
    EXPECT_TRUE(m_db.changed()) << "importFolder does not save";
    EXPECT_FALSE(fileExists(indexFile()));
    EXPECT_FALSE(m_db.importFolder(m_folder.file("missing")));
}

TEST_F(SongDatabaseTest, TheImportCommandsAskThroughTheDialogs) {
    test::ScriptedDialogs dialogs;
    theBaseApp.setDialogs(&dialogs);
    m_db.open();
    const String a = writeSong("in/A.song", "A", {"a"});
    writeSong("folder/C.song", "C", {"c"});
    dialogs.answerCancel();
    m_db.selectAndImportFiles();
    dialogs.answerOpenFiles({a, a});
    m_db.selectAndImportFiles();
    EXPECT_EQ(readIndex(indexFile()).getKeyCount(), 1) << "saved after the import";
    dialogs.answerFolder(m_folder.file("folder"));
    m_db.selectAndImportFolder();
    EXPECT_EQ(readIndex(indexFile()).getKeyCount(), 2);
    theBaseApp.setDialogs(nullptr);

    ASSERT_EQ(dialogs.requests().size(), 3u);
    const FileDialogRequest& files = dialogs.requests()[1].file;
    EXPECT_EQ(dialogs.requests()[1].kind, test::ScriptedDialogs::Kind::OpenFiles);
    EXPECT_EQ(files.filter, String(SongFileOpenFilter));
    EXPECT_EQ(files.fileNameBufferLength, 16834);
    EXPECT_TRUE(files.fileMustExist);
    EXPECT_EQ(dialogs.requests()[2].folder.title, "Select Folder for Import");
}

TEST_F(SongDatabaseTest, ReloadRereadsAnEditedSongIntoTheSameObject) {
    writeSong("Song Database/Song Files/Hymn.song", "Old Title", {"Old first line"});
    m_db.open();
    SongDBFileEntry* entry = m_db.findEntryByFilename("Hymn.song");
    Song* held = entry->song();
    const String uuid = entry->uuid();

    Song edited = makeSong("New Title", {{"", "New first line"}});
    edited.uuid(uuid);
    edited.info().addIndex("Zion");
    writeSong("Song Database/Song Files/Hymn.song", edited);
    m_db.reload(entry);

    EXPECT_EQ(entry->song(), held);
    EXPECT_EQ(held->info().title(), "New Title");
    EXPECT_EQ(entry->title(), "New Title");
    EXPECT_EQ(entry->firstline(), "New first line");
    EXPECT_EQ(texts(), (StringArray{"New first line", "New Title", "Zion"}));
    EXPECT_FALSE(m_db.changed()) << "reload saves the index";
    EXPECT_EQ(readIndex(indexFile()).findKey(uuid)->getString("title"), "New Title");

    // A file that no longer reads as a song leaves the entry as it was.
    m_folder.write("Song Database/Song Files/Hymn.song", "<other/>");
    m_db.reload(entry);
    EXPECT_EQ(entry->title(), "New Title");
    EXPECT_EQ(texts().size(), 3u);
    m_db.close();
    EXPECT_EQ(m_folder.read(libraryFile("Hymn.song")), "<other/>");
}

TEST_F(SongDatabaseTest, LookupsFollowEveryRemovalAndAnEntryClearedByHand) {
    m_db.open();
    for (int i = 0; i < 40; ++i) {
        Song song = makeSong("Song " + std::to_string(i), {{"line"}});
        ASSERT_NE(m_db.importSong(song, "", false, true), nullptr);
    }
    for (int i = 0; i < 40; i += 2)
        m_db.removeEntry(m_db.findEntryByFilename("Song " + std::to_string(i) + ".song"), false);
    for (int i = 0; i < 40; ++i) {
        SongDBFileEntry* entry = m_db.findEntryByFilename("SONG " + std::to_string(i) + ".SONG");
        ASSERT_EQ(entry != nullptr, i % 2 == 1) << i;
        if (entry) {
            EXPECT_EQ(m_db.findEntryByUUID(entry->uuid()), entry);
        }
    }
    SongDBFileEntry* cleared = m_db.findEntryByFilename("Song 1.song");
    const String uuid = cleared->uuid();
    cleared->clear();
    EXPECT_EQ(m_db.findEntryByUUID(uuid), nullptr);
    EXPECT_EQ(m_db.findEntryByFilename("Song 1.song"), nullptr);
    EXPECT_NE(m_db.findEntryByFilename("Song 3.song"), nullptr);
}

}  // namespace
}  // namespace melodex
