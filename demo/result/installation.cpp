#include "demo/result/installation.h"

#include <algorithm>

#include "demo/support/failure.h"
#include "demo/support/file_step.h"

namespace titration {

Installation::Installation(const CString& archive) : m_folder(archive + ".installation") {}

std::string Installation::PersonKeyPath(const std::string& user) const {
    const bool isName = !user.empty() && std::ranges::all_of(user, [](unsigned char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '-';
    });
    if (!isName)
        throw Failure("\"" + user + "\" has more than letters, digits, _ and -, so it names no file for a key");
    return Path(("person-" + user).c_str());
}

std::shared_ptr<qel::Signer> Installation::Key() const {
    if (CQFile::CreateDirectories(m_folder) == 0) throw Failure(std::string(m_folder) + ": " + Why("cannot be made"));
    auto key = std::make_shared<qel::KeyFileSigner>();
    // Two first runs at once: the second one finds the key that the first one has made.
    if (CQFile::IsExist(KeyPath().c_str()) == 0 && key->Make(KeyPath(), "titration") != 0) return key;
    if (key->Load(KeyPath()) == 0) throw Failure(KeyPath() + ": " + Why("cannot be read"));
    return key;
}

}  // namespace titration
