#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qel {

/// One direction between two encodings, by the names that the system's iconv knows. Belongs to one thread at a time.
class Converter {
public:
    /// @throws std::runtime_error naming both encodings when the system has no such conversion; it is no DataError, so
    /// that nothing takes a system without converters for a damaged file.
    Converter(const char* to, const char* from);
    ~Converter();
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    /// The whole text converted, or nothing when some of it is invalid or has no counterpart. Every call starts afresh.
    std::optional<std::string> Convert(std::string_view text);

private:
    void* m_descriptor;
};

}  // namespace qel
