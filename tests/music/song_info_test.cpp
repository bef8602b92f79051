#include "melodex/music/song_info.h"

#include <limits>
#include <tuple>

#include <gtest/gtest.h>

namespace melodex {
namespace {

SongInfo withKey(const char* key) {
    SongInfo info;
    info.setKey(key);
    return info;
}

TEST(SongInfoTest, NewAndClearedDifferInTheKey) {
    SongInfo info;
    EXPECT_EQ(info.key(), "C");
    EXPECT_EQ(info.keyNumber(0, false), 0);
    info.addIndex("Grace");
    info.addCategory("Hymn");
    info.addReference(SongReference("bible", "John 3:16"));
    info.clear();
    EXPECT_TRUE(info.attributes().empty());
    EXPECT_EQ(info.keyName(0), "C");
    EXPECT_EQ(info.keyNumber(0, false), 11);  // no note reads as -1
    EXPECT_EQ(info.getIndexCount() + info.getCategoryCount() + info.getReferenceCount(), 0);

    info.setAttribute("Title", "Old");
    info.setAttribute("tempo", 96);  // numbers are stored as text
    info.setTitle("New");            // replaces in place, keeping the first spelling
    ASSERT_EQ(info.attributes().size(), 2u);
    EXPECT_EQ(info.attributes()[0].name + "=" + info.attributes()[0].value, "Title=New");
    EXPECT_EQ(info.getAttribute("TEMPO"), "96");
}

TEST(SongInfoTest, KeyNumbersReadMinorKeysAsRelativeMajorsOnRequest) {
    // Key, transposition, the root as is and as the relative major; a key
    // without a note reads as note -1.
    const std::tuple<const char*, int, int, int> cases[] = {
        {"Am", 0, 9, 0},   {"Am", 5, 2, 5},    {"EM", 0, 4, 7}, {"Am7", 0, 9, 9}, {"Amin", 0, 9, 9},
        {"C", -1, 11, 11}, {"C", -25, 11, 11}, {"B", 1, 0, 0},  {"xyz", 2, 1, 1}};
    for (const auto& [key, transpose, plain, relative] : cases) {
        EXPECT_EQ(withKey(key).keyNumber(transpose, false), plain) << key << transpose;
        EXPECT_EQ(withKey(key).keyNumber(transpose, true), relative) << key << transpose;
    }
    EXPECT_EQ(withKey("Am").keySuffix(), "m");
    EXPECT_EQ(withKey("G/D").keySuffix(), "/D");  // the rest of the whole text
}

TEST(SongInfoTest, KeyNamesUseKeySpellingPieceByPiece) {
    // "G/D", "Am-C", "D, E" and "x" write the pieces without a note twice;
    // -30 lies beyond the expected range and still gives a name; an empty
    // key is named "C".
    const std::tuple<const char*, int, const char*> cases[] = {
        {"Am", 2, "Bm"},
        {"E", 4, "Ab"},
        {"E", -5, "B"},
        {"Db", 0, "C#"},
        {"G#m", 0, "Abm"},
        {"B", 1, "C"},
        {"C", -12, "C"},
        {"C", 12, "C"},
        {"", 3, "C"},
        {"C", -30, "F#"},
        {"G/D", 2, "A//E"},
        {"Am-C", 2, "Bm--D"},
        {"D, E", 2, "E,, E E"},
        {"x", 1, "xx"},
        {"F#", 6, "C"},
        {"Gb", 0, "F#"},
        // Found by fuzzing: the largest transpositions overflowed an int.
        {"G", std::numeric_limits<int>::max(), "D"},
        {"G", std::numeric_limits<int>::min(), "B"}};
    for (const auto& [key, transpose, name] : cases) {
        EXPECT_EQ(withKey(key).keyName(transpose), name) << key << transpose;
        SongInfo info = withKey(key);
        info.transpose(transpose);  // stores the name
        EXPECT_EQ(info.key(), name) << key << transpose;
    }
}

TEST(SongInfoTest, ReferencesNameTheirFieldsAndEscapeTheirAttributes) {
    SongReference reference;
    reference.setAttribute("TYPE", "bible");  // "type" and "value" name the fields
    reference.setAttribute("Value", "Ps 23 & 24");
    reference.setAttribute("version", "NIV");
    reference.setAttribute("VERSION", "\"KJV\"");  // replaced
    EXPECT_EQ(
        reference.writeToText(),
        "\t<reference type=\"bible\" version=\"&quot;KJV&quot;\">Ps 23 &amp; 24</reference>\n");
    EXPECT_EQ(SongInfo().writeToText(2) + SongInfo().writeToText(4), "");  // XML layouts only
}

}  // namespace
}  // namespace melodex
