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
// c stands over offset c - 1 of the lyric. Within a lyric "|" breaks the line
// (each chord moves with its letter), "||" marks a slide break, which is
// dropped, and "_" only stretches a word under a long chord and is removed.
// Offsets count code points.

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
    // anything else (an empty name too) misc.
    static int sectionTypeOf(std::string_view name);
};

}  // namespace melodex
