#pragma once

#include "melodex/foundation/text.h"

namespace melodex {

// A font as a text style makes it: face, size in points, bold, italic and
// colour. A plain value; drawing backends turn it into their own fonts.
struct GFont {
    String face = "Arial";
    double size = 12.0;
    bool bold = false;
    bool italic = false;
    unsigned long color = 0;  // 0x00BBGGRR

    bool operator==(const GFont&) const = default;
};

}  // namespace melodex
