#pragma once

// Songs as plain-text chord sheets: each line of lyrics with its chords on a
// line of their own above it, every chord at the column of the letter it
// stands over.
//
//     String sheet = chordSheet(song, 2);  // two semitones up
//
//     Title: Amazing Grace
//     Author: John Newton
//     Key: A
//
//     [V1] Verse
//     A      A7         D       A
//     Amazing grace, how sweet the sound
//
// Columns count characters (code points), so accented lyrics stay aligned.
// A chord that would touch or overlap the one before it moves right until
// one blank separates them. Chords are spelled as SongChord::toString spells
// them, transposed by the given number of semitones; the text is not.

#include "melodex/foundation/text.h"
#include "melodex/song/song.h"

namespace melodex {

// The song's information (title, author, key, then its other attributes,
// each as "Name: value"; empty ones are left out) and each section after a
// blank line, headed by its id in brackets and its type word.
String chordSheet(const Song& song, int transpose = 0);

// One section: every line, with its chord line above it when it has chords.
// A line of chords over a text of blanks shows only the chords.
String chordSheet(const SongSection& section, int transpose = 0);

// The chord line that goes above `line`, without trailing blanks; empty when
// the line has no chords.
String chordLine(const SongLine& line, int transpose = 0);

}  // namespace melodex
