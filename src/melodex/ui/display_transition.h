#pragma once

// How a screen changes from one image to the next: a cut, or a cross-fade
// of a given length. Passed by pointer to the image calls of ProjectorClient
// and DisplayConnection; null means a cut.

#include <string_view>

#include "melodex/foundation/text.h"

namespace melodex {

struct DisplayTransition {
    enum Type { Cut, Fade };

    // Longest fade the server accepts.
    static constexpr int MaxDurationMs = 60000;

    Type type = Cut;
    int durationMs = 0;

    DisplayTransition() = default;
    DisplayTransition(Type kind, int milliseconds) : type(kind), durationMs(milliseconds) {}

    static DisplayTransition fade(int milliseconds) { return {Fade, milliseconds}; }

    // "cut" or "fade", as the protocol writes them; false for other words.
    static String typeName(Type type);
    static bool typeFromName(std::string_view name, Type& type);

    bool operator==(const DisplayTransition&) const = default;
};

}  // namespace melodex
