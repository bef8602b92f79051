#pragma once

// What the fuzz harnesses share: a check that stops the run so that libFuzzer
// keeps the input, the oracle of what survives an XML file, and the song
// round trip (write a ".song", read it back, compare). Scratch folders are
// the tests' own TempFolder (tests/support/temp_folder.h).
//
// The oracles here are written apart from the library on purpose: a harness
// that asked the library what the library should have done would agree with
// any bug.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "melodex/foundation/text.h"

namespace melodex {
class Song;
}

namespace melodex::fuzz {

// Prints what failed and aborts, which libFuzzer reports as a finding with
// the input that caused it.
[[noreturn]] void fail(const char* file, int line, std::string_view what, std::string_view detail);

#define FUZZ_CHECK(condition, detail)                                                      \
    do {                                                                                   \
        if (!(condition)) ::melodex::fuzz::fail(__FILE__, __LINE__, #condition, (detail)); \
    } while (false)

// The text as it must read back from an XML file that the library wrote:
// every byte that does not start well-formed UTF-8, and every character that
// XML 1.0 cannot carry (C0 controls but tab, LF and CR; U+FFFE, U+FFFF;
// surrogates), becomes U+FFFD.
String xmlCarried(std::string_view text);

// Bytes shown as a C string literal, for messages.
String printable(std::string_view bytes);

// Writes the song as a ".song" file (in memory), reads it back and checks
// that nothing the format keeps was lost or changed, and that writing the
// copy gives the same bytes. The song itself is not changed.
void checkSongRoundTrip(const Song& song);

}  // namespace melodex::fuzz
