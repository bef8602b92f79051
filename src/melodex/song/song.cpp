#include "melodex/song/song.h"

#include <algorithm>
#include <string>

#include "melodex/foundation/file_system.h"
#include "melodex/foundation/string_tables.h"
#include "melodex/foundation/uuid.h"
#include "melodex/song/vocabulary.h"

namespace melodex {

Song::Song() : m_updated(LocalTime::now()) {}

// Member by member rather than through Song() and clear(): both would read
// the clock and fill an information block only to overwrite them.
Song::Song(const Song& other)
    : m_uuid(other.m_uuid),
      m_updated(other.m_updated),
      m_info(other.m_info),
      m_numberInBook(other.m_numberInBook),
      m_filename(other.m_filename),
      m_pageCount(other.m_pageCount),
      m_loadedFileType(other.m_loadedFileType) {
    copySections(other);
}

Song& Song::operator=(const Song& other) {
    if (this == &other) return *this;
    copySections(other);
    m_uuid = other.m_uuid;
    m_updated = other.m_updated;
    m_info = other.m_info;
    // The number in the book is copied but the book link (and the local
    // sequence) are not: the link and the running order belong to where a
    // program uses this song object. The programs rely on this; keep it.
    m_numberInBook = other.m_numberInBook;
    m_filename = other.m_filename;
    m_pageCount = other.m_pageCount;
    m_loadedFileType = other.m_loadedFileType;
    return *this;
}

void Song::copySections(const Song& other) {
    m_sections.clear();
    m_sections.reserve(other.m_sections.size());
    for (const auto& section : other.m_sections)
        m_sections.push_back(std::make_unique<SongSection>(*section));
}

Song::~Song() = default;

void Song::updateFileTimes() {
    m_updated = LocalTime::now();
}

void Song::addSection(SongSection* section) {
    if (section != nullptr) m_sections.emplace_back(section);
}

void Song::insertSection(SongSection* section, int index) {
    if (section == nullptr) return;
    const int position = std::clamp(index, 0, getSectionCount());
    m_sections.emplace(m_sections.begin() + position, section);
}

SongSection* Song::removeSection(int index, bool deleteIt) {
    std::unique_ptr<SongSection> section = std::move(m_sections[std::size_t(index)]);
    m_sections.erase(m_sections.begin() + index);
    if (deleteIt) return nullptr;
    return section.release();
}

void Song::clear() {
    m_sections.clear();
    m_uuid.clear();
    m_updated = LocalTime::now();
    m_info.clear();
    m_filename.clear();
    m_pageCount = 1;
    m_loadedFileType = 0;
}

void Song::generateUUID() {
    m_uuid = Uuid::generate().toString();
}

void Song::generateSectionIDs() {
    // One counter per type code; codes outside the table share the "V" of
    // "Verse" but keep counters of their own.
    std::vector<std::pair<int, int>> counters;
    for (const auto& section : m_sections) {
        const int type = section->type();
        auto counter = std::find_if(counters.begin(), counters.end(),
                                    [type](const auto& entry) { return entry.first == type; });
        if (counter == counters.end()) counter = counters.insert(counters.end(), {type, 0});
        ++counter->second;
        section->id(sectionTypeToString(type).substr(0, 1) + std::to_string(counter->second));
    }
}

namespace {

bool isAuto(const String& sequence) {
    return sequence.empty() || equalsIgnoreCase(sequence, "auto");
}

}  // namespace

String Song::getSequence() const {
    if (!isAuto(m_localSequence)) return m_localSequence;
    String fromInfo = m_info.sequence();
    if (!isAuto(fromInfo)) return fromInfo;

    String sequence;
    String preChorus;
    String chorus;
    auto appendRefrain = [&] {
        if (!preChorus.empty()) sequence += "," + preChorus;
        if (!chorus.empty()) sequence += "," + chorus;
    };
    int previousType = 0;
    for (std::size_t i = 0; i < m_sections.size(); ++i) {
        const SongSection& section = *m_sections[i];
        const int type = section.type();
        const bool versePart = type == SectionType::Verse || type == SectionType::Bridge;
        if (i > 0) {
            if (versePart && previousType != SectionType::Chorus) appendRefrain();
            sequence += ',';
        }
        sequence += section.id();
        if (type == SectionType::PreChorus) preChorus = section.id();
        if (type == SectionType::Chorus) chorus = section.id();
        previousType = type;
    }
    if (previousType == SectionType::Verse || previousType == SectionType::Bridge) appendRefrain();
    return sequence;
}

void Song::transpose(int semitones) {
    m_info.transpose(semitones);
    for (const auto& section : m_sections)
        section->transpose(semitones);
}

String Song::toString() const {
    String out = "Song \"" + m_info.title() + "\" key " + m_info.key() + ":";
    if (m_sections.empty()) return out + " no sections";
    for (const auto& section : m_sections) {
        out += ' ';
        out += section->id().empty() ? "?" : section->id();
    }
    return out;
}

String Song::pathWithFileExtension(std::string_view path, int fileType) {
    return joinPath(folderOf(path), baseNameOf(path) + getFileExtension(fileType));
}

String Song::getFileExtension(int fileType) {
    switch (fileType) {
        case SongFileType::Song:
            return ".song";
        case SongFileType::Text:
            return ".txt";
        case SongFileType::Sng:
            return ".sng";
        default:
            return {};
    }
}

String Song::getFileTypeName(int fileType) {
    std::string_view key = "unknown";
    switch (fileType) {
        case SongFileType::Song:
            key = "standard";
            break;
        case SongFileType::Text:
            key = "text";
            break;
        case SongFileType::Sng:
            key = "sng";
            break;
        case SongFileType::OpenSong:
            key = "opensong";
            break;
        default:
            break;
    }
    return StringTables::instance().loadString("SongFileType", key, "");
}

String Song::getFileXmlNamespace(int fileType) {
    switch (fileType) {
        case SongFileType::Song:
            return "brackwell/song";
        case SongFileType::Sng:
            return "creativelifestyles/song";
        default:
            return {};
    }
}

}  // namespace melodex
