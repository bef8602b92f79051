#include "melodex/foundation/text_file.h"

#include <cerrno>
#include <utility>

#include <unistd.h>

#include "melodex/foundation/file_system.h"

namespace melodex {

namespace {
constexpr std::string_view Utf8Bom = "\xEF\xBB\xBF";
}  // namespace

TextFile::~TextFile() {
    close();
}

Status TextFile::open(std::string_view path, Mode mode, Encoding encoding) {
    close();
    m_detected = TextEncoding::Utf8;
    if (mode == Mode::Read) {
        if (const Status status = readTextFile(path, m_text, &m_detected);
            status != StatusSuccess) {
            return status;
        }
    } else {
        // The text is written on close; fail now, as an open would, when the
        // folder is missing or not writable, or the path names a folder.
        String folder = folderOf(path);
        if (folder.empty()) folder = ".";
        if (!folderExists(folder)) return Status(ENOENT);
        if (::access(folder.c_str(), W_OK) != 0) return Status(errno ? errno : EACCES);
        if (folderExists(path)) return Status(EISDIR);
    }
    m_path = String(path);
    m_mode = mode;
    m_encoding = encoding;
    m_open = true;
    return StatusSuccess;
}

bool TextFile::readLine(String& line) {
    if (!m_open || m_mode != Mode::Read || m_position >= m_text.size()) return false;
    const std::size_t end = m_text.find_first_of("\r\n", m_position);
    if (end == String::npos) {
        line.assign(m_text, m_position, String::npos);
        m_position = m_text.size();
        return true;
    }
    line.assign(m_text, m_position, end - m_position);
    m_position = end + 1;
    if (m_text[end] == '\r' && m_position < m_text.size() && m_text[m_position] == '\n') {
        ++m_position;
    }
    return true;
}

void TextFile::write(std::string_view text) {
    if (m_open && m_mode == Mode::Write) m_text.append(text);
}

void TextFile::writeLine(std::string_view line) {
    write(line);
    write("\n");
}

Status TextFile::close() {
    if (!m_open) return StatusSuccess;
    m_open = false;
    Status status = StatusSuccess;
    if (m_mode == Mode::Write) {
        if (m_encoding == Encoding::Unicode) {
            status = writeFileAtomically(m_path, encodeUtf16LE(m_text, true));
        } else if (m_text.starts_with(Utf8Bom)) {
            // A text that begins with U+FEFF would lose it to the reader,
            // which takes those bytes for a byte-order mark: a mark in front
            // keeps the character.
            status = writeFileAtomically(m_path, String(Utf8Bom) + m_text);
        } else {
            status = writeFileAtomically(m_path, m_text);
        }
    }
    m_text.clear();
    m_text.shrink_to_fit();
    m_position = 0;
    return status;
}

Status readTextFile(std::string_view path, String& text, TextEncoding* detected) {
    std::string bytes;
    if (const Status status = readFileBytes(path, bytes); status != StatusSuccess) return status;
    text = decodeText(std::move(bytes), detected);
    return StatusSuccess;
}

}  // namespace melodex
