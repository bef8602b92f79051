#include "melodex/display/chord_display.h"

#include "melodex/display/song_display_profile.h"
#include "melodex/music/notes.h"
#include "melodex/music/song_chord.h"
#include "melodex/music/song_info.h"
#include "melodex/song/song.h"

namespace melodex {

namespace {

// A negative sum comes into 0 to 11; a positive one is left as it is, since
// the spelling lookup takes it modulo 12 anyway.
int shifted(long long note) {
    return note < 0 ? wrapNote(note) : int(note % 12);
}

void appendChord(String& out, const SongDisplayProfile& profile, int root, const String& postfix,
                 int bass, int capo) {
    out += profile.getNoteName(root, capo);
    out += postfix;
    if (bass >= 0) {
        out += '/';
        out += profile.getNoteName(bass, capo);
    }
}

}  // namespace

String SongChord::getDisplayString(const SongDisplayProfile* profile, int transpose,
                                   int localTranspose, int capo) const {
    // A line never holds an invalid chord; one handed in shows as nothing,
    // as toString() shows it.
    if (profile == nullptr || m_chord < 0) return {};
    const long long shift = (long long)transpose + localTranspose;
    const int root = shifted(m_chord + shift);
    const int bass = m_bass >= 0 ? shifted(m_bass + shift) : -1;
    const int capoShift = capo < 0 ? wrapNote(capo) : capo;

    String out;
    if (profile->showChords()) {
        out.reserve(m_postfix.size() * 2 + 12);
        const bool both = capoShift != 0 && profile->capoChordsInBrackets();
        if (both) {
            appendChord(out, *profile, root, m_postfix, bass, 0);
            out += '(';
        }
        appendChord(out, *profile, root, m_postfix, bass, capoShift);
        if (both) out += ')';
    } else if (profile->showBass()) {
        out = profile->getNoteName(bass >= 0 ? bass : root, capoShift);
    }
    return out;
}

ChordDisplay::ChordDisplay(SongDisplayProfile& profile, int songKey, int transpose,
                           std::optional<int> capoFret, std::optional<int> localTranspose)
    // Taken modulo 12 at once: the shifts add up unchecked otherwise, and a
    // profile file may hold any transposition.
    : m_profile(&profile), m_transpose(wrapNote((long long)transpose + profile.transpose())) {
    const int shownKey = wrapNote((long long)songKey + m_transpose);
    m_localTranspose = localTranspose ? *localTranspose : profile.defaultLocalTranspose(shownKey);
    if (capoFret)
        m_capoFret = *capoFret;
    else if (profile.capoPosition() != 0)
        m_capoFret = profile.capoPosition();
    else
        m_capoFret = profile.defaultCapoPosition(shownKey);
    m_key = wrapNote((long long)shownKey + m_localTranspose);
}

ChordDisplay::ChordDisplay(SongDisplayProfile& profile, const SongInfo& info, int transpose,
                           std::optional<int> capoFret, std::optional<int> localTranspose)
    : ChordDisplay(profile, noteNumber(info.key()) >= 0 ? info.keyNumber(0, false) : 0, transpose,
                   capoFret, localTranspose) {}

String ChordDisplay::operator()(const SongChord& chord) const {
    m_profile->setCurrentKey(m_key);
    return chord.getDisplayString(m_profile, m_transpose, m_localTranspose,
                                  wrapNote(-(long long)m_capoFret));
}

ChordSheetOptions chordSheetOptions(SongDisplayProfile& profile, const Song& song,
                                    const ChordDisplayOptions& options) {
    const ChordDisplay display(profile, song.info(), options.transpose, options.capoFret,
                               options.localTranspose);
    ChordSheetOptions sheet;
    // The key line follows the chords: the caller's and the profile's
    // transposition together (the local transposition changes the shapes
    // played, not the key sung).
    sheet.transpose = display.transpose();
    sheet.capo = display.capoFret();
    sheet.sequence = options.sequence;
    sheet.chordText = display;
    return sheet;
}

}  // namespace melodex
