#include "melodex/music/notes.h"

#include <gtest/gtest.h>

namespace melodex {
namespace {

TEST(NotesTest, ReadsOnlyTheSeventeenNamesWithoutFallBack) {
    struct Case {
        const char* text;
        int number;
        const char* rest;
    };
    const Case cases[] = {{"Db", 1, ""},         {"Bbm", 10, "m"},   {"Amazing", 9, "mazing"},
                          {"Be", 11, "e"},       {"Cb", -1, "Cb"},   {"Fb", -1, "Fb"},
                          {"E#", -1, "E#"},      {"B#m", -1, "B#m"}, {"db", -1, "db"},
                          {"H", -1, "H"},        {"", -1, ""},       {" G", -1, " G"},
                          {"Émile", -1, "Émile"}};
    for (const Case& c : cases) {
        String rest = "stale";
        EXPECT_EQ(noteNumber(c.text, rest), c.number) << c.text;
        EXPECT_EQ(rest, c.rest) << c.text;
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
    EXPECT_TRUE(isChords("C G Am F"));
    EXPECT_TRUE(isChords("A B words"));
    EXPECT_TRUE(isChords("\tG  \t D/F#   Em "));
    EXPECT_FALSE(isChords("Amazing grace"));  // a tie
    EXPECT_FALSE(isChords("   "));
    EXPECT_FALSE(isChords("Jésus est vivant"));
}

}  // namespace
}  // namespace melodex
