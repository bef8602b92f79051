#include "melodex/platform/headless_dialogs.h"

#include <sstream>

#include <gtest/gtest.h>

namespace melodex {
namespace {

TEST(HeadlessDialogsTest, WritesMessagesAsTextAndCancelsEveryChooser) {
    std::ostringstream out;
    HeadlessDialogs dialogs(out);
    dialogs.messageBox(
        {"<b>There is a problem.</b><p>Please try reinstalling.", "Setup", MessageIcon::Error});
    dialogs.messageBox({"Saved &quot;Psalm 23&quot;.", "", MessageIcon::Information});
    dialogs.messageBox({"Plain", "", MessageIcon::None});
    dialogs.messageBox({"<p></p>", "", MessageIcon::Question});
    dialogs.messageBox({"Careful", "", MessageIcon::Warning});
    EXPECT_EQ(out.str(),
              "error: There is a problem.\nPlease try reinstalling.\n"
              "information: Saved \"Psalm 23\".\nPlain\nquestion:\nwarning: Careful\n");
    out.str("");
    FileDialogRequest request;
    request.filter = "All Files (*.*)|*.*||";
    EXPECT_FALSE(dialogs.openFile(request) || dialogs.openFiles(request) ||
                 dialogs.saveFile(request) || dialogs.chooseFolder({"Select Folder", "/"}));
    {
        WaitCursor busy(dialogs);
        EXPECT_EQ(dialogs.waitCursorDepth(), 1);
    }
    dialogs.endWaitCursor();  // unbalanced: ignored
    EXPECT_EQ(dialogs.waitCursorDepth(), 0);
    EXPECT_EQ(out.str(), "");
}

TEST(HeadlessDialogsTest, ReducesHtmlToText) {
    // clang-format off
    const std::pair<const char*, const char*> cases[] = {
        {"a<br>b<BR/>c<br />d</br>e", "a\nb\nc\nd\ne"}, {"<P align=\"left\">one</p><p>two", "one\ntwo"},
        {"  spread \n\t over   lines  ", "spread over lines"}, {"x <br> y", "x\ny"},
        {"&amp;&lt;&gt;&quot;&#39;&apos;&#x41;&#233;", "&<>\"''A\u00e9"}, {"a&nbsp;&nbsp;b", "a  b"},
        {"&copy; &unknown; & alone &#xZZ; &#;", "&copy; &unknown; & alone &#xZZ; &#;"},
        {"1 < 2 and 3 > 2", "1 < 2 and 3 > 2"}, {"unclosed <b", "unclosed <b"},
        {"<i>J\u00e9sus</i> <span style='x'>est</span><!-- note --> l\u00e0", "J\u00e9sus est l\u00e0"},
        {"&#1114112;&#0;", "\uFFFD\uFFFD"}, {"", ""}};
    // clang-format on
    for (const auto& [html, text] : cases)
        EXPECT_EQ(htmlToPlainText(html), text) << html;
}

}  // namespace
}  // namespace melodex
