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

namespace melodex {

using Status = std::uint32_t;

// The operation succeeded.
inline constexpr Status StatusSuccess = 0;

// The library's own failure: a document without the expected root element,
// a null song node, a Bible that does not load.
inline constexpr Status StatusFailed = 0xC1001015;

// XML parser failures are StatusXmlBase plus the parser's own code (1 to 255),
// so they never collide with errno values.
inline constexpr Status StatusXmlBase = 0xC1002000;
inline constexpr Status StatusXmlMalformed = StatusXmlBase + 0xFF;  // not one well-formed document

inline constexpr bool isXmlStatus(Status status) {
    return status > StatusXmlBase && status <= StatusXmlBase + 0xFF;
}

// A text for messages: "success", the library's failure, the XML parser's
// description, or the system's text for an errno value.
std::string statusMessage(Status status);

}  // namespace melodex
