#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "qellib10/record/allowed_signers.h"
#include "qellib10/record/trail_check.h"
#include "qellib10/record/trail_line.h"

namespace qel {

/// Who may sign, as the entries up to now and the anchors say.
///
/// A key that was stolen may have signed entries from before, too: its thief can put back an older state and go on from
/// there with old times and numbers. So a key that is revoked from entry N on has signed the entries before N only
/// where something shows that they were there while the key was still safe, so something from before entry N: a time
/// stamp, a hash that is known from elsewhere, or an entry of another key, which has the hash of all before. That other
/// key must owe nothing to a revoked one: see IsWitness.
///
/// All that is known only after an entry, such as that its key was revoked later, is Doubt. For that the trail is read
/// once more.
class TrailTrust {
public:
    /// @param key fingerprint of the key that started the trail; empty: not known
    TrailTrust(std::string key, std::optional<AllowedSigners> allowed);

    /// What is wrong with the signer of an entry whose signature is right.
    std::optional<TrailFault> FaultOf(const ReadLine& line) const;
    /// Learns from an entry of somebody who is trusted.
    /// @throws DataError when it makes no sense
    void Learn(const ReadLine& line);

    bool HasRevoked() const noexcept { return !m_revoked.empty(); }
    /// What is known after the last entry, when a key was revoked: StartProofs, then IsWitness and Prove for what shows
    /// that entries were there, EndProofs, then Doubt.
    void StartProofs();
    /// Whether an entry shows that those before it were there: its key was never revoked, and is named by the anchors
    /// or was announced by such a key.
    bool IsWitness(const ReadLine& line) const;
    /// Entries up to @p upTo were there when entry @p at was written.
    void Prove(std::uint64_t at, std::uint64_t upTo);
    void EndProofs();
    /// What later entries have made wrong with the signer of this one, as a sentence.
    std::optional<std::string> Doubt(const ReadLine& line) const;

private:
    // A key as an entry has announced it. The same key may be announced again after its end.
    struct Announced {
        SshPublicKey key, by;
        std::uint64_t at = 0, end = 0;  // numbers of entries; end 0: it has not ended
        bool isVoid = false;            // a key has announced it that was revoked
        bool owesNothing = false;       // see IsWitness
    };
    struct Revoked {
        std::uint64_t from = 0;    // the first entry that is distrusted
        std::uint64_t proven = 0;  // those up to this one were there before
    };

    bool IsNamed(const SshPublicKey& key) const;
    bool IsAllowed(const SshPublicKey& key) const;
    const Announced* Find(const SshPublicKey& key, std::uint64_t number) const;
    const Revoked* FindRevoked(const SshPublicKey& key) const;
    bool IsVoid(const SshPublicKey& key, std::uint64_t number) const;
    void Announce(const ReadLine& line, const SshPublicKey& key);
    bool IsOfDistrusted(const Announced& announced) const;
    void Revoke(const TrailEntry& entry);
    void VoidAnnounced();

    std::string m_key;
    mutable std::optional<SshPublicKey> m_named;
    std::optional<AllowedSigners> m_allowed;
    std::vector<SshPublicKey> m_active;  // as the writer has them: whoever appends does not know which are void
    bool m_hasVoid = false;
    std::vector<Announced> m_announced;
    // Places in m_announced. A forged trail may announce and revoke thousands of keys.
    std::map<SshPublicKey, std::vector<std::size_t>> m_places;
    std::map<SshPublicKey, Revoked> m_revoked;
};

}  // namespace qel
