// Song sets. The bytes are a set file beside a few song files, with a small
// song library for the entries that name library songs. A set that reads
// must write (songs embedded) and read back to the same entries, and the
// second file must be the first byte for byte.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz_support.h"
#include "melodex/foundation/status.h"
#include "melodex/library/song_database.h"
#include "melodex/library/song_set.h"
#include "melodex/song/song.h"
#include "support/temp_folder.h"

using namespace melodex;

namespace {

// A library with the songs that the sets of tests/data name, and beside the
// set file the song files that they name by path.
struct Scene {
    test::TempFolder folder;
    SongDatabase library;

    Scene() {
        const auto copy = [this](const char* from, const String& to) {
            folder.write(to, folder.read(test::testDataPath(from)));
        };
        copy("cli/songs/grace.song", "library/Song Files/grace.song");
        copy("library/songs/Abide.song", "library/Song Files/Abide.song");
        copy("library/songs/Holy.song", "library/Song Files/Holy.song");
        copy("cli/On Disk.song", "sets/On Disk.song");
        copy("cli/songs/grace.song", "sets/songs/grace.song");
        copy("cli/songs/more/noël.txt", "sets/songs/more/noël.txt");
        copy("library/eventide.song", "songs/Rock of Ages.song");
        library.setDatabaseFolder(folder.file("library"));
        library.setHostName("fuzz");
        library.open();
    }
    ~Scene() { library.close(); }
};

String describe(const SongSet& set) {
    String out;
    for (int i = 0; i < set.size(); ++i) {
        const SongSetEntry& entry = set.entry(i);
        out += std::to_string(entry.type()) + " transpose " + std::to_string(entry.transpose()) +
               " capo " + std::to_string(entry.capo()) + " tempo " + std::to_string(entry.tempo()) +
               " local " + std::to_string(entry.localTranspose()) + " sequence " +
               fuzz::printable(fuzz::xmlCarried(entry.sequence())) + " library " +
               std::to_string(int(entry.dbflag())) + "\n";
        // As an embedded song's uuid must read back from the file.
        if (entry.song() != nullptr)
            out += "  " + fuzz::printable(fuzz::xmlCarried(entry.song()->uuid())) + "\n";
    }
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Scene scene;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);

    SongSet set;
    set.setDatabase(&scene.library);
    if (set.loadFromFile(scene.folder.write("sets/fuzz.set", bytes)) != StatusSuccess) return 0;
    for (int i = 0; i < set.size(); ++i) {
        if (const Song* song = set.entry(i).song()) fuzz::checkSongRoundTrip(*song);
    }

    const String first = scene.folder.file("sets/first.set");
    FUZZ_CHECK(set.saveToFile(first, false) == StatusSuccess, first);
    SongSet back;
    back.setDatabase(&scene.library);
    FUZZ_CHECK(back.loadFromFile(first) == StatusSuccess, scene.folder.read(first));
    const String want = describe(set);
    const String got = describe(back);
    FUZZ_CHECK(want == got,
               "input " + fuzz::printable(bytes) + "\nwant:\n" + want + "got:\n" + got);

    const String second = scene.folder.file("sets/second.set");
    FUZZ_CHECK(back.saveToFile(second, false) == StatusSuccess, second);
    FUZZ_CHECK(scene.folder.read(first) == scene.folder.read(second),
               fuzz::printable(scene.folder.read(first)) + "\n" +
                   fuzz::printable(scene.folder.read(second)));
    return 0;
}
