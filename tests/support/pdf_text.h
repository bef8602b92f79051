#pragma once

// Reading back a PDF that the library or the program made: its text through
// poppler's pdftotext, when the test program was built knowing where it is
// (MELODEX_PDFTOTEXT).

#include <cstdio>
#include <optional>
#include <string>

#include "melodex/foundation/text.h"

namespace melodex::test {

// The text of the PDF at `path`, page after page with a form feed after
// each; nullopt when pdftotext is not there or fails.
inline std::optional<String> pdfText(const String& path) {
#ifdef MELODEX_PDFTOTEXT
    const std::string command =
        std::string("'") + MELODEX_PDFTOTEXT + "' -q -enc UTF-8 '" + path + "' -";
    std::FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) return std::nullopt;
    String text;
    char buffer[4096];
    std::size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0)
        text.append(buffer, got);
    if (::pclose(pipe) != 0) return std::nullopt;
    return text;
#else
    (void)path;
    return std::nullopt;
#endif
}

}  // namespace melodex::test
