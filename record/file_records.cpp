#include "qellib10/record/file_records.h"

#include <algorithm>
#include <filesystem>

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/record/file_hash.h"
#include "qellib10/record/trail_chain.h"
#include "qellib10/record/trail_file.h"
#include "qellib10/record/trail_kind.h"

namespace qel {
namespace {

bool IsOfFile(const TrailEntry& entry) {
    const bool isKind = entry.action == trail_kind::kFileSealed || entry.action == trail_kind::kReportPrinted ||
                        entry.action == trail_kind::kExport;
    return isKind && !entry.object.empty() && !entry.sha256.empty();
}

// A path that leads out of the archive is not a file of it.
bool IsInside(const std::string& path) {
    for (std::size_t at = 0; at <= path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        const std::string part = path.substr(at, end - at);
        if (part.empty() || part == "." || part == "..") return false;
        at = end + 1;
    }
    return path.find('\\') == std::string::npos && path.find('\0') == std::string::npos;
}

// Whether the file or a folder of it below the archive's is a symbolic link.
bool IsLinked(const std::string& root, const std::string& name) {
    for (std::size_t end = 0; end != std::string::npos;) {
        end = name.find('/', end + 1);
        std::error_code error;
        if (std::filesystem::is_symlink(std::filesystem::symlink_status(root + name.substr(0, end), error)))
            return true;
    }
    return false;
}

RecordedFile::State StateOf(const RecordedFile& file, const std::string& root) {
    const std::string path(ToLibraryPath(root + file.path).View());
    const std::optional<FileHash> hash = HashFile(path);
    // Asked last, so that a link which was read is noticed unless somebody has put the file back since.
    if (IsLinked(root, file.path)) return RecordedFile::State::kChanged;
    if (hash)
        return hash->size == file.size && hash->sha256 == file.sha256 ? RecordedFile::State::kRecorded
                                                                      : RecordedFile::State::kChanged;
    const Failure& failure = LastFailure();
    constexpr long kNoFile = 2, kNoFolder = 3;
    const bool isMissing = failure.systemError == kNoFile || failure.systemError == kNoFolder;
    return isMissing ? RecordedFile::State::kMissing : RecordedFile::State::kUnreadable;
}

}  // namespace

int FileRecords::Read(std::string_view trailPath, const TrailReceipt& last) {
    m_files.clear();
    return ReadOn(trailPath, last);
}

int FileRecords::ReadOn(std::string_view trailPath, const TrailReceipt& last) {
    const auto take = [&](std::string_view line) {
        TrailEntry entry;
        try {
            entry = ReadEntry(line).entry;
        } catch (const DataError&) {  // CheckTrail reports it
            return;
        }
        if (!IsOfFile(entry) || !IsInside(entry.object)) return;
        m_files[entry.object] = {.path = entry.object,
                                 .action = entry.action,
                                 .user = entry.user,
                                 .entry = entry.number,
                                 .size = entry.size,
                                 .sha256 = entry.sha256};
    };
    // Taking each line apart would take as long as checking the trail does.
    const auto takeIfOfFile = [&](std::string_view line) {
        const auto has = [&](std::string_view kind) {
            return line.find("\"action\":\"" + std::string(kind) + '"') != std::string_view::npos;
        };
        if (has(trail_kind::kFileSealed) || has(trail_kind::kReportPrinted) || has(trail_kind::kExport)) take(line);
    };
    return Succeeds("FileRecords::Read", [&] { ReadChecked(trailPath, last, takeIfOfFile); }) ? 1 : 0;
}

std::vector<RecordedFile> FileRecords::Compare(std::string_view folder) const {
    std::vector<RecordedFile> files = All();
    for (RecordedFile& file : files) file.state = StateIn(folder, file);
    return files;
}

std::vector<RecordedFile> FileRecords::All() const {
    std::vector<RecordedFile> files;
    for (const auto& [path, file] : m_files) files.push_back(file);
    return files;
}

RecordedFile::State FileRecords::StateIn(std::string_view folder, const RecordedFile& file) {
    return StateOf(file, ToPosixPath(folder) + '/');
}

}  // namespace qel
