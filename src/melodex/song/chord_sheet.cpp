#include "melodex/song/chord_sheet.h"

#include "melodex/song/vocabulary.h"

namespace melodex {

namespace {

// "copyright" becomes "Copyright"; names are file vocabulary, so ASCII.
String displayName(std::string_view name) {
    String out(name);
    if (!out.empty() && out[0] >= 'a' && out[0] <= 'z') out[0] = char(out[0] - 'a' + 'A');
    return out;
}

void appendField(String& out, std::string_view name, std::string_view value) {
    if (value.empty()) return;
    out += name;
    out += ": ";
    out += value;
    out += '\n';
}

}  // namespace

String chordLine(const SongLine& line, int transpose) {
    String out;
    std::size_t column = 0;  // code points in `out`
    for (int i = 0; i < line.getChordCount(); ++i) {
        const SongChord& chord = *line.getChord(i);
        const String symbol = chord.toString(transpose, false);
        if (symbol.empty()) continue;
        std::size_t wanted = chord.offset() < 0 ? 0 : std::size_t(chord.offset());
        if (column > 0 && wanted < column + 1) wanted = column + 1;
        out.append(wanted - column, ' ');
        out += symbol;
        column = wanted + codePointLength(symbol);
    }
    return out;
}

String chordSheet(const SongSection& section, int transpose) {
    String out;
    for (int i = 0; i < section.getLineCount(); ++i) {
        const SongLine& line = *section.getLine(i);
        const String chords = chordLine(line, transpose);
        if (!chords.empty()) {
            out += chords;
            out += '\n';
            if (strip(line.text()).empty()) continue;
        }
        out += line.text();
        out += '\n';
    }
    return out;
}

String chordSheet(const Song& song, int transpose) {
    const SongInfo& info = song.info();
    String out;
    appendField(out, "Title", info.title());
    appendField(out, "Author", info.author());
    if (!info.key().empty()) appendField(out, "Key", info.keyName(transpose));
    for (const SongInfo::Attribute& attribute : info.attributes()) {
        if (equalsIgnoreCase(attribute.name, "title") ||
            equalsIgnoreCase(attribute.name, "author") || equalsIgnoreCase(attribute.name, "key")) {
            continue;
        }
        appendField(out, displayName(attribute.name), attribute.value);
    }
    for (int i = 0; i < song.getSectionCount(); ++i) {
        const SongSection& section = *song.getSection(i);
        if (!out.empty()) out += '\n';
        out += '[';
        out += section.id();
        out += "] ";
        out += sectionTypeToString(section.type());
        out += '\n';
        out += chordSheet(section, transpose);
    }
    return out;
}

}  // namespace melodex
