#include "melodex/app/song_config.h"

#include <array>

#include "melodex/app/melodex.h"
#include "melodex/bible/bible_database.h"
#include "melodex/display/song_display_profile.h"
#include "melodex/foundation/file_system.h"
#include "melodex/library/song_database.h"
#include "melodex/platform/dialogs.h"

namespace melodex {

namespace {

struct ProductDefault {
    const char* name;
    const char* value;
};

// What the programs call themselves when no product file says otherwise.
constexpr std::array<ProductDefault, 11> ProductDefaults{{
    {"PRODUCT_NAME", "Cantorix"},
    {"PRODUCT_TITLE", "Cantorix Song Presentation"},
    {"PRODUCT_MAJOR_VERSION", "1"},
    {"PRODUCT_MINOR_VERSION", "0"},
    {"PRODUCT_REVISION", "0"},
    {"PRODUCT_BUILD", "0"},
    {"PRODUCT_COMPANY", "Brackwell"},
    {"PRODUCT_COMPANY_URL", "https://brackwell.example/"},
    {"PRODUCT_SUPPORT_NAME", "Brackwell Technical Support"},
    {"PRODUCT_SUPPORT_URL", "https://brackwell.example/support"},
    {"PRODUCT_PURCHASE_URL", "https://brackwell.example/purchase"},
}};

constexpr const char* ProductFileName = "product.bcf";
constexpr const char* LibraryStringTable = "Melodex.ini";

// The text lacks an "if"; it is the message as the family has always shown
// it, and string tables that translate it match it word for word.
constexpr const char* ReinstallNeededText =
    "<b>There is a problem with the software configuration.</b><p>Please try reinstalling this "
    "software and this message continues to appear please contact Brackwell Technical Support.";

// Reads a folder's setting, falling back to `defaultPath`, and creates the
// folder with its parents when it is missing. An empty setting counts as
// none: taken as it is, it would put the data in whatever folder the program
// happens to run in.
String settleFolder(const ConfigKey& settings, const char* settingName, const String& defaultPath) {
    String folder = settings.getString(settingName, defaultPath);
    if (strip(folder).empty()) folder = defaultPath;
    createFolders(folder);
    return folder;
}

}  // namespace

SongConfig::SongConfig() : AppConfig() {
    configure();
}

SongConfig::SongConfig(String programPath) : AppConfig(std::move(programPath)) {
    configure();
}

SongConfig::SongConfig(const SongConfig& other) = default;

SongConfig& SongConfig::operator=(const SongConfig& other) = default;

SongConfig::~SongConfig() = default;

void SongConfig::configure() {
    for (const ProductDefault& value : ProductDefaults)
        setProductValue(value.name, value.value);

    // Beside the program, in the folder above it (the family's own layout),
    // or among the installed data of its prefix.
    const String programFolder = this->programFolder();
    for (const String& folder : {programFolder, folderOf(programFolder),
                                 joinPath(folderOf(programFolder), "share/melodex")}) {
        const String candidate = joinPath(folder, ProductFileName);
        if (!folder.empty() && fileExists(candidate) && loadProductFile(candidate)) {
            m_configured = true;
            break;
        }
    }

    setProductInfo(
        ProductInfo{getProductValue("PRODUCT_NAME"), getProductNumber("PRODUCT_MAJOR_VERSION"),
                    getProductNumber("PRODUCT_MINOR_VERSION"), getProductNumber("PRODUCT_REVISION"),
                    getProductNumber("PRODUCT_BUILD")});

    theBaseApp.addStringTable(getResourceFilePath(LibraryStringTable), true);
}

bool SongConfig::init(int programId) {
    theBaseApp.addStringTable(getResourceFilePath(baseNameOf(programPath()) + ".ini"), true);

    if (!m_configured) {
        MessageRequest message;
        message.text = theBaseApp.loadString("setup", "ReinstallNeeded", ReinstallNeededText);
        message.icon = MessageIcon::Error;
        theBaseApp.dialogs().messageBox(message);
        return false;
    }

    m_programId = programId;
    createFolders(getSharedDataFolder());

    const ConfigKey settings = getSettings();
    m_userDataDir =
        settleFolder(settings, "UserDataDir", joinPath(getBaseUserFolder(), "Cantorix"));
    m_displayProfilesDir =
        settleFolder(settings, "DisplayProfilesDir", joinPath(m_userDataDir, "Display Profiles"));
    m_songDatabaseDir =
        settleFolder(settings, "SongDatabaseDir", joinPath(m_userDataDir, "Song Database"));
    m_imageDatabaseDir =
        settleFolder(settings, "ImageDatabaseDir", joinPath(m_userDataDir, "Image Database"));
    m_bibleDatabaseDir =
        settleFolder(settings, "BibleDatabaseDir", joinPath(m_userDataDir, "Bible Database"));
    m_mediaDatabaseDir =
        settleFolder(settings, "MediaDatabaseDir", joinPath(m_userDataDir, "Media Database"));
    m_logFilesDir = settleFolder(settings, "LogFilesDir", joinPath(m_userDataDir, "Log Files"));

    createFolders(getSongDatabaseFilesDir());
    // The program's configuration points the shared library, the Bible
    // database and the profile list at their folders.
    if (this == &theAppConfig) {
        theSongDB.setDatabaseFolder(m_songDatabaseDir);
        theBibleDB.setDatabaseFolder(m_bibleDatabaseDir);
        SongDisplayProfile::setProfileFolder(m_displayProfilesDir);
    }
    return true;
}

String SongConfig::getSongDatabaseFilesDir() const {
    return joinPath(m_songDatabaseDir, SongFilesFolderName);
}

}  // namespace melodex
