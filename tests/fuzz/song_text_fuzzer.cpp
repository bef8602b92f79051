// Song::loadFromText on any bytes: the reader that takes whatever a user
// opens (song XML, OpenSong, SongSmart, plain text in any encoding). Whatever
// it reads must survive being saved as a ".song" file and read again.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz_support.h"
#include "melodex/foundation/status.h"
#include "melodex/song/song.h"

using namespace melodex;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    Song song;
    FUZZ_CHECK(song.loadFromText(bytes) == StatusSuccess, fuzz::printable(bytes));
    fuzz::checkSongRoundTrip(song);
    return 0;
}
