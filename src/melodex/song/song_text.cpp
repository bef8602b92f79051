// The plain-text song layout (".txt"): paragraphs are sections, and the
// tabs in front of a paragraph's first line give its type. Writing it is
// part of Song::saveToText (song_xml.cpp).

#include "melodex/song/song.h"

#include <optional>

#include "melodex/foundation/file_system.h"
#include "melodex/foundation/text_encoding.h"
#include "melodex/song/vocabulary.h"

namespace melodex {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// The uuid and the time that the text writer puts in front of the first
// lyric line ("<uuid>...</uuid><updated>YYYYMMDDhhmmss</updated>"), taken
// off the text into the song. Anything else at the start is left as lyric.
std::string_view takeWrittenPrefix(std::string_view text, Song& song) {
    constexpr std::string_view UuidOpen = "<uuid>";
    constexpr std::string_view Between = "</uuid><updated>";
    constexpr std::string_view UpdatedClose = "</updated>";
    if (!text.starts_with(UuidOpen)) return text;
    const std::size_t uuidEnd = text.find(Between, UuidOpen.size());
    if (uuidEnd == std::string_view::npos) return text;
    const std::string_view uuid = text.substr(UuidOpen.size(), uuidEnd - UuidOpen.size());
    if (uuid.find_first_of("<>\r\n") != std::string_view::npos) return text;
    const std::size_t timeStart = uuidEnd + Between.size();
    const std::size_t timeEnd = text.find(UpdatedClose, timeStart);
    if (timeEnd == std::string_view::npos) return text;
    const std::optional<LocalTime> time =
        LocalTime::parse(text.substr(timeStart, timeEnd - timeStart));
    if (!time) return text;
    song.uuid(uuid);
    song.updated(*time);
    return text.substr(timeEnd + UpdatedClose.size());
}

}  // namespace

void Song::readText(std::string_view text) {
    // CR LF counts as one line break, so a file written with CR LF reads
    // back with the same blank lines; a lone CR or LF is a line break too.
    SongSection* open = nullptr;  // the section that the next lyric line joins
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = start;
        while (end < text.size() && text[end] != '\n' && text[end] != '\r')
            ++end;
        std::string_view line = text.substr(start, end - start);
        start = end + 1;
        if (end + 1 < text.size() && text[end] == '\r' && text[end + 1] == '\n') ++start;

        while (!line.empty() && isBlank(line.back()))
            line.remove_suffix(1);
        if (line.empty()) {
            open = nullptr;
            continue;
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
}

Status Song::loadFromTextString(std::string_view text) {
    // Text in memory may be the bytes of a file: decode them as a file would
    // be. Plain UTF-8, the common case, is read where it lies.
    // The prefix that the writer puts in front of the first line is no
    // lyric: its uuid and time are the song's own, so that a text song
    // written by this library reads back as the same song.
    if (detectEncoding(text) == TextEncoding::Utf8) {
        readText(takeWrittenPrefix(text, *this));
    } else {
        const String decoded = decodeText(text);
        readText(takeWrittenPrefix(decoded, *this));
    }
    m_loadedFileType = SongFileType::Text;
    generateSectionIDs();
    return StatusSuccess;
}

Status Song::loadFromTextFile(std::string_view path) {
    std::string bytes;
    if (const Status status = readFileBytes(path, bytes); status != StatusSuccess) return status;
    return loadFromTextString(bytes);
}

void Song::processSongSmartData(std::string_view text) {
    readText(text);
}

}  // namespace melodex
