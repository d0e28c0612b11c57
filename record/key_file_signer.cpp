#include "qellib10/record/key_file_signer.h"

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/crypto/secret_bytes.h"
#include "qellib10/platform/random.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/guarded_file.h"
#include "qellib10/platform/storage/replacement.h"
#include "qellib10/record/ssh_key.h"
#include "qellib10/record/text_forms.h"

namespace qel {
namespace {

constexpr std::size_t kLongestFile = 16 * 1024;
constexpr std::size_t kLongestComment = 256;
constexpr std::size_t kSeedSize = 32;
constexpr unsigned kPrivateMode = 0600;

SecretBytes ReadSecretFile(const std::string& path) {
    const GuardedFile file(path, GuardedFile::Use::kRead);
    if (!file.IsPrivate()) throw DataError("the private key is not this user's alone: its mode has to be 0600");
    const std::uint64_t size = file.Size();
    if (size > kLongestFile) throw DataError("the file is too long for a private key");
    SecretBytes bytes(static_cast<std::size_t>(size));
    if (file.ReadAt(bytes.Bytes(), 0) != size) throw DataError("the private key became shorter while it was read");
    return bytes;
}

}  // namespace

struct KeyFileSigner::State {
    SshPrivateKey key;
};

Signer::~Signer() = default;
bool Signer::ChecksSignatures() const { return false; }

KeyFileSigner::KeyFileSigner() = default;
KeyFileSigner::~KeyFileSigner() = default;

int KeyFileSigner::Make(std::string_view path, std::string_view comment) {
    m_state.reset();
    return AsResult("KeyFileSigner::Make", [&] {
        if (!comment.empty() && !IsShown(comment, kLongestComment))
            throw DataError("the comment of a key needs at most 256 bytes that can be shown, and no blank at its ends");
        SecretBytes seed(kSeedSize);
        if (!FillRandom(seed.Bytes())) throw DataError("the system has no random numbers");
        Replacement file(path, kPrivateMode);
        const SecretBytes text = PrivateKeyText(seed.Bytes(), comment);
        WriteFully(file.File(), text.Bytes(), std::string(path));
        file.CommitNew();
        m_state.reset(new State{{.publicKey = {PublicKeyOf(seed.Bytes())}, .key = Ed25519PrivateKey(seed.Bytes())}});
        return 1;
    });
}

int KeyFileSigner::Load(std::string_view path) {
    m_state.reset();
    return AsResult("KeyFileSigner::Load", [&] {
        const SecretBytes file = ReadSecretFile(std::string(path));
        m_state.reset(new State{ReadPrivateKey(file.View())});
        return 1;
    });
}

std::string KeyFileSigner::PublicKey() const { return m_state != nullptr ? m_state->key.publicKey.Text() : ""; }

// Load has compared both halves of the key, and nothing but this process has to do with a signature.
bool KeyFileSigner::ChecksSignatures() const { return true; }

std::array<std::byte, 64> KeyFileSigner::Sign(std::string_view bytes) {
    if (m_state == nullptr) throw DataError("no private key was loaded");
    return m_state->key.key.Sign(bytes);
}

}  // namespace qel
