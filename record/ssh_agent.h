#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace qel {

/// Asks an agent that speaks the protocol of ssh-agent. Keys and signatures are in SSH's binary forms, of any kind.
/// Everything throws what AskAgent throws, and DataError for an answer in another form.
class SshAgent {
public:
    /// @param limit of each question
    explicit SshAgent(std::chrono::milliseconds limit) : m_limit(limit) {}

    /// @param socketPath in the library's form
    void Use(std::string_view socketPath);
    std::vector<std::string> Keys() const;
    std::string Sign(std::string_view key, std::string_view bytes) const;

private:
    std::chrono::milliseconds m_limit;
    std::string m_socket = {};
};

}  // namespace qel
