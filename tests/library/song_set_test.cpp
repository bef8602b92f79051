#include "melodex/library/song_set.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "melodex/foundation/file_system.h"
#include "melodex/library/song_database.h"
#include "melodex/song/song.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

// A song of one line with a fixed uuid, as XML and read into a new song
// (without the key that a new song has).
String songXml(const String& title, const String& uuid) {
    return "<song><uuid>" + uuid + "</uuid><updated>20240302093000</updated><info><title>" + title +
           "</title></info><block><line>" + title + " line</line></block></song>";
}
Song* newSong(const String& title) {
    auto* song = new Song();
    song->clear();
    EXPECT_EQ(song->loadFromXmlString(songXml(title, title + "-0001")), 0u);
    return song;
}

// Sets find library songs through the global library: each test points
// theSongDB at a folder of its own and puts it back afterwards.
class SongSetTest : public ::testing::Test {
protected:
    SongSetTest() {
        createFolders(m_folder.file("db/Song Files"));
        theSongDB.setDatabaseFolder(m_folder.file("db"));
        theSongDB.open();
    }
    ~SongSetTest() override {
        theSongDB.close();
        theSongDB.setDatabaseFolder("");
    }

    SongDBFileEntry* librarySong(const String& title) {
        std::unique_ptr<Song> song(newSong(title));
        return theSongDB.importSong(*song, "", true, true);
    }
    String golden(const char* name) const {
        return m_folder.read(test::testDataPath(String("library/") + name));
    }

    test::TempFolder m_folder;
};

TEST_F(SongSetTest, ReadsWritesEditsAndCopiesSets) {
    SongDBFileEntry* grace = librarySong("grace");
    ASSERT_NE(grace, nullptr);
    m_folder.write("songs/Rock of Ages.song", songXml("Rock of Ages", "rock-0001"));
    SongSet set;
    ASSERT_EQ(set.loadFromFile(m_folder.write("sets/Sunday.set", golden("sunday.set"))), 0u);
    ASSERT_EQ(set.size(), 5);
    EXPECT_EQ(set.entry(0).song(), grace->song()) << "the library's own song, not a copy";
    EXPECT_FALSE(set.entry(0).owned());
    EXPECT_TRUE(set.entry(1).owned() && set.entry(3).owned());
    EXPECT_EQ(set.entry(3).getSequence(), "V1") << "the song's own order";
    EXPECT_EQ(set.entry(0).tempo() * 10 + set.entry(0).localTranspose(), 959);  // 96 and -1

    // Written again it is the same file, so everything was read; without
    // file names every song but the library's is embedded, and that too
    // reads back to the same file.
    const String again = m_folder.file("sets/Again.set");
    ASSERT_EQ(set.saveToFile(again, true), 0u);
    EXPECT_EQ(m_folder.read(again), golden("sunday.set"));
    ASSERT_EQ(set.saveToFile(again, false), 0u);
    EXPECT_EQ(m_folder.read(again), golden("sunday-embedded.set"));
    SongSet embedded;
    ASSERT_EQ(embedded.loadFromFile(again), 0u);
    ASSERT_EQ(embedded.saveToFile(again, false), 0u);
    EXPECT_EQ(m_folder.read(again), golden("sunday-embedded.set"));
    SongSetEntry songless;
    songless.type(SongSetEntry::SongItem);
    EXPECT_EQ(songless.writeToText(true, "") + SongSetEntry().writeToText(true, ""), "");

    // Files that are no sets leave it empty; a set that cannot be written
    // leaves no file.
    EXPECT_NE(set.loadFromFile(m_folder.write("notes.set", "Sunday: Amazing Grace, then")), 0u);
    EXPECT_EQ(set.size(), 0);
    set.addLine();
    EXPECT_EQ(set.loadFromFile(m_folder.write("song.set", "<song><title>x</title></song>")),
              StatusFailed);
    EXPECT_EQ(set.size(), 0);
    EXPECT_NE(set.loadFromFile(m_folder.file("missing.set")), 0u);
    EXPECT_NE(set.saveToFile(m_folder.file("no/such/folder/x.set"), false), 0u);
    EXPECT_FALSE(fileExists(m_folder.file("no/such/folder/x.set")));

    // Edits stay in range; copies never share owned songs.
    for (const char* title : {"A", "B", "C"})
        set.add(newSong(title), true, false);
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

    SongSetEntry empty;  // without a song an entry does not adjust
    empty.transpose(2);
    empty.adjustCapo(1);
    EXPECT_EQ(std::to_string(empty.transpose() + empty.capo()) + empty.getSequence(), "0");

    SongDBFileEntry* library = librarySong("Library");
    set.entry(0).adjustCapo(2);
    set.add(library->song(), false, true);
    SongSet copy(set);
    EXPECT_NE(copy.entry(0).song(), set.entry(0).song());
    EXPECT_EQ(copy.entry(0).capo(), 2);
    EXPECT_EQ(copy.entry(2).song(), library->song());
    set.clear();
    EXPECT_EQ(copy.entry(0).song()->info().title(), "B");
    copy.entry(0).set(copy.entry(0).song(), true, false);  // keeps the song it owns alive
    EXPECT_EQ(copy.entry(0).song()->info().title(), "B");
}

TEST_F(SongSetTest, PathsStayRightFromAnyFolderAndLibrarySongsOutliveTheirEntry) {
    SongDBFileEntry* grace = librarySong("grace");
    ASSERT_NE(grace, nullptr);
    const String uuid = grace->uuid();
    m_folder.write("songs/Rock of Ages.song", songXml("Rock of Ages", "rock-0001"));
    m_folder.write("sets/Sunday.set", golden("sunday.set"));

    // Loaded through a path relative to the current folder and saved again,
    // the set still finds its song file.
    const std::filesystem::path previous = std::filesystem::current_path();
    std::filesystem::current_path(m_folder.path());
    SongSet set;
    ASSERT_EQ(set.loadFromFile("sets/Sunday.set"), 0u);
    ASSERT_EQ(set.saveToFile("sets/Again.set", true), 0u);
    SongSet again;
    ASSERT_EQ(again.loadFromFile("sets/Again.set"), 0u);
    std::filesystem::current_path(previous);
    EXPECT_EQ(again.size(), set.size());
    EXPECT_EQ(m_folder.read("sets/Again.set"), golden("sunday.set"));

    // Removed from the library, its song stays readable through the set.
    theSongDB.removeEntry(theSongDB.findEntryByUUID(uuid), true);
    EXPECT_EQ(set.entry(0).song()->uuid(), uuid);
}

// Entries whose song is gone are left out, as they always were, and
// recorded: what they named, where they stood and why.
TEST_F(SongSetTest, EntriesThatDoNotResolveAreLeftOutAndRecorded) {
    ASSERT_NE(librarySong("grace"), nullptr);
    m_folder.write("sets/bad.song", "<song><info>");  // markup that does not parse reads as text
    const String path =
        m_folder.write("sets/Old.set",
                       "<songset><SONGENTRY><database>grace-0001</database></SONGENTRY>"
                       "<songentry><database>gone-0001</database></songentry><gap/>"
                       "<songentry><filename>missing.song</filename></songentry>"
                       "<songentry><filename>/dev/null</filename></songentry>"
                       "<songentry><filename></filename></songentry>"
                       "<songentry><other/></songentry>"
                       "<song>bad.song</song><line/></songset>");
    SongSet set;
    ASSERT_EQ(set.loadFromFile(path), 0u);
    String entries;
    for (int i = 0; i < set.size(); ++i)
        entries += std::to_string(set.entry(i).type());
    EXPECT_EQ(entries, "1213") << "song, gap, the bad song read as text, line";
    String unresolved;
    for (const SongSet::UnresolvedEntry& entry : set.unresolvedEntries())
        unresolved += std::to_string(entry.position) + " " + std::to_string(int(entry.source)) +
                      " " + replaceAll(entry.name, m_folder.path(), "{tmp}") + ": " + entry.reason +
                      "\n";
    EXPECT_EQ(unresolved,
              "1 0 gone-0001: not in the library\n"
              "2 1 {tmp}/sets/missing.song: No such file or directory\n"
              "2 1 /dev/null: not a regular file\n"
              "2 1 : the entry names no file\n"
              "2 3 : the entry names no song\n");
    SongSet copy(set);
    EXPECT_EQ(copy.unresolvedEntries().size(), 5u);
    ASSERT_NE(set.loadFromFile(m_folder.file("sets/none.set")), 0u);
    EXPECT_TRUE(set.unresolvedEntries().empty());
}

// An entry's changes reach the chord display; a capo or local
// transposition of 0 leaves them to the profile.
TEST(SongSetEntryTest, ChordDisplayOptionsCarryTheEntrysChanges) {
    SongSetEntry entry(newSong("Hymn"), true);
    ChordDisplayOptions plain = entry.chordDisplayOptions();
    EXPECT_EQ(plain.transpose, 0);
    EXPECT_FALSE(plain.capoFret);
    EXPECT_FALSE(plain.localTranspose);
    EXPECT_EQ(plain.sequence, entry.song()->getSequence());

    entry.transpose(-2);
    entry.setCapo(3);
    entry.setLocalTranspose(-1);
    entry.sequence("V1,V1");
    const ChordDisplayOptions changed = entry.chordDisplayOptions();
    EXPECT_EQ(changed.transpose, -2);
    EXPECT_EQ(changed.capoFret, 3);
    EXPECT_EQ(changed.localTranspose, -1);
    EXPECT_EQ(changed.sequence, "V1,V1");
}

}  // namespace
}  // namespace melodex
