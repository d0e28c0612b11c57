#include "qellib10/record/person_key.h"

#include "qellib10/platform/archive/result.h"
#include "qellib10/record/next_person_key.h"
#include "qellib10/record/person_key_file.h"

namespace qel {

WrongPassword::WrongPassword() : DataError("the password is wrong") {}
WrongPassword::WrongPassword(const std::string& why) : DataError(why) {}
WrongPassword::~WrongPassword() = default;
PersonSigner::~PersonSigner() = default;

struct PersonKey::State {
    std::string path;
    PersonKeyFile file;

    // The file as it is now, of the same key.
    PersonKeyFile Current() const {
        PersonKeyFile now = ReadPersonKeyFile(path);
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
        // What is refused anyway is refused before the password costs time.
        if (IsPersonKeyFileThere(made->path)) throw DataError("the file of a person's key exists already");
        Replacement file(path, kPersonKeyMode);
        made->file = NewPersonKeyFile(user, printedName, password);
        WriteTo(file, made->file, made->path);
        file.CommitNew();
        m_state = std::move(made);
        return 1;
    });
}

int PersonKey::Open(std::string_view path) {
    m_state.reset();
    return AsResult("PersonKey::Open", [&] {
        m_state.reset(new State{std::string(path), ReadPersonKeyFile(std::string(path))});
        return 1;
    });
}

int PersonKey::ChangePassword(std::string_view oldPassword, std::string_view newPassword) {
    return AsResult("PersonKey::ChangePassword", [&] {
        if (m_state == nullptr) return Refuse(FailureKind::kState, "", "no person's key is open");
        PersonKeyFile::RequireUsable(newPassword);
        try {
            const NextPersonKey turn(m_state->path);
            PersonKeyFile file = m_state->Current();
            const std::string before = file.Text();
            const SecretBytes seed = OpenedSeed(file, oldPassword);
            Replacement changed(m_state->path, kPersonKeyMode);
            file.Close(seed, newPassword);
            WriteTo(changed, file, m_state->path);
            // Whoever puts a file there without the turn, such as from a backup, has not waited.
            if (m_state->Current().Text() != before) throw DataError("the file was changed meanwhile");
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

PersonSignature PersonKey::Sign(std::string_view bytes, std::string_view password) {
    if (m_state == nullptr) throw DataError("no person's key is open");
    return {.bytes = SignEd25519(OpenedSeed(m_state->Current(), password).Bytes(), bytes)};
}

}  // namespace qel
