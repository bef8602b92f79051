// The costs of the song core: reading chord symbols, spelling transposed
// chords, transposing and copying a whole song.

#include <array>
#include <string_view>

#include <benchmark/benchmark.h>

#include "melodex/music/song_chord.h"
#include "melodex/song/song.h"

namespace {

using namespace melodex;

constexpr std::array<std::string_view, 8> Symbols = {"G",       "D/F#",  "Em7", "Cmaj7(9)",
                                                     "Abm7/Eb", "Gsus4", "Bb",  "F#m7b5/C"};

// 8 sections of 5 lines, each line with 2 chords: 40 lines, 80 chords.
Song makeSong() {
    Song song;
    song.info().setTitle("Benchmark Hymn");
    song.info().setKey("G");
    std::size_t next = 0;
    for (int s = 0; s < 8; ++s) {
        auto* section = new SongSection(s % 2 == 0 ? SectionType::Verse : SectionType::Chorus);
        song.addSection(section);
        for (int l = 0; l < 5; ++l) {
            auto* line = new SongLine;
            section->addLine(line);
            line->setText("Amazing grace, how sweet the sound that saved a wretch like me");
            for (int c = 0; c < 2; ++c) {
                line->addChord(SongChord(Symbols[next++ % Symbols.size()], 10 + c * 25));
            }
        }
    }
    song.generateSectionIDs();
    return song;
}

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
