#include "qellib10/record/person_key_format.h"

#include <algorithm>

#include "qellib10/platform/crypto/digest.h"
#include "qellib10/platform/error.h"
#include "qellib10/record/canonical_json.h"
#include "qellib10/record/text_forms.h"

namespace qel {
namespace {

constexpr std::uint64_t kFormat = 1;

void Require(bool isRight, const char* what) {
    if (!isRight) throw DataError(std::string("the file of a person's key ") + what);
}

JsonWriter WriteHeader(const PersonKeyFile& file) {
    JsonWriter json;
    json.Number("personkey", kFormat);
    json.Text("user", file.user);
    json.Text("name", file.name);
    json.Text("key", file.key.Text());
    json.Number("passes", file.seal.cost.passes);
    json.Number("memory", file.seal.cost.memory);
    json.Text("salt", Hex(file.seal.salt));
    json.Text("nonce", Hex(file.seal.nonce));
    return json;
}

void ReadHex(JsonReader& json, std::string_view key, std::span<std::byte> bytes) {
    const std::string text = json.Text(key);
    Require(IsHex(text, 2 * bytes.size()), "has bytes in another form");
    Unhex(text, bytes);
}

}  // namespace

std::string PersonKeyFile::Header() const { return WriteHeader(*this).Written(); }

std::string PersonKeyFile::Text() const {
    Require(IsShown(user, kLongestName) && IsShown(name, kLongestName),
            "needs names of 1 to 256 bytes that can be shown");
    JsonWriter json = WriteHeader(*this);
    json.Text("sealed", Hex(sealed));
    json.Text("sha256", Hex(Sha256(json.Written())));
    return json.Written() + "}\n";
}

PersonKeyFile PersonKeyFile::OfText(std::string_view text) {
    Require(text.size() <= kLongestFile, "is too long");
    Require(text.ends_with('\n'), "is not whole");
    JsonReader json(text.substr(0, text.size() - 1), "the file is no person's key");
    PersonKeyFile file;
    Require(json.Number("personkey") == kFormat, "has a format that is not known");
    file.user = json.Text("user");
    file.name = json.Text("name");
    file.key = SshPublicKey::OfText(json.Text("key"));
    file.seal.cost.passes = json.Number("passes");
    file.seal.cost.memory = json.Number("memory");
    ReadHex(json, "salt", file.seal.salt);
    ReadHex(json, "nonce", file.seal.nonce);
    ReadHex(json, "sealed", file.sealed);
    json.Text("sha256");
    json.End();
    Require(file.Text() == text, "is damaged: its sum is wrong, or it is in another form than the only one");
    const auto& [passes, memory] = file.seal.cost;
    Require(passes >= kLeast.passes && memory >= kLeast.memory, "lets a password be guessed too quickly");
    Require(passes <= kMost.passes && memory <= kMost.memory, "needs too much time or memory");
    return file;
}

void PersonKeyFile::RequireUsable(std::string_view password) {
    Require(!password.empty() && password.size() <= kLongestPassword, "needs a password of 1 to 1024 bytes");
}

void PersonKeyFile::Close(const SecretBytes& seed, std::string_view password, const PasswordCost& cost) {
    RequireUsable(password);
    seal = NewPasswordSeal(cost);
    const std::vector<std::byte> made = Seal(seal, password, Header(), seed);
    if (made.size() != sealed.size()) throw DataError("a person's key has another length");
    std::ranges::copy(made, sealed.begin());
}

std::optional<SecretBytes> PersonKeyFile::Open(std::string_view password) const {
    if (password.empty() || password.size() > kLongestPassword) return std::nullopt;
    std::optional<SecretBytes> seed = Unseal(seal, password, Header(), sealed);
    Require(!seed || PublicKeyOf(seed->Bytes()) == key.bytes, "has the private key of another public key");
    return seed;
}

}  // namespace qel
