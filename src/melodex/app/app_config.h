#pragma once

// The configuration base of the programs: who the product is (its product
// values), where the running program lies, where resource files and the
// user's and the machine's data folders are, and the per-user settings.
//
// Product values are named texts ("PRODUCT_NAME", "PRODUCT_MAJOR_VERSION"
// ...). A derived configuration sets their defaults and may load a product
// file over them: an INI file whose section "Product" holds values of the
// same names.
//
//     AppConfig config;
//     config.setProductValue("PRODUCT_NAME", "Cantorix");
//     config.loadProductFile(joinPath(config.programFolder(), "product.bcf"));
//     String table = config.getResourceFilePath("Melodex.ini");

#include <string_view>

#include "melodex/foundation/ini_file.h"
#include "melodex/foundation/text.h"
#include "melodex/platform/settings_store.h"

namespace melodex {

// The product's name and version as the programs show them.
struct ProductInfo {
    String name;
    unsigned majorVersion = 0;
    unsigned minorVersion = 0;
    unsigned revision = 0;
    unsigned build = 0;
};

class AppConfig {
public:
    // The configuration of the running program.
    AppConfig();
    // The configuration of the program at `programPath`, for hosts that lay
    // their files out differently and for tests.
    explicit AppConfig(String programPath);
    AppConfig(const AppConfig&) = default;
    AppConfig& operator=(const AppConfig&) = default;
    virtual ~AppConfig();

    // The program's full file name and its folder.
    const String& programPath() const { return m_programPath; }
    String programFolder() const;

    // The text of a product value; empty when it has none.
    String getProductValue(std::string_view name) const;
    // A product value read as an unsigned number; 0 when it is not one.
    unsigned getProductNumber(std::string_view name) const;
    void setProductValue(std::string_view name, std::string_view value);

    // Reads the product values of an INI file's "Product" section over the
    // current ones. False when the file cannot be read; a file without that
    // section changes nothing and counts as read.
    bool loadProductFile(std::string_view path);

    const ProductInfo& productInfo() const { return m_productInfo; }
    void setProductInfo(ProductInfo info) { m_productInfo = std::move(info); }

    // Where a resource file of that name lies: the folder named by
    // $MELODEX_RESOURCE_DIR when it holds the file, else the program's
    // folder when it does, else share/melodex beside the program's folder
    // when it does, else the program's folder.
    String getResourceFilePath(std::string_view fileName) const;

    // The base of the user's data folders and the folder shared by all users
    // (see SystemInfo).
    String getBaseUserFolder() const;
    String getSharedDataFolder() const;

    // A per-user setting, or `defaultValue` when it is not set.
    String getSettingsString(std::string_view name, std::string_view defaultValue) const;
    // All per-user settings, read once (see SettingsStore::snapshot()).
    ConfigKey getSettings() const;

private:
    String m_programPath;
    ConfigKey m_productValues{"Product"};
    ProductInfo m_productInfo;
    SettingsStore m_settings;
};

}  // namespace melodex
