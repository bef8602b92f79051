#include "melodex/library/song_db_text_entry.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

namespace melodex {
namespace {

TEST(SongDBTextEntryTest, BareTextsAndTheOrderOfTexts) {
    const std::pair<String, String> cases[] = {
        {"Amazing grace! (How great)", "Amazing grace How great"},
        {"!!!", ""},
        {"  O  come,\tall ye faithful\r\n", "O come all ye faithful"},
        {"Il est né, le divin Enfant", "Il est né le divin Enfant"},
        {"Psalm 23:1-6", "Psalm 23 1 6"},
        {"a\177b", "a\177b"},  // DEL is kept, as it always was
        {"", ""},
    };
    for (const auto& [text, bare] : cases) {
        SongDBTextEntry entry(nullptr, SongDBTextEntry::IndexEntry, text);
        EXPECT_EQ(entry.baretext(), bare) << text;
        EXPECT_EQ(entry.text(), text) << "the text itself is kept unchanged";
    }

    // Sorted by the text without blanks, ignoring case.
    std::vector<SongDBTextEntry> entries;
    for (const char* text : {"Be Thou my vision", "Abide with me", "amazing grace",
                             "Am azing Grace!", "Été", "été", "BE STILL MY SOUL", "10,000 Reasons"})
        entries.emplace_back(nullptr, SongDBTextEntry::Title, text);
    std::stable_sort(entries.begin(), entries.end(),
                     [](const auto& a, const auto& b) { return a.sortsBefore(b); });
    StringArray sorted;
    for (const auto& entry : entries)
        sorted.push_back(entry.text());
    // The graces differ, once the blanks go, by the "!"; "Été" and "été" are
    // equal and keep their order. Bare texts play no part.
    EXPECT_EQ(sorted,
              (StringArray{"10,000 Reasons", "Abide with me", "amazing grace", "Am azing Grace!",
                           "BE STILL MY SOUL", "Be Thou my vision", "Été", "été"}));
}

}  // namespace
}  // namespace melodex
