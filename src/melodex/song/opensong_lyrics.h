#pragma once

// The lyrics text of an OpenSong song, read into song sections.
//
// OpenSong keeps a song's words and chords in one text, a line per row, and
// the first character of a row says what it is:
//
//     [V]                             a section header: V verse, C chorus ...
//     .G          C          G        chords, at the columns of the letters
//     1 Amazing grace, how sweet      verse 1 (the "1" makes a section V1)
//     2 'Twas grace that taught       verse 2, under the same chords
//      Lyrics of a single verse       a blank: a lyric row
//     ;A comment                      skipped
//     ---                             page layout, skipped
//
//     for (auto& [name, section] : OpenSongLyrics::read(text))
//         song.addSection(section.release());
//
// Column 0 holds the marker (".", the blank, the digit), so a chord at column
// c stands over the lyric's character at column c - 1. Columns are those of
// the monospaced editor where the author lined chords up with letters: a
// wide East Asian character takes two, a combining mark none. The chords'
// offsets in the song count code points, as everywhere.
//
// Authors line words up under chords with blanks and with "_" joiners
// ("A______ma________zing"); neither is lyric text. A run of blanks becomes
// one blank, a joiner goes, and every chord stays over the letter it was
// written over: a chord over removed padding goes to the next letter kept.
// When that letter has a chord of its own, the chord from the padding keeps
// a place just before it: a blank where it stood over blanks, a WORD JOINER
// (U+2060, invisible and zero-width) inside a joined word, so that "e____qual"
// with F over the joiner and Bb over "q" reads "e\u2060qual" with F before
// "q" and Bb on it, and the word stays whole.
//
// "|" breaks the line (each chord moves with its letter; a "|" at the end of
// a row, or a row of only "|", leaves an empty line), and "||" marks a slide
// break, which is dropped.
//
// Chords are read in the notation the song uses. Many collections (Polish,
// Hungarian, Czech, German) write B natural as H, B flat as B, sharps and
// flats as suffixes (Fis, Cis, Es, As, Des; Hungarian Fisz, Esz) and minor
// chords in lower case (a, fis, h7). A song whose chord rows hold one such
// chord is read in that notation throughout, into the same notes (Fis is
// F#, B is Bb, h7 is Bm7); any other song is read in English notation, where
// B is B natural. Cb, Fb, E# and B# read as the notes they sound (B, E, F,
// C). What does not start with a note name (bar lines, "x2", "N.C.") is a
// remark in the chord row and is left out.

#include <memory>
#include <string_view>
#include <vector>

#include "melodex/foundation/text.h"
#include "melodex/song/song_section.h"

namespace melodex {

class OpenSongLyrics {
public:
    struct Section {
        // The header's name, with the verse number appended for numbered
        // rows: "V1", "C", "B2".
        String name;
        std::unique_ptr<SongSection> section;
    };

    // The sections of the lyrics text in order: one per header, or one per
    // verse number under a header with numbered rows (the unnumbered rows of
    // such a header go to each of them). Rows before the first header form a
    // verse of their own. A chord row applies to the lyric rows below it, one
    // row per verse number (unnumbered rows count as one more verse), up to a
    // blank row, a comment, a header or the next chord row. A chord row that
    // no lyric row takes becomes a line of its own with blanks for text.
    static std::vector<Section> read(std::string_view lyrics);

    // The section type of a header's name, by its first letter in any case:
    // V verse, C chorus, B bridge, P pre-chorus, T tag, I intro, E ending,
    // a digit verse ("3", "3a": a header of only a number names a verse),
    // anything else (an empty name too) misc.
    static int sectionTypeOf(std::string_view name);
};

}  // namespace melodex
