#pragma once

#include <optional>
#include <vector>

#include "trail_anchors.h"
#include "trail_archive.h"
#include "trail_signatures.h"

// What was found about trails and their archives, for people and for programs.
namespace tool {

/// A trail that was checked.
struct VerifiedTrail {
    std::string file;
    qel::TrailReport report = {};
    std::optional<qel::SignatureReport> signatures = {};
    std::optional<Failure> failure = {};  ///< why it could not be read
    bool isKnown = false;                 ///< what is known of one trail from elsewhere fits this one

    /// Whether any of it counts; else nobody should read it.
    bool Counts() const { return !failure && report.rightUpTo.number > 0; }
};

/// What does not fit between a trail and the one that it continues.
struct ChainFinding {
    std::string file;  ///< the trail that continues
    Status status = kGood;
    std::string trail = {};  ///< ID of the one before, number and hash of its last entry, as the first entry names them
    std::uint64_t entry = 0;
    std::string sha256 = {};
    std::string detail = {};
};

/// Trails of which each one continues the one before.
struct VerifiedChain {
    std::vector<VerifiedTrail> trails = {};  ///< oldest first, at least one
    std::vector<ChainFinding> findings = {};
    /// So many of them, oldest first, count where some trail of the archive is known: what anybody may have continued
    /// does not.
    std::size_t counted = 0;
    bool isCopy = false;  ///< a file that has the ID of another one: it never counts

    bool IsKnown() const { return counted > 0 && !isCopy; }
};

/// The status of a trail's finding.
Status StatusOf(const qel::TrailFinding& finding);
/// The worst finding; without any kNotAnchored or kGood.
Status StatusOf(const qel::TrailReport& report);
Status StatusOf(const VerifiedChain& chain);

/// @param archive what is compared with all of them; nothing: it was not
std::string VerifiedText(const std::vector<VerifiedChain>& chains, const std::optional<ArchiveReport>& archive);
/// The last trail of a chain, with those before it.
Json ChainJson(const VerifiedChain& chain);

}  // namespace tool
