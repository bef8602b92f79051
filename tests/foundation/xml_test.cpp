#include "melodex/foundation/xml.h"

#include <cerrno>
#include <string>

#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace melodex {
namespace {

using namespace std::string_literals;
using K = XmlNode::Kind;

TEST(XmlTest, WalksElementsAttributesAndTextIgnoringCase) {
    XmlFile file;
    ASSERT_EQ(file.load(test::testDataPath("xml/walk.xml")), StatusSuccess);
    const XmlNode song = file.root();
    EXPECT_EQ(song.name(), "Song");
    EXPECT_EQ(song.attribute("VERSION") + song.attribute("\u00e9tat"), "2pr\u00eat");
    EXPECT_EQ(song.attribute("tempo", "none"), "none");
    EXPECT_EQ(song.findChild("info").findChild("Title").text(), "Amazing & <Grace> \u00e9");
    EXPECT_EQ(song.childElements().size(), 2u);  // blank text and the PI are not kept
    const XmlNode line = song.findChild("SECTION").findChild("line");
    EXPECT_EQ(line.text(), "Amazing grace <how> sweet the sound");
    EXPECT_EQ(line.directText(), "Amazing grace <how>  the sound");
    EXPECT_EQ(line.findChild("chord").attributes(),
              (std::vector<std::pair<String, String>>{{"Name", "G"}}));
    std::vector<K> kinds;
    for (XmlNode node = line.firstChild(); node; node = node.nextSibling())
        kinds.push_back(node.kind());
    EXPECT_EQ(kinds, (std::vector<K>{K::Text, K::Element, K::Text, K::Text, K::Element, K::Text}));
    // Lookups that find nothing chain safely to empty results.
    const XmlNode missing = song.findChild("nothing").findChild("deeper");
    EXPECT_TRUE(missing.isNull() && missing.kind() == K::Null && missing.childElements().empty());
    EXPECT_EQ(missing.text() + missing.name() + missing.attribute("a"), "");
    EXPECT_FALSE(missing.hasAttribute("a") || missing.firstChild() || missing.nextSibling());
    // Encoded text parses back unchanged, in attributes and content.
    const String awkward = R"(Tom & "Jerry" <sing> it's >> 'A&amp;')";
    const String encoded = XmlString::encode(awkward);
    EXPECT_EQ(encoded, "Tom &amp; &quot;Jerry&quot; &lt;sing&gt; it's &gt;&gt; 'A&amp;amp;'");
    ASSERT_EQ(file.loadFromString("<a t=\"" + encoded + "\">" + encoded + "</a>"), StatusSuccess);
    EXPECT_EQ(file.root().attribute("t") + file.root().text(), awkward + awkward);
}

TEST(XmlTest, RefusesAnythingButOneDocument) {
    // A plain-text song that begins with elements must not pass for XML.
    // clang-format off
    const std::pair<std::string, Status> cases[] = {
        {"<uuid>x</uuid><updated>y</updated>\nAmazing grace", StatusXmlMalformed},
        {"text <a/>", StatusXmlMalformed}, {"<a/><![CDATA[x]]>", StatusXmlMalformed},
        {"<a/><?xml version=\"1.0\"?>", StatusXmlMalformed}, {"<a>x</a>\0<b>"s, StatusXmlMalformed},
        {"Amazing grace", StatusXmlMalformed}, {"<a></b>", StatusXmlBase + 14},
        {"<a x=1/>", StatusXmlBase + 12}, {"<a/> <", StatusXmlBase + 5},
        {" \n\t<!-- only a comment -->", StatusXmlBase + 16}};
    // clang-format on
    for (const auto& [text, expected] : cases) {
        XmlFile file;
        ASSERT_EQ(file.loadFromString("<kept/>"), StatusSuccess);
        EXPECT_EQ(file.loadFromString(text), expected) << text;
        EXPECT_TRUE(file.root().isNull()) << text;  // a failed load leaves it empty
    }
    XmlFile file;
    EXPECT_EQ(file.loadFromString("  <a/>\n\n"), StatusSuccess);  // blanks around the root
}

TEST(XmlTest, DetectsTheEncodingFromTheBytesAndSurvivesHostileFiles) {
    for (const char* name :
         {"utf8", "utf8-bom", "utf16le-bom", "utf16be-bom", "utf16le", "utf16be", "windows-1252"}) {
        SCOPED_TRACE(name);
        XmlFile file;
        ASSERT_EQ(file.load(test::testDataPath("xml/encodings/"s + name + ".xml")), StatusSuccess);
        EXPECT_EQ(file.root().text() + "|" + file.root().attribute("A"), "J\u00e9sus|\u00e9");
    }
    test::TempFolder folder;
    XmlFile file;
    EXPECT_EQ(file.load(folder.file("missing.xml")), Status(ENOENT));
    EXPECT_TRUE(file.root().isNull());
    ASSERT_EQ(file.loadFromString("<kept/>"), StatusSuccess);
    EXPECT_NE(file.load(folder.write("garbage.bin", "\xFF\xFE\0<\x01\xD8"s + String(4096, '\x93'))),
              StatusSuccess);
    EXPECT_TRUE(file.root().isNull());
    // Nesting far deeper than any stack could recurse.
    String opening, closing;
    for (int i = 0; i < 100000; ++i) {
        opening += "<d>";
        closing += "</d>";
    }
    ASSERT_EQ(file.load(folder.write("deep.xml", opening + "core" + closing)), StatusSuccess);
    EXPECT_EQ(file.root().text(), "core");
    EXPECT_EQ(file.loadFromString(opening + "core" + closing.substr(4)), StatusXmlBase + 14);
    // A moved file keeps its nodes valid, short texts included.
    XmlNode b;
    XmlFile other;
    {
        XmlFile small;
        ASSERT_EQ(small.loadFromString("<a><b>x</b></a>"), StatusSuccess);
        b = small.root().findChild("b");
        other = std::move(small);
    }
    EXPECT_EQ(b.text(), "x");
    EXPECT_EQ(other.root().findChild("B"), b);
}

// Found by fuzzing: pugixml read "&#x110000;" as bytes that are not UTF-8
// and ended the text at "&#0;". Whatever a reference says, the reader hands
// out valid UTF-8; other entities and malformed references stay as written.
TEST(XmlTest, ReferencesToCharactersXmlCannotCarryReadAsReplacementCharacters) {
    // clang-format off
    const std::pair<std::string, std::string> cases[] = {
        {"&#x110000;", "\uFFFD"}, {"x&#xD800;y&#xdfff;", "x\uFFFDy\uFFFD"},
        {"&#0;after", "\uFFFDafter"}, {"&#1;&#xFFFE;&#65535;", "\uFFFD\uFFFD\uFFFD"},
        {"&#99999999999999999999999;", "\uFFFD"},
        {"&#233;&#x1F64F;&#9;&#13;&#10;&#xA0;", "\u00e9\U0001F64F\t\r\n\u00a0"},
        {"&lt;&gt;&amp;&apos;&quot;", "<>&'\""}, {"&amp;#0;", "&#0;"},
        {"&nbsp; &#; &#x; &#12a; &#X41; &amp", "&nbsp; &#; &#x; &#12a; &#X41; &amp"},
        {"<![CDATA[&#0;&amp;]]>", "&#0;&amp;"}};
    // clang-format on
    for (const auto& [content, expected] : cases) {
        XmlFile file;
        ASSERT_EQ(file.loadFromString("<a v=\"" + content + "\">" + content + "</a>"),
                  StatusSuccess)
            << content;
        EXPECT_EQ(file.root().text(), expected) << content;
        if (content.find('<') == std::string::npos) {
            EXPECT_EQ(file.root().attribute("v"), expected) << content;
        }
    }
    // A reference is read up to the first character that cannot continue
    // it: a huge text of unfinished ones costs its length, not its square.
    String unfinished;
    for (int i = 0; i < 1 << 20; ++i)
        unfinished += "&#x1";
    XmlFile hostile;
    ASSERT_EQ(hostile.loadFromString("<a>" + unfinished + "&#65;</a>"), StatusSuccess);
    EXPECT_EQ(hostile.root().text(), unfinished + "A");

    // Literal tabs and line breaks in an attribute read as blanks, their
    // references as themselves.
    XmlFile file;
    ASSERT_EQ(file.loadFromString("<a v=\"1\t2\n3&#9;&#10;&#13;\"/>"), StatusSuccess);
    EXPECT_EQ(file.root().attribute("v"), "1 2 3\t\n\r");
}

// What the writers escape reads back as it was, except what XML 1.0 cannot
// carry at all (C0 controls but tab, LF and CR; U+FFFE and U+FFFF; bytes that
// are not UTF-8), which is written as U+FFFD, one for one.
TEST(XmlTest, WritersEscapeWhatAReaderWouldChangeAndReplaceWhatXmlCannotCarry) {
    struct Case {
        std::string text, encodeText, attribute, readBack;
    };
    // clang-format off
    const Case cases[] = {
        {"a\rb\r\n", "a&#13;b&#13;\n", "a&#13;b&#13;&#10;", "a\rb\r\n"},
        {"\t \n", "\t \n", "&#9; &#10;", "\t \n"},
        {"say \"&\" <x>", "say \"&amp;\" &lt;x&gt;", "say &quot;&amp;&quot; &lt;x&gt;", "say \"&\" <x>"},
        {"\0x\x01\x1F\x7F"s, "\uFFFDx\uFFFD\uFFFD\x7F", "\uFFFDx\uFFFD\uFFFD\x7F", "\uFFFDx\uFFFD\uFFFD\x7F"},
        {"\xEF\xBF\xBE\xEF\xBF\xBF\xEF\xBF\xBD", "\uFFFD\uFFFD\uFFFD", "\uFFFD\uFFFD\uFFFD", "\uFFFD\uFFFD\uFFFD"},
        {"\xED\xA0\x80|\xC3|\xFF", "\uFFFD\uFFFD\uFFFD|\uFFFD|\uFFFD", "\uFFFD\uFFFD\uFFFD|\uFFFD|\uFFFD",
         "\uFFFD\uFFFD\uFFFD|\uFFFD|\uFFFD"},
        {"J\u00e9sus \U0001F64F", "J\u00e9sus \U0001F64F", "J\u00e9sus \U0001F64F", "J\u00e9sus \U0001F64F"}};
    // clang-format on
    for (const Case& test : cases) {
        SCOPED_TRACE(test.text);
        EXPECT_EQ(XmlString::encodeText(test.text), test.encodeText);
        EXPECT_EQ(XmlString::attribute("v", test.text), " v=\"" + test.attribute + "\"");
        XmlFile file;
        ASSERT_EQ(file.loadFromString("<a" + XmlString::attribute("v", test.text) + ">" +
                                      XmlString::encodeText(test.text) + "<b>" +
                                      XmlString::encode(test.text) + "</b></a>"),
                  StatusSuccess);
        EXPECT_EQ(file.root().attribute("v"), test.readBack);
        EXPECT_EQ(file.root().directText(), test.readBack);
        EXPECT_EQ(file.root().findChild("b").text(), test.readBack);
    }
}

}  // namespace
}  // namespace melodex
