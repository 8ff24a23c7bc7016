#pragma once

#include <cstdlib>
#include <map>
#include <string>
#include <utility>

/// Environment variables set or removed for one test, restored afterwards.
class ScopedEnvironment {
public:
    ScopedEnvironment() = default;
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;
    ~ScopedEnvironment()
    {
        for (const auto& saved : m_saved) {
            if (saved.second.first) {
                setenv(saved.first.c_str(), saved.second.second.c_str(), 1);
            } else {
                unsetenv(saved.first.c_str());
            }
        }
    }

    void set(const std::string& name, const std::string& value)
    {
        save(name);
        setenv(name.c_str(), value.c_str(), 1);
    }
    void unset(const std::string& name)
    {
        save(name);
        unsetenv(name.c_str());
    }

private:
    void save(const std::string& name)
    {
        if (m_saved.count(name) == 0) {
            const char* value = std::getenv(name.c_str());
            m_saved[name] = {value != nullptr, value != nullptr ? value : ""};
        }
    }

    std::map<std::string, std::pair<bool, std::string>> m_saved;
};
