#pragma once

// A song library of its own for one test: a SongDatabase over a temporary
// song database folder (with its "Song Files" folder) and a made-up host
// name, and helpers that write song files for it.

#include <chrono>
#include <filesystem>

#include <gtest/gtest.h>

#include "melodex/foundation/file_system.h"
#include "melodex/foundation/ini_file.h"
#include "melodex/library/song_database.h"
#include "melodex/song/song.h"
#include "support/temp_folder.h"

namespace melodex::test {

class LibraryTest : public ::testing::Test {
protected:
    LibraryTest() {
        createFolders(filesFolder());
        m_db.setDatabaseFolder(databaseFolder());
        m_db.setHostName("CHOIRPC");
    }

    String databaseFolder() const { return m_folder.file("Song Database"); }
    String filesFolder() const { return m_folder.file("Song Database/Song Files"); }
    String libraryFile(const String& name) const { return filesFolder() + "/" + name; }
    String indexFile(const String& host = "CHOIRPC") const {
        return databaseFolder() + "/songdb-" + host + ".ini";
    }

    // A song with a title and sections of lyric lines; uuid and update time
    // are given when saved.
    static Song makeSong(const String& title, const std::vector<StringArray>& sections) {
        Song song;
        if (!title.empty()) song.info().setTitle(title);
        for (const StringArray& lines : sections) {
            auto* section = new SongSection(1);
            for (const String& text : lines) {
                auto* line = new SongLine();
                line->setText(text);
                section->addLine(line);
            }
            song.addSection(section);
        }
        return song;
    }

    // Writes a song file (XML) and returns its path; `name` is relative to
    // the temporary folder.
    String writeSong(const String& name, Song song) const {
        const String path = m_folder.file(name);
        createFolders(folderOf(path));
        EXPECT_EQ(song.saveToFile(path, SongFileType::Song), 0u) << path;
        return path;
    }
    String writeSong(const String& name, const String& title, const StringArray& lines) const {
        return writeSong(name, makeSong(title, {lines}));
    }

    // Sets a file's modification time `seconds` away from now.
    static void touch(const String& path, int seconds) {
        std::filesystem::last_write_time(
            path, std::filesystem::file_time_type::clock::now() + std::chrono::seconds(seconds));
    }

    static IniFile readIndex(const String& path) {
        IniFile index;
        EXPECT_EQ(index.load(path), 0u) << path;
        return index;
    }

    // The texts of the library's text entries in list order.
    StringArray texts() const {
        StringArray out;
        for (const SongDBTextEntry* entry : m_db.entries())
            out.push_back(entry->text());
        return out;
    }

    StringArray songFiles() const {
        StringArray names;
        for (const FolderItem& item : listFolder(filesFolder()).value_or(std::vector<FolderItem>{}))
            names.push_back(item.name);
        return names;
    }

    TempFolder m_folder;
    SongDatabase m_db;
};

}  // namespace melodex::test
