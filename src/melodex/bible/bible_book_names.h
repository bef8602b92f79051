#pragma once

// The 66 English book names of the Bible and their common abbreviations.
//
// The names are the file names of a ".bbl" folder ("Song of Songs.bbl",
// "1 Samuel.bbl") and the book titles an import gives; the reference parser
// matches them, and the abbreviations, against what a user types:
//
//     englishBookName(43);                  // "John"
//     bookNameAbbreviations(43);            // {"jn", "jhn", "joh"}
//     bookNameKey("1st Cor.");              // "1cor"

#include <span>
#include <string_view>

#include "melodex/foundation/text.h"

namespace melodex {

inline constexpr int BibleBookNameCount = 66;
inline constexpr int OldTestamentBookCount = 39;

// The English name of the book with that number in the Bible's order (1 is
// Genesis, 66 Revelation); empty for any other number.
std::string_view englishBookName(int number);

// The common abbreviations of the book with that number, written as
// bookNameKey() gives them; empty for any other number.
std::span<const std::string_view> bookNameAbbreviations(int number);

// A book name as a key for matching: folded for search (case and accents),
// a leading "I", "II", "III", "1st", "First" ... written as a digit, and
// only letters and digits kept ("II Kings" and "2 Kgs." give "2kings" and
// "2kgs").
String bookNameKey(std::string_view name);

}  // namespace melodex
