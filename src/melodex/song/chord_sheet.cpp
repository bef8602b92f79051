#include "melodex/song/chord_sheet.h"

#include <string>

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

String chordTextOf(const SongChord& chord, const ChordSheetOptions& options) {
    return options.chordText ? options.chordText(chord) : chord.toString(options.transpose, false);
}

void appendSection(String& out, const SongSection& section, const ChordSheetOptions& options) {
    if (!out.empty()) out += '\n';
    out += '[';
    out += section.id();
    out += "] ";
    out += sectionTypeToString(section.type());
    out += '\n';
    out += chordSheet(section, options);
}

}  // namespace

ChordSheetLine layOutLine(const SongLine& line, const ChordSheetOptions& options) {
    const String& text = line.text();
    ChordSheetLine out;
    std::size_t pos = 0;           // bytes of `text` already laid out
    std::size_t index = 0;         // code points of `text` already laid out
    std::size_t wordsColumn = 0;   // cells of out.words
    std::size_t chordsColumn = 0;  // cells of out.chords
    bool anyChord = false;

    const auto copyWordsUpTo = [&](std::size_t offset) {
        while (index < offset && pos < text.size()) {
            char32_t c = decodeUtf8(text, pos);
            ++index;
            // Where a tab stops depends on the terminal; a blank keeps the
            // columns that the chords were placed by.
            if (c == U'\t') c = U' ';
            appendUtf8(out.words, c);
            wordsColumn += std::size_t(displayWidth(c));
        }
    };

    for (int i = 0; i < line.getChordCount(); ++i) {
        const SongChord& chord = *line.getChord(i);
        const String symbol = chordTextOf(chord, options);
        if (symbol.empty()) continue;
        const std::size_t offset = chord.offset() < 0 ? 0 : std::size_t(chord.offset());
        copyWordsUpTo(offset);
        const bool pastTheEnd = pos >= text.size();
        std::size_t column = wordsColumn + (pastTheEnd && offset > index ? offset - index : 0);
        // One blank between two chords. Over a letter, the words make room;
        // past the end there are no words, so the chord moves.
        const std::size_t earliest = anyChord ? chordsColumn + 1 : 0;
        if (column < earliest) {
            if (!pastTheEnd) {
                out.words.append(earliest - column, ' ');
                wordsColumn += earliest - column;
            }
            column = earliest;
        }
        out.chords.append(column - chordsColumn, ' ');
        out.chords += symbol;
        chordsColumn = column + displayWidth(symbol);
        anyChord = true;
    }
    copyWordsUpTo(std::size_t(-1));
    // Blanks that held chords past the end of the words are not words.
    while (!out.words.empty() && out.words.back() == ' ')
        out.words.pop_back();
    return out;
}

String chordSheet(const SongSection& section, const ChordSheetOptions& options) {
    String out;
    for (int i = 0; i < section.getLineCount(); ++i) {
        const SongLine& line = *section.getLine(i);
        const ChordSheetLine laidOut = layOutLine(line, options);
        if (!laidOut.chords.empty()) {
            out += laidOut.chords;
            out += '\n';
            if (strip(line.text()).empty()) continue;
        }
        out += laidOut.words;
        out += '\n';
    }
    return out;
}

String chordSheet(const Song& song, const ChordSheetOptions& options) {
    const SongInfo& info = song.info();
    String out;
    appendField(out, "Title", info.title());
    appendField(out, "Author", info.author());
    if (!info.key().empty()) appendField(out, "Key", info.keyName(options.transpose));
    if (options.capo != 0) appendField(out, "Capo", std::to_string(options.capo));
    for (const SongInfo::Attribute& attribute : info.attributes()) {
        if (equalsIgnoreCase(attribute.name, "title") ||
            equalsIgnoreCase(attribute.name, "author") || equalsIgnoreCase(attribute.name, "key") ||
            (options.capo != 0 && equalsIgnoreCase(attribute.name, "capo"))) {
            continue;
        }
        appendField(out, displayName(attribute.name), attribute.value);
    }

    if (options.sequence.empty()) {
        for (int i = 0; i < song.getSectionCount(); ++i)
            appendSection(out, *song.getSection(i), options);
        return out;
    }
    for (const String& id : split(options.sequence, ", \t", EmptyPieces::Skip)) {
        const SongSection* found = nullptr;
        for (int i = 0; i < song.getSectionCount() && !found; ++i) {
            if (equalsIgnoreCase(song.getSection(i)->id(), id)) found = song.getSection(i);
        }
        if (found) {
            appendSection(out, *found, options);
        } else {
            if (!out.empty()) out += '\n';
            out += "[" + id + "] (not in the song)\n";
        }
    }
    return out;
}

String chordSheet(const Song& song, int transpose) {
    ChordSheetOptions options;
    options.transpose = transpose;
    return chordSheet(song, options);
}

}  // namespace melodex
