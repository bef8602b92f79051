#pragma once

// The "profile" commands of the melodex program:
//
//     melodex [--data DIR] profile list                     name, title and targets of
//                                                           every display profile
//     melodex [--data DIR] profile show NAME [--type MASK]  one profile: flags, columns,
//                                                           colours, styles and key spellings
//     melodex [--data DIR] profile export NAME FILE [--type MASK]
//                                                           its .sdp file ("-": standard output)
//
// The profiles are read from the display profiles folder: DIR/"Display
// Profiles" with --data (created when missing), else the configured one.
// The first time a profile is needed there, the built-in profiles are
// written into it. Exit codes: 0 success, 1 failure (the reason on stderr),
// 2 usage.

#include <string>

namespace CLI {
class App;
}  // namespace CLI

namespace melodex {
class SongDisplayProfile;
}  // namespace melodex

namespace melodex::cli {

// Adds the "profile" command group.
void addProfileCommands(CLI::App& app);

// How a command uses the profiles folder: Write makes the folder and writes
// the built-in profiles into it the first time; Read, for the commands that
// only show songs, writes nothing (a folder that is not there counts as
// empty, and the built-in profiles stay in memory).
enum class ProfileAccess { Read, Write };

// Points the profile list at the chosen data folder and loads it, warning
// about profile files that did not load and built-in profiles that could
// not be written.
void loadProfiles(ProfileAccess access = ProfileAccess::Write);

// The profile of that name (exactly) and, when typeMask is not 0, of a
// target in the mask, from the list loadProfiles() read (loading it for
// writing when it was not loaded); ends the command with status 1 when
// there is none.
SongDisplayProfile& profileNamed(const std::string& name, int typeMask);

}  // namespace melodex::cli
