#include "verify_trails.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

#include "trail_chains.h"
#include "trail_text.h"

namespace tool {
namespace {

// By path: of one that is named, and in a folder that is named as well, the one of the folder first.
struct Found {
    std::multimap<std::string, CheckedFile*> files;

    explicit Found(std::vector<CheckedFile>& all) {
        for (const bool isNamed : {false, true})
            for (CheckedFile& file : all)
                if (file.isNamed == isNamed) files.emplace(file.path, &file);
    }
};

std::string FolderOf(const CheckedFile& trail) {
    return trail.isNamed ? "" : std::filesystem::path(trail.path).parent_path().string();
}

// Somebody may have put a trail of their own next to the one that is known, or a copy of it.
std::vector<ReadTrail> ToCompareWith(const std::vector<VerifiedChain>& chains) {
    const bool isAny = std::ranges::any_of(chains, [](const VerifiedChain& chain) { return chain.IsKnown(); });
    std::vector<ReadTrail> trails;
    for (const VerifiedChain& chain : chains) {
        const std::size_t counted = chain.isCopy ? 0 : isAny ? chain.counted : chain.trails.size();
        for (std::size_t i = 0; i < counted; ++i) {
            const VerifiedTrail& trail = chain.trails[i];
            const bool isThere = std::ranges::find(trails, trail.file, &ReadTrail::file) != trails.end();
            if (trail.Counts() && !isThere) trails.push_back({trail.file, trail.report.rightUpTo});
        }
    }
    return trails;
}

// Where some trail was read and none of its entries counts, no file was ever recorded.
bool IsAnyRead(const std::vector<VerifiedChain>& chains) {
    return std::ranges::any_of(chains, [](const VerifiedChain& chain) {
        return std::ranges::any_of(chain.trails, [](const VerifiedTrail& trail) { return !trail.failure; });
    });
}

void SetReports(const VerifiedChain& chain, const Found& found) {
    for (const VerifiedTrail& trail : chain.trails) {
        const auto [first, last] = found.files.equal_range(trail.file);
        for (auto file = first; file != last; ++file) {
            FileReport& report = file->second->report;
            report.finding = trail.failure ? trail.failure->ExitStatus() : StatusOf(trail.report);
            report.detail = trail.failure ? trail.failure->what() : ResultText(trail.report);
        }
    }
}

bool IsBelow(const std::string& folder, const std::string& path) {
    const std::filesystem::path below = std::filesystem::path(path).lexically_relative(folder);
    return !below.empty() && *below.begin() != ".." && below != ".";
}

std::set<std::string> IdsOf(const VerifiedArchive& archive) {
    std::set<std::string> ids;
    for (const VerifiedChain& chain : archive.chains)
        for (const VerifiedTrail& trail : chain.trails) ids.insert(trail.report.trailId);
    return ids;
}

// Anybody can put a trail into a folder of an archive: it takes the files there out of the archive where no trail is
// known, or it is one that is known, or of trusted keys, and not the archive's own.
bool IsArchiveOfItsOwn(const VerifiedArchive& inner, const VerifiedArchive& outer, bool isTrusted) {
    const auto isKnown = [](const VerifiedChain& chain) { return chain.IsKnown(); };
    if (std::ranges::none_of(outer.chains, isKnown)) return true;
    const std::set<std::string> ids = IdsOf(outer);
    for (const std::string& id : IdsOf(inner))
        if (ids.contains(id)) return false;
    return std::ranges::any_of(inner.chains, [&](const VerifiedChain& chain) {
        return chain.IsKnown() || (isTrusted && !IsFinding(StatusOf(chain)));
    });
}

void CompareFolder(VerifiedArchive& archive, const std::vector<VerifiedArchive>& all, const Found& found,
                   const TrailOptions& options) {
    if (!IsAnyRead(archive.chains)) return;  // which is a finding
    const std::vector<ReadTrail> trails = ToCompareWith(archive.chains);
    ArchiveOptions compared{.folder = archive.folder, .jobs = options.jobs};
    for (const VerifiedArchive& other : all)
        if (other.folder != archive.folder && IsArchiveOfItsOwn(other, archive, options.anchors.HasTrust()))
            compared.except.insert(other.folder);
    compared.resume = options.resume;
    compared.content = [&](const std::string& file) {
        const auto known = found.files.find(file);
        return known != found.files.end() ? known->second->report : CheckFile(file);
    };
    try {
        archive.archive = CompareArchive(trails, compared);
    } catch (const Failure& failure) {
        archive.chains.front().trails.back().failure = failure;
    }
}

}  // namespace

Status VerifiedArchive::Worst() const {
    Status worst = archive ? WorstOf(*archive) : kGood;
    Status loose = kGood;
    for (const VerifiedChain& chain : chains) {
        const Status status = StatusOf(chain);
        (IsFinding(status) ? worst : loose) = std::max(IsFinding(status) ? worst : loose, status);
    }
    return worst != kGood ? worst : loose;
}

std::vector<VerifiedArchive> VerifyTrails(std::vector<CheckedFile>& files, const TrailOptions& options) {
    const Found found(files);
    std::map<std::string, std::vector<std::string>> byFolder;
    for (auto file = found.files.begin(); file != found.files.end(); file = found.files.upper_bound(file->first))
        if (file->second->report.kind == "trail") byFolder[FolderOf(*file->second)].push_back(file->first);
    TrailChains chains(options.anchors, options.signatures, options.before);
    for (const auto& [folder, trails] : byFolder)
        for (const std::string& trail : trails) chains.Add(folder, trail);
    std::vector<VerifiedArchive> archives;
    for (const auto& [folder, trails] : byFolder) archives.push_back({folder, chains.Of(folder)});
    for (const bool isKnown : {false, true})
        for (const VerifiedArchive& archive : archives)
            for (const VerifiedChain& chain : archive.chains)
                if (chain.IsKnown() == isKnown) SetReports(chain, found);
    for (VerifiedArchive& archive : archives)
        if (!archive.folder.empty()) CompareFolder(archive, archives, found, options);
    return archives;
}

void RequireTrails(std::vector<CheckedFile>& files, const std::vector<std::string>& folders,
                   const std::vector<VerifiedArchive>& archives) {
    std::vector<std::string> ofArchives;
    for (const VerifiedArchive& archive : archives)
        if (!archive.folder.empty()) ofArchives.push_back(archive.folder);
    std::set<std::string> without;
    for (const std::string& folder : folders) {
        const auto isIn = [&](const std::string& archive) { return archive == folder || IsBelow(folder, archive); };
        if (std::ranges::none_of(ofArchives, isIn)) without.insert(folder);
    }
    for (CheckedFile& file : files) {
        const auto has = [&](const std::string& folder) { return IsBelow(folder, file.path); };
        if (file.isNamed || std::ranges::any_of(without, has) || std::ranges::any_of(ofArchives, has)) continue;
        if (file.report.kind == "cabinet") file.report.Raise(kNeverRecorded, "is a cabinet in no archive");
        if (file.report.isSealed) file.report.Raise(kSealNeverRecorded, "is a sealed file in no archive");
        if (IsReport(file.report, file.path)) file.report.Raise(kPrintNeverRecorded, "is a report in no archive");
    }
    for (const std::string& folder : without) files.push_back({folder, false, {"", false, kMissing, "has no trail"}});
}

Json ArchivesJson(const std::vector<VerifiedArchive>& archives) {
    Json json = Json::array();
    for (const VerifiedArchive& archive : archives) {
        Json one{{"folder", archive.folder}, {"trails", Json::array()}};
        for (const VerifiedChain& chain : archive.chains) one["trails"].push_back(ChainJson(chain));
        if (archive.archive) AddArchiveJson(*archive.archive, one);
        json.push_back(std::move(one));
    }
    return json;
}

}  // namespace tool
