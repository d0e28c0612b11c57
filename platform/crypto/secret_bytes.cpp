#include "qellib10/platform/crypto/secret_bytes.h"

#include <openssl/crypto.h>

namespace qel {

SecretBytes::~SecretBytes() {
    if (m_bytes != nullptr) ::OPENSSL_cleanse(m_bytes.get(), m_size);
}

}  // namespace qel
