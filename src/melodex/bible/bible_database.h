#pragma once

// The installed Bibles: every Bible folder directly inside the Bible
// database folder. There is no index: open() scans the folder, loads each
// Bible's bible.ini (books are read when first asked for) and sorts the
// Bibles by title, ignoring blanks and case. The one instance the programs
// share is the global theBibleDB.
//
//     theBibleDB.open();
//     for (Bible* bible : theBibleDB.bibles())
//         std::cout << bible->title() << (bible->hidden() ? " (hidden)" : "") << '\n';
//     if (!theBibleDB.importFile("/home/ann/kjv.xmm", false, false))
//         std::cerr << theBibleDB.lastError().message() << '\n';
//
// An import reads a ".bbl" folder or an XML Bible file and writes it as a
// new Bible folder named after its title ("KJV", then "KJV 2", "KJV 3" ...
// when the name is taken). The folder is written under a hidden name beside
// its final place and renamed into place when complete, so a failed or
// interrupted import never leaves half a Bible installed. Removing a Bible
// deletes its folder, and only a folder that lies directly in the database
// folder and holds a bible.ini.
//
// The database owns its Bibles; a pointer handed out stays valid until that
// Bible is removed or the database is closed or opened again. The folder is
// the one set with setDatabaseFolder() (theAppConfig.init() sets
// theBibleDB's); the dialogs are the ones set with setDialogs(), else a
// headless set.

#include <functional>
#include <memory>
#include <ranges>
#include <string_view>
#include <vector>

#include "melodex/bible/bible.h"
#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"

namespace melodex {

class Dialogs;

class BibleDatabase {
public:
    using ImportProgress = Bible::Progress;

    BibleDatabase();
    BibleDatabase(const BibleDatabase&) = delete;
    BibleDatabase& operator=(const BibleDatabase&) = delete;
    // Closes the database.
    virtual ~BibleDatabase();

    // The Bible database folder; takes effect at the next open() or import.
    void setDatabaseFolder(const String& folder) { m_folder = folder; }
    const String& databaseFolder() const { return m_folder; }

    // The dialogs of the program (not owned; they must outlive their use
    // here); null for the headless set.
    void setDialogs(Dialogs* dialogs) { m_dialogs = dialogs; }
    Dialogs& dialogs() const;

    // Clears changed and scans the folder: every sub-folder whose name does
    // not start with "." and that holds a bible.ini with at least one book.
    // A missing folder gives an empty set. Always 0.
    unsigned open();
    // Deletes every Bible; the disk is not touched. Always 0.
    unsigned close();

    // The Bibles in title order after open(); imports are appended at the
    // end until the next open():
    //     for (Bible* bible : theBibleDB.bibles()) ...
    auto bibles() const {
        return std::views::transform(
            m_bibles, [](const std::unique_ptr<Bible>& bible) { return bible.get(); });
    }
    int bibleCount() const { return int(m_bibles.size()); }

    // The Bibles a user's word names: those whose folder is called that
    // (ignoring case), else those whose title is that (ignoring case and
    // blanks, as the list is sorted). Several when titles repeat; empty when
    // none matches.
    std::vector<Bible*> findBibles(std::string_view name) const;

    bool changed() const { return m_changed; }
    // Sets the flag whatever the argument: the programs have always relied
    // on not being able to clear it but through open().
    void changed(bool) { m_changed = true; }

    // Imports a folder of ".bbl" files, showing the wait cursor. False when
    // the folder cannot be listed or holds no ".bbl" file directly, or when
    // the Bible could not be written. A folder whose ".bbl" files all have
    // names outside the 66 English book names installs a Bible without
    // books, as the family's programs always have; importPath() refuses it.
    bool importFolder(const String& folder, const ImportProgress& progress = {});

    // Imports an XML Bible file. The two flags are accepted and not
    // consulted. False when the file holds no Bible or it could not be
    // written.
    bool importFile(const String& path, bool flag1, bool flag2,
                    const ImportProgress& progress = {});

    // The import for a path a user names: a folder as importFolder, a file
    // as importFile. A folder without a ".bbl" file named after a book, and
    // a single ".bbl" file (import its folder), are refused with
    // BibleStatusFailed in lastError().
    bool importPath(const String& path, const ImportProgress& progress = {});

    // Ask through the dialogs for XML Bible files (several at once) or a
    // ".bbl" folder, then import; cancel does nothing, failures are not
    // reported.
    void selectAndImportFiles();
    void selectAndImportFolder();

    // Takes the Bible out of the set, deletes its folder with everything in
    // it, and deletes the Bible. Null, or a Bible not in this set, does
    // nothing. A folder that does not lie directly in the database folder,
    // or holds no bible.ini, is left on disk (see lastError()).
    void removeEntry(Bible* bible);

    // The first file failure of the last open, import or removal; empty
    // when there was none.
    const FileError& lastError() const { return m_lastError; }

protected:
    // Deletes every Bible.
    void clear();
    // Scans the folder (see open()).
    void refresh();

private:
    // Writes an imported Bible into a new folder named after its title and
    // appends it; false, with nothing left on disk, when that fails.
    bool install(std::unique_ptr<Bible> bible, const ImportProgress& progress);

    bool m_changed = false;
    std::vector<std::unique_ptr<Bible>> m_bibles;
    String m_folder;
    Dialogs* m_dialogs = nullptr;
    FileError m_lastError;
};

// The one instance, defined with the other globals (app/globals.cpp).
extern BibleDatabase theBibleDB;

}  // namespace melodex
