#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>

#include <qellib10/record.h>

#include "file_check.h"
#include "resume.h"
#include "tool.h"

namespace tool {

/// A trail, and the last entry of it that counts.
struct ReadTrail {
    std::string file;
    qel::TrailReceipt last;
};

/// What trails say about an archive's cabinets and files, compared with them.
struct ArchiveReport {
    struct Finding {
        std::string file;  // empty: a cabinet that is not there
        Status status = kGood;
        std::string cabinet = {};           // its GUID
        qel::RecordedVersion version = {};  // of a file: user, entry, size and hash
        std::string detail = {};
        std::uint64_t byte = 0;   // where the version's data are; 0: not known
        std::string signer = {};  // fingerprint of the key that signed the entry
        // Of a file that is not what was recorded, or that no entry names: what it is now.
        std::optional<qel::FileHash> found = {};
        std::string guid = {};  // of its seal
        std::uint64_t sealVersion = 0;
        std::string recordedAs = {};   // its path from the archive's folder on
        std::uint64_t olderEntry = 0;  // the entry that has recorded what it is now
    };
    std::size_t cabinets = 0, versions = 0, files = 0;  // files: those that the trails name
    std::vector<Finding> findings = {};                 // of one cabinet at most kMostOfACabinet, and one for the rest
    std::uint64_t findingCount = 0;

    static constexpr std::size_t kMostOfACabinet = 1000;

    void Add(Finding finding) {
        ++findingCount;
        findings.push_back(std::move(finding));
    }
    /// What was found in another part of the same archive.
    void Join(const ArchiveReport& part);
};

struct ArchiveOptions {
    std::string folder;
    std::set<std::string> except = {};  // subfolders that are archives of their own
    // Only these files, with their names from the folder on: what else the trails know may be elsewhere.
    std::optional<std::map<std::string, std::string>> named = {};
    unsigned jobs = 1;
    Resume* resume = nullptr;
    Resume::Checking content = CheckFile;  // what a file is, as far as itself shows
};

/// Compares every cabinet, and every file that the trails name, that is sealed or a printed report, in a folder and its
/// subfolders. @param trails each one continues the one before
/// @throws Failure when a trail cannot be read, or is not the one that was checked
ArchiveReport CompareArchive(const std::vector<ReadTrail>& trails, const ArchiveOptions& options);

std::string ArchiveText(const ArchiveReport& report);
/// Adds counts and findings to the value of a trail or an archive.
void AddArchiveJson(const ArchiveReport& report, Json& json);
Status WorstOf(const ArchiveReport& report);

}  // namespace tool
