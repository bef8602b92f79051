#include "melodex/bible/bible_verse.h"

#include "melodex/bible/bible_chapter.h"
#include "melodex/foundation/text_file.h"

namespace melodex {

BibleVerse::BibleVerse(BibleChapter* owner) : BibleObject(owner, TypeVerse) {}

BibleVerse& BibleVerse::operator=(const BibleVerse& other) {
    BibleObject::operator=(other);
    m_number = other.m_number;
    m_text = other.m_text;
    return *this;
}

BibleChapter* BibleVerse::chapter() const {
    return static_cast<BibleChapter*>(owner());
}

String BibleVerse::toString() const {
    return m_number + " - " + m_text;
}

void BibleVerse::writeToFile(TextFile& file) const {
    String line = oneLine(m_number);
    line += ":\t";
    line += oneLine(m_text);
    file.writeLine(line);
}

}  // namespace melodex
