#pragma once

// Searching the song library as people type: titles, first lines, index
// entries, authors and lyrics, whatever the accents, case and typography of
// what is typed and of what the songs hold.
//
//     SongSearch search(theSongDB);              // after theSongDB.open()
//     for (const SongSearch::Hit& hit : search.search("spieszmy"))
//         std::cout << hit.title << "  [" << SongSearch::fieldName(hit.field)
//                   << "] " << hit.text << '\n';  // finds "Śpieszmy ..."
//
// Texts and queries are compared as search keys (searchKey): folded with
// foldForSearch (full case folding, accents dropped, typographic quotes and
// dashes as ASCII), letters without a decomposition taken as their base
// letters ("ł" as "l", "ø" as "o", "æ" as "ae"), apostrophes dropped
// ("pow'r" finds "pow’r" and "powr"), and every other character that is no
// letter or digit a blank, runs of blanks one. A query matches a text that
// holds its key anywhere, so a half-typed word already finds.
//
// Each song is listed once, under the best field that holds the query:
// first the songs whose title or first line begins with it, then those
// whose title or first line holds it elsewhere, then index entries,
// authors and lyrics; within each group by title, ignoring case.
//
// A SongSearch is a snapshot of the library when it was made. Titles, first
// lines, index entries and authors come from the library's index, without
// reading a song file. Lyrics are not in the index: the first search (or
// loadLyrics()) reads every song file once, and keeps the lyrics as search
// keys; every search after that only scans memory. Make a new SongSearch
// after the library changes (an import, a removal, a reload): the hits of an
// old one may name entries that are gone.

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

#include "melodex/foundation/text.h"

namespace melodex {

class SongDatabase;
class SongDBFileEntry;

class SongSearch {
public:
    // Where a song holds the query, best first.
    enum class Field { Title, FirstLine, Index, Author, Lyrics };

    // A song found. Its texts are views into the SongSearch, valid while it
    // lives.
    struct Hit {
        // The library's entry (not owned): valid while the library holds
        // it, that is until the entry is removed or the library is closed or
        // opened again.
        SongDBFileEntry* file = nullptr;
        std::string_view uuid;
        std::string_view title;  // what the song is listed under
        Field field = Field::Title;
        std::string_view text;  // the text of that field that holds the query
    };

    // Takes the titles, first lines, index entries and authors of every
    // song of the (open) library. The library is not kept.
    explicit SongSearch(const SongDatabase& database);

    // The songs that hold the query, each once, best first (see above);
    // with a limit, only the first `limit` of them (a list that shows one
    // screen as the user types need not build the rest). Empty for a query
    // without letters or digits. The first search reads the lyrics
    // (loadLyrics).
    std::vector<Hit> search(std::string_view query, std::size_t limit = 0);

    // Reads the lyrics of every song file now; search() does it once when
    // they are not read yet. A file that no longer reads adds no lyrics.
    void loadLyrics();
    bool hasLyrics() const { return m_lyricsLoaded; }

    int songCount() const { return int(m_songs.size()); }

    // The text as this search compares it: "Pow’r of JESUS’ Name!" gives
    // "powr of jesus name". Empty for a text without letters or digits.
    static String searchKey(std::string_view text);

    // "title", "first line", "index", "author", "lyrics".
    static const char* fieldName(Field field);

private:
    struct Entry {
        SongDBFileEntry* file;
        String uuid;
        String title;
        int order;  // the song's place when all are sorted by title
    };

    // Texts of one field, of all songs: their keys one after another, each
    // followed by a line break (which no key holds, so no match spans two
    // texts), and the texts as the songs hold them.
    class Column {
    public:
        // Adds a text of the song; a text without letters or digits is
        // left out.
        void add(int song, std::string_view text);
        // Calls found(text index, at start) for every text that holds
        // `key` (with oncePerSong, for the first of each song only); "at
        // start" when the text begins with it.
        template <typename Found>
        void find(const String& key, bool oncePerSong, Found found) const;
        int songOf(std::size_t index) const { return m_songOf[index]; }
        std::string_view text(std::size_t index) const;
        std::size_t size() const { return m_songOf.size(); }

    private:
        String m_keys;
        std::array<std::size_t, 256> m_byteCounts{};  // how often each byte occurs in the keys
        String m_texts;
        std::vector<std::size_t> m_keyStarts;
        std::vector<std::size_t> m_textStarts;
        std::vector<int> m_songOf;
    };

    std::vector<Entry> m_songs;
    std::vector<std::size_t> m_byTitle;  // the songs sorted by title
    Column m_titles;                     // titles and first lines
    std::vector<Field> m_titleFields;
    Column m_indexes;
    Column m_authors;
    Column m_lyrics;
    bool m_lyricsLoaded = false;
};

// The songs that a uuid a user gives names: the one whose uuid it is, else
// those whose uuid starts with it, when it has four characters or more
// (listings show uuids shortened). Several when the start is shared.
std::vector<SongDBFileEntry*> songsWithUuid(const SongDatabase& database, std::string_view uuid);

// The songs that a word a user gives for "a song" names, by the first rule
// that any song meets: its listed title, ignoring case; its uuid or the
// start of it (songsWithUuid); its title's search key ("Wsrod nocnej
// ciszy" names "Wśród nocnej ciszy"). Empty when no song is named; several
// when the word is shared.
std::vector<SongDBFileEntry*> songsNamed(const SongDatabase& database, std::string_view word);

}  // namespace melodex
