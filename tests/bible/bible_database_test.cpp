// The installed Bibles: the scan, the sort, imports into new folders, the
// dialogs, and removals that never reach outside the database folder.

#include "melodex/bible/bible_database.h"

#include <gtest/gtest.h>

#include "bible/bible_fixture.h"
#include "melodex/foundation/file_system.h"
#include "support/scripted_dialogs.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using test::TempFolder;
using test::xmlBible;

class BibleDatabaseTest : public ::testing::Test {
protected:
    BibleDatabaseTest() {
        m_db.setDatabaseFolder(m_folder.file("db"));
        m_db.setDialogs(&m_dialogs);
    }

    // A Bible folder written straight into the database folder.
    void install(const String& folder, const String& title, int books = 1) const {
        String ini = "[info]\ntitle=" + title + "\nnbooks=" + std::to_string(books) + "\n";
        for (int b = 1; b <= books; ++b)
            ini += "[book_" + std::to_string(b) + "]\ntitle=Ruth\nfilename=Ruth.book\n";
        m_folder.write("db/" + folder + "/bible.ini", ini);
        m_folder.write("db/" + folder + "/Ruth.book", "!title=Ruth\n[1:Ruth 1]\n1:\tx\n");
    }

    StringArray titles() const {
        StringArray out;
        for (const Bible* bible : m_db.bibles())
            out.push_back(bible->title());
        return out;
    }

    StringArray folders() const {
        StringArray out;
        for (const FolderItem& item :
             listFolder(m_folder.file("db")).value_or(std::vector<FolderItem>{}))
            out.push_back(item.name);
        return out;
    }

    TempFolder m_folder;
    test::ScriptedDialogs m_dialogs;
    BibleDatabase m_db;
};

TEST_F(BibleDatabaseTest, ScansBibleFoldersAndSortsThemIgnoringBlanksAndCase) {
    EXPECT_EQ(m_db.open(), 0u);  // no folder yet: an empty set, no failure
    EXPECT_EQ(m_db.bibleCount(), 0);
    EXPECT_FALSE(m_db.lastError());

    install("b", "World English");
    install("a", "Young's Literal");
    install("c", "worldenglish bible");  // sorts as "worldenglishbible"
    install("d", "King James");
    install("e", "No Books", 0);
    install(".hidden-bible", "Dot Folder");
    install(".1234.import", "Half Imported");
    m_folder.write("db/f/notes.txt", "no bible.ini");
    m_folder.write("db/file.txt", "");
    m_folder.write("db/d/.hidden", "");
    EXPECT_EQ(m_db.open(), 0u);
    EXPECT_EQ(titles(), (StringArray{"King James", "World English", "worldenglish bible",
                                     "Young's Literal"}));
    EXPECT_TRUE(m_db.findBibles("King James").front()->hidden());  // listed all the same
    EXPECT_EQ(m_db.findBibles("kingjames").size(), 1u);
    EXPECT_EQ(m_db.findBibles("B").front()->title(), "World English");  // by folder name
    EXPECT_TRUE(m_db.findBibles("Geneva").empty());

    m_db.changed(false);  // the setter only ever sets the flag
    EXPECT_TRUE(m_db.changed());
    EXPECT_EQ(m_db.open(), 0u);
    EXPECT_FALSE(m_db.changed());
    EXPECT_EQ(m_db.close(), 0u);
    EXPECT_EQ(m_db.bibleCount(), 0);
    EXPECT_EQ(folders().size(), 9u);  // closing leaves the disk alone
}

TEST_F(BibleDatabaseTest, ImportsIntoNewFoldersNamedAfterTheTitle) {
    const String xml = m_folder.write("kjv.xml", xmlBible("KJV", {{"Genesis", 2, 3}}));
    ASSERT_TRUE(m_db.importFile(xml, false, false));
    ASSERT_TRUE(m_db.importFile(xml, true, true));
    ASSERT_TRUE(m_db.importFile(xml, false, true));
    EXPECT_EQ(folders(), (StringArray{"KJV", "KJV 2", "KJV 3"}));
    const Bible* third = m_db.bibles()[2];
    EXPECT_EQ(third->folder(), m_folder.file("db/KJV 3"));
    // The imported books point at their installed files and stay loaded.
    EXPECT_EQ(third->book(0)->filename(), m_folder.file("db/KJV 3/Genesis.book"));
    EXPECT_TRUE(third->book(0)->isLoaded());
    EXPECT_EQ(third->book(0)->chapterCount(), 2);

    // A title that would leave the folder, or hide it from the scan, names
    // a folder inside it all the same.
    ASSERT_TRUE(
        m_db.importFile(m_folder.write("odd.xml", xmlBible("../.Odd", {{"Ruth"}})), false, false));
    EXPECT_EQ(m_db.findBibles("-.Odd").size(), 1u);

    EXPECT_EQ(m_db.open(), 0u);
    EXPECT_EQ(m_db.bibleCount(), 4);
    for (const Bible* bible : m_db.bibles()) {
        ASSERT_EQ(bible->bookCount(), 1) << bible->folder();
        EXPECT_FALSE(bible->book(0)->isLoaded());  // lazy again after a scan
    }
}

TEST_F(BibleDatabaseTest, ImportsBblFoldersAndRefusesWhatHoldsNone) {
    m_folder.write("in/Psalms.bbl", "Psalm 23\n1: The LORD is my shepherd\n");
    m_folder.write("in/notes.txt", "");
    EXPECT_TRUE(m_db.importFolder(m_folder.file("in")));
    EXPECT_EQ(m_dialogs.waitCursorBeginCount(), 1);
    EXPECT_EQ(m_dialogs.waitCursorDepth(), 0);
    EXPECT_EQ(titles(), (StringArray{"in"}));

    m_folder.write("nested/sub/Psalms.bbl", "Psalm 1\n1: x\n");  // only one level is looked at
    EXPECT_FALSE(m_db.importFolder(m_folder.file("nested")));
    EXPECT_FALSE(m_db.importFolder(m_folder.file("no such folder")));
    EXPECT_EQ(m_db.lastError().action, FileError::Action::List);

    // A ".bbl" file outside the table installs a Bible without books, as it
    // always has; the import for a named path refuses it.
    m_folder.write("psalm/Psalm.BBL", "Psalm 1\n1: x\n");
    EXPECT_FALSE(m_db.importPath(m_folder.file("psalm")));
    EXPECT_EQ(m_db.lastError().status, BibleStatusFailed);
    EXPECT_TRUE(m_db.importFolder(m_folder.file("psalm")));
    EXPECT_EQ(m_db.bibleCount(), 2);

    EXPECT_FALSE(m_db.importPath(m_folder.file("in/Psalms.bbl")));  // a file of a folder
    EXPECT_FALSE(m_db.importPath(m_folder.file("missing")));
    EXPECT_EQ(m_db.lastError().status, Status(ENOENT));
    EXPECT_TRUE(m_db.importPath(m_folder.file("in")));
    EXPECT_EQ(folders(), (StringArray{"in", "in 2", "psalm"}));
}

TEST_F(BibleDatabaseTest, FailedImportsLeaveNothingBehind) {
    EXPECT_FALSE(
        m_db.importFile(m_folder.write("song.xml", "<song><title>x</title></song>"), false, false));
    EXPECT_FALSE(m_db.importFile(m_folder.write("junk.xml", "\x01\x02 not xml"), false, false));
    EXPECT_EQ(m_db.bibleCount(), 0);
    EXPECT_TRUE(folders().empty());

    // A database folder that cannot be made: nothing is written anywhere.
    const String xml = m_folder.write("kjv.xml", xmlBible("KJV", {{"Genesis"}}));
    m_folder.write("blocked", "a file");
    BibleDatabase blocked;
    blocked.setDatabaseFolder(m_folder.file("blocked/db"));
    EXPECT_FALSE(blocked.importFile(xml, false, false));
    EXPECT_EQ(blocked.lastError().action, FileError::Action::CreateFolder);
    BibleDatabase unset;
    EXPECT_FALSE(unset.importFile(xml, false, false));
    EXPECT_EQ(unset.lastError().status, StatusNoFolder);
}

TEST_F(BibleDatabaseTest, AsksThroughTheDialogs) {
    const String one = m_folder.write("one.xmm", xmlBible("One", {{"Ruth"}}));
    const String two = m_folder.write("two.xml", xmlBible("Two", {{"Ruth"}}));
    const String bad = m_folder.write("bad.xml", "<x/>");
    m_dialogs.answerOpenFiles({two, bad, one});
    m_db.selectAndImportFiles();
    EXPECT_EQ(titles(), (StringArray{"Two", "One"}));  // selection order, not re-sorted
    ASSERT_EQ(m_dialogs.requests().size(), 1u);
    const FileDialogRequest& request = m_dialogs.requests()[0].file;
    EXPECT_EQ(request.filter,
              "XMM Bible Files (*.xmm)|*.xmm|XML Bible Files (*.xml)|*.xml|All Files (*.*)|*.*||");
    EXPECT_TRUE(request.fileMustExist);
    EXPECT_EQ(request.defaultExtension, "");
    EXPECT_EQ(request.proposedName, "");
    EXPECT_EQ(request.fileNameBufferLength, 16834);

    m_folder.write("bbl/Jude.bbl", "Jude 1\n3: Beloved\n");
    m_dialogs.answerFolder(m_folder.file("bbl"));
    m_db.selectAndImportFolder();
    EXPECT_EQ(m_dialogs.requests().back().folder.title, "Select Folder for Import");
    EXPECT_EQ(titles(), (StringArray{"Two", "One", "bbl"}));

    m_dialogs.answerCancel();
    m_dialogs.answerCancel();
    m_db.selectAndImportFiles();
    m_db.selectAndImportFolder();
    EXPECT_EQ(m_db.bibleCount(), 3);
}

TEST_F(BibleDatabaseTest, RemovesOnlyItsOwnBibleFolders) {
    install("kjv", "KJV");
    install("web", "WEB");
    ASSERT_EQ(m_db.open(), 0u);
    Bible* kjv = m_db.findBibles("KJV").front();
    m_db.removeEntry(kjv);
    EXPECT_EQ(titles(), (StringArray{"WEB"}));
    EXPECT_EQ(folders(), (StringArray{"web"}));
    EXPECT_FALSE(m_db.lastError());

    m_db.removeEntry(nullptr);
    Bible stranger;
    m_db.removeEntry(&stranger);  // not in the set: nothing happens
    EXPECT_EQ(m_db.bibleCount(), 1);

    // A Bible whose folder field has come to point elsewhere is taken out of
    // the set, but nothing outside the database folder is deleted.
    m_folder.write("outside/bible.ini",
                   "[info]\ntitle=Outside\nnbooks=1\n"
                   "[book_1]\ntitle=Ruth\nfilename=Ruth.book\n");
    Bible* web = m_db.findBibles("WEB").front();
    ASSERT_EQ(web->loadFromFolder(m_folder.file("outside")), 0u);
    m_db.removeEntry(web);
    EXPECT_EQ(m_db.bibleCount(), 0);
    EXPECT_TRUE(fileExists(m_folder.file("outside/bible.ini")));
    EXPECT_TRUE(fileExists(m_folder.file("db/web/bible.ini")));
    EXPECT_EQ(m_db.lastError().status, Status(EPERM));

    // Nor a folder that no longer holds a bible.ini.
    ASSERT_EQ(m_db.open(), 0u);
    ASSERT_EQ(removeFile(m_folder.file("db/web/bible.ini")), 0u);
    m_db.removeEntry(m_db.findBibles("WEB").front());
    EXPECT_TRUE(folderExists(m_folder.file("db/web")));
}

}  // namespace
}  // namespace melodex
