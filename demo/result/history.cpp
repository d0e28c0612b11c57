#include "demo/result/history.h"

#include "demo/result/renewals.h"
#include "demo/support/file_step.h"
#include "demo/support/number.h"

namespace titration {
namespace {

constexpr const char* kCabinet = "results.hcf";
constexpr const char* kRecords = "renewals.qel";
constexpr DWORD kMaxListed = 10;

std::string PathIn(const CString& folder, const char* name) { return std::string(CQFile::BuildFilePath(folder, name)); }

}  // namespace

History::History(const CString& folder, ArchiveTrail& trail)
    : m_recordPath(PathIn(folder, kRecords)),
      m_trail(trail),
      m_kept(trail.Trail(), {.cabinetPath = PathIn(folder, kCabinet), .recordPath = m_recordPath}) {
    if (m_kept.Open() == 0) throw Failure(std::string(kCabinet) + ": " + Why("cannot be opened"));
    ReadRecords();
}

void History::ReadRecords() {
    OnFile(kRecords, [&] {
        CQFile file;
        OpenForReading(file, m_recordPath);
        m_records = qel::ReadRenewalRecords(file).whole;
    });
    if (m_records.size() != Latest()) throw Failure(std::string(kRecords) + ": does not have a record of each version");
}

const CHistoryRenewInfo& History::Register(const std::string& path, const std::string& comment) {
    if (!m_kept.Register(path, m_trail.User(), comment)) throw Failure(path + ": " + Why("cannot be registered"));
    ReadRecords();
    return m_records.back();
}

void History::RequireVersion(DWORD version) const {
    if (version == 0 || version > Latest())
        throw Failure("there is no version " + std::to_string(version) + ", the latest is " + std::to_string(Latest()));
}

const CHistoryRenewInfo& History::TakeOut(DWORD version, const std::string& path, const std::string& reason) {
    RequireVersion(version);
    const CString folder = CQFile::GetFolderFromPath(path.c_str());
    if (CQFile::CreateDirectories(folder) == 0) throw Failure(std::string(folder) + ": " + Why("cannot be made"));
    if (!m_kept.TakeOut(version, path, m_trail.User(), reason)) throw Failure(Why("cannot be taken out"));
    return Record(version);
}

std::vector<qel::RecordedVersion> History::Recorded() {
    auto versions = m_kept.List();
    if (!versions) throw Failure(Why("the versions cannot be compared with the trail"));
    return std::move(*versions);
}

qel::RecordedVersion History::Recorded(DWORD version) {
    RequireVersion(version);
    return Recorded().at(version - 1);
}

std::string History::Listed(const std::string& indent) const {
    const DWORD first = Latest() > kMaxListed ? Latest() - kMaxListed + 1 : 1;
    std::string text = Guid() + ", " + Counted(Latest(), "version") + "\n";
    if (first > 1) text += indent + "... the latest of them:\n";
    for (DWORD version = first; version <= Latest(); ++version) {
        text += indent + std::to_string(version) + "  " + Described(Record(version)) + "\n";
    }
    return text;
}

}  // namespace titration
