#pragma once

// The display choices a program keeps for one song: transposition, capo
// position, local transposition, display target and tempo. A plain record;
// everything is 0 until set.

namespace melodex {

class SongDisplaySettings {
public:
    int transpose() const { return m_transpose; }
    void transpose(int semitones) { m_transpose = semitones; }
    int capoPosition() const { return m_capoPosition; }
    void capoPosition(int fret) { m_capoPosition = fret; }
    int localTranspose() const { return m_localTranspose; }
    void localTranspose(int semitones) { m_localTranspose = semitones; }
    // DisplayTarget bits.
    int displayTargetType() const { return m_displayTargetType; }
    void displayTargetType(int type) { m_displayTargetType = type; }
    int tempo() const { return m_tempo; }
    void tempo(int tempo) { m_tempo = tempo; }

    friend bool operator==(const SongDisplaySettings&, const SongDisplaySettings&) = default;

private:
    int m_transpose = 0;
    int m_capoPosition = 0;
    int m_localTranspose = 0;
    int m_displayTargetType = 0;
    int m_tempo = 0;
};

}  // namespace melodex
