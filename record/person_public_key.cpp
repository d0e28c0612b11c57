#include "qellib10/record/person_public_key.h"

#include <array>

#include "qellib10/platform/error.h"
#include "qellib10/record/ssh_wire.h"
#include "qellib10/record/text_forms.h"

namespace qel {
namespace {

constexpr std::array<std::string_view, 3> kKinds = {kSshKeyType, "ecdsa-sha2-nistp256", "sk-ssh-ed25519@openssh.com"};
constexpr std::string_view kCurve = "nistp256";
constexpr std::size_t kLongestApplication = 256;

void Write(SshWriter& writer, const Ed25519Key& key) { writer.String(key); }
void Write(SshWriter& writer, const P256Key& key) { writer.String(kCurve).String(key); }
void Write(SshWriter& writer, const SecurityKey& key) { writer.String(key.bytes).String(key.application); }

P256Key ReadPoint(SshReader& reader) {
    P256Key key;
    reader.ExpectString(kCurve);
    reader.String(key);
    if (!IsP256Key(key)) throw DataError("the key is no point of the curve nistp256");
    return key;
}

SecurityKey ReadSecurityKey(SshReader& reader) {
    SecurityKey key;
    reader.String(key.bytes);
    key.application = reader.String();
    if (!IsShown(key.application, kLongestApplication))
        throw DataError("a security key needs an application of 1 to 256 bytes that can be shown");
    return key;
}

}  // namespace

std::string_view PersonPublicKey::Kind() const { return kKinds.at(key.index()); }

std::string PersonPublicKey::Blob() const {
    SshWriter writer;
    writer.String(Kind());
    std::visit([&](const auto& used) { Write(writer, used); }, key);
    return writer.Bytes();
}

PersonPublicKey PersonPublicKey::OfBlob(std::string_view blob) {
    SshReader reader(blob);
    const std::string_view kind = reader.String();
    if (kind == kSshKeyType) return SshPublicKey::OfBlob(blob);
    PersonPublicKey read;
    if (kind == kKinds[1]) {
        read.key = ReadPoint(reader);
    } else if (kind == kKinds[2]) {
        read.key = ReadSecurityKey(reader);
    } else {
        throw DataError("a person's key cannot be of this kind");
    }
    reader.ExpectEnd();
    return read;
}

std::string PersonPublicKey::Text() const { return std::string(Kind()) + ' ' + EncodeBase64(Blob()); }

PersonPublicKey PersonPublicKey::OfText(std::string_view text) {
    const std::size_t blank = text.find(' ');
    if (blank == std::string_view::npos) throw DataError("the text is no public key");
    const PersonPublicKey read = OfBlob(DecodeBase64(text.substr(blank + 1)));
    if (text.substr(0, blank) != read.Kind()) throw DataError("the key is of another kind than its text says");
    return read;
}

}  // namespace qel
