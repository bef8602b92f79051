#include "melodex/library/song_db_file_entry.h"

#include <string>

#include "melodex/foundation/file_system.h"
#include "melodex/foundation/ini_file.h"
#include "melodex/library/song_database.h"
#include "melodex/library/song_db_text_entry.h"
#include "melodex/song/song.h"

namespace melodex {

namespace {

constexpr std::string_view TimePattern = "%Y%m%d%H%M%S";
constexpr std::string_view Blanks = " \t\n\r";

// A song read as plain text from a file that holds control characters is
// binary data that the lenient text reader happened to accept.
bool holdsControlCharacters(const Song& song) {
    for (int s = 0; s < song.getSectionCount(); ++s) {
        const SongSection& section = *song.getSection(s);
        for (int l = 0; l < section.getLineCount(); ++l) {
            for (char c : section.getLine(l)->text()) {
                if (static_cast<unsigned char>(c) < 32 && c != '\t') return true;
            }
        }
    }
    return false;
}

}  // namespace

SongDBFileEntry::SongDBFileEntry() : m_database(&theSongDB) {}

SongDBFileEntry::SongDBFileEntry(SongDatabase* database)
    : m_database(database ? database : &theSongDB) {}

SongDBFileEntry::SongDBFileEntry(const SongDBFileEntry& other) = default;
SongDBFileEntry& SongDBFileEntry::operator=(const SongDBFileEntry& other) = default;
SongDBFileEntry::~SongDBFileEntry() = default;

String SongDBFileEntry::path() const {
    return joinPath(m_database->songFilesFolder(), m_filename);
}

String SongDBFileEntry::categoriesAsString(const String& separator) const {
    return join(m_categories, separator);
}

Song* SongDBFileEntry::song() {
    if (!m_song) {
        m_song = std::make_shared<Song>();
        // A file that does not read leaves the song empty; the entry keeps
        // it all the same, so callers always get a song.
        (void)m_song->loadFromFile(path());
    }
    return m_song.get();
}

std::shared_ptr<Song> SongDBFileEntry::sharedSong() {
    song();
    return m_song;
}

void SongDBFileEntry::clear() {
    m_song.reset();
    m_uuid.clear();
    m_filename.clear();
    m_author.clear();
    m_key.clear();
    m_title.clear();
    m_firstline.clear();
    m_texts.clear();
    m_categories.clear();
}

bool SongDBFileEntry::load(const String& path) {
    if (path.empty()) return m_song != nullptr;
    if (!m_song) m_song = std::make_shared<Song>();
    if (!m_database->readLibrarySong(*m_song, path, {})) {
        m_song.reset();
        return false;
    }
    fillFromSong(path);
    return true;
}

bool SongDBFileEntry::loadFromSong(std::shared_ptr<Song> song, const String& path) {
    if (!song) return false;
    m_song = std::move(song);
    fillFromSong(path);
    return true;
}

void SongDBFileEntry::fillFromSong(const String& path) {
    const Song& song = *m_song;
    const SongInfo& info = song.info();
    m_filename = fileNameOf(path);
    m_uuid = song.uuid();
    m_author = info.author();
    m_updated = song.updated();
    m_key = info.keyName(0);
    m_tempo = info.getAttribute("tempo");
    m_timesignature = info.getAttribute("timesignature");
    // The title and first line fields stay as they are: they are filled
    // from the index only, and the index is written from the song.

    const String firstLine = firstLineOf(song);
    String title = info.title();
    if (title.empty()) title = firstLine;
    if (!title.empty()) addText(SongDBTextEntry::Title, title);
    if (!firstLine.empty()) addText(SongDBTextEntry::FirstLine, firstLine);
    for (int i = 0; i < info.getIndexCount(); ++i) {
        if (!info.getIndex(i).empty()) addText(SongDBTextEntry::IndexEntry, info.getIndex(i));
    }

    m_categories.clear();
    for (int i = 0; i < info.getCategoryCount(); ++i) {
        if (!info.getCategory(i).empty()) m_categories.push_back(info.getCategory(i));
    }
}

void SongDBFileEntry::save(ConfigKey* key) {
    if (!key) return;
    Song& song = *this->song();
    const SongInfo& info = song.info();
    key->setString("filename", m_filename);
    key->setString("uuid", song.uuid());
    key->setString("updated", m_updated.format(TimePattern));
    key->setString("title", info.title());
    key->setString("author", info.author());
    key->setString("key", info.keyName(0));
    key->setString("tempo", info.getAttribute("tempo"));
    key->setString("timesignature", info.getAttribute("timesignature"));
    const String firstLine = firstLineOf(song);
    if (!firstLine.empty()) key->setString("firstline", firstLine);
    for (int i = 0; i < info.getIndexCount(); ++i)
        key->setString("index" + std::to_string(i + 1), info.getIndex(i));
    for (int i = 0; i < info.getCategoryCount(); ++i)
        key->setString("category" + std::to_string(i + 1), info.getCategory(i));
}

bool SongDBFileEntry::load(const ConfigKey* key) {
    return load(key, nullptr);
}

bool SongDBFileEntry::load(const ConfigKey* key,
                           const std::unordered_set<std::string_view>* present) {
    if (!key) return false;
    const ConfigValue* filename = key->findValue("filename");
    m_filename = filename ? filename->value() : key->name() + ".song";
    // The index is data: a name that is not a plain file name counts as a
    // missing file, so that nothing outside the song files folder is ever
    // read, let alone deleted by removeEntry.
    if (!isPlainFileName(m_filename)) return false;
    if (present ? !present->contains(m_filename) : !fileExists(path())) return false;

    auto read = [key](std::string_view name, String& field) {
        if (const ConfigValue* value = key->findValue(name)) field = value->value();
    };
    read("uuid", m_uuid);
    // The section is named by the uuid: an entry without a "uuid" value
    // takes that name, so that the library can still find and remove it.
    if (m_uuid.empty()) m_uuid = key->name();
    read("author", m_author);
    read("key", m_key);
    read("tempo", m_tempo);
    read("timesignature", m_timesignature);
    if (const ConfigValue* updated = key->findValue("updated")) {
        if (auto time = LocalTime::parse(updated->value())) m_updated = *time;
    }

    // Title, first line, then index1, index2 ... up to the first missing
    // one. A text that repeats one taken before (ignoring case) adds nothing
    // and sets nothing: a first line equal to the title leaves firstline
    // empty, and the index relies on that.
    m_title.clear();
    m_firstline.clear();
    StringArray taken;
    for (int n = 0;; ++n) {
        const String name = n == 0   ? String("title")
                            : n == 1 ? String("firstline")
                                     : "index" + std::to_string(n - 1);
        const ConfigValue* value = key->findValue(name);
        if (!value) {
            if (n < 2) continue;
            break;
        }
        String text = strip(value->value(), Blanks);
        if (text.empty()) continue;
        bool repeated = false;
        for (const String& before : taken) {
            if (equalsIgnoreCase(before, text)) {
                repeated = true;
                break;
            }
        }
        if (repeated) continue;
        const int type = n < 2 ? n : SongDBTextEntry::IndexEntry;
        addText(type, text);
        if (type == SongDBTextEntry::Title) m_title = text;
        if (type == SongDBTextEntry::FirstLine) m_firstline = text;
        taken.push_back(std::move(text));
    }

    m_categories.clear();
    for (int n = 1;; ++n) {
        const ConfigValue* value = key->findValue("category" + std::to_string(n));
        if (!value) break;
        String category = strip(value->value(), Blanks);
        if (!category.empty()) m_categories.push_back(std::move(category));
    }

    m_valid = true;
    return true;
}

String SongDBFileEntry::listedTitle(const Song& song) {
    String title = strip(song.info().title(), Blanks);
    if (!title.empty()) return title;
    // A plain-text song has no title: the name people gave its file is the
    // best one it has, and the one they will look it up by.
    if (song.loadedFileType() == SongFileType::Text && !song.filename().empty())
        return baseNameOf(song.filename());
    return firstLineOf(song);
}

String SongDBFileEntry::listedTitle() const {
    if (!m_title.empty()) return m_title;
    for (const SongDBTextEntry* text : m_texts) {
        if (text->type() != SongDBTextEntry::IndexEntry) return text->text();
    }
    return baseNameOf(m_filename);
}

String SongDBFileEntry::firstLineOf(const Song& song) {
    // Only the first section counts, however many there are: the index has
    // always been written that way.
    if (song.getSectionCount() == 0) return {};
    const SongSection& first = *song.getSection(0);
    for (int i = 0; i < first.getLineCount(); ++i) {
        String text = strip(first.getLine(i)->text(), Blanks);
        if (!text.empty()) return text;
    }
    return {};
}

bool SongDBFileEntry::isSong(const Song& song) {
    switch (song.loadedFileType()) {
        case 0:
            // Well-formed XML of another kind: nothing of a song was read.
            return false;
        case SongFileType::Text:
            return song.getSectionCount() > 0 && !holdsControlCharacters(song);
        default:
            return true;
    }
}

bool SongDBFileEntry::isUnreadMarkup(const Song& song) {
    if (song.loadedFileType() != SongFileType::Text || song.getSectionCount() == 0) return false;
    const SongSection& first = *song.getSection(0);
    return first.getLineCount() > 0 && startsWithIgnoreCase(first.getLine(0)->text(), "<");
}

bool SongDBFileEntry::hasUsableUuid(const Song& song) {
    return hasUsableUuidText(song.uuid());
}

bool SongDBFileEntry::hasUsableUuidText(const String& uuid) {
    if (uuid.empty() || uuid.size() > 64) return false;
    for (char c : uuid) {
        const bool usable = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') ||
                            (c >= 'A' && c <= 'Z') || c == '-' || c == '{' || c == '}';
        if (!usable) return false;
    }
    return true;
}

SongDBTextEntry* SongDBFileEntry::addText(int type, const String& text) {
    return m_database->addTextEntry(this, type, text);
}

}  // namespace melodex
