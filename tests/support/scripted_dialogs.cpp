#include "support/scripted_dialogs.h"

#include <utility>

#include <gtest/gtest.h>

namespace melodex::test {

void ScriptedDialogs::answerOpen(String path) {
    m_answers.push_back({Answer::Type::Files, {std::move(path)}, 0});
}

void ScriptedDialogs::answerOpenFiles(StringArray paths) {
    if (paths.empty()) {
        answerCancel();
        return;
    }
    m_answers.push_back({Answer::Type::Files, std::move(paths), 0});
}

void ScriptedDialogs::answerSave(String path, int filterIndex) {
    m_answers.push_back({Answer::Type::Save, {std::move(path)}, filterIndex});
}

void ScriptedDialogs::answerFolder(String path) {
    m_answers.push_back({Answer::Type::Folder, {std::move(path)}, 0});
}

void ScriptedDialogs::answerCancel() {
    m_answers.push_back({});
}

ScriptedDialogs::Answer ScriptedDialogs::take() {
    if (m_answers.empty()) return {};
    Answer answer = std::move(m_answers.front());
    m_answers.pop_front();
    return answer;
}

ScriptedDialogs::Request& ScriptedDialogs::record(Kind kind) {
    Request& request = m_requests.emplace_back();
    request.kind = kind;
    request.waitCursorDepth = m_waitDepth;
    return request;
}

void ScriptedDialogs::messageBox(const MessageRequest& request) {
    m_messages.push_back(request);
}

std::optional<String> ScriptedDialogs::openFile(const FileDialogRequest& request) {
    Request& shown = record(Kind::OpenFile);
    shown.file = request;
    Answer answer = take();
    if (answer.type == Answer::Type::Cancel) return std::nullopt;
    if (answer.type != Answer::Type::Files || answer.paths.size() != 1) {
        ADD_FAILURE() << "the open-file chooser got an answer queued for another chooser";
        return std::nullopt;
    }
    shown.answered = true;
    return answer.paths.front();
}

std::optional<StringArray> ScriptedDialogs::openFiles(const FileDialogRequest& request) {
    Request& shown = record(Kind::OpenFiles);
    shown.file = request;
    Answer answer = take();
    if (answer.type == Answer::Type::Cancel) return std::nullopt;
    if (answer.type != Answer::Type::Files) {
        ADD_FAILURE() << "the open-files chooser got an answer queued for another chooser";
        return std::nullopt;
    }
    shown.answered = true;
    return std::move(answer.paths);
}

std::optional<SaveFileResult> ScriptedDialogs::saveFile(const FileDialogRequest& request) {
    Request& shown = record(Kind::SaveFile);
    shown.file = request;
    Answer answer = take();
    if (answer.type == Answer::Type::Cancel) return std::nullopt;
    if (answer.type != Answer::Type::Save) {
        ADD_FAILURE() << "the save chooser got an answer queued for another chooser";
        return std::nullopt;
    }
    shown.answered = true;
    return SaveFileResult{answer.paths.front(), answer.filterIndex};
}

std::optional<String> ScriptedDialogs::chooseFolder(const FolderDialogRequest& request) {
    Request& shown = record(Kind::ChooseFolder);
    shown.folder = request;
    Answer answer = take();
    if (answer.type == Answer::Type::Cancel) return std::nullopt;
    if (answer.type != Answer::Type::Folder) {
        ADD_FAILURE() << "the folder chooser got an answer queued for another chooser";
        return std::nullopt;
    }
    shown.answered = true;
    return answer.paths.front();
}

void ScriptedDialogs::beginWaitCursor() {
    ++m_waitDepth;
    ++m_waitBegins;
}

void ScriptedDialogs::endWaitCursor() {
    if (m_waitDepth == 0) {
        ADD_FAILURE() << "endWaitCursor() without a matching beginWaitCursor()";
        return;
    }
    --m_waitDepth;
}

}  // namespace melodex::test
