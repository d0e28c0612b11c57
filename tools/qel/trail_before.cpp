#include "trail_before.h"

#include <algorithm>
#include <filesystem>
#include <set>

namespace tool {
namespace {

namespace fs = std::filesystem;

// "ID NUMBER HASH"
std::optional<TrailBefore> ReadBefore(const std::string& text) {
    constexpr std::size_t kId = 32, kHash = 64;
    const std::size_t first = text.find(' '), last = text.rfind(' ');
    if (first != kId || last <= first || text.size() - last - 1 != kHash) return std::nullopt;
    const auto entry = qel::ReadWholeNumber<std::int64_t>(text.substr(first + 1, last - first - 1));
    if (!entry || *entry < 1) return std::nullopt;
    return TrailBefore{text.substr(0, kId), static_cast<std::uint64_t>(*entry), text.substr(last + 1)};
}

// The ID in a file's first line, which nobody has checked yet.
std::string ClaimedIdOf(const std::string& file) {
    qel::TrailReader reader;
    if (reader.Open(Path(file).View()) == 0) return "";
    const std::optional<qel::TrailEntry> first = reader.Next();
    return first ? first->trailId : "";
}

// Files that may be the trail: there may be copies.
std::vector<std::string> Candidates(const std::string& id, const std::string& trail,
                                    const std::vector<std::string>& given) {
    std::vector<std::string> files = given;
    const fs::path folder = fs::path(trail).parent_path();
    std::error_code error;
    fs::directory_iterator entry(folder.empty() ? "." : folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        std::error_code gone;
        if (entry->symlink_status(gone).type() == fs::file_type::regular)
            files.push_back((folder / entry->path().filename()).string());
    }
    std::sort(files.begin() + static_cast<std::ptrdiff_t>(given.size()), files.end());
    std::erase_if(files, [&](const std::string& file) { return ClaimedIdOf(file) != id; });
    return files;
}

// It is as certain as the trail that names it, unless it is known by itself.
void SetCertainty(VerifiedTrail& older, const VerifiedTrail& later) {
    if (older.isKnown || later.report.isAnchored || !older.report.isAnchored) return;
    older.report.isAnchored = false;
    older.report.unanchored = "the trail that continues it is not anchored";
}

}  // namespace

std::optional<TrailBefore> BeforeOf(const qel::TrailReport& report) { return ReadBefore(report.continues); }

bool EndsWith(const qel::TrailReport& report, const TrailBefore& before) {
    return report.trailId == before.trail && report.entries == before.entry && report.head == before.sha256;
}

VerifiedTrail VerifyTrail(const std::string& file, const AnchorOptions& anchors, const SignatureOptions& signatures) {
    VerifiedTrail trail{file, CheckedTrail(file, anchors)};
    trail.signatures = CheckSignaturesOf(file, signatures, trail.report.rightUpTo);
    return trail;
}

VerifiedTrail VerifyBefore(const std::string& file, const TrailBefore& before, const AnchorOptions& anchors,
                           const SignatureOptions& signatures) {
    AnchorOptions known = anchors.OfEveryTrail();
    known.key.clear();  // another one may have started it
    known.trail = before.trail;
    known.head = before.sha256;
    try {
        return VerifyTrail(file, known, signatures);
    } catch (const Failure& failure) {
        return {file, {}, {}, failure};
    }
}

std::optional<VerifiedTrail> FindNextTo(const std::string& later, const TrailBefore& before,
                                        const std::vector<std::string>& given, const AnchorOptions& anchors,
                                        const SignatureOptions& signatures) {
    std::optional<VerifiedTrail> found;
    for (const std::string& file : Candidates(before.trail, later, given)) {
        VerifiedTrail older = VerifyBefore(file, before, anchors, signatures);
        const bool isEnd = EndsWith(older.report, before);
        if (isEnd || !found) found = std::move(older);
        if (isEnd) break;
    }
    return found;
}

void AddOlder(VerifiedChain& chain, const FindOlder& find) {
    std::set<std::string> seen = {chain.trails.front().report.trailId};
    std::ranges::reverse(chain.trails);
    while (const std::optional<TrailBefore> before = BeforeOf(chain.trails.back().report)) {
        const std::string file = chain.trails.back().file;
        const auto report = [&](Status status, const std::string& detail) {
            chain.findings.push_back({file, status, before->trail, before->entry, before->sha256, detail});
        };
        std::optional<VerifiedTrail> older = seen.insert(before->trail).second ? find(file, *before) : std::nullopt;
        if (!older) {
            report(kBeforeMissing, "it continues the trail " + before->trail + ", which is not there");
            break;
        }
        SetCertainty(*older, chain.trails.back());
        if (!older->failure && !EndsWith(older->report, *before))
            report(kBeforeOther, "it continues the trail " + before->trail + " after entry " +
                                     std::to_string(before->entry) + ", which is not the last one of " +
                                     Shown(older->file));
        chain.trails.push_back(std::move(*older));
    }
    std::ranges::reverse(chain.trails);
}

VerifiedChain VerifyChain(const std::string& trail, const std::vector<std::string>& given, const AnchorOptions& anchors,
                          const SignatureOptions& signatures) {
    VerifiedChain chain;
    chain.trails.push_back(VerifyTrail(trail, anchors, signatures));
    AddOlder(chain, [&](const std::string& later, const TrailBefore& before) {
        return FindNextTo(later, before, given, anchors, signatures);
    });
    return chain;
}

}  // namespace tool
