#include "melodex/foundation/text_encoding.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

namespace melodex {
namespace {

using namespace std::string_literals;
using enum TextEncoding;

const std::string Mark = "\xEF\xBB\xBF", LE = "\xFF\xFE", BE = "\xFE\xFF";
const String Bad = "\uFFFD";

TEST(TextEncodingTest, DetectsByMarkOrContentAndDecodes) {
    // Windows-1252 where it differs from Latin-1, its unused bytes as C1 controls. One bad
    // byte sends the whole text through it, a mark too: old editors wrote one before it.
    // clang-format off
    const std::tuple<std::string, TextEncoding, String> cases[] = {
        {"a\0b"s, Utf8, "a\0b"s}, {Mark + Mark + "J\u00e9sus", Utf8Bom, "\ufeffJ\u00e9sus"},
        {"\xEF\xBB", Windows1252, "\u00ef\u00bb"}, {Mark + "caf\xE9", Utf8Bom, "caf\u00e9"},
        {LE + "J\0\xE9\0\x3D\xD8\x4F\xDE\r\0\n\0"s, Utf16LE, "J\u00e9\U0001F64F\r\n"},
        {BE + "\0J\xDB\xFF\xDF\xFF\xFF\xFF\0\0"s, Utf16BE, "J\U0010FFFF\uffff\0"s},
        {"\x93Gloria\x94 caf\xE9", Windows1252, "\u201cGloria\u201d caf\u00e9"},
        {"\x80\x8A\x96\x99\x9F\x81\x9D\xA0\xFF", Windows1252,
         "\u20ac\u0160\u2013\u2122\u0178\u0081\u009d\u00a0\u00ff"},
        {"\xC3\xA9 \xE9", Windows1252, "\u00c3\u00a9 \u00e9"}};
    // Broken UTF-16: lone or reversed surrogates, half a unit at the end.
    const std::pair<std::string, String> broken[] = {
        {"\x3D\xD8" "a\0"s, Bad + "a"}, {"a\0\x3D\xD8"s, "a" + Bad}, {"\x4F\xDE\x3D\xD8", Bad + Bad},
        {"\x3D\xD8\x3D\xD8\x4F\xDE", Bad + "\U0001F64F"}, {"a\0b"s, "a" + Bad},
        {"\x3D\xD8\x4F", Bad + Bad}};
    // clang-format on
    for (const auto& [bytes, encoding, text] : cases) {
        TextEncoding found = Utf16BE;
        EXPECT_EQ(decodeText(bytes, &found), text) << ::testing::PrintToString(bytes);
        EXPECT_TRUE(found == encoding && detectEncoding(bytes) == encoding) << text;
    }
    for (const auto& [bytes, text] : broken)
        EXPECT_EQ(decodeText(LE + bytes), text) << ::testing::PrintToString(bytes);
    EXPECT_EQ(decodeText(BE + "\xD8\x3D\0a\0"s), Bad + "a" + Bad);
}

TEST(TextEncodingTest, EncodesUtf16LittleEndianAndDecodesAnyBytes) {
    EXPECT_EQ(encodeUtf16LE("", true), LE);
    EXPECT_EQ(encodeUtf16LE("J\u00e9\r\n", true), "\xFF\xFEJ\0\xE9\0\r\0\n\0"s);
    EXPECT_EQ(encodeUtf16LE("\u20ac\U0001F64F", false), "\xAC\x20\x3D\xD8\x4F\xDE"s);
    EXPECT_EQ(encodeUtf16LE("a\xE9", false), "a\0\xFD\xFF"s);  // U+FFFD per bad byte
    // Whatever the bytes, the result is valid UTF-8: the rest of the library
    // relies on decoded text being well-formed.
    std::mt19937 random(1252);
    const std::string marks[] = {"", Mark, LE, BE};
    for (int round = 0; round < 2000; ++round) {
        std::string bytes = marks[round % 4];
        for (int i = round % 41; i > 0; --i)
            bytes += char(random());
        ASSERT_TRUE(isValidUtf8(decodeText(bytes))) << "round " << round;
    }
}

}  // namespace
}  // namespace melodex
