#pragma once

// A reference attached to a song's information: a type (such as "bible" or
// "other"), a value (the text of the reference) and any further named
// attributes a song file gave it.
//
//     SongReference ref("bible", "Psalm 23");
//     ref.setAttribute("version", "KJV");
//     ref.writeToText();  // "\t<reference type=\"bible\" version=\"KJV\">Psalm 23</reference>\n"

#include <string_view>
#include <utility>
#include <vector>

#include "melodex/foundation/text.h"

namespace melodex {

class SongReference {
public:
    SongReference() = default;
    SongReference(std::string_view type, std::string_view value) : m_type(type), m_value(value) {}

    const String& type() const { return m_type; }
    void type(std::string_view type) { m_type.assign(type); }
    const String& value() const { return m_value; }
    void value(std::string_view value) { m_value.assign(value); }

    // "type" and "value" (any case) name the two fields; any other name a
    // further attribute. Empty when the name is not defined.
    String getAttribute(std::string_view name) const;
    // Sets a field or a further attribute (replacing one of the same name in
    // its place, or appending).
    void setAttribute(std::string_view name, std::string_view value);

    // The further attributes, in the order they were set.
    const std::vector<std::pair<String, String>>& extraAttributes() const { return m_extra; }

    // The reference element of a song file: "\t<reference", every attribute
    // (type first, then the further ones) as ` name="value"` with the value
    // escaped as XmlString::attribute does, then ">", the XML-escaped value
    // and "</reference>\n".
    String writeToText() const;

    friend bool operator==(const SongReference&, const SongReference&) = default;

private:
    String m_type;
    String m_value;
    std::vector<std::pair<String, String>> m_extra;
};

}  // namespace melodex
