#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// SSH's binary form (RFC 4251, 5): numbers of 4 bytes, the highest first; strings with their length before them.
namespace qel {

class SshWriter {
public:
    SshWriter& Byte(std::uint8_t value);
    SshWriter& Number(std::uint32_t value);
    SshWriter& String(std::string_view bytes);
    SshWriter& String(std::span<const std::byte> bytes);
    /// A whole number, at least 0, in its shortest form (an mpint). @param bytes of it, the highest first
    SshWriter& Integer(std::span<const std::byte> bytes);
    /// Bytes without a length.
    SshWriter& Raw(std::string_view bytes);

    const std::string& Bytes() const noexcept { return m_bytes; }

private:
    std::string m_bytes;
};

/// Takes such bytes apart without copying them. A length is compared with what there is before it is used.
class SshReader {
public:
    explicit SshReader(std::string_view bytes) : m_rest(bytes) {}

    // All of them: @throws DataError when there is something else, or less
    std::uint8_t Byte();
    std::uint32_t Number();
    std::string_view String();
    /// Takes what has to be there.
    void Expect(std::string_view bytes);
    void ExpectString(std::string_view bytes);
    /// A string of as many bytes as @p to has.
    void String(std::span<std::byte> to);
    /// A whole number of at most as many bytes as @p to has, in its shortest form and at least 0.
    void Integer(std::span<std::byte> to);
    void ExpectEnd() const;

    std::string_view Rest() const noexcept { return m_rest; }

private:
    std::string_view Take(std::size_t count);

    std::string_view m_rest;
};

}  // namespace qel
