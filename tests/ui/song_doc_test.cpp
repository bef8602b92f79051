#include "melodex/ui/song_doc.h"

#include <cerrno>

#include <gtest/gtest.h>

#include "melodex/foundation/file_system.h"
#include "support/scripted_dialogs.h"
#include "support/song_builders.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using test::ScriptedDialogs;
using test::TempFolder;

// The save chooser's filter, exactly as the programs have always shown it.
constexpr const char* SaveFilter =
    "Cantorix Files (*.song))|*.song|Text Files (*.txt)|*.txt|Other Song Files (*.sng)|*.sng||";

// A song file in the folder with one verse "Amazing grace" and a G chord.
String writeSong(const TempFolder& folder, const char* name, int fileType) {
    Song song;
    song.info().setTitle("Amazing Grace");
    auto* verse = new SongSection(1);
    verse->addLine(test::lineOf("Amazing grace", {{"G", 0}}));
    song.addSection(verse);
    const String path = folder.file(name);
    EXPECT_EQ(song.saveToFile(path, fileType), StatusSuccess);
    return path;
}

bool isXml(const String& bytes) {
    return bytes.rfind("<?xml", 0) == 0;
}

TEST(SongDocTest, OpensASongAndTakesItsFileType) {
    TempFolder folder;
    ScriptedDialogs dialogs;
    const struct {
        const char* name;
        int type;
    } cases[] = {{"a.song", 1}, {"b.txt", 2}, {"c.sng", 3}};
    for (const auto& c : cases) {
        SongDoc doc(&dialogs);
        EXPECT_EQ(doc.fileType(), 0);
        doc.setModifiedFlag();
        const String path = writeSong(folder, c.name, c.type);
        ASSERT_TRUE(doc.openDocument(path)) << c.name;
        EXPECT_EQ(doc.fileType(), c.type) << c.name;
        EXPECT_EQ(doc.pathName(), path);
        EXPECT_FALSE(doc.isModified());
        EXPECT_FALSE(doc.OnUpdateFileSave());
        ASSERT_EQ(doc.song()->getSectionCount(), 1) << c.name;
        // (A text file keeps its uuid in front of the first line.)
        EXPECT_TRUE(doc.song()->getSection(0)->getLine(0)->text().ends_with("Amazing grace"));
    }
}

TEST(SongDocTest, OpeningAFileThatDoesNotReadFails) {
    TempFolder folder;
    SongDoc doc;
    EXPECT_FALSE(doc.openDocument(folder.file("missing.song")));
    EXPECT_EQ(doc.lastError().status, Status(ENOENT));
    EXPECT_EQ(doc.lastError().path, folder.file("missing.song"));
    EXPECT_FALSE(doc.openDocument(folder.path()));
    EXPECT_EQ(doc.pathName(), "");
    EXPECT_EQ(doc.fileType(), 0);

    // A file that reads but holds no song still opens: the song's load error
    // is no failure of the document.
    const String empty = folder.write("empty.song", "");
    EXPECT_TRUE(doc.openDocument(empty));
    EXPECT_EQ(doc.pathName(), empty);
}

TEST(SongDocTest, SaveWritesASongFileInPlace) {
    TempFolder folder;
    ScriptedDialogs dialogs;
    SongDoc doc(&dialogs);
    const String path = writeSong(folder, "Hymn.song", 1);
    ASSERT_TRUE(doc.openDocument(path));
    doc.song()->info().setTitle("Changed");
    doc.setModifiedFlag();
    EXPECT_TRUE(doc.OnUpdateFileSave());

    EXPECT_TRUE(doc.OnFileSave());
    EXPECT_TRUE(dialogs.requests().empty());
    EXPECT_FALSE(doc.isModified());
    EXPECT_FALSE(doc.OnUpdateFileSave());
    Song saved;
    ASSERT_EQ(saved.loadFromFile(path), StatusSuccess);
    EXPECT_EQ(saved.info().title(), "Changed");
    EXPECT_EQ(saved.loadedFileType(), 1);
}

TEST(SongDocTest, SaveOfAnyOtherTypeAsksAsSaveAs) {
    TempFolder folder;
    ScriptedDialogs dialogs;
    SongDoc doc(&dialogs);
    const String path = writeSong(folder, "Hymn.txt", 2);
    const String before = folder.read("Hymn.txt");
    ASSERT_TRUE(doc.openDocument(path));
    doc.setModifiedFlag();

    // Cancelled: nothing written, nothing changed.
    dialogs.answerCancel();
    EXPECT_FALSE(doc.OnFileSave());
    ASSERT_EQ(dialogs.requests().size(), 1u);
    const FileDialogRequest& asked = dialogs.requests()[0].file;
    EXPECT_EQ(dialogs.requests()[0].kind, ScriptedDialogs::Kind::SaveFile);
    EXPECT_EQ(asked.filter, SaveFilter);
    EXPECT_EQ(asked.proposedName, "Hymn");
    EXPECT_EQ(asked.initialFolder, folder.path());
    EXPECT_EQ(asked.defaultExtension, "");
    EXPECT_TRUE(asked.overwritePrompt);
    EXPECT_TRUE(asked.pathMustExist);
    EXPECT_TRUE(asked.longNames);
    EXPECT_TRUE(asked.enableSizing);
    EXPECT_FALSE(asked.fileMustExist);
    EXPECT_EQ(folder.read("Hymn.txt"), before);
    EXPECT_TRUE(doc.isModified());
    EXPECT_EQ(doc.fileType(), 2);

    // Confirmed with the first entry: a ".song" file beside the text file,
    // which is left as it was.
    dialogs.answerSave(folder.file("Hymn.song"), 1);
    EXPECT_TRUE(doc.OnFileSave());
    EXPECT_EQ(doc.fileType(), 1);
    EXPECT_EQ(doc.pathName(), folder.file("Hymn.song"));
    EXPECT_FALSE(doc.isModified());
    EXPECT_TRUE(isXml(folder.read("Hymn.song")));
    EXPECT_EQ(folder.read("Hymn.txt"), before);

    // From now on Save writes in place.
    doc.setModifiedFlag();
    EXPECT_TRUE(doc.OnFileSave());
    EXPECT_EQ(dialogs.requests().size(), 2u);
}

TEST(SongDocTest, SaveAsTakesTheTypeAndExtensionFromTheChosenFilter) {
    TempFolder folder;
    ScriptedDialogs dialogs;
    const struct {
        const char* typed;
        int filter;
        const char* written;
        int type;
    } cases[] = {
        {"Typed.song", 2, "Typed.txt", 2},  // the filter wins over the typed extension
        {"Typed", 3, "Typed.sng", 3},
        {"My.Hymn.txt", 1, "My.Hymn.song", 1},
        {"Other.song", 0, "Other.txt", 2},  // no index told: the document's type stays
    };
    for (const auto& c : cases) {
        SongDoc doc(&dialogs);
        ASSERT_TRUE(doc.openDocument(writeSong(folder, "Source.txt", 2)));
        dialogs.answerSave(folder.file(c.typed), c.filter);
        EXPECT_TRUE(doc.OnFileSaveAs()) << c.typed;
        EXPECT_EQ(doc.fileType(), c.type) << c.typed;
        EXPECT_EQ(doc.pathName(), folder.file(c.written));
        Song saved;
        ASSERT_EQ(saved.loadFromFile(folder.file(c.written)), StatusSuccess);
        EXPECT_EQ(saved.loadedFileType(), c.type) << c.written;
        EXPECT_FALSE(fileExists(folder.file(c.typed))) << c.typed;
    }
    const String text = folder.read("Typed.txt");
    EXPECT_FALSE(isXml(text));
    EXPECT_NE(text.find("Amazing grace"), String::npos);
}

TEST(SongDocTest, ANewDocumentIsSavedAsASongFile) {
    TempFolder folder;
    ScriptedDialogs dialogs;
    {
        SongDoc doc(&dialogs);
        ASSERT_TRUE(doc.newDocument());
        EXPECT_TRUE(doc.OnSaveDocument(folder.file("direct.song")));
        EXPECT_EQ(doc.fileType(), 1);
        EXPECT_TRUE(isXml(folder.read("direct.song")));
        EXPECT_EQ(doc.pathName(), "");  // the hook saves; the framework names
    }
    {
        // Save on a document never opened nor saved asks, proposing the title.
        SongDoc doc(&dialogs);
        doc.song()->info().setTitle("Be Still");
        dialogs.answerSave(folder.file("Be Still"), 1);
        EXPECT_TRUE(doc.OnFileSave());
        EXPECT_EQ(dialogs.requests().back().file.proposedName, "Be Still");
        EXPECT_EQ(dialogs.requests().back().file.initialFolder, "");
        EXPECT_EQ(doc.pathName(), folder.file("Be Still.song"));
        EXPECT_TRUE(isXml(folder.read("Be Still.song")));
    }
}

TEST(SongDocTest, ASaveThatFailsStillReportsSuccessButSaysWhy) {
    TempFolder folder;
    SongDoc doc;
    doc.setModifiedFlag();
    const String path = folder.file("no such folder/x.song");
    EXPECT_TRUE(doc.doSave(path));
    EXPECT_FALSE(doc.isModified());
    EXPECT_EQ(doc.lastError().status, Status(ENOENT));
    EXPECT_EQ(doc.lastError().action, FileError::Action::Write);
}

TEST(SongDocTest, ReloadReadsTheFileAgainAndKeepsTheType) {
    TempFolder folder;
    SongDoc doc;
    doc.reload();  // no path: nothing happens
    EXPECT_EQ(doc.song()->getSectionCount(), 0);

    const String path = writeSong(folder, "Hymn.txt", 2);
    ASSERT_TRUE(doc.openDocument(path));
    folder.write("Hymn.txt", "How Great Thou Art\n\nO Lord my God\n");
    doc.reload();
    ASSERT_EQ(doc.song()->getSectionCount(), 2);
    EXPECT_EQ(doc.song()->getSection(1)->getLine(0)->text(), "O Lord my God");
    EXPECT_EQ(doc.fileType(), 2);

    // A file that became XML keeps the document's type all the same.
    writeSong(folder, "Hymn.txt", 1);
    doc.reload();
    EXPECT_EQ(doc.song()->loadedFileType(), 1);
    EXPECT_EQ(doc.fileType(), 2);
}

}  // namespace
}  // namespace melodex
