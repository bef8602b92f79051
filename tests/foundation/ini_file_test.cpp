#include "melodex/foundation/ini_file.h"

#include <cerrno>
#include <string>

#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace melodex {
namespace {

using namespace std::string_literals;

StringArray keyNames(const IniFile& file) {
    StringArray names;
    for (int i = 0; i < file.getKeyCount(); ++i)
        names.push_back(file.getKey(i)->name());
    return names;
}

TEST(IniFileTest, AwkwardValuesRoundTripThroughDisk) {
    // clang-format off
    const StringArray awkward = {"  leading blanks", "trailing tab\t", "two\nlines\r\nand CR\r",
        "\"Amazing\" Grace", "\"", "\\n back\\slash", "", "a=b ; not # a comment", "[not a section]",
        "J\u00e9sus \u266a"};
    // clang-format on
    IniFile file;
    file.createKey("Song");  // no values: must still come back
    for (std::size_t i = 0; i < awkward.size(); ++i)
        file.createKey("Values")->setString("v" + std::to_string(i), awkward[i]);
    file.createKey("")->setString("late", "unnamed section after others");
    test::TempFolder folder;
    const String path = folder.write("index.ini", "old");
    ASSERT_EQ(file.save(path), StatusSuccess);
    IniFile loaded;
    ASSERT_EQ(loaded.load(path), StatusSuccess);
    EXPECT_EQ(keyNames(loaded), (StringArray{"Song", "Values", ""}));
    for (std::size_t i = 0; i < awkward.size(); ++i)
        EXPECT_EQ(loaded.findKey("values")->getString("V" + std::to_string(i)), awkward[i]) << i;
    EXPECT_EQ(loaded.findKey("")->getString("late"), "unnamed section after others");
    loaded.loadFromString("[s]\na = 1\n");
    ASSERT_EQ(loaded.save(path), StatusSuccess);
    EXPECT_EQ(folder.read(path), "[s]\na=1\n");
}

TEST(IniFileTest, FindsRemovesAndCopiesByNameIgnoringCase) {
    IniFile file;
    file.createKey("\u00c9glise")->setString("TITLE", "x");
    EXPECT_EQ(file.createKey("\u00e9GLISE"), file.findKey("\u00e9glise"));
    EXPECT_EQ(file.findKey("\u00c9GLISE")->getString("title"), "x");
    file.createKey("a")->setString("k", "v");
    file.createKey("b");
    EXPECT_TRUE(file.removeKey("A"));
    EXPECT_FALSE(file.removeKey("a"));
    file.createKey("A");
    EXPECT_EQ(keyNames(file), (StringArray{"\u00c9glise", "b", "A"}));
    IniFile copy(file);
    copy.findKey("b")->setString("k", "v");
    EXPECT_FALSE(file.findKey("b")->hasValue("k") || file.findKey("a")->hasValue("k"));
    // A string table: enough values for the section to keep a hash index,
    // which must follow values moving down after a removal.
    ConfigKey* table = file.createKey("Strings");
    for (int i = 0; i < 40; ++i)
        table->setInteger("Id" + std::to_string(i), i);
    EXPECT_TRUE(table->removeValue("ID3"));
    EXPECT_FALSE(table->removeValue("id3"));
    table->setString("ID20", "replaced");
    ASSERT_EQ(table->getValueCount(), 39);
    EXPECT_EQ(table->getValue(3).name(), "Id4");
    EXPECT_EQ(table->getValue(19).value(), "replaced");
    EXPECT_EQ(ConfigKey(*table).getString("iD20"), "replaced");  // a copy has its own index
    table->setDouble("ratio", 0.1);
    table->setString("size", "12px");
    EXPECT_EQ(table->getDouble("ratio"), 0.1);
    for (const char* name : {"size", "ratio", "missing"})
        EXPECT_EQ(table->getInteger(name, 7), 7) << name;
}

TEST(IniFileTest, ReadsHandWrittenTextAndEveryEncoding) {
    IniFile file("original.ini");  // a failed load leaves everything as it was
    file.loadFromString("[kept]\na=1\n");
    EXPECT_EQ(file.load(test::testDataPath("ini/missing.ini")), Status(ENOENT));
    EXPECT_EQ(file.load(test::testDataPath("ini")), Status(EISDIR));
    EXPECT_EQ(file.filename() + "|" + file.findKey("kept")->getString("a"), "original.ini|1");
    ASSERT_EQ(file.load(test::testDataPath("ini/empty.ini")), StatusSuccess);
    EXPECT_EQ(file.getKeyCount(), 0);
    ASSERT_EQ(file.load(test::testDataPath("ini/hand_written.ini")), StatusSuccess);
    EXPECT_EQ(keyNames(file), (StringArray{"", "Song", "Other"}));
    EXPECT_EQ(file.findKey("")->getString("top"), "before any header");
    const ConfigKey* song = file.findKey("song");
    ASSERT_NE(song, nullptr);
    EXPECT_EQ(song->getValueCount(), 4);
    EXPECT_EQ(song->getValue(0).value(), "Replaced");  // last text, first place
    EXPECT_EQ(song->getString("key"), "\"unterminated");
    EXPECT_EQ(song->getString("author") + "|" + song->getString("note"), "Newton|\"a\" b");
    // clang-format off
    const std::pair<const char*, const char*> files[] = {
        {"utf8-bom", "J\u00e9sus"}, {"utf16le-bom", "J\u00e9sus"}, {"utf16be-bom", "J\u00e9sus"},
        {"windows-1252", "J\u00e9sus"}, {"cut-utf8", "J\u00c3"}, {"lone-surrogate", "\uFFFD"}};
    // clang-format on
    for (const auto& [name, value] : files) {
        ASSERT_EQ(file.load(test::testDataPath("ini/encodings/"s + name + ".ini")), StatusSuccess);
        EXPECT_EQ(file.findKey("S")->getString("T"), value) << name;
    }
}

}  // namespace
}  // namespace melodex
