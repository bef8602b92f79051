#include "melodex/library/song_database.h"

#include <chrono>
#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "library_fixture.h"
#include "support/unprivileged.h"

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

TEST_F(SongDatabaseTest, IndexSectionsAreNamedByTheirSongsUuid) {
    // A section named otherwise, whose name is the uuid of a song the scan
    // adds, used to be deleted by that scan; the next open then saw other data.
    writeSong("db/Song Files/A.song", "A", {"First"}, "uuid-a");
    writeSong("db/Song Files/B.song", "B", {"Second"}, "odd-name");
    m_folder.write(indexFile(), "[odd-name]\nfilename=A.song\nuuid=uuid-a\ntitle=A\n");
    m_db.open();
    ASSERT_EQ(m_db.getFileCount(), 2);
    m_db.close();
    const IniFile index = readIndex();
    ASSERT_EQ(index.getKeyCount(), 2);
    EXPECT_EQ(index.findKey("uuid-a")->getString("filename"), "A.song");
    EXPECT_EQ(index.findKey("odd-name")->getString("filename"), "B.song");
    const String saved = m_folder.read(indexFile());
    m_db.open();
    EXPECT_FALSE(m_db.changed());
    m_db.close();
    EXPECT_EQ(m_folder.read(indexFile()), saved);
}

TEST_F(SongDatabaseTest, TwoLibrariesWorkSideBySide) {
    SongDatabase other;
    other.setDatabaseFolder(m_folder.file("other"));
    other.setHostName("CHOIRPC");
    m_db.open();
    other.open();
    ASSERT_NE(m_db.importFile(writeSong("in/One.song", "One", {"a"}, "one-1"), true, true),
              nullptr);
    ASSERT_NE(other.importFile(writeSong("in/Two.song", "Two", {"b"}, "two-1"), true, true),
              nullptr);
    EXPECT_NE(m_db.findEntryByUUID("one-1"), nullptr);
    EXPECT_EQ(m_db.findEntryByUUID("two-1"), nullptr);
    EXPECT_NE(other.findEntryByUUID("two-1"), nullptr);
    EXPECT_EQ(other.findEntryByUUID("one-1"), nullptr);
    EXPECT_EQ(songFiles(), StringArray{"One.song"});
    EXPECT_TRUE(fileExists(m_folder.file("other/Song Files/Two.song")));
    other.close();
    m_db.close();
}

TEST_F(SongDatabaseTest, ChangesWaitForOtherProgramsAndTakeInWhatTheyDid) {
    // Two objects over one folder stand for two programs sharing a library.
    SongDatabase second;
    second.setDatabaseFolder(m_folder.file("db"));
    second.setHostName("CHOIRPC");
    m_db.open();
    second.open();
    const String hymn = writeSong("in/Hymn.song", "Hymn", {"Line"}, "hymn-1");
    ASSERT_NE(m_db.importFile(writeSong("in/Gone.song", "Gone", {"x"}, "gone-1"), true, true),
              nullptr);

    // While the first holds the lock, the second waits, tells so, and gives
    // up at its limit without writing anything.
    ASSERT_TRUE(m_db.beginChanges());
    int notices = 0;
    second.setLockTimeout(std::chrono::milliseconds(40));
    second.setLockWaitNotice([&](const String&) { ++notices; });
    EXPECT_EQ(second.importFile(hymn, true, true), nullptr);
    EXPECT_EQ(second.lastError().status, StatusLockTimedOut);
    EXPECT_EQ(notices, 1);
    ASSERT_NE(m_db.importFile(hymn, false, true), nullptr);
    m_db.endChanges();

    // Once it has the lock, the second sees the first's songs: the same song
    // is not imported twice, and the index it saves holds both.
    second.setLockTimeout(std::chrono::seconds(5));
    EXPECT_EQ(second.importFile(hymn, true, true), nullptr);
    EXPECT_FALSE(second.lastError());
    ASSERT_NE(second.findEntryByUUID("hymn-1"), nullptr);
    second.removeEntry(second.findEntryByUUID("gone-1"), true);
    EXPECT_EQ(readIndex().getKeyCount(), 1);
    EXPECT_EQ(songFiles(), StringArray{"Hymn.song"});

    // And the first takes in the second's removal before its next change.
    ASSERT_TRUE(m_db.beginChanges());
    EXPECT_EQ(m_db.findEntryByUUID("gone-1"), nullptr);
    EXPECT_EQ(m_db.getFileCount(), 1);
    m_db.endChanges();
    second.close();
    m_db.close();
    EXPECT_EQ(readIndex().getKeyCount(), 1);
}

TEST_F(SongDatabaseTest, FailuresAreKeptForTheProgramToShow) {
    // No folder: nothing is read or written anywhere, least of all here.
    SongDatabase nowhere;
    EXPECT_EQ(nowhere.open(), 0u);
    EXPECT_EQ(nowhere.lastError().status, StatusNoFolder);
    EXPECT_EQ(nowhere.importFile(writeSong("in/A.song", "A", {"a"}), true, true), nullptr);
    EXPECT_EQ(nowhere.lastError().status, StatusNoFolder);

    // An index that cannot be written: open and flush keep returning 0, and
    // the reason is there to read.
    writeSong("db/Song Files/A.song", "A", {"a"}, "a-1");
    ASSERT_TRUE(createFolders(indexFile()));
    EXPECT_EQ(m_db.open(), 0u);
    EXPECT_EQ(m_db.lastError().status, StatusNotRegularFile);
    EXPECT_EQ(m_db.lastError().path, indexFile());
    EXPECT_EQ(m_db.flush(), 0u);
    EXPECT_EQ(m_db.lastError().action, FileError::Action::Write);
    EXPECT_TRUE(m_db.changed()) << "close() tries again";
    m_db.close();
    fs::remove(indexFile());

    // A read-only library writes nothing at all, not even a lock file.
    fs::remove(m_db.lockPath());
    const StringArray before = songFiles();
    SongDatabase reader;
    reader.setDatabaseFolder(m_folder.file("db"));
    reader.setHostName("CHOIRPC");
    reader.setReadOnly(true);
    reader.open();
    EXPECT_FALSE(reader.lastError());
    EXPECT_NE(reader.findEntryByUUID("a-1"), nullptr);
    EXPECT_EQ(reader.importFile(writeSong("in/B.song", "B", {"b"}), true, true), nullptr);
    EXPECT_EQ(reader.lastError().status, StatusReadOnly);
    reader.flush();
    reader.close();
    EXPECT_EQ(songFiles(), before);
    EXPECT_FALSE(fileExists(indexFile()));
    EXPECT_FALSE(fileExists(m_db.lockPath()));
}

TEST_F(SongDatabaseTest, ARemovalThatFailsKeepsTheSong) {
    ASSERT_EQ(::chmod(m_folder.path().c_str(), 0755), 0);
    writeSong("db/Song Files/A.song", "A", {"a"}, "a-1");
    m_db.open();
    m_db.close();
    // The user may write the library's index and lock, but not delete songs.
    for (const String& path : {m_folder.file("db"), indexFile(), m_db.lockPath()})
        ASSERT_EQ(::chown(path.c_str(), test::UnprivilegedId, test::UnprivilegedId), 0);
    ASSERT_EQ(::chmod(libraryFile("").c_str(), 0555), 0);
    const int result = test::asUnprivileged([&] {
        SongDatabase library;
        library.setDatabaseFolder(m_folder.file("db"));
        library.setHostName("CHOIRPC");
        library.open();
        if (library.lastError()) return 1;
        library.removeEntry(library.findEntryByUUID("a-1"), true);
        const FileError error = library.lastError();
        if (error.action != FileError::Action::Remove || error.status != EACCES) return 2;
        if (library.findEntryByUUID("a-1") == nullptr) return 3;
        library.close();
        return 0;
    });
    ::chmod(libraryFile("").c_str(), 0755);
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(fileExists(libraryFile("A.song")));
    EXPECT_NE(readIndex().findKey("a-1"), nullptr);
}

}  // namespace
}  // namespace melodex
