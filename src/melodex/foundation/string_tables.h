#pragma once

// String tables: INI files from which user-visible texts are taken, so that
// a program's texts can be changed by editing its table file.
//
//     StringTables& tables = StringTables::instance();
//     tables.addTable(libraryFolder + "/Melodex.ini", true);
//     tables.addTable(programFolder + "/Scrivel.ini", true);  // searched first
//     String name = tables.loadString("SongFileType", "standard", "");
//
// A table is an INI file: the section names a group of texts, each value one
// text. Lookups walk the tables in list order; the first table that has the
// section and the value wins. The process-wide instance is what the
// application services object and the song model use; it takes no locks,
// like the rest of the programs' user-interface code.

#include <string_view>
#include <vector>

#include "melodex/foundation/ini_file.h"
#include "melodex/foundation/text.h"

namespace melodex {

class StringTables {
public:
    // The tables of the process.
    static StringTables& instance();

    // Loads the INI file at `path` and adds it to the list: at the front when
    // `first` is true (searched before the tables added earlier), else at the
    // back. A missing or unreadable file is ignored; false then.
    bool addTable(std::string_view path, bool first);

    // The text `id` of `section` from the first table that has it, else
    // `defaultText`.
    String loadString(std::string_view section, std::string_view id,
                      std::string_view defaultText) const;

    int getTableCount() const { return int(m_tables.size()); }

    // Forgets every table.
    void clear() { m_tables.clear(); }

private:
    std::vector<IniFile> m_tables;
};

}  // namespace melodex
