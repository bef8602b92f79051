#include "melodex/library/song_db_text_entry.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

namespace melodex {
namespace {

TEST(SongDBTextEntryTest, BareTextKeepsLettersDigitsAndWhatIsBeyondAscii) {
    struct Case {
        String text;
        String bare;
    };
    const Case cases[] = {
        {"Amazing grace! (How great)", "Amazing grace How great"},
        {"!!!", ""},
        {"  O  come,\tall ye faithful\r\n", "O come all ye faithful"},
        {"'Tis so sweet to trust in Jesus", "Tis so sweet to trust in Jesus"},
        {"Il est né, le divin Enfant", "Il est né le divin Enfant"},
        {"Слава Отцу и Сыну", "Слава Отцу и Сыну"},
        {"Psalm 23:1-6", "Psalm 23 1 6"},
        {String("a\x7f"
                "b",
                3),
         String("a\x7f"
                "b",
                3)},
        {"", ""},
    };
    for (const Case& c : cases) {
        SongDBTextEntry entry(nullptr, SongDBTextEntry::IndexEntry, c.text);
        EXPECT_EQ(entry.baretext(), c.bare) << c.text;
        EXPECT_EQ(entry.text(), c.text) << "the text itself is kept unchanged";
    }
}

TEST(SongDBTextEntryTest, SortsByTextWithoutBlanksIgnoringCase) {
    const StringArray texts{"Be Thou my vision", "Abide with me", "amazing grace",
                            "Am azing Grace!",   "Été",           "été",
                            "BE STILL MY SOUL",  "10,000 Reasons"};
    std::vector<SongDBTextEntry> entries;
    for (const String& text : texts)
        entries.emplace_back(nullptr, SongDBTextEntry::Title, text);
    std::stable_sort(entries.begin(), entries.end(),
                     [](const auto& a, const auto& b) { return a.sortsBefore(b); });
    StringArray sorted;
    for (const auto& entry : entries)
        sorted.push_back(entry.text());
    // "amazing grace" and "Am azing Grace!" differ only after the blanks go
    // by the "!"; "Été" and "été" are equal and keep their order.
    EXPECT_EQ(sorted,
              (StringArray{"10,000 Reasons", "Abide with me", "amazing grace", "Am azing Grace!",
                           "BE STILL MY SOUL", "Be Thou my vision", "Été", "été"}));
    EXPECT_EQ(entries[2].sortKey(), "amazinggrace");
}

}  // namespace
}  // namespace melodex
