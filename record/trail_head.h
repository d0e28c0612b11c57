#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "qellib10/platform/crypto/digest.h"
#include "qellib10/platform/storage/guarded_file.h"
#include "qellib10/record/ssh_key.h"

namespace qel {

/// What is known about the end of a trail: its last acknowledged entry, and who may sign the next one.
struct TrailHeadState {
    std::uint64_t generation = 0;     // grows with each writing
    std::uint64_t number = 0;         // of the entry; 0 before the first
    std::uint64_t length = 0;         // bytes of the trail with it
    Sha256Digest hash = {};           // of its line
    std::string trailId;              // 32 hexadecimal digits
    std::uint32_t tailsSetAside = 0;  // torn ends since that entry, which the next one reports
    std::uint64_t tailSize = 0;       // of the latest of them
    Sha256Digest tailHash = {};
    std::vector<SshPublicKey> keys;  // those that may sign, at most kMostKeys

    static constexpr std::size_t kMostKeys = 64;

    bool operator==(const TrailHeadState&) const = default;
};

/// The file that keeps it, outside the archive: whoever can change the trail must not be able to change both. It has
/// two places of 4 KiB, which are written in turn and flushed, so that one is whole whenever the power fails.
///
///     0     "QTH1", number of keys (4 bytes), generation (8)
///     16    number (8), length (8), hash (32)
///     64    ID of the trail (16 bytes), tails set aside (4), zeros (4), size (8) and hash (32) of the latest
///     128   keys, 32 bytes each
///     4064  SHA-256 of everything before
///
/// Integers are little-endian. The lock of this file is the trail's. One thread at a time. Everything throws
/// CFileException and DataError.
class TrailHead {
public:
    explicit TrailHead(GuardedFile file) : m_file(std::move(file)) {}
    /// Nothing if the file is missing.
    static std::optional<TrailHead> OpenIfThere(const std::string& path, GuardedFile::Use use);
    /// Makes the file of a new trail; without effect when there is one.
    static void MakeNew(const std::string& path, const TrailHeadState& state);

    const GuardedFile& File() const noexcept { return m_file; }
    TrailHeadState Load() const;
    /// Writes the place whose turn it is, and counts up the generation of @p state.
    void Store(TrailHeadState& state) const;
    /// Writes the same once more: a flush that failed may have lost it although it can be read.
    void StoreAgain(const TrailHeadState& state) const;

private:
    std::optional<TrailHeadState> LoadLatest() const;

    GuardedFile m_file;
    mutable std::vector<std::byte> m_loadedBytes;
    mutable std::optional<TrailHeadState> m_loaded;
};

}  // namespace qel
