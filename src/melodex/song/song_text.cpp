// The plain-text song layout (".txt"): paragraphs are sections, and the
// tabs in front of a paragraph's first line give its type. Writing it is
// part of Song::saveToText (song_xml.cpp).

#include "melodex/song/song.h"

#include "melodex/foundation/text_encoding.h"
#include "melodex/foundation/text_file.h"
#include "melodex/song/vocabulary.h"

namespace melodex {

namespace {

// Calls `take` with every line of `text`. CR LF counts as one line break, so
// a file written with CR LF reads back with the same blank lines; a lone CR
// or LF is a line break too.
template <typename Take>
void forEachLine(std::string_view text, Take take) {
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = start;
        while (end < text.size() && text[end] != '\n' && text[end] != '\r')
            ++end;
        take(text.substr(start, end - start));
        if (end == text.size()) return;
        start = end + 1;
        if (text[end] == '\r' && start < text.size() && text[start] == '\n') ++start;
    }
}

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

}  // namespace

void Song::readTextLine(std::string_view line, SongSection*& open) {
    while (!line.empty() && isBlank(line.back()))
        line.remove_suffix(1);
    if (line.empty()) {
        open = nullptr;
        return;
    }
    if (open == nullptr) {
        std::size_t tabs = 0;
        while (tabs < line.size() && line[tabs] == '\t')
            ++tabs;
        open = new SongSection(tabs == 0   ? SectionType::Verse
                               : tabs == 1 ? SectionType::Chorus
                                           : SectionType::Bridge);
        addSection(open);
    }
    while (line.front() == '\t' || line.front() == ' ')
        line.remove_prefix(1);
    auto* songLine = new SongLine;
    songLine->setText(line);
    open->addLine(songLine);
}

Status Song::loadFromTextString(std::string_view text) {
    // Text in memory may be the bytes of a file: decode them as a file would be.
    String decoded;
    if (detectEncoding(text) != TextEncoding::Utf8) {
        decoded = decodeText(text);
        text = decoded;
    }
    SongSection* open = nullptr;
    forEachLine(text, [&](std::string_view line) { readTextLine(line, open); });
    m_loadedFileType = SongFileType::Text;
    generateSectionIDs();
    return StatusSuccess;
}

Status Song::loadFromTextFile(std::string_view path) {
    TextFile file;
    if (const Status status = file.open(path, TextFile::Mode::Read); status != StatusSuccess)
        return status;
    SongSection* open = nullptr;
    String line;
    while (file.readLine(line))
        readTextLine(line, open);
    m_loadedFileType = SongFileType::Text;
    generateSectionIDs();
    return StatusSuccess;
}

void Song::processSongSmartData(std::string_view text) {
    SongSection* open = nullptr;
    forEachLine(text, [&](std::string_view line) { readTextLine(line, open); });
}

}  // namespace melodex
