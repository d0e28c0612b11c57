#include "qellib10/platform/crypto/password_hash.h"

#include <sodium.h>

#include <new>

#include "qellib10/platform/crypto/crypto_library.h"

namespace qel {
namespace {

static_assert(sizeof(PasswordHash::salt) == crypto_pwhash_argon2id_SALTBYTES);

constexpr std::uint64_t kMaximumPasses = 16;
constexpr std::uint64_t kMaximumMemory = 1 << 30;

// Costs may come from a damaged file, so they are limited before anything is tried.
void Derive(std::string_view password, PasswordHash& made) {
    const auto& [passes, memory] = made.cost;
    if (!IsUsable(made.cost)) throw CryptoError("the cost of a password is out of range");
    auto* const hash = reinterpret_cast<unsigned char*>(made.hash.data());
    const auto* const salt = reinterpret_cast<const unsigned char*>(made.salt.data());
    if (::crypto_pwhash(hash, made.hash.size(), password.data(), password.size(), salt, passes, memory,
                        crypto_pwhash_ALG_ARGON2ID13) != 0) {
        throw std::bad_alloc();
    }
}

}  // namespace

bool IsUsable(const PasswordCost& cost) noexcept {
    return cost.passes >= crypto_pwhash_argon2id_OPSLIMIT_MIN && cost.passes <= kMaximumPasses &&
           cost.memory >= crypto_pwhash_argon2id_MEMLIMIT_MIN && cost.memory <= kMaximumMemory;
}

PasswordHash HashPassword(std::string_view password, const PasswordCost& cost) {
    StartCrypto();
    PasswordHash made;
    made.cost = cost;
    ::randombytes_buf(made.salt.data(), made.salt.size());
    Derive(password, made);
    return made;
}

bool IsPassword(std::string_view password, const PasswordHash& hash) {
    StartCrypto();
    PasswordHash again = hash;
    Derive(password, again);
    return ::sodium_memcmp(again.hash.data(), hash.hash.data(), hash.hash.size()) == 0;
}

}  // namespace qel
