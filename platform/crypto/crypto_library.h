#pragma once

#include <stdexcept>

namespace qel {

/// libsodium refused: the text says why.
class CryptoError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Makes libsodium ready, once in a process; every call of it comes after.
/// @throws CryptoError without a source of random numbers
void StartCrypto();

}  // namespace qel
