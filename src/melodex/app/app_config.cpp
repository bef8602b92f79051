#include "melodex/app/app_config.h"

#include <cstdlib>

#include "melodex/foundation/file_system.h"
#include "melodex/platform/system_info.h"

namespace melodex {

AppConfig::AppConfig() : AppConfig(SystemInfo::programPath()) {}

AppConfig::AppConfig(String programPath) : m_programPath(std::move(programPath)) {}

AppConfig::~AppConfig() = default;

String AppConfig::programFolder() const {
    return folderOf(m_programPath);
}

String AppConfig::getProductValue(std::string_view name) const {
    return m_productValues.getString(name);
}

unsigned AppConfig::getProductNumber(std::string_view name) const {
    const long long number = m_productValues.getInteger(name, 0);
    return number < 0 || number > 0xFFFFFFFFll ? 0u : unsigned(number);
}

void AppConfig::setProductValue(std::string_view name, std::string_view value) {
    m_productValues.setString(name, value);
}

bool AppConfig::loadProductFile(std::string_view path) {
    IniFile file;
    if (file.load(path) != StatusSuccess) return false;
    if (const ConfigKey* product = file.findKey("Product")) {
        for (int i = 0; i < product->getValueCount(); ++i) {
            const ConfigValue& value = product->getValue(i);
            m_productValues.setString(value.name(), value.value());
        }
    }
    return true;
}

String AppConfig::getResourceFilePath(std::string_view fileName) const {
    const String programFolder = this->programFolder();
    StringArray candidates;
    if (const char* resources = std::getenv("MELODEX_RESOURCE_DIR"); resources && *resources) {
        candidates.push_back(joinPath(resources, fileName));
    }
    candidates.push_back(joinPath(programFolder, fileName));
    candidates.push_back(joinPath(joinPath(folderOf(programFolder), "share/melodex"), fileName));
    for (const String& candidate : candidates) {
        if (fileExists(candidate)) return candidate;
    }
    return joinPath(programFolder, fileName);
}

String AppConfig::getBaseUserFolder() const {
    return SystemInfo::baseUserFolder();
}

String AppConfig::getSharedDataFolder() const {
    return SystemInfo::sharedDataFolder();
}

String AppConfig::getSettingsString(std::string_view name, std::string_view defaultValue) const {
    return m_settings.getString(name, defaultValue);
}

ConfigKey AppConfig::getSettings() const {
    return m_settings.snapshot();
}

}  // namespace melodex
