#pragma once

// The small integer codes that sections and lines carry (section type,
// singers, targets) and the words that song files and display profiles store
// for them.
//
//     sectionTypeFromString("chorus");                     // SectionType::Chorus
//     singerTypeToString(SingerType::Women);               // "Women"
//     targetToString(Target::Leader | Target::Audience, ","); // "Leader,Audience"
//
// The words are file vocabulary: fixed, English, never translated. Reading
// compares whole words ignoring case, without trimming; an unknown word gives
// the documented default. The functions keep no state and may be called from
// any thread.

#include <string_view>

#include "melodex/foundation/text.h"

namespace melodex {

// Section types. Any other code is written as "Verse"; there is no type 0.
namespace SectionType {
inline constexpr int Verse = 1;
inline constexpr int Chorus = 2;
inline constexpr int Bridge = 3;
inline constexpr int PreChorus = 4;
inline constexpr int Tag = 5;
inline constexpr int Intro = 6;
inline constexpr int Ending = 7;
inline constexpr int Misc = 8;
}  // namespace SectionType

// Singer types of sections and lines; a line with Default follows its section.
namespace SingerType {
inline constexpr int Default = 0;
inline constexpr int All = 1;
inline constexpr int Women = 2;
inline constexpr int Men = 3;
inline constexpr int Leader = 4;
inline constexpr int Choir = 5;
inline constexpr int Children = 6;
inline constexpr int Adults = 7;
inline constexpr int Congregation = 8;
inline constexpr int Audience = 9;
}  // namespace SingerType

// Target bits: for whom a section is meant. All (0) and Everyone (all three
// bits) both mean everyone; reading "All" gives 0.
namespace Target {
inline constexpr int All = 0;
inline constexpr int Leader = 1;
inline constexpr int Band = 2;
inline constexpr int Audience = 4;
inline constexpr int Everyone = Leader | Band | Audience;
}  // namespace Target

// "Verse", "Chorus" ... "Misc"; "Verse" for any other code.
String sectionTypeToString(int type);

// The section type of a word; SectionType::Verse for an unknown word.
int sectionTypeFromString(std::string_view word);

// "Default", "All", "Women" ... "Audience"; "Default" for any other code.
String singerTypeToString(int singers);

// The singer type of a word ("ladies" reads as Women); SingerType::Default
// for an unknown word, "Default" itself among them.
int singerTypeFromString(std::string_view word);

// The words of the target bits joined by `separator`, in the order Leader,
// Band, Audience; "All" for 0 and for Everyone. Bits above 4 are ignored, so
// 8 gives an empty text.
String targetToString(int bits, std::string_view separator);

// The target bits of a ","-separated list of words (blanks around a word are
// allowed). "All" anywhere makes the result 0 at once, dropping the bits
// gathered before it; unknown words are ignored.
int targetFromString(std::string_view words);

// An older text-style conversion kept for programs that call it: 2 "Chorus",
// 3 "Bridge", 9 "Chord", 10 "Instruction", 11 "Number", 12 "Reference",
// 13 "Copyright", every other code "Verse". It is not the inverse of
// textStyleFromString().
String textStyleToString(int style);

// An older conversion that reads singer words, not style words: "women" 2,
// "men" 3, "leader" 9, "choir" 10, "congregation" 8, "children" 6, "adults" 7,
// "all" 1, "audience" 9; any other word (the style words among them) gives 1.
int textStyleFromString(std::string_view word);

}  // namespace melodex
