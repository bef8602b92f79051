#include "melodex/library/song_set.h"

#include <vector>

#include <gtest/gtest.h>

#include "melodex/foundation/file_system.h"
#include "melodex/library/song_database.h"
#include "melodex/song/song.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using test::TempFolder;

Song* newSong(const String& title, const String& firstLine) {
    auto* song = new Song();
    song->clear();
    song->info().setTitle(title);
    auto* section = new SongSection(1);
    auto* line = new SongLine();
    line->setText(firstLine);
    section->addLine(line);
    song->addSection(section);
    song->generateSectionIDs();
    return song;
}

// Sets refer to library songs through the global library, so each test
// points theSongDB at a folder of its own and puts it back afterwards.
class SongSetTest : public ::testing::Test {
protected:
    SongSetTest() {
        createFolders(m_folder.file("Song Database/Song Files"));
        theSongDB.setDatabaseFolder(m_folder.file("Song Database"));
        theSongDB.setHostName("SETS");
        theSongDB.open();
    }
    ~SongSetTest() override {
        theSongDB.close();
        theSongDB.setDatabaseFolder("");
        theSongDB.setHostName("");
    }

    // Imports a song into the library and returns its entry.
    SongDBFileEntry* librarySong(const String& title, const String& firstLine) {
        std::unique_ptr<Song> song(newSong(title, firstLine));
        return theSongDB.importSong(*song, "", true, true);
    }

    TempFolder m_folder;
};

TEST_F(SongSetTest, RoundTripsAllThreeKindsOfSongWithGapsAndLines) {
    SongDBFileEntry* grace = librarySong("Amazing Grace", "Amazing grace, how sweet the sound");
    ASSERT_NE(grace, nullptr);
    std::unique_ptr<Song> fileSong(newSong("Rock of Ages", "Rock of Ages, cleft for me"));
    const String songPath = m_folder.file("songs/Rock of Ages.song");
    createFolders(m_folder.file("songs"));
    ASSERT_EQ(fileSong->saveToFile(songPath, 1), 0u);
    ASSERT_EQ(fileSong->loadFromFile(songPath), 0u);  // so that it knows its file

    SongSet set;
    SongSetEntry& first = set.add(grace->song(), false, true);
    first.transpose(2);
    first.setCapo(1);
    first.tempo(96);
    first.setLocalTranspose(-1);
    first.sequence("V1,V1");
    set.add(fileSong.release(), true, false);
    set.addGap();
    set.add(newSong("Abide with Me & Be Still", "Abide with me"), true, false).setCapo(3);
    set.addLine();
    set.add(nullptr, false, false);  // an empty entry is not written

    const String setPath = m_folder.file("sets/Sunday.set");
    createFolders(m_folder.file("sets"));
    ASSERT_EQ(set.saveToFile(setPath, true), 0u);
    EXPECT_EQ(set.filename(), setPath);
    const String text = m_folder.read(setPath);
    EXPECT_EQ(text.rfind("<?xml version=\"1.0\"?>\n<songset xmlns=\"brackwell/songset\">\n", 0),
              0u);
    EXPECT_NE(text.find("<songentry transpose=\"2\" capo=\"1\" tempo=\"96\" localtranspose=\"-1\" "
                        "sequence=\"V1,V1\">\n<database>" +
                        grace->uuid() + "</database>\n</songentry>\n"),
              String::npos);
    EXPECT_NE(text.find("<songentry>\n<filename>../songs/Rock of Ages.song</filename>\n"),
              String::npos);

    SongSet back;
    ASSERT_EQ(back.loadFromFile(setPath), 0u);
    ASSERT_EQ(back.size(), 5);
    EXPECT_EQ(back.entry(0).song(), grace->song()) << "the library's own song, not a copy";
    EXPECT_FALSE(back.entry(0).owned());
    EXPECT_TRUE(back.entry(0).dbflag());
    const SongSetEntry& read = back.entry(0);
    EXPECT_EQ(
        (std::vector<int>{read.transpose(), read.capo(), read.tempo(), read.localTranspose()}),
        (std::vector<int>{2, 1, 96, -1}));
    EXPECT_EQ(read.getSequence(), "V1,V1");
    EXPECT_TRUE(back.entry(1).owned());
    EXPECT_EQ(back.entry(1).song()->filename(), m_folder.file("sets/../songs/Rock of Ages.song"));
    EXPECT_EQ(back.entry(2).type(), SongSetEntry::Gap);
    EXPECT_EQ(back.entry(3).song()->info().title(), "Abide with Me & Be Still");
    EXPECT_EQ(back.entry(3).getSequence(), "V1") << "the song's own order";
    EXPECT_EQ(back.entry(4).type(), SongSetEntry::Line);

    // Saved again without file names, every song but the library's is
    // embedded, and reading it writes nothing.
    ASSERT_EQ(back.saveToFile(setPath, false), 0u);
    const String embedded = m_folder.read(setPath);
    EXPECT_EQ(embedded.find("<filename>"), String::npos);
    EXPECT_NE(embedded.find("<songentry>\n<song xmlns=\"brackwell/song\">\n"), String::npos);
    SongSet again;
    ASSERT_EQ(again.loadFromFile(setPath), 0u);
    ASSERT_EQ(again.size(), 5);
    EXPECT_TRUE(again.entry(1).owned());
    EXPECT_EQ(again.entry(1).song()->info().key(), "") << "no key was added on the way";
    EXPECT_EQ(m_folder.read(setPath), embedded);
}

TEST_F(SongSetTest, DefaultsWriteNoAttributes) {
    SongSetEntry entry(newSong("Hymn", "Line"), true);
    const String text = entry.writeToText(false, m_folder.file("x.set"));
    EXPECT_EQ(text.rfind("<songentry>\n<song xmlns=\"brackwell/song\">\n", 0), 0u);
    EXPECT_TRUE(text.ends_with("</song>\n</songentry>\n")) << text;
    EXPECT_EQ(SongSetEntry().writeToText(true, ""), "");
    SongSetEntry songless;
    songless.type(SongSetEntry::SongItem);
    EXPECT_EQ(songless.writeToText(true, ""), "");
}

TEST_F(SongSetTest, ReadsCapitalsTheOlderFormAndDropsWhatIsGone) {
    SongDBFileEntry* kept = librarySong("Kept", "Still here");
    SongDBFileEntry* removed = librarySong("Removed", "Soon gone");
    const String removedUuid = removed->uuid();
    std::unique_ptr<Song> onDisk(newSong("On Disk", "Written out"));
    ASSERT_EQ(onDisk->saveToFile(m_folder.file("On Disk.song"), 1), 0u);
    theSongDB.removeEntry(removed, true);

    const String setPath =
        m_folder.write("Old.set",
                       "<?xml version=\"1.0\"?>\n<SONGSET>\n"
                       "<SONGENTRY CAPO=\"2\"><DATABASE>" +
                           kept->uuid() +
                           "</DATABASE></SONGENTRY>\n"
                           "<songentry><database>" +
                           removedUuid +
                           "</database></songentry>\n"
                           "<songentry><filename>missing.song</filename></songentry>\n"
                           "<songentry><filename>/dev/zero</filename></songentry>\n"
                           "<songentry><unknown/></songentry>\n"
                           "<song transpose=\"-3\" sequence=\"V1\">On Disk.song</song>\n"
                           "<Gap/><LINE/><other/>\n"
                           "</SONGSET>\n");
    SongSet set;
    ASSERT_EQ(set.loadFromFile(setPath), 0u);
    ASSERT_EQ(set.size(), 4);
    EXPECT_EQ(set.entry(0).song(), kept->song());
    EXPECT_EQ(set.entry(0).capo(), 2);
    EXPECT_EQ(set.entry(1).song()->info().title(), "On Disk");
    EXPECT_EQ(set.entry(1).transpose(), -3);
    EXPECT_EQ(set.entry(1).sequence(), "V1");
    EXPECT_EQ(set.entry(2).type(), SongSetEntry::Gap);
    EXPECT_EQ(set.entry(3).type(), SongSetEntry::Line);
}

TEST_F(SongSetTest, FilesThatAreNoSetsLeaveItEmpty) {
    SongSet set;
    set.addGap();
    const String notXml = m_folder.write("notes.set", "Sunday: Amazing Grace, then a gap");
    EXPECT_NE(set.loadFromFile(notXml), 0u);
    EXPECT_EQ(set.size(), 0);
    set.addLine();
    EXPECT_EQ(set.loadFromFile(m_folder.write("song.set", "<song><title>x</title></song>")),
              StatusFailed);
    EXPECT_EQ(set.size(), 0);
    EXPECT_NE(set.loadFromFile(m_folder.file("missing.set")), 0u);
    EXPECT_NE(set.saveToFile(m_folder.file("no/such/folder/x.set"), false), 0u);
    EXPECT_FALSE(fileExists(m_folder.file("no/such/folder/x.set")));
}

TEST_F(SongSetTest, EditsTheOrderWithinRangeOnly) {
    SongSet set;
    for (const char* title : {"A", "B", "C"})
        set.add(newSong(title, "line"), true, false);
    auto order = [&set] {
        String out;
        for (int i = 0; i < set.size(); ++i)
            out += set.entry(i).song()->info().title();
        return out;
    };
    set.move(0, 2);
    set.move(0, 3);
    set.move(-1, 0);
    set.remove(3);
    EXPECT_EQ(order(), "BCA");
    set.remove(1);
    EXPECT_EQ(order(), "BA");
}

TEST_F(SongSetTest, EntriesAdjustOnlyWithASongAndCopyWithoutSharingOwnedSongs) {
    SongSetEntry empty;
    empty.transpose(2);
    empty.adjustCapo(1);
    EXPECT_EQ(empty.transpose() + empty.capo(), 0);
    EXPECT_EQ(empty.getSequence(), "");

    SongDBFileEntry* library = librarySong("Library", "From the library");
    SongSet set;
    set.add(newSong("Owned", "mine"), true, false).adjustCapo(2);
    set.add(library->song(), false, true);
    SongSet copy(set);
    EXPECT_NE(copy.entry(0).song(), set.entry(0).song());
    EXPECT_EQ(copy.entry(0).song()->info().title(), "Owned");
    EXPECT_EQ(copy.entry(0).capo(), 2);
    EXPECT_EQ(copy.entry(1).song(), library->song());
    set.clear();
    EXPECT_EQ(copy.entry(0).song()->info().title(), "Owned");

    // Setting the song an entry already owns keeps it alive.
    copy.entry(0).set(copy.entry(0).song(), true, false);
    EXPECT_EQ(copy.entry(0).song()->info().title(), "Owned");
}

}  // namespace
}  // namespace melodex
