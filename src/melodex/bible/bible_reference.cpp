#include "melodex/bible/bible_reference.h"

#include <algorithm>
#include <set>

#include "melodex/bible/bible.h"
#include "melodex/bible/bible_book_names.h"

namespace melodex {

namespace {

// Numbers beyond this are no chapter or verse of any Bible; refusing them
// keeps the arithmetic far from overflow.
constexpr int MaxNumber = 100000;

void setError(String* error, String message) {
    if (error) *error = std::move(message);
}

// --- Parsing ---------------------------------------------------------------------

struct Token {
    enum Kind { Number, ChapterVerse, List, Dash, End } kind = End;
    int number = 0;
};

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isAsciiLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// True for every dash and the minus sign: what search folding turns into
// "-" (it maps the whole Unicode dash category).
bool isDash(std::string_view character) {
    return character == "-" || foldForSearch(character) == "-";
}

// The byte offset where the chapter and verse part of a passage begins: the
// first digit after the book name's letters ("1 Cor 13:4" splits before
// "13"); text.size() when there is none, 0 when the passage names no book.
std::size_t chapterStart(std::string_view text) {
    bool letter = false;
    for (std::size_t pos = 0; pos < text.size();) {
        const std::size_t at = pos;
        const char c = text[pos];
        if (static_cast<unsigned char>(c) < 0x80) {
            ++pos;
            if (isDigit(c)) {
                if (letter) return at;
            } else if (isAsciiLetter(c)) {
                letter = true;
            }
            continue;
        }
        decodeUtf8(text, pos);
        if (!isDash(text.substr(at, pos - at))) letter = true;
    }
    return letter ? text.size() : 0;
}

class NumbersParser {
public:
    NumbersParser(std::string_view passage, std::string_view numbers, BibleReference::Style style)
        : m_passage(passage), m_numbers(numbers), m_style(style) {}

    bool parse(std::vector<BibleVerseRange>& ranges, String* error) {
        if (!tokenize(error)) return false;
        if (m_tokens.size() == 1) return true;  // only End: the whole book
        bool verseLevel = false;
        int chapter = 0;
        for (;;) {
            Point first;
            if (!point(first, verseLevel, chapter, error)) return false;
            Point last = first;
            if (peek() == Token::Dash) {
                ++m_next;
                if (!point(last, first.hasVerse, first.chapter, error)) return false;
                if (!first.hasVerse && last.hasVerse) verseLevel = true;
            }
            ranges.push_back({first.chapter, first.hasVerse ? first.verse : 0, last.chapter,
                              last.hasVerse ? last.verse : 0});
            verseLevel = verseLevel || last.hasVerse;
            chapter = last.chapter;
            if (peek() == Token::End) return true;
            if (peek() != Token::List) return fail(error, "a \",\" or \";\" is missing");
            ++m_next;
        }
    }

private:
    struct Point {
        int chapter = 0;
        int verse = 0;
        bool hasVerse = false;
    };

    // A number, or chapter, separator, verse. A lone number is a verse of
    // `chapter` after a verse has been named, else a chapter.
    bool point(Point& out, bool verseLevel, int chapter, String* error) {
        if (peek() != Token::Number) return fail(error, "a number is missing");
        const int number = m_tokens[m_next++].number;
        if (peek() == Token::ChapterVerse) {
            ++m_next;
            if (peek() != Token::Number) return fail(error, "the verse number is missing");
            out = {number, m_tokens[m_next++].number, true};
            return true;
        }
        out = verseLevel ? Point{chapter, number, true} : Point{number, 0, false};
        return true;
    }

    bool tokenize(String* error) {
        const bool european = m_style == BibleReference::Style::European;
        for (std::size_t pos = 0; pos < m_numbers.size();) {
            const char c = m_numbers[pos];
            if (isDigit(c)) {
                long long value = 0;
                while (pos < m_numbers.size() && isDigit(m_numbers[pos])) {
                    value = std::min<long long>(value * 10 + (m_numbers[pos] - '0'), MaxNumber + 1);
                    ++pos;
                }
                if (value == 0) return fail(error, "chapters and verses count from 1");
                if (value > MaxNumber) return fail(error, "a number is too large");
                // "16a", "16b": a part of a verse is shown as the whole verse.
                if (pos < m_numbers.size() && m_numbers[pos] >= 'a' && m_numbers[pos] <= 'c' &&
                    (pos + 1 == m_numbers.size() || !isAsciiLetter(m_numbers[pos + 1])))
                    ++pos;
                m_tokens.push_back({Token::Number, int(value)});
                continue;
            }
            if (c == ' ' || c == '\t') {
                ++pos;
                continue;
            }
            if (c == ':' || (c == (european ? ',' : '.'))) {
                m_tokens.push_back({Token::ChapterVerse});
                ++pos;
                continue;
            }
            if (c == (european ? '.' : ',')) {
                m_tokens.push_back({Token::List});
                ++pos;
                continue;
            }
            const std::size_t at = pos;
            if (static_cast<unsigned char>(c) < 0x80) {
                ++pos;
            } else {
                decodeUtf8(m_numbers, pos);
            }
            const std::string_view character = m_numbers.substr(at, pos - at);
            if (!isDash(character))
                return fail(error, "\"" + String(character) + "\" is not understood");
            m_tokens.push_back({Token::Dash});
        }
        m_tokens.push_back({Token::End});
        return true;
    }

    Token::Kind peek() const { return m_tokens[m_next].kind; }

    bool fail(String* error, const String& why) const {
        setError(error, "\"" + String(m_passage) + "\" is not a reference: " + why);
        return false;
    }

    std::string_view m_passage;
    std::string_view m_numbers;
    BibleReference::Style m_style;
    std::vector<Token> m_tokens;
    std::size_t m_next = 0;
};

// --- Book names ------------------------------------------------------------------

// The English book (1 to 66) that a key names: its full name, one of its
// abbreviations, or a prefix of one full name only. 0 when none does; the
// candidates of an ambiguous prefix go to `several`.
const String& englishKey(int number) {
    static const std::vector<String> keys = [] {
        std::vector<String> made;
        for (int n = 1; n <= BibleBookNameCount; ++n)
            made.push_back(bookNameKey(englishBookName(n)));
        return made;
    }();
    return keys[std::size_t(number - 1)];
}

int englishBookNumber(const String& key, std::vector<int>* several = nullptr) {
    if (key.empty()) return 0;
    for (int number = 1; number <= BibleBookNameCount; ++number) {
        if (englishKey(number) == key) return number;
    }
    for (int number = 1; number <= BibleBookNameCount; ++number) {
        const auto abbreviations = bookNameAbbreviations(number);
        if (std::find(abbreviations.begin(), abbreviations.end(), key) != abbreviations.end())
            return number;
    }
    std::vector<int> found;
    for (int number = 1; number <= BibleBookNameCount; ++number) {
        if (englishKey(number).starts_with(key)) found.push_back(number);
    }
    if (found.size() == 1) return found.front();
    if (several) *several = std::move(found);
    return 0;
}

// For each book of the Bible, the English book it is: by its title, else
// (in a Bible of all 66 books) by its place. 0 when unknown.
std::vector<int> englishNumbersOf(const Bible& bible) {
    std::vector<int> numbers(std::size_t(bible.bookCount()), 0);
    std::set<int> taken;
    for (int i = 0; i < bible.bookCount(); ++i) {
        numbers[std::size_t(i)] = englishBookNumber(bookNameKey(bible.book(i)->title()));
        taken.insert(numbers[std::size_t(i)]);
    }
    if (bible.bookCount() == BibleBookNameCount) {
        for (int i = 0; i < bible.bookCount(); ++i) {
            if (numbers[std::size_t(i)] == 0 && !taken.contains(i + 1))
                numbers[std::size_t(i)] = i + 1;
        }
    }
    return numbers;
}

// --- Resolving -------------------------------------------------------------------

int numberOf(const String& text) {
    const std::optional<long long> value = parseInteger(text);
    return value && *value > 0 && *value <= MaxNumber ? int(*value) : -1;
}

// Verse numbers are read leniently ("16a" is verse 16), as Bibles write
// them in many ways.
int verseNumberOf(const BibleVerse& verse) {
    return toInteger(verse.number(), -1);
}

}  // namespace

std::optional<BibleReference> BibleReference::parse(std::string_view text, Style style,
                                                    String* error) {
    BibleReference reference;
    for (const String& piece : split(text, ";")) {
        const String stripped = strip(piece, " \t\r\n");
        const std::string_view passage = stripped;
        if (passage.empty()) continue;
        const std::size_t start = chapterStart(passage);
        BiblePassage parsed;
        if (start == 0) {
            // "Rom 8:28; 12:1": a passage without a book stays in the last one.
            if (reference.m_passages.empty()) {
                setError(error, "\"" + String(passage) + "\" names no book");
                return std::nullopt;
            }
            parsed.book = reference.m_passages.back().book;
        } else {
            parsed.book = strip(passage.substr(0, start), " \t.", StripSide::End);
        }
        NumbersParser numbers(passage, passage.substr(start), style);
        if (!numbers.parse(parsed.ranges, error)) return std::nullopt;
        if (start == 0 && parsed.ranges.empty()) {
            setError(error, "\"" + String(passage) + "\" names no book");
            return std::nullopt;
        }
        reference.m_passages.push_back(std::move(parsed));
    }
    if (reference.m_passages.empty()) {
        setError(error, "no reference was given");
        return std::nullopt;
    }
    return reference;
}

BibleBook* BibleReference::findBook(const Bible& bible, std::string_view name, String* error) {
    const String key = bookNameKey(name);
    if (key.empty()) {
        setError(error, "\"" + String(name) + "\" is no book name");
        return nullptr;
    }
    const std::vector<int> english = englishNumbersOf(bible);
    const auto bookNumbered = [&](int number) -> BibleBook* {
        const auto it = std::find(english.begin(), english.end(), number);
        return it == english.end() ? nullptr : bible.book(int(it - english.begin()));
    };
    const auto missing = [&](int number) {
        setError(error, bible.title() + " has no book " + String(englishBookName(number)));
        return nullptr;
    };

    // The Bible's own title first, then the English name or abbreviation.
    for (int i = 0; i < bible.bookCount(); ++i) {
        if (bookNameKey(bible.book(i)->title()) == key) return bible.book(i);
    }
    std::vector<int> several;
    if (const int number = englishBookNumber(key, &several)) {
        if (BibleBook* book = bookNumbered(number)) return book;
        // A prefix of one English name may still be a prefix of one of the
        // Bible's own titles ("Psa" of "Psalm").
        bool prefix = false;
        for (int i = 0; i < bible.bookCount() && !prefix; ++i)
            prefix = bookNameKey(bible.book(i)->title()).starts_with(key);
        if (!prefix) return missing(number);
    }

    // Prefixes: of the Bible's titles and of the English names, counted as
    // one book when they lead to the same one.
    std::set<int> books;   // indexes in the Bible
    std::set<int> absent;  // English books the Bible lacks
    StringArray names;
    for (int i = 0; i < bible.bookCount(); ++i) {
        if (bookNameKey(bible.book(i)->title()).starts_with(key) && books.insert(i).second)
            names.push_back(bible.book(i)->title());
    }
    for (int number : several) {
        BibleBook* book = bookNumbered(number);
        if (!book) {
            if (absent.insert(number).second) names.emplace_back(englishBookName(number));
            continue;
        }
        for (int i = 0; i < bible.bookCount(); ++i) {
            if (bible.book(i) == book && books.insert(i).second) names.push_back(book->title());
        }
    }
    if (books.size() == 1 && absent.empty()) return bible.book(*books.begin());
    if (books.empty() && absent.size() == 1) return missing(*absent.begin());
    if (names.empty()) {
        setError(error, "no book of " + bible.title() + " is called \"" + String(name) + "\"");
    } else {
        setError(error, "\"" + String(name) + "\" could be " + join(names, ", ") +
                            "; write more of the name");
    }
    return nullptr;
}

std::vector<BibleVerse*> BibleReference::resolve(const Bible& bible, String* error) const {
    std::vector<BibleVerse*> verses;
    for (const BiblePassage& passage : m_passages) {
        BibleBook* book = findBook(bible, passage.book, error);
        if (!book) return {};
        const int count = book->chapterCount();
        if (count == 0) {
            String message = book->title() + " holds no chapters in " + bible.title();
            // A book file that could not be read is the usual reason.
            if (const FileError& failure = book->lastError())
                message += " (" + failure.message() + ")";
            setError(error, message);
            return {};
        }
        std::vector<int> numbers(static_cast<std::size_t>(count));
        bool numbered = false;
        for (int c = 0; c < count; ++c) {
            numbers[std::size_t(c)] = numberOf(book->chapter(c)->number());
            numbered = numbered || numbers[std::size_t(c)] > 0;
        }
        // Chapters without numbers are counted instead.
        if (!numbered) {
            for (int c = 0; c < count; ++c)
                numbers[std::size_t(c)] = c + 1;
        }
        const auto lastNumber = [&] {
            for (int c = count - 1; c >= 0; --c) {
                if (numbers[std::size_t(c)] > 0) return numbers[std::size_t(c)];
            }
            return 0;
        };
        const auto chapterIndex = [&](int number) {
            const auto it = std::find(numbers.begin(), numbers.end(), number);
            if (it != numbers.end()) return int(it - numbers.begin());
            const int last = lastNumber();
            // Below the last: a Bible that holds some chapters of the book only.
            setError(error, book->title() + " has no chapter " + std::to_string(number) +
                                (number < last ? " in " + bible.title() + ", which holds " +
                                                     std::to_string(count) + " of its chapters"
                                               : "; the last is " + std::to_string(last)));
            return -1;
        };
        const auto addRange = [&](int first, int last, int firstVerse, int lastVerse) {
            for (int c = first; c <= last; ++c) {
                BibleChapter* chapter = book->chapter(c);
                int start = 0;
                int end = chapter->verseCount() - 1;
                const auto noVerse = [&](int number) {
                    String message = book->title() + " " + chapterName(*chapter) +
                                     " has no verse " + std::to_string(number);
                    for (int v = chapter->verseCount() - 1; v >= 0; --v) {
                        if (const int n = verseNumberOf(*chapter->verse(v)); n > 0) {
                            message += "; the last is " + std::to_string(n);
                            break;
                        }
                    }
                    setError(error, message);
                    return false;
                };
                if (c == first && firstVerse > 0) {
                    start = -1;
                    for (int v = 0; v < chapter->verseCount() && start < 0; ++v) {
                        if (verseNumberOf(*chapter->verse(v)) == firstVerse) start = v;
                    }
                    if (start < 0) return noVerse(firstVerse);
                }
                if (c == last && lastVerse > 0) {
                    end = -1;
                    for (int v = chapter->verseCount() - 1; v >= 0 && end < 0; --v) {
                        if (verseNumberOf(*chapter->verse(v)) == lastVerse) end = v;
                    }
                    if (end < 0) return noVerse(lastVerse);
                }
                if (end < start && firstVerse > 0 && lastVerse > 0) {
                    setError(error, "the range " + book->title() + " " + chapterName(*chapter) +
                                        ":" + std::to_string(firstVerse) + "-" +
                                        std::to_string(lastVerse) + " runs backwards");
                    return false;
                }
                for (int v = start; v <= end; ++v)
                    verses.push_back(chapter->verse(v));
            }
            return true;
        };

        if (passage.ranges.empty()) {
            if (!addRange(0, count - 1, 0, 0)) return {};
            continue;
        }
        for (BibleVerseRange range : passage.ranges) {
            int first = 0;
            int last = 0;
            if (count == 1 && numbers[0] <= 1 && range.firstVerse == 0 && range.lastVerse == 0) {
                // A book of one chapter is cited by verse alone: "Jude 3". A
                // book of which one later chapter is installed is not such a
                // book: "1 Cor 13" is its chapter 13.
                range = {0, range.firstChapter, 0, range.lastChapter};
            } else {
                first = chapterIndex(range.firstChapter);
                if (first < 0) return {};
                last = chapterIndex(range.lastChapter);
                if (last < 0) return {};
            }
            if (last < first) {
                setError(error, "the range " + book->title() + " " +
                                    std::to_string(range.firstChapter) + "-" +
                                    std::to_string(range.lastChapter) + " runs backwards");
                return {};
            }
            if (!addRange(first, last, range.firstVerse, range.lastVerse)) return {};
        }
    }
    // Chapters that hold no verse (a damaged book file) name nothing either.
    if (verses.empty()) setError(error, bible.title() + " holds no verse of that passage");
    return verses;
}

String BibleReference::chapterName(const BibleChapter& chapter) {
    const String number = strip(chapter.number());
    return number.empty() ? chapter.title() : number;
}

String BibleReference::label(const BibleVerse& verse) {
    const BibleChapter* chapter = verse.chapter();
    const BibleBook* book = chapter ? chapter->book() : nullptr;
    String text = book ? book->title() + " " : String();
    if (chapter) text += chapterName(*chapter) + ":";
    return text + verse.number();
}

}  // namespace melodex
