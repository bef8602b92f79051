#include "melodex/platform/system_info.h"

#include <cerrno>
#include <cstdlib>
#include <string_view>
#include <vector>

#include <limits.h>
#include <pwd.h>
#include <unistd.h>

#include "melodex/foundation/file_system.h"

namespace melodex {

namespace {

// A variable that is unset, empty or relative is ignored: the XDG rules say
// a relative value is invalid, and honouring it would make data folders
// depend on the current folder.
String absoluteEnvironmentPath(const char* name) {
    const char* value = std::getenv(name);
    if (value == nullptr || !isAbsolutePath(value)) return {};
    return value;
}

String userFolder(const char* variable, std::string_view fallbackUnderHome) {
    String folder = absoluteEnvironmentPath(variable);
    if (!folder.empty()) return folder;
    return joinPath(SystemInfo::homeFolder(), fallbackUnderHome);
}

}  // namespace

String SystemInfo::programPath() {
    // readlink does not say whether it truncated, so grow the buffer until
    // the answer is shorter than it. Linux names the file through /proc;
    // other systems give an empty path here.
    std::vector<char> buffer(PATH_MAX);
    for (int attempt = 0; attempt < 6; ++attempt) {
        ssize_t length = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
        if (length < 0) return {};
        if (std::size_t(length) < buffer.size()) return String(buffer.data(), std::size_t(length));
        buffer.resize(buffer.size() * 2);
    }
    return {};
}

String SystemInfo::programFolder() {
    return folderOf(programPath());
}

String SystemInfo::executableName(std::string_view baseName) {
    return String(baseName);
}

String SystemInfo::hostName() {
    // POSIX leaves it open whether a truncated name is terminated, so the
    // buffer has room for one more byte that is always zero.
    char buffer[HOST_NAME_MAX + 2] = {};
    if (::gethostname(buffer, sizeof buffer - 1) != 0 || buffer[0] == '\0') return "localhost";
    return buffer;
}

String SystemInfo::homeFolder() {
    String home = absoluteEnvironmentPath("HOME");
    if (!home.empty()) return home;

    long suggested = ::sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(suggested > 0 ? std::size_t(suggested) : 4096);
    for (int attempt = 0; attempt < 6; ++attempt) {
        passwd entry{};
        passwd* found = nullptr;
        int error = ::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found);
        if (error == ERANGE) {
            buffer.resize(buffer.size() * 2);
            continue;
        }
        if (error != 0 || found == nullptr || found->pw_dir == nullptr) return {};
        return found->pw_dir;
    }
    return {};
}

String SystemInfo::baseUserFolder() {
    return userFolder("XDG_DATA_HOME", ".local/share");
}

String SystemInfo::userConfigFolder() {
    return userFolder("XDG_CONFIG_HOME", ".config");
}

String SystemInfo::sharedDataFolder() {
    String folder = absoluteEnvironmentPath("MELODEX_SHARED_DATA_DIR");
    if (!folder.empty()) return folder;

    // The first usable entry wins; an entry that is empty or relative is
    // skipped rather than ending the search.
    String base = "/usr/local/share";
    if (const char* list = std::getenv("XDG_DATA_DIRS"); list != nullptr) {
        for (const String& entry : split(list, ":", EmptyPieces::Skip)) {
            if (isAbsolutePath(entry)) {
                base = entry;
                break;
            }
        }
    }
    return joinPath(base, "Hymnora");
}

}  // namespace melodex
