#include "melodex/bible/bible_database.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "melodex/bible/bible_book_names.h"
#include "melodex/foundation/file_system.h"
#include "melodex/foundation/uuid.h"
#include "melodex/platform/dialogs.h"
#include "melodex/platform/headless_dialogs.h"

namespace melodex {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view IniName = "bible.ini";
constexpr std::string_view BibleFileFilter =
    "XMM Bible Files (*.xmm)|*.xmm|XML Bible Files (*.xml)|*.xml|All Files (*.*)|*.*||";
constexpr std::string_view FolderDialogTitle = "Select Folder for Import";

fs::path toPath(const String& path) {
    return fs::path(std::u8string(path.begin(), path.end()));
}

// A name beside the Bible folders that no scan lists (it starts with a dot)
// and no other program picks.
String hiddenSibling(const String& folder, std::string_view purpose) {
    return joinPath(folder, "." + Uuid::generate().toString() + "." + String(purpose));
}

Status removeAll(const String& path) {
    std::error_code error;
    fs::remove_all(toPath(path), error);
    return error ? Status(error.value()) : StatusSuccess;
}

String withoutTrailingSeparators(String path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

// The title the list is sorted by: blanks removed, compared ignoring case.
String sortKey(const String& title) {
    return replaceAll(title, " ", "");
}

}  // namespace

BibleDatabase::BibleDatabase() = default;

BibleDatabase::~BibleDatabase() {
    close();
}

Dialogs& BibleDatabase::dialogs() const {
    return m_dialogs ? *m_dialogs : sharedHeadlessDialogs();
}

unsigned BibleDatabase::open() {
    m_lastError.clear();
    m_changed = false;
    refresh();
    return 0;
}

unsigned BibleDatabase::close() {
    clear();
    return 0;
}

void BibleDatabase::clear() {
    m_bibles.clear();
}

void BibleDatabase::refresh() {
    clear();
    const std::optional<std::vector<FolderItem>> items = listFolder(m_folder);
    if (!items) {
        // No folder yet is no failure: nothing has been installed.
        if (folderExists(m_folder))
            m_lastError.record(FileError::Action::List, m_folder, Status(EACCES));
        return;
    }
    std::vector<std::pair<String, std::unique_ptr<Bible>>> found;
    for (const FolderItem& item : *items) {
        // Dot names are ".", "..", hidden folders and imports in progress.
        if (item.name.starts_with('.') || !item.isFolder) continue;
        const String folder = joinPath(m_folder, item.name);
        if (!fileExists(joinPath(folder, IniName))) continue;
        auto bible = std::make_unique<Bible>();
        if (bible->loadFromFolder(folder) != StatusSuccess) continue;
        String key = sortKey(bible->title());
        found.emplace_back(std::move(key), std::move(bible));
    }
    std::stable_sort(found.begin(), found.end(), [](const auto& a, const auto& b) {
        return compareIgnoreCase(a.first, b.first) < 0;
    });
    m_bibles.reserve(found.size());
    for (auto& [key, bible] : found)
        m_bibles.push_back(std::move(bible));
}

std::vector<Bible*> BibleDatabase::findBibles(std::string_view name) const {
    std::vector<Bible*> matches;
    for (const auto& bible : m_bibles) {
        if (equalsIgnoreCase(fileNameOf(withoutTrailingSeparators(bible->folder())), name))
            matches.push_back(bible.get());
    }
    if (!matches.empty()) return matches;
    const String key = sortKey(String(name));
    for (const auto& bible : m_bibles) {
        if (equalsIgnoreCase(sortKey(bible->title()), key)) matches.push_back(bible.get());
    }
    return matches;
}

bool BibleDatabase::importFolder(const String& folder, const ImportProgress& progress) {
    m_lastError.clear();
    WaitCursor busy(dialogs());
    const std::optional<std::vector<FolderItem>> items = listFolder(folder);
    if (!items) {
        m_lastError.record(FileError::Action::List, folder,
                           folderExists(folder) ? Status(EACCES) : Status(ENOENT));
        return false;
    }
    const bool holdsBbl = std::any_of(items->begin(), items->end(), [](const FolderItem& item) {
        return item.isFile && endsWithIgnoreCase(item.name, ".bbl");
    });
    if (!holdsBbl) {
        m_lastError.record(FileError::Action::Read, folder, BibleStatusFailed);
        return false;
    }
    auto bible = std::make_unique<Bible>();
    if (bible->importBblFolder(folder, progress) != StatusSuccess) return false;
    // A ".bbl" file that could not be read leaves its book empty and the
    // import goes on; the reason stays readable.
    if (const FileError& error = bible->lastError())
        m_lastError.record(error.action, error.path, error.status);
    return install(std::move(bible), progress);
}

bool BibleDatabase::importFile(const String& path, bool, bool, const ImportProgress& progress) {
    m_lastError.clear();
    auto bible = std::make_unique<Bible>();
    if (bible->importFromFile(path, progress) != StatusSuccess) {
        const FileError& error = bible->lastError();
        m_lastError.record(error.action, error.path, error.status);
        return false;
    }
    return install(std::move(bible), progress);
}

bool BibleDatabase::importPath(const String& path, const ImportProgress& progress) {
    m_lastError.clear();
    if (folderExists(path)) {
        bool holdsBook = false;
        for (int number = 1; number <= BibleBookNameCount && !holdsBook; ++number)
            holdsBook = fileExists(joinPath(path, String(englishBookName(number)) + ".bbl"));
        if (!holdsBook) {
            m_lastError.record(FileError::Action::Read, path, BibleStatusFailed);
            return false;
        }
        return importFolder(path, progress);
    }
    if (const Status status = BibleBook::checkReadable(path); status != StatusSuccess) {
        m_lastError.record(FileError::Action::Read, path, status);
        return false;
    }
    if (endsWithIgnoreCase(path, ".bbl")) {
        m_lastError.record(FileError::Action::Read, path, BibleStatusFailed);
        return false;
    }
    return importFile(path, false, false, progress);
}

bool BibleDatabase::install(std::unique_ptr<Bible> bible, const ImportProgress& progress) {
    if (m_folder.empty()) {
        m_lastError.record(FileError::Action::Write, m_folder, StatusNoFolder);
        return false;
    }
    if (Status why = StatusSuccess; !createFolders(m_folder, &why)) {
        m_lastError.record(FileError::Action::CreateFolder, m_folder, why);
        return false;
    }

    // Written complete under a hidden name, then renamed into place: a
    // failure or a crash part-way leaves no half Bible for a scan to find.
    const String staging = hiddenSibling(m_folder, "import");
    (void)bible->saveToFolder(staging, progress);
    if (const FileError& error = bible->lastError()) {
        m_lastError.record(error.action, error.path, error.status);
        (void)removeAll(staging);
        return false;
    }

    const String base = BibleBook::fileNameFor(bible->title(), "Bible");
    String target;
    for (int number = 1; target.empty(); ++number) {
        const String candidate =
            joinPath(m_folder, number == 1 ? base : base + " " + std::to_string(number));
        std::error_code error;
        if (fs::exists(fs::symlink_status(toPath(candidate), error))) continue;
        // An empty folder made under that name since the test would be
        // replaced by the rename; one with contents makes it fail, and the
        // next number is tried.
        fs::rename(toPath(staging), toPath(candidate), error);
        if (!error) {
            target = candidate;
        } else if (error != std::errc::file_exists && error != std::errc::directory_not_empty) {
            m_lastError.record(FileError::Action::Write, candidate, Status(error.value()));
            (void)removeAll(staging);
            return false;
        }
    }
    bible->moveTo(target);
    m_bibles.push_back(std::move(bible));
    return true;
}

void BibleDatabase::selectAndImportFiles() {
    FileDialogRequest request;
    request.filter = String(BibleFileFilter);
    request.fileMustExist = true;
    request.longNames = true;
    request.fileNameBufferLength = MultiSelectFileNameBufferLength;
    const std::optional<StringArray> chosen = dialogs().openFiles(request);
    if (!chosen) return;
    WaitCursor busy(dialogs());
    StringArray paths;
    for (const String& path : *chosen)
        paths.push_back(path);
    for (const String& path : paths)
        (void)importFile(path, false, false);
}

void BibleDatabase::selectAndImportFolder() {
    FolderDialogRequest request;
    request.title = String(FolderDialogTitle);
    if (const std::optional<String> folder = dialogs().chooseFolder(request))
        (void)importFolder(*folder);
}

void BibleDatabase::removeEntry(Bible* bible) {
    if (!bible) return;
    const auto it = std::find_if(m_bibles.begin(), m_bibles.end(),
                                 [bible](const auto& held) { return held.get() == bible; });
    if (it == m_bibles.end()) return;
    m_lastError.clear();
    const std::unique_ptr<Bible> owned = std::move(*it);
    m_bibles.erase(it);

    // Only a Bible folder of this database is ever deleted, whatever the
    // Bible's folder field has come to hold.
    const String folder = absolutePath(withoutTrailingSeparators(owned->folder()));
    const String name = fileNameOf(folder);
    const bool ours = !owned->folder().empty() && !name.empty() && !name.starts_with('.') &&
                      folderOf(folder) == absolutePath(withoutTrailingSeparators(m_folder)) &&
                      fileExists(joinPath(folder, IniName));
    if (!ours) {
        m_lastError.record(FileError::Action::Remove, folder, Status(EPERM));
        return;
    }
    // Renamed out of the scan's sight first, so that a removal that stops
    // half-way leaves no half Bible installed.
    const String doomed = hiddenSibling(m_folder, "remove");
    std::error_code error;
    fs::rename(toPath(folder), toPath(doomed), error);
    if (error) {
        m_lastError.record(FileError::Action::Remove, folder, Status(error.value()));
        return;
    }
    m_lastError.record(FileError::Action::Remove, folder, removeAll(doomed));
}

}  // namespace melodex
