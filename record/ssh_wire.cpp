#include "qellib10/record/ssh_wire.h"

#include <algorithm>

#include "qellib10/platform/error.h"

namespace qel {
namespace {

[[noreturn]] void Refuse() {
    throw DataError("a key, signature or answer in SSH's form is damaged or of another kind");
}

// An mpint that starts so would be negative.
bool IsHigh(char byte) { return static_cast<unsigned char>(byte) >= 0x80; }

}  // namespace

SshWriter& SshWriter::Byte(std::uint8_t value) {
    m_bytes += static_cast<char>(value);
    return *this;
}

SshWriter& SshWriter::Number(std::uint32_t value) {
    for (const int shift : {24, 16, 8, 0}) m_bytes += static_cast<char>(value >> shift & 0xFF);
    return *this;
}

SshWriter& SshWriter::String(std::string_view bytes) {
    return Number(static_cast<std::uint32_t>(bytes.size())).Raw(bytes);
}

SshWriter& SshWriter::String(std::span<const std::byte> bytes) {
    return String(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

SshWriter& SshWriter::Integer(std::span<const std::byte> bytes) {
    std::string_view digits(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    digits.remove_prefix(std::min(digits.find_first_not_of('\0'), digits.size()));
    const bool isHigh = !digits.empty() && IsHigh(digits.front());
    Number(static_cast<std::uint32_t>(digits.size() + (isHigh ? 1 : 0)));
    return isHigh ? Byte(0).Raw(digits) : Raw(digits);
}

SshWriter& SshWriter::Raw(std::string_view bytes) {
    m_bytes += bytes;
    return *this;
}

std::string_view SshReader::Take(std::size_t count) {
    if (count > m_rest.size()) Refuse();
    const std::string_view taken = m_rest.substr(0, count);
    m_rest.remove_prefix(count);
    return taken;
}

std::uint8_t SshReader::Byte() { return static_cast<std::uint8_t>(Take(1).front()); }

std::uint32_t SshReader::Number() {
    std::uint32_t value = 0;
    for (const char byte : Take(4)) value = value << 8 | static_cast<unsigned char>(byte);
    return value;
}

std::string_view SshReader::String() { return Take(Number()); }

void SshReader::Expect(std::string_view bytes) {
    if (Take(bytes.size()) != bytes) Refuse();
}

void SshReader::ExpectString(std::string_view bytes) {
    if (String() != bytes) Refuse();
}

void SshReader::String(std::span<std::byte> to) {
    const std::string_view bytes = String();
    if (bytes.size() != to.size()) Refuse();
    std::ranges::copy(std::as_bytes(std::span(bytes)), to.begin());
}

void SshReader::Integer(std::span<std::byte> to) {
    std::string_view digits = String();
    const bool isMarked = digits.starts_with('\0');
    if (isMarked) digits.remove_prefix(1);
    const bool isHigh = !digits.empty() && IsHigh(digits.front());
    if (isMarked != isHigh || digits.size() > to.size()) Refuse();
    const auto rest =
        std::ranges::fill_n(to.begin(), static_cast<std::ptrdiff_t>(to.size() - digits.size()), std::byte());
    std::ranges::copy(std::as_bytes(std::span(digits)), rest);
}

void SshReader::ExpectEnd() const {
    if (!m_rest.empty()) Refuse();
}

}  // namespace qel
