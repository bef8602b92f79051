#pragma once

// What a document/view framework gives every document, without a GUI
// toolkit: the path the document was opened from or last saved to, whether
// it changed since, and the steps that the New, Open, Save and Save As
// commands run. A program's toolkit adapter calls these; tests call them
// directly with scripted dialogs.
//
//     SongDoc doc(&dialogs);
//     if (doc.openDocument("/songs/Hymn.txt")) ...   // OnOpenDocument, then the path
//     doc.setModifiedFlag();                         // the user edited the song
//     doc.OnFileSave();                              // a text song asks where to save
//
// Derived documents override the On...Document hooks to read and write
// their contents. The dialogs are the ones given, else theBaseApp's.
// lastError() tells what failed in the last public operation that touched
// files, also where the hooks report success regardless.

#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"
#include "melodex/platform/dialogs.h"

namespace melodex {

class Document {
public:
    // Not owned; null: theBaseApp.dialogs() at the time of use.
    explicit Document(Dialogs* dialogs = nullptr);
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;
    virtual ~Document();

    // Empty while the document has never been opened or saved.
    const String& pathName() const { return m_pathName; }
    void setPathName(const String& path) { m_pathName = path; }

    bool isModified() const { return m_modified; }
    void setModifiedFlag(bool modified = true) { m_modified = modified; }

    Dialogs& dialogs() const;

    const FileError& lastError() const { return m_lastError; }

    // --- The framework's commands ---------------------------------------------

    // New: OnNewDocument(); the path becomes empty.
    bool newDocument();
    // Open: OnOpenDocument(path), and on success the path is the document's.
    bool openDocument(const String& path);
    // Save: under the document's path, asking for one when there is none.
    bool doFileSave();
    // Saves under `path` through OnSaveDocument, first asking for a path when
    // it is empty; with `replace` the path saved to becomes the document's.
    // False when the user cancels or the document reports a failure.
    bool doSave(const String& path, bool replace = true);

    // --- Hooks ---------------------------------------------------------------

    // Clears the modified flag.
    virtual bool OnNewDocument();
    // Checks that the file can be read and clears the modified flag; false
    // (with lastError() saying why) when it cannot be read.
    virtual bool OnOpenDocument(const String& path);
    // Writes the document to `path`.
    virtual bool OnSaveDocument(const String& path) = 0;

protected:
    // The path doSave() saves to when it was given none: the save chooser
    // with every file allowed, proposing the file name of the document's
    // path; empty on cancel.
    virtual String promptSavePath();

    FileError m_lastError;

private:
    Dialogs* m_dialogs = nullptr;
    String m_pathName;
    bool m_modified = false;
};

}  // namespace melodex
