#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <utility>

namespace qel {

/// Bytes of a secret, in memory that never moves and is overwritten before it is given back, also when an exception
/// passes: else a key would stay in memory that others get, or in a core file.
class SecretBytes {
public:
    explicit SecretBytes(std::size_t size) : m_bytes(std::make_unique<std::byte[]>(size)), m_size(size) {}
    SecretBytes(SecretBytes&& other) noexcept
        : m_bytes(std::move(other.m_bytes)), m_size(std::exchange(other.m_size, 0)) {}
    SecretBytes& operator=(SecretBytes&&) = delete;
    ~SecretBytes();

    std::span<std::byte> Bytes() noexcept { return {m_bytes.get(), m_size}; }
    std::span<const std::byte> Bytes() const noexcept { return {m_bytes.get(), m_size}; }
    std::string_view View() const noexcept { return {reinterpret_cast<const char*>(m_bytes.get()), m_size}; }

private:
    std::unique_ptr<std::byte[]> m_bytes;
    std::size_t m_size;
};

}  // namespace qel
