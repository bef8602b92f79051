#pragma once

// Status codes of file-level operations.
//
// Operations that read or write files return a Status: 0 for success, the
// library's own failure code, an XML parser status, or the errno value of a
// failed system call. statusMessage() turns any of them into a text.
//
//     if (Status status = song.saveToFile(path, 1); status != StatusSuccess)
//         std::cerr << statusMessage(status) << '\n';

#include <cstdint>
#include <string>
#include <string_view>

namespace melodex {

using Status = std::uint32_t;

// The operation succeeded.
inline constexpr Status StatusSuccess = 0;

// The library's own failure: a document without the expected root element,
// a null song node, a Bible that does not load.
inline constexpr Status StatusFailed = 0xC1001015;

// A write was refused because what lies at the path is not a regular file
// (a folder, a FIFO, a device, a socket); replacing it would destroy it.
inline constexpr Status StatusNotRegularFile = 0xC1001016;

// No folder is configured for the data the operation needs; nothing is
// written into the current folder in its place.
inline constexpr Status StatusNoFolder = 0xC1001017;

// Another program held a lock for longer than the time limit.
inline constexpr Status StatusLockTimedOut = 0xC1001018;

// The object was opened for reading only and refuses to write.
inline constexpr Status StatusReadOnly = 0xC1001019;

// XML parser failures are StatusXmlBase plus the parser's own code (1 to 255),
// so they never collide with errno values.
inline constexpr Status StatusXmlBase = 0xC1002000;
inline constexpr Status StatusXmlMalformed = StatusXmlBase + 0xFF;  // not one well-formed document

inline constexpr bool isXmlStatus(Status status) {
    return status > StatusXmlBase && status <= StatusXmlBase + 0xFF;
}

// What went wrong in a run of file work, for messages: the first failed
// operation, the path it concerned and the status it ended with. Objects
// that write files keep one for their last public operation, so that a
// program can tell the user what failed and why while the operation keeps
// the return value its interface has always had.
//
//     theSongDB.flush();
//     if (const FileError& error = theSongDB.lastError())
//         std::cerr << error.message() << '\n';  // cannot write "/data/songdb-pc.ini": ...
struct FileError {
    enum class Action { None, Read, Write, Remove, CreateFolder, List, Lock };

    Status status = StatusSuccess;
    Action action = Action::None;
    std::string path;

    explicit operator bool() const { return status != StatusSuccess; }

    // Keeps the first failure: a later one is usually a consequence of it.
    // A success is not recorded.
    void record(Action what, std::string_view where, Status result);
    void clear() { *this = FileError(); }

    // "cannot write \"/data/x.song\": Permission denied"; empty without a failure.
    std::string message() const;
};

// A text for messages: "success", the library's failure, the XML parser's
// description, or the system's text for an errno value.
std::string statusMessage(Status status);

}  // namespace melodex
