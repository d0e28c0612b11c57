#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/record/ssh_key.h"

namespace qel {

/// Whom to trust, in the file format of ssh-keygen's ALLOWED SIGNERS:
///
///     principals [namespaces="a,b",valid-after="20260101Z",valid-before="20261231235959Z"] ssh-ed25519 AAAA... comment
///
/// Times are those of ssh-keygen with the Z of UTC: local times would mean another moment on another machine. Both ends
/// are part of the time in which a key is valid, to the second. Keys of other kinds and of authorities are passed over.
class AllowedSigners {
public:
    /// @throws DataError naming the line that is not understood
    explicit AllowedSigners(std::string_view text);
    /// Of a file of at most 1 MiB. @throws CFileException too
    static AllowedSigners OfFile(const std::string& path);

    enum class Answer { kUnknown, kNotYetValid, kEnded, kAllowed };
    /// @param time seconds since 1970 in UTC
    Answer Ask(const SshPublicKey& key, std::string_view nameSpace, std::int64_t time) const;

    // A line of the file.
    struct Signer {
        std::uint64_t line = 0;           // from 1
        std::optional<SshPublicKey> key;  // nothing: one of another kind, or an authority's
        std::optional<std::string> namespaces;
        std::optional<std::int64_t> validAfter, validBefore;

        bool IsFor(std::string_view nameSpace) const;
    };
    const std::vector<Signer>& Signers() const noexcept { return m_signers; }

private:
    void AddLine(std::uint64_t number, std::string_view line);
    static void ReadOptions(std::string_view options, Signer& signer, bool& isAuthority);

    std::vector<Signer> m_signers;
};

/// Whether a list of patterns, separated by commas, with * and ?, accepts @p text: one pattern matches, and none with !
/// before it does.
bool MatchesPatterns(std::string_view patterns, std::string_view text);

}  // namespace qel
