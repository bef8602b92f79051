#include "melodex/library/song_book_entry.h"

namespace melodex {

SongBookEntry::SongBookEntry(int first, int second, const String& text)
    : m_text(text), m_type(second), m_index(first) {}

// The page stays with the object: the programs set it where the entry is
// laid out, and a copied entry has not been laid out yet.
SongBookEntry::SongBookEntry(const SongBookEntry& other)
    : m_text(other.m_text), m_type(other.m_type), m_index(other.m_index) {}

SongBookEntry& SongBookEntry::operator=(const SongBookEntry& other) {
    m_text = other.m_text;
    m_type = other.m_type;
    m_index = other.m_index;
    return *this;
}

SongBookEntry::~SongBookEntry() = default;

}  // namespace melodex
