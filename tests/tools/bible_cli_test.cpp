// The "bible" commands run as a user runs them, one step after another over
// one data folder: what each prints (standard output and error together)
// and how it exits.

#include <sys/wait.h>

#include <cstdlib>

#include <gtest/gtest.h>

#include "melodex/foundation/file_system.h"
#include "melodex/foundation/text.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

struct Step {
    const char* command;  // after "melodex"; {data} is the test data, {tmp} the temporary folder
    int exit;
    const char* output;  // {tmp} for the temporary folder
};

class BibleCliTest : public ::testing::Test {
protected:
    void run(const std::vector<Step>& steps) {
        const String data = String(MELODEX_TEST_DATA_DIR) + "/bible";
        for (const Step& step : steps) {
            String line = replaceAll(step.command, "{data}", data);
            line = replaceAll(line, "{tmp}", m_folder.path());
            const String command = "cd '" + m_folder.path() + "' && '" + MELODEX_CLI_PROGRAM +
                                   "' " + line + " >output 2>&1";
            const int status = std::system(command.c_str());
            String output = replaceAll(m_folder.read("output"), m_folder.path(), "{tmp}");
            output = replaceAll(output, data, "{data}");
            SCOPED_TRACE(step.command);
            EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, step.exit);
            EXPECT_EQ(strip(output, "\n", StripSide::End), step.output);
        }
    }

    test::TempFolder m_folder;
};

TEST_F(BibleCliTest, ImportsListsShowsAndSearches) {
    // clang-format off
    run({
        {"--data {tmp}/data bible list", 1, "melodex: no Bible database at {tmp}/data"},
        {"--data {tmp}/data bible import {data}/Mini", 0,
         "Imported \"Mini\": 3 books, 9 verses into {tmp}/data/Bible Database/Mini"},
        {"--data {tmp}/data bible import {data}/french.xmm", 0,
         "Imported \"Louis Segond\": 2 books, 3 verses into {tmp}/data/Bible Database/Louis Segond"},
        {"--data {tmp}/data bible import {data}/Mini/", 0,
         "Imported \"Mini\": 3 books, 9 verses into {tmp}/data/Bible Database/Mini 2"},
        {"--data {tmp}/data bible list", 0,
         "TITLE         BOOKS  VERSES  HIDDEN  FOLDER\n"
         "Louis Segond      2       3          Louis Segond\n"
         "Mini              3       9          Mini\n"
         "Mini              3       9          Mini 2\n"
         "3 Bibles in {tmp}/data/Bible Database"},
        {"--data {tmp}/data bible show mini 'John 3:16-17; Jude 3'", 0,
         "John 3\n"
         "16 For God so loved the world,\n"
         "17 For God sent not his Son into the world to condemn the world;\n"
         "\n"
         "Jude 1\n"
         "3 Beloved, when I gave all diligence to write unto you,"},
        {"--data {tmp}/data bible show 'louis segond' --european Joh 11,35-36", 0,
         "John 11\n"
         "35 Jésus pleura.\n"
         "36 Sur quoi les Juifs dirent: Voyez comme il l’aimait."},
        {"--data {tmp}/data bible search 'Louis Segond' jesus", 0,
         "John 11:35  Jésus pleura.\n1 verse in Louis Segond"},
        {"--data {tmp}/data bible search 'Louis Segond' \"l'eternel\" BERGER", 0,
         "Psalms 23:1  L’Éternel est mon berger: je ne manquerai de rien.\n1 verse in Louis Segond"},
        {"--data {tmp}/data bible search Mini moses", 1, "No verse of Mini holds \"moses\""},
        {"--data {tmp}/data bible show Mini 'Gen 51:1'", 1,
         "melodex: Genesis has no chapter 51; the last is 1"},
        {"--data {tmp}/data bible show Mini 'John 3:99'", 1,
         "melodex: John 3 has no verse 99; the last is 18"},
        {"--data {tmp}/data bible show Mini 'Exodus 1:1'", 1, "melodex: Mini has no book Exodus"},
        {"--data {tmp}/data bible show Mini 'John 3:'", 2,
         "melodex: \"John 3:\" is not a reference: the verse number is missing"},
        {"--data {tmp}/data bible show Geneva 'John 3:16'", 1,
         "melodex: no Bible is called \"Geneva\"; installed: Louis Segond, Mini, Mini"},
        // With several Bibles, a lone word is a passage of no Bible in particular.
        {"--data {tmp}/data bible show Mini", 2,
         "melodex: several Bibles are installed; name one: Louis Segond, Mini, Mini"},
        {"--data {tmp}/data bible search", 2, "melodex: WORDS is required"},
    });
    // clang-format on
}

TEST_F(BibleCliTest, HidesRemovesAndRefusesWhatIsNoBible) {
    // clang-format off
    run({
        {"--data {tmp}/data bible import {data}/Mini", 0,
         "Imported \"Mini\": 3 books, 9 verses into {tmp}/data/Bible Database/Mini"},
        // The only Bible need not be named.
        {"--data {tmp}/data bible show John 3:16", 0,
         "John 3\n16 For God so loved the world,"},
        {"--data {tmp}/data bible search 'so loved'", 0,
         "John 3:16  For God so loved the world,\n1 verse in Mini"},
        {"--data {tmp}/data bible hide Mini", 0, "Hidden: \"Mini\""},
        {"--data {tmp}/data bible list", 0,
         "TITLE  BOOKS  VERSES  HIDDEN  FOLDER\n"
         "Mini       3       9  yes     Mini\n"
         "1 Bible in {tmp}/data/Bible Database"},
        // A hidden Bible is not the one a passage is taken from unnamed.
        {"--data {tmp}/data bible show 'John 3:16'", 1,
         "melodex: no Bible is installed (and shown) in {tmp}/data/Bible Database"},
        {"--data {tmp}/data bible show Mini 'John 3:16'", 0, "John 3\n16 For God so loved the world,"},
        {"--data {tmp}/data bible unhide mini", 0, "Shown: \"Mini\""},
        {"--data {tmp}/data bible remove Mini", 0,
         "Removed \"Mini\" ({tmp}/data/Bible Database/Mini)"},
        {"--data {tmp}/data bible remove Mini", 1,
         "melodex: no Bible is called \"Mini\"; none is installed in {tmp}/data/Bible Database"},
        {"--data {tmp}/data bible import {data}/not-a-bible.xml", 1,
         "melodex: not an XML Bible: {data}/not-a-bible.xml (it needs a \"bible\" element whose "
         "books, chapters and verses carry \"n\" attributes)"},
        {"--data {tmp}/data bible import {data}", 1,
         "melodex: no book file in {data}: a .bbl folder holds one file per book, named after "
         "the book (Genesis.bbl, 1 Samuel.bbl, Song of Songs.bbl, Psalms.bbl ...)"},
        {"--data {tmp}/data bible import {data}/Mini/Jude.bbl", 1,
         "melodex: a .bbl file is imported with its folder: melodex bible import \"{data}/Mini\""},
        {"--data {tmp}/data bible import {tmp}/missing.xml", 1,
         "melodex: cannot read \"{tmp}/missing.xml\": No such file or directory"},
        {"--data {tmp}/data bible list", 0,
         "TITLE  BOOKS  VERSES  HIDDEN  FOLDER\n0 Bibles in {tmp}/data/Bible Database"},
        {"--data {tmp}/data bible", 2, "A subcommand is required\nRun with --help for more information."},
    });
    // clang-format on
    // Nothing half-made was left in the database folder.
    const auto items = listFolder(m_folder.file("data/Bible Database"));
    ASSERT_TRUE(items);
    EXPECT_TRUE(items->empty());
}

TEST_F(BibleCliTest, ReadingCommandsCreateNothing) {
    createFolders(m_folder.file("data"));
    run({{"--data {tmp}/data bible list", 0,
          "TITLE  BOOKS  VERSES  HIDDEN  FOLDER\n0 Bibles in {tmp}/data/Bible Database"},
         {"--data {tmp}/data bible search Mini word", 1,
          "melodex: no Bible is called \"Mini\"; none is installed in {tmp}/data/Bible Database"},
         {"--data {tmp}/nowhere bible show Mini 'John 3:16'", 1,
          "melodex: no Bible database at {tmp}/nowhere"}});
    EXPECT_FALSE(folderExists(m_folder.file("data/Bible Database")));
    EXPECT_FALSE(folderExists(m_folder.file("nowhere")));
}

}  // namespace
}  // namespace melodex
