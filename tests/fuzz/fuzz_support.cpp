#include "fuzz_support.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "melodex/foundation/status.h"
#include "melodex/song/song.h"
#include "melodex/song/vocabulary.h"

namespace melodex::fuzz {

void fail(const char* file, int line, std::string_view what, std::string_view detail) {
    std::fprintf(stderr, "\n*** fuzz check failed at %s:%d: %.*s\n%.*s\n", file, line,
                 int(what.size()), what.data(), int(detail.size()), detail.data());
    std::abort();
}

namespace {

// The length of the well-formed UTF-8 sequence at `pos` and its code point;
// 0 when the bytes there are not one.
std::size_t sequenceAt(std::string_view text, std::size_t pos, char32_t& codePoint) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(pos);
    std::size_t length = 0;
    char32_t value = 0;
    char32_t minimum = 0;
    if (first < 0x80) {
        codePoint = first;
        return 1;
    } else if (first >= 0xC2 && first <= 0xDF) {
        length = 2, value = first & 0x1F, minimum = 0x80;
    } else if (first >= 0xE0 && first <= 0xEF) {
        length = 3, value = first & 0x0F, minimum = 0x800;
    } else if (first >= 0xF0 && first <= 0xF4) {
        length = 4, value = first & 0x07, minimum = 0x10000;
    } else {
        return 0;
    }
    if (pos + length > text.size()) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(pos + i) & 0xC0) != 0x80) return 0;
        value = (value << 6) | (byte(pos + i) & 0x3F);
    }
    if (value < minimum || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) return 0;
    codePoint = value;
    return length;
}

bool xmlCanCarry(char32_t c) {
    if (c < 0x20) return c == '\t' || c == '\n' || c == '\r';
    return c != 0xFFFE && c != 0xFFFF;
}

std::size_t carriedLength(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t pos = 0; pos < text.size(); ++count) {
        char32_t c = 0;
        const std::size_t length = sequenceAt(text, pos, c);
        pos += length == 0 ? 1 : length;
    }
    return count;
}

String stripBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return {};
    const std::size_t last = text.find_last_not_of(" \t\r\n");
    return String(text.substr(first, last - first + 1));
}

// What of a song the ".song" format keeps, one item a line. With `expected`
// the texts are given as they must read back (xmlCarried) and the values the
// format cannot hold are brought to what it writes: a section's singers and
// indent are not kept, space before is 0, 1 or 2, a chord past the end of
// its line stands after the last character.
String describe(const Song& song, bool expected) {
    const auto text = [expected](std::string_view value) {
        return printable(expected ? xmlCarried(value) : String(value));
    };
    String out;
    const auto add = [&out](std::string_view label, std::string_view value) {
        out += label;
        out += ' ';
        out += value;
        out += '\n';
    };
    add("uuid", text(expected ? stripBlanks(xmlCarried(song.uuid())) : song.uuid()));
    add("updated", song.updated().format("%Y%m%d%H%M%S"));
    const SongInfo& info = song.info();
    for (const SongInfo::Attribute& attribute : info.attributes())
        add("info " + printable(attribute.name), text(attribute.value));
    for (int i = 0; i < info.getIndexCount(); ++i) {
        if (!info.getIndex(i).empty()) add("index", text(info.getIndex(i)));
    }
    for (int i = 0; i < info.getCategoryCount(); ++i) {
        if (!info.getCategory(i).empty()) add("category", text(info.getCategory(i)));
    }
    for (int i = 0; i < info.getReferenceCount(); ++i) {
        const SongReference reference = info.getReference(i);
        String line = text(reference.type()) + " = " + text(reference.value());
        for (const auto& [name, value] : reference.extraAttributes())
            line += " " + printable(name) + "=" + text(value);
        add("reference", line);
    }
    for (int s = 0; s < song.getSectionCount(); ++s) {
        const SongSection& section = *song.getSection(s);
        int spaceBefore = section.spaceBefore();
        if (expected && spaceBefore > 1) spaceBefore = 2;
        add("section", std::to_string(section.type()) + " repeat " +
                           std::to_string(section.repeat()) + " target " +
                           std::to_string(section.target()) + " space " +
                           std::to_string(spaceBefore) + " keep " +
                           std::to_string(int(section.keepWithPrevious())));
        for (int l = 0; l < section.getLineCount(); ++l) {
            const SongLine& line = *section.getLine(l);
            String head = "singers " + std::to_string(line.singers()) + " indent " +
                          std::to_string(line.indent()) + " repeat " +
                          std::to_string(line.repeat());
            for (const LineAttribute& attribute : line.attributes()) {
                const String name = toLowerAscii(attribute.name);
                if (name == "singers" || name == "indent" || name == "repeat") continue;
                head += " " + printable(attribute.name) + "=" + text(attribute.value.toString());
            }
            add(" line", head);
            add("  text", text(line.text()));
            const std::size_t length = expected ? carriedLength(line.text()) : 0;
            for (int c = 0; c < line.getChordCount(); ++c) {
                const SongChord& chord = *line.getChord(c);
                long long offset = chord.offset();
                if (expected) offset = std::clamp<long long>(offset, 0, (long long)length);
                add("  chord", std::to_string(offset) + " " + std::to_string(chord.chord()) + " " +
                                   text(chord.postfix()) + " /" + std::to_string(chord.bass()));
            }
        }
    }
    return out;
}

// The first line where two descriptions differ, with the line before it.
String difference(const String& want, const String& got) {
    const StringArray a = split(want, "\n");
    const StringArray b = split(got, "\n");
    std::size_t i = 0;
    while (i < a.size() && i < b.size() && a[i] == b[i])
        ++i;
    String out = "at line " + std::to_string(i + 1) + "\n";
    if (i > 0) out += "  both: " + a[i - 1] + "\n";
    out += "  want: " + (i < a.size() ? a[i] : String("(nothing)")) + "\n";
    out += "  got:  " + (i < b.size() ? b[i] : String("(nothing)")) + "\n";
    return out;
}

}  // namespace

String xmlCarried(std::string_view text) {
    String out;
    out.reserve(text.size());
    for (std::size_t pos = 0; pos < text.size();) {
        char32_t c = 0;
        const std::size_t length = sequenceAt(text, pos, c);
        if (length == 0 || !xmlCanCarry(c)) {
            out += "\xEF\xBF\xBD";
            pos += length == 0 ? 1 : length;
        } else {
            out.append(text.substr(pos, length));
            pos += length;
        }
    }
    return out;
}

String printable(std::string_view bytes) {
    String out = "\"";
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (byte >= 0x20 && byte < 0x7F) {
            out += c;
        } else {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\x%02X", unsigned(byte));
            out += escaped;
        }
    }
    return out + "\"";
}

void checkSongRoundTrip(const Song& original) {
    Song song;
    song = original;  // saving gives a song without one a uuid
    // What the format does not keep, given up before writing, so that the
    // second file must be the first byte for byte.
    for (int s = 0; s < song.getSectionCount(); ++s) {
        SongSection& section = *song.getSection(s);
        section.setSingers(0);
        section.indent(0);
        if (section.spaceBefore() > 1) section.spaceBefore(2);
    }
    const String written = song.saveToText(SongFileType::Song, true);
    FUZZ_CHECK(isValidUtf8(written), printable(written));

    Song copy;
    copy.clear();  // a new song holds a default key; a read one only its file's
    FUZZ_CHECK(copy.loadFromXmlString(written) == StatusSuccess, printable(written));
    const String want = describe(song, true);
    const String got = describe(copy, false);
    FUZZ_CHECK(want == got, "written:\n" + written + "\n" + difference(want, got));

    const String again = copy.saveToText(SongFileType::Song, true);
    FUZZ_CHECK(again == written,
               "first:\n" + printable(written) + "\nsecond:\n" + printable(again));
}

}  // namespace melodex::fuzz
