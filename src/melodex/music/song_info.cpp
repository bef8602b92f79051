#include "melodex/music/song_info.h"

#include "melodex/foundation/xml.h"
#include "melodex/music/notes.h"

namespace melodex {

SongInfo::SongInfo() {
    m_attributes.push_back({"key", "C"});
}

String SongInfo::getAttribute(std::string_view name) const {
    for (const Attribute& attribute : m_attributes) {
        if (equalsIgnoreCase(attribute.name, name)) return attribute.value;
    }
    return {};
}

void SongInfo::setAttribute(std::string_view name, const Value& value) {
    for (Attribute& attribute : m_attributes) {
        if (equalsIgnoreCase(attribute.name, name)) {
            attribute.value = value.toString();
            return;
        }
    }
    m_attributes.push_back({String(name), value.toString()});
}

void SongInfo::keyInfo(int transpose, int& keyNumber, String& suffix, bool relativeMajor) const {
    long long number = (long long)noteNumber(getAttribute("key"), suffix) + transpose;
    if (number < 0) number = wrapNote(number);
    if (relativeMajor && equalsIgnoreCase(suffix, "m")) number += 3;
    keyNumber = wrapNote(number);
}

int SongInfo::keyNumber(int transpose, bool relativeMajor) const {
    int number = 0;
    String suffix;
    keyInfo(transpose, number, suffix, relativeMajor);
    return number;
}

String SongInfo::keySuffix() const {
    int number = 0;
    String suffix;
    keyInfo(0, number, suffix, false);
    return suffix;
}

String SongInfo::keyName(int transpose) const {
    const String keys = getAttribute("key");
    std::string_view remaining = keys;
    String out;
    String rest;
    while (!remaining.empty()) {
        std::size_t length = remaining.find_first_of("/-,;.");
        if (length == std::string_view::npos) {
            length = remaining.size();
        } else if (length == 0) {
            length = 1;
        }
        const std::string_view piece = remaining.substr(0, length);
        remaining.remove_prefix(length);

        const int note = noteNumber(piece, rest);
        if (note >= 0) {
            // One correction only, as the key has always been moved; outside
            // -12 to 12 the name still comes from the note modulo 12. Wide
            // enough for any transposition, up to the largest int.
            long long key = (long long)note + transpose;
            if (key < 0) {
                key += 12;
            } else if (key > 12) {
                key -= 12;
            }
            out += keyNoteName(wrapNote(key));
        } else {
            // Without a note the rest is the piece itself, so the piece comes
            // out twice ("/" becomes "//"). Saved keys and printed sheets show
            // this doubling; it is kept on purpose.
            out += piece;
        }
        out += rest;
    }
    if (out.empty()) out = "C";
    return out;
}

void SongInfo::transpose(int semitones) {
    setKey(keyName(semitones));
}

void SongInfo::clear() {
    // The key is set first and then erased with the other attributes, so a
    // cleared information has no key at all. That is what the programs have
    // always seen after a clear; keep the order.
    setKey("C");
    m_indexes.clear();
    m_attributes.clear();
    m_references.clear();
    m_categories.clear();
}

String SongInfo::writeToText(int mode) const {
    if (mode != 1 && mode != 3) return {};
    const std::string_view element = mode == 1 ? "info" : "attributes";
    String out = "\n<";
    out += element;
    out += ">\n";
    auto writeElement = [&out](std::string_view name, std::string_view value) {
        out += "\t<";
        out += name;
        out += '>';
        out += XmlString::encode(value);
        out += "</";
        out += name;
        out += ">\n";
    };
    for (const Attribute& attribute : m_attributes)
        writeElement(attribute.name, attribute.value);
    if (mode == 1) {
        for (const String& index : m_indexes)
            writeElement("index", index);
        for (const String& category : m_categories)
            writeElement("category", category);
    }
    for (const SongReference& reference : m_references)
        out += reference.writeToText();
    out += "</";
    out += element;
    out += ">\n";
    return out;
}

}  // namespace melodex
