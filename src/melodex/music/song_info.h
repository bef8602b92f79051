#pragma once

// A song's information: named attributes (title, author, copyright,
// sequence, key and whatever else a song file carries), index entries,
// categories and references, with the arithmetic of the song's key.
//
//     SongInfo info;                 // holds "key" = "C"
//     info.setKey("Am");
//     info.keyNumber(0, false);      // 9
//     info.keyNumber(0, true);       // 0: the relative major
//     info.keyName(2);               // "Bm"
//     info.transpose(-2);            // the key becomes "Gm"
//
// Attributes are stored as text and keep their insertion order; names are
// compared ignoring case (the readers and accessors use lower-case names).
//
// The key text may name several keys separated by any of "/-,;." ("G/D",
// "Am-C"); naming and transposing work piece by piece. A piece without a
// leading note name is written twice ("G/D" up two semitones reads "A//E"):
// files and printouts depend on that output, so it is kept.

#include <string_view>
#include <vector>

#include "melodex/foundation/text.h"
#include "melodex/foundation/value.h"
#include "melodex/music/song_reference.h"

namespace melodex {

class SongInfo {
public:
    struct Attribute {
        String name;
        String value;
        friend bool operator==(const Attribute&, const Attribute&) = default;
    };

    SongInfo();

    // The stored text, or empty when the name is not defined.
    String getAttribute(std::string_view name) const;
    // Stores the value's text, replacing a value of the same name in place.
    void setAttribute(std::string_view name, const Value& value);
    const std::vector<Attribute>& attributes() const { return m_attributes; }

    String title() const { return getAttribute("title"); }
    String author() const { return getAttribute("author"); }
    String copyright() const { return getAttribute("copyright"); }
    String sequence() const { return getAttribute("sequence"); }
    String key() const { return getAttribute("key"); }
    void setTitle(std::string_view title) { setAttribute("title", title); }
    void setAuthor(std::string_view author) { setAttribute("author", author); }
    void setCopyright(std::string_view copyright) { setAttribute("copyright", copyright); }
    void sequence(std::string_view sequence) { setAttribute("sequence", sequence); }
    void setKey(std::string_view key) { setAttribute("key", key); }

    // Lists; positions are not range-checked.
    int getIndexCount() const { return int(m_indexes.size()); }
    const String& getIndex(int index) const { return m_indexes[std::size_t(index)]; }
    void addIndex(std::string_view text) { m_indexes.emplace_back(text); }
    void removeIndex(int index) { m_indexes.erase(m_indexes.begin() + index); }

    int getCategoryCount() const { return int(m_categories.size()); }
    const String& getCategory(int index) const { return m_categories[std::size_t(index)]; }
    void addCategory(std::string_view text) { m_categories.emplace_back(text); }
    void removeCategory(int index) { m_categories.erase(m_categories.begin() + index); }

    int getReferenceCount() const { return int(m_references.size()); }
    SongReference getReference(int index) const { return m_references[std::size_t(index)]; }
    void addReference(const SongReference& reference) { m_references.push_back(reference); }
    void removeReference(int index) { m_references.erase(m_references.begin() + index); }

    // The key's root as a note number 0 to 11 after `transpose` semitones,
    // and `suffix`, what follows the note name in the whole key text ("m"
    // for "Am"). With `relativeMajor`, a suffix of exactly "m" (any case)
    // moves the number to the relative major; "min" or "m7" do not. A key
    // without a leading note name counts as note -1, so it reads as
    // 11 + transpose, and its suffix is the whole text.
    void keyInfo(int transpose, int& keyNumber, String& suffix, bool relativeMajor) const;
    int keyNumber(int transpose, bool relativeMajor) const;
    String keySuffix() const;

    // The key text as it reads after transposing by `transpose` semitones,
    // each note name in the key spelling (C C# D Eb E F F# G Ab A Bb B); "C"
    // when the key is empty. Meant for -12 to 12.
    String keyName(int transpose) const;
    // Stores keyName(semitones) as the key.
    void transpose(int semitones);

    // Empties everything. Unlike a new SongInfo, a cleared one has no "key"
    // attribute (the key reads as empty, keyName(0) as "C").
    void clear();

    // The information element of a song file: "info" for mode 1, with the
    // index entries and categories; "attributes" for mode 3, without them;
    // an empty text for any other mode.
    String writeToText(int mode) const;

    friend bool operator==(const SongInfo&, const SongInfo&) = default;

private:
    std::vector<Attribute> m_attributes;
    StringArray m_indexes;
    StringArray m_categories;
    std::vector<SongReference> m_references;
};

}  // namespace melodex
