#include "melodex/library/song_db_file_entry.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "library_fixture.h"

namespace melodex {
namespace {

using SongDBFileEntryTest = test::LibraryTest;

// The entry's summary fields and then its texts as "type:text", one a line.
String summary(const SongDBFileEntry& entry) {
    String out = join({entry.filename(), entry.uuid(), entry.title(), entry.firstline(),
                       entry.author(), entry.key(), entry.timesignature(),
                       entry.categoriesAsString(","), entry.valid() ? "valid" : "-"},
                      "|");
    for (const SongDBTextEntry* text : entry.iterator())
        out += "\n" + std::to_string(text->type()) + ":" + text->text();
    return out;
}

TEST_F(SongDBFileEntryTest, LoadFromAFileFillsTheSummaryAndTheTexts) {
    std::filesystem::copy(test::testDataPath("library/eventide.song"), libraryFile(""));
    SongDBFileEntry entry(&m_db);
    ASSERT_TRUE(entry.load(libraryFile("eventide.song")));
    // Title and first line fields come from the index only; without a title
    // the first line is listed as the title too.
    EXPECT_EQ(summary(entry),
              "eventide.song|eventide-0001|||Henry Francis Lyte|C|4/4|Evening,"
              "Comfort|-\n0:Abide with me; fast falls the eventide\n"
              "1:Abide with me; fast falls the eventide\n2:Eventide");
    EXPECT_TRUE(entry.load(String())) << "an empty path tells that a song is held";
    m_db.removeTextEntriesForFile(&entry, true);

    // A file without a uuid is given one, written back as song XML.
    const String text = m_folder.write("Hymn.txt", "Rock of Ages\n\n\tCleft for me\n");
    ASSERT_TRUE(entry.load(text));
    Song back;
    ASSERT_EQ(back.loadFromFile(text), 0u);
    EXPECT_EQ(back.loadedFileType(), SongFileType::Song);
    EXPECT_EQ(back.uuid(), entry.uuid());
    EXPECT_FALSE(entry.uuid().empty());
    m_db.removeTextEntriesForFile(&entry, true);
    EXPECT_FALSE(entry.load(m_folder.file("missing.song")));
    EXPECT_FALSE(entry.load(String())) << "a failed load lets the song go";
}

TEST_F(SongDBFileEntryTest, LoadFromAnIndexSectionFollowsItsRules) {
    m_folder.write("db/Song Files/Grace.song", "x");
    m_folder.write("db/Song Files/abc-123.song", "x");
    IniFile index;
    ASSERT_EQ(index.load(test::testDataPath("library/rules.ini")), 0u);
    SongDBFileEntry grace(&m_db), unnamed(&m_db), missing(&m_db);
    ASSERT_TRUE(grace.load(index.findKey("u1")));
    EXPECT_EQ(summary(grace),
              "Grace.song|u1|Amazing Grace||John Newton|G||Grace,Hope|valid\n"
              "0:Amazing Grace\n2:How sweet");
    EXPECT_EQ(grace.updated(), LocalTime(2024, 1, 31, 17, 45, 2));
    ASSERT_TRUE(unnamed.load(index.findKey("abc-123")));
    EXPECT_EQ(summary(unnamed), "abc-123.song|abc-123|Unnamed||||||valid\n0:Unnamed");
    EXPECT_FALSE(missing.load(index.findKey("u3")) || missing.valid());
    EXPECT_FALSE(missing.load(static_cast<const ConfigKey*>(nullptr)));
    m_db.removeTextEntriesForFile(&grace, true);
    m_db.removeTextEntriesForFile(&unnamed, true);
    EXPECT_EQ(m_db.getEntryCount(), 0);
}

TEST_F(SongDBFileEntryTest, CopiesShareTheSongAndNeverDeleteItTwice) {
    const String path = writeSong("db/Song Files/Fortress.song", "A Mighty Fortress", {"Our God"});
    auto* source = new SongDBFileEntry(&m_db);
    ASSERT_TRUE(source->load(path));
    Song* song = source->song();
    SongDBFileEntry copy(*source);
    SongDBFileEntry assigned(&m_db);
    assigned = copy;
    EXPECT_EQ(assigned.song(), song);
    EXPECT_EQ(copy.iterator(), source->iterator()) << "the same text entries are listed";
    m_db.removeTextEntriesForFile(source, true);
    delete source;
    EXPECT_EQ(copy.song()->info().title(), "A Mighty Fortress") << "outlives the reader";
    copy.clear();
    EXPECT_EQ(assigned.song(), song);

    // song() reads lazily, and keeps an empty song for a file that is gone.
    SongDBFileEntry lazy(&m_db);
    IniFile index;
    index.loadFromString("[x]\nfilename=Fortress.song\n");
    ASSERT_TRUE(lazy.load(index.findKey("x")));
    EXPECT_EQ(lazy.song()->info().title(), "A Mighty Fortress");
    ASSERT_EQ(removeFile(path), 0u);
    lazy.clear();
    ASSERT_NE(lazy.song(), nullptr);
    EXPECT_EQ(lazy.song()->getSectionCount(), 0);
    m_db.removeTextEntriesForFile(&lazy, true);
}

}  // namespace
}  // namespace melodex
