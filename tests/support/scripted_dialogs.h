#pragma once

// A Dialogs double for tests: the test queues the answers the "user" will
// give, runs the code under test, then checks what was asked and shown.
//
//     ScriptedDialogs dialogs;
//     dialogs.answerSave("/tmp/x/Song.song", 2);  // Save As, "Text Files" chosen
//     code.saveSong(dialogs);
//     EXPECT_EQ(dialogs.requests().at(0).file.filter, expectedFilter);
//
// Answers are used in the order they were queued, one per chooser. A chooser
// with no answer left cancels. An answer of the wrong kind (a folder for an
// open-file chooser, several files for a single-file one) fails the running
// test and cancels.

#include <cstddef>
#include <deque>
#include <optional>
#include <vector>

#include "melodex/foundation/text.h"
#include "melodex/platform/dialogs.h"

namespace melodex::test {

class ScriptedDialogs : public Dialogs {
public:
    enum class Kind { OpenFile, OpenFiles, SaveFile, ChooseFolder };

    // One chooser that was shown: `file` holds the request of a file
    // chooser, `folder` that of a folder chooser.
    struct Request {
        Kind kind = Kind::OpenFile;
        FileDialogRequest file;
        FolderDialogRequest folder;
        int waitCursorDepth = 0;  // wait cursors open while it was shown
        bool answered = false;    // false when it was cancelled
    };

    // The next chooser picks this file (also serves a several-files chooser).
    void answerOpen(String path);
    // The next chooser picks these files; an empty list cancels.
    void answerOpenFiles(StringArray paths);
    // The next save chooser confirms this path with that filter index.
    void answerSave(String path, int filterIndex);
    void answerFolder(String path);
    // The next chooser, whatever its kind, is cancelled.
    void answerCancel();

    std::size_t pendingAnswers() const { return m_answers.size(); }

    const std::vector<Request>& requests() const { return m_requests; }
    const std::vector<MessageRequest>& messages() const { return m_messages; }

    int waitCursorDepth() const { return m_waitDepth; }
    int waitCursorBeginCount() const { return m_waitBegins; }

    void messageBox(const MessageRequest& request) override;
    std::optional<String> openFile(const FileDialogRequest& request) override;
    std::optional<StringArray> openFiles(const FileDialogRequest& request) override;
    std::optional<SaveFileResult> saveFile(const FileDialogRequest& request) override;
    std::optional<String> chooseFolder(const FolderDialogRequest& request) override;
    void beginWaitCursor() override;
    void endWaitCursor() override;  // fails the test when none is open

private:
    struct Answer {
        enum class Type { Cancel, Files, Save, Folder } type = Type::Cancel;
        StringArray paths;
        int filterIndex = 0;
    };

    // The next answer, or a cancel when none is queued.
    Answer take();
    Request& record(Kind kind);

    std::deque<Answer> m_answers;
    std::vector<Request> m_requests;
    std::vector<MessageRequest> m_messages;
    int m_waitDepth = 0;
    int m_waitBegins = 0;
};

}  // namespace melodex::test
