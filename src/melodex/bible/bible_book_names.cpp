#include "melodex/bible/bible_book_names.h"

#include <array>

namespace melodex {

namespace {

constexpr std::array<std::string_view, BibleBookNameCount> Names = {
    "Genesis", "Exodus", "Leviticus", "Numbers", "Deuteronomy", "Joshua", "Judges", "Ruth",
    "1 Samuel", "2 Samuel", "1 Kings", "2 Kings", "1 Chronicles", "2 Chronicles", "Ezra",
    "Nehemiah", "Esther", "Job", "Psalms", "Proverbs", "Ecclesiastes", "Song of Songs", "Isaiah",
    "Jeremiah", "Lamentations", "Ezekiel", "Daniel", "Hosea", "Joel", "Amos", "Obadiah", "Jonah",
    "Micah", "Nahum", "Habakkuk", "Zephaniah", "Haggai", "Zechariah", "Malachi",
    // New Testament
    "Matthew", "Mark", "Luke", "John", "Acts", "Romans", "1 Corinthians", "2 Corinthians",
    "Galatians", "Ephesians", "Philippians", "Colossians", "1 Thessalonians", "2 Thessalonians",
    "1 Timothy", "2 Timothy", "Titus", "Philemon", "Hebrews", "James", "1 Peter", "2 Peter",
    "1 John", "2 John", "3 John", "Jude", "Revelation"};

// The abbreviations in use in English Bibles, study books and service
// sheets, as keys. Prefixes of a single name ("Gen", "Rom") need no entry:
// the parser takes any prefix that names one book. An entry here wins over
// a prefix that names several ("Phil" is Philippians, not Philemon), so
// genuinely ambiguous shortenings ("Jud", "Ju") are left out on purpose.
// clang-format off
constexpr std::string_view A1[] = {"gen", "ge", "gn"};
constexpr std::string_view A2[] = {"ex", "exo", "exod"};
constexpr std::string_view A3[] = {"lev", "le", "lv"};
constexpr std::string_view A4[] = {"num", "nu", "nm", "nb"};
constexpr std::string_view A5[] = {"deut", "de", "dt"};
constexpr std::string_view A6[] = {"josh", "jos", "jsh"};
constexpr std::string_view A7[] = {"judg", "jdg", "jg", "jdgs"};
constexpr std::string_view A8[] = {"rth", "ru"};
constexpr std::string_view A9[] = {"1sam", "1sa", "1sm", "1s"};
constexpr std::string_view A10[] = {"2sam", "2sa", "2sm", "2s"};
constexpr std::string_view A11[] = {"1kgs", "1ki", "1kg", "1k"};
constexpr std::string_view A12[] = {"2kgs", "2ki", "2kg", "2k"};
constexpr std::string_view A13[] = {"1chr", "1ch", "1chron"};
constexpr std::string_view A14[] = {"2chr", "2ch", "2chron"};
constexpr std::string_view A15[] = {"ezr"};
constexpr std::string_view A16[] = {"neh", "ne"};
constexpr std::string_view A17[] = {"esth", "est", "es"};
constexpr std::string_view A18[] = {"jb"};
constexpr std::string_view A19[] = {"ps", "psa", "psalm", "pss", "psm"};
constexpr std::string_view A20[] = {"prov", "pr", "prv", "pro"};
constexpr std::string_view A21[] = {"eccl", "eccles", "ecc", "ec", "qoh", "qoheleth"};
constexpr std::string_view A22[] = {"song", "sos", "sg", "cant", "canticles", "songofsolomon", "canticleofcanticles"};
constexpr std::string_view A23[] = {"isa", "is"};
constexpr std::string_view A24[] = {"jer", "je", "jr"};
constexpr std::string_view A25[] = {"lam", "la"};
constexpr std::string_view A26[] = {"ezek", "eze", "ezk"};
constexpr std::string_view A27[] = {"dan", "da", "dn"};
constexpr std::string_view A28[] = {"hos", "ho"};
constexpr std::string_view A29[] = {"jl"};
constexpr std::string_view A30[] = {"am"};
constexpr std::string_view A31[] = {"obad", "ob"};
constexpr std::string_view A32[] = {"jon", "jnh"};
constexpr std::string_view A33[] = {"mic", "mc"};
constexpr std::string_view A34[] = {"nah", "na"};
constexpr std::string_view A35[] = {"hab", "hb"};
constexpr std::string_view A36[] = {"zeph", "zep", "zp"};
constexpr std::string_view A37[] = {"hag", "hg"};
constexpr std::string_view A38[] = {"zech", "zec", "zc"};
constexpr std::string_view A39[] = {"mal", "ml"};
constexpr std::string_view A40[] = {"matt", "mt"};
constexpr std::string_view A41[] = {"mk", "mrk"};
constexpr std::string_view A42[] = {"lk", "luk"};
constexpr std::string_view A43[] = {"jn", "jhn", "joh"};
constexpr std::string_view A44[] = {"ac", "act"};
constexpr std::string_view A45[] = {"rom", "ro", "rm"};
constexpr std::string_view A46[] = {"1cor", "1co"};
constexpr std::string_view A47[] = {"2cor", "2co"};
constexpr std::string_view A48[] = {"gal", "ga"};
constexpr std::string_view A49[] = {"eph", "ephes"};
constexpr std::string_view A50[] = {"phil", "php", "pp"};
constexpr std::string_view A51[] = {"col"};
constexpr std::string_view A52[] = {"1thess", "1thes", "1th"};
constexpr std::string_view A53[] = {"2thess", "2thes", "2th"};
constexpr std::string_view A54[] = {"1tim", "1ti", "1tm"};
constexpr std::string_view A55[] = {"2tim", "2ti", "2tm"};
constexpr std::string_view A56[] = {"tit"};
constexpr std::string_view A57[] = {"philem", "phlm", "phm"};
constexpr std::string_view A58[] = {"heb"};
constexpr std::string_view A59[] = {"jas", "jm"};
constexpr std::string_view A60[] = {"1pet", "1pe", "1pt", "1p"};
constexpr std::string_view A61[] = {"2pet", "2pe", "2pt", "2p"};
constexpr std::string_view A62[] = {"1jn", "1jo", "1joh", "1jhn", "1j"};
constexpr std::string_view A63[] = {"2jn", "2jo", "2joh", "2jhn", "2j"};
constexpr std::string_view A64[] = {"3jn", "3jo", "3joh", "3jhn", "3j"};
constexpr std::string_view A65[] = {"jd"};
constexpr std::string_view A66[] = {"rev", "re", "rv", "revelations", "apoc", "apocalypse"};
// clang-format on

constexpr std::array<std::span<const std::string_view>, BibleBookNameCount> Abbreviations = {
    A1,  A2,  A3,  A4,  A5,  A6,  A7,  A8,  A9,  A10, A11, A12, A13, A14, A15, A16, A17,
    A18, A19, A20, A21, A22, A23, A24, A25, A26, A27, A28, A29, A30, A31, A32, A33, A34,
    A35, A36, A37, A38, A39, A40, A41, A42, A43, A44, A45, A46, A47, A48, A49, A50, A51,
    A52, A53, A54, A55, A56, A57, A58, A59, A60, A61, A62, A63, A64, A65, A66};

bool isAsciiAlphanumeric(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

}  // namespace

std::string_view englishBookName(int number) {
    if (number < 1 || number > BibleBookNameCount) return {};
    return Names[std::size_t(number - 1)];
}

std::span<const std::string_view> bookNameAbbreviations(int number) {
    if (number < 1 || number > BibleBookNameCount) return {};
    return Abbreviations[std::size_t(number - 1)];
}

String bookNameKey(std::string_view name) {
    String folded = foldForSearch(trimBlanks(name));
    // The ordinal in front of a numbered book, in the forms English
    // references use; it must stand apart from the name ("Isaiah" is no
    // "1saiah"), and the bare word is no ordinal ("I" alone stays).
    static constexpr std::pair<std::string_view, char> Ordinals[] = {
        {"iii", '3'},   {"ii", '2'},  {"i", '1'},   {"first", '1'}, {"second", '2'},
        {"third", '3'}, {"1st", '1'}, {"2nd", '2'}, {"3rd", '3'}};
    for (const auto& [word, digit] : Ordinals) {
        if (folded.size() > word.size() && folded.starts_with(word) &&
            !isAsciiAlphanumeric(folded[word.size()])) {
            const std::string_view rest = std::string_view(folded).substr(word.size());
            if (rest.find_first_not_of(" .") == std::string_view::npos) continue;
            folded = String(1, digit) + String(rest);
            break;
        }
    }
    String key;
    key.reserve(folded.size());
    for (char c : folded) {
        // Bytes of other scripts are letters here; ASCII keeps only letters
        // and digits, so blanks, dots, hyphens and apostrophes never matter.
        if (static_cast<unsigned char>(c) >= 0x80 || isAsciiAlphanumeric(c)) key += c;
    }
    return key;
}

}  // namespace melodex
