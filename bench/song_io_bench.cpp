// Reading and writing a song in memory: the ".song", ".txt" and ".sng"
// layouts and an OpenSong song, each of 8 sections, 40 lines and 80 chords.

#include <array>
#include <string_view>

#include <benchmark/benchmark.h>

#include "melodex/foundation/text_encoding.h"
#include "melodex/song/song.h"

namespace {

using namespace melodex;

constexpr std::array<std::string_view, 8> Symbols = {"G",       "D/F#",  "Em7", "Cmaj7(9)",
                                                     "Abm7/Eb", "Gsus4", "Bb",  "F#m7b5/C"};
constexpr std::string_view Lyric = "Amazing grace, how sweet the sound that saved a wretch like me";

// 8 sections of 5 lines, each line with 2 chords: 40 lines, 80 chords.
Song makeSong() {
    Song song;
    song.info().setTitle("Benchmark Hymn");
    song.info().setAuthor("Anonymous");
    song.info().setKey("G");
    std::size_t next = 0;
    for (int s = 0; s < 8; ++s) {
        auto* section = new SongSection(s % 2 == 0 ? SectionType::Verse : SectionType::Chorus);
        song.addSection(section);
        for (int l = 0; l < 5; ++l) {
            auto* line = new SongLine;
            section->addLine(line);
            line->setText(Lyric);
            for (int c = 0; c < 2; ++c)
                line->addChord(SongChord(Symbols[next++ % Symbols.size()], 10 + c * 25));
        }
    }
    song.generateSectionIDs();
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
            for (int c = 0; c < 2; ++c) {
                row.resize(std::size_t(11 + c * 25), ' ');
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

// The bytes of a file of `fileType`, as saveToFile writes them.
String fileBytes(int fileType) {
    Song song = makeSong();
    String text = song.saveToText(fileType, true);
    if (fileType == SongFileType::Song) return text;
    text = replaceAll(text, "\n", "\r\n");
    return fileType == SongFileType::Sng ? encodeUtf16LE(text, true) : text;
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

void BM_LoadSong(benchmark::State& state) {
    const String bytes = fileBytes(int(state.range(0)));
    Song song;
    for (auto _ : state) {
        Status status = song.loadFromText(bytes);
        benchmark::DoNotOptimize(status);
    }
    state.SetBytesProcessed(std::int64_t(state.iterations()) * std::int64_t(bytes.size()));
}
BENCHMARK(BM_LoadSong)->ArgName("type")->Arg(1)->Arg(2)->Arg(3);

void BM_LoadOpenSong(benchmark::State& state) {
    const String bytes = makeOpenSong();
    Song song;
    for (auto _ : state) {
        Status status = song.loadFromText(bytes);
        benchmark::DoNotOptimize(status);
    }
    state.SetBytesProcessed(std::int64_t(state.iterations()) * std::int64_t(bytes.size()));
}
BENCHMARK(BM_LoadOpenSong);

}  // namespace
