#include "melodex/song/vocabulary.h"

#include <gtest/gtest.h>

namespace melodex {
namespace {

TEST(VocabularyTest, WordsRoundTripAndUnknownsGetTheDefault) {
    for (int type = SectionType::Verse; type <= SectionType::Misc; ++type)
        EXPECT_EQ(sectionTypeFromString(sectionTypeToString(type)), type) << type;
    for (int singers = SingerType::All; singers <= SingerType::Audience; ++singers)
        EXPECT_EQ(singerTypeFromString(singerTypeToString(singers)), singers) << singers;
    // Whole words ignoring case, never trimmed.
    EXPECT_EQ(sectionTypeFromString("chorus"), SectionType::Chorus);
    for (const char* word : {"", " Verse", "Chorus ", "Verses", "Pre-Chorus"})
        EXPECT_EQ(sectionTypeFromString(word), SectionType::Verse) << '"' << word << '"';
    EXPECT_EQ(sectionTypeToString(9), "Verse");
    // "Default" is written but never read back as anything but the fallback.
    EXPECT_EQ(singerTypeFromString("LADIES"), SingerType::Women);
    EXPECT_EQ(singerTypeFromString("all "), SingerType::Default);
    EXPECT_EQ(singerTypeToString(0) + singerTypeToString(42), "DefaultDefault");
}

TEST(VocabularyTest, TargetsWriteInFixedOrderAndAllReadsAsZero) {
    EXPECT_EQ(targetToString(7, " and "), "All");
    EXPECT_EQ(targetToString(0, ","), "All");
    EXPECT_EQ(targetToString(5, ","), "Leader,Audience");
    EXPECT_EQ(targetToString(8, ","), "");
    EXPECT_EQ(targetToString(8 | 6, " | "), "Band | Audience");

    EXPECT_EQ(targetFromString("Leader,All,Band"), 0);
    EXPECT_EQ(targetFromString("band,audience"), 6);
    EXPECT_EQ(targetFromString("Leader, Band"), 3);
    EXPECT_EQ(targetFromString("Leader,drums,,"), 1);
    EXPECT_EQ(targetFromString(""), 0);
}

TEST(VocabularyTest, OlderTextStyleConversionsStayAsymmetric) {
    EXPECT_EQ(textStyleFromString("Chorus"), 1);
    EXPECT_EQ(textStyleFromString("leader"), 9);
    EXPECT_EQ(textStyleFromString("AUDIENCE"), 9);
    EXPECT_EQ(textStyleFromString("ladies"), 1);
    EXPECT_EQ(textStyleToString(13), "Copyright");
    for (int style : {1, 4, 8, 14, -1})
        EXPECT_EQ(textStyleToString(style), "Verse");
}

}  // namespace
}  // namespace melodex
