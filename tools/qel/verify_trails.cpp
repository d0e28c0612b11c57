#include "verify_trails.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

#include "folders.h"
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

using Chains = std::vector<const VerifiedChain*>;

Chains AllOf(const VerifiedArchive& archive) {
    Chains chains;
    for (const VerifiedChain& chain : archive.chains) chains.push_back(&chain);
    return chains;
}

// Somebody may have put a trail of their own next to the one that is known, or a copy of it.
std::vector<ReadTrail> ToCompareWith(const Chains& chains) {
    const bool isAny = std::ranges::any_of(chains, &VerifiedChain::IsKnown);
    std::vector<ReadTrail> trails;
    std::set<std::string> seen;
    for (const VerifiedChain* chain : chains) {
        const std::size_t counted = chain->isCopy ? 0 : isAny ? chain->counted : chain->trails.size();
        for (std::size_t i = 0; i < counted; ++i) {
            const VerifiedTrail& trail = chain->trails[i];
            if (trail.Counts() && seen.insert(trail.file).second)
                trails.push_back({trail.file, trail.report.rightUpTo});
        }
    }
    return trails;
}

// Where some trail was read and none of its entries counts, no file was ever recorded.
bool IsAnyRead(const Chains& chains) {
    return std::ranges::any_of(chains, [](const VerifiedChain* chain) {
        return std::ranges::any_of(chain->trails, [](const VerifiedTrail& trail) { return !trail.failure; });
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

// What is asked of each archive for each one that it is in.
struct Facts {
    const VerifiedArchive& archive;
    std::set<std::string> ids = {};
    bool isKnown = false, isRight = false;

    Facts(const VerifiedArchive& of, bool isTrusted) : archive(of) {
        for (const VerifiedChain& chain : archive.chains) {
            for (const VerifiedTrail& trail : chain.trails) ids.insert(trail.report.trailId);
            isKnown = isKnown || chain.IsKnown();
            isRight = isRight || chain.IsKnown() || (isTrusted && !IsFinding(StatusOf(chain)));
        }
    }

    // Anybody can put a trail into a folder of an archive: it takes the files there out of the archive where no trail
    // is known, or it is one that is known, or of trusted keys, and not the archive's own.
    bool IsArchiveOfItsOwnIn(const Facts& outer) const {
        if (!outer.isKnown) return true;
        return isRight && std::ranges::none_of(ids, [&](const std::string& id) { return outer.ids.contains(id); });
    }
};
using Archives = std::map<std::string, Facts>;  // by folder

// Those in a folder come one after the other.
std::set<std::string> ArchivesOfTheirOwnIn(const Facts& outer, const Archives& all) {
    std::set<std::string> folders;
    const std::string start = Below(outer.archive.folder);
    for (auto inner = all.lower_bound(start); inner != all.end() && inner->first.starts_with(start); ++inner)
        if (inner->second.IsArchiveOfItsOwnIn(outer)) folders.insert(inner->first);
    return folders;
}

using Named = std::map<std::string, std::string>;  // files, with their names in the archive

class Comparing {
public:
    Comparing(const Found& found, const TrailOptions& options) : m_found(found), m_options(options) {}

    void Folder(VerifiedArchive& archive, std::set<std::string> except) const {
        ArchiveOptions compared = Options(archive.folder);
        compared.except = std::move(except);
        Compare(AllOf(archive), compared, archive);
    }

    // Files that are named are compared with the trails that are named, too, and are in the same folder or above.
    void Files(const std::vector<CheckedFile>& files, const std::set<std::string>& folders,
               VerifiedArchive& trails) const {
        std::map<std::string, Chains> byFolder;
        std::map<std::string, std::string> written;  // as the user has written it
        std::set<std::string> all = folders;
        for (const VerifiedChain& chain : trails.chains) {
            const auto folder = std::filesystem::path(chain.trails.back().file).parent_path();
            const std::string absolute = AbsolutePath(folder.empty() ? "." : folder.string());
            byFolder[absolute].push_back(&chain);
            written[absolute] = folder.empty() ? "." : folder.string();
            all.insert(absolute);
        }
        std::map<std::string, Named> named;
        for (const CheckedFile& file : files) {
            if (!file.isNamed || file.report.kind == "trail") continue;
            const std::string path = AbsolutePath(file.path), folder = NearestFolder(all, path);
            if (byFolder.contains(folder)) named[folder].emplace(file.path, path.substr(Below(folder).size()));
        }
        for (auto& [folder, namedFiles] : named) {
            ArchiveOptions compared = Options(written[folder]);
            compared.named = std::move(namedFiles);
            Compare(byFolder[folder], compared, trails);
        }
    }

private:
    ArchiveOptions Options(const std::string& folder) const {
        ArchiveOptions compared{.folder = folder, .jobs = m_options.jobs, .resume = m_options.resume};
        compared.content = [this](const std::string& file) {
            const auto known = m_found.files.find(file);
            return known != m_found.files.end() ? known->second->report : CheckFile(file);
        };
        return compared;
    }

    static void Compare(const Chains& chains, const ArchiveOptions& options, VerifiedArchive& archive) {
        if (!IsAnyRead(chains)) return;  // which is a finding
        try {
            const ArchiveReport report = CompareArchive(ToCompareWith(chains), options);
            if (!archive.archive) archive.archive.emplace();
            archive.archive->Join(report);
        } catch (const Failure& failure) {
            archive.chains.front().trails.back().failure = failure;
        }
    }

    const Found& m_found;
    const TrailOptions& m_options;
};

void CompareAll(std::vector<VerifiedArchive>& archives, const std::vector<CheckedFile>& files, const Found& found,
                const TrailOptions& options) {
    const bool isTrusted = options.anchors.HasTrust();
    Archives all;
    for (const VerifiedArchive& archive : archives)
        if (!archive.folder.empty()) all.emplace(archive.folder, Facts(archive, isTrusted));
    const Comparing comparing(found, options);
    for (VerifiedArchive& archive : archives) {
        if (!archive.folder.empty())
            comparing.Folder(archive, ArchivesOfTheirOwnIn(all.at(archive.folder), all));
        else if (isTrusted || options.anchors.AreThere())
            comparing.Files(files, FoldersOf(archives), archive);
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
    std::vector<TrailChains::Place> places;
    for (const auto& [folder, trails] : byFolder)
        for (const std::string& trail : trails) places.push_back({folder, trail});
    chains.Add(places, options.jobs);
    std::vector<VerifiedArchive> archives;
    for (const auto& [folder, trails] : byFolder) archives.push_back({folder, chains.Of(folder)});
    for (const bool isKnown : {false, true})
        for (const VerifiedArchive& archive : archives)
            for (const VerifiedChain& chain : archive.chains)
                if (chain.IsKnown() == isKnown) SetReports(chain, found);
    CompareAll(archives, files, found, options);
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
