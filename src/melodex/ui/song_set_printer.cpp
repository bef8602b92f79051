#include "melodex/ui/song_set_printer.h"

#include <string>
#include <vector>

#include "melodex/display/chord_display.h"
#include "melodex/display/song_display_profile.h"
#include "melodex/foundation/file_system.h"
#include "melodex/library/song_db_file_entry.h"
#include "melodex/library/song_set.h"
#include "melodex/song/song.h"

namespace melodex {

namespace {

using Unresolved = SongSet::UnresolvedEntry;

// The table puts no space between its columns: every text is padded.
String cell(const String& text) {
    return " " + text + " ";
}

String missingText(const Unresolved& missing) {
    return "(missing) " + missing.describe(fileNameOf(missing.name));
}

void addSongRow(Table& table, int number, const SongSetEntry& entry, SongDisplayProfile& profile) {
    const Song& song = *entry.song();
    const ChordDisplayOptions options = entry.chordDisplayOptions();
    TableRow* row = table.addRow();
    row->cell(0)->text(cell(std::to_string(number)));
    row->cell(1)->text(cell(SongDBFileEntry::listedTitle(song)));
    if (!strip(song.info().key()).empty())
        row->cell(2)->text(cell(song.info().keyName(entry.transpose())));
    if (profile.showChords() || profile.showBass()) {
        const int fret = ChordDisplay(profile, song.info(), options.transpose, options.capoFret,
                                      options.localTranspose)
                             .capoFret();
        if (fret != 0) row->cell(3)->text(cell(std::to_string(fret)));
    }
    StringArray notes;
    if (entry.transpose() != 0) notes.push_back("transpose " + signedNumber(entry.transpose()));
    if (entry.localTranspose() != 0)
        notes.push_back("local transpose " + signedNumber(entry.localTranspose()));
    if (entry.tempo() != 0) notes.push_back("tempo " + std::to_string(entry.tempo()));
    if (!entry.sequence().empty()) notes.push_back("order " + entry.sequence());
    if (!notes.empty()) row->cell(4)->text(cell(join(notes, ", ")));
}

}  // namespace

Table runningOrderTable(const SongSet& set, SongDisplayProfile& profile) {
    Table table;
    for (const char* title : {"#", "Title", "Key", "Capo", "Notes"})
        table.addColumn(cell(title));
    const std::vector<Unresolved>& missing = set.unresolvedEntries();
    std::size_t nextMissing = 0;
    int number = 0;
    for (int i = 0; i <= set.size(); ++i) {
        for (; nextMissing < missing.size() && missing[nextMissing].position <= i; ++nextMissing) {
            TableRow* row = table.addRow();
            row->cell(0)->text(cell(std::to_string(++number)));
            row->cell(1)->text(cell(missingText(missing[nextMissing])));
        }
        if (i == set.size()) break;
        const SongSetEntry& entry = set.entry(i);
        switch (entry.type()) {
            case SongSetEntry::SongItem:
                if (entry.song() != nullptr) addSongRow(table, ++number, entry, profile);
                break;
            case SongSetEntry::Gap:
                ++number;
                table.addRow();
                break;
            case SongSetEntry::Line:
                ++number;
                table.addRow()->cell(1)->text(cell("\u2014\u2014\u2014\u2014\u2014\u2014"));
                break;
            default:
                break;
        }
    }
    return table;
}

int printSongSet(DrawContext& dc, const SongSet& set, SongDisplayProfile& profile,
                 const SongSetPrintOptions& options) {
    Table table = runningOrderTable(set, profile);
    TablePrintOptions tableOptions;
    tableOptions.title = options.title.empty() ? String("Running order") : options.title;
    tableOptions.margin = options.page.margin;
    tableOptions.pageNumbers = false;
    const int orderPages = printTable(dc, table, tableOptions);

    SongLayout layout(profile, options.page);
    bool anySong = false;
    for (int i = 0; i < set.size(); ++i) {
        const SongSetEntry& entry = set.entry(i);
        switch (entry.type()) {
            case SongSetEntry::SongItem:
                if (entry.song() == nullptr) break;
                layout.addSong(*entry.song(), entry.chordDisplayOptions(), entry.tempo());
                anySong = true;
                break;
            case SongSetEntry::Gap:
                layout.addGap();
                break;
            case SongSetEntry::Line:
                layout.addSeparator();
                break;
            default:
                break;
        }
    }
    if (!anySong || !dc.newPage()) return orderPages;
    const int songPages = layout.layOut(dc);
    layout.setPageNumbers(orderPages + 1, orderPages + songPages);
    return orderPages + layout.draw(dc);
}

}  // namespace melodex
