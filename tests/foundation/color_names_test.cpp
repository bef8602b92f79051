#include "melodex/foundation/color_names.h"

#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace melodex {
namespace {

constexpr Color Unset = 0xABCDEF01;  // outside the 24 colour bits: never a real answer

// The CSS colour names with their usual values, written out here independently
// of the library's table, in alphabetical order: "name rrggbb ...".
constexpr const char* CssColorTable =
    "aliceblue f0f8ff antiquewhite faebd7 aqua 00ffff aquamarine 7fffd4 azure f0ffff "
    "beige f5f5dc bisque ffe4c4 black 000000 blanchedalmond ffebcd blue 0000ff "
    "blueviolet 8a2be2 brown a52a2a burlywood deb887 cadetblue 5f9ea0 chartreuse 7fff00 "
    "chocolate d2691e coral ff7f50 cornflowerblue 6495ed cornsilk fff8dc crimson dc143c "
    "cyan 00ffff darkblue 00008b darkcyan 008b8b darkgoldenrod b8860b darkgray a9a9a9 "
    "darkgreen 006400 darkgrey a9a9a9 darkkhaki bdb76b darkmagenta 8b008b darkolivegreen 556b2f "
    "darkorange ff8c00 darkorchid 9932cc darkred 8b0000 darksalmon e9967a darkseagreen 8fbc8f "
    "darkslateblue 483d8b darkslategray 2f4f4f darkslategrey 2f4f4f darkturquoise 00ced1 "
    "darkviolet 9400d3 deeppink ff1493 deepskyblue 00bfff dimgray 696969 dimgrey 696969 "
    "dodgerblue 1e90ff firebrick b22222 floralwhite fffaf0 forestgreen 228b22 fuchsia ff00ff "
    "gainsboro dcdcdc ghostwhite f8f8ff gold ffd700 goldenrod daa520 gray 808080 green 008000 "
    "greenyellow adff2f grey 808080 honeydew f0fff0 hotpink ff69b4 indianred cd5c5c "
    "indigo 4b0082 ivory fffff0 khaki f0e68c lavender e6e6fa lavenderblush fff0f5 "
    "lawngreen 7cfc00 lemonchiffon fffacd lightblue add8e6 lightcoral f08080 lightcyan e0ffff "
    "lightgoldenrodyellow fafad2 lightgray d3d3d3 lightgreen 90ee90 lightgrey d3d3d3 "
    "lightpink ffb6c1 lightsalmon ffa07a lightseagreen 20b2aa lightskyblue 87cefa "
    "lightslategray 778899 lightslategrey 778899 lightsteelblue b0c4de lightyellow ffffe0 "
    "lime 00ff00 limegreen 32cd32 linen faf0e6 magenta ff00ff maroon 800000 "
    "mediumaquamarine 66cdaa mediumblue 0000cd mediumorchid ba55d3 mediumpurple 9370db "
    "mediumseagreen 3cb371 mediumslateblue 7b68ee mediumspringgreen 00fa9a "
    "mediumturquoise 48d1cc mediumvioletred c71585 midnightblue 191970 mintcream f5fffa "
    "mistyrose ffe4e1 moccasin ffe4b5 navajowhite ffdead navy 000080 oldlace fdf5e6 "
    "olive 808000 olivedrab 6b8e23 orange ffa500 orangered ff4500 orchid da70d6 "
    "palegoldenrod eee8aa palegreen 98fb98 paleturquoise afeeee palevioletred db7093 "
    "papayawhip ffefd5 peachpuff ffdab9 peru cd853f pink ffc0cb plum dda0dd powderblue b0e0e6 "
    "purple 800080 rebeccapurple 663399 red ff0000 rosybrown bc8f8f royalblue 4169e1 "
    "saddlebrown 8b4513 salmon fa8072 sandybrown f4a460 seagreen 2e8b57 seashell fff5ee "
    "sienna a0522d silver c0c0c0 skyblue 87ceeb slateblue 6a5acd slategray 708090 "
    "slategrey 708090 snow fffafa springgreen 00ff7f steelblue 4682b4 tan d2b48c teal 008080 "
    "thistle d8bfd8 tomato ff6347 turquoise 40e0d0 violet ee82ee wheat f5deb3 white ffffff "
    "whitesmoke f5f5f5 yellow ffff00 yellowgreen 9acd32";

struct CssColor {
    String name;
    String rgb;  // "#rrggbb"
};

std::vector<CssColor> cssColors() {
    std::vector<CssColor> colors;
    std::istringstream words(CssColorTable);
    for (CssColor color; words >> color.name >> color.rgb;) {
        color.rgb.insert(0, "#");
        colors.push_back(color);
    }
    return colors;
}

void expectRoundTrip(Color color) {
    const String name = getColorName(color);
    const Color back = getColorByName(name, Unset);
    if (back != color) ADD_FAILURE() << std::hex << color << " -> " << name << " -> " << back;
}

TEST(ColorNamesTest, ReadsHexAndDecimalForms) {
    EXPECT_EQ(makeColor(0x112, 0x134, 0x156), Color(0x563412));  // 0x00BBGGRR, extra bits dropped
    EXPECT_EQ(getColorByName("#123456", Unset), makeColor(0x12, 0x34, 0x56));
    EXPECT_EQ(getColorByName("#aBcDeF", Unset), makeColor(0xAB, 0xCD, 0xEF));
    EXPECT_EQ(getColorByName(" #000000\r\n", Unset), Color(0));
    // Older files store the colour's decimal value.
    EXPECT_EQ(getColorByName("255", Unset), makeColor(255, 0, 0));
    EXPECT_EQ(getColorByName("16711680", Unset), makeColor(0, 0, 255));
    EXPECT_EQ(getColorByName("16777215", Unset), Color(0xFFFFFF));
    EXPECT_EQ(getColorByName(" 0 ", Unset), Color(0));
}

TEST(ColorNamesTest, ReadsCssNamesIgnoringCase) {
    for (const CssColor& css : cssColors()) {
        SCOPED_TRACE(css.name);
        const Color expected = getColorByName(css.rgb, Unset);
        ASSERT_NE(expected, Unset);
        EXPECT_EQ(getColorByName(css.name, Unset), expected);
        String upper = css.name;
        for (char& c : upper)
            c = char(c - 'a' + 'A');
        EXPECT_EQ(getColorByName(upper, Unset), expected);
    }
    EXPECT_EQ(getColorByName("  CornflowerBlue\t", Unset), makeColor(0x64, 0x95, 0xED));
}

TEST(ColorNamesTest, WritesCssNamesForExactMatches) {
    // Where names share a colour, the first in alphabetical order is written
    // (aqua, not cyan; gray, not grey).
    std::map<String, String> written;
    for (const CssColor& css : cssColors())
        written.emplace(css.rgb, css.name);
    for (const auto& [rgb, name] : written) {
        EXPECT_EQ(getColorName(getColorByName(rgb, Unset)), name) << rgb;
    }
    EXPECT_EQ(cssColors().size(), 148u);
    EXPECT_EQ(written.size(), 139u);  // nine names are second spellings
    EXPECT_EQ(getColorName(makeColor(0xAB, 0xCD, 0xEF)), "#abcdef");
    EXPECT_EQ(getColorName(makeColor(255, 0, 1)), "#ff0001");
    // Bits above the colour are ignored.
    EXPECT_EQ(getColorName(0xFF0000FF), "red");
    EXPECT_EQ(getColorName(0x01563412), "#123456");
}

TEST(ColorNamesTest, GivesTheDefaultForAnythingElse) {
    const char* const garbage[] = {"",        "   ",    "reddish",  "re d",          "red blue",
                                   "#",       "#ff000", "#ff00000", "#gg0000",       "#-12345",
                                   "# 12345", "ff0000", "0xff0000", "rgb(255,0,0)",  "16777216",
                                   "-1",      "12px",   "1.5",      "\u00e9carlate", "r\u00e9d"};
    for (const char* text : garbage)
        EXPECT_EQ(getColorByName(text, Unset), Unset) << '"' << text << '"';
    EXPECT_EQ(getColorByName("nonsense", 0x123456), Color(0x123456));
}

// Every 24-bit colour must come back from its name. All 16.7 million take too
// long in a debug build, so this walks every value of each channel with the
// others at their edges, a prime stride through the whole range, and the
// neighbours of every named colour.
TEST(ColorNamesTest, EveryColorRoundTripsThroughItsName) {
    for (unsigned a = 0; a < 256; ++a) {
        for (unsigned b : {0u, 1u, 0x7Fu, 0x80u, 0xFEu, 0xFFu}) {
            expectRoundTrip(makeColor(a, b, b));
            expectRoundTrip(makeColor(b, a, b));
            expectRoundTrip(makeColor(b, b, a));
            expectRoundTrip(makeColor(a, b, 255 - b));
        }
    }
    for (Color color = 0; color <= 0xFFFFFF; color += 211)
        expectRoundTrip(color);
    expectRoundTrip(0xFFFFFF);
    for (const CssColor& css : cssColors()) {
        const Color named = getColorByName(css.rgb, Unset);
        for (int delta : {-0x10000, -0x100, -1, 0, 1, 0x100, 0x10000}) {
            const long long neighbour = static_cast<long long>(named) + delta;
            if (neighbour >= 0 && neighbour <= 0xFFFFFF) expectRoundTrip(Color(neighbour));
        }
    }
}

}  // namespace
}  // namespace melodex
