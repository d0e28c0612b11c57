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

std::string Find(const std::string& id, const std::string& trail, const std::vector<std::string>& given) {
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
    const auto found = std::ranges::find_if(files, [&](const std::string& file) {
        const std::optional<TrailStart> start = StartOf(file);
        return start && start->trail == id;
    });
    return found == files.end() ? "" : *found;
}

VerifiedTrail Verify(const std::string& file, const AnchorOptions& anchors, const SignatureOptions& signatures) {
    VerifiedTrail trail{file, CheckedTrail(file, anchors)};
    trail.signatures = CheckSignaturesOf(file, signatures, trail.Last());
    return trail;
}

VerifiedTrail VerifyBefore(const std::string& file, const TrailBefore& before, const AnchorOptions& anchors,
                           const SignatureOptions& signatures) {
    AnchorOptions known = anchors.OfEveryTrail();
    known.key.clear();  // another one may have started it
    known.trail = before.trail;
    known.head = before.sha256;
    try {
        return Verify(file, known, signatures);
    } catch (const Failure& failure) {
        return {file, {}, {}, failure};
    }
}

}  // namespace

std::optional<TrailStart> StartOf(const std::string& file) {
    qel::TrailReader reader;
    if (reader.Open(Path(file).View()) == 0) return std::nullopt;
    const std::optional<qel::TrailEntry> first = reader.Next();
    if (!first) return std::nullopt;
    const bool continues = first->action == qel::trail_kind::kTrailContinued;
    return TrailStart{first->trailId, continues ? ReadBefore(first->before) : std::nullopt};
}

VerifiedChain VerifyChain(const std::string& trail, const std::vector<std::string>& given, const AnchorOptions& anchors,
                          const SignatureOptions& signatures) {
    VerifiedChain chain;
    chain.trails.push_back(Verify(trail, anchors, signatures));
    const qel::TrailReport& last = chain.trails.front().report;
    const bool isAnchored = last.isAnchored;
    std::set<std::string> seen = {last.trailId};
    std::string file = trail;
    for (std::optional<TrailStart> start = StartOf(file); start && start->before; start = StartOf(file)) {
        const TrailBefore before = *start->before;
        const std::string next = seen.insert(before.trail).second ? Find(before.trail, file, given) : "";
        const auto find = [&](Status status, const std::string& detail) {
            chain.findings.push_back({file, status, before.trail, before.entry, before.sha256, detail});
        };
        if (next.empty()) {
            find(kBeforeMissing, "it continues the trail " + before.trail + ", which is not there");
            break;
        }
        VerifiedTrail older = VerifyBefore(next, before, anchors, signatures);
        // It is as certain as the trail that names it.
        if (older.report.isAnchored && !isAnchored) {
            older.report.isAnchored = false;
            older.report.unanchored = "the trail that continues it is not anchored";
        }
        if (!older.failure && (older.report.entries != before.entry || older.report.head != before.sha256))
            find(kBeforeOther, "it continues the trail " + before.trail + " after entry " +
                                   std::to_string(before.entry) + ", which is not the last one of " + Shown(next));
        chain.trails.insert(chain.trails.begin(), std::move(older));
        file = next;
    }
    return chain;
}

}  // namespace tool
