#include "melodex/bible/bible_search.h"

#include "melodex/bible/bible.h"

namespace melodex {

namespace {

// Letters and digits of any script: every byte of a character outside
// ASCII counts, as folding has already turned the punctuation that matters
// (quotes, dashes) into ASCII.
bool isWordByte(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x80 || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           (c >= '0' && c <= '9');
}

std::string_view trimPunctuation(std::string_view word) {
    while (!word.empty() && !isWordByte(word.front()))
        word.remove_prefix(1);
    while (!word.empty() && !isWordByte(word.back()))
        word.remove_suffix(1);
    return word;
}

bool holdsAtWordStart(std::string_view text, std::string_view word) {
    for (std::size_t at = text.find(word); at != std::string_view::npos;
         at = text.find(word, at + 1)) {
        if (at == 0 || !isWordByte(text[at - 1])) return true;
    }
    return false;
}

}  // namespace

BibleSearch::BibleSearch(std::string_view words) {
    for (const String& word : split(foldForSearch(words), " \t\r\n", EmptyPieces::Skip)) {
        const std::string_view trimmed = trimPunctuation(word);
        if (!trimmed.empty()) m_words.emplace_back(trimmed);
    }
}

bool BibleSearch::matches(std::string_view text) const {
    if (m_words.empty()) return false;
    const String folded = foldForSearch(text);
    for (const String& word : m_words) {
        if (!holdsAtWordStart(folded, word)) return false;
    }
    return true;
}

std::vector<BibleVerse*> BibleSearch::find(const Bible& bible) const {
    std::vector<BibleVerse*> found;
    if (m_words.empty()) return found;
    for (int b = 0; b < bible.bookCount(); ++b) {
        BibleBook* book = bible.book(b);
        for (int c = 0; c < book->chapterCount(); ++c) {
            const BibleChapter* chapter = book->chapter(c);
            for (int v = 0; v < chapter->verseCount(); ++v) {
                BibleVerse* verse = chapter->verse(v);
                if (matches(verse->text())) found.push_back(verse);
            }
        }
    }
    return found;
}

}  // namespace melodex
