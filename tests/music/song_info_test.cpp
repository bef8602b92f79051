#include "melodex/music/song_info.h"

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
    info.setTitle("Amazing Grace");
    info.addIndex("Grace");
    info.addCategory("Hymn");
    info.addReference(SongReference("bible", "John 3:16"));
    info.clear();
    EXPECT_TRUE(info.attributes().empty());
    EXPECT_EQ(info.key(), "");
    EXPECT_EQ(info.keyName(0), "C");
    EXPECT_EQ(info.keyNumber(0, false), 11);  // no note reads as -1
    EXPECT_EQ(info.getIndexCount() + info.getCategoryCount() + info.getReferenceCount(), 0);
}

TEST(SongInfoTest, AttributesReplaceInPlaceIgnoringCase) {
    SongInfo info;
    EXPECT_EQ(info.getAttribute("tempo"), "");
    info.setAttribute("Title", "Old");
    info.setAttribute("tempo", 96);  // numbers are stored as text
    info.setTitle("New");
    EXPECT_EQ(info.title(), "New");
    ASSERT_EQ(info.attributes().size(), 3u);
    EXPECT_EQ(info.attributes()[1].name, "Title");  // first spelling and place kept
    EXPECT_EQ(info.getAttribute("TEMPO"), "96");
}

TEST(SongInfoTest, KeyNumbersReadMinorKeysAsRelativeMajorsOnRequest) {
    struct Case {
        const char* key;
        int transpose;
        int plain;
        int relative;
    };
    // A key without a note reads as note -1.
    const Case cases[] = {{"Am", 0, 9, 0},    {"Am", 5, 2, 5},   {"EM", 0, 4, 7},
                          {"Am7", 0, 9, 9},   {"Amin", 0, 9, 9}, {"C", -1, 11, 11},
                          {"C", -25, 11, 11}, {"B", 1, 0, 0},    {"xyz", 2, 1, 1}};
    for (const Case& c : cases) {
        EXPECT_EQ(withKey(c.key).keyNumber(c.transpose, false), c.plain) << c.key << c.transpose;
        EXPECT_EQ(withKey(c.key).keyNumber(c.transpose, true), c.relative) << c.key << c.transpose;
    }
    EXPECT_EQ(withKey("Am").keySuffix(), "m");
    EXPECT_EQ(withKey("G/D").keySuffix(), "/D");  // the rest of the whole text
}

TEST(SongInfoTest, KeyNamesUseKeySpellingPieceByPiece) {
    // "G/D", "Am-C", "D, E" and "x" write the pieces without a note twice;
    // -30 lies beyond the expected range and still gives a name.
    const std::tuple<const char*, int, const char*> cases[] = {
        {"Am", 2, "Bm"},        {"E", 4, "Ab"},   {"E", -5, "B"},     {"Db", 0, "C#"},
        {"G#m", 0, "Abm"},      {"B", 1, "C"},    {"C", -12, "C"},    {"C", 12, "C"},
        {"", 3, "C"},           {"C", -30, "F#"}, {"G/D", 2, "A//E"}, {"Am-C", 2, "Bm--D"},
        {"D, E", 2, "E,, E E"}, {"x", 1, "xx"}};
    for (const auto& [key, transpose, name] : cases) {
        EXPECT_EQ(withKey(key).keyName(transpose), name) << key << transpose;
    }
}

TEST(SongInfoTest, TransposeStoresTheKeyInKeySpelling) {
    SongInfo info = withKey("F#");
    info.transpose(6);
    EXPECT_EQ(info.key(), "C");
    info.setKey("Gb");
    info.transpose(0);
    EXPECT_EQ(info.key(), "F#");
    info.clear();
    info.transpose(3);
    EXPECT_EQ(info.key(), "C");  // an empty key is named "C" and stored so
}

TEST(SongInfoTest, WritesTheInformationBlock) {
    SongInfo info;
    info.setTitle("Rock & Roll <Live>");
    info.addIndex("Rock");
    info.addCategory("Praise & Worship");
    SongReference ref;
    ref.setAttribute("TYPE", "bible");  // "type" and "value" name the fields
    ref.setAttribute("Value", "Ps 23 & 24");
    ref.setAttribute("version", "NIV");
    ref.setAttribute("VERSION", "\"KJV\"");  // replaced, and quoted without escapes
    info.addReference(ref);

    EXPECT_EQ(info.writeToText(1),
              "\n<info>\n"
              "\t<key>C</key>\n"
              "\t<title>Rock &amp; Roll &lt;Live&gt;</title>\n"
              "\t<index>Rock</index>\n"
              "\t<category>Praise &amp; Worship</category>\n"
              "\t<reference type=\"bible\" version=\"\"KJV\"\">Ps 23 &amp; 24</reference>\n"
              "</info>\n");
    EXPECT_EQ(info.writeToText(3),
              "\n<attributes>\n"
              "\t<key>C</key>\n"
              "\t<title>Rock &amp; Roll &lt;Live&gt;</title>\n"
              "\t<reference type=\"bible\" version=\"\"KJV\"\">Ps 23 &amp; 24</reference>\n"
              "</attributes>\n");
    EXPECT_EQ(info.writeToText(2), "");
    EXPECT_EQ(info.writeToText(4), "");
}

}  // namespace
}  // namespace melodex
