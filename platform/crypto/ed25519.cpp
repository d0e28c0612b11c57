#include "qellib10/platform/crypto/ed25519.h"

#include <openssl/err.h>
#include <openssl/evp.h>

#include <memory>

#include "qellib10/platform/error.h"

namespace qel {
namespace {

using Key = std::unique_ptr<EVP_PKEY, decltype(&::EVP_PKEY_free)>;
using Context = std::unique_ptr<EVP_MD_CTX, decltype(&::EVP_MD_CTX_free)>;

const unsigned char* Raw(std::span<const std::byte> bytes) {
    return reinterpret_cast<const unsigned char*>(bytes.data());
}
const unsigned char* Raw(std::string_view bytes) { return reinterpret_cast<const unsigned char*>(bytes.data()); }

// Keeps the last one of each thread: the entries of a trail are mostly signed by one key.
EVP_PKEY* PublicKeyFor(const Ed25519Key& bytes) {
    struct Last {
        Ed25519Key bytes = {};
        Key key{nullptr, ::EVP_PKEY_free};
    };
    thread_local Last last;
    if (last.key == nullptr || last.bytes != bytes) {
        last.key.reset(::EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, Raw(bytes), bytes.size()));
        last.bytes = bytes;
    }
    return last.key.get();
}

}  // namespace

struct Ed25519PrivateKey::State {
    Key key;
};

Ed25519PrivateKey::Ed25519PrivateKey(std::span<const std::byte> seed)
    : m_state(new State{
          Key(::EVP_PKEY_new_raw_private_key(EVP_PKEY_ED25519, nullptr, Raw(seed), seed.size()), ::EVP_PKEY_free)}) {
    if (m_state->key == nullptr) throw DataError("the private key cannot be used");
}
Ed25519PrivateKey::~Ed25519PrivateKey() = default;
Ed25519PrivateKey::Ed25519PrivateKey(Ed25519PrivateKey&&) noexcept = default;
Ed25519PrivateKey& Ed25519PrivateKey::operator=(Ed25519PrivateKey&&) noexcept = default;

Ed25519Key Ed25519PrivateKey::PublicKey() const {
    Ed25519Key made;
    std::size_t size = made.size();
    auto* const to = reinterpret_cast<unsigned char*>(made.data());
    if (::EVP_PKEY_get_raw_public_key(m_state->key.get(), to, &size) != 1 || size != made.size())
        throw DataError("the private key cannot be used");
    return made;
}

Ed25519Signature Ed25519PrivateKey::Sign(std::string_view message) const {
    Ed25519Signature made;
    std::size_t size = made.size();
    const Context context(::EVP_MD_CTX_new(), ::EVP_MD_CTX_free);
    auto* const to = reinterpret_cast<unsigned char*>(made.data());
    if (context == nullptr || ::EVP_DigestSignInit(context.get(), nullptr, nullptr, nullptr, m_state->key.get()) != 1 ||
        ::EVP_DigestSign(context.get(), to, &size, Raw(message), message.size()) != 1 || size != made.size()) {
        throw DataError("nothing can be signed");
    }
    return made;
}

Ed25519Key PublicKeyOf(std::span<const std::byte> seed) { return Ed25519PrivateKey(seed).PublicKey(); }

Ed25519Signature SignEd25519(std::span<const std::byte> seed, std::string_view message) {
    return Ed25519PrivateKey(seed).Sign(message);
}

bool IsSignedBy(const Ed25519Key& key, std::string_view message, const Ed25519Signature& signature) {
    EVP_PKEY* const used = PublicKeyFor(key);
    const Context context(::EVP_MD_CTX_new(), ::EVP_MD_CTX_free);
    const bool isSigned =
        used != nullptr && context != nullptr &&
        ::EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, used) == 1 &&
        ::EVP_DigestVerify(context.get(), Raw(signature), signature.size(), Raw(message), message.size()) == 1;
    if (!isSigned) ::ERR_clear_error();  // the thread's list of errors is the application's, too
    return isSigned;
}

}  // namespace qel
