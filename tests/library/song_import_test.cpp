#include "melodex/library/song_import.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include <gtest/gtest.h>

#include "library_fixture.h"
#include "support/unprivileged.h"

namespace melodex {
namespace {

namespace fs = std::filesystem;

using SongImportTest = test::LibraryTest;

StringArray namesOf(const std::vector<SongImport::Skipped>& files) {
    StringArray names;
    for (const SongImport::Skipped& file : files)
        names.push_back(fileNameOf(file.path) + ": " + file.describe());
    std::sort(names.begin(), names.end());
    return names;
}

StringArray titlesOf(const std::vector<SongDBFileEntry*>& entries) {
    StringArray titles;
    for (SongDBFileEntry* entry : entries)
        titles.push_back(entry->song()->info().title());
    std::sort(titles.begin(), titles.end());
    return titles;
}

TEST_F(SongImportTest, TakesAFolderAsPeopleHaveIt) {
    // OpenSong files carry no extension, and their names may hold dots.
    const String openSong = m_folder.read(test::testDataPath("opensong/rock_of_ages"));
    m_folder.write("in/OpenSong/Rock of Ages", openSong);
    m_folder.write("in/OpenSong/St. Patrick's Breastplate",
                   "<song><title>St. Patrick's Breastplate</title><lyrics>[V1]\n I bind unto "
                   "myself today</lyrics></song>");
    m_folder.write("in/Copies/Rock of Ages (copy)", openSong);  // the same song again
    writeSong("in/Hymn.song", "Hymn", {"Hymn line"}, "hymn-1");
    m_folder.write("in/Text/Abide With Me.txt", "Abide with me, fast falls the eventide\n");
    m_folder.write("in/README.md", "# My songs\n");
    m_folder.write("in/cover.jpg", String("\xFF\xD8\xFF\xE0\0\x10JFIF\0", 11));
    m_folder.write("in/page.xml", "<html><body>Not a song</body></html>");
    m_folder.write("in/.git/HEAD.song", "<song><title>Hidden</title></song>");
    m_db.open();
    writeSong("db/Song Files/Known.song", "Hymn", {"Hymn line"}, "hymn-1");

    SongImport songImport(m_db);
    StringArray progress;
    songImport.setProgress([&](int number, int total, const String& path) {
        progress.push_back(std::to_string(number) + "/" + std::to_string(total) + " " +
                           fileNameOf(path));
    });
    const SongImport::Report report =
        songImport.run({m_folder.file("in"), m_folder.file("missing.song")});
    EXPECT_EQ(report.found, 8);
    EXPECT_EQ(progress.size(), 8u);
    EXPECT_EQ(progress.front(), "1/8 Rock of Ages (copy)");
    EXPECT_EQ(titlesOf(report.imported),
              (StringArray{"Abide With Me", "Rock of Ages", "St. Patrick's Breastplate"}))
        << "a text song takes its file name as title";
    EXPECT_EQ(namesOf(report.already),
              (StringArray{"Hymn.song: already in the library as Known.song",
                           "Rock of Ages: already in the library as Rock of Ages.song"}));
    EXPECT_EQ(namesOf(report.skipped),
              (StringArray{"README.md: not a song file", "cover.jpg: not a song file",
                           "page.xml: not a song file"}));
    EXPECT_EQ(namesOf(report.failed), StringArray{"missing.song: no such file or folder"});
    EXPECT_TRUE(report.hasFailures());
    EXPECT_FALSE(report.indexError);
    EXPECT_EQ(readIndex().getKeyCount(), 4) << "saved at the end";

    // Again: everything is there already, nothing is written.
    const String index = m_folder.read(indexFile());
    const SongImport::Report again = SongImport(m_db).run({m_folder.file("in")});
    EXPECT_TRUE(again.imported.empty());
    EXPECT_EQ(again.already.size(), 5u);
    EXPECT_FALSE(again.hasFailures());
    EXPECT_EQ(m_folder.read(indexFile()), index);

    // A folder that holds the library too: the library's own files (its
    // songs, index and lock) are not walked as if they were brought in.
    const SongImport::Report whole = SongImport(m_db).run({m_folder.path()});
    EXPECT_EQ(whole.found, 8);
    EXPECT_EQ(whole.skipped.size(), 3u);
    EXPECT_TRUE(whole.imported.empty());
    m_db.close();
}

TEST_F(SongImportTest, SaysWhatCouldNotBeReadOrWritten) {
    ASSERT_EQ(::chmod(m_folder.path().c_str(), 0755), 0);
    writeSong("in/Open.song", "Open", {"a"});
    writeSong("in/Locked.song", "Locked", {"b"});
    writeSong("in/Closed/Inside.song", "Inside", {"c"});
    ASSERT_EQ(::chmod(m_folder.file("in/Locked.song").c_str(), 0600), 0);
    ASSERT_EQ(::chmod(m_folder.file("in/Closed").c_str(), 0700), 0);
    m_db.open();
    m_db.close();
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(m_folder.file("db")))
        ASSERT_EQ(::chown(entry.path().c_str(), test::UnprivilegedId, test::UnprivilegedId), 0);
    ASSERT_EQ(::chown(m_folder.file("db").c_str(), test::UnprivilegedId, test::UnprivilegedId), 0);

    const int result = test::asUnprivileged([&] {
        SongDatabase library;
        library.setDatabaseFolder(m_folder.file("db"));
        library.setHostName("CHOIRPC");
        library.open();
        const SongImport::Report report = SongImport(library).run({m_folder.file("in")});
        const StringArray failed = namesOf(report.failed);
        const String denied = statusMessage(Status(EACCES));
        if (titlesOf(report.imported) != StringArray{"Open"}) return 1;
        if (failed !=
            StringArray{"Closed: cannot read: " + denied, "Locked.song: cannot read: " + denied})
            return 2;
        library.close();
        return 0;
    });
    EXPECT_EQ(result, 0);
}

}  // namespace
}  // namespace melodex
