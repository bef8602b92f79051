#pragma once

// A song book: the library's hook for printed collections. A song can point
// at the book it belongs to (Song::book()) and carry its number in it. The
// book loader is a skeleton: it reads a book file's lines and keeps nothing,
// so a SongBook carries only a flag (true from construction).
//
//     SongBook book;
//     int error = book.loadFromFile("/books/Hymnal.txt");  // 0, or errno

#include "melodex/foundation/text.h"

namespace melodex {

class SongBook {
public:
    SongBook() = default;
    SongBook(const SongBook&) = default;
    SongBook& operator=(const SongBook&) = default;

    bool flag() const { return m_flag; }

    // Does nothing: a book holds nothing to clear.
    void clear() {}

    // Reads the book file's lines and keeps none of them. 0, or the errno
    // value when the file cannot be opened.
    int loadFromFile(const String& path);

private:
    // The place where a book's lines would be read; it reads nothing.
    void loadFromBookFile(StringArray& lines, const String& path);

    bool m_flag = true;
};

}  // namespace melodex
