#include "support/temp_folder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace melodex::test {

namespace fs = std::filesystem;

TempFolder::TempFolder() {
    std::string pattern = (fs::temp_directory_path() / "melodex-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    m_path = pattern;
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    fs::permissions(m_path, fs::perms::owner_all, fs::perm_options::add, ignored);
    fs::remove_all(m_path, ignored);
}

String TempFolder::file(std::string_view name) const {
    if (!name.empty() && name.front() == '/') return String(name);
    return m_path + "/" + String(name);
}

String TempFolder::write(std::string_view name, std::string_view bytes) const {
    String path = file(name);
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), std::streamsize(bytes.size()));
    if (!out) throw std::runtime_error("cannot write " + path);
    return path;
}

String TempFolder::read(std::string_view name) const {
    std::ifstream in(file(name), std::ios::binary);
    return String(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

String testDataPath(std::string_view name) {
    return String(MELODEX_TEST_DATA_DIR) + "/" + String(name);
}

}  // namespace melodex::test
