#pragma once

#include <string>
#include <vector>

#include "qellib10/platform/storage/guarded_file.h"
#include "qellib10/record/trail_line.h"

namespace qel {

/// What an entry of the kind trail_kind::kKeyRevoked says.
struct RevokedKey {
    SshPublicKey key;
    std::uint64_t from = 0;  // the first entry that is distrusted

    /// @throws DataError for no key, or no number of an entry up to this one
    static RevokedKey Of(const TrailEntry& entry);
};

/// No key revokes itself: whoever has stolen it could do so, and distrust what its owner has signed.
/// @throws DataError for an entry in which @p signer does
void RequireOtherSigner(const TrailRecord& record, const SshPublicKey& signer);

/// What an entry changes in the list of keys that may sign.
/// @throws DataError for a key that is in it already, or not, or no key, or one too many
void ApplyToKeys(const TrailEntry& entry, std::vector<SshPublicKey>& keys);

/// @throws DataError for an entry that cannot come next, before anything of it is written
void RequireWritable(const TrailEntry& entry, std::vector<SshPublicKey> keys);

/// Goes through a trail for an entry that announces a key: it may not be one that was revoked, and only the trail
/// knows.
/// @param length bytes of the trail
/// @throws DataError for such a key; CFileException
void RequireNotRevoked(const GuardedFile& trail, std::uint64_t length, const SshPublicKey& key);

/// The same for an entry that revokes a key: one that the trail never had is a mistake, and the stolen one goes on.
/// @throws DataError unless an entry has announced the key, or has started the trail with it; CFileException
void RequireAnnounced(const GuardedFile& trail, std::uint64_t length, const SshPublicKey& key);

/// The name without its folder, in UTF-8.
std::string FileNameOf(const std::string& path);

}  // namespace qel
