#pragma once

// The display server's state as a controller sees it: for each screen
// (the projection screen `main` and the band's `stage` screen) the
// background and foreground image with their modes and transitions, the
// blank state, the stage text, how many pages show the screen and which
// state they last reported as on screen. `seq` numbers the server's changes;
// ProjectorClient keeps the last status it received.
//
// Image modes are the server's: 0 fill, 1 fit, 2 stretch, 3 centre
// (ImageMode). The server keeps its own state in this form too and sends it
// with toJson(); a client reads it with fromJson().

#include <array>
#include <cstdint>
#include <string_view>

#include "melodex/foundation/text.h"
#include "melodex/ui/display_stage.h"
#include "melodex/ui/display_transition.h"

namespace melodex {

enum class DisplayScreen { Main, Stage };
inline constexpr int DisplayScreenCount = 2;

enum class DisplayBlank { None, Black, White, Background };

enum class DisplayLayer { Foreground, Background };

namespace ImageMode {
inline constexpr int Fill = 0;     // covers the screen, cropped
inline constexpr int Fit = 1;      // wholly visible, letterboxed
inline constexpr int Stretch = 2;  // covers the screen, aspect not kept
inline constexpr int Centre = 3;   // its own size, in the middle
inline constexpr int Last = Centre;
}  // namespace ImageMode

// The protocol's words: "main", "stage"; "none", "black", "white",
// "background"; "foreground", "background". The readers answer false for
// other words and leave `out` alone.
String screenName(DisplayScreen screen);
bool screenFromName(std::string_view name, DisplayScreen& out);
String blankName(DisplayBlank blank);
bool blankFromName(std::string_view name, DisplayBlank& out);
String layerName(DisplayLayer layer);
bool layerFromName(std::string_view name, DisplayLayer& out);
// "fill", "fit", "stretch", "centre" ("center" too, and the numbers 0 to 3).
String imageModeName(int mode);
bool imageModeFromName(std::string_view name, int& out);

struct DisplayLayerState {
    String path;  // absolute path on the server's machine; empty: no image
    String url;   // where the server's pages fetch it ("/image/3")
    int mode = ImageMode::Fill;
    DisplayTransition transition;
    bool operator==(const DisplayLayerState&) const = default;
};

struct DisplayScreenState {
    DisplayLayerState background{{}, {}, ImageMode::Fill, {}};
    DisplayLayerState foreground{{}, {}, ImageMode::Fit, {}};
    DisplayBlank blank = DisplayBlank::None;
    bool hasStage = false;
    DisplayStage stage;
    int viewers = 0;            // pages showing the screen now
    std::int64_t shownSeq = 0;  // last seq a page reported on screen

    DisplayLayerState& layer(DisplayLayer which) {
        return which == DisplayLayer::Foreground ? foreground : background;
    }
    const DisplayLayerState& layer(DisplayLayer which) const {
        return which == DisplayLayer::Foreground ? foreground : background;
    }

    // The protocol's SCREEN object; fromJson() is false for anything that is
    // not one (this object is then unchanged).
    String toJson() const;
    bool fromJson(std::string_view json);

    bool operator==(const DisplayScreenState&) const = default;
};

class DisplayStatus {
public:
    std::int64_t seq = 0;
    std::array<DisplayScreenState, DisplayScreenCount> screens;

    DisplayScreenState& screen(DisplayScreen which) { return screens[std::size_t(which)]; }
    const DisplayScreenState& screen(DisplayScreen which) const {
        return screens[std::size_t(which)];
    }

    // The `status` reply's result: {"seq":..., "screens":{...}}.
    String toJson() const;
    // False, leaving this object unchanged, for text that is not such an
    // object; members it does not know are ignored.
    bool fromJson(std::string_view json);

    bool operator==(const DisplayStatus&) const = default;
};

}  // namespace melodex
