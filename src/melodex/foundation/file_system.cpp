#include "melodex/foundation/file_system.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace melodex {

namespace fs = std::filesystem;

namespace {

fs::path toPath(std::string_view path) {
    return fs::path(std::u8string_view(reinterpret_cast<const char8_t*>(path.data()), path.size()));
}

String fromPath(const fs::path& path) {
    const std::u8string text = path.u8string();
    return String(reinterpret_cast<const char*>(text.data()), text.size());
}

bool isSeparator(char c) {
    return c == '/';
}

// The byte offset where the name part of a path begins.
std::size_t nameStart(std::string_view path) {
    const std::size_t slash = path.find_last_of('/');
    return slash == std::string_view::npos ? 0 : slash + 1;
}

Status lastError() {
    return errno != 0 ? Status(errno) : Status(EIO);
}

// Writes all bytes, riding out short writes and interrupted calls.
bool writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        bytes.remove_prefix(std::size_t(written));
    }
    return true;
}

// The umask of the process, read without changing it (umask() can only be
// read by setting it, which would race with other threads).
mode_t currentUmask() {
    static const mode_t mask = [] {
        std::FILE* status = std::fopen("/proc/self/status", "re");
        mode_t value = 022;
        if (!status) return value;
        char line[256];
        while (std::fgets(line, sizeof line, status)) {
            unsigned parsed = 0;
            if (std::sscanf(line, "Umask: %o", &parsed) == 1) {
                value = mode_t(parsed);
                break;
            }
        }
        std::fclose(status);
        return value;
    }();
    return mask;
}

// Follows `target` through symbolic links to the file a write must replace.
// `replacing` tells whether a regular file is there (its information in
// `existing`); anything else that is there is refused.
Status resolveWriteTarget(String& target, struct stat& existing, bool& replacing) {
    constexpr int MaxLinks = 40;  // as the kernel allows in one lookup
    for (int hops = 0;; ++hops) {
        if (::lstat(target.c_str(), &existing) != 0) {
            if (errno == ENOENT) return StatusSuccess;  // a new file
            return lastError();
        }
        if (S_ISLNK(existing.st_mode)) {
            if (hops == MaxLinks) return Status(ELOOP);
            std::string link(std::size_t(existing.st_size > 0 ? existing.st_size : 255) + 1, '\0');
            const ssize_t length = ::readlink(target.c_str(), link.data(), link.size());
            if (length < 0) return lastError();
            link.resize(std::size_t(length));
            target = isAbsolutePath(link) ? link : joinPath(folderOf(target), link);
            continue;
        }
        if (!S_ISREG(existing.st_mode)) return StatusNotRegularFile;
        replacing = true;
        return StatusSuccess;
    }
}

Status renameOver(const String& temporary, const String& target) {
    return ::rename(temporary.c_str(), target.c_str()) == 0 ? StatusSuccess : lastError();
}

// Gives the finished file its name only when no file has it: a hard link
// fails when the name is taken, where a rename would replace the file. File
// systems without hard links get a rename that refuses to replace.
Status linkAsNew(const String& temporary, const String& target) {
    if (::link(temporary.c_str(), target.c_str()) == 0) return StatusSuccess;
    if (errno != EPERM && errno != ENOTSUP && errno != EOPNOTSUPP && errno != ENOSYS)
        return lastError();
    if (::renameat2(AT_FDCWD, temporary.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0)
        return StatusSuccess;
    return lastError();
}

// A new file written without a name and given one only when whole (an
// O_TMPFILE file linked into place): no temporary name to make up, nothing
// to clean away after a crash. EOPNOTSUPP when the file system cannot.
Status createUnnamedAndLink(const String& target, std::string_view bytes) {
    String folder = folderOf(target);
    if (folder.empty()) folder = ".";
    const int fd = ::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666);
    if (fd < 0) {
        // Older kernels and some file systems answer EISDIR or EOPNOTSUPP.
        if (errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL) return Status(EOPNOTSUPP);
        return lastError();
    }
    Status status = StatusSuccess;
    if (!writeAll(fd, bytes)) {
        status = lastError();
    } else {
        const String self = "/proc/self/fd/" + std::to_string(fd);
        if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, target.c_str(), AT_SYMLINK_FOLLOW) != 0)
            status =
                errno == ENOENT && !folderExists("/proc/self") ? Status(EOPNOTSUPP) : lastError();
    }
    ::close(fd);
    return status;
}

}  // namespace

String joinPath(std::string_view folder, std::string_view name) {
    if (folder.empty()) return String(name);
    if (name.empty()) return String(folder);
    if (isAbsolutePath(name)) return String(name);
    String path(folder);
    if (!isSeparator(path.back())) path += '/';
    path.append(name);
    return path;
}

String fileNameOf(std::string_view path) {
    return String(path.substr(nameStart(path)));
}

String baseNameOf(std::string_view path) {
    const std::string_view name = path.substr(nameStart(path));
    const std::size_t dot = name.find_last_of('.');
    // A leading dot names a hidden file, not an extension.
    return String(dot == std::string_view::npos || dot == 0 ? name : name.substr(0, dot));
}

String extensionOf(std::string_view path) {
    const std::string_view name = path.substr(nameStart(path));
    const std::size_t dot = name.find_last_of('.');
    return dot == std::string_view::npos || dot == 0 ? String() : String(name.substr(dot));
}

String folderOf(std::string_view path) {
    const std::size_t slash = path.find_last_of('/');
    if (slash == std::string_view::npos) return String();
    if (slash == 0) return "/";
    return String(path.substr(0, slash));
}

bool isAbsolutePath(std::string_view path) {
    return !path.empty() && path.front() == '/';
}

String absolutePath(std::string_view path) {
    std::error_code error;
    const fs::path absolute = fs::absolute(toPath(path), error);
    return error ? String(path) : fromPath(absolute.lexically_normal());
}

String relativePath(std::string_view path, std::string_view folder) {
    if (!isAbsolutePath(path) || !isAbsolutePath(folder)) return String(path);
    const fs::path relative =
        toPath(path).lexically_normal().lexically_relative(toPath(folder).lexically_normal());
    return relative.empty() ? String(path) : fromPath(relative);
}

bool isPlainFileName(std::string_view name) {
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of("/\\") == std::string_view::npos &&
           name.find('\0') == std::string_view::npos;
}

String fileNameFromTitle(std::string_view title) {
    constexpr std::size_t MaxBytes = 200;
    String name;
    name.reserve(title.size());
    for (char c : title) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '/' || c == '\\' || c == ':') {
            name += '-';
        } else if (byte >= 32 && byte != 127 &&
                   std::string_view("?*\"<>|").find(c) == std::string_view::npos) {
            name += c;
        }
    }
    if (name.size() > MaxBytes) {
        std::size_t cut = MaxBytes;
        while (cut > 0 && (static_cast<unsigned char>(name[cut]) & 0xC0) == 0x80)
            --cut;
        name.resize(cut);
    }
    name = strip(strip(name, " \t.", StripSide::Start), " \t.", StripSide::End);
    return isPlainFileName(name) ? name : String();
}

bool fileExists(std::string_view path) {
    std::error_code error;
    return !path.empty() && fs::is_regular_file(toPath(path), error);
}

bool folderExists(std::string_view path) {
    std::error_code error;
    return !path.empty() && fs::is_directory(toPath(path), error);
}

bool createFolders(std::string_view path, Status* status) {
    std::error_code error;
    if (!path.empty()) fs::create_directories(toPath(path), error);
    if (folderExists(path)) return true;
    // A file standing where a folder should be leaves no error behind.
    if (status) *status = error ? Status(error.value()) : Status(path.empty() ? ENOENT : ENOTDIR);
    return false;
}

Status removeFile(std::string_view path) {
    const String target(path);
    return ::unlink(target.c_str()) == 0 ? StatusSuccess : lastError();
}

std::optional<LocalTime> fileModificationTime(std::string_view path) {
    const String target(path);
    struct stat info {};
    if (::stat(target.c_str(), &info) != 0) return std::nullopt;
    return LocalTime::fromTimeT(info.st_mtime);
}

std::optional<std::int64_t> fileModificationStamp(std::string_view path) {
    const String target(path);
    struct stat info {};
    if (::stat(target.c_str(), &info) != 0) return std::nullopt;
    return std::int64_t(info.st_mtim.tv_sec) * 1000000000 + info.st_mtim.tv_nsec;
}

std::optional<std::vector<FolderItem>> listFolder(std::string_view path, Status* status) {
    std::error_code error;
    const auto failed = [&error, status]() -> std::optional<std::vector<FolderItem>> {
        if (status) *status = error.value() != 0 ? Status(error.value()) : Status(EIO);
        return std::nullopt;
    };
    if (status) *status = StatusSuccess;
    fs::directory_iterator it(toPath(path), error);
    if (error) return failed();
    std::vector<FolderItem> items;
    for (; it != fs::directory_iterator(); it.increment(error)) {
        if (error) return failed();
        FolderItem item;
        item.name = fromPath(it->path().filename());
        std::error_code typeError;
        item.isFolder = it->is_directory(typeError);
        item.isFile = !item.isFolder && it->is_regular_file(typeError);
        items.push_back(std::move(item));
    }
    std::sort(items.begin(), items.end(),
              [](const FolderItem& a, const FolderItem& b) { return a.name < b.name; });
    return items;
}

String canonicalPath(std::string_view path) {
    std::error_code error;
    const fs::path resolved = fs::canonical(toPath(path), error);
    return error ? absolutePath(path) : fromPath(resolved);
}

void walkFolder(const String& folder, const FolderWalk& walk, std::set<String>& visited) {
    if (!visited.insert(canonicalPath(folder)).second) return;
    Status status = StatusSuccess;
    const std::optional<std::vector<FolderItem>> items = listFolder(folder, &status);
    if (!items) {
        if (walk.unreadable) walk.unreadable(folder, status);
        return;
    }
    for (const FolderItem& item : *items) {
        if (walk.skipHidden && item.name.front() == '.') continue;
        const String path = joinPath(folder, item.name);
        if (item.isFolder) {
            walkFolder(path, walk, visited);
        } else if (item.isFile && walk.file) {
            walk.file(path, item.name);
        }
    }
}

Status readFileBytes(std::string_view path, std::string& bytes, std::size_t maxBytes) {
    const String target(path);
    const int fd = ::open(target.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return lastError();
    struct stat info {};
    if (::fstat(fd, &info) != 0 || S_ISDIR(info.st_mode)) {
        const Status status = S_ISDIR(info.st_mode) ? Status(EISDIR) : lastError();
        ::close(fd);
        return status;
    }
    if (std::uintmax_t(info.st_size) > maxBytes) {
        ::close(fd);
        return Status(EFBIG);
    }
    // Read straight into the string, sized from the file; one byte more
    // than the size lets the end be seen without a second read for most
    // files, and files that grow (or report no size) get room as they go.
    std::string data(std::size_t(info.st_size > 0 ? info.st_size : 0) + 1, '\0');
    std::size_t filled = 0;
    for (;;) {
        if (filled == data.size()) data.resize(data.size() * 2 + 4096);
        const ssize_t got = ::read(fd, data.data() + filled, data.size() - filled);
        if (got < 0) {
            if (errno == EINTR) continue;
            const Status status = lastError();
            ::close(fd);
            return status;
        }
        if (got == 0) break;
        filled += std::size_t(got);
    }
    ::close(fd);
    data.resize(filled);
    bytes = std::move(data);
    return StatusSuccess;
}

Status writeFileAtomically(std::string_view path, std::string_view bytes, WriteMode mode) {
    if (path.empty()) return Status(ENOENT);
    String target(path);
    struct stat existing {};
    bool replacing = false;
    if (mode == WriteMode::Replace) {
        const Status found = resolveWriteTarget(target, existing, replacing);
        if (found != StatusSuccess) return found;
    }

    if (mode == WriteMode::CreateNew) {
        const Status created = createUnnamedAndLink(target, bytes);
        if (created != EOPNOTSUPP) return created;
    }

    // The temporary file lies beside the target so that the rename stays on
    // one file system and is atomic; its name starts with a dot so that
    // folder scans for songs never pick it up.
    String temporaryName(1, '.');
    temporaryName.append(fileNameOf(target)).append(".tmp-XXXXXX");
    String temporary = joinPath(folderOf(target), temporaryName);
    const int fd = ::mkstemp(temporary.data());
    if (fd < 0) return lastError();

    // mkstemp makes the file its owner's alone: give it the replaced file's
    // owner and mode (owner first, as a change of owner clears set-id bits),
    // or the mode a new file would have had.
    if (replacing) {
        if ((existing.st_uid != ::geteuid() || existing.st_gid != ::getegid()) &&
            ::fchown(fd, existing.st_uid, existing.st_gid) != 0) {
            // Not allowed to give the file away; keeping its group may still be.
            (void)!::fchown(fd, uid_t(-1), existing.st_gid);
        }
        ::fchmod(fd, existing.st_mode & 07777);
    } else {
        ::fchmod(fd, 0666 & ~currentUmask());
    }

    if (!writeAll(fd, bytes) || (replacing && ::fsync(fd) != 0)) {
        const Status status = lastError();
        ::close(fd);
        ::unlink(temporary.c_str());
        return status;
    }
    if (::close(fd) != 0) {
        const Status status = lastError();
        ::unlink(temporary.c_str());
        return status;
    }
    const Status placed =
        mode == WriteMode::Replace ? renameOver(temporary, target) : linkAsNew(temporary, target);
    if (placed != StatusSuccess || mode == WriteMode::CreateNew) ::unlink(temporary.c_str());
    return placed;
}

}  // namespace melodex
