#pragma once

#include <string>
#include <string_view>

#include <CLI/CLI.hpp>

#include "tool.h"

namespace tool {

/// A password while it is needed; overwritten at its end.
class Password {
public:
    Password() { m_text.reserve(kLongest + 1); }  // so that it never moves and leaves a copy
    ~Password();
    Password(const Password&) = delete;
    Password& operator=(const Password&) = delete;

    std::string_view View() const noexcept { return m_text; }
    /// @throws Failure above 1024 bytes
    void Add(char byte);
    /// Removes the last character of UTF-8.
    void RemoveLast();
    void Clear();

private:
    static constexpr std::size_t kLongest = 1024;
    std::string m_text;
};

/// Where passwords come from: never from the command line, which every user of the system can read.
struct PasswordSource {
    int descriptor = -1;  // -1: the terminal

    /// Reads one line. On the terminal it shows @p prompt, and not what is typed.
    /// @throws Failure when there is none, or it was cancelled
    void Read(Password& password, const char* prompt) const;
    /// A new one: the terminal asks twice. @throws Failure also for an empty one
    void ReadNew(Password& password, const char* prompt) const;
};

/// The library's last failure: where the person is the reason, as for a wrong password, in its own words.
Failure PersonRefusal(const char* otherwise, Status ofData);

void AddPasswordOption(CLI::App& command, PasswordSource& source);

}  // namespace tool
