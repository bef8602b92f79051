#pragma once

// Decoding the bytes of a text file into UTF-8, and encoding UTF-8 for
// writing.
//
// Files in the wild come as UTF-8 with or without a byte-order mark, as
// UTF-16 with a byte-order mark, or as Windows-1252 from older Windows
// programs. decodeText() accepts all of them and always returns valid UTF-8:
//
//     TextEncoding found;
//     String text = decodeText(bytes, &found);

#include <string>
#include <string_view>

#include "melodex/foundation/text.h"

namespace melodex {

enum class TextEncoding {
    Utf8,         // no byte-order mark
    Utf8Bom,      // EF BB BF
    Utf16LE,      // FF FE
    Utf16BE,      // FE FF
    Windows1252,  // bytes that are not valid UTF-8 and carry no mark
};

// The encoding of `bytes`: by byte-order mark; else UTF-8 when the bytes are
// valid UTF-8; else Windows-1252.
TextEncoding detectEncoding(std::string_view bytes);

// The text of `bytes` as valid UTF-8, without the byte-order mark. Lone
// surrogates and a truncated last UTF-16 unit become U+FFFD.
String decodeText(std::string_view bytes, TextEncoding* detected = nullptr);
// As above; plain UTF-8 bytes, the common case, are moved through uncopied.
String decodeText(std::string&& bytes, TextEncoding* detected = nullptr);

// UTF-16 little-endian bytes of a UTF-8 text, with the byte-order mark FF FE
// in front when `withBom` is true.
std::string encodeUtf16LE(std::string_view utf8, bool withBom);

}  // namespace melodex
