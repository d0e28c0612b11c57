// What has to be in an archive, for whoever knows a trail from elsewhere.
#include <filesystem>

#include "folders.h"
#include "verify_trails.h"

namespace tool {
namespace {

// Raises the status of a file that is in no archive.
void RequireArchive(FileReport& report, const std::string& path) {
    if (report.kind == "cabinet") report.Raise(kNeverRecorded, "is a cabinet in no archive");
    if (report.isSealed) report.Raise(kSealNeverRecorded, "is a sealed file in no archive");
    if (IsReport(report, path)) report.Raise(kPrintNeverRecorded, "is a report in no archive");
}

}  // namespace

std::set<std::string> FoldersOf(const std::vector<VerifiedArchive>& archives) {
    std::set<std::string> folders;
    for (const VerifiedArchive& archive : archives)
        if (!archive.folder.empty()) folders.insert(AbsolutePath(archive.folder));
    return folders;
}

void RequireTrails(std::vector<CheckedFile>& files, const std::vector<std::string>& folders,
                   const std::vector<VerifiedArchive>& archives, bool isOfNamed) {
    std::set<std::string> places = FoldersOf(archives);
    std::vector<std::string> without;
    for (const std::string& folder : folders) {
        const std::string path = AbsolutePath(folder);
        const auto below = places.lower_bound(Below(path));
        const bool hasBelow = below != places.end() && below->starts_with(Below(path));
        if (!hasBelow && !places.contains(path)) without.push_back(folder);
    }
    std::set<std::string> ofNamed = places;
    for (const VerifiedArchive& archive : archives)
        for (const VerifiedChain& chain : archive.chains)
            ofNamed.insert(std::filesystem::path(AbsolutePath(chain.trails.back().file)).parent_path().string());
    for (const std::string& folder : without) places.insert(AbsolutePath(folder));
    for (CheckedFile& file : files) {
        if (file.isNamed && (!isOfNamed || file.report.kind == "trail")) continue;
        if (NearestFolder(file.isNamed ? ofNamed : places, AbsolutePath(file.path)).empty())
            RequireArchive(file.report, file.path);
    }
    for (const std::string& folder : without) files.push_back({folder, false, {"", false, kMissing, "has no trail"}});
}

}  // namespace tool
