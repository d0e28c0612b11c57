#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qel {

/// Converts between two encodings, by the names that the system's iconv knows. Belongs to one thread at a time.
class Converter {
public:
    /// @throws std::runtime_error with both names when the system has no such conversion. It is not a DataError, so
    /// that a system without converters is never mistaken for a damaged file.
    Converter(const char* to, const char* from);
    ~Converter();
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    /// The whole text converted, or nothing when a part of it is invalid or has no counterpart. Calls are independent.
    std::optional<std::string> Convert(std::string_view text);

private:
    void* m_descriptor;
};

}  // namespace qel
