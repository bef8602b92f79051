#include "melodex/ui/song_doc.h"

#include <optional>

#include "melodex/foundation/file_system.h"

namespace melodex {

SongDoc::SongDoc(Dialogs* dialogs) : Document(dialogs) {}

bool SongDoc::OnNewDocument() {
    return Document::OnNewDocument();
}

bool SongDoc::OnOpenDocument(const String& path) {
    if (!Document::OnOpenDocument(path)) return false;
    m_lastError.record(FileError::Action::Read, path, m_song.loadFromFile(path));
    m_fileType = m_song.loadedFileType();
    return true;
}

bool SongDoc::OnSaveDocument(const String& path) {
    if (m_fileType == 0) m_fileType = SongFileType::Song;
    m_lastError.record(FileError::Action::Write, path, m_song.saveToFile(path, m_fileType));
    setModifiedFlag(false);
    return true;
}

bool SongDoc::OnFileSave() {
    // Only a ".song" file is written back in place: a song read from a text
    // or foreign file would lose its chords or layout if saved silently in
    // that format.
    if (m_fileType == SongFileType::Song) return doFileSave();
    return OnFileSaveAs();
}

bool SongDoc::OnFileSaveAs() {
    m_lastError.clear();
    FileDialogRequest request;
    request.filter = SongFileSaveFilter;
    // The name without its extension in the current folder; a document
    // never saved offers its title.
    const String& current = pathName();
    request.initialFolder = folderOf(current);
    request.proposedName = current.empty() ? m_song.info().title() : baseNameOf(current);
    request.overwritePrompt = true;
    request.pathMustExist = true;
    request.longNames = true;
    request.enableSizing = true;
    const std::optional<SaveFileResult> chosen = dialogs().saveFile(request);
    if (!chosen) return false;

    // The filter entries are in file type order. A toolkit that does not
    // tell the entry (0) keeps the document's type.
    const int index = chosen->filterIndex;
    if (index >= SongFileType::Song && index <= SongFileType::Sng)
        m_fileType = index;
    else if (m_fileType < SongFileType::Song || m_fileType > SongFileType::Sng)
        m_fileType = SongFileType::Song;
    return doSave(Song::pathWithFileExtension(chosen->path, m_fileType), true);
}

void SongDoc::reload() {
    if (pathName().empty()) return;
    m_lastError.clear();
    m_lastError.record(FileError::Action::Read, pathName(), m_song.loadFromFile(pathName()));
}

}  // namespace melodex
