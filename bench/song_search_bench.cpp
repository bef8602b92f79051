// Searching a library of 10,000 songs as people type: taking the snapshot
// from the open library, reading every song's lyrics once (the first
// search), and then one query after another, from a rare word to a single
// letter that nearly every song holds. The library is generated into a
// temporary folder on first use and removed at exit.

#include <stdlib.h>

#include <filesystem>
#include <random>
#include <string>

#include <benchmark/benchmark.h>

#include "melodex/foundation/file_system.h"
#include "melodex/library/song_database.h"
#include "melodex/library/song_search.h"
#include "melodex/song/song.h"

#include "bench_words.h"

namespace {

using namespace melodex;
namespace fs = std::filesystem;

constexpr int LibrarySongs = 10000;

// Words of the languages churches sing in, with their accents and the
// typographic apostrophes real files hold.
const char* const Words[] = {
    "grace",   "glory",  "Śpieszmy", "Jezusa",  "Größer",   "Herrlichkeit", "Keresztednél",
    "Jézusom", "pow’r",  "Jesus’",   "name",    "Noël",     "Свят",         "Господь",
    "hope",    "mercy",  "światło",  "łaska",   "Gnade",    "kegyelem",     "love",
    "peace",   "heaven", "Seigneur", "louange", "alleluia", "Zion",         "cross",
    "crown",   "river",  "shepherd", "morning"};

using bench::makeHymn;
using bench::WordSource;

// The library, written and indexed on first use; each benchmark opens it
// from its index as a program does.
class Library {
public:
    static Library& get() {
        static Library library;
        return library;
    }
    ~Library() {
        std::error_code ignored;
        fs::remove_all(m_root, ignored);
    }
    void open(SongDatabase& db) const {
        db.setDatabaseFolder(m_folder);
        db.setHostName("BENCH");
        db.open();
    }

private:
    Library() {
        String pattern = (fs::temp_directory_path() / "melodex-search-bench-XXXXXX").string();
        m_root = ::mkdtemp(pattern.data()) ? pattern : String();
        m_folder = m_root + "/Song Database";
        const String files = m_folder + "/Song Files";
        createFolders(files);
        WordSource words(Words, 2024);
        for (int i = 0; i < LibrarySongs; ++i) {
            Song song = makeHymn(words, i);
            (void)song.saveToFile(files + "/Song " + std::to_string(i) + ".song", 1);
        }
        SongDatabase db;
        open(db);
        db.close();
    }

    String m_root;
    String m_folder;
};

void BM_SearchSnapshot(benchmark::State& state) {
    SongDatabase db;
    Library::get().open(db);
    for (auto _ : state) {
        SongSearch search(db);
        benchmark::DoNotOptimize(search.songCount());
    }
    db.close();
}
BENCHMARK(BM_SearchSnapshot)->Unit(benchmark::kMillisecond);

void BM_SearchReadLyrics(benchmark::State& state) {
    SongDatabase db;
    Library::get().open(db);
    for (auto _ : state) {
        SongSearch search(db);
        search.loadLyrics();
        benchmark::DoNotOptimize(search.hasLyrics());
    }
    db.close();
}
BENCHMARK(BM_SearchReadLyrics)->Unit(benchmark::kMillisecond)->Iterations(3);

const char* const Queries[] = {
    "spieszmy", "keresztednel", "pow'r of jesus' name", "grosser herrlichkeit", "e", "xyzzy"};

void BM_SearchQuery(benchmark::State& state) {
    SongDatabase db;
    Library::get().open(db);
    SongSearch search(db);
    search.loadLyrics();
    const char* query = Queries[state.range(0)];
    std::size_t hits = 0;
    for (auto _ : state) {
        hits = search.search(query).size();
        benchmark::DoNotOptimize(hits);
    }
    state.SetLabel(String("\"") + query + "\": " + std::to_string(hits) + " songs");
    db.close();
}
BENCHMARK(BM_SearchQuery)
    ->DenseRange(0, int(std::size(Queries)) - 1)
    ->Unit(benchmark::kMillisecond);

// As a list that shows the first 50 songs while the user types.
void BM_SearchFirstScreen(benchmark::State& state) {
    SongDatabase db;
    Library::get().open(db);
    SongSearch search(db);
    search.loadLyrics();
    const char* query = Queries[state.range(0)];
    for (auto _ : state)
        benchmark::DoNotOptimize(search.search(query, 50).size());
    state.SetLabel(String("\"") + query + "\"");
    db.close();
}
BENCHMARK(BM_SearchFirstScreen)
    ->DenseRange(0, int(std::size(Queries)) - 1)
    ->Unit(benchmark::kMillisecond);

}  // namespace
