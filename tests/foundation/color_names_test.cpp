#include "melodex/foundation/color_names.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <map>
#include <vector>

#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace melodex {
namespace {

constexpr Color Unset = 0xABCDEF01;  // outside the 24 colour bits: never a real answer

// The CSS colour names and their "#rrggbb" values, in alphabetical order.
std::vector<std::pair<String, String>> cssColors() {
    std::vector<std::pair<String, String>> colors;
    std::ifstream in(test::testDataPath("colors/css_colors.txt"));
    for (String name, rgb; in >> name >> rgb;)
        colors.emplace_back(name, "#" + rgb);
    return colors;
}

TEST(ColorNamesTest, ReadsAndWritesNamesHexAndDecimal) {
    std::map<String, String> written;  // where names share a colour, the first is written
    for (const auto& [name, rgb] : cssColors()) {
        const Color color = getColorByName(rgb, Unset);
        String upper = name;
        std::transform(upper.begin(), upper.end(), upper.begin(), ::toupper);
        EXPECT_NE(color, Unset) << rgb;
        EXPECT_TRUE(getColorByName(name, Unset) == color && getColorByName(upper, Unset) == color)
            << name;
        EXPECT_TRUE(!written.emplace(rgb, name).second || getColorName(color) == name) << name;
    }
    EXPECT_EQ(written.size(), 139u);                 // of 148 names, nine are second spellings
    EXPECT_EQ(getColorName(0xFF0100FF), "#ff0001");  // bits above it are ignored
    // Older files store the colour's decimal value.
    // clang-format off
    const std::pair<const char*, Color> readable[] = {
        {"#aBcDeF", 0xEFCDAB}, {" #000000\r\n", 0}, {"  CornflowerBlue\t", 0xED9564},
        {"255", 0x0000FF}, {"16711680", 0xFF0000}, {"16777215", 0xFFFFFF}, {" 0 ", 0}};
    // clang-format on
    for (const auto& [text, color] : readable)
        EXPECT_EQ(getColorByName(text, Unset), color) << '"' << text << '"';
    for (const char* text :
         {"",         "   ",     "reddish", "re d",    "red blue",      "#",        "#ff000",
          "#ff00000", "#gg0000", "#-12345", "# 12345", "ff0000",        "0xff0000", "rgb(255,0,0)",
          "16777216", "-1",      "12px",    "1.5",     "\u00e9carlate", "r\u00e9d"})
        EXPECT_EQ(getColorByName(text, Unset), Unset) << '"' << text << '"';
}

// Every 24-bit colour must come back from its name. All 16.7 million take too
// long in a debug build: a prime stride through the range and the neighbours
// of every named colour (the lookup must not snap to a name nearby).
TEST(ColorNamesTest, EveryColorRoundTripsThroughItsName) {
    std::vector<Color> colors = {0xFFFFFF};
    for (Color color = 0; color <= 0xFFFFFF; color += 211)
        colors.push_back(color);
    for (const auto& [name, rgb] : cssColors()) {
        for (int delta : {-0x10000, -0x100, -1, 1, 0x100, 0x10000})
            colors.push_back(getColorByName(rgb, Unset) + delta);
    }
    for (const Color color : colors) {
        const String name = getColorName(color);
        if (color <= 0xFFFFFF && getColorByName(name, Unset) != color) ADD_FAILURE() << name;
    }
}

}  // namespace
}  // namespace melodex
