#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "qellib10/platform/crypto/password_cost.h"

namespace qel {

/// A password's argon2id hash with what it was made of.
struct PasswordHash {
    std::array<std::byte, 16> salt = {};
    std::array<std::byte, 32> hash = {};
    PasswordCost cost;
};

/// Whether the cost is in range.
bool IsUsable(const PasswordCost& cost) noexcept;

/// @throws CryptoError when the cost is out of range; std::bad_alloc when the memory is not there
PasswordHash HashPassword(std::string_view password, const PasswordCost& cost);

/// Whether @p password is the hashed one, at its hash's cost. Throws as above.
bool IsPassword(std::string_view password, const PasswordHash& hash);

}  // namespace qel
