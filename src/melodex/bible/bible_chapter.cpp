#include "melodex/bible/bible_chapter.h"

#include "melodex/bible/bible_book.h"
#include "melodex/foundation/text_file.h"

namespace melodex {

BibleChapter::BibleChapter(BibleBook* owner) : BibleObject(owner, TypeChapter) {}

BibleChapter::BibleChapter(const BibleChapter& other)
    : BibleObject(other), m_title(other.m_title), m_number(other.m_number) {
    m_verses.reserve(other.m_verses.size());
    for (const auto& verse : other.m_verses) {
        m_verses.push_back(std::make_unique<BibleVerse>(*verse));
        m_verses.back()->setOwner(this);
    }
}

BibleChapter& BibleChapter::operator=(const BibleChapter& other) {
    if (this == &other) return *this;
    BibleObject::operator=(other);
    BibleChapter copy(other);
    m_title = std::move(copy.m_title);
    m_number = std::move(copy.m_number);
    m_verses = std::move(copy.m_verses);
    for (auto& verse : m_verses)
        verse->setOwner(this);
    return *this;
}

BibleChapter::~BibleChapter() = default;

void BibleChapter::title(const String& title) {
    m_title = title;
    if (!m_number.empty()) return;
    // Files in the wild were numbered by this rule, and ".book" files written
    // from them carry its result in their chapter lines, so it is kept as it
    // has always worked: the digits at the end and the character before them.
    std::size_t digits = 0;
    while (digits < title.size() && title[title.size() - 1 - digits] >= '0' &&
           title[title.size() - 1 - digits] <= '9')
        ++digits;
    if (digits == 0 || digits == title.size()) {
        m_number = title;
        return;
    }
    // The character before the digits may take several bytes.
    std::size_t start = title.size() - digits - 1;
    while (start > 0 && (static_cast<unsigned char>(title[start]) & 0xC0) == 0x80)
        --start;
    m_number = title.substr(start);
}

BibleVerse* BibleChapter::verse(int index) const {
    if (index < 0 || index >= verseCount()) return nullptr;
    return m_verses[std::size_t(index)].get();
}

BibleVerse* BibleChapter::addVerse() {
    m_verses.push_back(std::make_unique<BibleVerse>(this));
    return m_verses.back().get();
}

BibleBook* BibleChapter::book() const {
    return static_cast<BibleBook*>(owner());
}

String BibleChapter::toString() const {
    return m_title;
}

void BibleChapter::writeToFile(TextFile& file) const {
    file.writeLine("[" + oneLine(m_number) + ":" + oneLine(m_title) + "]");
    for (const auto& verse : m_verses)
        verse->writeToFile(file);
    file.writeLine("");
}

}  // namespace melodex
