#pragma once

// One section of a song (a verse, a chorus ...): its type, singers, targets,
// layout hints and its lines.
//
//     auto* chorus = new SongSection(SectionType::Chorus);
//     chorus->repeat(2);
//     chorus->addLine(line);  // takes ownership of a heap-allocated line
//     song.addSection(chorus);
//
// The section owns its lines and sets each line's section link. A pointer
// returned by getLine() stays valid until that line is removed or the
// section is cleared or destroyed.

#include <memory>
#include <vector>

#include "melodex/foundation/text.h"
#include "melodex/song/song_line.h"
#include "melodex/song/vocabulary.h"

namespace melodex {

class SongSection {
public:
    explicit SongSection(int type = SectionType::Verse);
    // A full copy: the lines are copied deeply and point at the copy; id,
    // hasChords and firstOnPage are copied too.
    SongSection(const SongSection& other);
    // Clears this section, then copies the lines and the type, singers,
    // repeat, keepWithPrevious, target, spaceBefore and indent. The id,
    // hasChords and firstOnPage stay this section's own.
    SongSection& operator=(const SongSection& other);
    virtual ~SongSection();

    int type() const { return m_type; }
    void setType(int type) { m_type = type; }

    // Short id used in sequences, such as "V1".
    const String& id() const { return m_id; }
    void id(const String& id) { m_id = id; }

    int singers() const { return m_singers; }
    void setSingers(int singers) { m_singers = singers; }

    // Target bits; 0 means everyone.
    int target() const { return m_target; }
    void target(int bits) { m_target = bits; }
    // True when the stored target shares a bit with `bits`. A stored 0
    // ("All") answers false: callers that mean everyone test for 0 themselves.
    bool isTarget(int bits) const { return (m_target & bits) != 0; }
    void setTarget(int bits, bool on) { m_target = on ? (m_target | bits) : (m_target & ~bits); }

    // Times the section is sung; never less than 1.
    int repeat() const { return m_repeat < 1 ? 1 : m_repeat; }
    void repeat(int repeat) { m_repeat = repeat; }

    int indent() const { return m_indent; }
    void indent(int indent) { m_indent = indent; }

    // 0 none, 1 small, any other value large.
    int spaceBefore() const { return m_spaceBefore; }
    void spaceBefore(int space) { m_spaceBefore = space; }

    bool keepWithPrevious() const { return m_keepWithPrevious; }
    void keepWithPrevious(bool keep) { m_keepWithPrevious = keep; }

    bool hasChords() const { return m_hasChords; }
    void hasChords(bool hasChords) { m_hasChords = hasChords; }

    bool firstOnPage() const { return m_firstOnPage; }
    void setFirstOnPage(bool first) { m_firstOnPage = first; }

    // The indent level that the section's type calls for: Chorus and
    // PreChorus 1, Bridge and Tag 2, all others 0.
    int indentForType() const;

    // --- Lines ---------------------------------------------------------------

    int getLineCount() const { return int(m_lines.size()); }
    // No range check.
    SongLine* getLine(int index) const { return m_lines[std::size_t(index)].get(); }

    // Takes ownership of a heap-allocated line and sets its section link;
    // null is ignored. insertLine() appends when the index is past the end.
    void addLine(SongLine* line);
    void insertLine(SongLine* line, int index);

    // Takes the line out and clears its section link. With `deleteIt` the
    // line is deleted and null returned; otherwise the caller owns the
    // returned line. No range check.
    SongLine* removeLine(int index, bool deleteIt);

    // Deletes the lines and resets type, target, repeat, indent, spaceBefore
    // and keepWithPrevious. Id, singers, hasChords and firstOnPage are left
    // as they are.
    void clear();

    // hasChords becomes whether any line has a chord.
    void checkForChords();

    void transpose(int semitones);

    // The section in a song file: for type 1 a "block" element with its
    // attributes and "line" elements, for type 3 a "verse" element holding
    // the bare line texts, for type 2 only the line texts. The id (and a
    // verse's type) is written but not read back; "singers" carries the
    // repeat count and the indent is written as "ident", so neither survives
    // a round trip. Other types get the attributes without an element name.
    String writeToText(int fileType) const;

private:
    void copyFieldsAndLines(const SongSection& other);

    String m_id;
    std::vector<std::unique_ptr<SongLine>> m_lines;
    int m_type = SectionType::Verse;
    int m_singers = SingerType::Default;
    int m_target = Target::All;
    int m_repeat = 1;
    int m_indent = 0;
    int m_spaceBefore = 0;
    bool m_keepWithPrevious = false;
    bool m_hasChords = false;
    bool m_firstOnPage = false;
};

}  // namespace melodex
