// The XML reader and the song XML layouts. Checks that:
// - every name, attribute and text that XmlFile hands out is valid UTF-8
//   without NUL, whatever the bytes and character references say;
// - a song read from XML survives being saved as a ".song" file and read
//   again;
// - any text written with XmlString as element text and as an attribute
//   value reads back as xmlCarried() says.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "fuzz_support.h"
#include "melodex/foundation/status.h"
#include "melodex/foundation/xml.h"
#include "melodex/song/song.h"

using namespace melodex;

namespace {

void checkText(std::string_view text, std::string_view input) {
    FUZZ_CHECK(isValidUtf8(text) && text.find('\0') == std::string_view::npos,
               fuzz::printable(text) + " from " + fuzz::printable(input));
}

// Every node of the document, without recursion (the input may nest deeply).
void checkDocument(const XmlFile& file, std::string_view input) {
    std::vector<XmlNode> pending{file.root()};
    while (!pending.empty()) {
        const XmlNode node = pending.back();
        pending.pop_back();
        checkText(node.name(), input);
        if (node.isText()) checkText(node.text(), input);
        for (const auto& [name, value] : node.attributes()) {
            checkText(name, input);
            checkText(value, input);
        }
        for (XmlNode child = node.firstChild(); child; child = child.nextSibling())
            pending.push_back(child);
    }
}

void checkEscaping(std::string_view text) {
    const String document = "<a" + XmlString::attribute("v", text) + ">" +
                            XmlString::encodeText(text) + "<b>" + XmlString::encode(text) +
                            "</b></a>";
    XmlFile file;
    FUZZ_CHECK(file.loadFromString(document) == StatusSuccess, fuzz::printable(document));
    const String want = fuzz::xmlCarried(text);
    const XmlNode root = file.root();
    FUZZ_CHECK(root.attribute("v") == want, fuzz::printable(document));
    FUZZ_CHECK(root.directText() == want, fuzz::printable(document));
    FUZZ_CHECK(root.findChild("b").text() == want, fuzz::printable(document));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);

    XmlFile file;
    if (file.loadFromString(bytes) == StatusSuccess) {
        checkDocument(file, bytes);
        Song song;
        song.clear();
        FUZZ_CHECK(song.loadFromXmlFile(file) == StatusSuccess, fuzz::printable(bytes));
        fuzz::checkSongRoundTrip(song);
    }

    checkEscaping(bytes);
    return 0;
}
