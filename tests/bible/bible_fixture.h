#pragma once

// Helpers for the Bible tests: XML Bibles made from a short description, a
// Bible whose protected parts a test may use, and the text of a Bible's
// verses for comparisons.

#include <vector>

#include "melodex/bible/bible.h"
#include "melodex/foundation/text.h"

namespace melodex::test {

// Opens up what a program may only reach through a subclass.
class TestBible : public Bible {
public:
    using Bible::addBook;
    using Bible::clear;
};

class TestBook : public BibleBook {
public:
    using BibleBook::BibleBook;
    using BibleBook::load;
};

struct BookShape {
    String title;
    int chapters = 1;
    int verses = 3;  // in every chapter
};

// An XML Bible in the OpenSong layout: <bible n="title"><b n=...><c n=...>
// <v n=...>Book c:v</v>. Verse texts name their place, so a test can tell
// which verse it got.
inline String xmlBible(const String& title, const std::vector<BookShape>& books) {
    String xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<bible n=\"" + title + "\">\n";
    for (const BookShape& book : books) {
        xml += "<b n=\"" + book.title + "\">";
        for (int c = 1; c <= book.chapters; ++c) {
            xml += "<c n=\"" + std::to_string(c) + "\">";
            for (int v = 1; v <= book.verses; ++v) {
                const String place = std::to_string(c) + ":" + std::to_string(v);
                xml += "<v n=\"" + std::to_string(v) + "\">" + book.title + " " + place + "</v>";
            }
            xml += "</c>";
        }
        xml += "</b>\n";
    }
    return xml + "</bible>\n";
}

// Every chapter of the book as "[number|title] v:text v:text ...", loading
// it when needed.
inline StringArray chapterDump(BibleBook& book) {
    StringArray out;
    for (int c = 0; c < book.chapterCount(); ++c) {
        const BibleChapter& chapter = *book.chapter(c);
        String line = "[" + chapter.number() + "|" + chapter.title() + "]";
        for (int v = 0; v < chapter.verseCount(); ++v)
            line += " " + chapter.verse(v)->number() + ":" + chapter.verse(v)->text();
        out.push_back(line);
    }
    return out;
}

inline StringArray bookTitles(const Bible& bible) {
    StringArray out;
    for (int b = 0; b < bible.bookCount(); ++b)
        out.push_back(bible.book(b)->title());
    return out;
}

}  // namespace melodex::test
