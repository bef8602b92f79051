#include "melodex/foundation/text_encoding.h"

#include <utility>

namespace melodex {

namespace {

// Windows-1252 differs from Latin-1 only in 0x80 to 0x9F. The five unused
// bytes there map to the C1 control of the same number, as Windows does.
constexpr char32_t Windows1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  // 80-87
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  // 88-8F
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 90-97
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,  // 98-9F
};

bool startsWith(std::string_view bytes, std::string_view prefix) {
    return bytes.substr(0, prefix.size()) == prefix;
}

String decodeUtf16(std::string_view bytes, bool bigEndian) {
    String out;
    out.reserve(bytes.size());
    const auto unitAt = [&](std::size_t i) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        return bigEndian ? char32_t((first << 8) | second) : char32_t((second << 8) | first);
    };
    std::size_t i = 0;
    for (; i + 1 < bytes.size(); i += 2) {
        const char32_t unit = unitAt(i);
        if (unit < 0x80) {
            out += char(unit);
        } else if (unit >= 0xD800 && unit <= 0xDBFF) {
            if (i + 3 < bytes.size()) {
                const char32_t low = unitAt(i + 2);
                if (low >= 0xDC00 && low <= 0xDFFF) {
                    appendUtf8(out, 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00));
                    i += 2;
                    continue;
                }
            }
            appendUtf8(out, ReplacementCharacter);  // a high surrogate on its own
        } else if (unit >= 0xDC00 && unit <= 0xDFFF) {
            appendUtf8(out, ReplacementCharacter);  // a low surrogate on its own
        } else {
            appendUtf8(out, unit);
        }
    }
    if (i < bytes.size()) appendUtf8(out, ReplacementCharacter);  // half a unit at the end
    return out;
}

String decodeWindows1252(std::string_view bytes) {
    String out;
    out.reserve(bytes.size() + bytes.size() / 4);
    for (char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            out += c;
        } else if (byte < 0xA0) {
            appendUtf8(out, Windows1252High[byte - 0x80]);
        } else {
            appendUtf8(out, byte);
        }
    }
    return out;
}

// The text of `bytes`, known to be in `encoding` (anything but plain UTF-8).
String decodeAs(std::string_view bytes, TextEncoding encoding) {
    switch (encoding) {
        case TextEncoding::Utf8Bom:
            bytes.remove_prefix(3);
            // A mark does not make the rest valid; old editors wrote a mark
            // before Windows-1252 text too.
            return isValidUtf8(bytes) ? String(bytes) : decodeWindows1252(bytes);
        case TextEncoding::Utf16LE:
            return decodeUtf16(bytes.substr(2), false);
        case TextEncoding::Utf16BE:
            return decodeUtf16(bytes.substr(2), true);
        case TextEncoding::Windows1252:
            return decodeWindows1252(bytes);
        case TextEncoding::Utf8:
            break;
    }
    return String(bytes);
}

}  // namespace

TextEncoding detectEncoding(std::string_view bytes) {
    if (startsWith(bytes, "\xEF\xBB\xBF")) return TextEncoding::Utf8Bom;
    if (startsWith(bytes, "\xFF\xFE")) return TextEncoding::Utf16LE;
    if (startsWith(bytes, "\xFE\xFF")) return TextEncoding::Utf16BE;
    return isValidUtf8(bytes) ? TextEncoding::Utf8 : TextEncoding::Windows1252;
}

String decodeText(std::string_view bytes, TextEncoding* detected) {
    const TextEncoding encoding = detectEncoding(bytes);
    if (detected) *detected = encoding;
    return encoding == TextEncoding::Utf8 ? String(bytes) : decodeAs(bytes, encoding);
}

String decodeText(std::string&& bytes, TextEncoding* detected) {
    const TextEncoding encoding = detectEncoding(bytes);
    if (detected) *detected = encoding;
    return encoding == TextEncoding::Utf8 ? std::move(bytes) : decodeAs(bytes, encoding);
}

std::string encodeUtf16LE(std::string_view utf8, bool withBom) {
    std::string out;
    out.reserve(utf8.size() * 2 + 2);
    if (withBom) out += "\xFF\xFE";
    const auto put = [&out](char32_t unit) {
        out += char(unit & 0xFF);
        out += char((unit >> 8) & 0xFF);
    };
    for (std::size_t pos = 0; pos < utf8.size();) {
        const char32_t codePoint = decodeUtf8(utf8, pos);
        if (codePoint >= 0x10000) {
            put(0xD800 + ((codePoint - 0x10000) >> 10));
            put(0xDC00 + ((codePoint - 0x10000) & 0x3FF));
        } else {
            put(codePoint);
        }
    }
    return out;
}

}  // namespace melodex
