#pragma once

// The Dialogs of a program without a GUI: every file and folder chooser
// cancels, and a message box becomes a line of plain text on stderr (or on
// the stream given), prefixed with the icon's word:
//
//     error: There is a problem with the software configuration.
//     Please try reinstalling this software ...
//
// The wait cursor is counted but shows nothing.

#include <iosfwd>
#include <string_view>

#include "melodex/foundation/text.h"
#include "melodex/platform/dialogs.h"

namespace melodex {

class HeadlessDialogs : public Dialogs {
public:
    HeadlessDialogs();                            // writes to std::cerr
    explicit HeadlessDialogs(std::ostream& out);  // the stream must outlive this object

    void messageBox(const MessageRequest& request) override;
    std::optional<String> openFile(const FileDialogRequest& request) override;
    std::optional<StringArray> openFiles(const FileDialogRequest& request) override;
    std::optional<SaveFileResult> saveFile(const FileDialogRequest& request) override;
    std::optional<String> chooseFolder(const FolderDialogRequest& request) override;
    void beginWaitCursor() override;
    void endWaitCursor() override;

    // How many wait cursors are open now.
    int waitCursorDepth() const { return m_waitDepth; }

private:
    std::ostream& m_out;
    int m_waitDepth = 0;
};

// One HeadlessDialogs writing to std::cerr, shared by the objects of the
// process that have been given no dialogs of their own.
HeadlessDialogs& sharedHeadlessDialogs();

// The text of a message-box HTML fragment: "<p>" and "<br>" (any case, with
// or without attributes or a closing slash) become line breaks, other tags
// are dropped, runs of blanks and line ends in the source become one space
// as a browser shows them, and the entities &amp; &lt; &gt; &quot; &apos;
// &nbsp; and numeric ones (&#39; &#x27;) are decoded; unknown entities stay
// as written. Blanks at the start and end of each line are removed, and so
// are empty lines at the start and end.
String htmlToPlainText(std::string_view html);

// "information", "warning", "error", "question"; empty for None.
std::string_view messageIconWord(MessageIcon icon);

}  // namespace melodex
