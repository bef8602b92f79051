#include "melodex/ui/document.h"

#include <cerrno>
#include <cstdio>

#include "melodex/app/melodex.h"
#include "melodex/foundation/file_system.h"

namespace melodex {

Document::Document(Dialogs* dialogs) : m_dialogs(dialogs) {}

Document::~Document() = default;

Dialogs& Document::dialogs() const {
    return m_dialogs != nullptr ? *m_dialogs : theBaseApp.dialogs();
}

bool Document::newDocument() {
    m_lastError.clear();
    if (!OnNewDocument()) return false;
    m_pathName.clear();
    return true;
}

bool Document::openDocument(const String& path) {
    m_lastError.clear();
    if (!OnOpenDocument(path)) return false;
    m_pathName = path;
    return true;
}

bool Document::doFileSave() {
    m_lastError.clear();
    return doSave(m_pathName, true);
}

bool Document::doSave(const String& path, bool replace) {
    String target = path;
    if (target.empty()) {
        target = promptSavePath();
        if (target.empty()) return false;
    }
    if (!OnSaveDocument(target)) return false;
    if (replace) m_pathName = target;
    return true;
}

bool Document::OnNewDocument() {
    m_modified = false;
    return true;
}

bool Document::OnOpenDocument(const String& path) {
    // What the framework checks before a document reads its contents: that
    // the file opens for reading (a folder does not).
    if (!fileExists(path)) {
        m_lastError.record(FileError::Action::Read, path,
                           folderExists(path) ? Status(EISDIR) : Status(ENOENT));
        return false;
    }
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        m_lastError.record(FileError::Action::Read, path, Status(errno));
        return false;
    }
    std::fclose(file);
    m_modified = false;
    return true;
}

String Document::promptSavePath() {
    FileDialogRequest request;
    request.initialFolder = folderOf(m_pathName);
    request.proposedName = fileNameOf(m_pathName);
    request.overwritePrompt = true;
    request.pathMustExist = true;
    request.enableSizing = true;
    const std::optional<SaveFileResult> chosen = dialogs().saveFile(request);
    return chosen ? chosen->path : String();
}

}  // namespace melodex
