#pragma once

// A song set printed for the people who lead it: a first page with the
// running order as a table (number, title, key, capo, what the entry
// changes), then every song as its entry says (transposition, capo, local
// transposition, running order), under one display profile, with the set's
// gaps as space and its lines as separator lines between the songs.
//
//     SongSet set;
//     set.loadFromFile(path);
//     PdfDocument pdf;                                    // melodex::render
//     SongSetPrintOptions options;
//     options.title = "Sunday Service";
//     int pages = printSongSet(pdf.context(), set, chordsProfile, options);
//
// Entries the set file named but whose songs could not be found
// (SongSet::unresolvedEntries) are listed in the running order where they
// stood, as missing. The songs' pages are numbered on from the running
// order's pages, which carry no numbers of their own.

#include "melodex/foundation/text.h"
#include "melodex/ui/draw_context.h"
#include "melodex/ui/song_layout.h"
#include "melodex/ui/table.h"
#include "melodex/ui/table_printer.h"

namespace melodex {

class SongDisplayProfile;
class SongSet;

struct SongSetPrintOptions {
    String title;  // the running order's heading; empty: "Running order"
    PageSetup page;
};

// The running order: one row per item of the set file, in its order. A gap
// is an empty row, a line a row of dashes. The capo column gives the fret
// the songs are shown with under `profile` (the entry's, else the
// profile's rule), empty where there is none or the profile shows no chords.
Table runningOrderTable(const SongSet& set, SongDisplayProfile& profile);

// Prints the running order and then the songs; returns the pages drawn (on a
// context with one page, an image, only the running order).
int printSongSet(DrawContext& dc, const SongSet& set, SongDisplayProfile& profile,
                 const SongSetPrintOptions& options = {});

}  // namespace melodex
