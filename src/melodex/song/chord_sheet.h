#pragma once

// Songs as plain-text chord sheets: each line of lyrics with its chords on a
// line of their own above it, every chord over the letter it stands over.
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
// Columns count display cells, as a monospaced terminal shows them: a wide
// East Asian character takes two, a combining mark none (displayWidth). A
// chord always starts in the column of its letter. When the chord before it
// is wider than the words under it, the words are widened (blanks go in
// before the letter) rather than the chord moved on, so that one blank still
// separates the two chords:
//
//     Bsus   E               (not "Bsus E" with E over ";")
//     blood of Je  sus;
//
// A tab in the lyrics is printed as one blank, so that the columns hold.
//
// The text of each chord is the caller's to choose: by default it is the
// chord as SongChord::toString spells it, transposed; a program that spells
// chords under a display profile (capo, notation, key) passes its own:
//
//     ChordSheetOptions options;
//     options.chordText = [&](const SongChord& chord) {
//         return spellUnderProfile(chord);  // the program's own spelling
//     };
//     String sheet = chordSheet(song, options);

#include <functional>

#include "melodex/foundation/text.h"
#include "melodex/song/song.h"

namespace melodex {

struct ChordSheetOptions {
    // Semitones to move the key shown in the information and, when
    // chordText is not set, every chord. The lyrics are never touched.
    int transpose = 0;

    // The text printed for a chord. Not set: chord.toString(transpose,
    // false). An empty result prints nothing for that chord.
    std::function<String(const SongChord&)> chordText;

    // The fret of the capo the chords are shown for. Not 0: "Capo: N" in
    // the information, in place of the song's own capo attribute, which
    // would no longer describe the chords printed.
    int capo = 0;

    // The running order to print: section ids separated by commas or blanks
    // ("V1,C1,V2,C1", as Song::getSequence gives it); ids compare ignoring
    // case, repeats are printed each time, and an id the song lacks is shown
    // as "[X9] (not in the song)". Empty: every section once, in song order.
    String sequence;
};

// One lyric line laid out: the chord line (empty when the line has no
// chords) and the words, widened where chords need room; neither has
// trailing blanks.
struct ChordSheetLine {
    String chords;
    String words;
};

// The song's information (title, author, key, then its other attributes,
// each as "Name: value"; empty ones are left out) and each section after a
// blank line, headed by its id in brackets and its type word.
String chordSheet(const Song& song, const ChordSheetOptions& options);
String chordSheet(const Song& song, int transpose = 0);

// One section: every line, with its chord line above it when it has chords.
// A line of chords over a text of blanks shows only the chords.
String chordSheet(const SongSection& section, const ChordSheetOptions& options);

// One line: its chords each over its own letter, the words widened where a
// chord needs room. A chord past the end of the words keeps its distance
// from their end, one column per missing character.
ChordSheetLine layOutLine(const SongLine& line, const ChordSheetOptions& options = {});

}  // namespace melodex
