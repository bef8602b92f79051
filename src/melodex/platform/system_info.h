#pragma once

// Facts about the running program, the user and the computer: where the
// program lies, the host name, and the folders that data is kept in.
//
//     String index = "songdb-" + SystemInfo::hostName() + ".ini";
//     String userData = joinPath(SystemInfo::baseUserFolder(), "Cantorix");
//
// Folders follow the XDG base directory conventions. An environment variable
// that is empty or holds a relative path counts as unset, as those
// conventions require. Every call looks at the environment afresh, so a test
// that changes a variable sees the change at once. No function here fails:
// each gives its fallback instead.

#include <string_view>

#include "melodex/foundation/text.h"

namespace melodex {

class SystemInfo {
public:
    SystemInfo() = delete;

    // The running program's full file name; empty when the system does not
    // tell it.
    static String programPath();

    // The folder of programPath(); empty when that is unknown.
    static String programFolder();

    // The file name of a program called `baseName` on this system
    // ("Scrivel" here, "Scrivel.exe" on Windows).
    static String executableName(std::string_view baseName);

    // The computer's name; "localhost" when the system gives none.
    static String hostName();

    // $HOME, else the home folder of the user's account; empty when neither
    // is known.
    static String homeFolder();

    // The base of the user's data: $XDG_DATA_HOME, else ~/.local/share.
    static String baseUserFolder();

    // The base of the user's configuration: $XDG_CONFIG_HOME, else ~/.config.
    static String userConfigFolder();

    // The data shared by every user: $MELODEX_SHARED_DATA_DIR when set, else
    // the first entry of $XDG_DATA_DIRS (default "/usr/local/share") joined
    // with "Hymnora".
    static String sharedDataFolder();
};

}  // namespace melodex
