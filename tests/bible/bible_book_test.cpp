// Books, chapters and verses: the ".book" reader and writer, the ".bbl"
// grammar, lazy loading, and the chapter number that a title gives.

#include "melodex/bible/bible_book.h"

#include <sys/stat.h>

#include <cerrno>

#include <gtest/gtest.h>

#include "bible/bible_fixture.h"
#include "melodex/bible/bible.h"
#include "melodex/foundation/file_system.h"
#include "melodex/foundation/text_encoding.h"
#include "melodex/foundation/text_file.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using test::chapterDump;
using test::TempFolder;
using test::TestBook;

TEST(BibleChapterTest, TitleGivesAnEmptyNumberTheDigitsAndTheCharacterBeforeThem) {
    // clang-format off
    const std::pair<const char*, const char*> cases[] = {
        {"Genesis 1", " 1"}, {"Psalm 119", " 119"}, {"Prologue", "Prologue"},
        {"12", "12"},               // nothing before the digits: the whole title
        {"Kapitel\u00A012", "\u00A012"},  // the character before may take two bytes
        {"x7", "x7"}, {"", ""}, {"Chapter 3a", "Chapter 3a"}};
    // clang-format on
    for (const auto& [title, number] : cases) {
        BibleChapter chapter;
        chapter.title(title);
        EXPECT_EQ(chapter.number(), number) << title;
        EXPECT_EQ(chapter.title(), title);
    }
    BibleChapter numbered;
    numbered.number("4");
    numbered.title("Genesis 12");
    EXPECT_EQ(numbered.number(), "4");  // a number already set stays

    BibleVerse verse;
    verse.number("16");
    verse.text("For God so loved");
    EXPECT_EQ(verse.toString(), "16 - For God so loved");
    EXPECT_EQ(verse.type(), BibleObject::TypeVerse);
    EXPECT_EQ(numbered.type(), BibleObject::TypeChapter);
}

TEST(BibleBookTest, ReadsEveryKindOfBookLine) {
    const TempFolder folder;
    const String path = folder.write("Genesis.book",
                                     "!title=Ignored\n"
                                     "9:\tbefore any chapter: no chapter to go to\n"
                                     "[12:Psalm 12]\n"
                                     "3:   \tText  \t\r\n"
                                     ":x\n"
                                     "no colon at all\n"
                                     "4:\t\n"
                                     "Intro]\n"
                                     "[a:b\n"
                                     "[:Intro]\n"
                                     "1:\tfirst\n"
                                     "!Title=Exodus\n"
                                     "!=nothing\n"
                                     "!novalue\n"
                                     "\n"
                                     "2:\tafter an empty line: no chapter\n"
                                     "[7:Seven]trailing text\n"
                                     "1:a:b\n");
    TestBook book;
    book.title("Genesis");
    book.setFile(path);
    EXPECT_FALSE(book.isLoaded());
    EXPECT_EQ(book.load(), 0u);
    EXPECT_TRUE(book.isLoaded());
    EXPECT_EQ(chapterDump(book),
              (StringArray{"[12|Psalm 12] 3:Text 4: [a:b", "[|Intro] 1:first", "[7|Seven] 1:a:b"}));
    // "!title=" never sets the title, and neither does "!Title=": the title
    // from bible.ini stands.
    EXPECT_EQ(book.title(), "Genesis");

    folder.write("Other.book", "!name=Exodus\n[1:Exodus 1]\n1:\tx\n");
    TestBook renamed;
    renamed.title("Genesis");
    renamed.setFile(folder.file("Other.book"));
    EXPECT_EQ(renamed.chapterCount(), 1);
    EXPECT_EQ(renamed.title(), "Exodus");
}

TEST(BibleBookTest, LoadsOnceOnFirstUseWhetherOrNotTheReadWorks) {
    const TempFolder folder;
    BibleBook missing;
    missing.setFile(folder.file("Missing.book"));
    EXPECT_EQ(missing.chapterCount(), 0);
    EXPECT_TRUE(missing.isLoaded());
    EXPECT_EQ(missing.lastError().path, folder.file("Missing.book"));
    // Written now, but a failed book is not tried again.
    folder.write("Missing.book", "[1:One]\n1:\tx\n");
    EXPECT_EQ(missing.chapterCount(), 0);
    EXPECT_EQ(missing.chapter(0), nullptr);

    // setFile makes it unloaded again, and the next read adds to what it holds.
    const String path = folder.write("Two.book", "[1:One]\n1:\tx\n");
    BibleBook book;
    book.setFile(path);
    EXPECT_EQ(book.chapterCount(), 1);
    book.setFile(path);
    EXPECT_EQ(book.chapterCount(), 2);
    EXPECT_EQ(book.chapter(2), nullptr);
    EXPECT_EQ(book.chapter(-1), nullptr);

    // addChapter never reads: a book made in memory stays as it is.
    BibleBook made;
    made.setFile(path);
    made.addChapter()->title("Made 1");
    EXPECT_FALSE(made.isLoaded());

    // A folder or a FIFO is not read (a FIFO would block for ever).
    BibleBook directory;
    directory.setFile(folder.path());
    EXPECT_EQ(directory.chapterCount(), 0);
    ASSERT_EQ(::mkfifo(folder.file("fifo.book").c_str(), 0600), 0);
    TestBook fifo;
    fifo.setFile(folder.file("fifo.book"));
    EXPECT_EQ(fifo.load(), StatusNotRegularFile);
}

TEST(BibleBookTest, WritesTheBookFormatAndReadsItBack) {
    const TempFolder folder;
    BibleBook book;
    book.title("Genesis");
    BibleChapter* one = book.addChapter();
    one->title("Genesis 1");
    one->number("1");
    BibleVerse* verse = one->addVerse();
    verse->number("1");
    verse->text("In the beginning: God");
    verse = one->addVerse();
    verse->number("2a");
    verse->text("Ésaïe « et » 日本");
    BibleChapter* two = book.addChapter();
    two->title("Genesis 2");  // number " 2" from the title
    verse = two->addVerse();
    verse->number("1");
    verse->text("a verse\nwith a line break");
    EXPECT_EQ(book.saveToFolder(folder.path()), 0u);
    EXPECT_EQ(book.filename(), folder.file("Genesis.book"));
    EXPECT_EQ(folder.read("Genesis.book"),
              "!title=Genesis\n"
              "[1:Genesis 1]\n"
              "1:\tIn the beginning: God\n"
              "2a:\tÉsaïe « et » 日本\n"
              "\n"
              "[ 2:Genesis 2]\n"
              "1:\ta verse with a line break\n"
              "\n");

    BibleBook read;
    read.setFile(book.filename());
    EXPECT_EQ(chapterDump(read),
              (StringArray{"[1|Genesis 1] 1:In the beginning: God 2a:Ésaïe « et » 日本",
                           "[ 2|Genesis 2] 1:a verse with a line break"}));

    // A title that would lead out of the folder or hide the file stays a
    // plain name inside it.
    BibleBook odd;
    odd.title("../..\\.hidden: x?");
    EXPECT_EQ(odd.saveToFolder(folder.path()), 0u);
    EXPECT_EQ(odd.filename(), folder.file("-..-.hidden- x.book"));

    // A book not loaded writes only its title line.
    BibleBook unloaded;
    unloaded.title("Exodus");
    unloaded.setFile(folder.write("old/Exodus.book", "[1:Exodus 1]\n1:\tx\n"));
    EXPECT_EQ(unloaded.saveToFolder(folder.file("new")), Status(ENOENT));  // no such folder
    createFolders(folder.file("new"));
    EXPECT_EQ(unloaded.saveToFolder(folder.file("new")), 0u);
    EXPECT_EQ(folder.read("new/Exodus.book"), "!title=Exodus\n");
}

TEST(BibleBookTest, ReadsBblBlocksWhateverTheirEncoding) {
    const TempFolder folder;
    // clang-format off
    const String text =
        "Genesis 1\n"
        "1: In the beginning\n"
        "2:\t  \tAnd the earth\n"
        ":ignored\n"
        "Genesis 2\n"           // no colon: a new chapter even without an empty line
        "1: first of two\n"
        "3:16 looks like a heading\n"
        "\n"
        "3:16 after an empty line: a heading\n"
        "1: x\n"
        "\n\n"
        "Prologue\n"
        "Jésus pleura.\n";
    // clang-format on
    const StringArray expected = {"[ 1|Genesis 1] 1:In the beginning 2:And the earth",
                                  "[ 2|Genesis 2] 1:first of two 3:16 looks like a heading",
                                  "[3:16 after an empty line: a heading|3:16 after an empty "
                                  "line: a heading] 1:x",
                                  "[Prologue|Prologue]", "[Jésus pleura.|Jésus pleura.]"};
    const std::pair<const char*, String> files[] = {
        {"utf8.bbl", text},
        {"crlf.bbl", replaceAll(text, "\n", "\r\n")},
        {"utf16.bbl", encodeUtf16LE(text, true)},
        {"cp1252.bbl", replaceAll(text, "é", "\xE9")},
    };
    for (const auto& [name, bytes] : files) {
        BibleBook book;
        EXPECT_EQ(book.importBblFile(folder.write(name, bytes)), 0u) << name;
        EXPECT_TRUE(book.isLoaded());
        EXPECT_EQ(chapterDump(book), expected) << name;
    }
    BibleBook empty;
    EXPECT_EQ(empty.importBblFile(folder.write("empty.bbl", "")), 0u);
    EXPECT_EQ(empty.chapterCount(), 0);
    BibleBook missing;
    EXPECT_EQ(missing.importBblFile(folder.file("missing.bbl")), Status(ENOENT));
    EXPECT_TRUE(missing.isLoaded());
}

TEST(BibleBookTest, CopiesAreDeepAndTheirChildrenPointAtThem) {
    test::TestBible bible;
    BibleBook* book = bible.addBook();
    book->title("John");
    book->addChapter()->addVerse()->text("x");
    BibleBook copy(*book);
    EXPECT_EQ(copy.bible(), &bible);  // the copy keeps the original's owner
    ASSERT_EQ(copy.chapterCount(), 1);
    EXPECT_EQ(copy.chapter(0)->book(), &copy);
    EXPECT_EQ(copy.chapter(0)->verse(0)->chapter(), copy.chapter(0));
    book->chapter(0)->verse(0)->text("changed");
    EXPECT_EQ(copy.chapter(0)->verse(0)->text(), "x");

    BibleBook assigned;
    assigned = copy;
    EXPECT_EQ(assigned.bible(), nullptr);  // assignment keeps the target's owner
    EXPECT_EQ(assigned.chapter(0)->book(), &assigned);
    EXPECT_EQ(assigned.chapter(0)->verse(0)->chapter(), assigned.chapter(0));
}

}  // namespace
}  // namespace melodex
