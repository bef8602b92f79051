#include "melodex/music/song_reference.h"

#include "melodex/foundation/xml.h"

namespace melodex {

String SongReference::getAttribute(std::string_view name) const {
    if (equalsIgnoreCase(name, "type")) return m_type;
    if (equalsIgnoreCase(name, "value")) return m_value;
    for (const auto& [key, text] : m_extra) {
        if (equalsIgnoreCase(key, name)) return text;
    }
    return {};
}

void SongReference::setAttribute(std::string_view name, std::string_view value) {
    if (equalsIgnoreCase(name, "type")) {
        m_type.assign(value);
    } else if (equalsIgnoreCase(name, "value")) {
        m_value.assign(value);
    } else {
        for (auto& [key, text] : m_extra) {
            if (equalsIgnoreCase(key, name)) {
                text.assign(value);
                return;
            }
        }
        m_extra.emplace_back(String(name), String(value));
    }
}

String SongReference::writeToText() const {
    // Attribute values are escaped like every other attribute of the song
    // file: a type or a further attribute holding a double quote, "<" or
    // "&" would otherwise end the value early or make the whole file
    // unreadable as XML. Ordinary values keep their bytes.
    String out = "\t<reference";
    out += XmlString::attribute("type", m_type);
    for (const auto& [key, text] : m_extra)
        out += XmlString::attribute(key, text);
    out += '>';
    out += XmlString::encode(m_value);
    out += "</reference>\n";
    return out;
}

}  // namespace melodex
