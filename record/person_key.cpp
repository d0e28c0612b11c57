#include "qellib10/record/person_key.h"

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/random.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/guarded_file.h"
#include "qellib10/platform/storage/replacement.h"
#include "qellib10/record/person_key_format.h"

namespace qel {
namespace {

constexpr unsigned kPrivateMode = 0600;

PersonKeyFile ReadFile(const std::string& path) {
    const GuardedFile file(path, GuardedFile::Use::kRead);
    if (!file.IsPrivate()) throw DataError("the person's key is not this user's alone: its mode has to be 0600");
    if (file.Size() > PersonKeyFile::kLongestFile) throw DataError("the file is too long for a person's key");
    std::string text(static_cast<std::size_t>(file.Size()), '\0');
    text.resize(file.ReadAt(std::as_writable_bytes(std::span(text)), 0));
    return PersonKeyFile::OfText(text);
}

SecretBytes NewSeed() {
    SecretBytes seed(PersonKeyFile::kSeedSize);
    if (!FillRandom(seed.Bytes())) throw DataError("no source of random numbers");
    return seed;
}

SecretBytes Opened(const PersonKeyFile& file, std::string_view password) {
    std::optional<SecretBytes> seed = file.Open(password);
    if (!seed) throw WrongPassword();
    return std::move(*seed);
}

// The new file has mode 0600, or the rights of the old one, which had to be the same.
void WriteTo(Replacement& file, const PersonKeyFile& key, const std::string& path) {
    const std::string text = key.Text();
    WriteFully(file.File(), std::as_bytes(std::span(text)), path);
}

}  // namespace

WrongPassword::WrongPassword() : DataError("the password is wrong") {}
WrongPassword::~WrongPassword() = default;
PersonSigner::~PersonSigner() = default;

struct PersonKey::State {
    std::string path;
    PersonKeyFile file;

    // The file as it is now, of the same key.
    PersonKeyFile Current() const {
        PersonKeyFile now = ReadFile(path);
        if (now.key != file.key || now.user != file.user || now.name != file.name)
            throw DataError("the file has another person's key by now");
        return now;
    }
};

PersonKey::PersonKey() = default;
PersonKey::~PersonKey() = default;

int PersonKey::Make(std::string_view path, std::string_view user, std::string_view printedName,
                    std::string_view password) {
    m_state.reset();
    return AsResult("PersonKey::Make", [&] {
        auto made = std::make_unique<State>();
        made->path = path;
        made->file.user = user;
        made->file.name = printedName;
        // What is refused anyway is refused before the password costs time.
        made->file.Text();
        if (GuardedFile::OpenIfThere(made->path, GuardedFile::Use::kRead))
            throw DataError("the file of a person's key exists already");
        const SecretBytes seed = NewSeed();
        made->file.key.bytes = PublicKeyOf(seed.Bytes());
        Replacement file(path, kPrivateMode);
        made->file.Close(seed, password);
        WriteTo(file, made->file, made->path);
        file.CommitNew();
        m_state = std::move(made);
        return 1;
    });
}

int PersonKey::Open(std::string_view path) {
    m_state.reset();
    return AsResult("PersonKey::Open", [&] {
        m_state.reset(new State{std::string(path), ReadFile(std::string(path))});
        return 1;
    });
}

int PersonKey::ChangePassword(std::string_view oldPassword, std::string_view newPassword) {
    return AsResult("PersonKey::ChangePassword", [&] {
        if (m_state == nullptr) return Refuse(FailureKind::kState, "", "no person's key is open");
        PersonKeyFile::RequireUsable(newPassword);
        try {
            PersonKeyFile file = m_state->Current();
            const SecretBytes seed = Opened(file, oldPassword);
            Replacement changed(m_state->path, kPrivateMode);
            file.Close(seed, newPassword);
            WriteTo(changed, file, m_state->path);
            changed.Commit();
            return 1;
        } catch (const WrongPassword& wrong) {
            return Refuse(FailureKind::kRefused, m_state->path, wrong.what());
        }
    });
}

std::string PersonKey::User() const { return m_state != nullptr ? m_state->file.user : ""; }
std::string PersonKey::PrintedName() const { return m_state != nullptr ? m_state->file.name : ""; }
std::string PersonKey::PublicKey() const { return m_state != nullptr ? m_state->file.key.Text() : ""; }
std::string PersonKey::Fingerprint() const { return m_state != nullptr ? m_state->file.key.Fingerprint() : ""; }

std::array<std::byte, 64> PersonKey::Sign(std::string_view bytes, std::string_view password) {
    if (m_state == nullptr) throw DataError("no person's key is open");
    return SignEd25519(Opened(m_state->Current(), password).Bytes(), bytes);
}

}  // namespace qel
