#include "melodex/platform/settings_store.h"

#include <cerrno>
#include <cstdlib>
#include <utility>

#include "melodex/foundation/file_system.h"
#include "melodex/foundation/ini_file.h"
#include "melodex/platform/system_info.h"

namespace melodex {

namespace {

constexpr std::string_view SettingsSection = "Settings";

// Loads the file for a change. A missing file is an empty start; any other
// failure is reported so that the caller does not overwrite settings it
// could not see.
Status loadForChange(const String& path, IniFile& ini) {
    Status status = ini.load(path);
    return status == Status(ENOENT) ? StatusSuccess : status;
}

}  // namespace

String SettingsStore::defaultPath() {
    if (const char* file = std::getenv("MELODEX_SETTINGS_FILE"); file != nullptr && *file != '\0')
        return file;
    return joinPath(joinPath(SystemInfo::userConfigFolder(), "Hymnora"), "Settings.ini");
}

String SettingsStore::path() const {
    return m_path ? *m_path : defaultPath();
}

String SettingsStore::getString(std::string_view name, std::string_view defaultValue) const {
    return snapshot().getString(name, defaultValue);
}

ConfigKey SettingsStore::snapshot() const {
    IniFile ini;
    if (ini.load(path()) == StatusSuccess) {
        if (ConfigKey* section = ini.findKey(SettingsSection)) return std::move(*section);
    }
    return ConfigKey(String(SettingsSection));
}

Status SettingsStore::setString(std::string_view name, std::string_view value) {
    return setStrings({{String(name), String(value)}});
}

Status SettingsStore::setStrings(const std::vector<std::pair<String, String>>& values) {
    String file = path();
    IniFile ini;
    if (Status status = loadForChange(file, ini); status != StatusSuccess) return status;
    ConfigKey* section = ini.createKey(SettingsSection);
    for (const auto& [name, value] : values)
        section->setString(name, value);
    // A folder that cannot be made shows up as the save's own error.
    if (String folder = folderOf(file); !folder.empty()) createFolders(folder);
    return ini.save(file);
}

Status SettingsStore::removeValue(std::string_view name) {
    String file = path();
    IniFile ini;
    Status status = ini.load(file);
    if (status == Status(ENOENT)) return StatusSuccess;
    if (status != StatusSuccess) return status;
    ConfigKey* section = ini.findKey(SettingsSection);
    if (section == nullptr || !section->removeValue(name)) return StatusSuccess;
    return ini.save(file);
}

}  // namespace melodex
