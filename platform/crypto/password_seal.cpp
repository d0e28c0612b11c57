#include "qellib10/platform/crypto/password_seal.h"

#include <sodium.h>

#include <new>

#include "qellib10/platform/error.h"

namespace qel {
namespace {

static_assert(sizeof(PasswordSeal::salt) == crypto_pwhash_argon2id_SALTBYTES);
static_assert(sizeof(PasswordSeal::nonce) == crypto_aead_xchacha20poly1305_ietf_NPUBBYTES);
static_assert(PasswordSeal::kTagSize == crypto_aead_xchacha20poly1305_ietf_ABYTES);
static_assert(PasswordSeal::kUsual.passes == crypto_pwhash_argon2id_OPSLIMIT_MODERATE &&
              PasswordSeal::kUsual.memory == crypto_pwhash_argon2id_MEMLIMIT_MODERATE);

const unsigned char* Raw(const auto& bytes) { return reinterpret_cast<const unsigned char*>(bytes.data()); }
unsigned char* Out(std::span<std::byte> bytes) { return reinterpret_cast<unsigned char*>(bytes.data()); }

void Start() {
    if (::sodium_init() < 0) throw DataError("no source of random numbers");
}

SecretBytes KeyOf(std::string_view password, const PasswordSeal& seal) {
    Start();
    const auto& [passes, memory] = seal.cost;
    if (passes < crypto_pwhash_argon2id_OPSLIMIT_MIN || passes > crypto_pwhash_argon2id_OPSLIMIT_MAX ||
        memory < crypto_pwhash_argon2id_MEMLIMIT_MIN || memory > crypto_pwhash_argon2id_MEMLIMIT_MAX ||
        password.size() > crypto_pwhash_argon2id_PASSWD_MAX) {
        throw DataError("the cost of a password is out of range");
    }
    SecretBytes key(crypto_aead_xchacha20poly1305_ietf_KEYBYTES);
    if (::crypto_pwhash(Out(key.Bytes()), key.Bytes().size(), password.data(), password.size(), Raw(seal.salt), passes,
                        static_cast<std::size_t>(memory), crypto_pwhash_ALG_ARGON2ID13) != 0) {
        throw std::bad_alloc();
    }
    return key;
}

}  // namespace

PasswordSeal NewPasswordSeal(const PasswordCost& cost) {
    Start();
    PasswordSeal seal;
    seal.cost = cost;
    ::randombytes_buf(seal.salt.data(), seal.salt.size());
    ::randombytes_buf(seal.nonce.data(), seal.nonce.size());
    return seal;
}

std::vector<std::byte> Seal(const PasswordSeal& seal, std::string_view password, std::string_view header,
                            const SecretBytes& secret) {
    const SecretBytes key = KeyOf(password, seal);
    std::vector<std::byte> sealed(secret.Bytes().size() + PasswordSeal::kTagSize);
    unsigned long long size = 0;
    const auto bytes = secret.Bytes();
    ::crypto_aead_xchacha20poly1305_ietf_encrypt(Out(sealed), &size, Raw(bytes), bytes.size(), Raw(header),
                                                 header.size(), nullptr, Raw(seal.nonce), Raw(key.Bytes()));
    return sealed;
}

std::optional<SecretBytes> Unseal(const PasswordSeal& seal, std::string_view password, std::string_view header,
                                  std::span<const std::byte> sealed) {
    if (sealed.size() < PasswordSeal::kTagSize) return std::nullopt;
    const SecretBytes key = KeyOf(password, seal);
    SecretBytes secret(sealed.size() - PasswordSeal::kTagSize);
    unsigned long long size = 0;
    if (::crypto_aead_xchacha20poly1305_ietf_decrypt(Out(secret.Bytes()), &size, nullptr, Raw(sealed), sealed.size(),
                                                     Raw(header), header.size(), Raw(seal.nonce),
                                                     Raw(key.Bytes())) != 0) {
        return std::nullopt;
    }
    return secret;
}

}  // namespace qel
