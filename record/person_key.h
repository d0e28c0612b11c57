#pragma once

#include <memory>

#include "qellib10/platform/failure.h"
#include "qellib10/record/person_signer.h"

namespace qel {

/// A person's own key, in a file that only the person's password opens. Without it a "signature" would be a name that
/// the program writes: whoever runs the program could sign as anybody. The key is opened for one signature and wiped
/// after it, so nobody signs at a screen that somebody else has left.
///
/// @code
/// std::string password;  // as somebody has typed it
/// qel::PersonKey key;
/// if (key.Make(R"(\srv\keys\mori)", "mori", "Mori Akiko", password) == 0) return;
/// std::printf("%s\n", key.Fingerprint().c_str());
/// @endcode
///
/// Operations return 1, or 0 and qel::LastFailure has the reason: its kind is kRefused for a wrong password and kData
/// for a damaged file. A file that somebody has changed on purpose can look like a wrong password.
///
/// Each try of a password takes about half a second and 256 MiB, also for somebody who has a copy of the file. Such a
/// copy keeps its password: changing it only helps against those who do not have one. A forgotten password cannot be
/// replaced; the person gets a new key.
///
/// A password has 1 to 1024 bytes, whatever they are; they are compared as they are, so a character with two forms in
/// Unicode has to be entered in the same one. Wipe the caller's copy.
class QELLIB10_API PersonKey : public PersonSigner {
public:
    PersonKey();
    ~PersonKey() override;

    /// Makes a new key in a file that must not exist yet, with mode 0600, and opens it.
    /// @param path in the library's form
    /// @param user for logging on, 1 to 256 bytes of UTF-8 without control characters, and no blank at the
    /// start or end; so is @p printedName
    int Make(std::string_view path, std::string_view user, std::string_view printedName, std::string_view password);
    /// Reads what is not secret. The file must be this user's and have mode 0600.
    /// @return 1, or 0 and there is no key
    int Open(std::string_view path);
    /// Tries are not limited and leave no entry: qel::RecordedPersonKey changes the password of a person who signs in a
    /// trail. The key stays the same. Whatever interrupts it, the file is the old one or the new one. It waits, for
    /// half a minute at most, while somebody else changes the password, or gives the person another key.
    /// @return 0 also if the file has another key by now
    int ChangePassword(std::string_view oldPassword, std::string_view newPassword);

    std::string User() const override;
    std::string PrintedName() const override;
    std::string PublicKey() const override;
    /// "SHA256:" and 43 characters, as ssh-keygen -l shows it; empty while there is no key.
    std::string Fingerprint() const;

    /// Reads the file again, so that a password changed by another program is the right one at once.
    /// @throws DataError also when the file has another key than at Open
    PersonSignature Sign(std::string_view bytes, std::string_view password) override;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace qel
