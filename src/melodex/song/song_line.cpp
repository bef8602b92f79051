#include "melodex/song/song_line.h"

#include <algorithm>

#include "melodex/song/song_section.h"
#include "melodex/song/vocabulary.h"

namespace melodex {

SongLine::SongLine() = default;

SongLine::SongLine(const SongLine& other) {
    *this = other;
}

SongLine& SongLine::operator=(const SongLine& other) {
    if (this == &other) return *this;
    // The section link is not copied: a line must point at the section that
    // owns it, or a copy would outlive its source's section and reach it
    // through removeChord().
    clear();
    m_text = other.m_text;
    m_indent = other.m_indent;
    m_singers = other.m_singers;
    m_repeat = other.m_repeat;
    m_attributes = other.m_attributes;
    m_chords.reserve(other.m_chords.size());
    for (const auto& chord : other.m_chords)
        m_chords.push_back(std::make_unique<SongChord>(*chord));
    return *this;
}

SongLine::~SongLine() = default;

void SongLine::clear() {
    m_chords.clear();
    m_attributes.clear();
    m_text.clear();
    m_indent = 0;
    m_singers = 0;
    m_repeat = 0;
}

String SongLine::singersText() const {
    return singerTypeToString(m_singers);
}

namespace {

// The first entry whose offset is not below `offset`; the list is strictly
// ascending, so this is where a chord at `offset` is or belongs.
template <typename Chords>
auto findSlot(Chords& chords, int offset) {
    return std::lower_bound(
        chords.begin(), chords.end(), offset,
        [](const std::unique_ptr<SongChord>& entry, int value) { return entry->offset() < value; });
}

}  // namespace

void SongLine::addChord(SongChord* chord) {
    if (chord == nullptr) return;
    std::unique_ptr<SongChord> owned(chord);
    const auto slot = findSlot(m_chords, owned->offset());
    if (slot != m_chords.end() && (*slot)->offset() == owned->offset()) {
        if (owned->isValid()) {
            *slot = std::move(owned);
        } else {
            m_chords.erase(slot);
        }
        return;
    }
    if (!owned->isValid()) return;
    if (slot != m_chords.end()) {
        m_chords.insert(slot, std::move(owned));
        return;
    }
    // Only an append marks the section: an insertion or a replacement can
    // happen only in a line that already had chords.
    m_chords.push_back(std::move(owned));
    if (m_section != nullptr) m_section->hasChords(true);
}

void SongLine::addChord(const SongChord& chord) {
    // Assigned in place, a replaced chord keeps its address: pointers that
    // callers hold to it stay valid.
    const auto slot = findSlot(m_chords, chord.offset());
    if (chord.isValid() && slot != m_chords.end() && (*slot)->offset() == chord.offset()) {
        **slot = chord;
        return;
    }
    addChord(new SongChord(chord));
}

void SongLine::removeChord(int index) {
    if (index < 0 || index >= getChordCount()) return;
    m_chords.erase(m_chords.begin() + index);
    if (m_chords.empty() && m_section != nullptr) m_section->checkForChords();
}

bool SongLine::getChordAtOffset(int offset, SongChord& out) const {
    const auto slot = findSlot(m_chords, offset);
    if (slot == m_chords.end() || (*slot)->offset() != offset) return false;
    out = **slot;
    return true;
}

void SongLine::transpose(int semitones) {
    for (const auto& chord : m_chords)
        chord->transpose(semitones);
}

const LineAttribute* SongLine::findAttribute(std::string_view name) const {
    for (const LineAttribute& attribute : m_attributes) {
        if (equalsIgnoreCase(attribute.name, name)) return &attribute;
    }
    return nullptr;
}

void SongLine::addAttribute(const LineAttribute& attribute) {
    setAttribute(attribute.name, attribute.value);
}

void SongLine::setAttribute(std::string_view name, const Value& value) {
    if (LineAttribute* found = findAttribute(name)) {
        found->value = value;
    } else {
        m_attributes.push_back({String(name), value});
    }
}

bool SongLine::getAttribute(std::string_view name, Value& out) const {
    const LineAttribute* found = findAttribute(name);
    if (found == nullptr) return false;
    out = found->value;
    return true;
}

bool SongLine::getBooleanAttribute(std::string_view name, bool defaultValue) const {
    const LineAttribute* found = findAttribute(name);
    return found == nullptr ? defaultValue : found->value.toInteger(0) != 0;
}

int SongLine::getIntegerAttribute(std::string_view name, int defaultValue) const {
    const LineAttribute* found = findAttribute(name);
    return found == nullptr ? defaultValue : found->value.toInteger(0);
}

String SongLine::getStringAttribute(std::string_view name, std::string_view defaultValue) const {
    const LineAttribute* found = findAttribute(name);
    return found == nullptr ? String(defaultValue) : found->value.toString();
}

}  // namespace melodex
