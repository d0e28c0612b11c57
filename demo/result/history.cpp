#include "demo/result/history.h"

#include "demo/result/renewals.h"
#include "demo/support/file_step.h"
#include "demo/support/number.h"

namespace titration {
namespace {

constexpr const char* kCabinet = "results.hcf";
constexpr const char* kRecords = "renewals.qel";
constexpr DWORD kMaxListed = 10;

}  // namespace

// Meanwhile nobody else has the records open for writing, so nobody else uses the cabinet.
History::History(const CString& folder)
    : m_cabinetPath(CQFile::BuildFilePath(folder, kCabinet)), m_recordPath(CQFile::BuildFilePath(folder, kRecords)) {
    OnFile(kRecords, [&] {
        Open(m_recordFile, m_recordPath,
             CFile::modeCreate | CFile::modeNoTruncate | CFile::modeReadWrite | CFile::shareDenyWrite);
        OpenCabinet();
        ReadRecords();
    });
}

// A cabinet is an empty file until its first version is registered.
void History::OpenCabinet() {
    DWORD size = 0;
    const bool isThere = CQFile::GetFileSize(m_cabinetPath.c_str(), &size) != 0 && size > 0;
    if (isThere && m_cabinet.Open(m_cabinetPath.c_str(), 0) == 0)
        throw Failure(std::string(kCabinet) + ": is in use or damaged");
}

// A program that ended between registering a version and adding its record has left no record, or a part of one.
void History::ReadRecords() {
    m_records = ReadRenewals(m_recordFile);
    const ULONGLONG end = m_recordFile.GetPosition();
    const bool isCut = end < m_recordFile.GetLength();
    if (m_records.size() + isCut > Latest() || (isCut && m_records.size() + 1 != Latest()))
        throw Failure(std::string(kRecords) + ": is damaged, or not of this cabinet");
    m_recordFile.SetLength(end);
    while (m_records.size() < Latest()) AddRecord({});
}

void History::AddRecord(const CHistoryRenewInfo& record) {
    OnFile(kRecords, [&] {
        m_records.push_back(record);
        m_recordFile.SeekToEnd();
        CArchive archive(&m_recordFile, CArchive::store);
        m_records.back().Serialize(archive);
        archive.Close();
        m_recordFile.Flush();
    });
}

const CHistoryRenewInfo& History::Register(const std::string& path, const std::string& operatorName,
                                           const std::string& comment) {
    if (Latest() == 0 && m_cabinet.Create(m_cabinetPath.c_str()) == 0)
        throw Failure(std::string(kCabinet) + ": cannot be made");
    if (m_cabinet.RegistNewVersion(path.c_str()) == 0)
        throw Failure(std::string(kCabinet) + ": cannot take " + path + " as another version");
    CHistoryRenewInfo record;
    record.SetRenewDateTime(COleDateTime::GetCurrentTime());
    record.SetFileName(CQFile::GetFilenameFromPath(path.c_str()));
    record.SetOperator(operatorName.c_str());
    record.SetComment(comment.c_str());
    AddRecord(record);
    return m_records.back();
}

const CHistoryRenewInfo& History::TakeOut(DWORD version, const std::string& path) {
    if (version == 0 || version > Latest())
        throw Failure("there is no version " + std::to_string(version) + ", the latest is " + std::to_string(Latest()));
    const CString folder = CQFile::GetFolderFromPath(path.c_str());
    if (CQFile::CreateDirectories(folder) == 0) throw Failure(std::string(folder) + ": cannot be made");
    if (m_cabinet.GetVersionFile(version, path.c_str()) == 0)
        throw Failure(path + ": cannot be written, or the version is damaged");
    return m_records[version - 1];
}

std::string History::Listed(const std::string& indent) const {
    const DWORD first = Latest() > kMaxListed ? Latest() - kMaxListed + 1 : 1;
    std::string text = std::string(m_cabinet.GetGUID().GetString()) + ", " + Counted(Latest(), "version") + "\n";
    if (first > 1) text += indent + "... the latest of them:\n";
    for (DWORD version = first; version <= Latest(); ++version) {
        text += indent + std::to_string(version) + "  " + Described(m_records[version - 1]) + "\n";
    }
    return text;
}

}  // namespace titration
