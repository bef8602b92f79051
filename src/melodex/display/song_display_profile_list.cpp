// The process-wide list of display profiles and the built-in profiles.

#include "melodex/display/song_display_profile.h"

#include <cerrno>
#include <iterator>
#include <memory>
#include <vector>

#include "melodex/foundation/file_system.h"

namespace melodex {

namespace {

// One built-in profile: the arguments of create() and its file name (null
// for a profile that is never written).
struct BuiltInProfile {
    const char* name;
    const char* title;
    int type;
    int flags;
    double baseSize;
    double secondarySize;
    bool dark;
    bool useCapoDefaults;
    bool useTransposeDefaults;
    const char* file;
};

// The house profiles, made when the folder holds none. Two details are
// settled and kept: the piano profile named for local transposition takes
// the capo defaults, and the printed Large Print profile is never written,
// so it exists only when the folder was empty at start.
constexpr BuiltInProfile HouseProfiles[] = {
    {"Words", "Words", 3, 0x18F31, 18, 0, false, false, false, "Words.sdp"},
    {"Chords", "Chords", 3, 0xD8F33, 18, 0, false, false, false, "Chords.sdp"},
    {"GuitarWithCapo", "Guitar with Capo", 3, 0xD8F33, 18, 0, false, true, false,
     "GuitarWithCapo.sdp"},
    {"PianoWithLocalTranspose", "Piano with Local Transpose", 3, 0xD8F33, 18, 0, false, true, false,
     "PianoWithLocalTranspose.sdp"},
    {"Bass", "Bass", 3, 0x18F35, 16, 0, false, false, false, "Bass.sdp"},
    {"LargePrint", "Large Print", 1, 0xB01, 30, 0, false, false, false, "LargePrint (Screen).sdp"},
    {"LargePrint", "Large Print", 2, 0xC31, 24, 20, false, false, false, nullptr},
    {"LargePrintInverted", "Large Print (Inverted)", 1, 0xB01, 30, 0, true, false, false,
     "LargePrintInverted (Screen).sdp"},
    {"ExtraLargePrint", "Extra Large Print", 1, 0xB01, 48, 0, false, false, false,
     "ExtraLargePrint (Screen).sdp"},
    {"ExtraLargePrintInverted", "Extra Large Print (Inverted)", 1, 0xB01, 48, 0, true, false, false,
     "ExtraLargePrintInverted (Screen).sdp"},
};

// The profiles the follower screen, the editor and the viewer draw their
// own windows with, made whenever their name is missing. The two viewer
// Large Print profiles share a name, so one missing name brings both.
constexpr BuiltInProfile ProgramProfiles[] = {
    {"BeamwrightFollower", "Beamwright Follower", 8, 0xA01, 10, 0, false, false, false,
     "BeamwrightFollower.sdp"},
    {"Scrivel", "Scrivel", 16, 0xE0433, 18, 0, false, false, false, "Scrivel.sdp"},
    {"GlancerWords", "Glancer Words", 34, 0x18F31, 18, 0, false, false, false, "GlancerWords.sdp"},
    {"GlancerChords", "Glancer Chords", 34, 0xD8F33, 18, 0, false, false, false,
     "GlancerChords.sdp"},
    {"GlancerLargePrint", "Glancer Large Print", 32, 0xB01, 30, 0, false, false, false,
     "GlancerLargePrint (Screen).sdp"},
    {"GlancerLargePrint", "Glancer Large Print", 2, 0xC31, 24, 20, false, false, false,
     "GlancerLargePrint (Print).sdp"},
};

struct ProfileList {
    String folder;
    bool readOnly = false;
    std::vector<std::unique_ptr<SongDisplayProfile>> profiles;
    FileError error;
};

ProfileList& theList() {
    static ProfileList list;
    return list;
}

int findProfile(const ProfileList& list, std::string_view name, int typeMask) {
    for (std::size_t i = 0; i < list.profiles.size(); ++i) {
        const SongDisplayProfile& profile = *list.profiles[i];
        if (profile.name() == name && (typeMask == 0 || (profile.type() & typeMask) != 0))
            return int(i);
    }
    return -1;
}

// Makes a built-in profile at the end of the list and writes its file. A
// file of that name that is already there did not load; it is the user's
// and is left for them to mend rather than replaced.
void addBuiltIn(ProfileList& list, const BuiltInProfile& row) {
    auto profile = std::make_unique<SongDisplayProfile>();
    profile->create(row.name, row.title, row.type, row.flags, row.baseSize, row.secondarySize,
                    row.dark, row.useCapoDefaults, row.useTransposeDefaults);
    if (row.file != nullptr && !list.readOnly) {
        if (list.folder.empty()) {
            list.error.record(FileError::Action::Write, row.file, StatusNoFolder);
        } else {
            const String path = joinPath(list.folder, row.file);
            profile->filename(path);
            list.error.record(
                FileError::Action::Write, path,
                writeFileAtomically(path, profile->saveToText(), WriteMode::CreateNew));
        }
    }
    list.profiles.push_back(std::move(profile));
}

}  // namespace

void SongDisplayProfile::setProfileFolder(const String& folder) {
    theList().folder = folder;
}

const String& SongDisplayProfile::profileFolder() {
    return theList().folder;
}

void SongDisplayProfile::setProfileListReadOnly(bool readOnly) {
    theList().readOnly = readOnly;
}

bool SongDisplayProfile::isProfileListReadOnly() {
    return theList().readOnly;
}

void SongDisplayProfile::loadProfileList() {
    ProfileList& list = theList();
    list.profiles.clear();
    list.error.clear();

    if (!list.folder.empty()) {
        const std::optional<std::vector<FolderItem>> items = listFolder(list.folder);
        // The listing gives no reason; a folder that is there but cannot be
        // read is most likely one the user may not read.
        if (!items) {
            list.error.record(FileError::Action::List, list.folder,
                              folderExists(list.folder) ? Status(EACCES) : Status(ENOENT));
        }
        for (const FolderItem& item : items.value_or(std::vector<FolderItem>())) {
            if (!item.isFile || !endsWithIgnoreCase(item.name, ".sdp")) continue;
            auto profile = std::make_unique<SongDisplayProfile>();
            if (profile->loadFromFile(joinPath(list.folder, item.name)) != StatusSuccess) {
                list.error.record(FileError::Action::Read, profile->lastError().path,
                                  profile->lastError().status);
                continue;
            }
            list.profiles.push_back(std::move(profile));
        }
    }

    if (list.profiles.empty()) {
        for (const BuiltInProfile& row : HouseProfiles)
            addBuiltIn(list, row);
    }

    // Which names were missing is settled before any is added, so that a
    // name shared by two program profiles brings both.
    bool missing[std::size(ProgramProfiles)];
    for (std::size_t i = 0; i < std::size(ProgramProfiles); ++i)
        missing[i] = findProfile(list, ProgramProfiles[i].name, 0) < 0;
    for (std::size_t i = 0; i < std::size(ProgramProfiles); ++i) {
        if (missing[i]) addBuiltIn(list, ProgramProfiles[i]);
    }
}

int SongDisplayProfile::getProfileCount() {
    return int(theList().profiles.size());
}

SongDisplayProfile* SongDisplayProfile::getProfile(int index) {
    ProfileList& list = theList();
    if (index < 0 || index >= int(list.profiles.size())) return nullptr;
    return list.profiles[std::size_t(index)].get();
}

SongDisplayProfile* SongDisplayProfile::getProfileByName(std::string_view name, int typeMask) {
    return getProfile(getProfileIndex(name, typeMask));
}

int SongDisplayProfile::getProfileIndex(std::string_view name, int typeMask) {
    if (theList().profiles.empty()) loadProfileList();
    return findProfile(theList(), name, typeMask);
}

SongDisplayProfile* SongDisplayProfile::addProfile(const SongDisplayProfile& profile) {
    ProfileList& list = theList();
    list.profiles.push_back(std::make_unique<SongDisplayProfile>(profile));
    return list.profiles.back().get();
}

const FileError& SongDisplayProfile::lastListError() {
    return theList().error;
}

}  // namespace melodex
