#include "melodex/foundation/text.h"

#include <algorithm>
#include <climits>
#include <random>

#include <gtest/gtest.h>

namespace melodex {
namespace {

// Lyrics as they appear in real songs: an accented Latin letter (two bytes),
// Cyrillic (two bytes each) and an emoji outside the BMP (four bytes).
const String Jesus = "J\u00e9sus", Slava = "\u0421\u043b\u0430\u0432\u0430", Pray = "a\U0001F64Fb";

TEST(TextTest, CountsIndexesAndInsertsByCharacter) {
    EXPECT_EQ(codePointLength(Pray), 3u);
    EXPECT_EQ(codePointToByteOffset(Jesus, 99), Jesus.size());
    EXPECT_EQ(byteToCodePointOffset(Pray, 3), 2u);  // inside a character: counted as started
    EXPECT_EQ(codePointAt(Pray, 1), U'\U0001F64F');
    EXPECT_EQ(codePointAt(Jesus, 5), 0u);
    EXPECT_EQ(codePointSubstring(Slava, 3) + "|" + codePointSubstring(Jesus, 1, 3) + "|" +
                  codePointSubstring(Jesus, 4, 10) + "|" + codePointSubstring(Jesus, 9, 2),
              "\u0432\u0430|\u00e9su|s|");
    String jesus = Jesus, pray = Pray, empty;  // past the end, at the end, middle, start
    for (std::size_t index : {42, 5, 2, 0})
        insertAtCodePoint(jesus, index, "|");
    insertAtCodePoint(pray, 2, "|");
    insertAtCodePoint(empty, 3, "|");
    EXPECT_EQ(jesus + pray + empty, "|J\u00e9|sus||a\U0001F64F|b|");
}

TEST(TextTest, HandlesMalformedAndRandomBytes) {
    // Truncated sequences, overlong "/", a surrogate, beyond U+10FFFF, Windows-1252.
    // clang-format off
    const std::pair<std::string, std::size_t> cases[] = {
        {"\x80", 1}, {"ab\xC3", 3}, {"a\xE2\x82z", 4}, {"\xF0\x9F\x99", 3}, {"\xC0\xAF", 2},
        {"\xE0\x80\xAF", 3}, {"\xF0\x80\x80\xAF", 4}, {"\xED\xA0\x80", 3},
        {"\xF4\x90\x80\x80", 4}, {"\xFE\xFF", 2}, {"caf\xE9", 4}};
    // clang-format on
    for (const auto& [bytes, characters] : cases) {
        EXPECT_FALSE(isValidUtf8(bytes)) << ::testing::PrintToString(bytes);
        EXPECT_EQ(codePointLength(bytes), characters) << ::testing::PrintToString(bytes);
        EXPECT_EQ(codePointSubstring(bytes, 0, characters), bytes);
    }
    EXPECT_TRUE(isValidUtf8("\xEF\xBF\xBD\xF4\x8F\xBF\xBF"));  // a real U+FFFD, U+10FFFF
    // Every length's edges; what cannot be UTF-8 (a surrogate, past U+10FFFF) becomes U+FFFD.
    String encoded;
    for (char32_t codePoint :
         {0x7F, 0x80, 0x7FF, 0x800, 0xFFFF, 0x10000, 0x10FFFF, 0xD800, 0x110000})
        appendUtf8(encoded, codePoint);
    EXPECT_EQ(encoded, "\x7F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF\uFFFD\uFFFD");
    // Random bytes never crash, are never read past, and get consistent answers.
    std::mt19937 random(20240131);
    const CaseInsensitiveHash hash;
    for (int round = 0; round < 3000; ++round) {
        String text(std::size_t(round % 25), '\0');
        for (char& c : text)
            c = char(random());
        for (std::size_t index = 0, previous = 0; index <= codePointLength(text); ++index) {
            const std::size_t byte = codePointToByteOffset(text, index);
            ASSERT_EQ(byteToCodePointOffset(text, byte), index);
            ASSERT_TRUE(index == 0 ? byte == 0 : byte > previous);
            previous = byte;
        }
        ASSERT_EQ(codePointToByteOffset(text, codePointLength(text)), text.size());
        const String folded = foldCase(text);
        EXPECT_TRUE(isValidUtf8(folded) && equalsIgnoreCase(text, folded));
        EXPECT_EQ(codePointLength(folded), codePointLength(text));
        EXPECT_EQ(hash(text), hash(folded));
        EXPECT_EQ(join(split(text, "\u00b7,"), ","), replaceAll(text, "\u00b7", ","));
        (void)(toInteger(text) + parseInteger(text).value_or(0) + parseDouble(text).value_or(0));
    }
}

TEST(TextTest, EqualityOrderAndHashAgreeIgnoringCase) {
    // Greek with both lower-case sigmas, the capital sharp s, the Kelvin sign
    // (longer in UTF-8 than the "k" it folds to). Simple folding keeps the
    // sharp s one letter; a bad byte is no letter.
    // clang-format off
    const std::pair<const char*, const char*> equal[] = {
        {"Amazing Grace", "AMAZING grace"}, {"\u00c9GLISE", "\u00e9glise"},
        {"\u0421\u041b\u0410", "\u0441\u043b\u0430"}, {"\u03a3\u039f\u03a6", "\u03c3\u03bf\u03c6"},
        {"\u03a3", "\u03c2"}, {"\u1e9e", "\u00df"}, {"\u212aey", "KEY"}};
    const std::pair<const char*, const char*> different[] = {
        {"Jesus", "J\u00e9sus"}, {"Stra\u00dfe", "STRASSE"}, {"abc", "abcd"}, {"Ver", "verse"},
        {"caf\xE9", "caf\xC3\xA9"}};
    // clang-format on
    const CaseInsensitiveHash hash;
    for (const auto& [a, b] : equal) {
        SCOPED_TRACE(String(a) + " / " + b);
        EXPECT_TRUE(equalsIgnoreCase(a, b) && compareIgnoreCase(b, a) == 0 && hash(a) == hash(b));
        EXPECT_TRUE(startsWithIgnoreCase(String(a) + "!", b) && startsWithIgnoreCase(b, a));
        EXPECT_TRUE(endsWithIgnoreCase(String("!") + a, b) && endsWithIgnoreCase(b, a));
    }
    for (const auto& [a, b] : different) {
        EXPECT_FALSE(equalsIgnoreCase(a, b) || compareIgnoreCase(a, b) == 0 ||
                     startsWithIgnoreCase(a, b) || endsWithIgnoreCase(a, b))
            << a << " / " << b;
    }
    // Folded first, then by code point: "apple" before "Banana", U+00E9 after 'z'.
    StringArray titles = {"\u00e9", "Z", "Banana", "apple", "Verse 2", "VERSE"};
    std::sort(titles.begin(), titles.end(), CaseInsensitiveLess());
    EXPECT_EQ(titles, (StringArray{"apple", "Banana", "VERSE", "Verse 2", "Z", "\u00e9"}));
    EXPECT_EQ(toLowerAscii("VERSE \u00c9GLISE\xC0"), "verse \u00c9glise\xC0");
}

TEST(TextTest, StripsSplitsReplacesAndQuotesWholeCharacters) {
    EXPECT_EQ(strip("  Amazing Grace \r\n"), "Amazing Grace");
    EXPECT_EQ(strip(" x ", " ", StripSide::Start) + strip(" x ", " ", StripSide::End), "x  x");
    EXPECT_EQ(strip("\u00a0 J\u00e9sus \u00a0", " \u00a0"), "J\u00e9sus");
    // Malformed bytes are characters of their own, never parts of a set member.
    EXPECT_EQ(strip("\u00e8\u00e9 \xC3", "\u00e9 "), "\u00e8\u00e9 \xC3");
    EXPECT_EQ(strip("\xC0\xA0x\xE2\x82  ", " "), "\xC0\xA0x\xE2\x82");  // overlong space kept
    // A CR LF pair is two delimiters: one empty piece between them when kept.
    EXPECT_EQ(split("one\r\ntwo\rthree\n", "\r\n"), (StringArray{"one", "", "two", "three", ""}));
    EXPECT_EQ(split("\r\none\r\n\ntwo\n", "\r\n", EmptyPieces::Skip), (StringArray{"one", "two"}));
    EXPECT_EQ(split("J\u00e9sus\u00b7\U0001F64F", "\u00b7/"), (StringArray{Jesus, "\U0001F64F"}));
    EXPECT_EQ(split("\u00e9", "\xA9"), StringArray{"\u00e9"});  // never inside a character
    EXPECT_EQ(split("", ","), StringArray{""});
    EXPECT_EQ(replaceAll("aaa", "aa", "b"), "ba");      // left to right, no overlap
    EXPECT_EQ(replaceAll("aaa", "a", "aa"), "aaaaaa");  // replacements are not rescanned
    EXPECT_EQ(replaceAll("abc", "", "x"), "abc");
    EXPECT_EQ(quote(R"(say "hi" C:\)"), R"("say \"hi\" C:\\")");
    EXPECT_EQ(quote("it's", '\'', '\''), "'it''s'");
}

TEST(TextTest, ParsesNumbersStrictlyOrLeniently) {
    EXPECT_EQ(parseInteger(" -7\t"), -7);
    EXPECT_EQ(parseInteger("+9223372036854775807"), LLONG_MAX);
    EXPECT_EQ(parseInteger("-9223372036854775808"), LLONG_MIN);
    for (const char* text : {"", "   ", "+", "12px", "4 2", "1.0", "0x1F", "++1", "+-1", "- 1",
                             "9223372036854775808", "-9223372036854775809", "\u0663"})
        EXPECT_FALSE(parseInteger(text).has_value()) << '"' << text << '"';
    EXPECT_EQ(parseDouble(" -0.25 "), -0.25);
    EXPECT_EQ(parseDouble("0.1"), 0.1);  // correctly rounded, not merely close
    // Words such as "nan" would let a font size of "nan" pass as a number.
    for (const char* text :
         {"", "+", "1,5", "1.5.2", "1e", "12pt", "+-1.5", "0x1p3", "nan", "inf", "-infinity"})
        EXPECT_FALSE(parseDouble(text).has_value()) << '"' << text << '"';
    // clang-format off
    const std::pair<const char*, int> lenient[] = {
        {"12px", 12}, {"\r\n +3", 3}, {"1.9", 1}, {"-0", 0}, {"large", 14}, {"- 5", 14},
        {"2147483647", INT_MAX}, {"-2147483649", INT_MIN}, {"99999999999999999999", INT_MAX}};
    // clang-format on
    for (const auto& [text, expected] : lenient)
        EXPECT_EQ(toInteger(text, 14), expected) << '"' << text << '"';
}

TEST(TextTest, FoldsForSearchAcrossCaseAccentsAndTypography) {
    // clang-format off
    const std::pair<const char*, const char*> cases[] = {
        {"Ésaïe", "esaie"},                  // accents go, case folds
        {"STRASSE Straße", "strasse strasse"},  // full folding: ß is "ss"
        {"Ｊｏｈｎ ３", "john 3"},              // full-width forms, compatibility decomposition
        {"ﬁrst", "first"},                   // ligature
        {"1\u00A0Cor", "1 cor"},              // no-break space
        {"3:16\u20134:2 \u2014 \u2212 \u2010 \uFE63", "3:16-4:2 - - - -"},  // dashes and minus
        {"\u2018it\u2019s\u2019 \u201Cso\u201D \u00ABoui\u00BB \u201Elow\u201C", "'it's' \"so\" \"oui\" \"low\""},
        {"Ørsted ŁÓDŹ Æther Œuvre", "orsted lodz aether oeuvre"},  // letters without a decomposition
        {"Ἰησοῦς Χριστός", "ιησουσ χριστοσ"},  // Greek marks go; final sigma folds to σ
        {"Иисус Йона", "иисус иона"},          // so is the breve of Й
        {"plain ascii 123", "plain ascii 123"},
    };
    // clang-format on
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(foldForSearch(text), expected) << text;
    // Bytes that are not UTF-8 become U+FFFD rather than vanishing or
    // breaking the text around them.
    EXPECT_EQ(foldForSearch(String("A\xff\xc3") + "B"), "a\uFFFD\uFFFDb");
    EXPECT_EQ(foldForSearch(""), "");
}

TEST(TextTest, CountsDisplayCells) {
    const std::pair<const char*, std::size_t> cases[] = {
        {"Amazing", 7},     {"Jésus", 5},  // precomposed é: one cell
        {"Je\u0301sus", 5},                // e and a combining acute: still one cell
        {"奇異恩典", 8},                   // wide East Asian characters: two cells each
        {"Ｇ", 2},                         // full-width forms too
        {"e\u2060qual", 5},                // a word joiner takes no cell
        {"Свят", 4},        {"", 0},
    };
    for (const auto& [text, cells] : cases)
        EXPECT_EQ(displayWidth(text), cells) << text;
    EXPECT_EQ(displayWidth(U'\t'), 0);
    EXPECT_EQ(displayWidth(std::string_view("a\xff")), 2u);  // a byte that is no UTF-8 is U+FFFD
}

TEST(TextTest, TellsLettersAndDigitsOfAnyScript) {
    for (char32_t c : {U'a', U'Z', U'7', U'ł', U'ß', U'Й', U'奇', U'٣', U'ⅷ'})
        EXPECT_TRUE(isLetterOrDigit(c)) << std::uint32_t(c);
    for (char32_t c :
         {U' ', U'\'', U'-', U'!', U'¿', U'…', U'\u0301', U'\u2060', U'€', char32_t(0x110000)})
        EXPECT_FALSE(isLetterOrDigit(c)) << std::uint32_t(c);
}

}  // namespace
}  // namespace melodex
