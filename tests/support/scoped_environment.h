#pragma once

// Sets an environment variable for one scope and puts the old state back.
// A null value unsets the variable for the scope.
//
//     ScopedEnvironment settings("MELODEX_SETTINGS_FILE", folder.file("Settings.ini").c_str());

#include <cstdlib>
#include <optional>
#include <string>

namespace melodex::test {

class ScopedEnvironment {
public:
    ScopedEnvironment(const char* name, const char* value) : m_name(name) {
        if (const char* old = std::getenv(name)) m_old = old;
        value ? ::setenv(name, value, 1) : ::unsetenv(name);
    }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;
    ~ScopedEnvironment() {
        m_old ? ::setenv(m_name.c_str(), m_old->c_str(), 1) : ::unsetenv(m_name.c_str());
    }

private:
    std::string m_name;
    std::optional<std::string> m_old;
};

}  // namespace melodex::test
