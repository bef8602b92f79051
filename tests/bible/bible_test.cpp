// A Bible and its folder: bible.ini, lazy books, saving, the hidden marker,
// and the two imports (".bbl" folders and XML Bible files).

#include "melodex/bible/bible.h"

#include <gtest/gtest.h>

#include "bible/bible_fixture.h"
#include "melodex/foundation/file_system.h"
#include "melodex/foundation/ini_file.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using test::bookTitles;
using test::chapterDump;
using test::TempFolder;
using test::TestBible;
using test::xmlBible;

TEST(BibleTest, LoadsBibleIniLeniently) {
    const TempFolder folder;
    folder.write("kjv/bible.ini",
                 "[info]\ntitle=King James\npublisher=Cambridge\nnbooks=6\n"
                 "[book_1]\ntitle=Genesis\nfilename=Genesis.book\n"
                 "[book_2]\ntitle=Exodus\n"  // no filename: no book
                 "[BOOK_3]\ntitle=Leviticus\nfilename=Leviticus.book\n"
                 "[book_4]\ntitle=Escape\nfilename=../../etc/passwd\n"  // leaves the folder
                 "[book_5]\ntitle=Absolute\nfilename=/etc/passwd\n"
                 "[book_06]\ntitle=Not book_6\nfilename=x.book\n"
                 "[book_7]\ntitle=Past nbooks\nfilename=x.book\n"
                 "[book_6]\nfilename=sub/Numbers.book\n");  // sub-folders are inside
    folder.write("kjv/.hidden", "");
    TestBible bible;
    bible.description("kept");
    EXPECT_EQ(bible.loadFromFolder(folder.file("kjv")), 0u);
    EXPECT_EQ(bible.title(), "King James");
    EXPECT_EQ(bible.publisher(), "Cambridge");
    EXPECT_EQ(bible.description(), "kept");  // a missing key leaves the field
    EXPECT_EQ(bookTitles(bible), (StringArray{"Genesis", "Leviticus", ""}));
    EXPECT_EQ(bible.book(2)->filename(), folder.file("kjv/sub/Numbers.book"));
    EXPECT_FALSE(bible.book(0)->isLoaded());
    EXPECT_EQ(bible.book(3), nullptr);
    EXPECT_EQ(bible.folder(), folder.file("kjv"));
    EXPECT_TRUE(bible.hidden());

    // Books already held are not cleared by a second load.
    EXPECT_EQ(bible.loadFromFolder(folder.file("kjv")), 0u);
    EXPECT_EQ(bible.bookCount(), 6);

    // Failures: no bible.ini; one without books (a damaged nbooks of two
    // billion must not make the loader count that far); binary rubbish.
    folder.write("none/other.ini", "");
    folder.write("huge/bible.ini", "[info]\ntitle=Huge\nnbooks=2000000000\n");
    folder.write("junk/bible.ini", String("\x00\xff\xfe[\x01\x02", 7) + "\n=\n[[[\n");
    for (const char* name : {"none", "huge", "junk", "missing"}) {
        TestBible failed;
        EXPECT_EQ(failed.loadFromFolder(folder.file(name)), BibleStatusFailed) << name;
        EXPECT_EQ(failed.bookCount(), 0);
    }
    TestBible unchanged;
    EXPECT_EQ(unchanged.loadFromFolder(folder.file("none")), BibleStatusFailed);
    EXPECT_EQ(unchanged.folder(), "");
    EXPECT_EQ(unchanged.lastError().path, folder.file("none/bible.ini"));
}

TEST(BibleTest, SavesAFolderThatLoadsBackAndAlwaysReportsSuccess) {
    const TempFolder folder;
    TestBible bible;
    ASSERT_EQ(bible.importFromFile(
                  folder.write("in.xml", xmlBible("AV", {{"Genesis", 2, 2}, {"Psalms", 1, 1}}))),
              0u);
    bible.description("The Authorised Version");
    bible.copyright("Public domain; \"free\"");
    // Two books of one title, and one whose title holds a "/", each get a
    // file of their own.
    BibleBook* again = bible.addBook();
    again->title("Genesis");
    BibleChapter* chapter = again->addChapter();
    chapter->title("Genesis 1");
    BibleVerse* verse = chapter->addVerse();
    verse->number("1");
    verse->text("second Genesis");
    bible.addBook()->title("1/2 Kings");

    EXPECT_EQ(bible.saveToFolder(folder.file("deep/new/AV")), 0u);  // parents made too
    EXPECT_FALSE(bible.lastError());
    EXPECT_EQ(bible.folder(), folder.file("deep/new/AV"));
    IniFile ini;
    ASSERT_EQ(ini.load(folder.file("deep/new/AV/bible.ini")), 0u);
    EXPECT_EQ(ini.findKey("info")->getInteger("nbooks"), 4);
    EXPECT_EQ(ini.findKey("book_3")->getString("filename"), "Genesis 2.book");
    EXPECT_EQ(ini.findKey("book_4")->getString("filename"), "1-2 Kings.book");
    EXPECT_EQ(ini.findKey("book_4")->getString("title"), "1/2 Kings");

    TestBible read;
    ASSERT_EQ(read.loadFromFolder(folder.file("deep/new/AV")), 0u);
    EXPECT_EQ(read.title(), "AV");
    EXPECT_EQ(read.description(), "The Authorised Version");
    EXPECT_EQ(read.copyright(), "Public domain; \"free\"");
    EXPECT_EQ(bookTitles(read), (StringArray{"Genesis", "Psalms", "Genesis", "1/2 Kings"}));
    EXPECT_EQ(chapterDump(*read.book(0)), chapterDump(*bible.book(0)));
    EXPECT_EQ(chapterDump(*read.book(2)), (StringArray{"[ 1|Genesis 1] 1:second Genesis"}));
    EXPECT_FALSE(read.hidden());

    // Saving cannot fail by its status; the reason is kept.
    folder.write("blocked", "a file where the folder should be");
    EXPECT_EQ(bible.saveToFolder(folder.file("blocked")), 0u);
    EXPECT_TRUE(bible.lastError());
    EXPECT_EQ(bible.lastError().action, FileError::Action::CreateFolder);
}

TEST(BibleTest, SavingALazyBibleWritesOnlyTheTitlesOfBooksNotRead) {
    const TempFolder folder;
    TestBible bible;
    ASSERT_EQ(bible.importFromFile(
                  folder.write("in.xml", xmlBible("AV", {{"Genesis", 1, 2}, {"Exodus", 1, 2}}))),
              0u);
    (void)bible.saveToFolder(folder.file("one"));
    TestBible lazy;
    ASSERT_EQ(lazy.loadFromFolder(folder.file("one")), 0u);
    lazy.book(1)->chapterCount();  // Exodus is read, Genesis is not
    (void)lazy.saveToFolder(folder.file("two"));
    EXPECT_EQ(folder.read("two/Genesis.book"), "!title=Genesis\n");
    EXPECT_EQ(folder.read("two/Exodus.book"), folder.read("one/Exodus.book"));
}

TEST(BibleTest, HiddenMarkerFollowsTheFlag) {
    const TempFolder folder;
    TestBible bible;
    bible.hidden(true);  // no folder yet: nothing is written anywhere
    EXPECT_TRUE(bible.hidden());
    EXPECT_FALSE(bible.lastError());
    bible.addBook()->title("Ruth");
    (void)bible.saveToFolder(folder.file("b"));
    EXPECT_FALSE(fileExists(folder.file("b/.hidden")));  // saving leaves the marker alone
    bible.hidden(true);
    EXPECT_EQ(folder.read("b/.hidden"), "");
    EXPECT_TRUE(fileExists(folder.file("b/.hidden")));
    bible.hidden(false);
    EXPECT_FALSE(fileExists(folder.file("b/.hidden")));
    bible.hidden(false);  // already gone: no failure
    EXPECT_FALSE(bible.lastError());
}

TEST(BibleTest, ImportsBblFoldersInTheBiblesOrder) {
    const TempFolder folder;
    folder.write("My Bible/John.bbl", "John 1\n1: In the beginning was the Word\n");
    folder.write("My Bible/Psalms.bbl", "Psalm 23\n1: The LORD is my shepherd\n");
    folder.write("My Bible/Psalm.bbl", "not a name of the table\n");
    folder.write("My Bible/Song of Songs.bbl", "");
    folder.write("My Bible/notes.txt", "");
    folder.write("My Bible/sub/Genesis.bbl", "Genesis 1\n1: x\n");
    TestBible bible;
    EXPECT_EQ(bible.importBblFolder(folder.file("My Bible/")), 0u);
    EXPECT_EQ(bible.title(), "My Bible");
    EXPECT_EQ(bookTitles(bible), (StringArray{"Psalms", "Song of Songs", "John"}));
    EXPECT_TRUE(bible.book(0)->isLoaded());
    EXPECT_EQ(chapterDump(*bible.book(0)),
              (StringArray{"[ 23|Psalm 23] 1:The LORD is my shepherd"}));
    EXPECT_EQ(bible.description(), "");

    TestBible nothing;
    EXPECT_EQ(nothing.importBblFolder(folder.file("My Bible/sub/..")), 0u);
    EXPECT_EQ(nothing.importBblFolder(folder.file("nowhere")), 0u);
    EXPECT_EQ(nothing.importFolder(folder.file("My Bible")), BibleStatusFailed);
}

TEST(BibleTest, ImportsXmlBiblesByTheirAttributesAlone) {
    const TempFolder folder;
    const String path = folder.write(
        "av.xml",
        "<bible n='AV'><anything n='Genesis'><x n='1'><y n='1'>In the <i>beginning</i></y>"
        "<y>no n: skipped</y><y n='2'/></x><x><y n='9'>chapter without n</y></x></anything>"
        "<skipped><c n='1'><v n='1'>book without n</v></c></skipped>"
        "<b n='Exodus'/></bible>");
    TestBible bible;
    bible.addBook()->title("cleared first");
    ASSERT_EQ(bible.importFromFile(path), 0u);
    EXPECT_EQ(bible.title(), "AV");
    EXPECT_EQ(bookTitles(bible), (StringArray{"Genesis", "Exodus"}));
    EXPECT_TRUE(bible.book(0)->isLoaded());
    EXPECT_TRUE(bible.book(1)->isLoaded());
    EXPECT_EQ(chapterDump(*bible.book(0)), (StringArray{"[1|Chapter 1] 1:In the beginning 2:"}));

    // Without "n" the title is the file's name; "bible" may stand below the root.
    const String untitled = folder.write("My Bible.xmm",
                                         "<root><bible><b n='Jude'><c n='1'><v n='3'>x</v></c></b>"
                                         "</bible></root>");
    ASSERT_EQ(bible.importFromFile(untitled), 0u);
    EXPECT_EQ(bible.title(), "My Bible");
    EXPECT_EQ(chapterDump(*bible.book(0)), (StringArray{"[1|Chapter 1] 3:x"}));

    // Failures leave the Bible cleared.
    const std::pair<const char*, String> failures[] = {
        {"song.xml", "<song><title>x</title></song>"},
        {"empty.xml", "<bible n='Empty'><b/></bible>"},
        {"broken.xml", "<bible n='x'><b n='y'>"},
        {"text.xml", "just text"},
        {"nothing.xml", ""},
    };
    for (const auto& [name, text] : failures) {
        bible.addBook();
        EXPECT_EQ(bible.importFromFile(folder.write(name, text)), BibleStatusFailed) << name;
        EXPECT_EQ(bible.bookCount(), 0) << name;
        EXPECT_EQ(bible.lastError().path, folder.file(name));
    }
    EXPECT_EQ(bible.importFromFile(folder.file("missing.xml")), BibleStatusFailed);
    EXPECT_EQ(bible.lastError().status, Status(ENOENT));
}

TEST(BibleTest, CopiesAreDeepAndTheirChildrenPointAtThem) {
    const TempFolder folder;
    TestBible bible;
    ASSERT_EQ(bible.importFromFile(folder.write("in.xml", xmlBible("AV", {{"Ruth", 1, 1}}))), 0u);
    Bible copy(bible);
    EXPECT_EQ(copy.title(), "AV");
    EXPECT_EQ(copy.type(), BibleObject::TypeBible);
    ASSERT_EQ(copy.bookCount(), 1);
    EXPECT_EQ(copy.book(0)->bible(), &copy);
    EXPECT_NE(copy.book(0), bible.book(0));
    Bible assigned;
    assigned = bible;
    EXPECT_EQ(assigned.book(0)->bible(), &assigned);
    EXPECT_EQ(assigned.book(0)->chapter(0)->book(), assigned.book(0));
    EXPECT_EQ(chapterDump(*assigned.book(0)), chapterDump(*bible.book(0)));
}

}  // namespace
}  // namespace melodex
