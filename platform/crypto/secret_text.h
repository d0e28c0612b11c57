#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qel {

/// A copy of a secret, overwritten at its end: memory that is given back must not hold a password, since it may come to
/// the disk with a core file or the swap. It does not reach other copies, such as the caller's.
class SecretText {
public:
    /// Takes @p text over and overwrites it.
    explicit SecretText(std::string&& text);
    ~SecretText();
    SecretText(const SecretText&) = delete;
    SecretText& operator=(const SecretText&) = delete;

    std::string_view View() const noexcept { return m_text; }

private:
    std::string m_text;
};

/// Overwrites what somebody else keeps.
void WipeSecret(char* text, std::size_t size) noexcept;

}  // namespace qel
