#pragma once

// Colours and their names as display profiles store them.
//
// A Color is an RGB value laid out as 0x00BBGGRR. getColorName() gives the
// CSS colour name for an exact match ("red", "cornflowerblue") and
// "#rrggbb" otherwise; getColorByName() reads those names (ignoring case),
// "#rrggbb" and a decimal number, so that every 24-bit colour round-trips.

#include <string_view>

#include "melodex/foundation/text.h"

namespace melodex {

using Color = unsigned long;

inline constexpr Color makeColor(unsigned red, unsigned green, unsigned blue) {
    return Color(red & 0xFF) | (Color(green & 0xFF) << 8) | (Color(blue & 0xFF) << 16);
}
inline constexpr unsigned redOf(Color color) {
    return unsigned(color & 0xFF);
}
inline constexpr unsigned greenOf(Color color) {
    return unsigned((color >> 8) & 0xFF);
}
inline constexpr unsigned blueOf(Color color) {
    return unsigned((color >> 16) & 0xFF);
}

// The colour's name; bits above the 24 colour bits are ignored.
String getColorName(Color color);

// The colour a name stands for, or `defaultColor` when the text is none of
// the accepted forms.
Color getColorByName(std::string_view name, Color defaultColor);

}  // namespace melodex
