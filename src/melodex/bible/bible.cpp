#include "melodex/bible/bible.h"

#include <algorithm>
#include <cerrno>
#include <unordered_set>

#include "melodex/bible/bible_book_names.h"
#include "melodex/foundation/file_system.h"
#include "melodex/foundation/ini_file.h"
#include "melodex/foundation/text_file.h"
#include "melodex/foundation/xml.h"

namespace melodex {

namespace {

constexpr std::string_view IniName = "bible.ini";
constexpr std::string_view HiddenName = ".hidden";
constexpr std::string_view BookSectionPrefix = "book_";

// The number of a section named "book_<n>" as "book_%d" writes it (no sign,
// no leading zero, any case of the prefix); 0 for any other name.
long long bookSectionNumber(std::string_view name) {
    if (name.size() <= BookSectionPrefix.size() || !startsWithIgnoreCase(name, BookSectionPrefix))
        return 0;
    const std::string_view digits = name.substr(BookSectionPrefix.size());
    if (digits.front() == '0' || digits.size() > 18) return 0;
    long long number = 0;
    for (char c : digits) {
        if (c < '0' || c > '9') return 0;
        number = number * 10 + (c - '0');
    }
    return number;
}

// True when the name read from bible.ini stays inside the Bible's folder
// when joined to it: relative, and no part of it is "..". Sub-folders are
// allowed, as the family's loader has always joined the name as it is.
bool staysInsideFolder(std::string_view name) {
    if (name.empty() || isAbsolutePath(name) || name.find('\\') != std::string_view::npos)
        return false;
    for (const String& part : split(name, "/")) {
        if (part.empty() || part == "." || part == "..") return false;
    }
    return true;
}

// The element named "bible": the root or the first one met going down the
// tree in document order. The walk keeps its own stack, so a file nested a
// hundred thousand levels deep cannot exhaust the call stack.
XmlNode findBibleElement(const XmlNode& root) {
    std::vector<XmlNode> pending{root};
    while (!pending.empty()) {
        const XmlNode node = pending.back();
        pending.pop_back();
        if (!node.isElement()) continue;
        if (equalsIgnoreCase(node.name(), "bible")) return node;
        std::vector<XmlNode> children = node.childElements();
        pending.insert(pending.end(), children.rbegin(), children.rend());
    }
    return {};
}

String withoutTrailingSeparators(const String& path) {
    String trimmed = path;
    while (trimmed.size() > 1 && trimmed.back() == '/')
        trimmed.pop_back();
    return trimmed;
}

}  // namespace

Bible::Bible(BibleObject* owner) : BibleObject(owner, TypeBible) {}

Bible::Bible(const Bible& other)
    : BibleObject(other),
      m_folder(other.m_folder),
      m_title(other.m_title),
      m_description(other.m_description),
      m_publisher(other.m_publisher),
      m_copyright(other.m_copyright),
      m_hidden(other.m_hidden),
      m_lastError(other.m_lastError) {
    m_books.reserve(other.m_books.size());
    for (const auto& book : other.m_books) {
        m_books.push_back(std::make_unique<BibleBook>(*book));
        m_books.back()->setOwner(this);
    }
}

Bible& Bible::operator=(const Bible& other) {
    if (this == &other) return *this;
    BibleObject::operator=(other);
    Bible copy(other);
    m_folder = std::move(copy.m_folder);
    m_title = std::move(copy.m_title);
    m_description = std::move(copy.m_description);
    m_publisher = std::move(copy.m_publisher);
    m_copyright = std::move(copy.m_copyright);
    m_books = std::move(copy.m_books);
    for (auto& book : m_books)
        book->setOwner(this);
    m_hidden = copy.m_hidden;
    m_lastError = std::move(copy.m_lastError);
    return *this;
}

Bible::~Bible() = default;

BibleBook* Bible::book(int index) const {
    if (index < 0 || index >= bookCount()) return nullptr;
    return m_books[std::size_t(index)].get();
}

BibleBook* Bible::addBook() {
    m_books.push_back(std::make_unique<BibleBook>(this));
    return m_books.back().get();
}

void Bible::clear() {
    m_books.clear();
}

String Bible::toString() const {
    return m_title;
}

void Bible::hidden(bool hidden) {
    m_lastError.clear();
    m_hidden = hidden;
    // Without a folder the marker would land in the current folder.
    if (m_folder.empty()) return;
    const String marker = joinPath(m_folder, HiddenName);
    if (hidden) {
        m_lastError.record(FileError::Action::Write, marker, writeFileAtomically(marker, ""));
    } else if (const Status status = removeFile(marker); status != Status(ENOENT)) {
        m_lastError.record(FileError::Action::Remove, marker, status);
    }
}

Status Bible::loadFromFolder(const String& folder) {
    m_lastError.clear();
    const String iniPath = joinPath(folder, IniName);
    if (!fileExists(iniPath)) {
        m_lastError.record(FileError::Action::Read, iniPath, Status(ENOENT));
        return BibleStatusFailed;
    }
    IniFile ini;
    if (const Status status = ini.load(iniPath); status != StatusSuccess) {
        m_lastError.record(FileError::Action::Read, iniPath, status);
        return bookCount() < 1 ? BibleStatusFailed : StatusSuccess;
    }

    long long bookTotal = 0;
    if (const ConfigKey* info = ini.findKey("info")) {
        for (const auto& [name, field] : {std::pair<std::string_view, String*>{"title", &m_title},
                                          {"description", &m_description},
                                          {"publisher", &m_publisher},
                                          {"copyright", &m_copyright}}) {
            if (const ConfigValue* value = info->findValue(name)) *field = value->value();
        }
        bookTotal = info->getInteger("nbooks", 0);
    }

    // Books 1 to nbooks in order, each from its section "book_<i>" where
    // there is one. The sections are gathered from the file rather than
    // looked up one number at a time, so a damaged "nbooks" of two billion
    // costs no more than the file is long.
    std::vector<std::pair<long long, const ConfigKey*>> sections;
    for (int k = 0; k < ini.getKeyCount(); ++k) {
        const ConfigKey* key = ini.getKey(k);
        const long long number = bookSectionNumber(key->name());
        if (number >= 1 && number <= bookTotal) sections.emplace_back(number, key);
    }
    std::sort(sections.begin(), sections.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    for (const auto& [number, section] : sections) {
        const ConfigValue* filename = section->findValue("filename");
        if (!filename) continue;
        // A name leading out of the folder is never followed: the book
        // would read, and a later save would write, someone else's file.
        if (!staysInsideFolder(filename->value())) continue;
        BibleBook* book = addBook();
        book->title(section->getString("title"));
        book->setFile(joinPath(folder, filename->value()));
    }

    m_folder = folder;
    m_hidden = fileExists(joinPath(folder, HiddenName));
    return bookCount() < 1 ? BibleStatusFailed : StatusSuccess;
}

Status Bible::saveToFolder(const String& folder, const Progress& progress) {
    m_lastError.clear();
    if (Status why = StatusSuccess; !createFolders(folder, &why)) {
        m_lastError.record(FileError::Action::CreateFolder, folder, why);
    }

    IniFile ini;
    ConfigKey* info = ini.createKey("info");
    info->setString("title", m_title);
    info->setString("description", m_description);
    info->setString("publisher", m_publisher);
    info->setString("copyright", m_copyright);
    info->setInteger("nbooks", bookCount());

    // Two books whose titles give one file name (the same title twice, or
    // titles that differ only in characters a file name cannot hold) would
    // overwrite each other; the later ones get a number.
    std::unordered_set<String, CaseInsensitiveHash, CaseInsensitiveEqual> used;
    for (int i = 0; i < bookCount(); ++i) {
        if (progress) progress("writing", i, bookCount());
        BibleBook* book = m_books[std::size_t(i)].get();
        ConfigKey* section = ini.createKey("book_" + std::to_string(i + 1));
        section->setString("title", book->title());
        const String base = BibleBook::fileNameFor(book->title(), "Book");
        String name = base + ".book";
        for (int n = 2; !used.insert(name).second; ++n)
            name = base + " " + std::to_string(n) + ".book";
        book->m_lastError.clear();
        (void)book->saveToFile(joinPath(folder, name));
        if (book->lastError()) {
            const FileError& error = book->lastError();
            m_lastError.record(error.action, error.path, error.status);
        }
        section->setString("filename", fileNameOf(book->filename()));
    }
    if (progress) progress("writing", bookCount(), bookCount());

    const String iniPath = joinPath(folder, IniName);
    m_lastError.record(FileError::Action::Write, iniPath, ini.save(iniPath));
    m_folder = folder;
    return StatusSuccess;
}

Status Bible::importFolder(const String&) {
    // Kept in the interface for the programs that call it; the import of a
    // folder is importBblFolder.
    m_lastError.clear();
    return BibleStatusFailed;
}

Status Bible::importBblFolder(const String& folder, const Progress& progress) {
    m_lastError.clear();
    m_title = fileNameOf(withoutTrailingSeparators(folder));
    // "." and ".." name a folder too: its own name is the one meant.
    if (m_title.empty() || m_title == "." || m_title == "..")
        m_title = fileNameOf(absolutePath(folder));
    for (int number = 1; number <= BibleBookNameCount; ++number) {
        if (progress) progress("reading", number - 1, BibleBookNameCount);
        const String name(englishBookName(number));
        const String path = joinPath(folder, name + ".bbl");
        if (!fileExists(path)) continue;
        BibleBook* book = addBook();
        book->title(name);
        if (book->importBblFile(path) != StatusSuccess) {
            const FileError& error = book->lastError();
            m_lastError.record(error.action, error.path, error.status);
        }
    }
    if (progress) progress("reading", BibleBookNameCount, BibleBookNameCount);
    return StatusSuccess;
}

Status Bible::importFromFile(const String& path, const Progress& progress) {
    m_lastError.clear();
    clear();
    if (progress) progress("reading", 0, 0);
    XmlFile xml;
    Status status = BibleBook::checkReadable(path);
    if (status == StatusSuccess) status = xml.load(path);
    if (status != StatusSuccess) {
        m_lastError.record(FileError::Action::Read, path, status);
        return BibleStatusFailed;
    }

    if (const XmlNode bible = findBibleElement(xml.root())) {
        m_title = bible.hasAttribute("n") ? bible.attribute("n") : baseNameOf(path);
        const std::vector<XmlNode> bookElements = bible.childElements();
        int done = 0;
        for (const XmlNode& bookElement : bookElements) {
            if (progress) progress("reading", done++, int(bookElements.size()));
            if (!bookElement.hasAttribute("n")) continue;
            BibleBook* book = addBook();
            book->title(bookElement.attribute("n"));
            for (const XmlNode& chapterElement : bookElement.childElements()) {
                if (!chapterElement.hasAttribute("n")) continue;
                const String number = chapterElement.attribute("n");
                BibleChapter* chapter = book->addChapter();
                chapter->title("Chapter " + number);
                chapter->number(number);
                for (const XmlNode& verseElement : chapterElement.childElements()) {
                    if (!verseElement.hasAttribute("n")) continue;
                    BibleVerse* verse = chapter->addVerse();
                    verse->m_number = verseElement.attribute("n");
                    verse->m_text = verseElement.text();
                }
            }
            book->m_loaded = true;
        }
    }
    if (bookCount() < 1) {
        m_lastError.record(FileError::Action::Read, path, BibleStatusFailed);
        return BibleStatusFailed;
    }
    return StatusSuccess;
}

void Bible::moveTo(const String& folder) {
    m_folder = folder;
    for (auto& book : m_books) {
        if (!book->m_file.empty()) book->m_file = joinPath(folder, fileNameOf(book->m_file));
    }
}

}  // namespace melodex
