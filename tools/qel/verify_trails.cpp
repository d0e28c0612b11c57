#include "verify_trails.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

#include "trail_before.h"
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

// Those that no other one continues. All of them, where each is continued: nobody has written such trails.
std::vector<std::string> LatestOf(const std::vector<std::string>& trails) {
    std::set<std::string> continued;
    std::map<std::string, std::optional<TrailStart>> starts;
    for (const std::string& trail : trails) {
        const auto& start = starts[trail] = StartOf(trail);
        if (start && start->before && start->before->trail != start->trail) continued.insert(start->before->trail);
    }
    std::vector<std::string> latest;
    for (const std::string& trail : trails) {
        const auto& start = starts[trail];
        if (!start || !continued.contains(start->trail)) latest.push_back(trail);
    }
    return latest.empty() ? trails : latest;
}

VerifiedChain Chain(const std::string& trail, const TrailOptions& options, const AnchorOptions& anchors) {
    try {
        return VerifyChain(trail, options.before, anchors, options.signatures);
    } catch (const Failure& failure) {
        VerifiedChain chain;
        chain.trails.push_back({trail, {}, {}, failure});
        return chain;
    }
}

// What is known of one trail does not hold for those with another ID, where that one is there.
void CheckOthersAgain(std::vector<VerifiedArchive>& archives, const TrailOptions& options) {
    if (!options.anchors.AreOfOneTrail()) return;
    std::set<std::string> anchored;
    for (const VerifiedArchive& archive : archives)
        for (const VerifiedChain& chain : archive.chains)
            if (chain.trails.back().report.isAnchored) anchored.insert(chain.trails.back().report.trailId);
    if (anchored.empty()) return;
    for (VerifiedArchive& archive : archives) {
        for (VerifiedChain& chain : archive.chains) {
            const VerifiedTrail& last = chain.trails.back();
            if (!last.failure && !anchored.contains(last.report.trailId))
                chain = Chain(std::string(last.file), options, options.anchors.OfEveryTrail());
        }
    }
}

// Somebody may have put a trail of their own next to the one that is known.
std::vector<ReadTrail> ToCompareWith(const std::vector<VerifiedChain>& chains) {
    const auto isAnchored = [](const VerifiedChain& chain) { return chain.trails.back().report.isAnchored; };
    const bool isAny = std::ranges::any_of(chains, isAnchored);
    std::vector<ReadTrail> trails;
    for (const VerifiedChain& chain : chains) {
        if (isAny && !isAnchored(chain)) continue;
        for (const VerifiedTrail& trail : chain.trails)
            if (!trail.failure) trails.push_back({trail.file, trail.Last()});
    }
    return trails;
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

void CompareFolder(VerifiedArchive& archive, const std::set<std::string>& folders, const Found& found,
                   const TrailOptions& options) {
    const std::vector<ReadTrail> trails = ToCompareWith(archive.chains);
    if (trails.empty()) return;  // no trail can be read, which is a finding
    ArchiveOptions compared{.folder = archive.folder, .except = folders, .jobs = options.jobs};
    compared.except.erase(archive.folder);
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
    std::vector<VerifiedArchive> archives;
    std::set<std::string> folders;
    for (const auto& [folder, trails] : byFolder) {
        archives.push_back({folder});
        if (!folder.empty()) folders.insert(folder);
        for (const std::string& trail : LatestOf(trails))
            archives.back().chains.push_back(Chain(trail, options, options.anchors));
    }
    CheckOthersAgain(archives, options);
    for (const VerifiedArchive& archive : archives)
        for (const VerifiedChain& chain : archive.chains) SetReports(chain, found);
    for (VerifiedArchive& archive : archives)
        if (!archive.folder.empty()) CompareFolder(archive, folders, found, options);
    return archives;
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
