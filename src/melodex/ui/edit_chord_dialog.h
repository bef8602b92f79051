#pragma once

// The dialog that edits one chord as text, without a GUI toolkit: the
// toolkit's adapter shows text() in the dialog's single edit field, puts
// what the user typed back with text(String) and calls OnOK() or
// OnCancel().
//
//     EditChordDialog dialog(&chord);     // text() is "F#m7/C#"
//     dialog.text("Gm7/D");               // what the user typed
//     dialog.OnOK();                      // chord is now Gm7/D, offset kept
//
// The chord is not owned and must outlive the dialog; a null chord gives an
// empty text and OK changes nothing.

#include "melodex/foundation/text.h"
#include "melodex/music/song_chord.h"

namespace melodex {

class EditChordDialog {
public:
    enum class Result { Open, Ok, Cancel };

    // `parentWindow` is the toolkit's handle of the window the dialog belongs
    // to, kept for the adapter that shows it; it may be null.
    explicit EditChordDialog(SongChord* chord, void* parentWindow = nullptr);

    // The chord as edited: at first the chord's own text form,
    // untransposed and without the original in brackets.
    const String& text() const { return m_text; }
    void text(const String& text) { m_text = text; }

    SongChord* chord() const { return m_chord; }
    void* parentWindow() const { return m_parentWindow; }
    Result result() const { return m_result; }

    // Parses the text into the chord (its offset is kept) and closes.
    void OnOK();
    // Closes and leaves the chord as it was.
    void OnCancel() { m_result = Result::Cancel; }

private:
    String m_text;
    SongChord* m_chord;
    void* m_parentWindow;
    Result m_result = Result::Open;
};

}  // namespace melodex
