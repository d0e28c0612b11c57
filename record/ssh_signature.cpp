#include "qellib10/record/ssh_signature.h"

#include "qellib10/platform/crypto/digest.h"
#include "qellib10/record/ssh_wire.h"

namespace qel {
namespace {

constexpr std::string_view kMagic = "SSHSIG";
constexpr std::string_view kHash = "sha512";
constexpr std::uint32_t kVersion = 1;

}  // namespace

std::string SshEnvelope::Blob(std::string_view nameSpace) const {
    return SshWriter()
        .Raw(kMagic)
        .Number(kVersion)
        .String(key)
        .String(nameSpace)
        .String("")  // reserved
        .String(kHash)
        .String(signature)
        .Bytes();
}

SshEnvelope SshEnvelope::OfBlob(std::string_view blob, std::string_view nameSpace) {
    SshEnvelope envelope;
    SshReader reader(blob);
    reader.Expect(kMagic);
    reader.Expect(SshWriter().Number(kVersion).Bytes());
    envelope.key = reader.String();
    reader.ExpectString(nameSpace);
    reader.ExpectString("");
    reader.ExpectString(kHash);
    envelope.signature = reader.String();
    reader.ExpectEnd();
    return envelope;
}

std::string SshSignature::Blob(std::string_view nameSpace) const {
    const std::string keyBlob = key.Blob();
    const SshWriter inner = SshWriter().String(kSshKeyType).String(bytes);
    return SshEnvelope{keyBlob, inner.Bytes()}.Blob(nameSpace);
}

SshSignature SshSignature::OfBlob(std::string_view blob, std::string_view nameSpace) {
    const SshEnvelope envelope = SshEnvelope::OfBlob(blob, nameSpace);
    SshSignature signature{.key = SshPublicKey::OfBlob(envelope.key)};
    SshReader inner(envelope.signature);
    inner.ExpectString(kSshKeyType);
    inner.String(signature.bytes);
    inner.ExpectEnd();
    return signature;
}

std::string BytesToSign(std::string_view nameSpace, std::string_view message) {
    return SshWriter().Raw(kMagic).String(nameSpace).String("").String(kHash).String(Sha512(message)).Bytes();
}

bool IsSignatureOf(const SshSignature& signature, std::string_view nameSpace, std::string_view message) {
    return IsSignedBy(signature.key.bytes, BytesToSign(nameSpace, message), signature.bytes);
}

}  // namespace qel
