// The OpenSong lyrics layout, read on its own. Every chord must stand on a
// line, at an offset the line can hold, and the sections must survive being
// saved as a ".song" file, as an OpenSong import saves them.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz_support.h"
#include "melodex/song/opensong_lyrics.h"
#include "melodex/song/song.h"

using namespace melodex;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    Song song;
    song.clear();
    for (auto& [name, section] : OpenSongLyrics::read(bytes)) {
        FUZZ_CHECK(section != nullptr, fuzz::printable(bytes));
        for (int l = 0; l < section->getLineCount(); ++l) {
            const SongLine& line = *section->getLine(l);
            FUZZ_CHECK(line.section() == section.get(), fuzz::printable(bytes));
            for (int c = 0; c < line.getChordCount(); ++c) {
                const SongChord& chord = *line.getChord(c);
                FUZZ_CHECK(chord.isValid() && chord.offset() >= 0, fuzz::printable(bytes));
                if (c > 0)
                    FUZZ_CHECK(line.getChord(c - 1)->offset() < chord.offset(),
                               fuzz::printable(bytes));
            }
        }
        song.addSection(section.release());
    }
    song.generateSectionIDs();
    fuzz::checkSongRoundTrip(song);
    return 0;
}
