#pragma once

#include <cstdlib>
#include <optional>
#include <string>

/// An environment variable that has another value as long as the object exists; null: none.
class EnvironmentScope {
public:
    EnvironmentScope(const char* name, const char* value) : m_name(name) {
        if (const char* old = std::getenv(name)) m_old = old;
        Set(value);
    }
    ~EnvironmentScope() { Set(m_old ? m_old->c_str() : nullptr); }
    EnvironmentScope(const EnvironmentScope&) = delete;
    EnvironmentScope& operator=(const EnvironmentScope&) = delete;

private:
    void Set(const char* value) const {
        value != nullptr ? ::setenv(m_name.c_str(), value, 1) : ::unsetenv(m_name.c_str());
    }

    std::string m_name;
    std::optional<std::string> m_old;
};
