// The song library opening a damaged or hostile index. The bytes are the
// index file ("songdb-fuzz.ini") of a library folder that holds a few song
// files (with fixed modification times, so that runs repeat). The library
// opens, every entry is read, and it closes (saving the index when it
// changed). Opening it a second time must then find the same songs: what
// the first open wrote is what the second reads.

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>

#include "fuzz_support.h"
#include "melodex/library/song_database.h"
#include "melodex/song/song.h"
#include "support/temp_folder.h"

using namespace melodex;

namespace {

struct SongFile {
    const char* source;  // in tests/data
    const char* name;    // in the song files folder
    String bytes;
};

SongFile songFiles[] = {
    {"library/songs/Abide.song", "Abide.song", {}}, {"library/songs/Holy.song", "Holy.song", {}},
    {"library/songs/Notes.txt", "Notes.txt", {}},   {"cli/songs/grace.song", "grace.song", {}},
    {"library/eventide.song", "eventide.song", {}},
};

// The songs the library holds, as the index gives them. The title and
// first-line fields and the text entries are left out: a song added from its
// file lists its first line even where it repeats the title, while one read
// from the index does not, so those differ between a first and a second
// open by design.
// The order of the entries follows the index and the scan, so it is not
// compared.
String describe(const SongDatabase& library) {
    StringArray lines;
    for (SongDBFileEntry* file : library.files()) {
        lines.push_back(fuzz::printable(file->uuid()) + " " + fuzz::printable(file->filename()) +
                        " " + fuzz::printable(file->author()) + " " + fuzz::printable(file->key()) +
                        " " + fuzz::printable(file->tempo()) + " " +
                        fuzz::printable(file->timesignature()) + " " +
                        fuzz::printable(file->categoriesAsString("|")));
    }
    std::sort(lines.begin(), lines.end());
    return join(lines, "\n");
}

String openAndRead(const test::TempFolder& folder) {
    SongDatabase library;
    library.setDatabaseFolder(folder.path());
    library.setHostName("fuzz");
    library.open();
    for (SongDBFileEntry* file : library.files()) {
        FUZZ_CHECK(file->database() == &library, file->filename());
        for (SongDBTextEntry* text : file->iterator())
            FUZZ_CHECK(text->fileEntry() == file, text->text());
        if (Song* song = file->song()) (void)song->getSectionCount();
    }
    String seen = describe(library);
    library.close();
    return seen;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool loaded = [] {
        test::TempFolder reader;
        for (SongFile& file : songFiles)
            file.bytes = reader.read(test::testDataPath(file.source));
        return true;
    }();
    (void)loaded;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);

    test::TempFolder folder;
    const auto fixedTime = std::filesystem::file_time_type(std::chrono::hours(24 * 365 * 30));
    for (const SongFile& file : songFiles) {
        const String path = folder.write(String(SongFilesFolderName) + "/" + file.name, file.bytes);
        std::filesystem::last_write_time(path, fixedTime);
    }
    folder.write("songdb-fuzz.ini", bytes);

    const String first = openAndRead(folder);
    const String index = folder.read("songdb-fuzz.ini");
    const String second = openAndRead(folder);
    FUZZ_CHECK(first == second, "index " + fuzz::printable(bytes) + "\nwritten " +
                                    fuzz::printable(index) + "\nfirst:\n" + first + "second:\n" +
                                    second);
    return 0;
}
