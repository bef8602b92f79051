#include "melodex/bible/bible_book.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "melodex/bible/bible.h"
#include "melodex/foundation/file_system.h"
#include "melodex/foundation/text_file.h"

namespace melodex {

namespace {

// The line without the blanks, tabs and line-end characters at its end.
// Only the end is stripped: a verse text that starts with blanks is cut by
// the verse rule itself, and a chapter title keeps its leading blanks.
std::string_view stripEnd(std::string_view line) {
    while (!line.empty() && (line.back() == ' ' || line.back() == '\t' || line.back() == '\r' ||
                             line.back() == '\n'))
        line.remove_suffix(1);
    return line;
}

std::string_view skipBlanks(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    return text;
}

}  // namespace

BibleBook::BibleBook(Bible* owner) : BibleObject(owner, TypeBook) {}

BibleBook::BibleBook(const BibleBook& other)
    : BibleObject(other),
      m_title(other.m_title),
      m_loaded(other.m_loaded),
      m_file(other.m_file),
      m_lastError(other.m_lastError) {
    m_chapters.reserve(other.m_chapters.size());
    for (const auto& chapter : other.m_chapters) {
        m_chapters.push_back(std::make_unique<BibleChapter>(*chapter));
        m_chapters.back()->setOwner(this);
    }
}

BibleBook& BibleBook::operator=(const BibleBook& other) {
    if (this == &other) return *this;
    BibleObject::operator=(other);
    BibleBook copy(other);
    m_title = std::move(copy.m_title);
    m_chapters = std::move(copy.m_chapters);
    for (auto& chapter : m_chapters)
        chapter->setOwner(this);
    m_loaded = copy.m_loaded;
    m_file = std::move(copy.m_file);
    m_lastError = std::move(copy.m_lastError);
    return *this;
}

BibleBook::~BibleBook() = default;

void BibleBook::setFile(const String& path) {
    m_file = path;
    m_loaded = false;
}

int BibleBook::chapterCount() {
    if (!m_loaded) {
        m_lastError.clear();
        (void)load();
    }
    return int(m_chapters.size());
}

BibleChapter* BibleBook::chapter(int index) {
    if (!m_loaded) {
        m_lastError.clear();
        (void)load();
    }
    if (index < 0 || index >= int(m_chapters.size())) return nullptr;
    return m_chapters[std::size_t(index)].get();
}

BibleChapter* BibleBook::addChapter() {
    m_chapters.push_back(std::make_unique<BibleChapter>(this));
    return m_chapters.back().get();
}

Bible* BibleBook::bible() const {
    return static_cast<Bible*>(owner());
}

String BibleBook::toString() const {
    return m_title;
}

Status BibleBook::checkReadable(const String& path) {
    if (fileExists(path)) return StatusSuccess;
    if (folderExists(path)) return Status(EISDIR);
    std::error_code error;
    return std::filesystem::exists(std::filesystem::symlink_status(path, error))
               ? StatusNotRegularFile
               : Status(ENOENT);
}

Status BibleBook::openForReading(TextFile& file, const String& path) {
    m_loaded = true;
    Status status = checkReadable(path);
    if (status == StatusSuccess) status = file.open(path, TextFile::Mode::Read);
    m_lastError.record(FileError::Action::Read, path, status);
    return status;
}

String BibleBook::fileNameFor(std::string_view title, std::string_view fallback) {
    // Titles come from foreign files: nothing in one may lead the name out
    // of its folder.
    const String name = fileNameFromTitle(title);
    return name.empty() ? String(fallback) : name;
}

Status BibleBook::load() {
    TextFile file;
    if (const Status status = openForReading(file, m_file); status != StatusSuccess) return status;
    BibleChapter* current = nullptr;
    String buffer;
    while (file.readLine(buffer)) {
        const std::string_view line = stripEnd(buffer);
        if (line.empty()) {
            current = nullptr;
            continue;
        }
        if (line.front() == '!') {
            const std::string_view property = line.substr(1);
            const std::size_t equals = property.find('=');
            if (equals == std::string_view::npos || equals == 0) continue;
            // Every key but "title" sets the title: the "!title=" line the
            // writer puts first must not override the title from bible.ini,
            // which files edited by hand depend on.
            if (!equalsIgnoreCase(property.substr(0, equals), "title"))
                m_title = String(property.substr(equals + 1));
            continue;
        }
        const std::size_t colon = line.find(':');
        if (line.front() == '[' && colon != std::string_view::npos && colon > 0) {
            const std::size_t close = line.find(']');
            if (close != std::string_view::npos && close > colon) {
                current = addChapter();
                current->title(String(line.substr(colon + 1, close - colon - 1)));
                current->number(String(line.substr(1, colon - 1)));
                continue;
            }
        }
        if (colon == std::string_view::npos || colon < 1) continue;
        // A verse before the first chapter line or after an empty line has
        // no chapter to go to; the writer never makes one.
        if (!current) continue;
        BibleVerse* verse = current->addVerse();
        verse->m_number.assign(line.substr(0, colon));
        verse->m_text.assign(skipBlanks(line.substr(colon + 1)));
    }
    return StatusSuccess;
}

Status BibleBook::saveToFolder(const String& folder) {
    m_lastError.clear();
    return saveToFile(joinPath(folder, fileNameFor(m_title, "Book") + ".book"));
}

Status BibleBook::saveToFile(const String& path) {
    // The file changes, the loaded state does not: an imported book saved
    // into its new folder must not be read back on top of what it holds.
    m_file = path;
    TextFile file;
    if (const Status status = file.open(path, TextFile::Mode::Write); status != StatusSuccess) {
        m_lastError.record(FileError::Action::Write, path, status);
        return status;
    }
    writeToFile(file);
    m_lastError.record(FileError::Action::Write, path, file.close());
    return StatusSuccess;
}

void BibleBook::writeToFile(TextFile& file) const {
    file.writeLine("!title=" + oneLine(m_title));
    for (const auto& chapter : m_chapters)
        chapter->writeToFile(file);
}

Status BibleBook::importBblFile(const String& path) {
    m_lastError.clear();
    TextFile file;
    if (const Status status = openForReading(file, path); status != StatusSuccess) return status;
    BibleChapter* current = nullptr;
    String buffer;
    while (file.readLine(buffer)) {
        const std::string_view line = stripEnd(buffer);
        if (line.empty()) {
            current = nullptr;
            continue;
        }
        const std::size_t colon = line.find(':');
        // The first line of a block is its heading, even when it holds a
        // colon; so is any line without one.
        if (!current || colon == std::string_view::npos) {
            current = addChapter();
            current->title(String(line));
            continue;
        }
        if (colon == 0) continue;
        BibleVerse* verse = current->addVerse();
        verse->m_number.assign(line.substr(0, colon));
        verse->m_text.assign(skipBlanks(line.substr(colon + 1)));
    }
    return StatusSuccess;
}

}  // namespace melodex
