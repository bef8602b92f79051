#pragma once

// References to passages of the Bible as people write them, and the verses
// they name in a Bible.
//
//     String error;
//     std::optional<BibleReference> reference = BibleReference::parse("1 Cor 13:4-7; Rom 8:28", {},
//     &error); if (reference) {
//         for (BibleVerse* verse : reference->resolve(bible, &error))
//             std::cout << BibleReference::label(*verse) << ' ' << verse->text() << '\n';
//     }
//
// What is understood, separated by ";" into passages:
//
//     John 3:16        a verse          John 3:16-18      verses of a chapter
//     John 3:16–4:2    across chapters  Gen 1:1,3,5       a list (ranges allowed: 1:1,3-5)
//     Ps 23            a chapter        Ps 23-24          chapters
//     Jude 3           a verse: in a book of one chapter a lone number is a verse
//     John             the whole book   Rom 8:28; 12:1    a passage without a book
//                                                         stays in the book before it
//
// Any dash may stand for "-" (hyphen, en and em dash, minus ...), and "."
// for ":". The European style writes "," between chapter and verse and "."
// between verses ("Joh 3,16-18.20").
//
// Book names are matched ignoring case, accents, blanks and dots against the
// Bible's own book titles and the 66 English names, as the full name, a
// common abbreviation ("Jn", "1 Cor", "Ps", "Phil") or a prefix that fits
// one book only ("Gen", "Rev"); "I", "II", "First", "1st" ... in front count
// as 1, 2, 3. In a Bible whose titles are in another language but that
// holds all 66 books, the English names find the books by their place.
//
// Nothing is ever rounded: a book, chapter or verse that the Bible does not
// hold is an error that names it ("Genesis has no chapter 51; the last is
// 50"), and so is a range that runs backwards.

#include <optional>
#include <string_view>
#include <vector>

#include "melodex/foundation/text.h"

namespace melodex {

class Bible;
class BibleBook;
class BibleChapter;
class BibleVerse;

// From a verse to a verse: chapter and verse numbers as written in the
// reference. A verse of 0 means from the chapter's start, or to its end, so
// a range with both verses 0 is a run of whole chapters.
struct BibleVerseRange {
    int firstChapter = 0;
    int firstVerse = 0;
    int lastChapter = 0;
    int lastVerse = 0;

    friend bool operator==(const BibleVerseRange&, const BibleVerseRange&) = default;
};

// One passage: a book as the user named it, and its ranges in order; no
// ranges is the whole book.
struct BiblePassage {
    String book;
    std::vector<BibleVerseRange> ranges;
};

class BibleReference {
public:
    enum class Style {
        Standard,  // "John 3:16-18,20": ":" (or ".") before the verse, "," between verses
        European,  // "Joh 3,16-18.20": "," (or ":") before the verse, "." between verses
    };

    // The passages of the text; nullopt, with the reason in *error, when it
    // is not a reference.
    static std::optional<BibleReference> parse(std::string_view text, Style style = Style::Standard,
                                               String* error = nullptr);

    const std::vector<BiblePassage>& passages() const { return m_passages; }

    // The verses of the Bible that the reference names, in the order it
    // names them (reading the books it needs). Empty, with the reason in
    // *error, when anything it names is missing.
    std::vector<BibleVerse*> resolve(const Bible& bible, String* error = nullptr) const;

    // The Bible's book that the name stands for (see above); null, with the
    // reason in *error, when none or several do.
    static BibleBook* findBook(const Bible& bible, std::string_view name, String* error = nullptr);

    // "John 3:16": the book's title, the chapter's number (its title when
    // it has none) and the verse's number.
    static String label(const BibleVerse& verse);

    // The chapter's number without the blank that chapter titles of ".bbl"
    // files leave in front of it ("Genesis 1" numbers its chapter " 1");
    // its title when the number is empty.
    static String chapterName(const BibleChapter& chapter);

private:
    std::vector<BiblePassage> m_passages;
};

}  // namespace melodex
