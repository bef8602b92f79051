#include "melodex/foundation/string_tables.h"

#include "melodex/foundation/file_system.h"

namespace melodex {

StringTables& StringTables::instance() {
    // Built on first use, so that globals of other files can use it while
    // they are constructed.
    static StringTables tables;
    return tables;
}

bool StringTables::addTable(std::string_view path, bool first) {
    if (!fileExists(path)) return false;
    IniFile table;
    if (table.load(path) != StatusSuccess) return false;
    if (first) {
        m_tables.insert(m_tables.begin(), std::move(table));
    } else {
        m_tables.push_back(std::move(table));
    }
    return true;
}

String StringTables::loadString(std::string_view section, std::string_view id,
                                std::string_view defaultText) const {
    for (const IniFile& table : m_tables) {
        const ConfigKey* key = table.findKey(section);
        if (key == nullptr) continue;
        if (const ConfigValue* value = key->findValue(id)) return value->value();
    }
    return String(defaultText);
}

}  // namespace melodex
