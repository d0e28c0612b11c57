#include "qellib10/record/trail_trust.h"

#include <algorithm>
#include <iterator>

#include "qellib10/platform/error.h"
#include "qellib10/record/trail_keys.h"
#include "qellib10/record/trail_kind.h"

namespace qel {
namespace {

constexpr std::size_t kMostAnnounced = 4096;  // less than 1 MiB of memory

std::int64_t SecondOf(std::int64_t time) { return time / 1000; }

}  // namespace

TrailTrust::TrailTrust(std::string key, std::optional<AllowedSigners> allowed)
    : m_key(std::move(key)), m_allowed(std::move(allowed)) {}

std::optional<TrailFault> TrailTrust::FaultOf(const ReadLine& line) const {
    const SshPublicKey& key = line.signature.key;
    if (FindRevoked(key) != nullptr) return TrailFault::kRevokedKey;
    const bool isActive = std::ranges::find(m_active, key) != m_active.end();
    if (isActive && m_hasVoid && IsVoid(key, line.entry.number)) return TrailFault::kUnknownSigner;
    // One that was announced may sign until its end.
    if (!isActive && m_places.contains(key)) return TrailFault::kEndedKey;
    if (m_allowed) {
        const auto answer = m_allowed->Ask(key, kEntryNamespace, SecondOf(line.entry.time));
        if (answer == AllowedSigners::Answer::kNotYetValid) return TrailFault::kKeyNotYetValid;
        if (answer == AllowedSigners::Answer::kEnded) return TrailFault::kEndedKey;
        if (answer == AllowedSigners::Answer::kUnknown) return TrailFault::kUnknownSigner;
    }
    const bool isNamed = m_key.empty() ? line.entry.number == 1 : IsNamed(key);
    return isNamed || isActive ? std::nullopt : std::optional(TrailFault::kUnknownSigner);
}

void TrailTrust::Learn(const ReadLine& line) {
    const TrailEntry& entry = line.entry;
    const std::string& action = entry.action;
    const bool starts = action == trail_kind::kTrailStarted || action == trail_kind::kTrailContinued;
    const bool adds = starts || action == trail_kind::kKeyAdded;
    const bool ends = action == trail_kind::kKeyEnded;
    if (!adds && !ends && action != trail_kind::kKeyRevoked) return;
    if (adds && FindRevoked(SshPublicKey::OfText(entry.object)) != nullptr)
        throw DataError("a key that was revoked cannot be announced again");
    RequireOtherSigner(entry, line.signature.key);
    ApplyToKeys(entry, m_active);
    if (action == trail_kind::kKeyRevoked) return Revoke(entry);
    const SshPublicKey key = SshPublicKey::OfText(entry.object);
    if (adds) Announce(line, key);
    if (!ends) return;
    for (const std::size_t place : m_places[key]) {
        if (m_announced[place].end == 0) m_announced[place].end = entry.number;
    }
}

void TrailTrust::Announce(const ReadLine& line, const SshPublicKey& key) {
    if (m_announced.size() == kMostAnnounced) throw DataError("too many keys were announced");
    m_places[key].push_back(m_announced.size());
    m_announced.push_back({.key = key, .by = line.signature.key, .at = line.entry.number});
}

// What the key has announced from there on counts for nothing from now on; the rest is a matter of EndProofs.
void TrailTrust::Revoke(const TrailEntry& entry) {
    const RevokedKey revoked = RevokedKey::Of(entry);
    const auto [known, isNew] = m_revoked.try_emplace(revoked.key, Revoked{revoked.from, revoked.from});
    if (!isNew) known->second.from = std::min(known->second.from, revoked.from);
    if (m_revoked.size() > kMostAnnounced) throw DataError("too many keys were revoked");
    VoidAnnounced();
}

// In the order of their entries: whoever announces was announced before.
void TrailTrust::VoidAnnounced() {
    for (Announced& announced : m_announced) {
        if (announced.isVoid || !IsOfDistrusted(announced)) continue;
        announced.isVoid = true;
        m_hasVoid = true;
    }
}

bool TrailTrust::IsOfDistrusted(const Announced& announced) const {
    if (announced.key == announced.by || IsAllowed(announced.key)) return false;
    const Revoked* const revoked = FindRevoked(announced.by);
    if (revoked != nullptr && (announced.at >= revoked->from || announced.at > revoked->proven)) return true;
    return IsVoid(announced.by, announced.at);
}

bool TrailTrust::IsVoid(const SshPublicKey& key, std::uint64_t number) const {
    const Announced* const announced = Find(key, number);
    return announced != nullptr && announced->isVoid;
}

void TrailTrust::StartProofs() {
    for (auto& [key, revoked] : m_revoked) revoked.proven = 0;
    for (Announced& announced : m_announced) {
        const Announced* const by = Find(announced.by, announced.at);
        const bool isByGood = FindRevoked(announced.by) == nullptr && (by == nullptr || by->owesNothing);
        announced.owesNothing = announced.key == announced.by || IsAllowed(announced.key) || isByGood;
    }
}

bool TrailTrust::IsWitness(const ReadLine& line) const {
    const SshPublicKey& key = line.signature.key;
    const Announced* const announced = Find(key, line.entry.number);
    const bool owesNothing = announced != nullptr ? announced->owesNothing : !m_key.empty() && IsNamed(key);
    return owesNothing && FindRevoked(key) == nullptr &&
           (!m_allowed ||
            m_allowed->Ask(key, kEntryNamespace, SecondOf(line.entry.time)) == AllowedSigners::Answer::kAllowed);
}

void TrailTrust::Prove(std::uint64_t at, std::uint64_t upTo) {
    for (auto& [key, revoked] : m_revoked) {
        if (at < revoked.from) revoked.proven = std::max(revoked.proven, upTo);
    }
}

void TrailTrust::EndProofs() { VoidAnnounced(); }

std::optional<std::string> TrailTrust::Doubt(const ReadLine& line) const {
    const SshPublicKey& key = line.signature.key;
    const std::uint64_t number = line.entry.number;
    const Revoked* const revoked = FindRevoked(key);
    if (revoked != nullptr && number >= revoked->from)
        return "the entry's key was revoked from entry " + std::to_string(revoked->from) + " on";
    if (revoked != nullptr && number > revoked->proven)
        return "the entry's key was revoked, and nothing from before entry " + std::to_string(revoked->from) +
               " shows that it was there";
    if (IsVoid(key, number)) return "the entry's key was announced by one that was revoked";
    return std::nullopt;
}

// Remembers the key: its fingerprint would be one more hash for each entry.
bool TrailTrust::IsNamed(const SshPublicKey& key) const {
    if (!m_named && key.Fingerprint() == m_key) m_named = key;
    return m_named == key;
}

bool TrailTrust::IsAllowed(const SshPublicKey& key) const {
    return m_allowed && m_allowed->Ask(key, kEntryNamespace, 0) != AllowedSigners::Answer::kUnknown;
}

const TrailTrust::Announced* TrailTrust::Find(const SshPublicKey& key, std::uint64_t number) const {
    const auto places = m_places.find(key);
    if (places == m_places.end()) return nullptr;
    const auto after = std::ranges::upper_bound(places->second, number, {},
                                                [this](std::size_t place) { return m_announced[place].at; });
    if (after == places->second.begin()) return nullptr;
    const Announced& announced = m_announced[*std::prev(after)];
    return announced.end == 0 || number <= announced.end ? &announced : nullptr;
}

const TrailTrust::Revoked* TrailTrust::FindRevoked(const SshPublicKey& key) const {
    const auto found = m_revoked.find(key);
    return found != m_revoked.end() ? &found->second : nullptr;
}

}  // namespace qel
