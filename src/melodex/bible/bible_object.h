#pragma once

// The common base of the four levels of a Bible held in memory: a Bible owns
// its books, a book its chapters, a chapter its verses, and each child points
// back at the object that owns it.
//
//     for (int b = 0; b < bible.bookCount(); ++b) {
//         BibleBook* book = bible.book(b);
//         for (int c = 0; c < book->chapterCount(); ++c)   // reads the .book file once
//             for (int v = 0; v < book->chapter(c)->verseCount(); ++v)
//                 std::cout << book->chapter(c)->verse(v)->toString() << '\n';
//     }
//
// Copies are deep: a copy owns copies of the children, and they point at the
// copy. The copy itself keeps the owner of the object it was made from (a
// copied book names the Bible of the original as its owner, though that
// Bible does not hold it); assignment keeps the target's own owner.

#include <string_view>

#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"

namespace melodex {

// A Bible folder that does not load, an XML file that holds no Bible, and
// the import that is present in the interface but never does anything.
inline constexpr Status BibleStatusFailed = StatusFailed;

class BibleObject {
public:
    // The type codes, fixed at construction.
    enum Type { TypeBible = 1, TypeBook = 2, TypeChapter = 3, TypeVerse = 4 };

    BibleObject(BibleObject* owner, int type) : m_type(type), m_owner(owner) {}
    BibleObject(const BibleObject& other) = default;
    // Keeps this object's type and owner: only the contents are assigned.
    BibleObject& operator=(const BibleObject&) { return *this; }
    virtual ~BibleObject() = default;

    int type() const { return m_type; }
    // The object that owns this one; null for a Bible of its own.
    BibleObject* owner() const { return m_owner; }

    virtual String toString() const = 0;

protected:
    void setOwner(BibleObject* owner) { m_owner = owner; }

    // The text with every line break (CR, LF or both) made one blank: a
    // line of a ".book" file cannot hold one, and a verse line cut in two
    // would read back as a stray verse.
    static String oneLine(std::string_view text);

private:
    int m_type;
    BibleObject* m_owner;
};

}  // namespace melodex
