#pragma once

// The application services object of the programs (its one instance is the
// global theBaseApp): the services that every program of the family shares.
//
//     theBaseApp.addStringTable(folder + "/Melodex.ini", true);
//     String caption = theBaseApp.loadString("SongFileType", "standard", "Song");
//     std::unique_ptr<Song> song(theBaseApp.loadSongFile(""));  // open dialog
//     if (theBaseApp.editSong(path)) reloadTheSong();            // the editor changed it
//     theBaseApp.getSectionTypeFromString("Chorus");              // 2
//
// - String tables: user-visible texts looked up by section and id.
// - Settings: the per-user values the programs share.
// - Song files: choosing, loading and saving them through the dialogs that
//   the program supplies (setDialogs; HeadlessDialogs until then), and
//   handing a song to the editor "Scrivel" or the viewer "Glancer", which
//   lie beside the running program.
// - Conversions between codes and words, note names and chord lines. They
//   forward to free functions (song/vocabulary.h, music/notes.h,
//   music/song_chord.h), which the model uses directly, and keep no state.

#include <vector>

#include "melodex/foundation/text.h"
#include "melodex/music/song_chord.h"
#include "melodex/platform/process_launcher.h"
#include "melodex/platform/settings_store.h"

namespace melodex {

class Dialogs;
class Song;
class SongDBFileEntry;

// The programs that editSong() and viewSong() start, without the system's
// executable suffix.
inline constexpr const char* EditorProgramName = "Scrivel";
inline constexpr const char* ViewerProgramName = "Glancer";

class Melodex {
public:
    Melodex();
    Melodex(const Melodex&) = delete;
    Melodex& operator=(const Melodex&) = delete;
    virtual ~Melodex();

    // --- Vocabulary ----------------------------------------------------------

    // Singer word to code; 0 for an unknown word.
    int getSingerType(const String& word) const;
    // Singer code to word; "Default" for an unknown code.
    String getSingerTypeAsString(int singers) const;
    // Section code to word; "Verse" for an unknown code.
    String getSectionTypeAsString(int type) const;
    // Section word to code; 1 for an unknown word.
    int getSectionTypeFromString(const String& word) const;
    // Target bits to words joined by `separator`; "All" for 0 and 7.
    String getTargetAsString(int bits, const String& separator) const;
    // ","-separated words to target bits; "All" gives 0.
    int getTargetFromString(const String& words) const;
    // The older text-style conversions; not inverses of each other.
    int getTextStyle(const String& word) const;
    String getTextStyleAsString(int style) const;

    // --- Notes and chords ----------------------------------------------------

    // The note number at the start of `text` (-1 when none); `rest`
    // receives the text without the note name.
    int getNoteNumber(const String& text, String& rest) const;
    int getNoteNumber(const String& text) const;
    bool isChords(const String& line) const;
    // Appends the chords of a line of chords.
    void convertToChords(const String& line, std::vector<SongChord>& chords) const;

    // --- String tables -------------------------------------------------------

    // Registers a table file; a missing file is ignored. With `flag` the
    // table is searched before those registered earlier.
    void addStringTable(const String& path, bool flag);
    String loadString(const String& section, const String& id, const String& defaultText) const;

    // --- Settings ------------------------------------------------------------

    // The per-user setting of that name, or `defaultValue` when it is not set.
    String getSettingsString(const String& name, const String& defaultValue) const;

    // --- The program's user interface ------------------------------------------

    // The dialogs the library shows: the program's own once it has set them,
    // else a headless set that cancels every chooser and writes messages to
    // stderr.
    Dialogs& dialogs() const;
    // Not owned; the object must outlive its use here. Null restores the
    // headless set.
    void setDialogs(Dialogs* dialogs);

    // What starts the editor and the viewer. Not owned; null restores the
    // system's launcher.
    ProcessLauncher& processLauncher() const;
    void setProcessLauncher(ProcessLauncher* launcher);

    // The folder in which the editor and the viewer are looked for: the
    // running program's folder unless set (hosts with another layout, tests).
    String siblingProgramFolder() const;
    void setSiblingProgramFolder(const String& folder);

    // --- Song files ----------------------------------------------------------

    // True when the name ends, ignoring case, with ".song" or ".txt".
    bool isSongFile(const String& name) const;

    // The title of the song in that file; the file's name without folder
    // and extension when the song has none or does not load.
    String getSongTitle(const String& path) const;

    // Asks for one existing song file, starting in `initialFolder` when it is
    // not empty; the chosen path, or empty on cancel.
    String selectSongFile(const String& initialFolder);

    // Asks for a song file and loads it. The caller owns the song; null on
    // cancel or when the file cannot be read.
    Song* loadSongFile(const String& initialFolder);

    // Asks where to save the song, proposing its title as the name. The
    // chosen filter decides the file type and the extension, whatever the
    // user typed. The path written, or empty on cancel or when the file
    // cannot be written.
    String saveSongFile(Song* song, const String& initialFolder);

    // Opens the song file in the editor and waits until the editor ends.
    // True when the file changed meanwhile (the user saved it); false when
    // it did not or the editor could not be started.
    bool editSong(const String& path);

    // Opens the song file in the viewer without waiting; true when the viewer
    // started.
    bool viewSong(const String& path);

    // The same for a song of the library. When the editor changed the file,
    // the library reads it again (SongDatabase::reload), so that it lists
    // the new title, first line and index entries. False for null.
    bool editSong(SongDBFileEntry* entry);
    bool viewSong(SongDBFileEntry* entry);

private:
    Dialogs* m_dialogs = nullptr;
    ProcessLauncher* m_launcher = nullptr;
    String m_siblingProgramFolder;
    SettingsStore m_settings;
};

// The one instance, defined with the other globals (globals.h).
extern Melodex theBaseApp;

}  // namespace melodex
