#pragma once

// A song library of its own for one test, over the temporary folder "db"
// (songs in "db/Song Files"), with a made-up host name and scripted dialogs,
// and helpers that write song files and read back what the library holds.

#include <gtest/gtest.h>

#include "melodex/foundation/file_system.h"
#include "melodex/foundation/ini_file.h"
#include "melodex/library/song_database.h"
#include "melodex/song/song.h"
#include "support/scripted_dialogs.h"
#include "support/temp_folder.h"

namespace melodex::test {

class LibraryTest : public ::testing::Test {
protected:
    LibraryTest() {
        createFolders(libraryFile(""));
        m_db.setDatabaseFolder(m_folder.file("db"));
        m_db.setHostName("CHOIRPC");
        m_db.setDialogs(&m_dialogs);
    }

    String libraryFile(const String& name) const { return m_folder.file("db/Song Files/" + name); }
    String indexFile(const String& host = "CHOIRPC") const {
        return m_folder.file("db/songdb-" + host + ".ini");
    }
    IniFile readIndex(const String& host = "CHOIRPC") const {
        IniFile index;
        EXPECT_EQ(index.load(indexFile(host)), 0u);
        return index;
    }

    // Writes a song XML file of one section of `lines` at `name` in the
    // temporary folder; its path. Without a uuid the library gives one.
    String writeSong(const String& name, const String& title, const StringArray& lines,
                     const String& uuid = "") const {
        String xml = uuid.empty() ? "<song>" : "<song><uuid>" + uuid + "</uuid>";
        xml += "<info><title>" + title + "</title></info><block>";
        for (const String& line : lines)
            xml += "<line>" + line + "</line>";
        return m_folder.write(name, xml + "</block></song>");
    }

    // The library's text entries in list order.
    StringArray texts() const {
        StringArray out;
        for (const SongDBTextEntry* entry : m_db.entries())
            out.push_back(entry->text());
        return out;
    }

    StringArray songFiles() const {
        StringArray names;
        for (const FolderItem& item :
             listFolder(libraryFile("")).value_or(std::vector<FolderItem>{}))
            names.push_back(item.name);
        return names;
    }

    TempFolder m_folder;
    SongDatabase m_db;
    ScriptedDialogs m_dialogs;
};

}  // namespace melodex::test
