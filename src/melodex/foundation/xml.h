#pragma once

// XML documents for the readers, and escaping for the writers.
//
// Writers build XML text by hand (the song formats fix every byte); readers
// load an XmlFile and walk XmlNode handles. A lookup that finds nothing
// returns a null XmlNode, on which every call is safe and gives an empty
// result, so chained reads stay short:
//
//     XmlFile file;
//     if (file.load(path) != StatusSuccess) return;
//     String title = file.root().findChild("info").findChild("title").text();
//
// Names of elements and attributes are matched ignoring case, because the
// files were written by many programs. load() and loadFromString() accept
// exactly one well-formed document: text or a second element beside the root
// element makes them fail with StatusXmlMalformed, so that plain text that
// merely begins with an element is not taken for XML. Comments, processing
// instructions and the document type declaration are not kept; text nodes
// that hold only blanks are (in a song line they are lyrics).
//
// Everything a reader hands out is valid UTF-8: the five named entities and
// character references are resolved, and a reference to a character that
// XML cannot carry ("&#0;", "&#xD800;", "&#x110000;") reads as U+FFFD.
// Other entities ("&nbsp;") are kept as written.
//
// An XmlNode points into its XmlFile: it stays valid while that file lives
// and is not loaded again.

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"

namespace pugi {
struct xml_node_struct;
}  // namespace pugi

namespace melodex {

class XmlNode {
public:
    enum class Kind { Null, Element, Text, Other };

    XmlNode() = default;

    bool isNull() const { return m_node == nullptr; }
    explicit operator bool() const { return m_node != nullptr; }
    Kind kind() const;
    bool isElement() const { return kind() == Kind::Element; }
    bool isText() const { return kind() == Kind::Text; }  // text or CDATA

    // The element's name as written; empty for other nodes.
    String name() const;

    // The first child element of that name (ignoring case), or null.
    XmlNode findChild(std::string_view name) const;

    // Child elements in document order.
    std::vector<XmlNode> childElements() const;

    // All child nodes (elements, text, others) in document order.
    XmlNode firstChild() const;
    XmlNode nextSibling() const;

    // The attribute's value (name ignoring case), or `defaultValue`.
    String attribute(std::string_view name, std::string_view defaultValue = {}) const;
    bool hasAttribute(std::string_view name) const;
    // Every attribute as (name, value), in document order.
    std::vector<std::pair<String, String>> attributes() const;

    // The text of the whole subtree concatenated, for an element; the node's
    // own text for a text node.
    String text() const;

    // The text nodes directly inside the element, concatenated.
    String directText() const;

    friend bool operator==(const XmlNode&, const XmlNode&) = default;

private:
    friend class XmlFile;
    explicit XmlNode(pugi::xml_node_struct* node) : m_node(node) {}

    pugi::xml_node_struct* m_node = nullptr;
};

class XmlFile {
public:
    XmlFile();
    XmlFile(XmlFile&&) noexcept;
    XmlFile& operator=(XmlFile&&) noexcept;
    ~XmlFile();

    // Reads and parses a file, detecting its encoding (UTF-8 with or without
    // BOM, UTF-16 with BOM or in its "<\0" form, Windows-1252 when the bytes
    // are not UTF-8). 0; the errno value when it cannot be read;
    // StatusXmlBase + the parser's code when it does not parse;
    // StatusXmlMalformed when it is not a single document. A failed load
    // leaves the document empty.
    [[nodiscard]] Status load(std::string_view path);

    // The same for text already in memory: UTF-8, or any of the encodings
    // that load() detects, decoded the same way.
    [[nodiscard]] Status loadFromString(std::string_view text);

    // The root element, or null when nothing is loaded.
    XmlNode root() const;

private:
    // The tree and the decoded text that it points into, kept together on
    // the heap so that moving an XmlFile leaves its nodes valid.
    struct Document;

    // Decodes `bytes` and parses the text in place.
    [[nodiscard]] Status parse(String bytes);

    std::unique_ptr<Document> m_document;
};

// Escaping for the writers: every XML file the library writes escapes its
// text through these, so that what is written reads back as it was. Besides
// "&", "<" and ">", they write as character references what an XML reader
// would otherwise change: a CR everywhere (readers turn line ends into LF)
// and, in attribute values, tab and LF too (readers turn those into blanks).
// A character that XML 1.0 cannot carry (a C0 control other than tab, LF and
// CR; U+FFFE, U+FFFF) and every byte that does not start well-formed UTF-8
// is written as U+FFFD, one for one, so that a file never becomes unreadable
// and chord offsets, which count characters, keep pointing at their letters.
struct XmlString {
    // Element text with the double quote as "&quot;" too.
    static String encode(std::string_view text);

    // Element text with quotes as they are, so that lyrics with quotation
    // marks keep their bytes.
    static String encodeText(std::string_view text);

    // An attribute as the writers put it after an element's name: a blank,
    // the name, "=" and the escaped value in double quotes. Entities, not
    // backslashes: an XML reader undoes only those.
    static String attribute(std::string_view name, std::string_view value);

    // A line of an indented document: `depth` tabs, "<name>value</name>" and
    // a line feed. The value goes in as given: text through encode or
    // encodeText first.
    static void appendElement(String& out, int depth, std::string_view name,
                              std::string_view value);
};

}  // namespace melodex
