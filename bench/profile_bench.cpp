// The costs of display profiles where a program pays them: spelling a chord
// under a profile (once per chord drawn, so thousands per page turn) and
// reading the sixteen built-in profiles from their files at start-up. The
// profile files are written into a temporary folder on first use and
// removed at exit.

#include <stdlib.h>

#include <filesystem>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "melodex/display/chord_display.h"
#include "melodex/display/song_display_profile.h"
#include "melodex/foundation/file_system.h"
#include "melodex/music/song_chord.h"

namespace {

using namespace melodex;
namespace fs = std::filesystem;

SongDisplayProfile makeProfile(int flags) {
    SongDisplayProfile profile;
    profile.create("Chords", "Chords", 3, flags, 18, 0, false, false, false);
    profile.setCurrentKey(8);
    return profile;
}

void BM_GetDisplayString(benchmark::State& state) {
    const SongDisplayProfile profile = makeProfile(0xD8F33);
    const SongChord chord("F#m7/C#");
    for (auto _ : state)
        benchmark::DoNotOptimize(chord.getDisplayString(&profile, 2, -1, 0));
}
BENCHMARK(BM_GetDisplayString);

// The longest form: the sounding chord and the capo shape in brackets.
void BM_GetDisplayStringCapoInBrackets(benchmark::State& state) {
    const SongDisplayProfile profile = makeProfile(0xD8F33 | 0x40);
    const SongChord chord("F#m7/C#");
    for (auto _ : state)
        benchmark::DoNotOptimize(chord.getDisplayString(&profile, 2, -1, -3));
}
BENCHMARK(BM_GetDisplayStringCapoInBrackets);

void BM_ChordDisplay(benchmark::State& state) {
    SongDisplayProfile profile = makeProfile(0xD8F33);
    const ChordDisplay display(profile, 5, 0, 3);
    const SongChord chord("Bbsus4");
    for (auto _ : state)
        benchmark::DoNotOptimize(display(chord));
}
BENCHMARK(BM_ChordDisplay);

// A folder holding the sixteen built-in profiles as files: the fifteen the
// list writes, and the printed Large Print one, which it never writes.
class ProfileFolder {
public:
    ProfileFolder() {
        char pattern[] = "/tmp/melodex-profile-bench-XXXXXX";
        m_path = ::mkdtemp(pattern);
        SongDisplayProfile::setProfileFolder(m_path);
        SongDisplayProfile::loadProfileList();
        if (SongDisplayProfile* print = SongDisplayProfile::getProfileByName("LargePrint", 2))
            (void)print->saveToFile(joinPath(m_path, "LargePrint (Print).sdp"));
        for (const FolderItem& item : listFolder(m_path).value_or(std::vector<FolderItem>()))
            m_files.push_back(joinPath(m_path, item.name));
    }
    ~ProfileFolder() {
        std::error_code error;
        fs::remove_all(m_path, error);
    }

    const String& path() const { return m_path; }
    const std::vector<String>& files() const { return m_files; }

private:
    String m_path;
    std::vector<String> m_files;
};

const ProfileFolder& profileFolder() {
    static const ProfileFolder folder;
    return folder;
}

void BM_LoadSixteenBuiltInProfiles(benchmark::State& state) {
    const ProfileFolder& folder = profileFolder();
    for (auto _ : state) {
        for (const String& file : folder.files()) {
            SongDisplayProfile profile;
            benchmark::DoNotOptimize(profile.loadFromFile(file));
        }
    }
    state.counters["files"] = double(folder.files().size());
}
BENCHMARK(BM_LoadSixteenBuiltInProfiles)->Unit(benchmark::kMillisecond);

// What a program does at start-up: list the folder and load every profile.
void BM_LoadProfileList(benchmark::State& state) {
    SongDisplayProfile::setProfileFolder(profileFolder().path());
    for (auto _ : state) {
        SongDisplayProfile::loadProfileList();
        benchmark::DoNotOptimize(SongDisplayProfile::getProfileCount());
    }
    state.counters["profiles"] = double(SongDisplayProfile::getProfileCount());
}
BENCHMARK(BM_LoadProfileList)->Unit(benchmark::kMillisecond);

void BM_SaveToText(benchmark::State& state) {
    const SongDisplayProfile profile = makeProfile(0xD8F33);
    for (auto _ : state)
        benchmark::DoNotOptimize(profile.saveToText());
}
BENCHMARK(BM_SaveToText);

}  // namespace
