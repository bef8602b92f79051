#include "melodex/song/song_conversion.h"

#include "melodex/foundation/file_system.h"
#include "melodex/song/vocabulary.h"

namespace melodex {

namespace {

template <typename Test>
bool anyLine(const Song& song, Test test) {
    for (int s = 0; s < song.getSectionCount(); ++s) {
        const SongSection& section = *song.getSection(s);
        for (int l = 0; l < section.getLineCount(); ++l) {
            if (test(*section.getLine(l))) return true;
        }
    }
    return false;
}

template <typename Test>
bool anySection(const Song& song, Test test) {
    for (int s = 0; s < song.getSectionCount(); ++s) {
        if (test(*song.getSection(s))) return true;
    }
    return false;
}

bool hasInformation(const SongInfo& info) {
    for (const SongInfo::Attribute& attribute : info.attributes()) {
        if (!attribute.value.empty()) return true;
    }
    return info.getIndexCount() > 0 || info.getCategoryCount() > 0 || info.getReferenceCount() > 0;
}

}  // namespace

int songFileTypeForPath(std::string_view path) {
    const String extension = extensionOf(path);
    if (equalsIgnoreCase(extension, ".song") || equalsIgnoreCase(extension, ".xml"))
        return SongFileType::Song;
    if (equalsIgnoreCase(extension, ".txt")) return SongFileType::Text;
    if (equalsIgnoreCase(extension, ".sng")) return SongFileType::Sng;
    return 0;
}

StringArray dataLostBySaving(const Song& song, int fileType) {
    if (fileType != SongFileType::Song && fileType != SongFileType::Text &&
        fileType != SongFileType::Sng) {
        return {"everything (this type is read only)"};
    }
    StringArray lost;
    const bool native = fileType == SongFileType::Song;
    if (!native && anyLine(song, [](const SongLine& line) { return line.hasChords(); }))
        lost.push_back("the chords");
    if (fileType == SongFileType::Text && hasInformation(song.info()))
        lost.push_back("the information (title, author, key ...)");
    if (fileType == SongFileType::Sng &&
        (song.info().getIndexCount() > 0 || song.info().getCategoryCount() > 0))
        lost.push_back("the index entries and categories");
    // A ".sng" section comes back typed by its id ("chorus..."), which the
    // writer never gives; a text paragraph comes back as a verse.
    if (!native && anySection(song, [](const SongSection& section) {
            return section.type() != SectionType::Verse;
        }))
        lost.push_back("the section types (every section reads back as a verse)");
    if (!native && anyLine(song, [](const SongLine& line) {
            return line.singers() != 0 || line.indent() != 0 || line.repeat() != 0 ||
                   !line.attributes().empty();
        }))
        lost.push_back("the line settings (singers, indent, repeat ...)");
    if (!native && anySection(song, [](const SongSection& section) {
            return section.repeat() > 1 || section.target() != 0 || section.spaceBefore() != 0 ||
                   section.keepWithPrevious();
        }))
        lost.push_back("the section settings (repeat, target, spacing ...)");
    // Written, but under names that no reader takes back.
    if (anySection(song, [](const SongSection& section) {
            return section.singers() != 0 || section.indent() != 0;
        }))
        lost.push_back("the section singers and indents");
    return lost;
}

}  // namespace melodex
