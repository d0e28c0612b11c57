#include "qellib10/record/trail_keys.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

#include "qellib10/platform/error.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail_file.h"
#include "qellib10/record/trail_head.h"
#include "qellib10/record/trail_kind.h"

namespace qel {
namespace {

// Whether an entry of one of these kinds is about the key.
bool HasEntryOf(const GuardedFile& trail, std::uint64_t length, const SshPublicKey& key,
                std::initializer_list<std::string_view> actions) {
    TrailLines lines(trail, 0, length);
    for (TrailLines::Line line = lines.Next(); line.kind == TrailLines::Kind::kWhole; line = lines.Next()) {
        const auto isIn = [&](std::string_view action) {
            return line.text.find("\"action\":\"" + std::string(action) + '"') != std::string_view::npos;
        };
        if (std::ranges::none_of(actions, isIn)) continue;  // reading an entry takes longer
        const TrailEntry entry = ReadEntry(line.text).entry;
        const bool isOne = std::ranges::find(actions, entry.action) != actions.end();
        if (isOne && SshPublicKey::OfText(entry.object) == key) return true;
    }
    return false;
}

}  // namespace

void RequireOtherSigner(const TrailRecord& record, const SshPublicKey& signer) {
    if (record.action == trail_kind::kKeyRevoked && SshPublicKey::OfText(record.object) == signer)
        throw DataError("a key cannot revoke itself: whoever has stolen it could do so. Another key has to sign this");
}

void ApplyToKeys(const TrailEntry& entry, std::vector<SshPublicKey>& keys) {
    const bool starts = entry.action == trail_kind::kTrailStarted || entry.action == trail_kind::kTrailContinued;
    const bool adds = entry.action == trail_kind::kKeyAdded;
    if (entry.action == trail_kind::kKeyRevoked) std::erase(keys, RevokedKey::Of(entry).key);
    if (!starts && !adds && entry.action != trail_kind::kKeyEnded) return;
    const SshPublicKey key = SshPublicKey::OfText(entry.object);
    if (starts != (entry.number == 1)) throw DataError("a trail is started by its first entry and by no other");
    if (starts) {
        keys = {key};
        return;
    }
    const auto found = std::ranges::find(keys, key);
    if (adds == (found != keys.end())) throw DataError(adds ? "the key was announced already" : "the key may not sign");
    if (adds && keys.size() == TrailHeadState::kMostKeys) throw DataError("64 keys may sign, no more");
    adds ? keys.push_back(key) : static_cast<void>(keys.erase(found));
}

RevokedKey RevokedKey::Of(const TrailEntry& entry) {
    const std::optional<std::uint64_t> from = ReadEntryNumber(entry.after);
    if (!from || *from > entry.number)
        throw DataError("a key is revoked from an entry on: the number of one that is there");
    return {SshPublicKey::OfText(entry.object), *from};
}

void RequireWritable(const TrailEntry& entry, std::vector<SshPublicKey> keys) {
    const std::string line = LineOf(SignedPart(entry), SshSignature{});
    if (ReadEntry(line).entry != entry) throw DataError("an entry cannot be read back as what it is");
    ApplyToKeys(entry, keys);
}

void RequireNotRevoked(const GuardedFile& trail, std::uint64_t length, const SshPublicKey& key) {
    if (HasEntryOf(trail, length, key, {trail_kind::kKeyRevoked}))
        throw DataError("a key that was revoked cannot be announced again");
}

void RequireAnnounced(const GuardedFile& trail, std::uint64_t length, const SshPublicKey& key) {
    if (!HasEntryOf(trail, length, key,
                    {trail_kind::kKeyAdded, trail_kind::kTrailStarted, trail_kind::kTrailContinued}))
        throw DataError("the key was never one of this trail");
}

std::string FileNameOf(const std::string& path) {
    const std::string posixPath = ToPosixPath(path);
    return posixPath.substr(posixPath.rfind('/') + 1);
}

}  // namespace qel
