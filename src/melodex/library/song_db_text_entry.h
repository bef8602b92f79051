#pragma once

// One searchable text of the song library: a song's title, its first line or
// one of its index entries, pointing back at the file entry of the song.
//
//     SongDBTextEntry entry(file, SongDBTextEntry::Title, "Amazing grace! (How great)");
//     entry.baretext();  // "Amazing grace How great"
//
// The library (SongDatabase) creates, sorts and deletes text entries; a file
// entry only lists its own. The bare text (punctuation and control
// characters turned into single blanks) is what searches look at; the sort
// key (the text without blanks, case-folded) orders the library's list.
// Both are computed once, when the entry is made.

#include "melodex/foundation/text.h"

namespace melodex {

class SongDBFileEntry;

class SongDBTextEntry {
public:
    // The kinds of text.
    static constexpr int Title = 0;
    static constexpr int FirstLine = 1;
    static constexpr int IndexEntry = 2;

    SongDBTextEntry() = default;
    // `file` is not owned.
    SongDBTextEntry(SongDBFileEntry* file, int type, const String& text);

    int type() const { return m_type; }
    const String& text() const { return m_text; }
    const String& baretext() const { return m_baretext; }
    SongDBFileEntry* fileEntry() const { return m_fileEntry; }

    // The text without blanks, case-folded: two entries sort as their keys
    // compare byte by byte (which is code point order).
    const String& sortKey() const { return m_sortKey; }
    bool sortsBefore(const SongDBTextEntry& other) const { return m_sortKey < other.m_sortKey; }

    // The text reduced for searching: every control character and every
    // ASCII character other than a letter, a digit or the blank becomes a
    // blank; runs of blanks become one; blanks at either end go. Characters
    // beyond ASCII (accented and non-Latin letters) are kept.
    static String makeBareText(std::string_view text);

private:
    int m_type = Title;
    String m_text;
    String m_baretext;
    SongDBFileEntry* m_fileEntry = nullptr;
    String m_sortKey;
};

}  // namespace melodex
