#include "melodex/foundation/text_encoding.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

namespace melodex {
namespace {

using namespace std::string_literals;

const std::string Utf8Bom = "\xEF\xBB\xBF";
const std::string Utf16LEBom = "\xFF\xFE";
const std::string Utf16BEBom = "\xFE\xFF";
const String Replacement = "\uFFFD";

// The UTF-16 units as little- or big-endian bytes.
std::string utf16(const std::u16string& units, bool bigEndian) {
    std::string bytes;
    for (char16_t unit : units) {
        bytes += char(bigEndian ? unit >> 8 : unit & 0xFF);
        bytes += char(bigEndian ? unit & 0xFF : unit >> 8);
    }
    return bytes;
}

TEST(TextEncodingTest, DetectsTheEncodingByMarkOrContent) {
    EXPECT_EQ(detectEncoding(""), TextEncoding::Utf8);
    EXPECT_EQ(detectEncoding("J\u00e9sus \U0001F64F"), TextEncoding::Utf8);
    EXPECT_EQ(detectEncoding(Utf8Bom), TextEncoding::Utf8Bom);
    EXPECT_EQ(detectEncoding(Utf16LEBom + "a\0"s), TextEncoding::Utf16LE);
    EXPECT_EQ(detectEncoding(Utf16BEBom + "\0a"s), TextEncoding::Utf16BE);
    EXPECT_EQ(detectEncoding("caf\xE9"), TextEncoding::Windows1252);
    EXPECT_EQ(detectEncoding("\xEF\xBB"), TextEncoding::Windows1252);  // half a mark is no mark

    TextEncoding found = TextEncoding::Windows1252;
    EXPECT_EQ(decodeText(Utf8Bom + "J\u00e9sus", &found), "J\u00e9sus");
    EXPECT_EQ(found, TextEncoding::Utf8Bom);
    EXPECT_EQ(decodeText("a\0b"s, &found), "a\0b"s);
    EXPECT_EQ(found, TextEncoding::Utf8);
    // Only the first mark is taken off; a second one is text (U+FEFF).
    EXPECT_EQ(decodeText(Utf8Bom + Utf8Bom + "x"), Utf8Bom + "x");
}

TEST(TextEncodingTest, DecodesUtf16WithSurrogatePairs) {
    // "Jé🙏\r\n" with the emoji as the pair D83D DE4F.
    const std::u16string units = {u'J', 0x00E9, 0xD83D, 0xDE4F, u'\r', u'\n'};
    TextEncoding found = TextEncoding::Utf8;
    EXPECT_EQ(decodeText(Utf16LEBom + utf16(units, false), &found), "J\u00e9\U0001F64F\r\n");
    EXPECT_EQ(found, TextEncoding::Utf16LE);
    EXPECT_EQ(decodeText(Utf16BEBom + utf16(units, true), &found), "J\u00e9\U0001F64F\r\n");
    EXPECT_EQ(found, TextEncoding::Utf16BE);
    EXPECT_EQ(decodeText(Utf16LEBom + utf16({0x0421, 0xFFFF, 0xDBFF, 0xDFFF, 0}, false)),
              "\u0421\uffff\U0010FFFF\0"s);
    EXPECT_EQ(decodeText(Utf16BEBom), "");
}

TEST(TextEncodingTest, ReplacesBrokenUtf16) {
    const std::pair<std::u16string, String> cases[] = {
        {{0xD83D, u'a'}, Replacement + "a"},                     // high surrogate before a letter
        {{u'a', 0xD83D}, "a" + Replacement},                     // high surrogate at the end
        {{0xDE4F, 0xD83D}, Replacement + Replacement},           // low before high
        {{0xD83D, 0xD83D, 0xDE4F}, Replacement + "\U0001F64F"},  // two highs, then a low
    };
    for (const auto& [units, expected] : cases) {
        EXPECT_EQ(decodeText(Utf16LEBom + utf16(units, false)), expected);
        EXPECT_EQ(decodeText(Utf16BEBom + utf16(units, true)), expected);
    }
    // An odd byte count leaves half a unit, which becomes one replacement.
    EXPECT_EQ(decodeText(Utf16LEBom + "a\0b"s), "a" + Replacement);
    EXPECT_EQ(decodeText(Utf16BEBom + "\0a\0"s), "a" + Replacement);
    // A high surrogate whose partner is cut in half.
    EXPECT_EQ(decodeText(Utf16LEBom + "\x3D\xD8\x4F"), Replacement + Replacement);
}

TEST(TextEncodingTest, FallsBackToWindows1252) {
    TextEncoding found = TextEncoding::Utf8;
    EXPECT_EQ(decodeText("\x93"
                         "Amazing Grace\x94 caf\xE9",
                         &found),
              "\u201cAmazing Grace\u201d caf\u00e9");
    EXPECT_EQ(found, TextEncoding::Windows1252);
    // Where Windows-1252 differs from Latin-1, the unused bytes kept as C1
    // controls, and the Latin-1 range above.
    EXPECT_EQ(decodeText("\x80\x8A\x96\x99\x9F\x81\x9D\xA0\xFF"),
              "\u20ac\u0160\u2013\u2122\u0178\u0081\u009d\u00a0\u00ff");

    // A mark does not make the rest UTF-8: old editors wrote one before
    // Windows-1252 text too.
    EXPECT_EQ(decodeText(Utf8Bom + "caf\xE9 \x93ok\x94", &found), "caf\u00e9 \u201cok\u201d");
    EXPECT_EQ(found, TextEncoding::Utf8Bom);
    // One bad byte sends the whole text through the fallback.
    EXPECT_EQ(decodeText("\xC3\xA9 \xE9"), "\u00c3\u00a9 \u00e9");
}

TEST(TextEncodingTest, EncodesUtf16LittleEndianAndReadsItBack) {
    EXPECT_EQ(encodeUtf16LE("", true), Utf16LEBom);
    EXPECT_EQ(encodeUtf16LE("J\u00e9\r\n", true), "\xFF\xFEJ\0\xE9\0\r\0\n\0"s);
    EXPECT_EQ(encodeUtf16LE("\u0421\u20ac", false), "\x21\x04\xAC\x20"s);
    EXPECT_EQ(encodeUtf16LE("\U0001F64F\U0010FFFF", false), "\x3D\xD8\x4F\xDE\xFF\xDB\xFF\xDF"s);
    // Malformed input is written as U+FFFD, one per bad byte.
    EXPECT_EQ(encodeUtf16LE("a\xE9", false), "a\0\xFD\xFF"s);

    for (const String& text : {
             ""s,
             "J\u00e9sus, \u0421\u043b\u0430\u0432\u0430 \u0411\u043e\u0433\u0443!\r\n"s,
             "\u03a3\u03bf\u03c6\u03af\u03b1 \U0001F64F \uffff \U00010000 \U0010FFFF"s,
             "tab\tand\0nul"s,
         }) {
        TextEncoding found = TextEncoding::Utf8;
        EXPECT_EQ(decodeText(encodeUtf16LE(text, true), &found), text);
        EXPECT_EQ(found, TextEncoding::Utf16LE);
    }
}

// Whatever the bytes, the result is valid UTF-8: the rest of the library
// relies on decoded text being well-formed.
TEST(TextEncodingTest, DecodesAnyBytesToValidUtf8) {
    std::mt19937 random(1252);
    std::uniform_int_distribution<int> byte(0, 255);
    const std::string prefixes[] = {"", Utf8Bom, Utf16LEBom, Utf16BEBom};
    for (int round = 0; round < 2000; ++round) {
        std::string bytes = prefixes[round % 4];
        for (int i = round % 41; i > 0; --i)
            bytes += char(byte(random));
        ASSERT_TRUE(isValidUtf8(decodeText(bytes))) << "round " << round;
    }
}

}  // namespace
}  // namespace melodex
