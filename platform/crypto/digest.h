#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

namespace qel {

using Sha256Digest = std::array<std::byte, 32>;
using Sha512Digest = std::array<std::byte, 64>;

/// @throws DataError when the library for it refuses
Sha256Digest Sha256(std::string_view bytes);
Sha512Digest Sha512(std::string_view bytes);

/// SHA-256 of bytes that come piece by piece. Everything throws DataError when the library for it refuses.
class Sha256Sum {
public:
    Sha256Sum();
    void Add(std::span<const std::byte> bytes);
    /// Of all bytes so far. Nothing may be added afterwards.
    Sha256Digest End();

private:
    struct Free {
        void operator()(void* context) const noexcept;
    };
    std::unique_ptr<void, Free> m_context;
};

}  // namespace qel
