#include "melodex/foundation/text_file.h"

#include <cerrno>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "melodex/foundation/file_system.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using namespace std::string_literals;
using test::TempFolder;

// Every line a file opened for reading hands out, in order.
StringArray readLines(const String& path, TextEncoding* detected = nullptr) {
    TextFile file;
    StringArray lines;
    if (file.open(path, TextFile::Mode::Read) != StatusSuccess) {
        ADD_FAILURE() << "cannot open " << path;
        return lines;
    }
    if (detected) *detected = file.detectedEncoding();
    for (String line; file.readLine(line);)
        lines.push_back(line);
    return lines;
}

// Names in the folder, to see that no temporary file was left behind.
StringArray namesIn(const String& folder) {
    StringArray names;
    for (const FolderItem& item : listFolder(folder).value_or(std::vector<FolderItem>{}))
        names.push_back(item.name);
    return names;
}

TEST(TextFileTest, ReadsLinesWithAnyLineEnd) {
    TempFolder folder;
    const std::pair<std::string, StringArray> cases[] = {
        {"one\ntwo\r\nthree\rfour", {"one", "two", "three", "four"}},
        {"a\n\nb\r\n\r\nc\r\rd\n", {"a", "", "b", "", "c", "", "d"}},
        {"a\r\r\nb", {"a", "", "b"}},  // CR, then CR LF
        {"a\n\rb", {"a", "", "b"}},    // LF CR is two line ends
        {"\r\n", {""}},
        {"\n\n", {"", ""}},
        {"", {}},
        {"  blanks kept \t\n", {"  blanks kept \t"}},
    };
    for (const auto& [bytes, lines] : cases)
        EXPECT_EQ(readLines(folder.write("lines.txt", bytes)), lines) << bytes;
}

TEST(TextFileTest, DecodesWhatItReads) {
    TempFolder folder;
    TextEncoding found = TextEncoding::Utf8;
    const String utf16 =
        folder.write("utf16.txt", "\xFF\xFEJ\0\xE9\0\r\0\n\0\x3D\xD8\x4F\xDE\r\0\n\0"s);
    EXPECT_EQ(readLines(utf16, &found), (StringArray{"J\u00e9", "\U0001F64F"}));
    EXPECT_EQ(found, TextEncoding::Utf16LE);

    const String old = folder.write("old.txt", "\x93Gloria\x94\r\ncaf\xE9");
    EXPECT_EQ(readLines(old, &found), (StringArray{"\u201cGloria\u201d", "caf\u00e9"}));
    EXPECT_EQ(found, TextEncoding::Windows1252);
    TextFile file;
    ASSERT_EQ(file.open(old, TextFile::Mode::Read), StatusSuccess);
    EXPECT_EQ(file.text(), "\u201cGloria\u201d\r\ncaf\u00e9");

    String whole;
    ASSERT_EQ(readTextFile(folder.write("bom.txt", "\xEF\xBB\xBFTitle\n"), whole, &found),
              StatusSuccess);
    EXPECT_EQ(whole, "Title\n");
    EXPECT_EQ(found, TextEncoding::Utf8Bom);
}

TEST(TextFileTest, ReportsWhyAFileCannotBeRead) {
    TempFolder folder;
    TextFile file;
    String line;
    EXPECT_EQ(file.open(folder.file("missing.txt"), TextFile::Mode::Read), Status(ENOENT));
    EXPECT_FALSE(file.isOpen());
    EXPECT_FALSE(file.readLine(line));
    EXPECT_EQ(file.open(folder.path(), TextFile::Mode::Read), Status(EISDIR));
    EXPECT_EQ(readTextFile(folder.file("missing.txt"), line), Status(ENOENT));

    // A failed open after a good one leaves nothing of the old file readable.
    ASSERT_EQ(file.open(folder.write("good.txt", "line\n"), TextFile::Mode::Read), StatusSuccess);
    EXPECT_NE(file.open(folder.file("missing.txt"), TextFile::Mode::Read), StatusSuccess);
    EXPECT_FALSE(file.isOpen());
    EXPECT_FALSE(file.readLine(line));
}

TEST(TextFileTest, WritesExactBytesInBothModes) {
    TempFolder folder;
    TextFile file;
    ASSERT_EQ(file.open(folder.file("utf8.txt"), TextFile::Mode::Write), StatusSuccess);
    file.writeLine("J\u00e9sus");
    file.write("[G]Amazing\r\nno end");
    String line;
    EXPECT_FALSE(file.readLine(line));  // not open for reading
    ASSERT_EQ(file.close(), StatusSuccess);
    EXPECT_EQ(file.close(), StatusSuccess);  // closing again does nothing
    EXPECT_EQ(folder.read("utf8.txt"), "J\u00e9sus\n[G]Amazing\r\nno end");

    ASSERT_EQ(
        file.open(folder.file("utf16.txt"), TextFile::Mode::Write, TextFile::Encoding::Unicode),
        StatusSuccess);
    file.writeLine("J\u00e9");
    file.write("\U0001F64F");
    ASSERT_EQ(file.close(), StatusSuccess);
    EXPECT_EQ(folder.read("utf16.txt"), "\xFF\xFEJ\0\xE9\0\n\0\x3D\xD8\x4F\xDE"s);

    // Lyrics survive the way out and back in either mode.
    const StringArray lyrics = {"[G]J\u00e9sus, [D]Sauveur", "\u0421\u043b\u0430\u0432\u0430", "",
                                "\u03a3\u03bf\u03c6\u03af\u03b1 \U0001F64F"};
    for (const auto encoding : {TextFile::Encoding::Default, TextFile::Encoding::Unicode}) {
        ASSERT_EQ(file.open(folder.file("lyrics.txt"), TextFile::Mode::Write, encoding),
                  StatusSuccess);
        for (const String& lyric : lyrics)
            file.writeLine(lyric);
        ASSERT_EQ(file.close(), StatusSuccess);
        EXPECT_EQ(readLines(folder.file("lyrics.txt")), lyrics);
    }
}

TEST(TextFileTest, CommitsAtomicallyOnClose) {
    TempFolder folder;
    const String path = folder.write("song.txt", "old text\n");
    {
        TextFile file;
        ASSERT_EQ(file.open(path, TextFile::Mode::Write), StatusSuccess);
        file.writeLine("new text");
        // Until the file is closed, readers see the old contents.
        EXPECT_EQ(folder.read("song.txt"), "old text\n");
        ASSERT_EQ(file.close(), StatusSuccess);
    }
    EXPECT_EQ(folder.read("song.txt"), "new text\n");

    // A new file appears only on close, and an object that goes away without
    // close() still commits.
    const String fresh = folder.file("fresh.txt");
    {
        TextFile file;
        ASSERT_EQ(file.open(fresh, TextFile::Mode::Write), StatusSuccess);
        file.write("kept");
        EXPECT_FALSE(fileExists(fresh));
    }
    EXPECT_EQ(folder.read("fresh.txt"), "kept");

    // Opening again commits what the previous open wrote.
    TextFile file;
    ASSERT_EQ(file.open(folder.file("first.txt"), TextFile::Mode::Write), StatusSuccess);
    file.write("first");
    ASSERT_EQ(file.open(path, TextFile::Mode::Read), StatusSuccess);
    EXPECT_EQ(folder.read("first.txt"), "first");
    file.write("ignored while reading");
    ASSERT_EQ(file.close(), StatusSuccess);
    EXPECT_EQ(folder.read("song.txt"), "new text\n");
    EXPECT_EQ(namesIn(folder.path()), (StringArray{"first.txt", "fresh.txt", "song.txt"}));
}

TEST(TextFileTest, RefusesToWriteWhereItCannot) {
    TempFolder folder;
    TextFile file;
    EXPECT_EQ(file.open(folder.file("missing/song.txt"), TextFile::Mode::Write), Status(ENOENT));
    EXPECT_FALSE(file.isOpen());
    ASSERT_TRUE(createFolders(folder.file("sub")));
    EXPECT_EQ(file.open(folder.file("sub"), TextFile::Mode::Write), Status(EISDIR));
    EXPECT_EQ(file.close(), StatusSuccess);
    EXPECT_TRUE(folderExists(folder.file("sub")));
    EXPECT_EQ(namesIn(folder.path()), StringArray{"sub"});
}

TEST(TextFileTest, RefusesToWriteIntoAReadOnlyFolder) {
    if (::geteuid() == 0) GTEST_SKIP() << "permissions do not bind the super-user";
    TempFolder folder;
    ASSERT_TRUE(createFolders(folder.file("locked")));
    ASSERT_EQ(::chmod(folder.file("locked").c_str(), 0555), 0);
    TextFile file;
    EXPECT_EQ(file.open(folder.file("locked/song.txt"), TextFile::Mode::Write), Status(EACCES));
    EXPECT_FALSE(file.isOpen());
}

}  // namespace
}  // namespace melodex
