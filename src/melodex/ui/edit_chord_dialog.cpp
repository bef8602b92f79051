#include "melodex/ui/edit_chord_dialog.h"

namespace melodex {

EditChordDialog::EditChordDialog(SongChord* chord, void* parentWindow)
    : m_chord(chord), m_parentWindow(parentWindow) {
    if (m_chord != nullptr) m_text = m_chord->toString(0, false);
}

void EditChordDialog::OnOK() {
    if (m_chord != nullptr) *m_chord = m_text;
    m_result = Result::Ok;
}

}  // namespace melodex
