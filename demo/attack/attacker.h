#pragma once

#include <memory>
#include <string>

#include "demo/attack/copied_archive.h"

namespace titration {

/// Somebody with a key of their own, who writes entries as the installation does.
class Attacker {
public:
    /// @throws Failure if ssh-keygen is missing
    explicit Attacker(const CopiedArchive& archive);

    std::string PublicKey() const { return m_key->PublicKey(); }
    /// Appends an entry that follows the last one, signed with the attacker's key.
    /// @param like the last line with this text is what the entry looks like
    /// @param from what is replaced in it
    void Append(const std::string& like, const std::string& from, const std::string& to) const;
    /// Makes the whole trail again: the same entries, signed with the attacker's key.
    void MakeTrailAgain() const;

private:
    std::string Signed(const std::string& part) const;

    const CopiedArchive& m_archive;
    std::shared_ptr<qel::KeyFileSigner> m_key = std::make_shared<qel::KeyFileSigner>();
};

}  // namespace titration
