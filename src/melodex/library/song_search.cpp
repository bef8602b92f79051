#include "melodex/library/song_search.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string_view>

#include "melodex/foundation/file_system.h"
#include "melodex/library/song_database.h"
#include "melodex/song/song.h"

namespace melodex {

namespace {

// Invisible characters inside words (soft hyphens, joiners, zero-width
// spaces): "Hal\u00ADle\u00ADlu\u00ADja" is one word, and so is the
// "e\u2060qual" that the OpenSong reader makes of "e____qual".
bool isInvisibleInWord(char32_t c) {
    return c == U'\u00AD' || c == U'\u200B' || c == U'\u200C' || c == U'\u200D' || c == U'\u2060' ||
           c == U'\uFEFF';
}

// Groups of hits, best first.
enum Rank { TitleStart, TitleInside, IndexRank, AuthorRank, LyricsRank, NoRank };

}  // namespace

// --- Columns ---------------------------------------------------------------------

void SongSearch::Column::add(int song, std::string_view text) {
    const String key = searchKey(text);
    if (key.empty()) return;
    m_keyStarts.push_back(m_keys.size());
    m_keys += key;
    m_keys += '\n';
    for (char c : key)
        ++m_byteCounts[static_cast<unsigned char>(c)];
    m_textStarts.push_back(m_texts.size());
    m_texts += text;
    m_songOf.push_back(song);
}

std::string_view SongSearch::Column::text(std::size_t index) const {
    const std::size_t end =
        index + 1 < m_textStarts.size() ? m_textStarts[index + 1] : m_texts.size();
    return std::string_view(m_texts).substr(m_textStarts[index], end - m_textStarts[index]);
}

template <typename Found>
void SongSearch::Column::find(const String& key, bool oncePerSong, Found found) const {
    // Look for the key's rarest byte with memchr, which runs through memory
    // far faster than any general matcher, and compare the whole key where
    // it occurs: a rare byte leaves few places to compare.
    std::size_t anchor = 0;
    for (std::size_t i = 1; i < key.size(); ++i) {
        if (m_byteCounts[static_cast<unsigned char>(key[i])] <
            m_byteCounts[static_cast<unsigned char>(key[anchor])])
            anchor = i;
    }
    const char* const begin = m_keys.data();
    const char* const end = begin + m_keys.size();
    const char* from = begin;  // where a match may start
    while (end - from >= std::ptrdiff_t(key.size())) {
        const auto* hit = static_cast<const char*>(
            std::memchr(from + anchor, key[anchor], std::size_t(end - from) - key.size() + 1));
        if (!hit) return;
        const char* start = hit - anchor;
        if (std::memcmp(start, key.data(), key.size()) != 0) {
            from = start + 1;
            continue;
        }
        const std::size_t at = std::size_t(start - begin);
        std::size_t index =
            std::size_t(std::upper_bound(m_keyStarts.begin(), m_keyStarts.end(), at) -
                        m_keyStarts.begin()) -
            1;
        found(index, at == m_keyStarts[index]);
        // On to the next text, or to the first text of the next song.
        const int song = m_songOf[index];
        ++index;
        while (oncePerSong && index < m_songOf.size() && m_songOf[index] == song)
            ++index;
        if (index >= m_keyStarts.size()) return;
        from = begin + m_keyStarts[index];
    }
}

// --- The search ------------------------------------------------------------------

SongSearch::SongSearch(const SongDatabase& database) {
    for (SongDBFileEntry* file : database.files()) {
        const int song = int(m_songs.size());
        String title;
        for (const SongDBTextEntry* text : file->iterator()) {
            switch (text->type()) {
                case SongDBTextEntry::Title:
                    if (title.empty()) title = text->text();
                    m_titles.add(song, text->text());
                    m_titleFields.resize(m_titles.size(), Field::Title);
                    break;
                case SongDBTextEntry::FirstLine:
                    m_titles.add(song, text->text());
                    m_titleFields.resize(m_titles.size(), Field::FirstLine);
                    break;
                default:
                    m_indexes.add(song, text->text());
                    break;
            }
        }
        m_authors.add(song, file->author());
        if (title.empty()) title = baseNameOf(file->filename());
        m_songs.push_back({file, file->uuid(), title, 0});
    }
    // Hits are ordered by title within their group: sorting the songs once
    // here leaves each search to compare numbers.
    std::vector<std::pair<String, std::size_t>> byTitle;
    byTitle.reserve(m_songs.size());
    for (std::size_t i = 0; i < m_songs.size(); ++i)
        byTitle.emplace_back(searchKey(m_songs[i].title), i);
    std::sort(byTitle.begin(), byTitle.end());
    m_byTitle.resize(byTitle.size());
    for (std::size_t place = 0; place < byTitle.size(); ++place) {
        m_songs[byTitle[place].second].order = int(place);
        m_byTitle[place] = byTitle[place].second;
    }
}

void SongSearch::loadLyrics() {
    if (m_lyricsLoaded) return;
    m_lyricsLoaded = true;
    for (std::size_t i = 0; i < m_songs.size(); ++i) {
        // Read into a song of our own: the entry keeps no song it did not
        // hold, so a search does not hold the whole library in memory.
        Song song;
        if (song.loadFromFile(m_songs[i].file->path()) != StatusSuccess) continue;
        for (int s = 0; s < song.getSectionCount(); ++s) {
            const SongSection& section = *song.getSection(s);
            for (int l = 0; l < section.getLineCount(); ++l)
                m_lyrics.add(int(i), strip(section.getLine(l)->text()));
        }
    }
}

std::vector<SongSearch::Hit> SongSearch::search(std::string_view query, std::size_t limit) {
    const String key = searchKey(query);
    if (key.empty()) return {};
    loadLyrics();

    struct Best {
        int rank = NoRank;
        const Column* column = nullptr;
        std::size_t text = 0;
        Field field = Field::Title;
    };
    std::vector<Best> best(m_songs.size());
    const auto offer = [&best](int song, int rank, const Column& column, std::size_t text,
                               Field field) {
        if (rank < best[std::size_t(song)].rank)
            best[std::size_t(song)] = {rank, &column, text, field};
    };
    m_titles.find(key, false, [&](std::size_t text, bool atStart) {
        offer(m_titles.songOf(text), atStart ? TitleStart : TitleInside, m_titles, text,
              m_titleFields[text]);
    });
    m_indexes.find(key, true, [&](std::size_t text, bool) {
        offer(m_indexes.songOf(text), IndexRank, m_indexes, text, Field::Index);
    });
    m_authors.find(key, true, [&](std::size_t text, bool) {
        offer(m_authors.songOf(text), AuthorRank, m_authors, text, Field::Author);
    });
    m_lyrics.find(key, true, [&](std::size_t text, bool) {
        offer(m_lyrics.songOf(text), LyricsRank, m_lyrics, text, Field::Lyrics);
    });

    // Group first, then title: one number per song found.
    std::vector<std::uint64_t> found;
    for (std::size_t song = 0; song < best.size(); ++song) {
        if (best[song].rank != NoRank)
            found.push_back(std::uint64_t(best[song].rank) << 32 |
                            std::uint32_t(m_songs[song].order));
    }
    if (limit > 0 && found.size() > limit) {
        std::partial_sort(found.begin(), found.begin() + std::ptrdiff_t(limit), found.end());
        found.resize(limit);
    } else {
        std::sort(found.begin(), found.end());
    }
    std::vector<Hit> hits;
    hits.reserve(found.size());
    for (std::uint64_t sortKey : found) {
        const std::size_t song = m_byTitle[std::size_t(sortKey & 0xFFFFFFFFu)];
        const Entry& entry = m_songs[song];
        hits.push_back({entry.file, entry.uuid, entry.title, best[song].field,
                        best[song].column->text(best[song].text)});
    }
    return hits;
}

String SongSearch::searchKey(std::string_view text) {
    const String folded = foldForSearch(text);
    String key;
    key.reserve(folded.size());
    bool blank = true;  // no blank at the start
    for (std::size_t pos = 0; pos < folded.size();) {
        const char32_t c = decodeUtf8(folded, pos);
        // "pow'r" and "powr", "Jesus'" and "Jesus" are the same words.
        if (c == U'\'' || isInvisibleInWord(c)) continue;
        if (isLetterOrDigit(c)) {
            appendUtf8(key, c);
            blank = false;
        } else if (!blank) {
            key += ' ';
            blank = true;
        }
    }
    if (!key.empty() && key.back() == ' ') key.pop_back();
    return key;
}

const char* SongSearch::fieldName(Field field) {
    switch (field) {
        case Field::Title:
            return "title";
        case Field::FirstLine:
            return "first line";
        case Field::Index:
            return "index";
        case Field::Author:
            return "author";
        case Field::Lyrics:
            return "lyrics";
    }
    return "title";
}

namespace {

std::vector<SongDBFileEntry*> songsWhere(const SongDatabase& database,
                                         const std::function<bool(const SongDBFileEntry&)>& test) {
    std::vector<SongDBFileEntry*> found;
    for (SongDBFileEntry* file : database.files()) {
        if (test(*file)) found.push_back(file);
    }
    return found;
}

}  // namespace

std::vector<SongDBFileEntry*> songsWithUuid(const SongDatabase& database, std::string_view uuid) {
    if (SongDBFileEntry* file = database.findEntryByUUID(String(uuid))) return {file};
    if (codePointLength(uuid) < 4) return {};
    return songsWhere(database, [uuid](const SongDBFileEntry& file) {
        return startsWithIgnoreCase(file.uuid(), uuid);
    });
}

std::vector<SongDBFileEntry*> songsNamed(const SongDatabase& database, std::string_view word) {
    std::vector<SongDBFileEntry*> found = songsWhere(database, [word](const SongDBFileEntry& file) {
        return equalsIgnoreCase(file.listedTitle(), word);
    });
    if (found.empty()) found = songsWithUuid(database, word);
    const String key = SongSearch::searchKey(word);
    if (found.empty() && !key.empty()) {
        found = songsWhere(database, [&key](const SongDBFileEntry& file) {
            return SongSearch::searchKey(file.listedTitle()) == key;
        });
    }
    return found;
}

}  // namespace melodex
