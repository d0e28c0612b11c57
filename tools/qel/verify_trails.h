#pragma once

#include <set>
#include <string>
#include <vector>

#include "checked_file.h"
#include "trail_report.h"

// The trails that qel verify finds, and the archives that they are in.
namespace tool {

struct TrailOptions {
    AnchorOptions anchors;
    SignatureOptions signatures = {};
    std::vector<std::string> before = {};
    unsigned jobs = 1;
    Resume* resume = nullptr;
};

/// A folder with trails, or a trail that the user has named.
struct VerifiedArchive {
    std::string folder;  ///< empty: a trail alone
    std::vector<VerifiedChain> chains = {};
    std::optional<ArchiveReport> archive = {};

    Status Worst() const;
};

/// Checks the trails among @p files, and compares what is in their folders with them. Each trail's own report is set.
std::vector<VerifiedArchive> VerifyTrails(std::vector<CheckedFile>& files, const TrailOptions& options);

/// The folders that have trails, as absolute paths.
std::set<std::string> FoldersOf(const std::vector<VerifiedArchive>& archives);

/// For whoever knows a trail from elsewhere: each folder that was named needs one, or archives below, and what a trail
/// has to name is not outside of them.
/// @param isOfNamed whether what the user has named needs one, too: a named one in its folder or above
void RequireTrails(std::vector<CheckedFile>& files, const std::vector<std::string>& folders,
                   const std::vector<VerifiedArchive>& archives, bool isOfNamed);

Json ArchivesJson(const std::vector<VerifiedArchive>& archives);

}  // namespace tool
