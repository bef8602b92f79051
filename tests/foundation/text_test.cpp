#include "melodex/foundation/text.h"

#include <climits>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <unordered_map>

#include <gtest/gtest.h>

namespace melodex {
namespace {

// Lyrics as they appear in real songs: a Latin letter with an accent (two
// bytes), Cyrillic (two bytes each) and an emoji outside the BMP (four bytes).
const String Jesus = "J\u00e9sus";                      // "Jésus", 6 bytes
const String Slava = "\u0421\u043b\u0430\u0432\u0430";  // "Слава", 10 bytes
const String Praying = "a\U0001F64Fb";                  // "a🙏b", 6 bytes

TEST(TextTest, CountsAndLocatesCharactersNotBytes) {
    EXPECT_EQ(codePointLength(""), 0u);
    EXPECT_EQ(codePointLength(Jesus), 5u);
    EXPECT_EQ(codePointLength(Slava), 5u);
    EXPECT_EQ(codePointLength(Praying), 3u);

    EXPECT_EQ(codePointToByteOffset(Jesus, 2), 3u);
    EXPECT_EQ(codePointToByteOffset(Praying, 2), 5u);
    EXPECT_EQ(codePointToByteOffset(Jesus, 99), Jesus.size());
    // A byte offset inside a character counts that character as started.
    EXPECT_EQ(byteToCodePointOffset(Jesus, 2), 2u);
    EXPECT_EQ(byteToCodePointOffset(Praying, 3), 2u);
    EXPECT_EQ(byteToCodePointOffset(Praying, 100), 3u);

    EXPECT_EQ(codePointAt(Jesus, 1), U'\u00e9');
    EXPECT_EQ(codePointAt(Praying, 1), U'\U0001F64F');
    EXPECT_EQ(codePointAt(Slava, 4), U'\u0430');
    EXPECT_EQ(codePointAt(Jesus, 5), 0u);

    EXPECT_EQ(codePointSubstring(Jesus, 1, 3), "\u00e9su");
    EXPECT_EQ(codePointSubstring(Slava, 3), "\u0432\u0430");
    EXPECT_EQ(codePointSubstring(Praying, 1, 1), "\U0001F64F");
    EXPECT_EQ(codePointSubstring(Jesus, 4, 10), "s");
    EXPECT_EQ(codePointSubstring(Jesus, 2, 0), "");
    EXPECT_EQ(codePointSubstring(Jesus, 5), "");
    EXPECT_EQ(codePointSubstring(Jesus, 9, 2), "");

    // Both directions agree on every boundary, also across malformed bytes.
    const String mixed = Jesus + "\xE2\x82" + Slava + "\xC0\xAF" + Praying + "\x80";
    std::size_t previous = 0;
    for (std::size_t index = 0; index <= codePointLength(mixed); ++index) {
        const std::size_t byte = codePointToByteOffset(mixed, index);
        EXPECT_EQ(byteToCodePointOffset(mixed, byte), index);
        EXPECT_TRUE(index == 0 || byte > previous) << "index " << index;
        previous = byte;
    }
    EXPECT_EQ(previous, mixed.size());
}

TEST(TextTest, InsertsChordsBeforeTheRightCharacter) {
    const auto inserted = [](String text, std::size_t index) {
        insertAtCodePoint(text, index, "[G]");
        return text;
    };
    EXPECT_EQ(inserted(Jesus, 0), "[G]J\u00e9sus");
    EXPECT_EQ(inserted(Jesus, 2), "J\u00e9[G]sus");
    EXPECT_EQ(inserted(Jesus, 5), "J\u00e9sus[G]");
    EXPECT_EQ(inserted(Jesus, 42), "J\u00e9sus[G]");
    EXPECT_EQ(inserted(Slava, 1), "\u0421[G]\u043b\u0430\u0432\u0430");
    EXPECT_EQ(inserted(Praying, 2), "a\U0001F64F[G]b");
    EXPECT_EQ(inserted("", 3), "[G]");
}

TEST(TextTest, MalformedUtf8CountsOneCharacterPerBadByte) {
    // Each case with the number of characters it must count as.
    const std::pair<std::string, std::size_t> cases[] = {
        {"\x80", 1},              // lone continuation byte
        {"ab\xC3", 3},            // truncated two-byte sequence at the end
        {"a\xE2\x82z", 4},        // truncated three-byte sequence before ASCII
        {"\xF0\x9F\x99", 3},      // truncated four-byte sequence
        {"\xC0\xAF", 2},          // overlong "/" in two bytes
        {"\xE0\x80\xAF", 3},      // ... in three
        {"\xF0\x80\x80\xAF", 4},  // ... in four
        {"\xED\xA0\x80", 3},      // a surrogate encoded in UTF-8
        {"\xF4\x90\x80\x80", 4},  // beyond U+10FFFF
        {"\xFE\xFF", 2},          // bytes that never occur
        {"caf\xE9", 4},           // Windows-1252 text
    };
    for (const auto& [bytes, characters] : cases) {
        SCOPED_TRACE(::testing::PrintToString(bytes));
        EXPECT_FALSE(isValidUtf8(bytes));
        EXPECT_EQ(codePointLength(bytes), characters);
        EXPECT_EQ(codePointToByteOffset(bytes, characters), bytes.size());
        EXPECT_EQ(codePointSubstring(bytes, 0, characters), bytes);
        std::size_t steps = 0;
        for (std::size_t pos = 0; pos < bytes.size(); ++steps) {
            const std::size_t before = pos;
            decodeUtf8(bytes, pos);
            ASSERT_TRUE(pos > before && pos <= bytes.size());
        }
        EXPECT_EQ(steps, characters);
    }
    std::size_t pos = 0;
    EXPECT_EQ(decodeUtf8("\xED\xA0\x80", pos), ReplacementCharacter);
    EXPECT_EQ(pos, 1u);

    EXPECT_TRUE(isValidUtf8(""));
    EXPECT_TRUE(isValidUtf8(Jesus + Slava + Praying));
    EXPECT_TRUE(isValidUtf8("\xEF\xBF\xBD"));      // a genuine U+FFFD
    EXPECT_TRUE(isValidUtf8("\xF4\x8F\xBF\xBF"));  // U+10FFFF
    EXPECT_FALSE(isValidUtf8("ok\xEF\xBF\xBD\xC3"));
}

TEST(TextTest, EncodesEveryCodePointAndDecodesItBack) {
    for (char32_t codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
        if (codePoint >= 0xD800 && codePoint <= 0xDFFF) continue;
        String bytes;
        appendUtf8(bytes, codePoint);
        std::size_t pos = 0;
        if (decodeUtf8(bytes, pos) != codePoint || pos != bytes.size()) {
            ADD_FAILURE() << "U+" << std::hex << std::uint32_t(codePoint);
            break;
        }
    }
    const auto encoded = [](char32_t codePoint) {
        String bytes;
        appendUtf8(bytes, codePoint);
        return bytes;
    };
    EXPECT_EQ(encoded(0x7FF), "\xDF\xBF");
    EXPECT_EQ(encoded(0x800), "\xE0\xA0\x80");
    EXPECT_EQ(encoded(0x10000), "\xF0\x90\x80\x80");
    // What cannot be UTF-8 becomes the replacement character.
    EXPECT_EQ(encoded(0xD800), "\xEF\xBF\xBD");
    EXPECT_EQ(encoded(0x110000), "\xEF\xBF\xBD");
}

// --- Case --------------------------------------------------------------------

TEST(TextTest, EqualityCompareAndHashAgreeIgnoringCase) {
    // ASCII, accented Latin, Cyrillic, Greek with both lower-case sigmas, the
    // capital sharp s, and the Kelvin sign whose UTF-8 form is longer than
    // the "k" it folds to.
    const std::pair<const char*, const char*> equal[] = {
        {"Amazing Grace", "AMAZING grace"},
        {"\u00c9GLISE", "\u00e9glise"},
        {"\u0421\u041b\u0410\u0412\u0410", "\u0441\u043b\u0430\u0432\u0430"},
        {"\u03a3\u039f\u03a6\u0399\u0391", "\u03c3\u03bf\u03c6\u03b9\u03b1"},
        {"\u03a3", "\u03c2"},
        {"\u1e9e", "\u00df"},
        {"\u212aey", "KEY"},
        {"", ""},
    };
    const std::pair<const char*, const char*> different[] = {
        {"Jesus", "J\u00e9sus"},
        {"Stra\u00dfe", "STRASSE"},  // simple folding keeps sharp s one character
        {"abc", "abcd"},
        {"\u00e9glise", "\u00e9glises"},
        {"caf\xE9", "caf\xC3\xA9"},  // a bad byte is not the letter it was meant to be
    };
    const CaseInsensitiveHash hash;
    for (const auto& [a, b] : equal) {
        SCOPED_TRACE(String(a) + " / " + b);
        EXPECT_TRUE(equalsIgnoreCase(a, b));
        EXPECT_EQ(compareIgnoreCase(a, b), 0);
        EXPECT_EQ(compareIgnoreCase(b, a), 0);
        EXPECT_EQ(hash(a), hash(b));
        EXPECT_EQ(foldCase(std::string_view(a)), foldCase(std::string_view(b)));
    }
    for (const auto& [a, b] : different) {
        SCOPED_TRACE(String(a) + " / " + b);
        EXPECT_FALSE(equalsIgnoreCase(a, b));
        EXPECT_NE(compareIgnoreCase(a, b), 0);
        EXPECT_EQ(compareIgnoreCase(a, b) < 0, compareIgnoreCase(b, a) > 0);
    }
    EXPECT_EQ(foldCase(U'\u00df'), U'\u00df');  // would be "ss" under full folding
    EXPECT_EQ(toLowerAscii("VERSE \u00c9GLISE\xC0"), "verse \u00c9glise\xC0");
}

TEST(TextTest, OrdersAndFindsKeysIgnoringCase) {
    // Folded first: "apple" sorts before "Banana" although 'B' < 'a' in bytes;
    // then by code point, so U+00E9 comes after 'z'.
    EXPECT_LT(compareIgnoreCase("apple", "Banana"), 0);
    EXPECT_LT(compareIgnoreCase("Verse", "VERSE 2"), 0);
    EXPECT_GT(compareIgnoreCase("\u00e9", "Z"), 0);
    EXPECT_LT(compareIgnoreCase("\u0430", "\u0411"), 0);

    std::map<String, int, CaseInsensitiveLess> sorted{{"\u00c9glise", 1}, {"amen", 2}};
    sorted["ABBA"] = 3;
    sorted["\u00e9GLISE"] = 4;  // the same key as the first
    ASSERT_EQ(sorted.size(), 3u);
    EXPECT_EQ(sorted.begin()->first, "ABBA");
    EXPECT_EQ(sorted.rbegin()->second, 4);

    std::unordered_map<String, int, CaseInsensitiveHash, CaseInsensitiveEqual> hashed;
    hashed["Chorus"] = 1;
    hashed["\u03a3\u039f\u03a6\u0399\u0391"] = 2;
    hashed["CHORUS"] = 3;
    EXPECT_EQ(hashed.size(), 2u);
    EXPECT_EQ(hashed.count("\u03c3\u03bf\u03c6\u03b9\u03b1"), 1u);
    EXPECT_EQ(hashed["chorus"], 3);
}

TEST(TextTest, MatchesPrefixesAndSuffixesIgnoringCase) {
    EXPECT_TRUE(startsWithIgnoreCase("Verse 1", "VERSE"));
    EXPECT_TRUE(startsWithIgnoreCase("anything", ""));
    EXPECT_FALSE(startsWithIgnoreCase("Ver", "verse"));
    EXPECT_TRUE(startsWithIgnoreCase("\u00c9glise", "\u00e9G"));
    EXPECT_FALSE(startsWithIgnoreCase("Eglise", "\u00e9"));
    EXPECT_TRUE(startsWithIgnoreCase("\u212aey change", "key"));  // more bytes, same letters
    EXPECT_TRUE(startsWithIgnoreCase("key change", "\u212a"));

    EXPECT_TRUE(endsWithIgnoreCase("Amazing Grace.SONG", ".song"));
    EXPECT_TRUE(endsWithIgnoreCase("x", ""));
    EXPECT_FALSE(endsWithIgnoreCase("g", ".song"));
    EXPECT_TRUE(endsWithIgnoreCase("Caf\u00e9", "F\u00c9"));
    EXPECT_FALSE(endsWithIgnoreCase("Cafe", "\u00e9"));
    EXPECT_TRUE(endsWithIgnoreCase("breakfast \U0001F64F", "T \U0001F64F"));
    EXPECT_TRUE(endsWithIgnoreCase("O\u212a", "ok"));
}

// --- Editing -----------------------------------------------------------------

TEST(TextTest, StripsWholeCharactersFromTheChosenSides) {
    EXPECT_EQ(strip("  Amazing Grace \r\n"), "Amazing Grace");
    EXPECT_EQ(strip(" \t\r\n"), "");
    EXPECT_EQ(strip("  x  ", " ", StripSide::Start), "x  ");
    EXPECT_EQ(strip("  x  ", " ", StripSide::End), "  x");

    // Multi-byte sets: no-break spaces and accented letters.
    EXPECT_EQ(strip("\u00a0 J\u00e9sus \u00a0", " \u00a0"), "J\u00e9sus");
    EXPECT_EQ(strip("\u00e9a\u00e9\u00e9", "\u00e9", StripSide::End), "\u00e9a");
    EXPECT_EQ(strip("\u00e8\u00e9", "\u00e9"), "\u00e8");  // same lead byte, other letter
    EXPECT_EQ(strip("\u00a0", " "), "\u00a0");

    // Malformed bytes are characters of their own, never parts of a set member.
    EXPECT_EQ(strip("abc \xE2\x82", " "), "abc \xE2\x82");
    EXPECT_EQ(strip("abc\xE2\x82  ", " "), "abc\xE2\x82");
    EXPECT_EQ(strip(" \xC3", "\u00e9"), " \xC3");
    EXPECT_EQ(strip("\xC0\xA0x\xC0\xA0", " "), "\xC0\xA0x\xC0\xA0");  // overlong space
}

TEST(TextTest, SplitsKeepingOrSkippingEmptyPieces) {
    using Pieces = StringArray;
    EXPECT_EQ(split("V1,C1,,V2", ","), (Pieces{"V1", "C1", "", "V2"}));
    EXPECT_EQ(split("V1,C1,,V2", ",", EmptyPieces::Skip), (Pieces{"V1", "C1", "V2"}));
    EXPECT_EQ(split("", ","), (Pieces{""}));
    EXPECT_TRUE(split(",,", ",", EmptyPieces::Skip).empty());

    // A CR LF pair is two delimiters: one empty piece between them when kept.
    EXPECT_EQ(split("one\r\ntwo\rthree\n", "\r\n"), (Pieces{"one", "", "two", "three", ""}));
    EXPECT_EQ(split("one\r\ntwo\rthree\n", "\r\n", EmptyPieces::Skip),
              (Pieces{"one", "two", "three"}));

    EXPECT_EQ(split("J\u00e9sus\u00b7\u0421\u043b\u0430\u0432\u0430\u00b7\U0001F64F", "\u00b7/"),
              (Pieces{"J\u00e9sus", "\u0421\u043b\u0430\u0432\u0430", "\U0001F64F"}));
    EXPECT_EQ(split("\u00e9", "\xA9"), (Pieces{"\u00e9"}));  // never inside a character

    const String text = "|a||b|\u00e9|";
    EXPECT_EQ(split(text, "|").size(), 6u);
    EXPECT_EQ(join(split(text, "|"), "|"), text);
}

TEST(TextTest, ReplacesJoinsAndQuotes) {
    EXPECT_EQ(replaceAll("aaa", "aa", "b"), "ba");      // left to right, no overlap
    EXPECT_EQ(replaceAll("aaa", "a", "aa"), "aaaaaa");  // replacements are not rescanned
    EXPECT_EQ(replaceAll("abc", "", "x"), "abc");
    EXPECT_EQ(replaceAll("J\u00e9sus J\u00e9sus", "\u00e9", "e"), "Jesus Jesus");
    EXPECT_EQ(join({}, ", "), "");
    EXPECT_EQ(join({"", ""}, ","), ",");

    EXPECT_EQ(quote(R"(say "hi")"), R"("say \"hi\"")");
    EXPECT_EQ(quote(R"(C:\Songs\)"), R"("C:\\Songs\\")");
    EXPECT_EQ(quote(R"(\")"), R"("\\\"")");
    EXPECT_EQ(quote("it's", '\'', '\''), "'it''s'");
    EXPECT_EQ(quote("a'b\"c", '\''), R"('a\'b"c')");
}

// --- Numbers -----------------------------------------------------------------

TEST(TextTest, ParsesWholeNumbersStrictly) {
    EXPECT_EQ(parseInteger(" -7\t"), -7);
    EXPECT_EQ(parseInteger("+3"), 3);
    EXPECT_EQ(parseInteger("007"), 7);
    EXPECT_EQ(parseInteger("9223372036854775807"), std::numeric_limits<long long>::max());
    EXPECT_EQ(parseInteger("-9223372036854775808"), std::numeric_limits<long long>::min());
    for (const char* text : {"", "   ", "+", "-", "12px", "4 2", "1.0", "1e3", "0x1F", "++1", "-+1",
                             "- 1", "9223372036854775808", "-9223372036854775809", "\u0663"}) {
        EXPECT_FALSE(parseInteger(text).has_value()) << '"' << text << '"';
    }

    EXPECT_EQ(parseDouble(" -0.25 "), -0.25);
    EXPECT_EQ(parseDouble("+2.5"), 2.5);
    EXPECT_EQ(parseDouble("1e3"), 1000.0);
    EXPECT_EQ(parseDouble("0.1"), 0.1);  // correctly rounded, not merely close
    for (const char* text : {"", " ", "+", "1,5", "1.5.2", "1e", "12pt", "1 5", "++1", "0x1p3"}) {
        EXPECT_FALSE(parseDouble(text).has_value()) << '"' << text << '"';
    }
}

// The optional plus is removed and what remains may still start with a minus:
// parseInteger("+-1") gives -1 and parseDouble("+-1.5") gives -1.5.
TEST(TextTest, RejectsTwoSigns) {
    EXPECT_FALSE(parseInteger("+-1").has_value());
    EXPECT_FALSE(parseDouble("+-1.5").has_value());
}

// "nan", "inf" and "infinity" are read as numbers, so a font size of "nan"
// in a file would pass as one.
TEST(TextTest, RejectsWordsAsDoubles) {
    for (const char* text : {"nan", "inf", "-infinity", "NaN"})
        EXPECT_FALSE(parseDouble(text).has_value()) << text;
}

TEST(TextTest, ReadsLeadingIntegersLeniently) {
    EXPECT_EQ(toInteger("12px"), 12);
    EXPECT_EQ(toInteger("  -5 apples"), -5);
    EXPECT_EQ(toInteger("\r\n +3"), 3);
    EXPECT_EQ(toInteger("1.9"), 1);
    EXPECT_EQ(toInteger("-0", 9), 0);
    for (const char* text : {"large", "", "-", "- 5", "px12"})
        EXPECT_EQ(toInteger(text, 14), 14) << '"' << text << '"';

    EXPECT_EQ(toInteger("2147483647"), INT_MAX);
    EXPECT_EQ(toInteger("-2147483648"), INT_MIN);
    EXPECT_EQ(toInteger("2147483648"), INT_MAX);
    EXPECT_EQ(toInteger("-2147483649"), INT_MIN);
    EXPECT_EQ(toInteger("99999999999999999999999999999999"), INT_MAX);
    EXPECT_EQ(toInteger("-99999999999999999999999999999999"), INT_MIN);
}

// Random bytes, valid or not, must never crash, read outside the text or give
// answers that contradict each other.
TEST(TextTest, SurvivesRandomBytes) {
    std::mt19937 random(20240131);
    std::uniform_int_distribution<int> byte(0, 255);
    const CaseInsensitiveHash hash;
    for (int round = 0; round < 3000; ++round) {
        String text(std::size_t(round % 25), '\0');
        for (char& c : text)
            c = char(byte(random));
        const std::size_t length = codePointLength(text);
        ASSERT_EQ(codePointToByteOffset(text, length), text.size());
        const String folded = foldCase(text);
        EXPECT_TRUE(isValidUtf8(folded));
        EXPECT_EQ(codePointLength(folded), length);
        EXPECT_TRUE(equalsIgnoreCase(text, folded));
        EXPECT_EQ(hash(text), hash(folded));
        EXPECT_LE(strip(text, "\u00a0 ").size(), text.size());
        EXPECT_EQ(join(split(text, "\u00b7,"), ","), replaceAll(text, "\u00b7", ","));
        toInteger(text);
        (void)parseInteger(text);
        (void)parseDouble(text);
    }
}

}  // namespace
}  // namespace melodex
