#include "trail_chains.h"

#include <algorithm>
#include <set>
#include <tuple>

#include "workers.h"

namespace tool {
namespace {

VerifiedTrail Verified(const std::string& file, const AnchorOptions& anchors, const SignatureOptions& signatures) {
    try {
        return VerifyTrail(file, anchors, signatures);
    } catch (const Failure& failure) {
        return {file, {}, {}, failure};
    }
}

bool IsRight(const VerifiedTrail& trail) { return !trail.failure && trail.report.findingCount == 0; }

// Reads only as much as the shorter one has. A pipe that somebody puts there meanwhile is not opened.
bool IsStartOf(const std::string& shorter, const std::string& longer) {
    const auto isSame = [&] {
        CQFile first, second;
        Open(first, shorter, CFile::modeRead | CFile::shareDenyNone);
        Open(second, longer, CFile::modeRead | CFile::shareDenyNone);
        constexpr UINT kBlock = 65536;
        std::string wanted(kBlock, '\0'), found(kBlock, '\0');
        for (;;) {
            const UINT size = first.Read(wanted.data(), kBlock);
            if (size == 0) return true;
            if (second.Read(found.data(), size) != size || wanted.compare(0, size, found, 0, size) != 0) return false;
        }
    };
    try {
        return Guarded(isSame);
    } catch (const Failure&) {  // it was removed meanwhile
        return false;
    }
}

// Those up to the latest one that is known, and those that trusted keys have appended to it.
std::size_t CountedOf(const VerifiedChain& chain, bool isTrusted) {
    std::size_t counted = chain.trails.size();
    while (counted > 0 && !chain.trails[counted - 1].isKnown) --counted;
    if (counted == 0 || !isTrusted) return counted;
    for (; counted < chain.trails.size() && IsRight(chain.trails[counted]); ++counted) {
        const std::optional<TrailBefore> before = BeforeOf(chain.trails[counted].report);
        if (!before || !EndsWith(chain.trails[counted - 1].report, *before)) break;
    }
    return counted;
}

}  // namespace

TrailChains::TrailChains(const AnchorOptions& anchors, const SignatureOptions& signatures,
                         const std::vector<std::string>& before)
    : m_anchors(anchors), m_signatures(signatures) {
    for (const std::string& file : before) m_before.push_back(Check(file));
    m_fitsAny = std::ranges::any_of(m_before, &Checked::Fits);
}

void TrailChains::Add(const std::vector<Place>& trails, unsigned jobs) {
    std::vector<Checked> checked(trails.size());
    ForEachAtOnce(trails.size(), jobs, [&](std::size_t i) { checked[i] = Check(trails[i].file); });
    m_fitsAny = m_fitsAny || std::ranges::any_of(checked, &Checked::Fits);
    for (std::size_t i = 0; i < trails.size(); ++i) m_folders[trails[i].folder].push_back(std::move(checked[i]));
}

TrailChains::Checked TrailChains::Check(const std::string& file) const {
    Checked checked;
    checked.known = Verified(file, m_anchors, m_signatures);
    const bool isSame = !m_anchors.AreOfOneTrail() || checked.Fits() || checked.known.failure;
    checked.plain = isSame ? checked.known : Verified(file, m_anchors.OfEveryTrail(), m_signatures);
    checked.known.isKnown = checked.Fits();
    return checked;
}

VerifiedTrail TrailChains::Alone(const Checked& trail) const {
    return trail.Fits() || !m_fitsAny ? trail.known : trail.plain;
}

VerifiedTrail TrailChains::Older(const Checked& trail, const TrailBefore& before) const {
    if (trail.Fits()) return trail.known;
    if (trail.plain.failure) return trail.plain;
    // Thousands of small forged trails may name another entry of one that is large.
    constexpr std::size_t kMostCheckedAgain = 16;
    const bool isEnd = EndsWith(trail.plain.report, before);
    if (!isEnd && ++m_checkedAgain > kMostCheckedAgain) return trail.plain;
    if (!isEnd || !m_anchors.key.empty()) return VerifyBefore(trail.plain.file, before, m_anchors, m_signatures);
    VerifiedTrail older = trail.plain;
    older.report.isAnchored = true;  // by the entry that names its end
    older.report.pinned = older.report.entries;
    older.report.unanchored.clear();
    return older;
}

const TrailChains::Checked* TrailChains::OlderIn(const Pool& pool, const TrailBefore& before) {
    const auto [first, last] = pool.equal_range(before.trail);
    const auto end =
        std::find_if(first, last, [&](const auto& each) { return EndsWith(each.second->plain.report, before); });
    return end != last ? end->second : first != last ? first->second : nullptr;
}

VerifiedChain TrailChains::Chain(const Checked& last, const Pool& pool, bool isNamed, Uses& uses) const {
    // One trail may have been continued twice by mistake. Forged ones by the thousand may continue a long chain.
    constexpr std::size_t kMostChainsOfOne = 16;
    VerifiedChain chain;
    chain.trails.push_back(Alone(last));
    AddOlder(chain, [&](const std::string& later, const TrailBefore& before) -> std::optional<VerifiedTrail> {
        const Checked* const found = OlderIn(pool, before);
        if (found != nullptr && ++uses[found] > kMostChainsOfOne) return std::nullopt;
        if (found == nullptr && isNamed) return FindNextTo(later, before, {}, m_anchors, m_signatures);
        return found != nullptr ? std::optional(Older(*found, before)) : std::nullopt;
    });
    chain.counted = CountedOf(chain, m_anchors.HasTrust());
    if (chain.IsKnown() && !chain.trails.back().isKnown)
        chain.trails.back().report.unanchored = "what is known fits an earlier trail, which it continues";
    return chain;
}

VerifiedChain TrailChains::Copy(const Checked& copy, const Checked& best) const {
    VerifiedChain chain;
    chain.isCopy = true;
    chain.trails.push_back(Alone(copy));
    const bool isStart = IsStartOf(copy.plain.file, best.plain.file);
    const qel::TrailReport& report = copy.plain.report;
    const std::string other = "the trail in " + Shown(best.plain.file);
    chain.findings.push_back({copy.plain.file, kTrailCopy, report.trailId, report.entries, report.head,
                              isStart ? "it is a further copy of " + other + ", up to entry " +
                                            std::to_string(report.entries) + ", and does not count"
                                      : "it has the ID of " + other + ", and is not the start of that"});
    return chain;
}

// One chain for each trail that no other one continues; then for those of which each one continues another, in a
// circle.
std::vector<VerifiedChain> TrailChains::ChainsOf(const std::vector<const Checked*>& own, bool isNamed) const {
    Pool pool;
    for (const Checked* trail : own) pool.emplace(trail->plain.report.trailId, trail);
    for (const Checked& trail : m_before) pool.emplace(trail.plain.report.trailId, &trail);
    std::set<const Checked*> continued;
    for (const Checked* trail : own) {
        const std::optional<TrailBefore> before = BeforeOf(trail->plain.report);
        const Checked* const older = before ? OlderIn(pool, *before) : nullptr;
        if (older != trail) continued.insert(older);
    }
    Uses uses;
    std::vector<VerifiedChain> chains;
    std::set<std::string> covered;
    for (const bool isInCircle : {false, true}) {
        for (const Checked* trail : own) {
            if (continued.contains(trail) != isInCircle || (isInCircle && covered.contains(trail->plain.file)))
                continue;
            chains.push_back(Chain(*trail, pool, isNamed, uses));
            for (const VerifiedTrail& each : chains.back().trails) covered.insert(each.file);
        }
    }
    std::ranges::stable_sort(chains, {}, [](const VerifiedChain& chain) { return chain.trails.back().file; });
    return chains;
}

std::vector<VerifiedChain> TrailChains::Of(const std::string& folder) const {
    const auto there = m_folders.find(folder);
    if (there == m_folders.end()) return {};
    std::map<std::string, TrailBefore> named;
    for (const Checked& trail : there->second)
        if (const auto before = BeforeOf(trail.plain.report)) named.emplace(before->trail, *before);
    const auto rank = [&](const Checked& trail) {
        const auto before = named.find(trail.plain.report.trailId);
        return std::tuple(trail.Fits(), before != named.end() && EndsWith(trail.plain.report, before->second),
                          IsRight(trail.plain), trail.plain.report.entries);
    };
    std::map<std::string, const Checked*> best;  // by ID
    for (const Checked& trail : there->second) {
        const Checked*& known = best[trail.plain.report.trailId];
        if (known == nullptr || rank(*known) < rank(trail)) known = &trail;
    }
    std::vector<const Checked*> own, copies;
    for (const Checked& trail : there->second) {
        const std::string& id = trail.plain.report.trailId;
        const bool isCopy = !folder.empty() && !id.empty() && best[id] != &trail;
        (isCopy ? copies : own).push_back(&trail);
    }
    std::ranges::stable_partition(own, &Checked::Fits);  // no forged ones come before those that are known
    std::vector<VerifiedChain> chains = ChainsOf(own, folder.empty());
    for (const Checked* copy : copies) chains.push_back(Copy(*copy, *best[copy->plain.report.trailId]));
    return chains;
}

}  // namespace tool
