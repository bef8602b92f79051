#include "melodex/music/song_chord.h"

#include "melodex/music/notes.h"

namespace melodex {
namespace {

// Adds `semitones` and wraps the way stored chords always have: values above
// 12 come down, negative values come up, and 12 itself stays. Readers take
// note numbers modulo 12, and files saved with a 12 must keep reading alike.
int shiftNote(int note, int semitones) {
    long long value = (long long)note + semitones;
    if (value > 12) value = (value - 1) % 12 + 1;
    if (value < 0) value = wrapNote(value);
    return int(value);
}

void appendSpelled(String& out, int root, const String& postfix, int bass) {
    out += chordNoteName(0, root);
    out += postfix;
    if (bass >= 0) {
        out += '/';
        out += chordNoteName(0, bass);
    }
}

}  // namespace

SongChord::SongChord(std::string_view symbol, int offset) : m_offset(offset) {
    *this = symbol;
}

SongChord& SongChord::operator=(std::string_view symbol) {
    m_chord = -1;
    m_bass = -1;
    m_postfix.clear();

    // A slash at the very start is no separator: "/G" is simply not a chord.
    std::string_view bassText;
    const std::size_t slash = symbol.find('/');
    if (slash != std::string_view::npos && slash >= 1) {
        bassText = symbol.substr(slash + 1);
        symbol = symbol.substr(0, slash);
    }

    const LeadingNote root = leadingNote(symbol);
    m_chord = root.number;
    if (m_chord >= 0) m_postfix.assign(symbol.substr(root.length));
    // Whatever follows the bass note name is dropped.
    m_bass = leadingNote(bassText).number;
    return *this;
}

String SongChord::toString(int transpose, bool showBoth) const {
    if (m_chord < 0) return {};
    const int shift = transpose < 0 ? wrapNote(transpose) : transpose;
    String out;
    out.reserve(m_postfix.size() + 8);
    const bool both = shift != 0 && showBoth;
    if (both) {
        appendSpelled(out, m_chord, m_postfix, m_bass);
        out += '(';
    }
    appendSpelled(out, wrapNote((long long)m_chord + shift), m_postfix,
                  m_bass >= 0 ? wrapNote((long long)m_bass + shift) : -1);
    if (both) out += ')';
    return out;
}

void SongChord::transpose(int semitones) {
    m_chord = shiftNote(m_chord, semitones);
    if (m_bass >= 0) m_bass = shiftNote(m_bass, semitones);
}

int SongChord::getNoteNumber(String& text) {
    const LeadingNote note = leadingNote(text);
    if (note.length > 0) text.erase(0, note.length);
    return note.number;
}

int SongChord::noteNumber(std::string_view text) {
    return melodex::noteNumber(text);
}

void convertToChords(std::string_view line, std::vector<SongChord>& chords) {
    std::size_t tokenBegin = 0;  // byte where the current token begins
    int start = 0;               // its code-point position
    int position = 0;
    auto flush = [&](std::size_t tokenEnd) {
        if (tokenEnd == tokenBegin) return;
        SongChord chord(line.substr(tokenBegin, tokenEnd - tokenBegin), start);
        if (chord.isValid()) chords.push_back(std::move(chord));
    };
    std::size_t pos = 0;
    while (pos < line.size()) {
        const std::size_t begin = pos;
        const char32_t c = decodeUtf8(line, pos);
        ++position;
        if (c == U' ' || c == U'\t') {
            flush(begin);
            tokenBegin = pos;
            start = position;
        }
    }
    flush(line.size());
}

}  // namespace melodex
