#pragma once

// One verse: its number as written (it need not be a number: "4-5", "16a")
// and its text. Owned by its chapter.

#include "melodex/bible/bible_object.h"
#include "melodex/foundation/text.h"

namespace melodex {

class BibleChapter;
class TextFile;

class BibleVerse : public BibleObject {
public:
    explicit BibleVerse(BibleChapter* owner = nullptr);
    BibleVerse(const BibleVerse& other) = default;
    BibleVerse& operator=(const BibleVerse& other);

    const String& number() const { return m_number; }
    void number(const String& number) { m_number = number; }
    const String& text() const { return m_text; }
    void text(const String& text) { m_text = text; }

    // The owner as a chapter; null when the verse has none.
    BibleChapter* chapter() const;

    // "16 - For God so loved the world ..."
    String toString() const override;

    // The verse's line of a ".book" file: the number, ":", a tab, the text.
    void writeToFile(TextFile& file) const;

private:
    friend class Bible;
    friend class BibleBook;
    friend class BibleChapter;

    String m_number;
    String m_text;
};

}  // namespace melodex
