#pragma once

// Generated songs for the library benchmarks: phrases drawn from a word list
// with a fixed seed, so that every run builds the same library, and hymns of
// four verses of four lines with chords (about 1.3 KB as a song file).

#include <cctype>
#include <random>
#include <span>
#include <string>

#include "melodex/song/song.h"

namespace melodex::bench {

inline constexpr const char* HymnWords[] = {
    "grace",  "holy",   "light",    "glory",    "mercy",   "shepherd", "morning",  "river",
    "praise", "heaven", "mountain", "peace",    "faith",   "rock",     "fountain", "King",
    "love",   "joy",    "Zion",     "cross",    "crown",   "spirit",   "wonder",   "hope",
    "night",  "song",   "thee",     "evermore", "blessed", "Saviour",  "fields",   "star"};
inline constexpr const char* HymnChords[] = {"G", "D", "Em", "C", "A7", "Bm", "D/F#", "Am7"};
inline constexpr const char* HymnKeys[] = {"G", "D", "Em", "C", "A", "Bm"};

class WordSource {
public:
    explicit WordSource(std::span<const char* const> words = HymnWords, unsigned seed = 1779)
        : m_words(words), m_random(seed), m_pick(0, words.size() - 1) {}

    // `count` words, the first capitalised.
    String phrase(int count) {
        String out;
        for (int i = 0; i < count; ++i) {
            if (i > 0) out += ' ';
            out += m_words[m_pick(m_random)];
        }
        out[0] = char(std::toupper(static_cast<unsigned char>(out[0])));
        return out;
    }

    const char* chord() { return HymnChords[m_pick(m_random) % std::size(HymnChords)]; }
    const char* key() { return HymnKeys[m_pick(m_random) % std::size(HymnKeys)]; }

private:
    std::span<const char* const> m_words;
    std::mt19937 m_random;
    std::uniform_int_distribution<std::size_t> m_pick;
};

// Song `number` of a generated library: title, author, key, tempo, an index
// entry, a category, and four verses of four lines with two chords each.
inline Song makeHymn(WordSource& words, int number) {
    Song song;
    song.clear();
    song.info().setTitle(words.phrase(3) + " " + std::to_string(number));
    song.info().setAuthor("Author " + std::to_string(number % 300));
    song.info().setKey(words.key());
    song.info().setAttribute("tempo", std::to_string(60 + number % 60));
    song.info().addIndex(words.phrase(5));
    song.info().addCategory(words.phrase(1));
    for (int s = 0; s < 4; ++s) {
        auto* section = new SongSection(1);
        for (int l = 0; l < 4; ++l) {
            auto* line = new SongLine();
            line->setText(words.phrase(7));
            line->addChord(SongChord(words.chord(), 0));
            line->addChord(SongChord(words.chord(), 12));
            section->addLine(line);
        }
        song.addSection(section);
    }
    song.generateSectionIDs();
    song.generateUUID();
    return song;
}

}  // namespace melodex::bench
