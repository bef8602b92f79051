#include "melodex/foundation/text_file.h"

#include <cerrno>
#include <string>

#include <gtest/gtest.h>

#include "melodex/foundation/file_system.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using namespace std::string_literals;
using Mode = TextFile::Mode;

TEST(TextFileTest, ReadsLinesWithAnyLineEndAndEncoding) {
    test::TempFolder folder;
    // CR then CR LF; LF CR is two line ends; blanks are kept.
    // clang-format off
    const std::pair<std::string, StringArray> cases[] = {
        {"one\ntwo\r\nthree\rfour", {"one", "two", "three", "four"}}, {"\r\n", {""}}, {"", {}},
        {"a\n\nb\r\n\r\nc\r\r\nd\n\re \t\n", {"a", "", "b", "", "c", "", "d", "", "e \t"}},
        {"\xFF\xFEJ\0\xE9\0\r\0\n\0\x3D\xD8\x4F\xDE\r\0\n\0"s, {"J\u00e9", "\U0001F64F"}},
        {"\xEF\xBB\xBF\x93Gloria\x94\r\ncaf\xE9", {"\u201cGloria\u201d", "caf\u00e9"}}};
    // clang-format on
    for (const auto& [bytes, lines] : cases) {
        TextFile file;
        ASSERT_EQ(file.open(folder.write("lines.txt", bytes), Mode::Read), StatusSuccess);
        StringArray read;
        for (String line; file.readLine(line);)
            read.push_back(line);
        EXPECT_EQ(read, lines) << bytes;
    }
    String whole;
    ASSERT_EQ(readTextFile(folder.write("bom.txt", "\xEF\xBB\xBFTitle\r\n"), whole), StatusSuccess);
    EXPECT_EQ(whole, "Title\r\n");  // decoded as a whole, line ends kept
}

TEST(TextFileTest, ReportsWhyAFileCannotBeOpened) {
    test::TempFolder folder;
    TextFile file;
    String line;
    EXPECT_EQ(file.open(folder.path(), Mode::Read), Status(EISDIR));
    EXPECT_EQ(readTextFile(folder.file("missing.txt"), line), Status(ENOENT));
    // A failed open after a good one leaves nothing of the old file readable.
    ASSERT_EQ(file.open(folder.write("good.txt", "line\n"), Mode::Read), StatusSuccess);
    EXPECT_EQ(file.open(folder.file("missing.txt"), Mode::Read), Status(ENOENT));
    EXPECT_FALSE(file.isOpen() || file.readLine(line));
    EXPECT_EQ(file.open(folder.file("missing/song.txt"), Mode::Write), Status(ENOENT));
    ASSERT_TRUE(createFolders(folder.file("sub")));
    EXPECT_EQ(file.open(folder.file("sub"), Mode::Write), Status(EISDIR));
    EXPECT_EQ(file.close(), StatusSuccess);
    EXPECT_EQ(listFolder(folder.path())->size(), 2u);  // good.txt and sub, nothing else
}

TEST(TextFileTest, WritesExactBytesAtomicallyOnClose) {
    test::TempFolder folder;
    const String path = folder.write("song.txt", "old\n");
    TextFile file;
    ASSERT_EQ(file.open(path, Mode::Write), StatusSuccess);
    file.writeLine("J\u00e9sus");
    file.write("[G]Amazing\r\nno end");
    EXPECT_EQ(folder.read(path), "old\n");  // readers see the old text until close
    ASSERT_EQ(file.close(), StatusSuccess);
    EXPECT_EQ(folder.read(path), "J\u00e9sus\n[G]Amazing\r\nno end");
    {
        TextFile unicode;
        ASSERT_EQ(unicode.open(path, Mode::Write, TextFile::Encoding::Unicode), StatusSuccess);
        unicode.writeLine("J\u00e9");
        unicode.write("\U0001F64F");
        // Opening again commits what the previous open wrote; so does going away.
        ASSERT_EQ(file.open(folder.file("fresh.txt"), Mode::Write), StatusSuccess);
        file.write("fresh");
        EXPECT_FALSE(fileExists(folder.file("fresh.txt")));
        ASSERT_EQ(file.open(path, Mode::Read), StatusSuccess);
        EXPECT_EQ(folder.read("fresh.txt"), "fresh");
        file.write("ignored while reading");
    }
    EXPECT_EQ(folder.read(path), "\xFF\xFEJ\0\xE9\0\n\0\x3D\xD8\x4F\xDE"s);
    EXPECT_EQ(listFolder(folder.path())->size(), 2u);  // no temporary file left behind
}

// Found by fuzzing: lines read from a UTF-16 file that began with a second
// byte-order mark started with U+FEFF, and written back as UTF-8 the reader
// took that character for the mark and dropped it.
TEST(TextFileTest, ATextThatBeginsWithUFeffKeepsIt) {
    test::TempFolder folder;
    const String path = folder.write("in.txt", "\xFE\xFF\xFE\xFF\0[\0\r\0\n"s);
    TextFile file;
    ASSERT_EQ(file.open(path, Mode::Read), StatusSuccess);
    String line;
    ASSERT_TRUE(file.readLine(line));
    EXPECT_EQ(line, "\uFEFF[");
    for (const auto encoding : {TextFile::Encoding::Default, TextFile::Encoding::Unicode}) {
        TextFile copy;
        ASSERT_EQ(copy.open(folder.file("copy.txt"), Mode::Write, encoding), StatusSuccess);
        copy.writeLine(line);
        ASSERT_EQ(copy.close(), StatusSuccess);
        ASSERT_EQ(copy.open(folder.file("copy.txt"), Mode::Read), StatusSuccess);
        String back;
        ASSERT_TRUE(copy.readLine(back));
        EXPECT_EQ(back, line);
    }
    EXPECT_EQ(folder.read("copy.txt").substr(0, 4), "\xFF\xFE\xFF\xFE");
}

}  // namespace
}  // namespace melodex
