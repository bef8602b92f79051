#include "melodex/library/song_db_text_entry.h"

namespace melodex {

namespace {

bool isAsciiLetterOrDigit(unsigned char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

String makeSortKey(std::string_view text) {
    String withoutBlanks;
    withoutBlanks.reserve(text.size());
    for (char c : text) {
        if (c != ' ') withoutBlanks += c;
    }
    return foldCase(withoutBlanks);
}

}  // namespace

SongDBTextEntry::SongDBTextEntry(SongDBFileEntry* file, int type, const String& text)
    : m_type(type),
      m_text(text),
      m_baretext(makeBareText(text)),
      m_fileEntry(file),
      m_sortKey(makeSortKey(text)) {}

String SongDBTextEntry::makeBareText(std::string_view text) {
    // Byte by byte is exact for UTF-8: every byte of a multi-byte character
    // is above 127 and so is kept, like the character itself. DEL (127) is
    // kept too, as it always was.
    String bare;
    bare.reserve(text.size());
    for (char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool blank = byte < 32 || (byte <= 126 && !isAsciiLetterOrDigit(byte));
        if (blank) {
            // One blank for a run, none at the start.
            if (!bare.empty() && bare.back() != ' ') bare += ' ';
        } else {
            bare += c;
        }
    }
    if (!bare.empty() && bare.back() == ' ') bare.pop_back();
    return bare;
}

}  // namespace melodex
