#pragma once

// Small builders and text views for the song tests, so that an expectation
// reads the way a musician sees the song:
//
//     section->addLine(lineOf("Amazing grace", {{"G", 0}, {"C", 8}}));
//     inlined(*line);    // "[G]Amazing [C]grace"
//     outline(song);     // "V1: [G]Amazing [C]grace/how sweet | C1: Alleluia"
//     describe(song);    // everything a song file gave, as the golden files spell it

#include <fstream>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "melodex/song/song.h"
#include "support/temp_folder.h"

namespace melodex::test {

// A new line with chords at code-point offsets; the caller owns it until it
// is added to a section.
inline SongLine* lineOf(std::string_view text,
                        std::initializer_list<std::pair<const char*, int>> chords = {}) {
    auto* line = new SongLine;
    line->setText(text);
    for (const auto& [symbol, offset] : chords)
        line->addChord(SongChord(symbol, offset));
    return line;
}

// The line's text with each chord in brackets before the character it
// stands over.
inline String inlined(const SongLine& line) {
    String text = line.text();
    for (int i = line.getChordCount() - 1; i >= 0; --i) {
        const SongChord& chord = *line.getChord(i);
        insertAtCodePoint(text, std::size_t(chord.offset()), "[" + chord.toString() + "]");
    }
    return text;
}

// The lines of a section inlined and joined by "/".
inline String outline(const SongSection& section) {
    String out;
    for (int i = 0; i < section.getLineCount(); ++i)
        out += (i == 0 ? "" : "/") + inlined(*section.getLine(i));
    return out;
}

// Every section as "id: its outline", joined by " | ".
inline String outline(const Song& song) {
    String out;
    for (int i = 0; i < song.getSectionCount(); ++i) {
        const SongSection& section = *song.getSection(i);
        out += (i == 0 ? "" : " | ") + section.id() + ": " + outline(section);
    }
    return out;
}

// " name=value", or nothing for 0 (a default).
inline String setting(std::string_view name, int value, std::string_view word = {}) {
    if (value == 0) return {};
    return " " + String(name) + "=" + (word.empty() ? std::to_string(value) : String(word));
}

// A section as the golden files spell it: its id and type word with the
// settings that differ from a new section's, then its lines indented, chords
// inlined, each with its own settings in braces.
inline String describe(const SongSection& section) {
    String out = section.id() + " " + sectionTypeToString(section.type()) +
                 (section.hasChords() ? "" : " (no chords)") +
                 setting("singers", section.singers(), singerTypeToString(section.singers())) +
                 setting("repeat", section.repeat() == 1 ? 0 : section.repeat()) +
                 setting("indent", section.indent()) + setting("target", section.target()) +
                 setting("spacebefore", section.spaceBefore()) +
                 setting("keepwithprevious", section.keepWithPrevious()) +
                 setting("firstonpage", section.firstOnPage()) + "\n";
    for (int i = 0; i < section.getLineCount(); ++i) {
        const SongLine& line = *section.getLine(i);
        String settings = setting("singers", line.singers(), line.singersText()) +
                          setting("indent", line.indent()) + setting("repeat", line.repeat());
        for (const LineAttribute& attribute : line.attributes())
            settings += " " + attribute.name + "=" + attribute.value.toString();
        out += "  " + (line.text().empty() && !line.hasChords() ? "(empty line)" : inlined(line));
        out += (settings.empty() ? "" : "  {" + settings.substr(1) + "}") + "\n";
    }
    return out;
}

// Everything a song holds, as the golden ".expected" files under tests/data
// spell it: the file type and id, the information, the running order, then
// each section after a blank line.
inline String describe(const Song& song) {
    const SongInfo& info = song.info();
    String out = "type: " + std::to_string(song.loadedFileType()) + "\n";
    if (song.hasUUID()) out += "uuid: " + song.uuid() + "\n";
    for (const SongInfo::Attribute& attribute : info.attributes())
        out += attribute.name + ":" + (attribute.value.empty() ? "" : " ") + attribute.value + "\n";
    for (int i = 0; i < info.getIndexCount(); ++i)
        out += "index: " + info.getIndex(i) + "\n";
    for (int i = 0; i < info.getCategoryCount(); ++i)
        out += "category: " + info.getCategory(i) + "\n";
    for (int i = 0; i < info.getReferenceCount(); ++i) {
        const SongReference& reference = info.getReference(i);
        out += "reference: " + reference.type() + " " + reference.value();
        for (const auto& [name, value] : reference.extraAttributes())
            out += " " + name + "=" + value;
        out += "\n";
    }
    out += "sequence:" + (song.getSequence().empty() ? "" : " " + song.getSequence()) + "\n";
    for (int i = 0; i < song.getSectionCount(); ++i)
        out += "\n" + describe(*song.getSection(i));
    return out;
}

// A file of tests/data without its comment lines (those starting "# ").
inline String goldenText(std::string_view name) {
    std::ifstream file(testDataPath(name), std::ios::binary);
    String out;
    for (String line; std::getline(file, line);) {
        if (line.rfind("# ", 0) != 0) out += line + "\n";
    }
    return out;
}

}  // namespace melodex::test
