#pragma once

// One item of a song set (a running order for a service): a song with the
// overrides for this use of it (transposition, capo, tempo, local
// transposition, section order), a gap, or a separator line.
//
//     SongSetEntry entry(song, true);  // the entry owns the song
//     entry.transpose(2);              // two semitones up for this use
//     entry.setCapo(3);
//     entry.getSequence();             // "V1,C1,V2,C1" unless set here
//
// A song taken from the song library (SongDBFileEntry::song()) is never
// owned: the library keeps it; an entry read from a set file also shares
// it (holdLibrarySong), so the song outlives a removal from the library. A song loaded from a file
// or embedded in a set file is owned and deleted with the entry. Copying an entry shares a library
// song and copies an owned song, so no song is ever deleted twice.

#include <memory>

#include "melodex/display/chord_display.h"
#include "melodex/foundation/text.h"

namespace melodex {

class Song;

class SongSetEntry {
public:
    // Entry types.
    static constexpr int Empty = 0;
    static constexpr int SongItem = 1;
    static constexpr int Gap = 2;
    static constexpr int Line = 3;

    SongSetEntry() = default;
    // As set(song, owned, false).
    SongSetEntry(Song* song, bool owned);
    SongSetEntry(const SongSetEntry& other);
    SongSetEntry& operator=(const SongSetEntry& other);
    virtual ~SongSetEntry();

    // clear(), then holds the song (taking ownership when `owned`); a song
    // makes the entry a song entry.
    void set(Song* song, bool owned, bool dbflag);
    // Keeps the library song the entry holds alive for as long as the entry
    // holds it, even when the library removes it or closes. The set reader
    // does this for every library song; ignored for any other song.
    void holdLibrarySong(std::shared_ptr<Song> song);

    // Deletes an owned song and resets every field to its default.
    void clear();

    // The song of a song entry, or null. Owned by the entry when owned().
    Song* song() const { return m_song; }
    bool owned() const { return m_ownedSong != nullptr; }

    int type() const { return m_type; }
    void type(int type) { m_type = type; }
    // 0 means none.
    int tempo() const { return m_tempo; }
    void tempo(int tempo) { m_tempo = tempo; }
    int transpose() const { return m_transpose; }
    // Adds n semitones; nothing when the entry holds no song.
    void transpose(int n);
    int capo() const { return m_capo; }
    void setCapo(int capo) { m_capo = capo; }
    // Adds n; nothing when the entry holds no song.
    void adjustCapo(int n);
    int localTranspose() const { return m_localTranspose; }
    void setLocalTranspose(int semitones) { m_localTranspose = semitones; }
    // Adds n; nothing when the entry holds no song.
    void adjustLocalTranspose(int n);
    // The section order for this use; empty means the song's own.
    const String& sequence() const { return m_sequence; }
    void sequence(const String& sequence) { m_sequence = sequence; }
    // True when the song comes from the song library (written by uuid).
    bool dbflag() const { return m_dbflag; }
    void dbflag(bool dbflag) { m_dbflag = dbflag; }

    // The entry's sequence, else the song's own (Song::getSequence); empty
    // without a song.
    String getSequence() const;

    // How this use shows the song's chords: its transposition and running
    // order (getSequence), its capo and local transposition when set (0
    // leaves them to the display profile's own rule).
    ChordDisplayOptions chordDisplayOptions() const;

    // The entry's element in a set file: a library song by uuid, with
    // `useFilename` a song by its file path (an absolute one made relative
    // to the folder of the set file at `setPath`), else the whole song
    // embedded. A song without a file path is embedded too. An empty entry,
    // and a song entry without a song, write nothing.
    String writeToText(bool useFilename, const String& setPath) const;

private:
    int m_type = Empty;
    Song* m_song = nullptr;
    std::unique_ptr<Song> m_ownedSong;    // m_song when the entry owns it
    std::shared_ptr<Song> m_librarySong;  // m_song when it is a library song held alive
    int m_transpose = 0;
    int m_capo = 0;
    int m_tempo = 0;
    int m_localTranspose = 0;
    String m_sequence;
    bool m_dbflag = false;
};

}  // namespace melodex
