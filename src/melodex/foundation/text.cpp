#include "melodex/foundation/text.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdint>

#include <utf8proc.h>

namespace melodex {

namespace {

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

char lowerAscii(char c) {
    return (c >= 'A' && c <= 'Z') ? char(c + ('a' - 'A')) : c;
}

// Membership of a code point in a set given as UTF-8 text. Sets are short
// (" \t\r\n", "/-,;."), so a scan beats building anything.
class CharacterSet {
public:
    explicit CharacterSet(std::string_view characters)
        : m_characters(characters), m_ascii(isAscii(characters)) {}

    bool contains(char32_t codePoint) const {
        if (m_ascii) {
            return codePoint < 0x80 && m_characters.find(char(codePoint)) != std::string_view::npos;
        }
        for (std::size_t pos = 0; pos < m_characters.size();) {
            if (decodeUtf8(m_characters, pos) == codePoint) return true;
        }
        return false;
    }

private:
    std::string_view m_characters;
    bool m_ascii;
};

// True when the text is at most one sign followed by a digit or a decimal
// point: from_chars would take "inf" and "nan" for numbers, and we strip a
// "+" that it does not accept, which must not let "+-1" through.
bool hasOneSignThenDigit(std::string_view text) {
    if (!text.empty() && (text.front() == '+' || text.front() == '-')) text.remove_prefix(1);
    return !text.empty() && ((text.front() >= '0' && text.front() <= '9') || text.front() == '.');
}

// The whole text, blanks around it allowed, as a number; see parseInteger().
template <typename Number>
std::optional<Number> parseNumber(std::string_view text) {
    text = trimBlanks(text);
    if (!hasOneSignThenDigit(text)) return std::nullopt;
    if (text.front() == '+') text.remove_prefix(1);
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

// Moves `pos` past one code point; ASCII, the common case, without decoding.
void skipCodePoint(std::string_view text, std::size_t& pos) {
    if (static_cast<unsigned char>(text[pos]) < 0x80) {
        ++pos;
    } else {
        decodeUtf8(text, pos);
    }
}

// The case-folded code point at `pos`, moving `pos` past it; ASCII, the
// common case, without decoding.
char32_t nextFolded(std::string_view text, std::size_t& pos) {
    const auto c = static_cast<unsigned char>(text[pos]);
    if (c < 0x80) {
        ++pos;
        return char32_t(lowerAscii(char(c)));
    }
    return foldCase(decodeUtf8(text, pos));
}

}  // namespace

// --- Code points -----------------------------------------------------------

char32_t decodeUtf8(std::string_view text, std::size_t& pos) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(pos);
    if (lead < 0x80) {
        ++pos;
        return lead;
    }
    std::size_t length;
    char32_t codePoint;
    char32_t minimum;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        codePoint = lead & 0x1F;
        minimum = 0x80;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        codePoint = lead & 0x0F;
        minimum = 0x800;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        codePoint = lead & 0x07;
        minimum = 0x10000;
    } else {
        ++pos;
        return ReplacementCharacter;
    }
    if (pos + length > text.size()) {
        ++pos;
        return ReplacementCharacter;
    }
    for (std::size_t i = 1; i < length; ++i) {
        const unsigned char next = byte(pos + i);
        if ((next & 0xC0) != 0x80) {
            ++pos;
            return ReplacementCharacter;
        }
        codePoint = (codePoint << 6) | (next & 0x3F);
    }
    if (codePoint < minimum || codePoint > 0x10FFFF ||
        (codePoint >= 0xD800 && codePoint <= 0xDFFF)) {
        ++pos;
        return ReplacementCharacter;
    }
    pos += length;
    return codePoint;
}

void appendUtf8(String& out, char32_t codePoint) {
    if ((codePoint >= 0xD800 && codePoint <= 0xDFFF) || codePoint > 0x10FFFF) {
        codePoint = ReplacementCharacter;
    }
    if (codePoint < 0x80) {
        out += char(codePoint);
    } else if (codePoint < 0x800) {
        out += char(0xC0 | (codePoint >> 6));
        out += char(0x80 | (codePoint & 0x3F));
    } else if (codePoint < 0x10000) {
        out += char(0xE0 | (codePoint >> 12));
        out += char(0x80 | ((codePoint >> 6) & 0x3F));
        out += char(0x80 | (codePoint & 0x3F));
    } else {
        out += char(0xF0 | (codePoint >> 18));
        out += char(0x80 | ((codePoint >> 12) & 0x3F));
        out += char(0x80 | ((codePoint >> 6) & 0x3F));
        out += char(0x80 | (codePoint & 0x3F));
    }
}

bool isValidUtf8(std::string_view text) {
    for (std::size_t pos = 0; pos < text.size();) {
        if (static_cast<unsigned char>(text[pos]) < 0x80) {
            ++pos;
            continue;
        }
        const std::size_t before = pos;
        // A genuine U+FFFD in the text decodes as one three-byte step.
        if (decodeUtf8(text, pos) == ReplacementCharacter && pos - before != 3) return false;
    }
    return true;
}

std::size_t codePointLength(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t pos = 0; pos < text.size(); ++count)
        skipCodePoint(text, pos);
    return count;
}

std::size_t codePointToByteOffset(std::string_view text, std::size_t index) {
    std::size_t pos = 0;
    for (std::size_t count = 0; count < index && pos < text.size(); ++count) {
        skipCodePoint(text, pos);
    }
    return pos;
}

std::size_t byteToCodePointOffset(std::string_view text, std::size_t byteOffset) {
    std::size_t count = 0;
    for (std::size_t pos = 0; pos < text.size() && pos < byteOffset; ++count) {
        skipCodePoint(text, pos);
    }
    return count;
}

char32_t codePointAt(std::string_view text, std::size_t index) {
    std::size_t pos = codePointToByteOffset(text, index);
    return pos < text.size() ? decodeUtf8(text, pos) : 0;
}

String codePointSubstring(std::string_view text, std::size_t start, std::size_t count) {
    const std::size_t from = codePointToByteOffset(text, start);
    if (count == std::string_view::npos) return String(text.substr(from));
    const std::size_t length = codePointToByteOffset(text.substr(from), count);
    return String(text.substr(from, length));
}

void insertAtCodePoint(String& text, std::size_t index, std::string_view insertion) {
    text.insert(codePointToByteOffset(text, index), insertion);
}

// --- Character properties --------------------------------------------------

bool isLetterOrDigit(char32_t codePoint) {
    if (codePoint < 0x80) {
        return (codePoint >= 'a' && codePoint <= 'z') || (codePoint >= 'A' && codePoint <= 'Z') ||
               (codePoint >= '0' && codePoint <= '9');
    }
    if (codePoint > 0x10FFFF) return false;
    switch (utf8proc_category(utf8proc_int32_t(codePoint))) {
        case UTF8PROC_CATEGORY_LU:
        case UTF8PROC_CATEGORY_LL:
        case UTF8PROC_CATEGORY_LT:
        case UTF8PROC_CATEGORY_LM:
        case UTF8PROC_CATEGORY_LO:
        case UTF8PROC_CATEGORY_ND:
        case UTF8PROC_CATEGORY_NL:
        case UTF8PROC_CATEGORY_NO:
            return true;
        default:
            return false;
    }
}

// --- Display cells ---------------------------------------------------------

int displayWidth(char32_t codePoint) {
    if (codePoint >= 0x20 && codePoint < 0x7F) return 1;
    if (codePoint > 0x10FFFF) return 1;
    return utf8proc_charwidth(utf8proc_int32_t(codePoint));
}

std::size_t displayWidth(std::string_view text) {
    std::size_t cells = 0;
    for (std::size_t pos = 0; pos < text.size();) {
        const auto c = static_cast<unsigned char>(text[pos]);
        if (c >= 0x20 && c < 0x7F) {
            ++cells;
            ++pos;
        } else {
            cells += std::size_t(displayWidth(decodeUtf8(text, pos)));
        }
    }
    return cells;
}

// --- Case ------------------------------------------------------------------

char32_t foldCase(char32_t codePoint) {
    if (codePoint < 0x80) return char32_t(lowerAscii(char(codePoint)));
    if (codePoint > 0x10FFFF) return codePoint;
    // utf8proc gives full case folding; where that expands to several code
    // points (ß to "ss") simple folding keeps the character, so we fall back
    // to its simple lower-case mapping.
    utf8proc_int32_t folded[4];
    utf8proc_int32_t boundary = 0;
    const utf8proc_ssize_t count = utf8proc_decompose_char(utf8proc_int32_t(codePoint), folded, 4,
                                                           UTF8PROC_CASEFOLD, &boundary);
    if (count == 1) return char32_t(folded[0]);
    return char32_t(utf8proc_tolower(utf8proc_int32_t(codePoint)));
}

String foldCase(std::string_view text) {
    String out;
    out.reserve(text.size());
    for (std::size_t pos = 0; pos < text.size();)
        appendUtf8(out, nextFolded(text, pos));
    return out;
}

namespace {

// Letters that have no decomposition, read as the base letters that people
// type for them: a Polish user types "l" for "ł", a Dane "o" for "ø".
std::string_view baseLetters(char32_t c) {
    switch (c) {
        case U'ł':
            return "l";
        case U'đ':
            return "d";
        case U'ø':
            return "o";
        case U'ħ':
            return "h";
        case U'ŧ':
            return "t";
        case U'ı':
            return "i";
        case U'æ':
            return "ae";
        case U'œ':
            return "oe";
        default:
            return {};
    }
}

}  // namespace

String foldForSearch(std::string_view text) {
    // Decomposing one code point at a time is enough: the combining marks,
    // the only characters that canonical ordering would move, are dropped.
    constexpr int Options = UTF8PROC_COMPAT | UTF8PROC_DECOMPOSE | UTF8PROC_CASEFOLD |
                            UTF8PROC_STRIPMARK | UTF8PROC_LUMP;
    String out;
    out.reserve(text.size());
    for (std::size_t pos = 0; pos < text.size();) {
        const auto c = static_cast<unsigned char>(text[pos]);
        if (c < 0x80) {
            out += lowerAscii(char(c));
            ++pos;
            continue;
        }
        const char32_t codePoint = decodeUtf8(text, pos);
        // Quotes that utf8proc's lumping leaves alone.
        if (codePoint == U'\u201A' || codePoint == U'\u201B' || codePoint == U'\u2032') {
            out += '\'';
            continue;
        }
        if ((codePoint >= U'\u201C' && codePoint <= U'\u201F') || codePoint == U'\u00AB' ||
            codePoint == U'\u00BB' || codePoint == U'\u2033') {
            out += '"';
            continue;
        }
        utf8proc_int32_t decomposed[32];
        utf8proc_int32_t boundary = 0;
        const utf8proc_ssize_t count = utf8proc_decompose_char(
            utf8proc_int32_t(codePoint), decomposed, 32, utf8proc_option_t(Options), &boundary);
        if (count < 0 || count > 32) {
            appendUtf8(out, codePoint);
            continue;
        }
        for (utf8proc_ssize_t i = 0; i < count; ++i) {
            if (const std::string_view base = baseLetters(char32_t(decomposed[i])); !base.empty())
                out += base;
            else
                appendUtf8(out, char32_t(decomposed[i]));
        }
    }
    return out;
}

String toLowerAscii(std::string_view text) {
    String out(text);
    for (char& c : out)
        c = lowerAscii(c);
    return out;
}

int compareIgnoreCase(std::string_view a, std::string_view b) {
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < a.size() && j < b.size()) {
        const char32_t fa = nextFolded(a, i);
        const char32_t fb = nextFolded(b, j);
        if (fa != fb) return fa < fb ? -1 : 1;
    }
    if (i < a.size()) return 1;
    if (j < b.size()) return -1;
    return 0;
}

bool equalsIgnoreCase(std::string_view a, std::string_view b) {
    // Folding never changes the length of ASCII text, so a length mismatch
    // between two ASCII texts settles it at once.
    if (a.size() != b.size() && isAscii(a) && isAscii(b)) return false;
    return compareIgnoreCase(a, b) == 0;
}

bool startsWithIgnoreCase(std::string_view text, std::string_view prefix) {
    const std::size_t length = codePointLength(prefix);
    return equalsIgnoreCase(text.substr(0, codePointToByteOffset(text, length)), prefix);
}

bool endsWithIgnoreCase(std::string_view text, std::string_view suffix) {
    const std::size_t textLength = codePointLength(text);
    const std::size_t suffixLength = codePointLength(suffix);
    if (suffixLength > textLength) return false;
    return equalsIgnoreCase(text.substr(codePointToByteOffset(text, textLength - suffixLength)),
                            suffix);
}

std::size_t CaseInsensitiveHash::operator()(std::string_view text) const {
    // FNV-1a over the folded code points, so that equal-ignoring-case texts
    // hash alike without building a folded copy.
    std::uint64_t hash = 14695981039346656037ull;
    const auto mix = [&hash](char32_t codePoint) {
        hash ^= codePoint;
        hash *= 1099511628211ull;
    };
    for (std::size_t pos = 0; pos < text.size();)
        mix(nextFolded(text, pos));
    return std::size_t(hash);
}

// --- Editing ---------------------------------------------------------------

std::string_view trimBlanks(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
        text.remove_suffix(1);
    return text;
}

String strip(std::string_view text, std::string_view characters, StripSide side) {
    const CharacterSet set(characters);
    std::size_t begin = 0;
    if (side != StripSide::End) {
        while (begin < text.size()) {
            std::size_t next = begin;
            if (!set.contains(decodeUtf8(text, next))) break;
            begin = next;
        }
    }
    std::size_t end = text.size();
    if (side != StripSide::Start) {
        // Decoding forward and remembering where the last kept code point
        // ends is simpler and safer than stepping back through UTF-8 that may
        // be malformed.
        end = begin;
        for (std::size_t pos = begin; pos < text.size();) {
            if (!set.contains(decodeUtf8(text, pos))) end = pos;
        }
    }
    return String(text.substr(begin, end - begin));
}

StringArray split(std::string_view text, std::string_view delimiters, EmptyPieces empty) {
    const CharacterSet set(delimiters);
    StringArray pieces;
    std::size_t pieceStart = 0;
    const auto emit = [&](std::size_t pieceEnd) {
        if (empty == EmptyPieces::Keep || pieceEnd > pieceStart) {
            pieces.emplace_back(text.substr(pieceStart, pieceEnd - pieceStart));
        }
    };
    for (std::size_t pos = 0; pos < text.size();) {
        const std::size_t start = pos;
        if (set.contains(decodeUtf8(text, pos))) {
            emit(start);
            pieceStart = pos;
        }
    }
    emit(text.size());
    return pieces;
}

String replaceAll(std::string_view text, std::string_view from, std::string_view to) {
    if (from.empty()) return String(text);
    String out;
    out.reserve(text.size());
    std::size_t pos = 0;
    for (std::size_t hit; (hit = text.find(from, pos)) != std::string_view::npos;) {
        out.append(text.substr(pos, hit - pos));
        out.append(to);
        pos = hit + from.size();
    }
    out.append(text.substr(pos));
    return out;
}

String join(const StringArray& pieces, std::string_view separator) {
    String out;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (i > 0) out.append(separator);
        out.append(pieces[i]);
    }
    return out;
}

String quote(std::string_view text, char quoteChar, char escapeChar) {
    String out;
    out.reserve(text.size() + 2);
    out += quoteChar;
    for (char c : text) {
        if (c == quoteChar || c == escapeChar) out += escapeChar;
        out += c;
    }
    out += quoteChar;
    return out;
}

// --- Numbers ---------------------------------------------------------------

std::optional<long long> parseInteger(std::string_view text) {
    return parseNumber<long long>(text);
}

std::optional<double> parseDouble(std::string_view text) {
    return parseNumber<double>(text);
}

int toInteger(std::string_view text, int defaultValue) {
    std::size_t pos = 0;
    while (pos < text.size() &&
           (text[pos] == ' ' || text[pos] == '\t' || text[pos] == '\r' || text[pos] == '\n')) {
        ++pos;
    }
    bool negative = false;
    if (pos < text.size() && (text[pos] == '+' || text[pos] == '-')) negative = text[pos++] == '-';
    if (pos >= text.size() || text[pos] < '0' || text[pos] > '9') return defaultValue;
    long long value = 0;
    for (; pos < text.size() && text[pos] >= '0' && text[pos] <= '9'; ++pos) {
        value = value * 10 + (text[pos] - '0');
        if (value > static_cast<long long>(INT_MAX) + 1)
            value = static_cast<long long>(INT_MAX) + 1;
    }
    if (negative) value = -value;
    return int(std::clamp<long long>(value, INT_MIN, INT_MAX));
}

String signedNumber(int value) {
    return value > 0 ? "+" + std::to_string(value) : std::to_string(value);
}

}  // namespace melodex
