// Reading and writing a song in memory: the ".song", ".txt" and ".sng"
// layouts and an OpenSong song, each of 8 sections, 40 lines and 80 chords.

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include <benchmark/benchmark.h>

#include "bench_songs.h"
#include "melodex/foundation/file_system.h"
#include "melodex/song/song.h"

namespace {

using namespace melodex;
using melodex::bench::ChordOffsets;
using melodex::bench::Lyric;
using melodex::bench::Symbols;

// The benchmark song with an author and an id, as a saved song has them.
Song makeSong() {
    Song song = bench::makeSong();
    song.info().setAuthor("Anonymous");
    song.generateUUID();
    return song;
}

// The same song as OpenSong writes it: a chord row over each lyric row.
String makeOpenSong() {
    String lyrics;
    std::size_t next = 0;
    for (int s = 0; s < 8; ++s) {
        lyrics += s % 2 == 0 ? "[V" : "[C";
        lyrics += std::to_string(s / 2 + 1) + "]\n";
        for (int l = 0; l < 5; ++l) {
            String row = ".";
            for (int offset : ChordOffsets) {
                row.resize(std::size_t(offset + 1), ' ');  // column 0 holds the marker
                row += Symbols[next++ % Symbols.size()];
            }
            lyrics += row + "\n " + String(Lyric) + "\n";
        }
    }
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<song>\n  <title>Benchmark Hymn</title>\n"
           "  <author>Anonymous</author>\n  <key>G</key>\n  <presentation>V1 C1 V2 "
           "C1</presentation>\n"
           "  <lyrics>" +
           lyrics + "</lyrics>\n</song>\n";
}

// The bytes of a file of `fileType`, saved into a scratch folder and read
// back.
String fileBytes(int fileType) {
    namespace fs = std::filesystem;
    String folder = (fs::temp_directory_path() / "melodex-song-bench-XXXXXX").string();
    if (::mkdtemp(folder.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    const String path = joinPath(folder, "song");
    String bytes;
    Song song = makeSong();
    const bool saved = song.saveToFile(path, fileType) == StatusSuccess &&
                       readFileBytes(path, bytes) == StatusSuccess;
    std::error_code ignored;
    fs::remove_all(folder, ignored);
    if (!saved) throw std::runtime_error("cannot save the benchmark song");
    return bytes;
}

void BM_SaveSong(benchmark::State& state) {
    Song song = makeSong();
    const int fileType = int(state.range(0));
    for (auto _ : state) {
        String text = song.saveToText(fileType, true);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(BM_SaveSong)->ArgName("type")->Arg(1)->Arg(2)->Arg(3);

// Loads `bytes` into one song again and again.
void loadRepeatedly(benchmark::State& state, const String& bytes) {
    Song song;
    for (auto _ : state) {
        Status status = song.loadFromText(bytes);
        benchmark::DoNotOptimize(status);
    }
    state.SetBytesProcessed(std::int64_t(state.iterations()) * std::int64_t(bytes.size()));
}

void BM_LoadSong(benchmark::State& state) {
    loadRepeatedly(state, fileBytes(int(state.range(0))));
}
BENCHMARK(BM_LoadSong)->ArgName("type")->Arg(1)->Arg(2)->Arg(3);

void BM_LoadOpenSong(benchmark::State& state) {
    loadRepeatedly(state, makeOpenSong());
}
BENCHMARK(BM_LoadOpenSong);

}  // namespace
