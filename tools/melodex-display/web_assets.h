#pragma once

// The screen pages' HTML, script and style sheet, compiled into the program
// (web_assets.cpp is generated from web/ at build time), so that an
// installed server needs no files beside it and no network.

#include <string_view>

namespace melodex::display {

struct WebAsset {
    std::string_view name;  // "screen.html", "display.js" ...
    std::string_view contentType;
    std::string_view body;
};

// The asset of that file name in web/, or null.
const WebAsset* findWebAsset(std::string_view name);

}  // namespace melodex::display
