#include "qellib10/platform/crypto/crypto_library.h"

#include <sodium.h>

namespace qel {

void StartCrypto() {
    if (::sodium_init() < 0) throw CryptoError("no source of random numbers");
}

}  // namespace qel
