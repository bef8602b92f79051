// The costs of the song core: reading chord symbols, spelling transposed
// chords, transposing and copying a whole song.

#include <array>

#include <benchmark/benchmark.h>

#include "bench_songs.h"
#include "melodex/music/song_chord.h"
#include "melodex/song/song.h"

namespace {

using namespace melodex;
using melodex::bench::makeSong;
using melodex::bench::Symbols;

void BM_ParseChordSymbol(benchmark::State& state) {
    SongChord chord;
    std::size_t next = 0;
    for (auto _ : state) {
        chord = Symbols[next++ % Symbols.size()];
        benchmark::DoNotOptimize(chord);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ParseChordSymbol);

void BM_ChordToStringTransposed(benchmark::State& state) {
    std::array<SongChord, Symbols.size()> chords;
    for (std::size_t i = 0; i < Symbols.size(); ++i)
        chords[i] = Symbols[i];
    std::size_t next = 0;
    for (auto _ : state) {
        String text = chords[next++ % chords.size()].toString(3, state.range(0) != 0);
        benchmark::DoNotOptimize(text);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ChordToStringTransposed)->Arg(0)->Arg(1)->ArgName("showBoth");

void BM_TransposeSong(benchmark::State& state) {
    Song song = makeSong();
    int step = 1;
    for (auto _ : state) {
        song.transpose(step);
        step = -step;
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_TransposeSong);

void BM_CopySong(benchmark::State& state) {
    const Song song = makeSong();
    for (auto _ : state) {
        Song copy(song);
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(BM_CopySong);

}  // namespace
