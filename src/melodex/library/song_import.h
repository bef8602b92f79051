#pragma once

// Bringing a church's existing songs into a song library: files and whole
// folders as people have them, mixed with other files, OpenSong songs
// without an extension, plain-text songs, and songs the library already
// holds. Every program that imports gets the same rules from here.
//
//     SongImport import(theSongDB);
//     SongImport::Report report = import.run({"/home/ann/OpenSong/Songs"});
//     std::cout << report.imported.size() << " imported, "
//               << report.already.size() << " already in the library\n";
//     for (const SongImport::Skipped& skipped : report.skipped)
//         std::cout << skipped.path << ": " << skipped.describe() << '\n';
//
// The rules:
// - Folders are walked to any depth; a folder reached twice (through links)
//   is walked once; hidden files and folders (a leading dot) are left out.
// - A file is a song by what it holds, not by its name: song XML in any of
//   the layouts Song reads (the library's own, OpenSong, SongSmart) whatever
//   the file is called, and plain text when the name ends in ".txt". Other
//   files are "not a song file".
// - A song is already in the library when the library holds its uuid, or a
//   song of the same title with the same lyrics (text and OpenSong files
//   carry no uuid, so importing them again would otherwise add them again).
//   The same holds between the files of one import.
// - A plain-text song has no title of its own: it takes the file's name
//   without extension ("Rock of Ages.txt" is "Rock of Ages").
// - The whole run holds the library's lock once (a second program waits for
//   it, then sees these songs), and the index is saved at the end.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"

namespace melodex {

class Song;
class SongDatabase;
class SongDBFileEntry;

class SongImport {
public:
    // Why a file was not imported.
    enum class Reason {
        NotASong,     // not a song file of any kind the library reads
        Unreadable,   // the file or folder could not be read (status says why)
        Duplicate,    // already in the library (existing names the song there)
        WriteFailed,  // the library's copy could not be written (status says why)
        NotFound,     // a path given to run() that does not exist
    };

    struct Skipped {
        String path;
        Reason reason = Reason::NotASong;
        Status status = StatusSuccess;  // for Unreadable, WriteFailed and NotFound
        String existing;                // for Duplicate: the library's file name

        // Why, in words: "not a song file", "cannot read: Permission denied", "already in the
        // library as Amazing Grace.song" ...
        String describe() const;
    };

    struct Report {
        int found = 0;                           // files looked at
        std::vector<SongDBFileEntry*> imported;  // the library's new entries
        std::vector<Skipped> already;            // Duplicate
        std::vector<Skipped> skipped;            // NotASong
        std::vector<Skipped> failed;             // Unreadable, WriteFailed, NotFound
        FileError indexError;                    // the index could not be saved

        // True when something could not be read or written: the caller
        // should tell the user and end with a failure.
        bool hasFailures() const { return !failed.empty() || bool(indexError); }
    };

    // Called before each file is read: its number (from 1), the number of
    // files found, and its path.
    using Progress = std::function<void(int number, int total, const String& path)>;

    // Imports into `database` (not owned), which must be open.
    explicit SongImport(SongDatabase& database);

    void setProgress(Progress progress) { m_progress = std::move(progress); }

    // A song that is not in a file (standard input, a download), imported by
    // the next run() as if it were a file of that name; plain text counts as
    // a song whatever the name, and takes the name (without extension) as
    // title unless the name is empty.
    void addText(const String& name, std::string bytes);

    // Imports every song file among `paths` (files, and folders to any
    // depth) and saves the index. The library's lock is held throughout;
    // when it cannot be had, nothing is imported and the report's
    // indexError says why. The library's text entries are sorted at the end.
    Report run(const StringArray& paths);

    // The song files a run over `paths` would look at, in the order it
    // would take them; unreadable folders and missing paths go to `failed`.
    StringArray findFiles(const StringArray& paths, std::vector<Skipped>& failed) const;

    // Reads `path` as an import would: 0 and the song in `song` for a song
    // file, StatusFailed for a file that is not one, the errno value for one
    // that cannot be read. A plain-text song takes its file name as title.
    [[nodiscard]] static Status readSongFile(const String& path, Song& song);

    // readSongFile() for the bytes of a file of that name; `plainText` tells
    // whether text that is not XML counts as a song.
    [[nodiscard]] static Status readSongBytes(const String& name, std::string_view bytes,
                                              bool plainText, Song& song);

private:
    struct Text {
        String name;
        std::string bytes;
    };

    SongDatabase& m_database;
    Progress m_progress;
    std::vector<Text> m_texts;
};

}  // namespace melodex
