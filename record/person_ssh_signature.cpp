#include "qellib10/record/person_ssh_signature.h"

#include "qellib10/platform/crypto/digest.h"
#include "qellib10/record/ssh_signature.h"
#include "qellib10/record/ssh_wire.h"

namespace qel {
namespace {

// Of a security key: the person has touched it, and it knows by a PIN or a finger who that was.
constexpr std::uint8_t kPresent = 0x01, kVerified = 0x04;
constexpr std::size_t kHalf = 32;  // r, then s

bool IsVerified(const PersonSignature& signature) {
    return (signature.flags & kPresent) != 0 && (signature.flags & kVerified) != 0;
}

std::string HashOf(std::string_view bytes) {
    const Sha256Digest digest = Sha256(bytes);
    return {reinterpret_cast<const char*>(digest.data()), digest.size()};
}

struct IsSigned {
    std::string_view bytes;
    const PersonSignature& signature;

    bool operator()(const Ed25519Key& key) const { return IsSignedBy(key, bytes, signature.bytes); }
    bool operator()(const P256Key& key) const { return IsSignedBy(key, bytes, signature.bytes); }
    bool operator()(const SecurityKey& key) const {
        const SshWriter message =
            SshWriter().Raw(HashOf(key.application)).Byte(signature.flags).Number(signature.counter).Raw(HashOf(bytes));
        return IsVerified(signature) && IsSignedBy(key.bytes, message.Bytes(), signature.bytes);
    }
};

}  // namespace

std::string SignatureBlob(const PersonPublicKey& key, const PersonSignature& signature) {
    SshWriter writer;
    writer.String(key.Kind());
    const std::span<const std::byte> bytes = signature.bytes;
    if (!std::holds_alternative<P256Key>(key.key)) {
        writer.String(bytes);
    } else {
        writer.String(SshWriter().Integer(bytes.first(kHalf)).Integer(bytes.subspan(kHalf)).Bytes());
    }
    if (std::holds_alternative<SecurityKey>(key.key)) writer.Byte(signature.flags).Number(signature.counter);
    return writer.Bytes();
}

PersonSignature ReadSignatureBlob(const PersonPublicKey& key, std::string_view blob) {
    PersonSignature read;
    SshReader reader(blob);
    reader.ExpectString(key.Kind());
    const std::span<std::byte> bytes = read.bytes;
    if (!std::holds_alternative<P256Key>(key.key)) {
        reader.String(bytes);
    } else {
        SshReader pair(reader.String());
        pair.Integer(bytes.first(kHalf));
        pair.Integer(bytes.subspan(kHalf));
        pair.ExpectEnd();
    }
    if (std::holds_alternative<SecurityKey>(key.key)) {
        read.flags = reader.Byte();
        read.counter = reader.Number();
        if (!IsVerified(read)) throw DataError("the security key has not verified its user");
    }
    reader.ExpectEnd();
    return read;
}

bool IsSignedBy(const PersonPublicKey& key, std::string_view bytes, const PersonSignature& signature) {
    return std::visit(IsSigned{bytes, signature}, key.key);
}

std::string PersonSshSignature::Blob(std::string_view nameSpace) const {
    const std::string keyBlob = key.Blob(), signatureBlob = SignatureBlob(key, signature);
    return SshEnvelope{keyBlob, signatureBlob}.Blob(nameSpace);
}

PersonSshSignature PersonSshSignature::OfBlob(std::string_view blob, std::string_view nameSpace) {
    const SshEnvelope envelope = SshEnvelope::OfBlob(blob, nameSpace);
    const PersonPublicKey key = PersonPublicKey::OfBlob(envelope.key);
    return {key, ReadSignatureBlob(key, envelope.signature)};
}

bool IsSignatureOf(const PersonSshSignature& signature, std::string_view nameSpace, std::string_view message) {
    return IsSignedBy(signature.key, BytesToSign(nameSpace, message), signature.signature);
}

}  // namespace qel
