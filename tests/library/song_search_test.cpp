#include "melodex/library/song_search.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "library_fixture.h"
#include "support/song_builders.h"

namespace melodex {
namespace {

class SongSearchTest : public test::LibraryTest {
protected:
    // Imports a song of one verse; `index` and `author` may be empty.
    void addSong(const String& title, const String& author, const String& index,
                 const StringArray& lyrics) {
        Song song;
        song.info().setTitle(title);
        if (!author.empty()) song.info().setAuthor(author);
        if (!index.empty()) song.info().addIndex(index);
        auto* section = new SongSection;
        for (const String& line : lyrics)
            section->addLine(test::lineOf(line));
        song.addSection(section);
        const String path = m_folder.file("in/" + std::to_string(++m_count) + ".song");
        createFolders(folderOf(path));
        ASSERT_EQ(song.saveToFile(path, SongFileType::Song), StatusSuccess);
        ASSERT_NE(m_db.importFile(path, true, true), nullptr) << title;
    }

    // The hits as "title [field] text", best first.
    StringArray find(SongSearch& search, std::string_view query) {
        StringArray out;
        for (const SongSearch::Hit& hit : search.search(query)) {
            EXPECT_EQ(hit.file->uuid(), hit.uuid);
            out.push_back(String(hit.title) + " [" + SongSearch::fieldName(hit.field) + "] " +
                          String(hit.text));
        }
        return out;
    }

    int m_count = 0;
};

TEST_F(SongSearchTest, FindsWhatPeopleTypeWhateverTheirAccentsCaseAndQuotes) {
    m_db.open();
    addSong("Śpieszmy do Jezusa", "", "", {"Śpieszmy, śpieszmy"});
    addSong("Keresztednél", "", "", {"Keresztednél, Jézusom"});
    addSong("Größer als alles", "", "", {"Herr, du bist", "viel größer"});
    addSong("Coronation", "Edward Perronet", "", {"All hail", "the pow’r of Jesus’ name!"});
    addSong("Boże, coś Polskę", "Alojzy Feliński", "", {"Boże, coś Polskę", "Błogosław, Panie"});
    addSong("Equal", "", "", {"All", "We are e\u2060qual here", "Hal\u00ADle\u00ADlu\u00ADja"});
    m_db.close();
    // Opened again from its index: no song is held, so the lyrics come from
    // the song files.
    m_db.open();
    SongSearch search(m_db);
    EXPECT_FALSE(search.hasLyrics());

    const std::pair<const char*, StringArray> cases[] = {
        {"Spieszmy", {"Śpieszmy do Jezusa [title] Śpieszmy do Jezusa"}},
        {"keresztednel", {"Keresztednél [title] Keresztednél"}},
        {"grosser", {"Größer als alles [title] Größer als alles"}},
        {"viel grosser", {"Größer als alles [lyrics] viel größer"}},
        {"pow'r of Jesus' name", {"Coronation [lyrics] the pow’r of Jesus’ name!"}},
        {"power", {}},
        {"powr of jesus", {"Coronation [lyrics] the pow’r of Jesus’ name!"}},
        {"perronet", {"Coronation [author] Edward Perronet"}},
        // Letters without a decomposition are typed as their base letters.
        {"felinski", {"Boże, coś Polskę [author] Alojzy Feliński"}},
        {"blogoslaw", {"Boże, coś Polskę [lyrics] Błogosław, Panie"}},
        // Punctuation is no part of a match.
        {"boze cos", {"Boże, coś Polskę [title] Boże, coś Polskę"}},
        // Invisible characters inside words join them.
        {"equal here", {"Equal [lyrics] We are e\u2060qual here"}},
        {"halleluja", {"Equal [lyrics] Hal\u00ADle\u00ADlu\u00ADja"}},
        {"?!", {}},
        {"", {}},
    };
    for (const auto& [query, expected] : cases)
        EXPECT_EQ(find(search, query), expected) << query;
    EXPECT_TRUE(search.hasLyrics());
}

TEST_F(SongSearchTest, ListsEachSongOnceBestMatchesFirst) {
    m_db.open();
    addSong("New Britain", "", "", {"Amazing grace, how sweet", "grace, grace"});
    addSong("Grace Alone", "", "", {"Every promise"});
    addSong("Hymn of Hope", "Grace Smith", "", {"Hope"});
    addSong("Amazing Grace", "", "", {"Through many dangers", "grace will lead me home"});
    addSong("Saved", "", "Saving grace", {"Saved by him", "By his grace"});
    addSong("Lead Me", "", "", {"Lead me on", "by grace alone", "grace"});
    addSong("Nothing", "", "", {"Nothing here"});
    SongSearch search(m_db);
    EXPECT_EQ(find(search, "grace"), (StringArray{
                                         "Grace Alone [title] Grace Alone",
                                         "Amazing Grace [title] Amazing Grace",
                                         "New Britain [first line] Amazing grace, how sweet",
                                         "Saved [index] Saving grace",
                                         "Hymn of Hope [author] Grace Smith",
                                         "Lead Me [lyrics] by grace alone",
                                     }));
    // Half a word already finds; the first line beats the lyrics.
    EXPECT_EQ(find(search, "ever"), (StringArray{"Grace Alone [first line] Every promise"}));
    EXPECT_EQ(SongSearch::searchKey("  Pow’r of JESUS’ Name!  "), "powr of jesus name");
    EXPECT_EQ(search.songCount(), 7);
}

TEST_F(SongSearchTest, NamesTheSongAUserMeans) {
    writeSong("db/Song Files/Grace.song", "Amazing Grace", {"Amazing grace"}, "ab12cd34-0001");
    writeSong("db/Song Files/Grace 2.song", "Amazing Grace (2)", {"Amazing grace"},
              "ab12cd34-0002");
    writeSong("db/Song Files/Noc.song", "Wśród nocnej ciszy", {"Wśród nocnej ciszy"}, "ef56-0003");
    writeSong("db/Song Files/Hymn.song", "ab12", {"A hymn called ab12"}, "ff00-0004");
    m_db.open();
    const auto titles = [this](std::string_view word, bool uuidOnly = false) {
        StringArray out;
        for (const SongDBFileEntry* file :
             uuidOnly ? songsWithUuid(m_db, word) : songsNamed(m_db, word))
            out.push_back(file->listedTitle());
        std::sort(out.begin(), out.end());
        return out;
    };
    EXPECT_EQ(titles("AMAZING GRACE"), StringArray{"Amazing Grace"});
    EXPECT_EQ(titles("ab12cd34-0002"), StringArray{"Amazing Grace (2)"});
    EXPECT_EQ(titles("AB12CD34"), (StringArray{"Amazing Grace", "Amazing Grace (2)"}));
    // A title wins over the start of a uuid; a uuid needs four characters.
    EXPECT_EQ(titles("ab12"), StringArray{"ab12"});
    EXPECT_EQ(titles("ab12", true), (StringArray{"Amazing Grace", "Amazing Grace (2)"}));
    EXPECT_EQ(titles("ef5"), StringArray{});
    // Typed without its accents, or with other punctuation.
    EXPECT_EQ(titles("Wsrod nocnej ciszy"), StringArray{"Wśród nocnej ciszy"});
    EXPECT_EQ(titles("amazing grace 2"), StringArray{"Amazing Grace (2)"});
    EXPECT_EQ(titles("Wsrod nocnej ciszy", true), StringArray{});
    EXPECT_EQ(titles("!!"), StringArray{});
}

}  // namespace
}  // namespace melodex
