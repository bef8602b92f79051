// The costs of drawing: laying out a table of 100 rows (on the
// fixed-advance context, which is the table's own work, and on Cairo and
// Pango for paper and for a screen, which adds shaping every text), printing
// it to a PDF, and drawing one screen page of it into a PNG; a set of the
// four sample hymns printed to a PDF under the Chords profile (running order
// and chord sheets), and one hymn's chord sheet drawn into a PNG.

#include <cstdlib>
#include <string>

#include <benchmark/benchmark.h>

#include "melodex/display/song_display_profile.h"
#include "melodex/foundation/file_system.h"
#include "melodex/library/song_set.h"
#include "melodex/render/pdf_document.h"
#include "melodex/render/png_image.h"
#include "melodex/render/table_pdf.h"
#include "melodex/song/song.h"
#include "melodex/ui/fixed_advance_draw_context.h"
#include "melodex/ui/song_layout.h"
#include "melodex/ui/song_set_printer.h"
#include "melodex/ui/table.h"

namespace {

using namespace melodex;

// A library listing of `rows` songs in the scripts a congregation uses.
Table libraryTable(int rows) {
    const char* const titles[] = {"Amazing Grace",
                                  "Stille Nacht, heilige Nacht",
                                  "Jésus, que ma joie demeure",
                                  "Слава Отцу и Сыну",
                                  "Δόξα Πατρί",
                                  "הללויה",
                                  "奇异恩典"};
    const char* const keys[] = {"G", "Bb", "D", "Em", "F#", "Ab"};
    Table table;
    table.addColumn(" Title ");
    table.addColumn(" Key ");
    table.addColumn(" Author ");
    for (int i = 0; i < rows; ++i) {
        TableRow* row = table.addRow();
        row->cell(0)->text(" " + std::string(titles[i % 7]) + " " + std::to_string(i) + " ");
        row->cell(1)->text(" " + std::string(keys[i % 6]) + " ");
        row->cell(2)->text(" Author number " + std::to_string(i * 7919 % 1000) + " ");
    }
    return table;
}

void BM_TableLayoutFixedAdvance(benchmark::State& state) {
    Table table = libraryTable(100);
    FixedAdvanceDrawContext dc(true);
    for (auto _ : state) {
        table.calculate(dc, {36, 36, 559, 806});
        benchmark::DoNotOptimize(table.row(99)->rect(1));
    }
}
BENCHMARK(BM_TableLayoutFixedAdvance)->Unit(benchmark::kMicrosecond);

void BM_TableLayoutCairo(benchmark::State& state, bool printing) {
    Table table = libraryTable(100);
    PdfDocument pdf;
    PngImage image({595, 842});
    DrawContext& dc = printing ? pdf.context() : image.context();
    for (auto _ : state) {
        table.calculate(dc, {36, 36, 559, 806});
        benchmark::DoNotOptimize(table.row(99)->rect(1));
    }
}
BENCHMARK_CAPTURE(BM_TableLayoutCairo, paper, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_TableLayoutCairo, screen, false)->Unit(benchmark::kMillisecond);

void BM_TablePrintedToPdf(benchmark::State& state) {
    Table table = libraryTable(100);
    TablePrintOptions options;
    options.title = "Song library: 100 songs";
    for (auto _ : state) {
        const std::string pdf = printTableToPdf(table, options);
        benchmark::DoNotOptimize(pdf.size());
    }
}
BENCHMARK(BM_TablePrintedToPdf)->Unit(benchmark::kMillisecond);

// One A4 page at 96 dpi (794 x 1123 pixels): the table drawn and the image
// encoded as PNG.
void BM_PngPage(benchmark::State& state) {
    Table table = libraryTable(60);
    for (auto _ : state) {
        PngImage image({595, 842});
        table.calculate(image.context(), {36, 36, 559, 806});
        table.draw(image.context());
        const std::string png = image.pngBytes();
        benchmark::DoNotOptimize(png.size());
    }
}
BENCHMARK(BM_PngPage)->Unit(benchmark::kMillisecond);

SongDisplayProfile chordsProfile() {
    SongDisplayProfile profile;
    profile.create("Chords", "Chords", 3, 0xD8F33, 18, 0, false, false, false);
    return profile;
}

// Four hymns by their files, one moved and played with a capo, one in a
// running order of its own, with a gap and a line between them.
void BM_SetToPdf(benchmark::State& state) {
    const std::string samples = MELODEX_SAMPLES_DIR;
    SongSet set;
    const std::string file =
        "<songset>"
        "<songentry><filename>" +
        samples +
        "/holy_holy_holy.song</filename></songentry><gap/>"
        "<songentry transpose=\"-2\" capo=\"2\"><filename>" +
        samples +
        "/amazing_grace.song</filename></songentry>"
        "<songentry sequence=\"V1,C1,V2,C1,V3,C1\"><filename>" +
        samples +
        "/blessed_assurance.song</filename></songentry><line/>"
        "<songentry><filename>" +
        samples +
        "/come_thou_fount.song</filename></songentry>"
        "</songset>";
    const std::string path = std::string(std::getenv("TMPDIR") ? std::getenv("TMPDIR") : "/tmp") +
                             "/melodex-render-bench.set";
    if (writeFileAtomically(path, file) != StatusSuccess ||
        set.loadFromFile(path) != StatusSuccess || set.size() != 6) {
        state.SkipWithError("cannot make the set");
        return;
    }
    SongDisplayProfile profile = chordsProfile();
    int pages = 0;
    for (auto _ : state) {
        PdfDocument pdf;
        pages = printSongSet(pdf.context(), set, profile, {"Sunday Service", {}});
        const std::string& bytes = pdf.finish();
        benchmark::DoNotOptimize(bytes.size());
    }
    state.counters["pages"] = pages;
}
BENCHMARK(BM_SetToPdf)->Unit(benchmark::kMillisecond);

// One hymn's chord sheet as a screen shows it: an A4 page at 96 dpi, laid
// out, drawn and encoded.
void BM_SongToPng(benchmark::State& state) {
    Song song;
    if (song.loadFromFile(std::string(MELODEX_SAMPLES_DIR) + "/blessed_assurance.song") !=
        StatusSuccess) {
        state.SkipWithError("cannot read the song");
        return;
    }
    SongDisplayProfile profile = chordsProfile();
    for (auto _ : state) {
        PngImage image({595, 842});
        SongLayout layout(profile);
        layout.addSong(song);
        layout.layOut(image.context());
        layout.drawPage(image.context(), 0);
        const std::string png = image.pngBytes();
        benchmark::DoNotOptimize(png.size());
    }
}
BENCHMARK(BM_SongToPng)->Unit(benchmark::kMillisecond);

}  // namespace
