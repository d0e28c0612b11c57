#pragma once

#include <qellib10/record.h>

#include "tool.h"

namespace tool {

/// What a trail says about an archive's cabinets, compared with them.
struct ArchiveReport {
    struct Finding {
        std::string file;  // empty: a cabinet that is not there
        Status status = kGood;
        std::string cabinet = {};  // its GUID
        qel::RecordedVersion version = {};
        std::string detail = {};
    };
    std::size_t cabinets = 0, versions = 0, files = 0;  // files: those that the trail names
    std::vector<Finding> findings = {};
};

/// Compares every cabinet, and every file that the trail names or that is sealed, in a folder and its subfolders.
/// @param last the last entry that was checked, or number 0
/// @throws Failure when the trail cannot be read, or is not the one that was checked
ArchiveReport CompareArchive(const std::string& trail, const std::string& folder, const qel::TrailReceipt& last);

std::string FindingLine(const ArchiveReport::Finding& finding);
Json FindingJson(const ArchiveReport::Finding& finding);

}  // namespace tool
