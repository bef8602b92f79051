// Searching a Bible's verses for words, as a person types them.

#include "melodex/bible/bible_search.h"

#include <gtest/gtest.h>

#include "bible/bible_fixture.h"
#include "melodex/bible/bible_reference.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

TEST(BibleSearchTest, MatchesEveryWordAtTheStartOfAWord) {
    // clang-format off
    const struct { const char* words; const char* text; bool matches; } cases[] = {
        {"God so loved", "For God so loved the world", true},
        {"loved god", "For God so loved the world", true},          // any order
        {"love", "For God so loved the world", true},               // the start of a word
        {"oved", "For God so loved the world", false},              // not inside one
        {"god devil", "For God so loved the world", false},         // every word
        {"jesus", "Jésus pleura.", true},                           // accents
        {"JÉSUS", "jesus wept", true},
        {"l'eternel", "L’Éternel est mon berger", true},           // typographic apostrophe
        {"eternel", "L’Éternel est mon berger", true},             // after the apostrophe
        {"strasse", "Die Straße", true},
        {"  «berger»,  ", "mon berger", true},                      // punctuation around words
        {"σωτηρ", "Σωτήρ", true},
    };
    // clang-format on
    for (const auto& [words, text, matches] : cases)
        EXPECT_EQ(BibleSearch(words).matches(text), matches) << words << " in " << text;
    EXPECT_FALSE(BibleSearch(" ,.; ").isValid());
    EXPECT_FALSE(BibleSearch("").matches("anything"));
}

TEST(BibleSearchTest, FindsVersesInTheBiblesOrder) {
    const test::TempFolder folder;
    test::TestBible bible;
    ASSERT_EQ(bible.importFromFile(
                  folder.write("b.xml",
                               "<bible n='T'><b n='Genesis'><c n='1'><v n='1'>In the beginning</v>"
                               "<v n='2'>the earth</v></c></b><b n='John'><c n='1'>"
                               "<v n='1'>In the beginning was the Word</v></c></b></bible>")),
              0u);
    StringArray found;
    for (const BibleVerse* verse : BibleSearch("beginning").find(bible))
        found.push_back(BibleReference::label(*verse));
    EXPECT_EQ(found, (StringArray{"Genesis 1:1", "John 1:1"}));
    EXPECT_TRUE(BibleSearch("").find(bible).empty());
}

}  // namespace
}  // namespace melodex
