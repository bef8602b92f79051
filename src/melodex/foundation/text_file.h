#pragma once

// A line-oriented text file, opened for reading or for writing.
//
// Reading takes the whole file at open and decodes it to UTF-8 (UTF-8 with
// or without BOM, UTF-16 LE/BE with BOM, Windows-1252 where the bytes are not
// valid UTF-8); readLine() then hands out one line at a time without its line
// end, which may be LF, CR LF or CR.
//
// Writing collects the text and, on close(), writes it to a temporary file in
// the same folder that is renamed over the target, so an interrupted write
// never leaves a half-written file. Default mode writes UTF-8 without BOM
// (with one only before a text that itself begins with U+FEFF, which a reader
// would otherwise take for the mark); Unicode mode writes UTF-16 LE with the
// BOM FF FE. Line ends are written as given.
//
//     TextFile file;
//     if (file.open(path, TextFile::Mode::Read) == StatusSuccess) {
//         String line;
//         while (file.readLine(line)) { ... }
//     }

#include <string_view>

#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"
#include "melodex/foundation/text_encoding.h"

namespace melodex {

class TextFile {
public:
    enum class Mode { Read, Write };
    enum class Encoding {
        Default,  // UTF-8 without byte-order mark
        Unicode,  // UTF-16 little-endian with byte-order mark
    };

    TextFile() = default;
    TextFile(const TextFile&) = delete;
    TextFile& operator=(const TextFile&) = delete;
    // Closes the file; an unclosed write is committed.
    ~TextFile();

    // 0, or the errno value when the file cannot be opened (for writing:
    // when its folder does not exist or cannot be written). `encoding`
    // applies to writing; reading detects it.
    [[nodiscard]] Status open(std::string_view path, Mode mode,
                              Encoding encoding = Encoding::Default);
    bool isOpen() const { return m_open; }

    // The next line without its line end; false at the end of the file (and
    // when the file is not open for reading). A file that ends with a line
    // end has no empty last line.
    bool readLine(String& line);

    // The whole decoded text of a file opened for reading.
    const String& text() const { return m_text; }

    // The encoding found when reading.
    TextEncoding detectedEncoding() const { return m_detected; }

    // Adds text to a file opened for writing.
    void write(std::string_view text);
    void writeLine(std::string_view line);

    // Ends reading, or commits what was written; 0 or the errno value of the
    // failed write. Closing a closed file does nothing and returns 0.
    Status close();

private:
    String m_path;
    String m_text;  // the decoded contents when reading, the text to write when writing
    std::size_t m_position = 0;
    Mode m_mode = Mode::Read;
    Encoding m_encoding = Encoding::Default;
    TextEncoding m_detected = TextEncoding::Utf8;
    bool m_open = false;
};

// Reads and decodes a whole text file; 0 or the errno value.
[[nodiscard]] Status readTextFile(std::string_view path, String& text,
                                  TextEncoding* detected = nullptr);

}  // namespace melodex
