// The costs of drawing: laying out a table of 100 rows (on the
// fixed-advance context, which is the table's own work, and on Cairo and
// Pango for paper and for a screen, which adds shaping every text), printing
// it to a PDF, and drawing one screen page of it into a PNG.

#include <string>

#include <benchmark/benchmark.h>

#include "melodex/render/pdf_document.h"
#include "melodex/render/png_image.h"
#include "melodex/render/table_pdf.h"
#include "melodex/ui/fixed_advance_draw_context.h"
#include "melodex/ui/table.h"

namespace {

using namespace melodex;

// A library listing of `rows` songs in the scripts a congregation uses.
Table libraryTable(int rows) {
    const char* const titles[] = {"Amazing Grace",     "Stille Nacht, heilige Nacht",
                                  "Jésus, que ma joie demeure", "Слава Отцу и Сыну",
                                  "Δόξα Πατρί",       "הללויה", "奇异恩典"};
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

}  // namespace
