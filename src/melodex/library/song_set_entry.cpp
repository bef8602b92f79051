#include "melodex/library/song_set_entry.h"

#include <string>

#include "melodex/foundation/file_system.h"
#include "melodex/foundation/xml.h"
#include "melodex/song/song.h"

namespace melodex {

SongSetEntry::SongSetEntry(Song* song, bool owned) {
    set(song, owned, false);
}

SongSetEntry::SongSetEntry(const SongSetEntry& other) {
    *this = other;
}

SongSetEntry& SongSetEntry::operator=(const SongSetEntry& other) {
    if (this == &other) return *this;
    // A library song is shared; an owned one is copied, so that each entry
    // deletes only its own.
    std::unique_ptr<Song> copy;
    if (other.m_ownedSong) copy = std::make_unique<Song>(*other.m_ownedSong);
    m_ownedSong = std::move(copy);
    m_song = m_ownedSong ? m_ownedSong.get() : other.m_song;
    m_librarySong = other.m_librarySong;
    m_type = other.m_type;
    m_transpose = other.m_transpose;
    m_capo = other.m_capo;
    m_tempo = other.m_tempo;
    m_localTranspose = other.m_localTranspose;
    m_sequence = other.m_sequence;
    m_dbflag = other.m_dbflag;
    return *this;
}

SongSetEntry::~SongSetEntry() = default;

void SongSetEntry::set(Song* song, bool owned, bool dbflag) {
    // Handed the song it already owns, the entry keeps owning it: deleting it
    // here would leave `song` dangling, dropping it would leak it.
    std::unique_ptr<Song> kept;
    if (song && song == m_ownedSong.get()) kept = std::move(m_ownedSong);
    clear();
    m_song = song;
    if (kept) {
        m_ownedSong = std::move(kept);
    } else if (song && owned) {
        m_ownedSong.reset(song);
    }
    m_dbflag = dbflag;
    if (song) m_type = SongItem;
}

void SongSetEntry::holdLibrarySong(std::shared_ptr<Song> song) {
    if (song && song.get() == m_song && !m_ownedSong) m_librarySong = std::move(song);
}

void SongSetEntry::clear() {
    m_ownedSong.reset();
    m_librarySong.reset();
    m_song = nullptr;
    m_type = Empty;
    m_transpose = 0;
    m_capo = 0;
    m_tempo = 0;
    m_localTranspose = 0;
    m_sequence.clear();
    m_dbflag = false;
}

void SongSetEntry::transpose(int n) {
    if (m_song) m_transpose += n;
}

void SongSetEntry::adjustCapo(int n) {
    if (m_song) m_capo += n;
}

void SongSetEntry::adjustLocalTranspose(int n) {
    if (m_song) m_localTranspose += n;
}

String SongSetEntry::getSequence() const {
    if (!m_sequence.empty()) return m_sequence;
    return m_song ? m_song->getSequence() : String();
}

String SongSetEntry::writeToText(bool useFilename, const String& setPath) const {
    switch (m_type) {
        case Gap:
            return "<gap></gap>\n";
        case Line:
            return "<line></line>\n";
        case SongItem:
            if (m_song) break;
            return {};
        default:
            return {};
    }

    String out = "<songentry";
    if (m_transpose != 0) out += XmlString::attribute("transpose", std::to_string(m_transpose));
    if (m_capo != 0) out += XmlString::attribute("capo", std::to_string(m_capo));
    if (m_tempo != 0) out += XmlString::attribute("tempo", std::to_string(m_tempo));
    if (m_localTranspose != 0)
        out += XmlString::attribute("localtranspose", std::to_string(m_localTranspose));
    if (!m_sequence.empty()) out += XmlString::attribute("sequence", m_sequence);
    out += ">\n";

    if (m_dbflag) {
        out += "<database>";
        out += XmlString::encode(m_song->uuid());
        out += "</database>\n";
    } else if (useFilename && !m_song->filename().empty()) {
        // Relative to the set file's folder, whatever the current folder is,
        // so that the reader finds the song again.
        const String path =
            relativePath(absolutePath(m_song->filename()), absolutePath(folderOf(setPath)));
        out += "<filename>";
        out += XmlString::encode(path);
        out += "</filename>\n";
    } else {
        out += m_song->saveToText(SongFileType::Song, false);
    }
    out += "</songentry>\n";
    return out;
}

ChordDisplayOptions SongSetEntry::chordDisplayOptions() const {
    ChordDisplayOptions options;
    options.transpose = m_transpose;
    if (m_capo != 0) options.capoFret = m_capo;
    if (m_localTranspose != 0) options.localTranspose = m_localTranspose;
    options.sequence = getSequence();
    return options;
}

}  // namespace melodex
