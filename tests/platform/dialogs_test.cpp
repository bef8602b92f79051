#include "melodex/platform/dialogs.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "support/scripted_dialogs.h"

namespace melodex {
namespace {

constexpr std::string_view OpenSongFilter =
    "Song Files (*.song;*.sng;*.xml;*.txt))|*.song; *.sng; *.xml; *.txt|Cantorix Files "
    "(*.song))|*.song|XML Song Files (*.xml)|*.xml|Creative Lifestyle Song Files "
    "(*.sng)|*.sng|Text Files (*.txt)|*.txt|All Files (*.*)|*.*||";
constexpr std::string_view SaveSongFilter =
    "Cantorix Files (*.song))|*.song|Text Files (*.txt)|*.txt|Other Song Files (*.sng)|*.sng||";

TEST(FileFilterTest, ParsesTheSongFiltersVerbatim) {
    std::vector<FileFilter> open = parseFileFilters(OpenSongFilter);
    ASSERT_EQ(open.size(), 6u);
    EXPECT_EQ(open[0].name, "Song Files (*.song;*.sng;*.xml;*.txt))");
    EXPECT_EQ(open[0].patterns, (StringArray{"*.song", "*.sng", "*.xml", "*.txt"}));
    EXPECT_EQ(open[1].name, "Cantorix Files (*.song))");
    EXPECT_EQ(open[3].name, "Creative Lifestyle Song Files (*.sng)");
    EXPECT_EQ(open[5].name, "All Files (*.*)");
    EXPECT_EQ(open[5].patterns, StringArray{"*.*"});

    // The save chooser's 1-based filter index is the file type: 1 XML song, 2 text, 3 sng.
    std::vector<FileFilter> save = parseFileFilters(SaveSongFilter);
    ASSERT_EQ(save.size(), 3u);
    EXPECT_EQ(save[0].patterns, StringArray{"*.song"});
    EXPECT_EQ(save[1].patterns, StringArray{"*.txt"});
    EXPECT_EQ(save[2].name, "Other Song Files (*.sng)");
}

TEST(FileFilterTest, ToleratesIncompleteFilterTexts) {
    EXPECT_TRUE(parseFileFilters("").empty());
    EXPECT_TRUE(parseFileFilters("||").empty());
    EXPECT_EQ(parseFileFilters("A|*.a").size(), 1u);           // no closing "||"
    EXPECT_EQ(parseFileFilters("A|*.a|B").size(), 1u);         // a name without patterns
    EXPECT_EQ(parseFileFilters("A|*.a||B|*.b||").size(), 1u);  // ends at the first "||"
    std::vector<FileFilter> sparse = parseFileFilters("Odd| ; *.x ;;|");
    ASSERT_EQ(sparse.size(), 1u);
    EXPECT_EQ(sparse[0].patterns, StringArray{"*.x"});
}

TEST(FileFilterTest, MatchesFileNamesIgnoringCaseAndFolders) {
    std::vector<FileFilter> open = parseFileFilters(OpenSongFilter);
    const FileFilter& songs = open[0];
    EXPECT_TRUE(matchesFileFilter(songs, "Amazing Grace.SONG"));
    EXPECT_TRUE(matchesFileFilter(songs, "/songs/old.folder/hymn.Txt"));
    EXPECT_FALSE(matchesFileFilter(songs, "hymn.song.bak"));
    EXPECT_FALSE(matchesFileFilter(songs, "/songs/x.song/readme"));
    EXPECT_FALSE(matchesFileFilter(songs, "song"));

    const FileFilter& all = open[5];
    EXPECT_TRUE(matchesFileFilter(all, "README"));
    EXPECT_TRUE(matchesFileFilter(all, ".hidden"));
    EXPECT_TRUE(matchesFileFilter({"Any", {"*"}}, "no extension"));

    EXPECT_TRUE(matchesFileFilter({"Bible", {"*.ÄB"}}, "Psalmen.äb"));
    EXPECT_TRUE(matchesFileFilter({"Short", {"?.x"}}, "é.X"));
    EXPECT_FALSE(matchesFileFilter({"Short", {"?.x"}}, "ab.x"));
    EXPECT_FALSE(matchesFileFilter({"None", {}}, "a.song"));

    // Many stars against a long name that almost matches must still end.
    EXPECT_FALSE(matchesFileFilter({"Stars", {"*a*a*a*a*a*a*a*a*b"}}, String(5000, 'a')));
}

TEST(WaitCursorTest, NestsAndEndsWithItsScope) {
    test::ScriptedDialogs dialogs;
    {
        WaitCursor outer(dialogs);
        {
            WaitCursor inner(dialogs);
            EXPECT_EQ(dialogs.waitCursorDepth(), 2);
            dialogs.openFile({});
        }
        EXPECT_EQ(dialogs.waitCursorDepth(), 1);
    }
    EXPECT_EQ(dialogs.waitCursorDepth(), 0);
    EXPECT_EQ(dialogs.waitCursorBeginCount(), 2);
    EXPECT_EQ(dialogs.requests().at(0).waitCursorDepth, 2);
}

TEST(ScriptedDialogsTest, AnswersInOrderRecordsRequestsAndCancelsWhenEmpty) {
    test::ScriptedDialogs dialogs;
    dialogs.answerOpen("/a.song");
    dialogs.answerCancel();
    dialogs.answerSave("/b.txt", 2);
    Dialogs& ui = dialogs;

    FileDialogRequest request;
    request.filter = String(SaveSongFilter);
    request.initialFolder = "/songs";
    EXPECT_EQ(ui.openFiles(request), StringArray{"/a.song"});
    EXPECT_FALSE(ui.chooseFolder({"Select Folder for Import", ""}));
    std::optional<SaveFileResult> saved = ui.saveFile(request);
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->filterIndex, 2);
    EXPECT_FALSE(ui.openFile(request));  // nothing queued any more

    ASSERT_EQ(dialogs.requests().size(), 4u);
    EXPECT_EQ(dialogs.requests()[1].folder.title, "Select Folder for Import");
    EXPECT_FALSE(dialogs.requests()[1].answered);
    EXPECT_EQ(dialogs.requests()[2].file.initialFolder, "/songs");
    EXPECT_EQ(dialogs.requests()[2].kind, test::ScriptedDialogs::Kind::SaveFile);

    ui.messageBox({"<b>Hi</b>", "", MessageIcon::Warning});
    EXPECT_EQ(dialogs.messages().at(0).text, "<b>Hi</b>");

    dialogs.answerFolder("/x");
    EXPECT_NONFATAL_FAILURE(dialogs.openFile({}), "another chooser");
    EXPECT_NONFATAL_FAILURE(dialogs.endWaitCursor(), "without a matching");
}

}  // namespace
}  // namespace melodex
