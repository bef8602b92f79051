#pragma once

// One line of a song book's contents: a title entry or an index entry (the
// kinds shown as "Book title entry" and "Book index entry"), with its number
// and page.
//
//     SongBookEntry entry(3, 1, "Amazing grace");  // index() 3, type() 1
//
// The page belongs to the object itself: no constructor sets it (a new
// entry starts at 0) and neither copying nor assignment carries it over.

#include "melodex/foundation/text.h"

namespace melodex {

class SongBookEntry {
public:
    // `first` becomes the entry's number (index()), `second` its kind
    // (type()).
    SongBookEntry(int first, int second, const String& text);
    SongBookEntry(const SongBookEntry& other);
    SongBookEntry& operator=(const SongBookEntry& other);
    virtual ~SongBookEntry();

    const String& text() const { return m_text; }
    int type() const { return m_type; }
    int index() const { return m_index; }
    int page() const { return m_page; }
    void setPage(int page) { m_page = page; }

private:
    String m_text;
    int m_type = 0;
    int m_index = 0;
    int m_page = 0;
};

}  // namespace melodex
