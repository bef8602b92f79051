#pragma once

// The description of one book file: its path, title, index texts (in the
// order added) and a page number.
//
//     SongBookFile book;
//     book.setTitle("Hymns Ancient and Modern");
//     book.addIndex("Morning");
//     book.getIndex(0);  // "Morning"

#include "melodex/foundation/text.h"

namespace melodex {

class SongBookFile {
public:
    const String& file() const { return m_file; }
    void setFilename(const String& path) { m_file = path; }

    const String& title() const { return m_title; }
    void setTitle(const String& title) { m_title = title; }

    int getIndexCount() const { return int(m_indexes.size()); }
    // No range check.
    const String& getIndex(int i) const { return m_indexes[std::size_t(i)]; }
    void addIndex(const String& text) { m_indexes.push_back(text); }

    int page() const { return m_page; }
    void setPage(int page) { m_page = page; }

private:
    String m_file;
    String m_title;
    StringArray m_indexes;
    int m_page = 0;
};

}  // namespace melodex
