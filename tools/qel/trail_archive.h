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
    std::size_t cabinets = 0, versions = 0;
    std::vector<Finding> findings = {};
};

/// Compares every cabinet in a folder and its subfolders. @throws Failure when the trail cannot be read
ArchiveReport CompareArchive(const std::string& trail, const std::string& folder);

std::string FindingLine(const ArchiveReport::Finding& finding);
Json FindingJson(const ArchiveReport::Finding& finding);

}  // namespace tool
