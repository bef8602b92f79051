#include "melodex/library/song_db_file_entry.h"

#include <gtest/gtest.h>

#include "library_fixture.h"

namespace melodex {
namespace {

using test::LibraryTest;

using SongDBFileEntryTest = LibraryTest;

TEST_F(SongDBFileEntryTest, LoadFromAFileFillsTheSummaryAndTheTexts) {
    Song song = makeSong(
        "", {{"   ", "\tAbide with me; fast falls the eventide  "}, {"The darkness deepens"}});
    song.info().setAuthor("Henry Francis Lyte");
    song.info().setAttribute("timesignature", "4/4");
    song.info().addIndex("Eventide");
    song.info().addIndex("");
    song.info().addCategory("Evening");
    song.info().addCategory("");
    song.info().addCategory("Comfort");
    const String path = writeSong("Song Database/Song Files/Abide.song", song);

    SongDBFileEntry entry(&m_db);
    ASSERT_TRUE(entry.load(path));
    EXPECT_EQ(entry.filename(), "Abide.song");
    EXPECT_EQ(entry.author(), "Henry Francis Lyte");
    EXPECT_EQ(entry.key(), "C");
    EXPECT_EQ(entry.timesignature(), "4/4");
    EXPECT_EQ(entry.categoriesAsString(", "), "Evening, Comfort");
    // Title and first line fields come from the index only.
    EXPECT_EQ(entry.title(), "");
    EXPECT_EQ(entry.firstline(), "");
    EXPECT_FALSE(entry.valid());

    // Without a title the first line is listed as the title too.
    ASSERT_EQ(entry.iterator().size(), 3u);
    EXPECT_EQ(entry.iterator()[0]->type(), SongDBTextEntry::Title);
    EXPECT_EQ(entry.iterator()[0]->text(), "Abide with me; fast falls the eventide");
    EXPECT_EQ(entry.iterator()[1]->type(), SongDBTextEntry::FirstLine);
    EXPECT_EQ(entry.iterator()[2]->text(), "Eventide");
    EXPECT_EQ(entry.iterator()[2]->fileEntry(), &entry);
    EXPECT_EQ(m_db.getEntryCount(), 3);
    EXPECT_TRUE(entry.load(String())) << "an empty path tells that a song is held";
    m_db.removeTextEntriesForFile(&entry, true);
}

TEST_F(SongDBFileEntryTest, AFileWithoutUuidIsGivenOneWrittenIntoIt) {
    const String text = m_folder.write("Hymn.txt", "Rock of Ages\n\n\tCleft for me\n");
    SongDBFileEntry entry(&m_db);
    ASSERT_TRUE(entry.load(text));
    Song back;
    ASSERT_EQ(back.loadFromFile(text), 0u);
    EXPECT_EQ(back.loadedFileType(), SongFileType::Song) << "written back as a song XML file";
    EXPECT_EQ(back.uuid(), entry.uuid());
    EXPECT_FALSE(entry.uuid().empty());
    EXPECT_FALSE(entry.load(m_folder.file("missing.song")));
    EXPECT_FALSE(entry.load(String())) << "a failed load lets the song go";
    m_db.removeTextEntriesForFile(&entry, true);
}

TEST_F(SongDBFileEntryTest, LoadFromAnIndexSectionFollowsItsRules) {
    m_folder.write("Song Database/Song Files/Grace.song", "x");
    m_folder.write("Song Database/Song Files/abc-123.song", "x");
    IniFile index;
    index.loadFromString(
        "[u1]\nfilename=Grace.song\nuuid=u1\nupdated=20240131174502\ntitle=Amazing Grace\n"
        "author=John Newton\nkey=G\nfirstline= amazing grace \nindex1=How sweet\n"
        "index2=  \nindex3=AMAZING GRACE\nindex5=Never read\ncategory1=Grace\ncategory2=\n"
        "category3=Hope\n"
        "[abc-123]\ntitle=Unnamed\n"
        "[u3]\nfilename=Missing.song\ntitle=Missing\n");

    SongDBFileEntry grace(&m_db);
    ASSERT_TRUE(grace.load(index.findKey("u1")));
    EXPECT_TRUE(grace.valid());
    EXPECT_EQ(grace.title(), "Amazing Grace");
    EXPECT_EQ(grace.firstline(), "") << "equal to the title ignoring case";
    EXPECT_EQ(grace.updated(), LocalTime(2024, 1, 31, 17, 45, 2));
    EXPECT_EQ(grace.key(), "G");
    EXPECT_EQ(grace.categoriesAsString(", "), "Grace, Hope");
    StringArray texts;
    for (const SongDBTextEntry* text : grace.iterator())
        texts.push_back(std::to_string(text->type()) + ":" + text->text());
    // index2 is blank and index3 repeats the title; index4 is missing, so
    // index5 is never read.
    EXPECT_EQ(texts, (StringArray{"0:Amazing Grace", "2:How sweet"}));

    // No "filename": the file is named after the section; no "uuid": the
    // section's name serves.
    SongDBFileEntry unnamed(&m_db);
    ASSERT_TRUE(unnamed.load(index.findKey("abc-123")));
    EXPECT_EQ(unnamed.filename(), "abc-123.song");
    EXPECT_EQ(unnamed.uuid(), "abc-123");

    SongDBFileEntry missing(&m_db);
    EXPECT_FALSE(missing.load(index.findKey("u3")));
    EXPECT_FALSE(missing.valid());
    EXPECT_TRUE(missing.iterator().empty());
    EXPECT_FALSE(missing.load(static_cast<const ConfigKey*>(nullptr)));

    m_db.removeTextEntriesForFile(&grace, true);
    m_db.removeTextEntriesForFile(&unnamed, true);
    EXPECT_EQ(m_db.getEntryCount(), 0);
}

TEST_F(SongDBFileEntryTest, CopiesShareTheSongAndNeverDeleteItTwice) {
    const String path = writeSong("Song Database/Song Files/Fortress.song", "A Mighty Fortress",
                                  {"A mighty fortress is our God"});
    auto* source = new SongDBFileEntry(&m_db);
    ASSERT_TRUE(source->load(path));
    Song* song = source->song();
    SongDBFileEntry copy(*source);
    SongDBFileEntry assigned(&m_db);
    assigned = copy;
    EXPECT_EQ(copy.song(), song);
    EXPECT_EQ(assigned.song(), song);
    EXPECT_EQ(copy.iterator(), source->iterator()) << "the same text entries are listed";
    m_db.removeTextEntriesForFile(source, true);
    delete source;
    // The song outlives the entry that read it.
    EXPECT_EQ(copy.song()->info().title(), "A Mighty Fortress");
    copy.clear();
    EXPECT_EQ(assigned.song(), song);
    EXPECT_EQ(copy.filename(), "");

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
