#pragma once

// The configuration of every program of the family: the product values, the
// string tables, and the data folders in which songs, display profiles,
// images, Bibles, media and logs live. Its one instance is the global
// theAppConfig (globals.h).
//
//     if (!theAppConfig.init(ProgramId)) return 1;  // the user has been told
//     theSongDB.open();  // in theAppConfig.getSongDatabaseDir()
//
// Construction looks for the product file "product.bcf" in the program's
// folder, then in its parent, then in share/melodex of its prefix, and
// registers the library's string table
// "Melodex.ini". init() registers the program's own string table, settles
// each data folder from the per-user settings (a setting names the folder;
// without one it lies under the user data folder, itself under the base
// user folder), and creates the folders that are missing.

#include "melodex/app/app_config.h"
#include "melodex/foundation/text.h"

namespace melodex {

class SongConfig : public AppConfig {
public:
    // The configuration of the running program.
    SongConfig();
    // The configuration of the program at `programPath` (tests, hosts that
    // lay their files out differently).
    explicit SongConfig(String programPath);
    SongConfig(const SongConfig& other);
    SongConfig& operator=(const SongConfig& other);
    ~SongConfig() override;

    // Settles and creates the data folders. False when the product file was
    // not found: the user is shown "ReinstallNeeded" and the program is
    // expected to end. Folders that cannot be created are not reported here;
    // the file operations in them fail later on their own.
    bool init(int programId);

    // True when the product file was found and read.
    bool isConfigured() const { return m_configured; }
    int programId() const { return m_programId; }

    const String& getUserDataDir() const { return m_userDataDir; }
    const String& getUserProfileDir() const { return m_displayProfilesDir; }
    const String& getSongDatabaseDir() const { return m_songDatabaseDir; }
    const String& getImageDatabaseDir() const { return m_imageDatabaseDir; }
    const String& getBibleDatabaseDir() const { return m_bibleDatabaseDir; }
    const String& getMediaDatabaseDir() const { return m_mediaDatabaseDir; }
    const String& getLogFilesDir() const { return m_logFilesDir; }

    // The library's own song files: "Song Files" in the song database folder.
    String getSongDatabaseFilesDir() const;

private:
    void configure();

    bool m_configured = false;
    int m_programId = 0;
    String m_userDataDir;
    String m_displayProfilesDir;
    String m_songDatabaseDir;
    String m_imageDatabaseDir;
    String m_bibleDatabaseDir;
    String m_mediaDatabaseDir;
    String m_logFilesDir;
};

// The one instance, defined with the other globals (globals.h).
extern SongConfig theAppConfig;

}  // namespace melodex
