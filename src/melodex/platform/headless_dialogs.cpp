#include "melodex/platform/headless_dialogs.h"

#include <cstddef>
#include <iostream>
#include <optional>

namespace melodex {

namespace {

bool isHtmlBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f';
}

bool isAsciiLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isAsciiAlnum(char c) {
    return isAsciiLetter(c) || (c >= '0' && c <= '9');
}

// The code point of the entity that starts at html[pos] ("&amp;"), and the
// position after its ";"; nullopt when it is not one we know, in which case
// the text is kept as written.
std::optional<char32_t> decodeEntity(std::string_view html, std::size_t& pos) {
    std::size_t end = html.find(';', pos + 1);
    if (end == std::string_view::npos || end - pos > 10) return std::nullopt;
    std::string_view body = html.substr(pos + 1, end - pos - 1);
    std::optional<char32_t> decoded;
    if (body == "amp") {
        decoded = U'&';
    } else if (body == "lt") {
        decoded = U'<';
    } else if (body == "gt") {
        decoded = U'>';
    } else if (body == "quot") {
        decoded = U'"';
    } else if (body == "apos") {
        decoded = U'\'';
    } else if (body == "nbsp") {
        // A plain space: the text is read in a terminal, where a no-break
        // space would only surprise whoever copies it.
        decoded = U' ';
    } else if (body.size() >= 2 && body[0] == '#') {
        bool hex = body[1] == 'x' || body[1] == 'X';
        std::string_view digits = body.substr(hex ? 2 : 1);
        if (digits.empty()) return std::nullopt;
        char32_t value = 0;
        for (char c : digits) {
            int digit = -1;
            if (c >= '0' && c <= '9') {
                digit = c - '0';
            } else if (hex && c >= 'a' && c <= 'f') {
                digit = c - 'a' + 10;
            } else if (hex && c >= 'A' && c <= 'F') {
                digit = c - 'A' + 10;
            }
            if (digit < 0) return std::nullopt;
            value = value * (hex ? 16 : 10) + char32_t(digit);
            if (value > 0x10FFFF) value = 0x110000;  // stays invalid, cannot overflow
        }
        decoded = value == 0 ? ReplacementCharacter : value;
    }
    if (decoded) pos = end + 1;
    return decoded;
}

// Collects the text line by line, with blanks collapsed as a browser does.
class PlainTextBuilder {
public:
    void blank() { m_pendingBlank = !m_line.empty(); }

    void text(std::string_view piece) {
        if (m_pendingBlank) m_line += ' ';
        m_pendingBlank = false;
        m_line += piece;
    }

    void lineBreak() {
        m_lines.push_back(strip(m_line, " "));
        m_line.clear();
        m_pendingBlank = false;
    }

    String finish() {
        lineBreak();
        std::size_t first = 0;
        std::size_t last = m_lines.size();
        while (first < last && m_lines[first].empty())
            ++first;
        while (last > first && m_lines[last - 1].empty())
            --last;
        return join(StringArray(m_lines.begin() + std::ptrdiff_t(first),
                                m_lines.begin() + std::ptrdiff_t(last)),
                    "\n");
    }

private:
    StringArray m_lines;
    String m_line;
    bool m_pendingBlank = false;
};

}  // namespace

String htmlToPlainText(std::string_view html) {
    PlainTextBuilder out;
    std::size_t pos = 0;
    while (pos < html.size()) {
        char c = html[pos];
        if (c == '<' && pos + 1 < html.size()) {
            char next = html[pos + 1];
            std::size_t close = html.find('>', pos + 1);
            bool looksLikeTag = isAsciiLetter(next) || next == '/' || next == '!' || next == '?';
            if (looksLikeTag && close != std::string_view::npos) {
                std::size_t nameStart = pos + 1;
                while (nameStart < close && html[nameStart] == '/')
                    ++nameStart;
                std::size_t nameEnd = nameStart;
                while (nameEnd < close && isAsciiAlnum(html[nameEnd]))
                    ++nameEnd;
                String name = toLowerAscii(html.substr(nameStart, nameEnd - nameStart));
                bool closing = next == '/';
                // "</br>" is taken as "<br>", as browsers do; "</p>" ends a
                // paragraph that the next "<p>" separates anyway.
                if (name == "br" || (name == "p" && !closing)) out.lineBreak();
                pos = close + 1;
                continue;
            }
        }
        if (c == '&') {
            std::size_t after = pos;
            if (std::optional<char32_t> decoded = decodeEntity(html, after)) {
                String piece;
                appendUtf8(piece, *decoded);
                out.text(piece);
                pos = after;
                continue;
            }
        }
        if (isHtmlBlank(c)) {
            out.blank();
            ++pos;
            continue;
        }
        out.text(html.substr(pos, 1));
        ++pos;
    }
    return out.finish();
}

std::string_view messageIconWord(MessageIcon icon) {
    switch (icon) {
        case MessageIcon::Information:
            return "information";
        case MessageIcon::Warning:
            return "warning";
        case MessageIcon::Error:
            return "error";
        case MessageIcon::Question:
            return "question";
        case MessageIcon::None:
            break;
    }
    return {};
}

HeadlessDialogs::HeadlessDialogs() : m_out(std::cerr) {}

HeadlessDialogs::HeadlessDialogs(std::ostream& out) : m_out(out) {}

void HeadlessDialogs::messageBox(const MessageRequest& request) {
    String text = htmlToPlainText(request.text);
    std::string_view word = messageIconWord(request.icon);
    String line;
    if (!word.empty()) {
        line = String(word) + ":";
        if (!text.empty()) line += ' ';
    }
    line += text;
    line += '\n';
    m_out << line << std::flush;
}

// Without a GUI there is nobody to choose, so every chooser cancels, which
// callers already handle as "the user changed their mind".
std::optional<String> HeadlessDialogs::openFile(const FileDialogRequest&) {
    return std::nullopt;
}

std::optional<StringArray> HeadlessDialogs::openFiles(const FileDialogRequest&) {
    return std::nullopt;
}

std::optional<SaveFileResult> HeadlessDialogs::saveFile(const FileDialogRequest&) {
    return std::nullopt;
}

std::optional<String> HeadlessDialogs::chooseFolder(const FolderDialogRequest&) {
    return std::nullopt;
}

void HeadlessDialogs::beginWaitCursor() {
    ++m_waitDepth;
}

void HeadlessDialogs::endWaitCursor() {
    if (m_waitDepth > 0) --m_waitDepth;
}

HeadlessDialogs& sharedHeadlessDialogs() {
    static HeadlessDialogs dialogs;
    return dialogs;
}

}  // namespace melodex
