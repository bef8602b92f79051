#pragma once

// The document of a song window in the editor and the viewer: one Song, the
// file type it is saved in, and the Save and Save As commands that respect
// that type.
//
//     SongDoc doc;                               // theBaseApp's dialogs
//     doc.openDocument("/songs/Hymn.txt");       // file type 2
//     doc.song()->info().setTitle("Hymn");
//     doc.setModifiedFlag();
//     doc.OnFileSave();   // a text song is never overwritten as text in
//                         // passing: Save asks where and in which type
//
// The file type is 1 ".song", 2 ".txt" or 3 ".sng"; 0 until the document is
// opened or saved, and a document saved with type 0 is saved as ".song".
// Song load and save errors are not reported through the return values
// (the hooks report success after the attempt); lastError() tells them.

#include "melodex/song/song.h"
#include "melodex/ui/document.h"

namespace melodex {

class SongDoc : public Document {
public:
    // The dialogs are not owned; null: theBaseApp's.
    explicit SongDoc(Dialogs* dialogs = nullptr);

    Song* song() { return &m_song; }
    const Song* song() const { return &m_song; }
    int fileType() const { return m_fileType; }

    // Leaves the song as constructed.
    bool OnNewDocument() override;
    // After the framework's check that the file reads, loads the song and
    // takes its file type from the load; true even when the song did not
    // load.
    bool OnOpenDocument(const String& path) override;
    // Saves the song in the document's file type (1 when it is 0) and clears
    // the modified flag; always true.
    bool OnSaveDocument(const String& path) override;

    // Save: in place for a ".song" document, else as Save As. True when the
    // song was saved.
    bool OnFileSave();
    // Save As: asks for a path and a type with the song save filter; the
    // chosen filter entry is the new file type and gives the extension,
    // whatever the user typed. True when the song was saved.
    bool OnFileSaveAs();
    // Whether Save is enabled: exactly when the document is modified.
    bool OnUpdateFileSave() const { return isModified(); }

    // Reads the song again from the document's path, when it has one; the
    // file type stays as it was.
    void reload();

private:
    Song m_song;
    int m_fileType = 0;
};

}  // namespace melodex
