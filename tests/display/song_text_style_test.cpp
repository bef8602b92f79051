#include "melodex/display/song_text_style.h"

#include <tuple>

#include <gtest/gtest.h>

#include "melodex/foundation/xml.h"
#include "melodex/platform/settings_store.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

SongTextStyle loaded(const SongTextStyle& start, std::string_view elements) {
    XmlFile file;
    EXPECT_EQ(file.loadFromString("<style>" + String(elements) + "</style>"), StatusSuccess);
    SongTextStyle style = start;
    style.loadFromXml(file.root());
    return style;
}

TEST(SongTextStyleTest, FontSizeStaysBetweenMinimumAndMaximum) {
    const SongTextStyle style;  // 12 pt, 6 to 24
    EXPECT_EQ(style.font(1.0).size, 12.0);
    EXPECT_EQ(style.font(3.0).size, 24.0);
    EXPECT_EQ(style.font(0.25).size, 6.0);
    SongTextStyle crossed;
    crossed.FontMinPtSize = 30;
    crossed.FontMaxPtSize = 20;
    EXPECT_EQ(crossed.font(1.0).size, 20.0);  // the maximum wins

    SongTextStyle styled;
    styled.FontName = "Times New Roman";
    styled.FontStyle = SongTextStyle::Bold | SongTextStyle::Italic;
    styled.FontColor = 0x0000FF;
    EXPECT_EQ(styled.font(1.0), (GFont{"Times New Roman", 12.0, true, true, 0x0000FF}));
}

TEST(SongTextStyleTest, NamesAndKindsIgnoringCaseWithDefaultForUnknown) {
    EXPECT_EQ(SongTextStyle::getStyleType("chorus"), 2);
    EXPECT_EQ(SongTextStyle::getStyleType("BOOKTITLEENTRY"), 19);
    EXPECT_EQ(SongTextStyle::getStyleType("Refrain"), 0);
    EXPECT_EQ(SongTextStyle::getStyleType(""), 0);
    for (int kind = 0; kind < StyleKind::Count; ++kind)
        EXPECT_EQ(SongTextStyle::getStyleType(SongTextStyle::getStyleName(kind)), kind);
    EXPECT_EQ(SongTextStyle::getStyleName(20), "");
    EXPECT_EQ(SongTextStyle::getStyleName(-1), "");
}

TEST(SongTextStyleTest, WritesEveryFieldOrOnlyTheDifferences) {
    SongTextStyle style;
    style.FontName = "Gill & Sans";
    style.FontPtSize = 10.5;
    style.FontColor = 0x0000FF;
    style.FontStyle = SongTextStyle::Italic;
    style.Indent = 2;
    EXPECT_EQ(style.saveToText(),
              "\t\t\t<FontName>Gill &amp; Sans</FontName>\n"
              "\t\t\t<FontPtSize>10.5</FontPtSize>\n"
              "\t\t\t<FontMinPtSize>6</FontMinPtSize>\n"
              "\t\t\t<FontMaxPtSize>24</FontMaxPtSize>\n"
              "\t\t\t<FontColor>red</FontColor>\n"
              "\t\t\t<Indent>2</Indent>\n"
              "\t\t\t<Bold>0</Bold>\n"
              "\t\t\t<Italic>1</Italic>\n");
    EXPECT_EQ(style.saveToText(style), "");

    SongTextStyle base = style;
    base.FontStyle = SongTextStyle::Italic | SongTextStyle::Bold;  // style bits: both written
    base.FontMaxPtSize = 30;
    EXPECT_EQ(style.saveToText(base),
              "\t\t\t<FontMaxPtSize>24</FontMaxPtSize>\n"
              "\t\t\t<Bold>0</Bold>\n"
              "\t\t\t<Italic>1</Italic>\n");
}

TEST(SongTextStyleTest, ReadsWhatItWritesAndKeepsFieldsThatAreMissing) {
    SongTextStyle style;
    style.FontName = "Gill <Sans>";
    style.FontPtSize = 10.666666666666666;
    style.FontMinPtSize = 2.5;
    style.FontColor = 0x123456;
    style.FontStyle = SongTextStyle::Bold;
    style.Indent = -1;
    EXPECT_EQ(loaded(SongTextStyle(), style.saveToText()), style);

    SongTextStyle start;
    start.FontPtSize = 20;
    const SongTextStyle partial =
        loaded(start,
               "<fontcolor>navy</fontcolor><FontMaxPtSize>x</FontMaxPtSize>"
               "<FontMinPtSize>nan</FontMinPtSize>");
    EXPECT_EQ(partial.FontPtSize, 20.0);     // missing
    EXPECT_EQ(partial.FontMaxPtSize, 24.0);  // not a number
    EXPECT_EQ(partial.FontMinPtSize, 6.0);   // not finite
    EXPECT_EQ(partial.FontColor, 0x800000ul);
    EXPECT_EQ(loaded(start, "<FontColor>no such colour</FontColor>").FontColor, 0ul);
}

TEST(SongTextStyleTest, BoldAndItalicAreOnlyEverSetByReading) {
    SongTextStyle bold;
    bold.FontStyle = SongTextStyle::Bold;
    const std::tuple<int, const char*, int> cases[] = {
        {SongTextStyle::Bold, "<Bold>0</Bold><Italic>0</Italic>", SongTextStyle::Bold},
        {SongTextStyle::Bold, "<Italic>1</Italic>", SongTextStyle::Bold | SongTextStyle::Italic},
        {0, "<Bold>true</Bold>", SongTextStyle::Bold},
        {0, "<Bold>no</Bold><Italic></Italic>", 0},
    };
    for (const auto& [start, elements, expected] : cases) {
        SongTextStyle style;
        style.FontStyle = start;
        EXPECT_EQ(loaded(style, elements).FontStyle, expected) << elements;
    }
}

TEST(SongTextStyleTest, KeepsAStyleInTheSettingsStore) {
    const test::TempFolder folder;
    const SettingsStore store(folder.file("Settings.ini"));
    SongTextStyle style;
    style.FontName = "Verdana";
    style.FontPtSize = 13.5;
    style.FontMinPtSize = 7;
    style.FontMaxPtSize = 40;
    style.FontStyle = 3;
    style.FontColor = 0xABCDEF;
    style.Indent = 4;
    ASSERT_EQ(style.saveToRegistry("Styles\\Chord", store), StatusSuccess);
    EXPECT_EQ(store.getString("Styles\\Chord\\FontMaxPtSize"), "40");
    EXPECT_EQ(store.getString("Styles\\Chord\\FontColor"), "#efcdab");

    SongTextStyle back;
    EXPECT_TRUE(back.loadFromRegistry("Styles\\Chord", store));
    EXPECT_EQ(back, style);

    SongTextStyle untouched;
    EXPECT_FALSE(untouched.loadFromRegistry("Styles\\Verse", store));
    EXPECT_EQ(untouched, SongTextStyle());
}

}  // namespace
}  // namespace melodex
