#include "melodex/song/vocabulary.h"

#include <array>

namespace melodex {
namespace {

// The section words in code order, starting at code 1.
constexpr std::array<std::string_view, 8> SectionWords = {"Verse", "Chorus", "Bridge", "PreChorus",
                                                          "Tag",   "Intro",  "Ending", "Misc"};

// The singer words in code order, starting at code 0.
constexpr std::array<std::string_view, 10> SingerWords = {
    "Default", "All",      "Women",  "Men",          "Leader",
    "Choir",   "Children", "Adults", "Congregation", "Audience"};

struct WordCode {
    std::string_view word;
    int code;
};

// The words read for each code, "ladies" as a synonym of "women". "Default"
// is never recognised: it falls into the default code like any unknown word.
constexpr std::array<WordCode, 10> SingerReadWords = {{
    {"all", 1},
    {"women", 2},
    {"ladies", 2},
    {"men", 3},
    {"leader", 4},
    {"choir", 5},
    {"children", 6},
    {"adults", 7},
    {"congregation", 8},
    {"audience", 9},
}};

// The older style reader compares with singer words and maps them to style
// codes; "leader" and "audience" both give 9. Programs still pass these words,
// so the table stays as it was.
constexpr std::array<WordCode, 9> TextStyleReadWords = {{
    {"women", 2},
    {"men", 3},
    {"leader", 9},
    {"choir", 10},
    {"congregation", 8},
    {"children", 6},
    {"adults", 7},
    {"all", 1},
    {"audience", 9},
}};

template <std::size_t N>
int lookUp(const std::array<WordCode, N>& table, std::string_view word, int defaultCode) {
    for (const WordCode& entry : table) {
        if (equalsIgnoreCase(entry.word, word)) return entry.code;
    }
    return defaultCode;
}

}  // namespace

String sectionTypeToString(int type) {
    if (type < 1 || type > int(SectionWords.size())) return String(SectionWords[0]);
    return String(SectionWords[std::size_t(type - 1)]);
}

int sectionTypeFromString(std::string_view word) {
    for (std::size_t i = 0; i < SectionWords.size(); ++i) {
        if (equalsIgnoreCase(SectionWords[i], word)) return int(i) + 1;
    }
    return SectionType::Verse;
}

String singerTypeToString(int singers) {
    if (singers < 0 || singers >= int(SingerWords.size())) return String(SingerWords[0]);
    return String(SingerWords[std::size_t(singers)]);
}

int singerTypeFromString(std::string_view word) {
    return lookUp(SingerReadWords, word, SingerType::Default);
}

String targetToString(int bits, std::string_view separator) {
    if (bits == Target::All || bits == Target::Everyone) return "All";
    String result;
    auto append = [&](std::string_view word) {
        if (!result.empty()) result += separator;
        result += word;
    };
    if (bits & Target::Leader) append("Leader");
    if (bits & Target::Band) append("Band");
    if (bits & Target::Audience) append("Audience");
    return result;
}

int targetFromString(std::string_view words) {
    int bits = 0;
    for (const String& piece : split(words, ",")) {
        // The writer joins words without blanks; trimming only helps
        // hand-edited files.
        const String token = strip(piece, " \t");
        if (equalsIgnoreCase(token, "All")) return Target::All;
        if (equalsIgnoreCase(token, "Leader")) {
            bits |= Target::Leader;
        } else if (equalsIgnoreCase(token, "Band")) {
            bits |= Target::Band;
        } else if (equalsIgnoreCase(token, "Audience")) {
            bits |= Target::Audience;
        }
    }
    return bits;
}

String textStyleToString(int style) {
    switch (style) {
        case 2:
            return "Chorus";
        case 3:
            return "Bridge";
        case 9:
            return "Chord";
        case 10:
            return "Instruction";
        case 11:
            return "Number";
        case 12:
            return "Reference";
        case 13:
            return "Copyright";
        default:
            return "Verse";
    }
}

int textStyleFromString(std::string_view word) {
    return lookUp(TextStyleReadWords, word, 1);
}

}  // namespace melodex
