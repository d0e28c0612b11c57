#include "qellib10/platform/crypto/digest.h"

#include <openssl/evp.h>

#include "qellib10/platform/error.h"

namespace qel {
namespace {

void Require(bool isDone) {
    if (!isDone) throw DataError("no hash can be computed");
}

EVP_MD_CTX* Of(void* context) { return static_cast<EVP_MD_CTX*>(context); }

// Looked for once: doing so for each hash takes as long as that of a line.
const EVP_MD* Method256() {
    static const EVP_MD* const method = ::EVP_MD_fetch(nullptr, "SHA256", nullptr);
    return method;
}
const EVP_MD* Method512() {
    static const EVP_MD* const method = ::EVP_MD_fetch(nullptr, "SHA512", nullptr);
    return method;
}

template <class Digest> Digest Hash(std::string_view bytes, const EVP_MD* method) {
    Digest digest;
    unsigned size = digest.size();
    auto* const to = reinterpret_cast<unsigned char*>(digest.data());
    Require(::EVP_Digest(bytes.data(), bytes.size(), to, &size, method, nullptr) == 1 && size == digest.size());
    return digest;
}

}  // namespace

Sha256Digest Sha256(std::string_view bytes) { return Hash<Sha256Digest>(bytes, Method256()); }
Sha512Digest Sha512(std::string_view bytes) { return Hash<Sha512Digest>(bytes, Method512()); }

Sha256Sum::Sha256Sum() : m_context(::EVP_MD_CTX_new()) {
    Require(m_context && ::EVP_DigestInit_ex(Of(m_context.get()), Method256(), nullptr) == 1);
}

void Sha256Sum::Free::operator()(void* context) const noexcept { ::EVP_MD_CTX_free(Of(context)); }

void Sha256Sum::Add(std::span<const std::byte> bytes) {
    Require(::EVP_DigestUpdate(Of(m_context.get()), bytes.data(), bytes.size()) == 1);
}

Sha256Digest Sha256Sum::End() {
    Sha256Digest digest;
    unsigned size = digest.size();
    auto* const to = reinterpret_cast<unsigned char*>(digest.data());
    Require(::EVP_DigestFinal_ex(Of(m_context.get()), to, &size) == 1 && size == digest.size());
    return digest;
}

}  // namespace qel
