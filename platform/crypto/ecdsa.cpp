#include "qellib10/platform/crypto/ecdsa.h"

#include <openssl/core_names.h>
#include <openssl/ec.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/params.h>

#include <memory>
#include <string>

namespace qel {
namespace {

using Key = std::unique_ptr<EVP_PKEY, decltype(&::EVP_PKEY_free)>;
using KeyContext = std::unique_ptr<EVP_PKEY_CTX, decltype(&::EVP_PKEY_CTX_free)>;
using Context = std::unique_ptr<EVP_MD_CTX, decltype(&::EVP_MD_CTX_free)>;
using Pair = std::unique_ptr<ECDSA_SIG, decltype(&::ECDSA_SIG_free)>;
using Number = std::unique_ptr<BIGNUM, decltype(&::BN_free)>;

const unsigned char* Raw(const std::byte* bytes) { return reinterpret_cast<const unsigned char*>(bytes); }

// Nothing for a point that is not on the curve, or has a coordinate not below the field's prime.
Key KeyOf(P256Key point) {
    constexpr std::byte kUncompressed{4};
    Key key(nullptr, ::EVP_PKEY_free);
    if (point.front() != kUncompressed) return key;
    char curve[] = "prime256v1";
    OSSL_PARAM parameters[] = {::OSSL_PARAM_construct_utf8_string(OSSL_PKEY_PARAM_GROUP_NAME, curve, 0),
                               ::OSSL_PARAM_construct_octet_string(OSSL_PKEY_PARAM_PUB_KEY, point.data(), point.size()),
                               ::OSSL_PARAM_construct_end()};
    const KeyContext context(::EVP_PKEY_CTX_new_from_name(nullptr, "EC", nullptr), ::EVP_PKEY_CTX_free);
    EVP_PKEY* made = nullptr;
    if (context != nullptr && ::EVP_PKEY_fromdata_init(context.get()) == 1 &&
        ::EVP_PKEY_fromdata(context.get(), &made, EVP_PKEY_PUBLIC_KEY, parameters) == 1) {
        key.reset(made);
    }
    return key;
}

// In DER, as libcrypto takes it; empty if there is no memory for it.
std::string DerOf(const P256Signature& signature) {
    constexpr int kHalf = 32;
    Number r(::BN_bin2bn(Raw(signature.data()), kHalf, nullptr), ::BN_free);
    Number s(::BN_bin2bn(Raw(signature.data() + kHalf), kHalf, nullptr), ::BN_free);
    const Pair pair(::ECDSA_SIG_new(), ::ECDSA_SIG_free);
    if (r == nullptr || s == nullptr || pair == nullptr || ::ECDSA_SIG_set0(pair.get(), r.get(), s.get()) != 1)
        return {};
    static_cast<void>(r.release());  // the pair's now
    static_cast<void>(s.release());
    const int size = ::i2d_ECDSA_SIG(pair.get(), nullptr);
    std::string der(size > 0 ? static_cast<std::size_t>(size) : 0, '\0');
    auto* to = reinterpret_cast<unsigned char*>(der.data());
    if (size > 0) ::i2d_ECDSA_SIG(pair.get(), &to);
    return der;
}

}  // namespace

bool IsP256Key(const P256Key& key) {
    const bool isKey = KeyOf(key) != nullptr;
    if (!isKey) ::ERR_clear_error();  // the thread's list of errors is the application's, too
    return isKey;
}

bool IsSignedBy(const P256Key& key, std::string_view message, const P256Signature& signature) {
    const Key used = KeyOf(key);
    const Context context(::EVP_MD_CTX_new(), ::EVP_MD_CTX_free);
    const std::string der = DerOf(signature);
    const auto raw = [](std::string_view bytes) { return reinterpret_cast<const unsigned char*>(bytes.data()); };
    const bool isSigned = used != nullptr && context != nullptr &&
                          ::EVP_DigestVerifyInit(context.get(), nullptr, ::EVP_sha256(), nullptr, used.get()) == 1 &&
                          ::EVP_DigestVerify(context.get(), raw(der), der.size(), raw(message), message.size()) == 1;
    if (!isSigned) ::ERR_clear_error();
    return isSigned;
}

}  // namespace qel
