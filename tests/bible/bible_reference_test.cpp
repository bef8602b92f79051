// References as people write them, resolved against a Bible: every case is
// one row of a table.

#include "melodex/bible/bible_reference.h"

#include <gtest/gtest.h>

#include "bible/bible_fixture.h"
#include "melodex/bible/bible_book_names.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using test::TempFolder;
using test::TestBible;
using test::xmlBible;

// The verses as runs: "John 3:16-18, John 4:1".
String runs(const std::vector<BibleVerse*>& verses) {
    StringArray out;
    for (std::size_t i = 0; i < verses.size();) {
        std::size_t end = i;
        while (end + 1 < verses.size() && verses[end + 1]->chapter() == verses[i]->chapter() &&
               toInteger(verses[end + 1]->number()) == toInteger(verses[end]->number()) + 1)
            ++end;
        String run = BibleReference::label(*verses[i]);
        if (end > i) run += "-" + verses[end]->number();
        out.push_back(run);
        i = end + 1;
    }
    return join(out, ", ");
}

class BibleReferenceTest : public ::testing::Test {
protected:
    BibleReferenceTest() {
        // clang-format off
        const String path = m_folder.write("test.xml", xmlBible("Test", {
            {"Genesis", 50, 31}, {"Judges", 21, 25}, {"Job", 42, 22}, {"Psalms", 150, 20},
            {"Song of Songs", 8, 17}, {"Joel", 3, 21}, {"Jonah", 4, 17}, {"John", 21, 36},
            {"Romans", 16, 39}, {"1 Corinthians", 16, 20}, {"Philippians", 4, 23},
            {"Philemon", 1, 25}, {"1 John", 5, 21}, {"3 John", 1, 15}, {"Jude", 1, 25},
            {"Revelation", 22, 21}}));
        // clang-format on
        EXPECT_EQ(m_bible.importFromFile(path), 0u);
    }

    // What the text resolves to, or "error: " and the reason.
    String resolve(std::string_view text,
                   BibleReference::Style style = BibleReference::Style::Standard) {
        String error;
        const std::optional<BibleReference> reference = BibleReference::parse(text, style, &error);
        if (!reference) return "error: " + error;
        const std::vector<BibleVerse*> verses = reference->resolve(m_bible, &error);
        return verses.empty() ? "error: " + error : runs(verses);
    }

    TempFolder m_folder;
    TestBible m_bible;
};

TEST_F(BibleReferenceTest, ResolvesWhatPeopleWrite) {
    using enum BibleReference::Style;
    // clang-format off
    const struct { const char* text; BibleReference::Style style; const char* expected; } cases[] = {
        {"John 3:16",               Standard, "John 3:16"},
        {"John 3:16-18",            Standard, "John 3:16-18"},
        {"John 3:16–4:2",           Standard, "John 3:16-36, John 4:1-2"},  // en dash
        {"John 3:16—18",            Standard, "John 3:16-18"},              // em dash
        {"John 3:16\u221218",       Standard, "John 3:16-18"},              // minus sign
        {"John 3:16\u201218",       Standard, "John 3:16-18"},              // figure dash
        {"Gen 1:1,3,5",             Standard, "Genesis 1:1, Genesis 1:3, Genesis 1:5"},
        {"Gen 1:1, 3-5",            Standard, "Genesis 1:1, Genesis 1:3-5"},
        {"Gen 1:31-2:2",            Standard, "Genesis 1:31, Genesis 2:1-2"},
        {"1 Cor 13:4-5; Rom 8:28",  Standard, "1 Corinthians 13:4-5, Romans 8:28"},
        {"Rom 8:28; 12:1",          Standard, "Romans 8:28, Romans 12:1"},  // the book carries on
        {"Ps 23",                   Standard, "Psalms 23:1-20"},
        {"Ps 23-24",                Standard, "Psalms 23:1-20, Psalms 24:1-20"},
        {"Ps 23, 24:2",             Standard, "Psalms 23:1-20, Psalms 24:2"},
        {"John 3",                  Standard, "John 3:1-36"},
        {"Jude 3",                  Standard, "Jude 1:3"},                  // one chapter: a verse
        {"Jude 3-5",                Standard, "Jude 1:3-5"},
        {"Jude 1:3",                Standard, "Jude 1:3"},
        {"Jude",                    Standard, "Jude 1:1-25"},
        {"3 John 4",                Standard, "3 John 1:4"},
        {"Philem 2",                Standard, "Philemon 1:2"},
        {"Phil 1:1",                Standard, "Philippians 1:1"},           // not Philemon
        {"Jn 3:16",                 Standard, "John 3:16"},
        {"JOHN 3:16",               Standard, "John 3:16"},
        {"jóhn3:16",                Standard, "John 3:16"},                 // case, accents, no blank
        {"John 3.16",               Standard, "John 3:16"},
        {"John 3:16a",              Standard, "John 3:16"},
        {"1Cor 13:4",               Standard, "1 Corinthians 13:4"},
        {"I Cor 13:4",              Standard, "1 Corinthians 13:4"},
        {"First Corinthians 13:4",  Standard, "1 Corinthians 13:4"},
        {"1st Cor. 13:4",           Standard, "1 Corinthians 13:4"},
        {"1 Jn 1:9",                Standard, "1 John 1:9"},
        {"Song 1:2",                Standard, "Song of Songs 1:2"},
        {"Song of Solomon 1:2",     Standard, "Song of Songs 1:2"},
        {"Rev 1:8",                 Standard, "Revelation 1:8"},
        {"Revelations 1:8",         Standard, "Revelation 1:8"},
        {"Joh 3:16",                Standard, "John 3:16"},
        {"  John 3 : 16 ;",         Standard, "John 3:16"},
        // The European style: "," before the verse, "." between verses.
        {"Joh 3,16",                European, "John 3:16"},
        {"Joh 3,16-18.20",          European, "John 3:16-18, John 3:20"},
        {"1 Cor 13,4-7; Rom 8,28",  European, "1 Corinthians 13:4-7, Romans 8:28"},
        {"Gen. 1,1",                European, "Genesis 1:1"},
        {"Joh 3:16",                European, "John 3:16"},
        // Nothing outside the Bible is ever rounded to what is there.
        {"Gen 51:1",       Standard, "error: Genesis has no chapter 51; the last is 50"},
        {"John 3:99",      Standard, "error: John 3 has no verse 99; the last is 36"},
        {"John 3:16-99",   Standard, "error: John 3 has no verse 99; the last is 36"},
        {"John 3:36-4:99", Standard, "error: John 4 has no verse 99; the last is 36"},
        {"Jude 26",        Standard, "error: Jude 1 has no verse 26; the last is 25"},
        {"Jude 2:1",       Standard, "error: Jude has no chapter 2; the last is 1"},
        {"John 3:18-16",   Standard, "error: the range John 3:18-16 runs backwards"},
        {"John 4-3",       Standard, "error: the range John 4-3 runs backwards"},
        {"Ex 1:1",         Standard, "error: Test has no book Exodus"},
        {"Jo 1:1",         Standard, "error: \"Jo\" could be Job, Joel, Jonah, John, Joshua; write more of the name"},
        {"Jud 1",          Standard, "error: \"Jud\" could be Judges, Jude; write more of the name"},
        {"Xyz 1:1",        Standard, "error: no book of Test is called \"Xyz\""},
        {"3:16",           Standard, "error: \"3:16\" names no book"},
        {"",               Standard, "error: no reference was given"},
        {" ; ",            Standard, "error: no reference was given"},
        {"John 3:16x",     Standard, "error: \"John 3:16x\" is not a reference: \"x\" is not understood"},
        {"John 3:",        Standard, "error: \"John 3:\" is not a reference: the verse number is missing"},
        {"John 3:16-",     Standard, "error: \"John 3:16-\" is not a reference: a number is missing"},
        {"John 3 16",      Standard, "error: \"John 3 16\" is not a reference: a \",\" or \";\" is missing"},
        {"John 0:1",       Standard, "error: \"John 0:1\" is not a reference: chapters and verses count from 1"},
        {"John 99999999999:1", Standard, "error: \"John 99999999999:1\" is not a reference: a number is too large"},
        {"John 3,16",      Standard, "John 3:1-36, John 16:1-36"},  // "," lists chapters here
        {"Gen 3,51",       Standard, "error: Genesis has no chapter 51; the last is 50"},
    };
    // clang-format on
    for (const auto& [text, style, expected] : cases)
        EXPECT_EQ(resolve(text, style), expected) << text;
}

TEST_F(BibleReferenceTest, ParsesWithoutABible) {
    const std::optional<BibleReference> reference =
        BibleReference::parse("1 Cor 13:4-5; 14; Ps 23-24:3, 5");
    ASSERT_TRUE(reference);
    const std::vector<BiblePassage>& passages = reference->passages();
    ASSERT_EQ(passages.size(), 3u);
    EXPECT_EQ(passages[0].book, "1 Cor");
    EXPECT_EQ(passages[0].ranges, (std::vector<BibleVerseRange>{{13, 4, 13, 5}}));
    EXPECT_EQ(passages[1].book, "1 Cor");
    EXPECT_EQ(passages[1].ranges, (std::vector<BibleVerseRange>{{14, 0, 14, 0}}));
    EXPECT_EQ(passages[2].book, "Ps");
    EXPECT_EQ(passages[2].ranges, (std::vector<BibleVerseRange>{{23, 0, 24, 3}, {24, 5, 24, 5}}));
}

TEST_F(BibleReferenceTest, FindsBooksOfOtherLanguagesByTheirPlace) {
    // A Bible of all 66 books titled in German: its own titles and the
    // English names both find them.
    std::vector<test::BookShape> books;
    for (int number = 1; number <= BibleBookNameCount; ++number)
        books.push_back({"Buch " + std::to_string(number), 1, 2});
    books[42].title = "Johannes";
    books[18].title = "Psalmen";
    TestBible german;
    ASSERT_EQ(german.importFromFile(m_folder.write("de.xml", xmlBible("Luther", books))), 0u);
    String error;
    EXPECT_EQ(BibleReference::findBook(german, "Johannes", &error)->title(), "Johannes");
    EXPECT_EQ(BibleReference::findBook(german, "Joh", &error)->title(), "Johannes");
    EXPECT_EQ(BibleReference::findBook(german, "John", &error)->title(), "Johannes");
    EXPECT_EQ(BibleReference::findBook(german, "Ps", &error)->title(), "Psalmen");
    EXPECT_EQ(BibleReference::findBook(german, "Rev", &error)->title(), "Buch 66");
    EXPECT_EQ(BibleReference::findBook(german, "Buch 12", &error)->title(), "Buch 12");

    EXPECT_EQ(bookNameKey("II Kings"), "2kings");
    EXPECT_EQ(bookNameKey("Isaiah"), "isaiah");  // no ordinal inside a word
    EXPECT_EQ(bookNameKey("I"), "i");
}

TEST_F(BibleReferenceTest, ABookWithOneLaterChapterIsNoOneChapterBook) {
    // An excerpt that holds 1 Corinthians 13 alone, as sample Bibles do, and
    // a chapter whose verses did not read.
    TestBible excerpt;
    ASSERT_EQ(excerpt.importFromFile(m_folder.write(
                  "excerpt.xml", "<bible n=\"Excerpt\"><b n=\"1 Corinthians\"><c n=\"13\">"
                                 "<v n=\"1\">Though I speak</v><v n=\"2\">And though</v></c>"
                                 "</b><b n=\"Jude\"><c n=\"1\"></c></b></bible>")),
              0u);
    String error;
    const auto resolve = [&](std::string_view text) {
        error.clear();
        return runs(BibleReference::parse(text)->resolve(excerpt, &error));
    };
    EXPECT_EQ(resolve("1 Cor 13"), "1 Corinthians 13:1-2");
    EXPECT_EQ(resolve("1 Cor 12"), "");
    EXPECT_EQ(error, "1 Corinthians has no chapter 12 in Excerpt, which holds 1 of its chapters");
    EXPECT_EQ(resolve("Jude"), "");
    EXPECT_EQ(error, "Excerpt holds no verse of that passage");
}

}  // namespace
}  // namespace melodex
