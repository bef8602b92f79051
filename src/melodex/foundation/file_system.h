#pragma once

// Paths, folders and file information.
//
// Paths are UTF-8 strings with "/" as separator. No function here throws:
// failures are reported as false, an empty result or an errno Status.

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

#include "melodex/foundation/local_time.h"
#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"

namespace melodex {

// `folder` and `name` with one separator between them; either side may be
// empty, and an absolute `name` is returned as it is.
String joinPath(std::string_view folder, std::string_view name);

// "/songs/Amazing Grace.song" gives "Amazing Grace.song".
String fileNameOf(std::string_view path);

// "/songs/Amazing Grace.song" gives "Amazing Grace".
String baseNameOf(std::string_view path);

// "/songs/Amazing Grace.song" gives ".song"; empty when there is none.
String extensionOf(std::string_view path);

// "/songs/Amazing Grace.song" gives "/songs"; empty for a bare name.
String folderOf(std::string_view path);

bool isAbsolutePath(std::string_view path);

// `path` made absolute against the current folder and normalised
// ("a/./b/../c" gives "<current>/a/c"); `path` itself when that fails.
String absolutePath(std::string_view path);

// `path` written relative to `folder` ("../sets/Easter.set"); `path` itself
// when no relative form exists.
String relativePath(std::string_view path, std::string_view folder);

// True when `name` can only name an entry directly inside a folder: not
// empty, no "/" or "\", not "." or "..". Names read from files must pass
// this before they are joined to a folder that the library writes or
// deletes in.
bool isPlainFileName(std::string_view name);

// A title as a file name (without extension) that stands on every system
// that may share the folder: "/", "\" and ":" become "-", control
// characters and ?*"<>| are dropped, blanks and dots at the ends (a leading
// dot would hide the file from folder scans; trailing ones are not kept by
// every file system) are taken off, and the name is cut to 200 bytes on a
// character boundary, leaving room for a number and an extension. Empty when
// nothing usable is left; never a path.
String fileNameFromTitle(std::string_view title);

bool fileExists(std::string_view path);    // a regular file (links followed)
bool folderExists(std::string_view path);  // a directory (links followed)

// Creates the folder and every missing parent; true when it exists after.
// When it does not, `status` (if given) gets the system's reason.
bool createFolders(std::string_view path, Status* status = nullptr);

// Removes a file; 0 or the errno value.
Status removeFile(std::string_view path);

// The file's last modification time in local time at whole seconds.
std::optional<LocalTime> fileModificationTime(std::string_view path);

// The file's last modification time at the file system's full precision
// (nanoseconds since the epoch), for telling whether a file changed while
// another program had it open.
std::optional<std::int64_t> fileModificationStamp(std::string_view path);

struct FolderItem {
    String name;  // without folder
    bool isFolder = false;
    bool isFile = false;
};

// The items of a folder (not "." and ".."), sorted by name so that results
// do not depend on the file system; nullopt when it cannot be opened or
// read, with the reason in `status` when one is given.
std::optional<std::vector<FolderItem>> listFolder(std::string_view path, Status* status = nullptr);

// The path with every symbolic link resolved and made absolute, so that a
// folder reached by two roads is known to be one; absolutePath(path) when
// it cannot be resolved.
String canonicalPath(std::string_view path);

// What walkFolder reports.
struct FolderWalk {
    // Each regular file, with its path and its name.
    std::function<void(const String& path, const String& name)> file;
    // Each folder that could not be listed, and why.
    std::function<void(const String& path, Status status)> unreadable;
    // Files and folders whose names start with a dot are passed over.
    bool skipHidden = false;
};

// Walks `folder` and its sub-folders to any depth, in name order, each folder
// once however many links lead to it (`visited` holds the canonical paths
// walked so far, so several walks can share it).
void walkFolder(const String& folder, const FolderWalk& walk, std::set<String>& visited);

// Reads a whole file as bytes; 0 or the errno value. A file larger than
// `maxBytes` is not read: EFBIG, and `bytes` is left as it was.
[[nodiscard]] Status readFileBytes(std::string_view path, std::string& bytes,
                                   std::size_t maxBytes = std::size_t(-1));

// How writeFileAtomically treats a file already at the path.
enum class WriteMode {
    Replace,    // its contents are replaced
    CreateNew,  // the write fails with EEXIST and the file is left alone
};

// Writes a whole file so that no reader, and no crash, ever sees half of it:
// the bytes go to a temporary file in the target's folder, which then takes
// the target's name in one step. Every file the library writes goes through
// here. A failure leaves what was at the path as it was and returns the
// errno value, or StatusNotRegularFile.
//
// - A symbolic link is followed (to any depth) and its final target is
//   replaced; the link stays a link. A dangling link gets its target made.
// - A replaced file keeps its permission bits, and its owner and group where
//   the process may set them; a new file gets 0666 less the umask.
// - Only a regular file is ever replaced: a folder, FIFO, device or socket at
//   the path gives StatusNotRegularFile and is not touched.
// - A file with several hard links is replaced under this name only; its
//   other names keep the old contents (the price of never writing in place).
// - Replacing is flushed to the disk before the rename, so that a power cut
//   never leaves an empty file where a good one was; a new file is not, which
//   keeps imports of thousands of songs fast.
[[nodiscard]] Status writeFileAtomically(std::string_view path, std::string_view bytes,
                                         WriteMode mode = WriteMode::Replace);

}  // namespace melodex
