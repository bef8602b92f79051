#include "melodex/app/melodex.h"

#include <memory>

#include "melodex/bible/bible_database.h"
#include "melodex/foundation/file_system.h"
#include "melodex/foundation/string_tables.h"
#include "melodex/library/song_database.h"
#include "melodex/music/notes.h"
#include "melodex/platform/dialogs.h"
#include "melodex/platform/headless_dialogs.h"
#include "melodex/platform/system_info.h"
#include "melodex/song/song.h"
#include "melodex/song/vocabulary.h"

namespace melodex {

namespace {

ProcessLauncher& systemLauncher() {
    static ProcessLauncher launcher;
    return launcher;
}

}  // namespace

Melodex::Melodex() = default;

Melodex::~Melodex() = default;

int Melodex::getSingerType(const String& word) const {
    return singerTypeFromString(word);
}

String Melodex::getSingerTypeAsString(int singers) const {
    return singerTypeToString(singers);
}

String Melodex::getSectionTypeAsString(int type) const {
    return sectionTypeToString(type);
}

int Melodex::getSectionTypeFromString(const String& word) const {
    return sectionTypeFromString(word);
}

String Melodex::getTargetAsString(int bits, const String& separator) const {
    return targetToString(bits, separator);
}

int Melodex::getTargetFromString(const String& words) const {
    return targetFromString(words);
}

int Melodex::getTextStyle(const String& word) const {
    return textStyleFromString(word);
}

String Melodex::getTextStyleAsString(int style) const {
    return textStyleToString(style);
}

int Melodex::getNoteNumber(const String& text, String& rest) const {
    return noteNumber(text, rest);
}

int Melodex::getNoteNumber(const String& text) const {
    return noteNumber(text);
}

bool Melodex::isChords(const String& line) const {
    return melodex::isChords(line);
}

void Melodex::convertToChords(const String& line, std::vector<SongChord>& chords) const {
    melodex::convertToChords(line, chords);
}

void Melodex::addStringTable(const String& path, bool flag) {
    StringTables::instance().addTable(path, flag);
}

String Melodex::loadString(const String& section, const String& id,
                           const String& defaultText) const {
    return StringTables::instance().loadString(section, id, defaultText);
}

String Melodex::getSettingsString(const String& name, const String& defaultValue) const {
    return m_settings.getString(name, defaultValue);
}

Dialogs& Melodex::dialogs() const {
    return m_dialogs ? *m_dialogs : sharedHeadlessDialogs();
}

void Melodex::setDialogs(Dialogs* dialogs) {
    m_dialogs = dialogs;
    // The library shows the same dialogs as the program.
    if (this == &theBaseApp) theSongDB.setDialogs(dialogs);
    if (this == &theBaseApp) theBibleDB.setDialogs(dialogs);
}

ProcessLauncher& Melodex::processLauncher() const {
    return m_launcher ? *m_launcher : systemLauncher();
}

void Melodex::setProcessLauncher(ProcessLauncher* launcher) {
    m_launcher = launcher;
}

String Melodex::siblingProgramFolder() const {
    return m_siblingProgramFolder.empty() ? SystemInfo::programFolder() : m_siblingProgramFolder;
}

void Melodex::setSiblingProgramFolder(const String& folder) {
    m_siblingProgramFolder = folder;
}

bool Melodex::isSongFile(const String& name) const {
    return endsWithIgnoreCase(name, ".song") || endsWithIgnoreCase(name, ".txt");
}

String Melodex::getSongTitle(const String& path) const {
    Song song;
    (void)song.loadFromFile(path);  // a song that does not load is named after its file
    String title = song.info().title();
    return title.empty() ? baseNameOf(path) : title;
}

String Melodex::selectSongFile(const String& initialFolder) {
    FileDialogRequest request;
    request.filter = SongFileOpenFilter;
    request.initialFolder = initialFolder;
    request.fileMustExist = true;
    return dialogs().openFile(request).value_or(String());
}

Song* Melodex::loadSongFile(const String& initialFolder) {
    const String path = selectSongFile(initialFolder);
    if (path.empty()) return nullptr;
    auto song = std::make_unique<Song>();
    if (song->loadFromFile(path) != StatusSuccess) return nullptr;
    return song.release();
}

String Melodex::saveSongFile(Song* song, const String& initialFolder) {
    if (song == nullptr) return String();
    FileDialogRequest request;
    request.filter = SongFileSaveFilter;
    request.proposedName = song->info().title();
    request.initialFolder = initialFolder;
    request.overwritePrompt = true;
    request.pathMustExist = true;
    request.enableSizing = true;
    const std::optional<SaveFileResult> chosen = dialogs().saveFile(request);
    if (!chosen) return String();

    // The filter decides, whatever the user typed: "Hymn.song" saved with
    // the text filter becomes "Hymn.txt".
    const int fileType = chosen->filterIndex == 0 ? 1 : chosen->filterIndex;
    const String path = Song::pathWithFileExtension(chosen->path, fileType);
    if (song->saveToFile(path, fileType) != 0) return String();
    return path;
}

bool Melodex::editSong(const String& path) {
    WaitCursor busy(dialogs());
    const String editor =
        joinPath(siblingProgramFolder(), SystemInfo::executableName(EditorProgramName));
    // Full precision: an editor that saves within the second of opening must
    // still count as a change.
    const std::optional<std::int64_t> before = fileModificationStamp(path);
    const LaunchResult result =
        processLauncher().start(editor, {"--exclusive", path}, LaunchWait::UntilExit);
    if (!result.started) return false;
    return fileModificationStamp(path) != before;
}

bool Melodex::viewSong(const String& path) {
    WaitCursor busy(dialogs());
    const String viewer =
        joinPath(siblingProgramFolder(), SystemInfo::executableName(ViewerProgramName));
    return processLauncher().start(viewer, {path}, LaunchWait::No).started;
}

bool Melodex::editSong(SongDBFileEntry* entry) {
    if (!entry) return false;
    const bool changed = editSong(entry->path());
    if (changed) entry->database()->reload(entry);
    return changed;
}

bool Melodex::viewSong(SongDBFileEntry* entry) {
    return entry && viewSong(entry->path());
}

}  // namespace melodex
