#pragma once

// The song the song benchmarks work on: 8 sections of 5 lines, each line
// with 2 chords (40 lines, 80 chords), its chords cycling through symbols of
// every shape (slash chords, sevenths, suspensions, flats and sharps).

#include <array>
#include <string_view>

#include "melodex/song/song.h"

namespace melodex::bench {

inline constexpr std::array<std::string_view, 8> Symbols = {"G",       "D/F#",  "Em7", "Cmaj7(9)",
                                                            "Abm7/Eb", "Gsus4", "Bb",  "F#m7b5/C"};
inline constexpr std::string_view Lyric =
    "Amazing grace, how sweet the sound that saved a wretch like me";
// The offsets in the lyric of each line's two chords.
inline constexpr std::array<int, 2> ChordOffsets = {10, 35};

inline Song makeSong() {
    Song song;
    song.info().setTitle("Benchmark Hymn");
    song.info().setKey("G");
    std::size_t next = 0;
    for (int s = 0; s < 8; ++s) {
        auto* section = new SongSection(s % 2 == 0 ? SectionType::Verse : SectionType::Chorus);
        song.addSection(section);
        for (int l = 0; l < 5; ++l) {
            auto* line = new SongLine;
            section->addLine(line);
            line->setText(Lyric);
            for (int offset : ChordOffsets)
                line->addChord(SongChord(Symbols[next++ % Symbols.size()], offset));
        }
    }
    song.generateSectionIDs();
    return song;
}

}  // namespace melodex::bench
