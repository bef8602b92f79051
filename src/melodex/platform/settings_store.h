#pragma once

// The per-user settings of the program family: named text values such as
// "SongDatabaseDir" that every program reads and that an administrator or a
// test may set.
//
// They live in the section "Settings" of an INI file, by default
// $XDG_CONFIG_HOME/Hymnora/Settings.ini (~/.config/Hymnora/Settings.ini when
// the variable is unset); the environment variable MELODEX_SETTINGS_FILE
// names another file, which is how tests point a whole program at a
// temporary folder. Names are compared ignoring case.
//
//     SettingsStore settings;
//     String songs = settings.getString("SongDatabaseDir", defaultFolder);
//     if (settings.setString("SongDatabaseDir", "/srv/songs") != StatusSuccess) ...
//
// Every call reads the file afresh and every change is written at once, so
// several programs (and several stores) share one view of the settings. A
// missing, unreadable or malformed file reads as "no values": nothing here
// fails on bad input.

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "melodex/foundation/ini_file.h"
#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"

namespace melodex {

class SettingsStore {
public:
    // A store that follows defaultPath(), looked up again at every call, so
    // a program that sets MELODEX_SETTINGS_FILE after this store was made is
    // still heard.
    SettingsStore() = default;

    // A store on exactly this file.
    explicit SettingsStore(String path) : m_path(std::move(path)) {}

    // $MELODEX_SETTINGS_FILE when set and not empty, else Hymnora/Settings.ini
    // in the user's configuration folder.
    static String defaultPath();

    // The file this store reads and writes now.
    String path() const;

    // The value of that name, or `defaultValue` when the file or the value
    // is missing or the file cannot be read.
    String getString(std::string_view name, std::string_view defaultValue = {}) const;

    // Every value as the file holds it now, read once: for callers that read
    // several. Empty when the file is missing or cannot be read.
    ConfigKey snapshot() const;

    // Sets the value and saves the file atomically, creating its folder.
    // Returns 0 or the errno value of the failure. A file that exists but
    // cannot be read is left alone (its error is returned) rather than
    // replaced by one that holds this value only.
    [[nodiscard]] Status setString(std::string_view name, std::string_view value);

    // Sets several values (name, value) in one change of the file, so that
    // readers see all of them or none.
    [[nodiscard]] Status setStrings(const std::vector<std::pair<String, String>>& values);

    // Removes the value, so that readers get their defaults again. Removing
    // a value that is not there succeeds without writing.
    [[nodiscard]] Status removeValue(std::string_view name);

private:
    std::optional<String> m_path;
};

}  // namespace melodex
