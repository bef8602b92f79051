#include "melodex/library/song_database.h"

#include <chrono>
#include <filesystem>

#include <gtest/gtest.h>

#include "library_fixture.h"

namespace melodex {
namespace {

namespace fs = std::filesystem;

using SongDatabaseTest = test::LibraryTest;

TEST_F(SongDatabaseTest, ImportNamesTheCopyRefusesAKnownUuidAndRemovalsKeepLookupsInStep) {
    m_db.open();
    const std::tuple<const char*, const char*, bool, const char*> rows[] = {
        {"a/1.song", "Hymn", true, "Hymn.song"},
        {"b/2.song", "Hymn", true, "Hymn 2.song"},
        {"c/3.song", "Hymn", true, "Hymn 3.song"},
        {"d/Source Name.song", "Ignored Title", false, "Source Name.song"},
        {"e/untitled.song", "", true, "untitled.song"},
        {"f/slash.song", "Joy/Sorrow: \"Why?\"", true, "Joy-Sorrow- Why.song"}};
    for (const auto& [source, title, byTitle, name] : rows) {
        const bool save = String(name) == "Hymn 3.song";
        SongDBFileEntry* entry = m_db.importFile(writeSong(source, title, {name}), save, byTitle);
        ASSERT_NE(entry, nullptr) << source;
        EXPECT_EQ(entry->path(), libraryFile(name));
    }
    EXPECT_EQ(songFiles().size(), 6u) << "no staging file is left behind";
    EXPECT_EQ(readIndex().getKeyCount(), 3) << "saved by the third import only";

    m_db.removeEntry(m_db.findEntryByFilename("Hymn.song"), false);
    m_db.removeEntry(m_db.findEntryByFilename("hymn 3.SONG"), true);
    m_db.findEntryByFilename("untitled.song")->clear();  // by hand
    EXPECT_EQ(songFiles().size(), 4u) << "the library's copies are deleted";
    EXPECT_EQ(readIndex().getKeyCount(), 4);
    EXPECT_EQ(m_db.getEntryCount(), 8);
    EXPECT_FALSE(m_db.findEntryByFilename("Hymn.song") || m_db.findEntryByFilename("Hymn 3.song") ||
                 m_db.findEntryByFilename("untitled.song"));
    for (const char* name : {"Hymn 2.song", "Source Name.song", "Joy-Sorrow- Why.song"}) {
        SongDBFileEntry* entry = m_db.findEntryByFilename(name);
        ASSERT_NE(entry, nullptr) << name;
        EXPECT_EQ(m_db.findEntryByUUID(entry->uuid()), entry);
    }

    // A song whose uuid is in the library is refused, and nothing written.
    const String source = writeSong("in/Abide.song", "Abide", {"Abide with me"}, "abide-0001");
    m_dialogs.answerCancel();
    m_db.selectAndImportFiles();
    m_dialogs.answerOpenFiles({source, source});
    m_db.selectAndImportFiles();
    EXPECT_EQ(songFiles().size(), 5u);
    EXPECT_EQ(readIndex().getKeyCount(), 5) << "saved after the import";
    const String indexBefore = m_folder.read(indexFile());
    EXPECT_EQ(m_db.importFile(source, true, true), nullptr);
    EXPECT_EQ(m_folder.read(indexFile()), indexBefore);
    EXPECT_NE(m_db.findEntryByUUID("ABIDE-0001"), nullptr) << "uuids compare ignoring case";
    const FileDialogRequest& request = m_dialogs.requests().at(1).file;
    EXPECT_EQ(request.filter, String(SongFileOpenFilter));
    EXPECT_EQ(request.fileNameBufferLength, 16834);
    EXPECT_TRUE(request.fileMustExist);

    // A text file carries no uuid: each import gives a fresh one.
    const String content = "Rock of Ages, cleft for me,\nLet me hide myself in Thee\n";
    const String text = m_folder.write("in/Rock of Ages.txt", content);
    SongDBFileEntry* a = m_db.importFile(text, false, false);
    SongDBFileEntry* b = m_db.importFile(text, false, false);
    ASSERT_TRUE(a && b);
    EXPECT_NE(a->uuid(), b->uuid());
    EXPECT_EQ(b->filename(), "Rock of Ages 2.song");
    EXPECT_EQ(m_folder.read(text), content) << "the source is never written";
    Song copy;
    ASSERT_EQ(copy.loadFromFile(a->path()), 0u);
    EXPECT_EQ(copy.loadedFileType(), SongFileType::Song);
    EXPECT_EQ(copy.uuid(), a->uuid());
}

TEST_F(SongDatabaseTest, OpenBuildsTheIndexFromTheFolderAndReadsItBack) {
    fs::copy(test::testDataPath("library/songs"), libraryFile(""), fs::copy_options::recursive);
    m_db.open();
    // Read from the file, a first line equal to the title is listed too.
    EXPECT_EQ(texts(), (StringArray{"abide with me", "Abide with me", "Early in the morning",
                                    "Holy, Holy, Holy"}));
    const String updated = fileModificationTime(libraryFile("Holy.song"))->format("%Y%m%d%H%M%S");
    EXPECT_EQ(readIndex().findKey("holy-0001")->getString("updated"), updated);
    // Modification times differ from run to run; the rest is fixed.
    StringArray index = split(m_folder.read(indexFile()), "\n");
    for (String& line : index) {
        if (line.starts_with("updated=") && LocalTime::parse(line.substr(8)))
            line = "updated=(mtime)";
    }
    EXPECT_EQ(join(index, "\n"), m_folder.read(test::testDataPath("library/songdb.ini")));
    m_db.close();

    // From the index, a first line equal to the title (ignoring case) is
    // listed once, and nothing is written.
    const String indexBefore = m_folder.read(indexFile());
    m_db.open();
    EXPECT_EQ(texts(), (StringArray{"abide with me", "Early in the morning", "Holy, Holy, Holy"}));
    m_db.close();
    EXPECT_EQ(m_folder.read(indexFile()), indexBefore);
}

TEST_F(SongDatabaseTest, NextOpenPicksUpWhatChangedOutsideOrOnAnotherComputer) {
    const String grace = writeSong("db/Song Files/Grace.song", "Grace", {"Amazing"}, "grace-1");
    writeSong("db/Song Files/Gone.song", "Gone", {"Soon deleted"});
    writeSong("db/Song Files/Spoilt.song", "Spoilt", {"Soon no song"});
    m_db.open();
    m_db.close();
    SongDatabase laptop;  // another computer over the same folder, with its own index
    laptop.setDatabaseFolder(m_folder.file("db"));
    laptop.setHostName("LAPTOP");
    laptop.open();
    ASSERT_NE(laptop.importFile(writeSong("in/New.song", "New", {"New"}), true, true), nullptr);
    EXPECT_EQ(readIndex("LAPTOP").getKeyCount(), 4);

    fs::copy_file(grace, libraryFile("Grace copy.song"));
    m_folder.write(grace,
                   "<song><uuid>grace-1</uuid><info><title>New Grace</title><index>How "
                   "sweet</index></info><block><line>Amazing</line></block></song>");
    ASSERT_EQ(removeFile(libraryFile("Gone.song")), 0u);
    m_folder.write("db/Song Files/Spoilt.song", "<html>No song</html>");
    // Times compare at whole seconds: move them off the second of the index.
    const auto now = fs::file_time_type::clock::now();
    fs::last_write_time(grace, now - std::chrono::hours(1));
    fs::last_write_time(libraryFile("Spoilt.song"), now - std::chrono::minutes(1));

    m_db.open();
    EXPECT_EQ(m_db.getFileCount(), 3) << "Grace, its copy and the other's New; not Spoilt";
    EXPECT_EQ(m_folder.read(libraryFile("Spoilt.song")), "<html>No song</html>");
    SongDBFileEntry* entry = m_db.findEntryByUUID("grace-1");
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->title(), "New Grace");
    EXPECT_EQ(entry->updated(), *fileModificationTime(grace));
    EXPECT_EQ(readIndex().findKey("grace-1")->getString("index1"), "How sweet");
    EXPECT_EQ(readIndex().getKeyCount(), 3);
    // The copy got a uuid of its own, written into its file.
    SongDBFileEntry* copy = m_db.findEntryByFilename("Grace copy.song");
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy->uuid(), "grace-1");
    EXPECT_EQ(m_db.findEntryByUUID(copy->uuid()), copy);
    Song copied;
    ASSERT_EQ(copied.loadFromFile(copy->path()), 0u);
    EXPECT_EQ(copied.uuid(), copy->uuid());
}

TEST_F(SongDatabaseTest, BadIndexesHealAndLoseNothingOnDiskNorReachOutsideTheFolder) {
    const String kept = writeSong("db/Song Files/Kept.song", "Kept", {"Still here"}, "kept-1");
    const String outside = writeSong("db/Precious.song", "Precious", {"Keep me"});
    writeSong("db/Song Files/Sub/Nested.song", "Nested", {"Keep me too"});
    m_folder.write("db/Song Files/picture.song", String("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16));
    m_folder.write("db/Song Files/page.song", "<html><body>Not a song</body></html>");
    const String before =
        m_folder.read(kept) + m_folder.read(outside) + m_folder.read(libraryFile("picture.song"));
    for (const String& bad : {
             String("[kept-1]\nfilename=Kept.song\nuuid=kept-1\nupdated=2024"),  // truncated
             String("[kept-1]\n"),                                               // no values
             String("[gone]\nfilename=Gone.song\n"),                             // file gone
             String("\0\xff\xfe garbage \x01\x02", 14),                          // no INI
             String("[kept-1]\nfilename=Kept.song\n[old]\nfilename=Kept.song\ntitle=Old\n"),
             // Index values are data, never paths.
             "[evil-1]\nfilename=../Precious.song\nuuid=evil-1\n[evil-2]\nfilename=Sub/Nested.song"
             "\n[evil-3]\nfilename=..\n[evil-4]\nfilename=" +
                 outside + "\n",
         }) {
        SCOPED_TRACE(bad);
        m_folder.write(indexFile(), bad);
        m_db.open();
        ASSERT_NE(m_db.findEntryByUUID("kept-1"), nullptr);
        EXPECT_EQ(texts(), (StringArray{"Kept", "Still here"}));
        m_db.close();
        ASSERT_EQ(readIndex().getKeyCount(), 1);
        EXPECT_EQ(readIndex().findKey("kept-1")->getString("title"), "Kept");
        m_db.open();
        EXPECT_FALSE(m_db.changed()) << "healed";
        m_db.close();
    }
    // Even an entry made to point outside by hand is not deleted there.
    SongDBFileEntry stray(&m_db);
    IniFile crafted;
    crafted.loadFromString("[x]\nfilename=../Precious.song\n");
    EXPECT_FALSE(stray.load(crafted.findKey("x")));
    m_db.removeEntry(&stray, true);
    EXPECT_EQ(
        m_folder.read(kept) + m_folder.read(outside) + m_folder.read(libraryFile("picture.song")),
        before);
    EXPECT_EQ(songFiles(), (StringArray{"Kept.song", "Sub", "page.song", "picture.song"}));
    EXPECT_TRUE(fileExists(libraryFile("Sub/Nested.song")));
}

TEST_F(SongDatabaseTest, SongFilesNeverRewriteTheIndexNorLoseTheirUuid) {
    // A uuid that would open a new index section is replaced on import.
    const String crafted = writeSong("in/Crafted.song", "Crafted", {"Line"},
                                     "x&#10;filename=../Precious.song&#10;[y]");
    m_db.open();
    SongDBFileEntry* entry = m_db.importFile(crafted, true, true);
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->uuid().size(), 36u) << entry->uuid();
    EXPECT_EQ(readIndex().getKeyCount(), 1);

    // Saved outside the library without its uuid, the song keeps the one the
    // library knows it by, in the file too.
    const String uuid = entry->uuid();
    m_db.close();
    const String edited = writeSong("db/Song Files/Crafted.song", "Crafted again", {"Line"});
    fs::last_write_time(edited, fs::last_write_time(edited) + std::chrono::seconds(2));
    m_db.open();
    ASSERT_NE(m_db.findEntryByUUID(uuid), nullptr);
    Song onDisk;
    ASSERT_EQ(onDisk.loadFromFile(libraryFile("Crafted.song")), 0u);
    EXPECT_EQ(onDisk.uuid(), uuid);

    // A damaged song file is not rewritten as lines of its own markup.
    m_db.close();
    const String damaged = "<song><info><title>Cut off</title></info><block><line>Half";
    m_folder.write("db/Song Files/Damaged.song", damaged);
    m_db.open();
    EXPECT_EQ(m_folder.read(libraryFile("Damaged.song")), damaged);
    m_db.close();
}

TEST_F(SongDatabaseTest, ReloadKeepsTheKnownUuidAndLeavesDamagedFilesAlone) {
    const String path = writeSong("db/Song Files/Hymn.song", "Hymn", {"Line"}, "hymn-1");
    m_db.open();
    SongDBFileEntry* entry = m_db.findEntryByUUID("hymn-1");
    ASSERT_NE(entry, nullptr);
    writeSong("db/Song Files/Hymn.song", "Hymn again", {"Line"});  // saved without its uuid
    m_db.reload(entry);
    EXPECT_EQ(entry->uuid(), "hymn-1");
    EXPECT_EQ(entry->title(), "Hymn again");
    Song onDisk;
    ASSERT_EQ(onDisk.loadFromFile(path), 0u);
    EXPECT_EQ(onDisk.uuid(), "hymn-1");

    const String damaged = "<song><info><title>Cut off</title></info><block><line>Half";
    m_folder.write(path, damaged);
    m_db.reload(entry);
    EXPECT_EQ(m_folder.read(path), damaged);
    EXPECT_EQ(entry->title(), "Hymn again");
    m_db.close();
}

TEST_F(SongDatabaseTest, ImportFolderGoesToAnyDepthOnceAndReportsEachFile) {
    fs::copy(test::testDataPath("library/import"), m_folder.file("in"),
             fs::copy_options::recursive);
    fs::create_directory_symlink(m_folder.file("in"), m_folder.file("in/deeper/loop"));
    m_db.open();
    String reported;
    EXPECT_TRUE(m_db.importFolder(m_folder.file("in"), [&](const String& path, bool imported) {
        reported += fileNameOf(path) + (imported ? "+ " : "- ");
    }));
    EXPECT_EQ(reported, "A.song+ B.txt+ broken.song- empty.txt- page.xml- C.xml+ ");
    EXPECT_EQ(m_db.getFileCount(), 3);
    EXPECT_EQ(m_dialogs.waitCursorBeginCount(), 1);
    EXPECT_EQ(m_dialogs.waitCursorDepth(), 0);
    EXPECT_FALSE(fileExists(indexFile())) << "importFolder does not save";
    EXPECT_FALSE(m_db.importFolder(m_folder.file("missing")));
    EXPECT_EQ(m_db.importFile(m_folder.file("in/missing.song"), true, true), nullptr);

    writeSong("more/D.song", "D", {"d"});
    m_dialogs.answerFolder(m_folder.file("more"));
    m_db.selectAndImportFolder();
    EXPECT_EQ(m_dialogs.requests().at(0).folder.title, "Select Folder for Import");
    EXPECT_EQ(readIndex().getKeyCount(), 4) << "the command saves";
}

}  // namespace
}  // namespace melodex
