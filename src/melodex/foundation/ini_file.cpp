#include "melodex/foundation/ini_file.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <optional>

#include "melodex/foundation/file_system.h"
#include "melodex/foundation/text_encoding.h"
#include "melodex/foundation/value.h"

// The codec is our own rather than SimpleIni's: SimpleIni neither keeps the
// order of sections across removals without extra bookkeeping nor reads
// Windows-1252 or UTF-16 files, and the quoting that lets any value (a
// lyric line with leading blanks, a title starting with a quote) round-trip
// is ours to define. The format is small enough that a single pass over the
// text is both simpler and faster than adapting a general library.

namespace melodex {

namespace {

// Above this many values a section keeps a hash index; below it a scan of
// the few names is cheaper than hashing and keeps index sections (about a
// dozen values each, 10,000 of them) free of a map apiece.
constexpr std::size_t ValueIndexThreshold = 16;

constexpr bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

// A value that loses nothing when written bare: reading trims blanks, ends
// the line at a line break and takes a leading double quote as quoting.
bool needsQuotes(std::string_view value) {
    if (value.empty()) return false;
    if (isBlank(value.front()) || isBlank(value.back()) || value.front() == '"') return true;
    return value.find_first_of("\r\n") != std::string_view::npos;
}

// The same for names, which also end at "=" and must not make their line
// look like a comment, a section header or, at the very start of a file, a
// byte-order mark. Section names sit between brackets, so "=", ";", "#" and
// "[" do them no harm.
bool nameNeedsQuotes(std::string_view name, bool section) {
    if (section) return !name.empty() && needsQuotes(name);
    if (name.empty() || needsQuotes(name) || name.starts_with("\xEF\xBB\xBF")) return true;
    return name.front() == ';' || name.front() == '#' || name.front() == '[' ||
           name.find('=') != std::string_view::npos;
}

void appendQuoted(String& out, std::string_view value) {
    out += '"';
    for (char c : value) {
        switch (c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\t':
                out += "\\t";
                break;
            default:
                out += c;
                break;
        }
    }
    out += '"';
}

void appendName(String& out, std::string_view name, bool section) {
    if (nameNeedsQuotes(name, section)) {
        appendQuoted(out, name);
    } else {
        out += name;
    }
}

// Reads the quoted text that starts `raw` (at its double quote) up to its
// closing quote, undoing the escapes; `end` is then the position after the
// closing quote. Null when the quote is never closed. An escape that is not
// one of ours is kept as written.
std::optional<String> readQuoted(std::string_view raw, std::size_t& end) {
    String out;
    out.reserve(raw.size());
    for (std::size_t i = 1; i < raw.size(); ++i) {
        const char c = raw[i];
        if (c == '"') {
            end = i + 1;
            return out;
        }
        if (c != '\\') {
            out += c;
            continue;
        }
        if (++i == raw.size()) break;
        switch (raw[i]) {
            case '"':
                out += '"';
                break;
            case '\\':
                out += '\\';
                break;
            case 'n':
                out += '\n';
                break;
            case 'r':
                out += '\r';
                break;
            case 't':
                out += '\t';
                break;
            default:
                out += '\\';
                out += raw[i];
                break;
        }
    }
    return std::nullopt;
}

// Reads a value that starts with a double quote. Files edited by hand hold
// values such as "Amazing" Grace, in which the quote does not enclose the
// whole value; those, and quotes left open, read as the text they are.
String unquoteValue(std::string_view raw) {
    std::size_t end = 0;
    std::optional<String> value = readQuoted(raw, end);
    return value && end == raw.size() ? std::move(*value) : String(raw);
}

// The name of a section header line; null when the line is no header (it
// has no closing bracket). A quoted name ends at its closing quote, which a
// "]" must follow; otherwise the last "]" closes the name, so that a name
// may itself hold one.
std::optional<String> headerName(std::string_view line) {
    const std::string_view inside = trimBlanks(line.substr(1));
    if (!inside.empty() && inside.front() == '"') {
        std::size_t end = 0;
        std::optional<String> name = readQuoted(inside, end);
        if (name && trimBlanks(inside.substr(end)).starts_with(']')) return name;
    }
    const std::size_t close = line.rfind(']');
    if (close == std::string_view::npos) return std::nullopt;
    return String(trimBlanks(line.substr(1, close - 1)));
}

// Splits a "name=value" line; false when it is none. A name in quotes ends
// at its closing quote and may hold anything, "=" and nothing at all among
// it; a bare name ends at the first "=" and must not be empty.
bool splitValueLine(std::string_view line, String& name, std::string_view& value) {
    if (line.front() == '"') {
        std::size_t end = 0;
        std::optional<String> quoted = readQuoted(line, end);
        const std::string_view rest = trimBlanks(line.substr(quoted ? end : 0));
        if (quoted && rest.starts_with('=')) {
            name = std::move(*quoted);
            value = trimBlanks(rest.substr(1));
            return true;
        }
    }
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) return false;
    name = trimBlanks(line.substr(0, equals));
    value = trimBlanks(line.substr(equals + 1));
    return !name.empty();
}

}  // namespace

// --- ConfigValue -------------------------------------------------------------

long long ConfigValue::asInteger(long long defaultValue) const {
    return parseInteger(m_value).value_or(defaultValue);
}

double ConfigValue::asDouble(double defaultValue) const {
    return parseDouble(m_value).value_or(defaultValue);
}

// --- ConfigKey ---------------------------------------------------------------

ConfigKey::ConfigKey(String name) : m_name(std::move(name)) {}

ConfigKey::ConfigKey(const ConfigKey& other) : m_name(other.m_name), m_values(other.m_values) {
    if (other.m_index) rebuildIndex();
}

ConfigKey& ConfigKey::operator=(const ConfigKey& other) {
    if (this != &other) {
        ConfigKey copy(other);
        *this = std::move(copy);
    }
    return *this;
}

ConfigKey::ConfigKey(ConfigKey&&) noexcept = default;
ConfigKey& ConfigKey::operator=(ConfigKey&&) noexcept = default;
ConfigKey::~ConfigKey() = default;

std::size_t ConfigKey::findIndex(std::string_view name) const {
    if (m_index) {
        const auto found = m_index->find(name);
        return found == m_index->end() ? m_values.size() : found->second;
    }
    for (std::size_t i = 0; i < m_values.size(); ++i) {
        if (equalsIgnoreCase(m_values[i].name(), name)) return i;
    }
    return m_values.size();
}

void ConfigKey::rebuildIndex() {
    if (m_values.size() <= ValueIndexThreshold) {
        m_index.reset();
        return;
    }
    auto index = std::make_unique<ValueIndex>();
    index->reserve(m_values.size());
    // emplace keeps the first of two equal names, as the scan would find it.
    for (std::size_t i = 0; i < m_values.size(); ++i)
        index->emplace(m_values[i].name(), i);
    m_index = std::move(index);
}

const ConfigValue* ConfigKey::findValue(std::string_view name) const {
    const std::size_t index = findIndex(name);
    return index < m_values.size() ? &m_values[index] : nullptr;
}

String ConfigKey::getString(std::string_view name, std::string_view defaultValue) const {
    const ConfigValue* value = findValue(name);
    return value ? value->value() : String(defaultValue);
}

long long ConfigKey::getInteger(std::string_view name, long long defaultValue) const {
    const ConfigValue* value = findValue(name);
    return value ? value->asInteger(defaultValue) : defaultValue;
}

double ConfigKey::getDouble(std::string_view name, double defaultValue) const {
    const ConfigValue* value = findValue(name);
    return value ? value->asDouble(defaultValue) : defaultValue;
}

void ConfigKey::setString(std::string_view name, std::string_view value) {
    const std::size_t index = findIndex(name);
    if (index < m_values.size()) {
        m_values[index].setValue(String(value));
        return;
    }
    m_values.emplace_back(String(name), String(value));
    if (m_index) {
        m_index->emplace(m_values.back().name(), index);
    } else if (m_values.size() > ValueIndexThreshold) {
        rebuildIndex();
    }
}

void ConfigKey::setInteger(std::string_view name, long long value) {
    setString(name, std::to_string(value));
}

void ConfigKey::setDouble(std::string_view name, double value) {
    setString(name, Value(value).toString());
}

bool ConfigKey::removeValue(std::string_view name) {
    const std::size_t index = findIndex(name);
    if (index >= m_values.size()) return false;
    m_values.erase(m_values.begin() + std::ptrdiff_t(index));
    if (m_index) rebuildIndex();  // the positions after it have moved
    return true;
}

void ConfigKey::clear() {
    m_values.clear();
    m_index.reset();
}

// --- IniFile -----------------------------------------------------------------

IniFile::IniFile(const IniFile& other) : m_filename(other.m_filename) {
    m_keys.reserve(other.m_keys.size());
    for (const auto& key : other.m_keys)
        m_keys.push_back(std::make_unique<ConfigKey>(*key));
    rebuildIndex();
}

IniFile& IniFile::operator=(const IniFile& other) {
    if (this != &other) {
        IniFile copy(other);
        *this = std::move(copy);
    }
    return *this;
}

void IniFile::rebuildIndex() {
    m_keysByName.clear();
    m_keysByName.reserve(m_keys.size());
    for (const auto& key : m_keys)
        m_keysByName.emplace(key->name(), key.get());
}

Status IniFile::load(std::string_view path) {
    try {
        std::string bytes;
        if (const Status status = readFileBytes(path, bytes); status != StatusSuccess) {
            return status;
        }
        // Parse into a fresh object so that nothing here is touched until
        // the whole file has been read.
        IniFile loaded;
        loaded.loadFromString(decodeText(std::move(bytes)));
        loaded.m_filename = String(path);
        *this = std::move(loaded);
        return StatusSuccess;
    } catch (const std::bad_alloc&) {
        return Status(ENOMEM);
    }
}

void IniFile::loadFromString(std::string_view text) {
    clear();
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);

    ConfigKey* section = nullptr;
    std::size_t pos = 0;
    while (pos < text.size()) {
        // Lines end at LF, CR LF or CR; an empty line between CR and LF is
        // skipped as blank.
        std::size_t end = pos;
        while (end < text.size() && text[end] != '\n' && text[end] != '\r')
            ++end;
        const std::string_view line = trimBlanks(text.substr(pos, end - pos));
        pos = end + 1;

        if (line.empty() || line.front() == ';' || line.front() == '#') continue;

        if (line.front() == '[') {
            if (std::optional<String> name = headerName(line)) section = createKey(*name);
            continue;  // an unclosed header is skipped
        }

        String name;
        std::string_view value;
        if (!splitValueLine(line, name, value)) continue;
        if (!section) section = createKey({});
        if (!value.empty() && value.front() == '"') {
            section->setString(name, unquoteValue(value));
        } else {
            section->setString(name, value);
        }
    }
}

Status IniFile::save(std::string_view path) const {
    try {
        return writeFileAtomically(path, toString());
    } catch (const std::bad_alloc&) {
        return Status(ENOMEM);
    }
}

String IniFile::toString() const {
    std::size_t estimate = 0;
    for (const auto& key : m_keys) {
        estimate += key->name().size() + 4;
        for (int i = 0; i < key->getValueCount(); ++i) {
            const ConfigValue& value = key->getValue(i);
            estimate += value.name().size() + value.value().size() + 2;
        }
    }
    String out;
    out.reserve(estimate + estimate / 16);

    for (std::size_t k = 0; k < m_keys.size(); ++k) {
        const ConfigKey& key = *m_keys[k];
        if (k > 0) out += '\n';
        // Values before the first header belong to the unnamed section; a
        // header is needed only when that section is not first or empty.
        if (k > 0 || !key.name().empty() || key.getValueCount() == 0) {
            out += '[';
            appendName(out, key.name(), true);
            out += "]\n";
        }
        for (int i = 0; i < key.getValueCount(); ++i) {
            const ConfigValue& value = key.getValue(i);
            appendName(out, value.name(), false);
            out += '=';
            if (needsQuotes(value.value())) {
                appendQuoted(out, value.value());
            } else {
                out += value.value();
            }
            out += '\n';
        }
    }
    return out;
}

ConfigKey* IniFile::findKey(std::string_view name) const {
    const auto found = m_keysByName.find(name);
    return found == m_keysByName.end() ? nullptr : found->second;
}

ConfigKey* IniFile::createKey(std::string_view name) {
    if (ConfigKey* existing = findKey(name)) return existing;
    m_keys.push_back(std::make_unique<ConfigKey>(String(name)));
    ConfigKey* key = m_keys.back().get();
    m_keysByName.emplace(key->name(), key);
    return key;
}

bool IniFile::removeKey(std::string_view name) {
    const auto found = m_keysByName.find(name);
    if (found == m_keysByName.end()) return false;
    const ConfigKey* key = found->second;
    // The index entry views the section's name: drop it before the section.
    m_keysByName.erase(found);
    const auto position = std::find_if(m_keys.begin(), m_keys.end(),
                                       [key](const auto& owned) { return owned.get() == key; });
    m_keys.erase(position);
    return true;
}

void IniFile::clear() {
    m_keysByName.clear();
    m_keys.clear();
}

}  // namespace melodex
