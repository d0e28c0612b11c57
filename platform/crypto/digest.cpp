#include "qellib10/platform/crypto/digest.h"

#include <openssl/evp.h>

#include "qellib10/platform/error.h"

namespace qel {
namespace {

template <class Digest> Digest Hash(std::string_view bytes, const EVP_MD* method) {
    Digest digest;
    unsigned size = digest.size();
    auto* const to = reinterpret_cast<unsigned char*>(digest.data());
    if (::EVP_Digest(bytes.data(), bytes.size(), to, &size, method, nullptr) != 1 || size != digest.size())
        throw DataError("no hash can be computed");
    return digest;
}

}  // namespace

Sha256Digest Sha256(std::string_view bytes) { return Hash<Sha256Digest>(bytes, ::EVP_sha256()); }
Sha512Digest Sha512(std::string_view bytes) { return Hash<Sha512Digest>(bytes, ::EVP_sha512()); }

}  // namespace qel
