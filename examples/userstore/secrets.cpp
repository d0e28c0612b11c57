#include "secrets.h"

#include <sodium.h>

#include "store_error.h"

namespace userstore {
namespace {

static_assert(sizeof(PasswordHash::salt) == crypto_pwhash_argon2id_SALTBYTES);

constexpr std::uint64_t kMostPasses = 16;
constexpr std::uint64_t kMostMemory = 1 << 30;

void StartLibrary() {
    if (::sodium_init() < 0) throw StoreError("no source of random numbers");
}

// Costs may come from a damaged file, so they are limited before anything is tried.
void Derive(std::string_view password, PasswordHash& made) {
    const auto& [passes, memory] = made.cost;
    if (passes < crypto_pwhash_argon2id_OPSLIMIT_MIN || passes > kMostPasses ||
        memory < crypto_pwhash_argon2id_MEMLIMIT_MIN || memory > kMostMemory) {
        throw StoreError("the cost of a password is out of range");
    }
    if (::crypto_pwhash(made.hash.data(), made.hash.size(), password.data(), password.size(), made.salt.data(), passes,
                        memory, crypto_pwhash_ALG_ARGON2ID13) != 0) {
        throw StoreError("not enough memory to hash a password");
    }
}

}  // namespace

PasswordHash HashPassword(std::string_view password, const HashCost& cost) {
    StartLibrary();
    PasswordHash made;
    made.cost = cost;
    ::randombytes_buf(made.salt.data(), made.salt.size());
    Derive(password, made);
    return made;
}

bool IsPassword(std::string_view password, const PasswordHash& hash) {
    StartLibrary();
    PasswordHash again = hash;
    Derive(password, again);
    return ::sodium_memcmp(again.hash.data(), hash.hash.data(), hash.hash.size()) == 0;
}

std::string NewToken() {
    StartLibrary();
    std::array<unsigned char, 32> bytes;
    ::randombytes_buf(bytes.data(), bytes.size());
    std::string token(2 * bytes.size(), '\0');
    ::sodium_bin2hex(token.data(), token.size() + 1, bytes.data(), bytes.size());  // writes a zero behind
    return token;
}

TokenDigest DigestOf(std::string_view token) {
    StartLibrary();
    TokenDigest digest;
    ::crypto_generichash(digest.data(), digest.size(), reinterpret_cast<const unsigned char*>(token.data()),
                         token.size(), nullptr, 0);
    return digest;
}

bool IsSame(const TokenDigest& a, const TokenDigest& b) { return ::sodium_memcmp(a.data(), b.data(), a.size()) == 0; }

}  // namespace userstore
