// "melodex song render", "melodex set render" and "melodex library list --pdf":
// chord sheets, set lists and the library written as PDF and PNG, read back
// as a user would.

#include <sys/wait.h>

#include <cstdlib>

#include <gtest/gtest.h>

#include "melodex/foundation/file_system.h"
#include "melodex/foundation/text.h"
#include "support/pdf_text.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

const String Samples = String(MELODEX_TEST_DATA_DIR) + "/../../samples";

struct Ran {
    int exit = -1;
    String output;  // standard output and error together
};

Ran melodex(const test::TempFolder& folder, const String& arguments) {
    const String command = "cd '" + folder.path() + "' && '" + MELODEX_CLI_PROGRAM +
                           "' --data data " + arguments + " >output 2>&1";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, folder.read("output")};
}

String collapsed(const String& text) {
    return join(split(text, " \t\n\f", EmptyPieces::Skip), " ");
}

// The big-endian number at `at` in the bytes.
std::uint32_t bigEndian(const String& bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value = value << 8 | std::uint8_t(bytes[at + i]);
    return value;
}

TEST(RenderCliTest, ASongAsPdfAndAsAScreenImage) {
    const test::TempFolder folder;
    const String song = test::testDataPath("cli/keys/in_a_flat.song");
    const Ran pdf = melodex(folder, "song render --capo 1 '" + song + "' --out ab.pdf");
    ASSERT_EQ(pdf.exit, 0) << pdf.output;
    EXPECT_EQ(pdf.output, "Printed \"Song in A Flat\" on 1 page to ab.pdf\n");
    // Looking at a song leaves the data folder alone.
    EXPECT_FALSE(folderExists(folder.file("data")));

    const Ran png = melodex(folder, "song render '" + song + "' --out ab.png");
    ASSERT_EQ(png.exit, 0) << png.output;
    const String image = folder.read("ab.png");
    ASSERT_GT(image.size(), 24u);
    EXPECT_EQ(image.substr(0, 8), "\x89PNG\r\n\x1A\n");
    EXPECT_EQ(bigEndian(image, 16), 794u);  // A4 at 96 dots per inch
    EXPECT_EQ(bigEndian(image, 20), 1123u);

    const std::optional<String> text = test::pdfText(folder.file("ab.pdf"));
    if (!text) GTEST_SKIP() << "pdftotext is not installed";
    const String all = collapsed(*text);
    // In A flat with a capo on the first fret: G shapes.
    for (const char* expected : {"Song in A Flat", "Key: Ab Capo: 1", "G C D7",
                                 "Chords written sharp, shown flat", "Em F C/E G"}) {
        EXPECT_NE(all.find(expected), String::npos) << expected << " in\n" << *text;
    }
}

TEST(RenderCliTest, TheSampleSetWithItsRunningOrderAndEverySong) {
    const test::TempFolder folder;
    ASSERT_EQ(melodex(folder, "library import '" + Samples + "'").exit, 0);
    const Ran printed =
        melodex(folder, "set render '" + Samples + "/Sunday Service.set' --out sunday.pdf");
    ASSERT_EQ(printed.exit, 0) << printed.output;
    EXPECT_TRUE(printed.output.starts_with("Printed the set Sunday Service.set on "))
        << printed.output;

    const std::optional<String> text = test::pdfText(folder.file("sunday.pdf"));
    if (!text) GTEST_SKIP() << "pdftotext is not installed";
    const StringArray pages = split(*text, "\f", EmptyPieces::Skip);
    ASSERT_GE(pages.size(), 3u);
    // The running order first, under the set's name, unnumbered.
    const String order = collapsed(pages[0]);
    for (const char* expected : {"Sunday Service", "Holy, Holy, Holy", "Amazing Grace",
                                 "Blessed Assurance", "Come, Thou Fount of Every Blessing",
                                 "Doxology", "transpose -2", "order V1,C1,V2,C1,V3,C1"}) {
        EXPECT_NE(order.find(expected), String::npos) << expected << " in\n" << pages[0];
    }
    // Then the songs, numbered on; Amazing Grace in F played in Eb shapes.
    const String songs = collapsed(*text).substr(order.size());
    for (const char* expected : {"Holy, holy, holy! Lord God Almighty!", "Key: F Capo: 2",
                                 "Eb Ab Eb", "This is my story, this is my song,",
                                 "Praise God, from whom all blessings flow;", "Public domain"}) {
        EXPECT_NE(songs.find(expected), String::npos) << expected;
    }
    const String last = std::to_string(pages.size());
    EXPECT_NE(replaceAll(collapsed(pages.back()), " / ", "/").find(last + "/" + last), String::npos)
        << pages.back();
}

TEST(RenderCliTest, LibraryListPrintsTheLibraryAsATable) {
    const test::TempFolder folder;
    const String songs = String(MELODEX_TEST_DATA_DIR) + "/cli/songs";
    ASSERT_EQ(melodex(folder, "library import '" + songs + "'").exit, 0);

    const Ran printed = melodex(folder, "library list --pdf list.pdf");
    EXPECT_EQ(printed.exit, 0) << printed.output;
    EXPECT_EQ(printed.output, "Printed 2 songs on 1 page to list.pdf\n");
    const String pdf = folder.read("list.pdf");
    EXPECT_EQ(pdf.rfind("%PDF-", 0), 0u);

    // The text listing is untouched by the option's existence.
    const Ran listed = melodex(folder, "library list");
    EXPECT_EQ(listed.exit, 0);
    EXPECT_NE(listed.output.find("Amazing Grace"), String::npos);

    const Ran piped = melodex(folder, "library list --pdf -");
    EXPECT_EQ(piped.exit, 0);
    EXPECT_EQ(piped.output.rfind("%PDF-", 0), 0u);

    const Ran failed = melodex(folder, "library list --pdf 'no folder/list.pdf'");
    EXPECT_EQ(failed.exit, 1);
    EXPECT_EQ(failed.output,
              "melodex: cannot write \"no folder/list.pdf\": No such file or directory\n");
    EXPECT_EQ(melodex(folder, "library list --pdf").exit, 2);
    EXPECT_EQ(melodex(folder, "library list --pdf list.png").exit, 2);
    EXPECT_FALSE(fileExists(folder.file("list.png")));

    const std::optional<String> text = test::pdfText(folder.file("list.pdf"));
    if (!text) GTEST_SKIP() << "pdftotext is not installed";
    for (const char* expected : {"Song library: 2 songs", "Title", "Key", "Author", "Amazing Grace",
                                 "John Newton", "noël", "1/1"})
        EXPECT_NE(text->find(expected), String::npos) << expected << " in\n" << *text;
}

}  // namespace
}  // namespace melodex
