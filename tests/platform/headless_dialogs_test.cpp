#include "melodex/platform/headless_dialogs.h"

#include <sstream>

#include <gtest/gtest.h>

namespace melodex {
namespace {

TEST(HeadlessDialogsTest, WritesMessagesAsPlainTextAfterTheIconWord) {
    std::ostringstream out;
    HeadlessDialogs dialogs(out);
    dialogs.messageBox(
        {"<b>There is a problem with the software configuration.</b><p>Please try "
         "reinstalling this software.",
         "Setup", MessageIcon::Error});
    dialogs.messageBox({"Saved &quot;Psalm 23&quot;.", "", MessageIcon::Information});
    dialogs.messageBox({"Plain", "", MessageIcon::None});
    dialogs.messageBox({"<p></p>", "", MessageIcon::Question});
    dialogs.messageBox({"Careful", "", MessageIcon::Warning});
    EXPECT_EQ(out.str(),
              "error: There is a problem with the software configuration.\n"
              "Please try reinstalling this software.\n"
              "information: Saved \"Psalm 23\".\n"
              "Plain\n"
              "question:\n"
              "warning: Careful\n");
}

TEST(HeadlessDialogsTest, ReducesHtmlToText) {
    struct Case {
        const char* html;
        const char* text;
    };
    const Case cases[] = {
        {"a<br>b<BR/>c<br />d</br>e", "a\nb\nc\nd\ne"},
        {"<P align=\"left\">one</p><p>two", "one\ntwo"},
        {"  spread \n\t over   lines  ", "spread over lines"},
        {"x <br> y", "x\ny"},
        {"&amp;&lt;&gt;&quot;&#39;&apos;&#x41;&#233;", "&<>\"''Aé"},
        {"a&nbsp;&nbsp;b", "a  b"},
        {"&copy; &unknown; & alone &#xZZ; &#;", "&copy; &unknown; & alone &#xZZ; &#;"},
        {"1 < 2 and 3 > 2", "1 < 2 and 3 > 2"},
        {"<i>Jésus</i> <span style='x'>est</span><!-- note --> là", "Jésus est là"},
        {"unclosed <b", "unclosed <b"},
        {"&#1114112;&#0;", "\uFFFD\uFFFD"},
        {"", ""},
    };
    for (const Case& c : cases)
        EXPECT_EQ(htmlToPlainText(c.html), c.text) << c.html;
}

TEST(HeadlessDialogsTest, EveryChooserCancelsAndTheWaitCursorOnlyCounts) {
    std::ostringstream out;
    HeadlessDialogs dialogs(out);
    FileDialogRequest request;
    request.filter = "All Files (*.*)|*.*||";
    EXPECT_FALSE(dialogs.openFile(request));
    EXPECT_FALSE(dialogs.openFiles(request));
    EXPECT_FALSE(dialogs.saveFile(request));
    EXPECT_FALSE(dialogs.chooseFolder({"Select Folder for Import", "/"}));
    {
        WaitCursor busy(dialogs);
        EXPECT_EQ(dialogs.waitCursorDepth(), 1);
    }
    dialogs.endWaitCursor();  // unbalanced: ignored
    EXPECT_EQ(dialogs.waitCursorDepth(), 0);
    EXPECT_TRUE(out.str().empty());
}

}  // namespace
}  // namespace melodex
