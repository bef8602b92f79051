// The costs of the song library on the sizes a large church meets: opening
// a library of 10,000 songs from its index and without one, importing 5,000
// OpenSong files with importFolder (against merely reading and parsing
// them), and sorting 30,000 text entries. The songs are generated into a
// temporary folder on first use and removed at exit.

#include <stdlib.h>

#include <cctype>
#include <chrono>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "melodex/foundation/file_system.h"
#include "melodex/library/song_database.h"
#include "melodex/library/song_import.h"
#include "melodex/song/song.h"

#include "bench_words.h"

namespace {

using namespace melodex;
namespace fs = std::filesystem;

constexpr int LibrarySongs = 10000;
constexpr int OpenSongFiles = 5000;
constexpr int SortedTexts = 30000;

using bench::makeHymn;
using bench::WordSource;

// The same kind of hymn in OpenSong's layout: a chord line above each lyric
// line, sections headed by [V1] ...
String makeOpenSong(WordSource& words, int number) {
    String lyrics;
    for (int s = 1; s <= 4; ++s) {
        lyrics += "[V" + std::to_string(s) + "]\n";
        for (int l = 0; l < 4; ++l) {
            lyrics += ".";
            lyrics += words.chord();
            lyrics += "           ";
            lyrics += words.chord();
            lyrics += "\n " + words.phrase(7) + "\n";
        }
    }
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<song>\n  <title>" + words.phrase(3) + " " +
           std::to_string(number) + "</title>\n  <author>Author " + std::to_string(number % 300) +
           "</author>\n  <copyright>Public domain</copyright>\n" + "  <ccli>" +
           std::to_string(100000 + number) + "</ccli>\n  <key>G</key>\n" + "  <aka>" +
           words.phrase(4) + "</aka>\n  <theme>" + words.phrase(1) + "</theme>\n  <lyrics>" +
           lyrics + "</lyrics>\n</song>\n";
}

// The generated folders, made on first use.
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

    // A library of 10,000 songs with its index written.
    const String& library() {
        if (m_library.empty()) {
            m_library = m_root + "/Library/Song Database";
            const String files = m_library + "/Song Files";
            createFolders(files);
            WordSource words;
            for (int i = 0; i < LibrarySongs; ++i) {
                Song song = makeHymn(words, i);
                (void)song.saveToFile(files + "/Song " + std::to_string(i) + ".song", 1);
            }
            SongDatabase db;
            db.setDatabaseFolder(m_library);
            db.setHostName("BENCH");
            db.open();
            db.close();
        }
        return m_library;
    }

    // 5,000 OpenSong files in 50 folders of 100, named .xml so that
    // importFolder takes them.
    const String& openSongFolder() {
        if (m_openSong.empty()) {
            m_openSong = m_root + "/OpenSong";
            WordSource words;
            std::uintmax_t bytes = 0;
            for (int i = 0; i < OpenSongFiles; ++i) {
                const String folder = m_openSong + "/Book " + std::to_string(i / 100);
                createFolders(folder);
                const String text = makeOpenSong(words, i);
                bytes += text.size();
                m_openSongPaths.push_back(folder + "/Song " + std::to_string(i) + ".xml");
                (void)writeFileAtomically(m_openSongPaths.back(), text);
            }
            m_openSongBytes = bytes;
        }
        return m_openSong;
    }
    // The files openSongFolder() made, in the order they were made.
    const StringArray& openSongPaths() const { return m_openSongPaths; }
    std::uintmax_t openSongBytes() const { return m_openSongBytes; }

    String scratch(const String& name) const { return m_root + "/" + name; }

private:
    Corpus() {
        String pattern = (fs::temp_directory_path() / "melodex-library-bench-XXXXXX").string();
        m_root = ::mkdtemp(pattern.data()) ? pattern : String();
    }

    String m_root;
    String m_library;
    String m_openSong;
    StringArray m_openSongPaths;
    std::uintmax_t m_openSongBytes = 0;
};

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

void BM_OpenLibraryFromIndex(benchmark::State& state) {
    const String folder = Corpus::get().library();
    for (auto _ : state) {
        SongDatabase db;
        db.setDatabaseFolder(folder);
        db.setHostName("BENCH");
        const auto start = Clock::now();
        db.open();
        state.SetIterationTime(secondsSince(start));
        if (db.getFileCount() != LibrarySongs || db.changed()) state.SkipWithError("not opened");
        state.counters["texts"] = db.getEntryCount();
        db.close();
    }
    state.SetItemsProcessed(state.iterations() * LibrarySongs);
}
BENCHMARK(BM_OpenLibraryFromIndex)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_OpenLibraryWithoutIndex(benchmark::State& state) {
    const String folder = Corpus::get().library();
    for (auto _ : state) {
        SongDatabase db;
        db.setDatabaseFolder(folder);
        db.setHostName("SCAN");  // no index of this name: every song is read
        const auto start = Clock::now();
        db.open();
        state.SetIterationTime(secondsSince(start));
        if (db.getFileCount() != LibrarySongs) state.SkipWithError("not opened");
        db.close();
        (void)removeFile(folder + "/songdb-SCAN.ini");
    }
    state.SetItemsProcessed(state.iterations() * LibrarySongs);
}
BENCHMARK(BM_OpenLibraryWithoutIndex)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);

// The floor under an import: reading and parsing every file, nothing more.
void BM_ReadOpenSongFiles(benchmark::State& state) {
    Corpus::get().openSongFolder();
    const StringArray& paths = Corpus::get().openSongPaths();
    for (auto _ : state) {
        const auto start = Clock::now();
        for (const String& path : paths) {
            Song song;
            if (song.loadFromFile(path) != 0) state.SkipWithError("unreadable");
            benchmark::DoNotOptimize(song);
        }
        state.SetIterationTime(secondsSince(start));
    }
    state.SetBytesProcessed(std::int64_t(state.iterations() * Corpus::get().openSongBytes()));
}
BENCHMARK(BM_ReadOpenSongFiles)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

// The other floor: creating 5,000 new files of the size of a library song,
// as Song::saveToFile writes them.
void BM_CreateSongSizedFiles(benchmark::State& state) {
    const String text(1300, 'x');
    int run = 0;
    for (auto _ : state) {
        const String folder = Corpus::get().scratch("Create " + std::to_string(++run));
        createFolders(folder);
        const auto start = Clock::now();
        for (int i = 0; i < OpenSongFiles; ++i) {
            if (writeFileAtomically(folder + "/Song " + std::to_string(i) + ".song", text) != 0)
                state.SkipWithError("cannot write");
        }
        state.SetIterationTime(secondsSince(start));
    }
}
BENCHMARK(BM_CreateSongSizedFiles)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_ImportOpenSongFolder(benchmark::State& state) {
    const String source = Corpus::get().openSongFolder();
    int run = 0;
    for (auto _ : state) {
        // A new folder each time: file systems such as ext4 are slow to hand
        // out new files right after thousands were deleted, which no real
        // import meets. Everything is removed at exit.
        const String database =
            Corpus::get().scratch("Import " + std::to_string(++run) + "/Song Database");
        createFolders(database + "/Song Files");
        SongDatabase db;
        db.setDatabaseFolder(database);
        db.setHostName("BENCH");
        db.open();
        const auto start = Clock::now();
        const bool imported = db.importFolder(source);
        state.SetIterationTime(secondsSince(start));
        if (!imported || db.getFileCount() != OpenSongFiles) state.SkipWithError("not imported");
        db.changed(false);
        db.close();
    }
    state.SetBytesProcessed(std::int64_t(state.iterations() * Corpus::get().openSongBytes()));
}
BENCHMARK(BM_ImportOpenSongFolder)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

// What "melodex library import FOLDER" does: the import rules (songs by
// content, duplicates by uuid or by title and lyrics, the report) and the
// index saved at the end, under the library's lock.
void BM_SongImportOfOpenSongFolder(benchmark::State& state) {
    const String source = Corpus::get().openSongFolder();
    int run = 0;
    for (auto _ : state) {
        const String database =
            Corpus::get().scratch("SongImport " + std::to_string(++run) + "/Song Database");
        SongDatabase db;
        db.setDatabaseFolder(database);
        db.setHostName("BENCH");
        db.open();
        const auto start = Clock::now();
        const SongImport::Report report = SongImport(db).run({source});
        state.SetIterationTime(secondsSince(start));
        if (int(report.imported.size()) != OpenSongFiles || report.hasFailures())
            state.SkipWithError("not imported");
        db.close();
    }
    state.SetBytesProcessed(std::int64_t(state.iterations() * Corpus::get().openSongBytes()));
}
BENCHMARK(BM_SongImportOfOpenSongFolder)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);

// Text entries can only be made by the library; a database of the bench's
// own adds them unsorted.
class TextDatabase : public SongDatabase {
public:
    using SongDatabase::addTextEntry;
};

// The titles and first lines of a large library: phrases of two to seven words.
StringArray libraryTexts() {
    WordSource words;
    StringArray texts;
    for (int i = 0; i < SortedTexts; ++i)
        texts.push_back(words.phrase(2 + i % 6));
    return texts;
}

void BM_SortTextEntries(benchmark::State& state) {
    const StringArray texts = libraryTexts();
    TextDatabase db;
    SongDBFileEntry file(&db);
    for (auto _ : state) {
        state.PauseTiming();
        db.removeTextEntriesForFile(&file, true);
        for (const String& text : texts)
            db.addTextEntry(&file, SongDBTextEntry::Title, text);
        state.ResumeTiming();
        db.sortTextEntries();
    }
    db.removeTextEntriesForFile(&file, true);
    state.SetItemsProcessed(state.iterations() * SortedTexts);
}
BENCHMARK(BM_SortTextEntries)->Unit(benchmark::kMillisecond);

// What making the entries costs (bare text and sort key, once each).
void BM_MakeTextEntries(benchmark::State& state) {
    const StringArray texts = libraryTexts();
    TextDatabase db;
    SongDBFileEntry file(&db);
    for (auto _ : state) {
        for (const String& text : texts)
            db.addTextEntry(&file, SongDBTextEntry::Title, text);
        state.PauseTiming();
        db.removeTextEntriesForFile(&file, true);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * SortedTexts);
}
BENCHMARK(BM_MakeTextEntries)->Unit(benchmark::kMillisecond);

}  // namespace
