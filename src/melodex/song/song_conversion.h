#pragma once

// Choosing the file type a song is written as, and what that type cannot
// hold: so that every program that converts songs names the same types and
// warns of the same losses.
//
//     const int type = songFileTypeForPath("Hymn.txt");  // SongFileType::Text
//     for (const String& lost : dataLostBySaving(song, type))
//         warn("Hymn.txt drops " + lost);                 // "the chords" ...

#include "melodex/foundation/text.h"
#include "melodex/song/song.h"

namespace melodex {

// The song file type a path's extension names, ignoring case: ".song" and
// ".xml" the song layout, ".txt" plain text, ".sng" the other XML layout.
// 0 for any other extension (".pdf", ".chopro") and for none.
int songFileTypeForPath(std::string_view path);

// What of `song` a file of `fileType` cannot hold, so that reading it back
// would not give it again: "the chords", "the information (title, author,
// key ...)", "the index entries and categories", "the section types (every
// section reads back as a verse)", "the line settings (singers, indent,
// repeat ...)", "the section settings (repeat, target, spacing ...)", "the
// section singers and indents". Only what the song has is
// named; empty when nothing is lost. Types that are not meant for writing
// (OpenSong, SongSmart) lose everything: "everything (this type is read
// only)".
StringArray dataLostBySaving(const Song& song, int fileType);

}  // namespace melodex
