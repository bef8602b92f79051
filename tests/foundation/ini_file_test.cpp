#include "melodex/foundation/ini_file.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "melodex/foundation/file_system.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using test::TempFolder;

// A literal's bytes, NULs included.
template <std::size_t N>
std::string bytes(const char (&literal)[N]) {
    return std::string(literal, N - 1);
}

StringArray keyNames(const IniFile& file) {
    StringArray names;
    for (int i = 0; i < file.getKeyCount(); ++i)
        names.push_back(file.getKey(i)->name());
    return names;
}

TEST(IniFileTest, AwkwardValuesRoundTripThroughTextAndDisk) {
    const StringArray awkward = {"  leading blanks",
                                 "trailing tab\t",
                                 "two\nlines\r\nand CR\r",
                                 "\"Amazing\" Grace",
                                 "\"",
                                 "back\\slash \\n",
                                 "",
                                 "a=b ; not # a comment",
                                 "[not a section]",
                                 "Jésus ♪"};
    IniFile file;
    file.createKey("Song");  // no values: must still come back
    ConfigKey* values = file.createKey("Values");
    for (std::size_t i = 0; i < awkward.size(); ++i) {
        values->setString("v" + std::to_string(i), awkward[i]);
    }
    file.createKey("")->setString("late", "unnamed section after others");

    TempFolder folder;
    const String path = folder.file("index.ini");
    ASSERT_EQ(file.save(path), StatusSuccess);
    IniFile loaded;
    ASSERT_EQ(loaded.load(path), StatusSuccess);
    EXPECT_EQ(loaded.filename(), path);
    EXPECT_EQ(loaded.toString(), file.toString());
    EXPECT_EQ(keyNames(loaded), (StringArray{"Song", "Values", ""}));
    for (std::size_t i = 0; i < awkward.size(); ++i) {
        EXPECT_EQ(loaded.findKey("values")->getString("V" + std::to_string(i)), awkward[i]) << i;
    }
    EXPECT_EQ(loaded.findKey("")->getString("late"), "unnamed section after others");
}

TEST(IniFileTest, LooksUpNamesIgnoringCaseInSmallAndLargeSections) {
    IniFile file;
    file.createKey("Église")->setString("TITLE", "x");
    EXPECT_EQ(file.createKey("éGLISE"), file.findKey("église"));
    EXPECT_EQ(file.getKeyCount(), 1);
    EXPECT_EQ(file.findKey("ÉGLISE")->getString("title"), "x");

    // A string table: enough values for the section to keep a hash index,
    // which must follow values moving down after a removal.
    ConfigKey* table = file.createKey("Strings");
    for (int i = 0; i < 40; ++i)
        table->setInteger("Id" + std::to_string(i), i);
    EXPECT_TRUE(table->removeValue("ID3"));
    EXPECT_FALSE(table->removeValue("id3"));
    table->setString("ID20", "replaced");
    ASSERT_EQ(table->getValueCount(), 39);
    EXPECT_EQ(table->getInteger("id4"), 4);
    EXPECT_EQ(table->getValue(3).name(), "Id4");
    EXPECT_EQ(table->getValue(19).value(), "replaced");
    EXPECT_EQ(table->getInteger("id39"), 39);
    EXPECT_EQ(ConfigKey(*table).getString("iD20"), "replaced");  // a copy has its own index
}

TEST(IniFileTest, RemovingSectionsKeepsTheOrderOfTheOthers) {
    IniFile file;
    for (const char* name : {"a", "b", "c", "d", "e"})
        file.createKey(name);
    EXPECT_TRUE(file.removeKey("C"));
    EXPECT_TRUE(file.removeKey("a"));
    EXPECT_FALSE(file.removeKey("a"));
    EXPECT_EQ(file.findKey("c"), nullptr);
    file.createKey("C");
    EXPECT_EQ(keyNames(file), (StringArray{"b", "d", "e", "C"}));

    IniFile copy(file);
    copy.findKey("b")->setString("k", "v");
    EXPECT_FALSE(file.findKey("b")->hasValue("k"));
    EXPECT_NE(copy.findKey("b"), file.findKey("b"));
}

TEST(IniFileTest, ReadsHandWrittenAndMalformedTextLeniently) {
    IniFile file;
    file.loadFromString(
        "\xEF\xBB\xBF"
        "top = before any header\r\n"
        "; comment\r\n# comment=not a value\r\n\r\n"
        "[ Song ]  \rtitle = Amazing Grace \rno equals sign\r=no name\r[unclosed\r"
        "key=\"unterminated\n"
        "[Other]\nx=1\n"
        "[song]\nTitle=Replaced\nauthor=\"Newton\"\nnote=\"a\" b\n"
        "\x01\xFF garbage ]]]\n");
    EXPECT_EQ(keyNames(file), (StringArray{"", "Song", "Other"}));
    EXPECT_EQ(file.findKey("")->getString("top"), "before any header");
    const ConfigKey* song = file.findKey("song");
    ASSERT_NE(song, nullptr);
    EXPECT_EQ(song->getValueCount(), 4);
    EXPECT_EQ(song->getValue(0).value(), "Replaced");  // last text, first place
    EXPECT_EQ(song->getString("key"), "\"unterminated");
    EXPECT_EQ(song->getString("author"), "Newton");
    EXPECT_EQ(song->getString("note"), "\"a\" b");
    EXPECT_EQ(song->getString("missing", "default"), "default");
}

TEST(IniFileTest, NumbersFallBackToTheDefault) {
    ConfigKey key("n");
    key.setInteger("count", -42);
    key.setDouble("ratio", 0.1);
    key.setString("size", "12px");
    EXPECT_EQ(key.getInteger("count"), -42);
    EXPECT_EQ(key.getDouble("ratio"), 0.1);
    EXPECT_EQ(key.getDouble("count"), -42.0);
    EXPECT_EQ(key.getInteger("size", 7), 7);
    EXPECT_EQ(key.getInteger("ratio", 7), 7);
    EXPECT_EQ(key.getInteger("missing", 7), 7);
}

TEST(IniFileTest, ReadsEveryEncoding) {
    TempFolder folder;
    const std::pair<const char*, std::string> files[] = {
        {"utf8.ini", "[s]\nt=J\xC3\xA9sus\n"},
        {"bom.ini", "\xEF\xBB\xBF[s]\nt=J\xC3\xA9sus\n"},
        {"le.ini", bytes("\xFF\xFE[\0s\0]\0\n\0t\0=\0J\0\xE9\0s\0u\0s\0")},
        {"be.ini", bytes("\xFE\xFF\0[\0s\0]\0\n\0t\0=\0J\0\xE9\0s\0u\0s")},
        {"cp1252.ini", "[s]\nt=J\xE9sus\n"},
    };
    for (const auto& [name, content] : files) {
        IniFile file;
        ASSERT_EQ(file.load(folder.write(name, content)), StatusSuccess) << name;
        EXPECT_EQ(file.findKey("S")->getString("T"), "Jésus") << name;
    }

    // Broken input still loads: a truncated sequence falls back to
    // Windows-1252, a lone surrogate becomes U+FFFD.
    IniFile file;
    ASSERT_EQ(file.load(folder.write("cut.ini", "[s]\nt=J\xC3")), StatusSuccess);
    EXPECT_EQ(file.findKey("s")->getString("t"), "JÃ");
    ASSERT_EQ(file.load(folder.write("lone.ini", bytes("\xFF\xFEt\0=\0\x00\xD8"))), StatusSuccess);
    EXPECT_EQ(file.findKey("")->getString("t"), "\uFFFD");
}

TEST(IniFileTest, FailedLoadLeavesTheObjectAsItWas) {
    TempFolder folder;
    IniFile file;
    file.loadFromString("[kept]\na=1\n");
    file.setFilename("original.ini");
    EXPECT_EQ(file.load(folder.file("missing.ini")), Status(ENOENT));
    EXPECT_EQ(file.load(folder.path()), Status(EISDIR));
    EXPECT_EQ(file.filename(), "original.ini");
    EXPECT_EQ(file.findKey("kept")->getInteger("a"), 1);

    EXPECT_EQ(file.load(folder.write("empty.ini", "")), StatusSuccess);
    EXPECT_EQ(file.getKeyCount(), 0);
}

TEST(IniFileTest, SaveIntoAMissingFolderFailsCleanly) {
    TempFolder folder;
    IniFile file;
    file.createKey("s")->setString("a", "1");
    EXPECT_EQ(file.save(folder.file("missing/index.ini")), Status(ENOENT));
    EXPECT_NE(file.save(""), StatusSuccess);

    const String path = folder.write("index.ini", "old");
    ASSERT_EQ(file.save(path), StatusSuccess);
    EXPECT_EQ(folder.read("index.ini"), "[s]\na=1\n");
    const auto items = listFolder(folder.path());
    ASSERT_TRUE(items.has_value());
    EXPECT_EQ(items->size(), 1u);  // no temporary file left beside it
}

}  // namespace
}  // namespace melodex
