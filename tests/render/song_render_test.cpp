// Chord sheets and set lists drawn by the Cairo backend: their text in the
// PDF, chords over their letters as shaped, and pictures compared with the
// golden images in tests/data/render.
//
// MELODEX_UPDATE_GOLDEN=1 writes the images afresh into tests/data/render
// (look at them before committing them).

#include <cairo.h>

#include <cstdlib>
#include <filesystem>
#include <memory>

#include <gtest/gtest.h>

#include "melodex/display/song_display_profile.h"
#include "melodex/library/song_set.h"
#include "melodex/render/cairo_draw_context.h"
#include "melodex/render/pdf_document.h"
#include "melodex/render/png_image.h"
#include "melodex/song/song.h"
#include "melodex/ui/song_layout.h"
#include "melodex/ui/song_set_printer.h"
#include "support/pdf_text.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using Role = SongLayout::Role;

const String Samples = String(MELODEX_TEST_DATA_DIR) + "/../../samples";

Song songFrom(const String& path) {
    Song song;
    EXPECT_EQ(song.loadFromFile(path), StatusSuccess) << path;
    return song;
}

SongDisplayProfile profileOf(int flags, double base = 18) {
    SongDisplayProfile profile;
    profile.create("Test", "Test", 3, flags, base, 0, false, false, false);
    return profile;
}

constexpr int Chords = 0xD8F33;

String collapsed(const String& text) {
    return join(split(text, " \t\n\f", EmptyPieces::Skip), " ");
}

// --- Golden images --------------------------------------------------------------

// A picture reduced to what survives another machine's fonts: grey levels
// of blocks of 4 x 4 pixels.
struct Thumbnail {
    int width = 0;
    int height = 0;
    std::vector<int> grey;
};

std::optional<Thumbnail> thumbnailOf(const String& pngPath) {
    cairo_surface_t* surface = cairo_image_surface_create_from_png(pngPath.c_str());
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(surface);
        return std::nullopt;
    }
    cairo_surface_flush(surface);
    const int width = cairo_image_surface_get_width(surface);
    const int height = cairo_image_surface_get_height(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    const unsigned char* data = cairo_image_surface_get_data(surface);
    const cairo_format_t format = cairo_image_surface_get_format(surface);
    constexpr int Block = 4;
    Thumbnail thumbnail{width / Block, height / Block, {}};
    for (int by = 0; by < thumbnail.height; ++by) {
        for (int bx = 0; bx < thumbnail.width; ++bx) {
            int sum = 0;
            for (int y = by * Block; y < (by + 1) * Block; ++y) {
                for (int x = bx * Block; x < (bx + 1) * Block; ++x) {
                    std::uint32_t pixel = 0;
                    if (format == CAIRO_FORMAT_ARGB32 || format == CAIRO_FORMAT_RGB24)
                        pixel = *reinterpret_cast<const std::uint32_t*>(data + y * stride + x * 4);
                    const int red = int((pixel >> 16) & 0xFF);
                    const int green = int((pixel >> 8) & 0xFF);
                    const int blue = int(pixel & 0xFF);
                    sum += (red * 30 + green * 59 + blue * 11) / 100;
                }
            }
            thumbnail.grey.push_back(sum / (Block * Block));
        }
    }
    cairo_surface_destroy(surface);
    return thumbnail;
}

// Compares a PNG drawn now with its golden image. A block of the thumbnail
// matches when it or one of its eight neighbours in the golden thumbnail is
// within 48 grey levels of it, so that text a few pixels to the side (other
// versions of the fonts) still matches; at most 2% of the blocks may not.
// Text moved by up to four pixels leaves well under 1% unmatched, another
// song laid out on the same page 5% or more.
void expectLooksLikeGolden(PngImage& image, const String& name) {
    const String golden = test::testDataPath("render/" + name);
    if (std::getenv("MELODEX_UPDATE_GOLDEN") != nullptr) {
        ASSERT_EQ(image.saveToFile(golden), StatusSuccess);
        return;
    }
    const String actualPath =
        (std::filesystem::temp_directory_path() / ("melodex-" + name)).string();
    ASSERT_EQ(image.saveToFile(actualPath), StatusSuccess);
    const std::optional<Thumbnail> expected = thumbnailOf(golden);
    const std::optional<Thumbnail> actual = thumbnailOf(actualPath);
    ASSERT_TRUE(expected) << golden;
    ASSERT_TRUE(actual);
    ASSERT_EQ(actual->width, expected->width);
    ASSERT_EQ(actual->height, expected->height);
    const int width = actual->width;
    const int height = actual->height;
    const auto matches = [&](int x, int y) {
        const int grey = actual->grey[std::size_t(y * width + x)];
        for (int dy = -1; dy <= 1; ++dy) {
            for (int dx = -1; dx <= 1; ++dx) {
                const int nx = x + dx;
                const int ny = y + dy;
                if (nx < 0 || ny < 0 || nx >= width || ny >= height) continue;
                if (std::abs(grey - expected->grey[std::size_t(ny * width + nx)]) <= 48)
                    return true;
            }
        }
        return false;
    };
    std::size_t differing = 0;
    std::size_t inked = 0;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            if (!matches(x, y)) ++differing;
            if (expected->grey[std::size_t(y * width + x)] < 200) ++inked;
        }
    }
    EXPECT_GT(inked, actual->grey.size() / 100) << name << ": the golden image is nearly blank";
    EXPECT_LE(differing, actual->grey.size() * 2 / 100)
        << name << ": " << differing << " of " << actual->grey.size()
        << " blocks differ; the picture drawn now is " << actualPath;
    if (!::testing::Test::HasFailure()) std::filesystem::remove(actualPath);
}

// A small page at 72 dots per inch, so that a point is a pixel.
constexpr SizeF SmallPage{360, 480};

void drawFirstPage(PngImage& image, SongDisplayProfile& profile, const Song& song,
                   const ChordDisplayOptions& options = {}) {
    SongLayout layout(profile, PageSetup{24});
    layout.addSong(song, options);
    layout.layOut(image.context());
    layout.drawPage(image.context(), 0);
}

TEST(SongRenderTest, ChordSheetsLookAsTheyDid) {
    {
        PngImage image(SmallPage, 72);
        SongDisplayProfile chords = profileOf(Chords, 12);
        drawFirstPage(image, chords, songFrom(Samples + "/amazing_grace.song"));
        expectLooksLikeGolden(image, "chords_amazing_grace.png");
    }
    {
        PngImage image({360, 200}, 72);
        SongDisplayProfile brackets = profileOf(Chords | ProfileFlag::CapoChordsInBrackets, 14);
        ChordDisplayOptions capo;
        capo.capoFret = 1;
        drawFirstPage(image, brackets, songFrom(test::testDataPath("cli/keys/in_a_flat.song")),
                      capo);
        expectLooksLikeGolden(image, "capo_brackets_a_flat.png");
    }
    {
        PngImage image(SmallPage, 72);
        SongDisplayProfile chords = profileOf(Chords, 12);
        drawFirstPage(image, chords, songFrom(test::testDataPath("opensong/kol_slaven")));
        expectLooksLikeGolden(image, "cyrillic_kol_slaven.png");
    }
    {
        PngImage image(SmallPage, 72);
        SongDisplayProfile dark;
        dark.create("Dark", "Dark", 1, 0xB01, 16, 0, true, false, false);
        drawFirstPage(image, dark, songFrom(test::testDataPath("opensong/il_est_ne")));
        expectLooksLikeGolden(image, "large_print_inverted_il_est_ne.png");
    }
}

// The four sample songs as a set, by their files, with a gap and a line.
class SetRenderTest : public ::testing::Test {
protected:
    SetRenderTest() {
        const String set =
            "<songset>"
            "<songentry><filename>" +
            Samples +
            "/holy_holy_holy.song</filename></songentry>"
            "<gap/>"
            "<songentry transpose=\"-2\" capo=\"2\"><filename>" +
            Samples +
            "/amazing_grace.song</filename></songentry>"
            "<songentry sequence=\"V1,C1,V2,C1\"><filename>" +
            Samples +
            "/blessed_assurance.song</filename></songentry>"
            "<line/>"
            "<songentry><filename>" +
            Samples +
            "/come_thou_fount.song</filename></songentry>"
            "</songset>";
        EXPECT_EQ(m_set.loadFromFile(m_folder.write("sunday.set", set)), StatusSuccess);
        EXPECT_EQ(m_set.size(), 6);
    }

    test::TempFolder m_folder;
    SongSet m_set;
    SongDisplayProfile m_chords = profileOf(Chords);
};

TEST_F(SetRenderTest, EveryLineOfEverySongIsInThePdf) {
    PdfDocument pdf;
    SongSetPrintOptions options;
    options.title = "Sunday Service";
    const int pages = printSongSet(pdf.context(), m_set, m_chords, options);
    EXPECT_GE(pages, 4);
    const String path = m_folder.file("sunday.pdf");
    ASSERT_EQ(pdf.saveToFile(path), StatusSuccess);
    const std::optional<String> text = test::pdfText(path);
    if (!text) GTEST_SKIP() << "pdftotext is not installed";
    const String all = collapsed(*text);

    EXPECT_NE(all.find("Sunday Service"), String::npos);
    // pdftotext closes the blanks of "7 / 7" up.
    EXPECT_NE(replaceAll(all, " / ", "/").find(std::to_string(pages) + "/" + std::to_string(pages)),
              String::npos);
    for (int i = 0; i < m_set.size(); ++i) {
        const Song* song = m_set.entry(i).song();
        if (song == nullptr) continue;
        EXPECT_NE(all.find(song->info().title()), String::npos) << song->info().title();
        for (int s = 0; s < song->getSectionCount(); ++s) {
            const SongSection& section = *song->getSection(s);
            if (m_set.entry(i).getSequence().find(section.id()) == String::npos) continue;
            for (int l = 0; l < section.getLineCount(); ++l) {
                const String line = collapsed(section.getLine(l)->text());
                EXPECT_NE(all.find(line), String::npos) << song->info().title() << ": " << line;
            }
        }
    }
    // Amazing Grace in F with capo 2: Eb shapes, spelled in Eb.
    EXPECT_NE(all.find("Key: F Capo: 2"), String::npos);
    EXPECT_NE(all.find("Eb Ab Eb"), String::npos);
}

TEST_F(SetRenderTest, TheRunningOrderLooksAsItDid) {
    PngImage image({360, 240}, 72);
    EXPECT_EQ(printSongSet(image.context(), m_set, m_chords, {"Sunday Service", PageSetup{24}}), 1);
    expectLooksLikeGolden(image, "set_running_order.png");
}

// Measured with the shaping the page is drawn with, every chord starts where
// its letter does, in Latin with accents, Cyrillic and Chinese alike.
TEST(SongRenderTest, ChordsStandOverTheirLettersAsShaped) {
    Song song;
    auto* verse = new SongSection(SectionType::Verse);
    const struct {
        const char* text;
        std::size_t offset;
    } lines[] = {{"Jésus, que ma joie demeure", 7},
                 {"Коль славен наш Господь", 10},
                 {"奇异恩典 何等甘甜", 5}};
    for (const auto& line : lines) {
        auto* made = new SongLine;
        made->setText(line.text);
        made->addChord(SongChord("G", 0));
        made->addChord(SongChord("D7", int(line.offset)));
        verse->addLine(made);
    }
    song.addSection(verse);
    song.generateSectionIDs();

    for (bool printing : {false, true}) {
        SCOPED_TRACE(printing ? "paper" : "screen");
        PdfDocument pdf;
        PngImage image({595, 842});
        DrawContext& dc = printing ? pdf.context() : image.context();
        SongDisplayProfile chords = profileOf(Chords);
        SongLayout layout(chords);
        layout.addSong(song, {});
        layout.layOut(dc);
        std::size_t checked = 0;
        for (const SongLayout::Item& chord : layout.items()) {
            if (chord.role != Role::Chord || chord.text != "D7") continue;
            const auto lyric = std::find_if(
                layout.items().begin(), layout.items().end(), [&](const SongLayout::Item& item) {
                    return item.role == Role::Lyric && item.rect.top == chord.rect.bottom;
                });
            ASSERT_NE(lyric, layout.items().end());
            const auto& line = lines[checked++];
            EXPECT_EQ(lyric->text, line.text);
            dc.setFont(lyric->font);
            EXPECT_NEAR(chord.rect.left, lyric->rect.left + dc.advanceTo(line.text, line.offset),
                        1e-6)
                << line.text;
        }
        EXPECT_EQ(checked, 3u);
        EXPECT_EQ(dynamic_cast<CairoDrawContext&>(dc).unknownGlyphCount(), 0);
    }
}

}  // namespace
}  // namespace melodex
