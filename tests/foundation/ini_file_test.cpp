#include "melodex/foundation/ini_file.h"

#include <cerrno>
#include <string>

#include <gtest/gtest.h>

#include "melodex/foundation/text_encoding.h"

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

// Found by fuzzing: a name that began with U+FEFF in the unnamed leading
// section was written first in the file and taken for a byte-order mark,
// and a name that continued with "[" then read as a section header. Names
// that would not read back bare are written quoted, like values.
TEST(IniFileTest, AwkwardNamesRoundTripQuoted) {
    IniFile read;
    read.loadFromString("\r\xEF\xBB\xBF=");  // the input as the fuzzer found it
    ASSERT_EQ(read.getKeyCount(), 1);
    IniFile back;
    back.loadFromString(decodeText(read.toString()));
    ASSERT_EQ(back.getKeyCount(), 1);
    ASSERT_EQ(back.getKey(0)->getValueCount(), 1);
    EXPECT_EQ(back.getKey(0)->getValue(0).name(), "\xEF\xBB\xBF");

    // clang-format off
    const StringArray names = {"\uFEFF", "\uFEFF[x]", "[x]", ";c", "#c", "a=b", "", " lead",
        "trail\t", "two\nlines\r", "\"q\"", "back\\slash", "plain name", "J\u00e9sus"};
    const StringArray sections = {" s", "\"quoted\"", "a]b]", "line\nbreak", "x=y;#[", "\uFEFF"};
    // clang-format on
    IniFile file;
    for (const String& name : names)
        file.createKey("")->setString(name, "value of " + name);
    for (const String& name : sections)
        file.createKey(name)->setString("v", name);
    test::TempFolder folder;
    const String path = folder.file("names.ini");
    ASSERT_EQ(file.save(path), StatusSuccess);
    IniFile loaded;
    ASSERT_EQ(loaded.load(path), StatusSuccess);
    ASSERT_EQ(loaded.getKeyCount(), int(sections.size()) + 1);
    const ConfigKey& unnamed = *loaded.getKey(0);
    ASSERT_EQ(unnamed.getValueCount(), int(names.size()));
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(unnamed.getValue(int(i)).name(), names[i]) << i;
        EXPECT_EQ(unnamed.getValue(int(i)).value(), "value of " + names[i]) << i;
    }
    for (std::size_t i = 0; i < sections.size(); ++i)
        EXPECT_EQ(loaded.getKey(int(i) + 1)->name(), sections[i]) << i;

    const String text = folder.read(path);
    const String first = "\"\uFEFF\"=value of \uFEFF\n";
    EXPECT_EQ(text.substr(0, first.size()), first);
    EXPECT_NE(text.find("\n\"a=b\"=value of a=b\n"), String::npos);
    EXPECT_NE(text.find("\nplain name=value of plain name\n"), String::npos);
    EXPECT_NE(text.find("\n[\" s\"]\n"), String::npos);
    EXPECT_NE(text.find("\n[a]b]]\n"), String::npos);

    // A quote that does not enclose the name reads as the text it is.
    loaded.loadFromString("\"a\"b=1\n\"open=2\n\"\\q\" = 3\n[\"s\"] x\n[\"t\"x]\n");
    EXPECT_EQ(keyNames(loaded), (StringArray{"", "s", "\"t\"x"}));
    EXPECT_EQ(loaded.getKey(0)->getString("\"a\"b") + loaded.getKey(0)->getString("\"open") +
                  loaded.getKey(0)->getString("\\q"),
              "123");
}

}  // namespace
}  // namespace melodex
