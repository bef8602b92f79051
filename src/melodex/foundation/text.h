#pragma once

// Text over UTF-8.
//
// A String is a std::string holding UTF-8. A "character" is a Unicode code
// point: chord offsets, text lengths used as offsets and positions in lyric
// lines count code points, never bytes, so that chords stay over the right
// letters of "Jésus" or of Cyrillic lyrics. "Ignoring case" means Unicode
// simple case folding, with a fast path for ASCII.
//
// Invalid UTF-8 never crashes these functions: a byte that does not start a
// valid sequence counts as one character (U+FFFD when decoded).
//
//     codePointLength("Jésus");                   // 5
//     displayWidth("奇異");                        // 4 cells: wide characters
//     insertAtCodePoint(line, 3, "[G]");          // before the fourth character
//     equalsIgnoreCase("ÉGLISE", "église");       // true
//     split("V1,C1,,V2", ",", EmptyPieces::Skip); // {"V1", "C1", "V2"}

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace melodex {

using String = std::string;
using StringArray = std::vector<String>;
using IntegerArray = std::vector<int>;

inline constexpr char32_t ReplacementCharacter = U'\uFFFD';

// --- Code points -----------------------------------------------------------

// Decodes the code point that starts at byte `pos` and moves `pos` past it.
// A malformed or truncated sequence yields U+FFFD and advances one byte.
// `pos` must be below text.size().
char32_t decodeUtf8(std::string_view text, std::size_t& pos);

// Appends the UTF-8 form of `codePoint`; surrogates and values above
// U+10FFFF are written as U+FFFD.
void appendUtf8(String& out, char32_t codePoint);

// True when `text` is well-formed UTF-8 (no overlong forms, no surrogates).
bool isValidUtf8(std::string_view text);

// Number of code points in `text`.
std::size_t codePointLength(std::string_view text);

// Byte offset of the code point with the given index; text.size() when the
// index is at or past the end.
std::size_t codePointToByteOffset(std::string_view text, std::size_t index);

// Number of code points that start before `byteOffset`.
std::size_t byteToCodePointOffset(std::string_view text, std::size_t byteOffset);

// The code point at `index`, or 0 when the index is past the end.
char32_t codePointAt(std::string_view text, std::size_t index);

// Up to `count` code points starting at code point `start`; empty when
// `start` is past the end.
String codePointSubstring(std::string_view text, std::size_t start,
                          std::size_t count = std::string_view::npos);

// Inserts `insertion` before the code point at `index`; an index at or past
// the end appends.
void insertAtCodePoint(String& text, std::size_t index, std::string_view insertion);

// --- Character properties --------------------------------------------------

// True for letters and digits of any script (Unicode categories L and N):
// what a search compares, as against punctuation, symbols and blanks.
bool isLetterOrDigit(char32_t codePoint);

// --- Display cells ---------------------------------------------------------

// The terminal cells a code point takes in a monospaced display, by
// utf8proc's width table: 2 for wide East Asian characters and emoji, 0 for
// combining marks, format characters (U+2060 WORD JOINER ...) and control
// characters, 1 for the rest.
int displayWidth(char32_t codePoint);

// The cells of the whole text: displayWidth("奇異恩典") is 8, that of
// "e\u0301" (e and a combining acute) is 1.
std::size_t displayWidth(std::string_view text);

// --- Case ------------------------------------------------------------------

// Simple case folding of one code point.
char32_t foldCase(char32_t codePoint);

// The whole text case-folded, for use as a lookup key.
String foldCase(std::string_view text);

// ASCII letters lowered, everything else unchanged: for file vocabulary.
String toLowerAscii(std::string_view text);

bool equalsIgnoreCase(std::string_view a, std::string_view b);

// Negative, zero or positive as `a` sorts before, with or after `b` when
// both are case-folded (code point order).
int compareIgnoreCase(std::string_view a, std::string_view b);

// The text as a search key, so that what a user types finds what a file
// holds whatever its accents, case and typography: full case folding ("ß"
// gives "ss"), compatibility decomposition with every combining mark dropped
// ("Ésaïe" gives "esaie", "ﬁ" gives "fi"), every dash and the minus sign
// become "-", typographic single quotes and apostrophes "'", typographic
// double quotes and guillemets '"', and every kind of space a blank.
// Letters without a decomposition are read as the base letters people type
// for them ("ø" o, "ł" l, "æ" ae, "œ" oe, "đ" d, "ħ" h, "ŧ" t, "ı" i).
String foldForSearch(std::string_view text);

bool startsWithIgnoreCase(std::string_view text, std::string_view prefix);
bool endsWithIgnoreCase(std::string_view text, std::string_view suffix);

// Function objects for containers keyed by text ignoring case.
struct CaseInsensitiveHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const;
};
struct CaseInsensitiveEqual {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const { return equalsIgnoreCase(a, b); }
};
struct CaseInsensitiveLess {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const {
        return compareIgnoreCase(a, b) < 0;
    }
};

// --- Editing ---------------------------------------------------------------

// The text without the spaces and tabs around it; a view into `text`.
std::string_view trimBlanks(std::string_view text);

enum class StripSide { Start, End, Both };

// Removes from the chosen side(s) every code point that is in `characters`.
String strip(std::string_view text, std::string_view characters = " \t\r\n",
             StripSide side = StripSide::Both);

enum class EmptyPieces { Keep, Skip };

// Splits at every code point that is in `delimiters`. With Keep, n
// delimiters always give n + 1 pieces (an empty text gives one empty piece);
// with Skip, empty pieces are left out.
StringArray split(std::string_view text, std::string_view delimiters,
                  EmptyPieces empty = EmptyPieces::Keep);

// Every occurrence of `from` replaced by `to`, scanning left to right; an
// empty `from` leaves the text unchanged.
String replaceAll(std::string_view text, std::string_view from, std::string_view to);

// The pieces with `separator` between them.
String join(const StringArray& pieces, std::string_view separator);

// Wraps the text in `quoteChar`, putting `escapeChar` before every quote
// character and every escape character inside it:
// quote(R"(say "hi")") gives R"("say \"hi\"")".
String quote(std::string_view text, char quoteChar = '"', char escapeChar = '\\');

// --- Numbers ---------------------------------------------------------------

// The whole text (blanks around it allowed) as a decimal integer; nullopt
// when it is not one or does not fit.
std::optional<long long> parseInteger(std::string_view text);

// The whole text (blanks around it allowed) as a decimal floating-point
// number in the "C" locale; nullopt when it is not one.
std::optional<double> parseDouble(std::string_view text);

// The lenient reading of old file formats: leading blanks, an optional sign
// and the decimal digits that follow; anything after them is ignored. Gives
// `defaultValue` when no digit is found and clamps to the range of int.
// toInteger("12px") is 12, toInteger("large") is the default.
int toInteger(std::string_view text, int defaultValue = 0);

// A change as people write it: "+2", "-3", "0".
String signedNumber(int value);

}  // namespace melodex
