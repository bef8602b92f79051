#include "melodex/music/notes.h"

#include <tuple>

#include <gtest/gtest.h>

namespace melodex {
namespace {

TEST(NotesTest, ReadsOnlyTheSeventeenNamesWithoutFallBack) {
    const std::tuple<const char*, int, const char*> cases[] = {
        {"Db", 1, ""},         {"Bbm", 10, "m"},   {"Amazing", 9, "mazing"},
        {"Be", 11, "e"},       {"Cb", -1, "Cb"},   {"Fb", -1, "Fb"},
        {"E#", -1, "E#"},      {"B#m", -1, "B#m"}, {"db", -1, "db"},
        {"H", -1, "H"},        {"", -1, ""},       {" G", -1, " G"},
        {"Émile", -1, "Émile"}};
    for (const auto& [text, number, rest] : cases) {
        String remainder = "stale";
        EXPECT_EQ(noteNumber(text, remainder), number) << text;
        EXPECT_EQ(remainder, rest) << text;
    }
}

TEST(NotesTest, SpellingTablesKeepTheirHouseIrregularities) {
    EXPECT_EQ(chordNoteName(0, 8), "G#");
    EXPECT_EQ(keyNoteName(8), "Ab");
    EXPECT_EQ(chordNoteName(5, 6), "F#");  // key of F
    EXPECT_EQ(chordNoteName(8, 1), "Db");  // key of Ab
    for (int key = 0; key < 12; ++key)
        EXPECT_NE(chordNoteName(key, 10), "A#") << key;
    EXPECT_EQ(chordNoteName(12, -1), "B");
}

TEST(NotesTest, ChordLinesNeedMoreChordTokensThanWords) {
    for (const char* chords : {"C G Am F", "A B words", "\tG  \t D/F#   Em "})
        EXPECT_TRUE(isChords(chords)) << chords;
    // "Amazing grace" is a tie.
    for (const char* words : {"Amazing grace", "   ", "Jésus est vivant"})
        EXPECT_FALSE(isChords(words)) << words;
}

}  // namespace
}  // namespace melodex
