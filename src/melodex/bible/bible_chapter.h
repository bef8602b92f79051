#pragma once

// One chapter of a book: a title ("Genesis 1", "Psalm 23", "Chapter 3"), a
// number as text, and the verses it owns.
//
// Setting a title also gives an empty number a value, taken from the title's
// end the way the family's Bible files have always numbered their chapters:
// the trailing digits together with the one character before them
// ("Genesis 1" gives " 1", "Psalm 119" gives " 119"), the whole title when
// it ends in no digit ("Prologue"). A number already set is never changed by
// a title. Readers that need the chapter as a number trim it first.

#include <memory>
#include <vector>

#include "melodex/bible/bible_object.h"
#include "melodex/bible/bible_verse.h"
#include "melodex/foundation/text.h"

namespace melodex {

class BibleBook;
class TextFile;

class BibleChapter : public BibleObject {
public:
    explicit BibleChapter(BibleBook* owner = nullptr);
    BibleChapter(const BibleChapter& other);             // verses are copied deeply
    BibleChapter& operator=(const BibleChapter& other);  // keeps this chapter's owner
    ~BibleChapter() override;

    const String& title() const { return m_title; }
    void title(const String& title);
    const String& number() const { return m_number; }
    void number(const String& number) { m_number = number; }

    int verseCount() const { return int(m_verses.size()); }
    // Null when the index is out of range.
    BibleVerse* verse(int index) const;
    // Appends an empty verse that this chapter owns.
    BibleVerse* addVerse();

    // The owner as a book; null when the chapter has none.
    BibleBook* book() const;

    // The title.
    String toString() const override;

    // The chapter's lines of a ".book" file: "[number:title]", a line per
    // verse, then an empty line.
    void writeToFile(TextFile& file) const;

private:
    friend class BibleBook;

    String m_title;
    String m_number;
    std::vector<std::unique_ptr<BibleVerse>> m_verses;
};

}  // namespace melodex
