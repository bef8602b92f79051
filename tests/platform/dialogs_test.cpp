#include "melodex/platform/dialogs.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "support/scripted_dialogs.h"

namespace melodex {
namespace {

// The song choosers' filters as the system writes them, doubled parentheses included.
constexpr std::string_view OpenSongFilter =
    "Song Files (*.song;*.sng;*.xml;*.txt))|*.song; *.sng; *.xml; *.txt|Cantorix Files "
    "(*.song))|*.song|XML Song Files (*.xml)|*.xml|Creative Lifestyle Song Files "
    "(*.sng)|*.sng|Text Files (*.txt)|*.txt|All Files (*.*)|*.*||";

TEST(FileFilterTest, ParsesFilterTextsVerbatimAndTolerantly) {
    const std::vector<FileFilter> open = parseFileFilters(OpenSongFilter);
    ASSERT_EQ(open.size(), 6u);
    EXPECT_EQ(open[0].name, "Song Files (*.song;*.sng;*.xml;*.txt))");
    EXPECT_EQ(open[0].patterns, (StringArray{"*.song", "*.sng", "*.xml", "*.txt"}));
    EXPECT_EQ(open[1].name, "Cantorix Files (*.song))");
    EXPECT_EQ(open[5].name + open[5].patterns.at(0), "All Files (*.*)*.*");
    // No closing "||", a name without patterns, text after the first "||", blanks.
    for (const char* text : {"", "||", "A|*.a", "A|*.a|B", "A|*.a||B|*.b||", "A| ; *.a ;;|"}) {
        const std::vector<FileFilter> filters = parseFileFilters(text);
        EXPECT_EQ(filters.size(), String(text).size() > 2 ? 1u : 0u) << text;
        EXPECT_TRUE(filters.empty() || filters[0].patterns == StringArray{"*.a"}) << text;
    }
}

TEST(FileFilterTest, MatchesFileNamesIgnoringCaseAndFolders) {
    const std::vector<FileFilter> open = parseFileFilters(OpenSongFilter);
    EXPECT_TRUE(matchesFileFilter(open[0], "Amazing Grace.SONG"));
    EXPECT_TRUE(matchesFileFilter(open[0], "/songs/old.folder/hymn.Txt"));
    for (const char* name : {"hymn.song.bak", "/songs/x.song/readme", "song"})
        EXPECT_FALSE(matchesFileFilter(open[0], name)) << name;
    EXPECT_TRUE(matchesFileFilter(open[5], "README") && matchesFileFilter(open[5], ".hidden"));
    EXPECT_TRUE(matchesFileFilter({"Any", {"*"}}, "no extension"));
    EXPECT_TRUE(matchesFileFilter({"Bible", {"*.\u00c4B"}}, "Psalmen.\u00e4b"));
    EXPECT_TRUE(matchesFileFilter({"Short", {"?.x"}}, "\u00e9.X"));
    EXPECT_FALSE(matchesFileFilter({"Short", {"?.x"}}, "ab.x"));
    EXPECT_FALSE(matchesFileFilter({"None", {}}, "a.song"));
    // Many stars against a long name that almost matches must still end.
    EXPECT_FALSE(matchesFileFilter({"Stars", {"*a*a*a*a*a*a*a*a*b"}}, String(5000, 'a')));
}

// The double other tests rely on: answers in order, a cancel when none is
// left, wait cursors counted, and a loud failure for an answer of the wrong kind.
TEST(ScriptedDialogsTest, AnswersInOrderAndFailsOnTheWrongKind) {
    test::ScriptedDialogs dialogs;
    dialogs.answerOpen("/a.song");
    dialogs.answerSave("/b.txt", 2);
    {
        WaitCursor busy(dialogs);
        EXPECT_EQ(dialogs.openFiles({}), StringArray{"/a.song"});
    }
    EXPECT_EQ(dialogs.saveFile({}).value_or(SaveFileResult{}).filterIndex, 2);
    EXPECT_FALSE(dialogs.chooseFolder({"Select Folder for Import", ""}));
    ASSERT_EQ(dialogs.requests().size(), 3u);
    EXPECT_EQ(dialogs.requests()[0].waitCursorDepth, 1);
    EXPECT_EQ(dialogs.requests()[2].folder.title, "Select Folder for Import");
    EXPECT_FALSE(dialogs.requests()[2].answered);
    dialogs.answerFolder("/x");
    EXPECT_NONFATAL_FAILURE(dialogs.openFile({}), "another chooser");
    EXPECT_NONFATAL_FAILURE(dialogs.endWaitCursor(), "without a matching");
}

}  // namespace
}  // namespace melodex
