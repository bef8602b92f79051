// "melodex library list --pdf": the library printed as a table.

#include <sys/wait.h>

#include <cstdlib>

#include <gtest/gtest.h>

#include "melodex/foundation/text.h"
#include "support/pdf_text.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

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

TEST(PrintCommandsTest, LibraryListPrintsTheLibraryAsATable) {
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

    const std::optional<String> text = test::pdfText(folder.file("list.pdf"));
    if (!text) GTEST_SKIP() << "pdftotext is not installed";
    for (const char* expected : {"Song library: 2 songs", "Title", "Key", "Author", "Amazing Grace",
                                 "John Newton", "noël", "1/1"})
        EXPECT_NE(text->find(expected), String::npos) << expected << " in\n" << *text;
}

}  // namespace
}  // namespace melodex
