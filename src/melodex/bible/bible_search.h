#pragma once

// Finding the verses of a Bible that hold every one of some words, the way
// a person searches: case, accents and typographic quotes and dashes do not
// matter, and a word matches at the start of a word of the verse, so "love"
// finds "love", "loved" and "lovingkindness" is not found by "kind".
//
//     BibleSearch search("God so loved");
//     for (BibleVerse* verse : search.find(bible))
//         std::cout << BibleReference::label(*verse) << ' ' << verse->text() << '\n';

#include <string_view>
#include <vector>

#include "melodex/foundation/text.h"

namespace melodex {

class Bible;
class BibleVerse;

class BibleSearch {
public:
    // The words are split at blanks; punctuation around them is dropped.
    explicit BibleSearch(std::string_view words);

    // False when the text gave no word to look for.
    bool isValid() const { return !m_words.empty(); }
    // The words as they are looked for (folded).
    const StringArray& words() const { return m_words; }

    // True when the text holds every word at the start of one of its words.
    bool matches(std::string_view text) const;

    // The verses of the Bible that match, in the Bible's order; reads every
    // book not read yet. Empty for a search without words.
    std::vector<BibleVerse*> find(const Bible& bible) const;

private:
    StringArray m_words;
};

}  // namespace melodex
