#include "melodex/foundation/xml.h"

#include <cerrno>
#include <cstring>
#include <new>

#include <pugixml.hpp>

#include "melodex/foundation/file_system.h"
#include "melodex/foundation/text_encoding.h"

namespace melodex {

namespace {

bool isBlankText(const char* text) {
    for (; *text; ++text) {
        if (*text != ' ' && *text != '\t' && *text != '\r' && *text != '\n') return false;
    }
    return true;
}

bool isTextNode(const pugi::xml_node& node) {
    return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
}

// Older Windows programs wrote UTF-16 without a byte-order mark. Every XML
// document starts with "<", so its first two bytes give the byte order away;
// a mark in front lets the common decoder take it from there.
String decodeXmlBytes(String bytes) {
    if (bytes.size() >= 2 && bytes[0] == '<' && bytes[1] == '\0') {
        return decodeText("\xFF\xFE" + bytes);
    }
    if (bytes.size() >= 2 && bytes[0] == '\0' && bytes[1] == '<') {
        return decodeText("\xFE\xFF" + bytes);
    }
    return decodeText(std::move(bytes));
}

// The attribute called `name`, ignoring case; a null attribute when there is
// none.
pugi::xml_attribute findAttribute(const pugi::xml_node& node, std::string_view name) {
    for (pugi::xml_attribute attr = node.first_attribute(); attr; attr = attr.next_attribute()) {
        if (equalsIgnoreCase(attr.name(), name)) return attr;
    }
    return {};
}

// Fragment mode keeps top-level text so that we can refuse it; declarations
// are kept as nodes so that one standing after the root is noticed. Text of
// blanks is kept too: in a song line the blanks between two chords are
// lyrics ("Oh <chord>G</chord> <chord>D</chord> Lord"). Character
// references are left to resolveReferences() (ParseOptionsOwnReferences):
// pugixml turns "&#x110000;" or "&#xD800;" into bytes that are not UTF-8 and
// ends the text at "&#0;". A document without any, the common case, has
// pugixml resolve its named entities while it parses, which costs nothing
// like a second walk over the tree.
constexpr unsigned ParseOptions =
    pugi::parse_default | pugi::parse_fragment | pugi::parse_declaration | pugi::parse_ws_pcdata;
constexpr unsigned ParseOptionsOwnReferences = ParseOptions & ~pugi::parse_escapes;

// The characters that XML 1.0 lets a document carry.
bool isXmlCharacter(char32_t c) {
    if (c < 0x20) return c == '\t' || c == '\n' || c == '\r';
    if (c >= 0xD800 && c <= 0xDFFF) return false;
    return c != 0xFFFE && c != 0xFFFF && c <= 0x10FFFF;
}

// The reference at `text` (at its "&": "&amp;", "&#233;", "&#xE9;") as the
// UTF-8 bytes of the character it names, put in `out` (at most four) with
// their count in `length`; the bytes the reference takes, or 0 when no
// well-formed reference starts there. A number that names no character XML
// can carry (0, a surrogate, U+FFFE, anything past U+10FFFF) reads as
// U+FFFD, so that what the reader hands out is always valid UTF-8 that a
// writer can write again. The scan stops at the first character that cannot
// continue a reference, so a text of many "&" costs its length only.
std::size_t readReference(const char* text, char* out, std::size_t& length) {
    constexpr std::pair<std::string_view, char> Named[] = {
        {"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&apos;", '\''}, {"&quot;", '"'}};
    if (text[1] != '#') {
        for (const auto& [entity, character] : Named) {
            // strncmp stops at the text's terminating NUL.
            if (std::strncmp(text, entity.data(), entity.size()) == 0) {
                out[0] = character;
                length = 1;
                return entity.size();
            }
        }
        return 0;
    }
    const bool hex = text[2] == 'x';
    const char* digit = text + (hex ? 3 : 2);
    const char* const first = digit;
    char32_t value = 0;
    for (;; ++digit) {
        int number;
        if (*digit >= '0' && *digit <= '9') {
            number = *digit - '0';
        } else if (hex && *digit >= 'a' && *digit <= 'f') {
            number = *digit - 'a' + 10;
        } else if (hex && *digit >= 'A' && *digit <= 'F') {
            number = *digit - 'A' + 10;
        } else {
            break;
        }
        // Past U+10FFFF the value only has to stay out of range.
        if (value <= 0x10FFFF) value = value * (hex ? 16 : 10) + char32_t(number);
    }
    if (digit == first || *digit != ';') return 0;
    String bytes;
    appendUtf8(bytes, isXmlCharacter(value) ? value : ReplacementCharacter);
    std::memcpy(out, bytes.data(), bytes.size());
    length = bytes.size();
    return std::size_t(digit + 1 - text);
}

// Resolves the references of a value of the tree where it lies. The tree
// was parsed in place, so its values are the document's own text, and what
// a reference names is never longer than the reference ("&#0;" is four
// bytes, U+FFFD three; "&#65536;" eight, its character four): the text only
// shrinks, and writing never overtakes reading.
void resolveInPlace(const char* value) {
    char* read = const_cast<char*>(std::strchr(value, '&'));
    if (read == nullptr) return;
    char* write = read;
    while (*read != '\0') {
        if (*read == '&') {
            char bytes[4];
            std::size_t length = 0;
            if (const std::size_t used = readReference(read, bytes, length)) {
                std::memcpy(write, bytes, length);
                write += length;
                read += used;
                continue;
            }
        }
        *write++ = *read++;
    }
    *write = '\0';
}

// Resolves the references in every text and attribute value of the tree;
// CDATA sections keep theirs, as XML says. A walk with explicit moves: the
// tree may be deeply nested.
void resolveReferences(pugi::xml_node root) {
    pugi::xml_node node = root.first_child();
    while (node) {
        if (node.type() == pugi::node_pcdata) {
            resolveInPlace(node.value());
        } else if (node.type() == pugi::node_element) {
            for (pugi::xml_attribute attr = node.first_attribute(); attr;
                 attr = attr.next_attribute()) {
                resolveInPlace(attr.value());
            }
        }
        if (pugi::xml_node child = node.first_child()) {
            node = child;
            continue;
        }
        while (node && !node.next_sibling()) {
            node = node.parent();
            if (node == root) return;
        }
        if (node) node = node.next_sibling();
    }
}

// Checks what the parser accepted in fragment mode: exactly one element at
// the top, with nothing beside it but blanks and a leading declaration.
Status checkSingleDocument(const pugi::xml_document& document) {
    int elements = 0;
    bool first = true;
    for (pugi::xml_node node = document.first_child(); node; node = node.next_sibling()) {
        switch (node.type()) {
            case pugi::node_element:
                ++elements;
                break;
            case pugi::node_pcdata:
                if (!isBlankText(node.value())) return StatusXmlMalformed;
                continue;  // blanks around the root are not content
            case pugi::node_cdata:
                return StatusXmlMalformed;
            case pugi::node_declaration:
                if (!first) return StatusXmlMalformed;
                break;
            default:
                break;
        }
        first = false;
    }
    if (elements == 0) return StatusXmlBase + pugi::status_no_document_element;
    if (elements > 1) return StatusXmlMalformed;
    return StatusSuccess;
}

}  // namespace

// --- XmlNode -----------------------------------------------------------------

XmlNode::Kind XmlNode::kind() const {
    if (!m_node) return Kind::Null;
    switch (pugi::xml_node(m_node).type()) {
        case pugi::node_element:
            return Kind::Element;
        case pugi::node_pcdata:
        case pugi::node_cdata:
            return Kind::Text;
        default:
            return Kind::Other;
    }
}

String XmlNode::name() const {
    const pugi::xml_node node(m_node);
    return node.type() == pugi::node_element ? String(node.name()) : String();
}

XmlNode XmlNode::findChild(std::string_view name) const {
    for (pugi::xml_node child = pugi::xml_node(m_node).first_child(); child;
         child = child.next_sibling()) {
        if (child.type() == pugi::node_element && equalsIgnoreCase(child.name(), name)) {
            return XmlNode(child.internal_object());
        }
    }
    return {};
}

std::vector<XmlNode> XmlNode::childElements() const {
    std::vector<XmlNode> children;
    for (pugi::xml_node child = pugi::xml_node(m_node).first_child(); child;
         child = child.next_sibling()) {
        if (child.type() == pugi::node_element)
            children.push_back(XmlNode(child.internal_object()));
    }
    return children;
}

XmlNode XmlNode::firstChild() const {
    return XmlNode(pugi::xml_node(m_node).first_child().internal_object());
}

XmlNode XmlNode::nextSibling() const {
    return XmlNode(pugi::xml_node(m_node).next_sibling().internal_object());
}

String XmlNode::attribute(std::string_view name, std::string_view defaultValue) const {
    const pugi::xml_attribute attr = findAttribute(pugi::xml_node(m_node), name);
    return attr ? String(attr.value()) : String(defaultValue);
}

bool XmlNode::hasAttribute(std::string_view name) const {
    return bool(findAttribute(pugi::xml_node(m_node), name));
}

std::vector<std::pair<String, String>> XmlNode::attributes() const {
    std::vector<std::pair<String, String>> result;
    for (pugi::xml_attribute attr = pugi::xml_node(m_node).first_attribute(); attr;
         attr = attr.next_attribute()) {
        result.emplace_back(attr.name(), attr.value());
    }
    return result;
}

String XmlNode::text() const {
    const pugi::xml_node start(m_node);
    if (isTextNode(start)) return start.value();
    if (start.type() != pugi::node_element) return {};

    // A walk with explicit moves instead of recursion: a hostile file nested
    // a hundred thousand levels deep must not exhaust the stack.
    String out;
    pugi::xml_node node = start.first_child();
    while (node) {
        if (isTextNode(node)) out += node.value();
        if (pugi::xml_node child = node.first_child()) {
            node = child;
            continue;
        }
        while (!node.next_sibling()) {
            node = node.parent();
            if (node == start) return out;
        }
        node = node.next_sibling();
    }
    return out;
}

String XmlNode::directText() const {
    String out;
    for (pugi::xml_node child = pugi::xml_node(m_node).first_child(); child;
         child = child.next_sibling()) {
        if (isTextNode(child)) out += child.value();
    }
    return out;
}

// --- XmlFile -----------------------------------------------------------------

struct XmlFile::Document {
    pugi::xml_document tree;
    String text;

    void clear() {
        tree.reset();  // first: the old tree points into the old text
        text = String();
    }
};

XmlFile::XmlFile() : m_document(std::make_unique<Document>()) {}
XmlFile::XmlFile(XmlFile&&) noexcept = default;
XmlFile& XmlFile::operator=(XmlFile&&) noexcept = default;
XmlFile::~XmlFile() = default;

Status XmlFile::load(std::string_view path) {
    try {
        std::string bytes;
        if (const Status status = readFileBytes(path, bytes); status != StatusSuccess) {
            if (m_document) m_document->clear();
            return status;
        }
        return parse(std::move(bytes));
    } catch (const std::bad_alloc&) {
        if (m_document) m_document->clear();
        return Status(ENOMEM);
    }
}

Status XmlFile::loadFromString(std::string_view text) {
    try {
        return parse(String(text));
    } catch (const std::bad_alloc&) {
        if (m_document) m_document->clear();
        return Status(ENOMEM);
    }
}

Status XmlFile::parse(String bytes) {
    if (!m_document) m_document = std::make_unique<Document>();
    m_document->clear();
    String& text = m_document->text;
    text = decodeXmlBytes(std::move(bytes));

    Status status = StatusSuccess;
    // The parser stops quietly at a NUL character, which would let a valid
    // document hide arbitrary bytes after it; XML allows no NUL anywhere.
    if (std::memchr(text.data(), 0, text.size()) != nullptr) {
        status = StatusXmlMalformed;
    } else {
        // In place: the tree points into the text instead of a copy of it.
        const bool characterReferences = text.find("&#") != String::npos;
        const pugi::xml_parse_result result = m_document->tree.load_buffer_inplace(
            text.data(), text.size(),
            characterReferences ? ParseOptionsOwnReferences : ParseOptions, pugi::encoding_utf8);
        status = result.status == pugi::status_ok ? checkSingleDocument(m_document->tree)
                                                  : StatusXmlBase + Status(result.status);
        if (status == StatusSuccess && characterReferences) resolveReferences(m_document->tree);
    }
    if (status != StatusSuccess) m_document->clear();
    return status;
}

XmlNode XmlFile::root() const {
    if (!m_document) return {};
    return XmlNode(m_document->tree.document_element().internal_object());
}

// --- XmlString ---------------------------------------------------------------

namespace {

enum class Context {
    Text,       // element text with its quotes as they are
    Quoted,     // element text with quotes as entities
    Attribute,  // an attribute value: quotes, tabs and line breaks as references
};

// The one escaping step of every writer. Besides the markup characters it
// writes as references what an XML reader would otherwise change: a CR
// (readers turn line ends into LF) and, in attribute values, tab and LF
// (readers turn them into blanks). A character that XML 1.0 cannot carry at
// all, and every byte that does not start well-formed UTF-8, becomes U+FFFD:
// one written would make the whole file unreadable as XML. One for one, so
// that chord offsets, which count characters, still point at their letters.
String escape(std::string_view text, Context context) {
    String out;
    out.reserve(text.size() + text.size() / 8);
    for (std::size_t pos = 0; pos < text.size();) {
        const auto byte = static_cast<unsigned char>(text[pos]);
        if (byte >= 0x80) {
            const char32_t c = decodeUtf8(text, pos);
            appendUtf8(out, isXmlCharacter(c) ? c : ReplacementCharacter);
            continue;
        }
        ++pos;
        switch (byte) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += context == Context::Text ? "\"" : "&quot;";
                break;
            case '\r':
                out += "&#13;";
                break;
            case '\n':
                out += context == Context::Attribute ? "&#10;" : "\n";
                break;
            case '\t':
                out += context == Context::Attribute ? "&#9;" : "\t";
                break;
            default:
                if (byte < 0x20) {
                    appendUtf8(out, ReplacementCharacter);
                } else {
                    out += char(byte);
                }
                break;
        }
    }
    return out;
}

}  // namespace

String XmlString::encode(std::string_view text) {
    return escape(text, Context::Quoted);
}

String XmlString::encodeText(std::string_view text) {
    return escape(text, Context::Text);
}

String XmlString::attribute(std::string_view name, std::string_view value) {
    String out;
    out.reserve(name.size() + value.size() + 4);
    out += ' ';
    out += name;
    out += "=\"";
    out += escape(value, Context::Attribute);
    out += '"';
    return out;
}

void XmlString::appendElement(String& out, int depth, std::string_view name,
                              std::string_view value) {
    out.append(std::size_t(depth), '\t');
    out += '<';
    out += name;
    out += '>';
    out += value;
    out += "</";
    out += name;
    out += ">\n";
}

}  // namespace melodex
