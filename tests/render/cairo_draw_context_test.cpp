#include "melodex/render/cairo_draw_context.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "melodex/render/pdf_document.h"
#include "melodex/render/png_image.h"
#include "support/pdf_text.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using test::TempFolder;

// Lyrics in the scripts congregations sing in.
const struct {
    const char* script;
    const char* text;
} Lyrics[] = {
    {"accented Latin", "Jésus, que ma joie demeure; Stille Nacht, heilige Nacht"},
    {"Cyrillic", "Слава Отцу и Сыну и Святому Духу"},
    {"Greek", "Δόξα Πατρί καὶ Υἱῷ καὶ Ἁγίῳ Πνεύματι"},
    {"Hebrew", "הללויה שירו לאדוני שיר חדש"},
    {"CJK", "奇异恩典 何等甘甜 主の祈り 주기도문"},
};

CairoDrawContext& cairoOf(DrawContext& dc) {
    return dynamic_cast<CairoDrawContext&>(dc);
}

TEST(CairoDrawContextTest, ShapesEveryScriptWithInstalledFonts) {
    PngImage image({600, 200});
    CairoDrawContext& dc = cairoOf(image.context());
    dc.setFont({"Arial", 12});
    for (const auto& lyric : Lyrics) {
        const SizeF extent = dc.textExtent(lyric.text);
        EXPECT_GT(extent.width, 50) << lyric.script;
        EXPECT_GT(extent.height, 12) << lyric.script;
        EXPECT_EQ(dc.unknownGlyphCount(), 0) << lyric.script << " has letters no font has";
    }
    // A letter no font has is counted (a private-use code point).
    dc.textExtent("\xEE\x80\x80");
    EXPECT_GT(dc.unknownGlyphCount(), 0);
}

TEST(CairoDrawContextTest, PrintsEveryScriptAsSearchableText) {
    TempFolder folder;
    PdfDocument pdf;
    DrawContext& dc = pdf.context();
    dc.setFont({"Times New Roman", 14});
    double y = 40;
    for (const auto& lyric : Lyrics) {
        dc.drawText({40, y}, lyric.text);
        y += 30;
    }
    dc.drawWrappedText({40, y, 300, y + 100}, "Words & Music: Anonymous");
    const String path = folder.file("lyrics.pdf");
    ASSERT_EQ(pdf.saveToFile(path), StatusSuccess);
    EXPECT_EQ(folder.read("lyrics.pdf").rfind("%PDF-", 0), 0u);

    const std::optional<String> text = test::pdfText(path);
    if (!text) GTEST_SKIP() << "pdftotext is not installed";
    for (const auto& lyric : Lyrics) {
        // pdftotext writes right-to-left lines in their visual order, so
        // Hebrew is checked word by word.
        for (const String& word : split(lyric.text, " ", EmptyPieces::Skip))
            EXPECT_NE(text->find(String(word).substr(0, word.find(','))), String::npos)
                << lyric.script << ": " << word;
    }
    EXPECT_NE(text->find("Words & Music"), String::npos);
}

TEST(CairoDrawContextTest, AdvancesFollowTheShapedLine) {
    for (bool printing : {false, true}) {
        PdfDocument pdf;
        PngImage image({600, 100});
        DrawContext& dc = printing ? pdf.context() : image.context();
        dc.setFont({"Arial", 12});
        const String line = "Jésus, joie des cœurs";
        const double width = dc.textExtent(line).width;
        EXPECT_EQ(dc.advanceTo(line, 0), 0);
        EXPECT_DOUBLE_EQ(dc.advanceTo(line, 21), width);
        EXPECT_DOUBLE_EQ(dc.advanceTo(line, 500), width);
        double previous = 0;
        for (std::size_t i = 1; i <= 21; ++i) {
            const double x = dc.advanceTo(line, i);
            EXPECT_GT(x, previous) << i;
            previous = x;
        }
        // Where "s" starts is the width of "Jésu" within a point (kerning).
        EXPECT_NEAR(dc.advanceTo(line, 4), dc.textExtent("Jésu").width, 0.5);

        // Stray bytes are measured as replacement characters, not dropped.
        EXPECT_GT(dc.textExtent("Gr\xE2"
                                "ce")
                      .width,
                  dc.textExtent("Grce").width);
    }
}

// Lines laid out by the metrics must not overlap as drawn: on a screen too,
// whose transformation scales points to pixels.
TEST(CairoDrawContextTest, MetricsAreThoseOfTheLinesDrawn) {
    for (bool printing : {false, true}) {
        PdfDocument pdf;
        PngImage image({300, 100});
        DrawContext& dc = printing ? pdf.context() : image.context();
        for (double size : {9.0, 18.0}) {
            dc.setFont({"Arial", size});
            const FontMetrics metrics = dc.fontMetrics();
            EXPECT_NEAR(metrics.lineHeight, dc.textExtent("Amazing grace").height, 0.01)
                << (printing ? "paper " : "screen ") << size;
            EXPECT_NEAR(metrics.ascent + metrics.descent, metrics.lineHeight, 0.01);
            EXPECT_GT(metrics.ascent, 0.8 * size);
        }
    }
}

TEST(CairoDrawContextTest, FontsTakeTheirSizeWeightAndFace) {
    PdfDocument pdf;
    DrawContext& dc = pdf.context();
    const String text = "Amazing grace, how sweet the sound";
    dc.setFont({"Arial", 10});
    const double regular = dc.textExtent(text).width;
    const FontMetrics metrics = dc.fontMetrics();
    dc.setFont({"Arial", 20});
    EXPECT_NEAR(dc.textExtent(text).width, 2 * regular, 0.5);
    EXPECT_NEAR(dc.fontMetrics().ascent, 2 * metrics.ascent, 0.5);
    dc.setFont({"Arial", 10, true});
    EXPECT_GT(dc.textExtent(text).width, regular);
    dc.setFont({"Times New Roman", 10});
    EXPECT_LT(dc.textExtent(text).width, regular);
    EXPECT_GT(metrics.ascent, 6);
    EXPECT_GT(metrics.lineHeight, metrics.ascent + metrics.descent - 0.01);

    // A face that is not installed still gives text (fontconfig substitutes).
    dc.setFont({"No Such Face 123", 10});
    EXPECT_GT(dc.textExtent(text).width, 50);

    // Saving and restoring brings the font back.
    dc.setFont({"Arial", 10});
    dc.saveState();
    dc.setFont({"Arial", 30, true});
    dc.restoreState();
    EXPECT_EQ(dc.font(), (GFont{"Arial", 10}));
    EXPECT_DOUBLE_EQ(dc.textExtent(text).width, regular);
}

TEST(CairoDrawContextTest, WrapsWithinTheRectangleAndClipsAtItsEdges) {
    PngImage image({300, 200}, 72);
    DrawContext& dc = image.context();
    dc.setFont({"Arial", 12});
    const String text = "Amazing grace how sweet the sound that saved a wretch like me";
    const double oneLine = dc.textExtent(text).height;
    const double wrapped = dc.wrappedTextHeight(text, 100);
    EXPECT_GE(wrapped, 4 * oneLine - 0.01);
    EXPECT_NEAR(dc.wrappedTextHeight("one\ntwo", 1000), 2 * oneLine, 0.5);

    dc.setTextColor(0);
    dc.setBackgroundMode(BackgroundMode::Transparent);
    dc.drawWrappedText({10, 10, 110, 40}, text);
    int inside = 0;
    int outside = 0;
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 300; ++x) {
            if (image.pixel(x, y) == 0xFFFFFF) continue;
            (x >= 10 && x < 110 && y >= 10 && y < 40 ? inside : outside)++;
        }
    }
    EXPECT_GT(inside, 100);
    EXPECT_EQ(outside, 0);
}

TEST(CairoDrawContextTest, FillsAndBackgroundsInTheirColours) {
    PngImage image({100, 100}, 72);
    DrawContext& dc = image.context();
    EXPECT_EQ(image.pixelWidth(), 100);
    EXPECT_EQ(image.pixel(50, 50), 0xFFFFFFu);
    dc.fillRect({10, 10, 30, 30}, makeColor(0, 0, 128));
    EXPECT_EQ(image.pixel(20, 20), makeColor(0, 0, 128));
    EXPECT_EQ(image.pixel(35, 20), 0xFFFFFFu);

    // Opaque text paints its line box in the background colour first.
    dc.setFont({"Arial", 10});
    dc.setBackgroundColor(makeColor(100, 100, 255));
    dc.setBackgroundMode(BackgroundMode::Opaque);
    dc.setTextColor(makeColor(255, 255, 255));
    dc.drawText({40, 40}, "  ");
    EXPECT_EQ(image.pixel(41, 42), makeColor(100, 100, 255));

    dc.saveState();
    dc.clipTo({60, 60, 70, 70});
    dc.fillRect({0, 0, 100, 100}, makeColor(255, 0, 0));
    dc.restoreState();
    EXPECT_EQ(image.pixel(65, 65), makeColor(255, 0, 0));
    EXPECT_EQ(image.pixel(75, 75), 0xFFFFFFu);
    dc.fillRect({80, 80, 90, 90}, makeColor(0, 255, 0));  // the clip is gone
    EXPECT_EQ(image.pixel(85, 85), makeColor(0, 255, 0));

    EXPECT_FALSE(dc.newPage());
    EXPECT_FALSE(dc.isPrinting());
    const std::string png = image.pngBytes();
    EXPECT_EQ(png.substr(1, 3), "PNG");
}

TEST(CairoDrawContextTest, PagesOfAPdf) {
    TempFolder folder;
    PdfDocument pdf(PageSizeLetter);
    DrawContext& dc = pdf.context();
    EXPECT_TRUE(dc.isPrinting());
    EXPECT_EQ(dc.pageSize(), PageSizeLetter);
    dc.setFont({"Arial", 12});
    dc.drawText({72, 72}, "first page");
    EXPECT_TRUE(dc.newPage());
    dc.drawText({72, 72}, "second page");
    ASSERT_EQ(pdf.saveToFile(folder.file("two.pdf")), StatusSuccess);
    EXPECT_FALSE(pdf.lastError());

    // Saving twice writes the same finished file; drawing after it is lost
    // without harm.
    dc.drawText({72, 100}, "too late");
    ASSERT_EQ(pdf.saveToFile(folder.file("again.pdf")), StatusSuccess);
    EXPECT_EQ(folder.read("two.pdf"), folder.read("again.pdf"));

    const std::optional<String> text = test::pdfText(folder.file("two.pdf"));
    if (!text) GTEST_SKIP() << "pdftotext is not installed";
    EXPECT_EQ(std::count(text->begin(), text->end(), '\f'), 2);
    EXPECT_LT(text->find("first page"), text->find('\f'));
    EXPECT_GT(text->find("second page"), text->find('\f'));
}

TEST(CairoDrawContextTest, SavingIntoAMissingFolderFailsCleanly) {
    TempFolder folder;
    PdfDocument pdf;
    const String path = folder.file("missing/out.pdf");
    EXPECT_NE(pdf.saveToFile(path), StatusSuccess);
    EXPECT_EQ(pdf.lastError().path, path);
    EXPECT_EQ(pdf.lastError().action, FileError::Action::Write);
    PngImage image({10, 10});
    EXPECT_NE(image.saveToFile(folder.path()), StatusSuccess);  // a folder is not replaced
    EXPECT_TRUE(image.lastError());
}

}  // namespace
}  // namespace melodex
