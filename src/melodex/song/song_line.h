#pragma once

// One line of a song section: its lyric text, the chords above it and any
// further attributes a song file gave it.
//
//     auto* line = new SongLine;
//     line->setText("Amazing grace");
//     line->addChord(SongChord("G", 0));
//     line->addChord(SongChord("C", 8));  // over the "g" of "grace"
//     section.addLine(line);              // the section owns it now
//
// The line owns its chords. They are kept sorted by offset, at most one per
// offset and only valid ones: adding a chord at an offset that holds one
// replaces it, and adding an invalid (empty) chord there removes it. A
// pointer from getChord() stays valid until that chord is replaced or
// removed or the line is cleared or destroyed.
//
// Attributes keep the order in which they were added, so that a line is
// written back with its attributes in the order read; names are compared
// ignoring case.

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "melodex/foundation/text.h"
#include "melodex/foundation/value.h"
#include "melodex/music/song_chord.h"

namespace melodex {

class SongSection;

// One further attribute of a line.
struct LineAttribute {
    String name;
    Value value;
};

class SongLine {
public:
    SongLine();
    // The copy has the same text, numbers, attributes and (copied) chords.
    // It belongs to no section: the section link is the owner's to set.
    SongLine(const SongLine& other);
    // Copies as above and keeps this line's own section link.
    SongLine& operator=(const SongLine& other);
    virtual ~SongLine();

    // Deletes the chords and attributes, empties the text and sets indent,
    // singers and repeat to 0. The section link stays.
    virtual void clear();

    // The section that owns this line, or null. Set by the section's
    // addLine/insertLine and cleared by removeLine; changing it does not
    // change ownership.
    SongSection* section() const { return m_section; }
    void section(SongSection* section) { m_section = section; }

    const String& text() const { return m_text; }
    void setText(std::string_view text) { m_text.assign(text); }

    // 0 means the line follows its section's singers.
    int singers() const { return m_singers; }
    void singers(int singers) { m_singers = singers; }
    // The singer word of the singer type ("Default" for 0).
    String singersText() const;

    int indent() const { return m_indent; }
    void indent(int indent) { m_indent = indent; }

    // 0 means the line carries no repeat mark.
    int repeat() const { return m_repeat; }
    void repeat(int repeat) { m_repeat = repeat; }

    // --- Chords ------------------------------------------------------------

    int getChordCount() const { return int(m_chords.size()); }
    bool hasChords() const { return !m_chords.empty(); }
    // In offset order; no range check.
    SongChord* getChord(int index) const { return m_chords[std::size_t(index)].get(); }

    // Takes ownership, also of a chord it does not keep (an invalid one, which
    // only removes the chord at its offset); null is ignored. Appending a
    // chord after all others marks the section as having chords.
    void addChord(SongChord* chord);
    // The same with a copy; a chord at the same offset is assigned in place.
    void addChord(const SongChord& chord);

    // Removes the chord at `index`; an index out of range is ignored. When
    // the last chord goes, the section recomputes whether it has chords.
    void removeChord(int index);

    // Copies the chord at exactly `offset` into `out`; false (and `out`
    // unchanged) when there is none.
    bool getChordAtOffset(int offset, SongChord& out) const;

    void transpose(int semitones);

    // The line in a song file followed by "\n". Type 1: a "line" element
    // with its singers, indent, repeat and further attributes, and each chord
    // as a "chord" element just before the character it stands over (a chord
    // past the end follows the last character). Chord texts are escaped; in
    // the lyric text "&", "<" and ">" are. Type 3: the bare text, escaped the
    // same way. Other types: the bare text as stored.
    String writeToText(int fileType) const;

    // --- Attributes ----------------------------------------------------------

    // Both store the value under its name, replacing a value of the same
    // name (ignoring case) in its place, or appending.
    void addAttribute(const LineAttribute& attribute);
    void setAttribute(std::string_view name, const Value& value);

    // False (and `out` unchanged) when the name is not defined.
    bool getAttribute(std::string_view name, Value& out) const;
    // The integer reading compared with 0; the default when the name is absent.
    bool getBooleanAttribute(std::string_view name, bool defaultValue) const;
    // The integer reading (0 for a value that does not start with a number);
    // the default only when the name is absent.
    int getIntegerAttribute(std::string_view name, int defaultValue) const;
    String getStringAttribute(std::string_view name, std::string_view defaultValue) const;

    const std::vector<LineAttribute>& attributes() const { return m_attributes; }

private:
    const LineAttribute* findAttribute(std::string_view name) const;
    LineAttribute* findAttribute(std::string_view name) {
        return const_cast<LineAttribute*>(std::as_const(*this).findAttribute(name));
    }

    SongSection* m_section = nullptr;
    String m_text;
    int m_indent = 0;
    int m_singers = 0;
    int m_repeat = 0;
    std::vector<std::unique_ptr<SongChord>> m_chords;
    std::vector<LineAttribute> m_attributes;
};

}  // namespace melodex
