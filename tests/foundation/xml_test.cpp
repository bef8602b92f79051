#include "melodex/foundation/xml.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "melodex/foundation/text_encoding.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using test::TempFolder;

template <std::size_t N>
std::string bytes(const char (&literal)[N]) {
    return std::string(literal, N - 1);
}

TEST(XmlTest, WalksElementsAttributesAndTextIgnoringCase) {
    XmlFile file;
    ASSERT_EQ(file.loadFromString(R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE song>
<!-- written by hand -->
<Song Version="2" ÉTAT="prêt">
  <?editor keep?>
  <Info><TITLE>Amazing &amp; &lt;Grace&gt; &#233;</TITLE></Info>
  <Section><Line>Amazing <Chord Name="G"/>grace<![CDATA[ <how> ]]><b>sweet</b> the sound</Line></Section>
</Song>
)"),
              StatusSuccess);
    const XmlNode song = file.root();
    EXPECT_EQ(song.name(), "Song");
    EXPECT_EQ(song.attribute("VERSION"), "2");
    EXPECT_EQ(song.attribute("état"), "prêt");
    EXPECT_EQ(song.attribute("tempo", "none"), "none");
    EXPECT_EQ(song.findChild("info").findChild("Title").text(), "Amazing & <Grace> é");

    const XmlNode line = song.findChild("SECTION").findChild("line");
    EXPECT_EQ(line.text(), "Amazing grace <how> sweet the sound");
    EXPECT_EQ(line.directText(), "Amazing grace <how>  the sound");
    EXPECT_EQ(line.findChild("chord").attributes(),
              (std::vector<std::pair<String, String>>{{"Name", "G"}}));
    std::vector<XmlNode::Kind> kinds;
    for (XmlNode node = line.firstChild(); node; node = node.nextSibling()) {
        kinds.push_back(node.kind());
    }
    using K = XmlNode::Kind;
    EXPECT_EQ(kinds, (std::vector<K>{K::Text, K::Element, K::Text, K::Text, K::Element, K::Text}));
    EXPECT_EQ(song.childElements().size(), 2u);  // blank text and the PI are not kept

    // Lookups that find nothing chain safely to empty results.
    const XmlNode missing = song.findChild("nothing").findChild("deeper");
    EXPECT_TRUE(missing.isNull());
    EXPECT_EQ(missing.kind(), K::Null);
    EXPECT_EQ(missing.text() + missing.name() + missing.attribute("a"), "");
    EXPECT_FALSE(missing.hasAttribute("a"));
    EXPECT_TRUE(missing.childElements().empty());
    EXPECT_FALSE(missing.firstChild() || missing.nextSibling());
}

TEST(XmlTest, EncodedTextParsesBackUnchanged) {
    const String awkward = R"(Tom & "Jerry" <sing> it's >> 'A&amp;')";
    EXPECT_EQ(XmlString::encode(awkward),
              "Tom &amp; &quot;Jerry&quot; &lt;sing&gt; it's &gt;&gt; 'A&amp;amp;'");
    XmlFile file;
    ASSERT_EQ(file.loadFromString("<a t=\"" + XmlString::encode(awkward) + "\">" +
                                  XmlString::encode(awkward) + "</a>"),
              StatusSuccess);
    EXPECT_EQ(file.root().attribute("t"), awkward);
    EXPECT_EQ(file.root().text(), awkward);
}

TEST(XmlTest, RefusesAnythingButOneDocument) {
    const std::pair<std::string, Status> cases[] = {
        // A plain-text song that begins with elements must not pass for XML.
        {"<uuid>x</uuid><updated>y</updated>\nAmazing grace...", StatusXmlMalformed},
        {"<a/><b/>", StatusXmlMalformed},
        {"text <a/>", StatusXmlMalformed},
        {"<a/><![CDATA[x]]>", StatusXmlMalformed},
        {"<a/><?xml version=\"1.0\"?>", StatusXmlMalformed},
        {bytes("<a>x</a>\0<b>"), StatusXmlMalformed},
        {"<a><b>", StatusXmlBase + 14},  // unterminated
        {"<a></b>", StatusXmlBase + 14},
        {"<a x=1/>", StatusXmlBase + 12},
        {"<a/> <", StatusXmlBase + 5},
        {"", StatusXmlBase + 16},  // no element at all
        {" \n\t<!-- only a comment -->", StatusXmlBase + 16},
        {"Amazing grace", StatusXmlMalformed},
    };
    for (const auto& [text, expected] : cases) {
        XmlFile file;
        ASSERT_EQ(file.loadFromString("<kept/>"), StatusSuccess);
        EXPECT_EQ(file.loadFromString(text), expected) << text;
        EXPECT_TRUE(file.root().isNull()) << text;  // a failed load leaves it empty
    }
    XmlFile file;
    EXPECT_EQ(file.loadFromString("  <a/>\n\n"), StatusSuccess);  // blanks around the root
}

TEST(XmlTest, DetectsEveryEncodingFromTheBytes) {
    const String utf8 = "<?xml version=\"1.0\" encoding=\"windows-1252\"?>\r\n<t a=\"é\">Jésus</t>";
    const String le = encodeUtf16LE(utf8, false);
    String be;
    for (std::size_t i = 0; i < le.size(); i += 2)
        be += {le[i + 1], le[i]};
    const std::pair<const char*, std::string> files[] = {
        {"utf8", utf8},
        {"utf8 bom", "\xEF\xBB\xBF" + utf8},
        {"utf16le bom", "\xFF\xFE" + le},
        {"utf16be bom", "\xFE\xFF" + be},
        {"utf16le", le},
        {"utf16be", be},
        {"windows-1252", "<?xml version=\"1.0\"?><t a=\"\xE9\">J\xE9sus</t>"},
    };
    TempFolder folder;
    for (const auto& [name, content] : files) {
        XmlFile file;
        ASSERT_EQ(file.load(folder.write(name, content)), StatusSuccess) << name;
        EXPECT_EQ(file.root().text(), "Jésus") << name;
        EXPECT_EQ(file.root().attribute("A"), "é") << name;
    }

    // Damaged text still loads: a cut sequence reads as Windows-1252, a lone
    // surrogate as U+FFFD.
    XmlFile file;
    ASSERT_EQ(file.loadFromString("<t>J\xC3</t>"), StatusSuccess);
    EXPECT_EQ(file.root().text(), "JÃ");
    ASSERT_EQ(file.load(folder.write("lone", bytes("\xFF\xFE<\0t\0>\0\x00\xDC<\0/\0t\0>\0"))),
              StatusSuccess);
    EXPECT_EQ(file.root().text(), "\uFFFD");
}

TEST(XmlTest, SurvivesHostileAndMissingFiles) {
    TempFolder folder;
    XmlFile file;
    ASSERT_EQ(file.loadFromString("<kept/>"), StatusSuccess);
    EXPECT_EQ(file.load(folder.file("missing.xml")), Status(ENOENT));
    EXPECT_TRUE(file.root().isNull());

    String garbage;
    for (int i = 0; i < 4096; ++i)
        garbage += char((i * 7919 + 13) % 256);
    EXPECT_NE(file.load(folder.write("garbage.bin", garbage)), StatusSuccess);
    EXPECT_TRUE(file.root().isNull());

    // Nesting far deeper than any stack could recurse.
    constexpr int Depth = 100000;
    String deep;
    for (int i = 0; i < Depth; ++i)
        deep += "<d>";
    deep += "core";
    for (int i = 0; i < Depth; ++i)
        deep += "</d>";
    ASSERT_EQ(file.load(folder.write("deep.xml", deep)), StatusSuccess);
    EXPECT_EQ(file.root().text(), "core");
    deep.resize(deep.size() - 4);
    EXPECT_EQ(file.loadFromString(deep), StatusXmlBase + 14);

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

}  // namespace
}  // namespace melodex
