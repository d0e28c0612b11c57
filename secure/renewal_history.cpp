#include "qellib10/secure/renewal_history.h"

#include <string>
#include <utility>

#include "qellib10/platform/archive/archive.h"
#include "qellib10/platform/error.h"
#include "qellib10/platform/failure.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/mem_file.h"

#include "qellib10/file/write_undo.h"
#include "qellib10/secure/renewal_records.h"

namespace qel {
namespace {

DataError About(const CString& path, const std::string& what) {
    return DataError(std::string(CQFile::GetFilenameFromPath(path)) + ": " + what);
}

// After an operation that has returned 0.
DataError Refused(const CString& path, const std::string& what) {
    return About(path, what + ": " + LastFailure().text);
}

}  // namespace

// Nobody else has the records open for writing meanwhile, so nobody else uses the cabinet either.
RenewalHistory::RenewalHistory(std::string_view cabinetPath, std::string_view recordPath) : m_cabinetPath(cabinetPath) {
    CFileException error;
    constexpr UINT kMode = CFile::modeCreate | CFile::modeNoTruncate | CFile::modeReadWrite | CFile::shareDenyWrite;
    if (m_recordFile.Open(CString(recordPath), kMode, &error) == 0) throw CFileException(error);
    OpenCabinet();
    ReadRecords();
}

RenewalHistory::~RenewalHistory() = default;

// A cabinet is an empty file until its first version is registered. One that cannot be looked at may have versions, and
// the first registration would empty it.
void RenewalHistory::OpenCabinet() {
    CFile file;
    CFileException error;
    if (file.Open(m_cabinetPath, CFile::modeRead | CFile::shareDenyNone, &error) == 0) {
        if (IsMissing(error)) return;
        throw Refused(m_cabinetPath, "cannot be opened");
    }
    const bool isEmpty = file.GetLength() == 0;
    file.Close();
    if (!isEmpty && m_cabinet.Open(m_cabinetPath, 0) == 0) throw Refused(m_cabinetPath, "cannot be opened");
}

// A program that ended between registering a version and adding its record has left none for it, or a part of one.
void RenewalHistory::ReadRecords() {
    RenewalRecords found = ReadRenewalRecords(m_recordFile);
    const bool isWhole = found.end == m_recordFile.GetLength();
    const DWORD records = static_cast<DWORD>(found.whole.size());
    if (isWhole ? records > Latest() : !found.isCut || records + 1 != Latest())
        throw About(m_recordFile.GetFilePath(), "is damaged, or not of this cabinet");
    if (!isWhole) m_recordFile.SetLength(found.end);
    m_records = std::move(found.whole);
    AddMissing();
}

void RenewalHistory::AddMissing() {
    while (m_records.size() < Latest()) Add({});
}

void RenewalHistory::Add(CHistoryRenewInfo record) {
    CMemFile bytes;
    CArchive archive(&bytes, CArchive::store);
    record.Serialize(archive);
    archive.Close();
    WriteUndo end(m_recordFile, m_recordFile.GetLength());
    m_recordFile.Write(bytes.Bytes().data(), static_cast<UINT>(bytes.Bytes().size()));
    m_recordFile.Flush();
    m_records.push_back(record);
    end.Keep();
}

const CHistoryRenewInfo& RenewalHistory::Register(std::string_view source, std::string_view operatorName,
                                                  std::string_view comment) {
    const CString path(source);
    AddMissing();
    if (Latest() == 0 && m_cabinet.Create(m_cabinetPath) == 0) throw Refused(m_cabinetPath, "cannot be made");
    if (m_cabinet.RegistNewVersion(path) == 0)
        throw Refused(m_cabinetPath, "cannot take " + std::string(path) + " as another version");
    CHistoryRenewInfo record;
    record.SetRenewDateTime(COleDateTime::GetCurrentTime());
    record.SetFileName(CQFile::GetFilenameFromPath(path));
    record.SetOperator(CString(operatorName));
    record.SetComment(CString(comment));
    Add(record);
    return m_records.back();
}

void RenewalHistory::TakeOut(DWORD version, std::string_view target) {
    const CString path(target);
    if (version == 0 || version > Latest())
        throw About(m_cabinetPath,
                    "has no version " + std::to_string(version) + ", the latest is " + std::to_string(Latest()));
    if (m_cabinet.GetVersionFile(version, path) == 0)
        throw Refused(m_cabinetPath, "version " + std::to_string(version) + " cannot be taken out");
}

}  // namespace qel
