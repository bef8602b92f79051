#pragma once

// INI files: the song library index, Bible folders, string tables and
// settings.
//
// An IniFile holds sections (ConfigKey), each holding named values
// (ConfigValue). Sections and values keep their insertion order; names are
// compared ignoring case. Values that stand before the first section header
// belong to the section with the empty name.
//
//     IniFile index;
//     if (index.load(path) == StatusSuccess) {
//         if (const ConfigKey* song = index.findKey(uuid))
//             title = song->getString("title");
//     }
//     index.createKey(uuid)->setString("title", "Amazing Grace");
//     Status status = index.save(path);  // written atomically
//
// Text form: "[name]" opens a section, "name=value" sets a value, lines
// starting with ";" or "#" are comments, blank lines are ignored, and any
// other line is skipped. Blanks around names and values are removed. A value
// that would not survive that (leading or trailing blanks, a line break, a
// leading double quote) is written in double quotes with backslash escapes
// (\" \\ \n \r \t), and such a value reads back unchanged. Files are read in
// UTF-8 (with or without BOM), UTF-16 with BOM or Windows-1252, and written
// in UTF-8 without BOM, with LF line ends.
//
// Names are written bare too unless that would lose them: a name that is
// empty, has blanks at either end, holds "=" or a line break, or starts with
// a double quote, ";", "#", "[" or a byte-order mark is written in double
// quotes with the same escapes ("\"=\"=x" names the value "=";
// ["\tTabbed"] the section "\tTabbed"), so that every name and value reads
// back as it was written. A line that starts with a double quote is
// therefore a quoted name where a closing quote and "=" follow it (a
// header: "]").
//
// A section named twice in a file is one section holding the values of
// both; a value named twice keeps the last text in the place of the first.
//
// Lookups by name are hashed, so an index of 10,000 sections finds a section
// in constant time. A pointer to a section or value stays valid until it is
// removed or the file is cleared or loaded again.

#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"

namespace melodex {

// One named value; the text is the stored form.
class ConfigValue {
public:
    ConfigValue(String name, String value) : m_name(std::move(name)), m_value(std::move(value)) {}

    const String& name() const { return m_name; }
    const String& value() const { return m_value; }
    void setValue(String value) { m_value = std::move(value); }

    // The value read as a number; `defaultValue` when it is not one.
    long long asInteger(long long defaultValue = 0) const;
    double asDouble(double defaultValue = 0.0) const;

private:
    String m_name;
    String m_value;
};

// One section: an ordered list of values with a name index.
class ConfigKey {
public:
    explicit ConfigKey(String name = {});
    ConfigKey(const ConfigKey& other);
    ConfigKey& operator=(const ConfigKey& other);
    ConfigKey(ConfigKey&&) noexcept;
    ConfigKey& operator=(ConfigKey&&) noexcept;
    ~ConfigKey();

    const String& name() const { return m_name; }

    int getValueCount() const { return int(m_values.size()); }
    // No range check; callers keep index below getValueCount().
    const ConfigValue& getValue(int index) const { return m_values[std::size_t(index)]; }

    // The value of that name, or null.
    const ConfigValue* findValue(std::string_view name) const;
    bool hasValue(std::string_view name) const { return findValue(name) != nullptr; }

    // The stored text, or `defaultValue` when the value is missing.
    String getString(std::string_view name, std::string_view defaultValue = {}) const;
    // The value as a number; `defaultValue` when missing or not a number.
    long long getInteger(std::string_view name, long long defaultValue = 0) const;
    double getDouble(std::string_view name, double defaultValue = 0.0) const;

    // Creates the value at the end, or replaces the text of an existing one
    // in its place.
    void setString(std::string_view name, std::string_view value);
    void setInteger(std::string_view name, long long value);
    void setDouble(std::string_view name, double value);

    // True when a value was removed.
    bool removeValue(std::string_view name);
    void clear();

private:
    using ValueIndex =
        std::unordered_map<String, std::size_t, CaseInsensitiveHash, CaseInsensitiveEqual>;

    std::size_t findIndex(std::string_view name) const;  // getValueCount() when missing
    void rebuildIndex();

    String m_name;
    std::vector<ConfigValue> m_values;
    // Built once a section holds enough values for a scan to cost more than
    // a hash (string tables have hundreds; index sections about a dozen).
    std::unique_ptr<ValueIndex> m_index;
};

class IniFile {
public:
    IniFile() = default;
    explicit IniFile(String filename) : m_filename(std::move(filename)) {}
    IniFile(const IniFile& other);
    IniFile& operator=(const IniFile& other);
    IniFile(IniFile&&) noexcept = default;
    IniFile& operator=(IniFile&&) noexcept = default;
    ~IniFile() = default;

    // The path that load() and save() without arguments use.
    const String& filename() const { return m_filename; }
    void setFilename(String filename) { m_filename = std::move(filename); }

    // Replaces the contents with the file's; 0 or the errno value of the
    // failed read. A failed load leaves the object as it was; a successful
    // one also remembers the path as the file name. An empty file loads as
    // an empty IniFile.
    [[nodiscard]] Status load(std::string_view path);
    [[nodiscard]] Status load() { return load(m_filename); }

    // Replaces the contents with the text's (UTF-8; a leading byte-order
    // mark is skipped); never fails.
    void loadFromString(std::string_view text);

    // Writes the contents atomically; 0 or the errno value. A failed save
    // leaves the file on disk as it was.
    [[nodiscard]] Status save(std::string_view path) const;
    [[nodiscard]] Status save() const { return save(m_filename); }

    String toString() const;

    int getKeyCount() const { return int(m_keys.size()); }
    // No range check; callers keep index below getKeyCount().
    ConfigKey* getKey(int index) const { return m_keys[std::size_t(index)].get(); }

    // The section of that name, or null.
    ConfigKey* findKey(std::string_view name) const;

    // The section of that name, created at the end when missing.
    ConfigKey* createKey(std::string_view name);

    // True when a section was removed.
    bool removeKey(std::string_view name);

    void clear();

private:
    // Keyed by a view of the section's own name: a section is never renamed
    // and lives on the heap, so the view stays valid as long as the entry.
    using KeyIndex =
        std::unordered_map<std::string_view, ConfigKey*, CaseInsensitiveHash, CaseInsensitiveEqual>;

    void rebuildIndex();

    String m_filename;
    std::vector<std::unique_ptr<ConfigKey>> m_keys;
    KeyIndex m_keysByName;
};

}  // namespace melodex
