#include "qellib10/platform/crypto/token.h"

#include <sodium.h>

#include "qellib10/platform/crypto/crypto_library.h"

namespace qel {

std::string NewToken() {
    StartCrypto();
    std::array<unsigned char, 32> bytes;
    ::randombytes_buf(bytes.data(), bytes.size());
    std::string token(2 * bytes.size(), '\0');
    ::sodium_bin2hex(token.data(), token.size() + 1, bytes.data(), bytes.size());  // writes a zero after them
    ::sodium_memzero(bytes.data(), bytes.size());
    return token;
}

TokenDigest DigestOf(std::string_view token) {
    StartCrypto();
    TokenDigest digest;
    ::crypto_generichash(reinterpret_cast<unsigned char*>(digest.data()), digest.size(),
                         reinterpret_cast<const unsigned char*>(token.data()), token.size(), nullptr, 0);
    return digest;
}

bool IsSame(const TokenDigest& a, const TokenDigest& b) { return ::sodium_memcmp(a.data(), b.data(), a.size()) == 0; }

}  // namespace qel
