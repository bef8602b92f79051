#include "melodex/song/song_section.h"

#include <algorithm>

namespace melodex {

SongSection::SongSection(int type) : m_type(type) {}

SongSection::SongSection(const SongSection& other)
    : m_id(other.m_id), m_hasChords(other.m_hasChords), m_firstOnPage(other.m_firstOnPage) {
    copyFieldsAndLines(other);
}

SongSection& SongSection::operator=(const SongSection& other) {
    if (this == &other) return *this;
    // Assignment keeps this section's id, hasChords and firstOnPage: the
    // programs assign an edited copy back onto a section whose place in the
    // song, and so its id and page break, stays the same.
    clear();
    copyFieldsAndLines(other);
    return *this;
}

SongSection::~SongSection() = default;

void SongSection::copyFieldsAndLines(const SongSection& other) {
    m_lines.reserve(other.m_lines.size());
    for (const auto& line : other.m_lines) {
        auto copy = std::make_unique<SongLine>(*line);
        copy->section(this);
        m_lines.push_back(std::move(copy));
    }
    m_type = other.m_type;
    m_singers = other.m_singers;
    m_repeat = other.m_repeat;
    m_keepWithPrevious = other.m_keepWithPrevious;
    m_target = other.m_target;
    m_spaceBefore = other.m_spaceBefore;
    m_indent = other.m_indent;
}

int SongSection::indentForType() const {
    switch (m_type) {
        case SectionType::Chorus:
        case SectionType::PreChorus:
            return 1;
        case SectionType::Bridge:
        case SectionType::Tag:
            return 2;
        default:
            return 0;
    }
}

void SongSection::addLine(SongLine* line) {
    if (line == nullptr) return;
    line->section(this);
    m_lines.emplace_back(line);
}

void SongSection::insertLine(SongLine* line, int index) {
    if (line == nullptr) return;
    line->section(this);
    const auto position = std::clamp(index, 0, getLineCount());
    m_lines.emplace(m_lines.begin() + position, line);
}

SongLine* SongSection::removeLine(int index, bool deleteIt) {
    std::unique_ptr<SongLine> line = std::move(m_lines[std::size_t(index)]);
    m_lines.erase(m_lines.begin() + index);
    line->section(nullptr);
    if (deleteIt) return nullptr;
    return line.release();
}

void SongSection::clear() {
    for (const auto& line : m_lines)
        line->section(nullptr);
    m_lines.clear();
    // A partial reset: id, singers, hasChords and firstOnPage survive. The
    // programs of the family have always seen it so; keep it.
    m_type = SectionType::Verse;
    m_target = Target::All;
    m_repeat = 1;
    m_indent = 0;
    m_spaceBefore = 0;
    m_keepWithPrevious = false;
}

void SongSection::checkForChords() {
    m_hasChords = std::any_of(m_lines.begin(), m_lines.end(),
                              [](const auto& line) { return line->hasChords(); });
}

void SongSection::transpose(int semitones) {
    for (const auto& line : m_lines)
        line->transpose(semitones);
}

}  // namespace melodex
