// The costs of Bibles at the size of a whole Bible: importing a King James
// sized Bible (66 books, 1,189 chapters, 31,102 verses) from one XML file in
// the OpenSong layout (about 4.6 MB) and from a folder of 66 ".bbl" files,
// opening a database of ten such Bibles (bible.ini only: books are lazy),
// reading Psalms on first use, and "melodex bible show" from a cold
// process. The input is generated into a temporary folder on first use (the
// verse texts are synthetic, of the length of real ones) and removed at exit.

#include <fcntl.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <array>
#include <cctype>
#include <chrono>
#include <filesystem>
#include <random>
#include <string>

#include <benchmark/benchmark.h>

#include "melodex/bible/bible_book_names.h"
#include "melodex/bible/bible_database.h"
#include "melodex/foundation/file_system.h"

extern char** environ;

namespace {

using namespace melodex;
namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

// Chapters and verses of each book of the King James Version, in order:
// 1,189 chapters and 31,102 verses in all. Verses are spread evenly over a
// book's chapters (Psalms: 150 chapters, 2,461 verses).
constexpr std::array<int, 66> Chapters = {
    50, 40, 27, 36, 34, 24, 21, 4, 31, 24, 22, 25, 29, 36, 10, 13, 10, 42, 150, 31, 12, 8,
    66, 52, 5,  48, 12, 14, 3,  9, 1,  4,  7,  3,  3,  3,  2,  14, 4,  28, 16,  24, 21, 28,
    16, 16, 13, 6,  6,  4,  4,  5, 3,  6,  4,  3,  1,  13, 5,  5,  3,  5,  1,   1,  1,  22};
constexpr std::array<int, 66> Verses = {
    1533, 1213, 859, 1288, 959, 658,  618,  85,   810,  695,  816, 719, 942, 822, 280, 406, 167,
    1070, 2461, 915, 222,  117, 1292, 1364, 154,  1273, 357,  197, 73,  146, 21,  48,  105, 47,
    56,   53,   38,  211,  55,  1071, 678,  1151, 879,  1007, 433, 437, 257, 149, 155, 104, 95,
    89,   47,   113, 83,   46,  25,   303,  108,  105,  61,   105, 13,  14,  25,  404};

constexpr int sum(const std::array<int, 66>& values) {
    int total = 0;
    for (int value : values)
        total += value;
    return total;
}
static_assert(sum(Chapters) == 1189 && sum(Verses) == 31102);

const char* const Words[] = {"the",       "and",      "of",     "to",        "in",
                             "that",      "he",       "shall",  "unto",      "for",
                             "his",       "they",     "be",     "is",        "him",
                             "not",       "them",     "it",     "with",      "all",
                             "thou",      "thy",      "was",    "which",     "my",
                             "said",      "LORD",     "God",    "people",    "land",
                             "house",     "children", "came",   "earth",     "heaven",
                             "king",      "Israel",   "behold", "therefore", "servant",
                             "hath",      "upon",     "before", "through",   "righteousness",
                             "Jerusalem", "mercy"};

// Verse texts drawn from a fixed seed: 40 to 250 characters, about 130 on
// average, as in the King James text.
class VerseSource {
public:
    std::string verse() {
        const std::size_t length = m_length(m_random);
        std::string text;
        while (text.size() < length) {
            if (!text.empty()) text += ' ';
            text += Words[m_word(m_random)];
        }
        text[0] = char(std::toupper(static_cast<unsigned char>(text[0])));
        return text + (m_word(m_random) % 3 == 0 ? ";" : ".");
    }

private:
    std::mt19937 m_random{1611};
    std::uniform_int_distribution<std::size_t> m_length{40, 225};
    std::uniform_int_distribution<std::size_t> m_word{0, std::size(Words) - 1};
};

template <typename Each>
void forEachVerse(Each each) {
    VerseSource source;
    for (int b = 0; b < 66; ++b) {
        const int chapters = Chapters[std::size_t(b)];
        const int verses = Verses[std::size_t(b)];
        for (int c = 1; c <= chapters; ++c) {
            // The first chapters take the remainder, one verse each.
            const int count = verses / chapters + (c <= verses % chapters ? 1 : 0);
            for (int v = 1; v <= count; ++v)
                each(b + 1, c, v, source.verse());
        }
    }
}

class Corpus {
public:
    static Corpus& get() {
        static Corpus corpus;
        return corpus;
    }
    ~Corpus() {
        std::error_code ignored;
        fs::remove_all(m_root, ignored);
    }

    String path(std::string_view name) const { return joinPath(m_root, name); }

    // The whole Bible as one XML file: <bible n="KJV"><b n="Genesis"><c n="1"><v n="1">...
    const String& xmlFile() {
        if (!m_xml.empty()) return m_xml;
        std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<bible n=\"KJV\">\n";
        int lastBook = 0;
        int lastChapter = 0;
        forEachVerse([&](int book, int chapter, int verse, const std::string& text) {
            if (chapter != lastChapter || book != lastBook) {
                if (lastChapter != 0) xml += "</c>\n";
                if (book != lastBook) {
                    if (lastBook != 0) xml += "</b>\n";
                    xml += "<b n=\"" + String(englishBookName(book)) + "\">\n";
                    lastBook = book;
                }
                xml += "<c n=\"" + std::to_string(chapter) + "\">\n";
                lastChapter = chapter;
            }
            xml += "<v n=\"" + std::to_string(verse) + "\">" + text + "</v>\n";
        });
        xml += "</c>\n</b>\n</bible>\n";
        m_xml = path("KJV.xml");
        (void)writeFileAtomically(m_xml, xml);
        return m_xml;
    }

    // The same Bible as 66 ".bbl" files in the folder "KJV".
    const String& bblFolder() {
        if (!m_bbl.empty()) return m_bbl;
        m_bbl = path("KJV");
        createFolders(m_bbl);
        std::array<std::string, 66> files;
        forEachVerse([&](int book, int chapter, int verse, const std::string& text) {
            std::string& file = files[std::size_t(book - 1)];
            if (verse == 1) {
                if (chapter > 1) file += "\n";
                file += String(englishBookName(book)) + " " + std::to_string(chapter) + "\n";
            }
            file += std::to_string(verse) + ": " + text + "\n";
        });
        for (int b = 1; b <= 66; ++b) {
            (void)writeFileAtomically(joinPath(m_bbl, String(englishBookName(b)) + ".bbl"),
                                      files[std::size_t(b - 1)]);
        }
        return m_bbl;
    }

    // A Bible database of ten imports of the XML Bible.
    const String& database() {
        if (!m_database.empty()) return m_database;
        m_database = path("Bible Database");
        BibleDatabase db;
        db.setDatabaseFolder(m_database);
        for (int i = 0; i < 10; ++i)
            (void)db.importFile(xmlFile(), false, false);
        return m_database;
    }

private:
    Corpus() {
        std::string pattern = (fs::temp_directory_path() / "melodex-bible-bench-XXXXXX").string();
        m_root = ::mkdtemp(pattern.data()) ? pattern : String();
    }

    String m_root;
    String m_xml;
    String m_bbl;
    String m_database;
};

// Imports into a fresh database folder each time; only the import is timed.
template <typename Import>
void timeImports(benchmark::State& state, Import import) {
    int round = 0;
    for (auto _ : state) {
        const String folder = Corpus::get().path("import-" + std::to_string(round++));
        BibleDatabase db;
        db.setDatabaseFolder(folder);
        createFolders(folder);
        const auto start = Clock::now();
        const bool imported = import(db);
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        if (!imported) state.SkipWithError("the import failed");
        // Left until exit: deleting thousands of files between rounds makes
        // the file system search past them when it next makes one, which is
        // no cost of an import.
    }
}

void BM_ImportXmlBible(benchmark::State& state) {
    const String xml = Corpus::get().xmlFile();
    state.counters["MB"] = double(fs::file_size(xml)) / 1e6;
    timeImports(state, [&xml](BibleDatabase& db) { return db.importFile(xml, false, false); });
}
BENCHMARK(BM_ImportXmlBible)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

void BM_ImportBblFolder(benchmark::State& state) {
    const String folder = Corpus::get().bblFolder();
    timeImports(state, [&folder](BibleDatabase& db) { return db.importFolder(folder); });
}
BENCHMARK(BM_ImportBblFolder)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

// The reading half of the imports alone: files into memory, nothing written.
void BM_ReadXmlBible(benchmark::State& state) {
    const String xml = Corpus::get().xmlFile();
    for (auto _ : state) {
        Bible bible;
        if (bible.importFromFile(xml) != StatusSuccess) state.SkipWithError("the read failed");
    }
}
BENCHMARK(BM_ReadXmlBible)->Unit(benchmark::kMillisecond);

void BM_ReadBblFolder(benchmark::State& state) {
    const String folder = Corpus::get().bblFolder();
    for (auto _ : state) {
        Bible bible;
        (void)bible.importBblFolder(folder);
        if (bible.bookCount() != 66) state.SkipWithError("not 66 books");
    }
}
BENCHMARK(BM_ReadBblFolder)->Unit(benchmark::kMillisecond);

void BM_OpenTenBibles(benchmark::State& state) {
    BibleDatabase db;
    db.setDatabaseFolder(Corpus::get().database());
    for (auto _ : state) {
        db.open();
        benchmark::DoNotOptimize(db.bibleCount());
    }
    if (db.bibleCount() != 10) state.SkipWithError("not ten Bibles");
}
BENCHMARK(BM_OpenTenBibles)->Unit(benchmark::kMillisecond);

void BM_LoadPsalmsOnFirstUse(benchmark::State& state) {
    BibleDatabase db;
    db.setDatabaseFolder(Corpus::get().database());
    for (auto _ : state) {
        state.PauseTiming();
        db.open();
        BibleBook* psalms = db.bibles()[0]->book(18);
        state.ResumeTiming();
        benchmark::DoNotOptimize(psalms->chapterCount());
    }
}
BENCHMARK(BM_LoadPsalmsOnFirstUse)->Unit(benchmark::kMillisecond);

// The whole program, started afresh each time, showing one verse.
void BM_ShowVerseColdProcess(benchmark::State& state) {
    const String data = Corpus::get().path("");
    Corpus::get().database();
    const char* argv[] = {MELODEX_CLI_PROGRAM, "--data", data.c_str(), "bible", "show", "KJV",
                          "John 3:16",         nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    for (auto _ : state) {
        pid_t pid = 0;
        if (posix_spawn(&pid, argv[0], &actions, nullptr, const_cast<char**>(argv), environ) != 0) {
            state.SkipWithError("cannot start melodex");
            break;
        }
        int status = 0;
        ::waitpid(pid, &status, 0);
        if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
            state.SkipWithError("melodex bible show failed");
            break;
        }
    }
    posix_spawn_file_actions_destroy(&actions);
}
BENCHMARK(BM_ShowVerseColdProcess)->Unit(benchmark::kMillisecond)->Iterations(20);

}  // namespace
